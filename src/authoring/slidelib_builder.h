#pragma once
// The slide-library builder that takes the place of the host's
// "slidelib.exe": a list of slide files, one a line, becomes one library
// whose entries are named after the files' base names, upper-cased. The
// program calls it directly; the list file "\dialist.txt" and the batch file
// "\Slidelib.bat" are still written for hosts that run the tool themselves.
#include <istream>
#include <string>
#include <vector>

#include "authoring/slide_library.h"
#include "startup/programm_zustand.h"

namespace tessara {

namespace slide {
// The entry name of a slide file: its base name without extension,
// upper-cased. Throws SlideError when it is empty or longer than 31 characters.
std::string entryNameForFile(const std::string& path);
// Reads the list (blank lines and trailing CR ignored) into native paths.
std::vector<std::string> readSlideList(std::istream& list);
// Reads every slide of the list and writes the library through a temporary
// file, so that a refused list leaves an existing library untouched. Throws
// SlideError naming the first offending line (unreadable slide, duplicate
// name, name too long).
void buildLibraryFile(const std::string& libraryNativePath,
                      const std::vector<std::string>& slideNativePaths);
}  // namespace slide

// Builds a library from slide files in program form; false (and an error
// record) when it cannot.
bool fctSlideBibliothekErstellen(ProgrammZustand& z, const std::string& bibliothek,
                                 const std::vector<std::string>& dias);
// The same from a list file such as "\dialist.txt".
bool fctSlideBibliothekAusDialiste(ProgrammZustand& z, const std::string& bibliothek,
                                   const std::string& dialiste);

// "\dialist.txt" in the working directory: one line per View taken,
// working directory & "\" & code & ".sld".
bool DialisteSchreiben(ProgrammZustand& z, const std::string& arbeitsVerzeichnis,
                       const std::vector<std::string>& diaCodes);
// The command line that calls the tool, as sent with "._shell ".
std::string fctSlidelibBefehl(const std::string& arbeitsVerzeichnis, const std::string& bibliothek);
// The same command line with the paths in double quotes, the one line of
// "\Slidelib.bat".
std::string fctSlidelibBatZeile(const std::string& arbeitsVerzeichnis,
                                const std::string& bibliothek);
// Writes "\Slidelib.bat" into the working directory.
bool fctSlidelibBatSchreiben(ProgrammZustand& z, const std::string& arbeitsVerzeichnis,
                             const std::string& bibliothek);

}  // namespace tessara
