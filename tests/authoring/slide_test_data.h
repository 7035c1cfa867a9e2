#pragma once
// Shared helpers of the slide tests: the slides made elsewhere, the slides
// of golden/dias.txt byte for byte, and a slide as one line of text.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "authoring/slide.h"
#include "tabelle.h"

namespace slidetest {

inline std::string testdaten(const std::string& name) {
    return std::string(TESSARA_TESTDATA) + "/slides/" + name;
}

// A slide of golden/dias.txt; "beispiel" is the published example: 572 x
// 292 pixels, aspect 1.46, low byte first, a white diagonal, a green
// vertical line and a small red rectangle drawn with one offset vector and
// three common-endpoint vectors.
inline std::vector<std::uint8_t> dia(const std::string& name) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/dias.txt"))
        if (f.at(0) == name) return {f.at(1).begin(), f.at(1).end()};
    ADD_FAILURE() << "no slide " << name;
    return {};
}
inline std::vector<std::uint8_t> beispielDia() { return dia("beispiel"); }

// The header, the record counts and every element with its colour and points.
inline std::string beschreibung(const tessara::slide::Slide& s) {
    char k[120];
    const auto& r = s.records;
    std::snprintf(k, sizeof k, "L%d %s %dx%d %.7g F%d R%d,%d,%d,%d,%d,%d", s.level,
                  s.bigEndian ? "HL" : "LH", s.highX, s.highY, s.aspectRatio, s.hardwareFill,
                  r.vectors, r.offsetVectors, r.commonEndpoints, r.fills, r.colours, r.endOfFile);
    std::string t = k;
    for (const auto& e : s.elements) {
        t += e.kind == tessara::slide::Element::Kind::Fill ? " F" : " V";
        t += std::to_string(e.colour);
        for (auto p : s.pointsOf(e)) t += ":" + std::to_string(p.x) + "," + std::to_string(p.y);
    }
    return t;
}

}  // namespace slidetest
