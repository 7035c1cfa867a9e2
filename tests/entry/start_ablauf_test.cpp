// Main's three roles over real directories in a temporary folder, with the
// in-process doubles of the platform layer standing for the desktop and the
// instance channel (the two-process hand-over runs in tests/app).
#include "entry/start_ablauf.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>

#include "entry/tessara_start.h"
#include "frisches_verzeichnis.h"
#include "platform/environment.h"
#include "platform/memory/fake_clock.h"
#include "platform/memory/memory_desktop.h"
#include "platform/memory/memory_environment.h"
#include "platform/memory/memory_instance_channel.h"
#include "platform/memory/memory_registry.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "tabelle.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

struct TestFenster : Hauptfenster {
    std::vector<std::string> ereignisse;
    bool abbrechen = false;
    bool nurVorne = false;
    void laden() override { ereignisse.push_back("laden"); }
    bool startAbbrechen() override { return abbrechen; }
    // As the main window answers: nothing handed over but the wish to see it.
    bool nurNachVorneHolen() override {
        return nurVorne || (z->strUebergabeBlock.empty() && z->strUebergabeDb.empty());
    }
    void zeigen() override { ereignisse.push_back("zeigen"); }
    platform::WindowHandle handle = 0;
    platform::WindowHandle fensterHandle() override { return handle; }
    std::vector<std::string> bloecke;
    ProgrammZustand* z = nullptr;
    bool busy = false;
    bool beschaeftigt() override { return busy; }
    std::function<void()> beimBlock;  // what happens while the request runs
    void blockAnfrageAusfuehren() override {
        ereignisse.push_back("block");
        if (beimBlock) beimBlock();
        bloecke.push_back(z->strUebergabeBlock + ";" + z->strUebergabeVariante);
    }
    void datenbankWechseln(const std::string& p) override { ereignisse.push_back("db " + p); }
    void timerIntervall(int ms) override { ereignisse.push_back("timer " + std::to_string(ms)); }
};

// One process of the program: its own state, environment and channel end.
struct Prozess {
    platform::MemoryEnvironment env;
    platform::MemoryRegistry registry;
    platform::FakeClock clock;
    platform::MemoryDesktop desktop{&clock};
    platform::MemoryInstanceChannel kanal;
    platform::Platform plattform;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    TestFenster fenster;
    clsStart start;

    Prozess(std::shared_ptr<platform::MemoryInstanceBus> bus, const std::string& app,
            const std::string& common, const std::string& cmd)
        : kanal(bus) {
        env.setApplicationDirectory(app);
        env.setCommonAppData(common);
        env.setCommandLine(cmd);
        plattform.registry = &registry;
        plattform.environment = &env;
        plattform.desktop = &desktop;
        plattform.clock = &clock;
        plattform.instance = &kanal;
        z.plattform = &plattform;
        z.benutzer = &benutzer;
        fenster.z = &z;
    }
    MainErgebnis main() { return start.Main(z, fenster); }
};

class StartAblauf : public ::testing::Test {
  protected:
    void SetUp() override {
        root = tessara::test::frischesVerzeichnis("start");
        fs::create_directories(root / "app");
        fs::create_directories(root / "common");
        fs::create_directories(root / "drive_c");
        ::setenv("TESSARA_DRIVE_C", (root / "drive_c").c_str(), 1);
        std::ofstream(root / "app" / "txtBeschriftTessara9.0Frm_deutsch.txt")
            << "[Allg]\r\nProgName=Tessara $\r\n";
        bus = std::make_shared<platform::MemoryInstanceBus>();
    }
    void TearDown() override {
        fs::remove_all(root);
        ::unsetenv("TESSARA_DRIVE_C");
    }
    std::unique_ptr<Prozess> prozess(const std::string& cmd) {
        return std::make_unique<Prozess>(bus, platform::programPath((root / "app").string()),
                                         platform::programPath((root / "common").string()), cmd);
    }
    std::string app() { return platform::programPath((root / "app").string()); }
    std::string common() { return platform::programPath((root / "common").string()); }

    fs::path root;
    std::shared_ptr<platform::MemoryInstanceBus> bus;
};

