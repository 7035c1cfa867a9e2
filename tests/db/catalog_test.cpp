// Creating a catalogue database the ADOX way: tables, keys, relations, index.
#include "db/catalog.h"

#include <gtest/gtest.h>

#include "db/connection.h"
#include "db/memory_opener.h"
#include "db/recordset.h"
#include "jet/sql/error.h"
#include "jet/sql/memory_storage.h"

namespace {

using db::memoryOpener;

db::CatalogTable tableWithKey(const std::string& name) {
    db::CatalogTable t;
    t.name = name;
    t.appendColumn("Nr", db::adInteger).autoIncrement = true;
    return t;
}
void text(db::CatalogTable& t, const std::string& n, int size) {
    t.appendColumn(n, db::adVarWChar, size).nullable = true;
}
void integer(db::CatalogTable& t, const std::string& n) {
    t.appendColumn(n, db::adInteger).nullable = true;
}
void finish(db::Catalog& cat, db::CatalogTable& t) {
    t.keys.push_back({"PrimaryKey", db::adKeyPrimary, {"Nr"}, "", {}});
    cat.appendTable(t);
}

class CatalogCreation : public ::testing::Test {
  protected:
    void SetUp() override {
        files = std::make_shared<sql::MemoryFiles>();
        cat.create("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path, memoryOpener(files));
        auto bi = tableWithKey("tblBlockInfo");
        text(bi, "Block", 144);
        text(bi, "SlideLib", 144);
        integer(bi, "OrdnerID");
        for (int v = 0; v < 5; ++v) text(bi, "BlkName" + std::to_string(v), 32);
        for (int m = 0; m < 10; ++m) text(bi, "M" + std::to_string(m), 100);
        for (int v = 0; v < 5; ++v)
            for (char p = 'A'; p <= 'F'; ++p)
                for (char x : {'X', 'Y', 'Z'})
                    bi.appendColumn(std::string(1, p) + x + std::to_string(v), db::adDouble)
                        .nullable = true;
        finish(cat, bi);
        auto dm = tableWithKey("tblDefMenue");
        integer(dm, "global");
        for (int i = 1; i <= 10; ++i) {
            text(dm, "Benennung" + std::to_string(i), 100);
            text(dm, "Standardwert" + std::to_string(i), 100);
        }
        finish(cat, dm);
        auto ord = tableWithKey("tblOrdner");
        text(ord, "OrdnerNr", 3);
        text(ord, "Ordnername", 100);
        text(ord, "OrdnerRechte", 100);
        integer(ord, "NrTblDefMenue");
        integer(ord, "NrTblRechte");
        finish(cat, ord);
        auto sei = tableWithKey("tblSeiten");
        integer(sei, "SeitenNr");
        text(sei, "SeitenName", 100);
        integer(sei, "NrTblOrdner");
        finish(cat, sei);
        auto var = tableWithKey("tblVariationBloecke");
        text(var, "BlockName", 100);
        integer(var, "BlockID");
        finish(cat, var);

        cat.appendKey(
            "tblOrdner",
            {"tblDefMenue_tblOrdner", db::adKeyForeign, {"NrTblDefMenue"}, "tblDefMenue", {"Nr"}});
        cat.appendKey(
            "tblBlockInfo",
            {"tblOrdner_tblBlockInfo", db::adKeyForeign, {"OrdnerID"}, "tblOrdner", {"Nr"}});
        cat.appendKey(
            "tblSeiten",
            {"tblOrdner_tblSeiten", db::adKeyForeign, {"NrTblOrdner"}, "tblOrdner", {"Nr"}});
        cat.appendKey("tblVariationBloecke", {"tblBlockInfo_tblVariationBloecke",
                                              db::adKeyForeign,
                                              {"BlockID"},
                                              "tblBlockInfo",
                                              {"Nr"}});
        con = std::make_unique<db::Connection>(memoryOpener(files));
        con->open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path);
        con->execute("CREATE INDEX OrdnerID ON tblBlockInfo(OrdnerID DESC)");
    }
    std::string path = "C:\\Neu\\dbTessara.mdb";
    std::shared_ptr<sql::MemoryFiles> files;
    db::Catalog cat;
    std::unique_ptr<db::Connection> con;
};

TEST_F(CatalogCreation, TablesColumnsKeysRelationsAndIndexReadBack) {
    EXPECT_EQ(cat.tables(), (std::vector<std::string>{"tblBlockInfo", "tblDefMenue", "tblOrdner",
                                                      "tblSeiten", "tblVariationBloecke"}));
    auto bi = cat.table("tblBlockInfo");
    ASSERT_EQ(bi.columns.size(), 4u + 5 + 10 + 90);
    EXPECT_TRUE(bi.columns[0].autoIncrement);
    EXPECT_FALSE(bi.columns[0].nullable);
    EXPECT_EQ(bi.columns[1].type, db::adVarWChar);
    EXPECT_EQ(bi.columns[1].definedSize, 144);
    EXPECT_TRUE(bi.columns[1].nullable);
    EXPECT_EQ(bi.columns[4].definedSize, 32);
    EXPECT_EQ(bi.columns[19 + 2 * 18 + 6].name, "CX2");
    EXPECT_EQ(bi.columns[19 + 2 * 18 + 6].type, db::adDouble);
    ASSERT_EQ(bi.indexes.size(), 2u);
    EXPECT_EQ(bi.indexes[0].name, "PrimaryKey");
    EXPECT_TRUE(bi.indexes[0].primaryKey);
    EXPECT_EQ(bi.indexes[1].name, "OrdnerID");
    EXPECT_TRUE(bi.indexes[1].columns[0].descending);
    ASSERT_EQ(bi.keys.size(), 2u);
    EXPECT_EQ(bi.keys[1].name, "tblOrdner_tblBlockInfo");
    EXPECT_EQ(bi.keys[1].relatedTable, "tblOrdner");
    auto relations = cat.storage()->relations();
    ASSERT_EQ(relations.size(), 4u);
    EXPECT_EQ(relations[0].name, "tblDefMenue_tblOrdner");
    EXPECT_EQ(relations[3].name, "tblBlockInfo_tblVariationBloecke");
}

TEST_F(CatalogCreation, ExistingTableAndFileAreRefused) {
    auto t = tableWithKey("tblSeiten");
    try {
        cat.appendTable(t);
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(std::string(e.what()), "Table 'tblSeiten' already exists.");
    }
    db::Catalog again;
    EXPECT_THROW(
        again.create("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path, memoryOpener(files)),
        sql::Error);
    EXPECT_THROW(
        cat.appendKey("tblSeiten", {"x", db::adKeyForeign, {"Gibts"}, "tblOrdner", {"Nr"}}),
        sql::Error);
}

}  // namespace
