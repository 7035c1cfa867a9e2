// Relationships with referential integrity: the ones Access made in
// indexTestV2000.mdb and ones made through the catalogue interface, kept on
// every statement as Jet keeps them; each file checked and read back by
// mdb-export.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "db/catalog.h"
#include "db/jet_opener.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"
#include "jet/write/relationships.h"
#include "rows_support.h"

namespace {

using namespace jet;
using namespace rowstest;

// mdb-export's rows of table, the first columns of each joined by ':',
// rows by ' '.
std::string exported(const std::string& path, const std::string& table, std::size_t columns) {
    std::string out;
    for (const auto& row : exportRows(path, table)) {
        if (!out.empty()) out += ' ';
        for (std::size_t i = 0; i < columns && i < row.size(); ++i) out += (i ? ":" : "") + row[i];
    }
    return out;
}

// Runs one statement on the file; the error's number and message, or 0 and "".
std::pair<long, std::string> run(const std::string& path, const std::string& statement) {
    try {
        sql::Executor(sql::openEngineStorage(path, false)).execute(statement);
    } catch (const sql::Error& e) {
        return {e.number(), e.what()};
    }
    return {0, ""};
}

std::string check(const std::string& path) { return faults(*Database::open(path)); }

class Relationships : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(jettest::haveMdbTools()) << "mdbtools is installed by scripts/setup-deps";
    }
    Scratch scratch;
};

// Statements, error numbers and the rows after them in a golden file.
TEST_F(Relationships, AccessMadeRelationshipsHoldOnEveryStatement) {
    std::size_t cases = 0;
    for (const std::vector<std::string>& f : jettest::goldenRows("relationship_statements.txt")) {
        ASSERT_EQ(f.size(), 6u) << f[0];
        const long refused = std::stol(f[1]);
        ++cases;
        SCOPED_TRACE(f[0]);
        const std::string path = scratch.copy("indexTestV2000.mdb");
        const auto before = fileBytes(path);
        auto [number, message] = run(path, f[0]);
        EXPECT_EQ(number, refused) << message;
        EXPECT_NE(message.find(f[2]), std::string::npos) << message;
        EXPECT_EQ(check(path), "");
        if (refused) {
            EXPECT_TRUE(fileBytes(path) == before);
            continue;
        }
        EXPECT_EQ(exported(path, "Table1", 3), f[3]);
        EXPECT_EQ(exported(path, "Table2", 1), f[4]);
        EXPECT_EQ(exported(path, "Table3", 1), f[5]);
    }
    EXPECT_EQ(cases, 14u);
}

