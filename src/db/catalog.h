#pragma once
// The analogue of ADOX: creates databases, tables with their columns and
// keys, relations and indexes.
#include <string>
#include <vector>

#include "db/connection.h"
#include "jet/sql/storage.h"

namespace db {

// ADOX's column types (the numbers the ADO type enumeration gives them).
enum DataType {
    adSmallInt = 2,
    adInteger = 3,
    adSingle = 4,
    adDouble = 5,
    adCurrency = 6,
    adDate = 7,
    adBoolean = 11,
    adUnsignedTinyInt = 17,
    adGUID = 72,
    adNumeric = 131,
    adWChar = 130,
    adVarWChar = 202,
    adLongVarWChar = 203,
    adVarBinary = 204,
    adLongVarBinary = 205,
};
enum KeyType { adKeyPrimary = 1, adKeyForeign = 2, adKeyUnique = 3 };
// ADOX's rules of a foreign key (Jet knows no set-default).
enum RuleEnum { adRINone = 0, adRICascade = 1, adRISetNull = 2, adRISetDefault = 3 };

sql::ColumnType columnTypeOf(DataType t);
DataType dataTypeOf(sql::ColumnType t);

struct CatalogColumn {
    std::string name;
    DataType type = adVarWChar;
    int definedSize = 0;
    bool autoIncrement = false;  // the property "AutoIncrement"
    bool nullable = false;       // the property "Nullable"; ADOX columns are required unless set
};

struct CatalogKey {
    std::string name;
    KeyType type = adKeyPrimary;
    std::vector<std::string> columns;
    std::string relatedTable;
    std::vector<std::string> relatedColumns;
    // Foreign keys: ADOX enforces every one it appends. The catalogue's own
    // relations only document how its tables join (deleting a Folder keeps
    // its Pages and Blocks), so enforcing is asked for here, with the rules
    // that need it.
    bool enforce = false;
    RuleEnum updateRule = adRINone;  // adRICascade
    RuleEnum deleteRule = adRINone;  // adRICascade or adRISetNull
};

struct CatalogIndex {
    std::string name;
    std::vector<sql::IndexColumn> columns;
    bool unique = false;
    bool primaryKey = false;
};

struct CatalogTable {
    std::string name;
    std::vector<CatalogColumn> columns;
    std::vector<CatalogKey> keys;
    std::vector<CatalogIndex> indexes;

    CatalogColumn& appendColumn(const std::string& columnName, DataType type, int definedSize = 0);
};

class Catalog {
  public:
    // Makes a new, empty database and becomes connected to it; a file that
    // exists already is refused.
    void create(const std::string& connectionString, const StorageOpener& opener);
    void setActiveConnection(const Connection& connection);

    std::vector<std::string> tables();
    CatalogTable table(const std::string& name);  // columns, keys (with relations), indexes
    void appendTable(const CatalogTable& table);
    void appendKey(const std::string& table, const CatalogKey& key);
    void appendIndex(const std::string& table, const CatalogIndex& index);

    std::shared_ptr<sql::Storage> storage() const;

  private:
    std::shared_ptr<sql::Storage> storage_;
};

}  // namespace db
