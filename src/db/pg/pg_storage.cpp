#include "db/pg/pg_storage.h"

#include <libpq-fe.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <utility>

#include "db/pg/pg_render.h"
#include "jet/sql/error.h"
#include "jet/write/relationships.h"

namespace db::pg {

namespace {

using sql::ColumnDef;
using sql::ColumnType;
using sql::IndexDef;
using sql::RelationDef;
using sql::Row;
using sql::RowId;
using sql::Value;

// Jet knows relations that are not enforced; the server has only foreign
// keys. Every relation is kept here, the enforced ones also as keys.
constexpr const char* kRelationsTable = "tessara_relations";
// Rows need a stable id: the integer primary key where the table has one,
// otherwise this hidden column.
constexpr const char* kRowIdColumn = "tessara_rowid";

std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

bool sameName(const std::string& a, const std::string& b) { return lower(a) == lower(b); }

std::string joined(const std::vector<std::string>& parts, const std::string& sep) {
    std::string out;
    for (const auto& p : parts) out += (out.empty() ? "" : sep) + p;
    return out;
}

std::vector<std::string> split(const std::string& s) {
    std::vector<std::string> out;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= s.size(); ++i)
        if (i == s.size() || s[i] == ',') {
            if (i > start) out.push_back(s.substr(start, i - start));
            start = i + 1;
        }
    return out;
}

// --- OLE dates <-> timestamps ---------------------------------------------

std::int64_t daysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void civilFromDays(std::int64_t z, int& y, unsigned& m, unsigned& d) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y = static_cast<int>(yoe + era * 400 + (m <= 2));
}

const std::int64_t kOleEpoch = daysFromCivil(1899, 12, 30);

// An OLE date before 1899-12-30 counts its days backwards but its time of
// day forwards: -1.25 is 29 December 1899, 06:00.
std::string timestampOf(double ole) {
    double day = std::trunc(ole);
    double frac = std::fabs(ole - day);
    auto ms = static_cast<std::int64_t>(std::llround(frac * 86400000.0));
    if (ms >= 86400000) {
        ms -= 86400000;
        day += ole < 0 ? -1 : 1;
    }
    int y;
    unsigned m, d;
    civilFromDays(kOleEpoch + static_cast<std::int64_t>(day), y, m, d);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%04d-%02u-%02u %02lld:%02lld:%02lld.%03lld", y, m, d,
                  static_cast<long long>(ms / 3600000), static_cast<long long>(ms / 60000 % 60),
                  static_cast<long long>(ms / 1000 % 60), static_cast<long long>(ms % 1000));
    return buf;
}

double oleOf(const char* ts) {
    int y = 0, mo = 0, d = 0, h = 0, mi = 0;
    double s = 0;
    std::sscanf(ts, "%d-%d-%d %d:%d:%lf", &y, &mo, &d, &h, &mi, &s);
    const double days = static_cast<double>(
        daysFromCivil(y, static_cast<unsigned>(mo), static_cast<unsigned>(d)) - kOleEpoch);
    const double frac = (h * 3600 + mi * 60 + s) / 86400.0;
    return days < 0 ? days - frac : days + frac;
}

// --- types ----------------------------------------------------------------

// Types the server cannot tell apart by itself carry their Jet name in the
// column's comment.
std::string serverType(const ColumnDef& c, std::string& comment) {
    switch (c.type) {
        case ColumnType::Boolean:
            return "boolean";
        case ColumnType::Byte:
            comment = "Byte";
            return "smallint";
        case ColumnType::Integer:
            return "smallint";
        case ColumnType::Long:
            return "integer";
        case ColumnType::Currency:
            return "numeric(19,4)";
        case ColumnType::Single:
            return "real";
        case ColumnType::Double:
            return "double precision";
        case ColumnType::DateTime:
            return "timestamp(3)";
        case ColumnType::Binary:
            comment = "Binary:" + std::to_string(c.size ? c.size : 255);
            return "bytea";
        case ColumnType::Text:
            return "varchar(" + std::to_string(c.size ? c.size : 255) + ")";
        case ColumnType::OLE:
            return "bytea";
        case ColumnType::Memo:
            return "text";
        case ColumnType::Guid:
            comment = "Guid";
            return "varchar(38)";
        case ColumnType::Numeric:
            return "numeric(28,6)";
    }
    return "text";
}

std::string columnSql(const ColumnDef& c, std::string& comment) {
    std::string s = ident(c.name) + " " + serverType(c, comment);
    // The server's identity columns are never Null; Jet's may be declared so.
    if (c.autoIncrement && c.nullable) comment = "Null";
    if (c.autoIncrement) s += " GENERATED BY DEFAULT AS IDENTITY";
    if (!c.nullable) s += " NOT NULL";
    return s;
}

