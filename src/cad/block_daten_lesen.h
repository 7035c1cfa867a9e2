#pragma once
// A Block record as the insert command reads it: the current row of a record
// set opened on tblBlockInfo (rsBlockInfo0's narrow column list, or all
// columns). Columns the record set does not hold keep their defaults.
#include "cad/block_daten.h"
#include "db/recordset.h"

namespace tessara {

typBlockDaten fctBlockDatenAusRs(const db::Recordset& rs);

}  // namespace tessara
