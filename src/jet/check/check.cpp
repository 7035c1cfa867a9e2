#include "jet/check/check.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/write/data_writer.h"
#include "jet/write/relationships.h"

namespace jet {

namespace {

// Every page of an index tree: an index page of this table, marked in the
// index's usage map. Walks children and leaf links once each.
void checkIndexPages(Database& db, const TableDef& d, const RealIndex& real,
                     const std::string& where, std::vector<std::string>& faults) {
    if (real.rootPage == 0) return;
    UsageMap map;
    try {
        map = readUsageMap(db.pages(), real.usedPages);
    } catch (const Error& e) {
        faults.push_back(where + "usage map: " + e.what());
        return;
    }
    if (map.outside > 0)
        faults.push_back(where + "usage map names page " + std::to_string(map.firstOutside) +
                         ", beyond the end of the file");
    for (std::uint32_t p : map.pages) {
        try {
            PageRef raw = db.pages().page(p);
            const std::uint8_t type = (*raw)[0];
            if (type != std::uint8_t(PageType::IndexNode) &&
                type != std::uint8_t(PageType::IndexLeaf))
                faults.push_back(where + "page " + std::to_string(p) +
                                 " is in the index's usage map but is a page of type " +
                                 std::to_string(type));
        } catch (const Error& e) {
            faults.push_back(where + e.what());
        }
    }
    std::set<std::uint32_t> seen;
    std::vector<std::uint32_t> todo{real.rootPage};
    while (!todo.empty()) {
        std::uint32_t p = todo.back();
        todo.pop_back();
        if (p == 0 || !seen.insert(p).second) continue;
        try {
            IndexPage ip = readIndexPage(db.pages(), p);
            PageRef raw = db.pages().page(p);
            if (u32(raw->data() + indexpage::kTdefPage) != d.page)
                faults.push_back(where + "index page " + std::to_string(p) +
                                 " names another table");
            if (!map.contains(p))
                faults.push_back(where + "index page " + std::to_string(p) +
                                 " is missing from the index's usage map");
            if (ip.type == PageType::IndexNode)
                for (const IndexEntry& e : ip.entries) todo.push_back(e.childPage);
            todo.push_back(ip.nextPage);
            todo.push_back(ip.tailPage);
        } catch (const Error& e) {
            faults.push_back(where + e.what());
        }
    }
}

void checkIndexes(Database& db, const Table& t, const std::set<RowId>& live,
                  std::vector<std::string>& faults) {
    const TableDef& d = t.def();
    for (std::size_t ri = 0; ri < d.realIndexes.size(); ++ri) {
        // Find a logical index naming this tree, for messages and the cursor.
        std::size_t logical = d.indexes.size();
        for (std::size_t li = 0; li < d.indexes.size(); ++li)
            if (d.indexes[li].realIndex == ri) {
                logical = li;
                break;
            }
        if (logical == d.indexes.size()) continue;
        const std::string where = "table " + d.name + ", index " + d.indexes[logical].name + ": ";
        const RealIndex& real = d.realIndexes[ri];
        checkIndexPages(db, d, real, where, faults);
        std::vector<IndexEntry> entries;
        try {
            entries = t.index(logical).all();
        } catch (const Error& e) {
            faults.push_back(where + e.what());
            continue;
        }
        std::set<RowId> seen;
        const bool ignoresNulls = real.flags & idxflag::kIgnoreNulls;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const IndexEntry& e = entries[i];
            if (i > 0) {
                const auto& a = entries[i - 1].key;
                const auto& b = e.key;
                if (std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end()))
                    faults.push_back(where + "entry for row " + toString(e.row) +
                                     " is out of order");
            }
            if (!live.count(e.row)) {
                faults.push_back(where + "entry points at " + toString(e.row) +
                                 ", which is not a live row");
                continue;
            }
            if (!seen.insert(e.row).second)
                faults.push_back(where + "row " + toString(e.row) + " is indexed twice");
            if (ignoresNulls) {
                auto row = t.read(e.row);
                if (row && !rowBelongsInIndex(d, real, *row))
                    faults.push_back(where + "row " + toString(e.row) +
                                     " has an entry, but its key is Null and the index ignores "
                                     "Nulls");
            }
            // Keys of types encoded exactly must match the row's values.
            if (indexKeyIsExact(d, real, real.columns.size())) {
                try {
                    auto row = t.read(e.row);
                    std::vector<Value> values;
                    for (const IndexColumn& ic : real.columns) {
                        const Column* c = d.columnByNumber(ic.columnNumber);
                        values.push_back(c ? (*row)[std::size_t(d.columnPosition(c->name))]
                                           : Value{});
                    }
                    if (encodeIndexKey(d, real, values) != e.key)
                        faults.push_back(where + "key of the entry for row " + toString(e.row) +
                                         " does not match the row");
                } catch (const Error&) {
                    // Types without an exact encoding are not compared.
                }
            }
        }
        for (const RowId& r : live) {
            if (seen.count(r)) continue;
            if (ignoresNulls) {
                auto row = t.read(r);
                if (row && !rowBelongsInIndex(d, real, *row)) continue;
            }
            faults.push_back(where + "row " + toString(r) + " is missing from the index");
        }
    }
}

