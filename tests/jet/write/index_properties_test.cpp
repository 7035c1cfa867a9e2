// Index properties (Unique, IgnoreNulls, Required) where Access keeps them:
// read from Access's own file, honoured by every write with Jet's messages,
// and written for new indexes byte for byte as Access writes them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

#include "index_support.h"
#include "jet/check/check.h"
#include "jet/read/index_cursor.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/write/row_encoder.h"
#include "jet/write/writer.h"

namespace {

using namespace jet;
using idxtest::indexNamed;
using idxtest::TempCopy;
using txtest::fileBytes;
using Bytes = std::vector<std::uint8_t>;

const char* const kFile = "testIndexPropertiesV2000.mdb";

Value text(const char* s) { return std::string(s); }

const RealIndex& realNamed(const TableDef& def, const std::string& name) {
    return def.realIndexes[def.indexes[indexNamed(def, name)].realIndex];
}

std::vector<IndexEntry> entries(const std::shared_ptr<Database>& db, const std::string& table,
                                const std::string& index) {
    auto def = db->tableDef(table);
    return IndexCursor(db, def, indexNamed(*def, index)).all();
}

// The 52 bytes of a real-index entry as the definition stores them.
Bytes rawEntry(const TableDef& def, const std::string& index) {
    std::size_t at = tdef::kBlockEnd + tdef::kRealIndexCountEntry * def.realIndexes.size() +
                     tdef::kColumnEntry * def.columns.size();
    for (std::size_t i = 0; i < def.columns.size(); ++i) at += 2 + u16(def.raw.data() + at);
    at += tdef::kRealIndexEntry * def.indexes[indexNamed(def, index)].realIndex;
    return Bytes(def.raw.begin() + std::ptrdiff_t(at),
                 def.raw.begin() + std::ptrdiff_t(at + tdef::kRealIndexEntry));
}

// A table with one index of each kind; Id is a required column.
TableSpec pflicht() {
    TableSpec t;
    t.name = "Pflicht";
    t.columns = {{"Id", ColumnType::Long, 0, false, false},
                 {"Name", ColumnType::Text, 20},
                 {"Code", ColumnType::Long}};
    IndexSpec pk{"PrimaryKey", {{"Id", true}}, true};
    IndexSpec code{"CodeIndex", {{"Code", true}}};
    code.required = true;
    IndexSpec name{"NameIndex", {{"Name", true}}, false, true};
    name.ignoreNulls = true;
    t.indexes = {pk, code, name};
    return t;
}

TEST(IndexProperties, NewIndexesAreWrittenAsAccessWritesThem) {
    TempCopy copy(kFile);
    auto db = copy.open();
    // The system tables of a new file carry Access's flags, index by index.
    auto made = Database::fromMemory(emptyDatabaseImage());
    for (const char* table : {"MSysObjects", "MSysACEs", "MSysQueries", "MSysRelationships"}) {
        auto ours = made->tableDef(table);
        auto access = db->tableDef(table);
        for (const Index& li : ours->indexes)
            EXPECT_EQ(ours->realIndexes[li.realIndex].flags, realNamed(*access, li.name).flags)
                << table << "." << li.name;
    }
    Writer(db).createTable(pflicht());
    auto def = db->tableDef("Pflicht");
    const Bytes accessKey = rawEntry(*db->tableDef("TableUnique2_temp"), "PrimaryKey");
    struct Case {
        const char* index;
        std::uint8_t flags;
    } cases[] = {{"PrimaryKey", 0x89}, {"CodeIndex", 0x88}, {"NameIndex", 0x83}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.index);
        const Bytes e = rawEntry(*def, c.index);
        EXPECT_EQ(Bytes(e.begin(), e.begin() + 4), Bytes(accessKey.begin(), accessKey.begin() + 4));
        EXPECT_EQ(Bytes(e.begin() + 42, e.begin() + 46), Bytes(4, 0));
        EXPECT_EQ(int(e[tdef::kRealIndexFlags]), c.flags);
        EXPECT_EQ(Bytes(e.begin() + 47, e.end()), Bytes(accessKey.begin() + 47, accessKey.end()));
        EXPECT_EQ(realNamed(*def, c.index).flags, c.flags);
    }
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
}

