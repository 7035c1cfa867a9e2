#pragma once
// The opener for .mdb files through the Jet engine.
#include "db/connection.h"
#include "jet/sql/engine_storage.h"

namespace db {

// mapper turns the program's paths (backslash form, also inside IN '<file>')
// into native ones; platform::nativePath is the one the program passes.
StorageOpener jetOpener(sql::PathMapper mapper = {});

}  // namespace db
