// Any bytes as a Jet database: opened from memory, every table, row, long
// value and index entry read and the structure checked. Only jet::Error may
// come out; anything else (a crash, another exception, a hang) is a bug.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "jet/check/check.h"
#include "jet/read/database.h"

// Seeds the first corpus directory with the Access-made test files when it
// is empty (they may not be copied into the repository).
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::path testdata = fs::path(__FILE__).parent_path().parent_path().parent_path() / "shared" /
                        "testdata" / "mdb";
    for (int i = 1; i < *argc; ++i) {
        std::string a = (*argv)[i];
        if (a.empty() || a[0] == '-') continue;
        if (!fs::is_directory(a, ec)) continue;
        if (fs::directory_iterator(a, ec) != fs::directory_iterator()) break;
        for (const auto& e : fs::directory_iterator(testdata, ec))
            if (e.path().extension() == ".mdb")
                fs::copy_file(e.path(), fs::path(a) / e.path().filename(), ec);
        break;
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        auto db = jet::Database::fromMemory(std::vector<std::uint8_t>(data, data + size));
        jet::readEverything(*db);
        jet::checkDatabase(*db);
    } catch (const jet::Error&) {
    }
    return 0;
}
