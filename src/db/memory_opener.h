#pragma once
// An opener over in-memory stores, for tests of the layers above: paths name
// stores of one MemoryFiles set, so IN '<file>' between them works too.
#include <memory>

#include "db/connection.h"
#include "jet/sql/memory_storage.h"

namespace db {

StorageOpener memoryOpener(std::shared_ptr<sql::MemoryFiles> files);

}  // namespace db
