#pragma once
// Jet's text rules: case-insensitive comparison (umlauts and ß included),
// the "General" sort order, and LIKE patterns.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace sql {

std::u32string utf8Decode(std::string_view s);
std::string utf8Encode(std::u32string_view s);
std::size_t utf8Length(std::string_view s);

// Case folded code points; ß and ẞ expand to "ss" as Jet's comparison treats them.
std::u32string foldCase(std::string_view s);
bool textEquals(std::string_view a, std::string_view b);

// Key for Jet's General order: case-insensitive, punctuation before digits
// before letters, accented letters right after their base letter.
struct SortKey {
    std::u32string primary;
    std::u32string secondary;
};
SortKey generalSortKey(std::string_view s);
int compareSortKeys(const SortKey& a, const SortKey& b);
int compareGeneral(std::string_view a, std::string_view b);

// A compiled LIKE pattern.
class LikePattern {
  public:
    enum class Dialect {
        Sql,       // ANSI-92 as Jet's OLE DB provider speaks it: % _ [abc] [a-z] [!abc]
        Criteria,  // ADO's Find and Filter: * and % for any run, ? and _ for one character
    };
    LikePattern(std::string_view pattern, Dialect dialect);
    bool matches(std::string_view text) const;
    bool matchesFolded(const std::u32string& foldedText) const;

  private:
    struct Item {
        enum Kind { Literal, One, Any, Class } kind;
        char32_t ch = 0;
        explicit Item(Kind k, char32_t c = 0) : kind(k), ch(c) {}
        bool negated = false;
        std::vector<std::pair<char32_t, char32_t>> ranges;
    };
    bool matchItem(const Item& it, char32_t c) const;
    std::vector<Item> items_;
    // "%literal%", "literal%" and plain literals are matched without backtracking.
    enum class Shape { General, Contains, Prefix, Exact } shape_ = Shape::General;
    std::u32string literal_;
    // The same literal as folded ASCII bytes, when it is plain ASCII: text
    // that is plain ASCII too is then matched without decoding.
    bool asciiLiteral_ = false;
    std::string asciiFolded_;
    bool matchesAscii(std::string_view text) const;
};

}  // namespace sql
