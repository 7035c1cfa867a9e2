#pragma once
// The locks between processes that share a database file: single bytes
// beyond the 2 GB a Jet 4 file can hold, so they never cover data and do not
// meet the byte ranges Jet itself locks. What each lock means, and when a
// reader and a writer take it, is told in page_file.h.
#include <cstdint>

#include "jet/store/os.h"

namespace jet::filelock {

// Held exclusively for a whole unit of work: serialises writers.
constexpr std::uint64_t kWriterByte = 0x80000100ull;
// Held exclusively while a commit (or a rollback of a journal) writes pages,
// shared by every page read from the file: readers never see a page half written.
constexpr std::uint64_t kCommitByte = 0x80000101ull;

using Mode = os::LockMode;

// Waits for the lock when wait is set; otherwise returns false if another
// holder has it. Throws jet::Error when the system refuses the lock. A lock
// on a byte the file already holds converts it to the mode asked for.
bool lock(os::File& file, std::uint64_t offset, Mode mode, bool wait = true);
void unlock(os::File& file, std::uint64_t offset);

}  // namespace jet::filelock
