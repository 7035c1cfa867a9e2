// modDateienOperationen on a real directory tree.
#include "authoring/dateien_operationen.h"

#include <gtest/gtest.h>

#include "tabelle.h"
#include "temp_verzeichnis.h"

using namespace tessara;
namespace fs = std::filesystem;

class DateienOperationen : public slidetest::TempVerzeichnis {};

TEST_F(DateienOperationen, DeleteAFileInBothForms) {
    auto a = datei("a.dwg"), b = datei("sub/b.dwg");
    EXPECT_TRUE(DeleteAFile(z, basis + "a.dwg"));
    EXPECT_FALSE(fs::exists(a));
    EXPECT_TRUE(DeleteAFile(z, basis + "sub", "b.dwg"));
    EXPECT_FALSE(fs::exists(b));
    // A missing file is an error, reported and answered with false.
    EXPECT_FALSE(DeleteAFile(z, basis + "a.dwg"));
}

TEST_F(DateienOperationen, MoveFiles) {
    datei("von.sld", "eins");
    datei("ziel.sld", "alt");
    EXPECT_FALSE(MoveAFile(z, basis + "von.sld", basis + "ziel.sld"));  // target exists
    EXPECT_EQ(lesen(wurzel / "von.sld"), "eins");
    EXPECT_EQ(lesen(wurzel / "ziel.sld"), "alt");
    EXPECT_TRUE(MoveAFile(z, basis + "von.sld", basis + "neu.sld"));
    EXPECT_FALSE(fs::exists(wurzel / "von.sld"));
    EXPECT_EQ(lesen(wurzel / "neu.sld"), "eins");
    EXPECT_FALSE(MoveAFile(z, basis + "fehlt.sld", basis + "x.sld"));
}

TEST_F(DateienOperationen, FolderTrees) {
    datei("001/Block/00100170.dwg", "z");
    datei("kopie/00100170.slb", "alt");
    // Deleting a Folder renames its directory with the suffix "geloescht".
    EXPECT_TRUE(MoveAFolder(z, basis + "001", basis + "001geloescht"));
    EXPECT_FALSE(fs::exists(wurzel / "001"));
    EXPECT_TRUE(fs::exists(wurzel / "001geloescht/Block/00100170.dwg"));
    EXPECT_FALSE(MoveAFolder(z, basis + "kopie", basis + "001geloescht"));  // target exists
    EXPECT_TRUE(fs::exists(wurzel / "kopie"));
    EXPECT_TRUE(DeleteAFolder(z, basis + "kopie"));
    EXPECT_FALSE(fs::exists(wurzel / "kopie"));
    EXPECT_FALSE(DeleteAFolder(z, basis + "kopie"));
}

TEST_F(DateienOperationen, FolderExistence) {
    EXPECT_FALSE(fctFolderExist(z, basis + "neu"));
    EXPECT_TRUE(fctFolderExistAnlegen(z, basis + "neu\\tief\\"));
    EXPECT_TRUE(fs::is_directory(wurzel / "neu/tief"));
    EXPECT_TRUE(fctFolderExist(z, basis + "neu\\tief"));
    // A directory below a regular file cannot be made.
    datei("datei");
    EXPECT_FALSE(fctFolderExistAnlegen(z, basis + "datei\\unter"));
}

TEST_F(DateienOperationen, WriteProtection) {
    // A writable directory: not protected, and no "Test.txt" is left behind.
    EXPECT_FALSE(fctReadOnlyMitVerzeichnis(z, basis + "."));
    EXPECT_FALSE(fs::exists(wurzel / "Test.txt"));
    EXPECT_FALSE(fctReadOnlyMitVerzeichnis(z, basis));  // with trailing backslash
    EXPECT_FALSE(fs::exists(wurzel / "Test.txt"));
    // Protection provoked in a way that holds for root too: the "directory"
    // is a regular file, so nothing can be created inside it.
    datei("keinVerzeichnis", "x");
    std::string text;
    EXPECT_TRUE(fctReadOnlyMitVerzeichnis(z, basis + "keinVerzeichnis", &text));
    EXPECT_NE(text.find("Test.txt"), std::string::npos);
    EXPECT_EQ(lesen(wurzel / "keinVerzeichnis"), "x");
    EXPECT_TRUE(fctReadOnlyMitVerzeichnis(z, basis + "fehlt\\auch"));
}

TEST_F(DateienOperationen, ShorteningForDisplay) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/pfad_kuerzen.txt")) {
        EXPECT_EQ(fctPfadAuf34ZeichenKuerzen(z, f.at(0)), f.at(1)) << f[0];
    }
}

TEST_F(DateienOperationen, Backslash) {
    EXPECT_EQ(fctBackslashAmEndeAnfuegen(z, "C:\\"), "C:\\");
    EXPECT_EQ(fctBackslashAmEndeAnfuegen(z, "C:\\lib"), "C:\\lib\\");
    EXPECT_EQ(fctBackslashAmEndeAnfuegen(z, ""), "\\");
}
