#pragma once
// "sBkColor" of "AllgemeineDaten": the background of the program's dialogs.
#include <cstdint>
#include <optional>
#include <string>

namespace tessara {

// The colour as 0xRRGGBB. Read as the settings of earlier versions wrote
// it, a Windows colour value with red in its low byte: decimal ("12632256")
// or in Basic's hexadecimal form ("&HC0C0C0", "&H00C0C0C0&"); also "#RRGGBB"
// as an HTML colour. Empty, a system colour (high bit set), anything
// larger than 24 bits or not a number: nothing, and the dialogs keep the
// desktop's colours.
std::optional<std::uint32_t> fctDialogFarbe(const std::string& sBkColor);

}  // namespace tessara
