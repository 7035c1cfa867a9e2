#pragma once
// A library catalogue with the six tables of the program, a few hundred
// Block records in four Folders, Pages, Variants and a definition menu,
// built through the storage interface. The generator's Folders and Blocks
// stay at hand so tests compute expected rows independently of the SQL layer.
#include <memory>
#include <string>
#include <vector>

#include "jet/sql/storage.h"

namespace fixture {

// What a shell command prints on standard output (an outside reader such as
// sqlite3 or mdb-export run over the same rows).
std::string runCommand(const std::string& command);

struct BlockSpec {
    int nr;
    std::string block;
    int ordnerId;
    std::string m0, m3;  // m3 empty = Null
    std::string blkName0, blkName1;
};

struct FolderSpec {
    int nr;
    std::string code, name;
};

struct Catalogue {
    std::vector<FolderSpec> folders;
    std::vector<BlockSpec> blocks;
};

// Creates the six tables (empty) in a store.
void createSchema(sql::Storage& db);
// Creates the tables and fills them; answers what was written.
Catalogue fill(sql::Storage& db, int blockCount = 300);

}  // namespace fixture
