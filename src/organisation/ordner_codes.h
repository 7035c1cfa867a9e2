#pragma once
// The Folder-code table: entry k of "txtPrefix.txt" is the code proposed for
// the k-th Folder.
#include <string>
#include <vector>

#include "authoring/code_tabelle.h"
#include "startup/programm_zustand.h"

namespace tessara {

// After this entry the file is read again from its first line (and again
// after each further multiple): entries 0 .. 42874 are the file's 42875
// lines, entries 42875 .. 85748 its first 42874 lines once more, and so on.
inline constexpr long kOrdnerCodeUmbruch = kBlocknummerTeiler;

// Fills aryOrdnerCodes with entries 0 .. lngBis of the table in strDatei
// (program path), one 3-character code per line. False when the file is
// missing or ends before entry lngBis (logged as a file error; the table
// then holds what was read).
bool fctOrdnerCodesEinlesen(ProgrammZustand& z, const std::string& strDatei, long lngBis,
                            std::vector<std::string>& aryOrdnerCodes);

}  // namespace tessara
