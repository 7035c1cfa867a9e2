#include "jet/store/journal.h"

#include <cstring>

#include "jet/format/error.h"
#include "jet/format/format.h"
#include "jet/store/file_lock.h"
#include "jet/store/os.h"

namespace jet {

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

void writeAll(os::File& file, const std::uint8_t* p, std::size_t n, std::uint64_t off,
              const std::string& what) {
    if (!file.write(p, n, off)) throw Error("write error in " + what + ": " + file.lastError());
}

struct Journal {
    bool complete = false;
    std::uint64_t originalSize = 0;
    std::vector<std::uint8_t> records;  // count * kRecordSize
    std::size_t count = 0;
};

Journal readJournal(const std::string& path) {
    Journal j;
    os::File file(path, os::OpenMode::ReadOnly);
    if (!file.isOpen()) return j;
    std::uint64_t size = 0;
    bool ok = file.size(size) && size >= kHeaderSize;
    std::uint8_t h[kHeaderSize];
    if (ok) ok = file.read(h, kHeaderSize, 0);
    if (ok) ok = std::memcmp(h, kMagic, 8) == 0 && u32(h + 8) == 1 && u32(h + 12) == kPageSize;
    if (ok) {
        j.count = u32(h + 24);
        ok = size == kHeaderSize + std::uint64_t(j.count) * kRecordSize;
    }
    if (ok) {
        j.records.resize(j.count * kRecordSize);
        ok = file.read(j.records.data(), j.records.size(), kHeaderSize);
    }
    file.close();
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
    return os::exists(journalPath(databasePath));
}

void writeJournal(
    const std::string& databasePath, std::uint64_t originalSize,
    const std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>>& originals) {
    const std::string path = journalPath(databasePath);
    os::File file(path, os::OpenMode::CreateTruncate);
    if (!file.isOpen())
        throw Error("cannot create the journal " + path + ": " + file.lastError(),
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
        writeAll(file, h, kHeaderSize, 0, path);
        crashPoint("journal");
        std::uint64_t off = kHeaderSize;
        std::vector<std::uint8_t> rec(kRecordSize);
        for (const auto& [page, bytes] : originals) {
            put32(rec.data(), page);
            std::memcpy(rec.data() + 4, bytes.data(), kPageSize);
            writeAll(file, rec.data(), kRecordSize, off, path);
            off += kRecordSize;
            crashPoint("journal");
        }
        if (!file.sync()) throw Error("cannot flush the journal " + path + ": " + file.lastError());
    } catch (...) {
        file.close();
        std::string ignored;
        os::remove(path, ignored);
        throw;
    }
    file.close();
    os::syncDirectoryOf(path);
    crashPoint("journal-synced");
}

void removeJournal(const std::string& databasePath) {
    const std::string path = journalPath(databasePath);
    std::string why;
    if (!os::remove(path, why)) throw Error("cannot remove the journal " + path + ": " + why);
}

bool rollbackJournal(os::File& file, const std::string& databasePath) {
    if (!journalExists(databasePath)) return false;
    Journal j = readJournal(journalPath(databasePath));
    if (!j.complete) {
        removeJournal(databasePath);
        return false;
    }
    const std::string what = databasePath;
    for (std::size_t i = 0; i < j.count; ++i) {
        const std::uint8_t* rec = j.records.data() + i * kRecordSize;
        writeAll(file, rec + 4, kPageSize, std::uint64_t(u32(rec)) * kPageSize, what);
        crashPoint("restore");
    }
    if (!file.truncate(j.originalSize))
        throw Error("cannot restore the length of " + what + ": " + file.lastError());
    if (!file.sync()) throw Error("cannot flush the database file to disk: " + file.lastError());
    removeJournal(databasePath);
    os::syncDirectoryOf(journalPath(databasePath));
    return true;
}

void recoverHotJournal(const std::string& databasePath, const filelock::Wait& wait) {
    if (!journalExists(databasePath)) return;
    bool rw = true;
    os::File file(databasePath, os::OpenMode::ReadWrite);
    if (!file.isOpen()) {
        rw = false;
        file = os::File(databasePath, os::OpenMode::ReadOnly);
    }
    if (!file.isOpen())
        throw Error("cannot open " + databasePath + ": " + file.lastError(),
                    file.missing() ? errnum::kFileNotFound : 0);
    // Unlocked explicitly, before the file closes, on every way out.
    struct Unlocker {
        os::File& file;
        bool writer = false, commit = false;
        ~Unlocker() {
            if (commit) filelock::unlock(file, filelock::kCommitByte);
            if (writer) filelock::unlock(file, filelock::kWriterByte);
        }
    } held{file};
    // A live writer holds the writer byte for its whole unit: once we hold
    // it (shared is enough to keep writers out), a journal left is hot.
    filelock::lockWithin(file, filelock::kWriterByte,
                         rw ? filelock::Mode::Exclusive : filelock::Mode::Shared, wait);
    held.writer = true;
    if (rw) {
        filelock::lockWithin(file, filelock::kCommitByte, filelock::Mode::Exclusive, wait);
        held.commit = true;
    }
    if (!journalExists(databasePath)) return;
    if (rw) {
        rollbackJournal(file, databasePath);
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
