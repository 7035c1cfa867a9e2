// Any bytes as a drawing: its preview read or refused with DwgError, never a
// crash; what is read is a BMP or PNG file whose header lies inside it.
#include "authoring/dwg_preview.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tessara::dwg;
    try {
        auto v = fctVorschauLesen(std::span<const std::uint8_t>(data, size));
        if (!v) return 0;
        if (v->bild.size() < 8 || v->bild.size() > size + 14) std::abort();
        if (v->art == Vorschau::Art::Bmp && (v->bild[0] != 'B' || v->bild[1] != 'M')) std::abort();
        if (v->art == Vorschau::Art::Png && v->bild[1] != 'P') std::abort();
    } catch (const DwgError&) {
    }
    return 0;
}
