#pragma once
// Running mdbtools (mdb-export, mdb-tables) and the batch tool from tests,
// and parsing the CSV they print.
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace jettest {

std::string testFile(const std::string& name);  // a file of the shared test data
std::vector<std::string> testFiles();  // every .mdb of the shared test data (mdb/, mdb-index/)
std::vector<std::uint8_t> fileImage(const std::string& name);  // a test file's bytes

// Runs a shell command, returns its standard output; exit status in *status.
std::string run(const std::string& command, int* status = nullptr);
std::string quote(const std::string& arg);                // for the shell
std::vector<std::string> lines(const std::string& text);  // split at newlines
bool haveMdbTools();

// CSV as mdb-export prints it: quoted fields may hold commas, newlines and
// doubled quotes. Each cell remembers whether it was quoted.
struct Cell {
    std::string text;
    bool quoted = false;
};
using CsvRow = std::vector<Cell>;
std::vector<CsvRow> parseCsv(const std::string& text);

// mdb-export's rows of table (header row dropped), each cell as printed.
std::vector<std::vector<std::string>> exportRows(const std::string& path, const std::string& table);
// Every row of the table as both readers see it: ours (toText) against
// mdb-export's. Sorted, since mdb-export lists a row Access or the writer
// moved behind an overflow pointer where it lies. Binary cells are left out:
// mdbtools prints their raw bytes and Guids in its own form, and cuts text
// at a NUL.
void expectExportMatches(const std::string& path, const std::string& table);

// The number and message of the jet::Error act throws; 0 and "" when it
// throws none.
std::pair<long, std::string> errorOf(const std::function<void()>& act);

// The tab-separated fields of each line of tests/jet/write/golden/<name>,
// lines that are empty or start with # left out.
std::vector<std::vector<std::string>> goldenRows(const std::string& name);

// The bytes of a test file whose table's first index tree names column
// number -97 first, which the table lacks (damage no Access file has).
std::vector<std::uint8_t> withBadIndexColumn(const std::string& file, const std::string& table);

}  // namespace jettest
