#pragma once
// Keeping index B-trees in step with the rows of their table. Only inside a
// unit of work (Database::begin). Every function that changes a tree keeps
// the TDEF fields of the index (root page, usage map) correct itself.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"

namespace jet {

class Database;

// Whether another row than except already holds key in the index (for
// unique and primary keys; checked before anything is written).
bool indexHoldsKey(Database& db, const TableDef& def, std::size_t realIndex,
                   const std::vector<std::uint8_t>& key, RowId except);
// The rows whose entry holds key, in index order (rows referring to a key
// through a foreign-key index).
std::vector<RowId> indexRowsWithKey(Database& db, const TableDef& def, std::size_t realIndex,
                                    const std::vector<std::uint8_t>& key);
// Adds or removes the entry (key, row), splitting pages as needed and
// unlinking pages that become empty. The root page keeps its number (a full
// root hands its entries to a new child), so the TDEF never changes.
void indexInsert(Database& db, const TableDef& def, std::size_t realIndex,
                 const std::vector<std::uint8_t>& key, RowId row);
void indexRemove(Database& db, const TableDef& def, std::size_t realIndex,
                 const std::vector<std::uint8_t>& key, RowId row);
// Writes a whole tree for entries (sorted by key, then row) on new pages
// owned by the index's usage map at usageMapPointer; answers the root page
// (an empty leaf when there are no entries). For new tables and indexes.
std::uint32_t indexBuild(Database& db, std::uint32_t tdefPage, std::uint32_t usageMapPointer,
                         const std::vector<std::pair<std::vector<std::uint8_t>, RowId>>& entries);

}  // namespace jet
