#pragma once
// The properties of one Block record that its owner edits by hand: the ten
// attribute values M0 .. M9 (named by the Folder's definition menu; M0 is the
// slot caption) and the layer the Block is inserted on, with its colour and
// linetype.
#include <array>
#include <optional>
#include <string>

#include "library/navigation_model.h"
#include "organisation/def_menue.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr long kMsgFarbe = 435;
inline constexpr long kMsgLayerZeichen = 436;
inline constexpr long kMsgBlockVerschwunden = 438;

struct typBlockEigenschaften {
    long Nr = 0;        // tblBlockInfo.Nr
    std::string Block;  // block number
    long OrdnerID = 0;
    std::array<std::string, kDefMenueZeilen> M;
    std::string Layer, LyColor, LyLine;
};

// The record with key lngNr of the library's block table.
std::optional<typBlockEigenschaften> fctBlockEigenschaftenLesen(ProgrammZustand& z,
                                                                NavigationsModell& m, long lngNr);
// Writes the values back. Refused with a message: a value longer than its
// column (M: 100, Layer 35, LyLine 20), a colour that is not a number 0..256,
// a layer name with a character AutoCAD does not allow in one.
bool fctBlockEigenschaftenSpeichern(ProgrammZustand& z, NavigationsModell& m,
                                    const typBlockEigenschaften& b);

}  // namespace tessara
