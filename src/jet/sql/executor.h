#pragma once
// Runs statements of the Jet SQL dialect against a Storage.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/storage.h"

namespace sql {

struct ResultColumn {
    std::string name;
    ColumnType type = ColumnType::Text;
    int size = 0;
    bool nullable = true;
    bool autoIncrement = false;
    int baseColumn = -1;  // index of the column in the base table, -1 when computed
};

// Rows of a SELECT, materialised, with what a record set needs to write
// changes back to the base table.
struct ResultSet {
    std::vector<ResultColumn> columns;
    std::vector<Row> rows;

    std::shared_ptr<Storage> baseStorage;
    std::string baseTable;        // empty when the rows cannot be written back
    std::vector<int> keyColumns;  // base-table columns of the primary key
    std::vector<Row> keys;        // per row: its primary key values
    std::vector<RowId> rowIds;    // per row: where it was read from

    int columnIndex(std::string_view name) const;  // -1 when absent
};

struct ExecResult {
    bool isQuery = false;  // a plain SELECT: rows hold its result
    ResultSet rows;
    long rowsAffected = 0;
};

class Executor {
  public:
    explicit Executor(std::shared_ptr<Storage> db) : db_(std::move(db)) {}
    ExecResult execute(std::string_view sql);
    ResultSet query(std::string_view sql);  // throws unless the statement is a SELECT without INTO

    Storage& storage() { return *db_; }
    std::shared_ptr<Storage> storagePtr() const { return db_; }

  private:
    std::shared_ptr<Storage> db_;
};

// Builds the full row of a base table from the values a record set holds for
// some of its columns, coerces every value, and finds a row by its key.
std::optional<RowId> findByKey(Table& table, const std::vector<int>& keyColumns, const Row& key);

}  // namespace sql
