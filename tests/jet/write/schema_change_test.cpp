// Schema changes on Access-made files: columns added to a table holding
// rows (old rows read the new columns as Null, new rows carry values) and
// new tables, each read back by our reader and by mdbtools. Relationships
// are relationship_test.cpp's.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "index_support.h"
#include "jet/check/check.h"
#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/write/writer.h"
#include "rows_support.h"

namespace {

namespace fs = std::filesystem;

using TempCopy = idxtest::TempCopy;

TEST(AddColumn, OldRowsReadNullAndNewRowsKeepValues) {
    TempCopy copy("delTestV2000.mdb");  // "Table": rows, no index to keep
    const std::string table = "Table";
    const std::vector<jet::ColumnSpec> added = {
        {"NewLong", jet::ColumnType::Long},     {"NewText", jet::ColumnType::Text, 20},
        {"NewDouble", jet::ColumnType::Double}, {"NewFlag", jet::ColumnType::Boolean},
        {"NewMemo", jet::ColumnType::Memo},     {"NewDate", jet::ColumnType::DateTime},
    };
    std::size_t before = 0, oldColumns = 0;
    jet::Row row;
    {
        auto db = jet::Database::open(copy.path(), {.writable = true});
        jet::Writer w(db);
        oldColumns = db->tableDef(table)->columns.size();
        before = db->table(table).rowIds().size();
        ASSERT_GT(before, 0u);
        for (const jet::ColumnSpec& c : added) w.addColumn(table, c);
        EXPECT_THROW(w.addColumn(table, {"newlong", jet::ColumnType::Long}), jet::Error);
        EXPECT_THROW(w.addColumn(table, {"Req", jet::ColumnType::Long, 0, false, false}),
                     jet::Error);
        EXPECT_THROW(w.addColumn("NoSuchTable", {"X", jet::ColumnType::Long}), jet::Error);
        ASSERT_EQ(w.unwritableReason(table), "");
        jet::Table t = db->table(table);
        row = *t.read(t.rowIds().front());
        ASSERT_EQ(row.size(), oldColumns + added.size());
        row[oldColumns] = std::int32_t(-42);
        row[oldColumns + 1] = std::string("Ventil DN50 – ÄÖÜß");
        row[oldColumns + 2] = 2.5;
        row[oldColumns + 3] = true;
        row[oldColumns + 4] = std::string(3000, 'm');
        w.insert(table, row);
        ++before;
        // An index over rows that were there before it, the new column descending.
        w.createIndex(table, {"ByNewLong", {{"NewLong", false}, {"NewDouble", true}}});
        EXPECT_THROW(w.createIndex(table, {"bynewlong", {{"NewDouble", true}}}), jet::Error);
        EXPECT_THROW(w.createIndex(table, {"X", {{"Nope", true}}}), jet::Error);
    }
    auto db = jet::Database::open(copy.path());
    jet::Table t = db->table(table);
    ASSERT_EQ(t.columns().size(), oldColumns + added.size());
    std::size_t rows = 0, withValues = 0;
    t.scan([&](jet::RowId, const jet::Row& r) {
        if (!jet::isNull(r[oldColumns])) {
            ++withValues;
            EXPECT_EQ(r, row);
        } else {
            for (std::size_t i = oldColumns; i < r.size(); ++i)
                EXPECT_TRUE(jet::isNull(r[i]) || r[i] == jet::Value(false));
        }
        ++rows;
        return true;
    });
    EXPECT_EQ(withValues, 1u);
    EXPECT_EQ(rows, before);
    const jet::Column* text = t.def().column("NewText");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->displaySize(), 20);
    EXPECT_TRUE(text->compressedUnicode());
    EXPECT_EQ(text->sortOrder, 0x409);
    ASSERT_EQ(t.indexCount(), 1u);
    EXPECT_FALSE(t.def().realIndexes[0].columns[0].ascending);
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});

    ASSERT_TRUE(jettest::haveMdbTools()) << "mdbtools is installed by scripts/setup-deps";
    // mdb-export: the new row as written, the old ones without values in the
    // new columns (a Jet Boolean lives in the null mask, so it has no Null:
    // mdb-export says 0).
    const auto csv = jettest::exportRows(copy.path(), table);
    ASSERT_EQ(csv.size(), before);
    std::size_t exported = 0;
    for (const std::vector<std::string>& r : csv) {
        ASSERT_EQ(r.size(), oldColumns + added.size());
        const bool isNew = r[oldColumns] == "-42";
        exported += isNew;
        for (std::size_t i = 0; i < added.size(); ++i)
            EXPECT_EQ(r[oldColumns + i],
                      isNew ? jet::toText(row[oldColumns + i])
                            : (added[i].type == jet::ColumnType::Boolean ? "0" : ""))
                << added[i].name;
    }
    EXPECT_EQ(exported, 1u);
    int status = 0;
    std::string schema =
        jettest::run("mdb-schema " + jettest::quote(copy.path()) + " 2>/dev/null", &status);
    for (const jet::ColumnSpec& c : added)
        EXPECT_NE(schema.find("[" + c.name + "]"), std::string::npos) << c.name;
    EXPECT_NE(schema.find("[NewText]\t\t\tText (20)"), std::string::npos) << schema;
}

