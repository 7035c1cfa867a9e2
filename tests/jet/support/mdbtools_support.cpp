#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <utility>

#include "befehl.h"
#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/write/tdef_writer.h"

namespace jettest {

namespace {
// The Access-made files: the general ones, and those kept apart for index
// properties (descending columns, IgnoreNulls, Unique, Required).
const char* const kDirectories[] = {"mdb", "mdb-index"};
}  // namespace

std::string testFile(const std::string& name) {
    for (const char* dir : kDirectories) {
        std::filesystem::path p = std::filesystem::path(TESSARA_TESTDATA) / dir / name;
        if (std::filesystem::exists(p)) return p.string();
    }
    return std::string(TESSARA_TESTDATA) + "/mdb/" + name;
}

std::vector<std::uint8_t> fileImage(const std::string& name) {
    std::ifstream in(testFile(name), std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {});
}

std::vector<std::string> testFiles() {
    std::vector<std::string> out;
    for (const char* dir : kDirectories)
        for (const auto& e :
             std::filesystem::directory_iterator(std::filesystem::path(TESSARA_TESTDATA) / dir))
            if (e.path().extension() == ".mdb") out.push_back(e.path().filename().string());
    std::sort(out.begin(), out.end());
    return out;
}

std::string quote(const std::string& arg) {
    std::string out = "'";
    for (char c : arg) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::string run(const std::string& command, int* status) {
    return tessara::test::befehlsAusgabe(command, status);
}

bool haveMdbTools() {
    int status = 0;
    run("command -v mdb-export >/dev/null 2>&1", &status);
    return status == 0;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

std::vector<CsvRow> parseCsv(const std::string& s) {
    std::vector<CsvRow> rows;
    CsvRow row;
    Cell cell;
    bool inQuotes = false, any = false;  // any: the last line has something
    for (std::size_t i = 0; i < s.size(); ++i) {
        const char c = s[i];
        if (inQuotes) {
            if (c != '"')
                cell.text += c;
            else if (i + 1 < s.size() && s[i + 1] == '"')
                cell.text += s[++i];
            else
                inQuotes = false;
        } else if (c == '"' && cell.text.empty() && !cell.quoted) {
            cell.quoted = inQuotes = any = true;
        } else if (c == ',' || c == '\n') {
            row.push_back(std::exchange(cell, Cell{}));
            any = c == ',';
            if (c == '\n') rows.push_back(std::exchange(row, CsvRow{}));
        } else {
            cell.text += c;
            any = true;
        }
    }
    if (any) {
        row.push_back(std::move(cell));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<std::vector<std::string>> exportRows(const std::string& path,
                                                 const std::string& table) {
    int status = 0;
    const auto csv =
        parseCsv(run("mdb-export " + quote(path) + " " + quote(table) + " 2>/dev/null", &status));
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 1; status == 0 && i < csv.size(); ++i) {
        rows.emplace_back();
        for (const Cell& c : csv[i]) rows.back().push_back(c.text);
    }
    return rows;
}

void expectExportMatches(const std::string& path, const std::string& table) {
    auto db = jet::Database::open(path);
    auto def = db->tableDef(table);
    std::vector<std::vector<std::string>> ours;
    db->table(table).scan([&](jet::RowId, const jet::Row& r) {
        ours.emplace_back();
        for (const jet::Value& v : r) ours.back().push_back(jet::toText(v));
        return true;
    });
    auto theirs = exportRows(path, table);
    for (auto* rows : {&ours, &theirs})
        for (auto& cells : *rows)
            for (std::size_t k = 0; k < cells.size() && k < def->columns.size(); ++k) {
                const jet::ColumnType t = def->columns[k].type;
                if (t == jet::ColumnType::OLE || t == jet::ColumnType::Binary ||
                    t == jet::ColumnType::Guid || !jet::isKnownColumnType(std::uint8_t(t)))
                    cells[k].clear();
                else
                    cells[k].resize(std::min(cells[k].size(), cells[k].find('\0')));
            }
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    ASSERT_EQ(theirs.size(), ours.size()) << table;
    for (std::size_t i = 0; i < ours.size(); ++i) EXPECT_EQ(theirs[i], ours[i]) << table;
}

std::pair<long, std::string> errorOf(const std::function<void()>& act) {
    try {
        act();
    } catch (const jet::Error& e) {
        return {e.number(), e.what()};
    }
    return {0, ""};
}

std::vector<std::vector<std::string>> goldenRows(const std::string& name) {
    std::ifstream in(std::filesystem::path(TESSARA_SOURCE_DIR) / "tests" / "jet" / "write" /
                     "golden" / name);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        rows.emplace_back(1);
        for (char ch : line)
            if (ch == '\t')
                rows.back().emplace_back();
            else
                rows.back().back().push_back(ch);
    }
    return rows;
}

std::vector<std::uint8_t> withBadIndexColumn(const std::string& file, const std::string& table) {
    std::vector<std::uint8_t> bytes = fileImage(file);
    jet::TableDef d = *jet::Database::fromMemory(bytes)->tableDef(table);
    d.realIndexes.at(0).columns.at(0).columnNumber = 0xFF9F;
    const auto pages = jet::tableDefPages(d, d.pages);
    for (std::size_t i = 0; i < pages.size(); ++i)
        std::copy(pages[i].begin(), pages[i].end(),
                  bytes.begin() + std::ptrdiff_t(d.pages[i]) * jet::kPageSize);
    return bytes;
}

}  // namespace jettest
