// The record-set helpers the Folder, Page and mark commands use.
#include "library/zugriff.h"

#include <gtest/gtest.h>

#include "db/memory_opener.h"
#include "db/recordset.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "startup/benutzer.h"

namespace tessara {
namespace {

// A catalogue of 300 Blocks in three Folders.
class Zugriff : public ::testing::Test {
  protected:
    void SetUp() override {
        z.benutzer = &benutzer;
        ASSERT_TRUE(Mk_Datenbank(z, oeffner, pfad));
        con.open(fctJetVerbindung(pfad));
        con.execute(
            "INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte) VALUES ('001', "
            "'Armaturen', 'Alle')");
        con.execute(
            "INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte) VALUES ('002', "
            "'Elektro', 'Alle')");
        for (int i = 0; i < 300; ++i) {
            const int ordner = 1 + i % 3;
            char block[16];
            std::snprintf(block, sizeof block, "%03d0%03d", ordner - 1, i);
            con.execute(std::string("INSERT INTO tblBlockInfo (Block, OrdnerID, M0) VALUES ('") +
                        block + "', " + std::to_string(ordner) + ", '" +
                        (i % 10 == 0 ? "Kugelventil DN" : "Flansch DN") + std::to_string(i) + "')");
        }
        fehlerVorher = z.fehler.intFehlerAnzahl;
    }
    int neueFehler() const { return z.fehler.intFehlerAnzahl - fehlerVorher; }

    std::shared_ptr<sql::MemoryFiles> files = std::make_shared<sql::MemoryFiles>();
    db::StorageOpener oeffner = db::memoryOpener(files);
    std::string pfad = "c:\\lib\\dbTessara.mdb";
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    db::Connection con{oeffner};
    int fehlerVorher = 0;
};

TEST_F(Zugriff, FindPrueftOffenUndNichtLeerUndSuchtVonDerErstenZeileAn) {
    db::Recordset rs;
    EXPECT_FALSE(fctRsFind(z, rs, "Block", "0000000"));
    rs.open("SELECT * FROM tblBlockInfo WHERE Nr < 0", con);
    EXPECT_FALSE(fctRsFind(z, rs, "Block", "0000000"));
    // From the first row on, wherever the record set stands.
    rs.close();
    rs.open("SELECT * FROM tblBlockInfo", con, db::adOpenKeyset, db::adLockOptimistic);
    rs.moveLast();
    EXPECT_TRUE(fctRsFind(z, rs, "Block", "0000003"));
    EXPECT_EQ(rs.text("Block"), "0000003");
    EXPECT_TRUE(fctRsFind(z, rs, "Block", "001000_"));  // Like with a wildcard
    EXPECT_EQ(rs.text("Block"), "0010001");
    EXPECT_FALSE(fctRsFind(z, rs, "Block", "9999999"));
    EXPECT_TRUE(rs.eof());
    EXPECT_EQ(neueFehler(), 0);
}

TEST_F(Zugriff, AlleEintraegeLoeschen) {
    db::Recordset rs;
    rs.open("SELECT * FROM tblBlockInfo WHERE OrdnerID = 3", con, db::adOpenKeyset,
            db::adLockOptimistic);
    ASSERT_TRUE(fctAlleEintraegLoeschen(z, rs));
    db::Recordset rest;
    rest.open("SELECT Block FROM tblBlockInfo WHERE Block LIKE '002%' OR Block LIKE '001%'", con);
    EXPECT_EQ(rest.recordCount(), 100);
    EXPECT_EQ(rest.text("Block").substr(0, 3), "001");
}

}  // namespace
}  // namespace tessara
