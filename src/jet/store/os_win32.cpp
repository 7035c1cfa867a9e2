#include <windows.h>

#include <algorithm>
#include <atomic>
#include <string>

#include "jet/store/os.h"

namespace jet::os {

namespace {

std::atomic<std::uint64_t> g_syncs{0};

HANDLE handleOf(std::intptr_t h) { return reinterpret_cast<HANDLE>(h); }

std::wstring wide(const std::string& utf8) {
    if (utf8.empty()) return {};
    int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), int(utf8.size()), nullptr, 0);
    std::wstring w(std::size_t(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), int(utf8.size()), w.data(), n);
    return w;
}

std::string reason(DWORD e) {
    char* text = nullptr;
    DWORD n = FormatMessageA(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, e, 0, reinterpret_cast<char*>(&text), 0, nullptr);
    std::string s = n && text ? std::string(text, n) : std::string();
    if (text) LocalFree(text);
    while (!s.empty() &&
           (s.back() == '\n' || s.back() == '\r' || s.back() == ' ' || s.back() == '.'))
        s.pop_back();
    return s.empty() ? "Windows error " + std::to_string(e) : s;
}

OVERLAPPED at(std::uint64_t offset) {
    OVERLAPPED ov{};
    ov.Offset = DWORD(offset & 0xFFFFFFFFu);
    ov.OffsetHigh = DWORD(offset >> 32);
    return ov;
}

}  // namespace

File::File(const std::string& path, OpenMode mode) {
    DWORD access = GENERIC_READ, disposition = OPEN_EXISTING;
    if (mode != OpenMode::ReadOnly) access |= GENERIC_WRITE;
    if (mode == OpenMode::CreateTruncate) disposition = CREATE_ALWAYS;
    // Shared for reading, writing and deleting, as a POSIX descriptor is:
    // the byte locks, not the share mode, keep writers apart.
    HANDLE h = CreateFileW(wide(path).c_str(), access,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) {
        DWORD e = GetLastError();
        missing_ = e == ERROR_FILE_NOT_FOUND || e == ERROR_PATH_NOT_FOUND;
        error_ = reason(e);
        return;
    }
    handle_ = reinterpret_cast<std::intptr_t>(h);
}

File::~File() { close(); }

File::File(File&& other) noexcept
    : handle_(other.handle_),
      missing_(other.missing_),
      error_(std::move(other.error_)),
      held_(std::move(other.held_)) {
    other.handle_ = -1;
}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        close();
        handle_ = other.handle_;
        missing_ = other.missing_;
        error_ = std::move(other.error_);
        held_ = std::move(other.held_);
        other.handle_ = -1;
    }
    return *this;
}

bool File::isOpen() const { return handle_ != -1; }

void File::close() {
    // Windows frees the locks of a closed handle only eventually: drop them now.
    while (!held_.empty()) unlock(held_.back().offset);
    if (handle_ != -1) CloseHandle(handleOf(handle_));
    handle_ = -1;
}

void File::fail() { error_ = reason(GetLastError()); }

bool File::read(void* buf, std::size_t n, std::uint64_t off) {
    countCall(false);
    auto* p = static_cast<std::uint8_t*>(buf);
    std::size_t done = 0;
    while (done < n) {
        OVERLAPPED ov = at(off + done);
        DWORD want = DWORD(n - done > 0x40000000u ? 0x40000000u : n - done), got = 0;
        if (!ReadFile(handleOf(handle_), p + done, want, &got, &ov)) {
            if (GetLastError() != ERROR_HANDLE_EOF) return fail(), false;
            got = 0;
        }
        if (got == 0) {
            error_ = "unexpected end of file";
            return false;
        }
        done += got;
    }
    return true;
}

