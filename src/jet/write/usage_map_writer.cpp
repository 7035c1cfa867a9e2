// Usage map rows keep their size when rewritten, so a change never moves a
// row. An inline map covers (row size - 5) * 8 pages from its start page; a
// page outside that window re-bases the window when every marked page still
// fits, and otherwise the row becomes a reference map, whose entry i names
// the usage-map page (type 0x05) covering pages i * kPagesPerMapPage onward.
#include "jet/write/usage_map_writer.h"

#include <algorithm>
#include <map>
#include <vector>

#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/usage_map.h"

namespace jet {

namespace {

constexpr std::size_t kInlineHeader = 5;   // type byte, u32 start page
constexpr std::size_t kMapBitsOffset = 4;  // in a 0x05 page

void setBit(std::uint8_t* bits, std::uint32_t index, bool on) {
    std::uint8_t mask = std::uint8_t(1u << (index % 8));
    if (on)
        bits[index / 8] |= mask;
    else
        bits[index / 8] &= std::uint8_t(~mask);
}

std::vector<std::uint32_t> inlinePages(const std::uint8_t* row, std::size_t size) {
    std::vector<std::uint32_t> out;
    const std::uint32_t start = u32(row + 1);
    for (std::size_t i = 0; i < (size - kInlineHeader) * 8; ++i)
        if (row[kInlineHeader + i / 8] & (1u << (i % 8))) out.push_back(std::uint32_t(start + i));
    return out;
}

PageBytes newMapPage() {
    PageBytes p(kPageSize, 0);
    p[0] = std::uint8_t(PageType::UsageMap);
    p[1] = 0x01;
    return p;
}

// Rewrites the row (bytes [start, start + size) of rowPage) as a reference
// map holding the given pages, on freshly allocated map pages.
void toReference(Database& db, RowId where, PageBytes& rowPage, std::size_t start, std::size_t size,
                 const std::vector<std::uint32_t>& marked) {
    const std::size_t slots = (size - 1) / 4;
    std::map<std::uint32_t, PageBytes> maps;
    for (std::uint32_t p : marked) {
        std::uint32_t slot = p / kPagesPerMapPage;
        if (slot >= slots)
            throw Error("the usage map in row " + toString(where) + " cannot reach page " +
                        std::to_string(p));
        auto it = maps.try_emplace(slot, newMapPage()).first;
        setBit(it->second.data() + kMapBitsOffset, p % kPagesPerMapPage, true);
    }
    std::uint8_t* row = rowPage.data() + start;
    std::fill(row, row + size, 0);
    row[0] = 1;
    for (auto& [slot, bytes] : maps) {
        std::uint32_t n = db.allocatePage(PageType::UsageMap);
        db.pages().put(n, bytes);
        put32(row + 1 + 4 * slot, n);
    }
    db.pages().put(where.page, rowPage);
}

}  // namespace

void setUsageMapBit(Database& db, std::uint32_t dataPointer, std::uint32_t page, bool on) {
    if (!db.inTransaction()) throw Error("usage maps are written only inside a unit of work");
    PageCache& pages = db.pages();
    const RowId where = RowId::fromPointer(dataPointer);
    RowBytes r = rowBytes(pages, where);
    if (r.flags & (datapage::kDeletedFlag | datapage::kOverflowFlag))
        throwCorrupt(where.page, "usage map row " + toString(where) + " is not a live row");
    const std::size_t size = r.size();
    if (size < 1) throwCorrupt(where.page, "usage map row is empty");
    PageBytes rowPage = *r.page;
    std::uint8_t* row = rowPage.data() + r.start;

    if (row[0] == 0) {
        if (size <= kInlineHeader) throwCorrupt(where.page, "usage map row is truncated");
        const std::uint64_t window = std::uint64_t(size - kInlineHeader) * 8;
        const std::uint32_t start = u32(row + 1);
        if (page >= start && page - start < window) {
            setBit(row + kInlineHeader, page - start, on);
            pages.put(where.page, rowPage);
            return;
        }
        if (!on) return;  // outside the window nothing is marked
        std::vector<std::uint32_t> marked = inlinePages(row, size);
        marked.push_back(page);
        std::sort(marked.begin(), marked.end());
        const std::uint32_t lo = marked.front(), hi = marked.back();
        if (hi - lo < window) {
            // Byte-aligned starts keep the bits of one byte in one byte when
            // the window allows it.
            std::uint32_t base = lo - lo % 8;
            if (hi - base >= window) base = lo;
            std::fill(row + kInlineHeader, row + size, 0);
            put32(row + 1, base);
            for (std::uint32_t p : marked) setBit(row + kInlineHeader, p - base, true);
            pages.put(where.page, rowPage);
            return;
        }
        toReference(db, where, rowPage, r.start, size, marked);
        return;
    }
    if (row[0] != 1) throwCorrupt(where.page, "unknown usage map type " + std::to_string(row[0]));

    const std::size_t slots = (size - 1) / 4;
    const std::uint32_t slot = page / kPagesPerMapPage;
    if (slot >= slots) {
        if (!on) return;
        throw Error("the usage map in row " + toString(where) + " cannot reach page " +
                    std::to_string(page));
    }
    std::uint32_t mapPage = mapPageOfEntry(u32(row + 1 + 4 * slot));
    if (mapPage == 0) {
        if (!on) return;
        PageBytes bytes = newMapPage();
        setBit(bytes.data() + kMapBitsOffset, page % kPagesPerMapPage, true);
        mapPage = db.allocatePage(PageType::UsageMap);
        pages.put(mapPage, bytes);
        put32(row + 1 + 4 * slot, mapPage);
        pages.put(where.page, rowPage);
        return;
    }
    if (mapPage >= pages.pageCount())
        throwCorrupt(where.page, "usage map names page " + std::to_string(mapPage) +
                                     " beyond the end of the file");
    PageBytes bytes = *pages.page(mapPage, PageType::UsageMap);
    setBit(bytes.data() + kMapBitsOffset, page % kPagesPerMapPage, on);
    pages.put(mapPage, std::move(bytes));
}

}  // namespace jet
