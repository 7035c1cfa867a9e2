#pragma once
// What an insertion needs of a Block record and of the user's choices. The
// record is a plain structure here so that the CAD bridge does not depend on
// the record sets; the main window fills it from rsBlockInfo0.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace tessara {

struct typPunkt {
    std::string x = "0", y = "0", z = "0";
};

struct typBlockDaten {
    long Nr = 0;
    std::string Block;  // block number: Folder code, "0", slot code
    long OrdnerID = 0;
    std::string OrdnerNr;  // the Folder's 3-character code
    std::string SlideLib;
    std::array<std::string, 5> BlkName;  // drawing names of the Views
    // Insertion points A to F of each View (columns AX0 .. FZ4).
    std::array<std::array<typPunkt, 6>, 5> Einfuegepunkte;
    std::array<std::string, 10> M;  // attribute columns M0 .. M9
    std::string Layer, LyColor, LyLine;
};

// The insertion check boxes and option values of the main window.
struct typEinfuegeOptionen {
    std::uint8_t checkBlock = 0;
    std::uint8_t checkXFrage = 0;
    std::uint8_t checkYFrage = 0;
    std::uint8_t checkZFrage = 0;
    std::uint8_t checkWinkel = 0;
    std::uint8_t checkAttribute = 0;
    std::uint8_t checkUrsprung = 0;
    std::uint8_t checkReihe = 0;
    std::uint8_t checkMehr = 0;
    std::uint8_t checkBruch = 0;
    std::string strMassstabX = "1";
    std::string strMassstabY = "1";
    std::string strMassstabZ = "1";
    std::string strWinkel = "0";
    long longEinfuegenLayer0 = 0;
    long longXRef = 0;
    long lonLispVarUebergeben = 0;
    long longVariantenfrage = 0;
    long longBruchFrage = 0;            // ask before the line is broken at the block
    long longMassstabskontrolle = 0;    // compare the scale with the drawing's DIMSCALE
    long longStuecklisteEinfuegen = 0;  // every inserted block goes into the parts list
    // An explicit block name chosen by the user (LT route); empty when none.
    std::string strExpliziterBlockName;
};

// Values of section "AllgemeineDaten" of the Settings file used by the bridge.
struct typCadEinstellungen {
    std::string sReplaceBackslash;
    std::string sOhneLayersteuerung;
    std::string NewInsertRoutine;
    std::string OrthoNichtDeaktivieren;
};

// A Variant of a Block record (tblVariationBloecke).
struct typVariante {
    std::string BlockName;       // the Variant's name: the inserted block is named after it
    std::string BlockDateiName;  // its drawing file name below "\Block\Varia\"
};

// One pending insertion: the selected slot, or one row of the marked blocks.
struct typEinfuegeAuftrag {
    typBlockDaten block;
    int ansicht = 0;                     // View 0 .. 4
    int nummerEinfuegepkt = 1;           // 1: the drawing's base point; 2 ..: stored points A ..
    std::vector<typVariante> varianten;  // the Block's Variants, empty when it has none
    // The Variant chosen before insertion; empty BlockDateiName: the Block itself.
    typVariante variante;
};

}  // namespace tessara
