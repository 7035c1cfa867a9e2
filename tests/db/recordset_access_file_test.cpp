// Record sets over a real file made by Access, through the Jet engine.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "db/connection.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "frisches_verzeichnis.h"
#include "jet/sql/error.h"

namespace {

namespace fs = std::filesystem;

class RealRecords : public ::testing::Test {
  protected:
    void SetUp() override {
        dir = tessara::test::frischesVerzeichnis("db");
        file = dir / "index.mdb";
        fs::copy_file(fs::path(TESSARA_TESTDATA) / "mdb" / "indexTestV2000.mdb", file);
        // The program's paths are in backslash form; the mapper turns them into native ones.
        con = std::make_unique<db::Connection>(db::jetOpener([](const std::string& p) {
            std::string n = p;
            for (auto& c : n)
                if (c == '\\') c = '/';
            return n;
        }));
        std::string programPath = file.string();
        for (auto& c : programPath)
            if (c == '/') c = '\\';
        con->open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + programPath);
    }
    void TearDown() override {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
    fs::path dir, file;
    std::unique_ptr<db::Connection> con;
};

TEST_F(RealRecords, WritingThroughTheReadOnlyAdapterLeavesTheFileAsItWas) {
    std::string before = tessara::test::dateiInhalt(file);
    db::Recordset rs;
    rs.open("Table1", *con, db::adOpenKeyset, db::adLockOptimistic);
    rs.addNew();
    rs.setValue("id", 9);
    rs.setValue("otherfk1", 99);  // Table2 has no row 99
    rs.setValue("data", "neu");
    EXPECT_THROW(rs.update(), jet::Error);
    rs.cancelUpdate();
    // Rows of Table1 refer to Table3's rows, and the relationship does not cascade deletes.
    EXPECT_THROW(con->execute("DELETE FROM Table3"), jet::Error);
    EXPECT_EQ(tessara::test::dateiInhalt(file), before);
}

}  // namespace
