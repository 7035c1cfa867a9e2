// Index B-trees as Jet keeps them: leaves chained by prev/next, node pages
// whose entries repeat the last entry of each child, and a root page whose
// number never changes (a full root moves its entries to a new child and
// becomes a node over it), so the TDEF never needs rewriting.
#include "jet/write/index_writer.h"

#include <algorithm>
#include <unordered_map>

#include "jet/format/error.h"
#include "jet/read/database.h"
#include "jet/read/index_key.h"
#include "jet/write/index_page_writer.h"
#include "jet/write/usage_map_writer.h"

namespace jet {

namespace {

using idxpage::Entry;
using idxpage::Page;
using Bytes = std::vector<std::uint8_t>;

// Index pages as the trees last read or wrote them, kept from one change to
// the next: rows inserted in key order meet the same leaf and the same nodes
// hundreds of times, and decoding a page cost more than the rest of an
// insert. A page kept is used only while the page cache still hands out the
// very bytes it came from (a PageRef's bytes never change), so one written by
// anything else, dropped from the cache or rolled back is read afresh.
class KeptPages {
  public:
    // The page kept for bytes, or nullptr.
    const Page* find(const PageCache& cache, const PageRef& bytes, std::uint32_t n) const {
        if (&cache != cache_) return nullptr;
        auto it = pages_.find(n);
        return it == pages_.end() || it->second.from != bytes ? nullptr : &it->second;
    }
    // The page kept for bytes moved to out (its slot stays for the next keep()).
    bool take(const PageCache& cache, const PageRef& bytes, std::uint32_t n, Page& out) {
        if (!find(cache, bytes, n)) return false;
        out = std::move(pages_[n]);
        return true;
    }
    // p must be what Tree::load() makes of p.from.
    void keep(const PageCache& cache, Page&& p) {
        if (&cache != cache_ || (pages_.size() >= kCapacity && !pages_.count(p.number)))
            pages_.clear();
        cache_ = &cache;
        pages_[p.number] = std::move(p);
    }

  private:
    static constexpr std::size_t kCapacity = 64;
    const PageCache* cache_ = nullptr;
    std::unordered_map<std::uint32_t, Page> pages_;
};

KeptPages& kept() {
    static thread_local KeptPages pages;
    return pages;
}

class Tree {
  public:
    Tree(Database& db, std::uint32_t tdefPage, std::uint32_t usageMap, std::uint32_t root)
        : db_(db), tdef_(tdefPage), usage_(usageMap), root_(root) {}

    void insert(const Bytes& e) {
        Path path;
        Page leaf = descend(e, path);
        auto it = std::lower_bound(
            leaf.entries.begin(), leaf.entries.end(), e,
            [](const Entry& a, const Bytes& b) { return idxpage::compareBytes(a.bytes, b) < 0; });
        if (it != leaf.entries.end() && it->bytes == e)
            throw Error("the index already holds this entry for row " +
                        toString(idxpage::entryRow(*it)));
        std::size_t pos = std::size_t(it - leaf.entries.begin());
        leaf.entries.insert(it, Entry{e, 0});
        leaf.same = std::min(leaf.same, pos);
        bool lastChanged = pos + 1 == leaf.entries.size();
        settle(path, std::move(leaf), pos, lastChanged);
    }

    void remove(const Bytes& e) {
        Path path;
        Page leaf = descend(e, path);
        auto it = std::lower_bound(
            leaf.entries.begin(), leaf.entries.end(), e,
            [](const Entry& a, const Bytes& b) { return idxpage::compareBytes(a.bytes, b) < 0; });
        if (it == leaf.entries.end() || !(it->bytes == e))
            throw Error("the index holds no such entry", errnum::kCorrupt);
        std::size_t pos = std::size_t(it - leaf.entries.begin());
        leaf.entries.erase(it);
        leaf.same = std::min(leaf.same, pos);
        bool lastChanged = pos == leaf.entries.size();
        settle(path, std::move(leaf), pos, lastChanged);
    }

