#pragma once
// The rows of one table as they are stored: a row's bytes decoded into
// values, and the table's data pages walked through its usage map (deleted
// rows passed over, overflow pointers followed). Needs only the page cache
// and the definition, so Database reads its catalogue with it and Table,
// which also keeps the Database open, reads through it.
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"
#include "jet/read/usage_map.h"
#include "jet/store/page_file.h"

namespace jet {

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
    // Whether a row of that many columns carries the variable column table.
    bool hasVarTable(std::uint16_t rowColumns) const;

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

// Table's reading (see Table for each call) over pages and def, which must
// outlive it.
class RowReader {
  public:
    RowReader(PageCache& pages, const TableDef& def) : pages_(pages), def_(def) {}
    std::vector<std::uint32_t> dataPages() const;
    void scan(const std::function<bool(RowId, const Row&)>& visit) const;
    std::vector<RowId> rowIds() const;
    void scanLazy(const std::function<bool(const RowView&)>& visit) const;
    std::optional<Row> read(RowId id) const;
    void readLazy(const std::vector<RowId>& ids,
                  const std::function<bool(const RowView&)>& visit) const;

  private:
    // The pages the usage map gives the table, as a scan reads them.
    PageStream tablePages() const;
    bool liveRow(std::uint32_t page, std::uint16_t row, RowBytes& out) const;
    // The same for a page already in hand (scans), saving a cache lookup a row.
    bool liveRow(const PageRef& pg, std::uint32_t page, std::uint16_t row, RowBytes& out) const;
    PageCache& pages_;
    const TableDef& def_;
};

}  // namespace jet
