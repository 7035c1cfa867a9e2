// Row writes. Every check that can refuse a row (types, lengths, required
// columns, indexes this engine cannot keep, duplicate keys) runs before the
// first page is written; whatever fails later is undone by the unit's
// rollback.
#include "jet/write/writer.h"

#include <algorithm>
#include <optional>
#include <random>

#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/index_key.h"
#include "jet/read/long_value.h"
#include "jet/read/row_reader.h"
#include "jet/read/table.h"
#include "jet/write/data_writer.h"
#include "jet/write/index_writer.h"
#include "jet/write/long_value_writer.h"
#include "jet/write/relationships.h"
#include "jet/write/row_encoder.h"

namespace jet {

namespace {

using Bytes = std::vector<std::uint8_t>;

using rowerr::kDuplicateMessage;
using rowerr::kNullKeyMessage;

// begin() now; rollback() unless commit() was reached.
class Unit {
  public:
    explicit Unit(Database& db) : db_(db) { db_.begin(); }
    ~Unit() {
        if (!done_) {
            try {
                db_.rollback();
            } catch (...) {
            }
        }
    }
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;
    void commit() {
        db_.commit();
        done_ = true;
    }

  private:
    Database& db_;
    bool done_ = false;
};

[[noreturn]] void noSuchRow(const TableDef& def, RowId id) {
    throw Error("Record is deleted. (" + def.name + " has no row " + toString(id) + ")",
                rowerr::kRecordDeleted);
}

// A row and the overflow rows its slot leads to (the last holds the data).
struct Where {
    RowId home;
    std::vector<RowId> hops;
    RowId data() const { return hops.empty() ? home : hops.back(); }
};

RowBytes tableRow(PageCache& pages, const TableDef& def, RowId id, bool mayBeMoved) {
    if (id.page == 0 || id.page >= pages.pageCount()) noSuchRow(def, id);
    PageRef pg = pages.page(id.page);
    if ((*pg)[0] != std::uint8_t(PageType::Data) ||
        u32(pg->data() + datapage::kTdefPage) != def.page || id.row >= rowCountOf(*pg)) {
        if (mayBeMoved) throwCorrupt(id.page, "overflow pointer leads outside " + def.name);
        noSuchRow(def, id);
    }
    return rowBytes(pg, id.page, id.row);
}

Where locate(PageCache& pages, const TableDef& def, RowId id) {
    Where w{id, {}};
    RowBytes r = tableRow(pages, def, id, false);
    if (r.flags & datapage::kDeletedFlag) noSuchRow(def, id);
    while (r.flags & datapage::kOverflowFlag) {
        if (w.hops.size() >= 8)
            throwCorrupt(id.page, "overflow row pointers form a chain too long");
        if (r.size() < 4) throwCorrupt(r.pageNumber, "overflow row pointer truncated");
        RowId next = RowId::fromPointer(u32(r.data()));
        r = tableRow(pages, def, next, true);
        w.hops.push_back(next);
    }
    return w;
}

// The stored bytes of a variable column (empty when Null or absent).
Bytes storedVar(const RowDecoder& dec, const RowBytes& r, const Column& c) {
    const RowDecoder::Layout l = dec.layout(r);
    const std::uint8_t* d = r.data();
    if (c.isFixed() || c.number >= l.numCols || c.varIndex >= l.varLen) return {};
    if (!((d[l.nullMask + c.number / 8] >> (c.number % 8)) & 1)) return {};
    const std::size_t base = l.nullMask - 4;
    const std::size_t start = u16(d + base - 2 * std::size_t(c.varIndex));
    const std::size_t end = std::size_t(c.varIndex) + 1 < l.varLen
                                ? u16(d + base - 2 * (std::size_t(c.varIndex) + 1))
                                : l.eod;
    if (start > end || end > l.eod || start < 2) return {};
    return Bytes(d + start, d + end);
}

// What the writes of one row must do to each index.
struct IndexPlan {
    std::size_t real = 0;
    bool unique = false;
    bool noNulls = false;  // primary keys and required indexes
};

std::vector<IndexPlan> indexPlans(const TableDef& def) {
    std::vector<IndexPlan> out;
    for (std::size_t ri = 0; ri < def.realIndexes.size(); ++ri) {
        const RealIndex& real = def.realIndexes[ri];
        std::string reason = indexUnmaintainableReason(def, real);
        if (!reason.empty()) throw Error(reason);
        IndexPlan p;
        p.real = ri;
        bool primary = false;
        for (const Index& li : def.indexes)
            if (li.realIndex == ri && li.isPrimary()) primary = true;
        p.unique = primary || (real.flags & idxflag::kUnique);
        p.noNulls = primary || (real.flags & idxflag::kRequired);
        out.push_back(p);
    }
    return out;
}

// The index's part in one row: its key, or nullopt when the row stays out
// of the index; whether any key column is Null.
struct KeyOfRow {
    std::optional<Bytes> key;
    bool anyNull = false;
};

// checkNulls: refuse a Null key column where the index requires values
// (new rows; a row already stored is what it is).
KeyOfRow keyOf(const TableDef& def, const IndexPlan& plan, const Row& row, bool checkNulls) {
    const RealIndex& real = def.realIndexes[plan.real];
    KeyOfRow k;
    k.anyNull = nullKeyColumns(def, real, row) > 0;
    if (k.anyNull && checkNulls && plan.noNulls) throw Error(kNullKeyMessage, rowerr::kNullKey);
    if (rowBelongsInIndex(def, real, row)) k.key = indexKeyOf(def, real, row);
    return k;
}

void refuseDuplicate(Database& db, const TableDef& def, const IndexPlan& plan, const KeyOfRow& k,
                     RowId except) {
    // Null equals nothing, not even Null: a key with a Null column
    // duplicates no other, so a unique index holds any number of them.
    if (!plan.unique || !k.key || k.anyNull) return;
    if (indexHoldsKey(db, def, plan.real, *k.key, except))
        throw Error(kDuplicateMessage, rowerr::kDuplicate);
}

// The row's bytes, its long values written. keep holds fields of the old
// row that can stay as they are (update).
Bytes buildRow(Database& db, const TableDef& def, const RowEncoder& enc, const Row& row,
               const std::vector<Bytes>& keep) {
    std::vector<Bytes> fields(def.columns.size());
    std::vector<Bytes> data(def.columns.size());
    std::vector<bool> out(def.columns.size(), false);
    for (std::size_t i = 0; i < def.columns.size(); ++i) {
        const Column& c = def.columns[i];
        if (!isLongValueType(c.type) || isNull(row[i])) continue;
        if (i < keep.size() && !keep[i].empty()) {
            fields[i] = keep[i];
            continue;
        }
        data[i] = enc.longValueData(c, row[i]);
        if (data[i].size() > lval::kMaxInline) {
            out[i] = true;
            fields[i] = Bytes(lval::kFieldSize, 0);  // stands in for the field until written
        }
    }
    // Small values stay inline unless the row would grow too large for a page.
    Bytes bytes = enc.encode(row, &fields);
    if (bytes.size() > kMaxRowSize) {
        for (std::size_t i = 0; i < def.columns.size(); ++i) {
            if (!isLongValueType(def.columns[i].type) || isNull(row[i]) || !fields[i].empty() ||
                data[i].empty())
                continue;
            out[i] = true;
            fields[i] = Bytes(lval::kFieldSize, 0);
        }
        if (enc.encode(row, &fields).size() > kMaxRowSize)
            throw Error("Record is too large. (" + def.name + ")", rowerr::kRecordTooLarge);
    }
    // With every value inline the bytes measured are the row.
    if (std::find(out.begin(), out.end(), true) == out.end()) return bytes;
    for (std::size_t i = 0; i < def.columns.size(); ++i)
        if (out[i]) fields[i] = writeLongValue(db, def, def.columns[i], data[i], false);
    return enc.encode(row, &fields);
}

// Slot edits, each on a freshly loaded page (two of them may share one).
bool trySetSlot(Database& db, const PagePool& pool, RowId at, const Bytes& bytes,
                std::uint16_t flags) {
    DataPage page = DataPage::load(db.pages(), at.page);
    if (!page.fitsReplacing(at.row, bytes.size())) return false;
    page.replace(at.row, bytes, flags);
    storePage(db, pool, page);
    return true;
}

void removeSlot(Database& db, const PagePool& pool, RowId at) {
    DataPage page = DataPage::load(db.pages(), at.page);
    page.remove(at.row);
    storePage(db, pool, page);
}

Bytes pointerTo(RowId id) {
    Bytes b(4);
    put32(b.data(), id.pointer());
    return b;
}

// Later reads must see what the write changed: the table's definition and,
// for rows of MSysObjects, the catalogue.
void forgetDefinition(Database& db, const TableDef& def) {
    if (def.page == kCatalogueTdefPage)
        db.reload();
    else
        db.forgetTableDef(def.page);
}

// def is let go first: a cached definition held by nobody else takes the
// counts in place.
void writeCounts(Database& db, std::shared_ptr<const TableDef> def, std::uint32_t rows,
                 std::uint32_t autoNumber) {
    const std::uint32_t tdefPage = def->page;
    def.reset();
    PageBytes page = *db.pages().page(tdefPage, PageType::TableDef);
    put32(page.data() + tdef::kRowCount, rows);
    put32(page.data() + tdef::kAutoNumber, autoNumber);
    db.pages().put(tdefPage, std::move(page));
    if (tdefPage == kCatalogueTdefPage)
        db.reload();
    else
        db.setTableCounts(tdefPage, rows, autoNumber);
}

Guid randomGuid() {
    static std::random_device rd;
    static std::mt19937_64 gen(rd());
    Guid g;
    for (std::size_t i = 0; i < 16; i += 8) {
        std::uint64_t v = gen();
        for (std::size_t k = 0; k < 8; ++k) g.bytes[i + k] = std::uint8_t(v >> (8 * k));
    }
    g.bytes[7] = std::uint8_t((g.bytes[7] & 0x0F) | 0x40);  // version 4, as stored (Data3 LE)
    g.bytes[8] = std::uint8_t((g.bytes[8] & 0x3F) | 0x80);
    return g;
}

// Long-value fields of a stored row, by column position.
std::vector<Bytes> longFields(PageCache& pages, const TableDef& def, const RowBytes& r) {
    RowDecoder dec(pages, def);
    std::vector<Bytes> out(def.columns.size());
    for (std::size_t i = 0; i < def.columns.size(); ++i)
        if (isLongValueType(def.columns[i].type)) out[i] = storedVar(dec, r, def.columns[i]);
    return out;
}

void freeFields(Database& db, const TableDef& def, const std::vector<Bytes>& fields,
                const std::vector<Bytes>& kept) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].empty() || (i < kept.size() && !kept[i].empty())) continue;
        freeLongValue(db, def, def.columns[i], fields[i].data(), fields[i].size());
    }
}

}  // namespace

