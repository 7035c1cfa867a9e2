// tessara-cli create-db: argument handling that must never touch an existing file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "frisches_verzeichnis.h"
#include "jet/support/mdbtools.h"
#include "jet/support/tx_support.h"

namespace {

using jettest::lines;

TEST(CreateDbCommand, RefusesExistingFilesAndBadArguments) {
    namespace fs = std::filesystem;
    txtest::TempDir dir;
    fs::path existing = dir.path() / "there.mdb";
    { std::ofstream(existing) << "keep me"; }
    struct Case {
        std::string args;
        std::string message;
    };
    for (const Case& c :
         std::vector<Case>{{"--empty " + jettest::quote(existing.string()), "exists already"},
                           {jettest::quote(existing.string()), "exists already"},
                           {"", "usage: tessara-cli create-db"},
                           {"--bogus x.mdb", "usage: tessara-cli create-db"}}) {
        SCOPED_TRACE(c.args);
        int status = 0;
        std::string out =
            jettest::run(jettest::quote(TESSARA_CLI) + " create-db " + c.args + " 2>&1", &status);
        EXPECT_NE(status, 0);
        EXPECT_NE(out.find(c.message), std::string::npos) << out;
        EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
    }
    EXPECT_EQ(tessara::test::dateiInhalt(existing), "keep me");
}

// A new file holds Jet's own system tables and catalogue rows, reads back in
// mdbtools, passes the structure check, and takes tables, rows and
// relations afterwards (the catalogue schema is the heaviest such use).
TEST(CreateDbCommand, NewDatabasesReadBackEverywhere) {
    txtest::TempDir dir;
    const std::string empty = jettest::quote((dir.path() / "leer.mdb").string());
    const std::string catalogue = jettest::quote((dir.path() / "dbTessara.mdb").string());
    int status = 1;
    auto cli = [&](const std::string& args) {
        return jettest::run(jettest::quote(TESSARA_CLI) + " " + args + " 2>&1", &status);
    };
    auto ok = [&](const std::string& args, const std::string& out) {
        EXPECT_EQ(cli(args), out) << args;
        EXPECT_EQ(status, 0) << args;
    };
    ok("create-db --empty " + empty, "");
    EXPECT_EQ(std::filesystem::file_size(dir.path() / "leer.mdb") % 4096, 0u);
    EXPECT_EQ(
        lines(jettest::run("mdb-tables -S -1 " + empty)),
        (std::vector<std::string>{"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"}));
    EXPECT_EQ(jettest::run("mdb-tables -1 " + empty), "");
    // Binary columns as hex: MSysDb's properties hold line breaks.
    const auto objects = lines(jettest::run("mdb-export -b hex " + empty + " MSysObjects"));
    ASSERT_EQ(objects.size(), 9u);
    EXPECT_EQ(objects[1].rfind("251658241,251658240,\"Tables\",3,", 0), 0u) << objects[1];
    EXPECT_EQ(objects[5].rfind("2,251658241,\"MSysObjects\",1,", 0), 0u) << objects[5];
    ok("check " + empty, "no faults found\n");

    ok("create-db " + catalogue, "");
    EXPECT_EQ(lines(jettest::run("mdb-tables -1 " + catalogue)),
              (std::vector<std::string>{"tblBlockInfo", "tblDefMenue", "tblOrdner", "tblSeiten",
                                        "tblMarkierteBloecke", "tblVariationBloecke"}));
    ok("check " + catalogue, "no faults found\n");
    // sql writes through the same engine and reports Jet's errors.
    ok("sql " + catalogue +
           " \"INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('042', 'Armaturen')\"",
       "1\n");
    ok("sql " + catalogue + " \"SELECT Ordnername FROM tblOrdner WHERE OrdnerNr = '042'\"",
       "Ordnername\n\"Armaturen\"\n");
    const std::string out = cli("sql " + catalogue + " \"SELECT Nope FROM tblOrdner\"");
    EXPECT_NE(status, 0);
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
    ok("check " + catalogue, "no faults found\n");
}

}  // namespace
