// The search dialog's statement over 100 000 Block rows: the SQL layer, over
// an .mdb file written by the Jet engine and over the in-memory store,
// against Debian's sqlite3 running the same statement over the same rows.
//
// The sqlite3 figure is the time per statement inside one sqlite3 process
// (a run with the statement repeated, less a run without it), so process
// start-up is not counted against the peer.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "jet/sql/engine_storage.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"

namespace {

constexpr int kRows = 100000;
const char* kQuery =
    "SELECT Nr, Block, OrdnerID, SlideLib, BlkName0, M0 FROM tblBlockInfo WHERE M0 LIKE '%ventil%' "
    "AND M3 LIKE "
    "'%stahl%'";

std::vector<std::string> columnNames() {
    std::vector<std::string> c = {"Nr", "Block", "SlideLib", "OrdnerID"};
    for (int i = 0; i < 5; ++i) c.push_back("BlkName" + std::to_string(i));
    for (int i = 0; i < 10; ++i) c.push_back("M" + std::to_string(i));
    return c;
}

struct Generated {
    std::vector<sql::Row> rows;
};

// The same rows for both sides, from a fixed seed.
const Generated& rows() {
    static Generated g = [] {
        Generated out;
        const char* nouns[] = {"Ventil",   "Kugelhahn",        "Flansch", "Rohrbogen",
                               "Schieber", "Rückschlagventil", "Muffe"};
        const char* mats[] = {"Stahl", "Edelstahl", "Messing", "PVC", "Guss"};
        std::mt19937 rng(42);
        for (int i = 0; i < kRows; ++i) {
            sql::Row r(19);
            char block[16];
            std::snprintf(block, sizeof block, "%03d0%03d", i / 1000, i % 1000);
            r[0] = sql::Value::integer(i + 1);
            r[1] = sql::Value::text(block);
            r[2] = sql::Value::text(std::string(block) + ".sld");
            r[3] = sql::Value::integer(1 + i / 1000);
            r[4] = sql::Value::text("B" + std::string(block));
            r[9] = sql::Value::text(std::string(nouns[rng() % 7]) + " DN" +
                                    std::to_string(10 + rng() % 90));
            r[12] = sql::Value::text(mats[rng() % 5]);
            r[10] = sql::Value::text("PN" + std::to_string(rng() % 40));
            out.rows.push_back(std::move(r));
        }
        return out;
    }();
    return g;
}

std::shared_ptr<sql::MemoryStorage> memoryCatalogue() {
    auto db = std::make_shared<sql::MemoryStorage>();
    std::vector<sql::ColumnDef> cols;
    for (const auto& n : columnNames()) {
        sql::ColumnDef d{n, sql::ColumnType::Text, 144, false, true};
        if (n == "Nr" || n == "OrdnerID") d = {n, sql::ColumnType::Long, 0, n == "Nr", n != "Nr"};
        cols.push_back(d);
    }
    auto t = db->createTable("tblBlockInfo", cols,
                             {sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}});
    for (auto r : rows().rows) t->insert(r);
    db->counters().blankUnneeded = false;  // a plain store: rows as they are
    return db;
}

std::vector<sql::ColumnDef> catalogueColumns() {
    std::vector<sql::ColumnDef> cols;
    for (const auto& n : columnNames()) {
        sql::ColumnDef d{n, sql::ColumnType::Text, 144, false, true};
        if (n == "Nr" || n == "OrdnerID") d = {n, sql::ColumnType::Long, 0, n == "Nr", n != "Nr"};
        cols.push_back(d);
    }
    return cols;
}

// The rows written once into a new .mdb file through the Jet engine.
std::filesystem::path mdbFile() {
    static std::filesystem::path path = [] {
        auto dir = std::filesystem::temp_directory_path() /
                   ("tessara_bench_mdb_" + std::to_string(::getpid()));
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        auto file = dir / "blocks.mdb";
        auto db = sql::openEngineStorage(file.string(), true);
        auto t = db->createTable("tblBlockInfo", catalogueColumns(),
                                 {sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}});
        for (std::size_t i = 0; i < rows().rows.size(); i += 5000) {
            db->begin();
            for (std::size_t k = i; k < std::min(rows().rows.size(), i + 5000); ++k) {
                sql::Row r = rows().rows[k];
                t->insert(r);
            }
            db->commit();
        }
        return file;
    }();
    return path;
}

std::string sqliteLiteral(const sql::Value& v) {
    if (v.isNull()) return "NULL";
    if (v.isNumber()) return v.toString();
    std::string s = "'";
    for (char c : v.textRef()) s += c == '\'' ? std::string("''") : std::string(1, c);
    return s + "'";
}

