#pragma once
// Shared helpers of the slide tests: the slides made elsewhere, and the
// annotated example of the published slide format, byte for byte.
#include <cstdint>
#include <string>
#include <vector>

namespace slidetest {

inline std::string testdaten(const std::string& name) {
    return std::string(TESSARA_TESTDATA) + "/slides/" + name;
}

// The published example: header (572 x 292 pixels, aspect 1.46, low byte
// first), a white diagonal, a green vertical line, and a small red rectangle
// drawn with one offset vector and three common-endpoint vectors.
inline std::vector<std::uint8_t> beispielDia() {
    return {0x41, 0x75, 0x74, 0x6F, 0x43, 0x41, 0x44, 0x20, 0x53, 0x6C, 0x69, 0x64, 0x65, 0x0D,
            0x0A, 0x1A, 0x00, 0x56, 0x02, 0x3C, 0x02, 0x24, 0x01, 0x0B, 0x80, 0xDF, 0x00, 0x02,
            0x00, 0x34, 0x12, 0x07, 0xFF, 0x3C, 0x02, 0x24, 0x01, 0x00, 0x00, 0x00, 0x00, 0x03,
            0xFF, 0x0F, 0x00, 0x32, 0x00, 0x0F, 0x00, 0x13, 0x00, 0x01, 0xFF, 0x12, 0xFB, 0xE7,
            0x12, 0xCE, 0xDF, 0xFE, 0x00, 0x00, 0xFE, 0xE7, 0x21, 0xFE, 0x00, 0x00, 0xFC};
}

// The same slide written high byte first: every 2-byte field swapped, the
// aspect ratio (always low byte first) and the 1-byte fields left alone.
inline std::vector<std::uint8_t> beispielDiaHighByteFirst() {
    auto d = beispielDia();
    auto swap = [&](std::size_t i) { std::swap(d[i], d[i + 1]); };
    for (std::size_t i : {19, 21, 27, 29}) swap(i);
    std::size_t pos = 31;
    while (pos < d.size()) {
        std::uint8_t type = d[pos + 1];
        if (type <= 0x7F) {
            for (std::size_t k = 0; k < 8; k += 2) swap(pos + k);
            pos += 8;
        } else if (type == 0xFB) {
            swap(pos);
            pos += 5;
        } else if (type == 0xFE) {
            swap(pos);
            pos += 3;
        } else {
            swap(pos);
            pos += 2;
        }
    }
    return d;
}

}  // namespace slidetest
