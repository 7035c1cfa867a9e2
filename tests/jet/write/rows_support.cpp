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
