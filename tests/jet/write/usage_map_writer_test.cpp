// setUsageMapBit on the maps of the Access-made files: every case is read
// back with readUsageMap inside the unit and after a reopen, and the
// structural check must agree with what the maps now say.
#include "jet/write/usage_map_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/usage_map.h"
#include "jet/support/tx_support.h"

namespace {

using namespace txtest;
using Pages = std::vector<std::uint32_t>;

constexpr std::uint32_t kInlineReach = (69 - 5) * 8;  // the map rows of these files are 69 bytes

Pages with(Pages p, std::uint32_t n) {
    p.push_back(n);
    std::sort(p.begin(), p.end());
    p.erase(std::unique(p.begin(), p.end()), p.end());
    return p;
}
Pages without(Pages p, std::uint32_t n) {
    p.erase(std::remove(p.begin(), p.end(), n), p.end());
    return p;
}

// Pages that belong to nobody, so that the next page lies at least at `at`.
void growTo(jet::Database& db, std::uint32_t at) {
    while (db.pages().pageCount() < at) db.allocatePage(jet::PageType::UsageMap);
}

jet::UsageMap mapOf(jet::Database& db, std::uint32_t pointer) {
    return jet::readUsageMap(db.pages(), pointer);
}

// What a case did to one map, to be checked again after the reopen.
struct Expect {
    std::uint32_t pointer;
    Pages pages;
    int type;
};

// A new page marked in a table's inline map is what every row write does,
// and mdb-export reads the rows through those maps.
enum class Op { ClearAndRestore, Rebase, BeyondInlineReach, EmptyReferenceMap };

struct Case {
    const char* name;
    Op op;
};

// Applies the case to one table inside an open unit; false when the table's
// maps do not allow it (e.g. an empty map cannot be re-based).
bool apply(jet::Database& db, const std::string& table, Op op, std::vector<Expect>& out) {
    auto def = db.tableDef(table);
    const jet::UsageMap used = mapOf(db, def->usedPages);
    switch (op) {
        case Op::ClearAndRestore: {
            if (used.pages.empty()) return false;
            const std::uint32_t p = used.pages.front();
            jet::setUsageMapBit(db, def->usedPages, p, false);
            EXPECT_EQ(mapOf(db, def->usedPages).pages, without(used.pages, p));
            const bool hasRows = jet::rowCountOf(*db.pages().page(p)) > 0 &&
                                 (*db.pages().page(p))[0] == std::uint8_t(jet::PageType::Data);
            auto faults = jet::checkTable(db, table);
            const std::string missing = "data page " + std::to_string(p) + " is missing";
            bool flagged = std::any_of(faults.begin(), faults.end(), [&](const std::string& f) {
                return f.find(missing) != std::string::npos;
            });
            EXPECT_EQ(flagged, hasRows) << "the checker must see the cleared bit of " << p;
            jet::setUsageMapBit(db, def->usedPages, p, true);
            EXPECT_EQ(mapOf(db, def->usedPages).pages, used.pages);
            out.push_back({def->usedPages, used.pages, used.type});
            return true;
        }
        case Op::Rebase: {
            if (used.type != 0 || used.pages.empty()) return false;
            const std::uint32_t lo = used.pages.front(), target = lo + kInlineReach - 1;
            if (target < used.startPage + kInlineReach || db.pages().pageCount() > target)
                return false;
            growTo(db, target);
            const std::uint32_t n = newDataPage(db, def->page);
            EXPECT_EQ(n, target);
            jet::setUsageMapBit(db, def->usedPages, n, true);
            const jet::UsageMap after = mapOf(db, def->usedPages);
            EXPECT_EQ(after.type, 0);
            EXPECT_GT(after.startPage, used.startPage);
            EXPECT_LE(after.startPage, lo);
            out.push_back({def->usedPages, with(used.pages, n), 0});
            return true;
        }
        case Op::BeyondInlineReach: {
            if (used.type != 0 || used.pages.empty()) return false;
            growTo(db, used.pages.front() + kInlineReach + 3);
            const std::uint32_t n = newDataPage(db, def->page);
            jet::setUsageMapBit(db, def->usedPages, n, true);
            jet::UsageMap after = mapOf(db, def->usedPages);
            EXPECT_EQ(after.type, 1);
            EXPECT_EQ(after.pages, with(used.pages, n));
            // Clearing and setting again on the reference map's own page.
            jet::setUsageMapBit(db, def->usedPages, n, false);
            EXPECT_EQ(mapOf(db, def->usedPages).pages, used.pages);
            jet::setUsageMapBit(db, def->usedPages, n, true);
            after = mapOf(db, def->usedPages);
            EXPECT_EQ(after.pages, with(used.pages, n));
            EXPECT_EQ(std::count_if(after.mapPages.begin(), after.mapPages.end(),
                                    [](std::uint32_t m) { return m != 0; }),
                      1);
            out.push_back({def->usedPages, with(used.pages, n), 1});
            return true;
        }
        case Op::EmptyReferenceMap: {
            // The free-space map made an empty reference map by hand, then
            // given its first page: a map page must be allocated for it.
            jet::RowBytes r = jet::rowBytes(db.pages(), jet::RowId::fromPointer(def->freePages));
            jet::PageBytes page = *r.page;
            std::fill(page.begin() + r.start, page.begin() + r.end, 0);
            page[r.start] = 1;
            jet::put32(page.data() + r.end - 4, 0xFFFFFF80u);  // Access's filler: no page
            db.pages().put(r.pageNumber, page);
            EXPECT_TRUE(mapOf(db, def->freePages).pages.empty());
            const std::uint32_t before = db.pages().pageCount();
            const std::uint32_t n = newDataPage(db, def->page);
            jet::setUsageMapBit(db, def->freePages, n, true);
            jet::UsageMap after = mapOf(db, def->freePages);
            EXPECT_EQ(after.type, 1);
            EXPECT_EQ(after.pages, Pages{n});
            EXPECT_EQ(db.pages().pageCount(), before + 2) << "a map page was allocated";
            EXPECT_EQ(after.mapPages.at(0), before + 1);
            // A page outside a reference map's reach is refused, clearing one is a no-op.
            const std::uint32_t far = std::uint32_t(after.mapPages.size()) * jet::kPagesPerMapPage;
            EXPECT_THROW(jet::setUsageMapBit(db, def->freePages, far, true), jet::Error);
            jet::setUsageMapBit(db, def->freePages, far, false);
            out.push_back({def->freePages, {n}, 1});
            return true;
        }
    }
    return false;
}

struct Param {
    const char* file;
    Case c;
};

class UsageMapWriterTest : public ::testing::TestWithParam<Param> {};

TEST_P(UsageMapWriterTest, ReadsBackAndChecksClean) {
    const Param& prm = GetParam();
    TempDir dir;
    std::string path = dir.copy(prm.file);
    std::vector<Expect> expects;
    auto expectMaps = [&](jet::Database& db) {
        for (const Expect& e : expects) {
            const jet::UsageMap m = mapOf(db, e.pointer);
            EXPECT_EQ(m.pages, e.pages);
            EXPECT_EQ(int(m.type), e.type);
        }
    };
    int applied = 0;
    {
        auto db = jet::Database::open(path, {.writable = true});
        db->begin();
        for (const std::string& t : db->tableNames(true)) {
            SCOPED_TRACE(t);
            if (apply(*db, t, prm.c.op, expects)) ++applied;
        }
        expectMaps(*db);
        db->commit();
    }
    ASSERT_GT(applied, 0) << "no table of the file allowed the case";
    auto db = jet::Database::open(path);
    expectMaps(*db);
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
    if (prm.c.op == Op::ClearAndRestore) {
        // As before, but for the commit counted in the header page.
        auto before = fileBytes(testFile(prm.file));
        std::uint8_t* counter = before.data() + jet::header::kChangeCounter;
        jet::put32(counter, jet::u32(counter) + 1);
        EXPECT_TRUE(fileBytes(path) == before);
    }
}

std::vector<Param> params() {
    const Case cases[] = {{"ClearAndRestore", Op::ClearAndRestore},
                          {"Rebase", Op::Rebase},
                          {"BeyondInlineReach", Op::BeyondInlineReach},
                          {"EmptyReferenceMap", Op::EmptyReferenceMap}};
    std::vector<Param> out;
    for (const char* f : {"testV2000.mdb", "delTestV2000.mdb", "indexTestV2000.mdb",
                          "bigIndexTestV2000.mdb", "overflowTestV2000.mdb"})
        for (const Case& c : cases)
            // testV2000's tables lie too low for the window to move.
            if (c.op != Op::Rebase || std::string(f) != "testV2000.mdb") out.push_back({f, c});
    return out;
}

INSTANTIATE_TEST_SUITE_P(AccessFiles, UsageMapWriterTest, ::testing::ValuesIn(params()),
                         [](const ::testing::TestParamInfo<Param>& p) {
                             std::string f = p.param.file;
                             return f.substr(0, f.find('.')) + "_" + p.param.c.name;
                         });

TEST(UsageMapWriterErrors, RefusedOutsideAUnitAndOnBadRows) {
    TempDir dir;
    auto db = jet::Database::open(dir.copy("delTestV2000.mdb"), {.writable = true});
    auto def = db->tableDef(db->tableNames().at(0));
    EXPECT_THROW(jet::setUsageMapBit(*db, def->usedPages, 3, true), jet::Error);
    db->begin();
    // A pointer at a row that does not exist.
    EXPECT_THROW(jet::setUsageMapBit(*db, (def->usedPages & ~0xFFu) | 0xFE, 3, true), jet::Error);
    // A row of an unknown map type.
    jet::RowBytes r = jet::rowBytes(db->pages(), jet::RowId::fromPointer(def->freePages));
    jet::PageBytes page = *r.page;
    page[r.start] = 7;
    db->pages().put(r.pageNumber, page);
    EXPECT_THROW(jet::setUsageMapBit(*db, def->freePages, 3, true), jet::Error);
    db->rollback();
}

// A page this engine appends leaves Jet's free list on page 1, whether that
// map is inline or, as in larger files, a reference to usage-map pages:
// Jet would otherwise hand the page to something else.
TEST(GlobalUsageMap, AppendedPagesLeaveJetsFreeList) {
    const auto original = fileBytes(testFile("indexTestV2000.mdb"));
    const std::uint32_t count = std::uint32_t(original.size() / jet::kPageSize);
    const jet::RowId global{jet::kGlobalUsageMapPage, 0};
    const Pages freeBefore =
        jet::readUsageMap(jet::Database::fromMemory(original)->pages(), global.pointer()).pages;
    ASSERT_FALSE(freeBefore.empty());
    for (bool reference : {false, true}) {
        SCOPED_TRACE(reference ? "reference map" : "inline map");
        auto image = original;
        if (reference) {
            // Page 1's map becomes a reference to one 0x05 page listing the
            // same free pages and every page past the end of the file.
            jet::PageBytes map(jet::kPageSize, 0);
            map[0] = std::uint8_t(jet::PageType::UsageMap);
            map[1] = 1;
            auto mark = [&](std::uint32_t p) { map[4 + p / 8] |= std::uint8_t(1u << (p % 8)); };
            for (std::uint32_t p : freeBefore) mark(p);
            for (std::uint32_t p = count + 1; p < count + 200; ++p) mark(p);
            image.insert(image.end(), map.begin(), map.end());
            std::uint8_t* page1 = image.data() + jet::kPageSize;
            std::uint8_t* row = page1 + (jet::u16(page1 + jet::datapage::kRowTable) & 0x1FFF);
            std::fill(row, page1 + jet::kPageSize, 0);
            row[0] = 1;
            jet::put32(row + 1, count);
        }
        auto db = jet::Database::fromStore(std::make_unique<jet::MemoryPageStore>(image, true));
        db->begin();
        db->allocatePage(jet::PageType::Data);
        db->commit();
        // The new page now lies inside the file: listed only if still free.
        const jet::UsageMap after = jet::readUsageMap(db->pages(), global.pointer());
        EXPECT_EQ(after.type, reference ? 1 : 0);
        EXPECT_EQ(after.pages, freeBefore);
    }
}

}  // namespace
