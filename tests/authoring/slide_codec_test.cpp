// The slide reader and writer against the published example, the slides in
// the shared test data, hand-made old-format slides and broken input.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "authoring/slide.h"
#include "authoring/slide_library.h"
#include "frisches_verzeichnis.h"
#include "slide_test_data.h"

using namespace tessara::slide;
using slidetest::beispielDia;
using slidetest::testdaten;

// The published example in both byte orders and both formats (the old one
// without test number, its aspect ratio a double), and fills ended by their
// closing record whatever their count says, or cut short by another record.
TEST(SlideReader, HandMadeSlidesDecodeToTheirAnnotatedPoints) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/dias.txt")) {
        SCOPED_TRACE(f.at(0));
        EXPECT_EQ(slidetest::beschreibung(readSlide(slidetest::dia(f[0]))), f.at(2));
    }
}

TEST(SlideReader, BrokenInputIsRefusedWithAMessage) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/dias_kaputt.txt")) {
        SCOPED_TRACE(f.at(1));
        try {
            readSlide(std::vector<std::uint8_t>(f[0].begin(), f[0].end()));
            ADD_FAILURE() << "accepted";
        } catch (const SlideError& e) {
            EXPECT_NE(std::string(e.what()).find(f[1]), std::string::npos) << e.what();
        }
    }
}

TEST(SlideReader, EveryPrefixIsReadOrRefusedNeverMisread) {
    auto voll = readFileBytes(testdaten("slide_kz.sld"));
    Slide ganz = readSlide(voll);
    for (std::size_t n = 0; n < voll.size(); ++n) {
        std::vector<std::uint8_t> teil(voll.begin(), voll.begin() + n);
        try {
            Slide s = readSlide(teil);
            // Accepted only at a record boundary: what it holds is a prefix of the whole.
            ASSERT_LE(s.elements.size(), ganz.elements.size());
            EXPECT_EQ(s.records.endOfFile, 0);
        } catch (const SlideError&) {
        }
    }
}

// Each slide of the test data reads with its points inside the drawing area
// and comes back from our writer with the same drawing.
TEST(SlideWriter, TestDataSlidesReadAndRoundTripToTheSameVectors) {
    for (auto [datei, fuellungen] : {std::pair{"slide_up.sld", false},
                                     {"slide_dn.sld", false},
                                     {"slide_kss.sld", false},
                                     {"slide_kz.sld", true}}) {
        SCOPED_TRACE(datei);
        Slide s = readSlideFile(testdaten(datei));
        EXPECT_EQ(s.level, 2);
        EXPECT_FALSE(s.bigEndian);
        EXPECT_EQ(s.records.endOfFile, 1);
        EXPECT_GT(s.records.vectors, 0);
        EXPECT_EQ(s.records.fills > 0, fuellungen);
        for (const auto& e : s.elements)
            for (auto p : s.pointsOf(e))
                EXPECT_TRUE(p.x >= 0 && p.x <= s.highX && p.y >= 0 && p.y <= s.highY)
                    << p.x << "," << p.y;
        Slide wieder = readSlide(writeSlide(s));
        EXPECT_TRUE(sameDrawing(s, wieder));
        EXPECT_EQ(wieder.elements.size(), s.elements.size());
        EXPECT_NEAR(wieder.aspectRatio, s.aspectRatio, 1e-7);
        EXPECT_EQ(wieder.records.fills, s.records.fills);
    }
    // The short records are used where the last point allows.
    Slide s = readSlide(beispielDia());
    auto bytes = writeSlide(s);
    Slide wieder = readSlide(bytes);
    EXPECT_TRUE(sameDrawing(s, wieder));
    EXPECT_EQ(wieder.records.commonEndpoints, 3);
    EXPECT_EQ(wieder.records.offsetVectors, 1);
    // Same encoding as the published example, so the same bytes.
    EXPECT_EQ(bytes, beispielDia());
}

// A negative coordinate, a fill of two vertices, a slide without a size.
TEST(SlideWriter, RefusesWhatTheFormatCannotHold) {
    Slide s[3];
    s[0].highX = s[0].highY = s[1].highX = s[1].highY = 100;
    s[0].addVector(1, {-1, 0}, {5, 5});
    s[1].addFill(1, {{1, 1}, {2, 2}});
    for (const auto& f : s) EXPECT_THROW(writeSlide(f), SlideError);
}

TEST(SlideWriter, FileWriteGoesThroughATemporaryAndLeavesNoTrace) {
    auto dir = tessara::test::frischesVerzeichnis("slides");
    auto datei = (dir / "a.sld").string();
    writeSlideFile(readSlide(beispielDia()), datei);
    EXPECT_EQ(readFileBytes(datei), beispielDia());
    EXPECT_FALSE(std::filesystem::exists(datei + ".tmp~"));
    // A target inside a regular file cannot be written: error, nothing left behind.
    EXPECT_THROW(writeSlideFile(readSlide(beispielDia()), datei + "/b.sld"), SlideError);
    EXPECT_EQ(readFileBytes(datei), beispielDia());
    std::filesystem::remove_all(dir);
}
