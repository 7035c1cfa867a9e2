#pragma once
// Reading a table: rows in storage order, one row by id, values by column.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "jet/table_def.h"
#include "jet/usage_map.h"
#include "jet/value.h"

namespace jet {

class Database;
class IndexCursor;

// Decodes the values of one stored row. Columns beyond the row's own column
// count (added after the row was written) read as Null.
class RowDecoder {
  public:
    // Where the parts of one stored row lie.
    struct Layout {
        std::uint16_t numCols = 0;
        std::size_t size = 0;
        std::size_t nullMask = 0;  // offset of the null mask
        std::uint16_t varLen = 0;
        std::size_t eod = 0;      // end of the variable data
        std::size_t dataEnd = 0;  // where fixed data must end
    };

    RowDecoder(PageCache& pages, const TableDef& def) : pages_(pages), def_(def) {}
    // Throws "corrupt page N: ..." for a row whose layout does not fit.
    Row decode(const RowBytes& row) const;
    Value decodeColumn(const RowBytes& row, std::size_t columnPosition) const;
    Layout layout(const RowBytes& row) const;
    Value column(const RowBytes& row, const Layout& l, const Column& c) const;

  private:
    PageCache& pages_;
    const TableDef& def_;
};

// One live row, decoded column by column on demand (for scans that need a
// few columns of wide rows).
class RowView {
  public:
    RowView(const RowDecoder& decoder, const TableDef& def, RowBytes bytes, RowId id)
        : dec_(&decoder),
          def_(&def),
          bytes_(std::move(bytes)),
          id_(id),
          layout_(decoder.layout(bytes_)) {}
    RowId id() const { return id_; }
    Value value(std::size_t columnPosition) const {
        return dec_->column(bytes_, layout_, def_->columns.at(columnPosition));
    }
    Row all() const { return dec_->decode(bytes_); }

  private:
    const RowDecoder* dec_;
    const TableDef* def_;
    RowBytes bytes_;
    RowId id_;
    RowDecoder::Layout layout_;
};

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
    bool liveRow(std::uint32_t page, std::uint16_t row, RowBytes& out) const;
    // The same for a page already in hand (scans), saving a cache lookup a row.
    bool liveRow(const PageRef& pg, std::uint32_t page, std::uint16_t row, RowBytes& out) const;
    std::shared_ptr<Database> db_;
    std::shared_ptr<const TableDef> def_;
};

}  // namespace jet
