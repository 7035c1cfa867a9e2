// The insert command against a fake AutoCAD (its automation server cannot
// run here) and the scripted desktop.
#include "cad/block_einfuegen.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

#include "cad/einfuege_texte.h"
#include "cad_umgebung.h"
#include "fake_acad.h"

namespace tessara::test {
namespace {

class FakeEinfuegen : public CadUmgebung {
  protected:
    void SetUp() override {
        CadUmgebung::SetUp();
        app = std::make_shared<FakeAnwendung>(log);
        hwnd = desktop.addWindow("AutoCAD 2005 - [Zeichnung1.dwg]");
        v.acadApp = app;
        v.typAcadVersionInfo = {"AutoCAD 2005", 0, "AutoCAD 2005 "};
        a.strBibliothek = "c:\\Bib\\";
        a.strLspVerzeichnis = "c:\\temp\\";
        a.strKopieVerzeichnis = "c:\\temp\\";
        typEinfuegeAuftrag auftrag;
        auftrag.block.Block = "0010A";
        auftrag.block.OrdnerNr = "001";
        auftrag.block.BlkName[0] = "Ventil:DN50";
        a.auftraege.push_back(auftrag);
    }
    // The connection found an AutoCAD LT window: the script channel.
    void ltHost() {
        v.typAcadVersionInfo = {"AutoCAD LT", 0, "AutoCAD LT"};
        desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    }
    std::vector<std::string> gesendet() const {
        std::vector<std::string> r;
        for (const auto& eintrag : log->eintraege)
            if (eintrag.rfind("SendCommand:", 0) == 0) r.push_back(eintrag.substr(12));
        return r;
    }

    std::shared_ptr<FakeAcadLog> log = std::make_shared<FakeAcadLog>();
    std::shared_ptr<FakeAnwendung> app;
    platform::WindowHandle hwnd = 0;
    EinfuegeAnfrage a;
    typCadEinstellungen e;
};

TEST_F(FakeEinfuegen, BefehlswegPunktEinsMitFolgebefehlen) {
    a.optionen.checkBlock = 1;
    a.optionen.checkXFrage = 1;
    a.optionen.checkAttribute = 1;
    a.optionen.checkUrsprung = 1;
    a.optionen.checkReihe = 1;
    a.optionen.checkBruch = 1;
    a.optionen.longEinfuegenLayer0 = 1;
    a.auftraege[0].block.Layer = "Armaturen";
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(r.eingefuegt, 1);
    EXPECT_FALSE(r.booAbgebrochen);
    EXPECT_FALSE(r.booFehler);
    EXPECT_EQ(desktop.activations(), std::vector<platform::WindowHandle>{hwnd});

    EXPECT_EQ(log->eintraege, goldenZeilen("befehlsweg_folgebefehle.txt"));
    EXPECT_EQ(getippt(), (std::vector<std::string>{"{ESC}{ESC}", "{ESC}", "{ESC}"}));
}

TEST_F(FakeEinfuegen, OrthoBleibtWennNichtDeaktivieren) {
    e.OrthoNichtDeaktivieren = "1";
    fctBlockEinfuegen(z, v, e, a);
    for (const auto& s : log->eintraege) EXPECT_NE(s, "SetVariable:orthomode=0");
    EXPECT_EQ(app->dokument->variablen["orthomode"], "1");
}

TEST_F(FakeEinfuegen, EscapeBeendetOhneFolgebefehleUndStelltZurueck) {
    a.optionen.checkAttribute = 1;
    desktop.setKeyDown(platform::Key::Escape, true);
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booAbgebrochen);
    EXPECT_EQ(r.eingefuegt, 0);
    EXPECT_EQ(gesendet().size(), 1u);
    EXPECT_EQ(log->eintraege.back(), "SetVariable:CMDECHO=1");
}

TEST_F(FakeEinfuegen, EscapeNachDoEvents) {
    // Not down at the first poll, down after the messages were processed.
    desktop.pressAfterQueries(platform::Key::Escape, 2);
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booAbgebrochen);
    EXPECT_GE(desktop.pumps(), 1);
}

TEST_F(FakeEinfuegen, FehlerDesHostsStelltVariablenZurueck) {
    app->dokument->sendCommandWirftAb = 0;
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booFehler);
    EXPECT_EQ(app->dokument->variablen["attreq"], "1");
    EXPECT_EQ(app->dokument->variablen["orthomode"], "1");
    EXPECT_EQ(app->dokument->variablen["CMDECHO"], "1");
}

