// tessara-cli sql PATH STATEMENT over a copy of a file made by Access: what it
// prints and its exit status. What statements answer is in tests/sql/*/*.test.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "befehl.h"
#include "frisches_verzeichnis.h"

namespace {

namespace fs = std::filesystem;

struct Output {
    std::string text;
    int status = -1;
};

Output run(const std::string& cmd) {
    Output o;
    o.text = tessara::test::befehlsAusgabe(cmd, &o.status);
    return o;
}

class SqlCommand : public ::testing::Test {
  protected:
    void SetUp() override {
        dir = tessara::test::frischesVerzeichnis("sqlcli");
        file = dir / "test.mdb";
        fs::copy_file(fs::path(TESSARA_TESTDATA) / "mdb" / "testV2000.mdb", file);
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
    std::string cli(const std::string& statement) {
        return std::string("'") + TESSARA_CLI + "' sql '" + file.string() + "' \"" + statement +
               "\"";
    }
    fs::path dir, file;
};

TEST_F(SqlCommand, SelectPrintsWhatMdbExportPrints) {
    Output ours = run(cli("SELECT * FROM Table1"));
    Output peer = run("mdb-export -D '%m/%d/%y %H:%M:%S' '" + file.string() + "' Table1");
    EXPECT_EQ(ours.status, 0);
    EXPECT_FALSE(peer.text.empty());
    EXPECT_EQ(ours.text, peer.text);
}

TEST_F(SqlCommand, AStatementThatCannotWriteLeavesTheFileAsItWas) {
    std::string before = tessara::test::dateiInhalt(file);
    // The first row takes the change; the second would duplicate the
    // primary key of the first, so the statement fails half way and the
    // first row's change must go too.
    Output o = run(cli("UPDATE Table1 SET C = 7, A = 'abcdefg'") + " 2>&1");
    EXPECT_NE(o.status, 0);
    EXPECT_NE(o.text.find("duplicate"), std::string::npos) << o.text;
    EXPECT_EQ(tessara::test::dateiInhalt(file), before);
}

// A script from standard input or a file: statements between lines of ";"
// run in order; the first failure stops the run, names its line and prints
// Jet's message. A
// statement too long for one argument (an OR chain of 20 000 terms) runs.
TEST_F(SqlCommand, StatementsFromStandardInputOrAFile) {
    const std::string tool = std::string("'") + TESSARA_CLI + "' sql '" + file.string() + "' ";
    Output o =
        run("printf 'SELECT COUNT(*) FROM Table1\n;\n\nSELECT Fehlt\nFROM Table1\n;\n"
            "SELECT \\047danach\\047 FROM Table1\n' | " +
            tool + "- 2>&1");
    EXPECT_EQ(o.status, 1);
    EXPECT_NE(o.text.find("line 4: No value given for one or more required parameters.\n"),
              std::string::npos)
        << o.text;
    EXPECT_NE(o.text.find("Expr1000\n"), std::string::npos) << o.text;
    EXPECT_EQ(o.text.find("danach"), std::string::npos) << "ran past the failure";
    std::string kette = "SELECT COUNT(*) FROM Table1 WHERE A = 'x'";
    for (int i = 0; i < 20000; ++i) kette += " OR A = '" + std::to_string(i) + "'";
    std::ofstream(dir / "kette.sql") << kette << "\n";
    o = run(tool + "--file '" + (dir / "kette.sql").string() + "'");
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.text, "Expr1000\n0\n");
}

}  // namespace