std::filesystem::path sqliteFile() {
    static std::filesystem::path path = [] {
        auto dir = std::filesystem::temp_directory_path() /
                   ("tessara_bench_" + std::to_string(::getpid()));
        std::filesystem::create_directories(dir);
        auto db = dir / "blocks.sqlite";
        auto script = dir / "load.sql";
        std::ofstream out(script);
        out << "PRAGMA journal_mode=OFF;\nBEGIN;\nCREATE TABLE tblBlockInfo (";
        auto names = columnNames();
        for (std::size_t i = 0; i < names.size(); ++i)
            out << (i ? ", " : "") << names[i]
                << (names[i] == "Nr"         ? " INTEGER PRIMARY KEY"
                    : names[i] == "OrdnerID" ? " INTEGER"
                                             : " TEXT");
        out << ");\n";
        for (const auto& r : rows().rows) {
            out << "INSERT INTO tblBlockInfo VALUES (";
            for (std::size_t i = 0; i < r.size(); ++i) out << (i ? "," : "") << sqliteLiteral(r[i]);
            out << ");\n";
        }
        out << "COMMIT;\n";
        out.close();
        std::string cmd = "sqlite3 '" + db.string() + "' < '" + script.string() + "' > /dev/null";
        if (std::system(cmd.c_str()) != 0)
            std::fprintf(stderr, "sqlite3 could not load the rows\n");
        return db;
    }();
    return path;
}

double secondsOf(const std::string& cmd) {
    auto t0 = std::chrono::steady_clock::now();
    if (std::system(cmd.c_str()) != 0) std::fprintf(stderr, "failed: %s\n", cmd.c_str());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

double g_ours = 0, g_peer = 0;

// Runs the statement as often as the framework asks; answers seconds per run.
double timeQuery(benchmark::State& state, const std::shared_ptr<sql::Storage>& db) {
    sql::Executor ex(db);
    std::size_t hits = 0;
    auto t0 = std::chrono::steady_clock::now();
    long n = 0;
    for (auto _ : state) {
        auto rs = ex.query(kQuery);
        hits = rs.rows.size();
        benchmark::DoNotOptimize(rs);
        ++n;
    }
    state.counters["hits"] = static_cast<double>(hits);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count() / double(n);
}

void BM_SqlLayerOverMemory(benchmark::State& state) {
    g_ours = timeQuery(state, memoryCatalogue());
}
BENCHMARK(BM_SqlLayerOverMemory)->Unit(benchmark::kMillisecond);

double g_mdb = 0;

void BM_SqlLayerOverMdb(benchmark::State& state) {
    g_mdb = timeQuery(state, sql::openEngineStorage(mdbFile().string(), false));
}
BENCHMARK(BM_SqlLayerOverMdb)->Unit(benchmark::kMillisecond);

void BM_Sqlite3Cli(benchmark::State& state) {
    auto db = sqliteFile();
    const int reps = 20;
    auto dir = db.parent_path();
    std::ofstream q(dir / "query.sql");
    for (int i = 0; i < reps; ++i) q << kQuery << ";\n";
    q.close();
    std::ofstream e(dir / "empty.sql");
    e << "SELECT 1;\n";
    e.close();
    std::string base = "sqlite3 '" + db.string() + "' < '";
    double sum = 0;
    int runs = 0;
    for (auto _ : state) {
        double with = secondsOf(base + (dir / "query.sql").string() + "' > /dev/null");
        double without = secondsOf(base + (dir / "empty.sql").string() + "' > /dev/null");
        double per = (with - without) / reps;
        state.SetIterationTime(per > 0 ? per : 1e-9);
        sum += per;
        g_peer = sum / ++runs;
    }
}
BENCHMARK(BM_Sqlite3Cli)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_mdb > 0 && g_peer > 0)
        std::printf(
            "sql_search: SQL layer over .mdb %.2f ms, sqlite3 %.2f ms per statement, ratio %.2fx "
            "(target <= 2)\n",
            g_mdb * 1e3, g_peer * 1e3, g_mdb / g_peer);
    if (g_ours > 0 && g_peer > 0)
        std::printf(
            "sql_search: SQL layer over memory %.2f ms, sqlite3 %.2f ms per statement, ratio "
            "%.2fx\n",
            g_ours * 1e3, g_peer * 1e3, g_ours / g_peer);
    std::error_code ec;
    std::filesystem::remove_all(sqliteFile().parent_path(), ec);
    std::filesystem::remove_all(mdbFile().parent_path(), ec);
    return 0;
}
