#pragma once
// Text index keys in Jet 4's General sort order as Access 2000-2007 write it
// in .mdb files (sort order 0x409, version 0; Access 2010 calls it "General
// - Legacy"). A key sorts case-blind on the base letters first and only
// then on accents and on characters the order skips (hyphen, apostrophe,
// controls), so the key has up to three parts:
//
//   inline codes  one or two bytes per character; upper and lower case
//                 share them, accented letters use their base letter's
//                 (ß, æ, þ, œ expand to two letters), skipped characters
//                 have none. 0x01 closes them.
//   accent codes  one byte per accented character (two for ligatures such
//                 as Ǆ), 0x02 for each plain character before it; dropped
//                 when no accent follows. A combining mark (U+0300...) adds
//                 its code to the accent code of the character before it.
//   skip codes    after 01 01 01: for each skipped character its place as a
//                 big-endian 0x8000 | (7 + 4 * characters before it with
//                 inline codes, counted in accent bytes once an accent
//                 part has begun), 0x06, and its code.
//
// 0x00 ends the value. Descending keys invert every byte written for the
// value, a trailing 0x00 included, and add another 0x00.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace jet::gensort {

// Characters with a code: U+0000-U+052F (Latin-1, Latin Extended-A and -B,
// IPA, spacing and combining marks, Greek, Cyrillic), U+1E00-U+1FFF (Latin
// Extended Additional, Greek Extended) and U+2000-U+23FF (punctuation,
// currency, letterlike symbols, arrows, mathematical and technical signs
// such as ⌀); that takes in all of Windows code page 1252. Some have a
// code that leaves no trace in the key (characters Jet's tables give no
// weight, like U+0000 and all of Greek Extended).
bool covers(char16_t c);

// Where text first holds a character without a code; npos if nowhere.
std::size_t firstUncovered(std::u16string_view text);

// Jet keys text only up to the longest Text column (255 characters); the
// rest of a longer value does not reach the key, nor do spaces at the end
// of what is left.
constexpr std::size_t kMaxKeyChars = 255;

// Appends the key of non-null text to out: the start byte (0x7F ascending,
// 0x80 descending) and the parts above. Text must be covered throughout
// (std::invalid_argument otherwise, nothing appended).
void appendKey(std::u16string_view text, bool ascending, std::vector<std::uint8_t>& out);

}  // namespace jet::gensort
