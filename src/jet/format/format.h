#pragma once
// Fixed facts of the Jet 4 file format (Access 2000 / 2002 / 2003).
#include <cstdint>
#include <cstring>

namespace jet {

constexpr std::uint32_t kPageSize = 4096;

enum class PageType : std::uint8_t {
    Header = 0x00,
    Data = 0x01,  // also long-value (LVAL) pages
    TableDef = 0x02,
    IndexNode = 0x03,  // intermediate B-tree page
    IndexLeaf = 0x04,
    UsageMap = 0x05,
};

// Page 1 holds the global usage map, page 2 the definition of MSysObjects.
constexpr std::uint32_t kGlobalUsageMapPage = 1;
constexpr std::uint32_t kCatalogueTdefPage = 2;

// Data page layout.
namespace datapage {
constexpr std::size_t kFreeSpace = 2;  // u16
constexpr std::size_t kTdefPage = 4;   // u32, or "LVAL" on long-value pages
constexpr std::size_t kRowCount = 12;  // u16
constexpr std::size_t kRowTable = 14;  // u16 per row
constexpr std::uint16_t kOffsetMask = 0x1FFF;
constexpr std::uint16_t kDeletedFlag = 0x8000;
constexpr std::uint16_t kOverflowFlag = 0x4000;  // row holds a 4-byte pointer to the real row
}  // namespace datapage

// Index page layout (types 0x03 and 0x04).
namespace indexpage {
constexpr std::size_t kFreeSpace = 2;
constexpr std::size_t kTdefPage = 4;
// Jet 4 has four unknown bytes after the TDEF pointer (as on data pages),
// so the links sit four bytes later than in Jet 3.
constexpr std::size_t kPrevPage = 12;
constexpr std::size_t kNextPage = 16;
constexpr std::size_t kTailPage = 20;
constexpr std::size_t kPrefixLength = 24;  // u16
constexpr std::size_t kEntryMask = 0x1B;   // bit i set: an entry ends at kFirstEntry + i
constexpr std::size_t kFirstEntry = 0x1E0;
constexpr std::size_t kEntryMaskLength = kFirstEntry - kEntryMask;
}  // namespace indexpage

// Table definition page header and block offsets (within the concatenated
// definition, whose first 8 bytes are the first page's header).
namespace tdef {
constexpr std::size_t kNextPage = 4;
constexpr std::size_t kLength = 8;
constexpr std::size_t kRowCount = 16;
constexpr std::size_t kAutoNumber = 20;
constexpr std::size_t kAutoNumberFlag = 24;
constexpr std::size_t kComplexAutoNumber = 28;
constexpr std::size_t kTableType = 40;
constexpr std::size_t kMaxColumns = 41;
constexpr std::size_t kVarColumns = 43;
constexpr std::size_t kColumns = 45;
constexpr std::size_t kLogicalIndexes = 47;
constexpr std::size_t kRealIndexes = 51;
constexpr std::size_t kUsedPages = 55;  // data pointer to the usage map row
constexpr std::size_t kFreePages = 59;
constexpr std::size_t kBlockEnd = 63;
constexpr std::size_t kRealIndexCountEntry = 12;
constexpr std::size_t kColumnEntry = 25;
constexpr std::size_t kRealIndexEntry = 52;
// Within a real-index entry: the index's flags sit four bytes after its root
// page pointer; Access leaves whatever memory held in the four between.
constexpr std::size_t kRealIndexFlags = 46;
// The word Access writes first in every real-index entry.
constexpr std::uint32_t kRealIndexMagic = 0x783;
constexpr std::size_t kLogicalIndexEntry = 28;
constexpr std::size_t kIndexColumnSlots = 10;
}  // namespace tdef

// The masked region of the header page: XOR with an RC4 stream keyed by
// kHeaderMaskKey (little-endian bytes).
namespace header {
constexpr std::size_t kMagic = 0;
constexpr std::size_t kFormatId = 4;  // "Standard Jet DB" / "Standard ACE DB"
constexpr std::size_t kVersion = 0x14;
constexpr std::size_t kMaskStart = 0x18;
constexpr std::size_t kMaskLength = 128;
constexpr std::uint32_t kMaskKey = 0x6B39DAC7;
constexpr std::size_t kCodePage = 0x3C;      // u16
constexpr std::size_t kDatabaseKey = 0x3E;   // u32; non-zero: pages are RC4-encoded
constexpr std::size_t kPassword = 0x42;      // 40 bytes
constexpr std::size_t kSortOrder = 0x6E;     // u16 sort order, then version
constexpr std::size_t kCreationDate = 0x72;  // double
// Outside the mask, in bytes Jet leaves zero: this engine's u32 count of the
// commits made to the file, which tells a reader whether its cached pages
// are still current (see store/page_file.h).
constexpr std::size_t kChangeCounter = 0xDFC;
}  // namespace header

inline std::uint16_t u16(const std::uint8_t* p) { return std::uint16_t(p[0] | (p[1] << 8)); }
inline std::uint32_t u24(const std::uint8_t* p) {
    return p[0] | (p[1] << 8) | (std::uint32_t(p[2]) << 16);
}
inline std::uint32_t u32(const std::uint8_t* p) {
    return p[0] | (p[1] << 8) | (std::uint32_t(p[2]) << 16) | (std::uint32_t(p[3]) << 24);
}
inline std::uint32_t u24be(const std::uint8_t* p) {
    return (std::uint32_t(p[0]) << 16) | (p[1] << 8) | p[2];
}
inline std::uint32_t u32be(const std::uint8_t* p) {
    return (std::uint32_t(p[0]) << 24) | (std::uint32_t(p[1]) << 16) | (p[2] << 8) | p[3];
}
inline void put16(std::uint8_t* p, std::uint16_t v) {
    p[0] = v & 0xFF;
    p[1] = v >> 8;
}
inline void put24(std::uint8_t* p, std::uint32_t v) {
    p[0] = v & 0xFF;
    p[1] = (v >> 8) & 0xFF;
    p[2] = (v >> 16) & 0xFF;
}
inline void put32(std::uint8_t* p, std::uint32_t v) {
    p[0] = v & 0xFF;
    p[1] = (v >> 8) & 0xFF;
    p[2] = (v >> 16) & 0xFF;
    p[3] = v >> 24;
}

// RC4 stream XOR, used for the header mask and for encoded pages.
void rc4Xor(const std::uint8_t* key, std::size_t keyLength, std::uint8_t* data, std::size_t length);

}  // namespace jet
