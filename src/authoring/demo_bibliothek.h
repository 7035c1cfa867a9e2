#pragma once
// A demonstration library worth paging through: five Folders of standard
// symbols (fittings, fasteners, electrical symbols, title blocks with masked
// text, pipe fittings), several Pages each with gaps between the blocks,
// drawn as slides and laid out below a library directory the way the
// catalogue expects them. Only files are made here; the catalogue rows are
// written by whoever seeds the demo database, from the lists this returns.
#include <string>
#include <vector>

#include "authoring/slide.h"

namespace tessara {

// The Pages are filled for 16 slots a Page (picture-size index 2): slot 20
// lies on the second Page.
constexpr int kDemoSlotsProSeite = 16;

struct DemoOrdner {
    std::string ordnerNr;             // Folder code, also its directory
    std::string ordnerName;           // Ordnername
    std::vector<std::string> seiten;  // SeitenName of SeitenNr 1, 2, ...
};

struct DemoBlock {
    std::string ordnerNr;    // "000", "001", ...
    std::string ordnerName;  // Folder name for tblOrdner
    int slot = 0;            // absolute slot index within the Folder
    std::string blockNr;     // value of column Block
    std::string blkName;     // drawing name of View 0 (BlkName0); View v > 0 adds "-v"
    std::string slideLib;    // value of column SlideLib
    int ansichten = 1;       // Views with a picture and a drawing (View 0 .. ansichten-1)
    // Attribute texts M0 .. M3: the name a draughtsman reads ("Kugelhahn DN 50"),
    // then size, rating and material or standard.
    std::string m0, m1, m2, m3;
    std::string layer, layerFarbe;
    bool markiert = false;  // listed in tblMarkierteBloecke
};

struct DemoSymbol {
    std::string ordnerNr;
    std::string ordnerName;
    std::string name;                     // BlkName0
    std::vector<slide::Slide> ansichten;  // View 0 first
    int slot = 0;
    std::string m0, m1, m2, m3, layer, layerFarbe;
    bool markiert = false;
};

// The Folders with their Pages, in catalogue order; "000" first.
std::vector<DemoOrdner> fctDemoOrdner();

// The blocks in catalogue order (Folder by Folder, slot by slot), drawn in
// memory.
std::vector<DemoSymbol> fctDemoSymbole();

// Writes the slides below the library directory (native path): per View a
// slide library "OrdnerNr\<block>v.slb" holding entry "vA", or single
// "OrdnerNr\<block>v.sld" files when bibliotheken is false; a placeholder
// drawing "OrdnerNr\Block\<block>v.dwg" per View (the CAD host is
// simulated, the bytes only have to be there); each Folder's "Block\" and
// "Block\Varia\" directories. Throws SlideError or
// std::filesystem::filesystem_error when a file cannot be written.
std::vector<DemoBlock> fctDemoBibliothekErzeugen(const std::string& bibliothekNativ,
                                                 bool bibliotheken = true);

}  // namespace tessara
