#include "authoring/demo_symbole.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessara::demo {
namespace {

using slide::DiaZeichner;
using P = std::vector<std::pair<double, double>>;
constexpr double kPi = std::numbers::pi;

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
        double b = a + kPi + s * 0.45;
        z.linie(x1, y1, x1 + 0.8 * std::cos(b), y1 + 0.8 * std::sin(b));
    }
}

void sechseck(DiaZeichner& z, double r, bool gefuellt = false) {
    P p;
    for (int i = 0; i < 6; ++i) p.push_back({r * std::cos(kPi / 3 * i), r * std::sin(kPi / 3 * i)});
    if (gefuellt)
        z.fuellung(p);
    else
        z.polylinie(p, true);
}

void eckventil(DiaZeichner& z) {
    z.linie(-10, 0, -3, 0);
    z.linie(0, -3, 0, -9);
    z.polylinie({{-3, -2}, {0, 0}, {-3, 2}}, true);
    z.polylinie({{-2, -3}, {0, 0}, {2, -3}}, true);
}

void schliesser(DiaZeichner& z) {
    leitungen(z, 3);
    z.linie(-3, 0, 3, 2.5);
    z.gefuellterKreis(-3, 0, 0.4);
}

void rohr(DiaZeichner& z, double x0, double x1, double r = 1) {
    z.linie(x0, r, x1, r);
    z.linie(x0, -r, x1, -r);
}

std::vector<Form> armaturen() {
    return {
        {"Absperrventil", "Absperrventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
         }}},
        {"Kugelhahn", "Kugelhahn", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.gefuellterKreis(0, 0, 1);
         }}},
        {"Rueckschlagventil", "Rückschlagventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.fuellung({{0, 0}, {3, 2}, {3, -2}});
         }}},
        {"Absperrklappe", "Absperrklappe", {[](DiaZeichner& z) {
             leitungen(z);
             z.linie(-3, -2.5, -3, 2.5);
             z.linie(3, -2.5, 3, 2.5);
             z.kreis(0, 0, 1.2);
             z.linie(-0.9, -0.9, 0.9, 0.9);
         }}},
        {"Nadelventil", "Nadelventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.linie(0, 0, 0, 4);
             z.fuellung({{-1, 4}, {1, 4}, {0, 2.5}});
         }}},
        {"Dreiwegeventil", "Dreiwegeventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.polylinie({{0, 0}, {-2, -6}, {2, -6}}, true);
             z.linie(0, -6, 0, -9);
         }}},
        {"Eckventil", "Eckventil", {[](DiaZeichner& z) { eckventil(z); }}},
        {"Sicherheitsventil", "Sicherheitsventil", {[](DiaZeichner& z) {
             eckventil(z);
             z.polylinie({{0, 0}, {1, 1}, {-1, 2}, {1, 3}, {-1, 4}, {1, 5}, {0, 6}}, false);
         }}},
        {"Membranventil", "Membranventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.bogen(0, 2, 2, 0, 180);
             z.linie(-2, 2, 2, 2);
         }}},
        {"Magnetventil", "Magnetventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.linie(0, 0, 0, 3);
             z.farbe(5);
             z.rechteck(-1.5, 3, 1.5, 5.5);
             z.linie(-1.5, 3, 1.5, 5.5);
         }}},
        {"Vorschweissflansch",
         "Vorschweißflansch",
         {[](DiaZeichner& z) {
              rohr(z, -10, -2, 1.5);
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
                  double a = kPi / 4 * i + kPi / 8;
                  z.kreis(4.5 * std::cos(a), 4.5 * std::sin(a), 0.6);
              }
          }}},
        {"Blindflansch",
         "Blindflansch",
         {[](DiaZeichner& z) {
              rohr(z, -10, -1, 1.5);
              z.farbe(8);
              z.fuellung({{-1, -6}, {1, -6}, {1, 6}, {-1, 6}});
              z.farbe(7);
              z.rechteck(-1, -6, 1, 6);
          },
          [](DiaZeichner& z) {
              z.kreis(0, 0, 6);
              for (int i = 0; i < 8; ++i) {
                  double a = kPi / 4 * i;
                  z.kreis(4.5 * std::cos(a), 4.5 * std::sin(a), 0.6);
              }
          }}},
        {"Flanschverbindung", "Flanschverbindung", {[](DiaZeichner& z) {
             rohr(z, -10, -1.5, 1.5);
             rohr(z, 1.5, 10, 1.5);
             z.rechteck(-1.5, -6, -0.2, 6);
             z.rechteck(0.2, -6, 1.5, 6);
             z.farbe(3);
             z.linie(-2.5, 4.5, 2.5, 4.5);
             z.linie(-2.5, -4.5, 2.5, -4.5);
         }}},
        {"Pumpe", "Kreiselpumpe", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.kreis(0, 0, 4);
             z.polylinie({{-2.5, 3}, {4, 0}, {-2.5, -3}}, false);
         }}},
        {"Schieber", "Absperrschieber", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.linie(0, -2, 0, 4.5);
             z.linie(-1.8, 4.5, 1.8, 4.5);
         }}},
        {"Druckminderer", "Druckminderventil", {[](DiaZeichner& z) {
             leitungen(z);
             fliege(z);
             z.farbe(1);
             pfeil(z, -3.5, -3.5, 3.5, 3.5);
             z.farbe(7);
             z.polylinie({{0, 0}, {0, 5}, {6, 5}, {6, 0}}, false);
         }}},
    };
}

