#pragma once
// Page access: a file (or a memory image) seen as 4096-byte pages, with a
// small cache of decoded pages. A page handed out stays valid while the
// caller holds its PageRef, even when the cache drops it.
//
// NOTES ON THE LOCKS OF A FILE
//
// Processes (and Database objects of one process) that share a file agree
// through two byte locks of file_lock.h and the rollback journal of
// journal.h. A FilePageStore is in one of these states:
//
//   NONE     no lock. Between reads; nothing cached may be trusted to be
//            current, but a page read is never half written.
//   READING  the commit byte shared: while one page is read, or for a run of
//            reads (beginReads .. endReads). Any number of readers; no
//            commit writes meanwhile. Taking it, the store first rolls back
//            a hot journal (one left by a writer that died in its commit).
//   UNIT     the writer byte exclusive, for the whole unit of work (begin ..
//            commit or rollback): one writer at a time. Its changed pages
//            stay in the PageCache, unseen by anyone else; readers go on
//            reading the file as it was. Reads inside a unit take the commit
//            byte shared as in READING.
//   COMMIT   the writer byte and the commit byte exclusive: the journal is
//            written and synced, then the pages, then the file synced, and
//            zeroing the journal's header is the commit point. No reader reads
//            meanwhile, so a reader sees the file wholly before or wholly
//            after the unit. A run of reads under way in the same store keeps
//            the commit byte, shared again, when the commit ends.
//
// Every lock is waited for a bounded time (setLockWait, 10 s unless told):
// a writer whose unit never ends, or a reader stuck in a long run of reads,
// holds the others back only that long. Who gives up throws Jet's "Could
// not update; currently locked." and stays in the state it was in: a read
// reads nothing, a unit does not begin, a commit writes no journal and no
// page (Database::commit then drops the unit and releases the writer byte).
//
// Invariants: a store holds the commit byte exclusively only while it holds
// the writer byte; a journal is there (its header written, journal.h) only
// under the commit byte of a live writer or as a hot journal of a dead one,
// and whoever takes the writer byte (or the commit byte, with no writer left)
// rolls a hot journal back before reading. The journal's file, idle between
// commits, is made and written only under both bytes and removed only under
// the writer byte (by a writer closing the database, under both). The
// operating-system calls under all this are in os.h.
//
// WHAT A READER MAY KEEP
//
// Every commit raises the change counter in the header page
// (header::kChangeCounter) as one of its journaled pages. Cached pages, and
// what a Database derived from them (catalogue, definitions), are trusted
// only after the store looked at that counter and found it where it was when
// they were read, and only while no commit can run since the look: the look
// is taken under the commit byte shared when a run of reads begins (one read
// call; a page read outside a run makes a run of its own), and under the
// writer byte when a unit begins (no commit runs without it). A counter that
// moved raises changes(); the PageCache then drops its pages and the
// Database its catalogue and definitions before anything is served. A
// hot journal rolled back restores the counter with the pages, so pages read
// before the dead writer began stay good. Programs that write the file
// without these locks (Access) are seen by neither the locks nor the counter.
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "jet/format/format.h"
#include "jet/store/file_lock.h"
#include "jet/store/os.h"

namespace jet {

using PageBytes = std::vector<std::uint8_t>;
using PageRef = std::shared_ptr<const PageBytes>;

// Raw storage of pages. read() fills exactly kPageSize bytes or throws.
class PageStore {
  public:
    virtual ~PageStore() = default;
    virtual std::uint32_t pageCount() const = 0;  // whole pages in the store
    virtual void read(std::uint32_t page, std::uint8_t* out) = 0;
    // count consecutive pages from first into out (count * kPageSize bytes),
    // locked as read() is; inside a run of reads a store may read them at once.
    virtual void readRun(std::uint32_t first, std::uint32_t count, std::uint8_t* out);
    virtual void write(std::uint32_t page, const std::uint8_t* data) = 0;  // may extend by one page
    virtual bool writable() const = 0;
    virtual void sync() {}
    virtual void refresh() {}  // another process may have changed the length
    // Around a run of reads (a table scan, a statement): the store may take
    // its read lock once for the run instead of once a page. Calls nest.
    virtual void beginReads() {}
    virtual void endReads() {}
    // How often the store found the file changed by another writer when it
    // looked (see the notes above): what was read before a rise is stale.
    virtual std::uint64_t changes() const { return 0; }
    // Whether what was read may be trusted now without another look: inside
    // a run of reads or a unit.
    virtual bool verified() const { return true; }
    // The most pages worth reading in one call, and whether a page missing
    // from the cache is worth reading with the pages after it: each call is
    // a round trip when the file lies on a file server.
    virtual std::uint32_t longestRun() const { return 32; }
    virtual bool readsAhead() const { return false; }
};

class ReadSection {
  public:
    explicit ReadSection(PageStore& store) : store_(store) { store_.beginReads(); }
    ~ReadSection() { store_.endReads(); }
    ReadSection(const ReadSection&) = delete;
    ReadSection& operator=(const ReadSection&) = delete;