namespace {

// Cascades run through the same writes as the statement that caused them;
// this bounds the chains a file's relationships can make.
constexpr int kMaxCascadeDepth = 500;

class RowWrites {
  public:
    explicit RowWrites(Database& db) : db_(db) {}
    // Fills row's autonumbers in place; given gets each cell filled, with
    // the value it had.
    RowId insert(const std::string& table, Row& row,
                 std::vector<std::pair<std::size_t, Value>>& given);
    void update(const std::string& table, RowId id, const Row& row, int depth);
    void remove(const std::string& table, RowId id, int depth);

  private:
    void apply(const std::vector<CascadeStep>& steps, int depth);
    Database& db_;
};

void RowWrites::apply(const std::vector<CascadeStep>& steps, int depth) {
    if (!steps.empty() && depth >= kMaxCascadeDepth)
        throw Error("cascading changes go deeper than " + std::to_string(kMaxCascadeDepth) +
                    " relationships");
    for (const CascadeStep& step : steps) {
        for (RowId id : step.rows) {
            // An earlier step of the same cascade may have removed the row.
            std::optional<Row> current = db_.table(step.table).read(id);
            if (!current) continue;
            if (step.remove) {
                remove(step.table, id, depth + 1);
                continue;
            }
            for (const auto& [position, value] : step.values) (*current)[position] = value;
            update(step.table, id, *current, depth + 1);
        }
    }
}

RowId RowWrites::insert(const std::string& table, Row& r,
                        std::vector<std::pair<std::size_t, Value>>& given) {
    auto def = db_.tableDef(table);
    const std::vector<ForeignKeyLink> links = foreignKeyLinks(db_, *def);
    if (r.size() != def->columns.size()) RowEncoder(*def).check(r);  // throws the count error
    std::uint32_t autoNumber = def->nextAutoNumber;
    for (std::size_t i = 0; i < def->columns.size(); ++i) {
        const Column& c = def->columns[i];
        if ((c.flags & colflag::kAutoLong) && c.type == ColumnType::Long) {
            if (isNull(r[i])) {
                if (autoNumber >= 0x7FFFFFFFu)
                    throw Error("the autonumber of " + def->name + " is exhausted");
                given.emplace_back(i, std::move(r[i]));
                r[i] = std::int32_t(++autoNumber);
            } else if (const auto* v = std::get_if<std::int32_t>(&r[i]);
                       v && *v > 0 && std::uint32_t(*v) > autoNumber) {
                autoNumber = std::uint32_t(*v);
            }
        } else if ((c.flags & colflag::kAutoGuid) && c.type == ColumnType::Guid && isNull(r[i])) {
            given.emplace_back(i, std::move(r[i]));
            r[i] = randomGuid();
        }
    }
    RowEncoder enc(*def);
    enc.check(r);
    const std::vector<IndexPlan> plans = indexPlans(*def);
    std::vector<std::optional<Bytes>> keys;
    for (const IndexPlan& p : plans) {
        KeyOfRow k = keyOf(*def, p, r, true);
        refuseDuplicate(db_, *def, p, k, RowId{});
        keys.push_back(std::move(k.key));
    }
    requireReferencedRows(db_, *def, links, r, nullptr);

    Bytes bytes = buildRow(db_, *def, enc, r, {});
    const RowId id = placeRow(db_, tablePool(*def), std::move(bytes));
    for (std::size_t k = 0; k < plans.size(); ++k)
        if (keys[k]) indexInsert(db_, *def, plans[k].real, *keys[k], id);
    const std::uint32_t rows = def->rowCount + 1;
    writeCounts(db_, std::move(def), rows, autoNumber);
    return id;
}

void RowWrites::update(const std::string& table, RowId id, const Row& row, int depth) {
    auto def = db_.tableDef(table);
    const std::vector<ForeignKeyLink> links = foreignKeyLinks(db_, *def);
    PageCache& pages = db_.pages();
    const Where where = locate(pages, *def, id);
    const RowBytes oldBytes = rowBytes(pages, where.data());
    const Row old = RowDecoder(pages, *def).decode(oldBytes);
    Row r = row;
    RowEncoder enc(*def);
    if (r.size() != def->columns.size()) enc.check(r);
    for (std::size_t i = 0; i < def->columns.size(); ++i) {
        const Column& c = def->columns[i];
        if (!c.isAutoNumber()) continue;
        if (isNull(r[i])) {
            r[i] = old[i];
        } else if (r[i] != old[i]) {
            throw Error("Field '" + c.name + "' cannot be updated.", 3164);
        }
    }
    enc.check(r);

    const std::vector<IndexPlan> plans = indexPlans(*def);
    std::vector<std::optional<Bytes>> oldKeys, newKeys;
    for (const IndexPlan& p : plans) {
        oldKeys.push_back(keyOf(*def, p, old, false).key);
        KeyOfRow k = keyOf(*def, p, r, true);
        if (k.key != oldKeys.back()) refuseDuplicate(db_, *def, p, k, id);
        newKeys.push_back(std::move(k.key));
    }
    requireReferencedRows(db_, *def, links, r, &old);
    const std::vector<CascadeStep> cascades = referrersOnUpdate(db_, *def, links, old, r);

    const std::vector<Bytes> oldFields = longFields(pages, *def, oldBytes);
    std::vector<Bytes> keep(def->columns.size());
    for (std::size_t i = 0; i < def->columns.size(); ++i)
        if (!oldFields[i].empty() && r[i] == old[i]) keep[i] = oldFields[i];
    const Bytes bytes = buildRow(db_, *def, enc, r, keep);

    const PagePool pool = tablePool(*def);
    if (where.hops.empty()) {
        if (!trySetSlot(db_, pool, id, bytes, 0)) {
            // The row keeps its id: its slot points to where it moved.
            const RowId moved = placeRow(db_, pool, bytes, datapage::kDeletedFlag, id.page);
            if (!trySetSlot(db_, pool, id, pointerTo(moved), datapage::kOverflowFlag))
                throw Error("no room for an overflow pointer on page " + std::to_string(id.page));
        }
    } else if (trySetSlot(db_, pool, id, bytes, 0)) {
        for (RowId hop : where.hops) removeSlot(db_, pool, hop);
    } else if (!trySetSlot(db_, pool, where.data(), bytes, datapage::kDeletedFlag)) {
        const RowId moved = placeRow(db_, pool, bytes, datapage::kDeletedFlag, where.data().page);
        for (RowId hop : where.hops) removeSlot(db_, pool, hop);
        if (!trySetSlot(db_, pool, id, pointerTo(moved), datapage::kOverflowFlag))
            throw Error("no room for an overflow pointer on page " + std::to_string(id.page));
    }

    for (std::size_t k = 0; k < plans.size(); ++k) {
        if (oldKeys[k] == newKeys[k]) continue;
        if (oldKeys[k]) indexRemove(db_, *def, plans[k].real, *oldKeys[k], id);
        if (newKeys[k]) indexInsert(db_, *def, plans[k].real, *newKeys[k], id);
    }
    freeFields(db_, *def, oldFields, keep);
    forgetDefinition(db_, *def);
    // The rows referring to the old key follow it once it is in place, so
    // that their own check finds it.
    apply(cascades, depth);
}

void RowWrites::remove(const std::string& table, RowId id, int depth) {
    auto def = db_.tableDef(table);
    const std::vector<ForeignKeyLink> links = foreignKeyLinks(db_, *def);
    PageCache& pages = db_.pages();
    const Where where = locate(pages, *def, id);
    const RowBytes oldBytes = rowBytes(pages, where.data());
    const Row old = RowDecoder(pages, *def).decode(oldBytes);
    const std::vector<IndexPlan> plans = indexPlans(*def);
    std::vector<std::optional<Bytes>> keys;
    for (const IndexPlan& p : plans) keys.push_back(keyOf(*def, p, old, false).key);
    const std::vector<CascadeStep> cascades = referrersOnDelete(db_, *def, links, old);
    const std::vector<Bytes> fields = longFields(pages, *def, oldBytes);

    for (std::size_t k = 0; k < plans.size(); ++k)
        if (keys[k]) indexRemove(db_, *def, plans[k].real, *keys[k], id);
    freeFields(db_, *def, fields, {});
    const PagePool pool = tablePool(*def);
    for (RowId hop : where.hops) removeSlot(db_, pool, hop);
    removeSlot(db_, pool, id);
    const std::uint32_t rows = def->rowCount > 0 ? def->rowCount - 1 : 0,
                        next = def->nextAutoNumber;
    writeCounts(db_, std::move(def), rows, next);
    apply(cascades, depth);
}

}  // namespace

