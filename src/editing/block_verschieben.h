#pragma once
// Moving a Block to another slot (DateienUmEinePositionVerschieben): its
// files, its Variants and its record go together, or nothing moves.
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

// Moves the Block strBlockNr to the slot with the block number strZielBlockNr
// of the Folder with code strZielOrdnerNr and key lngZielOrdnerID (the same
// Folder or another). Order: the slides (View 0's library or single slide,
// then Views 1 .. 4), the drawings, the Variant drawings (renamed to the new
// number) and the Variant record file (its file names rewritten), then the
// rows: the record's Block, OrdnerID and SlideLib, the Variants'
// BlockDateiName, the marks' BlockNr. An occupied target is refused with a
// message; when any step fails, the files moved go back, the rows stay as
// they were, and the user is told.
bool DateienUmEinePositionVerschieben(ProgrammZustand& z, NavigationsModell& m,
                                      const std::string& strBlockNr,
                                      const std::string& strZielOrdnerNr, long lngZielOrdnerID,
                                      const std::string& strZielBlockNr);

// The marked Blocks into the free slots of the current Page, from the selected
// slot on, in the order they were marked; the marks go afterwards. Refused
// with a message when nothing is marked or too few slots are free. A move
// that fails stops the rest (the Blocks moved before it stay moved).
bool fctMarkierteVerschieben(ProgrammZustand& z, NavigationsModell& m);

// The file name a Variant takes when its Block moves from alt to neu: names
// made by the program begin with the block number, others are kept.
std::string fctVarianteDateiNachUmzug(const std::string& strDatei, const std::string& alt,
                                      const std::string& neu);

}  // namespace tessara
