#include "jet/journal.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "jet/error.h"
#include "jet/positioned_io.h"
#include "jet/file_lock.h"
#include "jet/format.h"

namespace jet {

using io::readAt;
using io::writeAt;

namespace {

constexpr char kMagic[8] = {'T', 'J', 'E', 'T', 'J', 'R', 'N', 'L'};
constexpr std::size_t kHeaderSize = 64;
constexpr std::size_t kRecordSize = 4 + kPageSize;

std::function<void(const char*)>& hook() {
    static std::function<void(const char*)> h;
    return h;
}

struct Fnv {
    std::uint64_t h = 1469598103934665603ull;
    void add(const std::uint8_t* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            h ^= p[i];
            h *= 1099511628211ull;
        }
    }
};

std::uint64_t u64(const std::uint8_t* p) { return u32(p) | (std::uint64_t(u32(p + 4)) << 32); }
void put64(std::uint8_t* p, std::uint64_t v) {
    put32(p, std::uint32_t(v));
    put32(p + 4, std::uint32_t(v >> 32));
}

#ifdef _WIN32
int openFile(const std::string& p, int flags, int mode = 0) {
    return ::_open(p.c_str(), flags | O_BINARY, mode);
}
void closeFile(int fd) { ::_close(fd); }
bool truncateFile(int fd, std::uint64_t size) { return _chsize_s(fd, (long long)size) == 0; }
void syncDirectoryOf(const std::string&) {}
#else
int openFile(const std::string& p, int flags, int mode = 0) {
    return ::open(p.c_str(), flags | O_CLOEXEC, mode);
}
void closeFile(int fd) { ::close(fd); }
bool truncateFile(int fd, std::uint64_t size) { return ::ftruncate(fd, off_t(size)) == 0; }
// A new or removed directory entry is durable only once the directory is synced.
void syncDirectoryOf(const std::string& path) {
    std::string dir = ".";
    auto slash = path.find_last_of('/');
    if (slash != std::string::npos) dir = slash == 0 ? "/" : path.substr(0, slash);
    int fd = ::open(dir.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}
#endif

void writeAll(int fd, const std::uint8_t* p, std::size_t n, std::uint64_t off,
              const std::string& what) {
    std::size_t done = 0;
    while (done < n) {
        long long w = writeAt(fd, p + done, n - done, off + done);
        if (w < 0 && errno == EINTR) continue;
        if (w <= 0) throw Error("write error in " + what + ": " + std::strerror(errno));
        done += std::size_t(w);
    }
}

bool readAll(int fd, std::uint8_t* p, std::size_t n, std::uint64_t off) {
    std::size_t done = 0;
    while (done < n) {
        long long r = readAt(fd, p + done, n - done, off + done);
        if (r < 0 && errno == EINTR) continue;
        if (r <= 0) return false;
        done += std::size_t(r);
    }
    return true;
}

struct Journal {
    bool complete = false;
    std::uint64_t originalSize = 0;
    std::vector<std::uint8_t> records;  // count * kRecordSize
    std::size_t count = 0;
};

Journal readJournal(const std::string& path) {
    Journal j;
    int fd = openFile(path, O_RDONLY);
    if (fd < 0) return j;
    struct stat st {};
    bool ok = ::fstat(fd, &st) == 0 && std::uint64_t(st.st_size) >= kHeaderSize;
    std::uint8_t h[kHeaderSize];
    if (ok) ok = readAll(fd, h, kHeaderSize, 0);
    if (ok) ok = std::memcmp(h, kMagic, 8) == 0 && u32(h + 8) == 1 && u32(h + 12) == kPageSize;
    if (ok) {
        j.count = u32(h + 24);
        ok = std::uint64_t(st.st_size) == kHeaderSize + std::uint64_t(j.count) * kRecordSize;
    }
    if (ok) {
        j.records.resize(j.count * kRecordSize);
        ok = readAll(fd, j.records.data(), j.records.size(), kHeaderSize);
    }
    closeFile(fd);
    if (!ok) return j;
    Fnv sum;
    sum.add(h, 32);
    sum.add(j.records.data(), j.records.size());
    j.complete = sum.h == u64(h + 32);
    j.originalSize = u64(h + 16);
    return j;
}

}  // namespace

void setCrashHook(std::function<void(const char*)> h) { hook() = std::move(h); }

void crashPoint(const char* step) {
    if (hook()) hook()(step);
}

std::string journalPath(const std::string& databasePath) { return databasePath + "-journal"; }

bool journalExists(const std::string& databasePath) {
    struct stat st {};
    return ::stat(journalPath(databasePath).c_str(), &st) == 0;
}

void syncFile(int fd) {
#ifdef _WIN32
    if (::_commit(fd) != 0) throw Error("cannot flush the database file to disk");
#else
    if (::fsync(fd) != 0)
        throw Error(std::string("cannot flush the database file to disk: ") + std::strerror(errno));
#endif
}

void writeJournal(
    const std::string& databasePath, std::uint64_t originalSize,
    const std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>>& originals) {
    const std::string path = journalPath(databasePath);
    int fd = openFile(path, O_RDWR | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        throw Error("cannot create the journal " + path + ": " + std::strerror(errno),
                    errnum::kReadOnly);
    try {
        std::uint8_t h[kHeaderSize] = {};
        std::memcpy(h, kMagic, 8);
        put32(h + 8, 1);
        put32(h + 12, kPageSize);
        put64(h + 16, originalSize);
        put32(h + 24, std::uint32_t(originals.size()));
        Fnv sum;
        sum.add(h, 32);
        std::uint8_t num[4];
        for (const auto& [page, bytes] : originals) {
            put32(num, page);
            sum.add(num, 4);
            sum.add(bytes.data(), kPageSize);
        }
        put64(h + 32, sum.h);
        writeAll(fd, h, kHeaderSize, 0, path);
        crashPoint("journal");
        std::uint64_t off = kHeaderSize;
        std::vector<std::uint8_t> rec(kRecordSize);
        for (const auto& [page, bytes] : originals) {
            put32(rec.data(), page);
            std::memcpy(rec.data() + 4, bytes.data(), kPageSize);
            writeAll(fd, rec.data(), kRecordSize, off, path);
            off += kRecordSize;
            crashPoint("journal");
        }
        syncFile(fd);
    } catch (...) {
        closeFile(fd);
        std::remove(path.c_str());
        throw;
    }
    closeFile(fd);
    syncDirectoryOf(path);
    crashPoint("journal-synced");
}

void removeJournal(const std::string& databasePath) {
    const std::string path = journalPath(databasePath);
    if (std::remove(path.c_str()) != 0 && errno != ENOENT)
        throw Error("cannot remove the journal " + path + ": " + std::strerror(errno));
}

bool rollbackJournal(int fd, const std::string& databasePath) {
    if (!journalExists(databasePath)) return false;
    Journal j = readJournal(journalPath(databasePath));
    if (!j.complete) {
        removeJournal(databasePath);
        return false;
    }
    const std::string what = databasePath;
    for (std::size_t i = 0; i < j.count; ++i) {
        const std::uint8_t* rec = j.records.data() + i * kRecordSize;
        writeAll(fd, rec + 4, kPageSize, std::uint64_t(u32(rec)) * kPageSize, what);
        crashPoint("restore");
    }
    if (!truncateFile(fd, j.originalSize))
        throw Error("cannot restore the length of " + what + ": " + std::strerror(errno));
    syncFile(fd);
    removeJournal(databasePath);
    syncDirectoryOf(journalPath(databasePath));
    return true;
}

void recoverHotJournal(const std::string& databasePath) {
    if (!journalExists(databasePath)) return;
    bool rw = true;
    int fd = openFile(databasePath, O_RDWR);
    if (fd < 0) {
        rw = false;
        fd = openFile(databasePath, O_RDONLY);
    }
    if (fd < 0) {
        int e = errno;
        throw Error("cannot open " + databasePath + ": " + std::strerror(e),
                    e == ENOENT ? errnum::kFileNotFound : 0);
    }
    // Unlocked explicitly: Windows frees the locks of a closed handle only eventually.
    struct Closer {
        int fd;
        bool writer = false, commit = false;
        ~Closer() {
            if (commit) filelock::unlock(fd, filelock::kCommitByte);
            if (writer) filelock::unlock(fd, filelock::kWriterByte);
            closeFile(fd);
        }
    } closer{fd};
    // A live writer holds the writer byte for its whole unit: once we hold
    // it (shared is enough to keep writers out), a journal left is hot.
    filelock::lock(fd, filelock::kWriterByte,
                   rw ? filelock::Mode::Exclusive : filelock::Mode::Shared);
    closer.writer = true;
    if (rw) {
        filelock::lock(fd, filelock::kCommitByte, filelock::Mode::Exclusive);
        closer.commit = true;
    }
    if (!journalExists(databasePath)) return;
    if (rw) {
        rollbackJournal(fd, databasePath);
        return;
    }
    if (!readJournal(journalPath(databasePath)).complete) {
        // Never finished, so the file is intact; only the leftover goes.
        removeJournal(databasePath);
        return;
    }
    throw Error("cannot open " + databasePath + ": an interrupted write must be rolled back from " +
                    journalPath(databasePath) + ", but the file is read-only",
                errnum::kReadOnly);
}

}  // namespace jet
