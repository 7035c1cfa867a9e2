// A Folder's record set of 5 000 Blocks and the 72 Finds that fill one Page of
// slots, against one full scan of the same record set (every row visited,
// one field read).
#include <benchmark/benchmark.h>

#include <cstdio>

#include "db/connection.h"
#include "db/memory_opener.h"
#include "db/recordset.h"
#include "jet/sql/executor.h"

namespace {

constexpr int kBlocks = 5000;
const std::string kPath = "C:\\Bench\\dbTessara.mdb";
const char* kSelect =
    "SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, M0, M1, M2, M3, M4, M5, M6, M7, M8, M9, AX1, "
    "AX2, AX3, AX4, "
    "LAYER, LYCOLOR, LYLINE FROM tblBlockInfo WHERE OrdnerID = 2";

std::string code(int k) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%03d", k % 1000);
    return buf;
}

struct Library {
    std::shared_ptr<sql::MemoryFiles> files = std::make_shared<sql::MemoryFiles>();
    std::unique_ptr<db::Connection> con;
    Library() {
        auto s = files->create(kPath);
        std::vector<sql::ColumnDef> cols{{"Nr", sql::ColumnType::Long, 0, true, false},
                                         {"Block", sql::ColumnType::Text, 144, false, true},
                                         {"SlideLib", sql::ColumnType::Text, 144, false, true},
                                         {"OrdnerID", sql::ColumnType::Long, 0, false, true},
                                         {"BlkName0", sql::ColumnType::Text, 32, false, true}};
        for (int m = 0; m < 10; ++m)
            cols.push_back({"M" + std::to_string(m), sql::ColumnType::Text, 100, false, true});
        for (int a = 1; a <= 4; ++a)
            cols.push_back({"AX" + std::to_string(a), sql::ColumnType::Double, 0, false, true});
        for (const char* n : {"Layer", "LyLine", "LyColor"})
            cols.push_back({n, sql::ColumnType::Text, 35, false, true});
        auto t = s->createTable("tblBlockInfo", cols,
                                {sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}});
        for (int i = 0; i < kBlocks; ++i) {
            sql::Row r(cols.size());
            std::string block = "001" + std::to_string(i / 1000) + code(i);
            r[1] = sql::Value::text(block);
            r[2] = sql::Value::text(block + ".sld");
            r[3] = sql::Value::integer(2);
            r[4] = sql::Value::text("B" + block);
            r[5] = sql::Value::text("Ventil DN" + std::to_string(i % 90));
            t->insert(r);
        }
        con = std::make_unique<db::Connection>(db::memoryOpener(files));
        con->open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + kPath);
    }
};

Library& lib() {
    static Library l;
    return l;
}

double g_find = 0, g_scan = 0;

void BM_OpenAnd72Finds(benchmark::State& state) {
    auto& l = lib();
    long found = 0;
    for (auto _ : state) {
        db::Recordset rs;
        rs.open(kSelect, *l.con, db::adOpenKeyset, db::adLockOptimistic);
        // The last Page of 72 slots, where every Find runs far into the set.
        for (int slot = kBlocks - 72; slot < kBlocks; ++slot) {
            rs.moveFirst();
            std::string block = "001" + std::to_string(slot / 1000) + code(slot);
            if (rs.find("Block Like '" + block + "'")) ++found;
        }
    }
    state.counters["found"] = static_cast<double>(found) / state.iterations();
}
BENCHMARK(BM_OpenAnd72Finds)->Unit(benchmark::kMillisecond);

void BM_OpenAndFullScan(benchmark::State& state) {
    auto& l = lib();
    for (auto _ : state) {
        db::Recordset rs;
        rs.open(kSelect, *l.con, db::adOpenKeyset, db::adLockOptimistic);
        std::size_t bytes = 0;
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) bytes += rs.text("Block").size();
        benchmark::DoNotOptimize(bytes);
    }
}
BENCHMARK(BM_OpenAndFullScan)->Unit(benchmark::kMillisecond);

class Capture : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const auto& r : runs) {
            double ms = r.GetAdjustedRealTime();
            if (r.benchmark_name().find("72Finds") != std::string::npos) g_find = ms;
            if (r.benchmark_name().find("FullScan") != std::string::npos) g_scan = ms;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Capture reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    if (g_find > 0 && g_scan > 0)
        std::printf(
            "recordset_find: open + 72 Finds %.2f ms, open + full scan %.2f ms, ratio %.2fx\n",
            g_find, g_scan, g_find / g_scan);
    return 0;
}