TEST_F(FakeEinfuegen, EinfuegepunktZweiVerschiebtUmDenGespeichertenPunkt) {
    a.optionen.checkBlock = 1;
    a.optionen.checkWinkel = 1;
    a.auftraege[0].nummerEinfuegepkt = 2;
    a.auftraege[0].block.Einfuegepunkte[0][0] = {"10", "-2.5", "0"};
    fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(
        gesendet(),
        (std::vector<std::string>{
            "._-insert Ventil_DN50=c:\\Bib\\001\\Block\\0010A0.dwg\rj\r0,0,0\r\r\r\r",
            "._move (entlast)  10,-2.5,0\r", "._rotate (entlast)  (getvar \"lastpoint\")\r"}));
}

TEST_F(FakeEinfuegen, AnsichtDreiUndPunktOhneWinkel) {
    a.auftraege[0].ansicht = 3;
    a.auftraege[0].nummerEinfuegepkt = 3;
    a.auftraege[0].block.BlkName[3] = "Ventil oben";
    a.auftraege[0].block.Einfuegepunkte[3][1] = {"1", "2", "3"};
    fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(gesendet(), (std::vector<std::string>{
                              "._-insert c:\\Bib\\001\\Block\\0010A3.dwg\rj\r0,0,0\r\r\r\r",
                              "._move (entlast)  1,2,3\r"}));
}

TEST_F(FakeEinfuegen, AutoLispWegAusDerEinstellungsdateiTipptLadenUndAufruf) {
    // The overload without settings reads "AllgemeineDaten" itself.
    anlegen(z.strIniDatei, "[AllgemeineDaten]\r\nNewInsertRoutine=1\r\n");
    a.optionen.checkBlock = 1;
    a.optionen.checkXFrage = 1;
    a.optionen.checkYFrage = 1;
    a.optionen.checkAttribute = 1;
    const auto r = fctBlockEinfuegen(z, v, a);
    EXPECT_EQ(r.eingefuegt, 1);
    EXPECT_EQ(getippt(),
              (std::vector<std::string>{
                  "{(}load \"c:/temp/insert.lsp\"{)}\r",
                  "{(}tessara_einfuege \"Ventil_DN50=c:/Bib/001/Block/0010A0.dwg\" nil nil 0 nil 1 "
                  "nil nil{)}\r"}));
    EXPECT_TRUE(gesendet().empty()) << "no ._-insert on the AutoLISP route";
    EXPECT_FALSE(lesen("c:\\temp\\insert.lsp").empty());
}

TEST_F(FakeEinfuegen, MarkierteBloeckeNacheinander) {
    typEinfuegeAuftrag zweiter = a.auftraege[0];
    zweiter.block.Block = "0010B";
    zweiter.block.BlkName[0] = "Flansch";
    a.auftraege.push_back(zweiter);
    a.booMarkiert = true;
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(r.eingefuegt, 2);
    EXPECT_TRUE(r.booMarkierenAus);
    EXPECT_EQ(r.erledigteBloecke, (std::vector<std::string>{"0010A", "0010B"}));
    ASSERT_EQ(gesendet().size(), 2u);
    EXPECT_EQ(gesendet()[1],
              "(command \"._-insert\" \"c:/Bib/001/Block/0010B0.dwg\" pause 1 1 0)\r");
}

TEST_F(FakeEinfuegen, VarianteWirdUnterIhremNamenEingefuegt) {
    a.optionen.checkBlock = 1;
    a.optionen.longVariantenfrage = 1;
    a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}, {"Ventil/DN100", "V0010A_2"}};
    std::vector<std::string> gefragt;
    a.variantenAuswahl = [&](const typEinfuegeAuftrag& auftrag) -> std::optional<typVariante> {
        gefragt.push_back(auftrag.block.Block);
        return auftrag.varianten[1];
    };
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(r.eingefuegt, 1);
    EXPECT_EQ(gefragt, std::vector<std::string>{"0010A"});
    ASSERT_FALSE(gesendet().empty());
    EXPECT_EQ(gesendet()[0],
              "(command \"._-insert\" \"Ventil_DN100=c:/Bib/001/Block/Varia/V0010A_20.dwg\" pause "
              "1 1 0)\r");
}

