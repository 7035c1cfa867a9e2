#include "jet/sql/executor.h"

#include <algorithm>

#include "jet/sql/binding.h"

namespace sql {

int ResultSet::columnIndex(std::string_view name) const {
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (textEquals(columns[i].name, name)) return static_cast<int>(i);
    return -1;
}

namespace {

using namespace detail;

ColumnDef inferredColumn(const std::string& name, const std::vector<Row>& rows, std::size_t i) {
    ColumnDef d;
    d.name = name;
    d.type = ColumnType::Text;
    d.size = 255;
    for (const auto& r : rows) {
        const Value& v = r[i];
        if (v.isNull()) continue;
        switch (v.kind()) {
            case Value::Kind::Bool:
                d.type = ColumnType::Boolean;
                break;
            case Value::Kind::Int:
                d.type = ColumnType::Long;
                break;
            case Value::Kind::Double:
                d.type = ColumnType::Double;
                break;
            case Value::Kind::Date:
                d.type = ColumnType::DateTime;
                break;
            case Value::Kind::Binary:
                d.type = ColumnType::OLE;
                break;
            default:
                d.type = ColumnType::Text;
                break;
        }
        break;
    }
    if (d.type != ColumnType::Text) d.size = 0;
    return d;
}

// ---- writing statements

std::vector<Row> coerceRows(const std::vector<ColumnDef>& cols, std::vector<Row> rows) {
    for (auto& r : rows) {
        r.resize(cols.size());
        for (std::size_t i = 0; i < cols.size(); ++i)
            r[i] = coerceToColumn(r[i], cols[i].type, cols[i].size, cols[i].name);
    }
    return rows;
}

long runSelectInto(const std::shared_ptr<Storage>& db, const SelectStmt& s) {
    ResultSet rs = runSelect(db, s);
    const TableRef& into = *s.into;
    std::shared_ptr<Storage> target = into.externalPath ? db->openOther(*into.externalPath) : db;
    if (target->table(into.name)) throw errors::tableExists(into.name);
    std::vector<ColumnDef> cols;
    for (std::size_t i = 0; i < rs.columns.size(); ++i) {
        const auto& rc = rs.columns[i];
        ColumnDef d;
        if (rc.baseColumn >= 0) {
            // A make-table query copies values, not the numbering: the new column is a plain Long.
            d = ColumnDef{rc.name, rc.type, rc.size, false, true};
        } else {
            d = inferredColumn(rc.name, rs.rows, i);
        }
        cols.push_back(d);
    }
    std::vector<Row> rows = coerceRows(cols, std::move(rs.rows));
    auto t = target->createTable(into.name, cols, {});
    for (auto& r : rows) t->insert(r);
    return static_cast<long>(rows.size());
}

Source openTarget(const std::shared_ptr<Storage>& db, const TableRef& ref) {
    return openSource(db, ref);
}

// Jet refuses a statement that names a column to write twice.
void addDestination(std::vector<int>& dest, int idx, const std::string& name) {
    if (std::find(dest.begin(), dest.end(), idx) != dest.end())
        throw errors::duplicateDestination(name);
    dest.push_back(idx);
}

long runInsert(const std::shared_ptr<Storage>& db, const InsertStmt& s) {
    Source target = openTarget(db, s.target);
    std::vector<int> dest;
    for (const auto& name : s.columns) {
        int idx = target.find("", name);
        if (idx < 0) throw errors::unknownInsertField(name);
        addDestination(dest, idx, name);
    }
    std::vector<Row> incoming;
    if (s.select) {
        ResultSet rs = runSelect(db, *s.select);
        if (s.columns.empty()) {
            // Without a column list Jet appends by field name.
            for (const auto& rc : rs.columns) {
                int idx = target.find("", rc.name);
                if (idx < 0) throw errors::unknownInsertField(rc.name);
                addDestination(dest, idx, rc.name);
            }
        } else if (dest.size() != rs.columns.size()) {
            throw errors::valueCountMismatch();
        }
        incoming = std::move(rs.rows);
    } else {
        if (s.columns.empty())
            for (std::size_t i = 0; i < target.columns.size(); ++i)
                dest.push_back(static_cast<int>(i));
        if (dest.size() != s.values.size()) throw errors::valueCountMismatch();
        Binder c(db, nullptr);
        Row r;
        for (const auto& e : s.values) r.push_back(c.compile(*e)(Row{}));
        incoming.push_back(std::move(r));
    }
    std::vector<Row> rows;
    rows.reserve(incoming.size());
    for (const auto& in : incoming) {
        Row r(target.columns.size());
        for (std::size_t i = 0; i < dest.size(); ++i) {
            const auto& cd = target.columns[dest[i]];
            r[dest[i]] = coerceToColumn(in[i], cd.type, cd.size, cd.name);
        }
        rows.push_back(std::move(r));
    }
    for (auto& r : rows) target.table->insert(r);
    return static_cast<long>(rows.size());
}

long runUpdate(const std::shared_ptr<Storage>& db, const UpdateStmt& s) {
    Selected sel = selectRows(db, s.table, s.where.get());
    Binder c(db, &sel.source);
    std::vector<std::pair<int, Eval>> sets;
    std::vector<int> dest;
    for (const auto& [name, expr] : s.assignments) {
        int idx = sel.source.find("", name);
        if (idx < 0) throw errors::noValueGiven();
        addDestination(dest, idx, name);
        if (sel.source.columns[idx].autoIncrement)
            throw Error(
                "Cannot update '" + sel.source.columns[idx].name + "'; field not updateable.",
                errors::kIntegrity, 3113);
        sets.emplace_back(idx, c.compile(*expr));
    }
    std::vector<Row> updated;
    updated.reserve(sel.rows.size());
    for (const auto& old : sel.rows) {
        Row r = old;
        for (const auto& [idx, ev] : sets) {
            const auto& cd = sel.source.columns[idx];
            r[idx] = coerceToColumn(ev(old), cd.type, cd.size, cd.name);
        }
        updated.push_back(std::move(r));
    }
    for (std::size_t i = 0; i < updated.size(); ++i)
        sel.source.table->update(sel.ids[i], updated[i]);
    return static_cast<long>(updated.size());
}

long runDelete(const std::shared_ptr<Storage>& db, const DeleteStmt& s) {
    Selected sel = selectRows(db, s.table, s.where.get());
    long removed = 0;
    for (RowId id : sel.ids) {
        // A cascading delete of an earlier row (a table related to itself)
        // may have taken this one already; no one else writes meanwhile.
        try {
            sel.source.table->read(id);
        } catch (const Error& e) {
            if (e.number() == 3167) continue;
            throw;
        }
        sel.source.table->remove(id);
        ++removed;
    }
    return removed;
}

}  // namespace

std::optional<RowId> findByKey(Table& table, const std::vector<int>& keyColumns, const Row& key) {
    if (keyColumns.empty()) return std::nullopt;
    auto cols = table.columns();
    if (auto hits = table.seek(cols[keyColumns[0]].name, key[0])) {
        for (RowId id : *hits) {
            Row r = table.read(id);
            bool all = true;
            for (std::size_t k = 0; k < keyColumns.size(); ++k)
                if (equalityKey(r[keyColumns[k]]) != equalityKey(key[k])) all = false;
            if (all) return id;
        }
        return std::nullopt;
    }
    std::optional<RowId> found;
    table.scan([&](RowId id, const Row& r) {
        for (std::size_t k = 0; k < keyColumns.size(); ++k)
            if (equalityKey(r[keyColumns[k]]) != equalityKey(key[k])) return true;
        found = id;
        return false;
    });
    return found;
}

namespace {
using namespace detail;
// Runs a writing statement as one unit on the store it writes to.
template <class F>
long asUnit(Storage& target, F&& work) {
    target.begin();
    try {
        long n = work();
        target.commit();
        return n;
    } catch (...) {
        target.rollback();
        throw;
    }
}

std::shared_ptr<Storage> targetOf(const std::shared_ptr<Storage>& db, const TableRef& ref) {
    return ref.externalPath ? db->openOther(*ref.externalPath) : db;
}

// A query's reads as one run. Writing statements hold no such run across
// their unit: a run waiting for the writer lock would hold back the commit
// of the writer it waits for.
class Reads {
  public:
    explicit Reads(Storage& db) : db_(db) { db_.beginReads(); }
    ~Reads() { db_.endReads(); }
    Reads(const Reads&) = delete;
    Reads& operator=(const Reads&) = delete;

