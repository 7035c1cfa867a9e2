#include "authoring/demo_bibliothek.h"

#include <cmath>
#include <filesystem>
#include <functional>
#include <numbers>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/dia_zeichner.h"
#include "authoring/slide_library.h"

namespace tessara {
namespace {

using slide::DiaZeichner;
using Zeichnung = std::function<void(DiaZeichner&)>;
using P = std::vector<std::pair<double, double>>;

// Every symbol is drawn in a window of 24 x 18 units around its insertion
// point at the origin, pipes and leads along the x axis.
slide::Slide zeichne(const Zeichnung& f) {
    DiaZeichner z;
    z.fenster(-12, -9, 12, 9);
    z.farbe(7);
    f(z);
    z.einfuegepunkt(0, 0, 0.35);
    return z.dia();
}

void leitungen(DiaZeichner& z, double innen = 3, double aussen = 10) {
    z.linie(-aussen, 0, -innen, 0);
    z.linie(innen, 0, aussen, 0);
}

void fliege(DiaZeichner& z) {  // the two triangles of a straight-through valve
    z.polylinie({{-3, -2}, {3, 2}, {3, -2}, {-3, 2}}, true);
}

void pfeil(DiaZeichner& z, double x0, double y0, double x1, double y1) {
    z.linie(x0, y0, x1, y1);
    double a = std::atan2(y1 - y0, x1 - x0);
    for (double s : {-1.0, 1.0}) {
        double b = a + std::numbers::pi + s * 0.45;
        z.linie(x1, y1, x1 + 0.8 * std::cos(b), y1 + 0.8 * std::sin(b));
    }
}

void sechseck(DiaZeichner& z, double r, bool gefuellt = false) {
    P p;
    for (int i = 0; i < 6; ++i) {
        double a = std::numbers::pi / 3 * i;
        p.push_back({r * std::cos(a), r * std::sin(a)});
    }
    if (gefuellt)
        z.fuellung(p);
    else
        z.polylinie(p, true);
}

struct Eintrag {
    const char* ordnerNr;
    const char* ordnerName;
    const char* name;
    std::vector<Zeichnung> ansichten;
};

std::vector<Eintrag> katalog() {
    const char* A = "000";
    const char* AN = "Armaturen und Flansche";
    const char* V = "001";
    const char* VN = "Verbindungselemente";
    const char* E = "002";
    const char* EN = "Elektrotechnik";
    return {
        {A, AN, "Absperrventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
         }}},
        {A, AN, "Kugelhahn", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.gefuellterKreis(0, 0, 1);
         }}},
        {A, AN, "Rueckschlagventil", {[](DiaZeichner& z) {
             leitungen(z);
             z.polylinie({{-3, -2}, {3, 2}, {3, -2}, {-3, 2}}, true);
             z.fuellung({{0, 0}, {3, 2}, {3, -2}});
         }}},
        {A, AN, "Absperrklappe", {[](DiaZeichner& z) {
             leitungen(z);
             z.linie(-3, -2.5, -3, 2.5);
             z.linie(3, -2.5, 3, 2.5);
             z.kreis(0, 0, 1.2);
             z.linie(-0.9, -0.9, 0.9, 0.9);
         }}},
        {A, AN, "Nadelventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.linie(0, 0, 0, 4);
             z.fuellung({{-1, 4}, {1, 4}, {0, 2.5}});
         }}},
        {A, AN, "Dreiwegeventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.polylinie({{0, 0}, {-2, -6}, {2, -6}}, true);
             z.linie(0, -6, 0, -9);
         }}},
        {A, AN, "Eckventil", {[](DiaZeichner& z) {
             z.linie(-10, 0, -3, 0);
             z.linie(0, -3, 0, -9);
             z.polylinie({{-3, -2}, {0, 0}, {-3, 2}}, true);
             z.polylinie({{-2, -3}, {0, 0}, {2, -3}}, true);
         }}},
        {A, AN, "Sicherheitsventil", {[](DiaZeichner& z) {
             z.linie(-10, 0, -3, 0);
             z.linie(0, -3, 0, -9);
             z.polylinie({{-3, -2}, {0, 0}, {-3, 2}}, true);
             z.polylinie({{-2, -3}, {0, 0}, {2, -3}}, true);
             z.polylinie({{0, 0}, {1, 1}, {-1, 2}, {1, 3}, {-1, 4}, {1, 5}, {0, 6}}, false);
         }}},
        {A, AN, "Membranventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.bogen(0, 2, 2, 0, 180);
             z.linie(-2, 2, 2, 2);
         }}},
        {A, AN, "Magnetventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.linie(0, 0, 0, 3);
             z.farbe(5);
             z.rechteck(-1.5, 3, 1.5, 5.5);
             z.linie(-1.5, 3, 1.5, 5.5);
         }}},
        {A,
         AN,
         "Vorschweissflansch",
         {[](DiaZeichner& z) {
              z.linie(-10, 1.5, -2, 1.5);
              z.linie(-10, -1.5, -2, -1.5);
              z.polylinie({{-2, 1.5},
                           {-1, 2.5},
                           {-1, 6},
                           {1, 6},
                           {1, -6},
                           {-1, -6},
                           {-1, -2.5},
                           {-2, -1.5}},
                          false);
              z.farbe(1);
              z.linie(0, -7, 0, 7);
          },
          [](DiaZeichner& z) {
              z.kreis(0, 0, 6);
              z.kreis(0, 0, 1.5);
              z.farbe(3);
              for (int i = 0; i < 8; ++i) {
                  double a = std::numbers::pi / 4 * i + std::numbers::pi / 8;
                  z.kreis(4.5 * std::cos(a), 4.5 * std::sin(a), 0.6);
              }
          }}},
        {A,
         AN,
         "Blindflansch",
         {[](DiaZeichner& z) {
              z.linie(-10, 1.5, -1, 1.5);
              z.linie(-10, -1.5, -1, -1.5);
              z.farbe(8);
              z.fuellung({{-1, -6}, {1, -6}, {1, 6}, {-1, 6}});
              z.farbe(7);
              z.rechteck(-1, -6, 1, 6);
          },
          [](DiaZeichner& z) {
              z.kreis(0, 0, 6);
              for (int i = 0; i < 8; ++i) {
                  double a = std::numbers::pi / 4 * i;
                  z.kreis(4.5 * std::cos(a), 4.5 * std::sin(a), 0.6);
              }
          }}},
        {A, AN, "Flanschverbindung", {[](DiaZeichner& z) {
             z.linie(-10, 1.5, -1.5, 1.5);
             z.linie(-10, -1.5, -1.5, -1.5);
             z.linie(1.5, 1.5, 10, 1.5);
             z.linie(1.5, -1.5, 10, -1.5);
             z.rechteck(-1.5, -6, -0.2, 6);
             z.rechteck(0.2, -6, 1.5, 6);
             z.farbe(3);
             z.linie(-2.5, 4.5, 2.5, 4.5);
             z.linie(-2.5, -4.5, 2.5, -4.5);
         }}},
        {A, AN, "Pumpe", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.kreis(0, 0, 4);
             z.polylinie({{-2.5, 3}, {4, 0}, {-2.5, -3}}, false);
         }}},
        {V,
         VN,
         "Sechskantschraube",
         {[](DiaZeichner& z) {
              z.rechteck(-8, -3, -5, 3);
              z.linie(-8, -1.5, -5, -1.5);
              z.linie(-8, 1.5, -5, 1.5);
              z.rechteck(-5, -1.5, 8, 1.5);
              z.farbe(4);
              for (double x = 1; x < 8; x += 0.8) z.linie(x, -1.5, x + 0.4, 1.5);
          },
          [](DiaZeichner& z) {
              sechseck(z, 5);
              z.kreis(0, 0, 4.3);
          }}},
        {V,
         VN,
         "Sechskantmutter",
         {[](DiaZeichner& z) {
              sechseck(z, 5);
              z.kreis(0, 0, 4.3);
              z.kreis(0, 0, 2);
              z.farbe(4);
              z.bogen(0, 0, 2.4, 0, 270);
          },
          [](DiaZeichner& z) {
              z.rechteck(-5, -2, 5, 2);
              z.linie(-2.5, -2, -2.5, 2);
              z.linie(2.5, -2, 2.5, 2);
          }}},
        {V,
         VN,
         "Unterlegscheibe",
         {[](DiaZeichner& z) {
              z.kreis(0, 0, 5);
              z.kreis(0, 0, 2.2);
          },
          [](DiaZeichner& z) {
              z.farbe(8);
              z.fuellung({{-5, -0.5}, {-2.2, -0.5}, {-2.2, 0.5}, {-5, 0.5}});
              z.fuellung({{2.2, -0.5}, {5, -0.5}, {5, 0.5}, {2.2, 0.5}});
          }}},
        {V,
         VN,
         "Zylinderschraube",
         {[](DiaZeichner& z) {
              z.rechteck(-8, -2.5, -4, 2.5);
              z.rechteck(-4, -1.5, 8, 1.5);
              z.linie(-8, -1, -6.5, -1);
              z.linie(-8, 1, -6.5, 1);
          },
          [](DiaZeichner& z) {
              z.kreis(0, 0, 5);
              sechseck(z, 2, true);
          }}},
        {V, VN, "Senkschraube", {[](DiaZeichner& z) {
             z.polylinie({{-7, -3}, {-4, -1.5}, {8, -1.5}, {8, 1.5}, {-4, 1.5}, {-7, 3}}, true);
             z.linie(-7, -3, -7, 3);
             z.linie(-7, 0, -5.5, 0);
         }}},
        {V, VN, "Gewindestift", {[](DiaZeichner& z) {
             z.rechteck(-6, -1.5, 6, 1.5);
             z.linie(-6, 0, -5, 0);
             z.farbe(4);
             for (double x = -5; x < 6; x += 0.8) z.linie(x, -1.5, x + 0.4, 1.5);
         }}},
        {V, VN, "Passstift", {[](DiaZeichner& z) {
             z.polylinie({{-6, -1},
                          {6, -1},
                          {6.5, -0.5},
                          {6.5, 0.5},
                          {6, 1},
                          {-6, 1},
                          {-6.5, 0.5},
                          {-6.5, -0.5}},
                         true);
         }}},
        {V, VN, "Niet", {[](DiaZeichner& z) {
             z.bogen(-4, 0, 2.5, 90, 270);
             z.linie(-4, 2.5, -4, -2.5);
             z.rechteck(-4, -1.2, 6, 1.2);
         }}},
        {E, EN, "Widerstand", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.rechteck(-4, -1.5, 4, 1.5);
         }}},
        {E, EN, "Kondensator", {[](DiaZeichner& z) {
             leitungen(z, 0.8);
             z.linie(-0.8, -3, -0.8, 3);
             z.linie(0.8, -3, 0.8, 3);
         }}},
        {E, EN, "Spule", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.fuellung({{-4, -1.5}, {4, -1.5}, {4, 1.5}, {-4, 1.5}});
         }}},
        {E, EN, "Diode", {[](DiaZeichner& z) {
             leitungen(z, 2);
             z.fuellung({{-2, -2}, {-2, 2}, {2, 0}});
             z.linie(2, -2, 2, 2);
         }}},
        {E, EN, "Leuchtdiode", {[](DiaZeichner& z) {
             leitungen(z, 2);
             z.polylinie({{-2, -2}, {-2, 2}, {2, 0}}, true);
             z.linie(2, -2, 2, 2);
             z.farbe(2);
             pfeil(z, 0.5, 2.5, 2.5, 4.5);
             pfeil(z, 2, 2, 4, 4);
         }}},
        {E, EN, "Erdung", {[](DiaZeichner& z) {
             z.linie(0, 6, 0, 0);
             z.linie(-4, 0, 4, 0);
             z.linie(-2.6, -1.2, 2.6, -1.2);
             z.linie(-1.2, -2.4, 1.2, -2.4);
         }}},
        {E, EN, "Batterie", {[](DiaZeichner& z) {
             leitungen(z, 1);
             z.linie(-1, -4, -1, 4);
             z.fuellung({{0.6, -2}, {1.2, -2}, {1.2, 2}, {0.6, 2}});
         }}},
        {E, EN, "Schliesser", {[](DiaZeichner& z) {
             leitungen(z, 3);
             z.linie(-3, 0, 3, 2.5);
             z.gefuellterKreis(-3, 0, 0.4);
         }}},
        {E, EN, "Lampe", {[](DiaZeichner& z) {
             leitungen(z, 3);
             z.kreis(0, 0, 3);
             z.linie(-2.1, -2.1, 2.1, 2.1);
             z.linie(-2.1, 2.1, 2.1, -2.1);
         }}},
        {E, EN, "Sicherung", {[](DiaZeichner& z) {
             z.linie(-10, 0, 10, 0);
             z.rechteck(-4, -1.5, 4, 1.5);
         }}},
        {E, EN, "Transformator", {[](DiaZeichner& z) {
             z.linie(-10, 0, -5, 0);
             z.linie(5, 0, 10, 0);
             z.kreis(-1.6, 0, 3.2);
             z.kreis(1.6, 0, 3.2);
         }}},
        {E, EN, "Motor", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.kreis(0, 0, 4);
             z.polylinie({{-1.6, -1.6}, {-1.6, 1.6}, {0, 0}, {1.6, 1.6}, {1.6, -1.6}}, false);
         }}},
        {E, EN, "Steckdose", {[](DiaZeichner& z) {
             z.bogen(0, 0, 4, 0, 180);
             z.linie(-4, 0, 4, 0);
             z.linie(0, 0, 0, -8);
         }}},
    };
}

}  // namespace

