// Jet's codes for Latin-1 and the rest of code page 1252, the characters
// Access users type. Keys Access wrote for every character U+0001-U+00FF
// re-encode byte for byte (tests/jetindex); the code page 1252 characters
// above U+00FF follow the same code table but no Access key of them has
// been compared.
#include "jet/general_sort.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace jet::gensort {

namespace {

enum class Kind : std::uint8_t {
    None,     // no code known: the character is refused
    Dropped,  // leaves no trace in the key
    Plain,    // inline codes only
    Accent,   // inline codes and an accent code
    Skipped,  // no inline code: a skip code only
};

struct Code {
    Kind kind = Kind::None;
    std::uint8_t inlineCount = 0;
    std::uint8_t inlineBytes[2] = {0, 0};
    std::uint8_t extra = 0;  // accent or skip code
};

constexpr Code pl(std::uint8_t a) { return Code{Kind::Plain, 1, {a, 0}, 0}; }
constexpr Code pl(std::uint8_t a, std::uint8_t b) { return Code{Kind::Plain, 2, {a, b}, 0}; }
constexpr Code ac(std::uint8_t a, std::uint8_t accent) {
    return Code{Kind::Accent, 1, {a, 0}, accent};
}
constexpr Code ac(std::uint8_t a, std::uint8_t b, std::uint8_t accent) {
    return Code{Kind::Accent, 2, {a, b}, accent};
}
constexpr Code sk(std::uint8_t code) { return Code{Kind::Skipped, 0, {0, 0}, code}; }
constexpr Code kDropped{Kind::Dropped, 0, {0, 0}, 0};

// U+0000-U+00FF, four to a line. Letters share their codes across case;
// digits run 0x36, 0x38, ... 0x48; controls other than the tab and line
// breaks, DEL, the C1 controls and the soft hyphen get skip codes only,
// like '-' and '\''.
// clang-format off
constexpr std::array<Code, 256> kLatin1 = {{
    kDropped, sk(0x03), sk(0x04), sk(0x05),                                  // 00
    sk(0x06), sk(0x07), sk(0x08), sk(0x09),                               // 04
    sk(0x0A), pl(0x08, 0x03), pl(0x08, 0x04), pl(0x08, 0x05),             // 08
    pl(0x08, 0x06), pl(0x08, 0x07), sk(0x0B), sk(0x0C),                   // 0C
    sk(0x0D), sk(0x0E), sk(0x0F), sk(0x10),                               // 10
    sk(0x11), sk(0x12), sk(0x13), sk(0x14),                               // 14
    sk(0x15), sk(0x16), sk(0x17), sk(0x18),                               // 18
    sk(0x19), sk(0x1A), sk(0x1B), sk(0x1C),                               // 1C
    pl(0x07), pl(0x09), pl(0x0A), pl(0x0C),                               // 20
    pl(0x0E), pl(0x10), pl(0x12), sk(0x80),                               // 24
    pl(0x14), pl(0x16), pl(0x18), pl(0x2C),                               // 28
    pl(0x1A), sk(0x82), pl(0x1C), pl(0x1E),                               // 2C
    pl(0x36), pl(0x38), pl(0x3A), pl(0x3C),                               // 30
    pl(0x3E), pl(0x40), pl(0x42), pl(0x44),                               // 34
    pl(0x46), pl(0x48), pl(0x20), pl(0x22),                               // 38
    pl(0x2E), pl(0x30), pl(0x32), pl(0x24),                               // 3C
    pl(0x26), pl(0x4A), pl(0x4C), pl(0x4D),                               // 40
    pl(0x4F), pl(0x51), pl(0x53), pl(0x55),                               // 44
    pl(0x57), pl(0x59), pl(0x5B), pl(0x5C),                               // 48
    pl(0x5E), pl(0x60), pl(0x62), pl(0x64),                               // 4C
    pl(0x66), pl(0x68), pl(0x69), pl(0x6B),                               // 50
    pl(0x6D), pl(0x6F), pl(0x71), pl(0x73),                               // 54
    pl(0x75), pl(0x76), pl(0x78), pl(0x27),                               // 58
    pl(0x29), pl(0x2A), pl(0x2B, 0x02), pl(0x2B, 0x03),                   // 5C
    pl(0x2B, 0x07), pl(0x4A), pl(0x4C), pl(0x4D),                         // 60
    pl(0x4F), pl(0x51), pl(0x53), pl(0x55),                               // 64
    pl(0x57), pl(0x59), pl(0x5B), pl(0x5C),                               // 68
    pl(0x5E), pl(0x60), pl(0x62), pl(0x64),                               // 6C
    pl(0x66), pl(0x68), pl(0x69), pl(0x6B),                               // 70
    pl(0x6D), pl(0x6F), pl(0x71), pl(0x73),                               // 74
    pl(0x75), pl(0x76), pl(0x78), pl(0x2B, 0x09),                         // 78
    pl(0x2B, 0x0B), pl(0x2B, 0x0D), pl(0x2B, 0x0F), sk(0x1D),             // 7C
    sk(0x1E), sk(0x1F), sk(0x20), sk(0x21),                               // 80
    sk(0x22), sk(0x23), sk(0x24), sk(0x25),                               // 84
    sk(0x26), sk(0x27), sk(0x28), sk(0x29),                               // 88
    sk(0x2A), sk(0x2B), sk(0x2C), sk(0x2D),                               // 8C
    sk(0x2E), sk(0x2F), sk(0x30), sk(0x31),                               // 90
    sk(0x32), sk(0x33), sk(0x34), sk(0x35),                               // 94
    sk(0x36), sk(0x37), sk(0x38), sk(0x39),                               // 98
    sk(0x3A), sk(0x3B), sk(0x3C), sk(0x3D),                               // 9C
    pl(0x08, 0x02), pl(0x2B, 0x10), pl(0x34, 0xA6), pl(0x34, 0xA7),       // A0
    pl(0x34, 0xA8), pl(0x34, 0xA9), pl(0x2B, 0x11), pl(0x34, 0xAA),       // A4
    pl(0x2B, 0x12), pl(0x34, 0xAB), ac(0x4A, 0x03), pl(0x33, 0x05),       // A8
    pl(0x34, 0xAC), sk(0x83), pl(0x34, 0xAD), pl(0x2B, 0x13),             // AC
    pl(0x34, 0xAE), pl(0x33, 0x04), pl(0x3A), pl(0x3C),                   // B0
    pl(0x2B, 0x14), pl(0x34, 0xAF), pl(0x34, 0xB0), pl(0x34, 0xB1),       // B4
    pl(0x2B, 0x15), pl(0x38), ac(0x64, 0x03), pl(0x33, 0x07),             // B8
    pl(0x37, 0x12), pl(0x37, 0x16), pl(0x37, 0x1A), pl(0x2B, 0x16),       // BC
    ac(0x4A, 0x0F), ac(0x4A, 0x0E), ac(0x4A, 0x12), ac(0x4A, 0x19),       // C0
    ac(0x4A, 0x13), ac(0x4A, 0x1A), pl(0x4A, 0x51), ac(0x4D, 0x1C),       // C4
    ac(0x51, 0x0F), ac(0x51, 0x0E), ac(0x51, 0x12), ac(0x51, 0x13),       // C8
    ac(0x59, 0x0F), ac(0x59, 0x0E), ac(0x59, 0x12), ac(0x59, 0x13),       // CC
    ac(0x4F, 0x68), ac(0x62, 0x19), ac(0x64, 0x0F), ac(0x64, 0x0E),       // D0
    ac(0x64, 0x12), ac(0x64, 0x19), ac(0x64, 0x13), pl(0x33, 0x09),       // D4
    ac(0x64, 0x21), ac(0x6F, 0x0F), ac(0x6F, 0x0E), ac(0x6F, 0x12),       // D8
    ac(0x6F, 0x13), ac(0x76, 0x0E), pl(0x6D, 0x57), pl(0x6B, 0x6B),       // DC
    ac(0x4A, 0x0F), ac(0x4A, 0x0E), ac(0x4A, 0x12), ac(0x4A, 0x19),       // E0
    ac(0x4A, 0x13), ac(0x4A, 0x1A), pl(0x4A, 0x51), ac(0x4D, 0x1C),       // E4
    ac(0x51, 0x0F), ac(0x51, 0x0E), ac(0x51, 0x12), ac(0x51, 0x13),       // E8
    ac(0x59, 0x0F), ac(0x59, 0x0E), ac(0x59, 0x12), ac(0x59, 0x13),       // EC
    ac(0x4F, 0x68), ac(0x62, 0x19), ac(0x64, 0x0F), ac(0x64, 0x0E),       // F0
    ac(0x64, 0x12), ac(0x64, 0x19), ac(0x64, 0x13), pl(0x33, 0x0A),       // F4
    ac(0x64, 0x21), ac(0x6F, 0x0F), ac(0x6F, 0x0E), ac(0x6F, 0x12),       // F8
    ac(0x6F, 0x13), ac(0x76, 0x0E), pl(0x6D, 0x57), ac(0x76, 0x13),       // FC
}};
// clang-format on

// The code page 1252 characters above U+00FF, by code point.
struct Wide {
    char16_t ch;
    Code code;
};
// clang-format off
constexpr Wide kWide[] = {
    {0x0152, pl(0x64, 0x51)},  // Œ
    {0x0153, pl(0x64, 0x51)},  // œ
    {0x0160, ac(0x6B, 0x14)},  // Š
    {0x0161, ac(0x6B, 0x14)},  // š
    {0x0178, ac(0x76, 0x13)},  // Ÿ
    {0x017D, ac(0x78, 0x14)},  // Ž
    {0x017E, ac(0x78, 0x14)},  // ž
    {0x0192, ac(0x53, 0x7B)},  // ƒ
    {0x02C6, ac(0x2B, 0x02, 0x03)},  // ˆ
    {0x02DC, pl(0x2B, 0x1C)},  // ˜
    {0x2013, sk(0x89)},  // –
    {0x2014, sk(0x8B)},  // —
    {0x2018, pl(0x2B, 0x37)},  // ‘
    {0x2019, pl(0x2B, 0x38)},  // ’
    {0x201A, pl(0x2B, 0x39)},  // ‚
    {0x201C, pl(0x2B, 0x3B)},  // “
    {0x201D, pl(0x2B, 0x3C)},  // ”
    {0x201E, pl(0x2B, 0x3D)},  // „
    {0x2020, pl(0x34, 0xB3)},  // †
    {0x2021, pl(0x34, 0xB4)},  // ‡
    {0x2022, pl(0x34, 0xB5)},  // •
    {0x2026, pl(0x34, 0xB9)},  // …
    {0x2030, pl(0x34, 0xBA)},  // ‰
    {0x2039, pl(0x2B, 0x46)},  // ‹
    {0x203A, pl(0x2B, 0x47)},  // ›
    {0x20AC, pl(0x35, 0xA1)},  // €
    {0x2122, pl(0x6E, 0x04)},  // ™
};
// clang-format on

Code codeOf(char16_t c) {
    if (c < 0x100) return kLatin1[c];
    const Wide* end = std::end(kWide);
    const Wide* it = std::lower_bound(std::begin(kWide), end, c,
                                      [](const Wide& w, char16_t x) { return w.ch < x; });
    return it != end && it->ch == c ? it->code : Code{};
}

constexpr std::uint8_t kEndInline = 0x01;
constexpr std::uint8_t kEndValue = 0x00;
constexpr std::uint8_t kNoAccent = 0x02;
constexpr std::uint8_t kSkipMark = 0x06;

}  // namespace

