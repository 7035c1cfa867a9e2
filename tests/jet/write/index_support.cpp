#include "index_support.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "jet/format/error.h"
#include "jet/format/general_sort.h"
#include "jet/format/text.h"
#include "jet/read/index_cursor.h"
#include "jet/read/index_key.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace idxtest {

std::string hex(const std::vector<std::uint8_t>& b) {
    static const char* d = "0123456789abcdef";
    std::string s;
    for (auto x : b) s += {d[x >> 4], d[x & 15]};
    return s;
}

std::vector<std::uint8_t> unhex(const std::string& h) {
    std::vector<std::uint8_t> b;
    for (std::size_t i = 0; i + 1 < h.size(); i += 2)
        b.push_back(std::uint8_t(std::stoi(h.substr(i, 2), nullptr, 16)));
    return b;
}

jet::TableDef keyTable(jet::ColumnType type, bool ascending, bool idFirst) {
    jet::TableDef def;
    def.name = "Parts";
    jet::RealIndex real;
    if (idFirst) {
        def.columns.resize(1);
        def.columns[0].name = "Id";
        def.columns[0].type = jet::ColumnType::Long;
        real.columns.push_back({0, true});
    }
    jet::Column k;
    k.name = "K";
    k.type = type;
    k.number = std::uint16_t(def.columns.size());
    k.sortOrder = 0x409;
    def.columns.push_back(k);
    real.columns.push_back({k.number, ascending});
    def.realIndexes = {real};
    def.indexes.resize(1);
    def.indexes[0].name = "ByK";
    return def;
}

std::size_t indexNamed(const jet::TableDef& def, const std::string& name) {
    for (std::size_t i = 0; i < def.indexes.size(); ++i)
        if (def.indexes[i].name == name) return i;
    throw jet::Error("no index " + name);
}

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes full(const jet::IndexEntry& e) {
    Bytes b = e.key;
    b.push_back(std::uint8_t(e.row.page >> 16));
    b.push_back(std::uint8_t(e.row.page >> 8));
    b.push_back(std::uint8_t(e.row.page));
    b.push_back(std::uint8_t(e.row.row));
    return b;
}

struct Walker {
    jet::Database& db;
    std::uint32_t tdef;
    TreeShape shape;
    std::vector<std::string> faults;
    std::vector<std::vector<std::uint32_t>> levels;  // pages per depth, left to right

    // Answers the subtree's last entry.
    Bytes walk(std::uint32_t n, std::size_t depth) {
        if (depth > 16) {
            faults.push_back("tree deeper than 16 levels");
            return {};
        }
        if (levels.size() <= depth) levels.resize(depth + 1);
        levels[depth].push_back(n);
        shape.depth = std::max(shape.depth, depth + 1);
        jet::IndexPage ip = jet::readIndexPage(db.pages(), n);
        jet::PageRef raw = db.pages().page(n);
        std::string at = "page " + std::to_string(n) + ": ";
        if (jet::u32(raw->data() + jet::indexpage::kTdefPage) != tdef)
            faults.push_back(at + "names another table");
        // The free space is what the entries leave after the bitmap.
        std::size_t end = jet::indexpage::kFirstEntry;
        for (std::size_t i = 0; i < jet::indexpage::kEntryMaskLength * 8; ++i)
            if ((*raw)[jet::indexpage::kEntryMask + i / 8] & (1u << (i % 8)))
                end = jet::indexpage::kFirstEntry + i;
        if (jet::u16(raw->data() + jet::indexpage::kFreeSpace) != jet::kPageSize - end)
            faults.push_back(at + "free space figure is wrong");
        for (std::size_t i = 1; i < ip.entries.size(); ++i)
            if (full(ip.entries[i - 1]) >= full(ip.entries[i]))
                faults.push_back(at + "entries out of order");
        if (ip.type == jet::PageType::IndexLeaf) {
            ++shape.leaves;
            shape.entries += ip.entries.size();
            return ip.entries.empty() ? Bytes{} : full(ip.entries.back());
        }
        ++shape.nodes;
        if (ip.entries.empty()) faults.push_back(at + "node without entries");
        if (ip.tailPage != 0) faults.push_back(at + "node with a tail page");
        for (const jet::IndexEntry& e : ip.entries) {
            Bytes last = walk(e.childPage, depth + 1);
            if (last != full(e))
                faults.push_back(at + "entry for child " + std::to_string(e.childPage) +
                                 " is not the child's last entry");
        }
        return ip.entries.empty() ? Bytes{} : full(ip.entries.back());
    }

