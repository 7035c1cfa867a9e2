#include "platform/win32/win32_instance_channel.h"

#include <windows.h>

#include <cctype>
#include <functional>

#include "platform/instance_wire.h"
#include "platform/win32/utf16.h"

namespace platform {
namespace {

using win32::toWide;

std::int64_t nowMs() { return static_cast<std::int64_t>(GetTickCount64()); }

std::string safeName(const std::string& name) {
    std::string safe;
    for (unsigned char c : name)
        safe += (std::isalnum(c) || c == '.' || c == '-' || c == '_') ? static_cast<char>(c) : '_';
    if (safe.size() > 80)
        safe = safe.substr(0, 60) + "-" + std::to_string(std::hash<std::string>{}(name));
    return safe;
}

// Waits for an overlapped operation until the deadline; cancels it on time-out.
bool finish(HANDLE h, OVERLAPPED& ov, BOOL started, DWORD& transferred, std::int64_t deadline) {
    if (started) return GetOverlappedResult(h, &ov, &transferred, FALSE) != FALSE;
    if (GetLastError() != ERROR_IO_PENDING) return false;
    std::int64_t left = deadline - nowMs();
    if (left < 0) left = 0;
    if (WaitForSingleObject(ov.hEvent, static_cast<DWORD>(left)) != WAIT_OBJECT_0) {
        CancelIo(h);
        GetOverlappedResult(h, &ov, &transferred, TRUE);
        return false;
    }
    return GetOverlappedResult(h, &ov, &transferred, FALSE) != FALSE;
}

}  // namespace

std::string Win32InstanceChannel::pipeName(const std::string& instanceName) {
    return "\\\\.\\pipe\\tessara-" + safeName(instanceName);
}

std::string Win32InstanceChannel::mutexName(const std::string& instanceName) {
    return "Local\\Tessara-" + safeName(instanceName);
}

Win32InstanceChannel::~Win32InstanceChannel() { release(); }

bool Win32InstanceChannel::claim(const std::string& instanceName) {
    if (mutex_ && claimedName_ == instanceName) return true;
    release();
    HANDLE m = CreateMutexW(nullptr, FALSE, toWide(mutexName(instanceName)).c_str());
    if (!m) return false;
    if (GetLastError() == ERROR_ALREADY_EXISTS) {
        CloseHandle(m);
        return false;
    }
    mutex_ = m;
    claimedName_ = instanceName;
    firstInstance_ = true;
    connectEvent_ = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    connectOverlapped_ = new OVERLAPPED{};
    if (!connectEvent_ || !listen()) {
        release();
        return false;
    }
    return true;
}

bool Win32InstanceChannel::listen() {
    DWORD flags = PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED;
    if (firstInstance_) flags |= FILE_FLAG_FIRST_PIPE_INSTANCE;
    HANDLE p = CreateNamedPipeW(
        toWide(pipeName(claimedName_)).c_str(), flags,
        PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
        PIPE_UNLIMITED_INSTANCES, 4096, 4096, 0, nullptr);
    if (p == INVALID_HANDLE_VALUE) return false;
    firstInstance_ = false;
    auto* ov = static_cast<OVERLAPPED*>(connectOverlapped_);
    *ov = OVERLAPPED{};
    ov->hEvent = connectEvent_;
    ResetEvent(connectEvent_);
    if (!ConnectNamedPipe(p, ov)) {
        DWORD e = GetLastError();
        if (e == ERROR_PIPE_CONNECTED) {
            SetEvent(connectEvent_);
        } else if (e != ERROR_IO_PENDING) {
            CloseHandle(p);
            return false;
        }
    }
    listening_ = p;
    return true;
}

bool Win32InstanceChannel::anotherInstanceRunning(const std::string& instanceName) {
    if (mutex_ && claimedName_ == instanceName) return false;
    HANDLE m = OpenMutexW(SYNCHRONIZE, FALSE, toWide(mutexName(instanceName)).c_str());
    if (!m) return false;
    CloseHandle(m);
    return true;
}

bool Win32InstanceChannel::send(const std::string& instanceName, const InstanceMessage& message) {
    const std::int64_t deadline = nowMs() + sendTimeoutMs_;
    std::wstring name = toWide(pipeName(instanceName));
    HANDLE p = INVALID_HANDLE_VALUE;
    for (;;) {
        p = CreateFileW(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_FLAG_OVERLAPPED, nullptr);
        if (p != INVALID_HANDLE_VALUE) break;
        // Busy: every instance is taken; the holder opens another soon.
        if (GetLastError() != ERROR_PIPE_BUSY || nowMs() >= deadline) return false;
        WaitNamedPipeW(name.c_str(), 50);
    }
    HANDLE ev = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const std::string frame = wire::encode(message);
    bool ok = ev != nullptr;
    std::size_t done = 0;
    while (ok && done < frame.size()) {
        OVERLAPPED ov{};
        ov.hEvent = ev;
        ResetEvent(ev);
        DWORD n = 0;
        BOOL r = WriteFile(p, frame.data() + done, static_cast<DWORD>(frame.size() - done), nullptr,
                           &ov);
        ok = finish(p, ov, r, n, deadline) && n > 0;
        done += n;
    }
    char ack = 0;
    if (ok) {
        OVERLAPPED ov{};
        ov.hEvent = ev;
        ResetEvent(ev);
        DWORD n = 0;
        BOOL r = ReadFile(p, &ack, 1, nullptr, &ov);
        ok = finish(p, ov, r, n, deadline) && n == 1;
    }
    if (ev) CloseHandle(ev);
    CloseHandle(p);
    return ok && ack == wire::kAck;
}

void Win32InstanceChannel::dropClient(std::size_t index) {
    HANDLE p = clients_[index].pipe;
    DisconnectNamedPipe(p);
    CloseHandle(p);
    clients_.erase(clients_.begin() + static_cast<std::ptrdiff_t>(index));
}

std::vector<InstanceMessage> Win32InstanceChannel::receive() {
    std::vector<InstanceMessage> out;
    if (!mutex_) return out;
    const std::int64_t now = nowMs();
    // Each connected instance becomes a client and a fresh one listens.
    while (listening_ && WaitForSingleObject(connectEvent_, 0) == WAIT_OBJECT_0) {
        DWORD ignored;
        auto* ov = static_cast<OVERLAPPED*>(connectOverlapped_);
        bool connected = GetOverlappedResult(listening_, ov, &ignored, FALSE) ||
                         GetLastError() == ERROR_PIPE_CONNECTED;
        if (connected) {
            clients_.push_back(Client{listening_, now, {}});
        } else {
            CloseHandle(listening_);
        }
        listening_ = nullptr;
        if (!listen()) break;
    }
    for (std::size_t i = 0; i < clients_.size();) {
        Client& cl = clients_[i];
        HANDLE p = cl.pipe;
        if (cl.acked) {
            // Disconnecting discards what the sender has not read yet, so an
            // answered sender is let go only once it has hung up (or after
            // the grace time, if it never does).
            DWORD avail = 0;
            if (!PeekNamedPipe(p, nullptr, 0, nullptr, &avail, nullptr) ||
                now - cl.since > clientGraceMs_)
                dropClient(i);
            else
                ++i;
            continue;
        }
        bool broken = false;
        for (;;) {
            DWORD avail = 0;
            if (!PeekNamedPipe(p, nullptr, 0, nullptr, &avail, nullptr)) {
                broken = true;
                break;
            }
            if (avail == 0 || cl.buffer.size() > wire::kHeaderSize + wire::kMaxPayload) break;
            std::string chunk(avail, '\0');
            OVERLAPPED ov{};
            ov.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
            DWORD n = 0;
            BOOL r = ReadFile(p, chunk.data(), avail, nullptr, &ov);
            // The bytes are there, so the read completes at once.
            bool ok = finish(p, ov, r, n, nowMs() + 1000);
            CloseHandle(ov.hEvent);
            if (!ok) {
                broken = true;
                break;
            }
            cl.buffer.append(chunk.data(), n);
        }
        std::optional<std::uint32_t> len;
        if (cl.buffer.size() >= wire::kHeaderSize) {
            len = wire::payloadLength(cl.buffer);
            if (!len) {
                dropClient(i);
                continue;
            }
        }
        if (len && cl.buffer.size() >= wire::kHeaderSize + *len) {
            auto m =
                wire::decodePayload(std::string_view(cl.buffer).substr(wire::kHeaderSize, *len));
            if (m) {
                // Only a sender still waiting takes the request: one that
                // gave up has reported failure, so its message must not act.
                OVERLAPPED ov{};
                ov.hEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
                DWORD n = 0;
                BOOL r = WriteFile(p, &wire::kAck, 1, nullptr, &ov);
                bool sent = finish(p, ov, r, n, nowMs() + 200) && n == 1;
                CloseHandle(ov.hEvent);
                if (sent) {
                    out.push_back(std::move(*m));
                    cl.acked = true;
                    cl.since = now;
                    ++i;
                    continue;
                }
            }
            dropClient(i);
            continue;
        }
        if (broken || now - cl.since > clientGraceMs_) {
            dropClient(i);
            continue;
        }
        ++i;
    }
    return out;
}

void Win32InstanceChannel::release() {
    while (!clients_.empty()) dropClient(clients_.size() - 1);
    if (listening_) {
        CancelIo(listening_);
        CloseHandle(listening_);
        listening_ = nullptr;
    }
    if (connectEvent_) {
        CloseHandle(connectEvent_);
        connectEvent_ = nullptr;
    }
    delete static_cast<OVERLAPPED*>(connectOverlapped_);
    connectOverlapped_ = nullptr;
    if (mutex_) {
        CloseHandle(mutex_);
        mutex_ = nullptr;
    }
    claimedName_.clear();
}

}  // namespace platform
