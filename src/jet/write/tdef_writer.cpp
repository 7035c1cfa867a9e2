#include "jet/write/tdef_writer.h"

#include <algorithm>

#include "jet/format/error.h"
#include "jet/format/format.h"
#include "jet/format/text.h"
#include "jet/read/database.h"

namespace jet {

namespace {

constexpr std::size_t kPageHeader = 8;  // type, 0x01, "VC", next page

class Out {
  public:
    PageBytes b;
    std::size_t size() const { return b.size(); }
    void u8(std::uint8_t v) { b.push_back(v); }
    void u16(std::uint16_t v) {
        u8(std::uint8_t(v));
        u8(std::uint8_t(v >> 8));
    }
    void u32(std::uint32_t v) {
        u16(std::uint16_t(v));
        u16(std::uint16_t(v >> 16));
    }
    void name(const std::string& s) {
        std::vector<std::uint8_t> t = utf8ToUcs2(s);
        if (t.size() > 0xFFFF) throw Error("name too long: " + s);
        u16(std::uint16_t(t.size()));
        b.insert(b.end(), t.begin(), t.end());
    }
};

// Where the sections of an already written definition lie, so that bytes
// the model has no field for can be carried over. Only usable when the
// definition still has the same number of columns and indexes.
struct RawLayout {
    bool valid = false;
    std::size_t counts = 0, columns = 0, realIndexes = 0, logicalIndexes = 0;
    std::size_t tail = 0, end = 0;  // bytes after the column maps that no reader interprets
};

// The stored length leaves out the headers of continuation pages but one.
std::size_t streamLength(std::uint32_t stored, std::size_t pages) {
    return pages > 1 ? stored + kPageHeader : stored;
}

RawLayout layoutOf(const TableDef& def) {
    RawLayout l;
    const PageBytes& r = def.raw;
    if (r.size() < tdef::kBlockEnd) return l;
    if (u16(r.data() + tdef::kColumns) != def.columns.size() ||
        u32(r.data() + tdef::kRealIndexes) != def.realIndexes.size() ||
        u32(r.data() + tdef::kLogicalIndexes) != def.indexes.size())
        return l;
    l.counts = tdef::kBlockEnd;
    l.columns = l.counts + tdef::kRealIndexCountEntry * def.realIndexes.size();
    std::size_t at = l.columns + tdef::kColumnEntry * def.columns.size();
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        if (at + 2 > r.size()) return l;
        at += 2 + u16(r.data() + at);
    }
    l.realIndexes = at;
    l.logicalIndexes = at + tdef::kRealIndexEntry * def.realIndexes.size();
    at = l.logicalIndexes + tdef::kLogicalIndexEntry * def.indexes.size();
    for (std::size_t i = 0; i < def.indexes.size(); ++i) {
        if (at + 2 > r.size()) return l;
        at += 2 + u16(r.data() + at);
    }
    at += 10 * def.varColumnMaps.size();
    if (at + 2 > r.size() || u16(r.data() + at) != 0xFFFF) return l;
    l.tail = at + 2;
    std::size_t pages = r.size() <= kPageSize ? 1 : 2;
    l.end = std::min(r.size(), streamLength(u32(r.data() + tdef::kLength), pages));
    l.end = std::max(l.end, l.tail);
    l.valid = true;
    return l;
}

void copyRaw(PageBytes& out, const TableDef& def, std::size_t from, std::size_t n) {
    out.insert(out.end(), def.raw.begin() + std::ptrdiff_t(from),
               def.raw.begin() + std::ptrdiff_t(from + n));
}

}  // namespace

