// A library pushed to a private PostgreSQL server answers tessara-cli as its
// .mdb did, comes back by pull as a clean file with the same rows, and bad
// connection data gives one clear line.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "befehl.h"
#include "frisches_verzeichnis.h"
#include "pg_server.h"

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

// Workstations making Folders at once: the server's unique key on the code
// turns a lost race into another look for a free code, never a failure or a
// code given twice.
TEST_F(ServerCatalogue, FoldersMadeAtOnceEachGetACodeOfTheirOwn) {
    ASSERT_EQ((run("server push " + (dir / "pg").string()), code), 0);
    const std::string skript = "for i in 1 2 3 4 5 6; do (for j in 1 2 3 4 5; do " + cli +
                               " folder add " + mdb("pg") +
                               " P$i-$j >/dev/null 2>&1 || echo fehlgeschlagen; done) & done; wait";
    EXPECT_EQ(befehlsAusgabe("bash -c '" + skript + "'"), "");
    std::istringstream liste(run("folder list " + mdb("pg")));
    std::set<std::string> codes;
    std::size_t zeilen = 0;
    for (std::string zeile; std::getline(liste, zeile); ++zeilen)
        codes.insert(zeile.substr(0, zeile.find('\t')));
    EXPECT_EQ(zeilen, 35u);
    EXPECT_EQ(codes.size(), 35u);
}

TEST_F(ServerCatalogue, BadConnectionDataGivesOneClearLine) {
    const std::string ini = (dir / "pg" / "dbTessara.ini").string();
    const std::string good = server.iniSection("kat");
    const std::string port = std::to_string(server.port());
    struct Case {
        std::string ini, password, says;
    } cases[] = {
        {good.substr(0, good.find(port)) + "1" + good.substr(good.find(port) + port.size()),
         tessara::test::PgServer::kPassword, "cannot be reached: Connection refused"},
        {good, "falsch", "cannot be reached: FATAL:  password authentication failed"},
        {good, tessara::test::PgServer::kPassword, "holds no Tessara catalogue"},
    };
    for (const auto& c : cases) {
        std::ofstream(ini, std::ios::binary) << c.ini;
        ::setenv("PGPASSWORD", c.password.c_str(), 1);
        const std::string said = run("folder list " + mdb("pg"));
        EXPECT_NE(code, 0);
        EXPECT_NE(said.find(c.says), std::string::npos) << said;
        EXPECT_EQ(said.find('\n'), said.size() - 1) << said;
    }
}

}  // namespace
