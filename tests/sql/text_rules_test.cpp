// Jet's text rules: LIKE, case-insensitive comparison, General sort order.
// The same rules inside statements are in text/comparison.test.
#include "jet/sql/text_rules.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using sql::LikePattern;

struct LikeCase {
    const char* text;
    const char* pattern;
    bool sql;       // matches under Jet SQL's LIKE
    bool criteria;  // matches under ADO's Find/Filter rules
};

TEST(TextRules, LikeTable) {
    const LikeCase cases[] = {
        {"öl", "ÖL", true, true},
        {"Öltank", "%TANK", true, true},
        {"Straße", "STRASSE", true, true},
        {"STRASSE", "straße", true, true},
        {"Ventil", "ventil", true, true},
        {"Ventil", "v%", true, true},
        {"Ventil", "v*", false, true},
        {"Ventil", "V_ntil", true, true},
        {"Ventil", "V?ntil", false, true},
        {"v*", "v*", true, true},
        {"Ventil", "%nti%", true, true},
        {"Ventil", "%xyz%", false, false},
        {"Ventil", "Ven", false, false},
        {"0010017", "0010017", true, true},
        {"0010017", "001%", true, true},
        {"a1", "a[0-9]", true, false},
        {"ab", "a[0-9]", false, false},
        {"ab", "a[!0-9]", true, false},
        {"a[", "a[", true, true},
        {"aB", "a[bc]", true, false},
        {"", "%", true, true},
        {"", "_", false, false},
        {"abcabc", "%b%c", true, true},
        {"abcab", "%b%c", false, false},
        {"Ärmel", "ä%", true, true},
        {"Ärmel", "a%", false, false},
        {"x%y", "x[%]y", true, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(LikePattern(c.pattern, LikePattern::Dialect::Sql).matches(c.text), c.sql)
            << c.text << " LIKE " << c.pattern;
        EXPECT_EQ(LikePattern(c.pattern, LikePattern::Dialect::Criteria).matches(c.text),
                  c.criteria)
            << c.text << " Like " << c.pattern << " (criteria)";
    }
}

TEST(TextRules, CaseInsensitiveEquality) {
    EXPECT_TRUE(sql::textEquals("ÖL", "öl"));
    EXPECT_TRUE(sql::textEquals("Armaturen", "ARMATUREN"));
    EXPECT_TRUE(sql::textEquals("Fuß", "FUSS"));
    EXPECT_FALSE(sql::textEquals("Öl", "Ol"));
    EXPECT_FALSE(sql::textEquals("a", "a "));
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