ColumnDef columnOf(const std::string& name, const std::string& dataType, const char* length,
                   const std::string& identity, const std::string& nullable,
                   const std::string& numericScale, const std::string& comment) {
    ColumnDef c;
    c.name = name;
    c.autoIncrement = identity == "YES";
    c.nullable = nullable == "YES" || (c.autoIncrement && comment == "Null");
    if (dataType == "boolean")
        c.type = ColumnType::Boolean;
    else if (dataType == "smallint")
        c.type = comment == "Byte" ? ColumnType::Byte : ColumnType::Integer;
    else if (dataType == "integer" || dataType == "bigint")
        c.type = ColumnType::Long;
    else if (dataType == "numeric")
        c.type = numericScale == "4" ? ColumnType::Currency : ColumnType::Numeric;
    else if (dataType == "real")
        c.type = ColumnType::Single;
    else if (dataType == "double precision")
        c.type = ColumnType::Double;
    else if (dataType.rfind("timestamp", 0) == 0 || dataType == "date")
        c.type = ColumnType::DateTime;
    else if (dataType == "bytea") {
        c.type = comment.rfind("Binary:", 0) == 0 ? ColumnType::Binary : ColumnType::OLE;
        if (c.type == ColumnType::Binary) c.size = std::atoi(comment.c_str() + 7);
    } else if (dataType == "character varying" || dataType == "character") {
        c.type = comment == "Guid" ? ColumnType::Guid : ColumnType::Text;
        if (c.type == ColumnType::Text) c.size = length && *length ? std::atoi(length) : 255;
    } else
        c.type = ColumnType::Memo;
    return c;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c - 'A' + 10;
}

Value valueOf(const PGresult* r, int row, int col, ColumnType type) {
    if (PQgetisnull(r, row, col)) return Value();
    const char* v = PQgetvalue(r, row, col);
    switch (type) {
        case ColumnType::Boolean:
            return Value::boolean(v[0] == 't');
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
            return Value::integer(std::strtoll(v, nullptr, 10));
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Numeric:
            return Value::real(std::strtod(v, nullptr));
        case ColumnType::DateTime:
            return Value::date(oleOf(v));
        case ColumnType::Binary:
        case ColumnType::OLE: {
            std::string bytes;
            const int n = PQgetlength(r, row, col);
            for (int i = 2; i + 1 < n; i += 2)
                bytes.push_back(static_cast<char>(hexDigit(v[i]) * 16 + hexDigit(v[i + 1])));
            return Value::binary(std::move(bytes));
        }
        default:
            return Value::text(std::string(v, static_cast<std::size_t>(PQgetlength(r, row, col))));
    }
}

// One statement's parameters in the server's text form (bytea as binary).
struct Params {
    std::vector<std::string> text;
    std::vector<int> isNull, binary;

    void add(const Value& v, ColumnType type) {
        isNull.push_back(v.isNull());
        binary.push_back(type == ColumnType::Binary || type == ColumnType::OLE);
        if (v.isNull()) {
            text.emplace_back();
            return;
        }
        switch (type) {
            case ColumnType::Boolean:
                text.push_back(v.asInt() != 0 ? "true" : "false");
                break;
            case ColumnType::Byte:
            case ColumnType::Integer:
            case ColumnType::Long:
                text.push_back(std::to_string(v.asInt()));
                break;
            case ColumnType::Currency:
            case ColumnType::Single:
            case ColumnType::Double:
            case ColumnType::Numeric: {
                char buf[40];
                std::snprintf(buf, sizeof buf, "%.17g", v.asDouble());
                text.push_back(buf);
                break;
            }
            case ColumnType::DateTime:
                text.push_back(timestampOf(v.asDouble()));
                break;
            case ColumnType::Binary:
            case ColumnType::OLE:
                text.push_back(v.textRef());
                break;
            default:
                text.push_back(v.toString());
        }
    }
};

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

// --- the connection --------------------------------------------------------

class Server {
  public:
    explicit Server(PGconn* c) : c_(c) {}
    ~Server() { PQfinish(c_); }

    Result exec(const std::string& sql, const Params* p = nullptr) {
        std::vector<const char*> values;
        std::vector<int> lengths;
        if (p)
            for (std::size_t i = 0; i < p->text.size(); ++i) {
                values.push_back(p->isNull[i] ? nullptr : p->text[i].c_str());
                lengths.push_back(static_cast<int>(p->text[i].size()));
            }
        const int n = p ? static_cast<int>(values.size()) : 0;
        Result r(PQexecParams(c_, sql.c_str(), n, nullptr, n ? values.data() : nullptr,
                              n ? lengths.data() : nullptr, n ? p->binary.data() : nullptr, 0),
                 &PQclear);
        const auto st = r ? PQresultStatus(r.get()) : PGRES_FATAL_ERROR;
        if (st != PGRES_COMMAND_OK && st != PGRES_TUPLES_OK) fail(r.get());
        return r;
    }