bool covers(char16_t c) { return codeOf(c).kind != Kind::None; }

std::size_t firstUncovered(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (!covers(text[i])) return i;
    return std::u16string_view::npos;
}

void appendKey(std::u16string_view text, bool ascending, std::vector<std::uint8_t>& out) {
    text = text.substr(0, std::min(text.size(), kMaxKeyChars));
    if (firstUncovered(text) != std::u16string_view::npos)
        throw std::invalid_argument("text holds a character without a General sort code");
    out.push_back(ascending ? 0x7F : 0x80);
    const std::size_t from = out.size();
    std::vector<std::uint8_t> accents, skipped;
    std::size_t placed = 0;  // characters with inline codes so far
    for (char16_t c : text) {
        const Code code = codeOf(c);
        const std::size_t at = placed;
        out.insert(out.end(), code.inlineBytes, code.inlineBytes + code.inlineCount);
        if (code.inlineCount) ++placed;
        if (code.kind == Kind::Accent) {
            // Every accent code is one byte, so the accent part's length
            // counts the characters it covers.
            accents.resize(at, kNoAccent);
            accents.push_back(code.extra);
        } else if (code.kind == Kind::Skipped) {
            const unsigned place = 0x8000u | unsigned(7 + 4 * at);
            skipped.push_back(std::uint8_t(place >> 8));
            skipped.push_back(std::uint8_t(place));
            skipped.push_back(kSkipMark);
            skipped.push_back(code.extra);
        }
    }
    out.push_back(kEndInline);
    // Plain characters after the last accented one need no placeholder.
    while (!accents.empty() && accents.back() <= kNoAccent) accents.pop_back();
    out.insert(out.end(), accents.begin(), accents.end());
    if (!skipped.empty()) {
        out.insert(out.end(), {kEndInline, kEndInline, kEndInline});
        out.insert(out.end(), skipped.begin(), skipped.end());
    }
    if (!ascending) {
        out.push_back(kEndValue);
        for (std::size_t i = from; i < out.size(); ++i) out[i] = std::uint8_t(~out[i]);
    }
    out.push_back(kEndValue);
}

}  // namespace jet::gensort
