// tessara-cli's tables, schema, export and check against mdbtools.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include "frisches_verzeichnis.h"
#include "jet/read/database.h"
#include "jet/read/usage_map.h"
#include "jet/support/mdbtools.h"
#include "tabelle.h"

namespace {

using jettest::lines;

using jettest::quote;
using jettest::run;

std::string cli(const std::string& args, int* status) {
    return run(quote(TESSARA_CLI) + " " + args + " 2>&1", status);
}

// A copy of a test file cut off where page `from` begins; its path.
std::string cutCopy(const std::string& name, std::uint32_t from) {
    std::string bytes = tessara::test::dateiInhalt(jettest::testFile(name));
    bytes.resize(std::size_t(from) * jet::kPageSize);
    const std::string path = ::testing::TempDir() + "cut-" + std::to_string(from) + "-" + name;
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

// The first data page of a table of the file.
std::uint32_t firstDataPage(const std::string& name, const std::string& table) {
    auto db = jet::Database::open(jettest::testFile(name));
    return jet::readUsageMap(db->pages(), db->tableDef(table)->usedPages).pages.at(0);
}

class CliFile : public ::testing::TestWithParam<std::string> {};

// tables lists what mdb-tables lists; export has mdb-export's shape (header,
// quoting, NULLs, number and date forms); check finds no faults.
TEST_P(CliFile, TablesExportAndCheckAgreeWithMdbtools) {
    std::string path = quote(jettest::testFile(GetParam()));
    // Each row as its cells, quoted ones in quotes: the header, then the rows sorted.
    const auto rows = [](const std::string& csv) {
        std::vector<std::string> out;
        for (const auto& row : jettest::parseCsv(csv)) {
            out.emplace_back();
            for (const auto& c : row) out.back() += (c.quoted ? '"' + c.text + '"' : c.text) + "|";
        }
        if (!out.empty()) std::sort(out.begin() + 1, out.end());
        return out;
    };
    int status = -1;
    const auto tables = lines(run("mdb-tables -1 " + path));
    EXPECT_EQ(lines(cli("tables " + path, &status)), tables);
    EXPECT_EQ(status, 0);
    for (const std::string& table : tables) {
        SCOPED_TRACE(table);
        const auto ours = rows(cli("export " + path + " " + quote(table), &status));
        EXPECT_EQ(status, 0);
        ASSERT_FALSE(ours.empty());
        EXPECT_EQ(ours, rows(run("mdb-export " + path + " " + quote(table))));
    }
    EXPECT_EQ(cli("check " + path, &status), "no faults found\n");
    EXPECT_EQ(status, 0);
}

INSTANTIATE_TEST_SUITE_P(
    TestData, CliFile, ::testing::ValuesIn(jettest::testFiles()), [](const auto& param) {
        return std::string(param.param).substr(0, std::string(param.param).find('.'));
    });

TEST(JetCli, SchemaShowsColumnsIndexesAndRelationships) {
    for (const auto& f : tessara::test::tabelle("jet/read/golden/schema_zeilen.txt")) {
        int status = -1;
        const auto l = lines(cli("schema " + quote(jettest::testFile(f.at(0))), &status));
        EXPECT_EQ(status, 0);
        EXPECT_NE(std::find(l.begin(), l.end(), f.at(1)), l.end()) << f[0] << ": " << f[1];
    }
}

TEST(JetCli, FailuresAreOneLineAndNonZero) {
    struct Case {
        std::string args;
        std::string contains;
    };
    std::vector<Case> cases = {
        {"export /nonexistent/x.mdb T", "cannot open /nonexistent/x.mdb"},
        {"export " + quote(jettest::testFile("testV2000.mdb")) + " NoSuchTable",
         "no such table: NoSuchTable"},
        {"tables " + quote(std::string(TESSARA_SOURCE_DIR) + "/CMakeLists.txt"),
         "not a Jet database"},
        {"export", "usage: tessara-cli export PATH TABLE"},
    };
    // A catalogue cut short: every command says so, none shows it empty.
    const std::uint32_t catalogue = firstDataPage("indexTestV2000.mdb", "MSysObjects");
    const std::string cut = quote(cutCopy("indexTestV2000.mdb", catalogue));
    const std::string lost = "corrupt page " + std::to_string(catalogue) +
                             ": the usage map of table MSysObjects names it as a data page, but "
                             "it lies beyond the end of the file";
    for (const std::string command : {"tables ", "check ", "schema "})
        cases.push_back({command + cut, lost});
    cases.push_back({"export " + cut + " Table1", lost});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args);
        int status = 0;
        std::string out = cli(c.args, &status);
        EXPECT_NE(status, 0);
        EXPECT_NE(out.find(c.contains), std::string::npos) << out;
        EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
    }
}

// A table whose pages are lost, or whose index names a column it lacks, is
// reported on its own line; the readable tables are still shown, and the
// exit status says not all were.
TEST(JetCli, AnUnreadableTableIsReported) {
    const std::uint32_t page = firstDataPage("indexTestV2000.mdb", "Table1");
    std::string filled = tessara::test::dateiInhalt(jettest::testFile("indexTestV2000.mdb"));
    std::fill_n(filled.begin() + std::ptrdiff_t(page * jet::kPageSize), jet::kPageSize, '\xFF');
    const auto renumbered = jettest::withBadIndexColumn("indexTestV2000.mdb", "Table1");
    const std::string path = ::testing::TempDir() + "damaged.mdb";
    for (const auto& [command, bytes, out, err] :
         {std::array<std::string, 4>{"tables", filled, "Table2\nTable3\n",
                                     "corrupt page " + std::to_string(page) +
                                         ": the usage map of table Table1 names it as a data "
                                         "page, but it is a page of type 255"},
          {"schema", std::string(renumbered.begin(), renumbered.end()), "TABLE Table2 (3 rows)",
           "corrupt page 24: index id names column number -97, which the table does not have"}}) {
        std::ofstream(path, std::ios::binary) << bytes;
        const std::string line = quote(TESSARA_CLI) + " " + command + " " + quote(path);
        int status = 0;
        const std::string shown = run(line + " 2>/dev/null", &status);
        EXPECT_EQ(shown.substr(0, out.size()), out);
        EXPECT_EQ(shown.find("TABLE Table1"), std::string::npos) << shown;
        EXPECT_EQ(status, 1);
        EXPECT_EQ(run(line + " 2>&1 >/dev/null"),
                  "tessara-cli " + command + ": table Table1 cannot be read: " + err + "\n");
    }
}

}  // namespace
