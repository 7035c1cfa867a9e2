// A Folder's Blocks read through tblBlockInfo's index OrdnerID DESC of a
// catalogue made as a real .mdb: the rows a scan finds, before and after
// inserts; mdbtools reads the index as descending.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <set>

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

TEST(OrdnerIndex, BloeckeEinesOrdnersWieOhneIndex) {
    const fs::path verzeichnis = tessara::test::frischesVerzeichnis("ordnerindex");
    const fs::path datei = verzeichnis / "dbTessara.mdb";
    SkriptBenutzer benutzer;
    ProgrammZustand z;
    z.benutzer = &benutzer;
    ASSERT_TRUE(Mk_Datenbank(z, db::jetOpener(), datei.string()));

    {
        db::Connection con(db::jetOpener());
        con.open(fctJetVerbindung(datei.string()));
        auto nummern = [&](const std::string& bedingung) {
            db::Recordset rs;
            rs.open("SELECT Nr, Block FROM tblBlockInfo WHERE " + bedingung, con);
            std::set<long long> out;
            for (; !rs.eof(); rs.moveNext()) out.insert(rs.value("Nr").asInt());
            return out;
        };
        auto einfuegen = [&](int von, int bis) {
            for (int i = von; i < bis; ++i)
                con.execute("INSERT INTO tblBlockInfo (Block, OrdnerID, M0) VALUES ('00" +
                            std::to_string(10000 + i) + "', " + std::to_string(1 + i % 3) +
                            ", 'Ventil')");
        };
        einfuegen(0, 60);
        EXPECT_EQ(nummern("OrdnerID = 2").size(), 20u);
        for (int ordner : {1, 2, 3, 7})
            EXPECT_EQ(nummern("OrdnerID = " + std::to_string(ordner)),
                      nummern("OrdnerID+0 = " + std::to_string(ordner)))
                << ordner;
        einfuegen(60, 150);
        EXPECT_EQ(nummern("OrdnerID = 2").size(), 50u);
        for (int ordner : {1, 2, 3})
            EXPECT_EQ(nummern("OrdnerID = " + std::to_string(ordner)),
                      nummern("OrdnerID+0 = " + std::to_string(ordner)))
                << ordner;
    }

    auto jetDb = jet::Database::open(datei.string());
    EXPECT_EQ(jet::checkDatabase(*jetDb), std::vector<std::string>{});
    const std::string schema =
        test::befehlsAusgabe("mdb-schema -T tblBlockInfo '" + datei.string() + "' postgres 2>&1");
    EXPECT_NE(schema.find("(\"ordnerid\" DESC)"), std::string::npos) << schema;
    std::error_code ec;
    fs::remove_all(verzeichnis, ec);
}

}  // namespace
}  // namespace tessara
