// End to end through the main window: the real `tessara` process on a
// library, the simulated host with an LT title beside it, and the user's
// Enter and pick typed and clicked through XTest on the test's own X server.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "befehl.h"
#include "e2e_hilfen.h"
#include "platform/x11/x11_desktop.h"

namespace tessara::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const std::string kHostTitel = "AutoCAD LT 2015 - [Zeichnung1.dwg]";

// The batch tool's standard output; empty when it failed.
std::string cli(const std::string& argumente) {
    int code = -1;
    const std::string aus =
        befehlsAusgabe(std::string(TESSARA_CLI) + " " + argumente + " 2>/dev/null", &code);
    return code == 0 ? aus : std::string();
}

// The fields of the first row of `tessara-cli sql` (a header line, then
// quoted fields separated by commas).
std::vector<std::string> ersteZeile(const std::string& aus) {
    std::vector<std::string> felder;
    const auto von = aus.find('\n');
    if (von == std::string::npos) return felder;
    std::string zeile = aus.substr(von + 1, aus.find('\n', von + 1) - von - 1);
    if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
    for (std::size_t a = 0; a <= zeile.size();) {
        const auto e = std::min(zeile.find("\",\"", a), zeile.size());
        std::string f = zeile.substr(a, e - a);
        if (!f.empty() && f.front() == '"') f.erase(0, 1);
        if (!f.empty() && f.back() == '"') f.pop_back();
        felder.push_back(f);
        a = e + 3;
    }
    return felder;
}

// Pixels of the simulated drawing's green (colour 3) in a screenshot of one
// window, taken with ImageMagick's import; the PNG stays beside it for a
// person to look at.
int gruenePixel(platform::WindowHandle fenster, const fs::path& png) {
    const std::string id = std::to_string(fenster);
    if (std::system(("import -window " + id + " " + png.string()).c_str()) != 0) return -1;
    FILE* p = popen(("import -window " + id + " -depth 8 ppm:- 2>/dev/null").c_str(), "r");
    if (!p) return -1;
    int w = 0, h = 0, max = 0;
    if (std::fscanf(p, "P6 %d %d %d", &w, &h, &max) != 3 || max != 255) {
        pclose(p);
        return -1;
    }
    std::fgetc(p);
    int gruen = 0;
    for (long i = 0; i < static_cast<long>(w) * h; ++i) {
        const int r = std::fgetc(p), g = std::fgetc(p), b = std::fgetc(p);
        if (b == EOF) break;
        if (g > 200 && r < 80 && b < 80) ++gruen;
    }
    pclose(p);
    return gruen;
}

// The host test's directory, desktop and host, and the window program beside
// them; both processes map "c:\" to the same directory.
class FensterE2E : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        fs::create_directories(verzeichnis / "run");
        fs::permissions(verzeichnis / "run", fs::perms::owner_all);
        fs::create_directories(verzeichnis / "common" / "Tessara");
        ausgabe = verzeichnis / "tessara.txt";
    }
    void TearDown() override {
        prozessBeenden(programm);
        HostTest::TearDown();
    }

    // The window program with private places for everything it writes.
    void programmStarten() {
        programm = prozessStarten(
            {TESSARA_APP},
            {"HOME=" + verzeichnis.string(), "XDG_RUNTIME_DIR=" + (verzeichnis / "run").string(),
             "XDG_CONFIG_HOME=" + (verzeichnis / "cfg").string(),
             "TESSARA_COMMON_APPDATA=" + (verzeichnis / "common").string(), "QT_QPA_PLATFORM=xcb"},
            ausgabe.string());
        ASSERT_GT(programm, 0);
    }

    // The library c:\Bib in the Settings file, with the boxes that would
    // wait for a hand switched off as a user switches them off; the host,
    // then the program, until it has loaded the library.
    void starten() {
        std::ofstream(verzeichnis / "common" / "Tessara" / "Tessara9.0.ini")
            << "[AllgemeineDaten]\r\nDbVerzeichnis0=c:\\Bib\r\n"
            << "[MsgboxAnzeigen]\r\nAcadVerbindung=1\r\nKeinBlock=1\r\nTessaraBeenden=1\r\n";
        ASSERT_TRUE(simhostStarten(host, kHostTitel, log, desktop));
        programmStarten();
        ASSERT_TRUE(warteAufLog(ausgabe, "bereit: c:\\Bib\\dbTessara.mdb", 60s)) << lesen(ausgabe);
    }
    // Brings the program's window in front, as the user's click on it would.
    platform::WindowHandle nachVorne() {
        const auto fenster = warteAufFenster(desktop, "Tessara");
        const bool vorn = fenster && warteBis([&] {
                              if (desktop.foregroundWindow() == fenster) return true;
                              desktop.bringToFront(fenster);
                              return false;
                          });
        return vorn ? fenster : 0;
    }

    // The batch tool's demo library without its marked blocks (they would go
    // in instead of the selection), then the statements given.
    std::string demoBibliothek(std::vector<std::string> sql = {}) {
        const std::string db = (verzeichnis / "c" / "Bib" / "dbTessara.mdb").string();
        EXPECT_FALSE(cli("make-demo-library " + (verzeichnis / "c" / "Bib").string()).empty());
        sql.insert(sql.begin(), "DELETE FROM tblMarkierteBloecke");
        for (const auto& s : sql) EXPECT_FALSE(cli("sql " + db + " \"" + s + "\"").empty()) << s;
        return db;
    }
    // The user brings the window forward (slot 0 of the first Folder's first
    // Page is selected after start), presses Enter, walks `runter` down the
    // Variant list when it comes, and picks the point; the pick is held until
    // the host has the insertion: the program types its answers only once it
    // has seen the button down. The host's log then.
    std::string enterUndKlick(int runter = -1) {
        EXPECT_NE(nachVorne(), 0u);
        Hand().enter();
        if (runter >= 0) {
            EXPECT_NE(warteAufFenster(desktop, "Variante wählen"), 0u) << lesen(ausgabe);
            for (int i = 0; i < runter; ++i) Hand().runter();
            Hand().enter();
        }
        EXPECT_TRUE(warteAufLog(log, "INSERT WARTET AUF PUNKT")) << lesen(log) << lesen(ausgabe);
        Hand().klick(1, 120, 150, [&] { warteAufLog(log, "INSERT block="); });
        EXPECT_TRUE(warteAufLog(log, "INSERT block=")) << lesen(log);
        return lesen(log);
    }

    fs::path ausgabe;
    pid_t programm = 0;
};

