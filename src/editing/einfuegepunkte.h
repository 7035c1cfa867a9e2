#pragma once
// The Insertion points A to F of a View: how many are set, which one the user
// inserts at, and writing them into the Block record (columns AX<v> .. FZ<v>).
#include <array>
#include <optional>
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

// One point as its owner enters it: three coordinate texts, all empty for a
// point that is not set.
struct typEinfuegepunkt {
    std::string x, y, z;
    bool gesetzt() const { return !x.empty() || !y.empty() || !z.empty(); }
};
using typEinfuegepunkte = std::array<typEinfuegepunkt, 6>;

// A coordinate text as a number; a decimal comma counts as a point. Nothing
// for a text that is no number.
std::optional<double> fctKoordinate(const std::string& text);
// A number as the shortest text that reads back to it ("1.5", "-20").
std::string fctKoordinateText(double wert);

// The points of View ansicht of the Block, read from the record with a
// statement of their own (the window's Block-record statement holds only a
// few of them). Unset coordinates are empty.
std::optional<typEinfuegepunkte> fctEinfuegepunkteLesen(ProgrammZustand& z, NavigationsModell& m,
                                                        const std::string& strBlockNr, int ansicht);
// How many of A .. F are set in the View: a point counts when any of its X,
// Y, Z is not Null. 0 on an error.
int AnzahlDerEinfuegepkteErmitteln(ProgrammZustand& z, NavigationsModell& m,
                                   const std::string& strBlockNr, int ansicht);
// The Insertion point number the insertion uses: with no point set 1 (the
// base point) without asking; otherwise the user picks from the base point
// and the letters of the set points. 1 = base point, 2 = A .. 7 = F; 0 when
// the user cancelled.
int VariaEinfuegepktBestimmen(ProgrammZustand& z, NavigationsModell& m,
                              const std::string& strBlockNr, int ansicht);
// Writes the six points of the View (an empty coordinate becomes Null). A
// coordinate that is no number is refused with a message, and nothing is
// written.
bool subEinfuegepunkteSchreiben(ProgrammZustand& z, NavigationsModell& m,
                                const std::string& strBlockNr, int ansicht,
                                const typEinfuegepunkte& punkte);

}  // namespace tessara
