// Every table of every test file reads as mdb-export (an independent
// reader) prints it, compared per cell by column type.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>

#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;
using jettest::Cell;
using jettest::CsvRow;

// A cell in a form both readers agree on for the column's type.
std::string normal(const Column& col, const std::string& text, bool isNullCell) {
    if (isNullCell) return "<null>";
    switch (col.type) {
        case ColumnType::Boolean:
            return (text == "1" || text == "-1" || text == "true") ? "true" : "false";
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
            return std::to_string(std::strtoll(text.c_str(), nullptr, 10));
        case ColumnType::Currency:
        case ColumnType::Numeric: {
            // Decimal text: strip trailing zeros after the point.
            std::string t = text;
            if (t.find('.') != std::string::npos) {
                while (!t.empty() && t.back() == '0') t.pop_back();
                if (!t.empty() && t.back() == '.') t.pop_back();
            }
            if (t == "-0") t = "0";
            return t;
        }
        case ColumnType::Single:
        case ColumnType::Double: {
            double d = std::strtod(text.c_str(), nullptr);
            char buf[64];
            // Seven significant digits for Single, fourteen for Double: both
            // readers print at least that many.
            std::snprintf(buf, sizeof buf, "%.*g", col.type == ColumnType::Single ? 6 : 14, d);
            return buf;
        }
        case ColumnType::Guid: {
            // mdbtools drops the dash between the fourth and fifth group.
            std::string t;
            for (char ch : text)
                if (ch != '-') t += char(std::toupper(static_cast<unsigned char>(ch)));
            return t;
        }
        default:
            // mdbtools hands text and binary through C strings, so both end
            // at the first NUL there.
            return text.substr(0, text.find('\0'));
    }
}

bool hasOverflowRows(Database& db, const Table& t) {
    for (std::uint32_t p : t.dataPages()) {
        PageRef pg = db.pages().page(p);
        for (std::uint16_t i = 0; i < rowCountOf(*pg); ++i)
            if (u16(pg->data() + datapage::kRowTable + 2 * i) & datapage::kOverflowFlag)
                return true;
    }
    return false;
}

struct Compared {
    std::vector<std::vector<std::string>> ours, theirs;
};

bool skipColumn(const Column& c) {
    // Types mdbtools does not decode (it prints nothing for them).
    return !isKnownColumnType(std::uint8_t(c.type));
}

Compared compareTable(Database& db, const std::string& file, const std::string& table) {
    Compared out;
    Table t = db.table(table);
    const auto& cols = t.columns();
    t.scan([&](RowId, const Row& row) {
        std::vector<std::string> cells;
        for (std::size_t i = 0; i < cols.size(); ++i) {
            if (skipColumn(cols[i])) continue;
            cells.push_back(normal(cols[i], toText(row[i]), isNull(row[i])));
        }
        out.ours.push_back(std::move(cells));
        return true;
    });
    std::string csv = jettest::run("mdb-export " + jettest::quote(jettest::testFile(file)) + " " +
                                   jettest::quote(table) + " 2>/dev/null");
    auto rows = jettest::parseCsv(csv);
    EXPECT_FALSE(rows.empty()) << file << " " << table << ": mdb-export printed no header";
    if (rows.empty()) return out;
    // Header row: the same column names in the same order.
    std::vector<std::string> header;
    for (const Cell& c : rows[0]) header.push_back(c.text);
    std::vector<std::string> names;
    for (const Column& c : cols) names.push_back(c.name);
    EXPECT_EQ(header, names) << file << " " << table;
    for (std::size_t r = 1; r < rows.size(); ++r) {
        const CsvRow& row = rows[r];
        EXPECT_EQ(row.size(), cols.size()) << file << " " << table << " row " << r;
        std::vector<std::string> cells;
        for (std::size_t i = 0; i < cols.size() && i < row.size(); ++i) {
            if (skipColumn(cols[i])) continue;
            // mdb-export prints NULL as an empty unquoted field; an empty
            // text is an empty quoted one.
            bool nullCell =
                row[i].text.empty() && !row[i].quoted && cols[i].type != ColumnType::Boolean;
            cells.push_back(normal(cols[i], row[i].text, nullCell));
        }
        out.theirs.push_back(std::move(cells));
    }
    return out;
}

class EveryTable : public ::testing::TestWithParam<std::string> {};

TEST_P(EveryTable, ReadsAsMdbExportPrints) {
    if (!jettest::haveMdbTools())
        GTEST_FAIL() << "mdb-export is not installed (scripts/setup-deps)";
    const std::string file = GetParam();
    auto db = Database::open(jettest::testFile(file));
    std::vector<std::string> tables = db->tableNames(true);
    // mdb-tables lists the same tables (with -S the system ones too).
    std::string listed =
        jettest::run("mdb-tables -1 -S " + jettest::quote(jettest::testFile(file)));
    std::vector<std::string> theirs;
    for (const auto& r : jettest::parseCsv(listed)) theirs.push_back(r[0].text);
    std::vector<std::string> a = tables, b = theirs;
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    EXPECT_EQ(a, b);
    ASSERT_FALSE(tables.empty());
    std::size_t rowsCompared = 0;
    for (const std::string& table : tables) {
        Compared c = compareTable(*db, file, table);
        // Storage order is the same except where Access moved rows behind
        // overflow pointers (mdbtools then lists them later), so compare
        // as multisets, and in order where no row overflowed.
        auto ours = c.ours, theirs2 = c.theirs;
        std::sort(ours.begin(), ours.end());
        std::sort(theirs2.begin(), theirs2.end());
        EXPECT_EQ(ours, theirs2) << file << " table " << table;
        if (!hasOverflowRows(*db, db->table(table))) {
            EXPECT_EQ(c.ours, c.theirs) << file << " table " << table << " (order)";
        }
        rowsCompared += c.ours.size();
    }
    EXPECT_GT(rowsCompared, 0u);
}

INSTANTIATE_TEST_SUITE_P(TestData, EveryTable, ::testing::ValuesIn(jettest::testFiles()),
                         [](const auto& param) {
                             std::string n = param.param;
                             n = n.substr(0, n.find('.'));
                             return n;
                         });

}  // namespace