// "Neu" in the window (Ctrl+N) on a new library: the name question keeps
// its proposal, the host runs the script and the user picks the diagonal;
// the record stands in the slot, its library holds "0A", and the slot
// paints the new picture.
TEST_F(FensterE2E, NeuImFensterLegtDenBlockAn) {
    const fs::path bib = verzeichnis / "c" / "Bib";
    fs::create_directories(bib);
    const std::string db = (bib / "dbTessara.mdb").string();
    ASSERT_NO_FATAL_FAILURE(starten());
    const auto fenster = nachVorne();
    ASSERT_NE(fenster, 0u);
    const fs::path bilder = fs::path(TESSARA_BINARY_DIR) / "screenshots";
    fs::create_directories(bilder);
    const int vorher = gruenePixel(fenster, bilder / "hauptfenster_vor_neu.png");

    Hand().strg('n');
    ASSERT_NE(warteAufFenster(desktop, "Blockname"), 0u) << lesen(ausgabe);
    Hand().enter();
    ASSERT_TRUE(warteAufLog(log, "WBLOCK WARTET AUF BASISPUNKT")) << lesen(log) << lesen(ausgabe);
    Hand().klick(1, 200, 299, [&] { warteAufLog(log, "WBLOCK WAEHLT OBJEKTE"); });
    Hand().klick(1, 320, 199, [&] { warteAufLog(log, "GEWAEHLT "); });
    Hand().klick(3, 300, 200, [&] { warteAufLog(log, "WBLOCK c:"); });

    std::vector<std::string> block;
    const auto ende = std::chrono::steady_clock::now() + 30s;
    while (block.size() != 2 && std::chrono::steady_clock::now() < ende) {
        block = ersteZeile(cli("sql " + db + " \"SELECT Block, SlideLib FROM tblBlockInfo\""));
        std::this_thread::sleep_for(200ms);
    }
    ASSERT_EQ(block.size(), 2u) << lesen(log) << lesen(ausgabe);
    // The host is LT: single slides, no library.
    EXPECT_EQ(block[1], "000\\" + block[0] + "0.sld");
    EXPECT_EQ(cli("slide-info " + (bib / "000" / (block[0] + "0.sld")).string()).substr(0, 6),
              "level ");
    // The slot shows the slide: the host's green diagonal is now in the window.
    ASSERT_EQ(nachVorne(), fenster);
    int nachher = 0;
    for (int i = 0; i < 50 && nachher <= vorher + 20; ++i) {
        std::this_thread::sleep_for(100ms);
        nachher = gruenePixel(fenster, bilder / "hauptfenster_nach_neu.png");
    }
    EXPECT_GT(nachher, vorher + 20);
}

// Enter on the selected Block with a Variant: the window first asks which to
// insert; the user walks down to the Variant, picks the point, and the host
// inserts the Variant's drawing under its name (and the View digit, as every
// block taken from the library) at that point, on the Block's layer.
TEST_F(FensterE2E, EnterFuegtDieGewaehlteVarianteEin) {
    const std::string db = demoBibliothek(
        {"INSERT INTO tblVariationBloecke (BlockName, BlockID, BlockDateiName) SELECT "
         "'Ventil flach', Nr, '00000000_1' FROM tblBlockInfo WHERE Block = '0000000'"});
    const auto layer = ersteZeile(
        cli("sql " + db + " \"SELECT Layer FROM tblBlockInfo WHERE Block = '0000000'\""));
    ASSERT_EQ(layer.size(), 1u);
    const fs::path varia = verzeichnis / "c" / "Bib" / "000" / "Block" / "Varia";
    fs::create_directories(varia);
    std::ofstream(varia / "00000000_10.dwg") << "SIMHOST ZEICHNUNG\n";
    ASSERT_NO_FATAL_FAILURE(starten());
    const std::string l = enterUndKlick(1);
    const std::string punkt = zeilenRest(l, "PUNKT ");
    ASSERT_FALSE(punkt.empty()) << l;
    const std::string datei = "c:\\Bib\\000\\Block\\Varia\\00000000_10.dwg";
    EXPECT_NE(l.find("INSERT block=Ventil flach0 datei=" + datei + " punkt=" + punkt +
                     " x=1 y=1 winkel=0 layer=" + layer[0]),
              std::string::npos)
        << l;
}

}  // namespace
}  // namespace tessara::test
