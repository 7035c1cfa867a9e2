// The structures of Access-made files: header, catalogue, definitions,
// index trees in key order, index seeks, the lazy scan and encoded pages.
// Row values (deleted, moved and long ones too) are compared with mdb-export
// in read_mdbtools_test.cpp; text keys with Access's in index_writer_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>

#include "jet/check/check.h"
#include "jet/format/text.h"
#include "jet/read/database.h"
#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
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
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    EXPECT_EQ(db->tableNames(), (std::vector<std::string>{"Table1", "Table2", "Table3", "Table4"}));
    auto all = db->tableNames(true);
    EXPECT_NE(std::find(all.begin(), all.end(), "MSysObjects"), all.end());
    EXPECT_TRUE(db->hasTable("table1"));  // case-insensitive
    EXPECT_THROW(db->table("NoSuchTable"), Error);
    try {
        db->table("NoSuchTable");
    } catch (const Error& e) {
        EXPECT_EQ(e.number(), errnum::kNoSuchTable);
        EXPECT_NE(std::string(e.what()).find("NoSuchTable"), std::string::npos);
    }
}

TEST(JetTableDef, ReadsColumnTypesSizesAndFlags) {
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    Table t = db->table("Table1");
    struct Want {
        const char* name;
        ColumnType type;
        int size;
    };
    const Want want[] = {{"A", ColumnType::Text, 50},    {"B", ColumnType::Text, 100},
                         {"C", ColumnType::Byte, 1},     {"D", ColumnType::Integer, 2},
                         {"E", ColumnType::Long, 4},     {"F", ColumnType::Double, 8},
                         {"G", ColumnType::DateTime, 8}, {"H", ColumnType::Currency, 8},
                         {"I", ColumnType::Boolean, 1}};
    ASSERT_EQ(t.columns().size(), std::size(want));
    for (std::size_t i = 0; i < std::size(want); ++i) {
        SCOPED_TRACE(want[i].name);
        const Column& c = t.columns()[i];
        EXPECT_EQ(c.name, want[i].name);
        EXPECT_EQ(c.type, want[i].type);
        EXPECT_EQ(c.displaySize(), want[i].size);
        EXPECT_EQ(c.isFixed(), c.type != ColumnType::Text);
    }
    Table t4 = db->table("Table4");
    EXPECT_EQ(t4.columns()[1].type, ColumnType::Guid);
}

// Index entries come in key order: the rows they point at, read in index
// order, are sorted by the index's columns.
int compareValues(const Value& a, const Value& b) {
    if (isNull(a) || isNull(b)) return isNull(a) == isNull(b) ? 0 : (isNull(a) ? -1 : 1);
    if (auto x = std::get_if<std::string>(&a))
        return compareTextNoCase(*x, std::get<std::string>(b));
    auto num = [](const Value& v) -> double {
        if (auto p = std::get_if<std::int32_t>(&v)) return *p;
        if (auto p = std::get_if<std::int16_t>(&v)) return *p;
        if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
        if (auto p = std::get_if<double>(&v)) return *p;
        if (auto p = std::get_if<DateTime>(&v)) return p->days;
        if (auto p = std::get_if<bool>(&v)) return *p;
        return 0;
    };
    double p = num(a), q = num(b);
    return p < q ? -1 : (p > q ? 1 : 0);
}

class IndexOrder : public ::testing::TestWithParam<std::string> {};

TEST_P(IndexOrder, WalksEntriesInSortedColumnOrder) {
    auto db = Database::open(jettest::testFile(GetParam()));
    std::size_t indexesWalked = 0, entriesSeen = 0;
    for (const std::string& name : db->tableNames(true)) {
        Table t = db->table(name);
        const TableDef& d = t.def();
        std::size_t liveRows = t.rowIds().size();
        for (std::size_t li = 0; li < d.indexes.size(); ++li) {
            SCOPED_TRACE(name + "." + d.indexes[li].name);
            const RealIndex& ri = d.realIndexes[d.indexes[li].realIndex];
            auto entries = t.index(li).all();
            if (!(ri.flags & idxflag::kIgnoreNulls)) {
                EXPECT_EQ(entries.size(), liveRows);
            }
            std::vector<std::vector<Value>> keys;
            for (const IndexEntry& e : entries) {
                auto row = t.read(e.row);
                ASSERT_TRUE(row.has_value()) << toString(e.row);
                std::vector<Value> k;
                for (const IndexColumn& ic : ri.columns)
                    k.push_back((*row)[std::size_t(
                        d.columnPosition(d.columnByNumber(ic.columnNumber)->name))]);
                keys.push_back(k);
            }
            for (std::size_t i = 1; i < keys.size(); ++i) {
                int c = 0;
                for (std::size_t k = 0; k < ri.columns.size() && c == 0; ++k) {
                    c = compareValues(keys[i - 1][k], keys[i][k]);
                    if (!ri.columns[k].ascending) c = -c;
                }
                EXPECT_LE(c, 0) << "entry " << i << " out of order";
            }
            ++indexesWalked;
            entriesSeen += entries.size();
        }
    }
    EXPECT_GT(indexesWalked, 0u);
    EXPECT_GT(entriesSeen, 0u);
}