std::vector<Form> verbindungselemente() {
    return {
        {"Sechskantschraube",
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
        {"Sechskantmutter",
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
        {"Unterlegscheibe",
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
        {"Zylinderschraube",
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
        {"Senkschraube", "Senkschraube", {[](DiaZeichner& z) {
             z.polylinie({{-7, -3}, {-4, -1.5}, {8, -1.5}, {8, 1.5}, {-4, 1.5}, {-7, 3}}, true);
             z.linie(-7, -3, -7, 3);
             z.linie(-7, 0, -5.5, 0);
         }}},
        {"Gewindestift", "Gewindestift", {[](DiaZeichner& z) {
             z.rechteck(-6, -1.5, 6, 1.5);
             z.linie(-6, 0, -5, 0);
             z.farbe(4);
             for (double x = -5; x < 6; x += 0.8) z.linie(x, -1.5, x + 0.4, 1.5);
         }}},
        {"Passstift", "Zylinderstift", {[](DiaZeichner& z) {
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
        {"Niet", "Halbrundniet", {[](DiaZeichner& z) {
             z.bogen(-4, 0, 2.5, 90, 270);
             z.linie(-4, 2.5, -4, -2.5);
             z.rechteck(-4, -1.2, 6, 1.2);
         }}},
    };
}

std::vector<Form> elektrosymbole() {
    return {
        {"Widerstand", "Widerstand", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.rechteck(-4, -1.5, 4, 1.5);
         }}},
        {"Kondensator", "Kondensator", {[](DiaZeichner& z) {
             leitungen(z, 0.8);
             z.linie(-0.8, -3, -0.8, 3);
             z.linie(0.8, -3, 0.8, 3);
         }}},
        {"Spule", "Spule", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.fuellung({{-4, -1.5}, {4, -1.5}, {4, 1.5}, {-4, 1.5}});
         }}},
        {"Drossel", "Drossel", {[](DiaZeichner& z) {
             leitungen(z, 4);
             for (int i = 0; i < 4; ++i) z.bogen(-3 + 2 * i, 0, 1, 0, 180);
         }}},
        {"Diode", "Diode", {[](DiaZeichner& z) {
             leitungen(z, 2);
             z.fuellung({{-2, -2}, {-2, 2}, {2, 0}});
             z.linie(2, -2, 2, 2);
         }}},
        {"Leuchtdiode", "Leuchtdiode", {[](DiaZeichner& z) {
             leitungen(z, 2);
             z.polylinie({{-2, -2}, {-2, 2}, {2, 0}}, true);
             z.linie(2, -2, 2, 2);
             z.farbe(2);
             pfeil(z, 0.5, 2.5, 2.5, 4.5);
             pfeil(z, 2, 2, 4, 4);
         }}},
        {"Erdung", "Erdung", {[](DiaZeichner& z) {
             z.linie(0, 6, 0, 0);
             z.linie(-4, 0, 4, 0);
             z.linie(-2.6, -1.2, 2.6, -1.2);
             z.linie(-1.2, -2.4, 1.2, -2.4);
         }}},
        {"Batterie", "Batterie", {[](DiaZeichner& z) {
             leitungen(z, 1);
             z.linie(-1, -4, -1, 4);
             z.fuellung({{0.6, -2}, {1.2, -2}, {1.2, 2}, {0.6, 2}});
         }}},
        {"Schliesser", "Schließer", {[](DiaZeichner& z) { schliesser(z); }}},
        {"Oeffner", "Öffner", {[](DiaZeichner& z) {
             leitungen(z, 3);
             z.linie(-3, 0, 3.4, -1.4);
             z.linie(3, 0, 3, -2);
             z.gefuellterKreis(-3, 0, 0.4);
         }}},
        {"Taster", "Taster (Schließer)", {[](DiaZeichner& z) {
             schliesser(z);
             for (double y = 1.5; y < 4.5; y += 1) z.linie(0, y, 0, y + 0.5);
             z.polylinie({{-1, 4}, {-1, 5}, {1, 5}, {1, 4}}, false);
         }}},
        {"Lampe", "Lampe", {[](DiaZeichner& z) {
             leitungen(z, 3);
             z.kreis(0, 0, 3);
             z.linie(-2.1, -2.1, 2.1, 2.1);
             z.linie(-2.1, 2.1, 2.1, -2.1);
         }}},
        {"Sicherung", "Sicherung", {[](DiaZeichner& z) {
             z.linie(-10, 0, 10, 0);
             z.rechteck(-4, -1.5, 4, 1.5);
         }}},
        {"Transformator", "Transformator", {[](DiaZeichner& z) {
             z.linie(-10, 0, -5, 0);
             z.linie(5, 0, 10, 0);
             z.kreis(-1.6, 0, 3.2);
             z.kreis(1.6, 0, 3.2);
         }}},
        {"Motor", "Motor", {[](DiaZeichner& z) {
             leitungen(z, 4);
             z.kreis(0, 0, 4);
             z.polylinie({{-1.6, -1.6}, {-1.6, 1.6}, {0, 0}, {1.6, 1.6}, {1.6, -1.6}}, false);
         }}},
        {"Relais", "Relaisspule", {[](DiaZeichner& z) {
             leitungen(z, 3);
             z.rechteck(-3, -2, 3, 2);
             z.farbe(3);
             z.textZentriert(0, -0.8, 1.6, "K1");
         }}},
        {"Steckdose", "Steckdose", {[](DiaZeichner& z) {
             z.bogen(0, 0, 4, 0, 180);
             z.linie(-4, 0, 4, 0);
             z.linie(0, 0, 0, -8);
         }}},
        {"Klemme", "Anschlussklemme", {[](DiaZeichner& z) {
             z.linie(-10, 0, -0.8, 0);
             z.kreis(0, 0, 0.8);
             z.linie(-0.56, -0.56, 0.56, 0.56);
         }}},
    };
}

std::vector<Form> rohrformteile() {
    return {
        {"Rohrbogen90", "Rohrbogen 90°", {[](DiaZeichner& z) {
             rohr(z, -10, -3);
             z.bogen(-3, -3, 2, 0, 90);
             z.bogen(-3, -3, 4, 0, 90);
             z.linie(-1, -3, -1, -9);
             z.linie(1, -3, 1, -9);
         }}},
        {"Rohrbogen45", "Rohrbogen 45°", {[](DiaZeichner& z) {
             rohr(z, -10, -2);
             for (double r : {3.0, 5.0}) {
                 z.bogen(-2, -4, r, 45, 90);
                 double x = -2 + r * std::cos(kPi / 4), y = -4 + r * std::sin(kPi / 4);
                 z.linie(x, y, x + 7, y - 7);
             }
         }}},
        {"T-Stueck", "T-Stück", {[](DiaZeichner& z) {
             z.linie(-10, 1, 10, 1);
             z.linie(-10, -1, -1, -1);
             z.linie(1, -1, 10, -1);
             z.linie(-1, -1, -1, -9);
             z.linie(1, -1, 1, -9);
         }}},
        {"Reduzierung", "Reduzierstück", {[](DiaZeichner& z) {
             rohr(z, -10, -2, 2);
             z.linie(-2, 2, 2, 1);
             z.linie(-2, -2, 2, -1);
             rohr(z, 2, 10);
         }}},
        {"Rohrkappe", "Rohrkappe", {[](DiaZeichner& z) {
             rohr(z, -10, 0, 2);
             z.bogen(0, 0, 2, -90, 90);
         }}},
        {"Muffe", "Muffe", {[](DiaZeichner& z) {
             rohr(z, -10, 10);
             z.rechteck(-2, -1.6, 2, 1.6);
         }}},
        {"Kompensator", "Axialkompensator", {[](DiaZeichner& z) {
             rohr(z, -10, -4, 1.2);
             rohr(z, 4, 10, 1.2);
             for (double s : {1.0, -1.0}) {
                 P p;
                 for (int i = 0; i <= 8; ++i) p.push_back({-4.0 + i, s * (i % 2 ? 2.2 : 1.2)});
                 z.polylinie(p, false);
             }
         }}},
        {"Rohrschelle", "Rohrschelle", {[](DiaZeichner& z) {
             z.kreis(0, 0, 2);
             z.bogen(0, 0, 2.6, 180, 360);
             z.linie(-2.6, 0, -2.6, 3);
             z.linie(2.6, 0, 2.6, 3);
             z.linie(-5, 3, 5, 3);
             z.farbe(8);
             z.linie(0, 3, 0, 8);
         }}},
        {"Schmutzfaenger", "Schmutzfänger", {[](DiaZeichner& z) {
             leitungen(z);
             z.polylinie({{-3, 0}, {0, 2.5}, {3, 0}, {0, -2.5}}, true);
             z.farbe(8);
             z.linie(-1.5, 1.25, 1.5, -1.25);
             z.linie(-1.5, -1.25, 1.5, 1.25);
         }}},
        {"Kondensatableiter", "Kondensatableiter", {[](DiaZeichner& z) {
             leitungen(z, 2.5);
             z.kreis(0, 0, 2.5);
             z.fuellung({{-1.2, -1.2}, {1.2, -1.2}, {0, 1.2}});
         }}},
        {"Schauglas", "Schauglas", {[](DiaZeichner& z) {
             leitungen(z, 3);
             z.kreis(0, 0, 3);
             z.farbe(4);
             z.kreis(0, 0, 1.6);
         }}},
        {"Entlueftung", "Entlüfter", {[](DiaZeichner& z) {
             z.linie(0, -9, 0, -2);
             z.polylinie({{-2, -2}, {2, -2}, {0, 1}}, true);
             pfeil(z, 0, 1.5, 0, 5);
         }}},
    };
}

// The title block of a drawing sheet (180 x 36, after ISO 7200), its
// insertion point at the lower right corner. A wipeout (colour 0) covers
// whatever lies under the block; the company field is hatched and its name
// is masked out of the hatch.
void schriftfeld(DiaZeichner& z, const std::string& format) {
    z.farbe(8);  // the sheet's grid, hidden under the block
    for (int x = -190; x <= 10; x += 10) z.linie(x, -10, x, 46);
    z.farbe(7);
    z.linie(-190, 0, 5, 0);
    z.linie(0, -10, 0, 46);
    z.maske(-180, 0, 0, 36);
    z.rechteck(-180, 0, 0, 36);
    for (double y : {9.0, 18.0, 27.0}) z.linie(-180, y, -110, y);
    z.linie(-165, 0, -165, 36);
    z.linie(-140, 0, -140, 36);
    z.linie(-110, 0, -110, 36);
    z.linie(-110, 18, -50, 18);
    z.linie(-50, 0, -50, 36);
    z.linie(-50, 24, 0, 24);
    z.linie(-50, 12, 0, 12);
    const double h = 2.2;
    z.text(-162, 30.5, h, "Datum");
    z.text(-137, 30.5, h, "Name");
    z.text(-178, 21.5, h, "Bearb.");
    z.text(-163, 21.5, 1.9, "12.03.24");
    z.text(-137, 21.5, h, "Müller");
    z.text(-178, 12.5, h, "Gepr.");
    z.text(-163, 12.5, 1.9, "14.03.24");
    z.text(-137, 12.5, h, "Schmidt");
    z.text(-178, 3.5, h, "Norm");
    z.text(-108, 32, 1.6, "Benennung");
    z.textZentriert(-80, 24, 3.5, "Anlagenschema");
    z.text(-108, 14, 1.6, "Zeichnungsnummer");
    z.textZentriert(-80, 6, 3, "TS-" + format + "-0001");
    z.farbe(8);                            // the company field: hatched, the name masked out
    for (double x = -62; x < 0; x += 2) {  // 45-degree lines through (x, 24), clipped
        const double t0 = std::max(0.0, -50 - x), t1 = std::min(12.0, -x);
        if (t1 > t0) z.linie(x + t0, 24 + t0, x + t1, 24 + t1);
    }
    z.maske(-44, 27.5, -6, 32.5);
    z.farbe(1);
    z.textZentriert(-25, 28, 4, "TESSARA");
    z.farbe(7);
    z.text(-48, 20.5, 1.6, "Maßstab");
    z.text(-48, 14.5, 3, "1:1");
    z.text(-22, 20.5, 1.6, "Format");
    z.text(-22, 14.5, 3, format);
    z.text(-48, 4.5, 2.2, "Blatt 1 von 1");
}

// A table row band above the title block, with a wipeout and its header.
void tabelle(DiaZeichner& z, const std::vector<std::pair<double, std::string>>& spalten,
             const std::vector<std::vector<std::string>>& zeilen) {
    const double hoehe = 7.0 * (zeilen.size() + 1);
    z.maske(-180, 0, 0, hoehe);
    z.rechteck(-180, 0, 0, hoehe);
    for (std::size_t r = 1; r <= zeilen.size(); ++r) z.linie(-180, 7.0 * r, 0, 7.0 * r);
    double x = -180;
    for (std::size_t c = 0; c < spalten.size(); ++c) {
        if (c > 0) z.linie(x, 0, x, hoehe);
        z.text(x + 1.5, hoehe - 5, 2.4, spalten[c].second);
        for (std::size_t r = 0; r < zeilen.size(); ++r)
            if (c < zeilen[r].size()) z.text(x + 1.5, hoehe - 12 - 7.0 * r, 2.2, zeilen[r][c]);
        x += spalten[c].first;
    }
}

void stempel(DiaZeichner& z, int farbe, const std::string& text) {
    const double b = DiaZeichner::textBreite(4, text) / 2 + 3;
    z.maske(-b, -4, b, 4);
    z.farbe(farbe);
    z.rechteck(-b, -4, b, 4);
    z.rechteck(-b + 0.8, -3.2, b - 0.8, 3.2);
    z.textZentriert(0, -2, 4, text);
}

std::vector<Form> schriftfelder() {
    const Fenster blatt{-190, -10, 5, 46};
    std::vector<Form> out;
    for (std::string f : {"A4", "A3", "A2", "A1", "A0"})
        out.push_back({"Schriftfeld_" + f,
                       "Schriftfeld DIN " + f,
                       {[f](DiaZeichner& z) { schriftfeld(z, f); }},
                       blatt});
    out.push_back({"Aenderungstabelle",
                   "Änderungstabelle",
                   {[](DiaZeichner& z) {
                       tabelle(z, {{15, "Index"}, {95, "Änderung"}, {40, "Datum"}, {30, "Name"}},
                               {{"B", "Maße ergänzt", "02.04.24", "Mü"},
                                {"A", "Erstausgabe", "12.03.24", "Mü"}});
                   }},
                   {-190, -15, 5, 35}});
    out.push_back({"Stueckliste",
                   "Stücklistenkopf",
                   {[](DiaZeichner& z) {
                       tabelle(z,
                               {{15, "Pos."},
                                {20, "Menge"},
                                {70, "Benennung"},
                                {40, "Sachnummer"},
                                {35, "Werkstoff"}},
                               {{"1", "2", "Kugelhahn DN 50", "100-2045", "Stahl"}});
                   }},
                   {-190, -20, 5, 30}});
    const Fenster klein{-24, -18, 24, 18};
    out.push_back({"Stempel_geprueft",
                   "Stempel Geprüft",
                   {[](DiaZeichner& z) { stempel(z, 1, "GEPRÜFT"); }},
                   klein});
    out.push_back({"Stempel_freigegeben",
                   "Stempel Freigegeben",
                   {[](DiaZeichner& z) { stempel(z, 3, "FREIGEGEBEN"); }},
                   klein});
    out.push_back({"Stempel_entwurf",
                   "Stempel Entwurf",
                   {[](DiaZeichner& z) { stempel(z, 30, "ENTWURF"); }},
                   klein});
    out.push_back({"Nordpfeil", "Nordpfeil", {[](DiaZeichner& z) {
                       z.kreis(0, 0, 6);
                       z.fuellung({{0, 7}, {2, -4}, {0, -2}});
                       z.polylinie({{0, 7}, {-2, -4}, {0, -2}}, true);
                       z.textZentriert(0, 8, 2.4, "N");
                   }}});
    out.push_back({"Positionsnummer", "Positionsnummer", {[](DiaZeichner& z) {
                       z.gefuellterKreis(-8, -6, 0.4);
                       z.linie(-8, -6, 0, 0);
                       z.farbe(0);  // the balloon masks the leader under it
                       z.gefuellterKreis(0, 0, 3);
                       z.farbe(7);
                       z.kreis(0, 0, 3);
                       z.textZentriert(0, -1.2, 2.4, "12");
                   }}});
    out.push_back({"Schnittverlauf", "Schnittkennzeichnung", {[](DiaZeichner& z) {
                       z.farbe(1);
                       z.fuellung({{-0.4, -6}, {0.4, -6}, {0.4, 6}, {-0.4, 6}});
                       z.farbe(7);
                       pfeil(z, 0, 6, 5, 6);
                       pfeil(z, 0, -6, 5, -6);
                       z.text(2, 7, 2.4, "A");
                       z.text(2, -5, 2.4, "A");
                   }}});
    out.push_back({"Hoehenkote", "Höhenkote", {[](DiaZeichner& z) {
                       z.linie(-10, 0, 10, 0);
                       z.polylinie({{0, 0}, {-1.5, 2}, {1.5, 2}}, true);
                       z.linie(0, 2, 0, 4);
                       z.linie(-8, 4, 8, 4);
                       z.maske(-6.5, 4.6, 6.5, 7.6);
                       z.textZentriert(0, 5, 2.2, "+12.50");
                   }}});
    out.push_back({"Schweissnaht", "Schweißnahtsymbol (Kehlnaht)", {[](DiaZeichner& z) {
                       pfeil(z, 4, 4, -4, -4);
                       z.linie(4, 4, 10, 4);
                       z.polylinie({{6, 4}, {6, 6.5}, {8.5, 4}}, false);
                       z.text(-9, 5, 1.8, "a5");
                   }}});
    out.push_back({"Oberflaeche", "Oberflächenzeichen", {[](DiaZeichner& z) {
                       z.polylinie({{-3, 2}, {0, -3}, {3, 2}, {7, 2}}, false);
                       z.linie(-3, 2, 3, 2);
                       z.text(-1, 3, 1.8, "Ra 3,2");
                   }}});
    return out;
}

}  // namespace

const std::vector<Form>& fctArmaturen() {
    static const auto f = armaturen();
    return f;
}
const std::vector<Form>& fctVerbindungselemente() {
    static const auto f = verbindungselemente();
    return f;
}
const std::vector<Form>& fctElektrosymbole() {
    static const auto f = elektrosymbole();
    return f;
}
const std::vector<Form>& fctRohrformteile() {
    static const auto f = rohrformteile();
    return f;
}
const std::vector<Form>& fctSchriftfelder() {
    static const auto f = schriftfelder();
    return f;
}

slide::Slide fctFormDia(const Form& form, std::size_t ansicht, double massstab,
                        std::string_view label, double winkelGrad) {
    DiaZeichner z;
    const Fenster& w = form.fenster;
    z.fenster(w.x0, w.y0, w.x1, w.y1);
    z.farbe(7);
    z.transformation(0, 0, massstab, winkelGrad);
    form.ansichten.at(ansicht)(z);
    z.transformation(0, 0);
    if (!label.empty()) {
        z.farbe(7);
        const double h = (w.y1 - w.y0) * 0.078;
        z.textZentriert((w.x0 + w.x1) / 2, w.y0 + h / 4, h, label);
    }
    z.einfuegepunkt(0, 0, (w.x1 - w.x0) * 0.0146);
    return z.dia();
}

}  // namespace tessara::demo
