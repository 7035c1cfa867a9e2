// One-page unit of work (journal written and synced, page written, file
// synced, journal deleted, under the writer and commit locks) against its
// floor: a plain pwrite of one page followed by fsync, on the same file in
// the same run. The file is a copy of delTestV2000.mdb in the temporary
// directory (TESSARA_JET_BENCH_DIR chooses another, e.g. on a real disk when
// /tmp is a tmpfs, where fsync costs nothing).
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "jet/read/database.h"

namespace {

namespace fs = std::filesystem;

fs::path benchFile() {
    const char* dir = std::getenv("TESSARA_JET_BENCH_DIR");
    fs::path out = fs::path(dir && *dir ? dir : fs::temp_directory_path().string()) /
                   "tessara_bench_jet_commit.mdb";
    fs::copy_file(std::string(TESSARA_TESTDATA) + "/mdb/delTestV2000.mdb", out,
                  fs::copy_options::overwrite_existing);
    return out;
}

const fs::path kFile = benchFile();
double g_unit = 0, g_plain = 0;

// A page of the benchmark's own at the end of the file.
std::uint32_t ownPage() {
    static const std::uint32_t page = [] {
        auto db = jet::Database::open(kFile.string(), {.writable = true});
        db->begin();
        std::uint32_t n = db->allocatePage(jet::PageType::UsageMap);
        db->commit();
        return n;
    }();
    return page;
}

void BM_UnitOfWorkOnePage(benchmark::State& state) {
    const std::uint32_t page = ownPage();
    auto db = jet::Database::open(kFile.string(), {.writable = true});
    std::uint32_t value = 0;
    auto t0 = std::chrono::steady_clock::now();
    for (auto _ : state) {
        db->begin();
        jet::PageBytes p = *db->pages().page(page);
        jet::put32(p.data() + 8, ++value);
        db->pages().put(page, p);
        db->commit();
    }
    g_unit = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count() /
             double(state.iterations());
}
BENCHMARK(BM_UnitOfWorkOnePage)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

void BM_PwriteFsyncOnePage(benchmark::State& state) {
    const std::uint32_t page = ownPage();
    int fd = ::open(kFile.c_str(), O_RDWR);
    if (fd < 0) {
        state.SkipWithError("cannot open the benchmark file");
        return;
    }
    std::vector<std::uint8_t> p(jet::kPageSize, 0);
    p[0] = std::uint8_t(jet::PageType::UsageMap);
    p[1] = 1;
    std::uint32_t value = 0;
    const off_t at = off_t(page) * jet::kPageSize;
    auto t0 = std::chrono::steady_clock::now();
    for (auto _ : state) {
        jet::put32(p.data() + 8, ++value);
        if (::pwrite(fd, p.data(), p.size(), at) != ssize_t(p.size()) || ::fsync(fd) != 0) {
            state.SkipWithError("write failed");
            break;
        }
    }
    g_plain = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count() /
              double(state.iterations());
    ::close(fd);
}
BENCHMARK(BM_PwriteFsyncOnePage)->Unit(benchmark::kMicrosecond)->MinTime(1.0);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::error_code ec;
    fs::remove(kFile, ec);
    if (g_unit > 0 && g_plain > 0)
        std::printf(
            "jet_commit: one-page unit of work %.1f us, pwrite+fsync of one page %.1f us, "
            "ratio %.2fx\n",
            g_unit * 1e6, g_plain * 1e6, g_unit / g_plain);
    return 0;
}
