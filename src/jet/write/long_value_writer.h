#pragma once
// Writing Memo and OLE values: inside the row when small, otherwise in one
// long-value (LVAL) row, or in a chain of LVAL rows each starting with the
// pointer to the next. LVAL pages are owned by the column's own usage maps
// (TableDef::varColumnMaps). Only inside a unit of work.
#include <cstdint>

#include "jet/format/value.h"
#include "jet/read/table_def.h"

namespace jet {

class Database;

namespace lval {
// Values up to this many bytes may stay inside the row.
constexpr std::size_t kMaxInline = 64;
// Data bytes one LVAL row takes: a whole page less header and slot, less the
// next pointer in a chain.
constexpr std::size_t kMaxSingle = kPageSize - 14 - 2;
constexpr std::size_t kChainChunk = kMaxSingle - 4;
}  // namespace lval

// The field the row stores for data of column c (12 bytes, followed by the
// data when it stays inline).
Binary writeLongValue(Database& db, const TableDef& def, const Column& c, const Binary& data,
                      bool allowInline);
// Gives back the LVAL rows the field (n bytes at p) refers to.
void freeLongValue(Database& db, const TableDef& def, const Column& c, const std::uint8_t* p,
                   std::size_t n);

}  // namespace jet
