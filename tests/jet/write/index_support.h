#pragma once
// Copies of the Access-made test files in a temporary directory, and a walk
// over an index tree that checks the page layout the writer promises.
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "jet/read/database.h"
#include "jet/support/mdbtools.h"
#include "jet/support/tx_support.h"

namespace idxtest {

// A writable copy of a test file in a directory of its own.
class TempCopy {
  public:
    explicit TempCopy(const std::string& file) : path_(dir_.copy(file)) {}
    const std::string& path() const { return path_; }
    std::shared_ptr<jet::Database> open(bool writable = true) const {
        return jet::Database::open(path_, {.writable = writable});
    }

  private:
    txtest::TempDir dir_;
    std::string path_;
};
using jettest::testFile;
using jettest::testFiles;

std::string hex(const std::vector<std::uint8_t>& b);  // lower-case, no spaces
std::vector<std::uint8_t> unhex(const std::string& h);
// A table "Parts" with a column K of the given type (General order for
// text) and one index ByK on K, or on a Long column Id first and then K.
jet::TableDef keyTable(jet::ColumnType type, bool ascending, bool idFirst = false);
// The logical index of that name; throws when the table has none.
std::size_t indexNamed(const jet::TableDef& def, const std::string& name);

struct TreeShape {
    std::size_t depth = 0, leaves = 0, nodes = 0, entries = 0;
};
// Faults of the tree at root: node entries not equal to their child's last
// entry, broken prev/next chains, wrong free-space figures, pages of another
// table, entries out of order.
std::vector<std::string> treeFaults(jet::Database& db, std::uint32_t root, std::uint32_t tdefPage,
                                    TreeShape* shape = nullptr);

// Every entry of every index with a Text key column, of every table (the
// system tables too), against the key indexKeyOf encodes from the row it
// points at. A value holding a character the encoder has no code for
// counts as refused, provided the refusal names such a character.
struct TextKeyReport {
    std::size_t compared = 0, refused = 0, indexes = 0;
    std::vector<std::string> faults;
    std::set<char16_t> chars;  // characters of the values compared
};
TextKeyReport compareTextKeys(jet::Database& db, const std::string& label);

}  // namespace idxtest
