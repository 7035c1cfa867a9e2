#pragma once
// Relationships with referential integrity as Jet keeps them. MSysRelationships
// only documents a relationship; Jet enforces it from a foreign-key entry
// among the logical indexes of each of the two tables: the referring table's
// entry (named after the relationship) indexes its reference columns, the
// referenced table's entry (".rB", ".rC", ...) shares the unique index of
// the key referred to. Each entry names the other table's TDEF page and the
// number of the other's entry, and both carry the cascade flags.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"

namespace jet {

class Database;

// Jet's numbers and words for the rule's refusals.
namespace relerr {
constexpr long kRelatedRecordRequired = 3201;
constexpr long kRelatedRecordsExist = 3200;
std::string relatedRecordRequired(const std::string& referencedTable);
std::string relatedRecordsExist(const std::string& referringTable);
}  // namespace relerr

// MSysRelationships' grbit.
namespace relflag {
constexpr std::int32_t kOneToOne = 0x00000001;
constexpr std::int32_t kNoIntegrity = 0x00000002;
constexpr std::int32_t kCascadeUpdates = 0x00000100;
constexpr std::int32_t kCascadeDeletes = 0x00001000;
constexpr std::int32_t kCascadeNull = 0x00002000;  // deleting the referenced row sets Null
}  // namespace relflag

// One enforced relationship seen from one of its two tables.
struct ForeignKeyLink {
    std::size_t logical = 0;  // this table's entry: position in TableDef::indexes
    bool referenced = false;  // this table holds the key the other's rows refer to
    std::string otherName;
    std::shared_ptr<const TableDef> other;
    std::size_t otherLogical = 0;  // position in other->indexes
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool cascadeNull = false;

    std::size_t realIndex(const TableDef& def) const { return def.indexes[logical].realIndex; }
    std::size_t otherRealIndex() const { return other->indexes[otherLogical].realIndex; }
};

// The enforced relationships of def. Throws jet::Error naming the entry
// when one cannot be followed (a missing table or entry, entries that do
// not name each other, key columns that differ in number or type, a key
// this engine cannot encode): such a table is not written.
std::vector<ForeignKeyLink> foreignKeyLinks(Database& db, const TableDef& def);

// row (a row of def) as the other table sees the link's key: a row of
// link.other whose key columns hold row's key values, pairing the columns
// of the two indexes in order, every other column Null. nullopt when a key
// column of row is Null: a reference with a Null refers to nothing.
std::optional<Row> keyInOther(const TableDef& def, const ForeignKeyLink& link, const Row& row);

// The rows of link.other whose key equals row's (row a row of def): for a
// referring table at most the row referred to, for a referenced table the
// rows referring to row. Empty when row's key holds a Null.
std::vector<RowId> relatedRows(Database& db, const TableDef& def, const ForeignKeyLink& link,
                               const Row& row);

// Refuses row (a new row of def, or old's replacement) when a reference
// it holds finds no row in the referenced table (relerr 3201). An update
// checks only the references it changes.
void requireReferencedRows(Database& db, const TableDef& def,
                           const std::vector<ForeignKeyLink>& links, const Row& row,
                           const Row* old);

// What a change of a referenced row asks of the rows referring to it: in
// table, the rows to remove, or to give values (column position, value).
struct CascadeStep {
    std::string table;
    std::vector<RowId> rows;
    bool remove = false;
    std::vector<std::pair<std::size_t, Value>> values;
};
// For old becoming row: the referring rows that follow the new key
// (cascading updates). Throws relerr 3200 when rows refer to a key that
// changes and the relationship does not cascade updates.
std::vector<CascadeStep> referrersOnUpdate(Database& db, const TableDef& def,
                                           const std::vector<ForeignKeyLink>& links, const Row& old,
                                           const Row& row);
// For old being deleted: the referring rows removed with it (cascading
// deletes) or set to Null. Throws relerr 3200 when rows refer to it and the
// relationship does neither.
std::vector<CascadeStep> referrersOnDelete(Database& db, const TableDef& def,
                                           const std::vector<ForeignKeyLink>& links,
                                           const Row& old);

}  // namespace jet
