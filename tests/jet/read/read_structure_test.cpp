// The structures of Access-made files that no other reader's output shows:
// header fields, catalogue look-ups, the lazy scan and encoded pages. Row
// values are compared with mdb-export in read_mdbtools_test.cpp, columns,
// indexes and relationships with the CLI's schema in read_cli_test.cpp, and
// index keys and entry order with Access's trees in index_writer_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;

TEST(JetHeader, ReadsVersionCodePageAndSortOrder) {
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    const DatabaseHeader& h = db->header();
    EXPECT_EQ(h.version, 1u);
    EXPECT_EQ(h.codePage, 1252);
    EXPECT_EQ(h.sortOrder, 0x409);  // General
    EXPECT_EQ(h.databaseKey, 0u);
    EXPECT_GT(h.creationDate, 36000.0);  // made after 1998
    EXPECT_LT(h.creationDate, 50000.0);
}

TEST(JetCatalogue, ListsUserTablesAndSystemTablesOnRequest) {
    // The lists themselves are compared with mdb-tables' in read_mdbtools_test.cpp
    // and read_cli_test.cpp.
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    EXPECT_EQ(db->tableNames().size(), 4u);
    EXPECT_TRUE(db->hasTable("table1"));  // case-insensitive
    const auto [number, message] = jettest::errorOf([&] { db->table("NoSuchTable"); });
    EXPECT_EQ(number, errnum::kNoSuchTable);
    EXPECT_NE(message.find("NoSuchTable"), std::string::npos) << message;
}

// The lazy scan yields the same rows, ids and values as the full one.
TEST(JetRows, LazyScanDecodesTheSameValues) {
    for (const std::string& file : jettest::testFiles()) {
        auto db = jet::Database::open(jettest::testFile(file));
        for (const std::string& name : db->tableNames(true)) {
            SCOPED_TRACE(file + " " + name);
            jet::Table t = db->table(name);
            std::vector<std::pair<jet::RowId, jet::Row>> full;
            t.scan([&](jet::RowId id, const jet::Row& r) {
                full.emplace_back(id, r);
                return true;
            });
            std::size_t i = 0;
            t.scanLazy([&](const jet::RowView& v) {
                EXPECT_LT(i, full.size());
                if (i >= full.size()) return false;
                EXPECT_EQ(v.id(), full[i].first);
                // Last column first: each column decodes on its own.
                for (std::size_t c = t.columns().size(); c-- > 0;)
                    EXPECT_EQ(v.value(c), full[i].second[c]);
                ++i;
                return true;
            });
            EXPECT_EQ(i, full.size());
        }
    }
}

// A database whose pages are RC4-encoded with the database key (Access's
// "encode database") reads as the plain one.
TEST(JetHeader, DecodesPagesOfAnEncodedDatabase) {
    std::vector<std::uint8_t> image = jettest::fileImage("indexTestV2000.mdb");
    const std::uint32_t key = 0x1234ABCDu;
    jet::maskHeader(image.data());
    jet::put32(image.data() + jet::header::kDatabaseKey, key);
    jet::maskHeader(image.data());
    for (std::uint32_t p = 1; p < image.size() / jet::kPageSize; ++p) {
        std::uint8_t k[4];
        jet::put32(k, key ^ p);
        jet::rc4Xor(k, 4, image.data() + std::size_t(p) * jet::kPageSize, jet::kPageSize);
    }
    auto plain = jet::Database::open(jettest::testFile("indexTestV2000.mdb"));
    auto encoded = jet::Database::fromMemory(image);
    EXPECT_EQ(encoded->header().databaseKey, key);
    ASSERT_EQ(encoded->tableNames(true), plain->tableNames(true));
    auto rows = [](jet::Database& db, const std::string& name) {
        std::vector<jet::Row> out;
        db.table(name).scan([&](jet::RowId, const jet::Row& r) {
            out.push_back(r);
            return true;
        });
        return out;
    };
    for (const std::string& name : plain->tableNames(true))
        EXPECT_EQ(rows(*encoded, name), rows(*plain, name)) << name;
    EXPECT_EQ(jet::checkDatabase(*encoded), std::vector<std::string>{});
}

}  // namespace
