#pragma once
// The slide-library builder that takes the place of the host's
// "slidelib.exe": a list of slide files, one a line, becomes one library
// whose entries are named after the files' base names, upper-cased.
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

}  // namespace tessara
