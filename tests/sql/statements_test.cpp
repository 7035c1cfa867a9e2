// The statements the program composes, run over a catalogue of a few hundred
// Blocks; expected rows come from the generator's own lists.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "catalogue_fixture.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

namespace {

using fixture::BlockSpec;

std::string lowerAscii(std::string s) {
    for (auto& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}
bool contains(const std::string& hay, const std::string& needle) {
    return lowerAscii(hay).find(lowerAscii(needle)) != std::string::npos;
}

// Each case runs over the in-memory store and over a real .mdb file made
// and filled by the Jet engine, so both give the same answers.
class Statements : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        if (std::string(GetParam()) == "memory") {
            files = std::make_shared<sql::MemoryFiles>();
            lib = files->create("C:\\Lib\\dbTessara.mdb");
        } else {
            dir = std::filesystem::temp_directory_path() /
                  ("tessara_sql_" + std::to_string(::getpid()) + "_" +
                   std::to_string(reinterpret_cast<std::uintptr_t>(this)));
            std::filesystem::create_directories(dir);
            lib = sql::openEngineStorage((dir / "dbTessara.mdb").string(), true);
        }
        cat = fixture::fill(*lib);
        ex = std::make_unique<sql::Executor>(lib);
    }
    // Only the in-memory store counts how a statement reached its rows.
    void resetCounters() {
        if (auto* m = dynamic_cast<sql::MemoryStorage*>(lib.get()))
            m->counters().scans = m->counters().seeks = 0;
    }
    template <class M>
    void expectCount(M member, int n) {
        // Scan and seek counts exist only in the memory store.
        if (auto* m = dynamic_cast<sql::MemoryStorage*>(lib.get())) {
            EXPECT_EQ(m->counters().*member, n);
        }
    }
    void TearDown() override {
        ex.reset();
        lib.reset();
        std::error_code ec;
        if (!dir.empty()) std::filesystem::remove_all(dir, ec);
    }
    std::vector<std::string> column(const sql::ResultSet& rs, const std::string& name) {
        int i = rs.columnIndex(name);
        EXPECT_GE(i, 0) << name;
        std::vector<std::string> out;
        for (const auto& r : rs.rows) out.push_back(r[i].toString());
        return out;
    }
    std::vector<std::string> blocksWhere(const std::function<bool(const BlockSpec&)>& pred) {
        std::vector<std::string> out;
        for (const auto& b : cat.blocks)
            if (pred(b)) out.push_back(b.block);
        return out;
    }
    std::shared_ptr<sql::MemoryFiles> files;
    std::filesystem::path dir;
    std::shared_ptr<sql::Storage> lib;
    fixture::Catalogue cat;
    std::unique_ptr<sql::Executor> ex;
};

// The record sets of the navigation model.
TEST_P(Statements, PagesOfAFolderSortedByNameInGeneralOrder) {
    auto rs = ex->query(
        "SELECT Nr, SeitenNr, SeitenName, NrTblOrdner From tblSeiten WHERE NrTblOrdner = 3 ORDER "
        "BY SeitenName");
    EXPECT_EQ(column(rs, "SeitenName"), (std::vector<std::string>{"1", "10", "2", "A", "b"}));
    EXPECT_EQ(column(rs, "SeitenNr"), (std::vector<std::string>{"5", "3", "1", "4", "2"}));
    ASSERT_EQ(rs.columns.size(), 4u);
    EXPECT_EQ(rs.columns[1].name, "SeitenNr");
}