    [[noreturn]] void fail(const PGresult* r) {
        const char* state = r ? PQresultErrorField(r, PG_DIAG_SQLSTATE) : nullptr;
        const std::string code = state ? state : "";
        const char* table = r ? PQresultErrorField(r, PG_DIAG_TABLE_NAME) : nullptr;
        std::string msg = r ? PQresultErrorMessage(r) : PQerrorMessage(c_);
        if (PQstatus(c_) != CONNECTION_OK)
            throw sql::Error("The connection to the catalogue server was lost: " + firstLine(msg),
                             sql::errors::kIntegrity, 3000);
        if (code == "23505") throw sql::errors::duplicateKey();
        // Two workstations' units crossed: the server gave one up. Jet's
        // "currently locked" tells the caller that trying again may succeed.
        if (code == "40P01" || code == "40001")
            throw sql::Error("Could not update; currently locked.", sql::errors::kIntegrity, 3218);
        // A column another workstation added since this unit began.
        if (code == "42701") throw sql::Error(firstLine(msg), sql::errors::kIntegrity, 3191);
        if (code == "23502" || code == "23514") throw sql::errors::nullKey();
        if (code == "23503") {
            // The message names the referring table either way; which side
            // failed shows in whether the row is referred to or refers.
            const bool referred = msg.find("is still referenced") != std::string::npos;
            const std::string t = table ? table : "";
            if (referred) {
                const auto from = msg.find("from table \"");
                const std::string other =
                    from == std::string::npos
                        ? t
                        : msg.substr(from + 12, msg.find('"', from + 12) - from - 12);
                throw sql::Error(jet::relerr::relatedRecordsExist(other), sql::errors::kIntegrity,
                                 jet::relerr::kRelatedRecordsExist);
            }
            const auto to = msg.find("not present in table \"");
            const std::string other =
                to == std::string::npos ? t : msg.substr(to + 22, msg.find('"', to + 22) - to - 22);
            throw sql::Error(jet::relerr::relatedRecordRequired(other), sql::errors::kIntegrity,
                             jet::relerr::kRelatedRecordRequired);
        }
        throw sql::Error("The catalogue server refused a statement: " + firstLine(msg),
                         sql::errors::kIntegrity, 3000);
    }

    static std::string firstLine(const std::string& s) {
        auto t = s.substr(0, s.find('\n'));
        if (t.rfind("ERROR:  ", 0) == 0) t = t.substr(8);
        return t;
    }

  private:
    PGconn* c_;
};

struct TableMeta {
    std::string name;
    std::vector<ColumnDef> columns;
    std::vector<IndexDef> indexes;
    std::string idColumn;  // a column of the table or kRowIdColumn
};

class PgStorage;

class PgTable : public sql::Table {
  public:
    PgTable(std::shared_ptr<PgStorage> owner, std::shared_ptr<const TableMeta> meta)
        : owner_(std::move(owner)), meta_(std::move(meta)) {}

    std::string name() const override { return meta_->name; }
    std::vector<ColumnDef> columns() const override { return meta_->columns; }
    std::vector<IndexDef> indexes() const override { return meta_->indexes; }

    void scan(const std::function<bool(RowId, const Row&)>& visit) override {
        select("", nullptr, nullptr, [&](RowId id, const Row& r) { return visit(id, r); });
    }
    void scan(const std::function<bool(RowId, const Row&)>& visit,
              const std::vector<bool>& needed) override {
        select("", nullptr, &needed, [&](RowId id, const Row& r) { return visit(id, r); });
    }

    std::optional<std::vector<RowId>> seek(const std::string& column, const Value& key) override;
    Row read(RowId id) override;
    void read(const std::vector<RowId>& ids, const std::vector<bool>* needed,
              const std::function<void(RowId, const Row&)>& visit) override;
    RowId insert(Row& row) override;
    void update(RowId id, const Row& row) override;
    void remove(RowId id) override;

  private:
    // Rows matching where (with its parameters) in id order; the visitor
    // answers false to stop.
    void select(const std::string& where, const Params* p, const std::vector<bool>* needed,
                const std::function<bool(RowId, const Row&)>& visit);
    std::shared_ptr<PgStorage> owner_;
    std::shared_ptr<const TableMeta> meta_;
};

class PgStorage : public sql::Storage, public std::enable_shared_from_this<PgStorage> {
  public:
    PgStorage(PGconn* c, sql::PathMapper mapper) : server_(c), mapper_(std::move(mapper)) {}

    Server& server() { return server_; }

    std::vector<std::string> tableNames() override {
        std::vector<std::string> out;
        meta();
        for (const auto& key : order_) out.push_back(meta_[key]->name);
        return out;
    }

