// The insert command against a fake AutoCAD (its automation server cannot
// run here) and the scripted desktop.
#include "cad/block_einfuegen.h"

#include <gtest/gtest.h>

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
    std::vector<std::string> gesendet() const {
        std::vector<std::string> r;
        for (const auto& eintrag : log->eintraege)
            if (eintrag.rfind("SendCommand:", 0) == 0) r.push_back(eintrag.substr(12));
        return r;
    }
    std::vector<std::string> getippt() const {
        std::vector<std::string> r;
        for (const auto& t : desktop.typed()) r.push_back(t.keys);
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

    const std::vector<std::string> erwartet = {
        "GetVariable:filedia",
        "GetVariable:attreq",
        "GetVariable:orthomode",
        "GetVariable:CMDECHO",
        "SetVariable:attreq=0",
        "SetVariable:orthomode=0",
        "SetVariable:CMDECHO=0",
        "SendCommand:(command \"._-insert\" \"Ventil_DN50=c:/Bib/001/Block/0010A0.dwg\" pause "
        "pause 1 0)\r",
        "SendCommand:(load \"c:/Programme/Tessara/break\")\r",
        "SendCommand:._change (entlast)  _prop _la Armaturen\r\r",
        "SendCommand:._change (entlast)  _prop _la 0\r\r",
        "SendCommand:._attedit (entlast)",
        "SendCommand:._explode (entlast)\r",
        "SendCommand:._array (entlast)\r",
        "SetVariable:attreq=1",
        "SetVariable:orthomode=1",
        "SetVariable:CMDECHO=1",
    };
    EXPECT_EQ(log->eintraege, erwartet);
    EXPECT_EQ(getippt(), (std::vector<std::string>{"{ESC}{ESC}", "{ESC}", "{ESC}"}));
}

TEST_F(FakeEinfuegen, OrthoBleibtWennNichtDeaktivieren) {
    e.OrthoNichtDeaktivieren = "1";
    fctBlockEinfuegen(z, v, e, a);
    for (const auto& s : log->eintraege) EXPECT_NE(s, "SetVariable:orthomode=0");
    EXPECT_EQ(app->dokument->variablen["orthomode"], "1");
}

TEST_F(FakeEinfuegen, OhneBibliothekNurDerPfad) {
    a.optionen.checkBlock = 0;
    fctBlockEinfuegen(z, v, e, a);
    ASSERT_FALSE(gesendet().empty());
    EXPECT_EQ(gesendet()[0],
              "(command \"._-insert\" \"c:/Bib/001/Block/0010A0.dwg\" pause 1 1 0)\r");
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

TEST_F(FakeEinfuegen, AutoLispWegTipptLadenUndAufruf) {
    e.NewInsertRoutine = "1";
    a.optionen.checkBlock = 1;
    a.optionen.checkXFrage = 1;
    a.optionen.checkYFrage = 1;
    a.optionen.checkAttribute = 1;
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(r.eingefuegt, 1);
    EXPECT_EQ(getippt(),
              (std::vector<std::string>{
                  "{(}load \"c:/temp/insert.lsp\"{)}\r",
                  "{(}tessara_einfuege \"Ventil_DN50=c:/Bib/001/Block/0010A0.dwg\" nil nil 0 nil 1 "
                  "nil nil{)}\r"}));
    EXPECT_TRUE(gesendet().empty()) << "no ._-insert on the AutoLISP route";
    std::string datei;
    for (const auto& zeile : fctInsertLspZeilen()) datei += zeile + "\r\n";
    EXPECT_EQ(lesen("c:\\temp\\insert.lsp"), datei);
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

TEST_F(FakeEinfuegen, LtGehtDenSkriptkanal) {
    v.typAcadVersionInfo = {"AutoCAD LT", 0, "AutoCAD LT"};
    desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    desktop.setKeyDown(platform::Key::LeftButton, true);
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_EQ(r.eingefuegt, 1);
    EXPECT_TRUE(log->eintraege.empty()) << "no automation calls for LT";
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"),
              "._-insert\r\n\"c:\\Bib\\001\\Block\\0010A0.dwg\"\r\n'setvar\r\nfiledia\r\n1\r\n");
}

TEST_F(FakeEinfuegen, OhneVerbindungFehlerStattAbsturz) {
    v.acadApp.reset();
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booFehler);
    EXPECT_EQ(r.eingefuegt, 0);
}

TEST_F(FakeEinfuegen, UnbekannterEinfuegepunktFehler) {
    a.auftraege[0].nummerEinfuegepkt = 9;
    const auto r = fctBlockEinfuegen(z, v, e, a);
    EXPECT_TRUE(r.booFehler);
    EXPECT_TRUE(gesendet().empty());
}

}  // namespace
}  // namespace tessara::test
