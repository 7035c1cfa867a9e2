#include "jet/read/table_def.h"

#include <algorithm>
#include <set>

#include "jet/format/error.h"
#include "jet/format/text.h"

namespace jet {

std::string toString(RowId id) { return std::to_string(id.page) + ":" + std::to_string(id.row); }

int Column::displaySize() const {
    if (type == ColumnType::Text) return length / 2;
    if (type == ColumnType::Boolean) return 1;
    if (isLongValueType(type)) return 0;
    return length ? length : fixedSizeOf(type);
}

const Column* TableDef::column(const std::string& n) const {
    int i = columnPosition(n);
    return i < 0 ? nullptr : &columns[std::size_t(i)];
}

int TableDef::columnPosition(const std::string& n) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (equalsNoCase(columns[i].name, n)) return int(i);
    return -1;
}

const Column* TableDef::columnByNumber(std::uint16_t number) const {
    for (const Column& c : columns)
        if (c.number == number) return &c;
    return nullptr;
}

std::uint16_t TableDef::fixedColumnCount() const {
    return std::uint16_t(
        std::count_if(columns.begin(), columns.end(), [](const Column& c) { return c.isFixed(); }));
}

namespace {

// Bounds-checked reading of the concatenated definition.
class Cursor {
  public:
    Cursor(const PageBytes& b, std::uint32_t page) : b_(b), page_(page) {}
    void need(std::size_t at, std::size_t n) const {
        if (at > b_.size() || n > b_.size() - at)
            throwCorrupt(page_, "table definition is truncated");
    }
    std::uint8_t u8(std::size_t at) const {
        need(at, 1);
        return b_[at];
    }
    std::uint16_t r16(std::size_t at) const {
        need(at, 2);
        return u16(b_.data() + at);
    }
    std::uint32_t r32(std::size_t at) const {
        need(at, 4);
        return u32(b_.data() + at);
    }
    std::string name(std::size_t& at) const {
        std::uint16_t len = r16(at);
        need(at + 2, len);
        std::string s = decodeText(b_.data() + at + 2, len);
        at += 2 + len;
        return s;
    }

  private:
    const PageBytes& b_;
    std::uint32_t page_;
};

}  // namespace