// Rows whose key is all Null get no entry in an IgnoreNulls index, yet a
// scan finds them; a key changing to or from Null removes or adds the entry.
TEST(IndexProperties, IgnoreNullsLeavesNullKeysOut) {
    TempCopy copy(kFile);
    auto db = copy.open();
    Writer w(db);
    struct Case {
        const char* table;
        Row row;
        bool indexed;
    } cases[] = {
        {"TableIgnoreNulls1", {text("n1"), Value{}}, false},
        {"TableIgnoreNulls1", {text("n2"), text("zz")}, true},
        {"TableIgnoreNulls2", {text("n1"), Value{}, Value{}}, false},
        {"TableIgnoreNulls2", {text("n2"), Value{}, std::int32_t(7)}, true},  // one Null of two
        {"TableIgnoreNulls2", {text("n3"), text("x"), Value{}}, true},
        // Unique without IgnoreNulls: a fifth Null, and a key with a Null
        // part that row1 holds already (Null equals nothing).
        {"TableUnique1_temp", {text("n1"), Value{}}, true},
        {"TableUnique2_temp", {text("n1"), Value{}, std::int32_t(49)}, true},
    };
    std::vector<RowId> ids;
    for (Case& c : cases) {
        SCOPED_TRACE(std::string(c.table) + " " + toText(c.row[0]));
        const std::size_t before = entries(db, c.table, "DataIndex").size();
        const RowId id = w.insert(c.table, c.row);
        EXPECT_EQ(entries(db, c.table, "DataIndex").size(), before + (c.indexed ? 1 : 0));
        const std::vector<RowId> scanned = db->table(c.table).rowIds();
        EXPECT_NE(std::find(scanned.begin(), scanned.end(), id), scanned.end());
        ids.push_back(id);
    }
    const RowId nullRow = ids[0];  // TableIgnoreNulls1, key Null
    const std::string t = "TableIgnoreNulls1";
    auto lookup = [&](const char* v) {
        auto def = db->tableDef(t);
        return IndexCursor(db, def, indexNamed(*def, "DataIndex")).find({text(v)});
    };
    const std::size_t base = entries(db, t, "DataIndex").size();
    w.update(t, nullRow, Row{text("n1"), text("gefunden")});
    EXPECT_EQ(entries(db, t, "DataIndex").size(), base + 1);
    EXPECT_EQ(lookup("gefunden"), std::vector<RowId>{nullRow});
    w.update(t, nullRow, Row{text("n1"), Value{}});
    EXPECT_EQ(entries(db, t, "DataIndex").size(), base);
    EXPECT_TRUE(lookup("gefunden").empty());
    w.remove(t, nullRow);
    EXPECT_EQ(entries(db, t, "DataIndex").size(), base);
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
}

// Unique and Required as Jet enforces them, in its words; a refused write
// leaves every byte of the file as it was.
TEST(IndexProperties, RefusalsInJetsWordsChangeNothing) {
    TempCopy copy(kFile);
    {
        auto db = copy.open();
        Writer w(db);
        w.createTable(pflicht());
        Row seed{std::int32_t(1), text("a"), std::int32_t(1)};
        w.insert("Pflicht", seed);
    }
    auto insert = [](const char* table, Row row) {
        return [table, row](Writer& w, Database&) mutable { w.insert(table, row); };
    };
    const std::string duplicate = rowerr::kDuplicateMessage;
    struct Case {
        const char* what;
        std::function<void(Writer&, Database&)> act;
        long number;
        std::string message;
    } cases[] = {
        {"Null in a required column", insert("Pflicht", {Value{}, text("b"), std::int32_t(2)}),
         rowerr::kRequired, "You must enter a value in the 'Pflicht.Id' field."},
        {"Null in a required index", insert("Pflicht", {std::int32_t(2), text("b"), Value{}}),
         rowerr::kNullKey, "Index or primary key cannot contain a Null value."},
        {"Null in a required index made by Access",
         insert("MSysACEs", {Value{}, Binary{1, 2}, std::int32_t(1), false}), rowerr::kNullKey,
         "Index or primary key cannot contain a Null value."},
        {"duplicate in a unique index",
         insert("Pflicht", {std::int32_t(2), text("A"), std::int32_t(3)}), rowerr::kDuplicate,
         duplicate},
        {"duplicate in Access's unique index",
         insert("TableUnique1_temp", {text("n"), text("stuff")}), rowerr::kDuplicate, duplicate},
        {"duplicate of two columns",
         insert("TableUnique2_temp", {text("n"), text("STUFF"), std::int32_t(13)}),
         rowerr::kDuplicate, duplicate},
        {"update onto another row's unique key",
         [](Writer& w, Database& db) {
             for (RowId id : db.table("TableUnique1_temp").rowIds())
                 if (toText((*db.table("TableUnique1_temp").read(id))[0]) == "row2")
                     w.update("TableUnique1_temp", id, Row{text("row2"), text("some")});
         },
         rowerr::kDuplicate, duplicate},
        {"unique index over duplicate rows",
         [](Writer& w, Database&) {
             w.createIndex("TableIgnoreNulls2", IndexSpec{"D2", {{"data2", true}}, false, true});
         },
         rowerr::kDuplicate, duplicate},
        {"required index over rows holding Null",
         [](Writer& w, Database&) {
             IndexSpec s{"DR", {{"data", true}}};
             s.required = true;
             w.createIndex("TableIgnoreNulls1", s);
         },
         rowerr::kNullKey, "Index or primary key cannot contain a Null value."},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.what);
        const Bytes before = fileBytes(copy.path());
        {
            auto db = copy.open();
            Writer w(db);
            EXPECT_EQ(jettest::errorOf([&] { c.act(w, *db); }),
                      std::make_pair(c.number, c.message));
        }
        EXPECT_TRUE(fileBytes(copy.path()) == before);
    }
    // What the same indexes accept: Null where Nulls may go, any number of
    // them in a unique index; a unique index over rows whose only
    // duplicates are Null.
    auto db = copy.open();
    Writer w(db);
    for (std::int32_t id : {2, 3}) {
        Row r{id, Value{}, id};
        w.insert("Pflicht", r);
    }
    EXPECT_EQ(entries(db, "Pflicht", "NameIndex").size(), 1u);
    IndexSpec names{"D1", {{"data1", true}}, false, true};
    names.ignoreNulls = true;
    w.createIndex("TableIgnoreNulls2", names);
    EXPECT_EQ(entries(db, "TableIgnoreNulls2", "D1").size(), 6u);  // the rows with data1 set
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
}

}  // namespace
