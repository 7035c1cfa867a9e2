// Any bytes as a command line: evaluated without a crash, cut pieces stay
// inside the line.
#include "startup/kommandozeile.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string zeile(reinterpret_cast<const char*>(data), size);
    auto k = tessara::fctKommandozeileAuswerten(zeile);
    if (k.str1.size() > zeile.size() || k.str2.size() > zeile.size()) std::abort();
    return 0;
}
