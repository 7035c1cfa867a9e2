// Reading a table to CSV: the Jet reader against mdb-export on the same file
// and table, in the same run.
//
// The file is TESSARA_JET_BENCH_MDB / TESSARA_JET_BENCH_TABLE when set (the
// 100 000-row tblBlockInfo file made by the writer's benchmark), else the
// catalogue of the largest Access-made test file. mdb-export's figure is
// its run on the table less its run on an empty table of the same file, so
// process start-up is not counted against the peer.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "jet/csv_export.h"
#include "jet/database.h"

namespace {

std::string env(const char* name, const std::string& fallback) {
    const char* v = std::getenv(name);
    return v && *v ? v : fallback;
}

const std::string kFile = env("TESSARA_JET_BENCH_MDB", std::string(TESSARA_TESTDATA) + "/mdb/testV2000.mdb");
const std::string kTable = env("TESSARA_JET_BENCH_TABLE", std::getenv("TESSARA_JET_BENCH_MDB") ? "tblBlockInfo" : "MSysObjects");
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
        auto db = jet::Database::open(kFile);  // cold: the file is opened every time, as mdb-export does
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

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_ours > 0 && g_peer > 0)
        std::printf("jet_read: %s %s, %zu rows: Jet reader %.3f ms, mdb-export %.3f ms, ratio %.2fx (target <= 0.5)\n",
                    kFile.c_str(), kTable.c_str(), g_rows, g_ours * 1e3, g_peer * 1e3, g_ours / g_peer);
    return 0;
}
