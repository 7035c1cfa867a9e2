#include "jet/sql/text_rules.h"

#include <algorithm>
#include <array>
#include <optional>

#include "jet/format/text.h"

namespace sql {

std::u32string utf8Decode(std::string_view s) {
    std::u32string out;
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size();) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        char32_t cp;
        int extra;
        if (c < 0x80) {
            cp = c;
            extra = 0;
        } else if ((c & 0xE0) == 0xC0) {
            cp = c & 0x1F;
            extra = 1;
        } else if ((c & 0xF0) == 0xE0) {
            cp = c & 0x0F;
            extra = 2;
        } else if ((c & 0xF8) == 0xF0) {
            cp = c & 0x07;
            extra = 3;
        } else {
            // Not UTF-8: take the byte as Windows-1252's Latin-1 part would.
            out.push_back(c);
            ++i;
            continue;
        }
        bool ok = true;
        std::size_t j = i + 1;
        for (int k = 0; ok && k < extra; ++k, ++j) {
            if (j >= s.size() || (static_cast<unsigned char>(s[j]) & 0xC0) != 0x80) {
                ok = false;
                break;
            }
            cp = (cp << 6) | (static_cast<unsigned char>(s[j]) & 0x3F);
        }
        if (!ok) {
            out.push_back(c);
            ++i;
            continue;
        }
        out.push_back(cp);
        i = j;
    }
    return out;
}

std::string utf8Encode(std::u32string_view s) {
    std::string out;
    out.reserve(s.size());
    for (char32_t c : s) jet::appendUtf8(out, c);
    return out;
}

std::size_t utf8Length(std::string_view s) {
    std::size_t n = 0;
    for (char c : s)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
    return n;
}

namespace {

char32_t lower(char32_t c) {
    if (c < 0x80) return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
    if (c >= 0x100 && c <= 0x17F) {
        // Latin Extended-A pairs upper/lower on even/odd, shifted in two ranges.
        if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E))
            return (c % 2 == 1) ? c + 1 : c;
        if (c == 0x178) return 0xFF;
        if (c == 0x130) return 'i';
        if (c == 0x149 || c == 0x138 || c == 0x17F) return c;
        return (c % 2 == 0) ? c + 1 : c;
    }
    if (c >= 0x391 && c <= 0x3AB && c != 0x3A2) return c + 32;  // Greek
    if (c >= 0x410 && c <= 0x42F) return c + 32;                // Cyrillic
    if (c >= 0x400 && c <= 0x40F) return c + 80;
    return c;
}

void appendFolded(std::u32string& out, char32_t c) {
    if (c == 0xDF || c == 0x1E9E) {  // ß, ẞ
        out.push_back('s');
        out.push_back('s');
        return;
    }
    out.push_back(lower(c));
}

// Base letter of an accented Latin-1 / Latin Extended-A letter (already folded).
char32_t baseLetter(char32_t c) {
    if (c < 0xE0) return c;
    if (c <= 0xFF) {
        static const char* map =
            "aaaaaaaceeeeiiii"   // E0..EF (E6 æ handled by expansion)
            "dnooooo/ouuuuyty";  // F0..FF
        char b = map[c - 0xE0];
        if (b == '/') return c;
        return static_cast<char32_t>(b);
    }
    if (c >= 0x100 && c <= 0x17F) {
        static const char* map =
            "aaaaaaccccccccdd"
            "ddeeeeeeeeeegggg"
            "gggghhhhiiiiiiii"
            "iijjjjkkklllllll"
            "lllnnnnnnnnnoooo"
            "oooorrrrrrssssss"
            "ssttttttuuuuuuuu"
            "uuuuwwyyyzzzzzzs";
        return static_cast<char32_t>(map[c - 0x100]);
    }
    return c;
}

char32_t primaryWeight(char32_t base) {
    if (base <= 0x20) return 0x100 + base;
    if (base >= '0' && base <= '9') return 0x1000 + base;
    if ((base >= 'a' && base <= 'z')) return 0x2000 + base;
    if (base < 0x80) return 0x200 + base;  // ASCII punctuation
    if (base < 0xC0) return 0x400 + base;  // Latin-1 symbols
    return 0x10000 + base;                 // other scripts after Latin letters
}

}  // namespace

std::u32string foldCase(std::string_view s) {
    std::u32string out;
    out.reserve(s.size());
    for (char32_t c : utf8Decode(s)) appendFolded(out, c);
    return out;
}

namespace {

bool plainAscii(std::string_view s) {
    for (char c : s)
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    return true;
}

inline char asciiLowerByte(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c;
}

}  // namespace

bool textEquals(std::string_view a, std::string_view b) {
    if (a.size() == b.size() && a == b) return true;
    // Column names and most texts are plain ASCII: folded, they are equal
    // exactly when they are equal byte for byte but for case.
    if (plainAscii(a) && plainAscii(b)) {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (asciiLowerByte(a[i]) != asciiLowerByte(b[i])) return false;
        return true;
    }
    return foldCase(a) == foldCase(b);
}

