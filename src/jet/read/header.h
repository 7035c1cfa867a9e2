#pragma once
// The database header (page 0).
#include <array>
#include <cstdint>

#include "jet/store/page_file.h"

namespace jet {

struct DatabaseHeader {
    std::uint32_t version = 1;  // 0 Jet 3, 1 Jet 4, 2+ ACE
    std::uint16_t codePage = 0;
    std::uint32_t databaseKey = 0;  // non-zero: pages other than 0 are RC4-encoded
    std::uint16_t sortOrder = 0;    // 0x409 General
    std::uint16_t sortVersion = 0;  // the two bytes after the sort order
    double creationDate = 0;
    std::array<std::uint8_t, 40> password{};  // still masked by the creation date
    PageBytes unmasked;                       // the whole page 0 with the masked region decoded
};

// Checks magic and version and decodes the masked region. Throws
// "not a Jet database" or "unsupported Jet version N".
DatabaseHeader parseHeader(const PageBytes& page0);
// Applies (or removes; the mask is an XOR) the header mask in place.
void maskHeader(std::uint8_t* page0);

}  // namespace jet
