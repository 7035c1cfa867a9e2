#pragma once
// The rollback journal of a unit of work: "<file>-journal" holds the original
// bytes of every page a commit overwrites and the original file length. It is
// written and synced before the first page of the file is touched, and its
// deletion is the commit point, so a journal that is complete and whose
// writer is gone ("hot") means the file may be half written: rolling it back
// restores the file exactly. A journal that is incomplete (bad header, wrong
// length, bad checksum) was never finished, so the file was not touched and
// the journal is simply removed.
//
// Layout (little-endian): "TJETJRNL", u32 version 1, u32 page size, u64
// original file length, u32 record count, u32 0, u64 FNV-1a checksum of bytes
// 0..31 and of every record, zeros up to 64; then per record u32 page number
// and the page's 4096 bytes as stored in the file.
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "jet/store/file_lock.h"
#include "jet/store/os.h"

namespace jet {

std::string journalPath(const std::string& databasePath);
bool journalExists(const std::string& databasePath);

// Writes the journal and syncs it (and its directory).
void writeJournal(
    const std::string& databasePath, std::uint64_t originalSize,
    const std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>>& originals);
// Removes the journal: the commit point.
void removeJournal(const std::string& databasePath);

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
// after each journal record written, "journal-synced", "page" after each page
// written to the file, "file-synced", "committed" after the journal is gone,
// "restore" after each page restored from a journal). A test kills the
// process from it.
void setCrashHook(std::function<void(const char* step)> hook);
void crashPoint(const char* step);

}  // namespace jet
