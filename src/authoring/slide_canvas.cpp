#include "authoring/slide_canvas.h"

#include <algorithm>
#include <cctype>
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

Point DiaZeichner::abbilden(double wx, double wy) const {
    const double x = ta_ * wx + tb_ * wy + tx_, y = tc_ * wx + td_ * wy + ty_;
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
    const double skala = std::sqrt(std::abs(ta_ * td_ - tb_ * tc_));
    int n = std::max(2, static_cast<int>(segmente(r * skala * massstab_ / 10) * (a1 - a0) / 360));
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

void DiaZeichner::transformation(double dx, double dy, double massstab, double winkelGrad) {
    const double a = winkelGrad * std::numbers::pi / 180;
    ta_ = massstab * std::cos(a);
    tb_ = -massstab * std::sin(a);
    tc_ = massstab * std::sin(a);
    td_ = massstab * std::cos(a);
    tx_ = dx;
    ty_ = dy;
}

void DiaZeichner::maske(double x0, double y0, double x1, double y1) {
    std::uint8_t vorher = farbe_;
    farbe_ = 0;
    fuellung({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
    farbe_ = vorher;
}

namespace {

// The stroke font: a letter is drawn on a grid 4 wide and 6 high (8 with
// umlaut dots); each stroke is a run of grid points written as digit pairs
// "xy", strokes are separated by '|'.
struct StrichZeichen {
    char zeichen;
    const char* striche;
};
constexpr StrichZeichen kStrichschrift[] = {
    {'A', "002640|1333"},
    {'B', "00063645443303|3342413000"},
    {'C', "4536160501103041"},
    {'D', "00062644422000"},
    {'E', "46060040|0333"},
    {'F', "460600|0333"},
    {'G', "45361605011030414323"},
    {'H', "0006|4640|0343"},
    {'I', "1636|2620|1030"},
    {'J', "4641301001"},
    {'K', "0006|4602|1340"},
    {'L', "060040"},
    {'M', "0006234640"},
    {'N', "00064046"},
    {'O', "100105163645413010"},
    {'P', "00063645443303"},
    {'Q', "100105163645413010|2240"},
    {'R', "00063645443303|2340"},
    {'S', "453616050413334241301001"},
    {'T', "0646|2620"},
    {'U', "060110304146"},
    {'V', "062046"},
    {'W', "0610233046"},
    {'X', "0046|0640"},
    {'Y', "0623|4623|2320"},
    {'Z', "06460040"},
    {'0', "100105163645413010|4501"},
    {'1', "152620|1030"},
    {'2', "05163645440040"},
    {'3', "0516364544334241301001|1333"},
    {'4', "30360242"},
    {'5', "4606033342413000"},
    {'6', "4536160501103041423303"},
    {'7', "064610"},
    {'8', "13040516364544331302011030414233"},
    {'9', "0110304145361605041343"},
    {'-', "1333"},
    {'.', "2021"},
    {',', "2110"},
    {'/', "0046"},
    {':', "2122|2425"},
    {'(', "36252130"},
    {')', "16252110"},
    {'=', "0242|0444"},
    {'+', "1333|2224"},
};

const char* striche(char c) {
    for (const auto& z : kStrichschrift)
        if (z.zeichen == c) return z.striche;
    return nullptr;
}

// The letters of a UTF-8 text as the font draws them: capitals, umlauts as
// the capital with a flag for the dots, "ß" as "SS".
std::vector<std::pair<char, bool>> buchstaben(std::string_view text) {
    std::vector<std::pair<char, bool>> out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto c = static_cast<unsigned char>(text[i]);
        if (c == 0xC3 && i + 1 < text.size()) {
            auto d = static_cast<unsigned char>(text[++i]);
            switch (d) {
                case 0x84:
                case 0xA4:
                    out.push_back({'A', true});
                    break;
                case 0x96:
                case 0xB6:
                    out.push_back({'O', true});
                    break;
                case 0x9C:
                case 0xBC:
                    out.push_back({'U', true});
                    break;
                case 0x9F:
                    out.push_back({'S', false});
                    out.push_back({'S', false});
                    break;
                default:
                    out.push_back({' ', false});
            }
        } else if (c >= 0x80) {
            if ((c & 0xC0) != 0x80) out.push_back({' ', false});  // one space per other letter
        } else {
            out.push_back({static_cast<char>(std::toupper(c)), false});
        }
    }
    return out;
}

}  // namespace

double DiaZeichner::textBreite(double hoehe, std::string_view text) {
    auto n = buchstaben(text).size();
    return n == 0 ? 0 : n * hoehe - hoehe / 3;
}

void DiaZeichner::text(double x, double y, double hoehe, std::string_view text) {
    const double e = hoehe / 6;
    double links = x;
    for (auto [c, punkte] : buchstaben(text)) {
        if (const char* s = striche(c)) {
            std::vector<std::pair<double, double>> strich;
            for (const char* p = s;; ++p) {
                if (*p == '|' || *p == 0) {
                    polylinie(strich, false);
                    strich.clear();
                    if (*p == 0) break;
                    continue;
                }
                strich.push_back({links + (p[0] - '0') * e, y + (p[1] - '0') * e});
                ++p;
            }
            if (punkte) {
                linie(links + e, y + 7 * e, links + e, y + 8 * e);
                linie(links + 3 * e, y + 7 * e, links + 3 * e, y + 8 * e);
            }
        }
        links += hoehe;
    }
}

void DiaZeichner::textZentriert(double x, double y, double hoehe, std::string_view text) {
    this->text(x - textBreite(hoehe, text) / 2, y, hoehe, text);
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
