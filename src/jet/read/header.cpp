#include "jet/read/header.h"

#include <cstring>
#include <string>

#include "jet/format/error.h"

namespace jet {

void maskHeader(std::uint8_t* page0) {
    std::uint8_t key[4];
    put32(key, header::kMaskKey);
    rc4Xor(key, 4, page0 + header::kMaskStart, header::kMaskLength);
}

DatabaseHeader parseHeader(const PageBytes& page0) {
    static const std::uint8_t magic[4] = {0x00, 0x01, 0x00, 0x00};
    if (page0.size() < kPageSize || std::memcmp(page0.data(), magic, 4) != 0 ||
        (std::memcmp(page0.data() + header::kFormatId, "Standard Jet DB", 16) != 0 &&
         std::memcmp(page0.data() + header::kFormatId, "Standard ACE DB", 16) != 0))
        throw Error("not a Jet database", errnum::kNotDatabase);
    DatabaseHeader h;
    h.version = u32(page0.data() + header::kVersion);
    if (h.version != 1) {
        // 0 is Jet 3 (Access 97); 2 and above are the ACE formats (Jet 5 onwards).
        throw Error("unsupported Jet version " + std::to_string(h.version + 3),
                    errnum::kNotDatabase);
    }
    h.unmasked = page0;
    maskHeader(h.unmasked.data());
    const std::uint8_t* p = h.unmasked.data();
    h.codePage = u16(p + header::kCodePage);
    h.databaseKey = u32(p + header::kDatabaseKey);
    std::memcpy(h.password.data(), p + header::kPassword, h.password.size());
    h.sortOrder = u16(p + header::kSortOrder);
    h.sortVersion = u16(p + header::kSortOrder + 2);
    std::memcpy(&h.creationDate, p + header::kCreationDate, sizeof(double));
    return h;
}

}  // namespace jet
