#include "startup/zeichensatz.h"

#include <cstdint>

#include "jet/format/text.h"

namespace tessara {

namespace {

// Windows-1252 bytes 0x80..0x9F. A zero entry is undefined in the code page
// and stands for the C1 control of the same value.
constexpr char32_t kC1[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                              0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                              0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                              0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// Decodes one UTF-8 character at s[i]; answers its length, 0 when the
// sequence is broken (overlong forms, surrogates and values beyond U+10FFFF
// count as broken).
std::size_t dekodieren(std::string_view s, std::size_t i, char32_t& c) {
    const auto b0 = static_cast<unsigned char>(s[i]);
    if (b0 < 0x80) {
        c = b0;
        return 1;
    }
    std::size_t n;
    char32_t min;
    if ((b0 & 0xE0) == 0xC0) {
        n = 2, c = b0 & 0x1F, min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        n = 3, c = b0 & 0x0F, min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        n = 4, c = b0 & 0x07, min = 0x10000;
    } else {
        return 0;
    }
    if (i + n > s.size()) return 0;
    for (std::size_t k = 1; k < n; ++k) {
        const auto b = static_cast<unsigned char>(s[i + k]);
        if ((b & 0xC0) != 0x80) return 0;
        c = (c << 6) | (b & 0x3F);
    }
    if (c < min || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return 0;
    return n;
}

}  // namespace

std::string fctAnsiNachUtf8(std::string_view ansi) {
    std::string out;
    out.reserve(ansi.size() + ansi.size() / 8);
    for (char ch : ansi) {
        const auto b = static_cast<unsigned char>(ch);
        if (b >= 0x80 && b < 0xA0 && kC1[b - 0x80] != 0)
            jet::appendUtf8(out, kC1[b - 0x80]);
        else
            jet::appendUtf8(out, b);
    }
    return out;
}

std::string fctUtf8NachAnsi(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        char32_t c;
        const std::size_t n = dekodieren(utf8, i, c);
        if (n == 0) {
            out.push_back('?');
            ++i;
            continue;
        }
        i += n;
        if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
            out.push_back(static_cast<char>(c));
            continue;
        }
        char ersatz = '?';
        for (int k = 0; k < 32; ++k) {
            if (kC1[k] == c || (kC1[k] == 0 && c == static_cast<char32_t>(0x80 + k))) {
                ersatz = static_cast<char>(0x80 + k);
                break;
            }
        }
        out.push_back(ersatz);
    }
    return out;
}

bool fctIstUtf8MitUmlauten(std::string_view bytes) {
    bool mehrbyte = false;
    for (std::size_t i = 0; i < bytes.size();) {
        char32_t c;
        const std::size_t n = dekodieren(bytes, i, c);
        if (n == 0) return false;
        if (n > 1) mehrbyte = true;
        i += n;
    }
    return mehrbyte;
}

std::string fctUtf16LeNachUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    const std::size_t n = bytes.size() / 2;
    auto einheit = [&](std::size_t k) -> char32_t {
        return static_cast<unsigned char>(bytes[2 * k]) |
               (static_cast<char32_t>(static_cast<unsigned char>(bytes[2 * k + 1])) << 8);
    };
    for (std::size_t k = 0; k < n; ++k) {
        char32_t c = einheit(k);
        if (c >= 0xD800 && c <= 0xDBFF && k + 1 < n) {
            const char32_t d = einheit(k + 1);
            if (d >= 0xDC00 && d <= 0xDFFF) {
                jet::appendUtf8(out, 0x10000 + ((c - 0xD800) << 10) + (d - 0xDC00));
                ++k;
                continue;
            }
        }
        if (c >= 0xD800 && c <= 0xDFFF) c = 0xFFFD;
        jet::appendUtf8(out, c);
    }
    return out;
}

std::string fctUtf8NachUtf16Le(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size() * 2);
    auto einheit = [&](char32_t u) {
        out.push_back(static_cast<char>(u & 0xFF));
        out.push_back(static_cast<char>((u >> 8) & 0xFF));
    };
    for (std::size_t i = 0; i < utf8.size();) {
        char32_t c;
        const std::size_t n = dekodieren(utf8, i, c);
        if (n == 0) {
            c = 0xFFFD;
            i += 1;
        } else {
            i += n;
        }
        if (c >= 0x10000) {
            c -= 0x10000;
            einheit(0xD800 + (c >> 10));
            einheit(0xDC00 + (c & 0x3FF));
        } else {
            einheit(c);
        }
    }
    return out;
}

}  // namespace tessara
