#include "platform/case_fold.h"

namespace platform {

std::string foldCase(std::string_view text) {
    std::string out(text);
    for (std::size_t i = 0; i < out.size(); ++i) {
        auto c = static_cast<unsigned char>(out[i]);
        if (c >= 'A' && c <= 'Z') {
            out[i] = static_cast<char>(c + 32);
        } else if (c == 0xC3 && i + 1 < out.size()) {
            auto d = static_cast<unsigned char>(out[i + 1]);
            if (d >= 0x80 && d <= 0x9E && d != 0x97) out[i + 1] = static_cast<char>(d + 0x20);
            ++i;
        }
    }
    return out;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && foldCase(a) == foldCase(b);
}

bool startsWithIgnoreCase(std::string_view text, std::string_view prefix) {
    if (prefix.size() > text.size()) return false;
    // Folding keeps byte lengths, so the prefix can be compared byte for byte.
    return foldCase(text).compare(0, prefix.size(), foldCase(prefix)) == 0;
}

bool CaseInsensitiveLess::operator()(std::string_view a, std::string_view b) const {
    return foldCase(a) < foldCase(b);
}

}  // namespace platform
