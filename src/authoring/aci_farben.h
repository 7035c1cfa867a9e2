#pragma once
// The AutoCAD Colour Index: indices 1..255 as the host shows them. 1..9 are
// the standard colours; 10..249 are 24 hues of 15 degrees, each in five
// brightness steps, every second entry the pale (half-saturated) version;
// 250..255 a grey ramp. Index 7 is drawn in the foreground colour: white on a
// dark background, black on a light one.
#include <cstdint>

namespace tessara::slide {

struct Rgb {
    std::uint8_t r = 0, g = 0, b = 0;
    friend bool operator==(const Rgb&, const Rgb&) = default;
};

// The palette entry of an index (0 and 7 give white, the host's value).
Rgb aciRgb(int index);
// The colour to draw an index with on the given background.
Rgb aciZeichenfarbe(int index, bool dunklerHintergrund);

}  // namespace tessara::slide
