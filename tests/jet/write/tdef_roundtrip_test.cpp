// Every table definition Access wrote must come out of the writer byte for
// byte, and parse back to the same model.
#include <gtest/gtest.h>

#include "jet/read/database.h"
#include "jet/support/mdbtools.h"
#include "jet/write/tdef_writer.h"

namespace {

void expectSameModel(const jet::TableDef& a, const jet::TableDef& b) {
    EXPECT_EQ(a.rowCount, b.rowCount);
    EXPECT_EQ(a.nextAutoNumber, b.nextAutoNumber);
    EXPECT_EQ(a.tableType, b.tableType);
    EXPECT_EQ(a.usedPages, b.usedPages);
    EXPECT_EQ(a.freePages, b.freePages);
    ASSERT_EQ(a.columns.size(), b.columns.size());
    for (std::size_t i = 0; i < a.columns.size(); ++i) {
        EXPECT_EQ(a.columns[i].name, b.columns[i].name);
        EXPECT_EQ(a.columns[i].type, b.columns[i].type);
        EXPECT_EQ(a.columns[i].number, b.columns[i].number);
        EXPECT_EQ(a.columns[i].fixedOffset, b.columns[i].fixedOffset);
        EXPECT_EQ(a.columns[i].length, b.columns[i].length);
        EXPECT_EQ(a.columns[i].flags, b.columns[i].flags);
    }
    ASSERT_EQ(a.realIndexes.size(), b.realIndexes.size());
    for (std::size_t i = 0; i < a.realIndexes.size(); ++i) {
        EXPECT_EQ(a.realIndexes[i].rootPage, b.realIndexes[i].rootPage);
        EXPECT_EQ(a.realIndexes[i].columns.size(), b.realIndexes[i].columns.size());
        EXPECT_EQ(a.realIndexes[i].flags, b.realIndexes[i].flags);
    }
    ASSERT_EQ(a.indexes.size(), b.indexes.size());
    for (std::size_t i = 0; i < a.indexes.size(); ++i) {
        EXPECT_EQ(a.indexes[i].name, b.indexes[i].name);
        EXPECT_EQ(a.indexes[i].realIndex, b.indexes[i].realIndex);
        EXPECT_EQ(a.indexes[i].type, b.indexes[i].type);
    }
    EXPECT_EQ(a.varColumnMaps.size(), b.varColumnMaps.size());
}

TEST(TdefWriter, AccessDefinitionsRoundTripByteForByte) {
    int tables = 0, multiPage = 0;
    for (const std::string& file : jettest::testFiles()) {
        auto db = jet::Database::open(jettest::testFile(file));
        for (const jet::CatalogEntry& e : db->catalogue()) {
            if (e.type != jet::objtype::kTable || e.tdefPage() == 0) continue;
            SCOPED_TRACE(file + " / " + e.name);
            auto def = jet::readTableDef(db->pages(), e.tdefPage());
            std::vector<jet::PageBytes> pages = jet::tableDefPages(*def, def->pages);
            ASSERT_EQ(pages.size(), def->pages.size());
            jet::PageBytes stream = jet::encodeTableDef(*def);
            // Past the end of the definition the last page holds whatever
            // Access left there; that slack is not part of the definition.
            std::size_t lastUsed = pages.size() == 1
                                       ? stream.size()
                                       : 8 + (stream.size() - jet::kPageSize -
                                              (jet::kPageSize - 8) * (pages.size() - 2));
            for (std::size_t i = 0; i < pages.size(); ++i) {
                jet::PageRef original = db->pages().page(def->pages[i], jet::PageType::TableDef);
                std::size_t limit = i + 1 == pages.size() ? lastUsed : jet::kPageSize, at = 0;
                while (at < limit && pages[i][at] == (*original)[at]) ++at;
                EXPECT_EQ(at, limit) << "page " << def->pages[i] << " differs at " << at;
            }
            auto again = jet::parseTableDef(stream, def->page);
            expectSameModel(*def, *again);
            ++tables;
            multiPage += pages.size() > 1;
        }
    }
    EXPECT_GT(tables, 20);
    EXPECT_GT(multiPage, 0) << "no definition spanning several pages was exercised";
}

}  // namespace

namespace {

// A definition that never came from a file: no raw bytes to lean on.
jet::TableDef freshDefinition(int textColumns) {
    jet::TableDef d;
    d.tableType = 0x4E;
    d.usedPages = (7u << 8) | 1;
    d.freePages = (7u << 8) | 2;
    std::uint16_t num = 0, fixedAt = 0;
    auto add = [&](const std::string& name, jet::ColumnType t, std::uint16_t len, bool fixed) {
        jet::Column c;
        c.name = name;
        c.type = t;
        c.number = c.index = num++;
        c.flags = std::uint8_t((fixed ? jet::colflag::kFixed : 0) | jet::colflag::kNullable);
        c.length = len;
        if (fixed) {
            c.fixedOffset = fixedAt;
            fixedAt = std::uint16_t(fixedAt + len);
        } else {
            c.varIndex = d.varColumnCount++;
            c.sortOrder = 0x409;
            c.miscFlags = jet::colmisc::kCompressedUnicode;
        }
        d.columns.push_back(c);
    };
    add("Id", jet::ColumnType::Long, 4, true);
    for (int i = 0; i < textColumns; ++i)
        add("Text column with a long name " + std::to_string(i), jet::ColumnType::Text, 510, false);
    d.maxColumns = num;
    d.columnCount = num;
    jet::RealIndex ri;
    ri.columns = {{0, true}, {1, false}};
    ri.rootPage = 9;
    ri.flags = jet::idxflag::kUnique;
    d.realIndexes.push_back(ri);
    jet::Index li;
    li.name = "PrimaryKey";
    li.type = 1;
    d.indexes.push_back(li);
    return d;
}

TEST(TdefWriter, NewDefinitionsParseBackOnOneOrSeveralPages) {
    struct Case {
        int textColumns;
        std::size_t pages;
    };
    for (Case c : {Case{3, 1}, Case{60, 2}, Case{150, 4}}) {
        SCOPED_TRACE(c.textColumns);
        jet::TableDef d = freshDefinition(c.textColumns);
        ASSERT_EQ(jet::tableDefPageCount(d), c.pages);
        std::vector<std::uint32_t> numbers;
        for (std::size_t i = 0; i < c.pages; ++i) numbers.push_back(std::uint32_t(40 + i));
        std::vector<jet::PageBytes> pages = jet::tableDefPages(d, numbers);
        // Concatenate as the reader does: later pages without their header.
        jet::PageBytes raw = pages[0];
        for (std::size_t i = 1; i < pages.size(); ++i) {
            EXPECT_EQ(jet::u32(pages[i - 1].data() + 4), numbers[i]);
            raw.insert(raw.end(), pages[i].begin() + 8, pages[i].end());
        }
        EXPECT_EQ(jet::u32(pages.back().data() + 4), 0u);
        auto back = jet::parseTableDef(raw, 40);
        expectSameModel(d, *back);
        EXPECT_EQ(back->realIndexes[0].columns[1].ascending, false);
        EXPECT_EQ(back->columns[1].sortOrder, 0x409);
        EXPECT_TRUE(back->columns[1].compressedUnicode());
        // A model that came from bytes writes those bytes again.
        EXPECT_EQ(jet::encodeTableDef(*back), jet::encodeTableDef(d));
    }
}

}  // namespace
