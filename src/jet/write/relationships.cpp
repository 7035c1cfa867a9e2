#include "jet/write/relationships.h"

#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/index_key.h"
#include "jet/write/index_writer.h"

namespace jet {

namespace relerr {
std::string relatedRecordRequired(const std::string& referencedTable) {
    return "You cannot add or change a record because a related record is required in table '" +
           referencedTable + "'.";
}
std::string relatedRecordsExist(const std::string& referringTable) {
    return "The record cannot be deleted or changed because table '" + referringTable +
           "' includes related records.";
}
}  // namespace relerr

namespace {

[[noreturn]] void broken(const TableDef& def, const Index& li, const std::string& why) {
    throw Error("relationship index " + li.name + " of table " + def.name + " " + why);
}

const CatalogEntry* tableAtPage(Database& db, std::uint32_t page) {
    for (const CatalogEntry& e : db.catalogue())
        if (e.type == objtype::kTable && e.tdefPage() == page) return &e;
    return nullptr;
}

}  // namespace

std::vector<ForeignKeyLink> foreignKeyLinks(Database& db, const TableDef& def) {
    std::vector<ForeignKeyLink> out;
    for (std::size_t i = 0; i < def.indexes.size(); ++i) {
        const Index& li = def.indexes[i];
        if (!li.isRelationshipSide()) continue;
        ForeignKeyLink link;
        link.logical = i;
        if (li.relatedTableType != fktable::kReferenced &&
            li.relatedTableType != fktable::kReferring)
            broken(def, li, "is neither side of a relationship");
        link.referenced = li.relatedTableType == fktable::kReferenced;
        link.cascadeUpdates = li.cascadeUpdates;
        link.cascadeDeletes = li.cascadeDeletes;
        link.cascadeNull = li.cascadeNull;
        const CatalogEntry* e = tableAtPage(db, li.relatedTablePage);
        if (!e)
            broken(
                def, li,
                "refers to page " + std::to_string(li.relatedTablePage) + ", which holds no table");
        link.otherName = e->name;
        link.other = db.tableDefAt(e->tdefPage(), e->name);
        const TableDef& o = *link.other;
        bool found = false;
        for (std::size_t k = 0; k < o.indexes.size(); ++k)
            if (o.indexes[k].number == std::uint32_t(li.relatedIndex)) {
                link.otherLogical = k;
                found = true;
                break;
            }
        if (!found) broken(def, li, "names an index that table " + o.name + " does not have");
        const Index& oi = o.indexes[link.otherLogical];
        if (oi.relatedTablePage != def.page || oi.relatedIndex != std::int32_t(li.number) ||
            oi.relatedTableType == li.relatedTableType)
            broken(def, li,
                   "and index " + oi.name + " of table " + o.name + " do not name each other");
        const RealIndex& mine = def.realIndexes[li.realIndex];
        const RealIndex& theirs = o.realIndexes[oi.realIndex];
        if (mine.columns.size() != theirs.columns.size() || mine.columns.empty())
            broken(def, li, "has another number of columns than index " + oi.name);
        for (std::size_t k = 0; k < mine.columns.size(); ++k) {
            const Column* a = def.columnByNumber(mine.columns[k].columnNumber);
            const Column* b = o.columnByNumber(theirs.columns[k].columnNumber);
            if (!a || !b) broken(def, li, "refers to a column that does not exist");
            if (a->type != b->type)
                broken(def, li,
                       "pairs column " + a->name + " with " + o.name + "." + b->name +
                           " of another type");
        }
        if (std::string why = indexUnmaintainableReason(o, theirs); !why.empty())
            broken(def, li,
                   "relies on an index of table " + o.name +
                       " this engine cannot read "
                       "by key: " +
                       why);
        out.push_back(std::move(link));
    }
    return out;
}

std::optional<Row> keyInOther(const TableDef& def, const ForeignKeyLink& link, const Row& row) {
    const RealIndex& mine = def.realIndexes[link.realIndex(def)];
    const TableDef& o = *link.other;
    const RealIndex& theirs = o.realIndexes[link.otherRealIndex()];
    Row out(o.columns.size());
    for (std::size_t k = 0; k < mine.columns.size() && k < theirs.columns.size(); ++k) {
        const Column* a = def.columnByNumber(mine.columns[k].columnNumber);
        const Column* b = o.columnByNumber(theirs.columns[k].columnNumber);
        const int from = a ? def.columnPosition(a->name) : -1;
        const int to = b ? o.columnPosition(b->name) : -1;
        if (from < 0 || to < 0 || std::size_t(from) >= row.size())
            throw Error("relationship columns of table " + def.name + " not found");
        const Value& v = row[std::size_t(from)];
        if (isNull(v)) return std::nullopt;
        out[std::size_t(to)] = v;
    }
    return out;
}

std::vector<RowId> relatedRows(Database& db, const TableDef& def, const ForeignKeyLink& link,
                               const Row& row) {
    std::optional<Row> there = keyInOther(def, link, row);
    if (!there) return {};
    const std::size_t real = link.otherRealIndex();
    const TableDef& o = *link.other;
    return indexRowsWithKey(db, o, real, indexKeyOf(o, o.realIndexes[real], *there));
}

}  // namespace jet

