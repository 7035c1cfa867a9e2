#include "jet/format/text.h"

#include <algorithm>
#include <cstring>

namespace jet {

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

namespace {

// Appends UTF-16 code units, pairing surrogates; lone surrogates become U+FFFD.
struct Utf16Sink {
    std::string& out;
    char16_t high = 0;
    void put(char16_t u) {
        if (high) {
            if (u >= 0xDC00 && u <= 0xDFFF) {
                appendUtf8(out, 0x10000 + ((char32_t(high) - 0xD800) << 10) + (u - 0xDC00));
                high = 0;
                return;
            }
            appendUtf8(out, 0xFFFD);
            high = 0;
        }
        if (u >= 0xD800 && u <= 0xDBFF) {
            high = u;
        } else if (u >= 0xDC00 && u <= 0xDFFF) {
            appendUtf8(out, 0xFFFD);
        } else {
            appendUtf8(out, u);
        }
    }
    void finish() {
        if (high) appendUtf8(out, 0xFFFD);
        high = 0;
    }
};

}  // namespace

std::string ucs2ToUtf8(const std::uint8_t* p, std::size_t n) {
    std::string out;
    out.reserve(n / 2);
    Utf16Sink sink{out};
    for (std::size_t i = 0; i + 1 < n; i += 2) sink.put(char16_t(p[i] | (p[i + 1] << 8)));
    sink.finish();
    return out;
}

std::string decodeText(const std::uint8_t* p, std::size_t n) {
    if (n >= 2 && p[0] == 0xFF && p[1] == 0xFE) {
        std::string out;
        out.reserve(n);
        Utf16Sink sink{out};
        bool compressed = true;
        std::size_t i = 2;
        while (i < n) {
            if (p[i] == 0) {
                compressed = !compressed;
                ++i;
                continue;
            }
            if (compressed) {
                // Most catalogue text is plain ASCII: copy such runs whole.
                if (p[i] < 0x80 && !sink.high) {
                    std::size_t end = i + 1;
                    while (end < n && p[end] != 0 && p[end] < 0x80) ++end;
                    out.append(reinterpret_cast<const char*>(p + i), end - i);
                    i = end;
                    continue;
                }
                sink.put(char16_t(p[i]));
                ++i;
            } else {
                if (i + 1 >= n) break;
                sink.put(char16_t(p[i] | (p[i + 1] << 8)));
                i += 2;
            }
        }
        sink.finish();
        return out;
    }
    return ucs2ToUtf8(p, n);
}

std::u16string utf8ToUtf16(const std::string& s) {
    std::u16string out;
    out.reserve(s.size());
    std::size_t i = 0;
    while (i < s.size()) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        char32_t cp = 0xFFFD;
        std::size_t len = 1;
        if (c < 0x80) {
            cp = c;
        } else if ((c & 0xE0) == 0xC0) {
            len = 2;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
        }
        if (len > 1) {
            if (i + len > s.size()) {
                len = 1;
            } else {
                cp = c & (0xFF >> (len + 1));
                bool ok = true;
                for (std::size_t k = 1; k < len; ++k) {
                    unsigned char cc = static_cast<unsigned char>(s[i + k]);
                    if ((cc & 0xC0) != 0x80) ok = false;
                    cp = (cp << 6) | (cc & 0x3F);
                }
                if (!ok || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
                    cp = 0xFFFD;
                    len = 1;
                }
            }
        }
        i += len;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out += char16_t(0xD800 + (cp >> 10));
            out += char16_t(0xDC00 + (cp & 0x3FF));
        } else {
            out += char16_t(cp);
        }
    }
    return out;
}

std::string utf16ToUtf8(const std::u16string& s) {
    std::string out;
    Utf16Sink sink{out};
    for (char16_t u : s) sink.put(u);
    sink.finish();
    return out;
}

std::vector<std::uint8_t> utf8ToUcs2(const std::string& s) {
    std::u16string u = utf8ToUtf16(s);
    std::vector<std::uint8_t> out;
    out.reserve(u.size() * 2);
    for (char16_t c : u) {
        out.push_back(std::uint8_t(c & 0xFF));
        out.push_back(std::uint8_t(c >> 8));
    }
    return out;
}

namespace {
bool plainAscii(const std::string& s) {
    return std::all_of(s.begin(), s.end(), [](char c) {
        const auto u = static_cast<unsigned char>(c);
        return u > 0 && u < 0x80;
    });
}
}  // namespace

