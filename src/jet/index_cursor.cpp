#include "jet/index_cursor.h"

#include <algorithm>
#include <cstring>

#include "jet/database.h"
#include "jet/error.h"
#include "jet/table.h"
#include "jet/text.h"

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

namespace {

void flip(std::vector<std::uint8_t>& v, std::size_t from) {
    for (std::size_t i = from; i < v.size(); ++i) v[i] = std::uint8_t(~v[i]);
}

std::vector<std::uint8_t> bigEndian(std::uint64_t x, int n) {
    std::vector<std::uint8_t> out(static_cast<std::size_t>(n), 0);
    for (int i = n - 1; i >= 0; --i) {
        out[std::size_t(i)] = std::uint8_t(x & 0xFF);
        x >>= 8;
    }
    return out;
}

double asDouble(const Value& v) {
    if (auto p = std::get_if<double>(&v)) return *p;
    if (auto p = std::get_if<float>(&v)) return *p;
    if (auto p = std::get_if<DateTime>(&v)) return p->days;
    if (auto p = std::get_if<std::int32_t>(&v)) return *p;
    if (auto p = std::get_if<std::int16_t>(&v)) return *p;
    if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
    throw Error("index key value has the wrong type");
}

std::int64_t asInteger(const Value& v) {
    if (auto p = std::get_if<std::int32_t>(&v)) return *p;
    if (auto p = std::get_if<std::int16_t>(&v)) return *p;
    if (auto p = std::get_if<std::uint8_t>(&v)) return *p;
    if (auto p = std::get_if<Currency>(&v)) return p->scaled;
    if (auto p = std::get_if<bool>(&v)) return *p ? 1 : 0;
    throw Error("index key value has the wrong type");
}

// Primary sort codes of Jet's General order (Access 2000-2003) for letters
// and digits, as Access writes them; letters fold case and plain ASCII
// letters add no extra bytes. Other characters end the prefix.
std::uint8_t generalCode(char16_t c) {
    static const std::uint8_t letters[26] = {
        0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59,         0x5B, 0x5C, 0x5E, 0x60, 0x62,
        0x64, 0x66, 0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78};
    if (c >= '0' && c <= '9') return std::uint8_t(0x36 + 2 * (c - '0'));
    if (c >= 'A' && c <= 'Z') return letters[c - 'A'];
    if (c >= 'a' && c <= 'z') return letters[c - 'a'];
    return 0;
}

// Text keys: the primary codes of the leading characters Jet encodes the
// same way for every case and accent, as far as they are known. The
// result is a prefix of the real key; callers re-check the rows.
void textPrefix(const std::string& s, bool ascending, std::vector<std::uint8_t>& out) {
    std::size_t from = out.size();
    for (char16_t c : utf8ToUtf16(s)) {
        std::uint8_t code = generalCode(c);
        if (!code) break;
        out.push_back(code);
    }
    if (!ascending) flip(out, from);
}

}  // namespace

static void encodeOne(const Column& col, bool asc, const Value& v, std::vector<std::uint8_t>& out,
                      bool& exact) {
    if (isNull(v)) {
        out.push_back(asc ? 0x00 : 0xFF);
        return;
    }
    out.push_back(asc ? 0x7F : 0x80);
    std::vector<std::uint8_t> bytes;
    switch (col.type) {
        case ColumnType::Byte:
            bytes = bigEndian(std::uint64_t(asInteger(v)) & 0xFF, 1);
            break;
        case ColumnType::Integer:
            bytes = bigEndian(std::uint64_t(asInteger(v)), 2);
            bytes[0] ^= 0x80;
            break;
        case ColumnType::Long:
            bytes = bigEndian(std::uint64_t(asInteger(v)), 4);
            bytes[0] ^= 0x80;
            break;
        case ColumnType::Currency:
            bytes = bigEndian(std::uint64_t(asInteger(v)), 8);
            bytes[0] ^= 0x80;
            break;
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::DateTime: {
            double d = asDouble(v);
            std::uint64_t bits;
            int n;
            if (col.type == ColumnType::Single) {
                float f = float(d);
                std::uint32_t b32;
                std::memcpy(&b32, &f, 4);
                bits = b32;
                n = 4;
            } else {
                std::memcpy(&bits, &d, 8);
                n = 8;
            }
            bytes = bigEndian(bits, n);
            bool negative = bytes[0] & 0x80;
            if (negative)
                flip(bytes, 0);
            else
                bytes[0] ^= 0x80;
            break;
        }
        case ColumnType::Text:
        case ColumnType::Memo: {
            const std::string* s = std::get_if<std::string>(&v);
            if (!s) throw Error("index key value has the wrong type");
            textPrefix(*s, true, bytes);
            exact = false;
            break;
        }
        default:
            throw Error(std::string("index keys of type ") + columnTypeName(col.type) +
                        " are not supported");
    }
    if (!asc) flip(bytes, 0);
    out.insert(out.end(), bytes.begin(), bytes.end());
}

std::vector<std::uint8_t> encodeIndexKey(const TableDef& def, const RealIndex& index,
                                         const std::vector<Value>& values) {
    if (values.size() > index.columns.size()) throw Error("more key values than index columns");
    std::vector<std::uint8_t> out;
    bool exact = true;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!exact) break;  // after a text prefix nothing more can be appended
        const Column* col = def.columnByNumber(index.columns[i].columnNumber);
        if (!col) throw Error("index refers to a missing column");
        encodeOne(*col, index.columns[i].ascending, values[i], out, exact);
    }
    return out;
}

bool indexKeyIsExact(const TableDef& def, const RealIndex& index, std::size_t valueCount) {
    for (std::size_t i = 0; i < valueCount && i < index.columns.size(); ++i) {
        const Column* col = def.columnByNumber(index.columns[i].columnNumber);
        if (!col || col->type == ColumnType::Text || col->type == ColumnType::Memo) return false;
    }
    return true;
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
    Table table(db_, def_);
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
        auto row = table.read(e.row);
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
