#pragma once
// A catalogue database for the library tests: made by Mk_Datenbank in a
// store the test owns, with the program state the helpers log into.
#include <memory>
#include <string>

#include "db/connection.h"
#include "jet/sql/memory_storage.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::test {

// An opener over in-memory "files", so a path names the same store twice.
inline db::StorageOpener speicherOeffner(std::shared_ptr<sql::MemoryFiles> files) {
    return [files](const std::string& path, bool create) -> std::shared_ptr<sql::Storage> {
        if (create) return files->create(path);
        auto s = files->find(path);
        if (!s) throw std::runtime_error("Could not find file '" + path + "'.");
        return s;
    };
}

}  // namespace tessara::test