std::shared_ptr<TableDef> parseTableDef(const PageBytes& raw, std::uint32_t page) {
    Cursor c(raw, page);
    auto d = std::make_shared<TableDef>();
    d->page = page;
    d->raw = raw;
    if (c.u8(0) != std::uint8_t(PageType::TableDef))
        throwCorrupt(page, "not a table definition page");
    d->rowCount = c.r32(tdef::kRowCount);
    d->nextAutoNumber = c.r32(tdef::kAutoNumber);
    d->autoNumberFlag = c.u8(tdef::kAutoNumberFlag);
    d->complexAutoNumber = c.r32(tdef::kComplexAutoNumber);
    d->tableType = c.u8(tdef::kTableType);
    d->maxColumns = c.r16(tdef::kMaxColumns);
    d->varColumnCount = c.r16(tdef::kVarColumns);
    d->columnCount = c.r16(tdef::kColumns);
    std::uint32_t logicalCount = c.r32(tdef::kLogicalIndexes);
    std::uint32_t realCount = c.r32(tdef::kRealIndexes);
    d->usedPages = c.r32(tdef::kUsedPages);
    d->freePages = c.r32(tdef::kFreePages);
    // A definition is at most a few pages; counts beyond what could fit are corruption.
    if (realCount > 1000 || logicalCount > 1000 || realCount > raw.size() / tdef::kRealIndexEntry ||
        logicalCount > raw.size() / tdef::kLogicalIndexEntry ||
        d->columnCount > raw.size() / tdef::kColumnEntry)
        throwCorrupt(page, "impossible counts in the table definition");

    std::size_t at = tdef::kBlockEnd;
    d->realIndexes.resize(realCount);
    for (std::uint32_t i = 0; i < realCount; ++i) {
        d->realIndexes[i].rowCount = c.r32(at + 4);
        at += tdef::kRealIndexCountEntry;
    }
    d->columns.resize(d->columnCount);
    for (Column& col : d->columns) {
        c.need(at, tdef::kColumnEntry);
        std::uint8_t type = c.u8(at);
        // Types this reader does not know (0x0D, 0x11 in Access's own
        // system tables) are kept by code and read as raw bytes.
        if (type == 0) throwCorrupt(page, "column of type 0");
        col.type = ColumnType(type);
        col.tableId = c.r32(at + 1);
        col.number = c.r16(at + 5);
        col.varIndex = c.r16(at + 7);
        col.index = c.r16(at + 9);
        col.sortOrder = c.r16(at + 11);
        col.precision = c.u8(at + 11);
        col.scale = c.u8(at + 12);
        col.miscExt = c.r16(at + 13);
        col.flags = c.u8(at + 15);
        col.miscFlags = c.u8(at + 16);
        col.unknown17 = c.r32(at + 17);
        col.fixedOffset = c.r16(at + 21);
        col.length = c.r16(at + 23);
        at += tdef::kColumnEntry;
    }
    for (Column& col : d->columns) col.name = c.name(at);
    for (RealIndex& ri : d->realIndexes) {
        c.need(at, tdef::kRealIndexEntry);
        ri.unknownA = c.r32(at);
        for (std::size_t k = 0; k < tdef::kIndexColumnSlots; ++k) {
            std::uint16_t num = c.r16(at + 4 + 3 * k);
            std::uint8_t order = c.u8(at + 6 + 3 * k);
            if (num == 0xFFFF) continue;
            // Jet writes 0x01 for ascending and 0x00 for descending; only
            // bit 0 counts.
            ri.columns.push_back({num, (order & 0x01) != 0});
        }
        ri.usedPages = c.r32(at + 34);
        ri.rootPage = c.r32(at + 38);
        ri.flags = c.u8(at + tdef::kRealIndexFlags);
        at += tdef::kRealIndexEntry;
    }
    d->indexes.resize(logicalCount);
    for (Index& li : d->indexes) {
        c.need(at, tdef::kLogicalIndexEntry);
        li.number = c.r32(at + 4);
        li.realIndex = c.r32(at + 8);
        li.relatedTableType = c.u8(at + 12);
        li.relatedIndex = std::int32_t(c.r32(at + 13));
        li.relatedTablePage = c.r32(at + 17);
        li.type = c.u8(at + 23);
        if (li.isRelationshipSide()) {
            li.cascadeUpdates = c.u8(at + 21) == fkcascade::kCascade;
            li.cascadeDeletes = c.u8(at + 22) == fkcascade::kCascade;
            li.cascadeNull = c.u8(at + 22) == fkcascade::kSetNull;
        }
        if (li.realIndex >= realCount) throwCorrupt(page, "index refers to a missing index tree");
        at += tdef::kLogicalIndexEntry;
    }
    for (Index& li : d->indexes) li.name = c.name(at);
    // Usage maps of variable columns follow, ended by 0xFFFF; older files
    // may simply end here.
    while (at + 2 <= raw.size()) {
        std::uint16_t num = c.r16(at);
        if (num == 0xFFFF || at + 10 > raw.size()) break;
        d->varColumnMaps.push_back({num, c.r32(at + 2), c.r32(at + 6)});
        at += 10;
        if (d->varColumnMaps.size() > d->columns.size()) break;
    }

    std::stable_sort(d->columns.begin(), d->columns.end(),
                     [](const Column& a, const Column& b) { return a.number < b.number; });
    for (const Column& col : d->columns) {
        if (col.number >= 0x8000) throwCorrupt(page, "column number out of range");
        if (col.isFixed() && col.type != ColumnType::Boolean) {
            std::uint32_t size = col.length ? col.length : fixedSizeOf(col.type);
            if (std::uint32_t(col.fixedOffset) + size > kPageSize)
                throwCorrupt(page, "fixed column " + col.name + " lies outside any row");
        }
    }
    // Readers find an index's columns by number; Access drops an index with
    // its column, so a number naming no column is damage.
    for (std::size_t ri = 0; ri < d->realIndexes.size(); ++ri)
        for (const IndexColumn& ic : d->realIndexes[ri].columns) {
            if (d->columnByNumber(ic.columnNumber)) continue;
            std::string name = "tree " + std::to_string(ri);
            for (const Index& li : d->indexes)
                if (li.realIndex == ri) name = li.name;
            throwCorrupt(page, "index " + name + " names column number " +
                                   std::to_string(std::int16_t(ic.columnNumber)) +
                                   ", which the table does not have");
        }
    return d;
}

std::shared_ptr<TableDef> readTableDef(PageCache& pages, std::uint32_t page) {
    PageBytes raw;
    std::vector<std::uint32_t> chain;
    std::set<std::uint32_t> seen;
    std::uint32_t p = page;
    while (p != 0) {
        if (!seen.insert(p).second) throwCorrupt(p, "table definition pages form a cycle");
        PageRef bytes = pages.page(p, PageType::TableDef);
        chain.push_back(p);
        if (raw.empty())
            raw.assign(bytes->begin(), bytes->end());
        else
            raw.insert(raw.end(), bytes->begin() + 8, bytes->end());
        p = u32(bytes->data() + tdef::kNextPage);
        if (chain.size() > 64) throwCorrupt(page, "table definition spans too many pages");
    }
    auto d = parseTableDef(raw, page);
    d->pages = std::move(chain);
    return d;
}

}  // namespace jet
