#include "authoring/demo_bibliothek.h"

#include <cmath>
#include <filesystem>
#include <set>
#include <stdexcept>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/demo_symbole.h"
#include "authoring/slide_library.h"
#include "platform/files.h"

namespace tessara {
namespace {

using demo::Form;

const Form& form(const std::vector<Form>& gruppe, const std::string& name) {
    for (const auto& f : gruppe)
        if (f.name == name) return f;
    throw std::logic_error("demo symbol " + name + " is not drawn");
}

// The blocks a user has marked for a common operation.
const std::set<std::string> kMarkiert = {"Kugelhahn_DN50",        "Vorschweissflansch_DN100",
                                         "Sechskantschraube_M10", "Widerstand",
                                         "Schriftfeld_A3",        "T-Stueck_DN50"};

// Lays the catalogue out Folder by Folder, Page by Page, slot by slot.
class Aufbau {
  public:
    void ordner(const std::string& nr, const std::string& name, const std::string& layer,
                const std::string& layerFarbe) {
        ordner_.push_back({nr, name, {}});
        layer_ = layer;
        layerFarbe_ = layerFarbe;
        slot_ = 0;
    }
    // A new Page: its slots begin at the next Page boundary.
    void seite(const std::string& name) {
        auto& seiten = ordner_.back().seiten;
        slot_ = static_cast<int>(seiten.size()) * kDemoSlotsProSeite;
        seiten.push_back(name);
    }
    void luecke(int n = 1) { slot_ += n; }

    void block(const Form& f, const std::string& name, const std::string& m0, const std::string& m1,
               const std::string& m2, const std::string& m3, double massstab = 1,
               const std::string& label = {}, double winkel = 0) {
        const auto& o = ordner_.back();
        DemoSymbol s{o.ordnerNr, o.ordnerName, name,        {},
                     slot_++,    m0,           m1,          m2,
                     m3,         layer_,       layerFarbe_, kMarkiert.count(name) > 0};
        for (std::size_t v = 0; v < f.ansichten.size(); ++v)
            s.ansichten.push_back(demo::fctFormDia(f, v, massstab, label, winkel));
        symbole_.push_back(std::move(s));
    }

    // A series of nominal sizes: the symbol grows with the size, the size
    // is written under it.
    void dnReihe(const Form& f, std::initializer_list<int> groessen, const std::string& werkstoff) {
        for (int dn : groessen) {
            const std::string d = "DN " + std::to_string(dn);
            const double massstab = 0.5 + 0.5 * std::log(dn / 15.0) / std::log(200.0 / 15.0);
            block(f, f.name + "_DN" + std::to_string(dn), f.benennung + " " + d, d,
                  dn <= 25 ? "PN 40" : "PN 16", werkstoff, massstab, d);
        }
    }

    // Fasteners by thread size ("M10x40"), pins and rivets by diameter
    // ("4x16"); the length follows the diameter.
    void groessenReihe(const Form& f, std::initializer_list<int> durchmesser, bool gewinde,
                       bool mitLaenge, const std::string& festigkeit, const std::string& norm) {
        for (int d : durchmesser) {
            const std::string kurz = (gewinde ? "M" : "") + std::to_string(d);
            const std::string groesse = mitLaenge ? kurz + "x" + std::to_string(4 * d) : kurz;
            const double massstab = 0.45 + d / 40.0;
            block(f, f.name + "_" + kurz, f.benennung + " " + groesse, groesse, festigkeit, norm,
                  massstab, groesse);
        }
    }

    std::vector<DemoSymbol> symbole_;
    std::vector<DemoOrdner> ordner_;

