// Insert, update and delete on copies of the Access-made files: read back by
// this engine (also after reopening), by mdb-export, and by the checker.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "jet/format/error.h"
#include "jet/read/usage_map.h"
#include "jet/write/data_writer.h"
#include "jet/write/row_encoder.h"
#include "rows_support.h"

using namespace jet;
using jettest::expectExportMatches;
using rowstest::allRows;
using rowstest::exportRows;
using rowstest::faults;
using rowstest::fileBytes;
using rowstest::openWritable;

namespace {

Value text(const char* s) { return std::string(s); }

// The ids a scan gives the rows whose column holds v.
std::vector<RowId> idsOf(Database& db, const std::string& table, std::size_t column,
                         const Value& v) {
    std::vector<RowId> found;
    db.table(table).scan([&](RowId id, const Row& r) {
        if (r[column] == v) found.push_back(id);
        return true;
    });
    return found;
}

std::string repeat(const std::string& unit, std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i) s += unit;
    return s;
}

bool journalLeft(const std::string& path) { return std::filesystem::exists(path + "-journal"); }

}  // namespace

class RowWrites : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(jettest::haveMdbTools()) << "mdbtools is installed by scripts/setup-deps";
    }
    rowstest::Scratch scratch;
};

TEST_F(RowWrites, InsertedRowsReadBackEverywhere) {
    const DateTime date{28754.5};  // 09/21/78 12:00:00
    struct Case {
        const char* file;
        const char* table;
        std::vector<Row> rows;
    } cases[] = {
        {"delTestV2000.mdb",
         "Table",
         {{text("Ventil DN50 – Edelstahl ÄÖÜß"), text("x")},
          {Value{}, text("")},
          {std::string(50, 'w'), text("Anführungszeichen \" und, Komma")}}},
        {"overflowTestV2000.mdb",
         "Table1",
         {{text("a"), {}, {}, {}, {}, {}, {}, {}, text("ten")},
          {text("日本語"), text("ÄÖÜ"), text("x"), text("y"), text("z"), text("1"), text("2"),
           text("3"), text("4")}}},
        {"testV2000.mdb",
         "Table1",
         {{text("bcd"), text("efg"), std::uint8_t(7), std::int16_t(-3), std::int32_t(123456), 1.25,
           date, Currency{12345}, true},
          {text("yx"), {}, {}, {}, {}, {}, {}, {}, false}}},
        // Tables without rows: their first data page is allocated.
        {"testV2000.mdb", "Table3", {{std::int32_t(5), text("abc")}, {std::int32_t(6), {}}}},
        {"bigIndexTestV2000.mdb", "Table1", {{text("abc"), text("ÄÖÜ – x")}, {{}, text("y")}}},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.table);
        const std::string path = scratch.copy(c.file);
        const std::size_t before = Database::open(path)->tableDef(c.table)->rowCount;
        std::vector<std::pair<RowId, Row>> written;
        {
            auto db = openWritable(path);
            Writer w(db);
            ASSERT_EQ(w.unwritableReason(c.table), "");
            for (Row r : c.rows) {
                RowId id = w.insert(c.table, r);
                ASSERT_EQ(db->table(c.table).read(id), r);
                written.emplace_back(id, r);
            }
            EXPECT_EQ(db->tableDef(c.table)->rowCount, before + c.rows.size());
            EXPECT_EQ(faults(*db), "");
        }
        auto db = Database::open(path);
        for (const auto& [id, r] : written) EXPECT_EQ(db->table(c.table).read(id), r);
        EXPECT_EQ(faults(*db), "");
        EXPECT_EQ(allRows(*db, c.table).size(), before + c.rows.size());
        expectExportMatches(path, c.table);
        EXPECT_FALSE(journalLeft(path));
    }
}

