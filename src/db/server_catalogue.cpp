#include "db/server_catalogue.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>

#include "db/pg/pg_storage.h"
#include "jet/sql/error.h"

namespace db {

namespace {

std::string trimmed(std::string s) {
    const auto keep = [](unsigned char c) { return !std::isspace(c); };
    s.erase(s.begin(), std::find_if(s.begin(), s.end(), keep));
    s.erase(std::find_if(s.rbegin(), s.rend(), keep).base(), s.end());
    return s;
}

std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

}  // namespace

std::string ServerCatalogue::describe() const {
    return user + "@" + host + ":" + port + "/" + database;
}

std::optional<ServerCatalogue> serverBeside(const std::string& nativePath) {
    const auto ini = std::filesystem::path(nativePath).parent_path() / "dbTessara.ini";
    std::ifstream in(ini);
    if (!in) return std::nullopt;
    bool inSection = false, found = false;
    ServerCatalogue s;
    s.port = "5432";
    for (std::string line; std::getline(in, line);) {
        line = trimmed(line);
        if (line.empty() || line[0] == ';') continue;
        if (line.front() == '[') {
            inSection = lower(line) == "[server]";
            found = found || inSection;
            continue;
        }
        const auto eq = line.find('=');
        if (!inSection || eq == std::string::npos) continue;
        const std::string key = lower(trimmed(line.substr(0, eq)));
        const std::string value = trimmed(line.substr(eq + 1));
        if (key == "host") s.host = value;
        if (key == "port") s.port = value;
        if (key == "database") s.database = value;
        if (key == "user") s.user = value;
    }
    if (!found) return std::nullopt;
    return s;
}

std::shared_ptr<sql::Storage> openServerCatalogue(const ServerCatalogue& server, bool needCatalogue,
                                                  sql::PathMapper mapper) {
    return pg::openStorage(server, needCatalogue, std::move(mapper));
}

void enforceFolderRights(sql::Storage& server) { pg::enforceFolderRights(server); }

}  // namespace db

namespace db {

std::vector<std::pair<std::string, long>> copyCatalogue(sql::Storage& from, sql::Storage& to,
                                                        const std::vector<CopyIndex>& extra,
                                                        const std::vector<std::string>& skip) {
    if (!to.tableNames().empty())
        throw sql::Error("The target already holds tables; it must be empty.",
                         sql::errors::kIntegrity, 3000);
    std::vector<std::pair<std::string, long>> counts;
    // Each table's rows as one unit: a server takes them far faster so.
    for (const auto& name : from.tableNames()) {
        auto src = from.table(name);
        std::vector<sql::IndexDef> indexes;
        for (const auto& ix : src->indexes())
            if (std::find(skip.begin(), skip.end(), ix.name) == skip.end()) indexes.push_back(ix);
        auto dst = to.createTable(src->name(), src->columns(), indexes);
        long n = 0;
        to.begin();
        try {
            src->scan([&](sql::RowId, const sql::Row& r) {
                sql::Row row = r;
                dst->insert(row);
                ++n;
                return true;
            });
            to.commit();
        } catch (...) {
            to.rollback();
            throw;
        }
        counts.emplace_back(src->name(), n);
    }
    for (const auto& e : extra) to.createIndex(e.table, e.index);
    for (const auto& r : from.relations()) to.createRelation(r);
    for (const auto& [name, n] : counts) {
        long there = 0;
        to.table(name)->scan([&](sql::RowId, const sql::Row&) { return ++there, true; },
                             std::vector<bool>(to.table(name)->columns().size(), false));
        if (there != n)
            throw sql::Error("Table " + name + ": " + std::to_string(n) + " rows copied, " +
                                 std::to_string(there) + " found afterwards.",
                             sql::errors::kIntegrity, 3000);
    }
    return counts;
}

}  // namespace db
