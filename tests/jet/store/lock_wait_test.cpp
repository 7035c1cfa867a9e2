// Locks held by another process are waited for a bounded time: then the
// statement fails with Jet's message, having changed nothing.
#include <gtest/gtest.h>

#include <chrono>

#include "jet/format/error.h"
#include "jet/sql/engine_storage.h"
#include "jet/sql/executor.h"
#include "jet/store/file_lock.h"
#include "jet/store/journal.h"
#include "jet/support/tx_support.h"

namespace {

using namespace txtest;
using jet::filelock::Mode;

constexpr const char* kInsert = "INSERT INTO Table1 (A, I) VALUES ('neu', True)";

// A second process that takes byte locks on the file, tells when it holds
// them, and keeps them until release().
class LockHolder {
  public:
    LockHolder(const std::string& path, std::vector<std::pair<std::uint64_t, Mode>> locks) {
        if (::pipe(ready_) != 0 || ::pipe(release_) != 0) return;
        pid_ = spawn([&] {
            ::close(ready_[0]);
            ::close(release_[1]);
            jet::os::File file(path, jet::os::OpenMode::ReadWrite);
            for (const auto& [offset, mode] : locks)
                if (!jet::filelock::lock(file, offset, mode, false)) return 3;
            char c = 1;
            if (::write(ready_[1], &c, 1) != 1) return 4;
            while (::read(release_[0], &c, 1) > 0) {
            }
            return 0;
        });
        ::close(ready_[1]);
        ::close(release_[0]);
        char c = 0;
        held_ = ::read(ready_[0], &c, 1) == 1;
    }
    ~LockHolder() { release(); }
    bool held() const { return held_; }
    // The other process's exit code, once it has let go.
    int release() {
        if (pid_ <= 0) return -1;
        ::close(release_[1]);
        ::close(ready_[0]);
        int code = exitCode(waitFor(pid_));
        pid_ = 0;
        return code;
    }

  private:
    int ready_[2] = {-1, -1}, release_[2] = {-1, -1};
    pid_t pid_ = 0;
    bool held_ = false;
};

struct Reports {
    int count = 0;
    bool ended = false;
    jet::filelock::Wait wait() {
        return {std::chrono::milliseconds(300), [this](const jet::filelock::WaitReport& r) {
                    ++count;
                    ended = r.ended;
                }};
    }
};

void expectLocked(sql::Executor& ex, const char* statement) {
    try {
        ex.execute(statement);
        ADD_FAILURE() << statement << " did not give up";
    } catch (const jet::Error& e) {
        EXPECT_EQ(e.number(), 3218);
        EXPECT_STREQ(e.what(), "Could not update; currently locked.");
    }
}

bool writerByteFree(const std::string& path) {
    jet::os::File probe(path, jet::os::OpenMode::ReadWrite);
    if (!jet::filelock::lock(probe, jet::filelock::kWriterByte, Mode::Exclusive, false))
        return false;
    jet::filelock::unlock(probe, jet::filelock::kWriterByte);
    return true;
}

// Held by a writer in its unit, the writer byte keeps the INSERT from
// beginning; held by a reader in a run of reads, the commit byte keeps it
// from committing the unit it has built; both held by another process's
// commit keep a SELECT from reading.
TEST(LockWaitTest, StatementsGiveUpOnALockOfAnotherProcessAndChangeNothing) {
    using Locks = std::vector<std::pair<std::uint64_t, Mode>>;
    const struct {
        const char* name;
        Locks locks;
        const char* statement;
    } cases[] = {
        {"writer byte", {{jet::filelock::kWriterByte, Mode::Exclusive}}, kInsert},
        {"commit byte shared", {{jet::filelock::kCommitByte, Mode::Shared}}, kInsert},
        {"committing",
         {{jet::filelock::kWriterByte, Mode::Exclusive},
          {jet::filelock::kCommitByte, Mode::Exclusive}},
         "SELECT A FROM Table1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        TempDir dir;
        const std::string path = dir.copy("testV2000.mdb");
        Reports seen;
        sql::Executor ex(sql::openEngineStorage(path, false, {}, seen.wait()));
        const auto before = fileBytes(path);
        LockHolder other(path, c.locks);
        ASSERT_TRUE(other.held());
        expectLocked(ex, c.statement);
        EXPECT_TRUE(fileBytes(path) == before);
        EXPECT_FALSE(journalLive(path));
        EXPECT_GT(seen.count, 0);
        EXPECT_TRUE(seen.ended);
        // The INSERT that waited for the commit byte let go of the writer byte.
        EXPECT_EQ(writerByteFree(path), c.locks.size() == 1 && c.locks[0].second == Mode::Shared);
        EXPECT_EQ(other.release(), 0);
        const sql::ExecResult r = ex.execute(c.statement);
        EXPECT_TRUE(r.rowsAffected == 1 || !r.rows.rows.empty());
    }
}

}  // namespace