namespace jet {

namespace {

// Whether the link's key columns of a and b hold the same key (Jet's
// equality: the index keys, so text ignores case).
bool sameKey(const TableDef& def, const ForeignKeyLink& link, const Row& a, const Row& b) {
    const RealIndex& real = def.realIndexes[link.realIndex(def)];
    return indexKeyOf(def, real, a) == indexKeyOf(def, real, b);
}

}  // namespace

void requireReferencedRows(Database& db, const TableDef& def,
                           const std::vector<ForeignKeyLink>& links, const Row& row,
                           const Row* old) {
    for (const ForeignKeyLink& link : links) {
        if (link.referenced || (old && sameKey(def, link, *old, row))) continue;
        std::optional<Row> there = keyInOther(def, link, row);
        if (!there) continue;
        const TableDef& o = *link.other;
        const std::size_t real = link.otherRealIndex();
        const std::vector<std::uint8_t> key = indexKeyOf(o, o.realIndexes[real], *there);
        // A row of a table related to itself may refer to its own key.
        if (o.page == def.page && indexKeyOf(def, def.realIndexes[real], row) == key) continue;
        if (!indexHoldsKey(db, o, real, key, RowId{}))
            throw Error(relerr::relatedRecordRequired(link.otherName),
                        relerr::kRelatedRecordRequired);
    }
}

namespace {

// The referring rows of old for every link where def is the referenced
// table; with the key positions of each in the referring table.
template <class Decide>
std::vector<CascadeStep> referrers(Database& db, const TableDef& def,
                                   const std::vector<ForeignKeyLink>& links, const Row& old,
                                   Decide&& decide) {
    std::vector<CascadeStep> out;
    for (const ForeignKeyLink& link : links) {
        if (!link.referenced) continue;
        std::optional<Row> there = keyInOther(def, link, old);
        if (!there) continue;
        CascadeStep step;
        step.table = link.otherName;
        if (!decide(link, step)) continue;
        const TableDef& o = *link.other;
        const std::size_t real = link.otherRealIndex();
        step.rows = indexRowsWithKey(db, o, real, indexKeyOf(o, o.realIndexes[real], *there));
        if (step.rows.empty()) continue;
        if (!step.remove && step.values.empty())
            throw Error(relerr::relatedRecordsExist(link.otherName), relerr::kRelatedRecordsExist);
        out.push_back(std::move(step));
    }
    return out;
}

// The referring table's key columns (positions) with the values they take:
// those of key, Null without one.
std::vector<std::pair<std::size_t, Value>> keyValues(const Row& oldThere,
                                                     const std::optional<Row>& newThere) {
    std::vector<std::pair<std::size_t, Value>> out;
    for (std::size_t i = 0; i < oldThere.size(); ++i)
        if (!isNull(oldThere[i])) out.emplace_back(i, newThere ? (*newThere)[i] : Value{});
    return out;
}

}  // namespace

std::vector<CascadeStep> referrersOnUpdate(Database& db, const TableDef& def,
                                           const std::vector<ForeignKeyLink>& links, const Row& old,
                                           const Row& row) {
    return referrers(db, def, links, old, [&](const ForeignKeyLink& link, CascadeStep& step) {
        if (sameKey(def, link, old, row)) return false;
        if (link.cascadeUpdates)
            step.values = keyValues(*keyInOther(def, link, old), keyInOther(def, link, row));
        return true;
    });
}

std::vector<CascadeStep> referrersOnDelete(Database& db, const TableDef& def,
                                           const std::vector<ForeignKeyLink>& links,
                                           const Row& old) {
    return referrers(db, def, links, old, [&](const ForeignKeyLink& link, CascadeStep& step) {
        if (link.cascadeDeletes)
            step.remove = true;
        else if (link.cascadeNull)
            step.values = keyValues(*keyInOther(def, link, old), std::nullopt);
        return true;
    });
}

}  // namespace jet
