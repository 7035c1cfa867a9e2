// The SQL layer's short cuts answer as the long way does: LIKE with a plain
// ASCII literal and text equality without full case folding. The subquery
// over a table's own key, asked in one scan, is in shortcuts/own_subquery.test.
#include <gtest/gtest.h>

#include "jet/sql/text_rules.h"
#include "tabelle.h"

namespace {

// The lines of golden/schnellpfade.txt of one kind.
std::vector<std::string> liste(const std::string& art) {
    std::vector<std::string> r;
    for (const auto& f : tessara::test::tabelle("sql/golden/schnellpfade.txt"))
        if (f.at(0) == art) r.push_back(f.at(1));
    EXPECT_FALSE(r.empty()) << art;
    return r;
}

TEST(Schnellpfade, AsciiLiteralsMatchAsTheFullFoldDoes) {
    const auto texte = liste("text");
    for (const auto& muster : liste("muster")) {
        const sql::LikePattern p(muster, sql::LikePattern::Dialect::Sql);
        for (const auto& text : texte)
            EXPECT_EQ(p.matches(text), p.matchesFolded(sql::foldCase(text)))
                << "'" << text << "' LIKE '" << muster << "'";
    }
}

TEST(Schnellpfade, TextEqualityAsTheFullFoldDoes) {
    const auto namen = liste("name");
    for (const auto& a : namen)
        for (const auto& b : namen)
            EXPECT_EQ(sql::textEquals(a, b), sql::foldCase(a) == sql::foldCase(b))
                << "'" << a << "' = '" << b << "'";
}

}  // namespace
