// The SQL layer over real files made by Access, read through the engine;
// mdb-export, an independent reader, gives the expected rows.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>

#include "catalogue_fixture.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"

namespace {

namespace fs = std::filesystem;

// A private copy, so nothing a test does can touch the shared files.
class RealFile : public ::testing::Test {
  protected:
    fs::path copy(const std::string& name) {
        dir = fs::temp_directory_path() /
              ("tessara_sql_" + std::to_string(::getpid()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
        fs::copy_file(fs::path(TESSARA_TESTDATA) / "mdb" / name, dir / name,
                      fs::copy_options::overwrite_existing);
        return dir / name;
    }
    void TearDown() override {
        std::error_code ec;
        if (!dir.empty()) fs::remove_all(dir, ec);
    }
    fs::path dir;
};

// Lines of mdb-export without its header, split at commas outside quotes.
std::vector<std::vector<std::string>> exported(const fs::path& file, const std::string& table) {
    std::istringstream in(fixture::runCommand("mdb-export -D '%m/%d/%y %H:%M:%S' '" +
                                              file.string() + "' '" + table + "'"));
    std::string line;
    std::getline(in, line);
    std::vector<std::vector<std::string>> rows;
    while (std::getline(in, line)) {
        std::vector<std::string> fields(1);
        bool quoted = false;
        for (char c : line) {
            if (c == '"')
                quoted = !quoted;
            else if (c == ',' && !quoted)
                fields.emplace_back();
            else
                fields.back() += c;
        }
        rows.push_back(fields);
    }
    return rows;
}

TEST_F(RealFile, SelectStarReadsWhatMdbExportReads) {
    auto path = copy("testV2000.mdb");
    sql::Executor ex(sql::openEngineStorage(path.string(), false));
    auto rs = ex.query("SELECT * FROM Table1");
    auto expected = exported(path, "Table1");
    ASSERT_EQ(rs.rows.size(), expected.size());
    ASSERT_EQ(rs.columns.size(), 9u);
    EXPECT_EQ(rs.columns[0].name, "A");
    EXPECT_EQ(rs.columns[0].size, 50);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(rs.rows[i][0].toString(), expected[i][0]);
        EXPECT_EQ(rs.rows[i][1].toString(), expected[i][1]);
        EXPECT_EQ(rs.rows[i][3].asInt(), std::stol(expected[i][3]));
        EXPECT_DOUBLE_EQ(rs.rows[i][5].asDouble(), std::stod(expected[i][5]));
    }
}

TEST_F(RealFile, WhereLikeAndOrderByOverAnAccessFile) {
    auto path = copy("indexTestV2000.mdb");
    sql::Executor ex(sql::openEngineStorage(path.string(), false));
    auto expected = exported(path, "Table1");
    std::vector<std::string> ids;
    for (const auto& r : expected)
        if (r[3].find("baz1") == 0) ids.push_back(r[0]);
    auto rs = ex.query("SELECT id, data FROM Table1 WHERE data LIKE 'BAZ1%' ORDER BY data DESC");
    ASSERT_EQ(rs.rows.size(), ids.size());
    for (std::size_t i = 1; i < rs.rows.size(); ++i)
        EXPECT_GE(rs.rows[i - 1][1].toString(), rs.rows[i][1].toString());
    auto one = ex.query("SELECT * FROM Table1 WHERE id = 2");
    ASSERT_EQ(one.rows.size(), 1u);
    EXPECT_EQ(one.rows[0][3].toString(), "baz11-2");
    EXPECT_EQ(ex.query("SELECT * FROM Table1 WHERE id = 2.5").rows.size(), 0u);
}

TEST_F(RealFile, MissingTableAndFile) {
    auto path = copy("testV2000.mdb");
    sql::Executor ex(sql::openEngineStorage(path.string(), false));
    EXPECT_THROW(ex.query("SELECT * FROM tblBlockInfo"), sql::Error);
    EXPECT_THROW(sql::openEngineStorage((dir / "fehlt.mdb").string(), false), jet::Error);
    // IN '<file>' opens another real file.
    auto other = copy("indexTestV2000.mdb");
    auto rs =
        ex.query("SELECT id FROM Table1 IN '" + other.string() + "' WHERE id < 2 ORDER BY id");
    ASSERT_EQ(rs.rows.size(), 2u);
    EXPECT_EQ(rs.rows[1][0].asInt(), 1);
}

}  // namespace
