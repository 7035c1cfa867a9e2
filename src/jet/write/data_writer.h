#pragma once
// Data pages as the writer edits them (table rows and long-value rows), and
// finding a page with room for a new row. Only inside a unit of work.
#include <cstdint>
#include <optional>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"
#include "jet/store/page_file.h"

namespace jet {

class Database;

// "LVAL" where a data page of table rows names its TDEF page.
constexpr std::uint32_t kLongValueOwner = 0x4C41564Cu;
// The largest row Jet writes on a data page.
constexpr std::size_t kMaxRowSize = 4060;
// Rows a page can number: the row part of a data pointer is one byte.
constexpr std::size_t kMaxRowsPerPage = 256;
constexpr std::uint16_t kRemovedRow = datapage::kDeletedFlag | datapage::kOverflowFlag;

// One data page: its rows in slot order. encode() lays them out again from
// the end of the page (slot 0 last), so the page stays compact and every
// slot keeps its number.
class DataPage {
  public:
    DataPage(std::uint32_t number, std::uint32_t owner);  // empty
    // Throws "corrupt page N" for a page that is not a data page or whose
    // offsets cannot be right.
    static DataPage load(PageCache& pages, std::uint32_t number);

    std::uint32_t number() const { return number_; }
    std::uint32_t owner() const { return u32(head_.data() + datapage::kTdefPage); }
    std::size_t rowCount() const { return slots_.size(); }
    // The figure of the page header: bytes between the offset table and the rows.
    std::size_t freeSpace() const;
    // Whether a new row of size bytes fits (with a new slot unless a removed
    // one can be used again).
    bool fits(std::size_t size) const;
    bool fitsReplacing(std::uint16_t slot, std::size_t size) const;
    // The slot of the new row; throws when it does not fit.
    std::uint16_t add(Binary row, std::uint16_t flags = 0);
    void replace(std::uint16_t slot, Binary row, std::uint16_t flags);
    // Marks the slot removed (both flags) and gives its bytes back.
    void remove(std::uint16_t slot) { replace(slot, {}, kRemovedRow); }
    std::uint16_t flags(std::uint16_t slot) const { return slots_.at(slot).flags; }
    const Binary& row(std::uint16_t slot) const { return slots_.at(slot).bytes; }

    PageBytes encode() const;
    void store(PageCache& pages) const;

  private:
    struct Slot {
        std::uint16_t flags = 0;
        Binary bytes;
    };
    std::optional<std::uint16_t> reusableSlot() const;
    std::uint32_t number_;
    PageBytes head_;  // the header bytes before the offset table
    std::vector<Slot> slots_;
    std::size_t used_ = 0;  // bytes of all rows
};

// The pages rows of one kind go to: a table's rows (owner = TDEF page) or a
// long-value column's (owner = kLongValueOwner), with the usage maps that
// list the pages owned and the pages with free space (0 = none).
struct PagePool {
    std::uint32_t owner = 0;
    std::uint32_t usedMap = 0;
    std::uint32_t freeMap = 0;
    // A page stays in the free-space map while it has at least this many bytes free.
    std::size_t keepFree = 0;
};

PagePool tablePool(const TableDef& def);

// Writes row on a page of the pool with room (never on page avoid), or on
// a new page added to the pool's maps. Answers where it lies.
RowId placeRow(Database& db, const PagePool& pool, Binary row, std::uint16_t flags = 0,
               std::uint32_t avoid = 0);
// Stores page and brings its bit in the pool's free-space map in line.
void storePage(Database& db, const PagePool& pool, const DataPage& page);

}  // namespace jet