// Every reference of the table's relationships with referential integrity
// finds its row, and the two entries of each relationship name each other.
void checkReferences(Database& db, const Table& t, const std::set<RowId>& live,
                     std::vector<std::string>& faults) {
    const TableDef& d = t.def();
    std::vector<ForeignKeyLink> links;
    try {
        links = foreignKeyLinks(db, d);
    } catch (const Error& e) {
        faults.push_back(e.what());
        return;
    }
    for (const ForeignKeyLink& link : links) {
        if (link.referenced) continue;
        const std::string where =
            "table " + d.name + ", relationship " + d.indexes[link.logical].name + ": ";
        for (const RowId& id : live) {
            try {
                std::optional<Row> row = t.read(id);
                if (!row || keyInOther(d, link, *row) == std::nullopt) continue;
                if (relatedRows(db, d, link, *row).empty())
                    faults.push_back(where + "row " + toString(id) +
                                     " refers to a row that table " + link.otherName +
                                     " does not hold");
            } catch (const Error& e) {
                faults.push_back(where + "row " + toString(id) + ": " + e.what());
            }
        }
    }
}

// The free-space figure of every data page (rows and long values) against
// its offset table: the bytes between the table's end and the lowest row.
void checkFreeSpace(Database& db, std::vector<std::string>& faults) {
    for (std::uint32_t p = 1; p < db.pages().pageCount(); ++p) {
        try {
            PageRef pg = db.pages().page(p);
            if ((*pg)[0] != std::uint8_t(PageType::Data)) continue;
            const std::size_t count = rowCountOf(*pg);
            const std::size_t tableEnd = datapage::kRowTable + 2 * count;
            if (tableEnd > kPageSize) continue;  // reported with the rows of its table
            std::size_t lowest = kPageSize;
            for (std::size_t i = 0; i < count; ++i) {
                std::size_t offset =
                    u16(pg->data() + datapage::kRowTable + 2 * i) & datapage::kOffsetMask;
                if (offset >= tableEnd && offset < lowest) lowest = offset;
            }
            const std::size_t stated = u16(pg->data() + datapage::kFreeSpace);
            if (stated != lowest - tableEnd)
                faults.push_back("data page " + std::to_string(p) + ": header states " +
                                 std::to_string(stated) + " bytes free, the page has " +
                                 std::to_string(lowest - tableEnd));
        } catch (const Error& e) {
            faults.push_back(e.what());
        }
    }
}

// The pages Jet's global map (row 0 of page 1) lists as free. Jet frees a
// page without wiping it: a freed data page still names the table it
// belonged to and holds that table's old rows, though no map owns it.
std::set<std::uint32_t> freePages(Database& db) {
    try {
        UsageMap m = readUsageMap(db.pages(), RowId{kGlobalUsageMapPage, 0}.pointer());
        return {m.pages.begin(), m.pages.end()};
    } catch (const Error&) {
        return {};  // without a readable global map every page counts as in use
    }
}

