#include "db/memory_opener.h"

#include "jet/sql/error.h"

namespace db {

StorageOpener memoryOpener(std::shared_ptr<sql::MemoryFiles> files) {
    return [files](const std::string& path, bool create) -> std::shared_ptr<sql::Storage> {
        if (create) {
            if (files->find(path))
                throw sql::Error("Database already exists.", sql::errors::kIntegrity, 3204);
            return files->create(path);
        }
        auto s = files->find(path);
        if (!s) throw sql::errors::fileNotFound(path);
        return s;
    };
}

}  // namespace db
