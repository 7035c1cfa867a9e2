// Limits of the parser: long chains run, deep trees and empty statements are
// refused in Jet's words, never a crash. The messages of single statements
// are in errors/messages.test.
#include <gtest/gtest.h>

#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

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
    try {
        ex.execute("");
        ADD_FAILURE() << "an empty statement ran";
    } catch (const sql::Error& e) {
        EXPECT_EQ(e.number(), 3129);
        EXPECT_STREQ(e.what(),
                     "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', "
                     "or 'UPDATE'.");
    }
    // Moderate nesting still runs.
    EXPECT_EQ(ex.execute("SELECT * FROM t WHERE " + std::string(50, '(') + "Nr = 1" +
                         std::string(50, ')'))
                  .rows.rows.size(),
              1u);
}
}  // namespace
