// Errors in Jet's own words and kinds; a failing statement changes nothing.
#include <gtest/gtest.h>

#include "catalogue_fixture.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

namespace {

struct ErrorCase {
    std::string sql;
    const char* message;
    long number;
};

class Errors : public ::testing::Test {
  protected:
    void SetUp() override {
        db = std::make_shared<sql::MemoryStorage>();
        fixture::fill(*db, 30);
        ex = std::make_unique<sql::Executor>(db);
    }
    std::shared_ptr<sql::MemoryStorage> db;
    std::unique_ptr<sql::Executor> ex;
};

TEST_F(Errors, TableOfStatementsAndMessages) {
    using namespace sql::errors;
    const ErrorCase cases[] = {
        {"SELECT * FORM tblOrdner",
         "The SELECT statement includes a reserved word or an argument name that is misspelled or "
         "missing, or the "
         "punctuation is incorrect.",
         kErrorsInCommand},
        {"SELECT * FROM tblOrdner a b", "Syntax error in FROM clause.", kErrorsInCommand},
        {"SELECT * FROM", "Syntax error in FROM clause.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE", "Syntax error in query expression ''.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE Nr =", "Syntax error in query expression 'Nr ='.",
         kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE Nr = 1 2",
         "Syntax error (missing operator) in query expression 'Nr = 1 2'.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE Ordnername LIKE 'abc",
         "Syntax error in string in query expression 'Ordnername LIKE 'abc'.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner ORDER Nr", "Syntax error in ORDER BY clause.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner ORDER BY", "Syntax error in ORDER BY clause.", kErrorsInCommand},
        {"SELECT * FROM tblGibtEsNicht",
         "The Microsoft Jet database engine cannot find the input table or query 'tblGibtEsNicht'. "
         " Make sure it "
         "exists and that its name is spelled correctly.",
         kTableNotFound},
        {"SELECT Unbekannt FROM tblOrdner", "No value given for one or more required parameters.",
         kNoValueGiven},
        {"SELECT * FROM tblOrdner WHERE Unbekannt = 1",
         "No value given for one or more required parameters.", kNoValueGiven},
        {"SELECT * FROM tblOrdner ORDER BY Unbekannt",
         "No value given for one or more required parameters.", kNoValueGiven},
        {"SELECT * FROM tblOrdner WHERE tblSeiten.Nr = 1",
         "No value given for one or more required parameters.", kNoValueGiven},
        {"SELECT * FROM tblOrdner WHERE Nr IN (SELECT Gibts FROM tblSeiten)",
         "No value given for one or more required parameters.", kNoValueGiven},
        {"UPDATE tblOrdner SET Unbekannt = 1",
         "No value given for one or more required parameters.", kNoValueGiven},
        {"SELECT * FROM tblOrdner WHERE Nr = 'eins'", "Data type mismatch in criteria expression.",
         kTypeMismatch},
        {"SELECT * FROM tblOrdner WHERE Nr IN (SELECT Nr, SeitenNr FROM tblSeiten)",
         "You have written a subquery that can return more than one field without using the EXISTS "
         "reserved word in "
         "the main query's FROM clause.  Revise the SELECT statement of the subquery to request "
         "only one field.",
         kErrorsInCommand},
        {"SELECT * INTO tblOrdner FROM tblSeiten", "Table 'tblOrdner' already exists.",
         kErrorsInCommand},
        {"INSERT INTO tblOrdner (Gibts) VALUES (1)",
         "The INSERT INTO statement contains the following unknown field name: 'Gibts'.  Make sure "
         "you have typed "
         "the name correctly, and try the operation again.",
         kErrorsInCommand},
        {"INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('9')",
         "Number of query values and destination fields are not the same.", kErrorsInCommand},
        {"INSERT tblOrdner VALUES (1)", "Syntax error in INSERT INTO statement.", kErrorsInCommand},
        {"INSERT INTO tblOrdner (OrdnerNr) VALUES ('12345')",
         "The field is too small to accept the amount of data you attempted to add.  Try inserting "
         "or pasting less "
         "data.",
         kIntegrity},
        {"UPDATE tblOrdner Ordnername = 'x'", "Syntax error in UPDATE statement.",
         kErrorsInCommand},
        {"UPDATE tblOrdner SET Nr = 7", "Cannot update 'Nr'; field not updateable.", kIntegrity},
        {"DELETE tblOrdner", "Syntax error in FROM clause.", kErrorsInCommand},
        {"ALTER TABLE tblOrdner ADD COLUMN Neu WURST", "Syntax error in field definition.",
         kErrorsInCommand},
        {"ALTER TABLE tblOrdner ADD COLUMN Ordnername TEXT (10)",
         "Field 'Ordnername' already exists in table 'tblOrdner'.", kErrorsInCommand},
        {"ALTER TABLE tblNichtDa ADD COLUMN Neu SHORT",
         "The Microsoft Jet database engine cannot find the input table or query 'tblNichtDa'.  "
         "Make sure it exists "
         "and that its name is spelled correctly.",
         kTableNotFound},
        {"ALTER tblOrdner ADD COLUMN Neu SHORT", "Syntax error in ALTER TABLE statement.",
         kErrorsInCommand},
        {"CREATE INDEX x ON tblOrdner(Gibts)",
         "Invalid field definition 'Gibts' in definition of index or relationship.",
         kErrorsInCommand},
        {"CREATE INDEX x ON tblOrdner Nr", "Syntax error in CREATE INDEX statement.",
         kErrorsInCommand},
        {"CREATE INDEX PrimaryKey ON tblOrdner(OrdnerNr)",
         "Table 'tblOrdner' already has an index named 'PrimaryKey'.", kErrorsInCommand},
        {"SHOW TABLES",
         "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.",
         kErrorsInCommand},
        {"",
         "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.",
         kErrorsInCommand},
        {"SELECT Nr FROM tblOrdner INNER JOIN tblSeiten ON tblOrdner.Nr = tblSeiten.NrTblOrdner",
         "The specified field 'Nr' could refer to more than one table listed in the FROM clause of "
         "your SQL statement.",
         kErrorsInCommand},
        {"SELECT * FROM tblOrdner INNER JOIN tblSeiten tblOrdner.Nr = tblSeiten.NrTblOrdner",
         "Syntax error in JOIN operation.", kErrorsInCommand},
        {"SELECT OrdnerNr, COUNT(*) FROM tblOrdner",
         "You tried to execute a query that does not include the specified expression 'OrdnerNr' "
         "as part of an aggregate function.",
         kErrorsInCommand},
        {"SELECT Ordnername FROM tblOrdner GROUP BY OrdnerNr",
         "You tried to execute a query that does not include the specified expression "
         "'Ordnername' as part of an aggregate function.",
         kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE Count(Nr) > 1",
         "Cannot have aggregate function in WHERE clause (Count(Nr) > 1).", kErrorsInCommand},
        {"SELECT SUM(COUNT(*)) FROM tblOrdner",
         "Cannot have aggregate function in expression (SUM(COUNT(*))).", kErrorsInCommand},
        {"SELECT COUNT(*) FROM tblOrdner GROUP BY MAX(Nr)",
         "Cannot have aggregate function in GROUP BY clause (MAX(Nr)).", kErrorsInCommand},
        {"SELECT * FROM tblOrdner GROUP BY OrdnerNr", "Cannot group on fields selected with '*'.",
         kErrorsInCommand},
        {"SELECT OrdnerNr FROM tblOrdner GROUP OrdnerNr", "Syntax error in GROUP BY clause.",
         kErrorsInCommand},
        {"SELECT SUM(Ordnername) FROM tblOrdner", "Data type mismatch in criteria expression.",
         kTypeMismatch},
        {"SELECT * FROM tblOrdner WHERE Nr > #2024-02-30#",
         "Syntax error in date in query expression 'Nr > #2024-02-30#'.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE Nr > #2024-02-01",
         "Syntax error in date in query expression 'Nr > #2024-02-01'.", kErrorsInCommand},
        {"SELECT * FROM tblOrdner WHERE " + std::string(300, '(') + "Nr = 1" +
             std::string(300, ')'),
         "Query is too complex.", kErrorsInCommand},
        {"SELECT Nr Ordnername FROM tblOrdner",
         "The SELECT statement includes a reserved word or an argument name that is misspelled or "
         "missing, or the "
         "punctuation is incorrect.",
         kErrorsInCommand},
    };
    for (const auto& c : cases) {
        try {
            ex->execute(c.sql);
            ADD_FAILURE() << "no error: " << c.sql;
        } catch (const sql::Unsupported& e) {
            ADD_FAILURE() << "refused as unsupported: " << c.sql << ": " << e.what();
        } catch (const sql::Error& e) {
            EXPECT_EQ(std::string(e.what()), c.message) << c.sql;
            EXPECT_EQ(e.hresult(), c.number) << c.sql;
        }
    }
}

TEST_F(Errors, StatementsOutsideTheDialectAreRefusedClearly) {
    const char* refused[] = {
        "SELECT * FROM tblOrdner, tblSeiten",
        "SELECT * FROM tblOrdner RIGHT JOIN tblSeiten ON tblOrdner.Nr = tblSeiten.NrTblOrdner",
        "SELECT Nr FROM tblOrdner UNION SELECT Nr FROM tblSeiten",
        "DROP TABLE tblOrdner",
        "CREATE TABLE x (a TEXT)",
        "SELECT UCase(Ordnername) FROM tblOrdner",
        "ALTER TABLE tblOrdner DROP COLUMN OrdnerRechte",
        "TRANSFORM Count(Nr) SELECT OrdnerID FROM tblBlockInfo GROUP BY OrdnerID PIVOT M3",
    };
    for (const char* s : refused) {
        try {
            ex->execute(s);
            ADD_FAILURE() << "ran: " << s;
        } catch (const sql::Unsupported& e) {
            EXPECT_NE(std::string(e.what()).find("does not support"), std::string::npos) << s;
        }
    }
    EXPECT_EQ(db->table("tblOrdner")->columns().size(), 6u);
}

TEST_F(Errors, AFailingUpdateChangesNoRow) {
    // The third Folder's name would not fit; no row may change.
    ex->execute("ALTER TABLE tblOrdner ADD COLUMN Kurz TEXT (3)");
    EXPECT_THROW(ex->execute("UPDATE tblOrdner SET Kurz = Ordnername"), sql::Error);
    EXPECT_EQ(ex->query("SELECT * FROM tblOrdner WHERE Kurz IS NOT NULL").rows.size(), 0u);
    EXPECT_THROW(ex->execute("INSERT INTO tblOrdner (OrdnerNr) SELECT Ordnername FROM tblOrdner"),
                 sql::Error);
    EXPECT_EQ(ex->query("SELECT * FROM tblOrdner").rows.size(), 4u);
}

TEST_F(Errors, ErrorsCarryJetsOwnNumbers) {
    try {
        ex->execute("SELECT * FROM tblOrdner WHERE Nr = 1 2");
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(e.number(), 3075);
    }
    // One catch of the engine's error takes the SQL layer's errors too.
    try {
        ex->execute("SELECT * FROM nix");
        FAIL();
    } catch (const jet::Error& e) {
        EXPECT_EQ(e.number(), 3078);
        EXPECT_NE(dynamic_cast<const sql::Error*>(&e), nullptr);
    }
}

}  // namespace

