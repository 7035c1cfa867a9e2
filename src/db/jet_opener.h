#pragma once
// The opener for .mdb files through the Jet engine, or for the catalogue on
// a server where the library's dbTessara.ini names one (server_catalogue.h).
#include "db/connection.h"
#include "jet/sql/engine_storage.h"

namespace db {

// mapper turns the program's paths (backslash form, also inside IN '<file>')
// into native ones; platform::nativePath is the one the program passes.
// lockWait bounds the waits for another process's lock on every file opened
// and names whom to tell while they last.
StorageOpener jetOpener(sql::PathMapper mapper = {}, jet::filelock::Wait lockWait = {});

}  // namespace db
