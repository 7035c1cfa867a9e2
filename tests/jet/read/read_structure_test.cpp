// The structures of Access-made files: header, deleted and overflow rows,
// long values, index trees in key order, index seeks.
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

TEST(JetRows, DecodesEveryFixedTypeOfTheFirstRow) {
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    Table t = db->table("Table1");
    std::vector<Row> rows;
    t.scan([&](RowId, const Row& r) {
        rows.push_back(r);
        return true;
    });
    ASSERT_EQ(rows.size(), 2u);
    const Row& r = rows[0];
    EXPECT_EQ(std::get<std::string>(t.value(r, "A")), "abcdefg");
    EXPECT_EQ(std::get<std::string>(t.value(r, "B")), "hijklmnop");
    EXPECT_EQ(std::get<std::uint8_t>(t.value(r, "C")), 2);
    EXPECT_EQ(std::get<std::int16_t>(t.value(r, "D")), 222);
    EXPECT_EQ(std::get<std::int32_t>(t.value(r, "E")), 333333333);
    EXPECT_DOUBLE_EQ(std::get<double>(t.value(r, "F")), 444.555);
    CivilTime g = toCivil(std::get<DateTime>(t.value(r, "G")).days);
    EXPECT_EQ(g.year, 1974);
    EXPECT_EQ(g.month, 9);
    EXPECT_EQ(g.day, 21);
    EXPECT_EQ(std::get<Currency>(t.value(r, "H")).scaled, 35000);
    EXPECT_EQ(std::get<bool>(t.value(r, "I")), true);
    EXPECT_EQ(std::get<bool>(t.value(rows[1], "I")), false);
    EXPECT_THROW(t.value(r, "nope"), Error);
}

// Rows flagged deleted in the row offset table are skipped, and the file
// does hold such rows.
TEST(JetRows, SkipsRowsAccessDeleted) {
    auto db = Database::open(jettest::testFile("delTestV2000.mdb"));
    Table t = db->table("Table");
    std::size_t deleted = 0, live = 0;
    for (std::uint32_t p : t.dataPages()) {
        PageRef pg = db->pages().page(p);
        for (std::uint16_t i = 0; i < rowCountOf(*pg); ++i) {
            bool del = u16(pg->data() + datapage::kRowTable + 2 * i) & datapage::kDeletedFlag;
            (del ? deleted : live)++;
            if (del) {
                EXPECT_FALSE(t.read(RowId{p, i}).has_value());
            }
        }
    }
    EXPECT_GT(deleted, 0u);
    std::vector<std::string> a;
    t.scan([&](RowId, const Row& r) {
        a.push_back(toText(r[0]) + "," + toText(r[1]));
        return true;
    });
    EXPECT_EQ(a, (std::vector<std::string>{"z,y", "v,u"}));
    EXPECT_EQ(t.def().rowCount, 2u);
}

// A row moved behind an overflow pointer reads at the pointer's place; its
// new place is flagged deleted so it is not read twice.
TEST(JetRows, FollowsOverflowRowPointers) {
    auto db = Database::open(jettest::testFile("overflowTestV2000.mdb"));
    Table t = db->table("Table1");
    std::size_t followed = 0;
    for (std::uint32_t p : t.dataPages()) {
        PageRef pg = db->pages().page(p);
        for (std::uint16_t i = 0; i < rowCountOf(*pg); ++i) {
            std::uint16_t raw = u16(pg->data() + datapage::kRowTable + 2 * i);
            if (!(raw & datapage::kOverflowFlag) || (raw & datapage::kDeletedFlag)) continue;
            RowId target = RowId::fromPointer(u32(pg->data() + (raw & datapage::kOffsetMask)));
            EXPECT_NE(target.page, p);
            auto viaPointer = t.read(RowId{p, i});
            ASSERT_TRUE(viaPointer.has_value());
            EXPECT_FALSE(t.read(target).has_value())
                << "the moved row must not be read at its new place";
            ++followed;
        }
    }
    EXPECT_GE(followed, 2u);
    std::set<std::string> firsts;
    std::size_t n = 0;
    t.scan([&](RowId, const Row& r) {
        ++n;
        firsts.insert(toText(r[1]));
        return true;
    });
    EXPECT_EQ(n, 7u);
    EXPECT_TRUE(firsts.count("row3col3"));
    EXPECT_TRUE(firsts.count("row5col2"));
}

TEST(JetLongValues, ReadsMemoAndOleOfTheCatalogue) {
    // MSysObjects carries LvProp (OLE) and LvExtra values in all three
    // storages; every one must read and mdb-export agrees with them (see
    // EveryTable). Here: they are present and non-empty.
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    Table t = db->table("MSysObjects");
    int col = t.columnPosition("LvProp");
    ASSERT_GE(col, 0);
    std::size_t withProps = 0, longest = 0;
    t.scan([&](RowId, const Row& r) {
        if (auto b = std::get_if<Binary>(&r[std::size_t(col)])) {
            ++withProps;
            longest = std::max(longest, b->size());
            EXPECT_TRUE(b->size() >= 4 && std::equal(b->begin(), b->begin() + 3, "MR2"));
        }
        return true;
    });
    EXPECT_GT(withProps, 3u);
    EXPECT_GT(longest, 200u);
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

class CheckTestData : public ::testing::TestWithParam<std::string> {};
TEST_P(CheckTestData, FindsNoFaultsInAccessMadeFiles) {
    auto db = Database::open(jettest::testFile(GetParam()));
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
}
INSTANTIATE_TEST_SUITE_P(
    TestData, CheckTestData, ::testing::ValuesIn(jettest::testFiles()), [](const auto& param) {
        return std::string(param.param).substr(0, std::string(param.param).find('.'));
    });

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

namespace {

// For names of letters and digits our text key is Access's key without its
// "end of text" bytes 01 00, across the catalogues of all test files.
TEST(JetIndexKeys, TextKeysOfLettersAndDigitsEqualAccessKeys) {
    std::size_t compared = 0;
    for (const std::string& file : jettest::testFiles()) {
        auto db = jet::Database::open(jettest::testFile(file));
        jet::Table objs = db->table("MSysObjects");
        const jet::TableDef& d = objs.def();
        for (std::size_t li = 0; li < objs.indexCount(); ++li) {
            jet::IndexCursor cur = objs.index(li);
            if (cur.real().columns.size() != 2) continue;
            for (const jet::IndexEntry& e : cur.all()) {
                auto row = objs.read(e.row);
                ASSERT_TRUE(row.has_value());
                std::vector<jet::Value> key;
                for (const jet::IndexColumn& ic : cur.real().columns)
                    key.push_back((*row)[std::size_t(
                        d.columnPosition(d.columnByNumber(ic.columnNumber)->name))]);
                const std::string* name = std::get_if<std::string>(&key[1]);
                if (!name || name->empty() || !std::all_of(name->begin(), name->end(), [](char c) {
                        return std::isalnum((unsigned char)c);
                    }))
                    continue;
                std::vector<std::uint8_t> ours = jet::encodeIndexKey(d, cur.real(), key);
                ours.push_back(0x01);
                ours.push_back(0x00);
                EXPECT_EQ(ours, e.key) << file << " " << *name;
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 50u);
}

}  // namespace
