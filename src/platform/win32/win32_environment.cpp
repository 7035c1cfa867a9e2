#include "platform/win32/win32_environment.h"

#include <windows.h>
// windows.h first: shlobj.h builds on it.
#include <shlobj.h>

#include "platform/win32/utf16.h"

namespace platform {

using win32::toUtf8;

std::string Win32Environment::applicationDirectory() {
    std::wstring buf(MAX_PATH, L'\0');
    for (;;) {
        DWORD n = GetModuleFileNameW(nullptr, buf.data(), static_cast<DWORD>(buf.size()));
        if (n == 0) return {};
        if (n < buf.size()) {
            buf.resize(n);
            break;
        }
        buf.resize(buf.size() * 2);
    }
    auto slash = buf.find_last_of(L"\\/");
    return toUtf8(slash == std::wstring::npos ? buf : buf.substr(0, slash));
}

std::string Win32Environment::commonAppData() {
    wchar_t buf[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_CURRENT, buf)))
        return {};
    std::string dir = toUtf8(buf);
    while (dir.size() > 3 && dir.back() == '\\') dir.pop_back();
    return dir;
}

std::string Win32Environment::temporaryDirectory() {
    wchar_t buf[MAX_PATH + 2] = {};
    DWORD n = GetTempPathW(MAX_PATH + 1, buf);
    std::string dir = n ? toUtf8(std::wstring_view(buf, n)) : std::string("c:\\temp\\");
    if (dir.back() != '\\') dir += '\\';
    return dir;
}

std::string Win32Environment::commandLine() { return afterProgramName(toUtf8(GetCommandLineW())); }

std::string Win32Environment::afterProgramName(const std::string& line) {
    std::size_t i = 0;
    if (!line.empty() && line[0] == '"') {
        i = line.find('"', 1);
        i = i == std::string::npos ? line.size() : i + 1;
    } else {
        while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    }
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    std::string rest = line.substr(i);
    // Shortcuts and host menu macros put the database path after "/d" in
    // quotes, and start-up cuts the first and last character off blindly. A
    // start from a console or a script may leave them out: they are added,
    // so such a start opens the same library.
    if (rest.size() > 3 && (rest[0] == '/') && (rest[1] == 'd' || rest[1] == 'D') &&
        rest[2] == ' ' && rest[3] != '"')
        rest = rest.substr(0, 3) + '"' + rest.substr(3) + '"';
    return rest;
}

}  // namespace platform
