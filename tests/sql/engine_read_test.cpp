// The SQL layer over a real file made by Access, read through the engine;
// mdb-export, an independent reader, gives the expected rows. Statements
// over such files are in access/real_files.test.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "catalogue_fixture.h"
#include "frisches_verzeichnis.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"

namespace {

namespace fs = std::filesystem;

TEST(RealFile, SelectStarReadsWhatMdbExportReads) {
    fs::path dir = tessara::test::frischesVerzeichnis("sql_read");
    fs::path path = dir / "testV2000.mdb";
    fs::copy_file(fs::path(TESSARA_TESTDATA) / "mdb" / "testV2000.mdb", path,
                  fs::copy_options::overwrite_existing);
    sql::Executor ex(sql::openEngineStorage(path.string(), false));
    auto rs = ex.query("SELECT * FROM Table1");
    ASSERT_EQ(rs.columns.size(), 9u);
    EXPECT_EQ(rs.columns[0].name, "A");
    EXPECT_EQ(rs.columns[0].size, 50);
    // Lines of mdb-export after its header, split at commas outside quotes.
    std::istringstream in(
        fixture::runCommand("mdb-export -D '%m/%d/%y %H:%M:%S' '" + path.string() + "' Table1"));
    std::string line;
    std::getline(in, line);
    std::size_t i = 0;
    for (; std::getline(in, line); ++i) {
        std::vector<std::string> f(1);
        bool quoted = false;
        for (char c : line) {
            if (c == '"')
                quoted = !quoted;
            else if (c == ',' && !quoted)
                f.emplace_back();
            else
                f.back() += c;
        }
        ASSERT_LT(i, rs.rows.size());
        EXPECT_EQ(rs.rows[i][0].toString(), f[0]);
        EXPECT_EQ(rs.rows[i][1].toString(), f[1]);
        EXPECT_EQ(rs.rows[i][3].asInt(), std::stol(f[3]));
        EXPECT_DOUBLE_EQ(rs.rows[i][5].asDouble(), std::stod(f[5]));
    }
    EXPECT_EQ(i, rs.rows.size());
    EXPECT_GT(i, 0u);
    EXPECT_THROW(sql::openEngineStorage((dir / "fehlt.mdb").string(), false), jet::Error);
    std::error_code ec;
    fs::remove_all(dir, ec);
}

}  // namespace
