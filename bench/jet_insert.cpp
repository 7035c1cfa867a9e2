// Inserting 100 000 rows shaped like tblBlockInfo (130 columns: Nr, OrdnerID,
// 38 texts, 90 doubles) into a new file, with the primary key and one
// secondary index kept: rows per second, and the file's size against the
// raw size of the values written (Long 4, Double 8, text one byte a
// character, Null nothing). The peer for the rate is the same rows written
// without any index, in the same run.
//
// The file stays behind as the input of bench_jet_read, which compares
// reading it with mdb-export.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "jet/read/database.h"
#include "jet/write/writer.h"

namespace {

constexpr int kRows = 100000;
constexpr int kTexts = 38;
constexpr int kDoubles = 90;
constexpr int kBatch = 1000;  // rows per unit of work, as an import commits them

std::filesystem::path fileFor(const char* name) {
    return std::filesystem::temp_directory_path() / name;
}

jet::TableSpec blockInfo(bool indexed) {
    jet::TableSpec s;
    s.name = "tblBlockInfo";
    s.columns.push_back({"Nr", jet::ColumnType::Long, 0, true, false});
    s.columns.push_back({"OrdnerID", jet::ColumnType::Long});
    for (int i = 0; i < kTexts; ++i)
        s.columns.push_back(
            {"T" + std::to_string(i), jet::ColumnType::Text, std::uint16_t(i < 10 ? 144 : 50)});
    for (int i = 0; i < kDoubles; ++i)
        s.columns.push_back({"D" + std::to_string(i), jet::ColumnType::Double});
    if (indexed) {
        s.indexes.push_back({"PrimaryKey", {{"Nr", true}}, true, true});
        s.indexes.push_back({"OrdnerID", {{"OrdnerID", false}}, false, false});
    }
    return s;
}

struct Figures {
    double seconds = 0;
    std::uintmax_t fileBytes = 0;
    std::uintmax_t rawBytes = 0;
};

Figures writeRows(const std::filesystem::path& path, bool indexed) {
    std::filesystem::remove(path);
    jet::createDatabase(path.string());
    jet::OpenOptions o;
    o.writable = true;
    auto db = jet::Database::open(path.string(), o);
    jet::Writer w(db);
    w.createTable(blockInfo(indexed));
    const char* nouns[] = {"Ventil", "Kugelhahn", "Flansch", "Rohrbogen", "Schieber", "Muffe"};
    const char* mats[] = {"Stahl", "Edelstahl", "Messing", "PVC", "Guss"};
    std::mt19937 rng(7);
    Figures f;
    const auto t0 = std::chrono::steady_clock::now();
    for (int i = 0; i < kRows; i += kBatch) {
        db->begin();
        for (int k = i; k < i + kBatch && k < kRows; ++k) {
            jet::Row r;
            r.reserve(2 + kTexts + kDoubles);
            r.emplace_back();  // autonumber
            r.emplace_back(std::int32_t(1 + k / 1000));
            f.rawBytes += 8;
            char block[16];
            std::snprintf(block, sizeof block, "%03d0%03d", k / 1000, k % 1000);
            for (int t = 0; t < kTexts; ++t) {
                std::string s;
                if (t == 0)
                    s = block;
                else if (t == 1)
                    s = std::string(block) + ".sld";
                else if (t < 10)
                    s = std::string(nouns[rng() % 6]) + " DN" + std::to_string(10 + rng() % 90);
                else if (t < 14)
                    s = mats[rng() % 5];
                if (s.empty()) {
                    r.emplace_back();
                } else {
                    f.rawBytes += s.size();
                    r.emplace_back(std::move(s));
                }
            }
            for (int d = 0; d < kDoubles; ++d) {
                r.emplace_back(double(rng() % 100000) / 8.0);
                f.rawBytes += 8;
            }
            w.insert("tblBlockInfo", r);
        }
        db->commit();
    }
    f.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    db.reset();
    f.fileBytes = std::filesystem::file_size(path);
    return f;
}

Figures g_indexed, g_plain;

void BM_InsertWithIndexes(benchmark::State& state) {
    for (auto _ : state) g_indexed = writeRows(fileFor("tessara_bench_blockinfo.mdb"), true);
    state.counters["rows_per_s"] = kRows / g_indexed.seconds;
}
BENCHMARK(BM_InsertWithIndexes)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_InsertWithoutIndexes(benchmark::State& state) {
    const auto path = fileFor("tessara_bench_blockinfo_plain.mdb");
    for (auto _ : state) g_plain = writeRows(path, false);
    std::filesystem::remove(path);
    state.counters["rows_per_s"] = kRows / g_plain.seconds;
}
BENCHMARK(BM_InsertWithoutIndexes)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_indexed.seconds > 0 && g_plain.seconds > 0)
        std::printf(
            "jet_insert: %d rows of %d columns, %d per unit: %.0f rows/s with primary key and one "
            "index, %.0f rows/s without (ratio %.2fx); file %.1f MB for %.1f MB of values, size "
            "ratio %.2fx (target <= 2)\n",
            kRows, 2 + kTexts + kDoubles, kBatch, kRows / g_indexed.seconds,
            kRows / g_plain.seconds, g_indexed.seconds / g_plain.seconds,
            double(g_indexed.fileBytes) / 1e6, double(g_indexed.rawBytes) / 1e6,
            double(g_indexed.fileBytes) / double(g_indexed.rawBytes));
    return 0;
}
