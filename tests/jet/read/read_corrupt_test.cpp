// Damaged files: truncated or with bytes changed, every one either reads or
// fails with a jet::Error naming the problem; never a crash, a hang or
// another kind of exception. Every walk of a page chain is bounded, so these
// runs end by construction.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

#include "jet/check/check.h"
#include "jet/read/database.h"
#include "jet/support/mdbtools.h"

namespace {

using namespace jet;

std::vector<std::uint8_t> load(const std::string& name) {
    std::ifstream in(jettest::testFile(name), std::ios::binary);
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), {});
}

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
    auto jet3 = load("testV2000.mdb");
    jet3[0x14] = 0;  // version code of Jet 3
    auto ace = load("testV2000.mdb");
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
    try {
        Database::open("/nonexistent/dir/x.mdb");
        FAIL() << "opened a missing file";
    } catch (const Error& e) {
        EXPECT_EQ(e.number(), errnum::kFileNotFound);
    }
}

class Truncated : public ::testing::TestWithParam<std::string> {};

TEST_P(Truncated, AtSeveralOffsetsGivesCorruptPageOrReads) {
    const auto whole = load(GetParam());
    ASSERT_GT(whole.size(), 5 * kPageSize);
    const std::size_t cuts[] = {0,
                                1,
                                0x18,
                                kPageSize - 1,
                                kPageSize,
                                2 * kPageSize,
                                2 * kPageSize + 100,
                                3 * kPageSize,
                                5 * kPageSize + 7,
                                whole.size() / 2,
                                whole.size() - kPageSize,
                                whole.size() - 1};
    for (std::size_t cut : cuts) {
        SCOPED_TRACE(cut);
        std::vector<std::uint8_t> part(whole.begin(), whole.begin() + std::ptrdiff_t(cut));
        std::string msg;
        Outcome o = tryRead(part, &msg);
        EXPECT_NE(o, Outcome::OtherError) << msg;
        if (cut < 3 * kPageSize) {
            EXPECT_EQ(o, Outcome::JetError);  // not even the catalogue is there
        }
        if (o == Outcome::JetError && cut >= kPageSize) {
            EXPECT_NE(msg.find("corrupt page"), std::string::npos) << msg;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    TestData, Truncated, ::testing::ValuesIn(jettest::testFiles()), [](const auto& param) {
        return std::string(param.param).substr(0, std::string(param.param).find('.'));
    });

class Mutated : public ::testing::TestWithParam<std::string> {};

// Random byte changes with a fixed seed, aimed at the pages that matter
// most (catalogue definition, index and data pages near the start) and
// anywhere in the file.
TEST_P(Mutated, RandomByteFlipsNeverCrash) {
    const auto whole = load(GetParam());
    std::mt19937 rng(20261122u);
    std::size_t read = 0, rejected = 0;
    for (int round = 0; round < 150; ++round) {
        auto bytes = whole;
        int flips = 1 + int(rng() % 8);
        for (int f = 0; f < flips; ++f) {
            std::size_t at;
            if (round % 3 == 0)
                at = 2 * kPageSize + rng() % kPageSize;  // MSysObjects' definition
            else if (round % 3 == 1)
                at = rng() % std::min<std::size_t>(bytes.size(), 40 * kPageSize);
            else
                at = rng() % bytes.size();
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
    TestData, Mutated, ::testing::ValuesIn(jettest::testFiles()), [](const auto& param) {
        return std::string(param.param).substr(0, std::string(param.param).find('.'));
    });

}  // namespace
