// Arbitrary bytes as a Jet SQL statement run against a real database made by
// Access (a fresh copy of indexTestV2000.mdb per input, on disk, through the
// engine's own storage). Each statement either runs or is refused with
// jet::Error; afterwards the file must still read back whole and pass the
// engine's structural check. A crash, another exception or a damaged file
// is a bug.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/error.h"
#include "jet/sql/executor.h"

namespace {

namespace fs = std::filesystem;

struct Scratch {
    fs::path dir, file;
    std::vector<char> pristine;

    Scratch() {
        fs::path base = fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path();
        dir = base / ("tessara_fuzz_sql_engine_" + std::to_string(::getpid()));
        fs::create_directories(dir);
        file = dir / "catalogue.mdb";
        std::ifstream in(fs::path(TESSARA_TESTDATA) / "mdb" / "indexTestV2000.mdb",
                         std::ios::binary);
        pristine.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        if (pristine.empty()) std::abort();  // the test file is missing
    }
    ~Scratch() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
    bool unchanged() const {
        std::ifstream in(file, std::ios::binary);
        std::vector<char> now((std::istreambuf_iterator<char>(in)),
                              std::istreambuf_iterator<char>());
        return now == pristine;
    }
    void reset() {
        for (const auto& e : fs::directory_iterator(dir)) fs::remove(e.path());
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(pristine.data(), static_cast<std::streamsize>(pristine.size()));
    }
};

Scratch& scratch() {
    static Scratch s;
    return s;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Scratch& s = scratch();
    s.reset();
    const std::string text(reinterpret_cast<const char*>(data), size);
    bool ran = false;
    try {
        sql::Executor ex(sql::openEngineStorage(s.file.string(), false));
        ex.execute(text);
        ran = true;
    } catch (const jet::Error&) {
    }
    // A statement that ran or was refused leaves a database Jet can read.
    // An unchanged file needs no check, which keeps reading statements quick.
    if (s.unchanged()) return 0;
    auto db = jet::Database::open(s.file.string());
    jet::readEverything(*db);
    std::vector<std::string> faults = jet::checkDatabase(*db);
    if (!faults.empty()) {
        std::fprintf(stderr, "%s after %s: %s\n", ran ? "damage" : "damage despite refusal",
                     text.substr(0, 200).c_str(), faults.front().c_str());
        std::abort();
    }
    return 0;
}
