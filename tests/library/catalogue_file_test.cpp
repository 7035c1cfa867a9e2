// The catalogue made as a real .mdb file by the Jet engine, read back by
// mdbtools (an independent reader) and by the engine's own structure check.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>

#include "befehl.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "frisches_verzeichnis.h"
#include "jet/check/check.h"
#include "jet/read/database.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara {
namespace {

namespace fs = std::filesystem;

using test::befehlsAusgabe;

std::vector<std::string> zeilen(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string z; std::getline(in, z);) out.push_back(z);
    return out;
}

class EchteDatei : public ::testing::Test {
  protected:
    void SetUp() override {
        verzeichnis = tessara::test::frischesVerzeichnis("kat");
        datei = verzeichnis / "dbTessara.mdb";
        // The program writes backslash paths; the opener maps them to native ones.
        oeffner = db::jetOpener([](const std::string& p) {
            std::string n = p;
            for (auto& c : n)
                if (c == '\\') c = '/';
            return n;
        });
        programmPfad = datei.string();
        for (auto& c : programmPfad)
            if (c == '/') c = '\\';
        z.benutzer = &benutzer;
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(verzeichnis, ec);
    }
    std::string exportiert(const std::string& tabelle) {
        return befehlsAusgabe("mdb-export '" + datei.string() + "' " + tabelle + " 2>&1");
    }

    fs::path verzeichnis, datei;
    std::string programmPfad;
    db::StorageOpener oeffner;
    SkriptBenutzer benutzer;
    ProgrammZustand z;
};

TEST_F(EchteDatei, NeuerKatalogIstFuerMdbtoolsUndDiePruefungLesbar) {
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, programmPfad));

    EXPECT_EQ(zeilen(befehlsAusgabe("mdb-tables -1 '" + datei.string() + "'")),
              (std::vector<std::string>{"tblBlockInfo", "tblDefMenue", "tblOrdner", "tblSeiten",
                                        "tblMarkierteBloecke", "tblVariationBloecke"}));
    // Every table's header row lists Nr and the columns in their order.
    for (const auto& t : fctKatalogTabellen()) {
        SCOPED_TRACE(t.name);
        std::string kopf = "Nr";
        for (const auto& s : t.spalten) kopf += "," + s.name;
        const auto z2 = zeilen(exportiert(t.name));
        ASSERT_FALSE(z2.empty());
        EXPECT_EQ(z2[0], kopf);
    }
    const auto ordner = zeilen(exportiert("tblOrdner"));
    ASSERT_EQ(ordner.size(), 2u);
    EXPECT_NE(ordner[1].find("\"000\",\"Standard-Ordner\",\"Alle\""), std::string::npos)
        << ordner[1];
    const auto seiten = zeilen(exportiert("tblSeiten"));
    ASSERT_EQ(seiten.size(), 2u);
    EXPECT_EQ(seiten[1].rfind("1,", 0), 0u) << seiten[1];
    const auto menue = zeilen(exportiert("tblDefMenue"));
    ASSERT_EQ(menue.size(), 2u);
    EXPECT_NE(menue[1].find("\"*****Frei*****\""), std::string::npos);

    auto jetDb = jet::Database::open(datei.string());
    EXPECT_EQ(jet::checkDatabase(*jetDb), std::vector<std::string>{});
    std::vector<std::string> namen;
    for (const auto& r : jetDb->relationships()) namen.push_back(r.name);
    EXPECT_EQ(namen, (std::vector<std::string>{"tblDefMenue_tblOrdner", "tblOrdner_tblBlockInfo",
                                               "tblOrdner_tblSeiten",
                                               "tblBlockInfo_tblVariationBloecke"}));
    auto def = jetDb->tableDef("tblBlockInfo");
    bool absteigend = false;
    for (const auto& ix : def->indexes)
        if (ix.name == "OrdnerID")
            absteigend = !def->realIndexes[ix.realIndex].columns.at(0).ascending;
    EXPECT_TRUE(absteigend);
}

