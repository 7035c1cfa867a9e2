#include "jet/store/file_lock.h"

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

}  // namespace jet::filelock
