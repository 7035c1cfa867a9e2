// Runs the statement files under tests/sql/<area>/*.test, each over the
// in-memory store, over a real .mdb file written by the Jet engine and over
// a catalogue on a private PostgreSQL server, its SELECTs rendered for the
// server (or only the stores the file names), so all give the same answers. On the server,
// databases other than the catalogue are .mdb files, reached through IN '<file>'.
//
// A file holds directives and records, records separated by blank lines:
//   stores memory mdb pg          first line: the stores to run over (default all)
//   load catalogue <blocks>       the program's six tables, filled
//   load copy <file.mdb>          a private copy of an Access-made file (mdb only)
//   copy <file.mdb>               one more private copy, named ${dir}/<file.mdb>
//   database <file.mdb>           a new empty database ${dir}/<file.mdb>, used from now on
//   use <file.mdb>                statements go to that database (the catalogue
//                                 is dbTessara.mdb)
//   table <name> <col>:<type>[(size)][!] ... [primary(<col>)]   ! = not Null
//   statement ok                  then the SQL; optionally ---- and rows affected
//   statement error <n> <kind>    then the SQL, ---- and Jet's message
//   statement error               then the SQL, which must fail, in any words
//   query [names]                 then the SQL, ---- and rows, columns split
//                                 by |, Null as NULL; names: first the column names
//   query sqlite                  the same, and sqlite3 must answer the same rows
//                                 (its own SQL after a line "==== sqlite")
//   query rowcount                then the SQL, ---- and the number of rows
//   access scans=<n> seeks=<n>    how the record before reached its rows (memory only)
//   schema <table>                ---- then name|type|size|auto|nullable per column,
//                                 then index <name>|<cols>|<flags> per index
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "catalogue_fixture.h"
#include "db/pg/pg_storage.h"
#include "db/server_catalogue.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/memory_storage.h"
#include "pg_server.h"

