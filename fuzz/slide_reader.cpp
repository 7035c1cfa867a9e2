// Any bytes as a slide: read or refused with SlideError, never a crash; what
// is read can be written again and reads back to the same drawing.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include "authoring/slide.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tessara::slide;
    Slide s;
    try {
        s = readSlide(std::span<const std::uint8_t>(data, size));
    } catch (const SlideError&) {
        return 0;
    }
    for (const auto& e : s.elements)
        if (e.first + e.count > s.points.size()) std::abort();
    try {
        Slide wieder = readSlide(writeSlide(s));
        if (!sameDrawing(s, wieder)) std::abort();
    } catch (const SlideError&) {
        // Not every readable slide is writable (negative coordinates, fills
        // of more than ten vertices); refusing them is the writer's duty.
    }
    return 0;
}
