// Damaged files: truncated or with bytes changed, every one either reads or
// fails with a jet::Error naming the problem; never a crash, a hang or
// another kind of exception. Every walk of a page chain is bounded, so these
// runs end by construction.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <set>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/read/table.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;

enum class Outcome { Read, JetError, OtherError };

Outcome tryRead(std::vector<std::uint8_t> bytes, std::string* message = nullptr) {
    try {
        auto db = Database::fromMemory(std::move(bytes));
        readEverything(*db);
        checkDatabase(*db);
        return Outcome::Read;
    } catch (const Error& e) {
        if (message) *message = e.what();
        return Outcome::JetError;
    } catch (const std::exception& e) {
        if (message) *message = e.what();
        return Outcome::OtherError;
    }
}

TEST(JetCorrupt, RejectsWhatIsNoDatabase) {
    struct Case {
        const char* name;
        std::vector<std::uint8_t> bytes;
        const char* message;
    };
    std::vector<std::uint8_t> text(8192, 'x');
    auto jet3 = jettest::fileImage("testV2000.mdb");
    jet3[0x14] = 0;  // version code of Jet 3
    auto ace = jettest::fileImage("testV2000.mdb");
    ace[0x14] = 2;
    const Case cases[] = {
        {"empty", {}, "not a Jet database"},
        {"short", std::vector<std::uint8_t>(100, 0), "not a Jet database"},
        {"text", text, "not a Jet database"},
        {"jet3", jet3, "unsupported Jet version 3"},
        {"ace", ace, "unsupported Jet version 5"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string msg;
        EXPECT_EQ(tryRead(c.bytes, &msg), Outcome::JetError);
        EXPECT_EQ(msg, c.message);
    }
}

TEST(JetCorrupt, MissingFileIsAClearError) {
    EXPECT_EQ(jettest::errorOf([] { Database::open("/nonexistent/dir/x.mdb"); }).first,
              errnum::kFileNotFound);
}

// The pages of an undamaged file whose loss a reader would feel, by their
// type byte and owner: the global map, table definitions of catalogue
// tables, data and index pages owned by one, the pages holding usage maps
// (owner 0) and usage-map pages. Pages the global map lists as free and
// long-value pages (which may hold only values of deleted rows) are left out.
std::set<std::uint32_t> vitalPages(const std::vector<std::uint8_t>& bytes) {
    auto db = Database::fromMemory(bytes);
    std::set<std::uint32_t> definitions, owners;
    for (const std::string& n : db->tableNames(true)) {
        auto d = db->tableDef(n);
        definitions.insert(d->pages.begin(), d->pages.end());
        owners.insert(d->page);
    }
    const UsageMap global = readUsageMap(db->pages(), RowId{kGlobalUsageMapPage, 0}.pointer());
    std::set<std::uint32_t> vital{kGlobalUsageMapPage};
    for (std::uint32_t p = 2; p < db->pages().pageCount(); ++p) {
        const std::uint8_t* page = bytes.data() + std::size_t(p) * kPageSize;
        const auto type = PageType(page[0]);
        const std::uint32_t owner = u32(page + datapage::kTdefPage);
        if (global.contains(p)) continue;
        if ((type == PageType::TableDef && definitions.count(p)) ||
            (type == PageType::Data && (owners.count(owner) || owner == 0)) ||
            ((type == PageType::IndexNode || type == PageType::IndexLeaf) && owners.count(owner)) ||
            type == PageType::UsageMap)
            vital.insert(p);
    }
    return vital;
}

// Every property blob (MSysObjects' LvProp) in a long-value row with its
// first block claiming more bytes than the blob has.
void breakPropertyBlobs(std::vector<std::uint8_t>& b) {
    const char tag[] = "MR2";  // with its NUL
    for (auto it = b.begin(); (it = std::search(it, b.end(), tag, tag + 4)) != b.end(); it += 4) {
        const std::uint8_t* page = b.data() + std::size_t(it - b.begin()) / kPageSize * kPageSize;
        if (page[0] == 1 && std::memcmp(page + 4, "LVAL", 4) == 0 && b.end() - it >= 8)
            put32(&*it + 4, 0xFFFFFFu);
    }
}

// Damaged copies of each file (fixed seed): a page zeroed or filled with
// 0xFF, the file cut at or inside a page boundary, bytes flipped; and the
// damage a reader trips on that these rarely make: an index naming a column
// number the table lacks (of the catalogue, of MSysRelationships, of another
// table), property blobs in long-value rows broken. None crashes; opening
// either refuses or names the same tables as the original, each of which
// reads or is refused with a jet::Error; and the check reports every copy
// that lost a vital page, ends inside a page or has the targeted damage.
TEST(JetCorrupt, DamagedCopiesAreReadOrReported) {
    enum class Damage { Zeroed, Filled, CutAt, CutInside, Flipped, IndexColumn, PropertyBlob };
    const char* damageName[] = {"zeroed",     "filled with 0xFF", "cut at",        "cut inside",
                                "flipped in", "index column of",  "property blobs"};
    std::mt19937 rng(20261125u);
    int mutants = 0, reported = 0;
    for (const std::string& file : jettest::testFiles()) {
        const auto whole = jettest::fileImage(file);
        const std::uint32_t pages = std::uint32_t(whole.size() / kPageSize);
        const std::set<std::uint32_t> vital = vitalPages(whole);
        const std::vector<std::string> names = Database::fromMemory(whole)->tableNames(true);
        ASSERT_EQ(checkDatabase(*Database::fromMemory(whole)), std::vector<std::string>{}) << file;
        const std::string table =
            std::array{"MSysObjects", "MSysRelationships", "MSysACEs"}[mutants / 12 % 3];
        for (int i = 0; i < 12; ++i, ++mutants) {
            const auto damage = Damage(i < 10 ? i % 5 : i - 5);
            const std::uint32_t page =
                i < 10 ? 1 + rng() % (std::min<std::uint32_t>(pages, 80) - 1) : 0;
            SCOPED_TRACE(file + ": " + damageName[int(damage)] + " " +
                         (i < 10                          ? "page " + std::to_string(page)
                          : damage == Damage::IndexColumn ? table
                                                          : ""));
            auto bytes = whole;
            std::uint8_t* at = bytes.data() + std::size_t(page) * kPageSize;
            bool mustReport = i >= 10 || vital.count(page) > 0;
            switch (damage) {
                case Damage::Zeroed:
                    std::fill_n(at, kPageSize, 0);
                    break;
                case Damage::Filled:
                    std::fill_n(at, kPageSize, 0xFF);
                    break;
                case Damage::CutAt:
                case Damage::CutInside:
                    bytes.resize(std::size_t(page) * kPageSize +
                                 (damage == Damage::CutInside ? 1 + rng() % (kPageSize - 1) : 0));
                    mustReport =
                        damage == Damage::CutInside || vital.lower_bound(page) != vital.end();
                    break;
                case Damage::Flipped:
                    for (int f = 1 + int(rng() % 8); f > 0; --f)
                        at[rng() % kPageSize] ^= std::uint8_t(1u << (rng() % 8));
                    mustReport = false;  // a flip may land in unused bytes
                    break;
                case Damage::IndexColumn:
                    bytes = jettest::withBadIndexColumn(file, table);
                    break;
                case Damage::PropertyBlob:
                    breakPropertyBlobs(bytes);
                    break;
            }
            std::shared_ptr<Database> db;
            try {
                db = Database::fromMemory(bytes);
            } catch (const Error&) {
                ++reported;
                continue;
            }
            if (damage != Damage::Flipped) {
                EXPECT_EQ(db->tableNames(true), names);
            }
            for (const std::string& n : db->tableNames(true)) {
                try {
                    db->verifyTable(n);
                    db->table(n).scan([](RowId, const Row&) { return true; });
                } catch (const Error&) {
                    // reported
                }
            }
            std::vector<std::string> faults;
            try {
                faults = checkDatabase(*db);
            } catch (const Error& e) {
                faults.push_back(e.what());
            }
            if (!faults.empty()) ++reported;
            if (mustReport) {
                EXPECT_FALSE(faults.empty());
            }
        }
    }
    // Most of the damage is not harmless: the sweep tests something.
    EXPECT_GT(reported, mutants / 2);
}

// Damage of each file: cuts at fixed offsets, and random byte changes with
// a fixed seed aimed at the pages that matter most (catalogue definition,
// index and data pages near the start) and anywhere in the file.
class Damaged : public ::testing::TestWithParam<std::string> {};

TEST_P(Damaged, CutsAndByteFlipsReadOrGiveJetErrors) {
    const auto whole = jettest::fileImage(GetParam());
    ASSERT_GT(whole.size(), 5 * kPageSize);
    const std::size_t P = kPageSize, n = whole.size();
    for (std::size_t cut : {std::size_t(0), std::size_t(1), std::size_t(0x18), P - 1, P, 2 * P,
                            2 * P + 100, 3 * P, 5 * P + 7, n / 2, n - P, n - 1}) {
        SCOPED_TRACE(cut);
        std::string msg;
        Outcome o = tryRead({whole.begin(), whole.begin() + std::ptrdiff_t(cut)}, &msg);
        // Below three pages not even the catalogue is there.
        EXPECT_TRUE(o == Outcome::JetError || (o == Outcome::Read && cut >= 3 * P)) << msg;
        if (o == Outcome::JetError && cut >= P) {
            EXPECT_NE(msg.find("corrupt page"), std::string::npos) << msg;
        }
    }
    std::mt19937 rng(20261122u);
    std::size_t read = 0, rejected = 0;
    for (int round = 0; round < 150; ++round) {
        auto bytes = whole;
        for (int f = 1 + int(rng() % 8); f > 0; --f) {
            const std::size_t at = round % 3 == 0   ? 2 * P + rng() % P  // MSysObjects' definition
                                   : round % 3 == 1 ? rng() % std::min(n, 40 * P)
                                                    : rng() % n;
            bytes[at] ^= std::uint8_t(1u << (rng() % 8));
            if (rng() % 4 == 0) bytes[at] = std::uint8_t(rng());
        }
        std::string msg;
        Outcome o = tryRead(bytes, &msg);
        ASSERT_NE(o, Outcome::OtherError) << "round " << round << ": " << msg;
        (o == Outcome::Read ? read : rejected)++;
    }
    // Both kinds of outcome occur: the changes are not all harmless.
    EXPECT_GT(rejected, 0u);
    EXPECT_GT(read, 0u);
}

INSTANTIATE_TEST_SUITE_P(
    TestData, Damaged, ::testing::ValuesIn(jettest::testFiles()), [](const auto& param) {
        return std::string(param.param).substr(0, std::string(param.param).find('.'));
    });

}  // namespace