  private:
    Storage& db_;
};
}  // namespace

ExecResult Executor::execute(std::string_view text) {
    Statement st = parseStatement(text);
    ExecResult r;
    if (auto* s = std::get_if<SelectStmt>(&st)) {
        if (s->into) {
            r.rowsAffected =
                asUnit(*targetOf(db_, *s->into), [&] { return runSelectInto(db_, *s); });
        } else {
            r.isQuery = true;
            Reads reads(*db_);
            r.rows = runSelect(db_, *s);
            r.rowsAffected = -1;
        }
    } else if (auto* ins = std::get_if<InsertStmt>(&st)) {
        r.rowsAffected = asUnit(*targetOf(db_, ins->target), [&] { return runInsert(db_, *ins); });
    } else if (auto* upd = std::get_if<UpdateStmt>(&st)) {
        r.rowsAffected = asUnit(*targetOf(db_, upd->table), [&] { return runUpdate(db_, *upd); });
    } else if (auto* del = std::get_if<DeleteStmt>(&st)) {
        r.rowsAffected = asUnit(*targetOf(db_, del->table), [&] { return runDelete(db_, *del); });
    } else if (auto* alt = std::get_if<AlterAddColumnStmt>(&st)) {
        if (!db_->table(alt->table)) throw errors::tableNotFound(alt->table);
        db_->addColumn(alt->table, alt->column);
        r.rowsAffected = 0;
    } else if (auto* cix = std::get_if<CreateIndexStmt>(&st)) {
        auto t = db_->table(cix->table);
        if (!t) throw errors::tableNotFound(cix->table);
        auto cols = t->columns();
        for (const auto& ic : cix->index.columns) {
            bool ok = std::any_of(cols.begin(), cols.end(),
                                  [&](const ColumnDef& c) { return textEquals(c.name, ic.name); });
            if (!ok) throw errors::invalidIndexField(ic.name);
        }
        db_->createIndex(cix->table, cix->index);
        r.rowsAffected = 0;
    }
    return r;
}

ResultSet Executor::query(std::string_view text) {
    Statement st = parseStatement(text);
    auto* s = std::get_if<SelectStmt>(&st);
    if (!s || s->into) throw Error("The statement returns no rows.", errors::kErrorsInCommand, 0);
    Reads reads(*db_);
    return runSelect(db_, *s);
}

}  // namespace sql
