#pragma once
// Usage maps: which pages a table (or index) owns, or which of them have
// free space. Stored as a row; type 0 holds the bitmap inline (start page +
// bits), type 1 lists usage-map pages (type 0x05), each mapping 4092*8 pages.
#include <cstdint>
#include <vector>

#include "jet/read/table_def.h"
#include "jet/store/page_file.h"

namespace jet {

constexpr std::uint32_t kPagesPerMapPage = (kPageSize - 4) * 8;

struct UsageMap {
    RowId where;                          // the row holding the map
    std::uint8_t type = 0;                // 0 inline, 1 reference
    std::uint32_t startPage = 0;          // type 0
    std::vector<std::uint32_t> mapPages;  // type 1: page of each 0x05 page (0 = none)
    std::vector<std::uint32_t> pages;     // every page marked, ascending
    // Marked pages beyond the end of the file, left out of pages: a cut
    // file loses them, and a check must say so rather than see less.
    std::size_t outside = 0;
    std::uint32_t firstOutside = 0;
    bool contains(std::uint32_t page) const;
};

// Reads the map whose row is at the data pointer. Throws on corruption.
UsageMap readUsageMap(PageCache& pages, std::uint32_t dataPointer);

// The usage-map page an entry of a reference map names, 0 for none. Jet
// reads the entry as a signed number and follows only a positive one: Access
// leaves entries it has no page for at 0 or at a negative filler (0xFFFFFF80
// in the last entry of a global map), and no page number is negative.
std::uint32_t mapPageOfEntry(std::uint32_t entry);

// The bytes of a row (row offset table resolved; deleted rows are still
// returned; overflow pointers are not followed). Throws "corrupt page N".
struct RowBytes {
    PageRef page;
    std::uint16_t start = 0, end = 0;  // [start, end) within the page
    std::uint16_t flags = 0;           // datapage::kDeletedFlag / kOverflowFlag
    std::uint32_t pageNumber = 0;
    std::uint16_t row = 0;
    const std::uint8_t* data() const { return page->data() + start; }
    std::size_t size() const { return end - start; }
};
// Number of rows in the offset table of a data page.
std::uint16_t rowCountOf(const PageBytes& page);
RowBytes rowBytes(PageCache& pages, RowId id);
// For data pages already in hand.
RowBytes rowBytes(const PageRef& page, std::uint32_t pageNumber, std::uint16_t row);

}  // namespace jet
