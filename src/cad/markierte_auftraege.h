#pragma once
// The marked blocks (tblMarkierteBloecke) as pending insertions, and their
// rows deleted once they went in.
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "library/datenbank.h"

namespace tessara {

// One insertion for each marked row whose Block record exists, in the
// record set's order, with the marked View (0..4) and Insertion point
// number (1 when none is set).
std::vector<typEinfuegeAuftrag> fctMarkierteAuftraege(typDatenbank& db);

// Deletes the marked rows of the blocks that were inserted.
void subMarkierteLoeschen(typDatenbank& db, const std::vector<std::string>& erledigteBloecke);

}  // namespace tessara