  private:
    PageStore& store_;
};

// A file opened read-only (writable=false) or read-write. Uses positioned
// reads; nothing is read before it is asked for.
class FilePageStore : public PageStore {
  public:
    FilePageStore(const std::string& path, bool writable);
    ~FilePageStore() override;
    FilePageStore(const FilePageStore&) = delete;
    FilePageStore& operator=(const FilePageStore&) = delete;
    std::uint32_t pageCount() const override;
    void read(std::uint32_t page, std::uint8_t* out) override;
    void readRun(std::uint32_t first, std::uint32_t count, std::uint8_t* out) override;
    void write(std::uint32_t page, const std::uint8_t* data) override;
    // count consecutive pages from first in one call (a commit's runs).
    void writeRun(std::uint32_t first, std::uint32_t count, const std::uint8_t* data);
    bool writable() const override { return writable_; }
    void sync() override;
    void refresh() override;
    void beginReads() override;
    void endReads() override;
    std::uint64_t changes() const override { return changes_; }
    bool verified() const override { return readsHeld_ > 0 || writerHeld_ || commitHeld_; }
    // 1 MB, the largest read an SMB 2 server commonly grants.
    std::uint32_t longestRun() const override { return 256; }
    bool readsAhead() const override { return true; }
    os::File& file() { return file_; }
    const std::string& path() const { return path_; }
    std::uint64_t sizeBytes() const { return size_; }

    // The locks of a unit of work (file_lock.h). Every read takes the commit
    // byte shared unless this store holds it itself, and rolls back a hot
    // journal it finds (left by a writer that died in its commit) first.
    void lockWriter();
    void unlockWriter();
    // Reads the change counter; under the writer byte, before a unit reads.
    void lookForChanges();
    void lockCommit();
    void unlockCommit();
    bool holdsWriter() const { return writerHeld_; }
    void setLockWait(filelock::Wait wait) { lockWait_ = std::move(wait); }

  private:
    void readUnlocked(std::uint32_t page, std::uint8_t* out, std::uint32_t count = 1);
    void lockForReading();  // the commit byte shared, after any hot journal is rolled back
    void ownCommit(const std::uint8_t* page0);
    std::string path_;
    os::File file_;
    bool writable_;
    std::uint64_t size_ = 0;
    bool writerHeld_ = false;
    bool commitHeld_ = false;
    int readsHeld_ = 0;
    filelock::Wait lockWait_;
    bool counterKnown_ = false;
    std::uint32_t counter_ = 0;  // the change counter at the last look or write
    std::uint64_t changes_ = 0;
};

// A database image in memory (fuzzing, tests). A trailing partial page is ignored.
class MemoryPageStore : public PageStore {
  public:
    explicit MemoryPageStore(std::vector<std::uint8_t> bytes, bool writable = false)
        : bytes_(std::move(bytes)), writable_(writable) {}
    std::uint32_t pageCount() const override { return std::uint32_t(bytes_.size() / kPageSize); }
    void read(std::uint32_t page, std::uint8_t* out) override;
    void write(std::uint32_t page, const std::uint8_t* data) override;
    bool writable() const override { return writable_; }
    const std::vector<std::uint8_t>& bytes() const { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
    bool writable_;
};

// Pages as the engine sees them: unmasked (encoded databases are decoded
// with the database key) and cached. Between beginUnit() and endUnit() the
// pages put() are held in memory (dirty, never evicted) and seen by page();
// the unit's commit writes them to the store.
class PageCache {
  public:
    explicit PageCache(std::unique_ptr<PageStore> store, std::size_t capacity = 1024);
    PageStore& store() { return *store_; }
    // Counts pages appended by the open unit.
    std::uint32_t pageCount() const;
    // Throws "corrupt page N: beyond the end of the file" for a page that does not exist.
    PageRef page(std::uint32_t n);
    // The page's type byte, checked: throws "corrupt page N: expected ..." otherwise.
    PageRef page(std::uint32_t n, PageType expected);
    // Writes a page through to the store (encoding it if needed) and caches
    // it; inside a unit keeps it dirty instead. n may be one past the end.
    void put(std::uint32_t n, const PageBytes& bytes);
    // The same, taking over a page made for the purpose (no copy of it).
    void put(std::uint32_t n, PageBytes&& bytes);
    void invalidate(std::uint32_t n);
    void clear();  // drops cached pages, never the unit's dirty ones
    // Drops the cached pages when the store found the file changed since
    // they were read; true when it did.
    bool forgetIfChanged();
    std::size_t capacity() const { return capacity_; }

