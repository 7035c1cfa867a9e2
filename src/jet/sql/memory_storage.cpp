#include "jet/sql/memory_storage.h"

#include <optional>
#include <set>

#include "jet/sql/error.h"
#include "jet/sql/text_rules.h"

namespace sql {

class MemoryTable : public Table {
  public:
    MemoryTable(std::string name, std::vector<ColumnDef> cols, AccessCounters& counters)
        : name_(std::move(name)), columns_(std::move(cols)), counters_(counters) {}

    std::string name() const override { return name_; }
    std::vector<ColumnDef> columns() const override { return columns_; }
    std::vector<IndexDef> indexes() const override { return indexes_; }

    void scan(const std::function<bool(RowId, const Row&)>& visit) override {
        ++counters_.scans;
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rows_[i] && !visit(static_cast<RowId>(i), *rows_[i])) return;
    }

    void scan(const std::function<bool(RowId, const Row&)>& visit,
              const std::vector<bool>& needed) override {
        if (!counters_.blankUnneeded) return scan(visit);
        ++counters_.scans;
        Row partial;
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            if (!rows_[i]) continue;
            partial.assign(rows_[i]->size(), Value());
            for (std::size_t c = 0; c < partial.size() && c < needed.size(); ++c)
                if (needed[c]) partial[c] = (*rows_[i])[c];
            if (!visit(static_cast<RowId>(i), partial)) return;
        }
    }

    std::optional<std::vector<RowId>> seek(const std::string& column, const Value& key) override {
        int col = columnIndex(column);
        bool indexed = false;
        for (const auto& ix : indexes_)
            if (!ix.columns.empty() && textEquals(ix.columns[0].name, column)) indexed = true;
        if (col < 0 || !indexed) return std::nullopt;
        ++counters_.seeks;
        std::vector<RowId> out;
        auto it = valueIndex_.find(col);
        if (it == valueIndex_.end()) return out;
        auto hit = it->second.find(equalityKey(key));
        if (hit != it->second.end()) out.assign(hit->second.begin(), hit->second.end());
        return out;
    }

    Row read(RowId id) override {
        if (id < 0 || static_cast<std::size_t>(id) >= rows_.size() || !rows_[id])
            throw Error("The record was deleted.", errors::kIntegrity, 3167);
        return *rows_[id];
    }

    RowId insert(Row& row) override {
        row.resize(columns_.size());
        for (std::size_t c = 0; c < columns_.size(); ++c) {
            if (columns_[c].autoIncrement) {
                if (row[c].isNull())
                    row[c] = Value::integer(++autoNumber_[c]);
                else
                    autoNumber_[c] = std::max(autoNumber_[c], row[c].asInt());
            }
        }
        checkRow(row, -1);
        rows_.push_back(row);
        RowId id = static_cast<RowId>(rows_.size() - 1);
        indexRow(id, row, true);
        return id;
    }

    void update(RowId id, const Row& row) override {
        Row old = read(id);
        Row r = row;
        r.resize(columns_.size());
        checkRow(r, id);
        indexRow(id, old, false);
        rows_[id] = r;
        indexRow(id, r, true);
    }

    void remove(RowId id) override {
        Row old = read(id);
        indexRow(id, old, false);
        rows_[id].reset();
    }

    // Schema changes, called by the store.
    void addColumn(const ColumnDef& c) {
        if (columnIndex(c.name) >= 0) throw errors::fieldExists(c.name, name_);
        if (c.autoIncrement)
            for (const auto& o : columns_)
                if (o.autoIncrement)
                    throw Error("Table '" + name_ + "' has an AutoNumber field already.",
                                errors::kIntegrity, 3190);
        columns_.push_back(c);
        const std::size_t at = columns_.size() - 1;
        // As Jet does, an added autonumber numbers the rows already there.
        for (auto& r : rows_)
            if (r) r->push_back(c.autoIncrement ? Value::integer(++autoNumber_[at]) : Value());
    }
    void addIndex(const IndexDef& ix) {
        for (const auto& e : indexes_)
            if (textEquals(e.name, ix.name)) throw errors::indexExists(name_, ix.name);
        for (const auto& c : ix.columns)
            if (columnIndex(c.name) < 0) throw errors::invalidIndexField(c.name);
        if (ix.primary || ix.required)
            for (const auto& r : rows_)
                if (r && anyNullKey(ix, *r)) throw errors::nullKey();
        if (ix.primary || ix.unique) {
            std::set<std::string> seen;
            for (const auto& r : rows_)
                if (r && !anyNullKey(ix, *r) && !seen.insert(compositeKey(ix, *r)).second)
                    throw errors::duplicateKey();
        }
        indexes_.push_back(ix);
        rebuildIndex();
    }
    int columnIndex(const std::string& name) const {
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (textEquals(columns_[i].name, name)) return static_cast<int>(i);
        return -1;
    }

  private:
    void checkRow(const Row& row, RowId self) {
        for (std::size_t c = 0; c < columns_.size(); ++c)
            if (!columns_[c].nullable && row[c].isNull())
                throw errors::nullInRequired(name_ + "." + columns_[c].name);
        for (std::size_t n = 0; n < indexes_.size(); ++n) {
            const auto& ix = indexes_[n];
            if ((ix.primary || ix.required) && anyNullKey(ix, row)) throw errors::nullKey();
            if ((!ix.primary && !ix.unique) || anyNullKey(ix, row)) continue;
            auto& keys = uniqueKeys_[n];
            auto hit = keys.find(compositeKey(ix, row));
            if (hit != keys.end() && hit->second != self) throw errors::duplicateKey();
        }
    }
    // As in Jet, Null equals nothing: a key with a Null part duplicates no other.
    bool anyNullKey(const IndexDef& ix, const Row& row) const {
        for (const auto& c : ix.columns)
            if (row[columnIndex(c.name)].isNull()) return true;
        return false;
    }
    std::string compositeKey(const IndexDef& ix, const Row& row) const {
        std::string k;
        for (const auto& c : ix.columns) k += equalityKey(row[columnIndex(c.name)]) + '\x1f';
        return k;
    }
    void indexRow(RowId id, const Row& row, bool add) {
        for (std::size_t n = 0; n < indexes_.size(); ++n) {
            const auto& ix = indexes_[n];
            if ((!ix.primary && !ix.unique) || anyNullKey(ix, row)) continue;
            if (add)
                uniqueKeys_[n][compositeKey(ix, row)] = id;
            else
                uniqueKeys_[n].erase(compositeKey(ix, row));
        }
        for (auto& [col, map] : valueIndex_) {
            auto& ids = map[equalityKey(row[col])];
            if (add)
                ids.insert(id);
            else
                ids.erase(id);
        }
    }
    void rebuildIndex() {
        valueIndex_.clear();
        uniqueKeys_.clear();
        for (const auto& ix : indexes_)
            if (!ix.columns.empty()) valueIndex_[columnIndex(ix.columns[0].name)];
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (rows_[i]) indexRow(static_cast<RowId>(i), *rows_[i], true);
    }

    std::string name_;
    std::vector<ColumnDef> columns_;
    std::vector<IndexDef> indexes_;
    std::vector<std::optional<Row>> rows_;
    std::map<std::size_t, std::int64_t> autoNumber_;
    std::map<int, std::map<std::string, std::set<RowId>>> valueIndex_;
    std::map<std::size_t, std::map<std::string, RowId>> uniqueKeys_;
    AccessCounters& counters_;
};

