#include "jet/sql/engine_storage.h"

#include <filesystem>
#include <map>

#include "jet/database.h"
#include "jet/index_cursor.h"
#include "jet/sql/engine_values.h"
#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"
#include "jet/table.h"

namespace sql {

namespace {

// Row ids of the SQL layer carry the engine's page and row number.
RowId toSql(jet::RowId id) { return (static_cast<RowId>(id.page) << 16) | id.row; }
jet::RowId toJetId(RowId id) { return jet::RowId{static_cast<std::uint32_t>(id >> 16), static_cast<std::uint16_t>(id & 0xFFFF)}; }

class EngineTable : public Table {
public:
    EngineTable(std::shared_ptr<jet::Database> db, std::string name) : db_(std::move(db)), name_(std::move(name)) {}

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
        t.scan([&](jet::RowId id, const jet::Row& r) { return visit(toSql(id), engine::fromJet(r)); });
    }

    void scan(const std::function<bool(RowId, const Row&)>& visit, const std::vector<bool>& needed) override {
        jet::Table t = db_->table(name_);
        Row row;
        t.scan([&](jet::RowId id, const jet::Row& r) {
            row.assign(r.size(), Value());
            for (std::size_t i = 0; i < r.size() && i < needed.size(); ++i)
                if (needed[i]) row[i] = engine::fromJet(r[i]);
            return visit(toSql(id), row);
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
            switch (col->type) {
                case jet::ColumnType::Byte:
                case jet::ColumnType::Integer:
                case jet::ColumnType::Long:
                case jet::ColumnType::Double:
                case jet::ColumnType::DateTime: break;
                default: return std::nullopt;  // text keys are answered by a scan, by Jet's full comparison
            }
            // A key no row can hold (3.5 in a Long column) finds nothing.
            if (!engine::keyFits(key, col->type)) return std::vector<RowId>{};
            jet::Table t = db_->table(name_);
            jet::IndexCursor cursor = t.index(i);
            std::vector<RowId> out;
            for (const auto& id : cursor.find({engine::toJet(key, col->type)})) out.push_back(toSql(id));
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

    RowId insert(Row&) override { throw notWritable(); }
    void update(RowId, const Row&) override { throw notWritable(); }
    void remove(RowId) override { throw notWritable(); }

private:
    static Error notWritable() {
        return Error("Cannot update.  Database or object is read-only.", errors::kIntegrity, 3027);
    }
    std::shared_ptr<const jet::TableDef> def() const { return db_->tableDef(name_); }

    std::shared_ptr<jet::Database> db_;
    std::string name_;
};

class EngineStorage : public Storage {
public:
    EngineStorage(std::shared_ptr<jet::Database> db, PathMapper mapper) : db_(std::move(db)), mapper_(std::move(mapper)) {}

    std::vector<std::string> tableNames() override { return db_->tableNames(false); }

    std::shared_ptr<Table> table(const std::string& name) override {
        for (const auto& n : db_->tableNames(false))
            if (textEquals(n, name)) return std::make_shared<EngineTable>(db_, n);
        return nullptr;
    }

    std::shared_ptr<Table> createTable(const std::string&, const std::vector<ColumnDef>&,
                                       const std::vector<IndexDef>&) override {
        throw notWritable();
    }
    void addColumn(const std::string&, const ColumnDef&) override { throw notWritable(); }
    void createIndex(const std::string&, const IndexDef&) override { throw notWritable(); }
    void createRelation(const RelationDef&) override { throw notWritable(); }

    std::vector<RelationDef> relations() override {
        std::vector<RelationDef> out;
        for (const auto& r : db_->relationships())
            out.push_back({r.name, r.table, r.columns, r.relatedTable, r.relatedColumns});
        return out;
    }

    // One statement may name the same file more than once (its target and
    // a source); all of them reach one open database.
    std::shared_ptr<Storage> openOther(const std::string& path) override {
        auto& slot = others_[path];
        if (auto s = slot.lock()) return s;
        auto s = openEngineStorage(path, false, mapper_);
        slot = s;
        return s;
    }

private:
    static Error notWritable() {
        return Error("Cannot update.  Database or object is read-only.", errors::kIntegrity, 3027);
    }
    std::shared_ptr<jet::Database> db_;
    PathMapper mapper_;
    std::map<std::string, std::weak_ptr<Storage>> others_;
};

}  // namespace

std::shared_ptr<Storage> openEngineStorage(const std::string& path, bool create, PathMapper mapper) {
    std::string native = mapper ? mapper(path) : path;
    std::error_code ec;
    if (create) throw Error("Creating a database is not available in this build.", errors::kIntegrity, 3027);
    if (!std::filesystem::exists(native, ec)) throw errors::fileNotFound(path);
    auto db = jet::Database::open(native, jet::OpenOptions{false, 1024});
    return std::make_shared<EngineStorage>(std::move(db), std::move(mapper));
}

}  // namespace sql
