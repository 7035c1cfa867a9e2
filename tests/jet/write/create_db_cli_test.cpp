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
    namespace fs = std::filesystem;
    txtest::TempDir dir;
    const std::string cli = jettest::quote(TESSARA_CLI);
    const fs::path empty = dir.path() / "leer.mdb";
    int status = 1;
    std::string out = jettest::run(
        cli + " create-db --empty " + jettest::quote(empty.string()) + " 2>&1", &status);
    ASSERT_EQ(status, 0) << out;
    EXPECT_EQ(fs::file_size(empty) % 4096, 0u);
    EXPECT_EQ(
        lines(jettest::run("mdb-tables -S -1 " + jettest::quote(empty.string()), &status)),
        (std::vector<std::string>{"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"}));
    EXPECT_EQ(jettest::run("mdb-tables -1 " + jettest::quote(empty.string()), &status), "");
    // Binary columns as hex: MSysDb's properties hold line breaks.
    const auto objects = lines(jettest::run(
        "mdb-export -b hex " + jettest::quote(empty.string()) + " MSysObjects", &status));
    ASSERT_EQ(objects.size(), 9u);
    EXPECT_EQ(objects[1].rfind("251658241,251658240,\"Tables\",3,", 0), 0u) << objects[1];
    EXPECT_EQ(objects[5].rfind("2,251658241,\"MSysObjects\",1,", 0), 0u) << objects[5];
    out = jettest::run(cli + " check " + jettest::quote(empty.string()) + " 2>&1", &status);
    EXPECT_EQ(status, 0) << out;

    const fs::path catalogue = dir.path() / "dbTessara.mdb";
    out = jettest::run(cli + " create-db " + jettest::quote(catalogue.string()) + " 2>&1", &status);
    ASSERT_EQ(status, 0) << out;
    EXPECT_EQ(lines(jettest::run("mdb-tables -1 " + jettest::quote(catalogue.string()), &status)),
              (std::vector<std::string>{"tblBlockInfo", "tblDefMenue", "tblOrdner", "tblSeiten",
                                        "tblMarkierteBloecke", "tblVariationBloecke"}));
    out = jettest::run(cli + " check " + jettest::quote(catalogue.string()) + " 2>&1", &status);
    EXPECT_EQ(status, 0) << out;

    // sql writes through the same engine and reports Jet's errors.
    out = jettest::run(cli + " sql " + jettest::quote(catalogue.string()) +
                           " \"INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('042', "
                           "'Armaturen')\" 2>&1",
                       &status);
    EXPECT_EQ(status, 0) << out;
    EXPECT_EQ(out, "1\n");
    out = jettest::run(cli + " sql " + jettest::quote(catalogue.string()) +
                           " \"SELECT Ordnername FROM tblOrdner WHERE OrdnerNr = '042'\" 2>&1",
                       &status);
    EXPECT_EQ(out, "Ordnername\n\"Armaturen\"\n");
    out = jettest::run(
        cli + " sql " + jettest::quote(catalogue.string()) + " \"SELECT Nope FROM tblOrdner\" 2>&1",
        &status);
    EXPECT_NE(status, 0);
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
    out = jettest::run(cli + " check " + jettest::quote(catalogue.string()) + " 2>&1", &status);
    EXPECT_EQ(status, 0) << out;
}

}  // namespace
