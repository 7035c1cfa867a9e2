// Index trees deeper than the test files have: an intermediate (0x03) page
// over two leaves, with prefix-compressed entries, grafted onto a real
// file in memory in place of a table's primary key.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;

using Bytes = std::vector<std::uint8_t>;

Bytes indexPage(PageType type, std::uint32_t tdefPage, std::uint32_t prev, std::uint32_t next,
                std::size_t prefix, const std::vector<Bytes>& entries) {
    Bytes p(kPageSize, 0);
    p[0] = std::uint8_t(type);
    p[1] = 1;
    put32(p.data() + indexpage::kTdefPage, tdefPage);
    put32(p.data() + indexpage::kPrevPage, prev);
    put32(p.data() + indexpage::kNextPage, next);
    put16(p.data() + indexpage::kPrefixLength, std::uint16_t(prefix));
    std::size_t at = indexpage::kFirstEntry;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::size_t skip = i == 0 ? 0 : prefix;
        std::copy(entries[i].begin() + std::ptrdiff_t(skip), entries[i].end(),
                  p.begin() + std::ptrdiff_t(at));
        at += entries[i].size() - skip;
        std::size_t bit = at - indexpage::kFirstEntry;
        p[indexpage::kEntryMask + bit / 8] |= std::uint8_t(1u << (bit % 8));
    }
    put16(p.data() + indexpage::kFreeSpace, std::uint16_t(kPageSize - at));
    return p;
}

Bytes leafEntry(const Bytes& key, RowId row) {
    Bytes e = key;
    e.push_back(std::uint8_t(row.page >> 16));
    e.push_back(std::uint8_t(row.page >> 8));
    e.push_back(std::uint8_t(row.page));
    e.push_back(std::uint8_t(row.row));
    return e;
}

Bytes nodeEntry(const Bytes& key, RowId row, std::uint32_t child) {
    Bytes e = leafEntry(key, row);
    for (int s = 24; s >= 0; s -= 8) e.push_back(std::uint8_t(child >> s));
    return e;
}

TEST(JetBTree, WalksAndSeeksThroughAnIntermediatePage) {
    std::ifstream in(jettest::testFile("indexTestV2000.mdb"), std::ios::binary);
    Bytes image((std::istreambuf_iterator<char>(in)), {});
    auto original = Database::fromMemory(image);
    Table t = original->table("Table1");
    const TableDef& d = t.def();
    ASSERT_EQ(d.pages.size(), 1u);
    std::size_t pk = 0;
    while (pk < d.indexes.size() && !d.indexes[pk].isPrimary()) ++pk;
    ASSERT_LT(pk, d.indexes.size());
    std::vector<IndexEntry> real = t.index(pk).all();
    ASSERT_EQ(real.size(), 4u);

    // Leaves of two entries each; entries after the first share a 4-byte prefix.
    const std::uint32_t node = std::uint32_t(image.size() / kPageSize), leafA = node + 1,
                        leafB = node + 2;
    auto full = [&](std::size_t i) { return real[i].key; };
    Bytes a = indexPage(PageType::IndexLeaf, d.page, 0, leafB, 4,
                        {leafEntry(full(0), real[0].row), leafEntry(full(1), real[1].row)});
    Bytes b = indexPage(PageType::IndexLeaf, d.page, leafA, 0, 4,
                        {leafEntry(full(2), real[2].row), leafEntry(full(3), real[3].row)});
    Bytes n =
        indexPage(PageType::IndexNode, d.page, 0, 0, 0,
                  {nodeEntry(full(1), real[1].row, leafA), nodeEntry(full(3), real[3].row, leafB)});
    for (const Bytes* p : {&n, &a, &b}) image.insert(image.end(), p->begin(), p->end());

    // Point the primary key's tree at the new root.
    std::size_t at = tdef::kBlockEnd + tdef::kRealIndexCountEntry * d.realIndexes.size() +
                     tdef::kColumnEntry * d.columns.size();
    for (std::size_t c = 0; c < d.columns.size(); ++c)
        at += 2 + u16(image.data() + d.page * kPageSize + at);
    at += tdef::kRealIndexEntry * d.indexes[pk].realIndex + 38;
    ASSERT_EQ(u32(image.data() + d.page * kPageSize + at),
              d.realIndexes[d.indexes[pk].realIndex].rootPage);
    put32(image.data() + d.page * kPageSize + at, node);

    auto db = Database::fromMemory(image);
    Table t2 = db->table("Table1");
    IndexCursor cur = t2.index(pk);
    ASSERT_EQ(cur.real().rootPage, node);
    EXPECT_EQ(readIndexPage(db->pages(), leafB).entries[1].key, full(3));  // prefix restored
    std::vector<IndexEntry> walked = cur.all();
    ASSERT_EQ(walked.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(walked[i].key, real[i].key);
        EXPECT_EQ(walked[i].row, real[i].row);
    }
    // Every key is found through the node, including those on the second leaf.
    int idCol = d.columnPosition("id");
    for (const IndexEntry& e : real) {
        auto row = t2.read(e.row);
        auto hits = cur.find({(*row)[std::size_t(idCol)]});
        ASSERT_EQ(hits.size(), 1u);
        EXPECT_EQ(hits[0], e.row);
    }
    EXPECT_TRUE(cur.find({Value{std::int32_t(-5)}}).empty());
    EXPECT_TRUE(cur.find({Value{std::int32_t(1000)}}).empty());
    cur.seek(encodeIndexKey(d, cur.real(), {Value{std::int32_t(-1000)}}));
    ASSERT_TRUE(cur.next());
    EXPECT_EQ(cur.entry().row, real[0].row);
    // The entries agree with the rows; only the grafted pages are not in
    // the index's usage map, which the check notices.
    auto faults = checkTable(*db, "Table1");
    std::sort(faults.begin(), faults.end());
    std::vector<std::string> expected;
    for (std::uint32_t p : {node, leafA, leafB})
        expected.push_back("table Table1, index PrimaryKey: index page " + std::to_string(p) +
                           " is missing from the index's usage map");
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(faults, expected);

    // A leaf chain that loops back is reported, not followed for ever.
    Bytes loop = image;
    put32(loop.data() + std::size_t(leafB) * kPageSize + indexpage::kNextPage, leafA);
    auto bad = Database::fromMemory(loop);
    EXPECT_THROW(bad->table("Table1").index(pk).all(), Error);
}

}  // namespace
