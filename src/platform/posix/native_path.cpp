// Program paths on a system without drive letters: each drive letter is a
// directory of its own, so "c:\temp\" and the paths the program composes
// from it lead to real, writable places.
#include <pwd.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/environment.h"

namespace platform {
namespace {

std::string homeDirectory() {
    if (const char* h = std::getenv("HOME"); h && *h) return h;
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir) return pw->pw_dir;
    return "/tmp";
}

std::string stripTrailingSlashes(std::string s) {
    while (s.size() > 1 && s.back() == '/') s.pop_back();
    return s;
}

// The directory standing for drive `letter` (lower case), and whether it was
// named explicitly by the environment.
std::string driveRoot(char letter, bool* explicitRoot = nullptr) {
    std::string var = "TESSARA_DRIVE_";
    var += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    if (const char* v = std::getenv(var.c_str()); v && *v) {
        if (explicitRoot) *explicitRoot = true;
        return stripTrailingSlashes(v);
    }
    if (explicitRoot) *explicitRoot = false;
    return homeDirectory() + "/.tessara/drive_" + letter;
}

bool isDrivePath(const std::string& p) {
    return p.size() >= 2 && std::isalpha(static_cast<unsigned char>(p[0])) && p[1] == ':';
}

std::string slashes(std::string s, char from, char to) {
    for (char& c : s)
        if (c == from) c = to;
    return s;
}

}  // namespace

std::string nativePath(const std::string& programPath) {
    if (!isDrivePath(programPath)) return slashes(programPath, '\\', '/');
    char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(programPath[0])));
    std::string root = driveRoot(letter);
    std::error_code ec;
    std::filesystem::create_directories(root, ec);  // a missing drive is created empty
    std::string rest = slashes(programPath.substr(2), '\\', '/');
    // "c:file" (drive-relative) is taken from the drive's root, as there is
    // no per-drive current directory here.
    if (!rest.empty() && rest[0] != '/') rest = "/" + rest;
    return root + rest;
}

std::string programPath(const std::string& nativePath) {
    if (isDrivePath(nativePath)) return slashes(nativePath, '/', '\\');
    // Explicitly mapped drives first: they may lie anywhere, also inside the
    // default drive directories.
    for (int pass = 0; pass < 2; ++pass) {
        for (char letter = 'a'; letter <= 'z'; ++letter) {
            bool explicitRoot = false;
            std::string root = driveRoot(letter, &explicitRoot);
            if (explicitRoot != (pass == 0) || root == "/") continue;
            if (nativePath.compare(0, root.size(), root) != 0) continue;
            if (nativePath.size() == root.size()) return std::string(1, letter) + ":\\";
            if (nativePath[root.size()] != '/') continue;
            return std::string(1, letter) + ":" +
                   slashes(nativePath.substr(root.size()), '/', '\\');
        }
    }
    return slashes(nativePath, '/', '\\');
}

}  // namespace platform
