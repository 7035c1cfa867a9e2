#pragma once
// Changing a database: rows, schema, and new files. Every call of Writer is
// one unit of work (the file holds either all of it or none of it, see
// Database::begin) unless the caller has opened a batch around several.
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"

namespace jet {

class Database;

struct ColumnSpec {
    std::string name;
    ColumnType type = ColumnType::Text;
    std::uint16_t length = 0;  // Text: characters (Jet stores 2 bytes each); ignored otherwise
    bool autoNumber = false;   // Long only
    bool nullable = true;
};

struct IndexSpec {
    std::string name;
    std::vector<std::pair<std::string, bool>> columns;  // column name, ascending
    bool primary = false;                               // implies unique and required
    bool unique = false;
    bool ignoreNulls = false;  // rows whose key columns are all Null get no entry
    bool required = false;     // refuses rows with a Null in any key column
};

struct TableSpec {
    std::string name;
    std::vector<ColumnSpec> columns;
    std::vector<IndexSpec> indexes;
};

// Recorded in MSysRelationships. With enforce=false the relation is only
// documented: Jet checks nothing and no foreign-key index is created. With
// enforce=true it is kept as Jet keeps it (referential integrity): the
// related columns need a unique index, the rows already there must keep the
// rule, and both tables get a foreign-key index.
struct RelationshipSpec {
    std::string name;
    std::string table;  // the referring table
    std::vector<std::string> columns;
    std::string relatedTable;
    std::vector<std::string> relatedColumns;
    bool enforce = false;
    // Only with enforce; a deleted related row either takes its referring
    // rows with it or leaves them Null, not both.
    bool cascadeUpdates = false;
    bool cascadeDeletes = false;
    bool cascadeNull = false;
};

// Write access to a database opened with OpenOptions::writable = true.
// Errors are jet::Error with Jet's numbers where it has them; a failed call
// leaves the file as it was.
class Writer {
  public:
    explicit Writer(std::shared_ptr<Database> db);
    Database& database() { return *db_; }

    // row holds one value per column of TableDef::columns, in that order.
    // Null in an autonumber column takes the next number, written back
    // into row. Memo and OLE values go to long-value pages as needed.
    RowId insert(const std::string& table, Row& row);
    // The row keeps its id; a row that no longer fits on its page moves
    // behind an overflow pointer.
    void update(const std::string& table, RowId id, const Row& row);
    // Writes keep the relationships with referential integrity the table
    // takes part in: a reference must find its related row (Null refers to
    // nothing), a referenced row keeps its key and stays while rows refer
    // to it, unless the relationship cascades the change (or sets the
    // references Null). The cascaded writes are part of the same unit.
    void remove(const std::string& table, RowId id);

    void createTable(const TableSpec& want);
    // Older rows read the new column as Null.
    void addColumn(const std::string& table, const ColumnSpec& column);
    // Builds the index over the rows already there.
    void createIndex(const std::string& table, const IndexSpec& index);
    void createRelationship(const RelationshipSpec& relationship);

    // Empty when every index of the table can be kept consistent by this
    // engine; otherwise a sentence saying which index cannot. Row writes
    // to such a table are refused with that sentence before anything is
    // written.
    std::string unwritableReason(const std::string& table);

  private:
    std::shared_ptr<Database> db_;
};

// A new database at path holding the system tables Jet creates and no user
// tables. Throws jet::Error when path exists or cannot be written.
void createDatabase(const std::string& path);
// The same file as bytes (tests, fuzz seeds).
std::vector<std::uint8_t> emptyDatabaseImage();

}  // namespace jet
