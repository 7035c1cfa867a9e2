// Painting slides: where things land, colours, fills, proportions, and
// golden pictures as a guard against unnoticed changes.
#include "ui/slide_painter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <cstdlib>
#include <filesystem>

#include "authoring/aci_farben.h"
#include "authoring/slide_canvas.h"
#include "authoring/slide_library.h"
#include "slide_test_data.h"
#include "tabelle.h"

using namespace tessara;
using namespace tessara::ui;
using slidetest::testdaten;

namespace {

bool nahe(QRgb a, QColor b, int toleranz = 0) {
    return std::abs(qRed(a) - b.red()) <= toleranz && std::abs(qGreen(a) - b.green()) <= toleranz &&
           std::abs(qBlue(a) - b.blue()) <= toleranz;
}

// Whether any pixel within r of (x, y) has the colour.
bool inDerNaehe(const QImage& bild, int x, int y, QColor farbe, int r = 1) {
    for (int dy = -r; dy <= r; ++dy)
        for (int dx = -r; dx <= r; ++dx) {
            int px = x + dx, py = y + dy;
            if (px >= 0 && py >= 0 && px < bild.width() && py < bild.height() &&
                nahe(bild.pixel(px, py), farbe))
                return true;
        }
    return false;
}

const DiaMalOptionen kScharf{DiaHintergrund::Dunkel, false};

// Pixels of the no-preview picture that are neither its field (left edge,
// mid height) nor its frame (the corner), with the rows they lie on.
int buchstabenPixel(const QImage& bild, std::vector<int>* zeilen = nullptr) {
    const QRgb feld = bild.pixel(4, bild.height() / 2), linie = bild.pixel(0, 0);
    int pixel = 0;
    for (int y = 1; y + 1 < bild.height(); ++y) {
        int n = 0;
        for (int x = 1; x + 1 < bild.width(); ++x)
            n += bild.pixel(x, y) != feld && bild.pixel(x, y) != linie;
        if (n > 0 && zeilen) zeilen->push_back(y);
        pixel += n;
    }
    return pixel;
}

}  // namespace

TEST(AciFarben, StandardValues) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/aci_farben.txt")) {
        const auto rgb = slide::aciRgb(std::stoi(f.at(0)));
        EXPECT_EQ(std::to_string(rgb.r) + "|" + std::to_string(rgb.g) + "|" + std::to_string(rgb.b),
                  f.at(1) + "|" + f.at(2) + "|" + f.at(3))
            << f[0];
    }
    EXPECT_EQ(slide::aciZeichenfarbe(7, true), (slide::Rgb{255, 255, 255}));
    EXPECT_EQ(slide::aciZeichenfarbe(7, false), (slide::Rgb{0, 0, 0}));
    EXPECT_EQ(slide::aciZeichenfarbe(1, false), (slide::Rgb{255, 0, 0}));
}

TEST(SlidePainter, PublishedExampleLandsWhereItsPointsAre) {
    auto dia = slide::readSlide(slidetest::beispielDia());
    // 440 x 300 has almost exactly the slide's aspect ratio 1.46: the area fills the image.
    QImage bild = fctDiaBild(dia, QSize(440, 300), kScharf);
    const QColor weiss(255, 255, 255), gruen(0, 255, 0), rot(255, 0, 0), schwarz(0, 0, 0);
    // The white diagonal from corner to corner.
    EXPECT_TRUE(inDerNaehe(bild, 439, 0, weiss));
    EXPECT_TRUE(inDerNaehe(bild, 220, 150, weiss));
    EXPECT_TRUE(inDerNaehe(bild, 330, 75, weiss));
    // The green line at x = 15 from y = 19 to 50 (image rows counted from the top).
    int gx = 15 * 439 / 572;
    EXPECT_TRUE(inDerNaehe(bild, gx, 299 - 35 * 299 / 292, gruen));
    EXPECT_FALSE(inDerNaehe(bild, gx, 299 - 80 * 299 / 292, gruen, 2));
    // The red rectangle 0..33 x 0..25: its top edge and its right edge.
    EXPECT_TRUE(inDerNaehe(bild, 12, 299 - 25 * 299 / 292, rot));
    EXPECT_TRUE(inDerNaehe(bild, 33 * 439 / 572, 299 - 12 * 299 / 292, rot));
    // Inside the rectangle there is nothing.
    EXPECT_TRUE(nahe(bild.pixel(15 * 439 / 572, 299 - 12 * 299 / 292), schwarz));
    // Away from everything: background.
    EXPECT_TRUE(nahe(bild.pixel(100, 60), schwarz));
}

