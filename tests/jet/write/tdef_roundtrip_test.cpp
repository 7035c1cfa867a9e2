// Every table definition Access wrote must come out of the writer byte for
// byte, and parse back to a model that writes the same bytes.
#include <gtest/gtest.h>

#include "jet/read/database.h"
#include "jet/support/mdbtools.h"
#include "jet/write/tdef_writer.h"

namespace {

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
            // What parses back encodes to the same bytes: no field is lost.
            EXPECT_TRUE(jet::encodeTableDef(*jet::parseTableDef(stream, def->page)) == stream);
            ++tables;
            multiPage += pages.size() > 1;
        }
    }
    EXPECT_GT(tables, 20);
    EXPECT_GT(multiPage, 0) << "no definition spanning several pages was exercised";
}

}  // namespace
