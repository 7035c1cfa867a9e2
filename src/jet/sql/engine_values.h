#pragma once
// Values and column definitions between the engine's model and the SQL layer's.
#include "jet/format/value.h"
#include "jet/read/table_def.h"
#include "jet/sql/storage.h"

namespace sql::engine {

Value fromJet(const jet::Value& v);
Value fromJet(jet::Value&& v);  // takes text over without a copy
Row fromJet(const jet::Row& r);
// v is already coerced to the column's type by the SQL layer.
jet::Value toJet(const Value& v, jet::ColumnType type);
ColumnDef columnDefOf(const jet::Column& c);
// Whether a key value can equal anything in a column of this type; a
// fractional number never equals an integer column, for instance.
bool keyFits(const Value& key, jet::ColumnType type);

}  // namespace sql::engine
