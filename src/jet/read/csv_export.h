#pragma once
// A table as CSV in the shape mdb-export prints: a header row of column
// names, commas, Text/Memo/Date values in double quotes with inner quotes
// doubled, NULL as nothing, Booleans 1/0, Currency with four decimals.
#include <ostream>
#include <string>

#include "jet/read/table.h"

namespace jet {

void writeCsvHeader(const Table& table, std::ostream& out);
void writeCsvRow(const Table& table, const Row& row, std::ostream& out);
// Returns the number of rows written.
std::size_t writeCsv(const Table& table, std::ostream& out);
std::string csvField(const Column& column, const Value& value);

}  // namespace jet