    bool holds(const Bytes& key, RowId except) {
        bool found = false;
        rowsWith(key, [&](RowId row) {
            found = row != except;
            return !found;
        });
        return found;
    }

    // Visits the rows whose entry holds key, in index order, until visit
    // answers false.
    template <class Visit>
    void rowsWith(const Bytes& key, Visit&& visit) {
        Bytes target = idxpage::entryBytes(key, RowId{0, 0});
        Path path;
        Page page = descend(target, path);
        std::size_t i = 0;
        while (i < page.entries.size() && idxpage::compareBytes(page.entries[i].bytes, target) < 0)
            ++i;
        for (std::size_t hops = 0;; ++hops) {
            for (; i < page.entries.size(); ++i) {
                const Entry& e = page.entries[i];
                if (e.keyLength() != key.size() ||
                    !std::equal(key.begin(), key.end(), e.bytes.begin()) ||
                    !visit(idxpage::entryRow(e)))
                    return giveBack(std::move(page));
            }
            const std::uint32_t next = page.next;
            giveBack(std::move(page));
            if (next == 0 || hops > db_.pages().pageCount()) return;
            page = load(next);
            i = 0;
        }
    }

  private:
    struct Step {
        std::uint32_t number = 0;
        bool loaded = false;  // nodes are read whole only when they change
        Page page;
        std::size_t idx = 0;  // entry naming the child on the path
        bool dirty = false;
        std::size_t insertedAt = 0;  // where a split child's new sibling was entered
    };
    using Path = std::vector<Step>;

    Page load(std::uint32_t n) {
        PageRef bytes = db_.pages().page(n);
        Page p;
        if (kept().take(db_.pages(), bytes, n, p)) return p;
        p = idxpage::parse(*bytes, n);
        p.readFrom(std::move(bytes));
        if (!p.leaf && p.tail != 0) {
            // Access may leave the last child out of the entries and name it
            // only as the tail; make it an ordinary entry so the page can be
            // edited like any other (a layout Jet reads as well).
            bool listed = !p.entries.empty() && p.entries.back().child == p.tail;
            if (!listed) {
                Bytes last = lastEntryOf(p.tail, 0);
                if (!last.empty()) p.entries.push_back(Entry{std::move(last), p.tail});
            }
            p.tail = 0;
            p.reshaped = true;
        }
        return p;
    }

    Bytes lastEntryOf(std::uint32_t n, int depth) {
        if (depth > 32) throwCorrupt(n, "index tree too deep (cycle?)");
        Page p = idxpage::load(db_.pages(), n);
        if (p.leaf || p.tail == 0) {
            if (p.entries.empty()) return {};
            if (p.leaf) return p.entries.back().bytes.toVector();
            return lastEntryOf(p.entries.back().child, depth + 1);
        }
        return lastEntryOf(p.tail, depth + 1);
    }

    // Writes p and keeps it as the bytes now read back.
    void store(Page&& p) {
        db_.pages().put(p.number, idxpage::encode(p));
        p.readFrom(db_.pages().page(p.number));
        p.reshaped = false;
        kept().keep(db_.pages(), std::move(p));
    }

    // A page read and left as it was.
    void giveBack(Page&& p) {
        if (p.from) kept().keep(db_.pages(), std::move(p));
    }

    std::uint32_t allocate(bool leaf) {
        std::uint32_t n = db_.allocatePage(leaf ? PageType::IndexLeaf : PageType::IndexNode);
        setUsageMapBit(db_, usage_, n, true);
        return n;
    }

    void release(std::uint32_t n) {
        setUsageMapBit(db_, usage_, n, false);
        Page blank;
        blank.number = n;
        blank.tdefPage = tdef_;
        store(std::move(blank));
    }

