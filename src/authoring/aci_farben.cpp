#include "authoring/aci_farben.h"

#include <array>

namespace tessara::slide {
namespace {

// The hue wheel is sampled every 15 degrees, so each channel of a fully
// saturated hue is a whole number of quarters; integer arithmetic then gives
// the host's values exactly (it truncates).
int quarters(int hueDegrees, int channelOffset) {
    // Distance of the hue from the channel's peak, in 15-degree steps (0..12).
    int h = ((hueDegrees - channelOffset) % 360 + 360) % 360;
    int d = h > 180 ? 360 - h : h;
    if (d <= 60) return 4;
    if (d >= 120) return 0;
    return (120 - d) / 15;
}

constexpr int kStufe[5] = {255, 204, 153, 127, 76};

std::array<Rgb, 256> tabelle() {
    std::array<Rgb, 256> t{};
    const Rgb standard[10] = {{255, 255, 255}, {255, 0, 0},    {255, 255, 0}, {0, 255, 0},
                              {0, 255, 255},   {0, 0, 255},    {255, 0, 255}, {255, 255, 255},
                              {128, 128, 128}, {192, 192, 192}};
    for (int i = 0; i < 10; ++i) t[i] = standard[i];
    for (int i = 10; i <= 249; ++i) {
        int hue = (i / 10 - 1) * 15;
        int v = kStufe[(i % 10) / 2];
        bool blass = i % 2 == 1;
        auto kanal = [&](int offset) {
            int q = quarters(hue, offset);
            return static_cast<std::uint8_t>(blass ? v * (4 + q) / 8 : v * q / 4);
        };
        t[i] = {kanal(0), kanal(120), kanal(240)};
    }
    const std::uint8_t grau[6] = {51, 91, 132, 173, 214, 255};
    for (int i = 0; i < 6; ++i) t[250 + i] = {grau[i], grau[i], grau[i]};
    return t;
}

const std::array<Rgb, 256>& palette() {
    static const std::array<Rgb, 256> t = tabelle();
    return t;
}

}  // namespace

Rgb aciRgb(int index) {
    if (index < 0 || index > 255) return {255, 255, 255};
    return palette()[index];
}

Rgb aciZeichenfarbe(int index, bool dunklerHintergrund) {
    if (index == 7 || index == 0 || index < 0 || index > 255)
        return dunklerHintergrund ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
    return palette()[index];
}

}  // namespace tessara::slide
