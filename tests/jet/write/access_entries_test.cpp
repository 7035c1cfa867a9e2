// Owners, access entries and the Access version as Access 2000 writes them,
// compared object by object with Access-made files: a new database against
// testIndexPropertiesV2000.mdb (made under the same header date, so the
// masked identifiers must match byte for byte), and tables created in
// testV2000.mdb (another date, another mask) against that file's own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>
#include <tuple>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/header.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/support/tx_support.h"
#include "jet/write/writer.h"

namespace {

namespace fs = std::filesystem;
using Entry = std::tuple<jet::Binary, std::int32_t, bool>;  // identifier, rights, inheritable

struct ObjectSecurity {
    jet::Value owner;
    std::multiset<Entry> entries;
    bool operator==(const ObjectSecurity&) const = default;
};

std::string hex(const jet::Value& v) {
    const auto* b = std::get_if<jet::Binary>(&v);
    if (!b) return "(none)";
    std::string s;
    for (auto x : *b) s += "0123456789abcdef"[x >> 4], s += "0123456789abcdef"[x & 15];
    return s;
}

void PrintTo(const ObjectSecurity& o, std::ostream* os) {
    *os << "owner " << hex(o.owner);
    for (const auto& [sid, rights, inherit] : o.entries)
        *os << " | " << hex(sid).substr(0, 8) << " " << std::hex << rights
            << (inherit ? " inh" : "");
}

// Owner and entries of every object of the catalogue, by name.
std::map<std::string, ObjectSecurity> security(jet::Database& db) {
    std::map<std::int32_t, std::string> names;
    std::map<std::string, ObjectSecurity> out;
    jet::Table objects = db.table("MSysObjects");
    objects.scan([&](jet::RowId, const jet::Row& r) {
        const std::string name = std::get<std::string>(objects.value(r, "Name"));
        names[std::get<std::int32_t>(objects.value(r, "Id"))] = name;
        out[name].owner = objects.value(r, "Owner");
        return true;
    });
    jet::Table aces = db.table("MSysACEs");
    aces.scan([&](jet::RowId, const jet::Row& r) {
        const std::string& name = names.at(std::get<std::int32_t>(aces.value(r, "ObjectId")));
        out[name].entries.insert({std::get<jet::Binary>(aces.value(r, "SID")),
                                  std::get<std::int32_t>(aces.value(r, "ACM")),
                                  std::get<bool>(aces.value(r, "FInheritable"))});
        return true;
    });
    return out;
}

using txtest::TempDir;

const jet::TableSpec kTable{
    "tblOrdner",
    {{"Nr", jet::ColumnType::Long, 0, true, false}, {"Ordnername", jet::ColumnType::Text, 50}},
    {{"PrimaryKey", {{"Nr", true}}, true, true}}};

TEST(AccessEntries, NewDatabaseAsAccess2000MakesIt) {
    TempDir dir;
    const std::string made = (dir.path() / "neu.mdb").string();
    jet::createDatabase(made);
    {
        auto db = jet::Database::open(made, {.writable = true});
        jet::Writer(db).createTable(kTable);
    }
    auto ours = jet::Database::open(made, {});
    auto access = jet::Database::open(jettest::testFile("testIndexPropertiesV2000.mdb"), {});
    EXPECT_EQ(ours->header().creationDate, access->header().creationDate);
    auto mine = security(*ours), theirs = security(*access);
    for (const char* name : {"Tables", "Databases", "Relationships", "MSysDb", "MSysObjects",
                             "MSysACEs", "MSysQueries", "MSysRelationships"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(mine.at(name), theirs.at(name));
        EXPECT_FALSE(mine.at(name).entries.empty());
    }
    // A table of ours and one made in Access.
    EXPECT_EQ(mine.at("tblOrdner"), theirs.at("TableIgnoreNulls1"));
    EXPECT_EQ(jet::checkDatabase(*ours), std::vector<std::string>{});

    // The database properties name Access 2000, byte for byte as Access
    // writes them, and mdbtools reads them.
    auto lvProp = [](jet::Database& db) {
        jet::Table t = db.table("MSysObjects");
        jet::Value found;
        t.scan([&](jet::RowId, const jet::Row& r) {
            if (std::get<std::string>(t.value(r, "Name")) == "MSysDb") found = t.value(r, "LvProp");
            return true;
        });
        return hex(found);
    };
    EXPECT_EQ(lvProp(*ours), lvProp(*access));
    if (!jettest::haveMdbTools()) GTEST_FAIL() << "mdbtools are needed for this test";
    int status = -1;
    EXPECT_EQ(jettest::run("mdb-ver " + jettest::quote(made), &status), "JET4\n");
    const std::string props = jettest::run("mdb-prop " + jettest::quote(made) + " MSysDb", &status);
    EXPECT_EQ(status, 0);
    EXPECT_NE(props.find("AccessVersion: 08.50"), std::string::npos) << props;
    const auto rows = jettest::parseCsv(
        jettest::run("mdb-export " + jettest::quote(made) + " MSysACEs", &status));
    EXPECT_EQ(rows.size(), 1 + 23 + 3u);
}

// In an Access-made file the engine learns the file's mask from the Tables
// container and hands a new table what Access handed that file's tables.
TEST(AccessEntries, TablesCreatedInAccessMadeFilesGetWhatAccessGives) {
    TempDir dir;
    const fs::path copy = dir.path() / "testV2000.mdb";
    fs::copy_file(jettest::testFile("testV2000.mdb"), copy);
    fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
    {
        auto db = jet::Database::open(copy.string(), {.writable = true});
        jet::Writer(db).createTable(kTable);
    }
    auto db = jet::Database::open(copy.string(), {});
    auto all = security(*db);
    EXPECT_EQ(all.at("tblOrdner"), all.at("Table1"));
    EXPECT_EQ(all.at("tblOrdner").entries.size(), 3u);
    EXPECT_NE(all.at("tblOrdner").owner, all.at("Tables").owner);
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
}

}  // namespace