TEST_F(FakeEinfuegen, VariantenfrageAusOderOhneVariantenNimmtDenBlock) {
    a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}};
    int gefragt = 0;
    a.variantenAuswahl = [&](const typEinfuegeAuftrag&) -> std::optional<typVariante> {
        ++gefragt;
        return typVariante{"Ventil DN80", "V0010A_1"};
    };
    for (long frage : {0L, 1L}) {
        a.optionen.longVariantenfrage = frage;
        if (frage == 1) a.auftraege[0].varianten.clear();
        log->eintraege.clear();
        fctBlockEinfuegen(z, v, e, a);
        ASSERT_FALSE(gesendet().empty());
        EXPECT_EQ(gesendet()[0],
                  "(command \"._-insert\" \"c:/Bib/001/Block/0010A0.dwg\" pause 1 1 0)\r");
    }
    EXPECT_EQ(gefragt, 0);
}

TEST_F(FakeEinfuegen, OhneVerbindungOderMitUnbekanntemPunktFehlerStattAbsturz) {
    a.auftraege[0].nummerEinfuegepkt = 9;
    EXPECT_TRUE(fctBlockEinfuegen(z, v, e, a).booFehler);
    EXPECT_TRUE(gesendet().empty());
    v.acadApp.reset();
    a.auftraege[0].nummerEinfuegepkt = 1;
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booFehler);
    EXPECT_EQ(r.eingefuegt, 0);
}

TEST_F(FakeEinfuegen, VariantenauswahlAbgebrochenFuegtNichtsEin) {
    a.optionen.longVariantenfrage = 1;
    a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}};
    a.variantenAuswahl = [](const typEinfuegeAuftrag&) -> std::optional<typVariante> {
        return std::nullopt;
    };
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booAbgebrochen);
    EXPECT_EQ(r.eingefuegt, 0);
    EXPECT_TRUE(log->eintraege.empty());
}

TEST_F(FakeEinfuegen, VarianteImSkriptkanal) {
    ltHost();
    desktop.setKeyDown(platform::Key::LeftButton, true);
    a.optionen.checkBlock = 1;
    a.optionen.longVariantenfrage = 1;
    a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}};
    a.variantenAuswahl = [](const typEinfuegeAuftrag& au) -> std::optional<typVariante> {
        return au.varianten[0];
    };
    EXPECT_EQ(fctBlockEinfuegen(z, v, e, a).eingefuegt, 1);
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"),
              "._-insert\r\n\"Ventil DN800=c:\\Bib\\001\\Block\\Varia\\V0010A_10.dwg\"\r\n"
              "'setvar\r\nfiledia\r\n1\r\n");
}

TEST_F(FakeEinfuegen, MehrfachEinfuegenBisEscape) {
    a.optionen.checkMehr = 1;
    a.optionen.checkAttribute = 1;
    app->dokument->variablen["CMDACTIVE"] = "0";
    // Escape polls: 1, 2 after the first insertion; 3 (waiting), 4, 5 before
    // the second; 6, 7 after it; the 8th, while waiting again, ends the series.
    desktop.pressAfterQueries(platform::Key::Escape, 8);
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(r.eingefuegt, 2);
    EXPECT_FALSE(r.booAbgebrochen);
    EXPECT_EQ(r.erledigteBloecke, std::vector<std::string>{"0010A"});
    EXPECT_EQ(log->eintraege, goldenZeilen("mehrfach_bis_escape.txt"));
}

TEST_F(FakeEinfuegen, LispVariablenNachDenFolgebefehlen) {
    a.optionen.lonLispVarUebergeben = 1;
    a.optionen.checkReihe = 1;
    a.auftraege[0].block.M[0] = "DN50";
    fctBlockEinfuegen(z, v, e, a);
    const auto g = gesendet();
    ASSERT_EQ(g.size(), 16u);
    EXPECT_EQ(g[1], "._array (entlast)\r");
    EXPECT_EQ(g[2], "(setq tessara_Block \"0010A\")\r");
    EXPECT_EQ(g[3], "(setq tessara_M0 \"DN50\")\r");
    EXPECT_EQ(g[15], "(setq tessara_LYLINE \"\")\r");
    a.optionen.lonLispVarUebergeben = 0;
    log->eintraege.clear();
    fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(gesendet().size(), 2u);
}