TEST_F(RowWrites, UpdatesInPlaceAndBehindOverflowPointers) {
    const std::string path = scratch.copy("overflowTestV2000.mdb");
    auto db = openWritable(path);
    Writer w(db);
    // name in the first column, ch repeated len times in the other eight.
    auto row = [](const std::string& name, const std::string& ch, std::size_t len) {
        Row r(9, Value{repeat(ch, len)});
        r[0] = name;
        return r;
    };
    // Fill pages with rows of about 200 bytes.
    std::vector<RowId> ids;
    for (int i = 0; i < 60; ++i) {
        Row r = row("r" + std::to_string(i) + "-", "x", 20);
        ids.push_back(w.insert("Table1", r));
    }
    std::size_t count = allRows(*db, "Table1").size();
    const RowId id = ids[3];
    auto expectRow = [&](const Row& r, bool overflow, const char* step) {
        SCOPED_TRACE(step);
        EXPECT_EQ(db->table("Table1").read(id), r);
        EXPECT_EQ((rowBytes(db->pages(), id).flags & datapage::kOverflowFlag) != 0, overflow);
        EXPECT_EQ(allRows(*db, "Table1").size(), count);
        EXPECT_EQ(idsOf(*db, "Table1", 0, r[0]), std::vector<RowId>{id});
        EXPECT_EQ(faults(*db), "");
    };
    Row same = row("r3-", "x", 20);
    same[2] = std::string("kurz");
    w.update("Table1", id, same);
    expectRow(same, false, "in place, shorter");
    // Text that does not compress, 50 characters a column: about 830 bytes.
    Row big = row("big", "Ω", 50);
    w.update("Table1", id, big);
    expectRow(big, true, "moved behind an overflow pointer");
    Row bigger = row("bigger", "Ж", 50);
    w.update("Table1", id, bigger);
    expectRow(bigger, true, "re-updated at its overflow target");
    // Room on the row's own page brings it back.
    ASSERT_EQ(ids[4].page, id.page);
    w.remove("Table1", ids[4]);
    --count;
    Row small = row("klein", "k", 5);
    w.update("Table1", id, small);
    expectRow(small, false, "back on its own page");
    w.update("Table1", id, big);
    expectRow(big, true, "moved again");
    // Rows Access left behind overflow pointers.
    std::vector<RowId> accessMoved;
    for (std::uint16_t s = 0; s < rowCountOf(*db->pages().page(27)); ++s)
        if (rowBytes(db->pages(), RowId{27, s}).flags & datapage::kOverflowFlag)
            accessMoved.push_back(RowId{27, s});
    ASSERT_EQ(accessMoved.size(), 2u);
    Row a = *db->table("Table1").read(accessMoved[0]);
    a[8] = std::string("geändert");
    w.update("Table1", accessMoved[0], a);
    EXPECT_EQ(db->table("Table1").read(accessMoved[0]), a);
    w.remove("Table1", accessMoved[1]);
    w.remove("Table1", id);
    EXPECT_EQ(db->table("Table1").read(id), std::nullopt);
    EXPECT_EQ(allRows(*db, "Table1").size(), count - 2);
    EXPECT_EQ(db->tableDef("Table1")->rowCount, count - 2);
    EXPECT_EQ(exportRows(path, "Table1").size(), count - 2);  // every call is committed
    EXPECT_EQ(faults(*db), "");
    db.reset();
    auto again = Database::open(path);
    EXPECT_EQ(again->table("Table1").read(accessMoved[0]), a);
    EXPECT_EQ(faults(*again), "");
    expectExportMatches(path, "Table1");
}

TEST_F(RowWrites, DeletesAndSlotsReused) {
    const std::string path = scratch.copy("indexTestV2000.mdb");
    auto db = openWritable(path);
    Writer w(db);
    // Table1's shape without its relationships: a primary key and three
    // more indexes, one descending and one on the text.
    w.createTable({"Kopie",
                   {{"id", ColumnType::Long},
                    {"otherfk1", ColumnType::Long},
                    {"otherfk2", ColumnType::Long},
                    {"data", ColumnType::Text, 100},
                    {"otherfk3", ColumnType::Long}},
                   {{"PrimaryKey", {{"id", true}}, true, true},
                    {"otherfk1", {{"otherfk1", true}}},
                    {"otherfk2", {{"otherfk2", false}}},
                    {"data", {{"data", true}}}}});
    for (std::int32_t k = 1; k <= 4; ++k) {
        Row r{k, std::int32_t(0), std::int32_t(0), Value{"r" + std::to_string(k)}, std::int32_t(0)};
        w.insert("Kopie", r);
    }
    std::vector<RowId> ids = db->table("Kopie").rowIds();
    ASSERT_EQ(ids.size(), 4u);
    w.remove("Kopie", ids[1]);
    w.remove("Kopie", ids[2]);
    EXPECT_EQ(db->table("Kopie").read(ids[1]), std::nullopt);
    EXPECT_EQ(faults(*db), "");
    EXPECT_THROW(w.remove("Kopie", ids[1]), Error);  // its number: the refusal table's
    // The removed row's key is free again, and its slot is used again.
    Row r{std::int32_t(2), std::int32_t(5), std::int32_t(6), text("wieder"), std::int32_t(0)};
    RowId back = w.insert("Kopie", r);
    EXPECT_EQ(back.page, ids[1].page);
    EXPECT_TRUE(back == ids[1] || back == ids[2]);
    EXPECT_EQ(db->tableDef("Kopie")->rowCount, 3u);
    EXPECT_EQ(faults(*db), "");
    db.reset();
    expectExportMatches(path, "Kopie");
}

