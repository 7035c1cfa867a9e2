#pragma once
// Windows compares registry key and value names, window titles in
// AppActivate and file names without regard to case. The program's names are
// ASCII or German, so folding ASCII and the Latin-1 letters (Ä, Ö, Ü, À…Þ)
// covers every name it uses without pulling in a Unicode library.
#include <string>
#include <string_view>

namespace platform {

// Lower-cases ASCII letters and the two-byte UTF-8 forms of U+00C0..U+00DE
// (except U+00D7, the multiplication sign). Other bytes pass unchanged.
std::string foldCase(std::string_view text);

bool equalsIgnoreCase(std::string_view a, std::string_view b);
bool startsWithIgnoreCase(std::string_view text, std::string_view prefix);

// Ordering for maps keyed case-insensitively.
struct CaseInsensitiveLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
};

}  // namespace platform
