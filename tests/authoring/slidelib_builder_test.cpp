// The slide-library builder: the program's function, "tessara-cli slidelib",
// and the list and batch files written for hosts that run the tool.
#include "authoring/slidelib_builder.h"

#include <gtest/gtest.h>

#include "authoring/slide_library.h"
#include "slide_test_data.h"
#include "temp_verzeichnis.h"

using namespace tessara;
namespace fs = std::filesystem;
using slidetest::lauf;
using slidetest::testdaten;

class SlidelibBuilder : public slidetest::TempVerzeichnis {
  protected:
    void kopiere(const char* testdatei, const std::string& ziel) {
        fs::copy_file(testdaten(testdatei), wurzel / ziel, fs::copy_options::overwrite_existing);
    }
};

TEST_F(SlidelibBuilder, EntryNamesAreUpperCasedBaseNames) {
    EXPECT_EQ(slide::entryNameForFile("c:/temp/0a.sld"), "0A");
    EXPECT_EQ(slide::entryNameForFile("c:\\temp\\Ventil.Gross.sld"), "VENTIL.GROSS");
    EXPECT_EQ(slide::entryNameForFile("ohne"), "OHNE");
    EXPECT_EQ(slide::entryNameForFile(std::string(31, 'a') + ".sld"), std::string(31, 'A'));
    EXPECT_THROW(slide::entryNameForFile(std::string(32, 'a') + ".sld"), slide::SlideError);
    EXPECT_THROW(slide::entryNameForFile("c:/temp/.sld"), slide::SlideError);
}

TEST_F(SlidelibBuilder, CommandLineBuildsALibraryFromAList) {
    kopiere("slide_up.sld", "0a.sld");
    kopiere("slide_kz.sld", "1A.sld");
    // The second name without extension: the ".sld" file is meant.
    datei("liste.txt",
          (wurzel / "0a.sld").string() + "\r\n\r\n  " + (wurzel / "1A").string() + "\r\n");
    auto lib = wurzel / "block.slb";
    std::string text;
    ASSERT_EQ(
        lauf("slidelib '" + lib.string() + "' < '" + (wurzel / "liste.txt").string() + "'", &text),
        0)
        << text;
    auto gelesen = slide::SlideLibrary::readFile(lib.string());
    ASSERT_EQ(gelesen.entries().size(), 2u);
    EXPECT_EQ(gelesen.entries()[0].name, "0A");
    EXPECT_EQ(gelesen.entries()[1].name, "1A");
    // A 32-byte header, then 3 entries of 36 bytes (two and the closing one).
    EXPECT_EQ(gelesen.entries()[0].address, 32u + 3 * 36u);
    EXPECT_EQ(lesen(lib).substr(0, 25), "AutoCAD Slide Library 1.0");
    auto bytes = gelesen.slideBytes("1a");
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()),
              slide::readFileBytes(testdaten("slide_kz.sld")));
}

TEST_F(SlidelibBuilder, RefusedListsLeaveTheLibraryAsItWas) {
    kopiere("slide_up.sld", "0a.sld");
    fs::create_directories(wurzel / "b");
    kopiere("slide_dn.sld", "b/0A.sld");
    datei("kaputt.sld", "AutoCAD Slide\r\n");
    datei("alt.slb", "vorher");
    auto lib = (wurzel / "alt.slb").string();
    struct Fall {
        const char* name;
        std::string liste;
        const char* meldung;
    };
    const Fall faelle[] = {
        {"doppelt", (wurzel / "0a.sld").string() + "\n" + (wurzel / "b/0A.sld").string() + "\n",
         "twice"},
        {"kaputt", (wurzel / "kaputt.sld").string() + "\n", "kaputt.sld"},
        {"fehlt", (wurzel / "fehlt.sld").string() + "\n", "cannot open"},
        {"zu lang", (wurzel / (std::string(32, 'n') + ".sld")).string() + "\n", "31"},
        {"leer", "\n\n", "no slides"},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.name);
        datei("liste.txt", f.liste);
        std::string text;
        EXPECT_NE(lauf("slidelib '" + lib + "' < '" + (wurzel / "liste.txt").string() + "'", &text),
                  0);
        EXPECT_NE(text.find(f.meldung), std::string::npos) << text;
        EXPECT_EQ(lesen(lib), "vorher");
    }
}