// The starts of golden/starts.txt, each the only instance: the Settings file
// in the program directory, the command line and the user's answers, and
// what the start then set, did and asked; {app}, {common} and {root} stand
// for the directories of the test.
TEST_F(StartAblauf, StartsOhneLaufendeInstanz) {
    fs::create_directories(root / "mit blank");
    fs::create_directories(root / "eigenTemp");
    auto pfade = [&](std::string t) {
        for (const auto& [platz, pfad] : {std::pair{"{app}", app()},
                                          {"{common}", common()},
                                          {"{root}", platform::programPath(root.string())}})
            for (auto p = t.find(platz); p != std::string::npos; p = t.find(platz))
                t.replace(p, std::string(platz).size(), pfad);
        return t;
    };
    for (const auto& f : test::tabelle("entry/golden/starts.txt")) {
        SCOPED_TRACE(f.at(0) + f.at(1) + f.at(2));
        ASSERT_EQ(f.size(), 13u);
        fs::remove(root / "app" / "Tessara9.0.ini");
        if (!f[0].empty()) std::ofstream(root / "app" / "Tessara9.0.ini") << pfade(f[0]);
        bus->names.clear();
        auto p = prozess(f[1]);
        for (char c : f[2]) p->benutzer.antworten.push_back(c == 'j' ? Antwort::Ja : Antwort::Nein);
        p->benutzer.ordner = {pfade(f[3])};
        std::vector<std::string> ist{
            p->main() == MainErgebnis::Laeuft ? "laeuft" : "endet",
            p->z.strIniDatei,
            p->z.strCTemp,
            p->z.strErrorDatei + "," + p->z.strSprache + "," + p->z.strVersionInfoDatei,
            "",
            "",
            "",
            IniGetValue(p->z, p->z.strIniDatei, "AllgemeineDaten", "sCTemp")};
        for (const auto& e : p->fenster.ereignisse) ist[4] += e + ",";
        for (const auto& b : p->fenster.bloecke) ist[5] += b + ",";
        for (const auto& g : p->benutzer.gezeigt) ist[6] += g.text + ",";
        std::vector<std::string> erwartet(f.begin() + 5, f.end());
        for (auto& e : erwartet) e = pfade(e);
        EXPECT_EQ(ist, erwartet);
        EXPECT_TRUE(fs::is_directory(platform::nativePath(p->z.strCTemp)));
    }
}

TEST_F(StartAblauf, OhneBeschriftungsdateiEndetDerStart) {
    fs::remove(root / "app" / "txtBeschriftTessara9.0Frm_deutsch.txt");
    auto p = prozess("");
    EXPECT_EQ(p->main(), MainErgebnis::ProzessEnde);
    ASSERT_EQ(p->benutzer.gezeigt.size(), 1u);
    EXPECT_EQ(p->benutzer.gezeigt[0].titel + ": " + p->benutzer.gezeigt[0].text,
              "Info: Es konnte keine Beschriftungsdatei gefunden werden.\r\rTessara kann nicht "
              "gestartet werden.");
    EXPECT_TRUE(p->fenster.ereignisse.empty());
}

TEST_F(StartAblauf, ZweiteKopieReichtDieAnfrageWeiterUndHoltDasFensterNachVorne) {
    auto erste = prozess("");
    ASSERT_EQ(erste->main(), MainErgebnis::Laeuft);
    // A start that only hands its request on asks neither about a blank in
    // the temp path nor about debug mode.
    fs::create_directories(root / "mit blank");
    std::ofstream(root / "app" / "Tessara9.0.ini")
        << "[AllgemeineDaten]\r\nsCTemp=" << platform::programPath((root / "mit blank").string())
        << "\r\nstrDebug=1\r\n";
    for (const auto& f : test::tabelle("entry/golden/zweite_kopie.txt")) {
        SCOPED_TRACE(f.at(0));
        bus->sent.clear();
        auto zweite = prozess(f[0]);
        const auto fenster = zweite->desktop.addWindow("Tessara 1.9.0");
        EXPECT_EQ(zweite->main(), MainErgebnis::ProzessEnde);
        std::vector<std::string> gesendet;
        for (const auto& m : bus->sent) {
            std::string t = m.operation + "(";
            for (std::size_t i = 0; i < m.arguments.size(); ++i)
                t += (i ? "," : "") + m.arguments[i];
            gesendet.push_back(t + ")");
        }
        std::vector<std::string> erwartet;
        std::copy_if(f.begin() + 1, f.end(), std::back_inserter(erwartet),
                     [](const std::string& a) { return !a.empty(); });
        EXPECT_EQ(gesendet, erwartet);
        EXPECT_EQ(zweite->desktop.activations(), std::vector<platform::WindowHandle>{fenster});
        EXPECT_TRUE(zweite->fenster.ereignisse.empty());
        EXPECT_TRUE(zweite->benutzer.gezeigt.empty());
    }
    // The first instance takes what was handed over, in order.
    EXPECT_FALSE(erste->kanal.receive().empty());
}

TEST_F(StartAblauf, AufrufzaehlerBleibtAmEndeStehenAbbruchEndetDenProzess) {
    auto p = prozess("");
    for (int i = 0; i < 300; ++i) EXPECT_EQ(p->main(), MainErgebnis::Laeuft);
    EXPECT_EQ(p->start.aufrufe(), 255);
    EXPECT_EQ(std::count(p->fenster.ereignisse.begin(), p->fenster.ereignisse.end(), "laden"), 1);
    auto q = prozess("");
    q->fenster.abbrechen = true;
    EXPECT_EQ(q->main(), MainErgebnis::ProzessEnde);
}

