#pragma once
// The drawings of the demo library: standard symbols of fittings, fasteners,
// electrical parts and pipe fittings, and title blocks, each a set of Views.
// Symbols are drawn around their insertion point at the origin in a window
// of 24 x 18 units, pipes and leads along the x axis; a title block has its
// insertion point at its lower right corner, where it meets the sheet frame.
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "authoring/slide.h"
#include "authoring/slide_canvas.h"

namespace tessara::demo {

using Zeichnung = std::function<void(slide::DiaZeichner&)>;

// The world window a slide shows (x0, y0, x1, y1).
struct Fenster {
    double x0 = -12, y0 = -9, x1 = 12, y1 = 9;
};

struct Form {
    std::string name;                  // drawing name, ASCII ("Rueckschlagventil")
    std::string benennung;             // what a draughtsman calls it ("Rückschlagventil")
    std::vector<Zeichnung> ansichten;  // View 0 first
    Fenster fenster = {};
};

// The symbol forms by group, in catalogue order.
const std::vector<Form>& fctArmaturen();
const std::vector<Form>& fctVerbindungselemente();
const std::vector<Form>& fctElektrosymbole();
const std::vector<Form>& fctRohrformteile();
// Title blocks, stamps and annotation symbols, with masked text.
const std::vector<Form>& fctSchriftfelder();

// View ansicht of a form as a slide: turned by winkelGrad and scaled about
// the insertion point, the label (if any) written along the bottom of the
// window, the red insertion point on top.
slide::Slide fctFormDia(const Form& form, std::size_t ansicht = 0, double massstab = 1,
                        std::string_view label = {}, double winkelGrad = 0);

}  // namespace tessara::demo