    void checkChains() {
        for (std::size_t d = 0; d < levels.size(); ++d) {
            const auto& pages = levels[d];
            bool leaves = d + 1 == levels.size();
            for (std::size_t i = 0; i < pages.size(); ++i) {
                jet::IndexPage ip = jet::readIndexPage(db.pages(), pages[i]);
                std::uint32_t wantNext = i + 1 < pages.size() ? pages[i + 1] : 0;
                std::uint32_t wantPrev = i > 0 ? pages[i - 1] : 0;
                std::string at = "page " + std::to_string(pages[i]) + ": ";
                if (leaves) {
                    if (ip.nextPage != wantNext || ip.prevPage != wantPrev)
                        faults.push_back(at + "leaf chain broken");
                } else {
                    // Node pages link only to siblings under the same parent.
                    if ((ip.nextPage != 0 && ip.nextPage != wantNext) ||
                        (ip.prevPage != 0 && ip.prevPage != wantPrev))
                        faults.push_back(at + "node chain broken");
                }
            }
        }
    }
};

}  // namespace

std::vector<std::string> treeFaults(jet::Database& db, std::uint32_t root, std::uint32_t tdefPage,
                                    TreeShape* shape) {
    Walker w{db, tdefPage, {}, {}, {}};
    w.walk(root, 0);
    w.checkChains();
    if (shape) *shape = w.shape;
    return w.faults;
}

TextKeyReport compareTextKeys(jet::Database& db, const std::string& label) {
    TextKeyReport r;
    for (const std::string& name : db.tableNames(true)) {
        jet::Table t = db.table(name);
        const jet::TableDef& def = t.def();
        for (std::size_t li = 0; li < def.indexes.size(); ++li) {
            const jet::RealIndex& real = def.realIndexes[def.indexes[li].realIndex];
            std::vector<const jet::Column*> textColumns;
            bool otherUnsupported = false;
            for (const jet::IndexColumn& ic : real.columns) {
                const jet::Column* c = def.columnByNumber(ic.columnNumber);
                if (c && c->type == jet::ColumnType::Text) textColumns.push_back(c);
                otherUnsupported |= c && c->type == jet::ColumnType::Guid;
            }
            if (textColumns.empty() || otherUnsupported) continue;
            std::string at = label + ", table " + name + ", index " + def.indexes[li].name;
            std::string reason = jet::indexUnmaintainableReason(def, real);
            if (!reason.empty()) {
                r.faults.push_back(at + ": " + reason);
                continue;
            }
            ++r.indexes;
            for (const jet::IndexEntry& e : t.index(li).all()) {
                auto row = t.read(e.row);
                if (!row) {
                    r.faults.push_back(at + ": entry for a missing row " + jet::toString(e.row));
                    continue;
                }
                std::vector<std::u16string> texts;
                for (const jet::Column* c : textColumns) {
                    const jet::Value& v = (*row)[std::size_t(def.columnPosition(c->name))];
                    if (!jet::isNull(v))
                        texts.push_back(jet::utf8ToUtf16(std::get<std::string>(v)));
                }
                Bytes key;
                try {
                    key = jet::indexKeyOf(def, real, *row);
                } catch (const jet::Error& err) {
                    bool uncovered = false;
                    for (const std::u16string& s : texts)
                        uncovered |= jet::gensort::firstUncovered(s) != std::u16string::npos;
                    if (!uncovered || std::string(err.what()).find("U+") == std::string::npos)
                        r.faults.push_back(at + ": " + err.what());
                    ++r.refused;
                    continue;
                }
                ++r.compared;
                if (key != e.key) {
                    r.faults.push_back(at + ", row " + jet::toString(e.row) + ": ours " + hex(key) +
                                       ", in the file " + hex(e.key));
                    continue;
                }
                for (const std::u16string& s : texts) r.chars.insert(s.begin(), s.end());
            }
        }
    }
    return r;
}

}  // namespace idxtest
