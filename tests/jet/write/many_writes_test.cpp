// A new database taking 100 000 rows with random updates and deletes in
// between, keeping three indexes (one descending, one on text) and moving
// grown rows behind overflow pointers: after a reopen the structure check
// finds nothing, and mdbtools reads back exactly the rows a model kept
// beside them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <random>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"
#include "jet/support/tx_support.h"
#include "jet/write/writer.h"

namespace {

namespace fs = std::filesystem;

TEST(ManyWrites, HundredThousandInsertsWithUpdatesAndDeletesReadBackEverywhere) {
    ASSERT_TRUE(jettest::haveMdbTools());
    txtest::TempDir dir;
    const std::string file = (dir.path() / "viele.mdb").string();
    jet::createDatabase(file);

    using T = jet::ColumnType;
    const jet::TableSpec teile{"Teile",
                               {{"Nr", T::Long, 0, true, false},
                                {"Ordner", T::Long},
                                {"Name", T::Text, 60},
                                {"Gewicht", T::Double},
                                {"Menge", T::Integer},
                                {"Notiz", T::Memo}},
                               {{"PrimaryKey", {{"Nr", true}}, true, true},
                                {"Ordner", {{"Ordner", false}}},
                                {"Name", {{"Name", true}}}}};
    const char* names[] = {
        "Ventil DN50 – Edelstahl ÄÖÜß", "Flansch", "Rohrbogen 90°", "Muffe", "Öl-Wanne",
        "Schieber \"groß\", kurz"};
    std::map<std::int32_t, std::pair<jet::RowId, jet::Row>> model;
    std::mt19937 rng(20261123);
    auto fill = [&](jet::Row& r) {
        r[1] = std::int32_t(rng() % 200);
        r[2] = std::string(names[rng() % 6]) + " " + std::to_string(rng() % 1000);
        r[3] = rng() % 4 ? jet::Value(double(rng() % 100000) / 16.0) : jet::Value();
        r[4] = std::int16_t(rng() % 3000);
        r[5] = rng() % 50 == 0 ? jet::Value(std::string(rng() % 3000, 'm')) : jet::Value();
    };
    {
        auto db = jet::Database::open(file, {.writable = true});
        jet::Writer w(db);
        w.createTable(teile);
        int inserted = 0;
        while (inserted < 100000) {
            db->begin();
            for (int k = 0; k < 1000; ++k, ++inserted) {
                jet::Row r(teile.columns.size());
                fill(r);
                jet::RowId id = w.insert("Teile", r);
                model[std::get<std::int32_t>(r[0])] = {id, r};
            }
            // Every unit also changes and removes rows picked at random.
            for (int k = 0; k < 60; ++k) {
                auto it = model.begin();
                std::advance(it, rng() % model.size());
                if (k % 3 == 0) {
                    w.remove("Teile", it->second.first);
                    model.erase(it);
                } else {
                    jet::Row r = it->second.second;
                    fill(r);
                    w.update("Teile", it->second.first, r);
                    it->second.second = r;
                }
            }
            db->commit();
        }
    }
    auto db = jet::Database::open(file);
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
    ASSERT_EQ(db->tableDef("Teile")->rowCount, model.size());
    std::size_t same = 0;
    db->table("Teile").scan([&](jet::RowId id, const jet::Row& r) {
        auto it = model.find(std::get<std::int32_t>(r[0]));
        same += it != model.end() && it->second.first == id && it->second.second == r;
        return true;
    });
    EXPECT_EQ(same, model.size());
    // Rows that grew on full pages moved behind overflow pointers.
    std::size_t moved = 0;
    for (std::uint32_t p : db->table("Teile").dataPages())
        for (std::uint16_t s = 0; s < jet::rowCountOf(*db->pages().page(p)); ++s)
            moved += (jet::rowBytes(db->pages(), jet::RowId{p, s}).flags & 0xC000) ==
                     jet::datapage::kOverflowFlag;
    EXPECT_GT(moved, 0u);

    int status = 0;
    const std::string quoted = jettest::quote(file);
    const std::string schema =
        jettest::run("mdb-schema -T Teile " + quoted + " 2>/dev/null", &status);
    for (const char* want :
         {"[Nr]\t\t\tLong Integer", "[Name]\t\t\tText (60)", "[Gewicht]\t\t\tDouble",
          "[Menge]\t\t\tInteger", "[Notiz]\t\t\tMemo/Hyperlink"})
        EXPECT_NE(schema.find(want), std::string::npos) << want << "\n" << schema;
    auto csv = jettest::parseCsv(jettest::run("mdb-export " + quoted + " Teile", &status));
    ASSERT_EQ(status, 0);
    ASSERT_EQ(csv.size(), model.size() + 1);
    std::size_t agree = 0, nulls = 0;
    for (std::size_t i = 1; i < csv.size(); ++i) {
        const auto& row = csv[i];
        auto it = model.find(std::stoi(row.at(0).text));
        if (it == model.end()) continue;
        const jet::Row& m = it->second.second;
        const bool weightNull = jet::isNull(m[3]);
        nulls += weightNull && row.at(3).text.empty();
        agree +=
            row.at(2).text == std::get<std::string>(m[2]) &&
            row.at(4).text == std::to_string(std::get<std::int16_t>(m[4])) &&
            (weightNull ? row.at(3).text.empty()
                        : std::stod(row.at(3).text) == std::get<double>(m[3])) &&
            row.at(5).text == (jet::isNull(m[5]) ? std::string() : std::get<std::string>(m[5]));
    }
    EXPECT_EQ(agree, model.size());
    EXPECT_GT(nulls, 0u);
}

}  // namespace
