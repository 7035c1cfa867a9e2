#pragma once
// Windows-1252, the ANSI code page of German Windows, in which the program's
// text files (the Settings file, caption files, scripts) lie on disk. Inside
// the program all text is UTF-8.
#include <string>
#include <string_view>

namespace tessara {

// Every byte maps to one character. The five bytes Windows-1252 leaves
// undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the C1 controls of the same
// value, as Windows' own conversion does, so any file survives a round trip
// byte for byte.
std::string fctAnsiNachUtf8(std::string_view ansi);

// Characters Windows-1252 cannot hold become '?'; so does every byte of a
// broken UTF-8 sequence.
std::string fctUtf8NachAnsi(std::string_view utf8);

// Whether the bytes are well-formed UTF-8 with at least one character beyond
// ASCII: a file that passes was written by a UTF-8 editor, not as ANSI (an
// ANSI umlaut is followed by an ASCII letter, which UTF-8 never allows).
bool fctIstUtf8MitUmlauten(std::string_view bytes);

// UTF-16 little endian (a file with the byte order mark FF FE) and back.
// Unpaired surrogates become U+FFFD.
std::string fctUtf16LeNachUtf8(std::string_view bytes);
std::string fctUtf8NachUtf16Le(std::string_view utf8);

}  // namespace tessara