TEST_P(Statements, BlockRecordsOfAFolderWithTheFixedColumnList) {
    std::string sqlText = std::string("SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, ") +
                          "M0, M1, M2, M3, M4, M5, M6, M7, M8, M9, AX1, AX2, AX3, AX4, LAYER, "
                          "LYCOLOR, LYLINE FROM tblBlockInfo " +
                          "WHERE OrdnerID = " + "3";
    auto rs = ex->query(sqlText);
    EXPECT_EQ(column(rs, "Block"), blocksWhere([](const BlockSpec& b) { return b.ordnerId == 3; }));
    ASSERT_EQ(rs.columns.size(), 22u);
    // Names come back as the table spells them, whatever case the statement used.
    EXPECT_EQ(rs.columns[19].name, "Layer");
    EXPECT_EQ(rs.columns[20].name, "LyColor");
    EXPECT_EQ(rs.rows[0][15].toString(), rs.rows[0][15].isNull() ? "" : rs.rows[0][15].toString());
}

TEST_P(Statements, SingleBlockByLike) {
    const BlockSpec& b = cat.blocks[17];
    auto rs = ex->query(
        "SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, M0, M1, M2, M3, M4, M5, M6, M7, M8, M9, "
        "AX1, "
        "AX2, AX3, AX4, LAYER, LYCOLOR, LYLINE FROM tblBlockInfo WHERE Block LIKE '" +
        b.block + "'");
    ASSERT_EQ(rs.rows.size(), 1u);
    EXPECT_EQ(rs.rows[0][0].asInt(), b.nr);
    EXPECT_EQ(rs.rows[0][5].toString(), b.m0);
    EXPECT_DOUBLE_EQ(rs.rows[0][15].asDouble(), 17 * 0.5);
}

// The access helpers' statements.
struct Shape {
    const char* sql;
    std::function<std::size_t(const fixture::Catalogue&)> expectedRows;
};

TEST_P(Statements, HelperShapesReturnTheExpectedNumberOfRows) {
    const Shape shapes[] = {
        {"SELECT * FROM [tblOrdner] ORDER BY OrdnerName", [](auto& c) { return c.folders.size(); }},
        {"SELECT * FROM [tblOrdner]", [](auto& c) { return c.folders.size(); }},
        {"SELECT * FROM [tblBlockInfo] WHERE [OrdnerID] = 2",
         [](auto& c) {
             return std::count_if(c.blocks.begin(), c.blocks.end(),
                                  [](auto& b) { return b.ordnerId == 2; });
         }},
        {"SELECT * FROM [tblOrdner] WHERE [OrdnerNr] LIKE '002'", [](auto&) { return 1; }},
        {"SELECT * FROM tblBlockInfo WHERE M3 IS NOT NULL",
         [](auto& c) {
             return std::count_if(c.blocks.begin(), c.blocks.end(),
                                  [](auto& b) { return !b.m3.empty(); });
         }},
        {"SELECT * FROM tblBlockInfo WHERE M3 IS NULL",
         [](auto& c) {
             return std::count_if(c.blocks.begin(), c.blocks.end(),
                                  [](auto& b) { return b.m3.empty(); });
         }},
        {"SELECT OrdnerName FROM tblOrdner WHERE OrdnerName LIKE 'armaturen'",
         [](auto&) { return 1; }},
        {"SELECT * FROM tblOrdner WHERE OrdnerName LIKE 'Arm'", [](auto&) { return 0; }},
        {"SELECT Block FROM tblBlockInfo WHERE M0 LIKE 'ventil%' ORDER BY Block",
         [](auto& c) {
             return std::count_if(c.blocks.begin(), c.blocks.end(),
                                  [](auto& b) { return lowerAscii(b.m0).rfind("ventil", 0) == 0; });
         }},
        {"SELECT Block, OrdnerID FROM tblBlockInfo WHERE OrdnerID = 4",
         [](auto& c) {
             return std::count_if(c.blocks.begin(), c.blocks.end(),
                                  [](auto& b) { return b.ordnerId == 4; });
         }},
        {"SELECT * FROM tblSeiten WHERE NrTblOrdner = 1", [](auto&) { return 1; }},
        {"SELECT * FROM tblDefMenue WHERE Nr = 1", [](auto&) { return 1; }},
        {"SELECT * FROM tblDefMenue WHERE Nr LIKE '1'", [](auto&) { return 1; }},
    };
    for (const auto& s : shapes) {
        auto rs = ex->query(s.sql);
        EXPECT_EQ(rs.rows.size(), s.expectedRows(cat)) << s.sql;
    }
}

