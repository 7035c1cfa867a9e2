// Slide libraries: the shared test library, our writer, lookups, the
// picture notation, and broken directories.
#include "authoring/slide_library.h"

#include <gtest/gtest.h>

#include "slide_test_data.h"
#include "tabelle.h"

using namespace tessara::slide;
using slidetest::beispielDia;
using slidetest::testdaten;

TEST(SlideLibrary, ReadsTheTestLibrary) {
    auto lib = SlideLibrary::readFile(testdaten("mylib.slb"));
    // The directory of this file names two slides (its third directory entry
    // is the empty closing one).
    ASSERT_EQ(lib.entries().size(), 2u);
    EXPECT_EQ(lib.entries()[0].name, "SLIDE1");
    EXPECT_EQ(lib.entries()[1].name, "SLIDE2");
    EXPECT_EQ(lib.entries()[0].address, 0x8Cu);
    // The first slide is the published example, byte for byte.
    auto bytes = lib.slideBytes("SLIDE1");
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), beispielDia());
    Slide zwei = lib.slide("SLIDE2");
    EXPECT_GT(zwei.elements.size(), 5u);
    // Lookups ignore case.
    ASSERT_NE(lib.find("slide2"), nullptr);
    EXPECT_EQ(lib.find("slide2")->name, "SLIDE2");
    EXPECT_EQ(lib.find("Slide3"), nullptr);
    EXPECT_THROW(lib.slide("nichtda"), SlideError);
}

TEST(SlideLibrary, WriterRefusesBadNames) {
    EXPECT_THROW(writeSlideLibrary({{"0A", beispielDia()}, {"0a", beispielDia()}}), SlideError);
    EXPECT_THROW(writeSlideLibrary({{std::string(32, 'X'), beispielDia()}}), SlideError);
    EXPECT_NO_THROW(writeSlideLibrary({{std::string(31, 'X'), beispielDia()}}));
    EXPECT_THROW(writeSlideLibrary({{"", beispielDia()}}), SlideError);
    EXPECT_THROW(writeSlideLibrary({{"KAPUTT", {1, 2, 3}}}), SlideError);
}

TEST(SlideLibrary, BrokenDirectoriesAreRefused) {
    auto gut = writeSlideLibrary({{"0A", beispielDia()}});
    auto ohneEnde = gut;
    ohneEnde.resize(32 + 36 + 10);  // closing entry cut off
    auto adresseDraussen = gut;
    adresseDraussen[32 + 32] = 0xFF;
    adresseDraussen[32 + 35] = 0x7F;
    auto adresseImVerzeichnis = gut;
    adresseImVerzeichnis[32 + 32] = 40;
    adresseImVerzeichnis[32 + 33] = 0;
    auto nameOhneNul = gut;
    for (int i = 0; i < 32; ++i) nameOhneNul[32 + i] = 'N';
    auto kaputterKopf = gut;
    kaputterKopf[3] = 'x';
    for (auto* d :
         {&ohneEnde, &adresseDraussen, &adresseImVerzeichnis, &nameOhneNul, &kaputterKopf})
        EXPECT_THROW(SlideLibrary::read(*d), SlideError);
    EXPECT_NO_THROW(SlideLibrary::read(gut));
    // A truncated slide inside the library is an error only on decoding.
    gut.resize(gut.size() - 4);
    auto lib = SlideLibrary::read(gut);
    EXPECT_THROW(lib.slide("0A"), SlideError);
}

TEST(Bildname, SplitsLibraryAndEntry) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/bildnamen.txt")) {
        auto b = fctBildnameZerlegen(f.at(0));
        EXPECT_EQ(b.datei, f.at(1)) << f[0];
        EXPECT_EQ(b.eintrag, f.at(2)) << f[0];
    }
}