PageBytes encodeTableDef(const TableDef& def) {
    Out o;
    o.b.assign(tdef::kBlockEnd, 0);
    // Reserved bytes of the header block are kept as Access wrote them.
    if (def.raw.size() >= tdef::kBlockEnd)
        std::copy(def.raw.begin(), def.raw.begin() + tdef::kBlockEnd, o.b.begin());
    std::uint8_t* h = o.b.data();
    h[0] = std::uint8_t(PageType::TableDef);
    h[1] = 0x01;
    put16(h + 2, 0);  // free space and link belong to the pages (tableDefPages)
    put32(h + tdef::kNextPage, 0);
    put32(h + tdef::kRowCount, def.rowCount);
    put32(h + tdef::kAutoNumber, def.nextAutoNumber);
    h[tdef::kAutoNumberFlag] = def.autoNumberFlag;
    put32(h + tdef::kComplexAutoNumber, def.complexAutoNumber);
    h[tdef::kTableType] = def.tableType;
    put16(h + tdef::kMaxColumns, def.maxColumns);
    put16(h + tdef::kVarColumns, def.varColumnCount);
    put16(h + tdef::kColumns, std::uint16_t(def.columns.size()));
    put32(h + tdef::kLogicalIndexes, std::uint32_t(def.indexes.size()));
    put32(h + tdef::kRealIndexes, std::uint32_t(def.realIndexes.size()));
    put32(h + tdef::kUsedPages, def.usedPages);
    put32(h + tdef::kFreePages, def.freePages);

    const RawLayout raw = layoutOf(def);
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        std::size_t e = raw.counts + i * tdef::kRealIndexCountEntry;
        if (raw.valid)
            copyRaw(o.b, def, e, 4);
        else
            o.u32(0);
        o.u32(def.realIndexes[i].rowCount);
        if (raw.valid)
            copyRaw(o.b, def, e + 8, 4);
        else
            o.u32(0);
    }
    // Access does not store the descriptors in column-number order; an
    // existing definition keeps its order, new columns follow.
    std::vector<const Column*> order;
    if (raw.valid) {
        for (std::size_t i = 0; i < def.columns.size(); ++i) {
            const Column* c =
                def.columnByNumber(u16(def.raw.data() + raw.columns + i * tdef::kColumnEntry + 5));
            if (!c || std::find(order.begin(), order.end(), c) != order.end()) {
                order.clear();
                break;
            }
            order.push_back(c);
        }
    }
    if (order.empty())
        for (const Column& c : def.columns) order.push_back(&c);
    for (const Column* cp : order) {
        const Column& c = *cp;
        o.u8(std::uint8_t(c.type));
        o.u32(c.tableId);
        o.u16(c.number);
        o.u16(c.varIndex);
        o.u16(c.index);
        if (c.type == ColumnType::Numeric) {
            o.u8(c.precision);
            o.u8(c.scale);
        } else {
            o.u16(c.sortOrder);
        }
        o.u16(c.miscExt);
        o.u8(c.flags);
        o.u8(c.miscFlags);
        o.u32(c.unknown17);
        o.u16(c.fixedOffset);
        o.u16(c.length);
    }
    for (const Column* c : order) o.name(c->name);
    for (std::size_t i = 0; i < def.realIndexes.size(); ++i) {
        const RealIndex& ri = def.realIndexes[i];
        if (ri.columns.size() > tdef::kIndexColumnSlots)
            throw Error("an index holds at most 10 columns");
        o.u32(ri.unknownA);
        for (std::size_t k = 0; k < tdef::kIndexColumnSlots; ++k) {
            if (k < ri.columns.size()) {
                o.u16(ri.columns[k].columnNumber);
                o.u8(ri.columns[k].ascending ? 0x01 : 0x00);
            } else if (raw.valid) {  // unused slots hold leftovers Access never clears
                copyRaw(o.b, def, raw.realIndexes + i * tdef::kRealIndexEntry + 4 + 3 * k, 3);
            } else {
                o.u16(0xFFFF);
                o.u8(0);
            }
        }
        o.u32(ri.usedPages);
        o.u32(ri.rootPage);
        // Around the flags Access leaves whatever its memory held: kept when
        // rewriting a definition, zeros in a new one.
        const std::size_t entry = raw.realIndexes + i * tdef::kRealIndexEntry;
        const std::size_t gap = tdef::kRealIndexFlags - 42;
        const std::size_t rest = tdef::kRealIndexEntry - tdef::kRealIndexFlags - 1;
        if (raw.valid)
            copyRaw(o.b, def, entry + 42, gap);
        else
            o.b.insert(o.b.end(), gap, 0);
        o.u8(ri.flags);
        if (raw.valid)
            copyRaw(o.b, def, entry + tdef::kRealIndexFlags + 1, rest);
        else
            o.b.insert(o.b.end(), rest, 0);
    }
    for (std::size_t i = 0; i < def.indexes.size(); ++i) {
        const Index& li = def.indexes[i];
        std::size_t e = raw.logicalIndexes + i * tdef::kLogicalIndexEntry;
        if (raw.valid)
            copyRaw(o.b, def, e, 4);
        else
            o.u32(0);
        o.u32(li.number);
        o.u32(li.realIndex);
        o.u8(li.relatedTableType);
        o.u32(std::uint32_t(li.relatedIndex));
        o.u32(li.relatedTablePage);
        if (li.isRelationshipSide()) {
            o.u8(li.cascadeUpdates ? fkcascade::kCascade : 0);
            o.u8(li.cascadeDeletes ? fkcascade::kCascade
                 : li.cascadeNull  ? fkcascade::kSetNull
                                   : 0);
        } else {
            o.u8(fkcascade::kNotForeignKey);
            o.u8(fkcascade::kNotForeignKey);
        }
        o.u8(li.type);
        if (raw.valid)
            copyRaw(o.b, def, e + 24, 4);
        else
            o.u32(0);
    }
    for (const Index& li : def.indexes) o.name(li.name);
    for (const VarColumnMaps& m : def.varColumnMaps) {
        o.u16(m.columnNumber);
        o.u32(m.usedPages);
        o.u32(m.freePages);
    }
    o.u16(0xFFFF);
    if (raw.valid) copyRaw(o.b, def, raw.tail, raw.end - raw.tail);
    std::size_t pages = o.size() <= kPageSize ? 1 : 2;
    put32(o.b.data() + tdef::kLength, std::uint32_t(o.size() - (streamLength(0, pages))));
    return std::move(o.b);
}

