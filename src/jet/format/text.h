#pragma once
// Jet 4 text: UCS-2 little-endian, or "compressed Unicode" (0xFF 0xFE marker,
// then runs of one-byte characters and two-byte characters, a 0x00 byte
// switching between the two). Engine text is UTF-8.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace jet {

std::string decodeText(const std::uint8_t* p, std::size_t n);  // either form
// The UTF-8 bytes of one code point, appended: the program's one encoder.
void appendUtf8(std::string& out, char32_t c);
std::string ucs2ToUtf8(const std::uint8_t* p, std::size_t n);
std::vector<std::uint8_t> utf8ToUcs2(const std::string& s);  // unpaired/invalid bytes become U+FFFD
// The compressed form when it is shorter and possible, else plain UCS-2.
std::vector<std::uint8_t> encodeText(const std::string& utf8, bool allowCompression);
std::u16string utf8ToUtf16(const std::string& s);
// utf8ToUtf16(s).size(), without making the text.
std::size_t utf16Length(const std::string& s);
std::string utf16ToUtf8(const std::u16string& s);
// Case-insensitive comparison in the spirit of Jet's General order (Latin,
// Greek and Cyrillic letters folded).
int compareTextNoCase(const std::string& a, const std::string& b);
bool equalsNoCase(const std::string& a, const std::string& b);

}  // namespace jet
