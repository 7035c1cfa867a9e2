#pragma once
// The catalogue on a PostgreSQL server, behind the same storage interface
// as a Jet file, so that the SQL layer above keeps Jet's semantics (text
// compared without regard to case, Jet's wildcards) and no subsystem knows
// which one it talks to. libpq stays inside this folder.
#include <memory>

#include "db/server_catalogue.h"

namespace db::pg {

std::shared_ptr<sql::Storage> openStorage(const ServerCatalogue& server, bool needCatalogue,
                                          sql::PathMapper mapper);

}  // namespace db::pg
