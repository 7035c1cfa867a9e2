#pragma once
// Index keys as Jet encodes them, for seeking (IndexCursor), for writing
// entries (the index writer) and for checking trees against their rows.
#include <cstdint>
#include <string>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"

namespace jet {

// Encodes key values for an index the way Jet sorts them (ascending or
// descending per column). Supported: Boolean, Byte, Integer, Long,
// Currency, Single, Double, Date/Time, Guid, and Text as a prefix of primary
// sort codes for letters, digits and common punctuation (see textKeyPrefix).
// Throws jet::Error for other types.
std::vector<std::uint8_t> encodeIndexKey(const TableDef& def, const RealIndex& index,
                                         const std::vector<Value>& values);
// Whether encodeIndexKey gives an exact key (true) or only a prefix that
// needs re-checking against the row (Text).
bool indexKeyIsExact(const TableDef& def, const RealIndex& index, std::size_t valueCount);

// Empty when this engine can keep the index consistent (key columns of the
// types it encodes exactly); otherwise a sentence naming the index and why.
std::string indexUnmaintainableReason(const TableDef& def, const RealIndex& index);
// The encoded key of row (one value per TableDef::columns entry) for index.
// Text is encoded only from characters whose General sort codes are known
// exactly; any other value throws jet::Error "cannot encode index key for
// ..." (call it before writing anything).
std::vector<std::uint8_t> indexKeyOf(const TableDef& def, const RealIndex& index, const Row& row);
// How many of the index's key columns are Null in row (one value per
// TableDef::columns entry).
std::size_t nullKeyColumns(const TableDef& def, const RealIndex& index, const Row& row);
// Whether row has an entry in the index: an index that ignores Nulls leaves
// out the rows whose key columns are all Null; every other index holds
// every row.
bool rowBelongsInIndex(const TableDef& def, const RealIndex& index, const Row& row);
// The name of the first logical index over index ("?" when none).
std::string indexName(const TableDef& def, const RealIndex& index);

}  // namespace jet
