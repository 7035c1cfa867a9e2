// A library pushed to a private PostgreSQL server answers tessara-cli as its
// .mdb did, comes back by pull as a clean file with the same rows, and bad
// connection data gives one clear line.
#include "db/server_catalogue.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>

#include "befehl.h"
#include "captions/meldungs_nummern.h"
#include "db/jet_opener.h"
#include "frisches_verzeichnis.h"
#include "jet/sql/executor.h"
#include "library/bibliothek_sitzung.h"
#include "pg_server.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "tabelle.h"

namespace fs = std::filesystem;
using tessara::test::befehlsAusgabe;

namespace {

class ServerCatalogue : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(server.error(), "") << "the private PostgreSQL server did not start";
        dir = tessara::test::frischesVerzeichnis("server");
        ASSERT_EQ(server.createDatabase("kat"), "");
        befehlsAusgabe(cli + " make-demo-library " + (dir / "mdb").string(), &code);
        ASSERT_EQ(code, 0);
        // The Folder codes come from the code table beside the program.
        befehlsAusgabe(cli + " make-program-data " + fs::path(cli).parent_path().string(), &code);
        ASSERT_EQ(code, 0);
        fs::copy(dir / "mdb", dir / "pg", fs::copy_options::recursive);
        std::ofstream(dir / "pg" / "dbTessara.ini", std::ios::binary) << server.iniSection("kat");
    }
    std::string run(const std::string& args) {
        return befehlsAusgabe(cli + " " + args + " 2>&1", &code);
    }
    std::string mdb(const char* lib) { return (dir / lib / "dbTessara.mdb").string(); }

    tessara::test::PgServer server;
    fs::path dir;
    const std::string cli = TESSARA_CLI;
    int code = 0;
};

TEST_F(ServerCatalogue, PushedLibraryAnswersAsItsMdbAndPullGivesItBack) {
    const std::string pushed = run("server push " + (dir / "pg").string());
    ASSERT_EQ(code, 0) << pushed;
    EXPECT_NE(pushed.find("tblBlockInfo: 194 rows"), std::string::npos) << pushed;
    for (const std::string q :
         {"folder list @", "page list @ Verbindungselemente", "search @ M0=ventil",
          "search @ --views name=*DN5*",
          "sql @ \"SELECT o.OrdnerNr, Count(*) AS n FROM tblBlockInfo b INNER JOIN tblOrdner o "
          "ON b.OrdnerID = o.Nr WHERE b.M0 LIKE '[a-r]*' GROUP BY o.OrdnerNr ORDER BY o.OrdnerNr\"",
          "sql @ \"SELECT * FROM tblSeiten WHERE NrTblOrdner IN (SELECT Nr FROM tblOrdner WHERE "
          "OrdnerRechte IS NOT NULL) ORDER BY SeitenName DESC\"",
          "folder add @ Neu", "folder list @"}) {
        const auto at = q.find('@');
        const std::string onMdb = run(q.substr(0, at) + mdb("mdb") + q.substr(at + 1));
        EXPECT_EQ(code, 0) << q << ": " << onMdb;
        const std::string onServer = run(q.substr(0, at) + mdb("pg") + q.substr(at + 1));
        EXPECT_EQ(code, 0) << q << ": " << onServer;
        EXPECT_EQ(onServer, onMdb) << q;
        EXPECT_FALSE(onMdb.empty()) << q;
    }
    const std::string back = (dir / "back.mdb").string();
    const std::string pulled = run("server pull " + (dir / "pg").string() + " " + back);
    ASSERT_EQ(code, 0) << pulled;
    EXPECT_NE(pulled.find("tblOrdner: 6 rows"), std::string::npos) << pulled;
    EXPECT_EQ(run("check " + back), "no faults found\n");
    EXPECT_EQ(run("schema " + back), run("schema " + mdb("mdb")));
    for (const char* t : {"tblBlockInfo", "tblOrdner", "tblSeiten", "tblDefMenue"})
        EXPECT_EQ(run("export " + back + " " + t), run("export " + mdb("mdb") + " " + t)) << t;
    run("server push " + (dir / "pg").string());
    EXPECT_NE(code, 0) << "a second push onto a filled database";
}