  private:
    std::string layer_, layerFarbe_;
    int slot_ = 0;
};

void armaturen(Aufbau& a) {
    const auto& g = demo::fctArmaturen();
    a.ordner("000", "Armaturen und Flansche", "ARMATUREN", "4");
    a.seite("Übersicht");
    for (const auto& f : g) a.block(f, f.name, f.benennung, "", "", "DIN EN ISO 10628");
    a.seite("Ventile");
    a.dnReihe(form(g, "Absperrventil"), {15, 20, 25, 32, 40, 50, 80, 100}, "Grauguss");
    a.dnReihe(form(g, "Kugelhahn"), {15, 20, 25, 32, 40, 50, 80, 100}, "Messing");
    a.seite("Klappen und Hähne");
    a.dnReihe(form(g, "Absperrklappe"), {50, 80, 100, 150, 200}, "Sphäroguss");
    a.luecke();
    a.dnReihe(form(g, "Rueckschlagventil"), {25, 40, 50, 80, 100}, "Stahl");
    a.luecke();
    a.dnReihe(form(g, "Schieber"), {50, 80, 100, 150}, "Grauguss");
    a.seite("Flansche");
    a.dnReihe(form(g, "Vorschweissflansch"), {50, 80, 100, 150, 200}, "P250GH");
    a.luecke();
    a.dnReihe(form(g, "Blindflansch"), {50, 80, 100}, "P250GH");
    a.luecke(2);
    a.dnReihe(form(g, "Flanschverbindung"), {50, 100}, "Stahl");
    a.seite("Pumpen");
    a.dnReihe(form(g, "Pumpe"), {25, 40, 65}, "Grauguss");
    a.luecke();
    a.dnReihe(form(g, "Magnetventil"), {15, 25}, "Messing");
    a.dnReihe(form(g, "Druckminderer"), {25, 50}, "Rotguss");
}

void verbindungselemente(Aufbau& a) {
    const auto& g = demo::fctVerbindungselemente();
    a.ordner("001", "Verbindungselemente", "VERBINDUNGSELEMENTE", "3");
    a.seite("1");
    a.groessenReihe(form(g, "Sechskantschraube"), {6, 8, 10, 12, 16, 20}, true, true, "8.8",
                    "ISO 4017");
    a.luecke(2);
    a.groessenReihe(form(g, "Sechskantmutter"), {6, 8, 10, 12, 16, 20}, true, false, "8",
                    "ISO 4032");
    a.seite("2");
    a.groessenReihe(form(g, "Unterlegscheibe"), {6, 8, 10, 12, 16, 20}, true, false, "200 HV",
                    "ISO 7089");
    a.luecke(2);
    a.groessenReihe(form(g, "Zylinderschraube"), {6, 8, 10, 12}, true, true, "12.9", "ISO 4762");
    a.groessenReihe(form(g, "Senkschraube"), {6, 8, 10, 12}, true, true, "10.9", "ISO 10642");
    a.seite("3");
    a.groessenReihe(form(g, "Gewindestift"), {4, 6, 8}, true, true, "45H", "ISO 4026");
    a.luecke();
    a.groessenReihe(form(g, "Passstift"), {4, 6, 8}, false, true, "St", "ISO 2338");
    a.luecke();
    a.groessenReihe(form(g, "Niet"), {3, 4, 5}, false, true, "St", "DIN 660");
}

void elektro(Aufbau& a) {
    const auto& g = demo::fctElektrosymbole();
    a.ordner("002", "Elektrotechnik", "ELEKTRO", "1");
    a.seite("Schaltzeichen");
    for (std::size_t i = 0; i < 16; ++i)
        a.block(g[i], g[i].name, g[i].benennung, "", "", "IEC 60617");
    a.seite("Bauteile mit Werten");
    for (std::size_t i = 16; i < g.size(); ++i)
        a.block(g[i], g[i].name, g[i].benennung, "", "", "IEC 60617");
    a.luecke();
    struct Wert {
        const char* form;
        const char* wert;
        const char* nenn;
    };
    const Wert werte[] = {{"Widerstand", "1 kOhm", "0,25 W"},  {"Widerstand", "4,7 kOhm", "0,25 W"},
                          {"Widerstand", "10 kOhm", "0,25 W"}, {"Widerstand", "100 kOhm", "0,5 W"},
                          {nullptr, nullptr, nullptr},         {"Kondensator", "10 nF", "63 V"},
                          {"Kondensator", "100 nF", "63 V"},   {"Kondensator", "470 nF", "100 V"},
                          {nullptr, nullptr, nullptr},         {"Sicherung", "6 A", "250 V"},
                          {"Sicherung", "10 A", "250 V"},      {"Sicherung", "16 A", "250 V"}};
    for (const auto& w : werte) {
        if (!w.form) {
            a.luecke();
            continue;
        }
        const Form& f = form(g, w.form);
        std::string kurz = w.wert;
        for (char& c : kurz)
            if (c == ' ' || c == ',') c = '_';
        a.block(f, f.name + "_" + kurz, f.benennung + " " + w.wert, w.wert, w.nenn, "IEC 60617", 1,
                w.wert);
    }
    a.seite("Schaltzeichen senkrecht");
    for (const auto& f : g)
        if (f.name != "Erdung" && f.name != "Steckdose")
            a.block(f, f.name + "_V", f.benennung + " senkrecht", "", "", "IEC 60617", 1, {}, 90);
}

void schriftfelder(Aufbau& a) {
    const auto& g = demo::fctSchriftfelder();
    a.ordner("003", "Schriftfelder", "SCHRIFTFELD", "7");
    a.seite("Blattformate");
    for (std::size_t i = 0; i < 5; ++i)
        a.block(g[i], g[i].name, g[i].benennung, g[i].name.substr(12), "", "ISO 7200");
    a.luecke();
    a.block(g[5], g[5].name, g[5].benennung, "", "", "ISO 7200");
    a.block(g[6], g[6].name, g[6].benennung, "", "", "DIN 6771-2");
    a.seite("Stempel und Symbole");
    for (std::size_t i = 7; i < 10; ++i) a.block(g[i], g[i].name, g[i].benennung, "", "", "");
    a.luecke();
    for (std::size_t i = 10; i < g.size(); ++i)
        a.block(g[i], g[i].name, g[i].benennung, "", "", "ISO 128");
    a.seite("Reserve");
}

void rohrleitungsteile(Aufbau& a) {
    const auto& g = demo::fctRohrformteile();
    a.ordner("004", "Rohrleitungsteile", "ROHRLEITUNG", "5");
    for (std::size_t i = 0; i < g.size(); ++i) {
        if (i % 5 == 0) a.seite(std::to_string(i / 5 + 1));
        a.dnReihe(g[i], {25, 50, 100}, i % 2 ? "1.4571" : "P235GH");
    }
}

const Aufbau& katalog() {
    static const Aufbau a = [] {
        Aufbau a;
        armaturen(a);
        verbindungselemente(a);
        elektro(a);
        schriftfelder(a);
        rohrleitungsteile(a);
        return a;
    }();
    return a;
}

}  // namespace

std::vector<DemoOrdner> fctDemoOrdner() { return katalog().ordner_; }

std::vector<DemoSymbol> fctDemoSymbole() { return katalog().symbole_; }

std::vector<DemoBlock> fctDemoBibliothekErzeugen(const std::string& bibliothekNativ,
                                                 bool bibliotheken) {
    namespace fs = std::filesystem;
    const auto codes = fctCodeTabelleErzeugen();
    const fs::path basis = platform::utf8Path(bibliothekNativ);
    auto nativ = [&](std::string relativ) {
        for (char& c : relativ)
            if (c == '\\') c = '/';
        return basis / relativ;
    };
    for (const auto& o : katalog().ordner_)
        fs::create_directories(basis / o.ordnerNr / "Block" / "Varia");
    std::vector<DemoBlock> bloecke;
    for (const auto& s : katalog().symbole_) {
        std::string blockNr = fctBlocknummer(s.ordnerNr, s.slot, codes[s.slot]);
        for (std::size_t v = 0; v < s.ansichten.size(); ++v) {
            const int ansicht = static_cast<int>(v);
            auto bytes = slide::writeSlide(s.ansichten[v]);
            if (bibliotheken) {
                auto lib = slide::writeSlideLibrary({{fctDiaCode(ansicht), bytes}});
                slide::writeFileBytes(
                    platform::utf8String(nativ(fctDiaBibliothek(s.ordnerNr, blockNr, ansicht))),
                    lib);
            } else {
                slide::writeFileBytes(
                    platform::utf8String(nativ(fctDiaDatei(s.ordnerNr, blockNr, ansicht))), bytes);
            }
            const std::string zeichnung = "AC1015 Tessara-Demo " + s.name + "\r\n";
            slide::writeFileBytes(
                platform::utf8String(nativ(fctZeichnungDatei(s.ordnerNr, blockNr, ansicht))),
                std::span(reinterpret_cast<const std::uint8_t*>(zeichnung.data()),
                          zeichnung.size()));
        }
        bloecke.push_back({s.ordnerNr, s.ordnerName, s.slot, blockNr, s.name,
                           fctSlideLibEintrag(s.ordnerNr, blockNr, bibliotheken),
                           static_cast<int>(s.ansichten.size()), s.m0, s.m1, s.m2, s.m3, s.layer,
                           s.layerFarbe, s.markiert});
    }
    return bloecke;
}

}  // namespace tessara
