#pragma once
// Operating-system locks on single bytes of a database file. The bytes lie
// beyond the 2 GB a Jet 4 file can hold, so they never cover data and do not
// meet the byte ranges Jet itself locks. On Linux the locks belong to the
// open file (OFD locks): two Database objects of one process exclude each
// other, and closing one descriptor does not drop another's locks. Other
// POSIX systems fall back to process-owned fcntl locks; Windows uses
// LockFileEx.
#include <cstdint>

namespace jet::filelock {

// Held exclusively for a whole unit of work: serialises writers.
constexpr std::uint64_t kWriterByte = 0x80000100ull;
// Held exclusively while a commit (or a rollback of a journal) writes pages,
// shared by every page read from the file: readers never see a page half written.
constexpr std::uint64_t kCommitByte = 0x80000101ull;

enum class Mode { Shared, Exclusive };

// Waits for the lock when wait is set; otherwise returns false if another
// holder has it. Throws jet::Error when the system refuses the lock.
bool lock(int fd, std::uint64_t offset, Mode mode, bool wait = true);
void unlock(int fd, std::uint64_t offset);

}  // namespace jet::filelock
