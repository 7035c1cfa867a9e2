#include "platform/console.h"

#include <windows.h>
// shellapi.h needs windows.h first.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>

#include "platform/win32/utf16.h"

namespace platform {

std::vector<std::string> commandLineArguments(int argc, char** argv) {
    int n = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &n);
    if (!wide) return std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc);
    std::vector<std::string> args;
    for (int i = 1; i < n; ++i) args.push_back(win32::toUtf8(wide[i]));
    LocalFree(wide);
    return args;
}

void binaryStandardStreams() {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    _setmode(_fileno(stdin), _O_BINARY);
}

}  // namespace platform
