#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "jet/store/os.h"

namespace jet::os {

namespace {

std::atomic<std::uint64_t> g_syncs{0};

int fdOf(std::intptr_t h) { return static_cast<int>(h); }

// Linux's open-file-description locks belong to the open file, not to the
// process: two Files of one process exclude each other, and closing one
// descriptor does not drop another's locks. Elsewhere the process-owned
// fcntl locks are the best POSIX offers.
int lockCommand(bool wait) {
#ifdef F_OFD_SETLKW
    return wait ? F_OFD_SETLKW : F_OFD_SETLK;
#else
    return wait ? F_SETLKW : F_SETLK;
#endif
}

int applyLock(int fd, std::uint64_t offset, short type, bool wait) {
    struct flock fl;
    std::memset(&fl, 0, sizeof fl);
    fl.l_type = type;
    fl.l_whence = SEEK_SET;
    fl.l_start = static_cast<off_t>(offset);
    fl.l_len = 1;
    fl.l_pid = 0;  // required by OFD locks
    int rc;
    do rc = ::fcntl(fd, lockCommand(wait), &fl);
    while (rc != 0 && errno == EINTR);
    return rc == 0 ? 0 : errno;
}

}  // namespace

File::File(const std::string& path, OpenMode mode) {
    int flags = O_CLOEXEC;
    switch (mode) {
        case OpenMode::ReadOnly:
            flags |= O_RDONLY;
            break;
        case OpenMode::ReadWrite:
            flags |= O_RDWR;
            break;
        case OpenMode::CreateTruncate:
            flags |= O_RDWR | O_CREAT | O_TRUNC;
            break;
    }
    int fd;
    do fd = ::open(path.c_str(), flags, 0644);
    while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        missing_ = errno == ENOENT;
        fail();
        return;
    }
    handle_ = fd;
}

File::~File() { close(); }

File::File(File&& other) noexcept
    : handle_(other.handle_), missing_(other.missing_), error_(std::move(other.error_)) {
    other.handle_ = -1;
}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        close();
        handle_ = other.handle_;
        missing_ = other.missing_;
        error_ = std::move(other.error_);
        other.handle_ = -1;
    }
    return *this;
}

bool File::isOpen() const { return handle_ >= 0; }

void File::close() {
    if (handle_ >= 0) ::close(fdOf(handle_));
    handle_ = -1;
}

void File::fail() { error_ = std::strerror(errno); }

bool File::read(void* buf, std::size_t n, std::uint64_t off) {
    countCall(false);
    auto* p = static_cast<std::uint8_t*>(buf);
    std::size_t done = 0;
    while (done < n) {
        ssize_t r = ::pread(fdOf(handle_), p + done, n - done, static_cast<off_t>(off + done));
        if (r < 0 && errno == EINTR) continue;
        if (r < 0) return fail(), false;
        if (r == 0) {
            error_ = "unexpected end of file";
            return false;
        }
        done += std::size_t(r);
    }
    return true;
}

bool File::write(const void* buf, std::size_t n, std::uint64_t off) {
    countCall(true);
    const auto* p = static_cast<const std::uint8_t*>(buf);
    std::size_t done = 0;
    while (done < n) {
        ssize_t w = ::pwrite(fdOf(handle_), p + done, n - done, static_cast<off_t>(off + done));
        if (w < 0 && errno == EINTR) continue;
        if (w <= 0) {
            if (w == 0) errno = ENOSPC;
            return fail(), false;
        }
        done += std::size_t(w);
    }
    return true;
}

bool File::sync() {
    ++g_syncs;
    int rc;
    do rc = ::fsync(fdOf(handle_));
    while (rc != 0 && errno == EINTR);
    if (rc != 0) fail();
    return rc == 0;
}

bool File::size(std::uint64_t& bytes) {
    struct stat st {};
    if (::fstat(fdOf(handle_), &st) != 0) return fail(), false;
    bytes = static_cast<std::uint64_t>(st.st_size);
    return true;
}

bool File::truncate(std::uint64_t bytes) {
    int rc;
    do rc = ::ftruncate(fdOf(handle_), static_cast<off_t>(bytes));
    while (rc != 0 && errno == EINTR);
    if (rc != 0) fail();
    return rc == 0;
}

LockResult File::lock(std::uint64_t offset, LockMode mode, bool wait) {
    int e = applyLock(fdOf(handle_), offset, mode == LockMode::Exclusive ? F_WRLCK : F_RDLCK, wait);
    if (e == 0) return LockResult::Locked;
    if (!wait && (e == EAGAIN || e == EACCES)) return LockResult::Busy;
    error_ = std::strerror(e);
    return LockResult::Failed;
}

void File::unlock(std::uint64_t offset) {
    if (handle_ >= 0) applyLock(fdOf(handle_), offset, F_UNLCK, false);
}

bool exists(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0;
}

bool remove(const std::string& path, std::string& error) {
    if (::unlink(path.c_str()) == 0 || errno == ENOENT) return true;
    error = std::strerror(errno);
    return false;
}

void syncDirectoryOf(const std::string& path) {
    std::string dir = ".";
    auto slash = path.find_last_of('/');
    if (slash != std::string::npos) dir = slash == 0 ? "/" : path.substr(0, slash);
    int fd = ::open(dir.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    ++g_syncs;
    ::fsync(fd);
    ::close(fd);
}

std::uint64_t syncCalls() { return g_syncs; }

}  // namespace jet::os
