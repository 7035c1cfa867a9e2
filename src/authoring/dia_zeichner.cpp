#include "authoring/dia_zeichner.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessara::slide {

DiaZeichner::DiaZeichner(int highX, int highY) {
    dia_.highX = highX;
    dia_.highY = highY;
    dia_.aspectRatio = double(highX + 1) / (highY + 1);
    dia_.hardwareFill = 2;
    fenster(0, 0, highX, highY);
}

void DiaZeichner::fenster(double x0, double y0, double x1, double y1) {
    double w = std::max(x1 - x0, 1e-9), h = std::max(y1 - y0, 1e-9);
    massstab_ = std::min(dia_.highX / w, dia_.highY / h);
    ox_ = (dia_.highX - w * massstab_) / 2;
    oy_ = (dia_.highY - h * massstab_) / 2;
    wx0_ = x0;
    wy0_ = y0;
}

Point DiaZeichner::abbilden(double x, double y) const {
    auto px = std::lround(ox_ + (x - wx0_) * massstab_);
    auto py = std::lround(oy_ + (y - wy0_) * massstab_);
    px = std::clamp<long>(px, 0, dia_.highX);
    py = std::clamp<long>(py, 0, dia_.highY);
    return {static_cast<std::int16_t>(px), static_cast<std::int16_t>(py)};
}

int DiaZeichner::segmente(double r) { return std::clamp(static_cast<int>(r * 4), 12, 48); }

void DiaZeichner::linie(double x0, double y0, double x1, double y1) {
    dia_.addVector(farbe_, abbilden(x0, y0), abbilden(x1, y1));
}

void DiaZeichner::polylinie(const std::vector<std::pair<double, double>>& p, bool geschlossen) {
    for (std::size_t i = 1; i < p.size(); ++i)
        linie(p[i - 1].first, p[i - 1].second, p[i].first, p[i].second);
    if (geschlossen && p.size() > 2)
        linie(p.back().first, p.back().second, p[0].first, p[0].second);
}

void DiaZeichner::rechteck(double x0, double y0, double x1, double y1) {
    polylinie({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}}, true);
}

void DiaZeichner::kreis(double cx, double cy, double r) { bogen(cx, cy, r, 0, 360); }

void DiaZeichner::bogen(double cx, double cy, double r, double a0, double a1) {
    if (a1 < a0) a1 += 360;
    int n = std::max(2, static_cast<int>(segmente(r * massstab_ / 10) * (a1 - a0) / 360));
    std::vector<std::pair<double, double>> p;
    for (int i = 0; i <= n; ++i) {
        double a = (a0 + (a1 - a0) * i / n) * std::numbers::pi / 180;
        p.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
    }
    polylinie(p, false);
}

void DiaZeichner::fuellung(const std::vector<std::pair<double, double>>& p) {
    if (p.size() < 3) return;
    auto ecke = [&](std::size_t i) { return abbilden(p[i].first, p[i].second); };
    if (p.size() <= 10) {
        std::vector<Point> v;
        for (std::size_t i = 0; i < p.size(); ++i) v.push_back(ecke(i));
        dia_.addFill(farbe_, v);
        return;
    }
    // A fan of pieces of up to 10 vertices, each sharing the first vertex.
    for (std::size_t start = 1; start + 1 < p.size(); start += 8) {
        std::vector<Point> v{ecke(0)};
        for (std::size_t i = start; i < p.size() && i <= start + 8; ++i) v.push_back(ecke(i));
        if (v.size() >= 3) dia_.addFill(farbe_, v);
    }
}

void DiaZeichner::gefuellterKreis(double cx, double cy, double r) {
    std::vector<std::pair<double, double>> p;
    const int n = 16;
    for (int i = 0; i < n; ++i) {
        double a = 2 * std::numbers::pi * i / n;
        p.push_back({cx + r * std::cos(a), cy + r * std::sin(a)});
    }
    fuellung(p);
}

void DiaZeichner::einfuegepunkt(double x, double y, double r) {
    std::uint8_t vorher = farbe_;
    farbe_ = 1;
    gefuellterKreis(x, y, r);
    farbe_ = vorher;
}

Slide fctLeerfeldDia() {
    // A dashed grey frame with a small cross in the middle: the slot is free.
    DiaZeichner z(399, 299);
    z.fenster(0, 0, 400, 300);
    z.farbe(8);
    auto gestrichelt = [&](double x0, double y0, double x1, double y1) {
        double len = std::hypot(x1 - x0, y1 - y0);
        int n = static_cast<int>(len / 20);
        for (int i = 0; i < n; ++i) {
            double t0 = double(i) / n, t1 = (i + 0.5) / n;
            z.linie(x0 + (x1 - x0) * t0, y0 + (y1 - y0) * t0, x0 + (x1 - x0) * t1,
                    y0 + (y1 - y0) * t1);
        }
    };
    gestrichelt(40, 30, 360, 30);
    gestrichelt(360, 30, 360, 270);
    gestrichelt(360, 270, 40, 270);
    gestrichelt(40, 270, 40, 30);
    z.linie(185, 150, 215, 150);
    z.linie(200, 135, 200, 165);
    return z.dia();
}

}  // namespace tessara::slide