SortKey generalSortKey(std::string_view s) {
    SortKey k;
    std::u32string folded = foldCase(s);
    k.primary.reserve(folded.size());
    k.secondary.reserve(folded.size());
    for (char32_t c : folded) {
        if (c == 0xE6) {  // æ sorts as "ae"
            k.primary.push_back(primaryWeight('a'));
            k.primary.push_back(primaryWeight('e'));
            k.secondary.push_back(0);
            k.secondary.push_back(1);
            continue;
        }
        char32_t base = baseLetter(c);
        k.primary.push_back(primaryWeight(base));
        k.secondary.push_back(base == c ? 0 : c);
    }
    return k;
}

int compareSortKeys(const SortKey& a, const SortKey& b) {
    int c = a.primary.compare(b.primary);
    if (c == 0) c = a.secondary.compare(b.secondary);
    return c < 0 ? -1 : c > 0 ? 1 : 0;
}

namespace {

// The primary weight of each ASCII character that is its own folded base
// letter (so its secondary weight is 0), else 0: two texts of only such
// characters compare by these weights alone, without building their keys.
// Block numbers are such texts, and a Page's range is tested on every row
// of a Folder.
const std::array<char32_t, 128>& asciiWeights() {
    static const std::array<char32_t, 128> w = [] {
        std::array<char32_t, 128> t{};
        for (char c = 1; c > 0 && c < 127; ++c) {
            const std::u32string f = foldCase(std::string_view(&c, 1));
            if (f.size() == 1 && f[0] != 0xE6 && baseLetter(f[0]) == f[0])
                t[static_cast<unsigned char>(c)] = primaryWeight(f[0]);
        }
        return t;
    }();
    return w;
}

std::optional<int> compareAscii(std::string_view a, std::string_view b) {
    const auto& w = asciiWeights();
    const std::size_t n = std::min(a.size(), b.size());
    auto weight = [&](char c) -> char32_t {
        const auto u = static_cast<unsigned char>(c);
        return u < 128 ? w[u] : 0;
    };
    int result = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const char32_t x = weight(a[i]), y = weight(b[i]);
        if (!x || !y) return std::nullopt;
        if (result == 0 && x != y) result = x < y ? -1 : 1;
    }
    for (char c : a.substr(n))
        if (!weight(c)) return std::nullopt;
    for (char c : b.substr(n))
        if (!weight(c)) return std::nullopt;
    if (result == 0 && a.size() != b.size()) result = a.size() < b.size() ? -1 : 1;
    return result;
}

}  // namespace

int compareGeneral(std::string_view a, std::string_view b) {
    if (auto fast = compareAscii(a, b)) return *fast;
    return compareSortKeys(generalSortKey(a), generalSortKey(b));
}

LikePattern::LikePattern(std::string_view pattern, Dialect dialect) {
    std::u32string p = utf8Decode(pattern);
    for (std::size_t i = 0; i < p.size(); ++i) {
        char32_t c = p[i];
        Item it(Item::Literal);
        bool any = c == '%' || (dialect == Dialect::Criteria && c == '*');
        bool one = c == '_' || (dialect == Dialect::Criteria && c == '?');
        if (any) {
            if (!items_.empty() && items_.back().kind == Item::Any) continue;
            it.kind = Item::Any;
        } else if (one) {
            it.kind = Item::One;
        } else if (c == '[' && dialect == Dialect::Sql) {
            std::size_t close = p.find(']', i + 1);
            if (close == std::u32string::npos) {
                // An unclosed bracket stands for itself.
                std::u32string f;
                appendFolded(f, c);
                for (char32_t fc : f) items_.push_back(Item(Item::Literal, fc));
                continue;
            }
            it.kind = Item::Class;
            std::size_t j = i + 1;
            if (j < close && p[j] == '!') {
                it.negated = true;
                ++j;
            }
            for (; j < close; ++j) {
                char32_t lo = lower(p[j]);
                char32_t hi = lo;
                if (j + 2 < close && p[j + 1] == '-') {
                    hi = lower(p[j + 2]);
                    j += 2;
                }
                if (hi < lo) std::swap(lo, hi);
                it.ranges.emplace_back(lo, hi);
            }
            i = close;
        } else {
            std::u32string f;
            appendFolded(f, c);
            for (char32_t fc : f) items_.push_back(Item(Item::Literal, fc));
            continue;
        }
        items_.push_back(std::move(it));
    }
    // Recognise the shapes the program composes most.
    std::size_t first = 0, last = items_.size();
    bool leadingAny = !items_.empty() && items_.front().kind == Item::Any;
    bool trailingAny = items_.size() > (leadingAny ? 1u : 0u) && items_.back().kind == Item::Any;
    if (leadingAny) ++first;
    if (trailingAny) --last;
    bool allLiteral = true;
    for (std::size_t i = first; i < last; ++i) {
        if (items_[i].kind != Item::Literal) {
            allLiteral = false;
            break;
        }
        literal_.push_back(items_[i].ch);
    }
    if (allLiteral) {
        if (leadingAny && trailingAny)
            shape_ = Shape::Contains;
        else if (!leadingAny && trailingAny)
            shape_ = Shape::Prefix;
        else if (!leadingAny && !trailingAny)
            shape_ = Shape::Exact;
    }
    if (items_.size() == 1 && items_[0].kind == Item::Any) {
        shape_ = Shape::Contains;
        literal_.clear();
    }
    if (shape_ != Shape::General) {
        asciiLiteral_ = true;
        for (char32_t c : literal_) {
            if (c >= 0x80)
                asciiLiteral_ = false;
            else
                asciiFolded_.push_back(static_cast<char>(c));
        }
    }
}