    std::shared_ptr<sql::Table> table(const std::string& name) override {
        const auto& all = meta();
        auto it = all.find(lower(name));
        if (it == all.end()) return nullptr;
        return std::make_shared<PgTable>(shared_from_this(), it->second);
    }

    std::shared_ptr<sql::Table> createTable(const std::string& name,
                                            const std::vector<ColumnDef>& columns,
                                            const std::vector<IndexDef>& indexes) override {
        if (table(name)) throw sql::errors::tableExists(name);
        std::vector<std::string> parts;
        std::vector<std::pair<std::string, std::string>> comments;
        for (const auto& c : columns) {
            std::string comment;
            parts.push_back(columnSql(c, comment));
            if (!comment.empty()) comments.emplace_back(c.name, comment);
        }
        const IndexDef* primary = nullptr;
        for (const auto& ix : indexes)
            if (ix.primary) primary = &ix;
        if (!primary || primary->columns.size() != 1 ||
            !isInteger(columns, primary->columns[0].name))
            parts.push_back(ident(kRowIdColumn) + " bigint GENERATED ALWAYS AS IDENTITY UNIQUE");
        unit([&] {
            server_.exec("CREATE TABLE " + ident(name) + " (" + joined(parts, ", ") + ")");
            for (const auto& [col, comment] : comments)
                server_.exec("COMMENT ON COLUMN " + ident(name) + "." + ident(col) + " IS " +
                             literal(comment));
            for (const auto& ix : indexes) makeIndex(name, ix);
        });
        forget();
        return table(name);
    }

    void addColumn(const std::string& tableName, const ColumnDef& column) override {
        auto t = table(tableName);
        if (!t) throw sql::errors::tableNotFound(tableName);
        for (const auto& c : t->columns())
            if (sameName(c.name, column.name))
                throw sql::errors::fieldExists(column.name, t->name());
        std::string comment;
        unit([&] {
            server_.exec("ALTER TABLE " + ident(t->name()) + " ADD COLUMN " +
                         columnSql(column, comment));
            if (!comment.empty())
                server_.exec("COMMENT ON COLUMN " + ident(t->name()) + "." + ident(column.name) +
                             " IS " + literal(comment));
        });
        forget();
    }

    void createIndex(const std::string& tableName, const IndexDef& index) override {
        auto t = table(tableName);
        if (!t) throw sql::errors::tableNotFound(tableName);
        for (const auto& ix : t->indexes())
            if (sameName(ix.name, index.name))
                throw sql::errors::indexExists(t->name(), index.name);
        unit([&] { makeIndex(t->name(), index); });
        forget();
    }

    void createRelation(const RelationDef& r) override {
        auto t = table(r.table);
        auto rt = table(r.relatedTable);
        if (!t) throw sql::errors::tableNotFound(r.table);
        if (!rt) throw sql::errors::tableNotFound(r.relatedTable);
        unit([&] {
            server_.exec(
                std::string("CREATE TABLE IF NOT EXISTS ") + ident(kRelationsTable) +
                " (name text PRIMARY KEY, tbl text, cols text, reltbl text, relcols text,"
                " enforce boolean, cupd boolean, cdel boolean, cnull boolean, made serial)");
            Params p;
            for (const auto& s : {r.name, t->name(), joined(r.columns, ","), rt->name(),
                                  joined(r.relatedColumns, ",")})
                p.add(Value::text(s), ColumnType::Text);
            for (bool b : {r.enforce, r.cascadeUpdates, r.cascadeDeletes, r.cascadeNull})
                p.add(Value::boolean(b), ColumnType::Boolean);
            server_.exec(std::string("INSERT INTO ") + ident(kRelationsTable) +
                             " VALUES ($1,$2,$3,$4,$5,$6,$7,$8,$9, DEFAULT)",
                         &p);
            if (!r.enforce) return;
            std::vector<std::string> cols, rcols;
            for (const auto& c : r.columns) cols.push_back(ident(c));
            for (const auto& c : r.relatedColumns) rcols.push_back(ident(c));
            server_.exec("ALTER TABLE " + ident(t->name()) + " ADD CONSTRAINT " + ident(r.name) +
                         " FOREIGN KEY (" + joined(cols, ", ") + ") REFERENCES " +
                         ident(rt->name()) + " (" + joined(rcols, ", ") + ")" +
                         (r.cascadeUpdates ? " ON UPDATE CASCADE" : "") +
                         (r.cascadeDeletes ? " ON DELETE CASCADE"
                          : r.cascadeNull  ? " ON DELETE SET NULL"
                                           : ""));
        });
    }

