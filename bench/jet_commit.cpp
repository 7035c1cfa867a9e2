// One-page unit of work (journal written and synced, page written, file
// synced, journal's header zeroed, under the writer and commit locks)
// against its floor: a plain pwrite of one page followed by fsync, on the
// same file in the same run. The two alternate, one of each in turn, so that
// both meet the same load on a shared disk; the figures are medians. Then
// units of 1 000 inserted rows, with the sync calls each one pays, counted
// by the engine's OS layer.
//
// The files are made in the temporary directory (TESSARA_JET_BENCH_DIR
// chooses another, e.g. on a real disk when /tmp is a tmpfs, where fsync
// costs nothing).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/read/database.h"
#include "jet/store/os.h"
#include "jet/write/writer.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

fs::path benchDir() {
    const char* dir = std::getenv("TESSARA_JET_BENCH_DIR");
    return dir && *dir ? fs::path(dir) : fs::temp_directory_path();
}

double secondsSince(Clock::time_point t0) {
    return std::chrono::duration<double>(Clock::now() - t0).count();
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

double g_unit = 0, g_plain = 0;

void BM_OnePageUnitAgainstPwriteFsync(benchmark::State& state) {
    const fs::path file = benchDir() / "tessara_bench_jet_commit.mdb";
    fs::copy_file(std::string(TESSARA_TESTDATA) + "/mdb/delTestV2000.mdb", file,
                  fs::copy_options::overwrite_existing);
    fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
    auto db = jet::Database::open(file.string(), {.writable = true});
    // A page of the benchmark's own at the end of the file.
    db->begin();
    const std::uint32_t page = db->allocatePage(jet::PageType::UsageMap);
    db->commit();
    int fd = ::open(file.c_str(), O_RDWR);
    if (fd < 0) {
        state.SkipWithError("cannot open the benchmark file");
        return;
    }
    std::vector<double> units, plains;
    std::uint32_t value = 0;
    for (auto _ : state) {
        auto t0 = Clock::now();
        db->begin();
        jet::PageBytes p = *db->pages().page(page);
        jet::put32(p.data() + 8, ++value);
        db->pages().put(page, p);
        db->commit();
        units.push_back(secondsSince(t0));

        jet::put32(p.data() + 8, ++value);
        t0 = Clock::now();
        if (::pwrite(fd, p.data(), p.size(), off_t(page) * jet::kPageSize) != ssize_t(p.size()) ||
            ::fsync(fd) != 0) {
            state.SkipWithError("write failed");
            break;
        }
        plains.push_back(secondsSince(t0));
    }
    ::close(fd);
    db.reset();
    fs::remove(file);
    g_unit = median(units);
    g_plain = median(plains);
    state.counters["unit_us"] = g_unit * 1e6;
    state.counters["pwrite_fsync_us"] = g_plain * 1e6;
}
BENCHMARK(BM_OnePageUnitAgainstPwriteFsync)->Unit(benchmark::kMicrosecond)->MinTime(2.0);

constexpr int kRowsPerUnit = 1000;
constexpr int kUnits = 5;
std::vector<std::uint64_t> g_syncs;
double g_rowsUnit = 0;

void BM_UnitsOfThousandRows(benchmark::State& state) {
    const fs::path file = benchDir() / "tessara_bench_jet_commit_rows.mdb";
    for (auto _ : state) {
        fs::remove(file);
        jet::createDatabase(file.string());
        auto db = jet::Database::open(file.string(), {.writable = true});
        jet::Writer w(db);
        jet::TableSpec s;
        s.name = "tblTeile";
        s.columns = {{"Nr", jet::ColumnType::Long, 0, true, false},
                     {"OrdnerID", jet::ColumnType::Long},
                     {"Name", jet::ColumnType::Text, 50}};
        for (int d = 0; d < 8; ++d)
            s.columns.push_back({"D" + std::to_string(d), jet::ColumnType::Double});
        s.indexes = {{"PrimaryKey", {{"Nr", true}}, true, true},
                     {"OrdnerID", {{"OrdnerID", true}}, false, false}};
        w.createTable(s);
        g_syncs.clear();
        std::vector<double> times;
        for (int u = 0; u < kUnits; ++u) {
            const std::uint64_t syncs = jet::os::syncCalls();
            const auto t0 = Clock::now();
            db->begin();
            for (int k = 0; k < kRowsPerUnit; ++k) {
                const int i = u * kRowsPerUnit + k;
                jet::Row r;
                r.emplace_back();  // autonumber
                r.emplace_back(std::int32_t(1 + i / 250));
                r.emplace_back("Teil " + std::to_string(i));
                for (int d = 0; d < 8; ++d) r.emplace_back(double(i * 8 + d) / 4.0);
                w.insert("tblTeile", r);
            }
            db->commit();
            times.push_back(secondsSince(t0));
            g_syncs.push_back(jet::os::syncCalls() - syncs);
        }
        g_rowsUnit = median(times);
    }
    fs::remove(file);
}
BENCHMARK(BM_UnitsOfThousandRows)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_unit > 0 && g_plain > 0)
        std::printf(
            "jet_commit: one-page unit of work %.1f us, pwrite+fsync of one page %.1f us "
            "(medians, taken in turn), ratio %.2fx (target <= 3)\n",
            g_unit * 1e6, g_plain * 1e6, g_unit / g_plain);
    if (!g_syncs.empty()) {
        std::string each;
        for (std::uint64_t n : g_syncs) each += (each.empty() ? "" : " ") + std::to_string(n);
        std::printf(
            "jet_commit: unit of %d inserted rows (primary key and one index) %.1f ms (median), "
            "sync calls of each of %d units: %s (target 2)\n",
            kRowsPerUnit, g_rowsUnit * 1e3, kUnits, each.c_str());
    }
    return 0;
}
