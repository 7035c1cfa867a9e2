// Inserting 100 000 rows shaped like tblBlockInfo (130 columns: Nr, OrdnerID,
// 38 texts, 90 doubles) into a new file, with the primary key and one
// secondary index kept, 1 000 rows per unit of work as an import commits
// them. The peer is sqlite3 writing the same rows into one table of the same
// columns, with the same key (Nr INTEGER PRIMARY KEY, SQLite's autonumber)
// and index, in the same transactions, in its default rollback journal with
// synchronous=FULL (both sync every commit), on a file in the same
// directory; the two take the units in turn. The rows of a unit are made
// before its clock starts. Also
// printed: the same rows written without any index, and the file's size
// against the raw size of the values written (Long 4, Double 8, text one
// byte a character, Null nothing).
//
// The file stays behind as the input of bench_jet_read, which compares
// reading it with mdb-export.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/read/database.h"
#include "jet/write/writer.h"

namespace {

constexpr int kRows = 100000;
constexpr int kTexts = 38;
constexpr int kDoubles = 90;
constexpr int kColumns = 2 + kTexts + kDoubles;
constexpr int kBatch = 1000;  // rows per unit of work

using Clock = std::chrono::steady_clock;

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

// The rows of the unit that starts at row first; the same for every writer.
std::vector<jet::Row> unitRows(int first, std::uintmax_t& rawBytes) {
    static const char* nouns[] = {"Ventil",    "Kugelhahn", "Flansch",
                                  "Rohrbogen", "Schieber",  "Muffe"};
    static const char* mats[] = {"Stahl", "Edelstahl", "Messing", "PVC", "Guss"};
    std::mt19937 rng(7 + first);
    std::vector<jet::Row> rows;
    for (int k = first; k < first + kBatch && k < kRows; ++k) {
        jet::Row& r = rows.emplace_back();
        r.reserve(kColumns);
        r.emplace_back();  // autonumber
        r.emplace_back(std::int32_t(1 + k / 1000));
        rawBytes += 8;
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
                rawBytes += s.size();
                r.emplace_back(std::move(s));
            }
        }
        for (int d = 0; d < kDoubles; ++d) {
            r.emplace_back(double(rng() % 100000) / 8.0);
            rawBytes += 8;
        }
    }
    return rows;
}

struct Figures {
    double seconds = 0;  // inserting and committing, row making left out
    std::uintmax_t fileBytes = 0;
    std::uintmax_t rawBytes = 0;
};

double secondsOf(const std::function<void()>& work) {
    const auto t0 = Clock::now();
    work();
    return std::chrono::duration<double>(Clock::now() - t0).count();
}

class JetRows {
  public:
    JetRows(std::filesystem::path path, bool indexed) : path_(std::move(path)) {
        std::filesystem::remove(path_);
        jet::createDatabase(path_.string());
        jet::OpenOptions o;
        o.writable = true;
        db_ = jet::Database::open(path_.string(), o);
        jet::Writer(db_).createTable(blockInfo(indexed));
    }
    double unit(std::vector<jet::Row>& rows) {
        return secondsOf([&] {
            jet::Writer w(db_);
            db_->begin();
            for (jet::Row& r : rows) w.insert("tblBlockInfo", r);
            db_->commit();
        });
    }
    std::uintmax_t close() {
        db_.reset();
        return std::filesystem::file_size(path_);
    }

  private:
    std::filesystem::path path_;
    std::shared_ptr<jet::Database> db_;
};

class SqliteRows {
  public:
    SqliteRows(std::filesystem::path path, benchmark::State& state)
        : path_(std::move(path)), state_(state) {
        std::filesystem::remove(path_);
        if (sqlite3_open(path_.c_str(), &db_) != SQLITE_OK) {
            fail();
            return;
        }
        std::string create = "CREATE TABLE tblBlockInfo (Nr INTEGER PRIMARY KEY, OrdnerID INTEGER";
        std::string insert = "INSERT INTO tblBlockInfo VALUES (?";
        for (int t = 0; t < kTexts; ++t) create += ", T" + std::to_string(t) + " TEXT";
        for (int d = 0; d < kDoubles; ++d) create += ", D" + std::to_string(d) + " REAL";
        for (int c = 1; c < kColumns; ++c) insert += ", ?";
        create += ")";
        insert += ")";
        exec("PRAGMA synchronous=FULL");
        exec(create.c_str());
        exec("CREATE INDEX OrdnerID ON tblBlockInfo (OrdnerID)");
        if (ok_ && sqlite3_prepare_v2(db_, insert.c_str(), -1, &stmt_, nullptr) != SQLITE_OK)
            fail();
    }
    ~SqliteRows() {
        sqlite3_finalize(stmt_);
        sqlite3_close(db_);
        std::filesystem::remove(path_);
    }
    bool ok() const { return ok_; }
    double unit(const std::vector<jet::Row>& rows) {
        return secondsOf([&] {
            exec("BEGIN");
            for (const jet::Row& r : rows) {
                if (!ok_) return;
                for (int c = 0; c < kColumns; ++c) {
                    const jet::Value& v = r[std::size_t(c)];
                    if (auto* n = std::get_if<std::int32_t>(&v))
                        sqlite3_bind_int(stmt_, c + 1, *n);
                    else if (auto* d = std::get_if<double>(&v))
                        sqlite3_bind_double(stmt_, c + 1, *d);
                    else if (auto* s = std::get_if<std::string>(&v))
                        sqlite3_bind_text(stmt_, c + 1, s->data(), int(s->size()), SQLITE_STATIC);
                    else
                        sqlite3_bind_null(stmt_, c + 1);
                }
                if (sqlite3_step(stmt_) != SQLITE_DONE) fail();
                sqlite3_reset(stmt_);
            }
            exec("COMMIT");
        });
    }
    std::uintmax_t fileBytes() const { return std::filesystem::file_size(path_); }