INSTANTIATE_TEST_SUITE_P(
    TestData, IndexOrder,
    ::testing::Values("indexTestV2000.mdb", "testV2000.mdb", "bigIndexTestV2000.mdb",
                      "compIndexTestV2000.mdb"),
    [](const auto& param) {
        return std::string(param.param).substr(0, std::string(param.param).find('.'));
    });

// Our key encoding equals Access's for the numeric keys of the files, so
// seeks land on the right rows.
TEST(JetIndexSeek, FindsEveryRowOfLongKeysAndTextKeys) {
    auto db = Database::open(jettest::testFile("indexTestV2000.mdb"));
    std::size_t found = 0;
    for (const char* name : {"Table1", "Table2", "Table3"}) {
        Table t = db->table(name);
        const TableDef& d = t.def();
        for (std::size_t li = 0; li < d.indexes.size(); ++li) {
            IndexCursor cur = t.index(li);
            const RealIndex& ri = cur.real();
            const Column* c0 = d.columnByNumber(ri.columns[0].columnNumber);
            for (const IndexEntry& e : cur.all()) {
                auto row = t.read(e.row);
                std::vector<Value> key;
                for (const IndexColumn& ic : ri.columns)
                    key.push_back((*row)[std::size_t(
                        d.columnPosition(d.columnByNumber(ic.columnNumber)->name))]);
                EXPECT_EQ(encodeIndexKey(d, ri, key), e.key) << name << "." << d.indexes[li].name;
                auto hits = cur.find({(*row)[std::size_t(d.columnPosition(c0->name))]});
                EXPECT_NE(std::find(hits.begin(), hits.end(), e.row), hits.end());
                ++found;
            }
        }
        // Text column "data" has no index, but the catalogue's
        // (ParentId, Name) index is a text key.
    }
    EXPECT_GT(found, 10u);
    Table objs = db->table("MSysObjects");
    for (std::size_t li = 0; li < objs.indexCount(); ++li) {
        IndexCursor cur = objs.index(li);
        if (cur.real().columns.size() != 2) continue;
        // ParentIdName: seek every table by its parent and name.
        for (const CatalogEntry& e : db->catalogue()) {
            if (e.type != objtype::kTable) continue;
            auto hits = cur.find({Value{e.parentId}, Value{e.name}});
            ASSERT_EQ(hits.size(), 1u) << e.name;
            EXPECT_EQ(hits[0], e.row);
        }
    }
    Table t1 = db->table("Table1");
    EXPECT_TRUE(t1.index("PrimaryKey").find({Value{std::int32_t(12345)}}).empty());
}

TEST(JetRelationships, ReadsForeignKeysFromMSysRelationships) {
    auto db = Database::open(jettest::testFile("indexTestV2000.mdb"));
    auto rels = db->relationships();
    auto it = std::find_if(rels.begin(), rels.end(),
                           [](const Relationship& r) { return r.name == "Table2Table1"; });
    ASSERT_NE(it, rels.end());
    EXPECT_EQ(it->table, "Table1");
    EXPECT_EQ(it->columns, std::vector<std::string>{"otherfk1"});
    EXPECT_EQ(it->relatedTable, "Table2");
    EXPECT_EQ(it->relatedColumns, std::vector<std::string>{"id"});
    const TableDef& d = db->table("Table1").def();
    std::size_t fks = 0;
    for (const Index& ix : d.indexes) fks += ix.isForeignKey();
    EXPECT_EQ(fks, 2u);
}

}  // namespace

namespace {

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

}  // namespace

namespace {

// A database whose pages are RC4-encoded with the database key (Access's
// "encode database") reads as the plain one.
TEST(JetHeader, DecodesPagesOfAnEncodedDatabase) {
    std::ifstream in(jettest::testFile("indexTestV2000.mdb"), std::ios::binary);
    std::vector<std::uint8_t> image((std::istreambuf_iterator<char>(in)), {});
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
    for (const std::string& name : plain->tableNames(true)) {
        std::vector<jet::Row> a, b;
        plain->table(name).scan([&](jet::RowId, const jet::Row& r) {
            a.push_back(r);
            return true;
        });
        encoded->table(name).scan([&](jet::RowId, const jet::Row& r) {
            b.push_back(r);
            return true;
        });
        EXPECT_EQ(a, b) << name;
    }
    EXPECT_EQ(jet::checkDatabase(*encoded), std::vector<std::string>{});
}

}  // namespace

namespace {}  // namespace
