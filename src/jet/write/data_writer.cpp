#include "jet/write/data_writer.h"

#include <algorithm>

#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/usage_map.h"
#include "jet/write/row_encoder.h"
#include "jet/write/usage_map_writer.h"

namespace jet {

namespace {
// Pages of a pool looked at before a new one is taken: keeps an insert
// cheap when the free-space map lists pages that are nearly full.
constexpr int kCandidates = 16;

// Usage map bits read straight from the map, without collecting every page
// (the maps of large tables list thousands).
struct MapView {
    PageCache& pages;
    RowBytes row;
    std::uint8_t type = 0;

    MapView(PageCache& p, std::uint32_t pointer)
        : pages(p), row(rowBytes(p, RowId::fromPointer(pointer))) {
        if (row.flags & datapage::kDeletedFlag || row.size() < 1)
            throwCorrupt(row.pageNumber, "usage map row is not a live row");
        type = row.data()[0];
        if ((type == 0 && row.size() < 5) || type > 1)
            throwCorrupt(row.pageNumber, "usage map row cannot be read");
    }
    // The bitmap covering page, its bit index, or nullptr.
    const std::uint8_t* bitsFor(std::uint32_t page, std::size_t* bit, PageRef* hold) const {
        if (type == 0) {
            const std::uint32_t start = u32(row.data() + 1);
            if (page < start || page - start >= (row.size() - 5) * 8) return nullptr;
            *bit = page - start;
            return row.data() + 5;
        }
        const std::size_t slot = page / kPagesPerMapPage;
        if (1 + 4 * slot + 4 > row.size()) return nullptr;
        const std::uint32_t mapPage = u32(row.data() + 1 + 4 * slot);
        if (mapPage == 0 || mapPage >= pages.pageCount()) return nullptr;
        *hold = pages.page(mapPage, PageType::UsageMap);
        *bit = page % kPagesPerMapPage;
        return (*hold)->data() + 4;
    }
    bool has(std::uint32_t page) const {
        std::size_t bit = 0;
        PageRef hold;
        const std::uint8_t* bits = bitsFor(page, &bit, &hold);
        return bits && ((bits[bit / 8] >> (bit % 8)) & 1);
    }
    // Up to n marked pages below the end of the file, highest first.
    std::vector<std::uint32_t> highest(std::size_t n) const {
        std::vector<std::uint32_t> out;
        const std::uint32_t limit = pages.pageCount();
        auto scan = [&](const std::uint8_t* bits, std::size_t count, std::uint64_t first) {
            for (std::size_t i = count; i-- > 0 && out.size() < n;) {
                if (!bits[i]) continue;
                for (int b = 7; b >= 0 && out.size() < n; --b) {
                    std::uint64_t pg = first + i * 8 + std::uint64_t(b);
                    if ((bits[i] >> b) & 1 && pg < limit) out.push_back(std::uint32_t(pg));
                }
            }
        };
        if (type == 0) {
            scan(row.data() + 5, row.size() - 5, u32(row.data() + 1));
            return out;
        }
        for (std::size_t slot = (row.size() - 1) / 4; slot-- > 0 && out.size() < n;) {
            const std::uint32_t mapPage = u32(row.data() + 1 + 4 * slot);
            if (mapPage == 0 || mapPage >= limit) continue;
            PageRef mp = pages.page(mapPage, PageType::UsageMap);
            scan(mp->data() + 4, kPageSize - 4, std::uint64_t(slot) * kPagesPerMapPage);
        }
        return out;
    }
};
}  // namespace

DataPage::DataPage(std::uint32_t number, std::uint32_t owner)
    : number_(number), head_(datapage::kRowTable, 0) {
    head_[0] = std::uint8_t(PageType::Data);
    head_[1] = 0x01;
    put32(head_.data() + datapage::kTdefPage, owner);
}

DataPage DataPage::load(PageCache& pages, std::uint32_t number) {
    PageRef ref = pages.page(number, PageType::Data);
    const PageBytes& p = *ref;
    DataPage out(number, 0);
    std::copy(p.begin(), p.begin() + datapage::kRowTable, out.head_.begin());
    const std::size_t count = rowCountOf(p);
    const std::size_t tableEnd = datapage::kRowTable + 2 * count;
    if (count > kMaxRowsPerPage || tableEnd > kPageSize)
        throwCorrupt(number, "row offset table overruns the page");
    out.slots_.resize(count);
    std::size_t end = kPageSize;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint16_t raw = u16(p.data() + datapage::kRowTable + 2 * i);
        Slot& s = out.slots_[i];
        s.flags = raw & kRemovedRow;
        const std::size_t start = raw & datapage::kOffsetMask;
        if (start < tableEnd || start > end) {
            if (!(s.flags & datapage::kDeletedFlag))
                throwCorrupt(number, "row " + std::to_string(i) + " has impossible bounds");
            // A deleted row's bounds are not relied on; it keeps no bytes.
            continue;
        }
        s.bytes.assign(p.begin() + std::ptrdiff_t(start), p.begin() + std::ptrdiff_t(end));
        out.used_ += s.bytes.size();
        end = start;
    }
    return out;
}

