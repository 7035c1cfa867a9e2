// Jet's text rules: LIKE, case-insensitive comparison, General sort order.
#include "jet/sql/text_rules.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

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

class SqlTextRules : public ::testing::Test {
  protected:
    void SetUp() override {
        db = std::make_shared<sql::MemoryStorage>();
        db->createTable("t",
                        {{"Nr", sql::ColumnType::Long, 0, true, false},
                         {"Name", sql::ColumnType::Text, 50, false, true},
                         {"Zahl", sql::ColumnType::Double, 0, false, true}},
                        {});
        ex = std::make_unique<sql::Executor>(db);
        for (const char* n : {"b", "A", "2", "10", "a", "1", "Öl", "ol", "STRASSE"})
            ex->execute(std::string("INSERT INTO t (Name) VALUES ('") + n + "')");
        ex->execute("INSERT INTO t (Zahl) VALUES (1.5)");
    }
    std::vector<std::string> names(const std::string& sqlText) {
        std::vector<std::string> out;
        for (const auto& r : ex->query(sqlText).rows) out.push_back(r[0].toString());
        return out;
    }
    std::shared_ptr<sql::MemoryStorage> db;
    std::unique_ptr<sql::Executor> ex;
};

TEST_F(SqlTextRules, OrderByNullsFirstThenGeneralOrder) {
    EXPECT_EQ(names("SELECT Name FROM t ORDER BY Name"),
              (std::vector<std::string>{"", "1", "10", "2", "A", "a", "b", "ol", "Öl", "STRASSE"}));
    EXPECT_EQ(names("SELECT Name FROM t ORDER BY Name DESC"),
              (std::vector<std::string>{"STRASSE", "Öl", "ol", "b", "A", "a", "2", "10", "1", ""}));
    EXPECT_EQ(
        names("SELECT Name FROM t WHERE Name IS NOT NULL ORDER BY Zahl DESC, Name ASC").front(),
        "1");
}

TEST_F(SqlTextRules, ComparisonsAreCaseInsensitive) {
    EXPECT_EQ(names("SELECT Name FROM t WHERE Name = 'a'"), (std::vector<std::string>{"A", "a"}));
    EXPECT_EQ(names("SELECT Name FROM t WHERE Name LIKE 'öL'"), (std::vector<std::string>{"Öl"}));
    EXPECT_EQ(names("SELECT Name FROM t WHERE Name = 'Straße'"),
              (std::vector<std::string>{"STRASSE"}));
    EXPECT_EQ(names("SELECT Name FROM t WHERE Name < '2' ORDER BY Name"),
              (std::vector<std::string>{"1", "10"}));
    EXPECT_EQ(names("SELECT Name FROM t WHERE NOT (Name LIKE '[a-b]' OR Name LIKE '%l') AND Name "
                    "<> 'STRASSE' ORDER BY Name"),
              (std::vector<std::string>{"1", "10", "2"}));
    EXPECT_EQ(
        names("SELECT Name FROM t WHERE Name NOT LIKE '%l' AND Name IN ('a', 'b') ORDER BY Name"),
        (std::vector<std::string>{"A", "a", "b"}));
}

TEST_F(SqlTextRules, NumbersCompareAsNumbersAndLikeSeesTheirText) {
    EXPECT_EQ(names("SELECT Zahl FROM t WHERE Zahl > 1"), (std::vector<std::string>{"1.5"}));
    EXPECT_EQ(names("SELECT Zahl FROM t WHERE Zahl LIKE '1.5'"), (std::vector<std::string>{"1.5"}));
    EXPECT_EQ(names("SELECT Nr FROM t WHERE Nr LIKE '1_'"), (std::vector<std::string>{"10"}));
    EXPECT_EQ(names("SELECT Nr FROM t WHERE Nr BETWEEN 2 AND 3"),
              (std::vector<std::string>{"2", "3"}));
}

TEST_F(SqlTextRules, NullNeverEqualsAnything) {
    EXPECT_EQ(names("SELECT Nr FROM t WHERE Name = NULL").size(), 0u);
    EXPECT_EQ(names("SELECT Nr FROM t WHERE Name IS NULL"), (std::vector<std::string>{"10"}));
    EXPECT_EQ(names("SELECT Nr FROM t WHERE NOT (Name = 'zz')").size(), 9u);
}

}  // namespace