std::vector<DemoSymbol> fctDemoSymbole() {
    std::vector<DemoSymbol> out;
    for (const auto& e : katalog()) {
        DemoSymbol s{e.ordnerNr, e.ordnerName, e.name, {}};
        for (const auto& f : e.ansichten) s.ansichten.push_back(zeichne(f));
        out.push_back(std::move(s));
    }
    return out;
}

std::vector<DemoBlock> fctDemoBibliothekErzeugen(const std::string& bibliothekNativ,
                                                 bool bibliotheken) {
    namespace fs = std::filesystem;
    const auto codes = fctCodeTabelleErzeugen();
    std::vector<DemoBlock> bloecke;
    std::string ordnerVorher;
    int slot = 0;
    for (const auto& s : fctDemoSymbole()) {
        if (s.ordnerNr != ordnerVorher) {
            slot = 0;
            ordnerVorher = s.ordnerNr;
            fs::create_directories(fs::path(bibliothekNativ) / s.ordnerNr / "Block" / "Varia");
        }
        // Block number: Folder code, the slot divided by 42874 (always "0"
        // here), the slot's code from the table.
        std::string blockNr = s.ordnerNr + std::to_string(slot / 42874) + codes[slot];
        for (std::size_t v = 0; v < s.ansichten.size(); ++v) {
            int ansicht = static_cast<int>(v);
            auto bytes = slide::writeSlide(s.ansichten[v]);
            std::string relativ = bibliotheken ? fctDiaBibliothek(s.ordnerNr, blockNr, ansicht)
                                               : fctDiaDatei(s.ordnerNr, blockNr, ansicht);
            for (char& c : relativ)
                if (c == '\\') c = '/';
            fs::path ziel = fs::path(bibliothekNativ) / relativ;
            if (bibliotheken) {
                auto lib = slide::writeSlideLibrary({{fctDiaCode(ansicht), bytes}});
                slide::writeFileBytes(ziel.string(), lib);
            } else {
                slide::writeFileBytes(ziel.string(), bytes);
            }
        }
        bloecke.push_back({s.ordnerNr, s.ordnerName, slot, blockNr, s.name,
                           fctSlideLibEintrag(s.ordnerNr, blockNr, bibliotheken),
                           static_cast<int>(s.ansichten.size())});
        ++slot;
    }
    return bloecke;
}

}  // namespace tessara
