#pragma once
// Temporary copies of the Access-made files, raw file bytes, and child
// processes for the crash and locking tests.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "jet/format/format.h"
#include "jet/read/database.h"

namespace txtest {

namespace fs = std::filesystem;

inline std::string testFile(const std::string& name) {
    fs::path index = fs::path(TESSARA_TESTDATA) / "mdb-index" / name;
    return fs::exists(index) ? index.string() : std::string(TESSARA_TESTDATA) + "/mdb/" + name;
}

class TempDir {
  public:
    TempDir() {
        std::string tmpl = (fs::temp_directory_path() / "jettx-XXXXXX").string();
        if (!::mkdtemp(tmpl.data())) throw std::runtime_error("mkdtemp failed");
        path_ = tmpl;
    }
    ~TempDir() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const fs::path& path() const { return path_; }
    // A fresh copy of a shared test file; its path.
    std::string copy(const std::string& name, const std::string& as = {}) const {
        fs::path to = path_ / (as.empty() ? name : as);
        fs::copy_file(testFile(name), to, fs::copy_options::overwrite_existing);
        // The shared files are read-only.
        fs::permissions(to, fs::perms::owner_write, fs::perm_options::add);
        return to.string();
    }

  private:
    fs::path path_;
};

inline std::vector<std::uint8_t> fileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline bool exists(const std::string& path) { return fs::exists(path); }

// A journal to roll back beside the database: its header written (the file
// left between commits has it zeroed).
inline bool journalLive(const std::string& databasePath) {
    auto j = fileBytes(databasePath + "-journal");
    return j.size() >= 8 && std::string(j.begin(), j.begin() + 8) == "TJETJRNL";
}

// An empty data page owned by the table at tdefPage, as the row writer
// makes them, allocated in the open unit; its number.
inline std::uint32_t newDataPage(jet::Database& db, std::uint32_t tdefPage) {
    std::uint32_t n = db.allocatePage(jet::PageType::Data);
    jet::PageBytes p = *db.pages().page(n);
    jet::put16(p.data() + jet::datapage::kFreeSpace, std::uint16_t(jet::kPageSize - 14));
    jet::put32(p.data() + jet::datapage::kTdefPage, tdefPage);
    db.pages().put(n, p);
    return n;
}

// Starts body in a child process without waiting; the child's pid.
inline pid_t spawn(const std::function<int()>& body) {
    std::fflush(nullptr);
    pid_t pid = ::fork();
    if (pid == 0) {
        int rc = 99;
        try {
            rc = body();
        } catch (...) {
            rc = 98;
        }
        ::_exit(rc);
    }
    return pid;
}

inline int waitFor(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    return status;
}

// Runs body in a child process and waits for it; the wait status. The
// child leaves with _exit(body()) unless it dies first (SIGKILL from a crash hook).
inline int inChild(const std::function<int()>& body) { return waitFor(spawn(body)); }

inline bool killedBySigkill(int status) {
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}
inline int exitCode(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }

}  // namespace txtest
