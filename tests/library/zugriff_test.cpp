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

TEST_F(Zugriff, FindPrueftOffenUndNichtLeer) {
    db::Recordset rs;
    EXPECT_FALSE(fctRsFind(z, rs, "Block", "0000000"));
    rs.open("SELECT * FROM tblBlockInfo WHERE Nr < 0", con);
    EXPECT_FALSE(fctRsFind(z, rs, "Block", "0000000"));
    EXPECT_EQ(neueFehler(), 0);
}

TEST_F(Zugriff, FindSuchtVonDerErstenZeileAn) {
    db::Recordset rs;
    ASSERT_EQ(fctRsEinlesenAllgemein(z, con, rs, "tblBlockInfo", ""), 300);
    rs.moveLast();
    EXPECT_TRUE(fctRsFind(z, rs, "Block", "0000003"));
    EXPECT_EQ(rs.text("Block"), "0000003");
    EXPECT_TRUE(fctRsFind(z, rs, "Block", "001000_"));  // Like with a wildcard
    EXPECT_EQ(rs.text("Block"), "0010001");
    EXPECT_FALSE(fctRsFind(z, rs, "Block", "9999999"));
    EXPECT_TRUE(rs.eof());

    EXPECT_TRUE(fctRsFindStringEnthalten(z, rs, "M0", "ventil dn29"));
    EXPECT_EQ(rs.text("M0"), "Kugelventil DN290");
}

TEST_F(Zugriff, FindMitZuruecksetzenKehrtZurueck) {
    db::Recordset rs;
    fctRsEinlesenAllgemein(z, con, rs, "tblBlockInfo", "Block");
    rs.setAbsolutePosition(17);
    EXPECT_FALSE(fctRsFindMitZuruecksetzen(z, rs, "Block", "fehlt"));
    EXPECT_EQ(rs.absolutePosition(), 17);
    EXPECT_TRUE(fctRsFindMitZuruecksetzen(z, rs, "Block", "0020005"));
    EXPECT_EQ(rs.text("Block"), "0020005");
}

TEST_F(Zugriff, EinlesenSortiertUndMitKriterium) {
    db::Recordset rs;
    EXPECT_EQ(fctRsEinlesenAllgemein(z, con, rs, "tblOrdner", "Ordnername"), 3);
    rs.moveFirst();
    EXPECT_EQ(rs.text("Ordnername"), "Armaturen");
    rs.moveLast();
    EXPECT_EQ(rs.text("Ordnername"), "Standard-Ordner");

    EXPECT_TRUE(fctRsEinlesenMitEinemKriterium(z, con, rs, "tblBlockInfo", "OrdnerID", "2", true));
    EXPECT_EQ(rs.recordCount(), 100);
    EXPECT_TRUE(rs.filter().empty());
    EXPECT_TRUE(fctRsEinlesenMitEinemKriterium(z, con, rs, "tblOrdner", "OrdnerNr", "002", false));
    EXPECT_EQ(rs.recordCount(), 1);
    EXPECT_FALSE(fctRsEinlesenMitEinemKriterium(z, con, rs, "tblOrdner", "OrdnerNr", "777", false));
    EXPECT_EQ(neueFehler(), 0);
}

TEST_F(Zugriff, PruefenWertVorhanden) {
    EXPECT_TRUE(fctPruefenWertVorhandenTrue(z, con, "tblOrdner", "OrdnerNr", "001"));
    EXPECT_FALSE(fctPruefenWertVorhandenGroesser1True(z, con, "tblOrdner", "OrdnerNr", "001"));
    EXPECT_TRUE(fctPruefenWertVorhandenGroesser1True(z, con, "tblOrdner", "OrdnerRechte", "alle"));
    EXPECT_FALSE(fctPruefenWertVorhandenTrue(z, con, "tblOrdner", "OrdnerNr", "999"));
    EXPECT_EQ(fctPruefenWertVorhandenMitRueckgabeWert(z, con, "tblOrdner", "Ordnername", "elek%"),
              "Elektro");
    EXPECT_EQ(fctPruefenWertVorhandenMitRueckgabeWert(z, con, "tblOrdner", "Ordnername", "x"), "0");
    EXPECT_EQ(neueFehler(), 0);
}

TEST_F(Zugriff, EinHochkommaImWertBrichtDieAnweisungOhneDatenZuAendern) {
    EXPECT_EQ(fctPruefenWertVorhandenMitRueckgabeWert(z, con, "tblOrdner", "Ordnername", "O'Neil"),
              "Fehler");
    EXPECT_FALSE(fctPruefenWertVorhandenTrue(z, con, "tblOrdner", "Ordnername", "O'Neil"));
    db::Recordset rs;
    EXPECT_FALSE(fctWertInSpalteSpeichern(z, con, rs, "tblOrdner", "OrdnerNr", "0'1", "Ordnername",
                                          "Rohre"));
    EXPECT_GE(neueFehler(), 3);
    EXPECT_EQ(fctRsEinlesenAllgemein(z, con, rs, "tblOrdner", ""), 3);
    EXPECT_FALSE(fctPruefenWertVorhandenTrue(z, con, "tblOrdner", "Ordnername", "Rohre"));
}