    Page descend(const Bytes& target, Path& path) {
        std::uint32_t n = root_;
        for (int depth = 0;; ++depth) {
            if (depth > 32) throwCorrupt(n, "index tree too deep (cycle?)");
            PageRef raw = db_.pages().page(n);
            if ((*raw)[0] != std::uint8_t(PageType::IndexNode)) break;
            Step step;
            step.number = n;
            std::uint32_t child = 0;
            const Page* known = kept().find(db_.pages(), raw, n);
            if (known && !known->entries.empty()) {
                // Its entries as ensure() numbers them: the first not below
                // target, else the last.
                auto it = std::lower_bound(known->entries.begin(), known->entries.end() - 1, target,
                                           [](const Entry& a, const Bytes& b) {
                                               return idxpage::compareBytes(a.bytes, b) < 0;
                                           });
                step.idx = std::size_t(it - known->entries.begin());
                child = it->child;
            } else {
                child = idxpage::chooseChild(*raw, n, target, step.idx);
            }
            if (child == 0) throwCorrupt(n, "index node entry without a child page");
            path.push_back(std::move(step));
            n = child;
        }
        return load(n);
    }

    Step& ensure(Step& s) {
        if (!s.loaded) {
            s.page = load(s.number);
            s.loaded = true;
            if (s.idx >= s.page.entries.size())
                throwCorrupt(s.number, "index node lost the entry of its child");
        }
        return s;
    }

    void relink(std::uint32_t n, bool setPrev, std::uint32_t value) {
        if (n == 0) return;
        Page p = load(n);
        (setPrev ? p.prev : p.next) = value;
        store(std::move(p));
    }

    // Where an overflowing page is cut: appends at either end of the level
    // leave full pages behind (keys of autonumbers grow at one end), other
    // inserts split the bytes in half.
    static std::size_t splitPoint(const Page& p, std::size_t hint) {
        std::size_t n = p.entries.size();
        auto fitsRange = [&](std::size_t from, std::size_t to) {
            Page part;
            part.leaf = p.leaf;
            part.entries.assign(p.entries.begin() + std::ptrdiff_t(from),
                                p.entries.begin() + std::ptrdiff_t(to));
            return idxpage::fits(part);
        };
        if (p.next == 0 && hint + 2 >= n && fitsRange(0, n - 1)) return n - 1;
        if (p.prev == 0 && hint == 0 && fitsRange(1, n)) return 1;
        std::size_t total = 0;
        for (const Entry& e : p.entries) total += e.bytes.size();
        std::size_t acc = 0, k = 0;
        while (k + 1 < n && acc + p.entries[k].bytes.size() <= total / 2)
            acc += p.entries[k++].bytes.size();
        k = std::max<std::size_t>(k, 1);
        if (!fitsRange(0, k) || !fitsRange(k, n))
            throw Error("index entries too long to split page " + std::to_string(p.number));
        return k;
    }

