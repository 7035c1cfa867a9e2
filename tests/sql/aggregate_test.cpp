// Aggregates, GROUP BY, HAVING, DISTINCT and TOP over both stores, checked
// against Debian's sqlite3 running the same statements over the same rows
// where the two dialects agree by definition; Jet's own rules (text without
// case in General order, TOP with ties, AVG as a Double) from a table.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>

#include "catalogue_fixture.h"
#include "jet/sql/date_literal.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

namespace {

namespace fs = std::filesystem;

// The rows, as statements both engines take.
const char* const kRows[] = {
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('rohr', 3, 1.5)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('rohr', 7, 2.25)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('rohr', NULL, 9.75)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('flansch', 7, 4.5)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('flansch', 12, NULL)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('ventil', 1, 0.5)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES (NULL, 5, 3.5)",
    "INSERT INTO tblMass (Gruppe, Wert, Preis) VALUES ('muffe', NULL, NULL)",
    "INSERT INTO tblText (Name) VALUES ('apfel')",
    "INSERT INTO tblText (Name) VALUES ('ol')",
    "INSERT INTO tblText (Name) VALUES ('Zahn')",
    "INSERT INTO tblText (Name) VALUES ('Apfel')",
    "INSERT INTO tblText (Name) VALUES ('Öl')",
    "INSERT INTO tblText (Name) VALUES ('OL')",
};

// Rows as sqlite3 -csv writes plain values: commas between, Null empty.
std::string csv(const sql::ResultSet& rs) {
    std::string out;
    for (const auto& row : rs.rows) {
        for (std::size_t i = 0; i < row.size(); ++i) out += (i ? "," : "") + row[i].toString();
        out += '\n';
    }
    return out;
}

class Aggregates : public ::testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("tessara_aggregate_" + std::to_string(::getpid()) + "_" + GetParam());
        fs::create_directories(dir);
        if (std::string(GetParam()) == "memory")
            db = std::make_shared<sql::MemoryStorage>();
        else
            db = sql::openEngineStorage((dir / "mass.mdb").string(), true);
        db->createTable("tblMass",
                        {{"Nr", sql::ColumnType::Long, 0, true, false},
                         {"Gruppe", sql::ColumnType::Text, 20, false, true},
                         {"Wert", sql::ColumnType::Long, 0, false, true},
                         {"Preis", sql::ColumnType::Double, 0, false, true}},
                        {sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}});
        db->createTable("tblText", {{"Name", sql::ColumnType::Text, 20, false, true}}, {});
        ex = std::make_unique<sql::Executor>(db);
        for (const char* r : kRows) ex->execute(r);
    }
    void TearDown() override {
        ex.reset();
        db.reset();
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
    // The same rows in an sqlite3 database, and its answer to a statement.
    std::string sqlite(const std::string& statement) {
        fs::path script = dir / "rows.sql";
        std::ofstream out(script);
        out << "CREATE TABLE tblMass (Nr INTEGER PRIMARY KEY, Gruppe TEXT, Wert INTEGER, "
               "Preis REAL);\nCREATE TABLE tblText (Name TEXT);\n";
        for (const char* r : kRows) out << r << ";\n";
        out << statement << ";\n";
        out.close();
        return fixture::runCommand("sqlite3 -csv :memory: < '" + script.string() + "'");
    }
    fs::path dir;
    std::shared_ptr<sql::Storage> db;
    std::unique_ptr<sql::Executor> ex;
};

