// Folder export and import: statements between two databases through IN '<file>'.
#include <gtest/gtest.h>

#include <algorithm>

#include "catalogue_fixture.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

namespace {

const std::string kLib = "C:\\Bibliothek\\dbTessara.mdb";
const std::string kFile = "D:\\Austausch\\Armaturen.mdb";

class Exchange : public ::testing::Test {
  protected:
    void SetUp() override {
        files = std::make_shared<sql::MemoryFiles>();
        lib = files->create(kLib);
        cat = fixture::fill(*lib);
        file = files->create(kFile);
        onFile = std::make_unique<sql::Executor>(file);
        onLib = std::make_unique<sql::Executor>(lib);
    }
    long count(sql::Executor& ex, const std::string& sqlText) {
        return static_cast<long>(ex.query(sqlText).rows.size());
    }

    void exportFolder(int nr) {
        const std::string T = "tblBlockInfo";
        onFile->execute("SELECT * INTO " + T + " " + "FROM " + T + " IN '" + kLib +
                        "' WHERE OrdnerID = " + std::to_string(nr));
        onFile->execute("SELECT * INTO tblDefMenue " + std::string("FROM tblDefMenue IN '") + kLib +
                        "' WHERE Nr = 1");
        onFile->execute("SELECT * INTO tblSeiten " + std::string("FROM tblSeiten IN '") + kLib +
                        "' WHERE NrTblOrdner = " + std::to_string(nr));
        onFile->execute("SELECT * INTO tblVariationBloecke " +
                        std::string("FROM tblVariationBloecke IN '") + kLib +
                        "' WHERE BlockID IN (SELECT Nr FROM " + T +
                        " WHERE OrdnerID = " + std::to_string(nr) + ")");
    }

