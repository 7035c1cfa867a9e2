#include "jet/read/usage_map.h"

#include <algorithm>

#include "jet/format/error.h"

namespace jet {

std::uint16_t rowCountOf(const PageBytes& page) { return u16(page.data() + datapage::kRowCount); }

RowBytes rowBytes(const PageRef& page, std::uint32_t pageNumber, std::uint16_t row) {
    const PageBytes& p = *page;
    if (p[0] != std::uint8_t(PageType::Data)) throwCorrupt(pageNumber, "expected a data page");
    std::uint16_t count = rowCountOf(p);
    std::size_t tableEnd = datapage::kRowTable + 2 * std::size_t(count);
    if (tableEnd > kPageSize) throwCorrupt(pageNumber, "row offset table overruns the page");
    if (row >= count)
        throwCorrupt(pageNumber, "row " + std::to_string(row) + " does not exist (page has " +
                                     std::to_string(count) + ")");
    std::uint16_t raw = u16(p.data() + datapage::kRowTable + 2 * row);
    RowBytes r;
    r.page = page;
    r.pageNumber = pageNumber;
    r.row = row;
    r.flags = raw & (datapage::kDeletedFlag | datapage::kOverflowFlag);
    r.start = raw & datapage::kOffsetMask;
    r.end = row == 0 ? std::uint16_t(kPageSize)
                     : std::uint16_t(u16(p.data() + datapage::kRowTable + 2 * (row - 1)) &
                                     datapage::kOffsetMask);
    if (r.flags & datapage::kDeletedFlag) {
        // A deleted row's bounds are not relied on; clamp them.
        if (r.start < tableEnd || r.start > r.end) r.start = r.end = 0;
        return r;
    }
    if (r.start < tableEnd || r.start > r.end || r.end > kPageSize)
        throwCorrupt(pageNumber, "row " + std::to_string(row) + " has impossible bounds");
    return r;
}

RowBytes rowBytes(PageCache& pages, RowId id) {
    return rowBytes(pages.page(id.page), id.page, id.row);
}

bool UsageMap::contains(std::uint32_t page) const {
    return std::binary_search(pages.begin(), pages.end(), page);
}

namespace {
void collectBits(const std::uint8_t* bits, std::size_t n, std::uint32_t first, std::uint32_t limit,
                 UsageMap& out) {
    for (std::size_t i = 0; i < n; ++i) {
        if (!bits[i]) continue;
        for (int b = 0; b < 8; ++b) {
            if (!(bits[i] & (1u << b))) continue;
            std::uint64_t pg = std::uint64_t(first) + i * 8 + std::uint64_t(b);
            if (pg < limit) {
                out.pages.push_back(std::uint32_t(pg));
            } else if (out.outside++ == 0) {
                out.firstOutside = std::uint32_t(std::min<std::uint64_t>(pg, UINT32_MAX));
            }
        }
    }
}
}  // namespace

std::uint32_t mapPageOfEntry(std::uint32_t entry) { return std::int32_t(entry) > 0 ? entry : 0; }

UsageMap readUsageMap(PageCache& pages, std::uint32_t dataPointer) {
    UsageMap m;
    m.where = RowId::fromPointer(dataPointer);
    RowBytes r = rowBytes(pages, m.where);
    if (r.flags & datapage::kDeletedFlag) throwCorrupt(m.where.page, "usage map row is deleted");
    if (r.size() < 1) throwCorrupt(m.where.page, "usage map row is empty");
    const std::uint8_t* d = r.data();
    m.type = d[0];
    // Pages beyond the end of the file cannot be in use; ignoring such bits
    // keeps a damaged map from sending readers outside the file.
    std::uint32_t limit = pages.pageCount();
    if (m.type == 0) {
        if (r.size() < 5) throwCorrupt(m.where.page, "usage map row is truncated");
        m.startPage = u32(d + 1);
        collectBits(d + 5, r.size() - 5, m.startPage, limit, m);
    } else if (m.type == 1) {
        std::size_t n = (r.size() - 1) / 4;
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint32_t mp = mapPageOfEntry(u32(d + 1 + 4 * i));
            m.mapPages.push_back(mp);
            if (mp == 0) continue;
            PageRef page = pages.page(mp, PageType::UsageMap);
            collectBits(page->data() + 4, kPageSize - 4, std::uint32_t(i * kPagesPerMapPage), limit,
                        m);
        }
    } else {
        throwCorrupt(m.where.page, "unknown usage map type " + std::to_string(m.type));
    }
    std::sort(m.pages.begin(), m.pages.end());
    m.pages.erase(std::unique(m.pages.begin(), m.pages.end()), m.pages.end());
    return m;
}

}  // namespace jet
