#pragma once
// The locks between processes that share a database file: single bytes
// beyond the 2 GB a Jet 4 file can hold, so they never cover data and do not
// meet the byte ranges Jet itself locks. What each lock means, and when a
// reader and a writer take it, is told in page_file.h.
#include <chrono>
#include <cstdint>
#include <functional>

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

// How a wait for another process's lock went so far: reported when the wait
// begins, about once a second while it lasts, and once when it ends (the
// lock granted or the wait given up), so a progress display can open, count
// and close.
struct WaitReport {
    std::chrono::milliseconds waited{0};
    std::chrono::milliseconds limit{0};
    bool ended = false;
};

// A writer that keeps its unit open, or a commit that never ends, must not
// hold everyone else forever: a lock is waited for this long at most.
struct Wait {
    std::chrono::milliseconds limit{10000};
    std::function<void(const WaitReport&)> report;  // may be empty
};

// Takes the lock, polling while another holder has it, for at most
// wait.limit; then throws jet::Error "Could not update; currently locked."
// (errnum::kLocked) and holds nothing new. A byte already held keeps its
// mode when the conversion is given up.
void lockWithin(os::File& file, std::uint64_t offset, Mode mode, const Wait& wait);

}  // namespace jet::filelock
