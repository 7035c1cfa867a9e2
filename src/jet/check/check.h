#pragma once
// Structural checks of a database, each fault one line of text. Read-side:
// every table's usage map agrees with the data pages, every row decodes,
// every index entry points at a live row holding the entry's key, every
// live row is in every index, and index entries are in order.
#include <string>
#include <vector>

#include "jet/read/database.h"

namespace jet {

std::vector<std::string> checkDatabase(Database& db);
// Reads every table definition, row, long value and index entry and the
// relationships; throws jet::Error at the first damage. Returns the number
// of rows read. (The fuzz target and the robustness tests drive it.)
std::size_t readEverything(Database& db);
std::vector<std::string> checkTable(Database& db, const std::string& table);

}  // namespace jet