TEST_F(StartAblauf, TitelDesLaufendenFensters) {
    ProgrammZustand z;
    EXPECT_EQ(fctFensterTitel(z, "Tessara $ ($)"), "Tessara 1.9.0 (1.9.0)");
    EXPECT_EQ(fctFensterTitel(z, "Tessara"), "Tessara");
}

// The entry class: each operation and what the running window then does,
// and the requests it refuses.
TEST_F(StartAblauf, clsTessaraStartFuehrtJedeAnfrageUeberMainAus) {
    fs::create_directories(root / "drive_c" / "lib" / "neu");
    auto p = prozess("");
    ASSERT_EQ(p->main(), MainErgebnis::Laeuft);
    p->fenster.handle = p->desktop.addWindow("Tessara 1.9.0");
    for (const auto& f : test::tabelle("entry/golden/tessara_start.txt")) {
        SCOPED_TRACE(f.at(0));
        const auto pfeil = std::find(f.begin(), f.end(), "=>");
        ASSERT_EQ(f.end() - pfeil, 4);
        std::vector<std::string> args(f.begin() + 1, pfeil);
        for (auto& a : args)  // "{n}" stands for a name of n characters
            if (a.size() > 2 && a.front() == '{') a = std::string(std::stoul(a.substr(1)), 'x');
        p->fenster.ereignisse.clear();
        p->fenster.bloecke.clear();
        p->benutzer.gezeigt.clear();
        p->desktop.clearRecords();
        const auto aufrufe = p->start.aufrufe();
        const bool ok = clsTessaraStart(p->z, p->start, p->fenster).anfrage({f[0], args});
        auto liste = [](const std::vector<std::string>& v) {
            std::string s;
            for (const auto& e : v) s += (s.empty() ? "" : ",") + e;
            return s;
        };
        EXPECT_EQ(liste(p->fenster.ereignisse), pfeil[1]);
        EXPECT_EQ(liste(p->fenster.bloecke), pfeil[2]);
        EXPECT_EQ(std::to_string(p->benutzer.gezeigt.size()), pfeil[3]);
        // Shown means brought to the front.
        EXPECT_EQ(p->desktop.activations(),
                  std::vector<platform::WindowHandle>(pfeil[1].find("zeigen") != std::string::npos,
                                                      p->fenster.handle));
        // Refused: Main is not entered. The class name only is kept.
        EXPECT_EQ(ok, p->start.aufrufe() > aufrufe || p->start.klasse() == f[1]);
        EXPECT_TRUE(p->z.strUebergabeBlock.empty());
        if (p->z.strUebergabeDb == "TestDb") p->z.strUebergabeDb.clear();  // stored, never used
        EXPECT_EQ(p->z.strUebergabeDb, "");
    }
}

TEST_F(StartAblauf, clsTessaraStartAnfragenWartenBisDasFensterFreiIst) {
    auto p = prozess("");
    ASSERT_EQ(p->main(), MainErgebnis::Laeuft);
    auto anfrage = [](const std::string& b) {
        return platform::InstanceMessage{"StartTessara2", {b, ""}};
    };
    p->fenster.busy = true;
    p->start.anfragenAbholen(p->z, p->fenster, {anfrage("1"), anfrage("2")});
    EXPECT_TRUE(p->fenster.bloecke.empty());
    p->fenster.busy = false;
    // One arriving while another runs waits for it.
    p->fenster.beimBlock = [&] {
        p->fenster.beimBlock = nullptr;
        p->start.anfragenAbholen(p->z, p->fenster, {anfrage("3")});
        p->fenster.bloecke.push_back("waehrend 1");
    };
    p->start.anfragenAbholen(p->z, p->fenster, {});
    EXPECT_EQ(p->fenster.bloecke, (std::vector<std::string>{"waehrend 1", "1;", "2;", "3;"}));
}

TEST(clsTessaraStart, AnfrageTextIstGueltigesUtf8OhneSteuerzeichen) {
    for (const char* s : {"", "0010017", "Gr\xc3\xb6\xc3\x9f", "\xe2\x82\xac", "\xf0\x9f\x98\x80"})
        EXPECT_TRUE(fctAnfrageTextGueltig(s)) << s;
    for (const char* s :
         {"a\rb", "\x7f", "\xc3", "\xc0\xaf", "\xe2\x82", "\xff", "\xf5\x80\x80\x80", "\x80"})
        EXPECT_FALSE(fctAnfrageTextGueltig(s)) << s;
}

}  // namespace
}  // namespace tessara
