#pragma once
// Positioned reads and writes of a file descriptor, shared by the page
// store and the journal. Both answer the byte count, or -1 with errno set.
#include <cstddef>
#include <cstdint>

#ifdef _WIN32
#include <io.h>
#include <stdio.h>
#else
#include <sys/types.h>
#include <unistd.h>
#endif

namespace jet::io {

#ifdef _WIN32
inline long long readAt(int fd, void* buf, std::size_t n, std::uint64_t off) {
    if (_lseeki64(fd, static_cast<long long>(off), SEEK_SET) < 0) return -1;
    return _read(fd, buf, static_cast<unsigned>(n));
}
inline long long writeAt(int fd, const void* buf, std::size_t n, std::uint64_t off) {
    if (_lseeki64(fd, static_cast<long long>(off), SEEK_SET) < 0) return -1;
    return _write(fd, buf, static_cast<unsigned>(n));
}
#else
inline long long readAt(int fd, void* buf, std::size_t n, std::uint64_t off) {
    return ::pread(fd, buf, n, static_cast<off_t>(off));
}
inline long long writeAt(int fd, const void* buf, std::size_t n, std::uint64_t off) {
    return ::pwrite(fd, buf, n, static_cast<off_t>(off));
}
#endif

}  // namespace jet::io
