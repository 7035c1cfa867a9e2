// Joins as a caller of the general select helper composes them.
#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue_fixture.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

namespace {

class Joins : public ::testing::Test {
  protected:
    void SetUp() override {
        db = std::make_shared<sql::MemoryStorage>();
        cat = fixture::fill(*db, 60);
        ex = std::make_unique<sql::Executor>(db);
    }
    std::shared_ptr<sql::MemoryStorage> db;
    fixture::Catalogue cat;
    std::unique_ptr<sql::Executor> ex;
};

TEST_F(Joins, InnerJoinPairsEveryBlockWithItsFolder) {
    auto rs = ex->query(
        "SELECT tblBlockInfo.Block, tblOrdner.OrdnerName, tblOrdner.OrdnerNr FROM tblBlockInfo "
        "INNER JOIN tblOrdner ON "
        "tblBlockInfo.OrdnerID = tblOrdner.Nr WHERE tblOrdner.OrdnerNr LIKE '002' ORDER BY "
        "tblBlockInfo.Block");
    std::vector<std::string> expected;
    for (const auto& b : cat.blocks)
        if (b.ordnerId == 3) expected.push_back(b.block);
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(rs.rows.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(rs.rows[i][0].toString(), expected[i]);
        EXPECT_EQ(rs.rows[i][1].toString(), "Rohrleitungen");
    }
    EXPECT_EQ(rs.columns[1].name, "Ordnername");
    EXPECT_TRUE(rs.baseTable.empty());  // a joined result is not written back
}

TEST_F(Joins, LeftJoinKeepsFoldersWithoutBlocksAndQualifiesSharedNames) {
    auto rs = ex->query(
        "SELECT * FROM tblOrdner AS o LEFT JOIN tblBlockInfo AS b ON o.Nr = b.OrdnerID WHERE b.Nr "
        "IS NULL");
    ASSERT_EQ(rs.rows.size(), 1u);  // only the standard Folder has no Blocks
    EXPECT_EQ(rs.rows[0][rs.columnIndex("OrdnerNr")].toString(), "000");
    EXPECT_GE(rs.columnIndex("tblOrdner.Nr"), 0);
    EXPECT_GE(rs.columnIndex("tblBlockInfo.Nr"), 0);
    EXPECT_EQ(rs.columnIndex("Nr"), -1);
}

TEST_F(Joins, ThreeTablesWithJetsParentheses) {
    auto rs = ex->query(
        "SELECT v.BlockName, b.Block, o.Ordnername FROM (tblVariationBloecke AS v INNER JOIN "
        "tblBlockInfo AS b ON "
        "v.BlockID = b.Nr) INNER JOIN tblOrdner AS o ON b.OrdnerID = o.Nr ORDER BY v.BlockName");
    ASSERT_EQ(rs.rows.size(), cat.variants.size());
    for (const auto& row : rs.rows) {
        const auto& v = *std::find_if(cat.variants.begin(), cat.variants.end(),
                                      [&](auto& x) { return x.name == row[0].toString(); });
        const auto& b = cat.blocks[v.blockId - 1];
        EXPECT_EQ(row[1].toString(), b.block);
        EXPECT_EQ(row[2].toString(), cat.folders[b.ordnerId - 1].name);
    }
}

TEST_F(Joins, NonEqualityOnIsEvaluatedRowByRow) {
    auto rs = ex->query(
        "SELECT s.SeitenName, o.OrdnerNr FROM tblSeiten AS s INNER JOIN tblOrdner AS o ON "
        "s.NrTblOrdner = o.Nr AND s.SeitenNr > 3");
    EXPECT_EQ(rs.rows.size(), 6u);  // Pages 4 and 5 of three Folders
}

}  // namespace
