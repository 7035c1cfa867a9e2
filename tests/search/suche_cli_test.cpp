// tessara-cli search over the demo library: --print-sql prints the golden
// statements, and bad input ends in one line and a non-zero exit. Which rows
// a search finds is checked against mdb-export in suche_mdb_test.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "anweisungen_golden.h"
#include "jet/support/mdbtools.h"
#include "tabelle.h"

namespace tessara::test {
namespace {

namespace fs = std::filesystem;

class SucheCli : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        verzeichnis =
            fs::temp_directory_path() / ("tessara_suche_cli_" + std::to_string(::getpid()));
        fs::remove_all(verzeichnis);
        int status = -1;
        jettest::run(
            cli() + " make-demo-library " + jettest::quote(verzeichnis.string()) + " >/dev/null",
            &status);
        ASSERT_EQ(status, 0);
    }
    static void TearDownTestSuite() {
        std::error_code ec;
        fs::remove_all(verzeichnis, ec);
    }
    static std::string cli() { return jettest::quote(TESSARA_CLI); }
    static std::string mdb() { return (verzeichnis / "dbTessara.mdb").string(); }

    // Standard output (or with fehler, standard error alone) and exit status.
    static std::string lauf(const std::string& befehl, const std::vector<std::string>& args,
                            int& status, bool fehler = false) {
        std::string zeile = cli() + " " + befehl;
        for (const auto& a : args) zeile += " " + jettest::quote(a);
        return jettest::run(zeile + (fehler ? " 2>&1 >/dev/null" : " 2>/dev/null"), &status);
    }

    static fs::path verzeichnis;
};

fs::path SucheCli::verzeichnis;

TEST_F(SucheCli, PrintSqlGivesTheGoldenStatements) {
    int verglichen = 0;
    for (const auto& f : fctAnweisungsFaelle()) {
        // The demo library is a tblBlockInfo library; a quote is refused.
        bool hochkomma = false;
        for (const auto& t : f.k.txtBenennung) hochkomma = hochkomma || t.find('\'') != t.npos;
        if (f.tabelle != "tblBlockInfo" || hochkomma) continue;
        std::vector<std::string> args{mdb(), "--print-sql"};
        if (f.k.checkAktuellerOrdner)
            args.insert(args.end(), {"--folder", std::to_string(f.ordnerNr)});
        if (f.k.checkGanzeWoerter) args.push_back("--whole");
        if (f.k.chkAnsichtenVarianten) args.push_back("--views");
        for (int i = 0; i < kSuchFelder; ++i)
            if (!f.k.txtBenennung[i].empty())
                args.push_back(
                    (i == kFeldBlockname ? std::string("name") : "M" + std::to_string(i)) + "=" +
                    f.k.txtBenennung[i]);
        int status = -1;
        EXPECT_EQ(lauf("search", args, status), f.erwartet + "\n") << f.name;
        EXPECT_EQ(status, 0) << f.name;
        ++verglichen;
    }
    EXPECT_GE(verglichen, 6);
}

TEST_F(SucheCli, BadInputEndsInOneLineAndANonZeroExit) {
    const fs::path kaputt = verzeichnis / "kaputt.mdb";
    {
        std::ofstream f(kaputt, std::ios::binary);
        for (int i = 0; i < 8192; ++i) f.put(static_cast<char>(i * 37));
    }
    for (const auto& f : tabelle("search/golden/falsche_eingaben.txt")) {
        std::vector<std::string> args(f.begin() + 2, f.end());
        for (auto& a : args)
            a = a == "MDB"      ? mdb()
                : a == "FEHLT"  ? (verzeichnis / "fehlt.mdb").string()
                : a == "KAPUTT" ? kaputt.string()
                                : a;
        std::string aufruf;
        for (const auto& a : args) aufruf += " " + a;
        int status = -1;
        const std::string fehler = lauf("search", args, status, true);
        EXPECT_EQ(status, std::stoi(f.at(0))) << aufruf;
        EXPECT_EQ(std::count(fehler.begin(), fehler.end(), '\n'), 1) << aufruf << ": " << fehler;
        EXPECT_NE(fehler.find(f.at(1)), std::string::npos) << aufruf << ": " << fehler;
    }
}

}  // namespace
}  // namespace tessara::test
