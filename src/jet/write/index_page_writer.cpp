#include "jet/write/index_page_writer.h"

#include <algorithm>
#include <cstring>

#include "jet/format/error.h"
#include "jet/read/index_cursor.h"

namespace jet::idxpage {

std::vector<std::uint8_t> entryBytes(const std::vector<std::uint8_t>& key, RowId row) {
    std::vector<std::uint8_t> b;
    b.reserve(key.size() + 4);
    b = key;
    b.push_back(std::uint8_t(row.page >> 16));
    b.push_back(std::uint8_t(row.page >> 8));
    b.push_back(std::uint8_t(row.page));
    b.push_back(std::uint8_t(row.row));
    return b;
}

RowId entryRow(const Entry& e) {
    const std::uint8_t* p = e.bytes.data() + e.keyLength();
    return RowId{u24be(p), p[3]};
}

namespace {
// Bits set in a byte (std::popcount is a library call on the baseline x86-64).
std::size_t bitsIn(std::uint8_t b) {
    static constexpr std::uint8_t kNibble[16] = {0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4};
    return kNibble[b & 15] + kNibble[b >> 4];
}
}  // namespace

int compareBytes(const std::uint8_t* a, std::size_t na, const std::uint8_t* b, std::size_t nb) {
    std::size_t n = std::min(na, nb);
    int c = n ? std::memcmp(a, b, n) : 0;
    if (c) return c < 0 ? -1 : 1;
    return na == nb ? 0 : (na < nb ? -1 : 1);
}

Page load(PageCache& pages, std::uint32_t number) {
    PageRef ref = pages.page(number);
    Page p = parse(*ref, number);
    p.readFrom(std::move(ref));
    return p;
}

Page parse(const PageBytes& bytes, std::uint32_t number) {
    // Parsed straight from the page (the reader's IndexPage would cost a
    // second copy of every key, and trees are loaded on every change).
    const std::uint8_t* raw = bytes.data();
    if (raw[0] != std::uint8_t(PageType::IndexNode) && raw[0] != std::uint8_t(PageType::IndexLeaf))
        throwCorrupt(number, "expected an index page, found type " + std::to_string(raw[0]));
    Page p;
    p.number = number;
    p.leaf = raw[0] == std::uint8_t(PageType::IndexLeaf);
    p.tdefPage = u32(raw + indexpage::kTdefPage);
    p.prev = u32(raw + indexpage::kPrevPage);
    p.next = u32(raw + indexpage::kNextPage);
    p.tail = u32(raw + indexpage::kTailPage);
    std::size_t prefix = u16(raw + indexpage::kPrefixLength);
    std::size_t trailer = p.leaf ? 4 : 8;
    std::size_t start = indexpage::kFirstEntry;
    std::size_t count = 0;
    for (std::size_t byte = 0; byte < indexpage::kEntryMaskLength; ++byte)
        count += bitsIn(raw[indexpage::kEntryMask + byte]);
    p.entries.reserve(count);
    for (std::size_t byte = 0; byte < indexpage::kEntryMaskLength; ++byte) {
        std::uint8_t bits = raw[indexpage::kEntryMask + byte];
        for (int b = 0; bits && b < 8; ++b) {
            if (!(bits & (1u << b))) continue;
            std::size_t end = indexpage::kFirstEntry + byte * 8 + std::size_t(b);
            if (end > kPageSize || end <= start) throwCorrupt(number, "index entry bounds");
            std::size_t shared = p.entries.empty() ? 0 : prefix;
            std::size_t length = shared + end - start;
            if (length < trailer || (p.entries.empty() && prefix > length) ||
                (shared && shared > p.entries.front().bytes.size()))
                throwCorrupt(number, "index entry shorter than its pointers");
            Entry e;
            std::uint8_t* d = e.bytes.reset(length - (trailer - 4));
            if (shared) std::memcpy(d, p.entries.front().bytes.data(), shared);
            std::memcpy(d + shared, raw + start, e.bytes.size() - shared);
            if (!p.leaf) e.child = u32be(raw + end - 4);
            p.entries.push_back(std::move(e));
            start = end;
        }
    }
    return p;
}

namespace {
// Compares the concatenation a1 a2 with t.
int compareSplit(const std::uint8_t* a1, std::size_t n1, const std::uint8_t* a2, std::size_t n2,
                 const std::vector<std::uint8_t>& t) {
    std::size_t m = std::min(n1, t.size());
    int c = m ? std::memcmp(a1, t.data(), m) : 0;
    if (c) return c < 0 ? -1 : 1;
    if (t.size() <= n1) return n1 + n2 > t.size() ? 1 : 0;
    m = std::min(n2, t.size() - n1);
    c = m ? std::memcmp(a2, t.data() + n1, m) : 0;
    if (c) return c < 0 ? -1 : 1;
    std::size_t l = n1 + n2;
    return l == t.size() ? 0 : (l < t.size() ? -1 : 1);
}
}  // namespace

std::uint32_t chooseChild(const PageBytes& page, std::uint32_t number,
                          const std::vector<std::uint8_t>& target, std::size_t& position) {
    const std::uint8_t* raw = page.data();
    std::size_t prefix = u16(raw + indexpage::kPrefixLength);
    std::uint32_t tail = u32(raw + indexpage::kTailPage);
    std::size_t start = indexpage::kFirstEntry, count = 0;
    std::uint32_t lastChild = 0;
    for (std::size_t byte = 0; byte < indexpage::kEntryMaskLength; ++byte) {
        std::uint8_t bits = raw[indexpage::kEntryMask + byte];
        for (int b = 0; bits && b < 8; ++b) {
            if (!(bits & (1u << b))) continue;
            std::size_t end = indexpage::kFirstEntry + byte * 8 + std::size_t(b);
            if (end > kPageSize || end <= start) throwCorrupt(number, "index entry bounds");
            std::size_t shared = count == 0 ? 0 : prefix;
            std::size_t length = shared + end - start;
            if (length < 8 || (count == 0 && prefix > length))
                throwCorrupt(number, "index entry shorter than its pointers");
            std::size_t n1 = std::min(shared, length - 4);
            std::size_t n2 = length - 4 - n1;
            lastChild = u32be(raw + end - 4);
            if (compareSplit(raw + indexpage::kFirstEntry, n1, raw + end - 4 - n2, n2, target) >=
                0) {
                position = count;
                return lastChild;
            }
            ++count;
            start = end;
        }
    }
    if (tail != 0 && (count == 0 || lastChild != tail)) {
        position = count;
        return tail;
    }
    if (count == 0) throwCorrupt(number, "index node without entries");
    position = count - 1;
    return lastChild;
}

std::size_t sharedPrefix(const Entry& first, const Entry& last) {
    // Only key bytes are shared; the row pointers stay whole in every entry.
    std::size_t n = std::min(first.keyLength(), last.keyLength());
    std::size_t i = 0;
    while (i < n && first.bytes[i] == last.bytes[i]) ++i;
    return i;
}

namespace {
// Where the entries [0, page.same) end on page.from, when their bytes there
// can be kept as they are (same kind of page, same shared prefix); else 0.
// Changes come mostly at the end of a page: the mask is read from its end.
std::size_t keptEnd(const Page& page, std::size_t prefix) {
    if (!page.from || page.same == 0 || page.same > page.fromCount) return 0;
    const std::uint8_t* old = page.from->data();
    const auto type = std::uint8_t(page.leaf ? PageType::IndexLeaf : PageType::IndexNode);
    if (old[0] != type || u16(old + indexpage::kPrefixLength) != prefix) return 0;
    std::size_t skip = page.fromCount - page.same;  // entry ends after the one wanted
    const std::uint8_t* mask = old + indexpage::kEntryMask;
    std::size_t byte = indexpage::kEntryMaskLength;
    // The free room at the end of a page has no bits: passed eight bytes at a time.
    for (std::uint64_t word = 0; byte >= 8; byte -= 8) {
        std::memcpy(&word, mask + byte - 8, 8);
        if (word) break;
    }
    while (byte-- > 0) {
        const unsigned bits = mask[byte];
        if (!bits) continue;
        const std::size_t count = bitsIn(std::uint8_t(bits));
        if (count <= skip) {
            skip -= count;
            continue;
        }
        for (int b = 7; b >= 0; --b)
            if ((bits & (1u << b)) && skip-- == 0) return indexpage::kFirstEntry + byte * 8 + b;
    }
    return 0;
}
}  // namespace

namespace {
// How the entries lie on the page: the shared prefix, where those kept as
// they stand end (0: none kept) and the bytes all take.
struct Layout {
    std::size_t prefix = 0, kept = 0, used = 0;
};

Layout layoutOf(const Page& page) {
    Layout l;
    if (page.entries.empty()) return l;
    const std::size_t trailer = page.leaf ? 0 : 4;
    l.prefix = sharedPrefix(page.entries.front(), page.entries.back());
    l.kept = keptEnd(page, l.prefix);
    std::size_t first = 0, total = 0;
    if (l.kept) {
        first = page.same;
        total = l.kept - indexpage::kFirstEntry + l.prefix * (first - 1);
    }
    for (std::size_t i = first; i < page.entries.size(); ++i)
        total += page.entries[i].bytes.size() + trailer;
    l.used = total - l.prefix * (page.entries.size() - 1);
    return l;
}
}  // namespace

std::size_t usedBytes(const Page& page) { return layoutOf(page).used; }

bool fits(const Page& page) { return usedBytes(page) <= kEntryRoom; }

PageBytes encode(const Page& page) {
    const Layout l = layoutOf(page);
    if (l.used > kEntryRoom)
        throw Error("index entries do not fit on page " + std::to_string(page.number));
    PageBytes out(kPageSize, 0);
    std::uint8_t* p = out.data();
    p[0] = std::uint8_t(page.leaf ? PageType::IndexLeaf : PageType::IndexNode);
    p[1] = 0x01;
    put16(p + indexpage::kFreeSpace, std::uint16_t(kEntryRoom - l.used));
    put32(p + indexpage::kTdefPage, page.tdefPage);
    put32(p + indexpage::kPrevPage, page.prev);
    put32(p + indexpage::kNextPage, page.next);
    put32(p + indexpage::kTailPage, page.tail);
    put16(p + indexpage::kPrefixLength, std::uint16_t(l.prefix));
    std::size_t at = indexpage::kFirstEntry;
    std::size_t first = 0;
    if (l.kept) {
        // The entries kept as they stand, with their bits in the mask.
        const std::uint8_t* old = page.from->data();
        std::memcpy(p + at, old + at, l.kept - at);
        const std::size_t bit = l.kept - indexpage::kFirstEntry;
        std::memcpy(p + indexpage::kEntryMask, old + indexpage::kEntryMask, bit / 8 + 1);
        p[indexpage::kEntryMask + bit / 8] &= std::uint8_t((2u << (bit % 8)) - 1);
        first = page.same;
        at = l.kept;
    }
    for (std::size_t i = first; i < page.entries.size(); ++i) {
        const Entry& e = page.entries[i];
        std::size_t skip = i == 0 ? 0 : l.prefix;
        std::memcpy(p + at, e.bytes.data() + skip, e.bytes.size() - skip);
        at += e.bytes.size() - skip;
        if (!page.leaf) {
            for (int s = 24; s >= 0; s -= 8) p[at++] = std::uint8_t(e.child >> s);
        }
        std::size_t bit = at - indexpage::kFirstEntry;
        p[indexpage::kEntryMask + bit / 8] |= std::uint8_t(1u << (bit % 8));
    }
    return out;
}

}  // namespace jet::idxpage