// Writes that are refused leave every byte of the file as it was. Key and
// reference refusals are in index_properties_test.cpp and
// relationship_statements.txt.
TEST_F(RowWrites, RefusedWritesLeaveTheFileUntouched) {
    // A refused insert also leaves the caller's row as it was given.
    auto insert = [](const char* table, Row row) {
        return [table, row](Writer& w, Database&) {
            Row r = row;
            try {
                w.insert(table, r);
            } catch (...) {
                EXPECT_TRUE(r == row);
                throw;
            }
        };
    };
    struct Case {
        const char* what;
        const char* file;
        std::function<void(Writer&, Database&)> act;
        long number;           // 0: any
        const char* contains;  // in the message
    } cases[] = {
        {"text too long", "delTestV2000.mdb", insert("Table", {std::string(51, 'a'), {}}),
         rowerr::kFieldTooSmall, "too small"},
        {"index this engine cannot keep", "testV2000.mdb", insert("Table4", {text("n"), Value{}}),
         0, "Index PrimaryKey of table Table4 cannot be kept up to date"},
        {"text key with a character of unknown sort code", "testV2000.mdb",
         insert("Table1", {text("漢字"), {}, {}, {}, {}, {}, {}, {}, false}), 0, "sort code"},
        {"row larger than a page", "testV2000.mdb",
         [](Writer& w, Database&) {
             Row r(89, Value{repeat("Ω", 50)});  // 100 bytes: does not compress
             for (std::size_t k : {0, 9, 13, 74}) r[k] = text("key");  // the indexed columns
             w.insert("Table2", r);
         },
         rowerr::kRecordTooLarge, "Record is too large"},
        {"row that does not exist", "delTestV2000.mdb",
         [](Writer& w, Database&) {
             w.remove("Table", RowId{31, 1});
         },
         rowerr::kRecordDeleted, "deleted"},
        {"row of another table", "delTestV2000.mdb",
         [](Writer& w, Database&) {
             w.update("Table", RowId{20, 0}, Row{text("a"), text("b")});
         },
         rowerr::kRecordDeleted, "no row"},
        {"wrong number of values", "delTestV2000.mdb", insert("Table", {text("a")}),
         rowerr::kConversion, "takes 2 values"},
        {"value of another type after the autonumber", "indexTestV2000.mdb",
         insert("MSysNameMap", {Value{}, text("x"), text("eins"), Value{}, Binary{}}),
         rowerr::kConversion, "conversion"},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string path = scratch.copy(c.file);
        const auto before = fileBytes(path);
        {
            auto db = openWritable(path);
            Writer w(db);
            const auto [number, message] = jettest::errorOf([&] { c.act(w, *db); });
            EXPECT_TRUE(c.number == 0 || number == c.number) << message;
            EXPECT_NE(message.find(c.contains), std::string::npos) << message;
            EXPECT_FALSE(db->inTransaction());
        }
        EXPECT_TRUE(fileBytes(path) == before);
        EXPECT_FALSE(journalLeft(path));
    }
    // The refusal of a table names the index before anything is tried.
    auto db = Database::open(jettest::testFile("testV2000.mdb"));
    EXPECT_NE(Writer(db).unwritableReason("Table4").find("Replication ID keys"), std::string::npos);
    Row r{text("a"), text("b")};
    const long number = jettest::errorOf([&] { Writer(db).insert("Table", r); }).first;
    EXPECT_TRUE(number == errnum::kReadOnly || number == errnum::kNoSuchTable) << number;
}

