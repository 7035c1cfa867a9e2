// The record-set helpers the Folder, Page and mark commands use; the
// module's other helpers have no caller in the program.
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
        ASSERT_TRUE(fctConnectionOeffnen(z, con, pfad));
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
    ASSERT_EQ(fctRsEinlesenAllgemein(z, con, rs, "tblBlockInfo", ""), 300);
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
    fctRsEinlesenMitEinemKriterium(z, con, rs, "tblBlockInfo", "OrdnerID", "3", true);
    ASSERT_TRUE(fctAlleEintraegLoeschen(z, rs));
    EXPECT_FALSE(fctPruefenWertVorhandenTrue(z, con, "tblBlockInfo", "Block", "002%"));
    EXPECT_TRUE(fctPruefenWertVorhandenTrue(z, con, "tblBlockInfo", "Block", "001%"));
}

}  // namespace
}  // namespace tessara