    void beginUnit();
    bool inUnit() const { return inUnit_; }
    bool hasDirtyPages() const { return !dirty_.empty(); }
    // The unit's pages, ascending, unmasked.
    std::vector<std::pair<std::uint32_t, PageRef>> dirtyPages() const;
    // The page as the store holds it (encoded with the database key).
    PageBytes encoded(std::uint32_t n, const PageBytes& bytes) const;
    // keep: the dirty pages reached the store and stay cached; otherwise they
    // are dropped.
    void endUnit(bool keep);
    void setDatabaseKey(std::uint32_t key) { dbKey_ = key; }
    std::uint32_t databaseKey() const { return dbKey_; }

  private:
    friend class PageStream;
    void code(std::uint32_t n, std::uint8_t* bytes) const;
    std::unique_ptr<PageStore> store_;
    std::size_t capacity_;
    std::uint32_t dbKey_ = 0;
    std::list<std::uint32_t> lru_;
    struct Slot {
        PageRef bytes;
        std::list<std::uint32_t>::iterator pos;
    };
    std::unordered_map<std::uint32_t, Slot> slots_;
    void cache(std::uint32_t n, PageRef bytes);
    PageRef readFromStore(std::uint32_t n);
    bool inUnit_ = false;
    std::map<std::uint32_t, PageRef> dirty_;
    std::uint64_t seenChanges_ = 0;
    // Read-ahead: a miss at the page the last one read up to doubles the
    // pages read with it, any other miss starts again small.
    std::uint32_t aheadNext_ = 0, aheadWindow_ = 0;
    std::vector<std::uint8_t> runBuffer_;  // kept: a fresh one costs its pages' first touch
};

// The pages of a table scan, in the order given. Consecutive pages that are
// neither cached nor changed by the open unit are read from the store in one
// call (up to its longest run); they enter the cache only when the scan
// fits in half of it, so that the next statement over the table reads
// nothing while the file is unchanged, and a table larger than that neither
// evicts the pages every statement needs (definitions, usage maps) nor
// costs an allocation a page. A page handed out stays valid while its PageRef is held; the
// stream reuses a buffer only once nobody else holds it.
class PageStream {
  public:
    PageStream(PageCache& cache, std::vector<std::uint32_t> pages);
    // The next page and its number; nullptr after the last.
    PageRef next(std::uint32_t& n);

  private:
    void fill();
    void copyCached();
    PageCache& cache_;
    std::vector<std::uint32_t> pages_;
    std::size_t pos_ = 0;  // the next entry of pages_ to hand out
    // Entries [runStart_, runEnd_) of pages_ are read, in run_.
    std::size_t runStart_ = 0, runEnd_ = 0;
    bool keep_;  // read pages enter the cache
    std::vector<std::uint8_t> chunk_;
    std::vector<std::shared_ptr<PageBytes>> run_;
};

}  // namespace jet
