#include "jet/file_lock.h"

#include <cerrno>
#include <cstring>
#include <string>

#ifdef _WIN32
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

#include "jet/error.h"

namespace jet::filelock {

#ifdef _WIN32

namespace {
OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED ov{};
    ov.Offset = DWORD(offset & 0xFFFFFFFFu);
    ov.OffsetHigh = DWORD(offset >> 32);
    return ov;
}
}  // namespace

bool lock(int fd, std::uint64_t offset, Mode mode, bool wait) {
    HANDLE h = reinterpret_cast<HANDLE>(_get_osfhandle(fd));
    if (h == INVALID_HANDLE_VALUE) throw Error("cannot lock the database file: bad handle");
    DWORD flags = 0;
    if (mode == Mode::Exclusive) flags |= LOCKFILE_EXCLUSIVE_LOCK;
    if (!wait) flags |= LOCKFILE_FAIL_IMMEDIATELY;
    OVERLAPPED ov = at(offset);
    if (LockFileEx(h, flags, 0, 1, 0, &ov)) return true;
    DWORD e = GetLastError();
    if (!wait && (e == ERROR_LOCK_VIOLATION || e == ERROR_IO_PENDING)) return false;
    throw Error("cannot lock the database file (Windows error " + std::to_string(e) + ")");
}

void unlock(int fd, std::uint64_t offset) {
    HANDLE h = reinterpret_cast<HANDLE>(_get_osfhandle(fd));
    if (h == INVALID_HANDLE_VALUE) return;
    OVERLAPPED ov = at(offset);
    UnlockFileEx(h, 0, 1, 0, &ov);
}

#else

namespace {
int command(bool wait) {
#ifdef F_OFD_SETLKW
    return wait ? F_OFD_SETLKW : F_OFD_SETLK;
#else
    return wait ? F_SETLKW : F_SETLK;
#endif
}

int apply(int fd, std::uint64_t offset, short type, bool wait) {
    struct flock fl;
    std::memset(&fl, 0, sizeof fl);
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = static_cast<off_t>(offset);
    fl.l_len = 1;
    fl.l_pid = 0;  // required by OFD locks
    int rc;
    do rc = ::fcntl(fd, command(wait), &fl);
    while (rc != 0 && errno == EINTR);
    return rc == 0 ? 0 : errno;
}
}  // namespace

bool lock(int fd, std::uint64_t offset, Mode mode, bool wait) {
    int e = apply(fd, offset, mode == Mode::Exclusive ? F_WRLCK : F_RDLCK, wait);
    if (e == 0) return true;
    if (!wait && (e == EAGAIN || e == EACCES)) return false;
    throw Error(std::string("cannot lock the database file: ") + std::strerror(e));
}

void unlock(int fd, std::uint64_t offset) { apply(fd, offset, F_UNLCK, false); }

#endif

}  // namespace jet::filelock