namespace {
// A long AND or OR chain is one flat node: it parses and runs in time and
// memory linear in its length, and deeper trees are refused, not a crash.
TEST(ParserLimits, LongChainsRunAndDeepTreesAreRefused) {
    auto db = std::make_shared<sql::MemoryStorage>();
    db->createTable("t", {{"Nr", sql::ColumnType::Long, 0, true, false}}, {});
    sql::Executor ex(db);
    for (int i = 0; i < 5; ++i) ex.execute("INSERT INTO t (Nr) VALUES (" + std::to_string(i) + ")");
    std::string ors = "SELECT COUNT(*) FROM t WHERE Nr = 3";
    for (int i = 0; i < 20000; ++i) ors += " OR Nr = " + std::to_string(10 + i);
    EXPECT_EQ(ex.query(ors + " OR Nr = 1").rows[0][0].asInt(), 2);
    std::string ands = "SELECT COUNT(*) FROM t WHERE Nr >= 0";
    for (int i = 0; i < 20000; ++i) ands += " AND Nr <> " + std::to_string(10 + i);
    EXPECT_EQ(ex.query(ands).rows[0][0].asInt(), 5);

    std::string sum = "SELECT * FROM t WHERE Nr = 0";
    for (int i = 0; i < 20000; ++i) sum += " + 1";
    std::string nots = "SELECT * FROM t WHERE ";
    for (int i = 0; i < 50000; ++i) nots += "NOT ";
    for (const std::string& s : {sum, nots + "Nr = 1", std::string(2 << 20, ' ') + "SELECT 1"}) {
        try {
            ex.execute(s);
            ADD_FAILURE() << "ran: " << s.substr(0, 40);
        } catch (const sql::Error& e) {
            EXPECT_STREQ(e.what(), "Query is too complex.");
            EXPECT_EQ(e.number(), 3360);
        }
    }
    // Moderate nesting still runs.
    EXPECT_EQ(ex.execute("SELECT * FROM t WHERE " + std::string(50, '(') + "Nr = 1" +
                         std::string(50, ')'))
                  .rows.rows.size(),
              1u);
}
}  // namespace
