#pragma once
// The program's paths and the few questions every area asks the file system.
//
// Paths are held and composed in the program's backslash form on every
// system ("c:\temp\", "001\Block\00100170.dwg"); the backslash rules below
// work on that text alone. A path becomes native only at the file-system
// boundary, through fctNativerPfad. platform::nativePath is called directly
// only where a native path is handed on as text: to Qt, to the slide codec,
// to the database opener.
//
// Nothing here reports to the error log or throws for a file that is missing
// or cannot be made: the callers decide what a failure means (the named file
// operations of authoring/dateien_operationen.h log it, start-up goes on).
#include <filesystem>
#include <string>
#include <system_error>

namespace tessara {

// --- The backslash rules ----------------------------------------------------

// "\" appended unless the text already ends with one ("C:\" stays as it is).
std::string fctBackslashAmEndeAnfuegen(const std::string& strText);
// Trailing backslashes removed, as the file system takes a directory; a drive
// root ("C:\") and a lone "\" keep theirs.
std::string fctOhneBackslash(std::string strVerzeichnis);
// The directory of a path: everything before its last "\"; empty when there
// is none.
std::string fctVerzeichnisVon(const std::string& strPfad);
// Whether two directories of the database list name the same place: equal
// without regard to case once trailing backslashes are dropped ("C:\Bib\",
// "c:\bib"; "E:\" and the "E:" of "E:\dbTessara.mdb").
bool fctGleichesVerzeichnis(const std::string& a, const std::string& b);
// Trailing blanks removed (RTrim): a Folder code is kept three characters
// wide in the catalogue and names its directory without the blanks.
std::string fctOhneBlanks(const std::string& strText);

// --- At the file-system boundary --------------------------------------------

// The native path for std::filesystem and the file streams. The text is
// UTF-8, so the path is made from it as such (on Windows a narrow string
// would be taken in the ANSI code page).
std::filesystem::path fctNativerPfad(const std::string& strProgrammPfad);

// Whether anything (file or directory) is there.
bool fctPfadExistiert(const std::string& strPfad);
bool fctDateiExistiert(const std::string& strDatei);
bool fctVerzeichnisExistiert(const std::string& strVerzeichnis);
// Makes the directory with its parents; true when it is there afterwards.
bool fctVerzeichnisAnlegen(const std::string& strVerzeichnis);
// Makes the directory a file is about to be written into.
bool fctDateiVerzeichnisAnlegen(const std::string& strDatei);
// Copies a file over the target.
bool fctDateiKopieren(const std::string& von, const std::string& nach, std::error_code& ec);
bool fctDateiKopieren(const std::string& von, const std::string& nach);

}  // namespace tessara