    std::vector<RelationDef> relations() override {
        std::vector<RelationDef> out;
        if (!hasRelationsTable()) return out;
        auto r =
            server_.exec(std::string("SELECT * FROM ") + ident(kRelationsTable) + " ORDER BY made");
        for (int i = 0; i < PQntuples(r.get()); ++i) {
            const auto s = [&](int c) { return std::string(PQgetvalue(r.get(), i, c)); };
            const auto b = [&](int c) { return s(c) == "t"; };
            out.push_back({s(0), s(1), split(s(2)), s(3), split(s(4)), b(5), b(6), b(7), b(8)});
        }
        return out;
    }

    std::shared_ptr<sql::Storage> openOther(const std::string& path) override {
        return sql::openEngineStorage(path, false, mapper_);
    }

    // One statement's writes are one transaction; a unit around several
    // statements nests them as savepoints, so a failing statement inside
    // undoes only itself.
    void begin() override {
        server_.exec(depth_ == 0 ? "BEGIN" : "SAVEPOINT s" + std::to_string(depth_));
        ++depth_;
        if (depth_ == 1) forget();
    }
    void commit() override {
        if (depth_ == 0) return;
        --depth_;
        if (depth_ == 0) moveSequences();
        server_.exec(depth_ == 0 ? "COMMIT" : "RELEASE SAVEPOINT s" + std::to_string(depth_));
    }
    void rollback() override {
        if (depth_ == 0) return;
        --depth_;
        forget();
        // Called while an error is on its way up: a lost connection must not
        // replace it with another.
        try {
            if (depth_ == 0) {
                keysWritten_.clear();
                server_.exec("ROLLBACK");
                return;
            }
            server_.exec("ROLLBACK TO SAVEPOINT s" + std::to_string(depth_));
            server_.exec("RELEASE SAVEPOINT s" + std::to_string(depth_));
        } catch (const sql::Error&) {
        }
    }
    void beginReads() override {
        if (reads_++ == 0 && depth_ == 0) forget();
    }
    void endReads() override {
        if (reads_ > 0) --reads_;
    }

    bool matchRows(const sql::detail::Source& src, const sql::Expr* where,
                   const std::vector<bool>& needed,
                   const std::function<void(RowId, const Row&)>& visit) override {
        for (const auto& p : src.parts)
            if (p.storage.get() != this) return false;
        if (!foldsText()) return false;
        // Jet's own test of every row the server sends decides, so the
        // server's folding of text only ever has to let rows through.
        std::vector<bool> fetch = needed;
        fetch.resize(src.columns.size(), false);
        sql::detail::Eval test;
        if (where) test = sql::detail::Binder(src.storage, &src, &fetch).compile(*where);
        const auto& all = meta();
        auto rendered = renderMatch(src, where, fetch, [&](const std::string& t) {
            auto it = all.find(lower(t));
            return it == all.end() ? std::string() : it->second->idColumn;
        });
        if (!rendered) return false;
        lastRendered_ = rendered->sql;
        auto r = server_.exec(rendered->sql);
        const int ids = static_cast<int>(src.parts.size());
        Row row(src.columns.size());
        for (int i = 0; i < PQntuples(r.get()); ++i) {
            for (std::size_t k = 0; k < rendered->columns.size(); ++k) {
                const auto at = static_cast<std::size_t>(rendered->columns[k]);
                row[at] = valueOf(r.get(), i, ids + static_cast<int>(k), src.columns[at].type);
            }
            if (test && !sql::detail::isTrue(test(row))) continue;
            visit(ids == 1 ? std::strtoll(PQgetvalue(r.get(), i, 0), nullptr, 10) : -1, row);
        }
        return true;
    }

    std::string takeRendered() { return std::exchange(lastRendered_, std::string()); }

    // A key written by hand moves the sequence past it, as Jet moves its
    // next autonumber: at once, or for a unit's rows once at its end.
    void keyWritten(const std::string& table, const std::string& column) {
        keysWritten_.emplace(table, column);
        if (depth_ == 0) moveSequences();
    }

    // Drops what was learnt of the tables: another workstation may have
    // added a column since.
    void forget() {
        meta_.clear();
        order_.clear();
    }

  private:
    // Under the C locale the server folds ASCII letters only.
    bool foldsText() {
        if (!foldsText_) {
            auto r = server_.exec("SELECT lower('ÄÖÜ') = 'äöü'");
            foldsText_ = PQgetvalue(r.get(), 0, 0)[0] == 't';
        }
        return *foldsText_;
    }
    std::optional<bool> foldsText_;
    std::string lastRendered_;

    static bool isInteger(const std::vector<ColumnDef>& cols, const std::string& name) {
        for (const auto& c : cols)
            if (sameName(c.name, name))
                return c.type == ColumnType::Long || c.type == ColumnType::Integer;
        return false;
    }

