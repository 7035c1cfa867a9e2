#include "jet/sql/engine_storage.h"

#include <filesystem>
#include <map>

#include "jet/read/database.h"
#include "jet/read/index_cursor.h"
#include "jet/read/table.h"
#include "jet/sql/engine_values.h"
#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"
#include "jet/store/os.h"
#include "jet/write/relationships.h"
#include "jet/write/writer.h"

namespace sql {

namespace {

// Row ids of the SQL layer carry the engine's page and row number.
RowId toSql(jet::RowId id) { return (static_cast<RowId>(id.page) << 16) | id.row; }
jet::RowId toJetId(RowId id) {
    return jet::RowId{static_cast<std::uint32_t>(id >> 16),
                      static_cast<std::uint16_t>(id & 0xFFFF)};
}

// Engine errors become the SQL layer's, keeping Jet's number.
template <class F>
void guarded(F&& f) {
    try {
        f();
    } catch (const Error&) {
        throw;
    } catch (const jet::Error& e) {
        throw Error(e.what(), errors::kIntegrity, e.number() ? e.number() : 3000);
    }
}

class EngineTable : public Table {
  public:
    EngineTable(std::shared_ptr<jet::Database> db, std::string name)
        : db_(std::move(db)), name_(std::move(name)) {}

    std::string name() const override { return def()->name; }

    std::vector<ColumnDef> columns() const override {
        std::vector<ColumnDef> out;
        for (const auto& c : def()->columns) out.push_back(engine::columnDefOf(c));
        return out;
    }

    std::vector<IndexDef> indexes() const override {
        auto d = def();
        std::vector<IndexDef> out;
        for (const auto& ix : d->indexes) {
            if (ix.realIndex >= d->realIndexes.size()) continue;
            const auto& real = d->realIndexes[ix.realIndex];
            IndexDef x;
            x.name = ix.name;
            x.primary = ix.isPrimary();
            x.unique = (real.flags & jet::idxflag::kUnique) != 0 || x.primary;
            x.ignoreNulls = (real.flags & jet::idxflag::kIgnoreNulls) != 0;
            x.required = (real.flags & jet::idxflag::kRequired) != 0;
            for (const auto& ic : real.columns) {
                const jet::Column* c = d->columnByNumber(ic.columnNumber);
                if (c) x.columns.push_back({c->name, !ic.ascending});
            }
            out.push_back(std::move(x));
        }
        return out;
    }

    void scan(const std::function<bool(RowId, const Row&)>& visit) override {
        jet::Table t = db_->table(name_);
        t.scan(
            [&](jet::RowId id, const jet::Row& r) { return visit(toSql(id), engine::fromJet(r)); });
    }

    void scan(const std::function<bool(RowId, const Row&)>& visit,
              const std::vector<bool>& needed) override {
        jet::Table t = db_->table(name_);
        const std::size_t n = t.def().columns.size();
        // Columns nobody asked for are not even decoded: a search reads a
        // handful of tblBlockInfo's 130 columns. Each row overwrites them
        // all before anybody looks, the others stay Null.
        const std::vector<std::size_t> lesen = positions(needed, n);
        Row row(n);
        t.scanLazy([&](const jet::RowView& v) {
            for (std::size_t i : lesen) row[i] = engine::fromJet(v.value(i));
            return visit(toSql(v.id()), row);
        });
    }

    void scan(const std::function<bool(RowId, const Row&)>& visit, const std::vector<bool>& needed,
              const std::vector<ScanStep>& steps) override {
        jet::Table t = db_->table(name_);
        const std::size_t n = t.def().columns.size();
        // Columns never asked for stay Null; the others are overwritten for
        // every row before anybody looks at them.
        std::vector<bool> gelesen(n, false);
        std::vector<std::vector<std::size_t>> schritte;
        for (const auto& s : steps) {
            schritte.push_back(positions(s.columns, n, gelesen));
            for (std::size_t i : schritte.back()) gelesen[i] = true;
        }
        const std::vector<std::size_t> danach = positions(needed, n, gelesen);
        Row row(n);
        t.scanLazy([&](const jet::RowView& v) {
            for (std::size_t k = 0; k < steps.size(); ++k) {
                for (std::size_t i : schritte[k]) row[i] = engine::fromJet(v.value(i));
                if (!steps[k].test(row)) return true;
            }
            for (std::size_t i : danach) row[i] = engine::fromJet(v.value(i));
            return visit(toSql(v.id()), row);
        });
    }

