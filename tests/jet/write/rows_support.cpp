#include "rows_support.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <random>

namespace rowstest {

std::shared_ptr<jet::Database> openWritable(const std::string& path) {
    jet::OpenOptions o;
    o.writable = true;
    return jet::Database::open(path, o);
}

std::vector<std::vector<std::string>> exportRows(const std::string& path,
                                                 const std::string& table) {
    int status = 0;
    std::string out = jettest::run(
        "mdb-export " + jettest::quote(path) + " " + jettest::quote(table) + " 2>/dev/null",
        &status);
    std::vector<std::vector<std::string>> rows;
    if (status != 0) return rows;
    auto csv = jettest::parseCsv(out);
    for (std::size_t i = 1; i < csv.size(); ++i) {
        std::vector<std::string> r;
        for (const auto& c : csv[i]) r.push_back(c.text);
        rows.push_back(std::move(r));
    }
    return rows;
}

std::vector<jet::Row> allRows(jet::Database& db, const std::string& table) {
    std::vector<jet::Row> out;
    db.table(table).scan([&](jet::RowId, const jet::Row& r) {
        out.push_back(r);
        return true;
    });
    return out;
}

std::string faults(jet::Database& db) {
    std::string s;
    for (const auto& f : jet::checkDatabase(db)) s += f + "\n";
    return s;
}

}  // namespace rowstest
