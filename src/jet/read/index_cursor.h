#pragma once
// Walking an index B-tree in key order and seeking a key.
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "jet/format/value.h"
#include "jet/read/table_def.h"
#include "jet/store/page_file.h"

namespace jet {

class Database;

struct IndexEntry {
    std::vector<std::uint8_t> key;  // the encoded key columns (flag byte + data per column)
    RowId row;
    std::uint32_t childPage = 0;  // intermediate pages only
};

// The entries of one index page with the prefix compression undone.
struct IndexPage {
    std::uint32_t number = 0;
    PageType type = PageType::IndexLeaf;
    std::uint32_t prevPage = 0, nextPage = 0, tailPage = 0;
    std::vector<IndexEntry> entries;
};
IndexPage readIndexPage(PageCache& pages, std::uint32_t page);

class IndexCursor {
  public:
    IndexCursor(std::shared_ptr<Database> db, std::shared_ptr<const TableDef> def,
                std::size_t logicalIndex);
    const Index& logical() const { return def_->indexes[logical_]; }
    const RealIndex& real() const { return def_->realIndexes[logical().realIndex]; }

    // Positions before the first entry; next() then yields entries in index order.
    void reset();
    bool next();
    const IndexEntry& entry() const;
    // Positions so that next() yields the first entry whose key >= key (bytewise).
    void seek(const std::vector<std::uint8_t>& key);
    // Rows whose leading index columns equal values (Jet's comparison; Text
    // case-insensitive), in index order.
    std::vector<RowId> find(const std::vector<Value>& values);
    // Every entry, in order (for checks and tests).
    std::vector<IndexEntry> all();

  private:
    void descendToLeaf(const std::vector<std::uint8_t>* key);
    bool loadPage(std::uint32_t page);
    std::shared_ptr<Database> db_;
    std::shared_ptr<const TableDef> def_;
    std::size_t logical_;
    bool followNext();
    // Parsed pages, reused while the page cache still hands out the same
    // bytes (a page written since is parsed again).
    std::map<std::uint32_t, std::pair<PageRef, std::shared_ptr<const IndexPage>>> parsed_;
    std::shared_ptr<const IndexPage> page_ = std::make_shared<IndexPage>();
    std::size_t pos_ = 0;  // next entry to yield
    std::size_t cur_ = 0;  // entry last yielded
    bool started_ = false;
    bool atEnd_ = false;
    std::size_t hops_ = 0;  // leaf pages visited since reset (cycle guard)
};

}  // namespace jet
