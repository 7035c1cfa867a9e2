// Arbitrary bytes as a Jet SQL statement: the lexer, the parser and the
// executor (over a small in-memory catalogue) answer with sql::Error or a
// result, never with a crash.
#include <cstddef>
#include <cstdint>
#include <string>

#include "jet/sql/ast.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/sql/lexer.h"
#include "jet/sql/memory_storage.h"

namespace {
std::shared_ptr<sql::MemoryStorage> smallCatalogue() {
    auto db = std::make_shared<sql::MemoryStorage>();
    std::vector<sql::IndexDef> pk{sql::IndexDef{"PrimaryKey", {{"Nr", false}}, true, true}};
    db->createTable("tblOrdner",
                    {{"Nr", sql::ColumnType::Long, 0, true, false},
                     {"OrdnerNr", sql::ColumnType::Text, 3, false, true},
                     {"Ordnername", sql::ColumnType::Text, 100, false, true},
                     {"Wert", sql::ColumnType::Double, 0, false, true}},
                    pk);
    db->createTable("tblSeiten",
                    {{"Nr", sql::ColumnType::Long, 0, true, false},
                     {"SeitenNr", sql::ColumnType::Integer, 0, false, true},
                     {"SeitenName", sql::ColumnType::Text, 100, false, true},
                     {"NrTblOrdner", sql::ColumnType::Long, 0, false, true}},
                    pk);
    sql::Executor ex(db);
    ex.execute(
        "INSERT INTO tblOrdner (OrdnerNr, Ordnername, Wert) VALUES ('000', 'Standard-Ordner', "
        "1.5)");
    ex.execute("INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('001', 'Öl')");
    ex.execute("INSERT INTO tblSeiten (SeitenNr, SeitenName, NrTblOrdner) VALUES (1, '1', 1)");
    return db;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    sql::tokenize(text);
    try {
        sql::parseStatement(text);
    } catch (const sql::Error&) {
        return 0;
    }
    try {
        sql::Executor ex(smallCatalogue());
        ex.execute(text);
    } catch (const sql::Error&) {
    }
    return 0;
}
