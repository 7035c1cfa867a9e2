#pragma once
// The narrow interface through which the SQL layer reaches a database file.
// The Jet engine adapter (engine_storage.h) and the in-memory store
// (memory_storage.h) implement it.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/sql/value.h"

namespace sql {

struct Expr;
namespace detail {
struct Source;
}

using Row = std::vector<Value>;
using RowId = std::int64_t;  // opaque, stable while the row lives

struct ColumnDef {
    std::string name;
    ColumnType type = ColumnType::Text;
    int size = 0;  // characters for Text, bytes otherwise (0 = the type's own size)
    bool autoIncrement = false;
    bool nullable = true;
};

struct IndexColumn {
    std::string name;
    bool descending = false;
};

struct IndexDef {
    std::string name;
    std::vector<IndexColumn> columns;
    bool primary = false;
    bool unique = false;
    bool ignoreNulls = false;  // WITH IGNORE NULL: rows whose key is all Null get no entry
    bool required = false;     // WITH DISALLOW NULL
};

struct RelationDef {
    std::string name;
    std::string table;  // the referring table
    std::vector<std::string> columns;
    std::string relatedTable;
    std::vector<std::string> relatedColumns;
    bool enforce = false;  // referential integrity; the cascades need it
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool cascadeNull = false;  // a deleted related row leaves the references Null
};

struct ScanStep {
    std::vector<bool> columns;  // the columns test reads
    std::function<bool(const Row&)> test;
};

class Table {
  public:
    virtual ~Table() = default;
    virtual std::string name() const = 0;
    virtual std::vector<ColumnDef> columns() const = 0;
    virtual std::vector<IndexDef> indexes() const = 0;

    // Visits every row in storage order; the visitor answers false to stop.
    virtual void scan(const std::function<bool(RowId, const Row&)>& visit) = 0;
    // The same, where only the columns marked in needed must hold their
    // values (others may read as Null): a store may skip converting them.
    virtual void scan(const std::function<bool(RowId, const Row&)>& visit,
                      const std::vector<bool>& needed) {
        (void)needed;
        scan(visit);
    }
    // The same in steps: each step's columns (those no step before it
    // read) are read, then its test; a row failing a test is passed over,
    // and only rows passing them all get the rest of needed. A store that
    // reads columns lazily saves the columns of rejected rows.
    virtual void scan(const std::function<bool(RowId, const Row&)>& visit,
                      const std::vector<bool>& needed, const std::vector<ScanStep>& steps) {
        scan(
            [&](RowId id, const Row& r) {
                for (const auto& s : steps)
                    if (!s.test(r)) return true;
                return visit(id, r);
            },
            needed);
    }
    // Rows whose column equals key by Jet's comparison, found through an
    // index whose first column is that column; nullopt when there is none.
    virtual std::optional<std::vector<RowId>> seek(const std::string& column, const Value& key) = 0;
    virtual Row read(RowId id) = 0;
    // The rows of a seek's hits in the order given, where only the columns
    // marked in needed must hold their values (nullptr: all of them).
    virtual void read(const std::vector<RowId>& ids, const std::vector<bool>* needed,
                      const std::function<void(RowId, const Row&)>& visit) {
        (void)needed;
        for (RowId id : ids) visit(id, read(id));
    }

    // The row holds one value per column in column order, already coerced
    // to the column types. Null in an autoincrement column asks for the next
    // number, which is written back into row.
    virtual RowId insert(Row& row) = 0;
    virtual void update(RowId id, const Row& row) = 0;
    virtual void remove(RowId id) = 0;
};

class Storage {
  public:
    virtual ~Storage() = default;
    virtual std::vector<std::string> tableNames() = 0;  // user tables only
    // Case-insensitive lookup; nullptr when there is no such table.
    virtual std::shared_ptr<Table> table(const std::string& name) = 0;
    virtual std::shared_ptr<Table> createTable(const std::string& name,
                                               const std::vector<ColumnDef>& columns,
                                               const std::vector<IndexDef>& indexes) = 0;
    virtual void addColumn(const std::string& table, const ColumnDef& column) = 0;
    virtual void createIndex(const std::string& table, const IndexDef& index) = 0;
    virtual void createRelation(const RelationDef& relation) = 0;
    virtual std::vector<RelationDef> relations() = 0;
    // The database named by IN '<file>'; throws sql::Error when it cannot be opened.
    virtual std::shared_ptr<Storage> openOther(const std::string& path) = 0;

    // One statement's writes as one unit: a store that can undo them does so
    // on rollback, so a failing statement leaves the file as it was.
    virtual void begin() {}
    virtual void commit() {}
    virtual void rollback() {}
    // Around a query: its reads as one run, so that a store looks once
    // whether what it cached is still current, and all of it sees the file
    // as one writer left it. Calls nest.
    virtual void beginReads() {}
    virtual void endReads() {}

    // A store that filters rows itself (a database server) answers a
    // SELECT's rows of source matching where: full rows with at least the
    // columns marked in needed, in the order reading them here would give.
    // False when it cannot carry the statement; the rows are then read here.
    virtual bool matchRows(const detail::Source& source, const Expr* where,
                           const std::vector<bool>& needed,
                           const std::function<void(RowId, const Row&)>& visit) {
        (void)source, (void)where, (void)needed, (void)visit;
        return false;
    }
};

}  // namespace sql
