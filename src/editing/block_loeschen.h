#pragma once
// Deleting a Block, one of its Views, or one of its Variants, after asking.
//
// No row without its files, no files without a row: the files go first into
// a trash directory in the temporary directory, then the rows are deleted,
// then the trash is emptied. A file that cannot leave the library, or rows
// that cannot be deleted, bring every file back and leave the rows as they
// were.
#include <string>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

// The record, every View's slide (library or single file) and drawing, the
// Variant drawings and record file, the Variant rows and the marks of the
// block number.
bool fctBlockLoeschen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr);

// View 1 .. 4: its drawing, its slide library or slide, and its columns
// BlkName<v> and AX<v> .. FZ<v> set to Null. View 0 is the Block itself.
bool fctAnsichtLoeschen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                        int ansicht);

// The Variant with this file name: its drawings, its records in the record
// file (the file goes with the last record) and its row.
bool fctVarianteLoeschen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                         const std::string& strVariantenDatei);

}  // namespace tessara
