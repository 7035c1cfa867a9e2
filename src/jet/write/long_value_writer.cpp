#include "jet/write/long_value_writer.h"

#include <algorithm>
#include <set>

#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/long_value.h"
#include "jet/write/data_writer.h"
#include "jet/write/row_encoder.h"

namespace jet {

namespace {

PagePool columnPool(const TableDef& def, const Column& c) {
    PagePool pool;
    pool.owner = kLongValueOwner;
    // A page whose room would not take a useful part of a value leaves the
    // free-space map.
    pool.keepFree = lval::kMaxInline;
    for (const VarColumnMaps& m : def.varColumnMaps)
        if (m.columnNumber == c.number) {
            pool.usedMap = m.usedPages;
            pool.freeMap = m.freePages;
        }
    return pool;
}

Binary field(std::uint32_t head, std::uint32_t pointer) {
    Binary out(lval::kFieldSize, 0);
    put32(out.data(), head);
    put32(out.data() + 4, pointer);
    return out;
}

}  // namespace

Binary writeLongValue(Database& db, const TableDef& def, const Column& c, const Binary& data,
                      bool allowInline) {
    if (data.size() > lval::kLengthMask)
        throw Error("Record is too large.", rowerr::kRecordTooLarge);
    if (allowInline && data.size() <= lval::kMaxInline) return inlineLongValue(data);
    const PagePool pool = columnPool(def, c);
    const auto length = std::uint32_t(data.size());
    if (data.size() <= lval::kMaxSingle) {
        RowId at = placeRow(db, pool, data);
        return field(length | lval::kSinglePage, at.pointer());
    }
    // Last part first, so that each row knows the pointer to its successor.
    std::uint32_t next = 0;
    std::size_t parts = (data.size() + lval::kChainChunk - 1) / lval::kChainChunk;
    for (std::size_t k = parts; k-- > 0;) {
        const std::size_t from = k * lval::kChainChunk;
        const std::size_t to = std::min(data.size(), from + lval::kChainChunk);
        Binary row(4 + (to - from));
        put32(row.data(), next);
        std::copy(data.begin() + std::ptrdiff_t(from), data.begin() + std::ptrdiff_t(to),
                  row.begin() + 4);
        next = placeRow(db, pool, std::move(row)).pointer();
    }
    return field(length, next);
}

void freeLongValue(Database& db, const TableDef& def, const Column& c, const std::uint8_t* p,
                   std::size_t n) {
    if (n < lval::kFieldSize) return;
    const std::uint32_t head = u32(p);
    if (head & lval::kInline) return;
    const PagePool pool = columnPool(def, c);
    std::uint32_t pointer = u32(p + 4);
    const bool chain = !(head & lval::kSinglePage);
    std::set<std::uint32_t> seen;
    while (pointer != 0 && seen.insert(pointer).second) {
        const RowId id = RowId::fromPointer(pointer);
        if (id.page == 0 || id.page >= db.pages().pageCount())
            throwCorrupt(id.page, "long value points outside the file");
        DataPage page = DataPage::load(db.pages(), id.page);
        if (page.owner() != kLongValueOwner || id.row >= page.rowCount())
            throwCorrupt(id.page, "long value row " + toString(id) + " does not exist");
        pointer = 0;
        if (chain && page.row(id.row).size() >= 4) pointer = u32(page.row(id.row).data());
        page.remove(id.row);
        storePage(db, pool, page);
    }
}

}  // namespace jet
