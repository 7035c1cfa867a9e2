#include "jet/read/csv_export.h"

namespace jet {

namespace {
bool quoted(ColumnType t) {
    switch (t) {
        case ColumnType::Text:
        case ColumnType::Memo:
        case ColumnType::DateTime:
        case ColumnType::Binary:
        case ColumnType::OLE:
            return true;
        default:
            return false;
    }
}
}  // namespace

std::string csvField(const Column& column, const Value& value) {
    if (isNull(value)) return {};
    std::string text = toText(value);
    if (!quoted(column.type)) return text;
    std::string out;
    out.reserve(text.size() + 2);
    out += '"';
    for (char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    out += '"';
    return out;
}

void writeCsvHeader(const Table& table, std::ostream& out) {
    bool first = true;
    for (const Column& c : table.columns()) {
        if (!first) out << ',';
        first = false;
        out << c.name;
    }
    out << '\n';
}

void writeCsvRow(const Table& table, const Row& row, std::ostream& out) {
    std::string line;
    const auto& cols = table.columns();
    for (std::size_t i = 0; i < cols.size() && i < row.size(); ++i) {
        if (i) line += ',';
        line += csvField(cols[i], row[i]);
    }
    line += '\n';
    out.write(line.data(), std::streamsize(line.size()));
}

std::size_t writeCsv(const Table& table, std::ostream& out) {
    writeCsvHeader(table, out);
    std::size_t n = 0;
    table.scan([&](RowId, const Row& row) {
        writeCsvRow(table, row, out);
        ++n;
        return true;
    });
    return n;
}

}  // namespace jet