Writer::Writer(std::shared_ptr<Database> db) : db_(std::move(db)) {
    if (!db_) throw Error("no database to write");
}

std::string Writer::unwritableReason(const std::string& table) {
    auto def = db_->tableDef(table);
    try {
        foreignKeyLinks(*db_, *def);
    } catch (const Error& e) {
        return e.what();
    }
    for (const RealIndex& real : def->realIndexes) {
        std::string reason = indexUnmaintainableReason(*def, real);
        if (!reason.empty()) return reason;
    }
    return {};
}

RowId Writer::insert(const std::string& table, Row& row) {
    // The row keeps the autonumbers it took only when the insert stands;
    // the cells filled are put back rather than the whole row copied.
    std::vector<std::pair<std::size_t, Value>> given;
    try {
        Unit unit(*db_);
        const RowId id = RowWrites(*db_).insert(table, row, given);
        unit.commit();
        return id;
    } catch (...) {
        for (auto& [i, v] : given) row[i] = std::move(v);
        throw;
    }
}

void Writer::update(const std::string& table, RowId id, const Row& row) {
    Unit unit(*db_);
    RowWrites(*db_).update(table, id, row, 0);
    unit.commit();
}

void Writer::remove(const std::string& table, RowId id) {
    Unit unit(*db_);
    RowWrites(*db_).remove(table, id, 0);
    unit.commit();
}

}  // namespace jet
