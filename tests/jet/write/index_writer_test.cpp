// Index maintenance against the trees Access wrote: keys encoded from the
// rows equal Access's keys byte for byte, thousands of inserts and removes
// split and unlink pages and leave the original tree's entries behind, and
// trees built from a table's rows hold what Access's trees hold.
#include "jet/write/index_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "index_support.h"
#include "jet/check/check.h"
#include "jet/format/text.h"
#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/write/index_page_writer.h"

namespace {

using namespace jet;
using idxtest::TempCopy;
using Bytes = std::vector<std::uint8_t>;
using idxtest::hex;
using idxtest::unhex;

TEST(JetIndexKeys, MaintainableKeyTypes) {
    using T = ColumnType;
    const std::pair<T, bool> maintainable[] = {
        {T::Long, true},     {T::Integer, true},  {T::Byte, true},   {T::Double, true},
        {T::DateTime, true}, {T::Currency, true}, {T::Single, true}, {T::Text, true},
        {T::Boolean, false}, {T::Guid, false},    {T::Memo, false},  {T::Numeric, false},
        {T::Binary, false}};
    for (const auto& [type, expected] : maintainable)
        for (bool ascending : {true, false}) {
            const TableDef def = idxtest::keyTable(type, ascending, true);
            const std::string reason = indexUnmaintainableReason(def, def.realIndexes[0]);
            EXPECT_EQ(reason.empty(), expected) << columnTypeName(type) << " " << reason;
            EXPECT_TRUE(expected || reason.find("ByK") != std::string::npos) << reason;
        }
}

// Thousands of synthetic entries (rows that do not exist) go into an index
// of a real table and out again.
struct TreeCase {
    const char* name;
    const char* table;
    const char* column;  // first key column of the index used
    int count;
    enum { Distinct, Duplicates, Ascending } values;
    bool descending;
    std::size_t minDepth;  // text keys are long enough for node pages to split too
};

void PrintTo(const TreeCase& c, std::ostream* os) { *os << c.name; }

std::size_t indexOn(const TableDef& def, const std::string& column) {
    for (std::size_t li = 0; li < def.indexes.size(); ++li) {
        const RealIndex& r = def.realIndexes[def.indexes[li].realIndex];
        const Column* c =
            r.columns.empty() ? nullptr : def.columnByNumber(r.columns[0].columnNumber);
        if (c && c->name == column) return li;
    }
    throw Error("no index on " + column);
}

Value valueFor(const TreeCase& c, int i, std::mt19937& rng) {
    if (std::string(c.column) == "szRelationship") {
        // Letters of both cases, digits, and the characters with accent or
        // skip codes or two inline bytes, so keys differ in every part.
        static const std::vector<std::string> glyphs = [] {
            std::vector<std::string> g;
            for (char ch : std::string("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                       "0123456789 _-.'&()"))
                g.push_back(std::string(1, ch));
            for (const char* u8 : {"Ä", "Ö", "Ü", "ä", "ö", "ü", "ß", "é", "è", "ç", "–", "€"})
                g.push_back(u8);
            return g;
        }();
        std::string s;
        std::size_t len = 10 + rng() % 40;
        for (std::size_t k = 0; k < len; ++k) s += glyphs[rng() % glyphs.size()];
        return s + std::to_string(i % 4 + 1);
    }
    switch (c.values) {
        case TreeCase::Distinct:
            return std::int32_t(i * 7919 % 1000003 - 500000);
        case TreeCase::Duplicates:
            return std::int32_t(rng() % 300);
        case TreeCase::Ascending:
            return std::int32_t(i + 1000);
    }
    return {};
}

class JetIndexTree : public testing::TestWithParam<TreeCase> {};

TEST_P(JetIndexTree, InsertsAndRemovesSplitAndUnlinkPages) {
    const TreeCase& c = GetParam();
    TempCopy copy("indexTestV2000.mdb");
    auto db = copy.open();
    auto def = db->tableDef(c.table);
    std::size_t li = indexOn(*def, c.column);
    std::size_t ri = def->indexes[li].realIndex;
    auto work = std::make_shared<TableDef>(*def);
    if (c.descending)
        for (IndexColumn& ic : work->realIndexes[ri].columns) ic.ascending = false;
    const RealIndex& real = work->realIndexes[ri];
    ASSERT_EQ(indexUnmaintainableReason(*work, real), "");
    const std::vector<IndexEntry> accessEntries = IndexCursor(db, def, li).all();
    // A descending variant cannot hold Access's ascending keys: they are
    // taken out first and put back at the end.
    std::vector<IndexEntry> original = c.descending ? std::vector<IndexEntry>{} : accessEntries;

    std::mt19937 rng(12345);
    struct Item {
        Value value;
        Bytes key;
        RowId row;
    };
    std::vector<Item> items;
    int pos = def->columnPosition(c.column);
    for (int i = 0; i < c.count; ++i) {
        Row row(work->columns.size());
        row[std::size_t(pos)] = valueFor(c, i, rng);
        RowId id{0x700000u + std::uint32_t(i / 200), std::uint16_t(i % 200)};
        items.push_back({row[std::size_t(pos)], indexKeyOf(*work, real, row), id});
    }
    if (c.values != TreeCase::Ascending) std::shuffle(items.begin(), items.end(), rng);

    db->begin();
    if (c.descending)
        for (const IndexEntry& e : accessEntries) indexRemove(*db, *work, ri, e.key, e.row);
    for (const Item& it : items) indexInsert(*db, *work, ri, it.key, it.row);
    db->commit();
    db->begin();
    EXPECT_THROW(indexInsert(*db, *work, ri, items[0].key, items[0].row), Error);
    db->commit();

    // Reopened: every entry in order, found by its key, pages laid out as promised.
    db = copy.open();
    std::vector<IndexEntry> all = IndexCursor(db, work, li).all();
    ASSERT_EQ(all.size(), original.size() + items.size());
    std::multiset<std::pair<Bytes, RowId>> want, have;
    for (const IndexEntry& e : original) want.insert({e.key, e.row});
    for (const Item& it : items) want.insert({it.key, it.row});
    for (std::size_t i = 0; i < all.size(); ++i) {
        have.insert({all[i].key, all[i].row});
        if (i > 0) {
            ASSERT_TRUE(std::tie(all[i - 1].key, all[i - 1].row) < std::tie(all[i].key, all[i].row))
                << "entry " << i << " out of order";
        }
    }
    EXPECT_TRUE(want == have);
    idxtest::TreeShape shape;
    EXPECT_EQ(idxtest::treeFaults(*db, real.rootPage, def->page, &shape),
              std::vector<std::string>{});
    EXPECT_GE(shape.depth, c.minDepth) << "leaves " << shape.leaves;
    EXPECT_EQ(shape.entries, all.size());
    // The entries point at rows that do not exist, but every page of the
    // tree must be in the index's usage map.
    for (const std::string& f : checkTable(*db, c.table))
        EXPECT_EQ(f.find("usage map"), std::string::npos) << f;
    if (c.values == TreeCase::Ascending) {
        // Appends leave the leaves full, not half full.
        std::size_t bytes = 0;
        for (const IndexEntry& e : all) bytes += e.key.size() + 4;
        EXPECT_LE(shape.leaves, bytes / 3616 + 2);
    }
    IndexCursor cur(db, work, li);
    for (std::size_t i = 0; i < items.size(); i += 97) {
        const Item& it = items[i];
        cur.seek(it.key);
        bool found = false;
        while (cur.next() && cur.entry().key == it.key) found |= cur.entry().row == it.row;
        EXPECT_TRUE(found) << "entry " << i;
        if (std::holds_alternative<std::int32_t>(it.value)) {
            auto rows = cur.find({it.value});
            EXPECT_NE(std::find(rows.begin(), rows.end(), it.row), rows.end());
        }
        EXPECT_TRUE(indexHoldsKey(*db, *work, ri, it.key, RowId{}));
        if (c.values != TreeCase::Duplicates) {
            EXPECT_FALSE(indexHoldsKey(*db, *work, ri, it.key, it.row));
        }
    }

    // Out again in another order: the tree holds Access's entries only.
    std::shuffle(items.begin(), items.end(), rng);
    db->begin();
    for (const Item& it : items) indexRemove(*db, *work, ri, it.key, it.row);
    EXPECT_THROW(indexRemove(*db, *work, ri, items[0].key, items[0].row), Error);
    if (c.descending)
        for (const IndexEntry& e : accessEntries) indexInsert(*db, *def, ri, e.key, e.row);
    db->commit();
    db = copy.open();
    std::vector<IndexEntry> after = IndexCursor(db, db->tableDef(c.table), li).all();
    ASSERT_EQ(after.size(), accessEntries.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        EXPECT_EQ(after[i].key, accessEntries[i].key);
        EXPECT_EQ(after[i].row, accessEntries[i].row);
    }
    EXPECT_EQ(idxtest::treeFaults(*db, real.rootPage, def->page), std::vector<std::string>{});
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(
    Cases, JetIndexTree,
    testing::Values(TreeCase{"LongRandom", "Table1", "id", 20000, TreeCase::Distinct, false, 2},
                    TreeCase{"LongDuplicates", "Table1", "otherfk1", 8000, TreeCase::Duplicates,
                             false, 2},
                    TreeCase{"LongDescending", "Table1", "id", 8000, TreeCase::Distinct, true, 2},
                    TreeCase{"LongAppend", "Table1", "id", 100000, TreeCase::Ascending, false, 2},
                    TreeCase{"TextRandom", "MSysRelationships", "szRelationship", 6000,
                             TreeCase::Distinct, false, 3},
                    TreeCase{"TextDescending", "MSysRelationships", "szRelationship", 3000,
                             TreeCase::Distinct, true, 2}),
    [](const testing::TestParamInfo<TreeCase>& i) { return std::string(i.param.name); });

// Trees built from a table's rows hold exactly what Access's trees hold.
TEST(JetIndexBuild, TreesFromRowsEqualAccessTrees) {
    std::size_t built = 0;
    for (const std::string& file : idxtest::testFiles()) {
        TempCopy copy(file);
        auto db = copy.open();
        db->begin();
        for (const std::string& name : db->tableNames(true)) {
            Table t = db->table(name);
            const TableDef& def = t.def();
            for (std::size_t li = 0; li < def.indexes.size(); ++li) {
                const Index& logical = def.indexes[li];
                const RealIndex& real = def.realIndexes[logical.realIndex];
                if (!indexUnmaintainableReason(def, real).empty()) continue;
                std::vector<std::pair<Bytes, RowId>> entries;
                t.scan([&](RowId id, const Row& row) {
                    if (rowBelongsInIndex(def, real, row))
                        entries.push_back({indexKeyOf(def, real, row), id});
                    return true;
                });
                std::sort(entries.begin(), entries.end());
                std::uint32_t root = indexBuild(*db, def.page, real.usedPages, entries);
                auto copyDef = std::make_shared<TableDef>(def);
                copyDef->realIndexes[logical.realIndex].rootPage = root;
                std::vector<IndexEntry> ours = IndexCursor(db, copyDef, li).all();
                std::vector<IndexEntry> access = t.index(li).all();
                // The cursor walks both trees: the rows bound what either may hold.
                ASSERT_EQ(access.size(), entries.size())
                    << file << " " << name << " " << logical.name;
                ASSERT_EQ(ours.size(), access.size()) << file << " " << name << " " << logical.name;
                for (std::size_t i = 0; i < ours.size(); ++i) {
                    EXPECT_EQ(hex(ours[i].key), hex(access[i].key)) << file << " " << name;
                    EXPECT_EQ(ours[i].row, access[i].row);
                }
                EXPECT_EQ(idxtest::treeFaults(*db, root, def.page), std::vector<std::string>{});
                ++built;
            }
        }
        db->commit();
    }
    EXPECT_GE(built, 40u);
}

TEST(JetIndexBuild, LargeTreesAreBalancedAndEditable) {
    TempCopy copy("indexTestV2000.mdb");
    auto db = copy.open();
    auto def = db->tableDef("Table1");
    std::size_t li = indexOn(*def, "otherfk2");
    std::size_t ri = def->indexes[li].realIndex;
    const RealIndex& real = def->realIndexes[ri];
    for (std::size_t n : {std::size_t(0), std::size_t(1), std::size_t(300), std::size_t(120000)}) {
        std::vector<std::pair<Bytes, RowId>> entries;
        for (std::size_t i = 0; i < n; ++i)
            entries.push_back({encodeIndexKey(*def, real, {Value{std::int32_t(i / 3)}}),
                               RowId{0x600000u + std::uint32_t(i / 250), std::uint16_t(i % 250)}});
        db->begin();
        std::uint32_t root = indexBuild(*db, def->page, real.usedPages, entries);
        db->commit();
        auto work = std::make_shared<TableDef>(*def);
        work->realIndexes[ri].rootPage = root;
        idxtest::TreeShape shape;
        EXPECT_EQ(idxtest::treeFaults(*db, root, def->page, &shape), std::vector<std::string>{});
        EXPECT_EQ(shape.entries, n);
        EXPECT_EQ(shape.depth, n > 1000 ? 2u : 1u) << n;
        std::vector<IndexEntry> all = IndexCursor(db, work, li).all();
        ASSERT_EQ(all.size(), n);
        for (std::size_t i = 0; i < n; i += 1013) {
            EXPECT_EQ(all[i].key, entries[i].first);
            EXPECT_EQ(all[i].row, entries[i].second);
        }
        // Emptying the first leaves unlinks them from the chain and the parent.
        db->begin();
        std::size_t drop = std::min<std::size_t>(n, 2000);
        for (std::size_t i = 0; i < drop; ++i)
            indexRemove(*db, *work, ri, entries[i].first, entries[i].second);
        std::size_t back = std::min<std::size_t>(n, 1);
        if (back) indexInsert(*db, *work, ri, entries[0].first, entries[0].second);
        db->commit();
        EXPECT_EQ(idxtest::treeFaults(*db, root, def->page, &shape), std::vector<std::string>{});
        EXPECT_EQ(shape.entries, n - drop + back);
        EXPECT_EQ(IndexCursor(db, work, li).all().size(), n - drop + back);
    }
    EXPECT_EQ(checkDatabase(*db), std::vector<std::string>{});
}

// Access may name a node's last child only as its tail page; the writer
// turns it into an ordinary entry when it rewrites the node.
TEST(JetIndexTree, TailChildOfAccessNodesBecomesAnEntry) {
    TempCopy copy("indexTestV2000.mdb");
    auto db = copy.open();
    auto def = db->tableDef("Table1");
    std::size_t li = indexOn(*def, "otherfk2");
    std::size_t ri = def->indexes[li].realIndex;
    std::vector<std::pair<Bytes, RowId>> entries;
    for (std::uint32_t i = 0; i < 3000; ++i)
        entries.push_back({encodeIndexKey(*def, def->realIndexes[ri], {Value{std::int32_t(i)}}),
                           RowId{0x600000u + i / 250, std::uint16_t(i % 250)}});
    db->begin();
    std::uint32_t root = indexBuild(*db, def->page, def->realIndexes[ri].usedPages, entries);
    idxpage::Page node = idxpage::load(db->pages(), root);
    ASSERT_FALSE(node.leaf);
    node.tail = node.entries.back().child;
    node.entries.pop_back();
    db->pages().put(root, idxpage::encode(node));
    db->commit();
    auto work = std::make_shared<TableDef>(*def);
    work->realIndexes[ri].rootPage = root;
    ASSERT_EQ(IndexCursor(db, work, li).all().size(), entries.size());
    EXPECT_FALSE(idxtest::treeFaults(*db, root, def->page).empty());  // the walker wants no tail

    db->begin();
    Bytes last = encodeIndexKey(*def, work->realIndexes[ri], {Value{std::int32_t(5000)}});
    indexInsert(*db, *work, ri, last, RowId{0x610000u, 0});
    EXPECT_TRUE(indexHoldsKey(*db, *work, ri, entries[2999].first, RowId{}));
    indexRemove(*db, *work, ri, entries[2999].first, entries[2999].second);
    db->commit();
    EXPECT_EQ(idxtest::treeFaults(*db, root, def->page), std::vector<std::string>{});
    std::vector<IndexEntry> all = IndexCursor(db, work, li).all();
    ASSERT_EQ(all.size(), entries.size());
    EXPECT_EQ(all.back().key, last);
    EXPECT_EQ(all[2998].key, entries[2998].first);
}

}  // namespace
