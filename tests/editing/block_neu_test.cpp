// New Blocks and Views taken from the drawing through AutoCAD's automation
// interface, on a real library. AutoCAD cannot run here: the automation
// server is a fake that writes the drawing and the slide the commands ask
// for, the way the host would.
#include "editing/block_neu.h"

#include <algorithm>
#include <fstream>

#include "authoring/slide.h"
#include "cad/fake_acad.h"
#include "frisches_verzeichnis.h"
#include "organisation/bibliothek.h"
#include "platform/environment.h"
#include "platform/memory/fake_clock.h"
#include "platform/memory/memory_desktop.h"
#include "platform/platform.h"
#include "startup/pfade.h"

namespace tessara::test {
namespace {

namespace fs = std::filesystem;

class BlockNeuTest : public orgtest::Bibliothek {
  public:
    void SetUp() override {
        Bibliothek::SetUp();
        desktop.setKeyDown(platform::Key::Escape, false);
        werte = {};
        plattform.desktop = &desktop;
        plattform.clock = &uhr;
        z.plattform = &plattform;
        app = std::make_shared<FakeAnwendung>(protokoll);
        automation.laufend = app;
        v.automation = &automation;
        auto& d = *app->dokument;
        d.variablen["extmin"] = "0,0,0";
        d.variablen["extmax"] = "10,5,0";
        d.variablen["insbase"] = "2,1,0";
        d.auswahlen = {3};
        d.beiBefehl = [this](const std::string& t) { hostSchreibt(t); };
        werte.longAbfrageBlocknameBeimErzeugen = 0;
        modell->subPositionSetzen(2);
    }

    void hostSchreibt(const std::string& text) {
        for (const std::string befehl : {"._-wblock ", "._mslide "}) {
            if (text.rfind(befehl, 0) != 0) continue;
            const std::string pfad = text.substr(befehl.size(), text.find('\r') - befehl.size());
            if (befehl == "._-wblock ") {
                std::ofstream(fctNativerPfad(pfad), std::ios::binary) << "ZEICHNUNG";
            } else {
                slide::Slide s;
                s.highX = 99, s.highY = 99;
                s.addVector(7, {0, 0}, {99, 99});
                slide::writeSlideFile(s, fctNativerPfad(pfad).string());
            }
        }
    }

    BlockNeuErgebnis neu(NeuArt art) {
        BlockNeuUmgebung u{z, *modell, v, werte, {}, false, false};
        return fctNeuAusZeichnung(u, art);
    }
    // Every file below the library directory, relative, sorted.
    std::vector<std::string> dateien() const {
        std::vector<std::string> r;
        for (const auto& e : fs::recursive_directory_iterator(wurzel / "lib"))
            if (e.is_regular_file()) r.push_back(fs::relative(e.path(), wurzel / "lib").string());
        std::sort(r.begin(), r.end());
        return r;
    }
    std::string blockNr() const { return modell->seitenSlots()[2].strBlockNr; }

