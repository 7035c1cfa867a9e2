// The asynchronous Page painter: pictures handed back one by one on the
// calling thread, cache hits at once, older requests dropped.
#include "ui/slide_page_painter.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <map>
#include <set>

#include "authoring/slide_library.h"
#include "slide_test_data.h"
#include "temp_verzeichnis.h"

using namespace tessara;
using namespace tessara::ui;
using slidetest::testdaten;
namespace fs = std::filesystem;

namespace {

// Everything the painter handed back, by generation.
struct Empfaenger {
    explicit Empfaenger(DiaMaler& m) {
        QObject::connect(&m, &DiaMaler::bildFertig, [this](int gen, int slot, const QImage& b) {
            bilder[gen].push_back({slot, b});
        });
        QObject::connect(&m, &DiaMaler::seiteFertig, [this](int gen) { fertig.insert(gen); });
    }
    bool warten(int gen) {
        QElapsedTimer uhr;
        uhr.start();
        while (!fertig.count(gen) && uhr.elapsed() < 20000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        return fertig.count(gen) > 0;
    }
    std::map<int, std::vector<std::pair<int, QImage>>> bilder;
    std::set<int> fertig;
};

}  // namespace

class DiaMalerTest : public slidetest::TempVerzeichnis {
  protected:
    static void SetUpTestSuite() {
        // Queued hand-over needs an event loop; the object lives as long as the process.
        if (!QCoreApplication::instance()) {
            static int argc = 1;
            static char name[] = "test_authoring";
            static char* argv[] = {name, nullptr};
            new QCoreApplication(argc, argv);
        }
    }
    // n distinct slide files, copies of the test slides.
    QStringList kopien(const std::string& praefix, int n) {
        const char* quellen[] = {"slide_up.sld", "slide_dn.sld", "slide_kz.sld", "slide_kss.sld"};
        QStringList namen;
        for (int i = 0; i < n; ++i) {
            std::string datei = praefix + std::to_string(i) + ".sld";
            fs::copy_file(testdaten(quellen[i % 4]), wurzel / datei);
            namen << QString::fromStdString(basis + datei);
        }
        return namen;
    }
};

TEST_F(DiaMalerTest, PageArrivesPictureByPictureAndFlippingBackPaintsNothing) {
    datei("kaputt.sld", "AutoCAD Slide\r\n\x1a");
    QStringList seiteA = kopien("a", 10);
    seiteA << QString::fromStdString(basis + "fehlt.sld")
           << QString::fromStdString(basis + "kaputt.sld");
    std::vector<std::string> zeilen;
    DiaVorschauCache cache(256, [&](const std::string& zeile) { zeilen.push_back(zeile); });
    DiaMaler maler(cache);
    Empfaenger e(maler);
    const QSize g(160, 120);

    const int a1 = maler.seiteAnfordern(seiteA, g, DiaHintergrund::Dunkel);
    EXPECT_EQ(e.bilder[a1].size(), 1u);  // the missing file needs no reading
    ASSERT_TRUE(e.warten(a1));
    ASSERT_EQ(e.bilder[a1].size(), 12u);
    std::set<int> belegt;
    const QImage keine = fctKeineVorschauBild(g, DiaHintergrund::Dunkel);
    for (const auto& [slot, bild] : e.bilder[a1]) {
        belegt.insert(slot);
        if (slot < 10)
            EXPECT_EQ(bild, fctDiaBild(slide::fctDiaLaden(seiteA[slot].toStdString()), g)) << slot;
        else
            EXPECT_EQ(bild, keine) << slot;
    }
    EXPECT_EQ(belegt.size(), 12u);
    EXPECT_EQ(cache.gemalt(), 10);

    // The next Page, then back: the first Page comes whole from the cache
    // before the request returns, nothing is painted or reported again.
    const int b = maler.seiteAnfordern(kopien("b", 5), g, DiaHintergrund::Dunkel);
    ASSERT_TRUE(e.warten(b));
    EXPECT_EQ(cache.gemalt(), 15);
    const int a2 = maler.seiteAnfordern(seiteA, g, DiaHintergrund::Dunkel);
    EXPECT_EQ(e.bilder[a2].size(), 12u);
    EXPECT_TRUE(e.fertig.count(a2));
    EXPECT_EQ(cache.gemalt(), 15);
    EXPECT_EQ(zeilen.size(), 2u);
    EXPECT_EQ(maler.offen(), 0);
}

TEST_F(DiaMalerTest, FlippingOnDropsTheOlderRequest) {
    DiaVorschauCache cache(16);
    const QStringList gross = kopien("g", 72), klein = kopien("k", 4);
    {
        DiaMaler maler(cache);
        Empfaenger e(maler);
        const int alt = maler.seiteAnfordern(gross, QSize(800, 600), DiaHintergrund::Hell);
        const int neu = maler.seiteAnfordern(klein, QSize(100, 75), DiaHintergrund::Hell);
        EXPECT_GT(neu, alt);
        ASSERT_TRUE(e.warten(neu));
        for (int i = 0; i < 20; ++i) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        EXPECT_EQ(e.bilder.count(alt), 0u);
        EXPECT_EQ(e.bilder[neu].size(), 4u);
        // How much of the older Page is painted before it is dropped depends
        // on the machine's load: bench_page_flip measures the flip instead.

        // Closing the window while a Page is being painted.
        maler.seiteAnfordern(gross, QSize(801, 601), DiaHintergrund::Hell);
    }
}
