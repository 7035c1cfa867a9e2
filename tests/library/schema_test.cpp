#include "library/schema.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "db/memory_opener.h"
#include "db/recordset.h"
#include "frisches_verzeichnis.h"
#include "library/datenbank.h"
#include "platform/environment.h"
#include "startup/benutzer.h"

namespace tessara {
namespace {

class Schema : public ::testing::Test {
  protected:
    void SetUp() override {
        z.benutzer = &benutzer;
        z.booDebug = false;
    }
    std::shared_ptr<sql::MemoryFiles> files = std::make_shared<sql::MemoryFiles>();
    db::StorageOpener oeffner = db::memoryOpener(files);
    SkriptBenutzer benutzer;
    ProgrammZustand z;
};

TEST_F(Schema, EinfuegepunktSpaltenTragenDieAnsichtZuletzt) {
    EXPECT_EQ(fctEinfuegepunktSpalte(2, 0, 2), "CX2");
    EXPECT_EQ(fctEinfuegepunktSpalte(0, 0, 0), "AX0");
    EXPECT_EQ(fctEinfuegepunktSpalte(5, 2, 4), "FZ4");
    const auto& t = fctKatalogTabellen().front();
    ASSERT_EQ(t.name, "tblBlockInfo");
    // Block, SlideLib, OrdnerID, 5 names, 10 attributes, then 90 doubles.
    std::string namen;
    for (int i : {18, 18 + 18, 18 + 2 * 18 + 6, 107, 108}) namen += t.spalten[i].name + " ";
    EXPECT_EQ(namen + t.spalten.back().name, "AX0 AX1 CX2 FZ4 FktRuf0 LyColor");
    EXPECT_EQ(t.spalten.size() + 1, 118u);  // with Nr
}

TEST_F(Schema, NeueDatenbankHatSpaltenBeziehungenUndStandardzeilen) {
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, "c:\\lib\\dbTessara.mdb"));
    auto s = files->find("c:\\lib\\dbTessara.mdb");
    ASSERT_TRUE(s);
    for (const auto& t : fctKatalogTabellen()) {
        SCOPED_TRACE(t.name);
        auto tab = s->table(t.name);
        ASSERT_TRUE(tab);
        auto cols = tab->columns();
        ASSERT_EQ(cols.size(), t.spalten.size() + 1);
        EXPECT_EQ(cols[0].name, "Nr");
        EXPECT_TRUE(cols[0].autoIncrement);
        EXPECT_EQ(cols[0].type, sql::ColumnType::Long);
        for (std::size_t i = 0; i < t.spalten.size(); ++i) {
            EXPECT_EQ(cols[i + 1].name, t.spalten[i].name);
            EXPECT_TRUE(cols[i + 1].nullable);
            if (t.spalten[i].typ == db::adVarWChar) {
                EXPECT_EQ(cols[i + 1].type, sql::ColumnType::Text);
                EXPECT_EQ(cols[i + 1].size, t.spalten[i].groesse);
            }
        }
        bool primaer = false;
        for (const auto& ix : tab->indexes())
            if (ix.primary && ix.name == "PrimaryKey" && ix.columns.size() == 1 &&
                ix.columns[0].name == "Nr")
                primaer = true;
        EXPECT_TRUE(primaer);
    }
    auto rel = s->relations();
    ASSERT_EQ(rel.size(), 4u);
    EXPECT_EQ(rel[1].name, "tblOrdner_tblBlockInfo");
    EXPECT_EQ(rel[1].table, "tblBlockInfo");
    EXPECT_EQ(rel[1].columns, std::vector<std::string>{"OrdnerID"});
    EXPECT_EQ(rel[1].relatedTable, "tblOrdner");
    EXPECT_EQ(rel[1].relatedColumns, std::vector<std::string>{"Nr"});

    // The default rows, each as its values joined by "|" (Null as "").
    db::Connection con(oeffner);
    con.open(fctJetVerbindung("c:\\lib\\dbTessara.mdb"));
    std::string zeilen, menue = "1";
    for (const char* sql :
         {"SELECT * FROM tblDefMenue",
          "SELECT Nr, SeitenNr, SeitenName, NrTblOrdner FROM tblSeiten",
          "SELECT Nr, OrdnerNr, Ordnername, OrdnerRechte, NrTblDefMenue, NrTblRechte FROM "
          "tblOrdner"}) {
        db::Recordset rs;
        for (rs.open(sql, con); !rs.eof(); rs.moveNext(), zeilen += "\n")
            for (int i = 0; i < rs.fieldCount(); ++i)
                zeilen += (i ? "|" : "") +
                          (rs.value(i).isNull() ? std::string() : rs.value(i).toString());
    }
    for (int i = 0; i < 20; ++i) menue += std::string("|") + kFreiEintrag;
    EXPECT_EQ(zeilen, "1|" + menue + "\n1|1|1|1\n1|000|Standard-Ordner|Alle|1|\n");
}

TEST_F(Schema, TexteUeberDerSpaltenbreiteWerdenAbgewiesen) {
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, "db"));
    db::Connection con(oeffner);
    con.open(fctJetVerbindung("db"));
    EXPECT_EQ(con.execute("INSERT INTO tblBlockInfo (Block, BlkName0) VALUES ('" +
                          std::string(144, '1') + "', '" + std::string(32, 'a') + "')"),
              1);
    EXPECT_ANY_THROW(
        con.execute("INSERT INTO tblBlockInfo (Block) VALUES ('" + std::string(145, '1') + "')"));
    EXPECT_ANY_THROW(
        con.execute("INSERT INTO tblBlockInfo (BlkName0) VALUES ('" + std::string(33, 'a') + "')"));
}

TEST_F(Schema, DebugModusKuendigtJedeTabelleAn) {
    namespace fs = std::filesystem;
    const fs::path dir = tessara::test::frischesVerzeichnis("schema");
    z.booDebug = true;
    z.strCTemp = platform::programPath(dir.string()) + "\\";
    z.strErrorDatei = z.strCTemp + "log.txt";
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, "db2"));
    std::ifstream in(dir / "log.txt");
    std::string zeile;
    std::vector<std::string> angekuendigt;
    while (std::getline(in, zeile)) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (zeile.rfind("Tabelle erstellen : ", 0) == 0) angekuendigt.push_back(zeile.substr(20));
    }
    EXPECT_EQ(angekuendigt,
              (std::vector<std::string>{"tblBlockInfo", "tblDefMenue", "tblOrdner", "tblSeiten",
                                        "tblMarkierteBloecke", "tblVariationBloecke"}));
    fs::remove_all(dir);
}

}  // namespace
}  // namespace tessara