    platform::FakeClock uhr;
    platform::MemoryDesktop desktop{&uhr};
    platform::Platform plattform;
    std::shared_ptr<FakeAcadLog> protokoll = std::make_shared<FakeAcadLog>();
    std::shared_ptr<FakeAnwendung> app;
    FakeAutomation automation;
    CadVerbindung v;
    typSetupWerte werte;
};

// The whole exchange with the host, in order, against the golden file; the
// record with its attributes and base point, and the files in their places
// (the library's entry, the slot and the working directory are checked
// against a simulated host by tests/cad/e2e/bearbeiten_e2e_test.cpp).
TEST_F(BlockNeuTest, NeuerBlockUeberAutomation) {
    werte.longAbfrageBlocknameBeimErzeugen = 1;
    benutzer.namen = {std::string(33, 'x'), "Kugelhahn"};
    benutzer.gedrueckt = {Benutzer::kKnopfZoomGross, Benutzer::kKnopfVerdeckt};
    app->dokument->auswahlen = {0, 3};
    app->dokument->antworten = {"J"};
    ausfuehren("UPDATE tblDefMenue SET Standardwert1 = 'DN 50', Standardwert3 = 'PN 16'");

    const auto r = neu(NeuArt::Block);

    ASSERT_TRUE(r.booAngelegt);
    EXPECT_EQ(benutzer.abgelehnt, std::vector<long>{304});
    std::string log;
    for (auto e : protokoll->eintraege) {
        for (auto p = e.find(z.strCTemp); p != std::string::npos; p = e.find(z.strCTemp))
            e.replace(p, z.strCTemp.size(), "<TEMP>\\");
        for (auto p = e.find_first_of("\r\x1b"); p != std::string::npos;
             p = e.find_first_of("\r\x1b"))
            e.replace(p, 1, e[p] == '\r' ? "^M" : "^[");
        log += e + "\n";
    }
    EXPECT_EQ(log, dateiInhalt(fs::path(TESSARA_SOURCE_DIR) /
                               "tests/editing/golden/neuer_block_automation.txt"));
    const std::string nr = blockNr();
    EXPECT_EQ(zeilen("SELECT Block, SlideLib, BlkName0, M0, M1, M2, AX0, AY0, AZ0, BX0 FROM "
                     "tblBlockInfo"),
              std::vector<std::string>{nr + "|000\\" + nr + "0.slb|Kugelhahn|DN 50||PN 16|2|1|0|"});
    EXPECT_EQ(dateien(), (std::vector<std::string>{"000/" + nr + "0.slb",
                                                   "000/Block/" + nr + "0.dwg", "dbTessara.mdb"}));
    EXPECT_EQ(app->dokument->variablen["filedia"], "1");
}

// For AutoCAD LT the start fixes single slides: a new Block keeps its slide
// as it is, and its next View follows the Block, whatever the start fixed since.
TEST_F(BlockNeuTest, EinzeldiasWennDieSlideEndungSldIst) {
    z.strSlideEndung = ".sld";
    app->dokument->auswahlen = {3, 3};
    ASSERT_TRUE(neu(NeuArt::Block).booAngelegt);
    z.strSlideEndung = ".slb";
    ASSERT_TRUE(neu(NeuArt::Ansicht).booAngelegt);
    EXPECT_EQ(zeilen("SELECT SlideLib FROM tblBlockInfo"),
              std::vector<std::string>{"000\\" + blockNr() + "0.sld"});
    EXPECT_TRUE(fs::exists(wurzel / "lib" / "000" / (blockNr() + "1.sld")));
}

// Without the preview slide the Block has its drawing alone, and the host
// is asked for no slide.
TEST_F(BlockNeuTest, OhneVorschaudiaNurDieZeichnung) {
    werte.longVorschaudiaBeimErzeugen = 0;
    ASSERT_TRUE(neu(NeuArt::Block).booAngelegt);
    const std::string nr = blockNr();
    const auto d = dateien();
    EXPECT_EQ(std::count_if(d.begin(), d.end(),
                            [](const std::string& f) { return f.rfind("000/", 0) == 0; }),
              1);
    EXPECT_TRUE(fs::exists(wurzel / "lib" / "000" / "Block" / (nr + "0.dwg")));
    EXPECT_TRUE(std::none_of(protokoll->eintraege.begin(), protokoll->eintraege.end(),
                             [](const std::string& e) { return e.find("mslide") != e.npos; }));
    EXPECT_TRUE(modell->seitenSlots()[2].booBelegt);
}

// However the flow ends early, the library and the catalogue are as before
// and the working directory is gone.
TEST_F(BlockNeuTest, AbbruchLaesstBibliothekUnveraendert) {
    struct Fall {
        const char* name;
        std::function<void(BlockNeuTest&)> vorher;
        bool booAbgebrochen;
    };
    const std::vector<Fall> faelle{
        {"Escape bei der Auswahl",
         [](BlockNeuTest& t) { t.desktop.setKeyDown(platform::Key::Escape, true); }, true},
        {"kein Objekt, nicht wiederholen",
         [](BlockNeuTest& t) {
             t.app->dokument->auswahlen = {0};
             t.app->dokument->antworten = {"n"};
         },
         true},
        {"Name nicht eingegeben",
         [](BlockNeuTest& t) { t.werte.longAbfrageBlocknameBeimErzeugen = 1; }, true},
        {"Fehler bei der Auswahl", [](BlockNeuTest& t) { t.app->dokument->auswahlWirft = true; },
         false},
        {"Bibliothek kann nicht an ihren Platz",
         [](BlockNeuTest& t) {
             fs::create_directories(t.wurzel / "lib" / "000" / (t.blockNr() + "0.slb") / "x");
         },
         false},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.name);
        SetUp();
        fehlerErwartet = true;
        f.vorher(*this);
        const auto vorher = dateien();
        const auto r = neu(NeuArt::Block);
        EXPECT_FALSE(r.booAngelegt);
        EXPECT_EQ(r.booAbgebrochen, f.booAbgebrochen);
        EXPECT_EQ(dateien(), vorher);
        EXPECT_EQ(zeilen("SELECT Block FROM tblBlockInfo"), std::vector<std::string>{});
        EXPECT_FALSE(fs::exists(fctNativerPfad(fctArbeitsverzeichnis(z))));
        TearDown();
    }
}

// A new Block's own program: asked for and placed beside its drawing when
// the option is on; one left in the slot by an earlier Block goes either way.
TEST_F(BlockNeuTest, BlockprogrammNachFrage) {
    for (const int frage : {0, 1}) {
        SCOPED_TRACE(frage);
        SetUp();
        werte.longBlockProgrammfrage = frage;
        const fs::path lsp = wurzel / "tuer.lsp";
        std::ofstream(lsp) << "(defun c:tuer () (princ))";
        benutzer.dateien = {platform::programPath(lsp.string())};
        const fs::path ziel = wurzel / "lib" / "000" / "Block" / (blockNr() + ".lsp");
        fs::create_directories(ziel.parent_path());
        std::ofstream(ziel) << "alt";
        ASSERT_TRUE(neu(NeuArt::Block).booAngelegt);
        EXPECT_EQ(fs::exists(ziel), frage == 1);
        EXPECT_EQ(gezeigt().size(), static_cast<std::size_t>(frage));
        if (frage == 1) {
            EXPECT_EQ(dateiInhalt(ziel), "(defun c:tuer () (princ))");
        }
        TearDown();
    }
}

// An occupied slot takes no new Block; a free one no View.
TEST_F(BlockNeuTest, PlatzBelegtOderFrei) {
    EXPECT_FALSE(neu(NeuArt::Ansicht).booAngelegt);
    app->dokument->auswahlen = {3, 3};
    ASSERT_TRUE(neu(NeuArt::Block).booAngelegt);
    EXPECT_FALSE(neu(NeuArt::Block).booAngelegt);
    EXPECT_EQ(gezeigt().size(), 2u);
    EXPECT_NE(gezeigt()[0].find(m(407)), std::string::npos);
    EXPECT_NE(gezeigt()[1].find(m(450)), std::string::npos);
}

}  // namespace
}  // namespace tessara::test
