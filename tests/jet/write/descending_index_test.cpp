// Descending index columns as Access writes them: the order byte 0x00 and
// keys whose bytes after the start byte are the ascending ones inverted.
// Read, sought, scanned by range and written, on an Access-made file and on
// a table with a descending index for every key type, made here.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <set>

#include "index_support.h"
#include "jet/check/check.h"
#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/executor.h"
#include "jet/support/mdbtools.h"
#include "jet/write/writer.h"

namespace {

using namespace jet;
using idxtest::indexNamed;

double number(const Value& v) {
    if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
    if (auto p = std::get_if<std::int16_t>(&v)) return *p;
    if (auto p = std::get_if<std::int32_t>(&v)) return *p;
    if (auto p = std::get_if<Currency>(&v)) return double(p->scaled) / 10000;
    if (auto p = std::get_if<float>(&v)) return *p;
    if (auto p = std::get_if<double>(&v)) return *p;
    if (auto p = std::get_if<DateTime>(&v)) return p->days;
    ADD_FAILURE() << "not a number: " << toText(v);
    return 0;
}

// Rows whose value in the index's single column lies in [low, high], read
// through the index the way a range scan does: seek the bound that comes
// first in index order (the high one when descending), walk to the other.
std::set<RowId> rangeThroughIndex(IndexCursor& cur, const TableDef& def, const Value& low,
                                  const Value& high) {
    const bool asc = cur.real().columns.at(0).ascending;
    const auto first = encodeIndexKey(def, cur.real(), {asc ? low : high});
    const auto last = encodeIndexKey(def, cur.real(), {asc ? high : low});
    std::set<RowId> out;
    cur.seek(first);
    while (cur.next() && cur.entry().key <= last) out.insert(cur.entry().row);
    return out;
}

// Every row by its value through the index, every range between values of
// the table (and beyond them) as a full scan finds it, entries in order.
void expectIndexAnswersAsAScan(Table& t, const std::string& index, const std::string& column) {
    SCOPED_TRACE(index);
    const TableDef& def = t.def();
    IndexCursor cur = t.index(indexNamed(def, index));
    const bool asc = cur.real().columns.at(0).ascending;
    const std::size_t pos = std::size_t(def.columnPosition(column));
    std::vector<std::pair<double, RowId>> rows;
    std::map<double, Value> values;
    std::size_t nulls = 0;
    t.scan([&](RowId id, const Row& r) {
        if (isNull(r[pos])) {
            ++nulls;
        } else {
            rows.push_back({number(r[pos]), id});
            values.emplace(number(r[pos]), r[pos]);
        }
        return true;
    });
    ASSERT_GT(rows.size(), 10u);

    std::vector<IndexEntry> all = cur.all();
    ASSERT_EQ(all.size(), rows.size() + nulls);
    for (std::size_t i = 1; i < all.size(); ++i) {
        auto a = t.read(all[i - 1].row), b = t.read(all[i].row);
        if (isNull((*b)[pos])) continue;
        ASSERT_FALSE(isNull((*a)[pos])) << "a value after a null at entry " << i;
        double x = number((*a)[pos]), y = number((*b)[pos]);
        EXPECT_TRUE(asc ? x <= y : x >= y) << "entry " << i << ": " << x << " then " << y;
    }
    // Nulls come first ascending and last descending.
    if (nulls) {
        EXPECT_TRUE(isNull((*t.read((asc ? all.front() : all.back()).row))[pos]));
    }

    for (const auto& [x, v] : values) {
        std::set<RowId> want;
        for (const auto& [y, id] : rows)
            if (y == x) want.insert(id);
        std::vector<RowId> got = cur.find({v});
        EXPECT_EQ(std::set<RowId>(got.begin(), got.end()), want) << toText(v);
    }
    std::vector<Value> bounds;
    for (const auto& [x, v] : values) bounds.push_back(v);
    for (std::size_t i = 0; i < bounds.size(); i += std::max<std::size_t>(1, bounds.size() / 7))
        for (std::size_t j = i; j < bounds.size();
             j += std::max<std::size_t>(1, bounds.size() / 5)) {
            const double lo = number(bounds[i]), hi = number(bounds[j]);
            std::set<RowId> want;
            for (const auto& [y, id] : rows)
                if (y >= lo && y <= hi) want.insert(id);
            EXPECT_EQ(rangeThroughIndex(cur, def, bounds[i], bounds[j]), want)
                << toText(bounds[i]) << " .. " << toText(bounds[j]);
        }
    // A range no row lies in, and one reversed.
    EXPECT_EQ(rangeThroughIndex(cur, def, bounds.back(), bounds.front()).size(),
              bounds.size() == 1 ? rows.size() : 0u);
}

// SQL over the Access file: lookups and ranges answer what the same
// condition on an expression (no index can answer it) answers, also after
// inserts, a delete and an update; the file stays sound for mdbtools too.
TEST(JetDescendingIndex, StatementsOnTheAccessFile) {
    idxtest::TempCopy copy("compIndexTestV2000.mdb");
    auto storage = sql::openEngineStorage(copy.path(), false);
    sql::Executor ex(storage);
    auto rows = [&](const std::string& where) {
        std::multiset<std::string> out;
        for (const auto& r :
             ex.query("SELECT CD_AGENTE, RS_AGENTE FROM Table1 WHERE " + where).rows)
            out.insert(r[0].toString() + "|" + r[1].toString());
        return out;
    };
    auto expectSame = [&](const std::string& indexed, const std::string& scanned,
                          std::size_t atLeast) {
        auto a = rows(indexed);
        EXPECT_EQ(a, rows(scanned)) << indexed;
        EXPECT_GE(a.size(), atLeast) << indexed;
    };
    auto compareAll = [&] {
        expectSame("CD_AGENTE = 19", "CD_AGENTE+0 = 19", 0);
        expectSame("CD_AGENTE = 4813", "CD_AGENTE+0 = 4813", 1);
        expectSame("CD_AGENTE < 300", "CD_AGENTE+0 < 300", 20);
        expectSame("CD_AGENTE > 3000", "CD_AGENTE+0 > 3000", 100);
        expectSame("CD_AGENTE BETWEEN 1000 AND 2000", "CD_AGENTE+0 BETWEEN 1000 AND 2000", 50);
    };
    ASSERT_EQ(rows("CD_AGENTE = 19").size(), 1u);
    compareAll();

    std::vector<int> added;
    for (int i = 0; i < 20; ++i) {
        added.push_back(i % 2 ? 100000 + 37 * i : -5 - i);
        ex.execute("INSERT INTO Table1 (CD_AGENTE, RS_AGENTE, DC_AGENTE) VALUES (" +
                   std::to_string(added.back()) + ", 'neu" + std::to_string(i) + "', 'x')");
    }
    for (std::size_t i = 0; i < added.size(); ++i)
        EXPECT_EQ(
            rows("CD_AGENTE = " + std::to_string(added[i])),
            std::multiset<std::string>{std::to_string(added[i]) + "|neu" + std::to_string(i)});
    EXPECT_EQ(ex.execute("DELETE FROM Table1 WHERE CD_AGENTE = 19").rowsAffected, 1);
    EXPECT_EQ(ex.execute("UPDATE Table1 SET CD_AGENTE = 19, RS_AGENTE = 'war 27' "
                         "WHERE CD_AGENTE = 27")
                  .rowsAffected,
              1);
    EXPECT_EQ(rows("CD_AGENTE = 19"), std::multiset<std::string>{"19|war 27"});
    EXPECT_TRUE(rows("CD_AGENTE = 27").empty());
    compareAll();
    storage.reset();

    auto db = copy.open(false);
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
    Table t = db->table("Table1");
    expectIndexAnswersAsAScan(t, "CD_AGENTE", "CD_AGENTE");
    EXPECT_EQ(t.rowIds().size(), 512u + 20 - 1);
    jettest::expectExportMatches(copy.path(), "Table1");
}

// A table with a descending index on each key type, written here: keys in
// descending order with nulls last, every row found by its value, ranges
// as a scan, after inserts, updates and deletes; mdbtools reads the
// indexes as descending.
TEST(JetDescendingIndex, EveryKeyTypeWrittenAndRead) {
    idxtest::TempCopy copy("indexTestV2000.mdb");
    const std::vector<std::pair<std::string, ColumnType>> columns{
        {"L", ColumnType::Long},     {"I", ColumnType::Integer}, {"B", ColumnType::Byte},
        {"C", ColumnType::Currency}, {"S", ColumnType::Single},  {"D", ColumnType::Double},
        {"T", ColumnType::DateTime}};
    TableSpec tabelle{"Keys", {{"Id", ColumnType::Long, 0, true, false}}, {}};
    tabelle.indexes.push_back({"PrimaryKey", {{"Id", true}}, true, true});
    for (const auto& [name, type] : columns) {
        tabelle.columns.push_back({name, type});
        tabelle.indexes.push_back({"Down" + name, {{name, false}}, false, false});
    }
    tabelle.columns.push_back({"X", ColumnType::Text, 30});
    tabelle.indexes.push_back({"UpIDownX", {{"I", true}, {"X", false}}, false, false});

    std::mt19937 rng(20261125u);
    auto valueOf = [&](ColumnType type) -> Value {
        if (rng() % 9 == 0) return Value{};
        int k = int(rng() % 41) - 20;  // small, so values repeat
        switch (type) {
            case ColumnType::Long:
                return std::int32_t(k * 104729);
            case ColumnType::Integer:
                return std::int16_t(k * 1021);
            case ColumnType::Byte:
                return std::uint8_t(k + 20);
            case ColumnType::Currency:
                return Currency{std::int64_t(k) * 123456789};
            case ColumnType::Single:
                return float(k) * 0.75f;
            case ColumnType::Double:
                return double(k) / 3;
            case ColumnType::DateTime:
                return DateTime{45000 + double(k) * 1.25};
            default:
                return Value{};
        }
    };
    auto rowOf = [&](int i) {
        Row r{Value{}};
        for (const auto& c : columns) r.push_back(valueOf(c.second));
        r.push_back(std::string(i % 3 ? "Ventil " : "kugelhahn ") + std::to_string(rng() % 20));
        return r;
    };
    std::vector<RowId> ids;
    {
        auto db = copy.open();
        Writer w(db);
        w.createTable(tabelle);
        ASSERT_EQ(w.unwritableReason("Keys"), "");
        for (int i = 0; i < 300; ++i) {
            Row r = rowOf(i);
            ids.push_back(w.insert("Keys", r));
        }
        for (int i = 0; i < 300; i += 7) {
            Row r = rowOf(i);
            r[0] = std::int32_t(i + 1);
            w.update("Keys", ids[std::size_t(i)], r);
        }
        for (int i = 3; i < 300; i += 11) w.remove("Keys", ids[std::size_t(i)]);
    }

    auto db = copy.open(false);
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
    Table t = db->table("Keys");
    for (const auto& [name, type] : columns) expectIndexAnswersAsAScan(t, "Down" + name, name);

    // (I ascending, X descending): by I, then by X in reverse.
    IndexCursor cur = t.index(indexNamed(t.def(), "UpIDownX"));
    EXPECT_FALSE(cur.real().columns.at(1).ascending);
    std::vector<IndexEntry> all = cur.all();
    for (std::size_t i = 1; i < all.size(); ++i) {
        auto a = *t.read(all[i - 1].row), b = *t.read(all[i].row);
        if (isNull(a[2]) || isNull(b[2]) || number(a[2]) != number(b[2])) continue;
        auto lower = [](std::string s) {
            for (char& c : s) c = char(std::tolower(static_cast<unsigned char>(c)));
            return s;
        };
        const std::string x = lower(std::get<std::string>(a[8])),
                          y = lower(std::get<std::string>(b[8]));
        EXPECT_TRUE(x.substr(0, x.find(' ')) >= y.substr(0, y.find(' ')))
            << "entry " << i << ": " << x << " then " << y;
    }
    for (const IndexEntry& e : all) {
        Row r = *t.read(e.row);
        std::vector<RowId> hits = cur.find({r[2], r[8]});
        EXPECT_NE(std::find(hits.begin(), hits.end(), e.row), hits.end());
    }

    // An independent reader sees the same order bytes.
    int status = -1;
    std::string schema = jettest::run(
        "mdb-schema -T Keys " + jettest::quote(copy.path()) + " postgres 2>/dev/null", &status);
    ASSERT_EQ(status, 0);
    for (const auto& [name, type] : columns) {
        std::string lower(1, char(std::tolower(static_cast<unsigned char>(name[0]))));
        EXPECT_NE(schema.find("(\"" + lower + "\" DESC)"), std::string::npos) << name << schema;
    }
    EXPECT_NE(schema.find("(\"i\", \"x\" DESC)"), std::string::npos) << schema;
}

}  // namespace