// The layout of a property blob (MSysObjects' LvProp): a "MR2\0" header,
// then blocks of a 32-bit length (counting itself) and a 16-bit type. The
// names block (0x80) lists 16-bit-length names; each value block (0, 1, 2)
// opens with its own 32-bit-length header and holds entries of a 16-bit
// length, a DDL flag, a type, a name index and a 16-bit value length.
// Readers that open a table parse its properties and stop at a broken blob.
// Answers what is wrong, empty when nothing is.
std::string propertyFault(const Binary& b) {
    const std::size_t n = b.size();
    if (n < 4 || !(std::memcmp(b.data(), "MR2", 4) == 0 || std::memcmp(b.data(), "KKD", 4) == 0))
        return "unknown header";
    std::size_t names = 0;
    bool namesSeen = false;
    for (std::size_t at = 4; at < n;) {
        if (n - at < 6) return "block header at byte " + std::to_string(at) + " is cut off";
        const std::size_t len = u32(b.data() + at), type = u16(b.data() + at + 4);
        if (len < 6 || len > n - at)
            return "block at byte " + std::to_string(at) + " claims " + std::to_string(len) +
                   " bytes";
        const std::size_t end = at + len;
        std::size_t q = at + 6;
        if (type == 0x80) {
            namesSeen = true;
            for (; q < end; ++names) {
                if (end - q < 2 || u16(b.data() + q) > end - q - 2)
                    return "name " + std::to_string(names) + " overruns its block";
                q += 2 + u16(b.data() + q);
            }
        } else if (type <= 2) {
            if (!namesSeen) return "values come before their names";
            if (q < end) {
                const std::size_t header = end - q < 4 ? 0 : u32(b.data() + q);
                if (header < 6 || header > end - q)
                    return "value block at byte " + std::to_string(at) + " has a broken header";
                q += header;
            }
            while (q < end) {
                const std::size_t entry = end - q < 8 ? 0 : u16(b.data() + q);
                if (entry < 8 || entry > end - q || u16(b.data() + q + 6) > entry - 8)
                    return "value at byte " + std::to_string(q) + " overruns its block";
                if (u16(b.data() + q + 4) >= names)
                    return "value at byte " + std::to_string(q) + " names property " +
                           std::to_string(u16(b.data() + q + 4)) + " of " + std::to_string(names);
                if (!isKnownColumnType(b[q + 3]))
                    return "value at byte " + std::to_string(q) + " has type " +
                           std::to_string(b[q + 3]);
                q += entry;
            }
        } else {
            return "block at byte " + std::to_string(at) + " has unknown type " +
                   std::to_string(type);
        }
        at = end;
    }
    return {};
}

// Every object's properties parse.
void checkProperties(Database& db, std::vector<std::string>& faults) {
    try {
        Table t = db.table("MSysObjects");
        const int column = t.columnPosition("LvProp");
        if (column < 0) return;
        t.scan([&](RowId id, const Row& row) {
            const auto* blob = std::get_if<Binary>(&row[std::size_t(column)]);
            if (!blob || blob->empty()) return true;
            const std::string fault = propertyFault(*blob);
            if (!fault.empty())
                faults.push_back("the properties of catalogue row " + toString(id) + ": " + fault);
            return true;
        });
    } catch (const Error&) {
        // a catalogue row that cannot be read is reported with its table
    }
}

// What lies outside every table: the file's length and the global map.
void checkFile(Database& db, std::vector<std::string>& faults) {
    if (db.partialPageBytes() != 0)
        faults.push_back("the file ends " + std::to_string(db.partialPageBytes()) +
                         " bytes into page " + std::to_string(db.pages().pageCount()) +
                         ": its length is not a whole number of pages");
    try {
        readUsageMap(db.pages(), RowId{kGlobalUsageMapPage, 0}.pointer());
    } catch (const Error& e) {
        faults.push_back(std::string("the global usage map: ") + e.what());
    }
}

}  // namespace