TEST_F(FakeEinfuegen, MehrfachImSkriptkanalJeMarkiertemBlockBisEscape) {
    ltHost();
    typEinfuegeAuftrag zweiter = a.auftraege[0];
    zweiter.block.Block = "0010B";
    a.auftraege.push_back(zweiter);
    a.booMarkiert = true;
    a.optionen.checkMehr = 1;
    // The user's answer to each run of the script: a pick or Escape.
    const std::vector<platform::Key> antworten = {platform::Key::LeftButton,
                                                  platform::Key::LeftButton, platform::Key::Escape,
                                                  platform::Key::LeftButton, platform::Key::Escape};
    std::size_t laeufe = 0;
    desktop.onKeys = [&](const platform::MemoryDesktop::TypedKeys& t) {
        desktop.setKeyDown(platform::Key::LeftButton, false);
        desktop.setKeyDown(platform::Key::Escape, false);
        if (t.keys.find("script\r") == std::string::npos) return;
        ASSERT_LT(laeufe, antworten.size()) << "more runs than the user answered";
        desktop.setKeyDown(antworten[laeufe++], true);
    };
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(laeufe, antworten.size());
    EXPECT_EQ(r.eingefuegt, 3);
    EXPECT_FALSE(r.booAbgebrochen);
    EXPECT_EQ(r.erledigteBloecke, (std::vector<std::string>{"0010A", "0010B"}));
    EXPECT_TRUE(r.booMarkierenAus);
}

TEST_F(FakeEinfuegen, EscapeOhneMehrfachBrichtImSkriptkanalAb) {
    ltHost();
    desktop.setKeyDown(platform::Key::Escape, true);
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booAbgebrochen);
    EXPECT_EQ(r.eingefuegt, 0);
    EXPECT_TRUE(r.erledigteBloecke.empty());
}

// Each insertion option against the same block: what the host is sent, what
// the user is asked and what the parts list holds, case by case in
// golden/schalter.txt ("== case" headers).
TEST_F(FakeEinfuegen, SchalterDerEinfuegung) {
    const std::vector<std::pair<std::string, std::function<void()>>> faelle{
        {"ohne Schalter", [] {}},
        {"ohne Layersteuerung", [this] { e.sOhneLayersteuerung = "1"; }},
        {"Linie brechen", [this] { a.optionen.checkBruch = 1; }},
        {"Linie brechen nach Frage, Nein",
         [this] {
             a.optionen.checkBruch = a.optionen.longBruchFrage = 1;
             benutzer.antworten = {Antwort::Nein};
         }},
        {"Linie brechen nach Frage, Ja",
         [this] { a.optionen.checkBruch = a.optionen.longBruchFrage = 1; }},
        {"Massstab der Zeichnung, Ja",
         [this] {
             a.optionen.longMassstabskontrolle = 1;
             app->dokument->variablen["DIMSCALE"] = "50";
         }},
        {"Massstab der Zeichnung, Nein",
         [this] {
             a.optionen.longMassstabskontrolle = 1;
             app->dokument->variablen["DIMSCALE"] = "50";
             benutzer.antworten = {Antwort::Nein};
         }},
        {"Massstab wie die Zeichnung",
         [this] {
             a.optionen.longMassstabskontrolle = 1;
             app->dokument->variablen["DIMSCALE"] = "1.0";
         }},
        {"Stueckliste",
         [this] {
             a.optionen.longStuecklisteEinfuegen = 1;
             app->dokument->variablen["DWGPREFIX"] = "c:\\Plaene\\";
             app->dokument->variablen["DWGNAME"] = "Anlage.dwg";
             a.auftraege[0].block.M[0] = "Ventil; DN 50";
             a.auftraege[0].block.M[9] = "Stück";
         }},
        {"Blockprogramm", [this] { anlegen("c:\\Bib\\001\\Block\\0010A.lsp"); }},
    };
    std::vector<std::string> ist;
    for (const auto& [name, vorher] : faelle) {
        TearDown();
        log->eintraege.clear();
        a = {};
        e = {};
        benutzer = {};
        SetUp();
        a.auftraege[0].block.Layer = "Armaturen";
        vorher();
        fctBlockEinfuegen(z, v, e, a);
        ist.push_back("== " + name);
        // The host variables kept and given back around every insertion are
        // another test's matter.
        for (const auto& s : log->eintraege)
            if (s.rfind("SetVariable:", 0) != 0 && s.find(":filedia") == std::string::npos &&
                s.find(":attreq") == std::string::npos &&
                s.find(":orthomode") == std::string::npos &&
                s.find(":CMDECHO") == std::string::npos)
                ist.push_back(s);
        for (const auto& g : benutzer.gezeigt) ist.push_back("gefragt: " + g.text);
        std::istringstream liste(lesen("c:\\Plaene\\Anlage_Stueckliste.csv"));
        for (std::string zeile; std::getline(liste, zeile);) ist.push_back("Stückliste: " + zeile);
    }
    EXPECT_EQ(ist, goldenZeilen("schalter.txt"));
}

}  // namespace
}  // namespace tessara::test