    template <class F>
    void unit(F&& f) {
        begin();
        try {
            f();
            commit();
        } catch (...) {
            rollback();
            throw;
        }
    }

    // The server's index names are one namespace for all tables, Jet's are
    // per table: the server's name is "<table>.<name>".
    void makeIndex(const std::string& table, const IndexDef& ix) {
        std::vector<std::string> cols;
        for (const auto& c : ix.columns)
            cols.push_back(ident(c.name) + (c.descending ? " DESC" : ""));
        const std::string name = table + "." + ix.name;
        if (name.size() > 62) throw sql::errors::syntaxCreateIndex();
        if (ix.primary) {
            std::vector<std::string> plain;
            for (const auto& c : ix.columns) plain.push_back(ident(c.name));
            server_.exec("ALTER TABLE " + ident(table) + " ADD CONSTRAINT " + ident(name) +
                         " PRIMARY KEY (" + joined(plain, ", ") + ")");
            return;
        }
        server_.exec(std::string("CREATE ") + (ix.unique ? "UNIQUE " : "") + "INDEX " +
                     ident(name) + " ON " + ident(table) + " (" + joined(cols, ", ") + ")");
        // A unique index on the server already lets any number of Null keys
        // in, as IGNORE NULL does; both options are kept for reading back.
        const std::string flags =
            std::string(ix.ignoreNulls ? "ignorenulls " : "") + (ix.required ? "required" : "");
        if (!flags.empty())
            server_.exec("COMMENT ON INDEX " + ident(name) + " IS " + literal(flags));
        if (ix.required) {
            std::vector<std::string> checks;
            for (const auto& c : ix.columns) checks.push_back(ident(c.name) + " IS NOT NULL");
            server_.exec("ALTER TABLE " + ident(table) + " ADD CONSTRAINT " + ident(name + "!") +
                         " CHECK (" + joined(checks, " AND ") + ")");
        }
    }

    bool hasRelationsTable() {
        auto r = server_.exec(std::string("SELECT to_regclass(") + literal(ident(kRelationsTable)) +
                              ") IS NOT NULL");
        return PQgetvalue(r.get(), 0, 0)[0] == 't';
    }

    const std::map<std::string, std::shared_ptr<const TableMeta>>& meta() {
        if (!meta_.empty()) return meta_;
        std::map<std::string, std::shared_ptr<TableMeta>> all;
        auto r = server_.exec(
            "SELECT c.table_name, c.column_name, c.data_type, c.character_maximum_length,"
            " c.is_identity, c.is_nullable, c.numeric_scale,"
            " coalesce(col_description((quote_ident(c.table_schema) || '.' ||"
            " quote_ident(c.table_name))::regclass, c.ordinal_position), '')"
            " FROM information_schema.columns c JOIN information_schema.tables t"
            " ON t.table_schema = c.table_schema AND t.table_name = c.table_name"
            " WHERE c.table_schema = current_schema() AND t.table_type = 'BASE TABLE'"
            " ORDER BY (quote_ident(c.table_schema) || '.' || "
            "quote_ident(c.table_name))::regclass::oid,"
            " c.ordinal_position");
        for (int i = 0; i < PQntuples(r.get()); ++i) {
            const auto s = [&](int c) { return std::string(PQgetvalue(r.get(), i, c)); };
            if (s(0) == kRelationsTable) continue;
            auto& m = all[s(0)];
            if (!m) {
                order_.push_back(lower(s(0)));
                m = std::make_shared<TableMeta>();
                m->name = s(0);
            }
            if (s(1) == kRowIdColumn) {
                m->idColumn = kRowIdColumn;
                continue;
            }
            m->columns.push_back(
                columnOf(s(1), s(2), PQgetvalue(r.get(), i, 3), s(4), s(5), s(6), s(7)));
        }
        auto ix = server_.exec(
            "SELECT t.relname, i.relname, x.indisprimary, x.indisunique, a.attname,"
            " (x.indoption[k.ord - 1] & 1) = 1, coalesce(obj_description(i.oid, 'pg_class'), '')"
            " FROM pg_index x JOIN pg_class i ON i.oid = x.indexrelid"
            " JOIN pg_class t ON t.oid = x.indrelid"
            " JOIN pg_namespace n ON n.oid = t.relnamespace"
            " CROSS JOIN LATERAL unnest(x.indkey) WITH ORDINALITY AS k(attnum, ord)"
            " JOIN pg_attribute a ON a.attrelid = t.oid AND a.attnum = k.attnum"
            " WHERE n.nspname = current_schema() ORDER BY t.relname, i.oid, k.ord");
        for (int i = 0; i < PQntuples(ix.get()); ++i) {
            const auto s = [&](int c) { return std::string(PQgetvalue(ix.get(), i, c)); };
            auto it = all.find(s(0));
            if (it == all.end() || s(4) == kRowIdColumn) continue;
            auto& m = *it->second;
            std::string name = s(1);
            if (name.rfind(m.name + ".", 0) == 0) name = name.substr(m.name.size() + 1);
            if (m.indexes.empty() || m.indexes.back().name != name) {
                IndexDef d;
                d.name = name;
                d.primary = s(2) == "t";
                d.unique = s(3) == "t";
                d.ignoreNulls = s(6).find("ignorenulls") != std::string::npos;
                d.required = d.primary || s(6).find("required") != std::string::npos;
                m.indexes.push_back(d);
            }
            m.indexes.back().columns.push_back({s(4), s(5) == "t"});
        }
        for (auto& [key, m] : all) {
            if (m->idColumn.empty())
                for (const auto& d : m->indexes)
                    if (d.primary && d.columns.size() == 1 &&
                        isInteger(m->columns, d.columns[0].name))
                        m->idColumn = d.columns[0].name;
            meta_[lower(key)] = m;
        }
        return meta_;
    }