    // Writes cur and carries its consequences up the path: a new last entry
    // renews the parent's entry, an empty page leaves its level, a full one
    // splits (the root by moving its content one level down).
    // lastChanged: cur's last entry is not the one its parent repeats.
    void settle(Path& path, Page cur, std::size_t hint, bool lastChanged) {
        for (;;) {
            bool isRoot = cur.number == root_;
            if (cur.entries.empty()) {
                if (isRoot) {
                    cur.leaf = true;
                    cur.prev = cur.next = cur.tail = 0;
                    store(std::move(cur));
                    return;
                }
                relink(cur.prev, false, cur.next);
                relink(cur.next, true, cur.prev);
                release(cur.number);
                if (path.empty()) throwCorrupt(cur.number, "index page outside the tree");
                Step up = std::move(ensure(path.back()));
                path.pop_back();
                up.page.entries.erase(up.page.entries.begin() + std::ptrdiff_t(up.idx));
                up.page.same = std::min(up.page.same, up.idx);
                hint = up.idx;
                lastChanged = up.idx == up.page.entries.size();
                cur = std::move(up.page);
                continue;
            }
            if (idxpage::fits(cur)) {
                const bool top = isRoot || path.empty();
                idxpage::EntryBytes last;
                if (!top) last = cur.entries.back().bytes;
                store(std::move(cur));
                if (top) return;
                if (!lastChanged && !path.back().dirty) return;  // the parent stays as it is
                Step up = std::move(ensure(path.back()));
                path.pop_back();
                Entry& pe = up.page.entries[up.idx];
                bool renew = !(pe.bytes == last);
                if (!renew && !up.dirty && !up.page.reshaped) return giveBack(std::move(up.page));
                if (renew) {
                    pe.bytes = std::move(last);
                    up.page.same = std::min(up.page.same, up.idx);
                }
                // A tail made an entry may also differ from what the grandparent holds.
                lastChanged = (renew && up.idx + 1 == up.page.entries.size()) || up.page.reshaped;
                hint = up.dirty ? up.insertedAt : up.idx;
                cur = std::move(up.page);
                continue;
            }
            if (isRoot) {
                Page child = cur;
                child.number = allocate(cur.leaf);
                child.prev = child.next = child.tail = 0;
                Page root;
                root.number = root_;
                root.leaf = false;
                root.tdefPage = tdef_;
                root.entries.push_back(Entry{child.entries.back().bytes, child.number});
                Step top;
                top.number = root_;
                top.loaded = true;
                top.page = std::move(root);
                top.dirty = true;
                path.push_back(std::move(top));
                cur = std::move(child);
            }
            std::size_t k = splitPoint(cur, hint);
            Page left;
            left.number = allocate(cur.leaf);
            left.leaf = cur.leaf;
            left.tdefPage = tdef_;
            left.entries.assign(std::make_move_iterator(cur.entries.begin()),
                                std::make_move_iterator(cur.entries.begin() + std::ptrdiff_t(k)));
            cur.entries.erase(cur.entries.begin(), cur.entries.begin() + std::ptrdiff_t(k));
            cur.same = 0;
            left.prev = cur.prev;
            left.next = cur.number;
            relink(cur.prev, false, left.number);
            cur.prev = left.number;
            if (!cur.leaf) {
                // Node pages are chained only under one parent; leaves are
                // chained from the first to the last.
                Page a = load(left.entries.back().child);
                Page b = load(cur.entries.front().child);
                if (!a.leaf && a.next == b.number) {
                    a.next = 0;
                    b.prev = 0;
                    store(std::move(a));
                    store(std::move(b));
                } else {
                    giveBack(std::move(a));
                    giveBack(std::move(b));
                }
            }
            Entry named{left.entries.back().bytes, left.number};
            store(std::move(left));
            Step& up = ensure(path.back());
            up.page.entries.insert(up.page.entries.begin() + std::ptrdiff_t(up.idx),
                                   std::move(named));
            up.page.same = std::min(up.page.same, up.idx);
            up.insertedAt = up.idx;
            ++up.idx;
            up.dirty = true;
            // cur now fits; the next round stores it and moves up.
        }
    }