// OLE values inline, on one LVAL page and in chains, with the autonumber of
// the same table (MSysNameMap: Id is an autonumber, NameMap an OLE column).
TEST_F(RowWrites, LongValuesAndAutonumber) {
    const std::string path = scratch.copy("indexTestV2000.mdb");
    auto db = openWritable(path);
    Writer w(db);
    const std::uint32_t lastNumber = db->tableDef("MSysNameMap")->nextAutoNumber;
    auto blob = [](std::size_t n) {
        Binary b(n);
        for (std::size_t i = 0; i < n; ++i) b[i] = std::uint8_t(i * 31 + n);
        return b;
    };
    const std::size_t sizes[] = {0, 40, 64, 65, 3000, 4080, 4081, 50000};
    std::vector<std::pair<RowId, Row>> rows;
    for (std::size_t n : sizes) {
        Row r{Value{}, std::string("Objekt ") + std::to_string(n), std::int32_t(1), Value{},
              blob(n)};
        RowId id = w.insert("MSysNameMap", r);
        EXPECT_EQ(r[0], Value{std::int32_t(lastNumber + rows.size() + 1)}) << n;
        EXPECT_EQ(db->table("MSysNameMap").read(id), r) << n;
        rows.emplace_back(id, r);
    }
    EXPECT_EQ(db->tableDef("MSysNameMap")->nextAutoNumber, lastNumber + std::size(sizes));
    EXPECT_EQ(faults(*db), "");
    // LVAL pages are entered in the column's own usage map.
    auto def = db->tableDef("MSysNameMap");
    ASSERT_FALSE(def->varColumnMaps.empty());
    UsageMap lvalPages = readUsageMap(db->pages(), def->varColumnMaps[0].usedPages);
    EXPECT_GE(lvalPages.pages.size(), 14u);  // 50000 bytes alone take 13 pages
    // Replace the chain by a small value, remove the single-page one: their
    // LVAL rows are given back.
    Row shrunk = rows.back().second;
    shrunk[4] = blob(10);
    w.update("MSysNameMap", rows.back().first, shrunk);
    w.remove("MSysNameMap", rows[4].first);
    std::size_t liveLval = 0;
    for (std::uint32_t p : readUsageMap(db->pages(), def->varColumnMaps[0].usedPages).pages) {
        PageRef pg = db->pages().page(p);
        for (std::uint16_t s = 0; s < rowCountOf(*pg); ++s)
            liveLval += !(rowBytes(pg, p, s).flags & datapage::kDeletedFlag);
    }
    // Access's own, 65 bytes, 4080 bytes, and 4081 bytes in two rows.
    EXPECT_EQ(liveLval, 5u);
    EXPECT_EQ(faults(*db), "");
    db.reset();
    auto again = openWritable(path);
    EXPECT_EQ(again->table("MSysNameMap").read(rows.back().first), shrunk);
    EXPECT_EQ(again->table("MSysNameMap").read(rows[6].first), rows[6].second);
    EXPECT_EQ(again->table("MSysNameMap").read(rows[4].first), std::nullopt);
    Row next{Value{}, text("danach"), std::int32_t(1), Value{}, Value{}};
    Writer(again).insert("MSysNameMap", next);
    EXPECT_EQ(next[0], Value{std::int32_t(lastNumber + std::size(sizes) + 1)});
    EXPECT_EQ(faults(*again), "");
}

// Memo values in every form, read back by mdb-export. No test file has a
// user table with a Memo column, so a copy's MSysNameMap.NameMap (OLE) is
// retyped as a Memo that allows compression.
TEST_F(RowWrites, MemoValuesReadByMdbExport) {
    const std::string path = scratch.copy("indexTestV2000.mdb");
    {
        auto db = openWritable(path);
        auto def = db->tableDef("MSysNameMap");
        ASSERT_TRUE(def->realIndexes.empty());
        db->begin();
        PageBytes page = *db->pages().page(def->page);
        bool patched = false;
        for (std::size_t i = 0; i < 5; ++i) {
            std::uint8_t* e = page.data() + tdef::kBlockEnd + tdef::kColumnEntry * i;
            if (e[0] == std::uint8_t(ColumnType::OLE) && u16(e + 5) == 4) {
                e[0] = std::uint8_t(ColumnType::Memo);
                e[16] |= colmisc::kCompressedUnicode;
                patched = true;
            }
        }
        ASSERT_TRUE(patched);
        db->pages().put(def->page, page);
        db->commit();
    }
    const std::string memos[] = {
        "",
        "kurz",
        repeat("Ventil DN50 – Edelstahl ÄÖÜß ", 3),  // compressed, beyond the inline limit
        repeat("Ω", 1000),                           // 2000 bytes on one LVAL row
        repeat("abc", 1500),                         // too long to compress: a chain
        repeat("日本語", 9000),                      // 54000 bytes in a chain
    };
    {
        auto db = openWritable(path);
        Writer w(db);
        for (const std::string& m : memos) {
            Row r{Value{}, std::string("memo"), std::int32_t(0), Value{}, m};
            RowId id = w.insert("MSysNameMap", r);
            EXPECT_EQ(db->table("MSysNameMap").read(id), r) << m.size();
        }
        EXPECT_EQ(faults(*db), "");
    }
    expectExportMatches(path, "MSysNameMap");
}
