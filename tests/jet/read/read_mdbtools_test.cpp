// Every table of every test file, the system tables too, reads as mdb-export
// (an independent reader) prints it.
#include <gtest/gtest.h>

#include <algorithm>

#include "jet/read/database.h"
#include "jet/support/mdbtools.h"

namespace {

class EveryTable : public ::testing::TestWithParam<std::string> {};

TEST_P(EveryTable, ReadsAsMdbExportPrints) {
    ASSERT_TRUE(jettest::haveMdbTools()) << "mdbtools is installed by scripts/setup-deps";
    const std::string path = jettest::testFile(GetParam());
    std::vector<std::string> ours = jet::Database::open(path)->tableNames(true);
    std::vector<std::string> theirs =
        jettest::lines(jettest::run("mdb-tables -1 -S " + jettest::quote(path)));
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    EXPECT_EQ(ours, theirs);
    for (const std::string& table : ours) jettest::expectExportMatches(path, table);
}

INSTANTIATE_TEST_SUITE_P(TestData, EveryTable, ::testing::ValuesIn(jettest::testFiles()),
                         [](const auto& param) {
                             return param.param.substr(0, param.param.find('.'));
                         });

}  // namespace