TEST_P(Statements, SchemaUpgradeAddsColumnAndStartValue) {
    EXPECT_EQ(ex->execute("ALTER TABLE tblOrdner ADD COLUMN NrTblOrdnen SHORT").rowsAffected, 0);
    EXPECT_EQ(ex->execute("UPDATE tblOrdner SET NrTblOrdnen = 0").rowsAffected, 4);
    EXPECT_EQ(ex->execute("UPDATE tblOrdner SET NrTblOrdnen = Nr").rowsAffected, 4);
    auto rs = ex->query("SELECT Nr, NrTblOrdnen FROM tblOrdner ORDER BY NrTblOrdnen DESC");
    EXPECT_EQ(column(rs, "NrTblOrdnen"), (std::vector<std::string>{"4", "3", "2", "1"}));
    auto t = lib->table("tblOrdner");
    EXPECT_EQ(t->columns().back().type, sql::ColumnType::Integer);

    ex->execute("ALTER TABLE tblOrdner ADD COLUMN Farbe TEXT (100)");
    EXPECT_EQ(t->columns().back().size, 100);
    EXPECT_EQ(ex->execute("UPDATE [tblOrdner] SET [Farbe] = 'rot' WHERE [OrdnerNr] LIKE '001'")
                  .rowsAffected,
              1);
    EXPECT_EQ(ex->query("SELECT * FROM tblOrdner WHERE Farbe IS NOT NULL").rows.size(), 1u);
    EXPECT_THROW(ex->execute("ALTER TABLE tblOrdner ADD COLUMN Farbe TEXT (100)"), sql::Error);
}

TEST_P(Statements, TypeWordsOfAlterTable) {
    struct {
        const char* word;
        sql::ColumnType type;
        int size;
    } cases[] = {
        {"TEXT (50)", sql::ColumnType::Text, 50},   {"TEXT", sql::ColumnType::Text, 255},
        {"SHORT", sql::ColumnType::Integer, 0},     {"LONG", sql::ColumnType::Long, 0},
        {"INTEGER", sql::ColumnType::Long, 0},      {"DOUBLE", sql::ColumnType::Double, 0},
        {"SINGLE", sql::ColumnType::Single, 0},     {"BYTE", sql::ColumnType::Byte, 0},
        {"BIT", sql::ColumnType::Boolean, 0},       {"YESNO", sql::ColumnType::Boolean, 0},
        {"DATETIME", sql::ColumnType::DateTime, 0}, {"CURRENCY", sql::ColumnType::Currency, 0},
        {"MEMO", sql::ColumnType::Memo, 0},         {"VARCHAR(20)", sql::ColumnType::Text, 20},
        {"SMALLINT", sql::ColumnType::Integer, 0}};
    int n = 0;
    for (const auto& c : cases) {
        std::string col = "Neu" + std::to_string(n++);
        ex->execute(std::string("ALTER TABLE tblSeiten ADD COLUMN ") + col + " " + c.word);
        auto d = lib->table("tblSeiten")->columns().back();
        EXPECT_EQ(d.name, col);
        EXPECT_EQ(d.type, c.type) << c.word;
        EXPECT_EQ(d.size, c.size) << c.word;
    }
    // A table has one autonumber at most; a copy without Nr takes one, and
    // the rows already there are numbered.
    ex->execute("SELECT SeitenName INTO tblZaehler FROM tblSeiten");
    ex->execute("ALTER TABLE tblZaehler ADD COLUMN Zaehler COUNTER");
    auto zaehler = lib->table("tblZaehler")->columns().back();
    EXPECT_EQ(zaehler.type, sql::ColumnType::Long);
    EXPECT_TRUE(zaehler.autoIncrement);
    auto rs = ex->query("SELECT Zaehler FROM tblZaehler WHERE Zaehler IS NULL");
    EXPECT_EQ(rs.rows.size(), 0u);
}

