// Previews of a Page painted off the calling thread and kept by file, entry
// and modification time.
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

TEST_F(VorschauCache, PageOf72InOrderAndPaintedOnce) {
    const QStringList arten = {programmForm(testdaten("slide_up.sld")),
                               programmForm(testdaten("slide_dn.sld")),
                               programmForm(testdaten("slide_kz.sld")),
                               programmForm(testdaten("mylib.slb")) + "(SLIDE1)",
                               programmForm(testdaten("mylib.slb")) + "(slide2)",
                               programmForm(testdaten("slide_kss.sld"))};
    QStringList seite;
    for (int i = 0; i < 72; ++i) seite << arten[i % arten.size()];
    DiaVorschauCache cache;
    const QSize groesse(160, 120);
    auto zukunft = cache.seiteMalen(seite, groesse, DiaHintergrund::Dunkel);
    zukunft.waitForFinished();
    auto bilder = zukunft.results();
    ASSERT_EQ(bilder.size(), 72);
    for (int i = 0; i < 72; ++i) {
        auto erwartet = fctDiaBild(slide::fctDiaLaden(seite[i].toStdString()), groesse);
        EXPECT_EQ(bilder[i], erwartet) << i;
    }
    // Six distinct pictures: painted at most once each (two workers may race
    // on the same one before either has stored it), the rest from the cache.
    EXPECT_GE(cache.gemalt(), 6);
    EXPECT_EQ(cache.gemalt() + cache.treffer(), 72);
    int gemaltVorher = cache.gemalt();
    auto nochmal = cache.seiteMalen(seite, groesse, DiaHintergrund::Dunkel);
    nochmal.waitForFinished();
    EXPECT_EQ(cache.gemalt(), gemaltVorher);
    EXPECT_EQ(nochmal.results(), bilder);
    // Another size or background is another picture.
    cache.bild(seite[0].toStdString(), QSize(80, 60), DiaHintergrund::Dunkel);
    cache.bild(seite[0].toStdString(), groesse, DiaHintergrund::Hell);
    EXPECT_EQ(cache.gemalt(), gemaltVorher + 2);
}

TEST_F(VorschauCache, ANewerFileIsPaintedAgain) {
    fs::copy_file(testdaten("slide_up.sld"), wurzel / "x.sld");
    std::string name = basis + "x.sld";
    DiaVorschauCache cache;
    QImage erst = cache.bild(name, QSize(160, 120), DiaHintergrund::Dunkel);
    EXPECT_EQ(cache.bild(name, QSize(160, 120), DiaHintergrund::Dunkel), erst);
    EXPECT_EQ(cache.gemalt(), 1);
    fs::copy_file(testdaten("slide_kz.sld"), wurzel / "x.sld",
                  fs::copy_options::overwrite_existing);
    fs::last_write_time(wurzel / "x.sld",
                        fs::last_write_time(wurzel / "x.sld") + std::chrono::seconds(5));
    QImage neu = cache.bild(name, QSize(160, 120), DiaHintergrund::Dunkel);
    EXPECT_EQ(cache.gemalt(), 2);
    EXPECT_NE(neu, erst);
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