TEST_P(Aggregates, AgreeWithSqlite) {
    struct Case {
        const char* jet;
        const char* sqlite;  // when it differs
    };
    const Case cases[] = {
        {"SELECT COUNT(*) FROM tblMass", nullptr},
        {"SELECT COUNT(Wert), SUM(Wert), MIN(Wert), MAX(Wert), MIN(Preis), MAX(Preis) FROM "
         "tblMass",
         nullptr},
        {"SELECT Gruppe, COUNT(*), COUNT(Preis), SUM(Wert) FROM tblMass GROUP BY Gruppe ORDER BY "
         "Gruppe",
         nullptr},
        {"SELECT Gruppe, MIN(Preis), MAX(Wert) FROM tblMass GROUP BY Gruppe HAVING COUNT(Wert) > 1 "
         "ORDER BY Gruppe DESC",
         nullptr},
        {"SELECT Gruppe, SUM(Wert) FROM tblMass WHERE Preis < 5 GROUP BY Gruppe ORDER BY SUM(Wert) "
         "DESC, Gruppe",
         nullptr},
        {"SELECT COUNT(*), COUNT(Wert), SUM(Wert), MAX(Preis) FROM tblMass WHERE Wert > 1000",
         nullptr},
        {"SELECT Wert, COUNT(*) FROM tblMass GROUP BY Wert ORDER BY Wert", nullptr},
        {"SELECT DISTINCT Wert FROM tblMass ORDER BY Wert", nullptr},
        {"SELECT DISTINCT Gruppe, Wert FROM tblMass WHERE Wert > 2 ORDER BY Gruppe, Wert", nullptr},
        {"SELECT TOP 3 Nr, Wert FROM tblMass WHERE Wert IS NOT NULL ORDER BY Wert DESC, Nr",
         "SELECT Nr, Wert FROM tblMass WHERE Wert IS NOT NULL ORDER BY Wert DESC, Nr LIMIT 3"},
        {"SELECT TOP 2 Gruppe, SUM(Wert) FROM tblMass GROUP BY Gruppe ORDER BY SUM(Wert) DESC",
         "SELECT Gruppe, SUM(Wert) FROM tblMass GROUP BY Gruppe ORDER BY SUM(Wert) DESC LIMIT 2"},
    };
    for (const auto& c : cases) {
        std::string expected = sqlite(c.sqlite ? c.sqlite : c.jet);
        ASSERT_FALSE(expected.empty()) << "sqlite3 gave nothing for " << c.jet;
        EXPECT_EQ(csv(ex->query(c.jet)), expected) << c.jet;
    }
}

TEST_P(Aggregates, FollowJetsOwnRules) {
    struct Case {
        const char* sql;
        const char* rows;
    };
    const Case cases[] = {
        // Text without regard to case, in General order (Ö after O).
        {"SELECT MIN(Name), MAX(Name), COUNT(Name) FROM tblText", "apfel,Zahn,6\n"},
        {"SELECT Name, COUNT(*) FROM tblText GROUP BY Name ORDER BY Name",
         "apfel,2\nol,2\nÖl,1\nZahn,1\n"},
        {"SELECT DISTINCT Name FROM tblText ORDER BY Name DESC", "Zahn\nÖl\nol\napfel\n"},
        // AVG is a Double; of no rows it is Null.
        {"SELECT AVG(Wert), AVG(Preis) FROM tblMass WHERE Gruppe = 'rohr'", "5,4.5\n"},
        {"SELECT AVG(Wert), SUM(Preis) FROM tblMass WHERE Nr < 0", ",\n"},
        // TOP keeps the rows that tie with the last one.
        {"SELECT TOP 2 Wert FROM tblMass WHERE Wert > 1 ORDER BY Wert", "3\n5\n"},
        {"SELECT TOP 3 Wert FROM tblMass WHERE Wert > 1 ORDER BY Wert", "3\n5\n7\n7\n"},
        {"SELECT COUNT(*) FROM tblMass HAVING COUNT(*) > 100", ""},
        {"SELECT COUNT(*) * 2 + 1, MAX(Wert) - MIN(Wert) FROM tblMass", "17,11\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(csv(ex->query(c.sql)), c.rows) << c.sql;
    sql::ResultSet rs = ex->query("SELECT COUNT(*), AVG(Wert) FROM tblMass");
    EXPECT_EQ(rs.rows[0][1].kind(), sql::Value::Kind::Double);
    EXPECT_EQ(rs.columns[0].type, sql::ColumnType::Long);
}

INSTANTIATE_TEST_SUITE_P(Stores, Aggregates, ::testing::Values("memory", "mdb"),
                         [](const auto& p) { return std::string(p.param); });

TEST(DateLiterals, AsJetReadsThem) {
    struct Case {
        const char* text;
        double days;  // since 30 December 1899; NAN when Jet refuses the literal
    };
    const Case cases[] = {
        {"2024-03-01", 45352},
        {"2024/03/01", 45352},
        {"3/1/2024", 45352},
        {"03-01-2024", 45352},
        {"13/1/2024", 45304},  // no 13th month: day first
        {"2024-03-01 12:30:00", 45352 + 12.5 / 24},
        {"3/1/2024 6:00 PM", 45352 + 0.75},
        {"12:00", 0.5},
        {"1/1/30", 10959},
        {"12/31/29", 47483},
        {"1899-12-29 06:00", -1.25},
        {"2024-02-30", NAN},
        {"2023-02-29", NAN},
        {"13/13/2024", NAN},
        {"2024-03-01 25:00", NAN},
        {"heute", NAN},
        {"", NAN},
    };
    for (const auto& c : cases) {
        auto d = sql::parseDateLiteral(c.text);
        if (std::isnan(c.days)) {
            EXPECT_FALSE(d) << c.text;
        } else {
            ASSERT_TRUE(d) << c.text;
            EXPECT_NEAR(*d, c.days, 1e-9) << c.text;
        }
    }
}

}  // namespace