TEST_P(Statements, CreateIndexDescendingAndItsUse) {
    ex->execute("CREATE INDEX OrdnerID ON tblBlockInfo(OrdnerID DESC)");
    auto ixs = lib->table("tblBlockInfo")->indexes();
    ASSERT_EQ(ixs.size(), 2u);
    EXPECT_EQ(ixs[1].name, "OrdnerID");
    EXPECT_TRUE(ixs[1].columns[0].descending);

    resetCounters();
    auto rs = ex->query("SELECT Block FROM tblBlockInfo WHERE OrdnerID = 3 AND M0 LIKE '%DN1%'");
    expectCount(&sql::AccessCounters::seeks, 1);
    expectCount(&sql::AccessCounters::scans, 0);
    EXPECT_EQ(column(rs, "Block"),
              blocksWhere([](auto& b) { return b.ordnerId == 3 && contains(b.m0, "DN1"); }));

    // Without an index on the column the table is scanned.
    resetCounters();
    ex->query("SELECT Block FROM tblBlockInfo WHERE M3 = 'Stahl'");
    expectCount(&sql::AccessCounters::seeks, 0);
    expectCount(&sql::AccessCounters::scans, 1);
    // An OR cannot be answered by the index alone.
    resetCounters();
    ex->query("SELECT Block FROM tblBlockInfo WHERE OrdnerID = 3 OR OrdnerID = 2");
    expectCount(&sql::AccessCounters::scans, 1);

    EXPECT_THROW(ex->execute("CREATE INDEX OrdnerID ON tblBlockInfo(OrdnerID DESC)"), sql::Error);
}

// The options Jet SQL takes after WITH: IGNORE NULL leaves Null keys out
// (a unique index then holds any number of them), DISALLOW NULL refuses them.
TEST_P(Statements, CreateIndexWithNullOptions) {
    auto outcome = [&](const std::string& statement) -> std::string {
        try {
            ex->execute(statement);
            return "accepted";
        } catch (const sql::Error& e) {
            return e.what();
        }
    };
    const std::string nullKey = "Index or primary key cannot contain a Null value.";
    ex->execute("CREATE UNIQUE INDEX Nummer ON tblOrdner(OrdnerNr) WITH IGNORE NULL");
    ex->execute("CREATE INDEX Menue ON tblOrdner(NrTblDefMenue) WITH DISALLOW NULL");
    auto ixs = lib->table("tblOrdner")->indexes();
    ASSERT_EQ(ixs.size(), 3u);
    EXPECT_TRUE(ixs[1].unique && ixs[1].ignoreNulls && !ixs[1].required);
    EXPECT_TRUE(!ixs[2].unique && !ixs[2].ignoreNulls && ixs[2].required);

    for (const char* name : {"'ohne Nummer 1'", "'ohne Nummer 2'"})
        EXPECT_EQ(
            outcome(std::string("INSERT INTO tblOrdner (Ordnername, NrTblDefMenue) VALUES (") +
                    name + ", 1)"),
            "accepted");
    EXPECT_EQ(ex->query("SELECT Ordnername FROM tblOrdner WHERE OrdnerNr IS NULL").rows.size(), 2u);
    EXPECT_EQ(outcome("INSERT INTO tblOrdner (OrdnerNr, NrTblDefMenue) VALUES ('002', 1)"),
              "The changes you requested to the table were not successful because they would "
              "create duplicate "
              "values in the index, primary key, or relationship.  Change the data in the field or "
              "fields that "
              "contain duplicate data, remove the index, or redefine the index to permit duplicate "
              "entries and "
              "try again.");
    EXPECT_EQ(outcome("INSERT INTO tblOrdner (OrdnerNr) VALUES ('009')"), nullKey);
    EXPECT_EQ(outcome("CREATE INDEX Rechte ON tblOrdner(NrTblRechte) WITH DISALLOW NULL"), nullKey);
    EXPECT_EQ(ex->query("SELECT * FROM tblOrdner").rows.size(), cat.folders.size() + 2);
}

