// Painting slides: where things land, colours, fills, proportions, and
// golden pictures as a guard against unnoticed changes.
#include "ui/slide_painter.h"

#include <gtest/gtest.h>

#include <QImage>
#include <cstdlib>
#include <filesystem>

#include "authoring/aci_farben.h"
#include "authoring/dia_zeichner.h"
#include "authoring/slide_library.h"
#include "slide_test_daten.h"

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

}  // namespace

TEST(AciFarben, StandardValues) {
    struct Fall {
        int index;
        slide::Rgb rgb;
    };
    // Values of the host's colour dialog.
    for (auto f : {Fall{1, {255, 0, 0}},      Fall{2, {255, 255, 0}},    Fall{3, {0, 255, 0}},
                   Fall{5, {0, 0, 255}},      Fall{8, {128, 128, 128}},  Fall{9, {192, 192, 192}},
                   Fall{10, {255, 0, 0}},     Fall{11, {255, 127, 127}}, Fall{13, {204, 102, 102}},
                   Fall{19, {76, 38, 38}},    Fall{20, {255, 63, 0}},    Fall{21, {255, 159, 127}},
                   Fall{23, {204, 127, 102}}, Fall{35, {153, 114, 76}},  Fall{41, {255, 223, 127}},
                   Fall{43, {204, 178, 102}}, Fall{60, {191, 255, 0}},   Fall{61, {223, 255, 127}},
                   Fall{63, {178, 204, 102}}, Fall{64, {114, 153, 0}},   Fall{140, {0, 191, 255}},
                   Fall{250, {51, 51, 51}},   Fall{255, {255, 255, 255}}}) {
        SCOPED_TRACE(f.index);
        EXPECT_EQ(slide::aciRgb(f.index), f.rgb);
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

TEST(SlidePainter, AspectRatioIsKeptAndThePictureCentred) {
    auto dia = slide::readSlide(slidetest::beispielDia());
    QImage breit = fctDiaBild(dia, QSize(880, 300), kScharf);
    // 1.46 : 1 in a 2.93 : 1 image: a band of about 220 pixels stays empty on each side.
    for (int y = 0; y < 300; y += 7) {
        EXPECT_TRUE(nahe(breit.pixel(100, y), QColor(0, 0, 0)));
        EXPECT_TRUE(nahe(breit.pixel(780, y), QColor(0, 0, 0)));
    }
    EXPECT_TRUE(inDerNaehe(breit, 440, 150, QColor(255, 255, 255)));
    QImage hoch = fctDiaBild(dia, QSize(146, 400), kScharf);
    EXPECT_TRUE(nahe(hoch.pixel(73, 20), QColor(0, 0, 0)));
    EXPECT_TRUE(inDerNaehe(hoch, 73, 200, QColor(255, 255, 255)));
}

TEST(SlidePainter, LightBackgroundDrawsColour7Black) {
    auto dia = slide::readSlide(slidetest::beispielDia());
    QImage bild = fctDiaBild(dia, QSize(440, 300), {DiaHintergrund::Hell, false});
    EXPECT_TRUE(nahe(bild.pixel(100, 60), QColor(255, 255, 255)));
    EXPECT_TRUE(inDerNaehe(bild, 220, 150, QColor(0, 0, 0)));
}

TEST(SlidePainter, SolidFillsAreFilled) {
    slide::Slide s;
    s.highX = 299;
    s.highY = 299;
    s.aspectRatio = 1.0;
    s.addFill(1, {{100, 100}, {200, 100}, {200, 200}, {100, 200}});
    s.addVector(3, {0, 250}, {299, 250});
    QImage bild = fctDiaBild(s, QSize(300, 300), kScharf);
    EXPECT_TRUE(nahe(bild.pixel(150, 150), QColor(255, 0, 0)));
    EXPECT_TRUE(nahe(bild.pixel(110, 190), QColor(255, 0, 0)));
    EXPECT_TRUE(nahe(bild.pixel(50, 150), QColor(0, 0, 0)));
    EXPECT_TRUE(nahe(bild.pixel(250, 150), QColor(0, 0, 0)));
    EXPECT_TRUE(inDerNaehe(bild, 150, 49, QColor(0, 255, 0)));
}

TEST(SlidePainter, TestDataSlidesPaintSomething) {
    std::vector<std::string> bilder = {testdaten("slide_up.sld"), testdaten("slide_dn.sld"),
                                       testdaten("slide_kss.sld"), testdaten("slide_kz.sld"),
                                       testdaten("mylib.slb") + "(SLIDE2)"};
    for (const auto& b : bilder) {
        SCOPED_TRACE(b);
        QImage bild = fctDiaBild(slide::fctDiaLaden(b), QSize(160, 120));
        int gezeichnet = 0;
        for (int y = 0; y < bild.height(); ++y)
            for (int x = 0; x < bild.width(); ++x)
                if (!nahe(bild.pixel(x, y), QColor(0, 0, 0), 10)) ++gezeichnet;
        EXPECT_GT(gezeichnet, 50);
        EXPECT_LT(gezeichnet, 160 * 120 / 2);
    }
}

TEST(SlidePainter, ErrorPictureIsARedCross) {
    QImage bild = fctFehlerBild(QSize(100, 100), DiaHintergrund::Hell);
    EXPECT_TRUE(inDerNaehe(bild, 50, 50, QColor(255, 0, 0)));
    EXPECT_TRUE(nahe(bild.pixel(50, 10), QColor(255, 255, 255)));
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
