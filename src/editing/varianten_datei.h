#pragma once
// The record file of a Block's Variants: one file per Block, named block
// number & ".dat", in the Folder's "Block\Varia\" directory, beside the
// Variant drawings. It holds one record per Variant and View.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "editing/einfuegepunkte.h"

namespace tessara {

inline constexpr std::size_t kVariantenSatzLaenge = 248;

struct typVariantenSatz {
    std::string name;   // the Variant's name
    std::string datei;  // the Variant's file name (drawings: datei & View & ".dwg")
    int ansicht = 0;    // 0 .. 4
    // The points as texts. Only the first n are stored as set (n = the
    // record's count, one past the last point set); a gap below it reads
    // back as 0, 0, 0.
    typEinfuegepunkte punkte;
};

// Folder directory & "Block\Varia\" & block number & ".dat"
std::string fctVariantenSatzDatei(const std::string& ordnerNr, const std::string& blockNr);

// The records as bytes. A coordinate that is no number is written as 0.
std::string fctVariantenSaetzeBytes(const std::vector<typVariantenSatz>& saetze);
// The records of the bytes; nothing when the bytes are not whole records,
// or a record's View or count is out of range.
std::optional<std::vector<typVariantenSatz>> fctVariantenSaetzeLesen(std::string_view bytes);

}  // namespace tessara
