#pragma once
// One index page (0x03 node or 0x04 leaf) as the writer edits it: whole
// entries in order, the prefix compression undone, and back to bytes with
// the shared prefix, the entry bitmap and the free space recomputed.
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "jet/read/table_def.h"
#include "jet/store/page_file.h"

namespace jet::idxpage {

// Entry bytes kept inline when short (numeric keys): a page holds hundreds
// of entries and is read whole for every change.
class EntryBytes {
  public:
    EntryBytes() = default;
    EntryBytes(const std::uint8_t* p, std::size_t n) { assign(p, n); }
    EntryBytes(const std::vector<std::uint8_t>& v) { assign(v.data(), v.size()); }
    EntryBytes(const EntryBytes& o) { assign(o.data(), o.size()); }
    EntryBytes(EntryBytes&& o) noexcept
        : inline_(o.inline_), heap_(std::move(o.heap_)), size_(o.size_) {
        o.size_ = 0;
    }
    EntryBytes& operator=(const EntryBytes& o) {
        if (this != &o) assign(o.data(), o.size());
        return *this;
    }
    EntryBytes& operator=(EntryBytes&& o) noexcept {
        inline_ = o.inline_;
        heap_ = std::move(o.heap_);
        size_ = o.size_;
        o.size_ = 0;
        return *this;
    }
    void assign(const std::uint8_t* p, std::size_t n) {
        std::uint8_t* d = reset(n);
        if (n) std::memcpy(d, p, n);
    }
    // New size, contents undefined; answers where to write them.
    std::uint8_t* reset(std::size_t n) {
        size_ = n;
        if (n <= kInline) {
            heap_.clear();
            return inline_.data();
        }
        heap_.resize(n);
        return heap_.data();
    }
    std::size_t size() const { return size_; }
    const std::uint8_t* data() const { return size_ <= kInline ? inline_.data() : heap_.data(); }
    const std::uint8_t* begin() const { return data(); }
    const std::uint8_t* end() const { return data() + size_; }
    std::uint8_t operator[](std::size_t i) const { return data()[i]; }
    std::vector<std::uint8_t> toVector() const { return {begin(), end()}; }
    template <class B>
    bool operator==(const B& o) const {
        return size_ == o.size() && (size_ == 0 || std::memcmp(data(), o.data(), size_) == 0);
    }

  private:
    static constexpr std::size_t kInline = 24;
    std::array<std::uint8_t, kInline> inline_{};
    std::vector<std::uint8_t> heap_;
    std::size_t size_ = 0;
};

// An entry as Jet orders it: the key, then the row pointer (page big-endian
// in three bytes, row in one). Node entries name the child page whose last
// entry they repeat.
struct Entry {
    EntryBytes bytes;
    std::uint32_t child = 0;
    std::size_t keyLength() const { return bytes.size() - 4; }
};

struct Page {
    std::uint32_t number = 0;
    bool leaf = true;
    std::uint32_t tdefPage = 0;
    std::uint32_t prev = 0, next = 0, tail = 0;
    std::vector<Entry> entries;
    bool reshaped = false;      // differs from its bytes on the page (a tail made an entry)
    PageRef from;               // the bytes it was read from or written as, if any
    std::size_t fromCount = 0;  // the entries on from
    // Entries [0, same) stand on from exactly as they are: encode() copies
    // their bytes when the shared prefix has not changed. Whoever changes,
    // inserts or removes entry i lowers it to i at most.
    std::size_t same = 0;
    // The page is what bytes hold, entry for entry.
    void readFrom(PageRef bytes) {
        from = std::move(bytes);
        fromCount = same = entries.size();
    }
};

// Room for entries after the bitmap: a page holds at most this many bytes.
constexpr std::size_t kEntryRoom = kPageSize - indexpage::kFirstEntry;

std::vector<std::uint8_t> entryBytes(const std::vector<std::uint8_t>& key, RowId row);
RowId entryRow(const Entry& e);
int compareBytes(const std::uint8_t* a, std::size_t na, const std::uint8_t* b, std::size_t nb);
template <class A, class B>
int compareBytes(const A& a, const B& b) {
    return compareBytes(a.data(), a.size(), b.data(), b.size());
}

Page load(PageCache& pages, std::uint32_t number);
// The page in raw, read as page number.
Page parse(const PageBytes& raw, std::uint32_t number);
// For a node page: the child whose subtree holds target (the first entry
// not below it, else the last child, which may be the tail page) and that
// entry's position as load() numbers it. Reads the page in place.
std::uint32_t chooseChild(const PageBytes& raw, std::uint32_t number,
                          const std::vector<std::uint8_t>& target, std::size_t& position);
// Length of the key prefix shared by the first and the last entry (and so,
// entries being sorted, by every entry of the page).
std::size_t sharedPrefix(const Entry& first, const Entry& last);
// Bytes the entries take on the page, prefix compression applied.
std::size_t usedBytes(const Page& page);
bool fits(const Page& page);
// Throws jet::Error when the entries do not fit.
PageBytes encode(const Page& page);

}  // namespace jet::idxpage