std::vector<std::string> checkTable(Database& db, const std::string& name) {
    std::vector<std::string> faults;
    std::shared_ptr<const TableDef> def;
    try {
        def = db.tableDef(name);
    } catch (const Error& e) {
        faults.push_back("table " + name + ": " + e.what());
        return faults;
    }
    Table t = db.table(name);
    const TableDef& d = *def;
    // Usage map against the pages that name this table.
    try {
        UsageMap m = readUsageMap(db.pages(), d.usedPages);
        if (m.outside > 0)
            faults.push_back("table " + name + ": its usage map names page " +
                             std::to_string(m.firstOutside) + ", beyond the end of the file");
        for (std::uint32_t p : m.pages) {
            PageRef pg = db.pages().page(p);
            std::uint8_t type = (*pg)[0];
            if (type != std::uint8_t(PageType::Data))
                faults.push_back("table " + name + ": page " + std::to_string(p) +
                                 " is in its usage map but is a page of type " +
                                 std::to_string(type));
            else if (u32(pg->data() + datapage::kTdefPage) != d.page)
                faults.push_back("table " + name + ": page " + std::to_string(p) +
                                 " is in its usage map but belongs to another table");
        }
        const std::set<std::uint32_t> freed = freePages(db);
        for (std::uint32_t p = 1; p < db.pages().pageCount(); ++p) {
            PageRef pg = db.pages().page(p);
            if ((*pg)[0] == std::uint8_t(PageType::Data) &&
                u32(pg->data() + datapage::kTdefPage) == d.page && rowCountOf(*pg) > 0 &&
                !m.contains(p) && !freed.count(p))
                faults.push_back("table " + name + ": data page " + std::to_string(p) +
                                 " is missing from its usage map");
        }
    } catch (const Error& e) {
        faults.push_back("table " + name + ": usage map: " + e.what());
        return faults;
    }
    // Each long-value column's map names the pages holding its values.
    for (const VarColumnMaps& vm : d.varColumnMaps) {
        if (vm.usedPages == 0) continue;
        try {
            UsageMap m = readUsageMap(db.pages(), vm.usedPages);
            if (m.outside > 0)
                faults.push_back("table " + name + ": a long-value usage map names page " +
                                 std::to_string(m.firstOutside) + ", beyond the end of the file");
            for (std::uint32_t p : m.pages) {
                PageRef pg = db.pages().page(p);
                if ((*pg)[0] != std::uint8_t(PageType::Data) ||
                    u32(pg->data() + datapage::kTdefPage) != kLongValueOwner)
                    faults.push_back("table " + name + ": page " + std::to_string(p) +
                                     " is in a long-value usage map but holds no long values");
            }
        } catch (const Error& e) {
            faults.push_back("table " + name + ": long-value usage map: " + e.what());
        }
    }
    std::set<RowId> live;
    std::size_t count = 0;
    try {
        for (std::uint32_t p : t.dataPages()) {
            PageRef pg = db.pages().page(p);
            std::uint16_t n = rowCountOf(*pg);
            for (std::uint16_t i = 0; i < n; ++i) {
                RowId id{p, i};
                try {
                    if (auto row = t.read(id)) {
                        live.insert(id);
                        ++count;
                    }
                } catch (const Error& e) {
                    faults.push_back("table " + name + ": row " + toString(id) + ": " + e.what());
                }
            }
        }
    } catch (const Error& e) {
        faults.push_back("table " + name + ": " + e.what());
    }
    // Access leaves the count of some system tables (MSysACEs) behind the
    // rows, so only user tables and the catalogue, whose lost rows are lost
    // tables, are held to it.
    const CatalogEntry* entry = db.findObject(name);
    bool system = (entry && entry->isSystem()) || name.rfind("MSys", 0) == 0;
    if ((!system || d.page == kCatalogueTdefPage) && count != d.rowCount)
        faults.push_back("table " + name + ": definition counts " + std::to_string(d.rowCount) +
                         " rows, found " + std::to_string(count));
    checkIndexes(db, t, live, faults);
    checkReferences(db, t, live, faults);
    return faults;
}

std::vector<std::string> checkDatabase(Database& db) {
    std::vector<std::string> faults;
    checkFile(db, faults);
    for (const std::string& n : db.tableNames(true)) {
        auto f = checkTable(db, n);
        faults.insert(faults.end(), f.begin(), f.end());
    }
    checkFreeSpace(db, faults);
    checkProperties(db, faults);
    return faults;
}

std::size_t readEverything(Database& db) {
    std::size_t rows = 0;
    for (const std::string& n : db.tableNames(true)) {
        Table t = db.table(n);
        t.scan([&](RowId, const Row& r) {
            rows += r.size() > 0 ? 1 : 0;
            return true;
        });
        for (std::size_t i = 0; i < t.indexCount(); ++i) {
            IndexCursor c = t.index(i);
            while (c.next()) (void)c.entry();
        }
    }
    db.relationships();
    return rows;
}

}  // namespace jet
