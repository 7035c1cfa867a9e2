#pragma once
// Operations on the files of one block as a whole.
#include <string>

#include "startup/programm_zustand.h"

namespace tessara {

// Deletes the View-0 drawing ("Block\" & block number & "0.dwg" under the
// Folder directory) and the block's View-0 slide library (or its single
// slide file when bibliothek is false), both relative to the library base
// directory (ending in "\"). True when both were deleted; a missing file is
// reported through the error handler like any other failure.
bool DateienLöschenSlideLibBlockzeichnung(ProgrammZustand& z, const std::string& basisVerzeichnis,
                                          const std::string& ordnerNr, const std::string& blockNr,
                                          bool bibliothek = true);

}  // namespace tessara
