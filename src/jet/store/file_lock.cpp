#include "jet/store/file_lock.h"

#include <algorithm>
#include <thread>

#include "jet/format/error.h"

namespace jet::filelock {

bool lock(os::File& file, std::uint64_t offset, Mode mode, bool wait) {
    switch (file.lock(offset, mode, wait)) {
        case os::LockResult::Locked:
            return true;
        case os::LockResult::Busy:
            return false;
        case os::LockResult::Failed:
            break;
    }
    throw Error("cannot lock the database file: " + file.lastError());
}

void unlock(os::File& file, std::uint64_t offset) { file.unlock(offset); }

void lockWithin(os::File& file, std::uint64_t offset, Mode mode, const Wait& wait) {
    if (lock(file, offset, mode, false)) return;
    using Clock = std::chrono::steady_clock;
    using std::chrono::milliseconds;
    const Clock::time_point start = Clock::now();
    auto waited = [&] { return std::chrono::duration_cast<milliseconds>(Clock::now() - start); };
    auto report = [&](milliseconds w, bool ended) {
        if (wait.report) wait.report(WaitReport{w, wait.limit, ended});
    };
    report(milliseconds(0), false);
    // No system offers a timed wait for a POSIX byte lock: attempts a
    // millisecond apart. Not longer: a writer doing one unit after another
    // frees the lock only for the moment between two units, and a waiter
    // that sleeps longer than that would lose every round to it and time out
    // behind a busy neighbour (a blocking wait is woken as the lock goes).
    const milliseconds nap(1);
    milliseconds nextReport(1000);
    for (;;) {
        const milliseconds w = waited();
        if (w >= wait.limit) {
            report(w, true);
            throw Error("Could not update; currently locked.", errnum::kLocked);
        }
        std::this_thread::sleep_for(std::min(nap, wait.limit - w));
        bool got = false;
        try {
            got = lock(file, offset, mode, false);
        } catch (...) {
            report(waited(), true);
            throw;
        }
        if (got) {
            report(waited(), true);
            return;
        }
        if (waited() >= nextReport) {
            report(waited(), false);
            nextReport += milliseconds(1000);
        }
    }
}

}  // namespace jet::filelock