// A workstation keeps what it learnt of the tables between statements, yet
// a column another one added is there for its very next statement.
TEST_F(ServerCatalogue, AColumnAddedElsewhereIsSeenByTheNextStatement) {
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    const db::ServerCatalogue at{"127.0.0.1", std::to_string(server.port()), "kat",
                                 tessara::test::PgServer::kUser};
    sql::Executor hier(db::openServerCatalogue(at, true)), dort(db::openServerCatalogue(at, true));
    const auto vorher = hier.query("SELECT * FROM tblOrdner").columns.size();
    dort.execute("ALTER TABLE tblOrdner ADD COLUMN Farbe TEXT (10)");
    EXPECT_EQ(hier.query("SELECT * FROM tblOrdner").columns.size(), vorher + 1);
    EXPECT_EQ(hier.query("SELECT Farbe FROM tblOrdner").rows.size(), 5u);
}

// Workstations making Folders at once: the server's unique key on the code
// turns a lost race into another look for a free code, never a failure or a
// code given twice.
TEST_F(ServerCatalogue, FoldersMadeAtOnceEachGetACodeOfTheirOwn) {
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    // The first Folder gives the demo library its sort column.
    ASSERT_EQ((run("folder add " + mdb("pg") + " P0"), code), 0);
    const std::string skript = "for i in 1 2 3 4 5 6; do (for j in 1 2 3 4 5; do " + cli +
                               " folder add " + mdb("pg") +
                               " P$i-$j >/dev/null 2>&1 || echo fehlgeschlagen; done) & done; wait";
    EXPECT_EQ(befehlsAusgabe("bash -c '" + skript + "'"), "");
    std::istringstream liste(run("folder list " + mdb("pg")));
    std::set<std::string> codes;
    std::size_t zeilen = 0;
    for (std::string zeile; std::getline(liste, zeile); ++zeilen)
        codes.insert(zeile.substr(0, zeile.find('\t')));
    EXPECT_EQ(zeilen, 36u);
    EXPECT_EQ(codes.size(), 36u);
}

// Workstations adding the same Page numbers to one Folder at once: one that
// loses the race looks again and (answered Yes) overwrites, never fails and
// never leaves a number twice.
TEST_F(ServerCatalogue, PagesMadeAtOnceInOneFolderAreThereOnce) {
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    const std::string skript = "for i in 1 2 3 4 5 6; do (for j in 11 12 13 14 15; do " + cli +
                               " page add " + mdb("pg") +
                               " Elektrotechnik $j S$i-$j 2>&1 || echo fehlgeschlagen; done) & "
                               "done; wait";
    EXPECT_EQ(befehlsAusgabe("bash -c '" + skript + "'"), "");
    EXPECT_EQ(server.psql("kat", "SELECT count(*) FROM \"tblSeiten\" WHERE \"SeitenNr\" > 10"),
              "5\n");
}