// Rows written through record sets and SQL reach the file and survive a reopen.
TEST_F(EchteDatei, DatensaetzeUeberlebenDasWiederoeffnen) {
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, programmPfad));
    {
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(programmPfad));
        db::Recordset rs;
        rs.open("SELECT * FROM tblBlockInfo", con, db::adOpenKeyset, db::adLockOptimistic);
        for (int i = 0; i < 300; ++i) {
            rs.addNew();
            rs.setValue("Block", "00100" + std::to_string(100 + i));
            rs.setValue("OrdnerID", 1);
            rs.setValue("M0",
                        i % 3 ? "Kugelhahn DN" + std::to_string(i) : std::string("Ventil ölfrei"));
            rs.update();
        }
        rs.close();
        EXPECT_EQ(con.execute("DELETE FROM tblBlockInfo WHERE M0 LIKE 'Ventil%'"), 100);
        EXPECT_EQ(con.execute("UPDATE tblBlockInfo SET M3 = 'Stahl' WHERE Nr <= 10"), 6);
    }
    db::Connection con(oeffner);
    con.open(fctJetVerbindung(programmPfad));
    db::Recordset rs;
    rs.open("SELECT Nr, Block, M3 FROM tblBlockInfo ORDER BY Nr", con, db::adOpenKeyset,
            db::adLockOptimistic);
    EXPECT_EQ(rs.recordCount(), 200);
    rs.find("Block Like '00100102'");
    ASSERT_FALSE(rs.eof());
    EXPECT_EQ(rs.value("Nr").asInt(), 3);
    EXPECT_EQ(rs.value("M3").toString(), "Stahl");
    rs.close();
    con.close();
    auto jetDb = jet::Database::open(datei.string());
    EXPECT_EQ(jet::checkDatabase(*jetDb), std::vector<std::string>{});
    EXPECT_EQ(zeilen(exportiert("tblBlockInfo")).size(), 201u);
}

// A Folder's Blocks read through tblBlockInfo's index OrdnerID DESC: the rows
// a scan finds, before and after inserts; mdbtools reads the index as descending.
TEST_F(EchteDatei, BloeckeEinesOrdnersWieOhneIndex) {
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, programmPfad));
    {
        db::Connection con(oeffner);
        con.open(fctJetVerbindung(programmPfad));
        auto nummern = [&](const std::string& bedingung) {
            db::Recordset rs;
            rs.open("SELECT Nr, Block FROM tblBlockInfo WHERE " + bedingung, con);
            std::set<long long> out;
            for (; !rs.eof(); rs.moveNext()) out.insert(rs.value("Nr").asInt());
            return out;
        };
        for (int i = 0; i < 150; ++i) {
            con.execute("INSERT INTO tblBlockInfo (Block, OrdnerID, M0) VALUES ('00" +
                        std::to_string(10000 + i) + "', " + std::to_string(1 + i % 3) +
                        ", 'Ventil')");
            if (i != 59 && i != 149) continue;
            EXPECT_EQ(nummern("OrdnerID = 2").size(), (i + 1) / 3u);
            for (int ordner : {1, 2, 3, 7})
                EXPECT_EQ(nummern("OrdnerID = " + std::to_string(ordner)),
                          nummern("OrdnerID+0 = " + std::to_string(ordner)))
                    << ordner;
        }
    }

    auto jetDb = jet::Database::open(datei.string());
    EXPECT_EQ(jet::checkDatabase(*jetDb), std::vector<std::string>{});
    const std::string schema =
        test::befehlsAusgabe("mdb-schema -T tblBlockInfo '" + datei.string() + "' postgres 2>&1");
    EXPECT_NE(schema.find("(\"ordnerid\" DESC)"), std::string::npos) << schema;
}

}  // namespace
}  // namespace tessara
