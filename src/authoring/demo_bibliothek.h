#pragma once
// A demonstration library: a few dozen standard symbols (valves, flanges,
// screws, electrical symbols) drawn as slides and laid out below a library
// directory the way the catalogue expects them. Only files are made here;
// the catalogue rows are written by whoever seeds the demo database, from
// the list this returns.
#include <string>
#include <vector>

#include "authoring/slide.h"

namespace tessara {

struct DemoBlock {
    std::string ordnerNr;    // "000", "001", ...
    std::string ordnerName;  // Folder name for tblOrdner
    int slot = 0;            // absolute slot index within the Folder
    std::string blockNr;     // value of column Block
    std::string blkName;     // drawing name of View 0 (BlkName0)
    std::string slideLib;    // value of column SlideLib
    int ansichten = 1;       // Views with a picture (View 0 .. ansichten-1)
};

struct DemoSymbol {
    std::string ordnerNr;
    std::string ordnerName;
    std::string name;
    std::vector<slide::Slide> ansichten;  // View 0 first
};

// The symbols in catalogue order, drawn in memory.
std::vector<DemoSymbol> fctDemoSymbole();

// Writes the slides below the library directory (native path): per View a
// slide library "OrdnerNr\<block>v.slb" holding entry "vA", or single
// "OrdnerNr\<block>v.sld" files when bibliotheken is false; also creates
// each Folder's "Block\" and "Block\Varia\" directories. Throws SlideError
// or std::filesystem::filesystem_error when a file cannot be written.
std::vector<DemoBlock> fctDemoBibliothekErzeugen(const std::string& bibliothekNativ,
                                                 bool bibliotheken = true);

}  // namespace tessara
