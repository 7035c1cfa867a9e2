// The fuzz targets run on a fixed set of mutated inputs, so that a plain
// test run guards what the fuzzers found: every input is read or refused
// with SlideError, nothing else escapes, and what is read is sound.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "authoring/slide_library.h"
#include "slide_test_data.h"

using namespace tessara::slide;
using slidetest::testdaten;

// The fuzz targets themselves (fuzz/slide_reader.cpp, fuzz/slide_library_reader.cpp),
// built into this test under these names: they abort when a property fails.
extern "C" int fuzzDia(const std::uint8_t* data, std::size_t size);
extern "C" int fuzzBibliothek(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::vector<std::uint8_t>> saaten() {
    std::vector<std::vector<std::uint8_t>> out = {slidetest::dia("beispiel"),
                                                  slidetest::dia("beispiel_gross")};
    for (const char* n : {"slide_up.sld", "slide_kz.sld", "mylib.slb"})
        out.push_back(readFileBytes(testdaten(n)));
    for (const char* ordner : {"slide_reader", "slide_library_reader"}) {
        auto pfad = std::filesystem::path(TESSARA_SOURCE_DIR) / "fuzz/seeds" / ordner;
        for (const auto& e : std::filesystem::directory_iterator(pfad))
            out.push_back(readFileBytes(e.path().string()));
    }
    return out;
}

std::vector<std::uint8_t> mutiert(std::vector<std::uint8_t> d, std::mt19937& zufall) {
    std::uniform_int_distribution<int> art(0, 4), byte(0, 255);
    int schritte = 1 + static_cast<int>(zufall() % 4);
    for (int s = 0; s < schritte && !d.empty(); ++s) {
        std::size_t pos = zufall() % d.size();
        // Overwrite, cut, insert, delete, flip the top bit.
        const int a = art(zufall);
        const auto b = [&] { return static_cast<std::uint8_t>(byte(zufall)); };
        if (a == 1)
            d.resize(pos);
        else if (a == 2)
            d.insert(d.begin() + static_cast<long>(pos), b());
        else if (a == 3)
            d.erase(d.begin() + static_cast<long>(pos));
        else
            d[pos] = a == 0 ? b() : static_cast<std::uint8_t>(d[pos] ^ 0x80);
    }
    return d;
}

}  // namespace

TEST(SlideFuzzRegression, MutatedInputsAreReadOrRefused) {
    std::mt19937 zufall(20261122);
    auto basis = saaten();
    ASSERT_GE(basis.size(), 8u);
    for (int i = 0; i < 20000; ++i) {
        auto d = mutiert(basis[static_cast<std::size_t>(i) % basis.size()], zufall);
        fuzzDia(d.data(), d.size());
        fuzzBibliothek(d.data(), d.size());
    }
}

TEST(SlideFuzzRegression, CraftedLibraries) {
    auto dia = slidetest::beispielDia();
    // Two entries pointing at the same slide, and one pointing at the last byte.
    auto lib = writeSlideLibrary({{"A", dia}, {"B", dia}});
    auto zweimal = lib;
    std::copy(zweimal.begin() + 32 + 32, zweimal.begin() + 32 + 36, zweimal.begin() + 68 + 32);
    fuzzBibliothek(zweimal.data(), zweimal.size());
    auto amEnde = lib;
    std::uint32_t letzte = static_cast<std::uint32_t>(amEnde.size() - 1);
    for (int k = 0; k < 4; ++k) amEnde[32 + 32 + k] = (letzte >> (8 * k)) & 0xFF;
    auto gelesen = SlideLibrary::read(amEnde);
    EXPECT_THROW(gelesen.slide("A"), SlideError);
}
