#include "platform/posix/unix_instance_channel.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>

#include "platform/instance_wire.h"

namespace platform {
namespace {

std::int64_t nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool fillAddress(const std::string& path, sockaddr_un& addr) {
    std::memset(&addr, 0, sizeof addr);
    addr.sun_family = AF_UNIX;
    if (path.size() >= sizeof addr.sun_path) return false;
    std::memcpy(addr.sun_path, path.c_str(), path.size() + 1);
    return true;
}

// Connects without blocking beyond the deadline; -1 when nobody listens.
int connectTo(const std::string& path, std::int64_t deadline) {
    sockaddr_un addr;
    if (!fillAddress(path, addr)) return -1;
    for (;;) {
        int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        if (fd < 0) return -1;
        if (::connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) == 0) return fd;
        int err = errno;
        ::close(fd);
        // A full backlog answers EAGAIN: the holder lives but is busy.
        if (err != EAGAIN && err != EINTR) return -1;
        if (nowMs() >= deadline) return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

bool waitFor(int fd, short events, std::int64_t deadline) {
    for (;;) {
        std::int64_t left = deadline - nowMs();
        if (left <= 0) return false;
        pollfd p{fd, events, 0};
        int r = ::poll(&p, 1, static_cast<int>(left));
        if (r > 0) return true;
        if (r < 0 && errno != EINTR) return false;
    }
}

}  // namespace

UnixInstanceChannel::UnixInstanceChannel(std::string directory)
    : directory_(directory.empty() ? defaultDirectory() : std::move(directory)) {}

UnixInstanceChannel::~UnixInstanceChannel() { release(); }

std::string UnixInstanceChannel::defaultDirectory() {
    if (const char* r = std::getenv("XDG_RUNTIME_DIR"); r && *r) {
        struct stat st;
        if (::stat(r, &st) == 0 && S_ISDIR(st.st_mode)) return r;
    }
    std::string dir = "/tmp/tessara-" + std::to_string(::getuid());
    ::mkdir(dir.c_str(), 0700);
    // Another user could have put a directory or a link there first; then
    // the sockets go below the home directory instead.
    struct stat st;
    if (::lstat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == ::getuid())
        return dir;
    const char* home = std::getenv("HOME");
    dir = std::string(home && *home ? home : ".") + "/.tessara";
    ::mkdir(dir.c_str(), 0700);
    return dir;
}

std::string UnixInstanceChannel::basePath(const std::string& instanceName) const {
    // The name becomes part of a file name; anything unusual is replaced,
    // and a long name is shortened with a hash so the socket path fits.
    std::string safe;
    for (unsigned char c : instanceName)
        safe += (std::isalnum(c) || c == '.' || c == '-' || c == '_') ? static_cast<char>(c) : '_';
    if (safe.size() > 40) {
        safe = safe.substr(0, 24) + "-" + std::to_string(std::hash<std::string>{}(instanceName));
    }
    return directory_ + "/tessara-" + safe;
}

std::string UnixInstanceChannel::socketPath(const std::string& instanceName) const {
    return basePath(instanceName) + ".sock";
}

bool UnixInstanceChannel::claim(const std::string& instanceName) {
    if (listenFd_ >= 0 && claimedName_ == instanceName) return true;
    release();
    std::string base = basePath(instanceName);
    int lock = ::open((base + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0) return false;
    if (::flock(lock, LOCK_EX | LOCK_NB) != 0) {
        ::close(lock);
        return false;  // a live process holds it
    }
    // Whatever socket file is there belongs to a holder that died.
    std::string sock = base + ".sock";
    ::unlink(sock.c_str());
    sockaddr_un addr;
    int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0 || !fillAddress(sock, addr) ||
        ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0 || ::listen(fd, 16) != 0) {
        if (fd >= 0) ::close(fd);
        ::close(lock);
        return false;
    }
    lockFd_ = lock;
    listenFd_ = fd;
    claimedName_ = instanceName;
    claimedSocket_ = sock;
    return true;
}

bool UnixInstanceChannel::anotherInstanceRunning(const std::string& instanceName) {
    if (listenFd_ >= 0 && claimedName_ == instanceName) return false;
    // Probing the lock would make a concurrent claim fail; a connection
    // attempt disturbs nobody (the holder drops the empty connection).
    int fd = connectTo(socketPath(instanceName), nowMs() + 500);
    if (fd < 0) return false;
    ::close(fd);
    return true;
}

bool UnixInstanceChannel::send(const std::string& instanceName, const InstanceMessage& message) {
    const std::int64_t deadline = nowMs() + sendTimeoutMs_;
    int fd = connectTo(socketPath(instanceName), deadline);
    if (fd < 0) return false;
    const std::string frame = wire::encode(message);
    std::size_t done = 0;
    bool ok = true;
    while (ok && done < frame.size()) {
        ssize_t n = ::send(fd, frame.data() + done, frame.size() - done, MSG_NOSIGNAL);
        if (n > 0) {
            done += static_cast<std::size_t>(n);
        } else if (n < 0 && (errno == EAGAIN || errno == EINTR)) {
            ok = waitFor(fd, POLLOUT, deadline);
        } else {
            ok = false;
        }
    }
    char ack = 0;
    while (ok) {
        ssize_t n = ::recv(fd, &ack, 1, 0);
        if (n == 1) break;
        if (n < 0 && (errno == EAGAIN || errno == EINTR)) {
            ok = waitFor(fd, POLLIN, deadline);
        } else {
            ok = false;
        }
    }
    ::close(fd);
    return ok && ack == wire::kAck;
}

void UnixInstanceChannel::dropClient(std::size_t index) {
    ::close(clients_[index].fd);
    clients_.erase(clients_.begin() + static_cast<std::ptrdiff_t>(index));
}

std::vector<InstanceMessage> UnixInstanceChannel::receive() {
    std::vector<InstanceMessage> out;
    if (listenFd_ < 0) return out;
    const std::int64_t now = nowMs();
    for (;;) {
        int c = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (c < 0) {
            if (errno == EINTR) continue;
            break;
        }
        clients_.push_back(Client{c, now, {}});
    }
    for (std::size_t i = 0; i < clients_.size();) {
        Client& cl = clients_[i];
        bool closed = false;
        char buf[4096];
        for (;;) {
            ssize_t n = ::recv(cl.fd, buf, sizeof buf, 0);
            if (n > 0) {
                cl.buffer.append(buf, static_cast<std::size_t>(n));
                if (cl.buffer.size() > wire::kHeaderSize + wire::kMaxPayload) break;
                continue;
            }
            if (n < 0 && errno == EINTR) continue;
            closed = n == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
            break;
        }
        std::optional<std::uint32_t> len;
        if (cl.buffer.size() >= wire::kHeaderSize) {
            len = wire::payloadLength(cl.buffer);
            if (!len) {  // not one of ours
                dropClient(i);
                continue;
            }
        }
        if (len && cl.buffer.size() >= wire::kHeaderSize + *len) {
            auto m =
                wire::decodePayload(std::string_view(cl.buffer).substr(wire::kHeaderSize, *len));
            // Only a sender still waiting takes the request: one that gave up
            // has reported failure, so its message must not act after all.
            if (m && ::send(cl.fd, &wire::kAck, 1, MSG_NOSIGNAL | MSG_DONTWAIT) == 1)
                out.push_back(std::move(*m));
            dropClient(i);
            continue;
        }
        // Incomplete: a sender that hung up or ran out of time is forgotten,
        // and its partial message with it.
        if (closed || now - cl.since > clientGraceMs_) {
            dropClient(i);
            continue;
        }
        ++i;
    }
    return out;
}

void UnixInstanceChannel::release() {
    while (!clients_.empty()) dropClient(clients_.size() - 1);
    if (listenFd_ >= 0) {
        ::close(listenFd_);
        listenFd_ = -1;
        ::unlink(claimedSocket_.c_str());
    }
    if (lockFd_ >= 0) {
        ::close(lockFd_);
        lockFd_ = -1;
    }
    claimedName_.clear();
    claimedSocket_.clear();
}

}  // namespace platform