TEST_F(Zugriff, WertInSpalteSpeichernLegtDieSpalteAn) {
    db::Recordset rs;
    ASSERT_TRUE(
        fctWertInSpalteSpeichern(z, con, rs, "tblOrdner", "OrdnerNr", "001", "Bemerkung", "neu"));
    auto spalten = files->find(pfad)->table("tblOrdner")->columns();
    EXPECT_EQ(spalten.back().name, "Bemerkung");
    EXPECT_EQ(spalten.back().type, sql::ColumnType::Text);
    EXPECT_EQ(spalten.back().size, 100);
    fctRsEinlesenMitEinemKriterium(z, con, rs, "tblOrdner", "OrdnerNr", "001", false);
    EXPECT_EQ(rs.text("Bemerkung"), "neu");
    // A key not there yet gets a new row.
    ASSERT_TRUE(fctWertInSpalteSpeichern(z, con, rs, "tblOrdner", "OrdnerNr", "005", "Bemerkung",
                                         "zweite"));
    EXPECT_TRUE(fctPruefenWertVorhandenTrue(z, con, "tblOrdner", "Bemerkung", "zweite"));
    EXPECT_EQ(fctWertInSpalteAuslesen(z, rs, "Bemerkung"), "zweite");
}

TEST_F(Zugriff, SpalteAnlegenMitStartwertUndUebertragen) {
    db::Recordset rs;
    fctRsEinlesenAllgemein(z, con, rs, "tblOrdner", "");
    ASSERT_TRUE(fctSpalteAnlegenFallsNichtVorhanden(z, con, rs, "tblOrdner", "NrTblOrdnen", "SHORT",
                                                    std::string("0")));
    EXPECT_TRUE(fctSpalteNichtVorhandenOhneEintrag0(z, oeffner, pfad, "tblOrdner", "NrTblRechte"));
    EXPECT_FALSE(fctSpalteNichtVorhandenOhneEintrag0(z, oeffner, pfad, "tblOrdner", "NrTblOrdnen"));
    ASSERT_TRUE(fctWerteVonSpalteUebertragen(z, con, "tblOrdner", "NrTblOrdnen", "Nr"));
    fctRsEinlesenAllgemein(z, con, rs, "tblOrdner", "Nr");
    rs.moveLast();
    EXPECT_EQ(rs.value("NrTblOrdnen").asInt(), 3);
    // Already there: nothing is executed, the answer is true.
    EXPECT_TRUE(
        fctSpalteAnlegenFallsNichtVorhanden(z, con, rs, "tblOrdner", "NrTblOrdnen", "SHORT"));
    EXPECT_EQ(neueFehler(), 0);
}

TEST_F(Zugriff, AlleEintraegeLoeschen) {
    db::Recordset rs;
    fctRsEinlesenMitEinemKriterium(z, con, rs, "tblBlockInfo", "OrdnerID", "3", true);
    ASSERT_TRUE(fctAlleEintraegLoeschen(z, rs));
    EXPECT_FALSE(fctPruefenWertVorhandenTrue(z, con, "tblBlockInfo", "Block", "002%"));
    EXPECT_TRUE(fctPruefenWertVorhandenTrue(z, con, "tblBlockInfo", "Block", "001%"));
}

TEST_F(Zugriff, SucheMitMuster) {
    db::Recordset rs;
    EXPECT_EQ(
        fctRsSuchenMitMuster(z, con, rs, "Nr, Block, M0", "tblBlockInfo", "M0", "Kugel", "Block"),
        30);
    rs.moveFirst();
    EXPECT_EQ(rs.text("Block"), "0000000");
    db::Connection zu(oeffner);
    EXPECT_EQ(fctRsSuchenMitMuster(z, zu, rs, "*", "tblBlockInfo", "M0", "K", ""), 0);
    EXPECT_EQ(z.fehler.strLetzterFehler, "es gibt keine Verbindung zur Datenbank");
}

TEST_F(Zugriff, ServerModusMeldetFalsch) {
    db::Connection c(oeffner);
    EXPECT_FALSE(fctConnectionOeffnen(z, c, "Tessara", "SERVER01", "u", "p"));
    EXPECT_EQ(c.state(), db::adStateClosed);
    EXPECT_EQ(neueFehler(), 1);
}

}  // namespace
}  // namespace tessara
