// Units of work. The pages a unit writes stay in the page cache (dirty) and
// are seen by this Database's readers; nothing reaches the file before the
// outermost commit. Commit: take the commit byte exclusively (readers of
// other processes wait), write the original bytes of every page to be
// overwritten and the original length into the journal and sync it, write
// the pages, sync the file, zero the journal's header (the commit point),
// release. A crash before the zeroing leaves a hot journal that the next open
// (or the next read of any process, or the next begin) rolls back.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "jet/read/database.h"
#include "jet/read/usage_map.h"
#include "jet/store/journal.h"

namespace jet {

namespace {

void commitToFile(PageCache& pages, FilePageStore& store, JournalWriter& journal,
                  const std::vector<std::pair<std::uint32_t, PageRef>>& dirty) {
    store.lockCommit();
    try {
        const std::uint64_t originalSize = store.sizeBytes();
        const std::uint32_t originalPages = store.pageCount();
        try {
            for (const auto& [n, bytes] : dirty)
                if (n < originalPages) store.read(n, journal.add(n));
            journal.write(originalSize);
            // Consecutive pages (the appended ones above all) in one call.
            constexpr std::size_t kMaxRun = 256;
            std::vector<std::uint8_t> run;
            run.reserve(std::min(dirty.size(), kMaxRun) * kPageSize);
            std::uint32_t first = 0;
            auto flush = [&] {
                store.writeRun(first, std::uint32_t(run.size() / kPageSize), run.data());
                run.clear();
                crashPoint("page");
            };
            for (const auto& [n, bytes] : dirty) {
                const std::size_t have = run.size() / kPageSize;
                if (have && (n != first + have || have == kMaxRun)) flush();
                if (run.empty()) first = n;
                PageBytes out = pages.encoded(n, *bytes);
                run.insert(run.end(), out.begin(), out.end());
            }
            if (!run.empty()) flush();
            store.sync();
            crashPoint("file-synced");
            journal.commit();
        } catch (...) {
            // Still holding both locks: put the file back at once. Should
            // even that fail, the journal stays for the next open.
            journal.close();
            try {
                rollbackJournal(store.file(), store.path());
            } catch (...) {
            }
            store.refresh();
            throw;
        }
    } catch (...) {
        store.unlockCommit();
        throw;
    }
    store.unlockCommit();
}

// Other Database objects, of this process or another, keep what they cached
// while the header page's change counter stays as it is (store/page_file.h):
// the unit raises it, journaled with its other pages.
void countCommit(PageCache& pages) {
    PageBytes header = *pages.page(0);
    put32(header.data() + header::kChangeCounter, u32(header.data() + header::kChangeCounter) + 1);
    pages.put(0, header);
}

// Jet's global map on page 1 lists the pages it may hand out again, pages
// past the end of the file among them; a page this engine appends must
// leave that list, or Jet would later give it to something else.
void claimInGlobalMap(PageCache& pages, std::uint32_t n) {
    if (pages.pageCount() <= kGlobalUsageMapPage) return;
    PageBytes page = *pages.page(kGlobalUsageMapPage);
    if (page[0] != std::uint8_t(PageType::Data) || u16(page.data() + datapage::kRowCount) == 0)
        return;
    const std::uint16_t first = u16(page.data() + datapage::kRowTable);
    if (first & (datapage::kDeletedFlag | datapage::kOverflowFlag)) return;
    const std::size_t at = first & datapage::kOffsetMask;
    // The map is row 0, which runs to the end of the page: inline, or (in
    // larger files) a list of usage-map pages as in any reference map.
    if (at < datapage::kRowTable + 2 || at + 5 > kPageSize) return;
    if (page[at] == 1) {
        const std::size_t slot = n / kPagesPerMapPage;
        if (slot >= (kPageSize - at - 1) / 4) return;
        const std::uint32_t mapPage = u32(page.data() + at + 1 + 4 * slot);
        if (mapPage == 0 || mapPage >= pages.pageCount()) return;
        PageBytes map = *pages.page(mapPage);
        if (map[0] != std::uint8_t(PageType::UsageMap)) return;
        const std::size_t bit = n % kPagesPerMapPage;
        std::uint8_t& byte = map[4 + bit / 8];
        if (!(byte & (1u << (bit % 8)))) return;
        byte = std::uint8_t(byte & ~(1u << (bit % 8)));
        pages.put(mapPage, map);
        return;
    }
    if (page[at] != 0) return;
    const std::uint32_t start = u32(page.data() + at + 1);
    const std::size_t bits = (kPageSize - at - 5) * 8;
    if (n < start || n - start >= bits) return;
    const std::size_t bit = n - start;
    std::uint8_t& byte = page[at + 5 + bit / 8];
    if (!(byte & (1u << (bit % 8)))) return;
    byte = std::uint8_t(byte & ~(1u << (bit % 8)));
    pages.put(kGlobalUsageMapPage, page);
}

}  // namespace

bool Database::writable() const { return pages_->store().writable(); }

void Database::begin() {
    if (!writable())
        throw Error("Cannot update. Database or object is read-only.", errnum::kReadOnly);
    if (txDepth_ > 0) {
        ++txDepth_;
        return;
    }
    if (auto* file = dynamic_cast<FilePageStore*>(&pages_->store())) {
        file->lockWriter();
        try {
            // Open for the whole unit: no other writer makes, removes or
            // writes it meanwhile.
            auto journal = std::make_shared<JournalWriter>(file->path());
            tx_ = journal;
            // A writer that died in its commit may have left a hot journal.
            if (journal->there()) {
                journal->close();
                file->lockCommit();
                try {
                    rollbackJournal(file->file(), file->path());
                } catch (...) {
                    file->unlockCommit();
                    throw;
                }
                file->unlockCommit();
            }
            // A trailing partial page would be overwritten by the first page
            // appended, and the journal could not bring its bytes back.
            file->refresh();
            if (file->sizeBytes() % kPageSize != 0)
                throw Error(
                    "cannot write " + file->path() + ": its length is not a whole number of pages",
                    errnum::kCorrupt);
            // Another writer may have committed since this Database last read.
            file->lookForChanges();
        } catch (...) {
            tx_.reset();
            file->unlockWriter();
            throw;
        }
        forgetIfChanged();
    } else {
        reload();
    }
    pages_->beginUnit();
    txDepth_ = 1;
}

void Database::commit() {
    if (txDepth_ == 0) return;
    if (--txDepth_ > 0) return;
    auto* file = dynamic_cast<FilePageStore*>(&pages_->store());
    try {
        if (file && pages_->hasDirtyPages()) countCommit(*pages_);
        const auto dirty = pages_->dirtyPages();
        if (!dirty.empty()) {
            if (file) {
                commitToFile(*pages_, *file, *std::static_pointer_cast<JournalWriter>(tx_), dirty);
            } else {
                for (const auto& [n, bytes] : dirty) {
                    PageBytes out = pages_->encoded(n, *bytes);
                    pages_->store().write(n, out.data());
                }
                pages_->store().sync();
            }
        }
    } catch (...) {
        tx_.reset();
        pages_->endUnit(false);
        reload();
        if (file) file->unlockWriter();
        throw;
    }
    tx_.reset();
    pages_->endUnit(true);
    if (file) file->unlockWriter();
}

void Database::rollback() {
    if (txDepth_ == 0) return;
    txDepth_ = 0;
    tx_.reset();
    pages_->endUnit(false);
    reload();
    if (auto* file = dynamic_cast<FilePageStore*>(&pages_->store())) file->unlockWriter();
}

void Database::setTableCounts(std::uint32_t tdefPage, std::uint32_t rows,
                              std::uint32_t autoNumber) {
    auto it = defs_.find(tdefPage);
    if (it == defs_.end()) return;
    if (it->second->raw.size() < tdef::kAutoNumber + 4) return forgetTableDef(tdefPage);
    // Changed in place when nobody else holds it.
    if (it->second.use_count() > 1) it->second = std::make_shared<TableDef>(*it->second);
    TableDef& def = *it->second;
    def.rowCount = rows;
    def.nextAutoNumber = autoNumber;
    put32(def.raw.data() + tdef::kRowCount, rows);
    put32(def.raw.data() + tdef::kAutoNumber, autoNumber);
}

std::uint32_t Database::allocatePage(PageType type) {
    if (txDepth_ == 0) throw Error("allocatePage outside a unit of work");
    std::uint32_t n = pages_->pageCount();
    PageBytes bytes(kPageSize, 0);
    bytes[0] = std::uint8_t(type);
    bytes[1] = 0x01;
    pages_->put(n, bytes);
    claimInGlobalMap(*pages_, n);
    return n;
}

}  // namespace jet
