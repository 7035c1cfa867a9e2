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

using platform::Key;

class FakeEinfuegen : public CadUmgebung {
  protected:
    void SetUp() override {
        CadUmgebung::SetUp();
        log = std::make_shared<FakeAcadLog>();
        app = std::make_shared<FakeAnwendung>(log);
        desktop.addWindow("AutoCAD 2005 - [Zeichnung1.dwg]");
        v.acadApp = app;
        v.typAcadVersionInfo = {"AutoCAD 2005", 0, "AutoCAD 2005 "};
        a.strBibliothek = "c:\\Bib\\";
        a.strLspVerzeichnis = a.strKopieVerzeichnis = "c:\\temp\\";
        a.auftraege.resize(1);
        a.auftraege[0].block.Block = "0010A";
        a.auftraege[0].block.OrdnerNr = "001";
        a.auftraege[0].block.BlkName[0] = "Ventil:DN50";
    }
    // The connection found an AutoCAD LT window: the script channel.
    void ltHost() {
        v.typAcadVersionInfo = {"AutoCAD LT", 0, "AutoCAD LT"};
        desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    }
    void zweiterMarkierterBlock() {
        a.auftraege.push_back(a.auftraege[0]);
        a.auftraege[1].block.Block = "0010B";
        a.auftraege[1].block.BlkName[0] = "Flansch";
        a.booMarkiert = true;
    }
    // The Variant window: records that it was asked, answers with Variant n.
    void varianteWaehlen(std::optional<std::size_t> n) {
        a.variantenAuswahl = [this, n](const typEinfuegeAuftrag& x) -> std::optional<typVariante> {
            extra.push_back("Variante gefragt: " + x.block.Block);
            if (!n) return std::nullopt;
            return x.varianten.at(*n);
        };
    }
    // Everything the insertion did that a user or the host could see.
    std::vector<std::string> protokoll(const EinfuegeErgebnis& r) {
        std::string erledigt;
        for (const auto& b : r.erledigteBloecke) erledigt += " " + b;
        std::vector<std::string> ist{"ergebnis: eingefuegt=" + std::to_string(r.eingefuegt) +
                                     " abgebrochen=" + std::to_string(r.booAbgebrochen) +
                                     " fehler=" + std::to_string(r.booFehler) + " markierenAus=" +
                                     std::to_string(r.booMarkierenAus) + " erledigt:" + erledigt};
        ist.insert(ist.end(), log->eintraege.begin(), log->eintraege.end());
        for (const auto& t : getippt()) ist.push_back("getippt: " + t);
        for (const auto& g : benutzer.gezeigt) ist.push_back("gefragt: " + g.text);
        std::string aktiviert = "aktiviert:";
        for (auto h : desktop.activations()) aktiviert += " " + std::to_string(h);
        ist.push_back(aktiviert + (desktop.pumps() ? ", Nachrichten verarbeitet" : ""));
        auto& var = app->dokument->variablen;
        ist.push_back("danach: attreq=" + var["attreq"] + " orthomode=" + var["orthomode"] +
                      " CMDECHO=" + var["CMDECHO"] + " filedia=" + var["filedia"]);
        for (const char* f : {"c:\\temp\\bv8LT.scr", "c:\\Plaene\\Anlage_Stueckliste.csv"}) {
            std::istringstream text(lesen(f));
            for (std::string zeile; std::getline(text, zeile);) ist.push_back(f + (": " + zeile));
        }
        if (std::filesystem::exists(datei("c:\\temp\\insert.lsp")))
            ist.push_back("insert.lsp geschrieben");
        ist.insert(ist.end(), extra.begin(), extra.end());
        return ist;
    }

    std::shared_ptr<FakeAcadLog> log;
    std::shared_ptr<FakeAnwendung> app;
    EinfuegeAnfrage a;
    typCadEinstellungen e;
    bool einstellungenLesen = false;  // the overload that reads the Settings file
    std::vector<std::string> extra;
};

