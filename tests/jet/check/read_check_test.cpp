// The structural check finds each kind of damage it is meant to find.
#include <gtest/gtest.h>

#include <functional>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/index_cursor.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;
using Bytes = std::vector<std::uint8_t>;

// Clears page's bit in the inline usage map whose row the data pointer names.
void dropFromMap(Bytes& b, Database& db, std::uint32_t pointer, std::uint32_t page) {
    const UsageMap m = readUsageMap(db.pages(), pointer);
    ASSERT_EQ(m.type, 0);
    const std::size_t bit = page - m.startPage,
                      at = m.where.page * kPageSize + rowBytes(db.pages(), m.where).start + 5;
    b[at + bit / 8] &= std::uint8_t(~(1u << (bit % 8)));
}

bool anyContains(const std::vector<std::string>& faults, const std::string& part) {
    for (const auto& f : faults)
        if (f.find(part) != std::string::npos) return true;
    return false;
}

TEST(JetCheck, ReportsEachKindOfDamage) {
    const Bytes image = jettest::fileImage("indexTestV2000.mdb");
    auto db = Database::fromMemory(image);
    Table t = db->table("Table1");
    const std::vector<RowId> rows = t.rowIds();
    ASSERT_EQ(rows.size(), 4u);
    const RowId victim = rows[1];
    const RealIndex& primary = t.def().realIndexes[t.def().indexes[1].realIndex];

    struct Case {
        const char* name;
        std::function<void(Bytes&)> damage;
        std::vector<std::string> expected;  // parts of fault lines
    };
    const Case cases[] = {
        {"row flagged deleted behind the indexes' back",
         [&](Bytes& b) {
             std::uint8_t* off = b.data() + std::size_t(victim.page) * kPageSize +
                                 datapage::kRowTable + 2 * victim.row;
             put16(off, u16(off) | datapage::kDeletedFlag);
         },
         {"entry points at " + toString(victim) + ", which is not a live row",
          "definition counts 4 rows, found 3"}},
        {"data page dropped from the usage map",
         [&](Bytes& b) { dropFromMap(b, *db, t.def().usedPages, victim.page); },
         {"data page " + std::to_string(victim.page) + " is missing from its usage map"}},
        {"index page dropped from the index's usage map",
         [&](Bytes& b) { dropFromMap(b, *db, primary.usedPages, primary.rootPage); },
         {"index page " + std::to_string(primary.rootPage) +
          " is missing from the index's usage map"}},
        {"index key changed",
         [&](Bytes& b) {
             // The PrimaryKey tree's leaf: change the last byte of the first
             // entry's key (id 0 becomes id 9).
             std::uint8_t* page = b.data() + std::size_t(primary.rootPage) * kPageSize;
             ASSERT_EQ(page[0], std::uint8_t(PageType::IndexLeaf));
             page[indexpage::kFirstEntry + 4] ^= 0x09;
         },
         {"does not match the row"}},
        {"long-value row a byte longer than its value (Table1's properties, page 67 row 0)",
         [&](Bytes& b) { put16(b.data() + 67 * kPageSize + datapage::kRowTable, 0x6AE); },
         {"corrupt page 67: long value of 2385 bytes in a row of 2386"}},
        {"free-space figure of a data page",
         [&](Bytes& b) {
             put16(b.data() + std::size_t(victim.page) * kPageSize + datapage::kFreeSpace, 16);
         },
         {"data page " + std::to_string(victim.page) +
          ": header states 16 bytes free, the page has"}},
    };
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes b = image;
        c.damage(b);
        std::vector<std::string> faults;
        try {
            faults = checkDatabase(*Database::fromMemory(b));
        } catch (const Error& e) {
            faults = {e.what()};  // the catalogue's damage refuses the file at open
        }
        for (const std::string& want : c.expected) EXPECT_TRUE(anyContains(faults, want)) << want;
    }
}

// Jet frees a page without wiping it: a freed data page still names its
// table and holds old rows. The global map (page 1) lists it as free; only
// a page no map accounts for is a fault, and no scan reads either.
TEST(JetCheck, FreedDataPagesAreNotMissingFromTheirMap) {
    Bytes image = jettest::fileImage("indexTestV2000.mdb");
    auto original = Database::fromMemory(image);
    Table t = original->table("Table1");
    const std::uint32_t dataPage = t.dataPages().at(0);
    const UsageMap global =
        readUsageMap(original->pages(), RowId{kGlobalUsageMapPage, 0}.pointer());
    const std::uint32_t freed = 59;  // blank in the file, listed as free
    ASSERT_TRUE(global.contains(freed));
    std::copy_n(image.begin() + std::ptrdiff_t(dataPage * kPageSize), kPageSize,
                image.begin() + std::ptrdiff_t(freed * kPageSize));
    const std::string fault =
        "data page " + std::to_string(freed) + " is missing from its usage map";
    for (bool listedFree : {true, false}) {
        SCOPED_TRACE(listedFree ? "listed as free" : "in use");
        Bytes b = image;
        if (!listedFree) dropFromMap(b, *original, global.where.pointer(), freed);
        auto db = Database::fromMemory(b);
        EXPECT_EQ(anyContains(checkDatabase(*db), fault), !listedFree);
        EXPECT_EQ(db->table("Table1").rowIds(), t.rowIds());
    }
}

// The global map of a large file is a reference map. Jet reads its entries
// as signed numbers: a negative one (0xFFFFFF80, as Access leaves the last
// one) names no page; a positive one past the end of the file is damage.
TEST(JetCheck, ReferenceMapEntriesNamingNoPageAreSound) {
    Bytes image = jettest::fileImage("indexTestV2000.mdb");
    const std::size_t row = kPageSize * kGlobalUsageMapPage + 0xFBB;  // 69 bytes up to the end
    std::fill_n(image.begin() + std::ptrdiff_t(row), 69, 0);
    image[row] = 1;
    for (const auto& [lastEntry, sound] : {std::pair{0xFFFFFF80u, true}, {0x7FFFFF80u, false}}) {
        put32(image.data() + row + 65, lastEntry);
        EXPECT_EQ(checkDatabase(*Database::fromMemory(image)).empty(), sound) << lastEntry;
    }
}

}  // namespace
