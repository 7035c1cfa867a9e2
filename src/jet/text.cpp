#include "jet/text.h"

#include <algorithm>

namespace jet {

namespace {

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

std::vector<std::uint8_t> encodeText(const std::string& utf8, bool allowCompression) {
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
char16_t foldCase(char16_t c) {
    if (c >= 'a' && c <= 'z') return char16_t(c - 32);
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return char16_t(c - 32);
    return c;
}
}  // namespace

int compareTextNoCase(const std::string& a, const std::string& b) {
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