std::vector<std::uint8_t> encodeText(const std::string& utf8, bool allowCompression) {
    // Most text is ASCII: compressed, every character is its own byte.
    if (allowCompression && utf8.size() > 2 && plainAscii(utf8)) {
        std::vector<std::uint8_t> out(utf8.size() + 2);
        out[0] = 0xFF;
        out[1] = 0xFE;
        std::memcpy(out.data() + 2, utf8.data(), utf8.size());
        return out;
    }
    std::u16string u = utf8ToUtf16(utf8);
    if (allowCompression) {
        // Characters whose low byte is zero cannot appear in the two-byte
        // runs (a zero byte switches modes), so such text stays plain.
        bool possible =
            std::none_of(u.begin(), u.end(), [](char16_t c) { return (c & 0xFF) == 0; });
        if (possible) {
            std::vector<std::uint8_t> out{0xFF, 0xFE};
            bool compressed = true;
            for (char16_t c : u) {
                bool one = c < 0x100;
                if (one != compressed) {
                    out.push_back(0);
                    compressed = one;
                }
                out.push_back(std::uint8_t(c & 0xFF));
                if (!one) out.push_back(std::uint8_t(c >> 8));
            }
            if (out.size() < u.size() * 2) return out;
        }
    }
    std::vector<std::uint8_t> out;
    out.reserve(u.size() * 2);
    for (char16_t c : u) {
        out.push_back(std::uint8_t(c & 0xFF));
        out.push_back(std::uint8_t(c >> 8));
    }
    return out;
}

namespace {
// Runs of letters where case pairs sit side by side, the lower case right
// after the upper one: upper on the even code points (on the odd ones
// where upperOdd says so).
struct PairRun {
    char16_t first, last;
    bool upperOdd;
};
constexpr PairRun kPairRuns[] = {
    {0x0100, 0x012F, false}, {0x0132, 0x0137, false}, {0x0139, 0x0148, true},
    {0x014A, 0x0177, false}, {0x0179, 0x017E, true},  {0x0182, 0x0185, false},
    {0x01A0, 0x01A5, false}, {0x01CD, 0x01DC, true},  {0x01DE, 0x01EF, false},
    {0x01F8, 0x021F, false}, {0x0222, 0x0233, false}, {0x03D8, 0x03EF, false},
    {0x0460, 0x0481, false}, {0x048A, 0x04BF, false}, {0x04C1, 0x04CE, true},
    {0x04D0, 0x052F, false}, {0x1E00, 0x1E95, false}, {0x1EA0, 0x1EFF, false},
};

// Upper case for the letters of Latin-1, Latin Extended, Greek and
// Cyrillic: Jet compares text case-blind in all of them.
char16_t foldCase(char16_t c) {
    if (c < 0x80) return c >= 'a' && c <= 'z' ? char16_t(c - 32) : c;
    if (c < 0x100) {
        if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return char16_t(c - 32);
        return c == 0xFF ? char16_t(0x0178) : c;
    }
    for (const PairRun& r : kPairRuns)
        if (c >= r.first && c <= r.last) return ((c & 1) != 0) == r.upperOdd ? c : char16_t(c - 1);
    if (c == 0x0131) return u'I';                                                    // dotless i
    if (c >= 0x01C4 && c <= 0x01CC) return char16_t(0x01C4 + (c - 0x01C4) / 3 * 3);  // Ǆ ǅ ǆ
    if (c >= 0x01F1 && c <= 0x01F3) return 0x01F1;                                   // Ǳ ǲ ǳ
    if (c >= 0x03B1 && c <= 0x03C9 && c != 0x03C2) return char16_t(c - 0x20);        // Greek
    if (c == 0x03C2) return 0x03A3;                                                  // final sigma
    if (c == 0x03AC) return 0x0386;
    if (c >= 0x03AD && c <= 0x03AF) return char16_t(c - 0x25);
    if (c == 0x03CC) return 0x038C;
    if (c == 0x03CD || c == 0x03CE) return char16_t(c - 0x3F);
    if (c == 0x03CA || c == 0x03CB) return char16_t(c - 0x20);
    if (c >= 0x0430 && c <= 0x044F) return char16_t(c - 0x20);  // Cyrillic
    if (c >= 0x0450 && c <= 0x045F) return char16_t(c - 0x50);
    if (c == 0x04CF) return 0x04C0;
    return c;
}
}  // namespace

std::size_t utf16Length(const std::string& s) {
    return plainAscii(s) ? s.size() : utf8ToUtf16(s).size();
}

int compareTextNoCase(const std::string& a, const std::string& b) {
    if (plainAscii(a) && plainAscii(b)) {
        const std::size_t n = std::min(a.size(), b.size());
        for (std::size_t i = 0; i < n; ++i) {
            char16_t p = foldCase(char16_t(a[i])), q = foldCase(char16_t(b[i]));
            if (p != q) return p < q ? -1 : 1;
        }
        return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
    }
    std::u16string x = utf8ToUtf16(a), y = utf8ToUtf16(b);
    std::size_t n = std::min(x.size(), y.size());
    for (std::size_t i = 0; i < n; ++i) {
        char16_t p = foldCase(x[i]), q = foldCase(y[i]);
        if (p != q) return p < q ? -1 : 1;
    }
    return x.size() == y.size() ? 0 : (x.size() < y.size() ? -1 : 1);
}

bool equalsNoCase(const std::string& a, const std::string& b) {
    return compareTextNoCase(a, b) == 0;
}

}  // namespace jet