TEST(CreateTable, EveryColumnTypeWithKeysTakesRowsThatMdbtoolsReads) {
    TempCopy copy("testV2000.mdb");
    using T = jet::ColumnType;
    const jet::TableSpec request{
        "PARTS",
        {{"ID", T::Long, 0, true},
         {"NAME", T::Text, 40},
         {"QTY", T::Integer},
         {"SMALL", T::Byte},
         {"WEIGHT", T::Double},
         {"RATIO", T::Single},
         {"PRICE", T::Currency},
         {"MADE", T::DateTime},
         {"OK", T::Boolean},
         {"NOTES", T::Memo},
         {"BLOB", T::OLE},
         {"UID", T::Guid},
         {"COUNT", T::Long}},
        {{"PrimaryKey", {{"ID", true}}, true, true}, {"ByWeight", {{"WEIGHT", false}}}}};
    std::vector<jet::Row> written;
    {
        auto db = jet::Database::open(copy.path(), {.writable = true});
        jet::Writer w(db);
        w.createTable(request);
        EXPECT_THROW(w.createTable(request), jet::Error);  // exists
        for (int i = 0; i < 3; ++i) {
            jet::Row row(request.columns.size());
            row[1] = std::string(i == 1 ? "Ventil DN50 – Edelstahl ÄÖÜß" : "Flansch");
            row[2] = std::int16_t(-7 * i);
            row[3] = std::uint8_t(200 + i);
            row[4] = 1.5 * i;
            row[5] = float(0.25);
            row[6] = jet::Currency{123450000};
            row[7] = jet::DateTime{45000.5};
            row[8] = i == 2;
            row[9] = std::string(i == 0 ? 5000 : 3, 'x');
            row[12] = std::int32_t(i);  // the rest stays Null
            w.insert("PARTS", row);
            EXPECT_EQ(row[0], jet::Value(std::int32_t(i + 1)));  // autonumber
            written.push_back(row);
        }
    }
    auto db = jet::Database::open(copy.path());
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
    const jet::TableDef& d = *db->tableDef("PARTS");
    EXPECT_EQ(d.columns[1].displaySize(), 40);
    EXPECT_TRUE(d.columns[1].compressedUnicode());
    ASSERT_EQ(d.indexes.size(), 2u);
    EXPECT_FALSE(d.realIndexes[1].columns[0].ascending);

    ASSERT_TRUE(jettest::haveMdbTools()) << "mdbtools is installed by scripts/setup-deps";
    EXPECT_EQ(rowstest::allRows(*db, "PARTS"), written);
    jettest::expectExportMatches(copy.path(), "PARTS");
    int status = 0;
    std::string path = jettest::quote(copy.path());
    std::string schema = jettest::run("mdb-schema -T PARTS " + path + " 2>/dev/null", &status);
    for (const char* want : {"[NAME]\t\t\tText (40)", "[ID]\t\t\tLong Integer",
                             "[NOTES]\t\t\tMemo/Hyperlink", "[UID]\t\t\tReplication ID"})
        EXPECT_NE(schema.find(want), std::string::npos) << want << "\n" << schema;
}

// A definition written anew over three pages and more reads back in our
// reader, the check and mdbtools.
TEST(AddColumn, DefinitionGrowingOntoFurtherPagesStaysReadable) {
    TempCopy copy("overflowTestV2000.mdb");
    std::size_t oldColumns = 0;
    {
        auto db = jet::Database::open(copy.path(), {.writable = true});
        jet::Writer w(db);
        oldColumns = db->tableDef("Table1")->columns.size();
        ASSERT_EQ(db->tableDef("Table1")->pages.size(), 1u);
        for (int i = 0; i < 200; ++i)
            w.addColumn("Table1",
                        {"Extra column number " + std::to_string(i), jet::ColumnType::Text, 10});
    }
    auto db = jet::Database::open(copy.path());
    auto def = db->tableDef("Table1");
    EXPECT_GE(def->pages.size(), 3u);
    EXPECT_EQ(def->columns.size(), oldColumns + 200);
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
    ASSERT_TRUE(jettest::haveMdbTools()) << "mdbtools is installed by scripts/setup-deps";
    jettest::expectExportMatches(copy.path(), "Table1");  // every row with every column
    int status = 0;
    std::string schema = jettest::run(
        "mdb-schema -T Table1 " + jettest::quote(copy.path()) + " 2>/dev/null", &status);
    EXPECT_NE(schema.find("[Extra column number 199]"), std::string::npos) << schema;
}

}  // namespace
