#pragma once
// The Block record of a View just taken from the drawing. The window's own
// Block-record statement is deliberately narrow (of the points only AX1 ..
// AX4), so these open record sets of their own, on the model's connection,
// and the model reads its record set again afterwards.
#include <array>
#include <optional>
#include <string>

#include "editing/dias_erstellen.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

struct typAnsichtDaten {
    std::string strBlockNr;
    long lngOrdnerID = 0;
    int ansicht = 0;
    std::string strBlkName;
    std::string strSlideLib;                         // View 0 only
    std::array<std::optional<typPunkt3>, 6> punkte;  // A .. F; empty: not set
    std::array<std::string, 10> M;                   // View 0 only; empty: Null
    std::string Layer, LyColor, LyLine;              // View 0 only; empty: Null
};

// View 0: a new record (or the one of the number, written over) with Block,
// OrdnerID, SlideLib, BLKName0, M0 .. M9, Layer, LYCOLOR, LYLINE and AX0 .. FZ0.
bool BlockdatenInDatenbankAbspeichern(ProgrammZustand& z, NavigationsModell& m,
                                      const typAnsichtDaten& d);
// View 1 .. 4 of an existing record: BlkName v and its 18 coordinates.
bool BlockdatenInDatenbankAbspeichernAnsichten(ProgrammZustand& z, NavigationsModell& m,
                                               const typAnsichtDaten& d);
// The statement that second one opens: "SELECT  SlideLib, BlkName" & v & ",
// AX" & v & ... & " From tblBlockInfo WHERE Block = '" & number & "'".
std::string fctSqlAnsicht(int ansicht, const std::string& strBlockNr);
// Either of the two by the View: the entry point of the flows.
bool BlockdatenInDatenbankAbspeichernAnsichten2(ProgrammZustand& z, NavigationsModell& m,
                                                const typAnsichtDaten& d);

}  // namespace tessara
