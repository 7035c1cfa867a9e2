// Reference usage maps (type 1, pointing at 0x05 pages), which Access uses
// once a table's pages spread beyond what an inline map covers: a table
// grown in memory to thousands of data pages is read through one.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;
using Bytes = std::vector<std::uint8_t>;

TEST(JetUsageMap, ReadsAReferenceMapOverManyPages) {
    std::ifstream in(jettest::testFile("indexTestV2000.mdb"), std::ios::binary);
    Bytes image((std::istreambuf_iterator<char>(in)), {});
    auto original = Database::fromMemory(image);
    Table t = original->table("Table1");
    std::vector<std::string> rows;
    t.scan([&](RowId, const Row& r) {
        rows.push_back(toText(r[0]) + "|" + toText(r[3]));
        return true;
    });
    std::vector<std::uint32_t> pages = t.dataPages();
    ASSERT_EQ(pages.size(), 1u);
    const std::uint32_t dataPage = pages[0];
    UsageMap inlineMap = readUsageMap(original->pages(), t.def().usedPages);
    ASSERT_EQ(inlineMap.type, 0);

    // Copies of the data page, far beyond what the inline map can reach,
    // and one 0x05 page whose bits cover them.
    const std::uint32_t copies = 3000;
    const std::uint32_t first = std::uint32_t(image.size() / kPageSize);
    for (std::uint32_t i = 0; i < copies; ++i)
        image.insert(image.end(), image.begin() + std::ptrdiff_t(dataPage * kPageSize),
                     image.begin() + std::ptrdiff_t((dataPage + 1) * kPageSize));
    const std::uint32_t mapPage = first + copies;
    Bytes map(kPageSize, 0);
    map[0] = std::uint8_t(PageType::UsageMap);
    map[1] = 1;
    auto mark = [&](std::uint32_t p) { map[4 + p / 8] |= std::uint8_t(1u << (p % 8)); };
    mark(dataPage);
    for (std::uint32_t i = 0; i < copies; ++i) mark(first + i);
    image.insert(image.end(), map.begin(), map.end());

    // The table's map row becomes a reference map pointing at that page.
    RowBytes r = rowBytes(original->pages(), inlineMap.where);
    std::uint8_t* row = image.data() + std::size_t(inlineMap.where.page) * kPageSize + r.start;
    std::fill(row, row + r.size(), 0);
    row[0] = 1;
    put32(row + 1, mapPage);

    auto db = Database::fromMemory(image);
    Table big = db->table("Table1");
    UsageMap m = readUsageMap(db->pages(), big.def().usedPages);
    EXPECT_EQ(m.type, 1);
    EXPECT_EQ(m.pages.size(), copies + 1);
    std::size_t n = 0;
    bool sameRows = true;
    big.scan([&](RowId id, const Row& row2) {
        sameRows = sameRows && rows[n % rows.size()] == toText(row2[0]) + "|" + toText(row2[3]);
        EXPECT_EQ(id.row, n % rows.size());
        ++n;
        return true;
    });
    EXPECT_EQ(n, rows.size() * (copies + 1));
    EXPECT_TRUE(sameRows);

    // A map pointing at a page of the wrong type is corruption, reported as such.
    Bytes bad = image;
    bad[std::size_t(mapPage) * kPageSize] = std::uint8_t(PageType::Data);
    auto broken = Database::fromMemory(bad);
    try {
        broken->table("Table1").scan([](RowId, const Row&) { return true; });
        FAIL() << "read through a usage map page of the wrong type";
    } catch (const Error& e) {
        EXPECT_NE(std::string(e.what()).find("corrupt page " + std::to_string(mapPage)),
                  std::string::npos)
            << e.what();
    }
}

}  // namespace
