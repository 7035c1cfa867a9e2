#include "jet/read/long_value.h"

#include <set>

#include "jet/format/error.h"
#include "jet/read/usage_map.h"

namespace jet {

namespace {
std::uint32_t pageOfPointer(std::uint32_t p) { return p >> 8; }

RowBytes lvalRow(PageCache& pages, std::uint32_t pointer) {
    RowId id = RowId::fromPointer(pointer);
    if (id.page == 0) throwCorrupt(0, "long value points at the header page");
    RowBytes r = rowBytes(pages, id);
    if (r.flags & datapage::kDeletedFlag)
        throwCorrupt(id.page, "long value row " + std::to_string(id.row) + " is deleted");
    return r;
}
}  // namespace

Binary readLongValue(PageCache& pages, const std::uint8_t* p, std::size_t n) {
    if (n < lval::kFieldSize) throwCorrupt(0, "long value field shorter than 12 bytes");
    std::uint32_t head = u32(p);
    std::uint32_t length = head & lval::kLengthMask;
    std::uint32_t pointer = u32(p + 4);
    Binary out;
    if (head & lval::kInline) {
        if (length > n - lval::kFieldSize) throwCorrupt(0, "inline long value overruns its row");
        out.assign(p + lval::kFieldSize, p + lval::kFieldSize + length);
        return out;
    }
    if (head & lval::kSinglePage) {
        // Jet sizes the row to the value: any other size means the row's
        // bounds or the field's length are damaged.
        RowBytes r = lvalRow(pages, pointer);
        if (length != r.size())
            throwCorrupt(pageOfPointer(pointer), "long value of " + std::to_string(length) +
                                                     " bytes in a row of " +
                                                     std::to_string(r.size()));
        out.assign(r.data(), r.data() + length);
        return out;
    }
    // A chain: each row starts with the pointer to the next.
    std::set<std::uint32_t> seen;
    out.reserve(std::min<std::size_t>(length, 1u << 24));
    while (out.size() < length) {
        if (pointer == 0) throwCorrupt(0, "long value chain ends early");
        if (!seen.insert(pointer).second)
            throwCorrupt(pageOfPointer(pointer), "long value chain forms a cycle");
        RowBytes r = lvalRow(pages, pointer);
        if (r.size() < 4) throwCorrupt(pageOfPointer(pointer), "long value chain row too short");
        std::size_t take = std::min<std::size_t>(r.size() - 4, length - out.size());
        out.insert(out.end(), r.data() + 4, r.data() + 4 + take);
        pointer = u32(r.data());
        if (take == 0 && out.size() < length)
            throwCorrupt(pageOfPointer(pointer), "empty long value chain row");
    }
    return out;
}

}  // namespace jet
