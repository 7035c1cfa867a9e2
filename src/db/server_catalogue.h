#pragma once
// A library whose catalogue lives on a PostgreSQL server: its directory's
// "dbTessara.ini" names the server in section "Server". The password is
// never kept there; libpq takes it from ~/.pgpass or PGPASSWORD.
#include <memory>
#include <optional>
#include <string>

#include "jet/sql/engine_storage.h"
#include "jet/sql/storage.h"

namespace db {

struct ServerCatalogue {
    std::string host;
    std::string port;
    std::string database;
    std::string user;
    std::string describe() const;  // for messages: user@host:port/database
};

// The "Server" section of the dbTessara.ini in the directory of the
// catalogue file at nativePath; nullopt when the file or section is absent.
std::optional<ServerCatalogue> serverBeside(const std::string& nativePath);

// Connects; throws sql::Error with one line saying what failed. With
// needCatalogue, a database without the catalogue's tables is such a
// failure too. IN '<file>' clauses open Jet files through mapper.
std::shared_ptr<sql::Storage> openServerCatalogue(const ServerCatalogue& server, bool needCatalogue,
                                                  sql::PathMapper mapper = {});

// Whether this build carries the PostgreSQL driver.
bool serverDriverBuilt();

}  // namespace db
