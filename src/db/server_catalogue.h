#pragma once
// A library whose catalogue lives on a PostgreSQL server: its directory's
// "dbTessara.ini" names the server in section "Server". The password is
// never kept there; libpq takes it from ~/.pgpass or PGPASSWORD. Without a
// "user" key each workstation logs in under PGUSER or its own login name,
// so that the server's Folder rights apply to each person.
#include <memory>
#include <optional>
#include <string>

#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/storage.h"

namespace db {

// Why a catalogue server could not be opened, told apart so that the user
// gets a message that says what to do about it. The error's own text adds
// the server and its words, for the log and for administrators.
enum class ServerFault {
    Unreachable,  // nothing answers at host and port: server down or address wrong
    Starting,     // the server answers but takes no sessions (starting, stopping)
    Login,        // user or password refused
    NoDatabase,   // the login works, the database does not exist
    NoCatalogue,  // the database holds no catalogue tables
    NoDriver,     // libpq cannot be had (Windows: no libpq.dll found)
};

class ServerError : public sql::Error {
  public:
    // Jet's "ODBC--connection failed" is what a server library's open gave.
    ServerError(ServerFault fault, const std::string& message)
        : sql::Error(message, sql::errors::kIntegrity, 3151), fault_(fault) {}
    ServerFault fault() const { return fault_; }

  private:
    ServerFault fault_;
};

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

// Connects; throws ServerError with one line saying what failed. With
// needCatalogue, a database without the catalogue's tables is such a
// failure too. IN '<file>' clauses open Jet files through mapper.
std::shared_ptr<sql::Storage> openServerCatalogue(const ServerCatalogue& server, bool needCatalogue,
                                                  sql::PathMapper mapper = {});

// Makes the server itself keep each Folder's OrdnerRechte: a login not
// listed can neither read nor change the Folder's rows. Run by the role
// that owns the catalogue, once its tables are filled.
void enforceFolderRights(sql::Storage& server);

}  // namespace db

namespace db {

// Copies every table of from into the empty to: columns, indexes, rows with
// their keys, then the relations (so that the rows need not come in any
// order), and the autonumbers continue past the highest key. Indexes named
// in skip are left behind; extra are made too. Answers each table with its
// row count, read back from to after the copy; throws sql::Error when a
// count differs or a step fails.
struct CopyIndex {
    std::string table;
    sql::IndexDef index;
};
std::vector<std::pair<std::string, long>> copyCatalogue(sql::Storage& from, sql::Storage& to,
                                                        const std::vector<CopyIndex>& extra,
                                                        const std::vector<std::string>& skip);

}  // namespace db