    Database& db_;
    std::uint32_t tdef_, usage_, root_;
};

Tree treeOf(Database& db, const TableDef& def, std::size_t realIndex, bool writing = true) {
    if (writing && !db.inTransaction()) throw Error("index changes need a unit of work");
    if (realIndex >= def.realIndexes.size()) throw Error("no such index");
    const RealIndex& real = def.realIndexes[realIndex];
    if (real.rootPage == 0)
        throw Error("index " + indexName(def, real) + " of table " + def.name +
                    " has no root page");
    return Tree(db, def.page, real.usedPages, real.rootPage);
}

}  // namespace

bool indexHoldsKey(Database& db, const TableDef& def, std::size_t realIndex,
                   const std::vector<std::uint8_t>& key, RowId except) {
    return treeOf(db, def, realIndex, false).holds(key, except);
}

std::vector<RowId> indexRowsWithKey(Database& db, const TableDef& def, std::size_t realIndex,
                                    const std::vector<std::uint8_t>& key) {
    std::vector<RowId> out;
    treeOf(db, def, realIndex, false).rowsWith(key, [&](RowId row) {
        out.push_back(row);
        return true;
    });
    return out;
}

void indexInsert(Database& db, const TableDef& def, std::size_t realIndex,
                 const std::vector<std::uint8_t>& key, RowId row) {
    Tree tree = treeOf(db, def, realIndex);
    // A split must leave at least two node entries on a page; refused
    // before anything is written.
    if (key.size() + 8 > idxpage::kEntryRoom / 3)
        throw Error("the index key of table " + def.name + " is too long (" +
                    std::to_string(key.size()) + " bytes)");
    tree.insert(idxpage::entryBytes(key, row));
}

void indexRemove(Database& db, const TableDef& def, std::size_t realIndex,
                 const std::vector<std::uint8_t>& key, RowId row) {
    treeOf(db, def, realIndex).remove(idxpage::entryBytes(key, row));
}

std::uint32_t indexBuild(Database& db, std::uint32_t tdefPage, std::uint32_t usageMapPointer,
                         const std::vector<std::pair<std::vector<std::uint8_t>, RowId>>& entries) {
    if (!db.inTransaction()) throw Error("index changes need a unit of work");
    // Pack each level full, left to right; every page's parent entry is
    // its last entry. Pages are numbered level by level before any is
    // written, so the links can be set.
    std::vector<Entry> level;
    level.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        level.push_back(Entry{idxpage::entryBytes(entries[i].first, entries[i].second), 0});
        if (i > 0 && idxpage::compareBytes(level[i - 1].bytes, level[i].bytes) >= 0)
            throw Error("index entries to build are not sorted and unique");
    }
    std::vector<std::vector<Page>> levels;
    bool leaf = true;
    for (;;) {
        std::vector<Page> pages;
        Page cur;
        cur.leaf = leaf;
        cur.tdefPage = tdefPage;
        std::size_t total = 0;
        std::size_t trailer = leaf ? 0 : 4;
        for (Entry& e : level) {
            if (!cur.entries.empty()) {
                std::size_t prefix = idxpage::sharedPrefix(cur.entries.front(), e);
                std::size_t size = total + e.bytes.size() + trailer - prefix * cur.entries.size();
                if (size > idxpage::kEntryRoom) {
                    pages.push_back(std::move(cur));
                    cur = Page{};
                    cur.leaf = leaf;
                    cur.tdefPage = tdefPage;
                    total = 0;
                }
            }
            total += e.bytes.size() + trailer;
            cur.entries.push_back(std::move(e));
        }
        if (!cur.entries.empty() || pages.empty()) pages.push_back(std::move(cur));
        for (Page& p : pages)
            p.number = db.allocatePage(leaf ? PageType::IndexLeaf : PageType::IndexNode);
        level.clear();
        for (Page& p : pages)
            if (!p.entries.empty()) level.push_back(Entry{p.entries.back().bytes, p.number});
        levels.push_back(std::move(pages));
        if (levels.back().size() == 1) break;
        leaf = false;
    }
    // Leaves are chained end to end; node pages only within their parent.
    for (std::size_t l = 0; l < levels.size(); ++l) {
        std::vector<Page>& pages = levels[l];
        for (std::size_t i = 0; i + 1 < pages.size(); ++i) {
            bool sameParent = true;
            if (l > 0) {
                for (const Page& parent : levels[l + 1]) {
                    bool hasA = false, hasB = false;
                    for (const Entry& e : parent.entries) {
                        hasA |= e.child == pages[i].number;
                        hasB |= e.child == pages[i + 1].number;
                    }
                    if (hasA || hasB) {
                        sameParent = hasA && hasB;
                        break;
                    }
                }
            }
            if (sameParent) {
                pages[i].next = pages[i + 1].number;
                pages[i + 1].prev = pages[i].number;
            }
        }
        for (const Page& p : pages) {
            setUsageMapBit(db, usageMapPointer, p.number, true);
            db.pages().put(p.number, idxpage::encode(p));
        }
    }
    return levels.back().front().number;
}

}  // namespace jet
