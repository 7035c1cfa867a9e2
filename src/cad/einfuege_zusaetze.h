#pragma once
// What an insertion does beside the block itself, each by an option of the
// user: the parts list that grows with every inserted block, the program a
// block brings along, and the comparison of the insertion scale with the
// scale of the drawing.
#include <optional>
#include <string>

#include "cad/block_daten.h"
#include "startup/programm_zustand.h"

namespace tessara {

// Messages of these checks.
inline constexpr long kMsgMassstabAbweichend = 620;  // then drawing and set scale
inline constexpr long kMsgMassstabDerZeichnung = 621;
inline constexpr long kMsgLinieBrechenFrage = 622;

// The parts list of a drawing: beside it, named after it with
// "_Stueckliste.csv". Without a saved drawing (no folder, no name) the list
// lies in the temporary directory as "Stueckliste.csv".
std::string fctStuecklistenDatei(const std::string& strDwgPrefix, const std::string& strDwgName,
                                 const std::string& strTemp);
// One row: block number, the inserted name and the attribute columns M0 ..
// M9, separated by ";" as a German spreadsheet reads them; a ";" or '"'
// inside a value puts the value in double quotes.
std::string fctStuecklistenZeile(const typBlockDaten& b, const std::string& strName);
// Appends the row (Windows-1252, CR LF); a new file begins with the header.
bool subStuecklisteErgaenzen(ProgrammZustand& z, const std::string& strDatei,
                             const typBlockDaten& b, const std::string& strName);

// A block's own program: an AutoLISP file beside its drawings,
// base & OrdnerNr & "\Block\" & block number & ".lsp".
std::string fctBlockProgrammDatei(const std::string& strBibliothek, const std::string& strOrdnerNr,
                                  const std::string& strBlockNr);

// The drawing's scale (DIMSCALE) when it is a usable number that differs
// from the set X scale; nothing when the two agree or either is no number.
std::optional<std::string> fctAbweichenderMassstab(const std::string& strDimscale,
                                                   const std::string& strMassstabX);

}  // namespace tessara
