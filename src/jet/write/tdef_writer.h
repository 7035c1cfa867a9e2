#pragma once
// Writing table definitions: the inverse of parseTableDef.
#include <cstdint>
#include <vector>

#include "jet/read/table_def.h"

namespace jet {

// The definition as one byte stream, laid out as readTableDef concatenates
// it: the first page whole from its header on, then the payload of each
// further page without its 8-byte header. Bytes the model does not
// describe (reserved fields of the header block) come from def.raw when it
// holds them, zero otherwise.
PageBytes encodeTableDef(const TableDef& def);

// How many TDEF pages the definition needs.
std::size_t tableDefPageCount(const TableDef& def);

// The TDEF pages themselves, linked in the order of pageNumbers (which
// must hold tableDefPageCount(def) pages); each is kPageSize bytes.
std::vector<PageBytes> tableDefPages(const TableDef& def,
                                     const std::vector<std::uint32_t>& pageNumbers);

class Database;
// Writes def over its TDEF chain, adding pages when it grew (inside a unit
// of work), and drops the cached definition.
void storeTableDef(Database& db, const TableDef& def);

}  // namespace jet
