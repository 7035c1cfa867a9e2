// The structural check finds each kind of damage it is meant to find.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/index_cursor.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;
using Bytes = std::vector<std::uint8_t>;

Bytes load(const std::string& name) {
    std::ifstream in(jettest::testFile(name), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

bool anyContains(const std::vector<std::string>& faults, const std::string& part) {
    for (const auto& f : faults)
        if (f.find(part) != std::string::npos) return true;
    return false;
}

TEST(JetCheck, ReportsEachKindOfDamage) {
    const Bytes image = load("indexTestV2000.mdb");
    auto db = Database::fromMemory(image);
    Table t = db->table("Table1");
    const std::vector<RowId> rows = t.rowIds();
    ASSERT_EQ(rows.size(), 4u);
    const RowId victim = rows[1];
    UsageMap map = readUsageMap(db->pages(), t.def().usedPages);

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
         [&](Bytes& b) {
             RowBytes r = rowBytes(db->pages(), map.where);
             ASSERT_EQ(map.type, 0);
             std::uint32_t bit = victim.page - map.startPage;
             b[std::size_t(map.where.page) * kPageSize + r.start + 5 + bit / 8] &=
                 std::uint8_t(~(1u << (bit % 8)));
         },
         {"data page " + std::to_string(victim.page) + " is missing from its usage map"}},
        {"index page dropped from the index's usage map",
         [&](Bytes& b) {
             const RealIndex& ri = t.def().realIndexes[t.def().indexes[1].realIndex];
             UsageMap pages = readUsageMap(db->pages(), ri.usedPages);
             RowBytes r = rowBytes(db->pages(), pages.where);
             ASSERT_EQ(pages.type, 0);
             std::uint32_t bit = ri.rootPage - pages.startPage;
             b[std::size_t(pages.where.page) * kPageSize + r.start + 5 + bit / 8] &=
                 std::uint8_t(~(1u << (bit % 8)));
         },
         {"index page " +
          std::to_string(t.def().realIndexes[t.def().indexes[1].realIndex].rootPage) +
          " is missing from the index's usage map"}},
        {"index key changed",
         [&](Bytes& b) {
             // The PrimaryKey tree's leaf: change the last byte of the first
             // entry's key (id 0 becomes id 9).
             const RealIndex& ri = t.def().realIndexes[t.def().indexes[1].realIndex];
             std::uint8_t* page = b.data() + std::size_t(ri.rootPage) * kPageSize;
             ASSERT_EQ(page[0], std::uint8_t(PageType::IndexLeaf));
             page[indexpage::kFirstEntry + 4] ^= 0x09;
         },
         {"does not match the row"}},
        {"long-value row a byte longer than the value it holds (Table1's properties)",
         [&](Bytes& b) {
             for (std::uint32_t p = 1; p < db->pages().pageCount(); ++p) {
                 PageRef pg = db->pages().page(p);
                 if ((*pg)[0] != std::uint8_t(PageType::Data) ||
                     std::memcmp(pg->data() + datapage::kTdefPage, "LVAL", 4) != 0)
                     continue;
                 for (std::uint16_t i = 0; i < rowCountOf(*pg); ++i)
                     if (rowBytes(pg, p, i).size() == 2385) {
                         std::uint8_t* off = b.data() + p * kPageSize + datapage::kRowTable + 2 * i;
                         put16(off, u16(off) - 1);
                         return;
                     }
             }
             FAIL() << "no long-value row of 2385 bytes";
         },
         {"long value of 2385 bytes in a row of 2386"}},
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
    Bytes image = load("indexTestV2000.mdb");
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
        if (!listedFree) {
            RowBytes r = rowBytes(original->pages(), global.where);
            const std::uint32_t bit = freed - global.startPage;
            b[kPageSize * kGlobalUsageMapPage + r.start + 5 + bit / 8] &=
                std::uint8_t(~(1u << (bit % 8)));
        }
        auto db = Database::fromMemory(b);
        EXPECT_EQ(anyContains(checkDatabase(*db), fault), !listedFree);
        EXPECT_EQ(db->table("Table1").rowIds(), t.rowIds());
    }
}

// The global map of a large file is a reference map. Jet reads its entries
// as signed numbers: a negative one (0xFFFFFF80, as Access leaves the last
// one) names no page; a positive one past the end of the file is damage.
TEST(JetCheck, ReferenceMapEntriesNamingNoPageAreSound) {
    Bytes image = load("indexTestV2000.mdb");
    auto original = Database::fromMemory(image);
    const UsageMap inlineMap =
        readUsageMap(original->pages(), RowId{kGlobalUsageMapPage, 0}.pointer());
    const RowBytes r = rowBytes(original->pages(), inlineMap.where);
    ASSERT_EQ(inlineMap.type, 0);
    // The same pages on a usage-map page added at the end, named by entry 0.
    const std::uint32_t mapPage = original->pages().pageCount();
    Bytes page(kPageSize, 0);
    page[0] = std::uint8_t(PageType::UsageMap);
    for (std::uint32_t p : inlineMap.pages) page[4 + p / 8] |= std::uint8_t(1u << (p % 8));
    image.insert(image.end(), page.begin(), page.end());
    const std::size_t row = kPageSize * kGlobalUsageMapPage + r.start, last = r.size() - 4;
    std::fill_n(image.begin() + std::ptrdiff_t(row), r.size(), 0);
    image[row] = 1;
    put32(image.data() + row + 1, mapPage);
    for (const auto& [entry, fault] : {std::pair<std::uint32_t, std::string>{0xFFFFFF80u, ""},
                                       {0x7FFFFF80u, "the global usage map: corrupt page"}}) {
        SCOPED_TRACE(entry);
        Bytes b = image;
        put32(b.data() + row + last, entry);
        auto db = Database::fromMemory(b);
        const auto faults = checkDatabase(*db);
        EXPECT_EQ(faults.empty(), fault.empty()) << ::testing::PrintToString(faults);
        if (fault.empty()) {
            EXPECT_EQ(readUsageMap(db->pages(), inlineMap.where.pointer()).pages, inlineMap.pages);
        } else {
            EXPECT_TRUE(anyContains(faults, fault));
        }
    }
}

}  // namespace