bool File::write(const void* buf, std::size_t n, std::uint64_t off) {
    countCall(true);
    const auto* p = static_cast<const std::uint8_t*>(buf);
    std::size_t done = 0;
    while (done < n) {
        OVERLAPPED ov = at(off + done);
        DWORD want = DWORD(n - done > 0x40000000u ? 0x40000000u : n - done), put = 0;
        if (!WriteFile(handleOf(handle_), p + done, want, &put, &ov)) return fail(), false;
        if (put == 0) {
            error_ = "nothing written";
            return false;
        }
        done += put;
    }
    return true;
}

bool File::sync() {
    ++g_syncs;
    if (FlushFileBuffers(handleOf(handle_))) return true;
    fail();
    return false;
}

bool File::size(std::uint64_t& bytes) {
    LARGE_INTEGER s;
    if (!GetFileSizeEx(handleOf(handle_), &s)) return fail(), false;
    bytes = std::uint64_t(s.QuadPart);
    return true;
}

bool File::truncate(std::uint64_t bytes) {
    LARGE_INTEGER to;
    to.QuadPart = LONGLONG(bytes);
    if (SetFilePointerEx(handleOf(handle_), to, nullptr, FILE_BEGIN) &&
        SetEndOfFile(handleOf(handle_)))
        return true;
    fail();
    return false;
}

LockResult File::lock(std::uint64_t offset, LockMode mode, bool wait) {
    auto held =
        std::find_if(held_.begin(), held_.end(), [&](const Held& h) { return h.offset == offset; });
    if (held != held_.end()) {
        if (held->mode == mode) return LockResult::Locked;
        if (mode == LockMode::Exclusive) {
            // Up: the shared lock goes first, or it would block our own
            // request. Refused, the shared lock comes back, as a POSIX
            // conversion that fails leaves the lock as it was; only a holder
            // of an exclusive lock could delay that, and the engine takes
            // one only under the writer byte, which the converter holds.
            unlock(offset);
            LockResult up = lock(offset, mode, wait);
            if (up == LockResult::Busy) lock(offset, LockMode::Shared, true);
            return up;
        }
        // Down: a shared lock beside the exclusive one, then the first
        // unlock of the byte drops the exclusive one (Windows unlocks the
        // exclusive lock of a handle before its shared one).
        OVERLAPPED ov = at(offset);
        if (!LockFileEx(handleOf(handle_), 0, 0, 1, 0, &ov)) return fail(), LockResult::Failed;
        ov = at(offset);
        UnlockFileEx(handleOf(handle_), 0, 1, 0, &ov);
        held->mode = LockMode::Shared;
        return LockResult::Locked;
    }
    DWORD flags = 0;
    if (mode == LockMode::Exclusive) flags |= LOCKFILE_EXCLUSIVE_LOCK;
    if (!wait) flags |= LOCKFILE_FAIL_IMMEDIATELY;
    OVERLAPPED ov = at(offset);
    if (LockFileEx(handleOf(handle_), flags, 0, 1, 0, &ov)) {
        held_.push_back({offset, mode});
        return LockResult::Locked;
    }
    DWORD e = GetLastError();
    if (!wait && (e == ERROR_LOCK_VIOLATION || e == ERROR_IO_PENDING)) return LockResult::Busy;
    error_ = reason(e);
    return LockResult::Failed;
}

void File::unlock(std::uint64_t offset) {
    auto held =
        std::find_if(held_.begin(), held_.end(), [&](const Held& h) { return h.offset == offset; });
    if (handle_ == -1 || held == held_.end()) return;
    held_.erase(held);
    OVERLAPPED ov = at(offset);
    UnlockFileEx(handleOf(handle_), 0, 1, 0, &ov);
}

bool exists(const std::string& path) {
    return GetFileAttributesW(wide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool remove(const std::string& path, std::string& error) {
    if (DeleteFileW(wide(path).c_str())) return true;
    DWORD e = GetLastError();
    if (e == ERROR_FILE_NOT_FOUND || e == ERROR_PATH_NOT_FOUND) return true;
    error = reason(e);
    return false;
}

// NTFS makes a directory entry durable with the file's own flush.
void syncDirectoryOf(const std::string&) {}

std::uint64_t syncCalls() { return g_syncs; }

}  // namespace jet::os
