// Processes killed before and inside a commit, and inside a rollback: the
// file is found byte for byte as before or as after the unit.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/store/journal.h"
#include "jet/support/tx_support.h"
#include "jet/write/usage_map_writer.h"

namespace {

using namespace txtest;

// A realistic unit: every user table gets a new empty data page, marked in
// its usage map and in its free-space map (in testV2000.mdb the pages lie
// beyond the inline maps' reach, so the maps become reference maps).
void growTables(jet::Database& db) {
    for (const std::string& name : db.tableNames()) {
        auto def = db.tableDef(name);
        const std::uint32_t n = newDataPage(db, def->page);
        jet::setUsageMapBit(db, def->usedPages, n, true);
        jet::setUsageMapBit(db, def->freePages, n, true);
    }
}

// Opens, runs growTables in a unit and commits; the crash hook may kill the
// process on the way.
void writeUnit(const std::string& path) {
    auto db = jet::Database::open(path, {.writable = true});
    db->begin();
    growTables(*db);
    db->commit();
}

// Installs a hook that SIGKILLs the process at its n-th step (1-based), or at
// the n-th step of the given name.
void killAt(int n, const char* only = nullptr) {
    auto seen = std::make_shared<int>(0);
    std::string name = only ? only : "";
    jet::setCrashHook([seen, n, name](const char* step) {
        if (!name.empty() && name != step) return;
        if (++*seen == n) ::raise(SIGKILL);
    });
}

// Runs writeUnit in a child process killed at killAt(n, only); whether it died so.
bool killedWriting(const std::string& path, int n, const char* only = nullptr) {
    return killedBySigkill(inChild([&] {
        killAt(n, only);
        writeUnit(path);
        return 0;
    }));
}

struct Reference {
    std::vector<std::uint8_t> before, after;
    std::vector<std::string> steps;
};

Reference reference(const TempDir& dir) {
    Reference r;
    std::string path = dir.copy("testV2000.mdb", "reference.mdb");
    r.before = fileBytes(path);
    jet::setCrashHook([&](const char* s) { r.steps.emplace_back(s); });
    writeUnit(path);
    jet::setCrashHook(nullptr);
    r.after = fileBytes(path);
    return r;
}

TEST(CrashTest, KillAtEveryStepOfCommitLeavesFileAsBeforeOrAfter) {
    TempDir dir;
    Reference r = reference(dir);
    // The unit overwrites pages that existed and appends; each kind of step
    // occurs, the commit point last. A kill at the first step leaves a
    // journal not yet synced, one at the last a committed file.
    ASSERT_GT(r.after.size(), r.before.size());
    EXPECT_FALSE(std::equal(r.before.begin(), r.before.end(), r.after.begin()));
    for (const char* s : {"journal", "journal-synced", "page", "file-synced"})
        EXPECT_NE(std::find(r.steps.begin(), r.steps.end(), s), r.steps.end()) << s;
    ASSERT_GE(r.steps.size(), 6u);
    EXPECT_EQ(r.steps.front(), "journal");
    EXPECT_EQ(r.steps.back(), "committed");
    for (std::size_t k = 1; k <= r.steps.size(); ++k) {
        SCOPED_TRACE("killed at step " + std::to_string(k) + " (" + r.steps[k - 1] + ")");
        std::string path = dir.copy("testV2000.mdb", "victim.mdb");
        // Every other time over the idle journal of a larger unit: its tail stays.
        std::ofstream(jet::journalPath(path), std::ios::binary | std::ios::trunc)
            << std::string(k % 2 ? 1 << 20 : 0, '\0');
        ASSERT_TRUE(killedWriting(path, int(k)));
        const bool committed = r.steps[k - 1] == "committed";
        EXPECT_EQ(journalLive(path), !committed);
        // A read-only open rolls a hot journal back as well.
        auto db = jet::Database::open(path);
        EXPECT_FALSE(journalLive(path));
        EXPECT_TRUE(fileBytes(path) == (committed ? r.after : r.before));
        EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
    }
}

TEST(CrashTest, FailureInsideCommitRestoresTheFileAtOnce) {
    TempDir dir;
    Reference r = reference(dir);
    for (std::size_t k = 1; k < r.steps.size(); ++k) {  // every step before the commit point
        SCOPED_TRACE("failed at step " + std::to_string(k) + " (" + r.steps[k - 1] + ")");
        std::string path = dir.copy("testV2000.mdb", "victim.mdb");
        auto db = jet::Database::open(path, {.writable = true});
        int seen = 0;
        jet::setCrashHook([&](const char*) {
            if (++seen == int(k)) throw jet::Error("disk full");
        });
        db->begin();
        growTables(*db);
        EXPECT_THROW(db->commit(), jet::Error);
        jet::setCrashHook(nullptr);
        EXPECT_FALSE(db->inTransaction());
        EXPECT_FALSE(exists(jet::journalPath(path)));
        EXPECT_TRUE(fileBytes(path) == r.before);
        // The Database shows the file again and can write the unit now.
        EXPECT_EQ(db->pages().pageCount() * std::size_t(jet::kPageSize), r.before.size());
        db->begin();
        growTables(*db);
        db->commit();
        EXPECT_TRUE(fileBytes(path) == r.after);
    }
}

TEST(CrashTest, JournalThatCannotBeCreatedFailsTheCommitCleanly) {
    TempDir dir;
    std::string path = dir.copy("testV2000.mdb");
    auto before = fileBytes(path);
    auto db = jet::Database::open(path, {.writable = true});
    db->begin();
    growTables(*db);
    fs::create_directory(jet::journalPath(path));  // the journal's name is taken
    EXPECT_THROW(db->commit(), jet::Error);
    EXPECT_FALSE(db->inTransaction());
    EXPECT_TRUE(fileBytes(path) == before);
    fs::remove(jet::journalPath(path));
    EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
}

TEST(CrashTest, KilledAtRandomMomentsTheFileHoldsThePrefixOfReturnedUnits) {
    TempDir dir;
    std::uint32_t seed = 20261122;
    for (int round = 0; round < 6; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        std::string path = dir.copy("delTestV2000.mdb", "run.mdb");
        const std::uint32_t base = std::uint32_t(fileBytes(path).size() / jet::kPageSize);
        int fds[2];
        ASSERT_EQ(::pipe(fds), 0);
        // Unit i appends page base+i-1 holding i and writes i into page base.
        pid_t child = spawn([&] {
            ::close(fds[0]);
            auto db = jet::Database::open(path, {.writable = true});
            for (std::uint32_t i = 1;; ++i) {
                db->begin();
                std::uint32_t n = db->allocatePage(jet::PageType::UsageMap);
                jet::PageBytes p = *db->pages().page(n);
                jet::put32(p.data() + 8, i);
                db->pages().put(n, p);
                jet::PageBytes first = *db->pages().page(base);
                jet::put32(first.data() + 12, i);
                db->pages().put(base, first);
                db->commit();
                if (::write(fds[1], &i, sizeof i) != sizeof i) return 5;
            }
        });
        ::close(fds[1]);
        // The kill comes after the first unit returned, however slow the machine.
        std::uint32_t last = 0, v = 0;
        ASSERT_EQ(::read(fds[0], &last, sizeof last), ssize_t(sizeof last));
        seed = seed * 1103515245u + 12345u;
        ::usleep((seed >> 8) % 250000);
        ::kill(child, SIGKILL);
        ASSERT_TRUE(killedBySigkill(waitFor(child)));
        while (::read(fds[0], &v, sizeof v) == sizeof v) last = v;
        ::close(fds[0]);

        auto db = jet::Database::open(path);
        EXPECT_FALSE(journalLive(path));
        const std::uint32_t units = db->pages().pageCount() - base;
        EXPECT_TRUE(units == last || units == last + 1)
            << units << " units, " << last << " returned";
        EXPECT_EQ(jet::u32(db->pages().page(base)->data() + 12), units);
        for (std::uint32_t k = 1; k <= units; ++k)
            ASSERT_EQ(jet::u32(db->pages().page(base + k - 1)->data() + 8), k);
        EXPECT_EQ(jet::checkDatabase(*db), std::vector<std::string>{});
    }
}

TEST(CrashTest, KillDuringRollbackIsRolledBackAgain) {
    TempDir dir;
    Reference r = reference(dir);
    std::string path = dir.copy("testV2000.mdb", "victim.mdb");
    int pages = int(std::count(r.steps.begin(), r.steps.end(), "page"));
    // Every page written, none synced, journal hot.
    ASSERT_TRUE(killedWriting(path, pages, "page"));
    ASSERT_TRUE(journalLive(path));
    ASSERT_FALSE(fileBytes(path) == r.before);
    ASSERT_TRUE(killedBySigkill(inChild([&] {
        killAt(2, "restore");
        jet::Database::open(path);
        return 0;
    })));
    EXPECT_TRUE(journalLive(path));
    auto db = jet::Database::open(path, {.writable = true});
    EXPECT_FALSE(journalLive(path));
    EXPECT_TRUE(fileBytes(path) == r.before);
}

TEST(CrashTest, ReaderOfAnotherProcessSeesThePagesAsBeforeAfterWriterDied) {
    TempDir dir;
    Reference r = reference(dir);
    std::string path = dir.copy("testV2000.mdb", "shared.mdb");
    auto reader = jet::Database::open(path);  // open before the writer starts
    auto pristine = jet::Database::fromMemory(r.before);
    int pages = int(std::count(r.steps.begin(), r.steps.end(), "page"));
    ASSERT_TRUE(killedWriting(path, pages / 2 + 1, "page"));
    ASSERT_TRUE(journalLive(path));
    reader->reload();  // nothing cached: every page comes from the file
    const std::uint32_t count = std::uint32_t(r.before.size() / jet::kPageSize);
    for (std::uint32_t n = 0; n < count; ++n)
        ASSERT_TRUE(*reader->pages().page(n) == *pristine->pages().page(n)) << "page " << n;
    EXPECT_FALSE(journalLive(path));
    EXPECT_EQ(reader->pages().pageCount(), count);
    EXPECT_THROW(reader->pages().page(count), jet::Error);
    EXPECT_EQ(jet::checkDatabase(*reader), std::vector<std::string>{});
}

TEST(CrashTest, ReadOnlyFileWithHotJournalIsAClearError) {
    TempDir dir;
    Reference r = reference(dir);
    std::string path = dir.copy("testV2000.mdb", "locked.mdb");
    ASSERT_TRUE(killedWriting(path, 1, "page"));
    ASSERT_TRUE(journalLive(path));
    // The file (and the directory, so the journal cannot go either) become
    // read-only for the opening process. root ignores permissions, so then
    // the open runs as an unprivileged user.
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    ASSERT_EQ(::chmod(dir.path().c_str(), 0555), 0);
    int status = inChild([&] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) return 4;
        try {
            jet::Database::open(path);
            return 1;
        } catch (const jet::Error& e) {
            std::string what = e.what();
            bool clear = e.number() == jet::errnum::kReadOnly &&
                         what.find("read-only") != std::string::npos &&
                         what.find("-journal") != std::string::npos;
            return clear ? 0 : 2;
        }
    });
    EXPECT_EQ(exitCode(status), 0);
    EXPECT_TRUE(journalLive(path));
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0644), 0);
    auto db = jet::Database::open(path);
    EXPECT_FALSE(journalLive(path));
    EXPECT_TRUE(fileBytes(path) == r.before);
}

TEST(CrashTest, JournalWithBadChecksumIsNotReplayed) {
    TempDir dir;
    Reference r = reference(dir);
    std::string path = dir.copy("testV2000.mdb", "victim.mdb");
    ASSERT_TRUE(killedWriting(path, 1, "file-synced"));
    auto written = fileBytes(path);
    ASSERT_TRUE(written == r.after);
    std::string jpath = jet::journalPath(path);
    auto j = fileBytes(jpath);
    ASSERT_GT(j.size(), 100u);
    j[j.size() - 100] ^= 0x5A;
    std::ofstream(jpath, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(j.data()), std::streamsize(j.size()));
    auto db = jet::Database::open(path);
    EXPECT_FALSE(exists(jpath));
    EXPECT_TRUE(fileBytes(path) == written);
}

}  // namespace
