#pragma once
// Memo and OLE values: a 12-byte field in the row (length with flags, data
// pointer), the data inline, in one LVAL row, or in a chain of LVAL rows.
#include <cstdint>

#include "jet/format/value.h"
#include "jet/store/page_file.h"

namespace jet {

namespace lval {
constexpr std::uint32_t kInline = 0x80000000u;
constexpr std::uint32_t kSinglePage = 0x40000000u;
constexpr std::uint32_t kLengthMask = 0x3FFFFFFFu;
constexpr std::size_t kFieldSize = 12;
}  // namespace lval

// The raw bytes of a long value whose 12-byte field starts at p (n bytes
// available, including any inline data). Guards chains against cycles.
Binary readLongValue(PageCache& pages, const std::uint8_t* p, std::size_t n);

}  // namespace jet