    Server server_;
    sql::PathMapper mapper_;
    std::map<std::string, std::shared_ptr<const TableMeta>> meta_;
    std::vector<std::string> order_;  // keys of meta_ in the order the tables were made
    int depth_ = 0;
    int reads_ = 0;
    std::set<std::pair<std::string, std::string>> keysWritten_;

    void moveSequences() {
        for (const auto& [t, c] : keysWritten_)
            server_.exec("SELECT setval(pg_get_serial_sequence(" + literal(ident(t)) + ", " +
                         literal(c) + "), greatest((SELECT max(" + ident(c) + ") FROM " + ident(t) +
                         "), 1))");
        keysWritten_.clear();
    }
};

void PgTable::select(const std::string& where, const Params* p, const std::vector<bool>* needed,
                     const std::function<bool(RowId, const Row&)>& visit) {
    const auto& cols = meta_->columns;
    if (meta_->idColumn.empty())
        throw sql::Error("The table " + meta_->name +
                             " on the catalogue server has neither an integer primary key nor " +
                             kRowIdColumn + ".",
                         sql::errors::kIntegrity, 3000);
    std::string list = ident(meta_->idColumn);
    std::vector<int> at;
    for (std::size_t i = 0; i < cols.size(); ++i)
        if (!needed || i >= needed->size() || (*needed)[i]) {
            list += ", " + ident(cols[i].name);
            at.push_back(static_cast<int>(i));
        }
    auto r = owner_->server().exec("SELECT " + list + " FROM " + ident(meta_->name) + where +
                                       " ORDER BY " + ident(meta_->idColumn),
                                   p);
    Row row(cols.size());
    for (int i = 0; i < PQntuples(r.get()); ++i) {
        for (std::size_t k = 0; k < at.size(); ++k)
            row[static_cast<std::size_t>(at[k])] = valueOf(
                r.get(), i, static_cast<int>(k) + 1, cols[static_cast<std::size_t>(at[k])].type);
        if (!visit(std::strtoll(PQgetvalue(r.get(), i, 0), nullptr, 10), row)) return;
    }
}

std::optional<std::vector<RowId>> PgTable::seek(const std::string& column, const Value& key) {
    const ColumnDef* col = nullptr;
    for (const auto& c : meta_->columns)
        if (sameName(c.name, column)) col = &c;
    bool indexed = false;
    for (const auto& ix : meta_->indexes)
        indexed = indexed || (!ix.columns.empty() && sameName(ix.columns[0].name, column));
    if (!col || !indexed) return std::nullopt;
    std::vector<RowId> out;
    if (key.isNull()) return out;
    Params p;
    const bool text = sql::isTextType(col->type);
    p.add(text ? Value::text(key.toString()) : key, text ? ColumnType::Text : col->type);
    // lower() narrows the candidates on the server; Jet's own folding
    // decides, as it does for the .mdb.
    const std::string where = text ? " WHERE lower(" + ident(col->name) + ") = lower($1)"
                                   : " WHERE " + ident(col->name) + " = $1";
    const std::size_t at = static_cast<std::size_t>(col - meta_->columns.data());
    const std::string want = sql::equalityKey(key);
    select(where, &p, nullptr, [&](RowId id, const Row& r) {
        if (sql::equalityKey(r[at]) == want) out.push_back(id);
        return true;
    });
    return out;
}

Row PgTable::read(RowId id) {
    Row out;
    Params p;
    p.add(Value::integer(id), ColumnType::Long);
    select(" WHERE " + ident(meta_->idColumn) + " = $1", &p, nullptr, [&](RowId, const Row& r) {
        out = r;
        return false;
    });
    if (out.empty())
        throw sql::Error("The record was deleted by another user.", sql::errors::kIntegrity, 3167);
    return out;
}

