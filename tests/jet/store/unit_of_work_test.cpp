// Units of work: what this Database and the file show before and after
// commit and rollback, nesting, page allocation, and the writer lock between
// two Database objects of one process and between processes.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/store/file_lock.h"
#include "jet/store/journal.h"
#include "jet/support/tx_support.h"
#include "jet/write/writer.h"

namespace {

using namespace txtest;

constexpr std::size_t kCounter = 8;  // where the tests keep a number in their own page

std::uint32_t counterOf(jet::Database& db, std::uint32_t page) {
    return jet::u32(db.pages().page(page)->data() + kCounter);
}

void setCounter(jet::Database& db, std::uint32_t page, std::uint32_t value) {
    jet::PageBytes p = *db.pages().page(page);
    jet::put32(p.data() + kCounter, value);
    db.pages().put(page, p);
}

std::uint32_t fileCounter(const std::string& path, std::uint32_t page) {
    auto bytes = fileBytes(path);
    if (bytes.size() < (page + 1) * std::size_t(jet::kPageSize)) return 0xFFFFFFFFu;
    return jet::u32(bytes.data() + std::size_t(page) * jet::kPageSize + kCounter);
}

// A committed page of our own at the end of a copy of the file; its number.
std::uint32_t addCounterPage(const std::string& path) {
    auto db = jet::Database::open(path, {.writable = true});
    db->begin();
    std::uint32_t n = db->allocatePage(jet::PageType::UsageMap);
    db->commit();
    return n;
}

// Pages of a unit are seen inside it and reach the file only at the
// outermost commit; a rollback, also one inside a nested unit, drops the
// unit's pages and allocations and releases the lock.
TEST(UnitOfWorkTest, CommitRollbackAndNesting) {
    TempDir dir;
    std::string path = dir.copy("delTestV2000.mdb");
    const std::uint32_t page = addCounterPage(path);
    auto db = jet::Database::open(path, {.writable = true});
    const auto before = fileBytes(path);
    db->begin();
    setCounter(*db, page, 7);
    db->allocatePage(jet::PageType::Data);
    db->rollback();
    EXPECT_FALSE(db->inTransaction());
    EXPECT_EQ(counterOf(*db, page), 0u);
    EXPECT_EQ(db->pages().pageCount(), page + 1);
    EXPECT_TRUE(fileBytes(path) == before);
    db->begin();
    db->begin();
    setCounter(*db, page, 41);
    EXPECT_EQ(db->allocatePage(jet::PageType::UsageMap), page + 1);
    EXPECT_EQ(db->allocatePage(jet::PageType::UsageMap), page + 2) << "pending pages are counted";
    EXPECT_EQ(db->pages().pageCount(), page + 3);
    db->reload();  // a definition change mid-unit must not lose the unit's pages
    EXPECT_EQ(counterOf(*db, page), 41u);
    db->commit();
    EXPECT_TRUE(db->inTransaction());
    EXPECT_TRUE(fileBytes(path) == before);
    EXPECT_FALSE(journalLive(path));
    db->commit();
    EXPECT_FALSE(db->inTransaction());
    EXPECT_EQ(fileCounter(path, page), 41u);
    EXPECT_EQ(fileBytes(path).size(), std::size_t(page + 3) * jet::kPageSize);
    EXPECT_FALSE(journalLive(path));
    EXPECT_EQ(jet::checkDatabase(*jet::Database::open(path)), std::vector<std::string>{});
    db->begin();
    db->begin();
    setCounter(*db, page, 9);
    db->rollback();
    EXPECT_FALSE(db->inTransaction());
    db->commit();  // the outer caller's commit finds nothing to do
    EXPECT_EQ(fileCounter(path, page), 41u);
    EXPECT_EQ(counterOf(*db, page), 41u);
    db.reset();  // the idle journal goes with its writer
    EXPECT_FALSE(exists(jet::journalPath(path)));
}

// A scan reads runs of pages past the cache: each page as the unit sees it,
// and a page still held is never overwritten by a later run.
TEST(UnitOfWorkTest, ScanSeesTheUnitsPagesAndKeepsHeldPages) {
    std::vector<std::uint8_t> image(100 * jet::kPageSize);
    for (std::uint32_t n = 0; n < 100; ++n)
        jet::put32(image.data() + std::size_t(n) * jet::kPageSize + kCounter, n);
    jet::PageCache cache(std::make_unique<jet::MemoryPageStore>(std::move(image), true), 16);
    cache.beginUnit();
    jet::PageBytes changed = *cache.page(50);
    jet::put32(changed.data() + kCounter, 5000);
    cache.put(50, changed);
    std::vector<std::uint32_t> want;
    for (std::uint32_t n = 1; n < 100; ++n)
        if (n != 70) want.push_back(n);
    auto expected = [](std::uint32_t n) { return n == 50 ? 5000u : n; };
    jet::PageStream stream(cache, want);
    std::vector<std::uint32_t> seen;
    std::vector<std::pair<std::uint32_t, jet::PageRef>> held;
    std::uint32_t n = 0;
    while (jet::PageRef pg = stream.next(n)) {
        seen.push_back(n);
        EXPECT_EQ(jet::u32(pg->data() + kCounter), expected(n));
        if (n % 3 == 0) held.emplace_back(n, pg);
    }
    EXPECT_EQ(seen, want);
    for (const auto& [k, pg] : held) EXPECT_EQ(jet::u32(pg->data() + kCounter), expected(k));
}

TEST(UnitOfWorkTest, WritingNeedsAWritableDatabaseAndAUnit) {
    TempDir dir;
    std::string path = dir.copy("delTestV2000.mdb");
    auto ro = jet::Database::open(path);
    try {
        ro->begin();
        ADD_FAILURE() << "begin on a read-only database";
    } catch (const jet::Error& e) {
        EXPECT_EQ(e.number(), jet::errnum::kReadOnly);
    }
    EXPECT_FALSE(ro->inTransaction());
    auto db = jet::Database::open(path, {.writable = true});
    EXPECT_THROW(db->allocatePage(jet::PageType::Data), jet::Error);
    // A file with a trailing partial page is not written to.
    { std::ofstream(path, std::ios::binary | std::ios::app).write("xyz", 3); }
    auto odd = jet::Database::open(path, {.writable = true});
    EXPECT_THROW(odd->begin(), jet::Error);
    EXPECT_FALSE(odd->inTransaction());
    // The refused begin released the writer lock: another descriptor gets it at once.
    jet::os::File other(path, jet::os::OpenMode::ReadWrite);
    ASSERT_TRUE(other.isOpen());
    EXPECT_TRUE(jet::filelock::lock(other, jet::filelock::kWriterByte,
                                    jet::filelock::Mode::Exclusive, false));
}

TEST(UnitOfWorkTest, MemoryImagesCommitWithoutAJournal) {
    auto image = fileBytes(testFile("delTestV2000.mdb"));
    auto store = std::make_unique<jet::MemoryPageStore>(image, true);
    auto* raw = store.get();
    auto db = jet::Database::fromStore(std::move(store));
    db->begin();
    std::uint32_t n = db->allocatePage(jet::PageType::UsageMap);
    setCounter(*db, n, 77);
    EXPECT_EQ(raw->pageCount(), n);
    db->commit();
    ASSERT_EQ(raw->pageCount(), n + 1);
    EXPECT_EQ(jet::u32(raw->bytes().data() + std::size_t(n) * jet::kPageSize + kCounter), 77u);
}

TEST(UnitOfWorkTest, SecondDatabaseOfTheSameProcessWaitsForTheUnit) {
    TempDir dir;
    std::string path = dir.copy("delTestV2000.mdb");
    const std::uint32_t page = addCounterPage(path);
    auto a = jet::Database::open(path, {.writable = true});
    auto b = jet::Database::open(path, {.writable = true});
    a->begin();
    setCounter(*a, page, 1);
    {
        jet::os::File other(path, jet::os::OpenMode::ReadWrite);
        ASSERT_TRUE(other.isOpen());
        EXPECT_FALSE(jet::filelock::lock(other, jet::filelock::kWriterByte,
                                         jet::filelock::Mode::Exclusive, false));
    }
    std::atomic<bool> started{false};
    std::uint32_t seenByB = 0;
    std::thread t([&] {
        b->begin();
        started = true;
        seenByB = counterOf(*b, page);
        setCounter(*b, page, seenByB + 1);
        b->commit();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(started.load()) << "b began while a held the unit";
    a->commit();
    t.join();
    EXPECT_EQ(seenByB, 1u) << "b must read a's committed page, not its stale cache";
    EXPECT_EQ(fileCounter(path, page), 2u);
}

// A reader keeps its pages and catalogue while the file is unchanged, at
// the cost of one look at the change counter a call, and drops both once
// another Database object has committed.
TEST(UnitOfWorkTest, ReaderKeepsItsCacheUntilAnotherDatabaseCommits) {
    TempDir dir;
    std::string path = dir.copy("delTestV2000.mdb");
    const std::uint32_t page = addCounterPage(path);
    auto reader = jet::Database::open(path);
    auto writer = jet::Database::open(path, {.writable = true});
    EXPECT_EQ(counterOf(*reader, page), 0u);
    const auto tables = reader->tableNames();
    const std::uint64_t reads = jet::os::callCounts().reads;
    EXPECT_EQ(counterOf(*reader, page), 0u);
    EXPECT_EQ(reader->tableNames(), tables);
    EXPECT_EQ(jet::os::callCounts().reads - reads, 2u) << "the reader read more than the counter";
    writer->begin();
    setCounter(*writer, page, 9);
    writer->commit();
    jet::Writer(writer).createTable({"Neu", {{"id", jet::ColumnType::Long}}, {}});
    EXPECT_EQ(counterOf(*reader, page), 9u) << "a stale page";
    EXPECT_TRUE(reader->hasTable("Neu")) << "a stale catalogue";
}

TEST(UnitOfWorkTest, TwoProcessesIncrementingACounterLoseNoUpdate) {
    TempDir dir;
    std::string path = dir.copy("delTestV2000.mdb");
    const std::uint32_t page = addCounterPage(path);
    constexpr int kEach = 150;
    // Each process keeps its Database open across units, so a stale cache
    // or a missing lock would lose increments.
    auto worker = [&] {
        auto db = jet::Database::open(path, {.writable = true});
        for (int i = 0; i < kEach; ++i) {
            db->begin();
            std::uint32_t v = counterOf(*db, page);
            std::this_thread::yield();
            setCounter(*db, page, v + 1);
            db->commit();
        }
        return 0;
    };
    pid_t p1 = spawn(worker), p2 = spawn(worker);
    EXPECT_EQ(exitCode(waitFor(p1)), 0);
    EXPECT_EQ(exitCode(waitFor(p2)), 0);
    EXPECT_EQ(fileCounter(path, page), std::uint32_t(2 * kEach));
    EXPECT_FALSE(journalLive(path));
}

TEST(UnitOfWorkTest, ReaderOfAnotherProcessNeverSeesAHalfWrittenPage) {
    TempDir dir;
    std::string path = dir.copy("delTestV2000.mdb");
    const std::uint32_t page = addCounterPage(path);
    {
        auto db = jet::Database::open(path, {.writable = true});
        db->begin();
        db->pages().put(page, jet::PageBytes(jet::kPageSize, 0));
        db->commit();
    }
    // The writer fills the page with one byte value per unit; the reader
    // must always find a page of one value.
    pid_t writer = spawn([&] {
        auto db = jet::Database::open(path, {.writable = true});
        for (int i = 1; i <= 200; ++i) {
            db->begin();
            jet::PageBytes p(jet::kPageSize, std::uint8_t(i));
            db->pages().put(page, p);
            db->commit();
        }
        return 0;
    });
    auto reader = jet::Database::open(path);
    int torn = 0, reads = 0;
    while (::waitpid(writer, nullptr, WNOHANG) == 0) {
        reader->pages().invalidate(page);
        auto p = reader->pages().page(page);
        ++reads;
        if (std::count(p->begin(), p->end(), (*p)[0]) != std::ptrdiff_t(jet::kPageSize)) ++torn;
    }
    EXPECT_GT(reads, 0);
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(fileBytes(path)[std::size_t(page) * jet::kPageSize + 100], 200);
}

}  // namespace
