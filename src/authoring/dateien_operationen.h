#pragma once
// modDateienOperationen: the file operations the program names, through
// which it copies, moves, deletes and lists files. Paths come in the
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
// Overwrites the target.
bool CopyAFile(ProgrammZustand& z, const std::string& von, const std::string& nach);
// Copies the tree below von into nach (created when missing), overwriting files.
bool CopyAFolder(ProgrammZustand& z, const std::string& von, const std::string& nach);
bool DeleteAFolder(ProgrammZustand& z, const std::string& verzeichnis);
// Fails when the target exists.
bool MoveAFolder(ProgrammZustand& z, const std::string& von, const std::string& nach);

// Writes the full names of the ".dwg" files of a directory, one a line, into
// the temporary directory's "txtDWGFiles.txt".
bool SearchDWGFiles(ProgrammZustand& z, const std::string& verzeichnis);
// File names (without directory) of a directory in name order, optionally only
// those with the given extension (without dot, compared without case).
bool fctSearchFiles(ProgrammZustand& z, const std::string& verzeichnis,
                    std::vector<std::string>& liste);
bool fctSearchFiles(ProgrammZustand& z, const std::string& verzeichnis, const std::string& endung,
                    std::vector<std::string>& liste);
std::vector<std::string> fctSearchFilesAry(ProgrammZustand& z, const std::string& verzeichnis,
                                           const std::string& endung);

bool fctFolderExist(ProgrammZustand& z, const std::string& verzeichnis);
// Creates the directory (with its parents) when missing; true when it exists afterwards.
bool fctFolderExistAnlegen(ProgrammZustand& z, const std::string& verzeichnis);
// The same for the directory part of a file path.
bool fctFolderExistMitDatei(ProgrammZustand& z, const std::string& dateiPfad);
// The same, answering the directory (with trailing backslash), empty on failure.
std::string fctFolderExistRueckgabe(ProgrammZustand& z, const std::string& dateiPfad);

struct PfadTeile {
    std::string laufwerk;     // "C:" or "\\server\share", empty for a relative path
    std::string verzeichnis;  // from the first backslash after the drive to the last, inclusive
    std::string name;         // file name without extension
    std::string endung;       // extension without the dot
};
PfadTeile fctPfadVollAufteilen(ProgrammZustand& z, const std::string& pfad);

// Write-protection test: true when directory & "\Test.txt" cannot be written;
// the error's description goes to fehlerText when given.
bool fctReadOnlyMitVerzeichnis(ProgrammZustand& z, const std::string& verzeichnis,
                               std::string* fehlerText = nullptr);

std::string fctPfadAuf34ZeichenKuerzen(ProgrammZustand& z, const std::string& pfad);
std::string fctBackslashAmEndeAnfuegen(ProgrammZustand& z, const std::string& text);
std::vector<std::string> fctDateiNameAuslesen(ProgrammZustand& z, const std::string& verzeichnis);
// "a.sld" with "slb" gives "a.slb"; a name without extension gets one.
std::string fctDateiEndungUmbenennen(ProgrammZustand& z, const std::string& dateiName,
                                     const std::string& neueEndung);
// Writes the text (UTF-8 inside, Windows-1252 on disk) as the file's whole content.
bool WriteIntorTxtFile(ProgrammZustand& z, const std::string& datei, const std::string& text);

// UTF-8 to Windows-1252 for text files read by the host; characters without
// a place in the code page become "?".
std::string fctNachWindows1252(const std::string& utf8);

}  // namespace tessara
