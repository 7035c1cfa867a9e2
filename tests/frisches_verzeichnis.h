#pragma once
// A fresh, empty directory for the running test, and a whole file read back.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tessara::test {

// <temp>/tessara_<art>_<pid>_<suite>_<test>, emptied.
inline std::filesystem::path frischesVerzeichnis(const std::string& art) {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = "tessara_" + art + "_" + std::to_string(::getpid()) + "_" +
                       info->test_suite_name() + "_" + info->name();
    std::replace(name.begin(), name.end(), '/', '_');
    const auto p = std::filesystem::temp_directory_path() / name;
    std::filesystem::remove_all(p);
    std::filesystem::create_directories(p);
    return p;
}

// The bytes of a file; empty when there is none.
inline std::string dateiInhalt(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace tessara::test
