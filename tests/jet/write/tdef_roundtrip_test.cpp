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
