#include "jet/store/page_file.h"

#include <algorithm>
#include <cstring>

#include "jet/format/error.h"
#include "jet/store/file_lock.h"
#include "jet/store/journal.h"

namespace jet {

FilePageStore::FilePageStore(const std::string& path, bool writable)
    : path_(path),
      file_(path, writable ? os::OpenMode::ReadWrite : os::OpenMode::ReadOnly),
      writable_(writable) {
    if (!file_.isOpen())
        throw Error("cannot open " + path + ": " + file_.lastError(),
                    file_.missing() ? errnum::kFileNotFound : 0);
    if (!file_.size(size_)) throw Error("cannot read " + path);
}

FilePageStore::~FilePageStore() {
    // The journal stays between commits; the last writer to leave takes it away.
    if (writable_) removeIdleJournal(file_, path_);
}

std::uint32_t FilePageStore::pageCount() const { return std::uint32_t(size_ / kPageSize); }

void FilePageStore::lockForReading() {
    filelock::lockWithin(file_, filelock::kCommitByte, filelock::Mode::Shared, lockWait_);
    // Under the shared commit byte no commit is writing; a journal seen now
    // was left by a writer that died (a writer holding the writer byte, as
    // this store may, has rolled back any such journal).
    if (!writerHeld_ && journalExists(path_)) {
        filelock::unlock(file_, filelock::kCommitByte);
        recoverHotJournal(path_, lockWait_);
        refresh();
        filelock::lockWithin(file_, filelock::kCommitByte, filelock::Mode::Shared, lockWait_);
    }
    // A writer looked when its unit began, and nobody commits meanwhile.
    if (writerHeld_) return;
    try {
        lookForChanges();
    } catch (...) {
        filelock::unlock(file_, filelock::kCommitByte);
        throw;
    }
}

void FilePageStore::lookForChanges() {
    if (size_ < kPageSize) refresh();
    if (size_ < kPageSize) return;  // nothing that could be cached
    std::uint8_t bytes[4];
    if (!file_.read(bytes, sizeof bytes, header::kChangeCounter))
        throw Error("read error in " + path_ + " at page 0");
    const std::uint32_t counter = u32(bytes);
    if (counterKnown_ && counter != counter_) {
        ++changes_;
        refresh();
    }
    counter_ = counter;
    counterKnown_ = true;
}

void FilePageStore::ownCommit(const std::uint8_t* page0) {
    // What this store caches is what it wrote: its own commit is no change.
    counter_ = u32(page0 + header::kChangeCounter);
    counterKnown_ = true;
}

void FilePageStore::read(std::uint32_t page, std::uint8_t* out) {
    if (commitHeld_ || readsHeld_ > 0) return readUnlocked(page, out);
    lockForReading();
    try {
        readUnlocked(page, out);
    } catch (...) {
        filelock::unlock(file_, filelock::kCommitByte);
        throw;
    }
    filelock::unlock(file_, filelock::kCommitByte);
}

void PageStore::readRun(std::uint32_t first, std::uint32_t count, std::uint8_t* out) {
    for (std::uint32_t k = 0; k < count; ++k) read(first + k, out + std::size_t(k) * kPageSize);
}

void FilePageStore::readRun(std::uint32_t first, std::uint32_t count, std::uint8_t* out) {
    // Outside a run of reads every page takes the read lock on its own.
    if (!commitHeld_ && readsHeld_ == 0) return PageStore::readRun(first, count, out);
    readUnlocked(first, out, count);
}

void FilePageStore::beginReads() {
    if (readsHeld_ == 0 && !commitHeld_) lockForReading();
    ++readsHeld_;
}

void FilePageStore::endReads() {
    if (readsHeld_ == 0) return;
    if (--readsHeld_ == 0 && !commitHeld_) filelock::unlock(file_, filelock::kCommitByte);
}

void FilePageStore::readUnlocked(std::uint32_t page, std::uint8_t* out, std::uint32_t count) {
    const std::uint64_t end = std::uint64_t(page) + count;
    if (end > pageCount()) refresh();  // another process may have appended
    if (end > pageCount())
        throwCorrupt(std::max<std::uint32_t>(page, pageCount()), "beyond the end of the file");
    if (!file_.read(out, std::size_t(count) * kPageSize, std::uint64_t(page) * kPageSize))
        throw Error("read error in " + path_ + " at page " + std::to_string(page));
}

void FilePageStore::write(std::uint32_t page, const std::uint8_t* data) {
    if (!writable_) throw Error("the database is open read-only", errnum::kReadOnly);
    if (page > pageCount())
        throw Error("page " + std::to_string(page) + " is beyond the end of the file");
    if (!file_.write(data, kPageSize, std::uint64_t(page) * kPageSize))
        throw Error("write error in " + path_ + " at page " + std::to_string(page));
    if (page == 0) ownCommit(data);
    std::uint64_t end = (std::uint64_t(page) + 1) * kPageSize;
    if (end > size_) size_ = end;
}

void FilePageStore::writeRun(std::uint32_t first, std::uint32_t count, const std::uint8_t* data) {
    if (!writable_) throw Error("the database is open read-only", errnum::kReadOnly);
    if (first > pageCount())
        throw Error("page " + std::to_string(first) + " is beyond the end of the file");
    if (!file_.write(data, std::size_t(count) * kPageSize, std::uint64_t(first) * kPageSize))
        throw Error("write error in " + path_ + " at page " + std::to_string(first));
    if (first == 0 && count > 0) ownCommit(data);
    const std::uint64_t end = (std::uint64_t(first) + count) * kPageSize;
    if (end > size_) size_ = end;
}

void FilePageStore::sync() {
    if (!file_.sync()) throw Error("cannot flush the database file to disk: " + file_.lastError());
}

void FilePageStore::refresh() {
    std::uint64_t bytes = 0;
    if (file_.size(bytes)) size_ = bytes;
}

void FilePageStore::lockWriter() {
    if (writerHeld_) return;
    filelock::lockWithin(file_, filelock::kWriterByte, filelock::Mode::Exclusive, lockWait_);
    writerHeld_ = true;
}

void FilePageStore::unlockWriter() {
    if (!writerHeld_) return;
    filelock::unlock(file_, filelock::kWriterByte);
    writerHeld_ = false;
}

void FilePageStore::lockCommit() {
    if (commitHeld_) return;
    filelock::lockWithin(file_, filelock::kCommitByte, filelock::Mode::Exclusive, lockWait_);
    commitHeld_ = true;
}

void FilePageStore::unlockCommit() {
    if (!commitHeld_) return;
    // A run of reads still under way keeps the byte, shared again.
    if (readsHeld_ > 0)
        filelock::lock(file_, filelock::kCommitByte, filelock::Mode::Shared);
    else
        filelock::unlock(file_, filelock::kCommitByte);
    commitHeld_ = false;
}

void MemoryPageStore::read(std::uint32_t page, std::uint8_t* out) {
    if (page >= pageCount()) throwCorrupt(page, "beyond the end of the file");
    std::memcpy(out, bytes_.data() + std::size_t(page) * kPageSize, kPageSize);
}

void MemoryPageStore::write(std::uint32_t page, const std::uint8_t* data) {
    if (!writable_) throw Error("the database is open read-only", errnum::kReadOnly);
    if (page > pageCount())
        throw Error("page " + std::to_string(page) + " is beyond the end of the file");
    std::size_t need = (std::size_t(page) + 1) * kPageSize;
    if (bytes_.size() < need) bytes_.resize(need);
    std::memcpy(bytes_.data() + std::size_t(page) * kPageSize, data, kPageSize);
}

PageCache::PageCache(std::unique_ptr<PageStore> store, std::size_t capacity)
    : store_(std::move(store)), capacity_(capacity < 8 ? 8 : capacity) {}

void PageCache::code(std::uint32_t n, std::uint8_t* bytes) const {
    if (dbKey_ == 0 || n == 0) return;
    std::uint8_t key[4];
    put32(key, dbKey_ ^ n);
    rc4Xor(key, 4, bytes, kPageSize);
}

std::uint32_t PageCache::pageCount() const {
    std::uint32_t n = store_->pageCount();
    if (!dirty_.empty() && dirty_.rbegin()->first >= n) n = dirty_.rbegin()->first + 1;
    return n;
}

void PageCache::cache(std::uint32_t n, PageRef bytes) {
    if (slots_.size() >= capacity_) {
        slots_.erase(lru_.back());
        lru_.pop_back();
    }
    lru_.push_front(n);
    slots_[n] = Slot{std::move(bytes), lru_.begin()};
}

bool PageCache::forgetIfChanged() {
    const std::uint64_t changes = store_->changes();
    if (changes == seenChanges_) return false;
    seenChanges_ = changes;
    clear();
    return true;
}

PageRef PageCache::page(std::uint32_t n) {
    if (!dirty_.empty()) {
        auto d = dirty_.find(n);
        if (d != dirty_.end()) return d->second;
    }
    // Outside a run of reads nothing cached is trusted before a look.
    if (!store_->verified()) {
        ReadSection look(*store_);
        return page(n);
    }
    forgetIfChanged();
    auto it = slots_.find(n);
    if (it != slots_.end()) {
        lru_.splice(lru_.begin(), lru_, it->second.pos);
        return it->second.bytes;
    }
    return readFromStore(n);
}

namespace {
// Pages read with a miss that follows no other.
constexpr std::uint32_t kFirstReadAhead = 8;
}  // namespace

PageRef PageCache::readFromStore(std::uint32_t n) {
    std::uint32_t count = 1;
    if (store_->readsAhead()) {
        const std::uint32_t longest = std::uint32_t(
            std::min<std::size_t>(store_->longestRun(), std::max<std::size_t>(1, capacity_ / 8)));
        const bool onward = aheadWindow_ > 0 && n >= aheadNext_ && n - aheadNext_ < aheadWindow_;
        aheadWindow_ = std::min(onward ? aheadWindow_ * 2 : kFirstReadAhead, longest);
        const std::uint32_t stored = store_->pageCount();
        while (count < aheadWindow_ && std::uint64_t(n) + count < stored &&
               !slots_.count(n + count) && !dirty_.count(n + count))
            ++count;
        aheadNext_ = n + count;
    }
    // One lock for the run, also inside a unit, which reads page by page otherwise.
    ReadSection reading(*store_);
    if (count == 1) {
        auto bytes = std::make_shared<PageBytes>(kPageSize);
        store_->read(n, bytes->data());
        code(n, bytes->data());
        cache(n, bytes);
        return bytes;
    }
    if (runBuffer_.size() < std::size_t(count) * kPageSize)
        runBuffer_.resize(std::size_t(count) * kPageSize);
    store_->readRun(n, count, runBuffer_.data());
    std::shared_ptr<PageBytes> first;
    for (std::uint32_t k = count; k-- > 0;) {
        const auto* from = runBuffer_.data() + std::size_t(k) * kPageSize;
        auto bytes = std::make_shared<PageBytes>(from, from + kPageSize);
        code(n + k, bytes->data());
        cache(n + k, bytes);
        if (k == 0) first = bytes;
    }
    return first;
}

static const char* pageTypeName(PageType t) {
    switch (t) {
        case PageType::Header:
            return "the header page";
        case PageType::Data:
            return "a data page";
        case PageType::TableDef:
            return "a table definition page";
        case PageType::IndexNode:
            return "an index node page";
        case PageType::IndexLeaf:
            return "an index leaf page";
        case PageType::UsageMap:
            return "a usage map page";
    }
    return "a page";
}

PageRef PageCache::page(std::uint32_t n, PageType expected) {
    PageRef p = page(n);
    if ((*p)[0] != static_cast<std::uint8_t>(expected))
        throwCorrupt(n, std::string("expected ") + pageTypeName(expected) + ", found type " +
                            std::to_string((*p)[0]));
    return p;
}

void PageCache::put(std::uint32_t n, const PageBytes& bytes) {
    if (bytes.size() != kPageSize) throw Error("page " + std::to_string(n) + " has the wrong size");
    if (inUnit_) {
        if (n > pageCount())
            throw Error("page " + std::to_string(n) + " is beyond the end of the file");
        invalidate(n);
        dirty_[n] = std::make_shared<const PageBytes>(bytes);
        return;
    }
    PageBytes out = encoded(n, bytes);
    store_->write(n, out.data());
    invalidate(n);
    cache(n, std::make_shared<PageBytes>(bytes));
}

void PageCache::put(std::uint32_t n, PageBytes&& bytes) {
    if (!inUnit_ || bytes.size() != kPageSize || n > pageCount())
        return put(n, static_cast<const PageBytes&>(bytes));  // written through, or refused
    invalidate(n);
    dirty_[n] = std::make_shared<const PageBytes>(std::move(bytes));
}

PageBytes PageCache::encoded(std::uint32_t n, const PageBytes& bytes) const {
    PageBytes out = bytes;
    code(n, out.data());
    return out;
}

void PageCache::invalidate(std::uint32_t n) {
    auto it = slots_.find(n);
    if (it == slots_.end()) return;
    lru_.erase(it->second.pos);
    slots_.erase(it);
}

void PageCache::clear() {
    slots_.clear();
    lru_.clear();
}

void PageCache::beginUnit() { inUnit_ = true; }

std::vector<std::pair<std::uint32_t, PageRef>> PageCache::dirtyPages() const {
    return {dirty_.begin(), dirty_.end()};
}

void PageCache::endUnit(bool keep) {
    inUnit_ = false;
    auto pages = std::move(dirty_);
    dirty_.clear();
    if (!keep) return;
    for (auto& [n, bytes] : pages) cache(n, std::move(bytes));
}

PageStream::PageStream(PageCache& cache, std::vector<std::uint32_t> pages)
    : cache_(cache), pages_(std::move(pages)), keep_(pages_.size() <= cache.capacity_ / 2) {
    cache_.forgetIfChanged();
}

namespace {
// Pages of other objects a run reads past and drops: a table's pages lie
// between the index pages written with its rows, and a round trip to a file
// server costs more than a few pages more in it.
constexpr std::uint32_t kBridgedPages = 4;
}  // namespace

void PageStream::fill() {
    runStart_ = runEnd_ = pos_;
    PageStore& store = *cache_.store_;
    const std::uint32_t stored = store.pageCount();
    const std::size_t longest = std::max<std::uint32_t>(1, store.longestRun());
    const std::uint32_t first = pages_[pos_];
    std::size_t end = pos_;
    while (end < pages_.size()) {
        const std::uint32_t n = pages_[end];
        if (end > pos_ && (n <= pages_[end - 1] || n - pages_[end - 1] > kBridgedPages + 1 ||
                           n - first >= longest))
            break;
        if (n >= stored || cache_.slots_.count(n) || cache_.dirty_.count(n)) break;
        ++end;
    }
    // A page the unit holds (or one beyond the file) goes through the cache
    // as before.
    if (end == pos_) return copyCached();
    const std::size_t len = end - pos_;
    const std::uint32_t span = pages_[end - 1] - first + 1;
    if (chunk_.size() < std::size_t(span) * kPageSize) chunk_.resize(longest * kPageSize);
    store.readRun(first, span, chunk_.data());
    if (run_.size() < len) run_.resize(longest);
    for (std::size_t k = 0; k < len; ++k) {
        const std::uint32_t n = pages_[pos_ + k];
        auto& b = run_[k];
        if (!b || b.use_count() != 1) b = std::make_shared<PageBytes>(kPageSize);
        std::memcpy(b->data(), chunk_.data() + std::size_t(n - first) * kPageSize, kPageSize);
        cache_.code(n, b->data());
        if (keep_) cache_.cache(n, b);
    }
    runEnd_ = end;
}

void PageStream::copyCached() {
    // A table kept in the cache is larger than the processor's caches: its
    // pages are copied one run at a time into buffers the scan reuses, as
    // pages read from the file are, rather than decoded where they lie.
    const std::size_t longest = std::max<std::uint32_t>(1, cache_.store_->longestRun());
    if (run_.size() < longest) run_.resize(longest);
    std::size_t end = pos_;
    while (end < pages_.size() && end - pos_ < longest && !cache_.dirty_.count(pages_[end])) {
        auto it = cache_.slots_.find(pages_[end]);
        if (it == cache_.slots_.end()) break;
        auto& b = run_[end - pos_];
        if (!b || b.use_count() != 1) b = std::make_shared<PageBytes>(kPageSize);
        std::memcpy(b->data(), it->second.bytes->data(), kPageSize);
        cache_.lru_.splice(cache_.lru_.begin(), cache_.lru_, it->second.pos);
        ++end;
    }
    runEnd_ = end;
}

PageRef PageStream::next(std::uint32_t& n) {
    if (pos_ >= pages_.size()) return nullptr;
    if (pos_ >= runEnd_) fill();
    n = pages_[pos_];
    if (pos_ >= runEnd_) {
        ++pos_;
        return cache_.page(n);
    }
    return run_[pos_++ - runStart_];
}

}  // namespace jet
