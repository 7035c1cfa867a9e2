// The 72 Finds of a page flip on the real 100 000-Block library: rsBlockInfo0
// of one Folder (10 000 Blocks) as the navigation model opens it, and the
// Finds "Block Like '<number>'" that fill the last full Page of 72 slots,
// against one full scan of the same record set (every row visited, one
// field read), in the same run. Target: Finds/scan <= 1.0.
//
// Also printed: the first 72 Finds after the record set was read again (what
// a Folder change pays), the model's whole GeheZuSeite, and record set open
// plus Finds against open plus scan (the shape of bench_recordset_find).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

#include "authoring/datei_layout.h"
#include "db/jet_opener.h"
#include "grosse_bibliothek.h"
#include "library/navigation_model.h"
#include "platform/environment.h"

namespace {

using namespace tessara;
using Uhr = std::chrono::steady_clock;

constexpr int kOrdner = 5;
constexpr long kSeite = bench::kBloeckeProOrdner / 72 - 1;  // the last full Page

double sekunden(Uhr::time_point a, Uhr::time_point b) {
    return std::chrono::duration<double>(b - a).count();
}

struct Ordner {
    bench::ArbeitsVerzeichnis arbeit{"tessara_bench_page_finds"};
    ProgrammZustand z;
    NavigationsModell modell{z, db::jetOpener(platform::nativePath)};
    std::vector<std::string> nummern;  // the block numbers of the Page's slots
    std::string select;                // rsBlockInfo0's statement

    explicit Ordner(const bench::GrosseBibliothek& bib) {
        bench::fctZustandEinrichten(z, arbeit.pfad());
        if (!modell.fctCodeTabelleLesen(fctCodeTabelleDatei(z.strAppPfad)) ||
            !modell.fctDatenbankOeffnen(bib.mdbProgramm))
            throw std::runtime_error("cannot open the library: " + modell.fehlerText());
        modell.setAnzahlDerBilder(bench::kBilderIndex);
        modell.OrdnerInArrayEinlesen();
        if (!modell.fctOrdnerWaehlen(bib.ordnerNr(kOrdner), kSeite))
            throw std::runtime_error("Folder " + bib.ordnerNr(kOrdner) + " is missing");
        const auto& alle = modell.aryBlocknummern();
        nummern.assign(alle.end() - 72, alle.end());
        select = rs().source();
    }
    db::Recordset& rs() { return modell.datenbank().rsBlockInfo0; }

    // As the model looks a slot up: from the first row, "Block Like".
    long finds(db::Recordset& r) {
        long gefunden = 0;
        for (const auto& nr : nummern) {
            r.moveFirst();
            gefunden += r.find("Block Like '" + nr + "'");
        }
        return gefunden;
    }
    std::size_t scan(db::Recordset& r) {
        std::size_t bytes = 0;
        for (r.moveFirst(); !r.eof(); r.moveNext()) bytes += r.text("Block").size();
        return bytes;
    }
};

Ordner* g_o = nullptr;

void BM_72Finds(benchmark::State& state) {
    long gefunden = 0;
    for (auto _ : state) gefunden += g_o->finds(g_o->rs());
    state.counters["found"] = double(gefunden) / double(state.iterations());
}
BENCHMARK(BM_72Finds)->Unit(benchmark::kMicrosecond);

void BM_FullScan(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(g_o->scan(g_o->rs()));
}
BENCHMARK(BM_FullScan)->Unit(benchmark::kMicrosecond);

void BM_GeheZuSeite(benchmark::State& state) {
    for (auto _ : state) g_o->modell.GeheZuSeite(kSeite);
}
BENCHMARK(BM_GeheZuSeite)->Unit(benchmark::kMicrosecond);

void BM_OpenAnd72Finds(benchmark::State& state) {
    for (auto _ : state) {
        db::Recordset r;
        r.open(g_o->select, g_o->modell.datenbank().con, db::adOpenStatic, db::adLockReadOnly);
        benchmark::DoNotOptimize(g_o->finds(r));
    }
}
BENCHMARK(BM_OpenAnd72Finds)->Unit(benchmark::kMillisecond);

void BM_OpenAndFullScan(benchmark::State& state) {
    for (auto _ : state) {
        db::Recordset r;
        r.open(g_o->select, g_o->modell.datenbank().con, db::adOpenStatic, db::adLockReadOnly);
        benchmark::DoNotOptimize(g_o->scan(r));
    }
}
BENCHMARK(BM_OpenAndFullScan)->Unit(benchmark::kMillisecond);

void verhaeltnisse(Ordner& o) {
    constexpr int kRunden = 31;
    std::vector<double> finds, scan, erste, gehe, gehe1, geheEnde;
    long gefunden = 0;
    for (int r = 0; r < kRunden; ++r) {
        o.rs().requery();  // what the record set knows about its rows goes
        auto t0 = Uhr::now();
        gefunden = o.finds(o.rs());
        auto t1 = Uhr::now();
        o.finds(o.rs());
        auto t2 = Uhr::now();
        benchmark::DoNotOptimize(o.scan(o.rs()));
        auto t3 = Uhr::now();
        o.modell.GeheZuSeite(kSeite);
        auto t4 = Uhr::now();
        o.modell.GeheZuSeite(0);
        auto t5 = Uhr::now();
        o.modell.GeheZuSeite(o.modell.letzteSeite());
        auto t6 = Uhr::now();
        o.modell.GeheZuSeite(kSeite);
        gehe1.push_back(sekunden(t4, t5));
        geheEnde.push_back(sekunden(t5, t6));
        erste.push_back(sekunden(t0, t1));
        finds.push_back(sekunden(t1, t2));
        scan.push_back(sekunden(t2, t3));
        gehe.push_back(sekunden(t3, t4));
    }
    const double f = bench::fctMedian(finds), s = bench::fctMedian(scan),
                 e = bench::fctMedian(erste), g = bench::fctMedian(gehe);
    std::printf(
        "page_finds: rsBlockInfo0 of Folder %s, %ld rows; Page %ld: %ld of 72 found; medians of %d "
        "rounds: 72 Finds %.3f ms, full scan %.3f ms, first 72 Finds after Requery %.3f ms, "
        "GeheZuSeite %.3f ms (to Page 1: %.3f ms, to the code table's last Page %ld: %.3f ms)\n",
        o.modell.aktuellerOrdner()->OrdnerNr.c_str(), o.rs().recordCount(), kSeite + 1, gefunden,
        kRunden, f * 1e3, s * 1e3, e * 1e3, g * 1e3, bench::fctMedian(gehe1) * 1e3,
        o.modell.letzteSeite() + 1, bench::fctMedian(geheEnde) * 1e3);
    std::printf(
        "page_finds ratio 72 Finds/full scan = %.2f (target <= 1.0); first Finds after "
        "Requery/scan = %.2f; GeheZuSeite/scan = %.2f\n",
        f / s, e / s, g / s);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    try {
        Ordner o(bench::fctGrosseBibliothek());
        if (o.finds(o.rs()) != 72) throw std::runtime_error("the Page's Blocks are not all found");
        g_o = &o;
        benchmark::RunSpecifiedBenchmarks();
        verhaeltnisse(o);
        g_o = nullptr;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "page_finds: %s\n", e.what());
        return 1;
    }
    benchmark::Shutdown();
    return 0;
}
