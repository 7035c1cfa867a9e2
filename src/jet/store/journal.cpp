#include "jet/store/journal.h"

#include <algorithm>
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
        ok = size >= kHeaderSize + std::uint64_t(j.count) * kRecordSize;
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

// Whether the journal open in file (or not opened) has its header written:
// any of its first bytes not zero. One that cannot be opened, but is there,
// is left to the rollback to report.
bool headerWritten(os::File& file) {
    if (!file.isOpen()) return !file.missing();
    std::uint8_t magic[8];
    if (!file.read(magic, sizeof magic, 0)) return false;
    return std::any_of(magic, magic + sizeof magic, [](std::uint8_t b) { return b != 0; });
}

}  // namespace

void setCrashHook(std::function<void(const char*)> h) { hook() = std::move(h); }

void crashPoint(const char* step) {
    if (hook()) hook()(step);
}

std::string journalPath(const std::string& databasePath) { return databasePath + "-journal"; }

bool journalExists(const std::string& databasePath) {
    os::File file(journalPath(databasePath), os::OpenMode::ReadOnly);
    return headerWritten(file);
}

JournalWriter::JournalWriter(const std::string& databasePath)
    : path_(journalPath(databasePath)),
      file_(path_, os::OpenMode::ReadWrite),
      image_(kHeaderSize) {}

bool JournalWriter::there() { return headerWritten(file_); }

std::uint8_t* JournalWriter::add(std::uint32_t page) {
    const std::size_t at = image_.size();
    image_.resize(at + kRecordSize);
    put32(image_.data() + at, page);
    return image_.data() + at + 4;
}

void JournalWriter::write(std::uint64_t originalSize) {
    if (!file_.isOpen()) {
        file_ = os::File(path_, os::OpenMode::ReadWrite);
        if (!file_.isOpen() && file_.missing()) {
            file_ = os::File(path_, os::OpenMode::CreateTruncate);
            made_ = true;
        }
        if (!file_.isOpen())
            throw Error("cannot create the journal " + path_ + ": " + file_.lastError(),
                        errnum::kReadOnly);
    }
    std::uint8_t* h = image_.data();
    std::memset(h, 0, kHeaderSize);
    std::memcpy(h, kMagic, 8);
    put32(h + 8, 1);
    put32(h + 12, kPageSize);
    put64(h + 16, originalSize);
    put32(h + 24, std::uint32_t((image_.size() - kHeaderSize) / kRecordSize));
    Fnv sum;
    sum.add(h, 32);
    sum.add(h + kHeaderSize, image_.size() - kHeaderSize);
    put64(h + 32, sum.h);
    writeAll(file_, image_.data(), image_.size(), 0, path_);
    crashPoint("journal");
    if (!file_.sync()) throw Error("cannot flush the journal " + path_ + ": " + file_.lastError());
    if (made_) os::syncDirectoryOf(path_);
    made_ = false;
    crashPoint("journal-synced");
}

void JournalWriter::commit() {
    // Unsynced: a crash that loses this write leaves the journal of a unit
    // whose pages are all on disk, and rolling it back gives the file as it
    // was before that unit, whole, as a crash before the commit would. The
    // next commit's journal sync makes it durable.
    const std::uint8_t zeros[kHeaderSize] = {};
    writeAll(file_, zeros, kHeaderSize, 0, path_);
    crashPoint("committed");
}

namespace {

void removeJournal(const std::string& databasePath) {
    const std::string path = journalPath(databasePath);
    std::string why;
    if (!os::remove(path, why)) throw Error("cannot remove the journal " + path + ": " + why);
}

}  // namespace

void removeIdleJournal(os::File& file, const std::string& databasePath) {
    if (!os::exists(journalPath(databasePath))) return;
    try {
        if (!filelock::lock(file, filelock::kWriterByte, filelock::Mode::Exclusive, false)) return;
        if (filelock::lock(file, filelock::kCommitByte, filelock::Mode::Exclusive, false)) {
            if (!journalExists(databasePath)) {
                std::string ignored;
                os::remove(journalPath(databasePath), ignored);
            }
            filelock::unlock(file, filelock::kCommitByte);
        }
        filelock::unlock(file, filelock::kWriterByte);
    } catch (const Error&) {
        // The system refused a lock: the idle journal stays, harmless.
    }
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