std::size_t tableDefPageCount(const TableDef& def) {
    std::size_t n = encodeTableDef(def).size();
    if (n <= kPageSize) return 1;
    return 1 + (n - kPageSize + (kPageSize - kPageHeader) - 1) / (kPageSize - kPageHeader);
}

std::vector<PageBytes> tableDefPages(const TableDef& def,
                                     const std::vector<std::uint32_t>& pageNumbers) {
    PageBytes stream = encodeTableDef(def);
    std::vector<PageBytes> pages;
    std::size_t at = 0;
    while (at < stream.size() || pages.empty()) {
        PageBytes p(kPageSize, 0);
        if (pages.empty()) {
            std::size_t n = std::min<std::size_t>(kPageSize, stream.size());
            std::copy(stream.begin(), stream.begin() + std::ptrdiff_t(n), p.begin());
            at = n;
            put16(p.data() + 2,
                  std::uint16_t(kPageSize - kPageHeader - std::min(n, kPageSize - kPageHeader)));
        } else {
            p[0] = std::uint8_t(PageType::TableDef);
            p[1] = 0x01;
            std::size_t n = std::min<std::size_t>(kPageSize - kPageHeader, stream.size() - at);
            put16(p.data() + 2, std::uint16_t(kPageSize - kPageHeader - n));
            std::copy(stream.begin() + std::ptrdiff_t(at), stream.begin() + std::ptrdiff_t(at + n),
                      p.begin() + kPageHeader);
            at += n;
        }
        pages.push_back(std::move(p));
    }
    if (pages.size() != pageNumbers.size())
        throw Error("table definition needs " + std::to_string(pages.size()) + " pages, got " +
                    std::to_string(pageNumbers.size()));
    for (std::size_t i = 0; i + 1 < pages.size(); ++i)
        put32(pages[i].data() + tdef::kNextPage, pageNumbers[i + 1]);
    return pages;
}

void storeTableDef(Database& db, const TableDef& def) {
    std::vector<std::uint32_t> numbers = def.pages.empty() ? std::vector{def.page} : def.pages;
    std::size_t need = tableDefPageCount(def);
    while (numbers.size() < need) numbers.push_back(db.allocatePage(PageType::TableDef));
    // Schema changes only add to a definition, so the chain never has to give pages back.
    numbers.resize(need);
    std::vector<PageBytes> pages = tableDefPages(def, numbers);
    for (std::size_t i = 0; i < pages.size(); ++i) db.pages().put(numbers[i], pages[i]);
    db.forgetTableDef(def.page);
}

}  // namespace jet