  private:
    void exec(const char* sql) {
        if (ok_ && sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
    }
    void fail() {
        if (ok_) state_.SkipWithError(db_ ? sqlite3_errmsg(db_) : "cannot open the sqlite3 file");
        ok_ = false;
    }
    std::filesystem::path path_;
    benchmark::State& state_;
    sqlite3* db_ = nullptr;
    sqlite3_stmt* stmt_ = nullptr;
    bool ok_ = true;
};

Figures g_indexed, g_plain, g_sqlite;

// The two writers take the units in turn, each unit's rows the same for
// both, so that both meet the same load of a shared machine.
void BM_InsertWithIndexesAgainstSqlite(benchmark::State& state) {
    for (auto _ : state) {
        JetRows jet(fileFor("tessara_bench_blockinfo.mdb"), true);
        SqliteRows sqlite(fileFor("tessara_bench_blockinfo.sqlite"), state);
        g_indexed = g_sqlite = {};
        for (int i = 0; i < kRows && sqlite.ok(); i += kBatch) {
            std::vector<jet::Row> rows = unitRows(i, g_indexed.rawBytes);
            const std::vector<jet::Row> same = rows;
            const bool jetFirst = (i / kBatch) % 2 == 0;
            if (!jetFirst) g_sqlite.seconds += sqlite.unit(same);
            g_indexed.seconds += jet.unit(rows);
            if (jetFirst) g_sqlite.seconds += sqlite.unit(same);
        }
        g_indexed.fileBytes = jet.close();
        g_sqlite.fileBytes = sqlite.ok() ? sqlite.fileBytes() : 0;
        if (!sqlite.ok()) g_sqlite.seconds = 0;
    }
    state.counters["rows_per_s"] = kRows / g_indexed.seconds;
    if (g_sqlite.seconds > 0) state.counters["sqlite_rows_per_s"] = kRows / g_sqlite.seconds;
}
BENCHMARK(BM_InsertWithIndexesAgainstSqlite)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_InsertWithoutIndexes(benchmark::State& state) {
    const auto path = fileFor("tessara_bench_blockinfo_plain.mdb");
    for (auto _ : state) {
        JetRows jet(path, false);
        g_plain = {};
        for (int i = 0; i < kRows; i += kBatch) {
            std::vector<jet::Row> rows = unitRows(i, g_plain.rawBytes);
            g_plain.seconds += jet.unit(rows);
        }
        jet.close();
    }
    std::filesystem::remove(path);
    state.counters["rows_per_s"] = kRows / g_plain.seconds;
}
BENCHMARK(BM_InsertWithoutIndexes)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (g_indexed.seconds > 0 && g_sqlite.seconds > 0)
        std::printf(
            "jet_insert: %d rows of %d columns, %d per unit, primary key and one index: %.0f "
            "rows/s, sqlite3 %.0f rows/s on the same rows (rollback journal, synchronous=FULL), "
            "time ratio %.2fx (target <= 2)\n",
            kRows, kColumns, kBatch, kRows / g_indexed.seconds, kRows / g_sqlite.seconds,
            g_indexed.seconds / g_sqlite.seconds);
    if (g_indexed.seconds > 0 && g_plain.seconds > 0)
        std::printf(
            "jet_insert: without indexes %.0f rows/s; file %.1f MB for %.1f MB of values, size "
            "ratio %.2fx (target <= 2), sqlite3's file %.1f MB\n",
            kRows / g_plain.seconds, double(g_indexed.fileBytes) / 1e6,
            double(g_indexed.rawBytes) / 1e6,
            double(g_indexed.fileBytes) / double(g_indexed.rawBytes),
            double(g_sqlite.fileBytes) / 1e6);
    return 0;
}
