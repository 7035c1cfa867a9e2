#pragma once
// The Variants of a Block: their rows in tblVariationBloecke (BlockID =
// tblBlockInfo.Nr) and their records in the Block's record file.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cad/block_daten.h"
#include "editing/einfuegepunkte.h"
#include "editing/varianten_datei.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

// The Variants of the Block, in the order they were made.
std::vector<typVariante> fctVariantenLesen(ProgrammZustand& z, NavigationsModell& m,
                                           const std::string& strBlockNr);
// The records of the Block's record file: none when there is no file,
// nothing (and a message) when it is damaged.
std::optional<std::vector<typVariantenSatz>> fctVariantenSaetzeLaden(ProgrammZustand& z,
                                                                     NavigationsModell& m,
                                                                     const std::string& strBlockNr);

// The file name of the Block's next Variant: block number & "_" & the
// first running number 1, 2, … that no Variant of it uses.
std::string fctVarianteDateiNameNeu(ProgrammZustand& z, NavigationsModell& m,
                                    const std::string& strBlockNr);

// Stores a Variant whose drawings the host has written: its row and one
// record per View in punkte (View -> its Insertion points). The name must
// pass the Variant name rule (a message tells why not); a damaged record
// file is refused. The record file is written before the row, and taken
// back when the row cannot be written.
bool subBlockdatenInDatenbankAbspeichernVariante(ProgrammZustand& z, NavigationsModell& m,
                                                 const std::string& strBlockNr,
                                                 const std::string& strName,
                                                 const std::string& strDateiName,
                                                 const std::map<int, typEinfuegepunkte>& punkte);

// Renames the Variant with this file name: its row and its records. The new
// name must pass the Variant name rule.
bool fctVarianteUmbenennen(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                           const std::string& strDateiName, const std::string& strNeu);

}  // namespace tessara
