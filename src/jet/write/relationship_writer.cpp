// Creating relationships: the rows of MSysRelationships and, for one that
// enforces referential integrity, the foreign-key entries Jet enforces it
// from (see relationships.h).
#include <algorithm>
#include <set>

#include "jet/format/error.h"
#include "jet/format/text.h"
#include "jet/read/database.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/write/data_writer.h"
#include "jet/write/index_writer.h"
#include "jet/write/relationships.h"
#include "jet/write/tdef_writer.h"
#include "jet/write/writer.h"

namespace jet {

namespace {

constexpr long kInvalidArgument = 3001;
constexpr long kDuplicateName = 3191;

using Bytes = std::vector<std::uint8_t>;

// The key columns of one side, in the order of the unique index they pair
// with.
struct Sides {
    std::vector<const Column*> referring;
    std::vector<const Column*> referenced;
    std::size_t uniqueIndex = 0;  // real index of the referenced table
};

bool sameColumns(const RealIndex& ri, const std::vector<const Column*>& cols) {
    if (ri.columns.size() != cols.size()) return false;
    for (std::size_t i = 0; i < cols.size(); ++i)
        if (ri.columns[i].columnNumber != cols[i]->number) return false;
    return true;
}

bool isUnique(const TableDef& d, std::size_t real) {
    if (d.realIndexes[real].flags & idxflag::kUnique) return true;
    for (const Index& li : d.indexes)
        if (li.realIndex == real && li.isPrimary()) return true;
    return false;
}

// Jet needs a unique index on exactly the referenced columns; the pairs are
// put in its column order.
Sides pairColumns(const TableDef& from, const TableDef& to, const RelationshipSpec& rel) {
    Sides s;
    std::set<std::uint16_t> fromSeen, toSeen;
    for (std::size_t i = 0; i < rel.columns.size(); ++i) {
        const Column* a = from.column(rel.columns[i]);
        const Column* b = to.column(rel.relatedColumns[i]);
        if (a->type != b->type)
            throw Error(
                "Relationship must be on the same number of fields with the same data types.",
                3368);
        if (!fromSeen.insert(a->number).second || !toSeen.insert(b->number).second)
            throw Error("a relationship with referential integrity names each column once",
                        kInvalidArgument);
        s.referring.push_back(a);
        s.referenced.push_back(b);
    }
    for (std::size_t ri = 0; ri < to.realIndexes.size(); ++ri) {
        const RealIndex& real = to.realIndexes[ri];
        if (!isUnique(to, ri) || real.columns.size() != s.referenced.size()) continue;
        Sides ordered;
        for (const IndexColumn& ic : real.columns)
            for (std::size_t k = 0; k < s.referenced.size(); ++k)
                if (s.referenced[k]->number == ic.columnNumber) {
                    ordered.referring.push_back(s.referring[k]);
                    ordered.referenced.push_back(s.referenced[k]);
                }
        if (ordered.referenced.size() != s.referenced.size()) continue;
        ordered.uniqueIndex = ri;
        return ordered;
    }
    throw Error("No unique index found for the referenced field of the primary table.");
}

// A number for a new logical index, past every number the table uses.
std::uint32_t nextIndexNumber(const TableDef& d) {
    std::uint32_t n = std::uint32_t(d.indexes.size());
    for (const Index& li : d.indexes) n = std::max(n, li.number + 1);
    return n;
}

bool hasIndexNamed(const TableDef& d, const std::string& name) {
    for (const Index& li : d.indexes)
        if (equalsNoCase(li.name, name)) return true;
    return false;
}

// Access names the referenced table's entry ".r" and a letter that follows
// the entry's number (".rC" for entry 2).
std::string referencedEntryName(const TableDef& d, std::uint32_t number) {
    std::string letters;
    for (char c = 'A'; c <= 'Z'; ++c) letters += c;
    for (char c = 'a'; c <= 'z'; ++c) letters += c;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        std::string name = std::string(".r") + letters[(number + i) % letters.size()];
        if (!hasIndexNamed(d, name)) return name;
    }
    for (std::uint32_t k = 0;; ++k)
        if (!hasIndexNamed(d, ".r" + std::to_string(k))) return ".r" + std::to_string(k);
}

// Rows of the referring table whose reference finds nothing.
void requireExistingReferences(Database& db, const std::shared_ptr<const TableDef>& from,
                               const TableDef& to, const Sides& s) {
    const RealIndex& unique = to.realIndexes[s.uniqueIndex];
    std::vector<std::size_t> fromPos, toPos;
    for (std::size_t k = 0; k < s.referring.size(); ++k) {
        fromPos.push_back(std::size_t(from->columnPosition(s.referring[k]->name)));
        toPos.push_back(std::size_t(to.columnPosition(s.referenced[k]->name)));
    }
    Table(db.shared_from_this(), from).scan([&](RowId, const Row& row) {
        Row there(to.columns.size());
        for (std::size_t k = 0; k < fromPos.size(); ++k) {
            if (isNull(row[fromPos[k]])) return true;
            there[toPos[k]] = row[fromPos[k]];
        }
        if (!indexHoldsKey(db, to, s.uniqueIndex, indexKeyOf(to, unique, there), RowId{}))
            throw Error("The data in table '" + from->name +
                        "' violates referential integrity rules: a row refers to a " + to.name +
                        " row that does not exist.");
        return true;
    });
}

// The referring table's index over the reference columns: one it has, or a
// new one built over its rows.
std::size_t referringIndex(Database& db, TableDef& from, const Sides& s) {
    for (std::size_t ri = 0; ri < from.realIndexes.size(); ++ri)
        if (sameColumns(from.realIndexes[ri], s.referring)) return ri;
    RealIndex ri;
    for (const Column* c : s.referring) ri.columns.push_back({c->number, true});
    ri.unknownA = tdef::kRealIndexMagic;
    ri.flags = idxflag::kAlwaysSet;
    if (std::string why = indexUnmaintainableReason(from, ri); !why.empty()) throw Error(why);
    std::vector<std::pair<Bytes, RowId>> entries;
    Table(db.shared_from_this(), db.tableDefAt(from.page, from.name))
        .scan([&](RowId id, const Row& row) {
            entries.emplace_back(indexKeyOf(from, ri, row), id);
            return true;
        });
    std::sort(entries.begin(), entries.end());
    ri.usedPages = placeRow(db, PagePool{}, Binary(69, 0)).pointer();
    ri.rootPage = indexBuild(db, from.page, ri.usedPages, entries);
    from.realIndexes.push_back(ri);
    return from.realIndexes.size() - 1;
}

void addRelationshipRows(Database& db, Writer& w, const RelationshipSpec& rel,
                         const std::vector<const Column*>& from,
                         const std::vector<const Column*>& to, const std::string& fromTable,
                         const std::string& toTable, std::int32_t grbit) {
    auto sys = db.tableDef("MSysRelationships");
    for (std::size_t i = 0; i < from.size(); ++i) {
        Row row(sys->columns.size());
        auto set = [&](const char* name, Value v) {
            int at = sys->columnPosition(name);
            if (at < 0) throw Error(std::string("MSysRelationships has no column ") + name);
            row[std::size_t(at)] = std::move(v);
        };
        set("ccolumn", std::int32_t(from.size()));
        set("grbit", grbit);
        set("icolumn", std::int32_t(i));
        set("szColumn", from[i]->name);
        set("szObject", fromTable);
        set("szReferencedColumn", to[i]->name);
        set("szReferencedObject", toTable);
        set("szRelationship", rel.name);
        w.insert("MSysRelationships", row);
    }
}

}  // namespace

