// Parsing a WHERE of 20 000 OR terms against one of 2 000 in the same run:
// time and peak heap growth should each be about 10 times as much (linear
// in the statement's length), not about 100 times (quadratic).
//
// The heap is measured by counting this program's own allocations, so the
// peak of one parse is seen exactly, whatever ran before it.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <new>
#include <string>

#include "jet/sql/ast.h"

namespace {

std::atomic<std::size_t> g_live{0}, g_peak{0};

void* counted(std::size_t n) {
    void* p = std::malloc(n ? n : 1);
    if (!p) throw std::bad_alloc();
    std::size_t now = g_live += malloc_usable_size(p);
    std::size_t peak = g_peak.load();
    while (now > peak && !g_peak.compare_exchange_weak(peak, now)) {
    }
    return p;
}

void uncounted(void* p) {
    if (!p) return;
    g_live -= malloc_usable_size(p);
    std::free(p);
}

}  // namespace

void* operator new(std::size_t n) { return counted(n); }
void* operator new[](std::size_t n) { return counted(n); }
void operator delete(void* p) noexcept { uncounted(p); }
void operator delete[](void* p) noexcept { uncounted(p); }
void operator delete(void* p, std::size_t) noexcept { uncounted(p); }
void operator delete[](void* p, std::size_t) noexcept { uncounted(p); }

namespace {

std::string orChain(int terms) {
    std::string s = "SELECT * FROM tblBlockInfo WHERE Nr = 1";
    for (int i = 1; i < terms; ++i) s += " OR Nr = " + std::to_string(i + 1);
    return s;
}

struct Figures {
    double seconds = 0;
    double peakBytes = 0;
    std::size_t length = 0;
};
Figures g_small, g_large;

Figures measure(benchmark::State& state, int terms) {
    const std::string sql = orChain(terms);
    Figures f;
    f.length = sql.size();
    // Processor time, not wall time: the machine may be busy with other work.
    long n = 0;
    std::clock_t t0 = std::clock();
    for (auto _ : state) {
        sql::Statement st = sql::parseStatement(sql);
        benchmark::DoNotOptimize(st);
        ++n;
    }
    f.seconds = double(std::clock() - t0) / CLOCKS_PER_SEC / double(n);
    // One more parse, alone, for its peak.
    std::size_t before = g_live.load();
    g_peak = before;
    {
        sql::Statement st = sql::parseStatement(sql);
        benchmark::DoNotOptimize(st);
    }
    f.peakBytes = static_cast<double>(g_peak.load() - before);
    state.counters["bytes"] = static_cast<double>(f.length);
    state.counters["peak_heap"] = f.peakBytes;
    return f;
}

void BM_ParseOrChain2000(benchmark::State& state) { g_small = measure(state, 2000); }
BENCHMARK(BM_ParseOrChain2000)->Unit(benchmark::kMillisecond);

void BM_ParseOrChain20000(benchmark::State& state) { g_large = measure(state, 20000); }
BENCHMARK(BM_ParseOrChain20000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_small.seconds > 0 && g_large.seconds > 0) {
        std::printf(
            "sql_parse_chain: 20000 OR terms (%zu bytes) against 2000 (%zu bytes): %.1fx the "
            "length\n",
            g_large.length, g_small.length, double(g_large.length) / double(g_small.length));
        std::printf(
            "sql_parse_chain: parse time (processor) %.2f ms against %.2f ms, ratio %.1fx (linear: "
            "~10x)\n",
            g_large.seconds * 1e3, g_small.seconds * 1e3, g_large.seconds / g_small.seconds);
        std::printf(
            "sql_parse_chain: peak heap growth %.1f MB against %.2f MB, ratio %.1fx (linear: "
            "~10x)\n",
            g_large.peakBytes / 1e6, g_small.peakBytes / 1e6,
            g_large.peakBytes / g_small.peakBytes);
    }
    return 0;
}
