#pragma once
// The few file and process services the standard library leaves to the
// system, for the areas above platform/ that must not call it themselves.
#include <ctime>
#include <filesystem>
#include <string>

namespace platform {

// Writes bytes into a new or emptied file and puts them on the disk before
// it returns, so that a rename which follows publishes the whole content or
// none of it. False when any step failed.
bool writeFileDurably(const std::filesystem::path& path, const std::string& bytes);

// A path held as the program's UTF-8 text, as the file system's own, and
// back. std::filesystem converts narrow strings with the ANSI code page on
// Windows, which turns "Bibliothek Müller" into another name.
inline std::filesystem::path utf8Path(const std::string& s) {
    return std::filesystem::path(std::u8string(s.begin(), s.end()));
}
inline std::string utf8String(const std::filesystem::path& p) {
    const std::u8string u = p.u8string();
    return std::string(u.begin(), u.end());
}

// This process's number, to tell the temporary files of two processes apart.
long processId();

// The broken-down local time of t (thread-safe).
std::tm localTime(std::time_t t);

}  // namespace platform