std::size_t DataPage::freeSpace() const {
    const std::size_t taken = datapage::kRowTable + 2 * slots_.size() + used_;
    return taken >= kPageSize ? 0 : kPageSize - taken;
}

std::optional<std::uint16_t> DataPage::reusableSlot() const {
    for (std::size_t i = 0; i < slots_.size(); ++i)
        if (slots_[i].flags == kRemovedRow && slots_[i].bytes.empty()) return std::uint16_t(i);
    return std::nullopt;
}

bool DataPage::fits(std::size_t size) const {
    if (reusableSlot()) return freeSpace() >= size;
    return slots_.size() < kMaxRowsPerPage && freeSpace() >= size + 2;
}

bool DataPage::fitsReplacing(std::uint16_t slot, std::size_t size) const {
    return freeSpace() + slots_.at(slot).bytes.size() >= size;
}

std::uint16_t DataPage::add(Binary row, std::uint16_t flags) {
    if (!fits(row.size())) throw Error("row does not fit on page " + std::to_string(number_));
    std::uint16_t slot;
    if (auto reuse = reusableSlot()) {
        slot = *reuse;
    } else {
        slot = std::uint16_t(slots_.size());
        slots_.push_back({});
    }
    used_ += row.size();
    slots_[slot] = Slot{flags, std::move(row)};
    return slot;
}

void DataPage::replace(std::uint16_t slot, Binary row, std::uint16_t flags) {
    if (!fitsReplacing(slot, row.size()))
        throw Error("row does not fit on page " + std::to_string(number_));
    Slot& s = slots_.at(slot);
    used_ = used_ - s.bytes.size() + row.size();
    s.flags = flags;
    s.bytes = std::move(row);
}

PageBytes DataPage::encode() const {
    PageBytes out(kPageSize, 0);
    std::copy(head_.begin(), head_.end(), out.begin());
    put16(out.data() + datapage::kRowCount, std::uint16_t(slots_.size()));
    std::size_t pos = kPageSize;
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const Slot& s = slots_[i];
        pos -= s.bytes.size();
        std::copy(s.bytes.begin(), s.bytes.end(), out.begin() + std::ptrdiff_t(pos));
        put16(out.data() + datapage::kRowTable + 2 * i, std::uint16_t(pos | s.flags));
    }
    put16(out.data() + datapage::kFreeSpace, std::uint16_t(freeSpace()));
    return out;
}

void DataPage::store(PageCache& pages) const { pages.put(number_, encode()); }

PagePool tablePool(const TableDef& def) {
    PagePool pool;
    pool.owner = def.page;
    pool.usedMap = def.usedPages;
    pool.freeMap = def.freePages;
    pool.keepFree = RowEncoder(def).minimumSize() + 2;
    return pool;
}

void storePage(Database& db, const PagePool& pool, const DataPage& page) {
    page.store(db.pages());
    if (!pool.freeMap) return;
    const bool want = page.freeSpace() >= pool.keepFree;
    const bool has = MapView(db.pages(), pool.freeMap).has(page.number());
    if (want != has) setUsageMapBit(db, pool.freeMap, page.number(), want);
}

RowId placeRow(Database& db, const PagePool& pool, Binary row, std::uint16_t flags,
               std::uint32_t avoid) {
    if (row.size() + datapage::kRowTable + 2 > kPageSize)
        throw Error("Record is too large.", rowerr::kRecordTooLarge);
    PageCache& pages = db.pages();
    const std::uint32_t mapPointer = pool.freeMap ? pool.freeMap : pool.usedMap;
    if (mapPointer) {
        // The newest pages first: they are the likeliest to have room. A
        // listed page that cannot take the row leaves the free-space map
        // (rows of a table are much alike), so that pages with room further
        // down are reached; it comes back when a row on it shrinks or goes.
        for (const std::uint32_t p : MapView(pages, mapPointer).highest(kCandidates + 1)) {
            if (p == 0 || p == avoid) continue;
            PageRef raw = pages.page(p);
            if ((*raw)[0] != std::uint8_t(PageType::Data) ||
                u32(raw->data() + datapage::kTdefPage) != pool.owner)
                continue;
            if (u16(raw->data() + datapage::kFreeSpace) >= row.size()) {
                DataPage page = DataPage::load(pages, p);
                if (page.fits(row.size())) {
                    const std::uint16_t slot = page.add(std::move(row), flags);
                    storePage(db, pool, page);
                    return {p, slot};
                }
            }
            if (mapPointer == pool.freeMap) setUsageMapBit(db, pool.freeMap, p, false);
        }
    }
    const std::uint32_t p = db.allocatePage(PageType::Data);
    DataPage page(p, pool.owner);
    const std::uint16_t slot = page.add(std::move(row), flags);
    page.store(pages);
    if (pool.usedMap) setUsageMapBit(db, pool.usedMap, p, true);
    if (pool.freeMap && page.freeSpace() >= pool.keepFree)
        setUsageMapBit(db, pool.freeMap, p, true);
    return {p, slot};
}

}  // namespace jet
