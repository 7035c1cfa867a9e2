#pragma once
// sql::Storage over the Jet engine: the SQL layer and the record sets reach
// .mdb files through this adapter.
#include <functional>
#include <memory>
#include <string>

#include "jet/sql/storage.h"
#include "jet/store/file_lock.h"

namespace sql {

// Turns a path as the program writes it (and as IN '<file>' names it) into
// a path the file system takes; identity unless the caller supplies one.
using PathMapper = std::function<std::string(const std::string&)>;

// Opens an .mdb file for reading and writing; with create, makes a new,
// empty database there first (an existing file is refused). lockWait bounds
// every wait for another process's lock, on this file and on the files a
// statement names with IN '<file>'.
std::shared_ptr<Storage> openEngineStorage(const std::string& path, bool create,
                                           PathMapper mapper = {},
                                           jet::filelock::Wait lockWait = {});

}  // namespace sql
