// The insert command against a fake AutoCAD (its automation server cannot
// run here) and the scripted desktop.
#include "cad/block_einfuegen.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "cad/einfuege_texte.h"
#include "cad_umgebung.h"
#include "fake_acad.h"

namespace tessara::test {
namespace {

using platform::Key;
using O = typEinfuegeOptionen;

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
        a.auftraege[0].block.Layer = "Armaturen";
    }

    // One setting of a case: "name=value", or a name alone.
    void setzen(const std::string& s) {
        static const std::map<std::string, std::uint8_t O::*> haken{
            {"checkBlock", &O::checkBlock},   {"checkXFrage", &O::checkXFrage},
            {"checkYFrage", &O::checkYFrage}, {"checkWinkel", &O::checkWinkel},
            {"checkMehr", &O::checkMehr},     {"checkAttribute", &O::checkAttribute},
            {"checkReihe", &O::checkReihe},   {"checkUrsprung", &O::checkUrsprung},
            {"checkBruch", &O::checkBruch}};
        static const std::map<std::string, long O::*> schalter{
            {"longEinfuegenLayer0", &O::longEinfuegenLayer0},
            {"longXRef", &O::longXRef},
            {"lonLispVarUebergeben", &O::lonLispVarUebergeben},
            {"longVariantenfrage", &O::longVariantenfrage},
            {"longBruchFrage", &O::longBruchFrage},
            {"longMassstabskontrolle", &O::longMassstabskontrolle},
            {"longStuecklisteEinfuegen", &O::longStuecklisteEinfuegen}};
        const auto gleich = s.find('=');
        const std::string k = s.substr(0, gleich), w = gleich == s.npos ? "" : s.substr(gleich + 1);
        auto& auftrag = a.auftraege[0];
        if (haken.count(k)) {
            a.optionen.*haken.at(k) = 1;
        } else if (schalter.count(k)) {
            a.optionen.*schalter.at(k) = 1;
        } else if (k == "LT") {  // the connection found an AutoCAD LT window: the script channel
            v.typAcadVersionInfo = {"AutoCAD LT", 0, "AutoCAD LT"};
            desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
        } else if (k == "Escape" || k == "Klick") {  // held down from the start
            desktop.setKeyDown(k == "Escape" ? Key::Escape : Key::LeftButton, true);
        } else if (k == "Escape ab Abfrage") {
            desktop.pressAfterQueries(Key::Escape, std::stoi(w));
        } else if (k == "Antworten") {  // to each run of the script: a pick (K) or Escape (E)
            desktop.onKeys = [this, w, n = std::size_t{0}](const auto& t) mutable {
                desktop.setKeyDown(Key::LeftButton, false);
                desktop.setKeyDown(Key::Escape, false);
                if (t.keys.find("script\r") == std::string::npos) return;
                ASSERT_LT(n, w.size()) << "more runs than the user answered";
                desktop.setKeyDown(w[n++] == 'K' ? Key::LeftButton : Key::Escape, true);
            };
        } else if (k == "Nein") {
            benutzer.antworten = {Antwort::Nein};
        } else if (k == "Hostfehler") {
            app->dokument->sendCommandWirftAb = 0;
        } else if (k == "ohne Verbindung") {
            v.acadApp.reset();
        } else if (k == "Ortho nicht deaktivieren") {
            e.OrthoNichtDeaktivieren = "1";
        } else if (k == "ohne Layersteuerung") {
            e.sOhneLayersteuerung = "1";
        } else if (k == "Einstellungsdatei") {  // the overload that reads the Settings file
            anlegen(z.strIniDatei, "[AllgemeineDaten]\r\n" + w + "\r\n");
            einstellungenLesen = true;
        } else if (k == "Datei") {
            anlegen(w);
        } else if (k == "Variable") {
            app->dokument->variablen[w.substr(0, w.find(':'))] = w.substr(w.find(':') + 1);
        } else if (k == "markiert") {  // a second marked block
            a.auftraege.push_back(auftrag);
            a.auftraege[1].block.Block = "0010B";
            a.auftraege[1].block.BlkName[0] = "Flansch";
            a.booMarkiert = true;
        } else if (k == "Ansicht") {
            a.auftraege[0].ansicht = std::stoi(w);
        } else if (k == "Punkt") {
            a.auftraege[0].nummerEinfuegepkt = std::stoi(w);
        } else if (k[0] == 'P') {  // "P<View>.<point>=x,y,z": a stored insertion point
            auto& p = a.auftraege[0].block.Einfuegepunkte.at(k[1] - '0').at(k[3] - '0');
            std::istringstream xyz(w);
            std::getline(std::getline(std::getline(xyz, p.x, ','), p.y, ','), p.z);
        } else if (k[0] == 'M') {
            a.auftraege[0].block.M.at(std::stoi(k.substr(1))) = w;
        } else if (k == "BlkName3") {
            a.auftraege[0].block.BlkName[3] = w;
        } else if (k == "Variante") {  // "name:file"
            a.auftraege[0].varianten.push_back(
                {w.substr(0, w.find(':')), w.substr(w.find(':') + 1)});
        } else if (k == "gewaehlt") {  // the Variant window's answer: a Variant's place, or "-"
            a.variantenAuswahl = [this,
                                  w](const typEinfuegeAuftrag& x) -> std::optional<typVariante> {
                extra.push_back("Variante gefragt: " + x.block.Block);
                if (w == "-") return std::nullopt;
                return x.varianten.at(std::stoul(w));
            };
        } else {
            ADD_FAILURE() << "unknown setting " << s;
        }
    }

    // Everything the insertion did that a user or the host could see.
    void protokoll(const EinfuegeErgebnis& r, std::vector<std::string>& ist) {
        std::string erledigt;
        for (const auto& b : r.erledigteBloecke) erledigt += " " + b;
        ist.push_back("ergebnis: eingefuegt=" + std::to_string(r.eingefuegt) + " abgebrochen=" +
                      std::to_string(r.booAbgebrochen) + " fehler=" + std::to_string(r.booFehler) +
                      " markierenAus=" + std::to_string(r.booMarkierenAus) +
                      " erledigt:" + erledigt);
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
    }

    std::shared_ptr<FakeAcadLog> log;
    std::shared_ptr<FakeAnwendung> app;
    EinfuegeAnfrage a;
    typCadEinstellungen e;
    bool einstellungenLesen = false;
    std::vector<std::string> extra;
};

// The cases of golden/einfuegen.txt: each "== name | setting | ..." line
// changes the one pending block of SetUp or the host, and the lines up to the
// next case are what the insertion then did.
TEST_F(FakeEinfuegen, Faelle) {
    std::vector<std::string> ist;
    for (const auto& zeile : goldenZeilen("einfuegen.txt")) {
        if (zeile.rfind("== ", 0) != 0) continue;
        TearDown();
        a = {};
        e = {};
        benutzer = {};
        v = {};
        desktop = platform::MemoryDesktop{&uhr};
        einstellungenLesen = false;
        extra.clear();
        SetUp();
        std::istringstream teile(zeile.substr(3));
        std::string teil;
        std::getline(teile, teil, '|');
        SCOPED_TRACE(teil);
        while (std::getline(teile, teil, '|'))
            setzen(teil.substr(1, teil.size() - 1 - (teil.back() == ' ')));
        const auto r =
            einstellungenLesen ? fctBlockEinfuegen(z, v, a) : fctBlockEinfuegen(z, v, e, a);
        ist.push_back(zeile);
        protokoll(r, ist);
    }
    goldenVergleich("einfuegen.txt", ist);
}

}  // namespace
}  // namespace tessara::test
