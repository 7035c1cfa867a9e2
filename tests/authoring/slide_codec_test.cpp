// The slide reader and writer against the published example, the slides in
// the shared test data, hand-made old-format slides and broken input.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cstring>
#include <filesystem>

#include "authoring/slide.h"
#include "authoring/slide_library.h"
#include "frisches_verzeichnis.h"
#include "slide_test_data.h"

using namespace tessara::slide;
using slidetest::beispielDia;
using slidetest::testdaten;

namespace {

// A vector as its two points and its colour.
using Linie = std::array<int, 5>;

std::vector<Linie> linien(const Slide& s) {
    std::vector<Linie> out;
    for (const auto& e : s.elements) {
        if (e.kind != Element::Kind::Vector) continue;
        auto p = s.pointsOf(e);
        out.push_back({p[0].x, p[0].y, p[1].x, p[1].y, e.colour});
    }
    return out;
}

// The points the annotation of the published example gives for each vector.
const std::vector<Linie> kBeispielLinien = {
    {572, 292, 0, 0, 7}, {15, 50, 15, 19, 3}, {33, 25, 33, 0, 1},
    {33, 25, 0, 25, 1},  {0, 25, 0, 0, 1},    {0, 0, 33, 0, 1},
};

void erwarteBeispiel(const Slide& s) {
    EXPECT_EQ(s.level, 2);
    EXPECT_EQ(s.highX, 572);
    EXPECT_EQ(s.highY, 292);
    EXPECT_NEAR(s.aspectRatio, 1.4647307, 1e-9);
    EXPECT_EQ(s.hardwareFill, 2);
    EXPECT_EQ(linien(s), kBeispielLinien);
    EXPECT_EQ(s.records, (RecordCounts{2, 1, 3, 0, 3, 1}));
}

// An old-format (level 1) slide with the example's records: no test number,
// the aspect ratio a double, everything in the writing machine's byte order.
std::vector<std::uint8_t> alteFormDia(bool big) {
    auto neu = big ? slidetest::beispielDiaHighByteFirst() : beispielDia();
    std::vector<std::uint8_t> d(neu.begin(), neu.begin() + 17);
    d.push_back(56);
    d.push_back(1);
    auto u16 = [&](unsigned v) {
        if (big) {
            d.push_back(v >> 8);
            d.push_back(v & 0xFF);
        } else {
            d.push_back(v & 0xFF);
            d.push_back(v >> 8);
        }
    };
    u16(572);
    u16(292);
    auto bits = std::bit_cast<std::uint64_t>(1.46);
    for (int i = 0; i < 8; ++i) d.push_back((bits >> (8 * (big ? 7 - i : i))) & 0xFF);
    u16(2);
    d.push_back(0);  // filler
    d.insert(d.end(), neu.begin() + 31, neu.end());
    return d;
}

}  // namespace

TEST(SlideReader, PublishedExampleDecodesToTheAnnotatedPoints) {
    erwarteBeispiel(readSlide(beispielDia()));
    // High byte first gives the same points.
    const auto s = readSlide(slidetest::beispielDiaHighByteFirst());
    EXPECT_TRUE(s.bigEndian);
    erwarteBeispiel(s);
}

TEST(SlideReader, OldFormatInEitherByteOrder) {
    for (bool big : {false, true}) {
        SCOPED_TRACE(big);
        auto s = readSlide(alteFormDia(big));
        EXPECT_EQ(s.level, 1);
        EXPECT_EQ(s.bigEndian, big);
        EXPECT_DOUBLE_EQ(s.aspectRatio, 1.46);
        EXPECT_EQ(s.highX, 572);
        EXPECT_EQ(linien(s), kBeispielLinien);
    }
}

TEST(SlideReader, FillsOfTheTestSlideAreTrianglesClosedByTheirStopRecord) {
    Slide s = readSlideFile(testdaten("slide_kz.sld"));
    std::vector<const Element*> fills;
    for (const auto& e : s.elements)
        if (e.kind == Element::Kind::Fill) fills.push_back(&e);
    ASSERT_EQ(static_cast<int>(fills.size()), s.records.fills);
    EXPECT_GE(fills.size(), 30u);
    for (const auto* e : fills) EXPECT_EQ(e->count, 3u);
    // The first fill: (602,725) (591,736) (280,470), drawn in colour 7.
    auto p = s.pointsOf(*fills[0]);
    EXPECT_EQ(p[0], (Point{0x25a, 0x2d5}));
    EXPECT_EQ(p[1], (Point{0x24f, 0x2e0}));
    EXPECT_EQ(p[2], (Point{0x118, 0x1d6}));
    EXPECT_EQ(fills[0]->colour, 7);
}

namespace {
std::vector<std::uint8_t> kopf() {
    auto d = beispielDia();
    d.resize(31);
    return d;
}
void fd(std::vector<std::uint8_t>& d, int x, int y) {
    d.insert(d.end(), {0x00, 0xFD, std::uint8_t(x & 0xFF), std::uint8_t((x >> 8) & 0xFF),
                       std::uint8_t(y & 0xFF), std::uint8_t((y >> 8) & 0xFF)});
}
}  // namespace

