#pragma once
// Reading a table: rows in storage order, one row by id, values by column.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/row_reader.h"
#include "jet/read/table_def.h"

namespace jet {

class Database;
class IndexCursor;

class Table {
  public:
    Table(std::shared_ptr<Database> db, std::shared_ptr<const TableDef> def);
    const TableDef& def() const { return *def_; }
    std::shared_ptr<const TableDef> defPtr() const { return def_; }
    const std::string& name() const { return def_->name; }
    const std::vector<Column>& columns() const { return def_->columns; }
    int columnPosition(const std::string& name) const { return def_->columnPosition(name); }

    // Data pages owned by the table per its usage map, ascending.
    std::vector<std::uint32_t> dataPages() const;
    // Every live row in storage order (pages ascending, rows in offset-table
    // order), overflow pointers followed; rows reached only through an
    // overflow pointer are returned at the pointer's place. The visitor
    // answers false to stop.
    void scan(const std::function<bool(RowId, const Row&)>& visit) const;
    std::vector<RowId> rowIds() const;
    // The same rows as scan(), each decoded only as far as the visitor asks.
    void scanLazy(const std::function<bool(const RowView&)>& visit) const;
    // The row at id, following an overflow pointer; nullopt for a deleted
    // row or a row of another table.
    std::optional<Row> read(RowId id) const;
    // The rows at ids in that order, each decoded only as far as the visitor
    // asks, under one read lock (an index lookup's hits); ids that name no
    // live row of this table are passed over. The visitor answers false to stop.
    void readLazy(const std::vector<RowId>& ids,
                  const std::function<bool(const RowView&)>& visit) const;
    // Throws "no such column: NAME" when the table has no such column.
    const Value& value(const Row& row, const std::string& column) const;

    std::size_t indexCount() const { return def_->indexes.size(); }
    IndexCursor index(std::size_t logicalIndex) const;
    IndexCursor index(const std::string& name) const;  // throws when missing

  private:
    RowReader rows() const;
    std::shared_ptr<Database> db_;
    std::shared_ptr<const TableDef> def_;
};

}  // namespace jet
