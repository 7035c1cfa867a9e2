#pragma once
// Folder export and import: a Folder with its Block records, Pages, Variants
// and definition menu written to an Access file of its own beside a copy of
// its directory, and such a file read into a library as a new Folder.
//
// The rows move by the engine's own statements naming the other file in an
// IN clause (SELECT … INTO … IN '<library>' on the export file's connection,
// INSERT INTO … IN '<library>' SELECT … FROM the export file's tables).
//
// What holds when the work stops half way (a failure, Cancel, a killed
// process):
// - Export writes into "<file>.tmp" and "<code>.tmp" beside the target and
//   renames both at the end (the directory first). A later export to the same
//   file finds the ".tmp" file, takes it for its own unfinished attempt, and
//   clears what that attempt left before it starts again.
// - Import copies the files before the Block records: a record never points
//   at a drawing that is not there. The new Folder row comes first and stays
//   empty until the rows arrive; Cancel during the copy removes it and the
//   files again. Importing under the same name once more (answering Yes)
//   replaces a Folder left half way.
// - Drawings are never overwritten: the exported directory must not exist
//   yet, and an import's target directory that exists already (left by a
//   Folder deleted before) is renamed aside with "geloescht" first.
//
// The imported Blocks take the new Folder's code: block numbers begin with
// the Folder code, and the window finds a slot's Block (and its drawing) by
// that number. So the files are renamed to the new numbers as they are copied,
// and Block, SlideLib and the Variants' file names are rewritten in the
// export file before the rows are copied.
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr long kMsgDateiGibtEsSchon = 290, kMsgAndererDateiname = 291;
inline constexpr long kMsgOrdnerWirdKopiert = 292, kMsgNameFuerNeuenOrdner = 293;
inline constexpr long kMsgDateiNichtGefunden = 294;
inline constexpr long kMsgOrdnerNameGibtEs = 295, kMsgBloeckeWerdenGeloescht = 296,
                      kMsgVerzeichnisWirdUmbenannt = 297, kMsgTrotzdemImportieren = 298;
inline constexpr long kMsgInventorBibliothek = 299, kMsgTeiledateien = 300,
                      kMsgImportFortsetzen = 301;
inline constexpr long kMsgKeinExportierterOrdner = 540;

// Exports the Folder with the code strCode into the new file strDatei (the
// program's path form), its directory beside it. Refused (message 290/291)
// when strDatei or the directory exists already.
bool fctOrdnerExportieren(ProgrammZustand& z, NavigationsModell& m, const std::string& strCode,
                          const std::string& strDatei);

// Imports the Folder of the export file strDatei as a new Folder named
// strName, and makes it current.
bool fctOrdnerImportieren(ProgrammZustand& z, NavigationsModell& m, const std::string& strDatei,
                          const std::string& strName);

// The Block columns an import copies (the key Nr is not among them): for
// "tblBlockInfo" and for "tblBlockInfoInventor".
std::string fctImportSpalten(const std::string& strTabelle);

}  // namespace tessara
