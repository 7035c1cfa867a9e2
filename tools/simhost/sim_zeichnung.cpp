#include "sim_zeichnung.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numbers>

namespace simhost {

namespace {

constexpr double kMitteX = (kBreite - 1) / 2.0;
constexpr double kMitteY = (kHoehe - 1) / 2.0;
constexpr double kSeitenverhaeltnis = (kBreite - 1.0) / (kHoehe - 1.0);

double abstand(Punkt p, const Strecke& s) {
    const double dx = s.b.x - s.a.x, dy = s.b.y - s.a.y;
    const double l2 = dx * dx + dy * dy;
    double t = l2 > 0 ? ((p.x - s.a.x) * dx + (p.y - s.a.y) * dy) / l2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (s.a.x + t * dx), p.y - (s.a.y + t * dy));
}

// Liang-Barsky: the part of the line inside the screen, if any.
bool clippen(double& x1, double& y1, double& x2, double& y2) {
    constexpr double e = 1e-6;
    const double dx = x2 - x1, dy = y2 - y1;
    const double p[4] = {-dx, dx, -dy, dy};
    const double q[4] = {x1 + e, kBreite - 1 + e - x1, y1 + e, kHoehe - 1 + e - y1};
    double t0 = 0, t1 = 1;
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0) {
            if (q[i] < 0) return false;
            continue;
        }
        const double t = q[i] / p[i];
        if (p[i] < 0) {
            t0 = std::max(t0, t);
        } else {
            t1 = std::min(t1, t);
        }
        if (t0 > t1) return false;
    }
    x2 = x1 + t1 * dx;
    y2 = y1 + t1 * dy;
    x1 += t0 * dx;
    y1 += t0 * dy;
    return true;
}

int pixel(double v, int hoch) { return std::clamp(static_cast<int>(std::lround(v)), 0, hoch); }

}  // namespace

Punkt Ansicht::inZeichnung(int px, int py) const {
    const double s = hoehe / (kHoehe - 1);
    return {(px - kMitteX) * s + mitte.x, (py - kMitteY) * s + mitte.y, 0};
}

Ansicht Ansicht::umfassend(Punkt a, Punkt b) {
    Ansicht v;
    v.mitte = {(a.x + b.x) / 2, (a.y + b.y) / 2, 0};
    v.hoehe = std::max(std::abs(b.y - a.y), std::abs(b.x - a.x) / kSeitenverhaeltnis);
    if (v.hoehe <= 0) v.hoehe = 1;
    return v;
}

std::string Ansicht::text() const {
    const double hb = hoehe * kSeitenverhaeltnis / 2, hh = hoehe / 2;
    return punktText({mitte.x - hb, mitte.y - hh}) + " " + punktText({mitte.x + hb, mitte.y + hh});
}

std::string zahl(double v) {
    char puffer[64];
    std::snprintf(puffer, sizeof puffer, "%.2f", v);
    std::string s = puffer;
    s.erase(s.find_last_not_of('0') + 1);
    if (s.back() == '.') s.pop_back();
    return s == "-0" ? "0" : s;
}

std::string punktText(const Punkt& p, bool mitZ) {
    return zahl(p.x) + "," + zahl(p.y) + (mitZ ? "," + zahl(p.z) : "");
}

std::optional<Punkt> punktLesen(const std::string& text) {
    Punkt p;
    if (std::sscanf(text.c_str(), " %lf , %lf , %lf", &p.x, &p.y, &p.z) < 2) return std::nullopt;
    return p;
}

Objekt donut(int id, double innen, double aussen, Punkt m) {
    Objekt o;
    o.id = id;
    o.art = "DONUT";
    constexpr int n = 16;
    for (const double d : {innen, aussen}) {
        if (d <= 0) continue;
        const double r = d / 2;
        for (int i = 0; i < n; ++i) {
            const double w1 = 2 * std::numbers::pi * i / n, w2 = 2 * std::numbers::pi * (i + 1) / n;
            o.strecken.push_back({{m.x + r * std::cos(w1), m.y + r * std::sin(w1)},
                                  {m.x + r * std::cos(w2), m.y + r * std::sin(w2)}});
        }
    }
    // A donut without a hole is a filled dot: a cross fills it on the slide.
    if (innen <= 0 && aussen > 0) {
        const double r = aussen / 2;
        o.strecken.push_back({{m.x - r, m.y}, {m.x + r, m.y}});
        o.strecken.push_back({{m.x, m.y - r}, {m.x, m.y + r}});
    }
    return o;
}

std::optional<Strecke> grenzen(const std::vector<Objekt>& objekte) {
    constexpr double g = std::numeric_limits<double>::max();
    Strecke r{{g, g}, {-g, -g}};
    bool leer = true;
    for (const auto& o : objekte) {
        for (const auto& s : o.strecken) {
            for (const Punkt& p : {s.a, s.b}) {
                r.a = {std::min(r.a.x, p.x), std::min(r.a.y, p.y)};
                r.b = {std::max(r.b.x, p.x), std::max(r.b.y, p.y)};
                leer = false;
            }
        }
    }
    if (leer) return std::nullopt;
    return r;
}

const Objekt* naechstesObjekt(const std::vector<Objekt>& objekte, Punkt p) {
    const Objekt* best = nullptr;
    double bestAbstand = std::numeric_limits<double>::max();
    for (const auto& o : objekte) {
        for (const auto& s : o.strecken) {
            const double d = abstand(p, s);
            if (d < bestAbstand) {
                bestAbstand = d;
                best = &o;
            }
        }
    }
    return best;
}

std::vector<Bildlinie> bild(const std::vector<Objekt>& objekte, const Ansicht& v) {
    const double s = (kHoehe - 1) / v.hoehe;
    std::vector<Bildlinie> r;
    for (const auto& o : objekte) {
        for (const auto& st : o.strecken) {
            double x1 = (st.a.x - v.mitte.x) * s + kMitteX, y1 = (st.a.y - v.mitte.y) * s + kMitteY;
            double x2 = (st.b.x - v.mitte.x) * s + kMitteX, y2 = (st.b.y - v.mitte.y) * s + kMitteY;
            if (!clippen(x1, y1, x2, y2)) continue;
            r.push_back({pixel(x1, kBreite - 1), pixel(y1, kHoehe - 1), pixel(x2, kBreite - 1),
                         pixel(y2, kHoehe - 1), o.farbe});
        }
    }
    return r;
}

}  // namespace simhost
