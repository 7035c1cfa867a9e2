#include "platform/posix/posix_environment.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace platform {
namespace {

std::string withoutTrailingSlash(std::string s) {
    while (s.size() > 1 && s.back() == '/') s.pop_back();
    return s;
}

std::string envOr(const char* name, const std::string& fallback) {
    const char* v = std::getenv(name);
    return v && *v ? std::string(v) : fallback;
}

}  // namespace

PosixEnvironment::PosixEnvironment(int argc, const char* const* argv) {
    for (int i = 1; i < argc; ++i) arguments_.emplace_back(argv[i] ? argv[i] : "");
}

PosixEnvironment::PosixEnvironment(std::vector<std::string> arguments)
    : arguments_(std::move(arguments)) {}

std::string PosixEnvironment::applicationDirectory() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    std::string dir = ec ? std::filesystem::current_path(ec).string() : exe.parent_path().string();
    return programPath(withoutTrailingSlash(dir));
}

std::string PosixEnvironment::commonAppData() {
    std::string dir = envOr("TESSARA_COMMON_APPDATA", "");
    if (dir.empty()) {
        std::string home = envOr("HOME", "/tmp");
        dir = envOr("XDG_DATA_HOME", home + "/.local/share") + "/tessara-common";
    }
    dir = withoutTrailingSlash(dir);
    std::error_code ec;
    std::filesystem::create_directories(dir, ec);
    return programPath(dir);
}

std::string PosixEnvironment::temporaryDirectory() {
    std::string dir = programPath(withoutTrailingSlash(envOr("TMPDIR", "/tmp")));
    if (dir.empty() || dir.back() != '\\') dir += '\\';
    return dir;
}

std::string PosixEnvironment::commandLine() {
    // On Windows the database path after "/d" always stands in quotes
    // (shortcuts and host menu macros write it so) and start-up cuts them off
    // blindly; a shell has already taken them away here, so they are put back.
    std::string line;
    for (std::size_t i = 0; i < arguments_.size(); ++i) {
        if (i > 0) line += ' ';
        const bool nachD = i > 0 && (arguments_[i - 1] == "/d" || arguments_[i - 1] == "/D");
        std::string teil = joinCommandLine({arguments_[i]});
        if (nachD && (teil.empty() || teil.front() != '"')) teil = '"' + teil + '"';
        line += teil;
    }
    return line;
}

std::string PosixEnvironment::joinCommandLine(const std::vector<std::string>& arguments) {
    std::string line;
    for (const auto& arg : arguments) {
        if (!line.empty()) line += ' ';
        if (!arg.empty() && arg.find_first_of(" \t\n\v\"") == std::string::npos) {
            line += arg;
            continue;
        }
        line += '"';
        std::size_t backslashes = 0;
        for (char c : arg) {
            if (c == '\\') {
                ++backslashes;
                continue;
            }
            if (c == '"') backslashes = backslashes * 2 + 1;
            line.append(backslashes, '\\');
            backslashes = 0;
            line += c;
        }
        line.append(backslashes * 2, '\\');
        line += '"';
    }
    return line;
}

}  // namespace platform
