#include "jet/read/index_cursor.h"

#include <algorithm>
#include <cstring>

#include "jet/format/error.h"
#include "jet/format/text.h"
#include "jet/read/database.h"
#include "jet/read/index_key.h"
#include "jet/read/row_reader.h"

namespace jet {

namespace {
IndexPage parseIndexPage(const PageRef& ref, std::uint32_t n) {
    const std::uint8_t* p = ref->data();
    if (p[0] != std::uint8_t(PageType::IndexNode) && p[0] != std::uint8_t(PageType::IndexLeaf))
        throwCorrupt(n, "expected an index page, found type " + std::to_string(p[0]));
    IndexPage ip;
    ip.number = n;
    ip.type = PageType(p[0]);
    ip.prevPage = u32(p + indexpage::kPrevPage);
    ip.nextPage = u32(p + indexpage::kNextPage);
    ip.tailPage = u32(p + indexpage::kTailPage);
    std::size_t prefix = u16(p + indexpage::kPrefixLength);
    std::size_t trailer = ip.type == PageType::IndexNode ? 8 : 4;
    std::size_t start = indexpage::kFirstEntry;
    std::vector<std::uint8_t> first;
    for (std::size_t byte = 0; byte < indexpage::kEntryMaskLength; ++byte) {
        std::uint8_t bits = p[indexpage::kEntryMask + byte];
        if (!bits) continue;
        for (int b = 0; b < 8; ++b) {
            if (!(bits & (1u << b))) continue;
            std::size_t end = indexpage::kFirstEntry + byte * 8 + std::size_t(b);
            if (end > kPageSize) throwCorrupt(n, "index entry ends beyond the page");
            if (end <= start) throwCorrupt(n, "index entry of no length");
            std::vector<std::uint8_t> bytes;
            if (ip.entries.empty()) {
                bytes.assign(p + start, p + end);
                if (prefix > bytes.size())
                    throwCorrupt(n, "index prefix longer than the first entry");
                first = bytes;
            } else {
                bytes.reserve(prefix + end - start);
                bytes.assign(first.begin(), first.begin() + std::ptrdiff_t(prefix));
                bytes.insert(bytes.end(), p + start, p + end);
            }
            if (bytes.size() < trailer) throwCorrupt(n, "index entry shorter than its row pointer");
            IndexEntry e;
            std::size_t keyLen = bytes.size() - trailer;
            e.row.page = u24be(bytes.data() + keyLen);
            e.row.row = bytes[keyLen + 3];
            if (ip.type == PageType::IndexNode) e.childPage = u32be(bytes.data() + keyLen + 4);
            bytes.resize(keyLen);
            e.key = std::move(bytes);
            ip.entries.push_back(std::move(e));
            start = end;
        }
    }
    return ip;
}
}  // namespace

IndexPage readIndexPage(PageCache& pages, std::uint32_t n) {
    return parseIndexPage(pages.page(n), n);
}

IndexCursor::IndexCursor(std::shared_ptr<Database> db, std::shared_ptr<const TableDef> def,
                         std::size_t logicalIndex)
    : db_(std::move(db)), def_(std::move(def)), logical_(logicalIndex) {
    if (logical_ >= def_->indexes.size()) throw Error("no such index");
}

void IndexCursor::reset() {
    started_ = false;
    atEnd_ = false;
    pos_ = cur_ = 0;
    hops_ = 0;
    page_ = std::make_shared<IndexPage>();
}

namespace {
int compareKey(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    std::size_t n = std::min(a.size(), b.size());
    int c = n ? std::memcmp(a.data(), b.data(), n) : 0;
    if (c) return c < 0 ? -1 : 1;
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}
}  // namespace

bool IndexCursor::loadPage(std::uint32_t page) {
    if (++hops_ > db_->pages().pageCount() + 1) throwCorrupt(page, "index pages form a cycle");
    PageRef ref = db_->pages().page(page);
    auto it = parsed_.find(page);
    if (it != parsed_.end() && it->second.first == ref) {
        page_ = it->second.second;
    } else {
        if (parsed_.size() >= 256) parsed_.clear();
        page_ = std::make_shared<const IndexPage>(parseIndexPage(ref, page));
        parsed_[page] = {ref, page_};
    }
    pos_ = 0;
    return true;
}

void IndexCursor::descendToLeaf(const std::vector<std::uint8_t>* key) {
    std::uint32_t page = real().rootPage;
    started_ = true;
    atEnd_ = false;
    if (page == 0) {
        atEnd_ = true;
        return;
    }
    for (int depth = 0;; ++depth) {
        if (depth > 32) throwCorrupt(page, "index tree too deep (cycle?)");
        loadPage(page);
        if (page_->type == PageType::IndexLeaf) break;
        if (page_->entries.empty()) {
            // An empty node: its tail page, if any, holds the entries.
            if (page_->tailPage == 0) {
                atEnd_ = true;
                return;
            }
            page = page_->tailPage;
            continue;
        }
        std::size_t i = 0;
        if (key) {
            auto it =
                std::find_if(page_->entries.begin(), page_->entries.end(),
                             [&](const IndexEntry& e) { return compareKey(e.key, *key) >= 0; });
            i = std::size_t(it - page_->entries.begin());
            // Entry keys bound their subtrees; starting one subtree early is
            // always safe because leaves are chained forwards.
            if (i > 0) --i;
        }
        page = page_->entries[i].childPage;
        if (page == 0) throwCorrupt(page_->number, "index node entry without a child page");
    }
}

bool IndexCursor::followNext() {
    while (pos_ >= page_->entries.size()) {
        if (page_->nextPage == 0) {
            atEnd_ = true;
            return false;
        }
        std::uint32_t next = page_->nextPage;
        loadPage(next);
        if (page_->type != PageType::IndexLeaf)
            throwCorrupt(next, "leaf chain reaches a non-leaf page");
    }
    return true;
}

bool IndexCursor::next() {
    if (!started_) descendToLeaf(nullptr);
    if (atEnd_) return false;
    if (!followNext()) return false;
    cur_ = pos_++;
    return true;
}

const IndexEntry& IndexCursor::entry() const {
    if (cur_ >= page_->entries.size()) throw Error("index cursor is not on an entry");
    return page_->entries[cur_];
}

void IndexCursor::seek(const std::vector<std::uint8_t>& key) {
    reset();
    descendToLeaf(&key);
    if (atEnd_) return;
    for (;;) {
        if (!followNext()) return;
        while (pos_ < page_->entries.size() && compareKey(page_->entries[pos_].key, key) < 0)
            ++pos_;
        if (pos_ < page_->entries.size()) return;
    }
}

std::vector<IndexEntry> IndexCursor::all() {
    reset();
    std::vector<IndexEntry> out;
    while (next()) out.push_back(entry());
    return out;
}

std::vector<RowId> IndexCursor::find(const std::vector<Value>& values) {
    std::vector<std::uint8_t> key = encodeIndexKey(*def_, real(), values);
    bool exact = indexKeyIsExact(*def_, real(), values.size());
    std::vector<RowId> out;
    seek(key);
    RowReader rows(db_->pages(), *def_);
    while (next()) {
        const IndexEntry& e = entry();
        if (e.key.size() < key.size() || std::memcmp(e.key.data(), key.data(), key.size()) != 0)
            break;
        if (exact) {
            if (e.key.size() == key.size() || values.size() < real().columns.size())
                out.push_back(e.row);
            continue;
        }
        // A prefix match: compare the row's own values.
        auto row = rows.read(e.row);
        if (!row) continue;
        bool match = true;
        for (std::size_t i = 0; i < values.size() && match; ++i) {
            const Column* col = def_->columnByNumber(real().columns[i].columnNumber);
            int pos = col ? def_->columnPosition(col->name) : -1;
            if (pos < 0) {
                match = false;
                break;
            }
            const Value& have = (*row)[std::size_t(pos)];
            const auto* hs = std::get_if<std::string>(&have);
            const auto* ws = std::get_if<std::string>(&values[i]);
            if (hs && ws)
                match = equalsNoCase(*hs, *ws);
            else
                match = toText(have) == toText(values[i]) && isNull(have) == isNull(values[i]);
        }
        if (match) out.push_back(e.row);
    }
    return out;
}

}  // namespace jet