// Twenty workstations at once, each making a Folder, reading drawings into
// it as Blocks (with the Pages they need: 100 each, TESSARA_SERVER_BLOECKE
// sets another number) and deleting a tenth of them;
// then the same with the server stopped half way and started again. Every
// Block a workstation reports is there exactly once, and nothing else but
// the one whose write was cut off when the process says it cannot know; one
// cut off ends with a line that says so.
TEST_F(ServerCatalogue, TwentyWorkstationsAtOnceLoseNothingEvenWhenTheServerStops) {
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    ASSERT_EQ((run("folder add " + mdb("pg") + " P0"), code), 0);
    const char* anzahl = std::getenv("TESSARA_SERVER_BLOECKE");
    const long bloecke = anzahl && std::atol(anzahl) >= 10 ? std::atol(anzahl) / 10 * 10 : 100;
    fs::create_directories(dir / "dwg");
    for (int i = 0; i < bloecke; ++i)
        std::ofstream(dir / "dwg" / ("D" + std::to_string(1000 + i) + ".dwg")) << i;
    const std::string d = dir.string(), lib = mdb("pg");
    std::ofstream(dir / "lauf.sh")
        << "for i in $(seq 0 19); do (N=$1$i; " << cli << " import-dir " << lib << " " << d
        << "/dwg $N >" << d << "/$N.out 2>" << d << "/$N.err && [ \"$2\" = weg ] && " << cli
        << " sql " << lib << " \"DELETE FROM tblBlockInfo WHERE M0 LIKE 'D%9' AND OrdnerID IN "
        << "(SELECT Nr FROM tblOrdner WHERE Ordnername = '$N')\" >/dev/null) & done; wait\n";
    const auto gemeldet = [&](const std::string& n) {
        long made = -1;
        std::ifstream(dir / (n + ".out")) >> made;
        return made;
    };
    const auto bestand = [&](const std::string& n) {
        return server.psql("kat",
                           "SELECT count(*) FROM \"tblBlockInfo\" b JOIN \"tblOrdner\" o ON "
                           "b.\"OrdnerID\" = o.\"Nr\" WHERE o.\"Ordnername\" = '" +
                               n + "'");
    };
    befehlsAusgabe("bash " + d + "/lauf.sh A weg");
    for (int i = 0; i < 20; ++i) {
        const std::string n = "A" + std::to_string(i);
        EXPECT_EQ(gemeldet(n), bloecke) << n;
        EXPECT_EQ(bestand(n), std::to_string(bloecke - bloecke / 10) + "\n") << n;
    }

    befehlsAusgabe("bash " + d + "/lauf.sh S >/dev/null 2>&1 & sleep 1");
    ASSERT_EQ(server.stopFast(), "");
    // "[i]" keeps the waiting shell's own command line from matching.
    befehlsAusgabe("for t in $(seq 600); do pgrep -f '[i]mport-dir " + lib +
                   "' >/dev/null || break; sleep 0.2; done");
    ASSERT_EQ(server.start(), "");
    int abgeschnitten = 0;
    for (int i = 0; i < 20; ++i) {
        const std::string n = "S" + std::to_string(i);
        const long made = std::max(gemeldet(n), 0L);
        std::string zeile, letzte;
        for (std::ifstream err(dir / (n + ".err")); std::getline(err, zeile);) letzte = zeile;
        // A Block whose write the line cut off may be there or not: the
        // process cannot know, and says so.
        const bool offen = letzte.find("whether it was written is not known") != letzte.npos;
        const std::string ist = bestand(n);
        EXPECT_TRUE(ist == std::to_string(made) + "\n" ||
                    (offen && ist == std::to_string(made + 1) + "\n"))
            << n << ": " << made << " reported, " << ist << letzte;
        if (made == bloecke) continue;
        ++abgeschnitten;
        EXPECT_EQ(letzte.rfind("tessara-cli import-dir: ", 0), 0u) << n << ": " << letzte;
    }
    EXPECT_GT(abgeschnitten, 0) << "the server stopped after every workstation was done";
}

