#include "db/jet_opener.h"

namespace db {

StorageOpener jetOpener(sql::PathMapper mapper) {
    return [mapper](const std::string& path, bool create) {
        return sql::openEngineStorage(path, create, mapper);
    };
}

}  // namespace db
