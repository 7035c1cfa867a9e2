#include "db/jet_opener.h"

namespace db {

StorageOpener jetOpener(sql::PathMapper mapper, jet::filelock::Wait lockWait) {
    return [mapper, lockWait](const std::string& path, bool create) {
        return sql::openEngineStorage(path, create, mapper, lockWait);
    };
}

}  // namespace db
