#include "rows_support.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <random>

namespace rowstest {

Scratch::Scratch() {
    std::random_device rd;
    dir_ = std::filesystem::temp_directory_path() /
           ("jetrows-" + std::to_string(::getpid()) + "-" + std::to_string(rd()));
    std::filesystem::create_directories(dir_);
}

Scratch::~Scratch() {
    std::error_code ec;
    std::filesystem::remove_all(dir_, ec);
}

std::string Scratch::copy(const std::string& name) {
    std::filesystem::path to = dir_ / name;
    std::filesystem::copy_file(jettest::testFile(name), to,
                               std::filesystem::copy_options::overwrite_existing);
    std::filesystem::permissions(to, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    return to.string();
}

std::shared_ptr<jet::Database> openWritable(const std::string& path) {
    jet::OpenOptions o;
    o.writable = true;
    return jet::Database::open(path, o);
}

std::vector<std::uint8_t> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
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
