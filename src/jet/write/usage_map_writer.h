#pragma once
// Changing usage maps (which pages a table or index owns, which have free
// space). Only inside a unit of work (Database::begin).
#include <cstdint>

namespace jet {

class Database;

// Marks (on) or clears page in the usage map whose row lies at dataPointer,
// rewriting the map row in place. An inline map that cannot reach the page
// is turned into a reference map (usage-map pages of type 0x05).
void setUsageMapBit(Database& db, std::uint32_t dataPointer, std::uint32_t page, bool on);

}  // namespace jet