// A field of a title block as the host writes masked text: a hatch under
// the field, the colour-0 mask over it, then a frame and text inside the
// mask, and a colour-0 line across the hatch.
TEST(SlidePainter, Colour0IsTheBackgroundInDrawingOrder) {
    slide::DiaZeichner z(399, 299);
    z.fenster(0, 0, 399, 299);
    z.farbe(3);
    for (int x = 0; x <= 399; x += 10) z.linie(x, 0, x, 299);
    z.maske(100, 100, 300, 200);
    z.farbe(7);
    z.rechteck(120, 120, 280, 180);
    z.text(130, 140, 20, "DN 50");
    z.farbe(0);
    z.linie(0, 250, 399, 250);
    const QColor gruen(0, 255, 0);
    for (auto hg : {DiaHintergrund::Dunkel, DiaHintergrund::Hell}) {
        SCOPED_TRACE(static_cast<int>(hg));
        const QColor hinten = fctHintergrundFarbe(hg);
        const QColor vorn = fctAciFarbe(7, hg);
        QImage bild = fctDiaBild(z.dia(), QSize(400, 300), {hg, false});
        // Image rows count from the top: world y is row 299 - y.
        EXPECT_TRUE(nahe(bild.pixel(200, 299 - 190), hinten));  // hatch line x = 200 hidden
        EXPECT_TRUE(nahe(bild.pixel(110, 299 - 150), hinten));
        EXPECT_TRUE(inDerNaehe(bild, 120, 299 - 150, vorn));  // frame inside the mask
        EXPECT_TRUE(inDerNaehe(bild, 280, 299 - 130, vorn));
        int schrift = 0;
        for (int y = 299 - 162; y <= 299 - 138; ++y)
            for (int x = 128; x <= 232; ++x) schrift += nahe(bild.pixel(x, y), vorn);
        EXPECT_GT(schrift, 100);
        EXPECT_TRUE(inDerNaehe(bild, 50, 299 - 50, gruen));    // hatch outside the mask
        EXPECT_TRUE(nahe(bild.pixel(50, 299 - 250), hinten));  // colour-0 line over the hatch
        EXPECT_TRUE(nahe(bild.pixel(50, 299 - 240), gruen));
    }
}

TEST(SlidePainter, NoPreviewPictureIsLegibleAt60x45) {
    for (auto hg : {DiaHintergrund::Dunkel, DiaHintergrund::Hell}) {
        SCOPED_TRACE(static_cast<int>(hg));
        QImage bild = fctKeineVorschauBild(QSize(60, 45), hg);
        ASSERT_EQ(bild.size(), QSize(60, 45));
        const QRgb feld = bild.pixel(4, 22);
        // Neutral: neither the slide background nor its foreground.
        EXPECT_FALSE(nahe(feld, fctHintergrundFarbe(hg), 30));
        EXPECT_FALSE(nahe(feld, fctAciFarbe(7, hg), 30));
        const QRgb linie = bild.pixel(0, 0);
        EXPECT_NE(linie, feld);
        // The crossed frame: all four corners and the middle of each edge.
        for (auto [x, y] : {std::pair{59, 0}, {0, 44}, {59, 44}, {30, 0}, {0, 22}, {30, 44}})
            EXPECT_EQ(bild.pixel(x, y), linie) << x << "," << y;
        bool diagonale = false;
        for (int y = 2; y <= 6; ++y) diagonale |= bild.pixel(5, y) == linie;
        EXPECT_TRUE(diagonale);
        // Two lines of letters in the middle, clear of the frame: the rows
        // holding letter pixels form two bands with a gap between them.
        std::vector<int> zeilen;
        const int pixel = buchstabenPixel(bild, &zeilen);
        EXPECT_GT(pixel, 120);
        ASSERT_FALSE(zeilen.empty());
        int baender = 1;
        for (std::size_t i = 1; i < zeilen.size(); ++i) baender += zeilen[i] != zeilen[i - 1] + 1;
        EXPECT_EQ(baender, 2);
        EXPECT_GT(zeilen.front(), 8);
        EXPECT_LT(zeilen.back(), 36);
    }
    // Larger pictures get larger letters.
    EXPECT_GT(buchstabenPixel(fctKeineVorschauBild(QSize(400, 300), DiaHintergrund::Dunkel)),
              16 * buchstabenPixel(fctKeineVorschauBild(QSize(60, 45), DiaHintergrund::Dunkel)));
}

// Golden pictures made by this painter: they only catch changes. Set
// TESSARA_UPDATE_GOLDEN=1 to write them anew after an intended change.
TEST(SlidePainter, GoldenPictures) {
    const std::filesystem::path ordner =
        std::filesystem::path(TESSARA_SOURCE_DIR) / "tests/authoring/golden";
    struct Fall {
        const char* name;
        slide::Slide dia;
        DiaHintergrund hg;
    };
    const Fall faelle[] = {
        {"slide_up", slide::readSlideFile(testdaten("slide_up.sld")), DiaHintergrund::Dunkel},
        {"slide_kz", slide::readSlideFile(testdaten("slide_kz.sld")), DiaHintergrund::Dunkel},
        {"slide_kss_hell", slide::readSlideFile(testdaten("slide_kss.sld")), DiaHintergrund::Hell},
        {"frei2", slide::fctLeerfeldDia(), DiaHintergrund::Hell},
    };
    const bool schreiben = std::getenv("TESSARA_UPDATE_GOLDEN") != nullptr;
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.name);
        QImage bild = fctDiaBild(f.dia, QSize(160, 120), {f.hg, true});
        auto pfad = QString::fromStdString((ordner / (std::string(f.name) + ".png")).string());
        if (schreiben) {
            std::filesystem::create_directories(ordner);
            ASSERT_TRUE(bild.save(pfad, "PNG"));
            continue;
        }
        QImage gold(pfad);
        ASSERT_FALSE(gold.isNull()) << "missing " << pfad.toStdString();
        gold = gold.convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(gold.size(), bild.size());
        int abweichend = 0;
        for (int y = 0; y < bild.height(); ++y)
            for (int x = 0; x < bild.width(); ++x)
                if (!nahe(bild.pixel(x, y), QColor::fromRgb(gold.pixel(x, y)), 48)) ++abweichend;
        EXPECT_LE(abweichend, bild.width() * bild.height() / 100);
    }
}