// A push killed at points along its way leaves the server's database empty
// or complete, never half filled, and the push run again completes it.
TEST_F(ServerCatalogue, KilledPushLeavesNothingAndARerunCompletesIt) {
    const std::string lib = (dir / "pg").string();
    for (const std::string nach : {"0.1", "0.2", "0.3", "0.5"}) {
        const std::string db = "k" + nach.substr(2);
        ASSERT_EQ(server.createDatabase(db), "");
        std::ofstream(dir / "pg" / "dbTessara.ini", std::ios::binary) << server.iniSection(db);
        befehlsAusgabe("timeout -s KILL " + nach + " " + cli + " server push " + lib +
                       " >/dev/null");
        const std::string tables =
            server.psql(db, "SELECT count(*) FROM pg_tables WHERE schemaname = 'public'");
        EXPECT_TRUE(tables == "0\n" || tables == "7\n") << nach << ": " << tables;
        if (tables == "0\n") {
            EXPECT_EQ((run("server push " + lib), code), 0) << nach;
        }
        EXPECT_EQ(server.psql(db, "SELECT count(*) FROM \"tblBlockInfo\""), "194\n") << nach;
    }
}

// A Folder whose rights name Anna: the server hides its row, Pages, Blocks
// and Variants from Bernd, through psql and through the program alike, and
// refuses his writes into it; the owner and Anna see what the file holds.
TEST_F(ServerCatalogue, FolderRightsAreKeptByTheServerItself) {
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    for (const auto& f : tessara::test::tabelle("server/ordner_rechte.txt")) {
        std::string said;
        if (f[0].rfind("cli:", 0) == 0) {
            std::ofstream(dir / "pg" / "dbTessara.ini", std::ios::binary)
                << server.iniSection("kat", f[0].substr(4));
            said =
                run(f[1].substr(0, f[1].find('@')) + mdb("pg") + f[1].substr(f[1].find('@') + 1));
        } else {
            said = server.psql("kat", f[1], nullptr, f[0]);
        }
        EXPECT_EQ(said.substr(0, f[2].size()), f[2]) << f[0] << ": " << f[1] << "\n" << said;
    }
}

// Bad connection data, and the server down: the window's library session
// answers with the message that says what is wrong, tessara-cli with one
// line that names it, and the other libraries open as before.
TEST_F(ServerCatalogue, BadConnectionDataGivesOneClearMessage) {
    ASSERT_EQ(server.createDatabase("leer"), "");
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    tessara::ProgrammZustand z;
    tessara::SkriptBenutzer benutzer;
    z.benutzer = &benutzer;
    z.strErrorDatei = platform::programPath((dir / "fehler.txt").string());
    tessara::BibliothekSitzung sitzung(z, db::jetOpener(platform::nativePath));
    const std::string port = std::to_string(server.port()), pw = tessara::test::PgServer::kPassword;
    struct Case {
        std::string port, database, password;
        long meldung;
    } cases[] = {
        {"1", "kat", pw, tessara::kMsgServerAntwortetNicht},
        {port, "kat", "falsch", tessara::kMsgServerAnmeldung},
        {port, "fehlt", pw, tessara::kMsgServerOhneDatenbank},
        {port, "leer", pw, tessara::kMsgServerOhneKatalog},
        {port, "kat", pw, tessara::kMsgServerAntwortetNicht},  // after the server stopped
    };
    for (const auto& c : cases) {
        if (&c == &cases[4]) {
            ASSERT_EQ(server.stopFast(), "");
        }
        std::ofstream(dir / "pg" / "dbTessara.ini", std::ios::binary)
            << "[Server]\r\nhost=127.0.0.1\r\nport=" << c.port << "\r\ndatabase=" << c.database
            << "\r\nuser=tessara\r\n";
        ::setenv("PGPASSWORD", c.password.c_str(), 1);
        const auto r = sitzung.fctOeffnen(platform::programPath(mdb("pg")));
        EXPECT_EQ(r.lngGrund, c.meldung) << c.database << " " << c.password;
        const std::string said = run("folder list " + mdb("pg"));
        EXPECT_NE(code, 0);
        EXPECT_NE(said.find(" (The "), std::string::npos) << said;
        EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
        EXPECT_TRUE(sitzung.fctOeffnen(platform::programPath(mdb("mdb"))).ok());
        EXPECT_EQ(sitzung.modell().aryOrdner().size(), 5u);
    }
}

}  // namespace
