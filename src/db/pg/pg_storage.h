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

// The statement the server last ran for a SELECT's rows, taken: empty when
// none was rendered since (or the storage is not a server's).
std::string lastRendered(sql::Storage& storage);

// Puts the Folder rights on the catalogue in the storage's schema (see
// pg_rights.cpp); nothing for a storage that is not a server's.
void enforceFolderRights(sql::Storage& storage);

}  // namespace db::pg
