#include "platform/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

bool writeFileDurably(const std::filesystem::path& path, const std::string& bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (fd < 0) return false;
    std::size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0) {
            if (errno == EINTR) continue;
            ::close(fd);
            return false;
        }
        written += static_cast<std::size_t>(n);
    }
    const bool synced = ::fsync(fd) == 0;
    return ::close(fd) == 0 && synced;
}

long processId() { return static_cast<long>(::getpid()); }

std::tm localTime(std::time_t t) {
    std::tm tm{};
    localtime_r(&t, &tm);
    return tm;
}

}  // namespace platform
