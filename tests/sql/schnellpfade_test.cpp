// The SQL layer's short cuts answer as the long way does: LIKE with a plain
// ASCII literal and text equality without full case folding, and a
// subquery over the statement's own table by its key asked as a plain
// condition, in one scan.
#include <gtest/gtest.h>

#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"
#include "jet/sql/text_rules.h"

namespace {

const char* const kTexte[] = {
    "Ventil",
    "VENTIL DN 50",
    "Rückschlagventil",
    "Vorschweißflansch",
    "STRASSE",
    "Straße",
    "STRAẞE",
    "İnox",
    "inox",
    "Str\xdf"
    "e",
    "Ölventil",
    "Grauguss",
    "ßventil",
    "ventilß",
    "ä",
    "",
    "Größe 50°",
    "v\xc3",
};
const char* const kMuster[] = {
    "%ventil%", "%strasse%", "strasse", "stras%",   "%inox%", "inox", "%ss%", "%e",
    "ventil",   "%",         "%50%",    "ssventil", "%lss",   "%v%",  "s%",
};

TEST(Schnellpfade, AsciiLiteralsMatchAsTheFullFoldDoes) {
    for (const char* muster : kMuster) {
        const sql::LikePattern p(muster, sql::LikePattern::Dialect::Sql);
        for (const char* text : kTexte)
            EXPECT_EQ(p.matches(text), p.matchesFolded(sql::foldCase(text)))
                << "'" << text << "' LIKE '" << muster << "'";
    }
}

TEST(Schnellpfade, TextEqualityAsTheFullFoldDoes) {
    const char* const namen[] = {"BlkName0", "blkname0", "BLKNAME0", "BlkName1", "BlkName",
                                 "M0",       "m0",       "Fuß",      "FUSS",     "fuss",
                                 "İ",        "i",        "",         "a ",       "a"};
    for (const char* a : namen)
        for (const char* b : namen)
            EXPECT_EQ(sql::textEquals(a, b), sql::foldCase(a) == sql::foldCase(b))
                << "'" << a << "' = '" << b << "'";
}

class EigeneTeilabfrage : public ::testing::Test {
  protected:
    void SetUp() override {
        db = std::make_shared<sql::MemoryStorage>();
        auto t = db->createTable("tblBlockInfo",
                                 {{"Nr", sql::ColumnType::Long, 0, true, false},
                                  {"OrdnerID", sql::ColumnType::Long, 0, false, true},
                                  {"BlkName0", sql::ColumnType::Text, 64, false, true},
                                  {"BlkName1", sql::ColumnType::Text, 64, false, true},
                                  {"M0", sql::ColumnType::Text, 64, false, true}},
                                 {sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}});
        const char* namen[][2] = {{"Ventil_1", nullptr},    {"Hahn", "Hahn_Ventil"},
                                  {nullptr, nullptr},       {"Schieber", nullptr},
                                  {"ventil_oben", "Seite"}, {"Flansch", "Flansch_1"}};
        for (int i = 0; i < 6; ++i) {
            sql::Row r{sql::Value(), sql::Value::integer(1 + i % 2),
                       namen[i][0] ? sql::Value::text(namen[i][0]) : sql::Value(),
                       namen[i][1] ? sql::Value::text(namen[i][1]) : sql::Value(),
                       sql::Value::text("M" + std::to_string(i))};
            t->insert(r);
        }
    }
    std::vector<long> nummern(const std::string& where) {
        std::vector<long> out;
        for (const auto& r :
             sql::Executor(db).query("SELECT Nr FROM tblBlockInfo WHERE " + where).rows)
            out.push_back(static_cast<long>(r[0].asInt()));
        return out;
    }
    std::shared_ptr<sql::MemoryStorage> db;
};

TEST_F(EigeneTeilabfrage, IsAskedAsAConditionInOneScanWithTheSameRows) {
    struct Fall {
        std::string where;         // with the subquery over the table's own key
        std::vector<long> zeilen;  // expected Nr
    };
    const std::vector<Fall> faelle = {
        {"tblBlockInfo.Nr IN(SELECT tblBlockInfo.Nr FROM tblBlockInfo WHERE BlkName0 LIKE "
         "'%ventil%' OR BlkName1 LIKE '%ventil%')",
         {1, 2, 5}},
        // Null names make the subquery's condition Null: such rows are not in it.
        {"Nr NOT IN (SELECT Nr FROM tblBlockInfo WHERE BlkName1 LIKE '%e%')", {1, 3, 4, 6}},
        {"OrdnerID = 1 AND Nr IN (SELECT Nr FROM tblBlockInfo WHERE BlkName0 LIKE '%n%')", {1, 5}},
        {"Nr IN (SELECT Nr FROM tblBlockInfo WHERE M0 LIKE 'M9')", {}},
    };
    for (const auto& f : faelle) {
        db->counters().scans = 0;
        EXPECT_EQ(nummern(f.where), f.zeilen) << f.where;
        EXPECT_EQ(db->counters().scans, 1) << f.where;
        // The same set made DISTINCT is read as a set of its own.
        std::string zweimal = f.where;
        zweimal.replace(zweimal.find("SELECT ") + 7, 0, "DISTINCT ");
        db->counters().scans = 0;
        EXPECT_EQ(nummern(zweimal), f.zeilen) << zweimal;
        EXPECT_EQ(db->counters().scans, 2) << zweimal;
    }
    // Not the key: the set of Folders with a "Hahn" holds every row of Folder 2.
    db->counters().scans = 0;
    EXPECT_EQ(nummern("OrdnerID IN (SELECT OrdnerID FROM tblBlockInfo WHERE BlkName0 LIKE 'Hahn')"),
              (std::vector<long>{2, 4, 6}));
    EXPECT_EQ(db->counters().scans, 2);
}

}  // namespace