// The catalogue's Folders, Pages, Blocks and Variants with enforced keys:
// Pages go with their Folder, a Folder holding Blocks stays, a deleted
// Block leaves its Variants without one.
TEST_F(Relationships, EnforcedForeignKeysMadeThroughTheCatalogue) {
    const std::string path = (scratch.path() / "katalog.mdb").string();
    db::Catalog cat;
    cat.create("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path, db::jetOpener());
    auto table = [&](const std::string& name, const std::string& text, const std::string& ref,
                     const std::string& refTable, db::RuleEnum onDelete) {
        db::CatalogTable t;
        t.name = name;
        t.appendColumn("Nr", db::adInteger).autoIncrement = true;
        t.appendColumn(text, db::adVarWChar, 50).nullable = true;
        if (!ref.empty()) t.appendColumn(ref, db::adInteger).nullable = true;
        t.keys.push_back({"PrimaryKey", db::adKeyPrimary, {"Nr"}, "", {}});
        if (!ref.empty()) {
            db::CatalogKey k{refTable + "_" + name, db::adKeyForeign, {ref}, refTable, {"Nr"}};
            k.enforce = true;
            k.deleteRule = onDelete;
            t.keys.push_back(k);
        }
        cat.appendTable(t);
    };
    table("tblOrdner", "Ordnername", "", "", db::adRINone);
    table("tblSeiten", "SeitenName", "NrTblOrdner", "tblOrdner", db::adRICascade);
    table("tblBlockInfo", "Block", "OrdnerID", "tblOrdner", db::adRINone);
    table("tblVariationBloecke", "BlockName", "BlockID", "tblBlockInfo", db::adRISetNull);
    const db::CatalogTable variants = cat.table("tblVariationBloecke");
    ASSERT_EQ(variants.keys.size(), 2u);
    EXPECT_TRUE(variants.keys[1].enforce);
    EXPECT_EQ(variants.keys[1].deleteRule, db::adRISetNull);
    EXPECT_EQ(variants.keys[1].updateRule, db::adRINone);

    for (const std::vector<std::string>& s :
         jettest::goldenRows("catalogue_relationship_steps.txt")) {
        ASSERT_EQ(s.size(), 5u) << s[0];
        SCOPED_TRACE(s[0]);
        const auto before = fileBytes(path);
        auto [number, message] = run(path, s[0]);
        EXPECT_EQ(number, std::stol(s[1])) << message;
        EXPECT_NE(message.find(s[2]), std::string::npos) << message;
        if (number) {
            EXPECT_TRUE(fileBytes(path) == before);
        }
        EXPECT_EQ(check(path), "");
        EXPECT_EQ(exported(path, s[3], 3), s[4]);
    }
}

// The two entries of a relationship, as the engine reads them, in words:
// which side, cascades, and how its index is shared.
std::string describe(Database& db, const std::string& table, const std::string& entry) {
    auto def = db.tableDef(table);
    for (const ForeignKeyLink& link : foreignKeyLinks(db, *def)) {
        const Index& li = def->indexes[link.logical];
        if (li.name != entry) continue;
        std::string s = link.referenced ? "referenced by " : "referring to ";
        s += link.otherName + "." + link.other->indexes[link.otherLogical].name;
        s += link.cascadeUpdates ? ", cascading updates" : "";
        s += link.cascadeDeletes ? ", cascading deletes" : "";
        s += link.cascadeNull ? ", setting Null" : "";
        const RealIndex& real = def->realIndexes[li.realIndex];
        for (const Index& other : def->indexes)
            if (&other != &li && other.realIndex == li.realIndex)
                s += ", shares index " + other.name;
        s += (real.flags & idxflag::kUnique) ? ", unique" : ", not unique";
        return s;
    }
    return "no relationship entry " + entry;
}

std::int32_t grbitOf(Database& db, const std::string& name) {
    for (const Relationship& r : db.relationships())
        if (r.name == name) return r.flags;
    return -1;
}

// The entries the engine writes for a new relationship have the shape of
// those Access wrote for Table2Table1; its cascade bytes read as Access
// meant them (0x04 on plain entries means nothing).
TEST_F(Relationships, CreatedLikeAccessCreatesThem) {
    const std::string path = scratch.copy("indexTestV2000.mdb");
    {
        auto db = openWritable(path);
        EXPECT_EQ(describe(*db, "Table1", "Table2Table1"),
                  "referring to Table2..rC, cascading deletes, not unique");
        EXPECT_EQ(describe(*db, "Table2", ".rC"),
                  "referenced by Table1.Table2Table1, cascading deletes, shares index PrimaryKey, "
                  "unique");
        EXPECT_EQ(describe(*db, "Table3", ".rC"),
                  "referenced by Table1.Table3Table1, cascading updates, shares index PrimaryKey, "
                  "unique");
        std::size_t cascading = 0;
        for (const std::string& t : db->tableNames(true))
            for (const Index& li : db->tableDef(t)->indexes)
                if (!li.isRelationshipSide())
                    cascading += li.cascadeDeletes + li.cascadeUpdates + li.cascadeNull;
        EXPECT_EQ(cascading, 0u);

        Writer w(db);
        w.createTable({"Table4",
                       {{"id", ColumnType::Long}, {"t2", ColumnType::Long}},
                       {{"PrimaryKey", {{"id", true}}, true, true}}});
        Row r{std::int32_t(11), std::int32_t(2)};
        w.insert("Table4", r);
        w.createRelationship(
            {"Table2Table4", "Table4", {"t2"}, "Table2", {"id"}, true, false, true});
        w.createRelationship(
            {"Table3Table4", "Table4", {"id"}, "Table3", {"id"}, true, true, false, false});
        w.createRelationship({"Table3Table2", "Table2", {"id"}, "Table3", {"id"}, false});
    }
    auto db = Database::open(path);
    EXPECT_EQ(describe(*db, "Table4", "Table2Table4"),
              "referring to Table2..rD, cascading deletes, not unique");
    EXPECT_EQ(describe(*db, "Table2", ".rD"),
              "referenced by Table4.Table2Table4, cascading deletes, shares index .rC, shares "
              "index PrimaryKey, unique");
    EXPECT_EQ(describe(*db, "Table4", "Table3Table4"),
              "referring to Table3..rD, cascading updates, shares index PrimaryKey, unique");
    EXPECT_EQ(grbitOf(*db, "Table2Table4"), relflag::kCascadeDeletes);
    EXPECT_EQ(grbitOf(*db, "Table3Table4"), relflag::kCascadeUpdates | relflag::kOneToOne);
    EXPECT_EQ(grbitOf(*db, "Table3Table2"), relflag::kNoIntegrity);
    EXPECT_EQ(db->relationships().size(), 7u);  // the four Access made, and ours
    EXPECT_EQ(faults(*db), "");
    db.reset();
    EXPECT_EQ(exported(path, "Table4", 2), "11:2");
    // An independent reader sees the documented relationship as not enforced.
    const std::string schema =
        jettest::run("mdb-schema --relations " + jettest::quote(path) + " postgres 2>&1");
    EXPECT_NE(schema.find("Relationship from \"Table2\" (\"id\") to \"Table3\"(\"id\") does "
                          "not enforce integrity"),
              std::string::npos)
        << schema;
    // The new relationship works like Access's: Table2's row 2 takes Table4's row with it.
    EXPECT_EQ(run(path, "DELETE FROM Table2 WHERE id = 2"), std::make_pair(0L, std::string()));
    EXPECT_EQ(exported(path, "Table4", 2), "");
    EXPECT_EQ(exported(path, "Table1", 1), "0 1 2");
    EXPECT_EQ(check(path), "");
}

// A table related to itself: a row may refer to its own key, and a
// cascading delete runs down the chain, also under a statement that names
// rows the cascade took already.
TEST_F(Relationships, TableRelatedToItself) {
    const std::string path = (scratch.path() / "self.mdb").string();
    createDatabase(path);
    {
        Writer w(openWritable(path));
        w.createTable({"Emp",
                       {{"id", ColumnType::Long}, {"boss", ColumnType::Long}},
                       {{"PrimaryKey", {{"id", true}}, true, true}}});
        w.createRelationship({"EmpEmp", "Emp", {"boss"}, "Emp", {"id"}, true, true, true});
    }
    for (const char* insert : {"INSERT INTO Emp VALUES (1, Null)", "INSERT INTO Emp VALUES (2, 1)",
                               "INSERT INTO Emp VALUES (3, 2)", "INSERT INTO Emp VALUES (4, 4)",
                               "UPDATE Emp SET id = 5, boss = 5 WHERE id = 4"})
        EXPECT_EQ(run(path, insert), std::make_pair(0L, std::string())) << insert;
    EXPECT_EQ(run(path, "INSERT INTO Emp VALUES (6, 7)").first, 3201);
    EXPECT_EQ(run(path, "UPDATE Emp SET id = 11 WHERE id = 1"), std::make_pair(0L, std::string()));
    EXPECT_EQ(exported(path, "Emp", 2), "11: 2:11 3:2 5:5");
    EXPECT_EQ(run(path, "DELETE FROM Emp WHERE id <> 5"), std::make_pair(0L, std::string()));
    EXPECT_EQ(exported(path, "Emp", 2), "5:5");
    EXPECT_EQ(check(path), "");
}

// A reference that lost its row (a file written by something that ignored
// the rule) is a fault of the file.
TEST_F(Relationships, CheckFindsAReferenceWithoutItsRow) {
    const std::string path = scratch.copy("indexTestV2000.mdb");
    std::vector<std::uint8_t> bytes = fileBytes(path);
    // Table1's row 3 holds id 3, otherfk1 2, otherfk2 13; 14 is no id of Table3.
    const std::vector<std::uint8_t> row3{3, 0, 0, 0, 2, 0, 0, 0, 13, 0, 0, 0};
    auto at = std::search(bytes.begin(), bytes.end(), row3.begin(), row3.end());
    ASSERT_NE(at, bytes.end());
    at[8] = 14;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    EXPECT_NE(check(path).find("table Table1, relationship Table3Table1: row 62:3 refers to a row "
                               "that table Table3 does not hold"),
              std::string::npos)
        << check(path);
}

TEST_F(Relationships, RefusedCreationsLeaveTheFileUntouched) {
    struct Case {
        RelationshipSpec beziehung;
        const char* message;
    } cases[] = {
        {{"R", "Table1", {"otherfk3"}, "Table1", {"otherfk1"}, true},
         "No unique index found for the referenced field of the primary table."},
        {{"R", "Table2", {"id"}, "Table3", {"id"}, true}, "violates referential integrity rules"},
        {{"R", "Table1", {"data"}, "Table2", {"id"}, true}, "the same data types"},
        {{"R", "Table1", {"otherfk3"}, "Table2", {"id"}, false, true},
         "need referential integrity"},
        {{"R", "Table1", {"otherfk3"}, "Table2", {"id"}, true, false, true, true}, "not both"},
        {{"Table2Table1", "Table1", {"otherfk3"}, "Table2", {"id"}, true}, "already exists"},
        {{"R", "Table2", {"nope"}, "Table3", {"id"}, false}, "no such column: Table2.nope"},
        {{"R", "Nope", {"id"}, "Table3", {"id"}, false}, "Nope"},
        {{"R", "Table2", {"id"}, "Table3", {}, false}, "as many columns"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        const std::string path = scratch.copy("indexTestV2000.mdb");
        const auto before = fileBytes(path);
        const std::string message = jettest::errorOf([&] {
                                        Writer(openWritable(path)).createRelationship(c.beziehung);
                                    }).second;
        EXPECT_NE(message.find(c.message), std::string::npos) << message;
        EXPECT_TRUE(fileBytes(path) == before);
    }
}

}  // namespace