    std::optional<std::vector<RowId>> seek(const std::string& column, const Value& key) override {
        auto d = def();
        const jet::Column* col = d->column(column);
        if (!col) return std::nullopt;
        for (std::size_t i = 0; i < d->indexes.size(); ++i) {
            const auto& ix = d->indexes[i];
            if (ix.realIndex >= d->realIndexes.size()) continue;
            const auto& real = d->realIndexes[ix.realIndex];
            if (real.columns.empty() || real.columns[0].columnNumber != col->number) continue;
            // Rows with an all-Null key are not in an index that ignores Nulls.
            if (key.isNull() && (real.flags & jet::idxflag::kIgnoreNulls)) continue;
            switch (col->type) {
                case jet::ColumnType::Byte:
                case jet::ColumnType::Integer:
                case jet::ColumnType::Long:
                case jet::ColumnType::Double:
                case jet::ColumnType::DateTime:
                    break;
                default:
                    return std::nullopt;  // text keys are answered by a scan, by Jet's full
                                          // comparison
            }
            // A key no row can hold (3.5 in a Long column) finds nothing.
            if (!engine::keyFits(key, col->type)) return std::vector<RowId>{};
            jet::Table t = db_->table(name_);
            jet::IndexCursor cursor = t.index(i);
            std::vector<RowId> out;
            for (const auto& id : cursor.find({engine::toJet(key, col->type)}))
                out.push_back(toSql(id));
            return out;
        }
        return std::nullopt;
    }

    Row read(RowId id) override {
        jet::Table t = db_->table(name_);
        auto r = t.read(toJetId(id));
        if (!r) throw Error("The record was deleted.", errors::kIntegrity, 3167);
        return engine::fromJet(*r);
    }

    void read(const std::vector<RowId>& ids, const std::vector<bool>* needed,
              const std::function<void(RowId, const Row&)>& visit) override {
        jet::Table t = db_->table(name_);
        const std::size_t n = t.def().columns.size();
        std::vector<jet::RowId> jetIds;
        jetIds.reserve(ids.size());
        for (RowId id : ids) jetIds.push_back(toJetId(id));
        // One table, one read lock and only the asked-for columns for all the
        // hits: a Folder's record set is thousands of them. The others stay
        // Null in the one row handed out for each.
        std::vector<std::size_t> wanted;
        if (needed)
            for (std::size_t i = 0; i < n && i < needed->size(); ++i)
                if ((*needed)[i]) wanted.push_back(i);
        Row row(n);
        t.readLazy(jetIds, [&](const jet::RowView& v) {
            if (!needed) {
                visit(toSql(v.id()), engine::fromJet(v.all()));
                return true;
            }
            for (std::size_t i : wanted) row[i] = engine::fromJet(v.value(i));
            visit(toSql(v.id()), row);
            return true;
        });
    }

    RowId insert(Row& row) override {
        auto d = def();
        jet::Row r = toJetRow(*d, row);
        jet::RowId id;
        guarded([&] { id = jet::Writer(db_).insert(d->name, r); });
        // The engine wrote the autonumbers it assigned back into r.
        for (std::size_t i = 0; i < row.size() && i < r.size(); ++i)
            if (row[i].isNull() && !jet::isNull(r[i])) row[i] = engine::fromJet(r[i]);
        return toSql(id);
    }
    void update(RowId id, const Row& row) override {
        auto d = def();
        jet::Row r = toJetRow(*d, row);
        guarded([&] { jet::Writer(db_).update(d->name, toJetId(id), r); });
    }
    void remove(RowId id) override {
        auto d = def();
        guarded([&] { jet::Writer(db_).remove(d->name, toJetId(id)); });
    }

  private:
    // The marked positions below n, ascending.
    static std::vector<std::size_t> positions(const std::vector<bool>& marked, std::size_t n,
                                              const std::vector<bool>& besides = {}) {
        std::vector<std::size_t> out;
        for (std::size_t i = 0; i < n && i < marked.size(); ++i)
            if (marked[i] && !(i < besides.size() && besides[i])) out.push_back(i);
        return out;
    }
    std::shared_ptr<const jet::TableDef> def() const { return db_->tableDef(name_); }
    static jet::Row toJetRow(const jet::TableDef& d, const Row& row) {
        jet::Row r;
        r.reserve(d.columns.size());
        for (std::size_t i = 0; i < d.columns.size(); ++i)
            r.push_back(i < row.size() ? engine::toJet(row[i], d.columns[i].type) : jet::Value{});
        return r;
    }

    std::shared_ptr<jet::Database> db_;
    std::string name_;
};

class EngineStorage : public Storage {
  public:
    EngineStorage(std::shared_ptr<jet::Database> db, PathMapper mapper,
                  jet::filelock::Wait lockWait)
        : db_(std::move(db)), mapper_(std::move(mapper)), lockWait_(std::move(lockWait)) {}

    std::vector<std::string> tableNames() override { return db_->tableNames(false); }

    std::shared_ptr<Table> table(const std::string& name) override {
        for (const auto& n : db_->tableNames(false))
            if (textEquals(n, name)) return std::make_shared<EngineTable>(db_, n);
        return nullptr;
    }

