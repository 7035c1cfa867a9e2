#pragma once
// The simulated host's drawing: objects made of lines in drawing units, and
// the view that maps a rectangle of the drawing onto the screen. The window
// and the slides show the same picture: the lines of the view, clipped to
// the screen.
#include <optional>
#include <string>
#include <vector>

namespace simhost {

struct Punkt {
    double x = 0, y = 0, z = 0;
};

struct Strecke {
    Punkt a, b;
};

struct Objekt {
    int id = 0;
    std::string art;  // LINIE, DONUT, BLOCK
    int farbe = 7;    // AutoCAD colour index
    std::string layer = "0";
    std::vector<Strecke> strecken;
};

// A line on the screen in pixels, origin lower left.
struct Bildlinie {
    int x1, y1, x2, y2;
    int farbe;
};

// The screen the window draws and the slides are written for.
inline constexpr int kBreite = 640;
inline constexpr int kHoehe = 400;

// Which part of the drawing fills the screen: its centre and height in
// drawing units. The start view shows drawing units as pixels.
struct Ansicht {
    Punkt mitte{(kBreite - 1) / 2.0, (kHoehe - 1) / 2.0, 0};
    double hoehe = kHoehe - 1;
    bool verdeckt = false;  // HIDE ran; a flat drawing looks the same

    Punkt inZeichnung(int px, int py) const;
    // The smallest view around the two corners, keeping the screen's proportions.
    static Ansicht umfassend(Punkt a, Punkt b);
    std::string text() const;  // "x1,y1 x2,y2", the corners shown
};

// A coordinate as the host writes it: at most two decimals, no trailing zeros.
std::string zahl(double v);
std::string punktText(const Punkt& p, bool mitZ = false);
// "x,y" or "x,y,z", blanks allowed around the numbers.
std::optional<Punkt> punktLesen(const std::string& text);

Objekt donut(int id, double innen, double aussen, Punkt mitte);
// Lower left and upper right corner of all objects; none when empty.
std::optional<Strecke> grenzen(const std::vector<Objekt>& objekte);
// The object with a line closest to the point; null when none.
const Objekt* naechstesObjekt(const std::vector<Objekt>& objekte, Punkt p);
std::vector<Bildlinie> bild(const std::vector<Objekt>& objekte, const Ansicht& ansicht);

}  // namespace simhost
