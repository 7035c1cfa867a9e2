// Schema changes: table definitions rewritten through the TDEF writer.
#include <algorithm>
#include <ctime>
#include <set>

#include "jet/format/error.h"
#include "jet/format/text.h"
#include "jet/read/database.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/write/data_writer.h"
#include "jet/write/index_writer.h"
#include "jet/write/row_encoder.h"
#include "jet/write/security_writer.h"
#include "jet/write/tdef_writer.h"
#include "jet/write/writer.h"

namespace jet {

namespace {

// Jet's "field already exists" and "invalid argument".
constexpr long kDuplicateField = 3191;
constexpr long kInvalidArgument = 3001;

bool isVariable(ColumnType t) {
    return t == ColumnType::Text || t == ColumnType::Memo || t == ColumnType::OLE ||
           t == ColumnType::Binary;
}

Column makeColumn(TableDef& d, const ColumnSpec& want) {
    if (want.name.empty() || want.name.size() > 64)
        throw Error("invalid column name '" + want.name + "'", kInvalidArgument);
    if (d.column(want.name))
        throw Error("field '" + want.name + "' defined more than once", kDuplicateField);
    if (want.autoNumber && want.type != ColumnType::Long)
        throw Error("only Long columns can be autonumbers", kInvalidArgument);
    if (!isKnownColumnType(std::uint8_t(want.type)) || want.type == ColumnType::Numeric)
        throw Error("column type not supported for new columns", kInvalidArgument);
    Column c;
    c.name = want.name;
    c.type = want.type;
    std::uint16_t number = d.maxColumns;
    for (const Column& o : d.columns) number = std::max<std::uint16_t>(number, o.number + 1);
    c.number = number;
    c.index = number;
    c.flags = want.nullable ? colflag::kNullable : 0;
    if (!d.columns.empty()) c.tableId = d.columns.front().tableId;
    if (isVariable(want.type)) {
        std::uint16_t slot = 0;
        for (const Column& o : d.columns)
            if (!o.isFixed()) slot = std::max<std::uint16_t>(slot, o.varIndex + 1);
        c.varIndex = slot;
        if (want.type == ColumnType::Text) {
            if (want.length == 0 || want.length > 255)
                throw Error("text columns hold 1 to 255 characters", kInvalidArgument);
            c.length = std::uint16_t(want.length * 2);
            c.sortOrder = 0x409;
            c.miscFlags = colmisc::kCompressedUnicode;
            for (const Column& o : d.columns)
                if (o.type == ColumnType::Text) c.miscExt = o.miscExt;  // sort version
        } else if (want.type == ColumnType::Binary) {
            c.length = std::uint16_t(std::min<int>(want.length ? want.length : 255, 255));
        }
        ++d.varColumnCount;
    } else {
        c.flags |= colflag::kFixed;
        c.length = fixedSizeOf(want.type);
        if (want.type != ColumnType::Boolean) {
            std::uint16_t at = 0;
            for (const Column& o : d.columns)
                if (o.isFixed() && o.type != ColumnType::Boolean)
                    at = std::max<std::uint16_t>(
                        at, o.fixedOffset + (o.length ? o.length : fixedSizeOf(o.type)));
            c.fixedOffset = at;
        }
    }
    if (want.autoNumber) c.flags |= colflag::kAutoLong;
    d.maxColumns = std::uint16_t(number + 1);
    return c;
}

// The physical index an IndexSpec asks for, its columns found by name.
RealIndex realIndexOf(const TableDef& d, const IndexSpec& is) {
    RealIndex ri;
    for (const auto& [name, ascending] : is.columns) {
        const Column* c = d.column(name);
        if (!c) throw Error("no such column: " + name, errnum::kNoSuchColumn);
        ri.columns.push_back({c->number, ascending});
    }
    // Flags as Access writes them: 0x89 for a primary key, 0x81 unique, 0x82
    // ignoring Nulls, 0x80 plain.
    ri.unknownA = tdef::kRealIndexMagic;
    ri.flags = idxflag::kAlwaysSet;
    if (is.primary || is.unique) ri.flags |= idxflag::kUnique;
    if (is.primary || is.required) ri.flags |= idxflag::kRequired;
    if (is.ignoreNulls && !is.primary) ri.flags |= idxflag::kIgnoreNulls;
    return ri;
}

// Adds ri (its usage map already placed) and the logical index naming it.
void appendIndex(TableDef& d, const IndexSpec& is, const RealIndex& ri) {
    Index li;
    li.name = is.name;
    li.number = std::uint32_t(d.indexes.size());
    li.realIndex = std::uint32_t(d.realIndexes.size());
    li.type = is.primary ? 1 : 0;
    d.realIndexes.push_back(ri);
    d.indexes.push_back(li);
}

template <class F>
void asUnit(Database& db, F&& f) {
    db.begin();
    try {
        f();
    } catch (...) {
        db.rollback();
        throw;
    }
    db.commit();
}

}  // namespace

void Writer::addColumn(const std::string& table, const ColumnSpec& want) {
    asUnit(*db_, [&] {
        TableDef d = *db_->tableDef(table);
        if (want.autoNumber)
            for (const Column& o : d.columns)
                if (o.flags & colflag::kAutoLong)
                    throw Error("table '" + d.name + "' has an autonumber column already", 3190);
        if (!want.nullable && !want.autoNumber && d.rowCount > 0)
            throw Error("a required column cannot be added to a table holding rows",
                        kInvalidArgument);
        if (d.columns.size() >= 255) throw Error("too many fields defined", 3190);
        ColumnSpec plain = want;
        plain.autoNumber = false;
        Column c = makeColumn(d, plain);
        d.columns.push_back(c);
        d.columnCount = std::uint16_t(d.columns.size());
        storeTableDef(*db_, d);
        if (!want.autoNumber) return;
        // Jet numbers the rows already there, in the order they are stored,
        // then hands out numbers after them.
        std::vector<std::pair<RowId, Row>> rows;
        Table(db_, db_->tableDef(table)).scan([&](RowId id, const Row& row) {
            rows.emplace_back(id, row);
            return true;
        });
        std::int32_t next = 0;
        for (auto& [id, row] : rows) {
            row.back() = ++next;
            update(table, id, row);
        }
        TableDef numbered = *db_->tableDef(table);
        numbered.columns.back().flags |= colflag::kAutoLong;
        numbered.nextAutoNumber = std::uint32_t(next);
        storeTableDef(*db_, numbered);
    });
}

void Writer::createTable(const TableSpec& want) {
    if (want.name.empty() || want.name.size() > 64)
        throw Error("invalid table name '" + want.name + "'", kInvalidArgument);
    if (db_->hasTable(want.name)) throw Error("table '" + want.name + "' already exists", 3010);
    if (want.columns.empty() || want.columns.size() > 255)
        throw Error("a table needs 1 to 255 columns", kInvalidArgument);
    const CatalogEntry* tables = db_->findObject("Tables", objtype::kContainer);
    if (!tables) throw Error("the catalogue has no Tables container", errnum::kCorrupt);
    const std::int32_t parentId = tables->id;
    asUnit(*db_, [&] {
        TableDef d;
        d.name = want.name;
        d.page = db_->allocatePage(PageType::TableDef);
        d.pages = {d.page};
        d.tableType = 0x4E;
        for (const ColumnSpec& cs : want.columns) d.columns.push_back(makeColumn(d, cs));
        d.columnCount = std::uint16_t(d.columns.size());
        for (Column& c : d.columns) c.tableId = 0;
        // Usage maps live as rows on pages no table owns: an inline map
        // (type 0, first page 0, 64 bytes of bits), as Access writes them.
        const PagePool mapPool{};
        auto newMap = [&] { return placeRow(*db_, mapPool, Binary(69, 0)).pointer(); };
        d.usedPages = newMap();
        d.freePages = newMap();
        for (const IndexSpec& is : want.indexes) {
            if (is.columns.empty() || is.columns.size() > tdef::kIndexColumnSlots)
                throw Error("an index holds 1 to 10 columns", kInvalidArgument);
            RealIndex ri = realIndexOf(d, is);
            ri.usedPages = newMap();
            appendIndex(d, is, ri);
        }
        storeTableDef(*db_, d);
        for (RealIndex& ri : d.realIndexes)
            ri.rootPage = indexBuild(*db_, d.page, ri.usedPages, {});
        if (!d.realIndexes.empty()) storeTableDef(*db_, d);

        auto sys = db_->tableDef("MSysObjects");
        Row row(sys->columns.size());
        auto set = [&](const char* name, Value v) {
            int at = sys->columnPosition(name);
            if (at >= 0) row[std::size_t(at)] = std::move(v);
        };
        const double now = double(std::time(nullptr)) / 86400.0 + 25569.0;  // days since 1899-12-30
        set("Id", std::int32_t(d.page));
        set("ParentId", parentId);
        set("Name", want.name);
        set("Type", std::int16_t(objtype::kTable));
        set("DateCreate", DateTime{now});
        set("DateUpdate", DateTime{now});
        set("Flags", std::int32_t(0));
        const security::ObjectAccess access = security::forNewTable(*db_);
        if (!access.owner.empty()) set("Owner", access.owner);
        insert("MSysObjects", row);
        for (Row& ace : security::entryRows(*db_, std::int32_t(d.page), access.entries))
            insert("MSysACEs", ace);
        db_->reload();
    });
}
void Writer::createIndex(const std::string& table, const IndexSpec& is) {
    TableDef d = *db_->tableDef(table);
    if (is.name.empty() || is.columns.empty() || is.columns.size() > tdef::kIndexColumnSlots)
        throw Error("an index needs a name and 1 to 10 columns", kInvalidArgument);
    for (const Index& li : d.indexes)
        if (equalsNoCase(li.name, is.name))
            throw Error("index '" + is.name + "' already exists", 3375);
    if (is.primary)
        for (const Index& li : d.indexes)
            if (li.isPrimary())
                throw Error("table '" + d.name + "' has a primary key already", 3283);
    RealIndex ri = realIndexOf(d, is);
    std::string reason = indexUnmaintainableReason(d, ri);
    if (!reason.empty()) throw Error(reason);
    asUnit(*db_, [&] {
        auto current = db_->tableDef(table);
        std::vector<std::pair<std::vector<std::uint8_t>, RowId>> entries;
        std::set<std::vector<std::uint8_t>> withNull;  // keys that duplicate nothing
        Table(db_, current).scan([&](RowId id, const Row& row) {
            const bool anyNull = nullKeyColumns(d, ri, row) > 0;
            if (anyNull && (ri.flags & idxflag::kRequired))
                throw Error(rowerr::kNullKeyMessage, rowerr::kNullKey);
            if (!rowBelongsInIndex(d, ri, row)) return true;
            entries.emplace_back(indexKeyOf(d, ri, row), id);
            if (anyNull) withNull.insert(entries.back().first);
            return true;
        });
        std::sort(entries.begin(), entries.end());
        if (ri.flags & idxflag::kUnique)
            for (std::size_t i = 1; i < entries.size(); ++i)
                if (entries[i].first == entries[i - 1].first && !withNull.count(entries[i].first))
                    throw Error(rowerr::kDuplicateMessage, rowerr::kDuplicate);
        ri.usedPages = placeRow(*db_, PagePool{}, Binary(69, 0)).pointer();
        appendIndex(d, is, ri);
        storeTableDef(*db_, d);
        d.realIndexes.back().rootPage = indexBuild(*db_, d.page, ri.usedPages, entries);
        storeTableDef(*db_, d);
    });
}
}  // namespace jet
