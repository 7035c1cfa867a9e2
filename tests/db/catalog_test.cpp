// Creating a catalogue database the ADOX way: what it refuses. The library's
// schema tests create the whole catalogue through the program's own code and
// read back its tables, keys, relations and index.
#include "db/catalog.h"

#include <gtest/gtest.h>

#include "db/memory_opener.h"
#include "jet/sql/error.h"
#include "jet/sql/memory_storage.h"

namespace {

TEST(CatalogCreation, AnExistingTableOrFileAndAKeyOnAMissingColumnAreRefused) {
    const std::string verbindung =
        "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\Neu\\dbTessara.mdb";
    auto files = std::make_shared<sql::MemoryFiles>();
    db::Catalog cat;
    cat.create(verbindung, db::memoryOpener(files));
    db::CatalogTable t;
    t.name = "tblSeiten";
    t.appendColumn("Nr", db::adInteger).autoIncrement = true;
    t.keys.push_back({"PrimaryKey", db::adKeyPrimary, {"Nr"}, "", {}});
    cat.appendTable(t);
    try {
        cat.appendTable(t);
        FAIL();
    } catch (const sql::Error& e) {
        EXPECT_EQ(std::string(e.what()), "Table 'tblSeiten' already exists.");
    }
    db::Catalog again;
    EXPECT_THROW(again.create(verbindung, db::memoryOpener(files)), sql::Error);
    EXPECT_THROW(
        cat.appendKey("tblSeiten", {"x", db::adKeyForeign, {"Gibts"}, "tblSeiten", {"Nr"}}),
        sql::Error);
}

}  // namespace
