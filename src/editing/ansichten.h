#pragma once
// The Views of the selected Block as the strip of previews shows them, and
// the View an insertion takes.
#include <optional>
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "library/bibliothek_sitzung.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct typAnsichtBild {
    int ansicht = 0;
    std::string name;       // BlkName<v>
    std::string bild;       // picture name: library & "(vA)", or the single slide
    std::string zeichnung;  // the View's drawing, whose own preview stands in for a missing slide
};

// The existing Views of the Block (View 0 always, Views 1 .. 4 when they
// have a name), each with its picture as the layout gives it: the View's
// entry of its slide library when the Block keeps libraries (SlideLib does
// not name a single slide), else its single slide file.
std::vector<typAnsichtBild> fctAnsichtenBilder(ProgrammZustand& z, NavigationsModell& m,
                                               const std::string& strBlockNr);

// EinzufuegendeAnsichtBestimmenUndRsEinlesen: the Block of the selected
// slot read whole, with its Folder's code and its Variants, and the View
// marked for insertion when the Block has that View, else View 0. The
// Insertion point number is left at 1 (the base point). Nothing for a
// free slot.
std::optional<typEinfuegeAuftrag> EinzufuegendeAnsichtBestimmenUndRsEinlesen(ProgrammZustand& z,
                                                                             BibliothekSitzung& s);

}  // namespace tessara