TEST(SlideReader, FillEndIsTheClosingRecordWhateverTheCountSays) {
    for (int count : {3, 4, 9}) {  // exact, including the stop record, nonsense
        SCOPED_TRACE(count);
        auto d = kopf();
        d.insert(d.end(), {0x02, 0xFF});
        fd(d, count, -1);
        fd(d, 10, 10);
        fd(d, 20, 10);
        fd(d, 15, 20);
        fd(d, 0, -1);
        d.insert(d.end(), {0x05, 0x00, 0x06, 0x00, 0x07, 0x00, 0x08, 0x00});  // a vector after it
        d.insert(d.end(), {0x00, 0xFC});
        Slide s = readSlide(d);
        ASSERT_EQ(s.elements.size(), 2u);
        EXPECT_EQ(s.elements[0].kind, Element::Kind::Fill);
        EXPECT_EQ(s.elements[0].count, 3u);
        EXPECT_EQ(s.elements[0].colour, 2);
        EXPECT_EQ(s.pointsOf(s.elements[0])[2], (Point{15, 20}));
        EXPECT_EQ(s.elements[1].kind, Element::Kind::Vector);
    }
    // A fill interrupted by another record keeps its vertices.
    auto d = kopf();
    fd(d, 3, -1);
    fd(d, 1, 1);
    fd(d, 9, 1);
    fd(d, 5, 9);
    d.insert(d.end(), {0x04, 0xFF, 0x00, 0xFC});
    Slide s = readSlide(d);
    ASSERT_EQ(s.elements.size(), 1u);
    EXPECT_EQ(s.elements[0].count, 3u);
}

TEST(SlideReader, BrokenInputIsRefusedWithAMessage) {
    struct Fall {
        const char* name;
        std::vector<std::uint8_t> daten;
        const char* text;
    };
    auto undefiniert = kopf();
    undefiniert.insert(undefiniert.end(), {0x00, 0x90});
    auto fuellungOhneStart = kopf();
    fd(fuellungOhneStart, 1, 1);
    auto abgeschnitteneFuellung = kopf();
    fd(abgeschnitteneFuellung, 3, -1);
    fd(abgeschnitteneFuellung, 1, 1);
    auto halberKopf = beispielDia();
    halberKopf.resize(25);
    auto falscheEbene = beispielDia();
    falscheEbene[18] = 7;
    auto falscheTestzahl = beispielDia();
    falscheTestzahl[29] = 0x99;
    auto ausserhalb = kopf();  // offset vector taking the last point below -32768
    ausserhalb.insert(ausserhalb.end(),
                      {0x00, 0x00, 0x00, 0x80, 0, 0, 0, 0, 0x80, 0xFB, 0x80, 0x80, 0x80});
    const Fall faelle[] = {
        {"leer", {}, "not an AutoCAD slide"},
        {"fremd", {'P', 'K', 3, 4}, "not an AutoCAD slide"},
        {"kopf halb", halberKopf, "truncated"},
        {"undefinierter Typ", undefiniert, "undefined slide record type 90"},
        {"Ecke ohne Start", fuellungOhneStart, "outside a fill"},
        {"Fuellung abgeschnitten", abgeschnitteneFuellung, "inside a solid fill"},
        {"Ebene", falscheEbene, "unknown slide level 7"},
        {"Testzahl", falscheTestzahl, "test number"},
        {"ausserhalb", ausserhalb, "out of range"},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.name);
        try {
            readSlide(f.daten);
            ADD_FAILURE() << "accepted";
        } catch (const SlideError& e) {
            EXPECT_NE(std::string(e.what()).find(f.text), std::string::npos) << e.what();
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
    struct Fall {
        const char* datei;
        bool fuellungen;
    };
    for (auto f : {Fall{"slide_up.sld", false}, Fall{"slide_dn.sld", false},
                   Fall{"slide_kss.sld", false}, Fall{"slide_kz.sld", true}}) {
        SCOPED_TRACE(f.datei);
        Slide s = readSlideFile(testdaten(f.datei));
        EXPECT_EQ(s.level, 2);
        EXPECT_FALSE(s.bigEndian);
        EXPECT_EQ(s.records.endOfFile, 1);
        EXPECT_GT(s.records.vectors, 0);
        EXPECT_EQ(s.records.fills > 0, f.fuellungen);
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

TEST(SlideWriter, RefusesWhatTheFormatCannotHold) {
    Slide s;
    s.highX = 100;
    s.highY = 100;
    s.addVector(1, {-1, 0}, {5, 5});
    EXPECT_THROW(writeSlide(s), SlideError);
    Slide f;
    f.highX = 100;
    f.highY = 100;
    f.addFill(1, {{1, 1}, {2, 2}});
    EXPECT_THROW(writeSlide(f), SlideError);
    Slide leer;
    EXPECT_THROW(writeSlide(leer), SlideError);
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
