#pragma once
// modDateienOperationen: the file operations the program names, through
// which it moves and deletes files. Paths come in the
// program's backslash form; the path rules and the conversion at the
// file-system boundary are those of startup/pfade.h, which these operations
// build on. Every operation runs under the common error handler with its own
// name and answers false (or an empty value) instead of throwing.
#include <string>
#include <vector>

#include "startup/programm_zustand.h"

namespace tessara {

bool DeleteAFile(ProgrammZustand& z, const std::string& datei);
bool DeleteAFile(ProgrammZustand& z, const std::string& verzeichnis, const std::string& dateiName);
// Fails when the target exists, as the file-system object does.
bool MoveAFile(ProgrammZustand& z, const std::string& von, const std::string& nach);
bool DeleteAFolder(ProgrammZustand& z, const std::string& verzeichnis);
// Fails when the target exists.
bool MoveAFolder(ProgrammZustand& z, const std::string& von, const std::string& nach);

bool fctFolderExist(ProgrammZustand& z, const std::string& verzeichnis);
// Creates the directory (with its parents) when missing; true when it exists afterwards.
bool fctFolderExistAnlegen(ProgrammZustand& z, const std::string& verzeichnis);

// Write-protection test: true when directory & "\Test.txt" cannot be written;
// the error's description goes to fehlerText when given.
bool fctReadOnlyMitVerzeichnis(ProgrammZustand& z, const std::string& verzeichnis,
                               std::string* fehlerText = nullptr);

std::string fctPfadAuf34ZeichenKuerzen(ProgrammZustand& z, const std::string& pfad);
std::string fctBackslashAmEndeAnfuegen(ProgrammZustand& z, const std::string& text);

}  // namespace tessara