void Writer::createRelationship(const RelationshipSpec& rel) {
    if (rel.name.empty() || rel.columns.empty() || rel.columns.size() != rel.relatedColumns.size())
        throw Error("a relationship needs a name and as many columns on either side",
                    kInvalidArgument);
    if (rel.columns.size() > tdef::kIndexColumnSlots)
        throw Error("a relationship joins at most 10 columns", kInvalidArgument);
    if (!rel.enforce && (rel.cascadeUpdates || rel.cascadeDeletes || rel.cascadeNull))
        throw Error("cascading changes need referential integrity", kInvalidArgument);
    if (rel.cascadeDeletes && rel.cascadeNull)
        throw Error("a deleted row either cascades or sets Null, not both", kInvalidArgument);
    auto from = db_->tableDef(rel.table);
    auto to = db_->tableDef(rel.relatedTable);
    for (std::size_t i = 0; i < rel.columns.size(); ++i) {
        if (!from->column(rel.columns[i]))
            throw Error("no such column: " + rel.table + "." + rel.columns[i],
                        errnum::kNoSuchColumn);
        if (!to->column(rel.relatedColumns[i]))
            throw Error("no such column: " + rel.relatedTable + "." + rel.relatedColumns[i],
                        errnum::kNoSuchColumn);
    }
    for (const Relationship& r : db_->relationships())
        if (equalsNoCase(r.name, rel.name))
            throw Error("relationship '" + rel.name + "' already exists", kDuplicateName);

    db_->begin();
    try {
        if (!rel.enforce) {
            std::vector<const Column*> a, b;
            for (std::size_t i = 0; i < rel.columns.size(); ++i) {
                a.push_back(from->column(rel.columns[i]));
                b.push_back(to->column(rel.relatedColumns[i]));
            }
            addRelationshipRows(*db_, *this, rel, a, b, from->name, to->name,
                                relflag::kNoIntegrity);
            db_->commit();
            return;
        }
        const bool self = from->page == to->page;
        if (hasIndexNamed(*from, rel.name))
            throw Error("index '" + rel.name + "' already exists in table " + from->name, 3375);
        const Sides s = pairColumns(*from, *to, rel);
        requireExistingReferences(*db_, from, *to, s);

        TableDef toDef = *to;
        const std::uint32_t toNumber = nextIndexNumber(toDef);
        const std::uint32_t fromNumber = self ? toNumber + 1 : nextIndexNumber(*from);
        Index referenced;
        referenced.name = referencedEntryName(toDef, toNumber);
        referenced.number = toNumber;
        referenced.realIndex = std::uint32_t(s.uniqueIndex);
        referenced.type = 2;
        referenced.relatedTableType = fktable::kReferenced;
        referenced.relatedIndex = std::int32_t(fromNumber);
        referenced.relatedTablePage = from->page;
        referenced.cascadeUpdates = rel.cascadeUpdates;
        referenced.cascadeDeletes = rel.cascadeDeletes;
        referenced.cascadeNull = rel.cascadeNull;
        toDef.indexes.push_back(referenced);

        TableDef fromDef = self ? toDef : *from;
        Index referring = referenced;
        referring.name = rel.name;
        referring.number = fromNumber;
        referring.realIndex = std::uint32_t(referringIndex(*db_, fromDef, s));
        referring.relatedTableType = fktable::kReferring;
        referring.relatedIndex = std::int32_t(toNumber);
        referring.relatedTablePage = to->page;
        fromDef.indexes.push_back(referring);
        if (!self) storeTableDef(*db_, toDef);
        storeTableDef(*db_, fromDef);

        std::int32_t grbit = 0;
        if (rel.cascadeUpdates) grbit |= relflag::kCascadeUpdates;
        if (rel.cascadeDeletes) grbit |= relflag::kCascadeDeletes;
        if (rel.cascadeNull) grbit |= relflag::kCascadeNull;
        for (std::size_t ri = 0; ri < fromDef.realIndexes.size(); ++ri)
            if (isUnique(fromDef, ri) && sameColumns(fromDef.realIndexes[ri], s.referring))
                grbit |= relflag::kOneToOne;
        addRelationshipRows(*db_, *this, rel, s.referring, s.referenced, from->name, to->name,
                            grbit);
        db_->commit();
    } catch (...) {
        db_->rollback();
        throw;
    }
}

}  // namespace jet
