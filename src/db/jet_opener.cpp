#include "db/jet_opener.h"

#include "db/server_catalogue.h"

namespace db {

StorageOpener jetOpener(sql::PathMapper mapper, jet::filelock::Wait lockWait) {
    return [mapper, lockWait](const std::string& path, bool create) {
        // A library whose dbTessara.ini names a server keeps its catalogue
        // there; the .mdb path only says which library is meant.
        if (!create)
            if (auto server = serverBeside(mapper ? mapper(path) : path))
                return openServerCatalogue(*server, true, mapper);
        return sql::openEngineStorage(path, create, mapper, lockWait);
    };
}

}  // namespace db
