// Reading a table to CSV: the Jet reader against mdb-export on the same file
// and table, in the same run.
//
// The file is TESSARA_JET_BENCH_MDB / TESSARA_JET_BENCH_TABLE when set, else
// the 100 000-row tblBlockInfo file bench_jet_insert leaves behind. Otherwise a
// large table is grown from an Access-made file: Table1 of
// indexTestV2000.mdb (five columns: four Long, one Text) copied onto 25 000
// data pages behind a reference usage map, 100 004 rows, written to a
// temporary file that both readers read. mdb-export's figure is its run on
// the table less its run on an empty table of the same file, so process
// start-up is not counted against the peer.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "jet/read/csv_export.h"
#include "jet/read/database.h"
#include "jet/read/index_cursor.h"
#include "jet/read/table.h"

namespace {

std::string env(const char* name, const std::string& fallback) {
    const char* v = std::getenv(name);
    return v && *v ? v : fallback;
}

// Grows Table1 of indexTestV2000.mdb to `copies` more data pages; returns the file.
std::string grownFile(std::uint32_t copies) {
    namespace fs = std::filesystem;
    fs::path out = fs::temp_directory_path() / "tessara_bench_jet_read.mdb";
    std::ifstream in(std::string(TESSARA_TESTDATA) + "/mdb/indexTestV2000.mdb", std::ios::binary);
    std::vector<std::uint8_t> image((std::istreambuf_iterator<char>(in)), {});
    auto db = jet::Database::fromMemory(image);
    jet::Table t = db->table("Table1");
    const std::uint32_t dataPage = t.dataPages().at(0);
    jet::UsageMap inlineMap = jet::readUsageMap(db->pages(), t.def().usedPages);
    const std::uint32_t first = std::uint32_t(image.size() / jet::kPageSize);
    image.reserve(image.size() + (copies + 1) * std::size_t(jet::kPageSize));
    for (std::uint32_t i = 0; i < copies; ++i)
        image.insert(image.end(), image.begin() + std::ptrdiff_t(dataPage * jet::kPageSize),
                     image.begin() + std::ptrdiff_t((dataPage + 1) * jet::kPageSize));
    std::vector<std::uint8_t> map(jet::kPageSize, 0);
    map[0] = std::uint8_t(jet::PageType::UsageMap);
    map[1] = 1;
    auto mark = [&](std::uint32_t p) { map[4 + p / 8] |= std::uint8_t(1u << (p % 8)); };
    mark(dataPage);
    for (std::uint32_t i = 0; i < copies; ++i) mark(first + i);
    const std::uint32_t mapPage = first + copies;
    image.insert(image.end(), map.begin(), map.end());
    jet::RowBytes r = jet::rowBytes(db->pages(), inlineMap.where);
    std::uint8_t* row = image.data() + std::size_t(inlineMap.where.page) * jet::kPageSize + r.start;
    std::fill(row, row + r.size(), 0);
    row[0] = 1;
    jet::put32(row + 1, mapPage);
    std::ofstream o(out, std::ios::binary);
    o.write(reinterpret_cast<const char*>(image.data()), std::streamsize(image.size()));
    return out.string();
}

// bench_jet_insert (run before this one by `make bench`) leaves its file here.
std::string insertBenchFile() {
    auto p = std::filesystem::temp_directory_path() / "tessara_bench_blockinfo.mdb";
    std::error_code ec;
    return std::filesystem::exists(p, ec) ? p.string() : std::string();
}
const bool kOwnFile = std::getenv("TESSARA_JET_BENCH_MDB") != nullptr || !insertBenchFile().empty();
const std::string kFile = std::getenv("TESSARA_JET_BENCH_MDB") ? env("TESSARA_JET_BENCH_MDB", "")
                          : kOwnFile                           ? insertBenchFile()
                                                               : grownFile(25000);
const std::string kTable = env("TESSARA_JET_BENCH_TABLE", kOwnFile ? "tblBlockInfo" : "Table1");
const std::string kEmptyTable = env("TESSARA_JET_BENCH_EMPTY", "MSysQueries");

double g_ours = 0, g_peer = 0;
std::size_t g_rows = 0;

std::string quote(const std::string& s) {
    std::string out = "'";
    for (char c : s) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

double timeCommand(const std::string& cmd) {
    auto t0 = std::chrono::steady_clock::now();
    if (std::system(cmd.c_str()) != 0) return -1;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// Counts bytes without keeping them.
class NullBuf : public std::streambuf {
  protected:
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
    int overflow(int c) override { return c; }
};

void BM_JetReadToCsv(benchmark::State& state) {
    double total = 0;
    int n = 0;
    for (auto _ : state) {
        auto t0 = std::chrono::steady_clock::now();
        auto db =
            jet::Database::open(kFile);  // cold: the file is opened every time, as mdb-export does
        NullBuf buf;
        std::ostream out(&buf);
        g_rows = jet::writeCsv(db->table(kTable), out);
        total += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        ++n;
    }
    g_ours = total / n;
    state.counters["rows"] = double(g_rows);
}
BENCHMARK(BM_JetReadToCsv)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_MdbExport(benchmark::State& state) {
    const std::string base = "mdb-export " + quote(kFile) + " ";
    double total = 0;
    int n = 0;
    for (auto _ : state) {
        double full = timeCommand(base + quote(kTable) + " > /dev/null 2>&1");
        double empty = timeCommand(base + quote(kEmptyTable) + " > /dev/null 2>&1");
        if (full < 0 || empty < 0) {
            state.SkipWithError("mdb-export failed (is mdbtools installed?)");
            return;
        }
        double per = full - empty;
        state.SetIterationTime(per > 0 ? per : 1e-9);
        total += per > 0 ? per : 1e-9;
        ++n;
    }
    g_peer = total / n;
}
BENCHMARK(BM_MdbExport)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

// 10 000 lookups by primary key through the index against one full scan of
// the same table (the keys cycle through the table's own rows).
void BM_PrimaryKeyLookups(benchmark::State& state) {
    auto db = jet::Database::open(kFile);
    jet::Table t = db->table(kTable);
    std::size_t pk = t.indexCount();
    for (std::size_t i = 0; i < t.indexCount(); ++i)
        if (t.def().indexes[i].isPrimary() ||
            (pk == t.indexCount() && t.index(i).real().columns.size() == 1))
            pk = i;
    if (pk == t.indexCount()) {
        state.SkipWithError("table has no single-column index");
        return;
    }
    jet::IndexCursor cur = t.index(pk);
    const jet::Column* col = t.def().columnByNumber(cur.real().columns[0].columnNumber);
    int pos = t.columnPosition(col->name);
    std::vector<jet::Value> keys;
    t.scan([&](jet::RowId, const jet::Row& r) {
        keys.push_back(r[std::size_t(pos)]);
        return true;
    });
    std::size_t hits = 0;
    for (auto _ : state) {
        for (int i = 0; i < 10000; ++i)
            hits += cur.find({keys[std::size_t(i) % keys.size()]}).size();
    }
    state.counters["hits_per_run"] = double(hits) / double(state.iterations());
}
BENCHMARK(BM_PrimaryKeyLookups)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_FullScan(benchmark::State& state) {
    auto db = jet::Database::open(kFile);
    jet::Table t = db->table(kTable);
    std::size_t n = 0;
    for (auto _ : state) {
        t.scan([&](jet::RowId, const jet::Row&) {
            ++n;
            return true;
        });
    }
    state.counters["rows"] = double(n) / double(state.iterations());
}
BENCHMARK(BM_FullScan)->Unit(benchmark::kMillisecond)->MinTime(1.0);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (!kOwnFile) std::filesystem::remove(kFile);
    if (g_ours > 0 && g_peer > 0)
        std::printf(
            "jet_read: %s %s, %zu rows: Jet reader %.3f ms, mdb-export %.3f ms, ratio %.2fx "
            "(target <= 0.5)\n",
            kFile.c_str(), kTable.c_str(), g_rows, g_ours * 1e3, g_peer * 1e3, g_ours / g_peer);
    return 0;
}
