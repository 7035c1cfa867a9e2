#include "jet/read/table.h"

#include "jet/format/error.h"
#include "jet/format/text.h"
#include "jet/read/database.h"
#include "jet/read/index_cursor.h"

namespace jet {

Table::Table(std::shared_ptr<Database> db, std::shared_ptr<const TableDef> def)
    : db_(std::move(db)), def_(std::move(def)) {}

// A Table of db's, made here beside Table so that Database itself needs
// nothing of it (it reads its catalogue through RowReader).
Table Database::table(const std::string& name) { return Table(shared_from_this(), tableDef(name)); }

RowReader Table::rows() const { return RowReader(db_->pages(), *def_); }

std::vector<std::uint32_t> Table::dataPages() const { return rows().dataPages(); }

void Table::scan(const std::function<bool(RowId, const Row&)>& visit) const { rows().scan(visit); }

void Table::scanLazy(const std::function<bool(const RowView&)>& visit) const {
    rows().scanLazy(visit);
}

std::vector<RowId> Table::rowIds() const { return rows().rowIds(); }

std::optional<Row> Table::read(RowId id) const { return rows().read(id); }

void Table::readLazy(const std::vector<RowId>& ids,
                     const std::function<bool(const RowView&)>& visit) const {
    rows().readLazy(ids, visit);
}

const Value& Table::value(const Row& row, const std::string& column) const {
    int i = def_->columnPosition(column);
    if (i < 0 || std::size_t(i) >= row.size())
        throw Error("no such column: " + column + " in " + def_->name, errnum::kNoSuchColumn);
    return row[std::size_t(i)];
}

IndexCursor Table::index(std::size_t logicalIndex) const {
    if (logicalIndex >= def_->indexes.size()) throw Error("no such index in " + def_->name);
    return IndexCursor(db_, def_, logicalIndex);
}

IndexCursor Table::index(const std::string& name) const {
    for (std::size_t i = 0; i < def_->indexes.size(); ++i)
        if (equalsNoCase(def_->indexes[i].name, name)) return IndexCursor(db_, def_, i);
    throw Error("no such index: " + name + " on " + def_->name);
}

}  // namespace jet