TEST_P(Statements, PrimaryKeyLookupUsesTheIndex) {
    resetCounters();
    auto rs = ex->query("SELECT * FROM [tblBlockInfo] WHERE [Nr] = 42");
    ASSERT_EQ(rs.rows.size(), 1u);
    EXPECT_EQ(rs.rows[0][1].toString(), cat.blocks[41].block);
    expectCount(&sql::AccessCounters::seeks, 1);
    expectCount(&sql::AccessCounters::scans, 0);
}

// Folder and Page management.
TEST_P(Statements, DeletingTheOnlyPageRemovesAllPagesOfTheFolder) {
    EXPECT_EQ(ex->execute("DELETE FROM tblSeiten WHERE NrTblOrdner = 2").rowsAffected, 5);
    EXPECT_EQ(ex->query("SELECT * FROM tblSeiten WHERE NrTblOrdner = 2").rows.size(), 0u);
    EXPECT_EQ(ex->query("SELECT * FROM tblSeiten").rows.size(), cat.pages.size() - 5);
    EXPECT_EQ(ex->execute("DELETE * FROM tblSeiten WHERE NrTblOrdner = 2").rowsAffected, 0);
}

// The search dialog's statements.
TEST_P(Statements, SearchShapes) {
    const std::string head =
        "SELECT Nr, Block, OrdnerID, SlideLib, BlkName0, BlkName1, BlkName2, BlkName3, "
        "BlkName4, M0, AX1, AX2, AX3, AX4 From tblBlockInfo WHERE ";
    struct Case {
        std::string where;
        std::function<bool(const BlockSpec&)> pred;
    };
    std::vector<Case> cases = {
        {"M0 LIKE '%ventil%' ", [](auto& b) { return contains(b.m0, "ventil"); }},
        {"M0 LIKE '%ventil%' AND M3 LIKE '%stahl%' ",
         [](auto& b) { return contains(b.m0, "ventil") && contains(b.m3, "stahl"); }},
        {"M3 LIKE 'Stahl' ", [](auto& b) { return b.m3 == "Stahl"; }},
        {"OrdnerID LIKE '3' AND M0 LIKE '%DN2%' ",
         [](auto& b) { return b.ordnerId == 3 && contains(b.m0, "DN2"); }},
        {"OrdnerID LIKE '3' ", [](auto& b) { return b.ordnerId == 3; }},
        {"M0 LIKE 'Flansch DN12' ", [](auto& b) { return b.m0 == "Flansch DN12"; }},
        {"M0 LIKE '%ventil%' AND M3 LIKE '%Stahl%' AND M0 LIKE '%DN1%' ",
         [](auto& b) {
             return contains(b.m0, "ventil") && contains(b.m3, "stahl") && contains(b.m0, "DN1");
         }},
        {"M0 LIKE '%groß%' ", [](auto& b) { return contains(b.m0, "VENTIL gro"); }},
        {"M0 LIKE '%GROSS%' ", [](auto& b) { return contains(b.m0, "VENTIL gro"); }},
        {"M0 LIKE '%öltank%' ", [](auto& b) { return b.m0.rfind("Öltank", 0) == 0; }},
        {"(tblBlockInfo.Nr IN(SELECT tblBlockInfo.Nr FROM tblBlockInfo WHERE BlkName0 LIKE "
         "'%0020%'))",
         [](auto& b) { return contains(b.blkName0, "0020"); }},
        {"(tblBlockInfo.Nr IN(SELECT tblBlockInfo.Nr FROM tblBlockInfo WHERE BlkName0 LIKE "
         "'%0010%' OR BlkName1 "
         "LIKE '%0010%' OR BlkName2 LIKE '%0010%' OR BlkName3 LIKE '%0010%' OR BlkName4 LIKE "
         "'%0010%') OR "
         "(tblBlockInfo.Nr IN(SELECT BlockID FROM tblVariationBloecke WHERE BlockName LIKE "
         "'%0010%')))",
         [](auto& b) { return contains(b.blkName0, "0010") || contains(b.blkName1, "0010"); }},
        {"(tblBlockInfo.Nr IN(SELECT tblBlockInfo.Nr FROM tblBlockInfo WHERE BlkName0 LIKE "
         "'%ansicht1%' OR BlkName1 "
         "LIKE '%ansicht1%' OR BlkName2 LIKE '%ansicht1%' OR BlkName3 LIKE '%ansicht1%' OR "
         "BlkName4 LIKE '%ansicht1%') "
         "OR (tblBlockInfo.Nr IN(SELECT BlockID FROM tblVariationBloecke WHERE BlockName LIKE "
         "'%ante2%')))",
         [this](auto& b) {
             bool variant = false;
             for (const auto& v : cat.variants)
                 if (v.blockId == b.nr && contains(v.name, "ante2")) variant = true;
             return contains(b.blkName1, "ansicht1") || variant;
         }},
    };
    for (const auto& c : cases) {
        auto rs = ex->query(head + c.where);
        auto expected = blocksWhere(c.pred);
        EXPECT_FALSE(expected.empty()) << c.where;
        EXPECT_EQ(column(rs, "Block"), expected) << c.where;
        EXPECT_EQ(rs.columns.size(), 14u);
    }
}

