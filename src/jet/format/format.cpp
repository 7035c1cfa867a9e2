#include "jet/format/format.h"

#include <string>

#include "jet/format/error.h"

namespace jet {

void rc4Xor(const std::uint8_t* key, std::size_t keyLength, std::uint8_t* data,
            std::size_t length) {
    std::uint8_t s[256];
    for (int i = 0; i < 256; ++i) s[i] = std::uint8_t(i);
    std::uint8_t j = 0;
    for (int i = 0; i < 256; ++i) {
        j = std::uint8_t(j + s[i] + key[i % keyLength]);
        std::swap(s[i], s[j]);
    }
    std::uint8_t a = 0, b = 0;
    for (std::size_t k = 0; k < length; ++k) {
        a = std::uint8_t(a + 1);
        b = std::uint8_t(b + s[a]);
        std::swap(s[a], s[b]);
        data[k] ^= s[std::uint8_t(s[a] + s[b])];
    }
}

void throwCorrupt(std::uint32_t page, const std::string& what) {
    throw Error("corrupt page " + std::to_string(page) + ": " + what, errnum::kCorrupt);
}

}  // namespace jet
