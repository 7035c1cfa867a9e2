#pragma once
// Page access: a file (or a memory image) seen as 4096-byte pages, with a
// small cache of decoded pages. A page handed out stays valid while the
// caller holds its PageRef, even when the cache drops it.
#include <cstdint>
#include <list>
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
    int fd() const { return fd_; }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
    int fd_ = -1;
    bool writable_;
    std::uint64_t size_ = 0;
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
// with the database key) and cached.
class PageCache {
  public:
    explicit PageCache(std::unique_ptr<PageStore> store, std::size_t capacity = 1024);
    PageStore& store() { return *store_; }
    std::uint32_t pageCount() const { return store_->pageCount(); }
    // Throws "corrupt page N: beyond the end of the file" for a page that does not exist.
    PageRef page(std::uint32_t n);
    // The page's type byte, checked: throws "corrupt page N: expected ..." otherwise.
    PageRef page(std::uint32_t n, PageType expected);
    // Writes a page through to the store (encoding it if needed) and caches it.
    void put(std::uint32_t n, const PageBytes& bytes);
    void invalidate(std::uint32_t n);
    void clear();
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
};

}  // namespace jet