TEST_P(Statements, SearchWithBlockNameRunTogetherWithWhereIsASyntaxError) {
    std::string sqlText =
        "SELECT Nr, Block, OrdnerID, SlideLib, BlkName0, BlkName1, BlkName2, BlkName3, BlkName4, "
        "M0, "
        "AX1, AX2, AX3, AX4 From tblBlockInfo WHERE (tblBlockInfo.Nr IN(SELECT tblBlockInfo.Nr "
        "FROM "
        "tblBlockInfoWHERE BlkName0 LIKE '%x%'))";
    try {
        ex->query(sqlText);
        FAIL() << "statement ran";
    } catch (const sql::Error& e) {
        EXPECT_EQ(std::string(e.what()),
                  "Syntax error (missing operator) in query expression '(tblBlockInfo.Nr IN(SELECT "
                  "tblBlockInfo.Nr "
                  "FROM tblBlockInfoWHERE BlkName0 LIKE '%x%'))'.");
        EXPECT_EQ(e.hresult(), sql::errors::kErrorsInCommand);
    }
}

TEST_P(Statements, SearchInALibraryWithoutTheInventorTable) {
    try {
        ex->query("SELECT * From tblBlockInfoInventor WHERE M0 LIKE '%a%' ");
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(e.hresult(), sql::errors::kTableNotFound);
        EXPECT_NE(std::string(e.what()).find("'tblBlockInfoInventor'"), std::string::npos);
    }
}

TEST_P(Statements, QuoteInSearchTextBreaksTheStatementAndChangesNothing) {
    std::string where = "M0 LIKE '%O'Brien%' ";
    try {
        ex->query("SELECT Nr, Block From tblBlockInfo WHERE " + where);
        FAIL();
    } catch (const sql::Error& e) {
        // The name after the quote is read before the unclosed quote at the end.
        EXPECT_EQ(std::string(e.what()),
                  "Syntax error (missing operator) in query expression 'M0 LIKE '%O'Brien%''.");
    }
    EXPECT_THROW(ex->execute("UPDATE tblOrdner SET Ordnername = 'O'Brien' WHERE Nr = 2"),
                 sql::Error);
    EXPECT_EQ(ex->query("SELECT * FROM tblOrdner WHERE Ordnername LIKE 'Armaturen'").rows.size(),
              1u);
}

INSTANTIATE_TEST_SUITE_P(Stores, Statements, ::testing::Values("memory", "mdb"),
                         [](const auto& p) { return std::string(p.param); });

}  // namespace
