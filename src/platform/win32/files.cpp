#include "platform/files.h"

#include <windows.h>

namespace platform {

bool writeFileDurably(const std::filesystem::path& path, const std::string& bytes) {
    HANDLE h = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    if (h == INVALID_HANDLE_VALUE) return false;
    std::size_t written = 0;
    bool ok = true;
    while (ok && written < bytes.size()) {
        const std::size_t rest = bytes.size() - written;
        DWORD n = 0;
        ok = WriteFile(h, bytes.data() + written, DWORD(rest > 0x40000000u ? 0x40000000u : rest),
                       &n, nullptr) &&
             n > 0;
        written += n;
    }
    ok = ok && FlushFileBuffers(h);
    return CloseHandle(h) && ok;
}

long processId() { return static_cast<long>(GetCurrentProcessId()); }

std::tm localTime(std::time_t t) {
    std::tm tm{};
    localtime_s(&tm, &t);
    return tm;
}

}  // namespace platform
