// Any bytes as a slide library: the directory is read or refused, and every
// entry it lists decodes or is refused, never a crash.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "authoring/slide_library.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tessara::slide;
    try {
        auto lib = SlideLibrary::read(std::vector<std::uint8_t>(data, data + size));
        for (const auto& e : lib.entries()) {
            if (std::size_t(e.address) + e.size > size) std::abort();
            if (lib.find(e.name) == nullptr) std::abort();
            try {
                (void)lib.slide(e.name);
            } catch (const SlideError&) {
            }
        }
    } catch (const SlideError&) {
    }
    return 0;
}