    std::shared_ptr<sql::MemoryFiles> files;
    std::shared_ptr<sql::MemoryStorage> lib, file;
    fixture::Catalogue cat;
    std::unique_ptr<sql::Executor> onFile, onLib;
};

TEST_F(Exchange, ExportCopiesTheFolderWithItsKeysAndColumnTypes) {
    exportFolder(2);
    long blocks = std::count_if(cat.blocks.begin(), cat.blocks.end(),
                                [](auto& b) { return b.ordnerId == 2; });
    EXPECT_EQ(count(*onFile, "SELECT * FROM tblBlockInfo"), blocks);
    EXPECT_EQ(count(*onFile, "SELECT * FROM tblSeiten"), 5);
    EXPECT_EQ(count(*onFile, "SELECT * FROM tblDefMenue"), 1);
    long variants = 0;
    for (const auto& v : cat.variants)
        if (cat.blocks[v.blockId - 1].ordnerId == 2) ++variants;
    EXPECT_GT(variants, 0);
    EXPECT_EQ(count(*onFile, "SELECT * FROM tblVariationBloecke"), variants);

    // Keys are kept, columns keep type and size.
    auto rs = onFile->query("SELECT Nr, Block FROM tblBlockInfo ORDER BY Nr");
    EXPECT_EQ(rs.rows[0][0].asInt(), 1);
    EXPECT_EQ(rs.rows[0][1].toString(), cat.blocks[0].block);
    auto cols = file->table("tblBlockInfo")->columns();
    EXPECT_EQ(cols.size(), fixture::blockInfoColumns().size());
    EXPECT_EQ(cols[1].type, sql::ColumnType::Text);
    EXPECT_EQ(cols[1].size, 144);
    EXPECT_EQ(cols[25].type, sql::ColumnType::Double);
    // Nothing went into tblOrdner of the file.
    EXPECT_EQ(file->table("tblOrdner"), nullptr);
}

TEST_F(Exchange, ExportIntoAFileThatHoldsTheTableFailsAtTheFirstStatement) {
    exportFolder(2);
    try {
        onFile->execute("SELECT * INTO tblBlockInfo FROM tblBlockInfo IN '" + kLib +
                        "' WHERE OrdnerID = 3");
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(std::string(e.what()), "Table 'tblBlockInfo' already exists.");
    }
}

TEST_F(Exchange, ImportAppendsUnderNewKeysAndPagesKeepTheirNumbers) {
    exportFolder(3);
    long before = count(*onLib, "SELECT * FROM tblBlockInfo");
    long exported = count(*onFile, "SELECT * FROM tblBlockInfo");

    onFile->execute(
        "INSERT INTO tblDefMenue IN '" + kLib + "' SELECT global, Benennung1, Standardwert1, " +
        " Benennung2, Standardwert2, Benennung3, Standardwert3, Benennung4, Standardwert4, " +
        "Benennung5, Standardwert5, Benennung6, Standardwert6, Benennung7, Standardwert7, " +
        "Benennung8, Standardwert8, Benennung9, Standardwert9, Benennung10, Standardwert10 " +
        "FROM tblDefMenue");
    EXPECT_EQ(count(*onLib, "SELECT * FROM tblDefMenue"), 2);
    EXPECT_EQ(count(*onLib, "SELECT * FROM tblDefMenue WHERE Nr = 2"), 1);

    onLib->execute(
        "INSERT INTO tblOrdner (OrdnerNr, Ordnername, NrTblDefMenue) VALUES ('004', 'Importiert', "
        "2)");
    long newNr = onLib->query("SELECT Nr FROM tblOrdner WHERE Ordnername LIKE 'Importiert'")
                     .rows.at(0)[0]
                     .asInt();
    EXPECT_EQ(newNr, 5);

    EXPECT_EQ(
        onFile->execute("UPDATE tblSeiten SET NrTblOrdner = " + std::to_string(newNr)).rowsAffected,
        5);
    EXPECT_EQ(onFile
                  ->execute("INSERT INTO tblSeiten IN '" + kLib +
                            "' SELECT SeitenNr, SeitenName, NrTblOrdner " + "FROM tblSeiten")
                  .rowsAffected,
              5);
    auto pages = onLib->query(
        "SELECT SeitenNr, SeitenName FROM tblSeiten WHERE NrTblOrdner = 5 ORDER BY SeitenNr");
    ASSERT_EQ(pages.rows.size(), 5u);
    EXPECT_EQ(pages.rows[0][1].toString(), "2");
    EXPECT_EQ(pages.rows[4][0].asInt(), 5);

    onFile->execute("UPDATE tblBlockInfo SET OrdnerID = " + std::to_string(newNr));
    std::string list = "Block, OrdnerID, SlideLib";
    for (int i = 0; i < 5; ++i) list += ", BlkName" + std::to_string(i);
    for (int i = 0; i < 10; ++i) list += ", M" + std::to_string(i);
    for (int v = 0; v < 5; ++v)
        for (char p = 'A'; p <= 'F'; ++p)
            for (char x : {'X', 'Y', 'Z'}) list += std::string(", ") + p + x + std::to_string(v);
    for (int i = 0; i < 5; ++i) list += ", FktRuf" + std::to_string(i);
    list += ", Prg, Layer, LyLine, LyColor";
    EXPECT_EQ(onFile
                  ->execute("INSERT INTO tblBlockInfo IN '" + kLib + "' SELECT " + list +
                            " FROM tblBlockInfo")
                  .rowsAffected,
              exported);
    EXPECT_EQ(count(*onLib, "SELECT * FROM tblBlockInfo"), before + exported);
    auto imported =
        onLib->query("SELECT Nr, Block, M0 FROM tblBlockInfo WHERE OrdnerID = 5 ORDER BY Nr");
    ASSERT_EQ(static_cast<long>(imported.rows.size()), exported);
    EXPECT_EQ(imported.rows[0][0].asInt(), before + 1);  // new keys
    EXPECT_EQ(imported.rows[0][1].toString(), cat.blocks[1].block);
}

TEST_F(Exchange, ImportOverAnExistingFolderEmptiesItInTheGivenOrder) {
    const std::string T = "tblBlockInfo";
    int nr = 2;
    EXPECT_GT(onLib->execute("DELETE FROM " + T + " WHERE " + "OrdnerID = " + std::to_string(nr))
                  .rowsAffected,
              0);
    EXPECT_EQ(onLib
                  ->execute("DELETE FROM tblSeiten WHERE " + std::string("NrTblOrdner = ") +
                            std::to_string(nr))
                  .rowsAffected,
              5);
    // The Blocks are gone already, so the Variant statement finds nothing to delete.
    EXPECT_EQ(onLib
                  ->execute("DELETE FROM tblVariationBloecke " +
                            std::string("WHERE BlockID IN (SELECT Nr FROM ") + T +
                            " WHERE OrdnerID = " + std::to_string(nr) + ")")
                  .rowsAffected,
              0);
    EXPECT_EQ(count(*onLib, "SELECT * FROM tblVariationBloecke"),
              static_cast<long>(cat.variants.size()));
}

TEST_F(Exchange, MissingExternalFile) {
    try {
        onFile->execute(
            "SELECT * INTO tblSeiten FROM tblSeiten IN 'X:\\fehlt.mdb' WHERE NrTblOrdner = 1");
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(std::string(e.what()), "Could not find file 'X:\\fehlt.mdb'.");
    }
    EXPECT_EQ(file->tableNames().size(), 0u);
}

}  // namespace