namespace {

namespace fs = std::filesystem;
const fs::path kRoot = fs::path(TESSARA_SOURCE_DIR) / "tests" / "sql";

struct Record {
    int line = 0;                   // of the header
    std::vector<std::string> head;  // the header's words
    std::string sql;
    std::string sqlite;  // the same question in sqlite3's dialect, when it differs
    std::vector<std::string> expected;
    bool hasExpected = false;
};

std::vector<std::string> words(const std::string& s) {
    std::istringstream in(s);
    std::vector<std::string> out;
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

std::vector<Record> parse(const fs::path& file) {
    std::ifstream in(file);
    std::vector<Record> out;
    std::string line;
    int n = 0;
    enum { Between, Sql, Expected } state = Between;
    while (std::getline(in, line)) {
        ++n;
        if (state == Between) {
            if (line.empty() || line[0] == '#') continue;
            out.emplace_back();
            out.back().line = n;
            out.back().head = words(line);
            const std::string& k = out.back().head[0];
            state = (k == "statement" || k == "query") ? Sql : (k == "schema" ? Expected : Between);
            out.back().hasExpected = k == "schema";
        } else if (line.empty()) {
            state = Between;
        } else if (line == "----") {
            state = Expected;
            out.back().hasExpected = true;
        } else if (state == Sql && line == "==== sqlite") {
            out.back().sqlite = " ";
        } else if (state == Sql && !out.back().sqlite.empty()) {
            out.back().sqlite += line;
        } else if (state == Sql) {
            out.back().sql += (out.back().sql.empty() ? "" : " ") + line;
        } else if (line != "----") {
            out.back().expected.push_back(line);
        }
    }
    return out;
}

std::string kindOf(const sql::Error& e) {
    if (dynamic_cast<const sql::Unsupported*>(&e)) return "unsupported";
    namespace x = sql::errors;
    for (auto [hr, kind] : {std::pair{x::kErrorsInCommand, "command"},
                            {x::kNoValueGiven, "novalue"},
                            {x::kTableNotFound, "notfound"},
                            {x::kTypeMismatch, "mismatch"},
                            {x::kIntegrity, "integrity"}})
        if (e.hresult() == hr) return kind;
    return std::to_string(e.hresult());
}

std::string joined(const std::vector<std::string>& v, const char* sep) {
    std::string s;
    for (std::size_t i = 0; i < v.size(); ++i) s += (i ? sep : "") + v[i];
    return s;
}

std::vector<std::string> rowsOf(const sql::ResultSet& rs, bool names) {
    std::vector<std::string> out;
    if (names) {
        std::vector<std::string> n;
        for (const auto& c : rs.columns) n.push_back(c.name);
        out.push_back(joined(n, "|"));
    }
    for (const auto& r : rs.rows) {
        std::vector<std::string> cells;
        for (const auto& v : r) cells.push_back(v.isNull() ? "NULL" : v.toString());
        out.push_back(joined(cells, "|"));
    }
    return out;
}

std::vector<std::string> schemaOf(sql::Storage& db, const std::string& table) {
    auto t = db.table(table);
    if (!t) return {"no table " + table};
    std::vector<std::string> out;
    for (const auto& c : t->columns())
        out.push_back(c.name + "|" + sql::columnTypeName(c.type) + "|" + std::to_string(c.size) +
                      (c.autoIncrement ? "|auto" : "|") + (c.nullable ? "|null" : "|"));
    for (const auto& ix : t->indexes()) {
        std::vector<std::string> cols;
        for (const auto& c : ix.columns) cols.push_back(c.name + (c.descending ? " desc" : ""));
        std::vector<std::string> flags;
        // A primary key is required by its nature; the stores differ in saying so.
        for (auto [set, word] : {std::pair{ix.primary, "primary"},
                                 {ix.unique, "unique"},
                                 {ix.ignoreNulls, "ignorenulls"},
                                 {ix.required && !ix.primary, "required"}})
            if (set) flags.push_back(word);
        out.push_back("index " + ix.name + "|" + joined(cols, ",") + "|" + joined(flags, " "));
    }
    return out;
}

sql::ColumnDef columnDef(const std::string& text) {
    auto colon = text.find(':');
    sql::ColumnDef c{text.substr(0, colon), sql::ColumnType::Text, 0, false, true};
    std::string type = text.substr(colon + 1);
    if (!type.empty() && type.back() == '!') c.nullable = false, type.pop_back();
    if (auto p = type.find('('); p != std::string::npos) {
        c.size = std::stoi(type.substr(p + 1));
        type = type.substr(0, p);
    }
    if (type == "counter") c.type = sql::ColumnType::Long, c.autoIncrement = true;
    if (type == "long") c.type = sql::ColumnType::Long;
    if (type == "double") c.type = sql::ColumnType::Double;
    return c;
}

using Param = std::tuple<std::string, std::string>;  // file below kRoot, store

class SqlLogic : public ::testing::TestWithParam<Param> {
  protected:
    void TearDown() override {
        ex.reset();
        db.reset();
        named.clear();
        std::error_code ec;
        if (!dir.empty()) fs::remove_all(dir, ec);
    }
    fs::path copy(const std::string& name) {
        fs::copy_file(fs::path(TESSARA_TESTDATA) / "mdb" / name, dir / name,
                      fs::copy_options::overwrite_existing);
        return dir / name;
    }
    std::string substituted(std::string s) {
        for (auto p = s.find("${dir}"); p != std::string::npos; p = s.find("${dir}"))
            s.replace(p, 6, dir.string());
        return s;
    }
    void check(const Record& r, const std::vector<std::string>& actual) {
        std::vector<std::string> expected;
        for (const auto& e : r.expected) expected.push_back(substituted(e));
        if (actual != expected)
            ADD_FAILURE_AT(file.c_str(), r.line)
                << r.sql << "\n  expected:\n    " << joined(r.expected, "\n    ")
                << "\n  actual:\n    " << joined(actual, "\n    ");
    }
    void run(const Record& r) {
        const auto& h = r.head;
        auto* memory = dynamic_cast<sql::MemoryStorage*>(db.get());
        if (h[0] == "access") {
            if (!memory) return;
            std::string seen = "access scans=" + std::to_string(memory->counters().scans) +
                               " seeks=" + std::to_string(memory->counters().seeks);
            if (seen != joined(h, " ")) ADD_FAILURE_AT(file.c_str(), r.line) << seen;
            return;
        }
        if (h[0] == "schema") return check(r, schemaOf(*db, h.at(1)));
        if (memory) memory->counters().scans = memory->counters().seeks = 0;
        std::string sqlText = substituted(r.sql);
        try {
            if (h[0] == "query") {
                db::pg::lastRendered(*db);
                auto rs = ex->query(sqlText);
                rendered += !db::pg::lastRendered(*db).empty();
                bool count = h.size() > 1 && h[1] == "rowcount";
                check(r, count ? std::vector<std::string>{std::to_string(rs.rows.size())}
                               : rowsOf(rs, h.size() > 1 && h[1] == "names"));
                if (h.size() > 1 && h[1] == "sqlite") askSqlite(r);
            } else if (h.at(1) == "ok") {
                long n = ex->execute(sqlText).rowsAffected;
                script += sqlText + ";\n";
                if (r.hasExpected) check(r, {std::to_string(n)});
            } else {
                ex->execute(sqlText);
                ADD_FAILURE_AT(file.c_str(), r.line) << "no error: " << r.sql;
            }
        } catch (const sql::Error& e) {
            if (h[0] == "statement" && h.at(1) == "error" && h.size() == 2) {
                // Any error of the SQL layer will do.
            } else if (h[0] == "statement" && h.at(1) == "error") {
                std::string seen = std::to_string(e.number()) + " " + kindOf(e);
                if (seen != h.at(2) + " " + h.at(3))
                    ADD_FAILURE_AT(file.c_str(), r.line) << r.sql << ": " << seen;
                check(r, {e.what()});
            } else {
                ADD_FAILURE_AT(file.c_str(), r.line) << r.sql << ": " << e.what();
            }
        }
    }
    // sqlite3, an independent engine, over the tables and rows the file made,
    // where the two dialects agree by definition.
    void askSqlite(const Record& r) {
        fs::path f = dir / "rows.sql";
        std::ofstream(f) << script << (r.sqlite.empty() ? r.sql : r.sqlite) << ";\n";
        auto answer =
            fixture::runCommand("sqlite3 -list -nullvalue NULL :memory: < '" + f.string() + "'");
        std::vector<std::string> rows;
        std::istringstream in(answer);
        for (std::string l; std::getline(in, l);) rows.push_back(l);
        if (rows != r.expected)
            ADD_FAILURE_AT(file.c_str(), r.line) << "sqlite3 answers:\n" << answer;
    }
    // A new database at ${dir}/<name>; the in-memory ones share one set of
    // files, so IN '<path>' finds them.
    std::shared_ptr<sql::Storage> create(const std::string& name, bool onMdb) {
        if (store == "pg" && name != "dbTessara.mdb" && !name.empty()) onMdb = true;
        if (store == "pg" && !onMdb) {
            static tessara::test::PgServer server;
            if (!server.error().empty()) throw std::runtime_error(server.error());
            const std::string database = "db" + std::to_string(++databases);
            if (auto e = server.createDatabase(database); !e.empty()) throw std::runtime_error(e);
            return db::openServerCatalogue({"127.0.0.1", std::to_string(server.port()), database,
                                            tessara::test::PgServer::kUser},
                                           false);
        }
        if (onMdb) return sql::openEngineStorage((dir / name).string(), true);
        if (!files) files = std::make_shared<sql::MemoryFiles>();
        return files->create((dir / name).string());
    }
    void setUp(const Record& r, bool onMdb) {
        const auto& h = r.head;
        if (h[0] == "load" && h.at(1) == "catalogue") {
            db = named["dbTessara.mdb"] = create("dbTessara.mdb", onMdb);
            fixture::fill(*db, std::stoi(h.at(2)));
        } else if (h[0] == "load" && h.at(1) == "empty") {
            if (store == "pg")
                db = create("", false);
            else if (onMdb)
                db = sql::openEngineStorage((dir / "new.mdb").string(), true);
            else
                db = std::make_shared<sql::MemoryStorage>();
        } else if (h[0] == "load" && h.at(1) == "copy") {
            db = sql::openEngineStorage(copy(h.at(2)).string(), false);
        } else if (h[0] == "database") {
            db = named[h.at(1)] = create(h.at(1), onMdb);
        } else if (h[0] == "use" && named.count(h.at(1))) {
            db = named[h[1]];
        } else if (h[0] == "copy") {
            copy(h.at(1));
        } else if (h[0] == "table") {
            std::vector<sql::ColumnDef> cols;
            std::vector<sql::IndexDef> ixs;
            for (std::size_t i = 2; i < h.size(); ++i) {
                if (h[i].rfind("primary(", 0) == 0)
                    ixs.push_back(sql::IndexDef{
                        "PrimaryKey", {{h[i].substr(8, h[i].size() - 9), false}}, true, true});
                else
                    cols.push_back(columnDef(h[i]));
            }
            db->createTable(h.at(1), cols, ixs);
            script += "CREATE TABLE " + h[1] + " (";
            for (const auto& c : cols)
                script += c.name +
                          (c.autoIncrement                   ? " INTEGER PRIMARY KEY"
                           : c.type == sql::ColumnType::Text ? " TEXT"
                           : c.type == sql::ColumnType::Long ? " INTEGER"
                                                             : " REAL") +
                          (&c == &cols.back() ? ");\n" : ", ");
        } else {
            ADD_FAILURE_AT(file.c_str(), r.line) << "unknown directive " << h[0];
        }
        ex = std::make_unique<sql::Executor>(db);
    }
    std::string file;
    std::string store;
    int databases = 0;
    int rendered = 0;    // queries the server answered with a statement of its own
    std::string script;  // the tables and rows, for sqlite3
    fs::path dir;
    std::shared_ptr<sql::Storage> db;
    std::shared_ptr<sql::MemoryFiles> files;
    std::map<std::string, std::shared_ptr<sql::Storage>> named;  // by file name
    std::unique_ptr<sql::Executor> ex;
};

TEST_P(SqlLogic, Records) {
    const auto& [name, storeName] = GetParam();
    store = storeName;
    file = (kRoot / name).string();
    auto records = parse(file);
    ASSERT_FALSE(records.empty()) << file;
    dir = fs::temp_directory_path() / ("tessara_sqllogic_" + std::to_string(::getpid()) + "_" +
                                       fs::path(name).stem().string() + "_" + store);
    fs::create_directories(dir);
    int checked = 0;
    for (const auto& r : records) {
        const std::string& k = r.head[0];
        if (k == "stores") continue;
        if (k == "load" || k == "copy" || k == "table" || k == "database" || k == "use") {
            setUp(r, store == "mdb");
            continue;
        }
        ASSERT_TRUE(ex) << file << ":" << r.line << ": no database loaded";
        run(r);
        ++checked;
    }
    EXPECT_GT(checked, 0) << file;
    if (store == "pg") {
        EXPECT_GT(rendered, 0) << "no query was rendered for the server";
    }
}

std::vector<Param> files() {
    std::vector<std::string> names;
    for (const auto& e : fs::recursive_directory_iterator(kRoot))
        if (e.path().extension() == ".test")
            names.push_back(fs::relative(e.path(), kRoot).generic_string());
    std::sort(names.begin(), names.end());
    std::vector<Param> out;
    for (const auto& n : names) {
        std::ifstream in(kRoot / n);
        std::string first;
        std::getline(in, first);
        auto stores = words(first);
        if (stores.empty() || stores[0] != "stores") stores = {"stores", "memory", "mdb", "pg"};
        for (std::size_t i = 1; i < stores.size(); ++i) out.emplace_back(n, stores[i]);
    }
    return out;
}

INSTANTIATE_TEST_SUITE_P(Files, SqlLogic, ::testing::ValuesIn(files()), [](const auto& p) {
    std::string n = std::get<0>(p.param) + "_" + std::get<1>(p.param);
    for (auto& c : n)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return n;
});

}  // namespace
