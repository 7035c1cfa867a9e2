#pragma once
// Page access: a file (or a memory image) seen as 4096-byte pages, with a
// small cache of decoded pages. A page handed out stays valid while the
// caller holds its PageRef, even when the cache drops it.
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "jet/format.h"

namespace jet {

using PageBytes = std::vector<std::uint8_t>;
using PageRef = std::shared_ptr<const PageBytes>;

// Raw storage of pages. read() fills exactly kPageSize bytes or throws.
class PageStore {
  public:
    virtual ~PageStore() = default;
    virtual std::uint32_t pageCount() const = 0;  // whole pages in the store
    virtual void read(std::uint32_t page, std::uint8_t* out) = 0;
    virtual void write(std::uint32_t page, const std::uint8_t* data) = 0;  // may extend by one page
    virtual bool writable() const = 0;
    virtual void sync() {}
    virtual void refresh() {}  // another process may have changed the length
    // Around a run of reads (a table scan): the store may take its read
    // lock once for the run instead of once a page. Calls nest.
    virtual void beginReads() {}
    virtual void endReads() {}
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
    void write(std::uint32_t page, const std::uint8_t* data) override;
    bool writable() const override { return writable_; }
    void sync() override;
    void refresh() override;
    void beginReads() override;
    void endReads() override;
    int fd() const { return fd_; }
    const std::string& path() const { return path_; }
    std::uint64_t sizeBytes() const { return size_; }

    // The locks of a unit of work (file_lock.h). Every read takes the commit
    // byte shared unless this store holds it itself, and rolls back a hot
    // journal it finds (left by a writer that died in its commit) first.
    void lockWriter();
    void unlockWriter();
    void lockCommit();
    void unlockCommit();
    bool holdsWriter() const { return writerHeld_; }

  private:
    void readUnlocked(std::uint32_t page, std::uint8_t* out);
    void lockForReading();  // the commit byte shared, after any hot journal is rolled back
    std::string path_;
    int fd_ = -1;
    bool writable_;
    std::uint64_t size_ = 0;
    bool writerHeld_ = false;
    bool commitHeld_ = false;
    int readsHeld_ = 0;
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
    void invalidate(std::uint32_t n);
    void clear();  // drops cached pages, never the unit's dirty ones

    void beginUnit();
    bool inUnit() const { return inUnit_; }
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
    bool inUnit_ = false;
    std::map<std::uint32_t, PageRef> dirty_;
};

}  // namespace jet
