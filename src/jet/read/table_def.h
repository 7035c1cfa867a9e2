#pragma once
// The in-memory model of a table definition (TDEF pages).
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/format/value.h"
#include "jet/store/page_file.h"

namespace jet {

// A "data pointer": page and row number packed as Jet stores it (row in the
// low byte, page in the upper three).
struct RowId {
    std::uint32_t page = 0;
    std::uint16_t row = 0;
    static RowId fromPointer(std::uint32_t p) { return {p >> 8, std::uint16_t(p & 0xFF)}; }
    std::uint32_t pointer() const { return (page << 8) | (row & 0xFF); }
    bool operator==(const RowId&) const = default;
    auto operator<=>(const RowId&) const = default;
};
std::string toString(RowId id);  // "page:row"

namespace colflag {
constexpr std::uint8_t kFixed = 0x01;
constexpr std::uint8_t kNullable = 0x02;  // "can be null"
constexpr std::uint8_t kAutoLong = 0x04;  // autonumber (Long)
constexpr std::uint8_t kReplication = 0x10;
constexpr std::uint8_t kAutoGuid = 0x40;
constexpr std::uint8_t kHyperlink = 0x80;
}  // namespace colflag
namespace colmisc {
constexpr std::uint8_t kCompressedUnicode = 0x01;
}

struct Column {
    std::string name;
    ColumnType type = ColumnType::Text;
    std::uint32_t tableId = 0;    // the 4 bytes after the type (unknown meaning; kept for writing)
    std::uint16_t number = 0;     // position in the null mask; counts deleted columns
    std::uint16_t varIndex = 0;   // slot in the variable-offset table (variable columns)
    std::uint16_t index = 0;      // second column number of the descriptor
    std::uint16_t sortOrder = 0;  // text columns: 0x409 General (bytes 11-12)
    std::uint8_t precision = 0;   // Numeric (byte 11)
    std::uint8_t scale = 0;       // Numeric (byte 12)
    std::uint16_t miscExt = 0;    // bytes 13-14 (sort order version in the second byte)
    std::uint8_t flags = 0;       // colflag::
    std::uint8_t miscFlags = 0;   // colmisc::
    std::uint32_t unknown17 = 0;  // bytes 17-20
    std::uint16_t fixedOffset = 0;  // offset in the fixed part of a row (after the column count)
    std::uint16_t length = 0;       // bytes (Text: 2 per character); 0 for Memo/OLE

    bool isFixed() const { return flags & colflag::kFixed; }
    bool isAutoNumber() const { return flags & (colflag::kAutoLong | colflag::kAutoGuid); }
    bool isNullable() const { return flags & colflag::kNullable; }
    bool compressedUnicode() const { return miscFlags & colmisc::kCompressedUnicode; }
    // Characters for Text, bytes otherwise.
    int displaySize() const;
};

struct IndexColumn {
    std::uint16_t columnNumber = 0;  // Column::number
    bool ascending = true;
};

namespace idxflag {
constexpr std::uint8_t kUnique = 0x01;
constexpr std::uint8_t kIgnoreNulls = 0x02;  // rows whose key columns are all Null stay out
constexpr std::uint8_t kRequired = 0x08;     // no key column may be Null
constexpr std::uint8_t kAlwaysSet = 0x80;    // on every index Access writes; meaning unknown
}  // namespace idxflag

// A physical index: one B-tree.
struct RealIndex {
    std::uint32_t unknownA = 0;        // first 4 bytes of the 52-byte entry
    std::uint32_t rowCount = 0;        // from the 12-byte count block
    std::vector<IndexColumn> columns;  // up to 10
    std::uint32_t usedPages = 0;       // data pointer to its usage map
    std::uint32_t rootPage = 0;        // first_dp
    std::uint8_t flags = 0;            // idxflag:: (byte tdef::kRealIndexFlags of the entry)
};

// A logical index (what users see by name); several may share a RealIndex.
struct Index {
    std::string name;
    std::uint32_t number = 0;
    std::uint32_t realIndex = 0;  // position in TableDef::realIndexes
    // One side of a relationship with referential integrity: both tables
    // hold a foreign-key entry naming the other's by its number.
    std::uint8_t relatedTableType = 0;  // fktable:: (this table's part)
    std::int32_t relatedIndex = -1;     // Index::number in the other table; -1: none
    std::uint32_t relatedTablePage = 0;
    // Only meaningful on foreign-key entries; Access writes 0x04 0x04 on
    // every other entry.
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool cascadeNull = false;  // deleting the referenced row sets the reference to Null
    std::uint8_t type = 0;     // 1 primary key, 2 foreign key (either side)
    bool isPrimary() const { return type == 1; }
    bool isForeignKey() const { return type == 2; }
    bool isRelationshipSide() const { return relatedIndex >= 0; }
};

// Index::relatedTableType: which part of the relationship the table holding
// the entry plays.
namespace fktable {
constexpr std::uint8_t kReferenced = 1;  // the "primary" table, whose key is referred to
constexpr std::uint8_t kReferring = 2;   // the table whose rows hold the references
}  // namespace fktable
// The cascade bytes of a foreign-key entry.
namespace fkcascade {
constexpr std::uint8_t kCascade = 0x01;        // both bytes
constexpr std::uint8_t kSetNull = 0x02;        // the delete byte
constexpr std::uint8_t kNotForeignKey = 0x04;  // what Access writes on every other entry
}  // namespace fkcascade

// Per variable column usage maps, at the end of the definition.
struct VarColumnMaps {
    std::uint16_t columnNumber = 0;
    std::uint32_t usedPages = 0;
    std::uint32_t freePages = 0;
};

struct TableDef {
    std::uint32_t page = 0;  // first TDEF page
    std::string name;
    std::vector<std::uint32_t> pages;  // every TDEF page of the chain, in order
    std::uint32_t rowCount = 0;
    std::uint32_t nextAutoNumber = 0;
    std::uint8_t autoNumberFlag = 0;
    std::uint32_t complexAutoNumber = 0;
    std::uint8_t tableType = 0x4E;  // 0x4E user, 0x53 system
    std::uint16_t maxColumns = 0;
    std::uint16_t varColumnCount = 0;
    std::uint16_t columnCount = 0;
    std::uint32_t usedPages = 0;  // data pointer to the table's usage map row
    std::uint32_t freePages = 0;
    std::vector<Column> columns;  // sorted by Column::number (the order readers show)
    std::vector<RealIndex> realIndexes;
    std::vector<Index> indexes;
    std::vector<VarColumnMaps> varColumnMaps;
    PageBytes raw;  // the concatenated definition (first page whole, later pages after their 8-byte
                    // header)

    const Column* column(const std::string& name) const;  // case-insensitive; nullptr if none
    int columnPosition(const std::string& name) const;    // index into columns, -1 if none
    const Column* columnByNumber(std::uint16_t number) const;
    std::uint16_t fixedColumnCount() const;
};

class PageCache;
// Reads and parses the TDEF chain starting at page. Throws "corrupt page N: ...".
std::shared_ptr<TableDef> readTableDef(PageCache& pages, std::uint32_t page);
// Parses an already concatenated definition (exposed for tests and the writer).
std::shared_ptr<TableDef> parseTableDef(const PageBytes& raw, std::uint32_t page);

}  // namespace jet