    std::shared_ptr<Table> createTable(const std::string& name,
                                       const std::vector<ColumnDef>& columns,
                                       const std::vector<IndexDef>& indexes) override {
        jet::TableSpec want;
        want.name = name;
        for (const auto& c : columns) want.columns.push_back(columnSpec(c));
        for (const auto& ix : indexes) want.indexes.push_back(indexSpec(ix));
        guarded([&] { jet::Writer(db_).createTable(want); });
        return std::make_shared<EngineTable>(db_, name);
    }
    void addColumn(const std::string& table, const ColumnDef& column) override {
        guarded([&] { jet::Writer(db_).addColumn(table, columnSpec(column)); });
    }
    void createIndex(const std::string& table, const IndexDef& index) override {
        guarded([&] { jet::Writer(db_).createIndex(table, indexSpec(index)); });
    }
    void createRelation(const RelationDef& r) override {
        jet::RelationshipSpec want{r.name,           r.table,          r.columns,
                                   r.relatedTable,   r.relatedColumns, r.enforce,
                                   r.cascadeUpdates, r.cascadeDeletes, r.cascadeNull};
        guarded([&] { jet::Writer(db_).createRelationship(want); });
    }

    // A statement is one unit of work of the engine: all of it reaches the
    // file or none of it.
    void begin() override {
        if (db_->writable()) guarded([&] { db_->begin(); });
    }
    void commit() override {
        if (db_->inTransaction()) guarded([&] { db_->commit(); });
    }
    void rollback() override {
        if (db_->inTransaction()) db_->rollback();
    }
    void beginReads() override {
        guarded([&] { db_->pages().store().beginReads(); });
    }
    void endReads() override { db_->pages().store().endReads(); }

    std::vector<RelationDef> relations() override {
        std::vector<RelationDef> out;
        for (const auto& r : db_->relationships())
            out.push_back({r.name, r.table, r.columns, r.relatedTable, r.relatedColumns,
                           (r.flags & jet::relflag::kNoIntegrity) == 0,
                           (r.flags & jet::relflag::kCascadeUpdates) != 0,
                           (r.flags & jet::relflag::kCascadeDeletes) != 0,
                           (r.flags & jet::relflag::kCascadeNull) != 0});
        return out;
    }

    // One statement may name the same file more than once (its target and
    // a source); all of them reach one open database.
    std::shared_ptr<Storage> openOther(const std::string& path) override {
        auto& slot = others_[path];
        if (auto s = slot.lock()) return s;
        auto s = openEngineStorage(path, false, mapper_, lockWait_);
        slot = s;
        return s;
    }

  private:
    static jet::ColumnSpec columnSpec(const ColumnDef& c) {
        jet::ColumnSpec s;
        s.name = c.name;
        s.type = static_cast<jet::ColumnType>(static_cast<int>(c.type));
        s.length = static_cast<std::uint16_t>(
            c.type == ColumnType::Text ? (c.size > 0 ? c.size : 255) : 0);
        s.autoNumber = c.autoIncrement;
        s.nullable = c.nullable;
        return s;
    }
    static jet::IndexSpec indexSpec(const IndexDef& ix) {
        jet::IndexSpec s;
        s.name = ix.name;
        s.primary = ix.primary;
        s.unique = ix.unique || ix.primary;
        s.ignoreNulls = ix.ignoreNulls;
        s.required = ix.required;
        for (const auto& c : ix.columns) s.columns.push_back({c.name, !c.descending});
        return s;
    }
    std::shared_ptr<jet::Database> db_;
    PathMapper mapper_;
    jet::filelock::Wait lockWait_;
    std::map<std::string, std::weak_ptr<Storage>> others_;
};

}  // namespace

std::shared_ptr<Storage> openEngineStorage(const std::string& path, bool create, PathMapper mapper,
                                           jet::filelock::Wait lockWait) {
    std::string native = mapper ? mapper(path) : path;
    if (create) {
        if (jet::os::exists(native))
            throw Error("Database already exists.", errors::kIntegrity, 3204);
        guarded([&] { jet::createDatabase(native); });
    } else if (!jet::os::exists(native)) {
        throw errors::fileNotFound(path);
    }
    // Read-only files (a library on a write-protected share) still open, for reading.
    // The cache keeps up to 256 MB of pages across statements: a library of
    // 100 000 Blocks (100 MB) is read from a file server once, not at every
    // statement that scans it.
    constexpr std::size_t kCachePages = 65536;
    std::shared_ptr<jet::Database> db;
    guarded([&] {
        try {
            db = jet::Database::open(native, jet::OpenOptions{true, kCachePages, lockWait});
        } catch (const jet::Error& e) {
            // A lock not granted in time says so, and is not waited for twice.
            if (e.number() == jet::errnum::kLocked) throw;
            db = jet::Database::open(native, jet::OpenOptions{false, kCachePages, lockWait});
        }
    });
    return std::make_shared<EngineStorage>(std::move(db), std::move(mapper), std::move(lockWait));
}

}  // namespace sql
