// The Win32 environment and the temporary directory as the program uses it.
#include "platform/win32/win32_environment.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "platform/environment.h"
#include "platform/win32/utf16.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

fs::path native(const std::string& programPath) {
    return fs::path(win32::toWide(nativePath(programPath)));
}

TEST(Win32Environment, DirectoriesAreRealAndInProgramForm) {
    Win32Environment e;
    // Only the temporary directory ends in a backslash, as the program joins it.
    for (const auto& [dir, schraegstrich] : {std::pair{e.applicationDirectory(), false},
                                             {e.commonAppData(), false},
                                             {e.temporaryDirectory(), true}}) {
        ASSERT_FALSE(dir.empty());
        EXPECT_EQ(dir.back() == '\\', schraegstrich) << dir;
        EXPECT_TRUE(fs::is_directory(native(dir))) << dir;
    }
    EXPECT_TRUE(fs::exists(native(e.applicationDirectory()) / "test_windows.exe"));
}

TEST(Win32Environment, CommandLineAfterTheProgramName) {
    const std::pair<const char*, const char*> cases[] = {
        {"\"C:\\Programme\\Tessara\\Tessara.exe\" /s 0010017;A", "/s 0010017;A"},
        {"Tessara.exe lblkeinfuegen", "lblkeinfuegen"},
        {"Tessara.exe   /d \"C:\\Meine Bib\\dbTessara.mdb\"",
         "/d \"C:\\Meine Bib\\dbTessara.mdb\""},
        {"Tessara.exe /d Z:\\Bib\\dbTessara.mdb", "/d \"Z:\\Bib\\dbTessara.mdb\""},
        {"Tessara.exe /D C:\\Meine Bib\\db.mdb", "/D \"C:\\Meine Bib\\db.mdb\""},
        {"\"C:\\Pfad mit Blank\\Tessara.exe\"", ""},
        {"Tessara.exe", ""},
        {"\"offen", ""},
    };
    for (const auto& [full, rest] : cases)
        EXPECT_EQ(Win32Environment::afterProgramName(full), rest) << full;
    // This process was started without arguments by the test runner, or with
    // gtest's flags; either way the program name is gone.
    std::string own = Win32Environment().commandLine();
    EXPECT_EQ(own.find("test_windows.exe"), std::string::npos) << own;
}

TEST(Win32Environment, PathsAreTheSystemsOwn) {
    EXPECT_EQ(nativePath("c:\\temp\\bv8LT.scr"), "c:\\temp\\bv8LT.scr");
    EXPECT_EQ(nativePath("001\\Block\\00100170.dwg"), "001\\Block\\00100170.dwg");
    EXPECT_EQ(programPath("C:/Users/x/AppData"), "C:\\Users\\x\\AppData");
}

TEST(Utf16, ConvertsBothWaysAndTakesStrayBytesAsWindows1252) {
    EXPECT_EQ(win32::toWide("Größe €"), L"Gr\u00f6\u00dfe \u20ac");
    EXPECT_EQ(win32::toUtf8(L"Gr\u00f6\u00dfe \u20ac"), "Größe €");
    // "Gr\xF6\xDFe" is Windows-1252 text, not UTF-8.
    EXPECT_EQ(win32::toWide("Gr\xF6\xDF\x80"), L"Gr\u00f6\u00df\u20ac");
    EXPECT_EQ(win32::toWide(""), L"");
}

}  // namespace
}  // namespace platform
