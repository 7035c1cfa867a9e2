#pragma once
// The rollback journal of a unit of work: "<file>-journal" holds the original
// bytes of every page a commit overwrites and the original file length. It is
// written in one call and synced before the first page of the file is
// touched; once the file is synced, zeroing the journal's header is the
// commit point. A journal is there while its header is written: one that is
// there, complete and whose writer is gone ("hot") means the file may be half
// written, and rolling it back restores the file exactly. One that is there
// but incomplete (bad header, too short, bad checksum) was never finished, so
// the file was not touched and the journal is simply removed.
//
// Between commits the file stays, its header zeroed, and the next commit
// overwrites it in place: no file is made or deleted, no directory synced,
// and the sync of a file whose length and blocks stay as they were is a
// flush of its data alone. It is made (and its directory synced) when
// missing, removed after a rollback, and removed when a writer closes the
// database while no other process writes or reads it.
//
// Layout (little-endian): "TJETJRNL", u32 version 1, u32 page size, u64
// original file length, u32 record count, u32 0, u64 FNV-1a checksum of bytes
// 0..31 and of every record, zeros up to 64; then per record u32 page number
// and the page's 4096 bytes as stored in the file. The file may run on past
// the last record (left by a larger unit); those bytes mean nothing.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "jet/store/file_lock.h"
#include "jet/store/os.h"

namespace jet {

std::string journalPath(const std::string& databasePath);
// Whether a journal is there: the file with its header written (an idle one
// left between commits has it zeroed).
bool journalExists(const std::string& databasePath);

// The journal of a unit of work, open from its begin to its end, under the
// writer byte (written under the commit byte too). Closed before a rollback
// reads and removes the file.
class JournalWriter {
  public:
    // Opens the journal when the file is there; write() makes it otherwise.
    explicit JournalWriter(const std::string& databasePath);
    // Whether a journal is there, as journalExists() tells, read through the
    // open file.
    bool there();
    // A new record for page: its 4096 bytes as stored in the file, to be
    // filled by the caller before write(). Valid until the next add().
    std::uint8_t* add(std::uint32_t page);
    // Writes the header and the records in one call and syncs them (and the
    // directory, when the file was just made). Throws jet::Error
    // (errnum::kReadOnly) when the file can be neither opened nor made.
    void write(std::uint64_t originalSize);
    // The commit point, once the database file is synced: the header zeroed.
    void commit();
    void close() { file_.close(); }

  private:
    std::string path_;
    os::File file_;
    bool made_ = false;
    std::vector<std::uint8_t> image_;  // header and records, as written
};

// A writer closing the database: removes an idle journal when it can take
// the writer and commit bytes at once (no other process writes, and none
// holds the journal open to look at its header); otherwise leaves it.
void removeIdleJournal(os::File& file, const std::string& databasePath);

// Rolls back (or removes, when incomplete) the journal of databasePath using
// file, open for writing whose owner already holds the writer and
// commit locks. Returns true when pages were restored.
bool rollbackJournal(os::File& file, const std::string& databasePath);

// Rolls back a hot journal if there is one, taking the locks on a descriptor
// of its own (waiting for a live writer to finish first, as long as wait
// allows). Throws jet::Error when the file needs a rollback but cannot be
// opened for writing, or the wait is given up.
void recoverHotJournal(const std::string& databasePath, const filelock::Wait& wait = {});

// Tests only: called at each step of a commit and of a rollback ("journal"
// after the journal is written, "journal-synced", "page" after each run of
// consecutive pages written to the file, "file-synced", "committed" after
// the header is zeroed,
// "restore" after each page restored from a journal). A test kills the
// process from it.
void setCrashHook(std::function<void(const char* step)> hook);
void crashPoint(const char* step);

}  // namespace jet
