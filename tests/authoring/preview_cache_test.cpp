// Previews kept by file, entry, size, background and modification time; the
// Page painter's tests cover painting a whole Page off the calling thread.
#include "ui/preview_cache.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <chrono>

#include "authoring/slide_library.h"
#include "slide_test_data.h"
#include "temp_verzeichnis.h"

using namespace tessara;
using namespace tessara::ui;
using slidetest::testdaten;
namespace fs = std::filesystem;

namespace {
QString programmForm(const std::string& nativ) {
    return QString::fromStdString(platform::programPath(nativ));
}
}  // namespace

class VorschauCache : public slidetest::TempVerzeichnis {};

TEST_F(VorschauCache, KeptPerEntrySizeAndBackgroundUntilTheFileChanges) {
    fs::copy_file(testdaten("slide_up.sld"), wurzel / "x.sld");
    std::string name = basis + "x.sld";
    DiaVorschauCache cache;
    QImage erst = cache.bild(name, QSize(160, 120), DiaHintergrund::Dunkel);
    EXPECT_EQ(cache.bild(name, QSize(160, 120), DiaHintergrund::Dunkel), erst);
    EXPECT_EQ(cache.gemalt(), 1);
    // Another size or background is another picture.
    cache.bild(name, QSize(80, 60), DiaHintergrund::Dunkel);
    cache.bild(name, QSize(160, 120), DiaHintergrund::Hell);
    EXPECT_EQ(cache.gemalt(), 3);
    fs::copy_file(testdaten("slide_kz.sld"), wurzel / "x.sld",
                  fs::copy_options::overwrite_existing);
    fs::last_write_time(wurzel / "x.sld",
                        fs::last_write_time(wurzel / "x.sld") + std::chrono::seconds(5));
    QImage neu = cache.bild(name, QSize(160, 120), DiaHintergrund::Dunkel);
    EXPECT_EQ(cache.gemalt(), 4);
    EXPECT_NE(neu, erst);
    // Two entries of one library are two pictures.
    const std::string lib = programmForm(testdaten("mylib.slb")).toStdString();
    EXPECT_NE(cache.bild(lib + "(SLIDE1)", QSize(160, 120), DiaHintergrund::Dunkel),
              cache.bild(lib + "(slide2)", QSize(160, 120), DiaHintergrund::Dunkel));
}

TEST_F(VorschauCache, MissingAndUnreadablePicturesShowNoPreviewAndAreReportedOnce) {
    datei("kaputt.sld", "AutoCAD Slide\r\n\x1a");
    std::vector<std::string> zeilen;
    DiaVorschauCache cache(64, [&](const std::string& zeile) { zeilen.push_back(zeile); });
    const QSize g(100, 100);
    const auto keine = fctKeineVorschauBild(g, DiaHintergrund::Dunkel);
    const std::string namen[] = {basis + "kaputt.sld", basis + "fehlt.sld",
                                 programmForm(testdaten("mylib.slb")).toStdString() + "(NICHTDA)"};
    for (int runde = 0; runde < 3; ++runde)
        for (const auto& n : namen) EXPECT_EQ(cache.bild(n, g, DiaHintergrund::Dunkel), keine);
    EXPECT_EQ(cache.gemalt(), 0);
    EXPECT_EQ(cache.treffer(), 6);  // nothing read again while the files stay as they are
    ASSERT_EQ(zeilen.size(), 3u);
    EXPECT_NE(zeilen[0].find("kaputt.sld"), std::string::npos) << zeilen[0];
    EXPECT_NE(zeilen[1].find("fehlt.sld"), std::string::npos) << zeilen[1];
    EXPECT_NE(zeilen[2].find("NICHTDA"), std::string::npos) << zeilen[2];

    // Repaired, the slide is read and painted.
    fs::copy_file(testdaten("slide_up.sld"), wurzel / "kaputt.sld",
                  fs::copy_options::overwrite_existing);
    fs::last_write_time(wurzel / "kaputt.sld",
                        fs::last_write_time(wurzel / "kaputt.sld") + std::chrono::seconds(5));
    EXPECT_FALSE(cache.sofort(namen[0], g, DiaHintergrund::Dunkel).has_value());
    EXPECT_NE(cache.bild(namen[0], g, DiaHintergrund::Dunkel), keine);
    EXPECT_EQ(cache.gemalt(), 1);
    EXPECT_EQ(zeilen.size(), 3u);
}

TEST_F(VorschauCache, AMissingSlideShowsThePreviewItsDrawingCarries) {
    const fs::path saaten = fs::path(TESSARA_SOURCE_DIR) / "fuzz/seeds/dwg_preview";
    fs::copy_file(saaten / "bmp2004.dwg", wurzel / "b.dwg");  // 6 x 4, amber
    datei("kaputt.dwg", "AC1018 damaged");
    fs::copy_file(testdaten("slide_up.sld"), wurzel / "da.sld");
    const auto nativ = [&](const std::string& n) { return (wurzel / n).string(); };
    std::vector<std::string> zeilen;
    DiaVorschauCache cache(64, [&](const std::string& zeile) { zeilen.push_back(zeile); });
    const QSize g(120, 120);
    const auto dunkel = DiaHintergrund::Dunkel;
    const QImage bild = cache.bild(basis + "fehlt.sld", g, dunkel, nativ("b.dwg"));
    EXPECT_EQ(bild.pixel(60, 60), qRgb(255, 200, 0));  // fitted to 120 x 80, centred
    EXPECT_EQ(bild.pixel(60, 10), fctHintergrundFarbe(dunkel).rgb());
    EXPECT_EQ(cache.bild(basis + "da.sld", g, dunkel, nativ("b.dwg")),
              cache.bild(basis + "da.sld", g, dunkel));  // a slide that is there wins
    EXPECT_EQ(cache.gemalt(), 2);

    for (int runde = 0; runde < 2; ++runde)
        for (const std::string n : {"kaputt.dwg", "fehlt.dwg"})
            EXPECT_EQ(cache.bild(basis + n + ".sld", g, dunkel, nativ(n)),
                      fctKeineVorschauBild(g, dunkel));
    ASSERT_EQ(zeilen.size(), 2u);  // one line each, naming the drawing or the missing slide
    EXPECT_NE(zeilen[0].find("kaputt.dwg: file ends inside the file header"), std::string::npos);
    EXPECT_NE(zeilen[1].find("fehlt.dwg.sld: Datei nicht gefunden"), std::string::npos);
}
