// Jet's text rules: LIKE, case-insensitive comparison, General sort order.
// The same rules inside statements are in text/comparison.test.
#include "jet/sql/text_rules.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tabelle.h"

namespace {

using sql::LikePattern;

TEST(TextRules, LikeTable) {
    for (const auto& c : tessara::test::tabelle("sql/golden/like.txt")) {
        EXPECT_EQ(LikePattern(c.at(1), LikePattern::Dialect::Sql).matches(c[0]), c.at(2) == "1")
            << c[0] << " LIKE " << c[1];
        EXPECT_EQ(LikePattern(c[1], LikePattern::Dialect::Criteria).matches(c[0]), c.at(3) == "1")
            << c[0] << " Like " << c[1] << " (criteria)";
    }
}

TEST(TextRules, GeneralOrder) {
    std::vector<std::string> v = {"b",  "A", "2",  "10",    "a",  "1",  "Ä", "c",
                                  " x", "-", "ab", "Zebra", "öl", "ol", "om"};
    std::stable_sort(v.begin(), v.end(), [](const std::string& x, const std::string& y) {
        return sql::compareGeneral(x, y) < 0;
    });
    EXPECT_EQ(v, (std::vector<std::string>{" x", "-", "1", "10", "2", "A", "a", "Ä", "ab", "b", "c",
                                           "ol", "öl", "om", "Zebra"}));
    EXPECT_EQ(sql::compareGeneral("a", "A"), 0);
    // Every pair of short ASCII texts compares as their sort keys do.
    std::vector<std::string> texte = {""};
    for (int c = 1; c < 128; ++c) texte.push_back(std::string(1, char(c)));
    for (const char* t : {"0010000", "00100", "001A", "001a", "a-b", "ab ", "Zz", "zZ9"})
        texte.push_back(t);
    for (const auto& x : texte)
        for (const auto& y : texte)
            ASSERT_EQ(sql::compareGeneral(x, y),
                      sql::compareSortKeys(sql::generalSortKey(x), sql::generalSortKey(y)))
                << x << " " << y;
}

TEST(TextRules, Utf8RoundTripAndLength) {
    std::string s = "Größe ẞ €";
    EXPECT_EQ(sql::utf8Encode(sql::utf8Decode(s)), s);
    EXPECT_EQ(sql::utf8Length(s), 9u);
    // Bytes that are no UTF-8 are taken one by one, never dropped.
    EXPECT_EQ(sql::utf8Decode(std::string("a\xff"
                                          "b"))
                  .size(),
              3u);
}

}  // namespace