// Each case changes the one pending block of SetUp or the host; what the
// insertion did, case by case, is in golden/einfuegen.txt ("== case").
TEST_F(FakeEinfuegen, Faelle) {
    auto& o = a.optionen;
    // Not references: each case starts on a fresh request and host.
    auto block = [&]() -> typBlockDaten& { return a.auftraege[0].block; };
    auto var = [&]() -> auto& { return app->dokument->variablen; };
    const std::vector<std::pair<std::string, std::function<void()>>> faelle{
        {"ohne Schalter", [] {}},
        {"Befehlsweg mit allen Folgebefehlen",
         [&] {
             o.checkBlock = o.checkXFrage = o.checkAttribute = o.checkUrsprung = 1;
             o.checkReihe = o.checkBruch = o.longEinfuegenLayer0 = 1;
         }},
        {"Ortho bleibt", [&] { e.OrthoNichtDeaktivieren = "1"; }},
        {"Escape bricht ab",
         [&] {
             o.checkAttribute = 1;
             desktop.setKeyDown(Key::Escape, true);
         }},
        // Not down at the first poll, down after the messages were processed.
        {"Escape nach DoEvents", [&] { desktop.pressAfterQueries(Key::Escape, 2); }},
        {"Fehler des Hosts", [&] { app->dokument->sendCommandWirftAb = 0; }},
        {"Einfuegepunkt 2 mit Winkel",
         [&] {
             o.checkBlock = o.checkWinkel = 1;
             a.auftraege[0].nummerEinfuegepkt = 2;
             block().Einfuegepunkte[0][0] = {"10", "-2.5", "0"};
         }},
        // Point C of View 0: in at 0,0,0, then moved by C onto the pick.
        {"Einfuegepunkt C",
         [&] {
             a.auftraege[0].nummerEinfuegepkt = 4;
             block().Einfuegepunkte[0][2] = {"40", "20", "0"};
         }},
        {"XRef ohne Layersteuerung im Skriptkanal",
         [&] {
             ltHost();
             desktop.setKeyDown(Key::LeftButton, true);
             o.longXRef = 1;
             e.sOhneLayersteuerung = "1";
         }},
        {"Ansicht 3, Punkt ohne Winkel",
         [&] {
             a.auftraege[0].ansicht = a.auftraege[0].nummerEinfuegepkt = 3;
             block().BlkName[3] = "Ventil oben";
             block().Einfuegepunkte[3][1] = {"1", "2", "3"};
         }},
        {"unbekannter Einfuegepunkt", [&] { a.auftraege[0].nummerEinfuegepkt = 9; }},
        {"ohne Verbindung", [&] { v.acadApp.reset(); }},
        {"AutoLISP-Weg aus der Einstellungsdatei",
         [&] {
             anlegen(z.strIniDatei, "[AllgemeineDaten]\r\nNewInsertRoutine=1\r\n");
             einstellungenLesen = true;
             o.checkBlock = o.checkXFrage = o.checkYFrage = o.checkAttribute = 1;
         }},
        {"markierte Bloecke", [&] { zweiterMarkierterBlock(); }},
        {"Variante unter ihrem Namen",
         [&] {
             o.checkBlock = o.longVariantenfrage = 1;
             a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}, {"Ventil/DN100", "V0010A_2"}};
             varianteWaehlen(1);
         }},
        {"Variantenfrage aus",
         [&] {
             a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}};
             varianteWaehlen(0);
         }},
        {"Variantenfrage ohne Varianten",
         [&] {
             o.longVariantenfrage = 1;
             varianteWaehlen(0);
         }},
        {"Variantenauswahl abgebrochen",
         [&] {
             o.longVariantenfrage = 1;
             a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}};
             varianteWaehlen(std::nullopt);
         }},
        {"Variante im Skriptkanal",
         [&] {
             ltHost();
             desktop.setKeyDown(Key::LeftButton, true);
             o.checkBlock = o.longVariantenfrage = 1;
             a.auftraege[0].varianten = {{"Ventil DN80", "V0010A_1"}};
             varianteWaehlen(0);
         }},
        // Escape polls: 1, 2 after the first insertion; 3 (waiting), 4, 5
        // before the second; 6, 7 after it; the 8th, while waiting again,
        // ends the series.
        {"mehrfach bis Escape",
         [&] {
             o.checkMehr = o.checkAttribute = 1;
             var()["CMDACTIVE"] = "0";
             desktop.pressAfterQueries(Key::Escape, 8);
         }},
        {"Lisp-Variablen nach den Folgebefehlen",
         [&] {
             o.lonLispVarUebergeben = o.checkReihe = 1;
             block().M[0] = "DN50";
         }},
        {"mehrfach im Skriptkanal je markiertem Block",
         [&] {
             ltHost();
             zweiterMarkierterBlock();
             o.checkMehr = 1;
             // The user's answer to each run of the script: a pick or Escape.
             desktop.onKeys = [&, n = std::size_t{0}](const auto& t) mutable {
                 const Key antworten[] = {Key::LeftButton, Key::LeftButton, Key::Escape,
                                          Key::LeftButton, Key::Escape};
                 desktop.setKeyDown(Key::LeftButton, false);
                 desktop.setKeyDown(Key::Escape, false);
                 if (t.keys.find("script\r") == std::string::npos) return;
                 ASSERT_LT(n, std::size(antworten)) << "more runs than the user answered";
                 desktop.setKeyDown(antworten[n++], true);
             };
         }},
        {"Escape ohne mehrfach im Skriptkanal",
         [&] {
             ltHost();
             desktop.setKeyDown(Key::Escape, true);
         }},
        {"ohne Layersteuerung", [&] { e.sOhneLayersteuerung = "1"; }},
        {"Linie brechen", [&] { o.checkBruch = 1; }},
        {"Linie brechen nach Frage, Nein",
         [&] {
             o.checkBruch = o.longBruchFrage = 1;
             benutzer.antworten = {Antwort::Nein};
         }},
        {"Linie brechen nach Frage, Ja", [&] { o.checkBruch = o.longBruchFrage = 1; }},
        {"Massstab der Zeichnung, Ja",
         [&] {
             o.longMassstabskontrolle = 1;
             var()["DIMSCALE"] = "50";
         }},
        {"Massstab der Zeichnung, Nein",
         [&] {
             o.longMassstabskontrolle = 1;
             var()["DIMSCALE"] = "50";
             benutzer.antworten = {Antwort::Nein};
         }},
        {"Massstab wie die Zeichnung",
         [&] {
             o.longMassstabskontrolle = 1;
             var()["DIMSCALE"] = "1.0";
         }},
        {"Stueckliste",
         [&] {
             o.longStuecklisteEinfuegen = 1;
             var()["DWGPREFIX"] = "c:\\Plaene\\";
             var()["DWGNAME"] = "Anlage.dwg";
             block().M[0] = "Ventil; DN 50";
             block().M[9] = "Stück";
         }},
        {"Blockprogramm", [&] { anlegen("c:\\Bib\\001\\Block\\0010A.lsp"); }},
    };
    std::vector<std::string> ist;
    for (const auto& [name, vorher] : faelle) {
        TearDown();
        a = {};
        e = {};
        benutzer = {};
        v = {};
        desktop = platform::MemoryDesktop{&uhr};
        einstellungenLesen = false;
        extra.clear();
        SetUp();
        a.auftraege[0].block.Layer = "Armaturen";
        vorher();
        const auto r =
            einstellungenLesen ? fctBlockEinfuegen(z, v, a) : fctBlockEinfuegen(z, v, e, a);
        ist.push_back("== " + name);
        for (const auto& zeile : protokoll(r)) ist.push_back(zeile);
    }
    goldenVergleich("einfuegen.txt", ist);
}

}  // namespace
}  // namespace tessara::test