std::shared_ptr<MemoryStorage> MemoryFiles::create(const std::string& path) {
    auto s = std::make_shared<MemoryStorage>(weak_from_this());
    files_[path] = s;
    return s;
}

std::shared_ptr<MemoryStorage> MemoryFiles::find(const std::string& path) const {
    auto it = files_.find(path);
    return it == files_.end() ? nullptr : it->second;
}

std::shared_ptr<MemoryTable> MemoryStorage::find(const std::string& name) {
    for (auto& t : tables_)
        if (textEquals(t->name(), name)) return t;
    return nullptr;
}

std::vector<std::string> MemoryStorage::tableNames() {
    std::vector<std::string> out;
    for (auto& t : tables_) out.push_back(t->name());
    return out;
}

std::shared_ptr<Table> MemoryStorage::table(const std::string& name) { return find(name); }

std::shared_ptr<Table> MemoryStorage::createTable(const std::string& name,
                                                  const std::vector<ColumnDef>& columns,
                                                  const std::vector<IndexDef>& indexes) {
    if (find(name)) throw errors::tableExists(name);
    auto t = std::make_shared<MemoryTable>(name, std::vector<ColumnDef>{}, counters_);
    for (const auto& c : columns) t->addColumn(c);
    for (const auto& ix : indexes) t->addIndex(ix);
    tables_.push_back(t);
    return t;
}

void MemoryStorage::addColumn(const std::string& table, const ColumnDef& column) {
    auto t = find(table);
    if (!t) throw errors::tableNotFound(table);
    t->addColumn(column);
}

void MemoryStorage::createIndex(const std::string& table, const IndexDef& index) {
    auto t = find(table);
    if (!t) throw errors::tableNotFound(table);
    t->addIndex(index);
}

void MemoryStorage::createRelation(const RelationDef& relation) {
    auto t = find(relation.table);
    if (!t) throw errors::tableNotFound(relation.table);
    auto rt = find(relation.relatedTable);
    if (!rt) throw errors::tableNotFound(relation.relatedTable);
    for (const auto& c : relation.columns)
        if (t->columnIndex(c) < 0) throw errors::invalidIndexField(c);
    for (const auto& c : relation.relatedColumns)
        if (rt->columnIndex(c) < 0) throw errors::invalidIndexField(c);
    for (const auto& r : relations_)
        if (textEquals(r.name, relation.name))
            throw Error("Relationship '" + relation.name + "' already exists.", errors::kIntegrity,
                        3012);
    relations_.push_back(relation);
}

std::vector<RelationDef> MemoryStorage::relations() { return relations_; }

std::shared_ptr<Storage> MemoryStorage::openOther(const std::string& path) {
    auto files = files_.lock();
    std::shared_ptr<MemoryStorage> s = files ? files->find(path) : nullptr;
    if (!s) throw errors::fileNotFound(path);
    return s;
}

}  // namespace sql