void PgTable::read(const std::vector<RowId>& ids, const std::vector<bool>* needed,
                   const std::function<void(RowId, const Row&)>& visit) {
    if (ids.empty()) return;
    std::string list;
    for (RowId id : ids) list += (list.empty() ? "" : ",") + std::to_string(id);
    std::map<RowId, Row> rows;
    select(" WHERE " + ident(meta_->idColumn) + " IN (" + list + ")", nullptr, needed,
           [&](RowId id, const Row& r) {
               rows[id] = r;
               return true;
           });
    for (RowId id : ids) {
        auto it = rows.find(id);
        if (it != rows.end()) visit(id, it->second);
    }
}

RowId PgTable::insert(Row& row) {
    const auto& cols = meta_->columns;
    std::vector<std::string> names, slots;
    Params p;
    bool explicitKey = false;
    int autoAt = -1;
    for (std::size_t i = 0; i < cols.size(); ++i) {
        if (cols[i].autoIncrement) {
            autoAt = static_cast<int>(i);
            if (row[i].isNull()) continue;
            explicitKey = true;
        }
        names.push_back(ident(cols[i].name));
        p.add(row[i], cols[i].type);
        slots.push_back("$" + std::to_string(p.text.size()));
    }
    std::string returning = ident(meta_->idColumn);
    if (autoAt >= 0) returning += ", " + ident(cols[static_cast<std::size_t>(autoAt)].name);
    const std::string sql =
        "INSERT INTO " + ident(meta_->name) +
        (names.empty() ? " DEFAULT VALUES"
                       : " (" + joined(names, ", ") + ") VALUES (" + joined(slots, ", ") + ")") +
        " RETURNING " + returning;
    auto r = owner_->server().exec(sql, &p);
    if (autoAt >= 0) {
        row[static_cast<std::size_t>(autoAt)] =
            Value::integer(std::strtoll(PQgetvalue(r.get(), 0, 1), nullptr, 10));
        if (explicitKey)
            owner_->keyWritten(meta_->name, cols[static_cast<std::size_t>(autoAt)].name);
    }
    return std::strtoll(PQgetvalue(r.get(), 0, 0), nullptr, 10);
}

void PgTable::update(RowId id, const Row& row) {
    const auto& cols = meta_->columns;
    std::vector<std::string> sets;
    Params p;
    for (std::size_t i = 0; i < cols.size(); ++i) {
        p.add(row[i], cols[i].type);
        sets.push_back(ident(cols[i].name) + " = $" + std::to_string(p.text.size()));
    }
    p.add(Value::integer(id), ColumnType::Long);
    owner_->server().exec("UPDATE " + ident(meta_->name) + " SET " + joined(sets, ", ") +
                              " WHERE " + ident(meta_->idColumn) + " = $" +
                              std::to_string(p.text.size()),
                          &p);
}

void PgTable::remove(RowId id) {
    Params p;
    p.add(Value::integer(id), ColumnType::Long);
    owner_->server().exec(
        "DELETE FROM " + ident(meta_->name) + " WHERE " + ident(meta_->idColumn) + " = $1", &p);
}

}  // namespace

std::string lastRendered(sql::Storage& storage) {
    auto* pg = dynamic_cast<PgStorage*>(&storage);
    return pg ? pg->takeRendered() : std::string();
}

std::shared_ptr<sql::Storage> openStorage(const ServerCatalogue& server, bool needCatalogue,
                                          sql::PathMapper mapper) {
    const char* keys[] = {
        "host", "port", "dbname", "user", "connect_timeout", "client_encoding", "application_name",
        nullptr};
    const char* values[] = {server.host.c_str(),
                            server.port.c_str(),
                            server.database.c_str(),
                            server.user.c_str(),
                            "10",
                            "UTF8",
                            "tessara",
                            nullptr};
    PGconn* c = PQconnectdbParams(keys, values, 0);
    if (!c || PQstatus(c) != CONNECTION_OK) {
        std::string why = c ? Server::firstLine(PQerrorMessage(c)) : "out of memory";
        // libpq's message starts with the address it tried; the reason is last.
        const auto colon = why.rfind("failed: ");
        if (colon != std::string::npos) why = why.substr(colon + 8);
        PQfinish(c);
        throw sql::Error("The catalogue server " + server.describe() + " cannot be reached: " + why,
                         sql::errors::kIntegrity, 3000);
    }
    auto s = std::make_shared<PgStorage>(c, std::move(mapper));
    s->server().exec("SET client_min_messages = warning");
    if (needCatalogue && !s->table("tblOrdner"))
        throw sql::Error(
            "The database " + server.describe() +
                " holds no Tessara catalogue (tessara-cli server push puts one there).",
            sql::errors::kIntegrity, 3000);
    return s;
}

}  // namespace db::pg
