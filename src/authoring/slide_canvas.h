#pragma once
// Draws slides from world coordinates: lines, circles, arcs and solid
// fills, mapped into a slide's drawing area with the aspect ratio kept. Used
// for the pictures the program ships (the empty slot, the demo library).
#include <string_view>
#include <utility>
#include <vector>

#include "authoring/slide.h"

namespace tessara::slide {

class DiaZeichner {
  public:
    // The drawing area of a 4:3 screen, as a typical host writes it.
    explicit DiaZeichner(int highX = 1023, int highY = 767);

    // The world window shown; it is fitted into the area and centred.
    void fenster(double x0, double y0, double x1, double y1);
    void farbe(int aci) { farbe_ = static_cast<std::uint8_t>(aci); }

    void linie(double x0, double y0, double x1, double y1);
    void polylinie(const std::vector<std::pair<double, double>>& punkte, bool geschlossen);
    void rechteck(double x0, double y0, double x1, double y1);
    void kreis(double cx, double cy, double r);
    // Arc from angle a0 to a1 in degrees, counter-clockwise.
    void bogen(double cx, double cy, double r, double a0, double a1);
    // A filled convex polygon; more than 10 vertices are split into a fan.
    void fuellung(const std::vector<std::pair<double, double>>& punkte);
    void gefuellterKreis(double cx, double cy, double r);
    // The red point that marks the insertion point on every block slide.
    void einfuegepunkt(double x, double y, double r);

    // Text in a plain stroke font: capitals, digits and a few signs; small
    // letters are drawn as capitals, umlauts with their dots. (x, y) is the
    // lower left corner of the first letter, hoehe the height of a capital;
    // a letter takes the width hoehe including its space. UTF-8.
    void text(double x, double y, double hoehe, std::string_view text);
    void textZentriert(double x, double y, double hoehe, std::string_view text);
    static double textBreite(double hoehe, std::string_view text);
    // The mask the host writes behind masked text and title blocks: a fill
    // of colour 0, the background. It hides what was drawn under it; what is
    // drawn after it stays visible. The current colour is kept.
    void maske(double x0, double y0, double x1, double y1);

    // Places everything drawn from now on: turned by winkelGrad about the
    // world origin, scaled, then moved by (dx, dy). transformation(0, 0)
    // draws as given again.
    void transformation(double dx, double dy, double massstab = 1, double winkelGrad = 0);

    const Slide& dia() const { return dia_; }

  private:
    Point abbilden(double x, double y) const;
    static int segmente(double r);

    Slide dia_;
    std::uint8_t farbe_ = 7;
    double massstab_ = 1, ox_ = 0, oy_ = 0, wx0_ = 0, wy0_ = 0;
    // World transformation: x' = ta_ x + tb_ y + tx_, y' = tc_ x + td_ y + ty_.
    double ta_ = 1, tb_ = 0, tc_ = 0, td_ = 1, tx_ = 0, ty_ = 0;
};

// The empty-slot picture "frei2.sld".
Slide fctLeerfeldDia();

}  // namespace tessara::slide