namespace {
inline char asciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; }
}  // namespace

bool LikePattern::matchesAscii(std::string_view t) const {
    const std::string& lit = asciiFolded_;
    auto eqAt = [&](std::size_t at) {
        for (std::size_t k = 0; k < lit.size(); ++k)
            if (asciiLower(t[at + k]) != lit[k]) return false;
        return true;
    };
    switch (shape_) {
        case Shape::Exact:
            return t.size() == lit.size() && eqAt(0);
        case Shape::Prefix:
            return t.size() >= lit.size() && eqAt(0);
        case Shape::Contains: {
            if (lit.empty()) return true;
            if (t.size() < lit.size()) return false;
            char first = lit[0];
            for (std::size_t i = 0; i + lit.size() <= t.size(); ++i)
                if (asciiLower(t[i]) == first && eqAt(i)) return true;
            return false;
        }
        case Shape::General:
            break;
    }
    return false;
}

bool LikePattern::matchItem(const Item& it, char32_t c) const {
    switch (it.kind) {
        case Item::Literal:
            return it.ch == c;
        case Item::One:
            return true;
        case Item::Class: {
            bool in = false;
            for (auto [lo, hi] : it.ranges)
                if (c >= lo && c <= hi) {
                    in = true;
                    break;
                }
            return in != it.negated;
        }
        case Item::Any:
            return true;
    }
    return false;
}

namespace {

// Whether a character of the text folds to ASCII letters the literal holds:
// ß and ẞ (to "ss") and İ (to "i"), in UTF-8 or as a stray Latin-1 byte
// (0xDF). Other characters fold to characters beyond ASCII, so they can
// neither take part in an ASCII literal nor hide one; nor can these when the
// literal has no letter of theirs ("ventil" against "Schließer").
bool foldsIntoAscii(std::string_view t, std::string_view literal) {
    const bool s = literal.find('s') != literal.npos, i = literal.find('i') != literal.npos;
    if (!s && !i) return false;
    for (std::size_t k = 0; k < t.size(); ++k) {
        const auto c = static_cast<unsigned char>(t[k]);
        if (c < 0x80) continue;
        if (c == 0xDF && s) return true;
        const auto n = k + 1 < t.size() ? static_cast<unsigned char>(t[k + 1]) : 0;
        if ((c == 0xC3 && n == 0x9F && s) || (c == 0xC4 && n == 0xB0 && i)) return true;
        const auto n2 = k + 2 < t.size() ? static_cast<unsigned char>(t[k + 2]) : 0;
        if (c == 0xE1 && n == 0xBA && n2 == 0x9E && s) return true;
    }
    return false;
}

}  // namespace

bool LikePattern::matches(std::string_view text) const {
    // An ASCII literal found among the bytes is a match whatever else the text
    // holds; only text with characters that fold into ASCII (ß folds to "ss")
    // needs the full way.
    if (asciiLiteral_ && matchesAscii(text)) return true;
    if (asciiLiteral_ && !foldsIntoAscii(text, asciiFolded_)) return false;
    return matchesFolded(foldCase(text));
}

bool LikePattern::matchesFolded(const std::u32string& s) const {
    switch (shape_) {
        case Shape::Contains:
            return literal_.empty() || s.find(literal_) != std::u32string::npos;
        case Shape::Prefix:
            return s.compare(0, literal_.size(), literal_) == 0 && s.size() >= literal_.size();
        case Shape::Exact:
            return s == literal_;
        case Shape::General:
            break;
    }
    // Iterative matching with one backtrack point per '%'.
    std::size_t si = 0, pi = 0, starP = std::string::npos, starS = 0;
    while (si < s.size()) {
        if (pi < items_.size() && items_[pi].kind == Item::Any) {
            starP = pi++;
            starS = si;
        } else if (pi < items_.size() && matchItem(items_[pi], s[si])) {
            ++pi;
            ++si;
        } else if (starP != std::string::npos) {
            pi = starP + 1;
            si = ++starS;
        } else {
            return false;
        }
    }
    while (pi < items_.size() && items_[pi].kind == Item::Any) ++pi;
    return pi == items_.size();
}

}  // namespace sql
