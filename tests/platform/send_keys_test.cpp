#include "platform/send_keys.h"

#include <gtest/gtest.h>

#include "platform/case_fold.h"

namespace platform {
namespace {

struct Case {
    const char* keys;
    const char* described;  // nullptr: malformed
};

TEST(SendKeys, DecodesTheBraceNotation) {
    const Case cases[] = {
        {"LINE{ENTER}", "LINE\r"},
        {"{ESC}{ESC}", "{ESC}{ESC}"},
        {"{esc}{Escape}", "{ESC}{ESC}"},
        {"_undo~_m\r", "_undo\r_m\r"},
        {"a\r\nb\nc", "a\rb\rc"},
        {"{(}tessara_einfuege \"a\"{)}", "(tessara_einfuege \"a\")"},
        {"{{}{}}{+}{^}{%}{~}", "{}+^%~"},
        {"+a^b%c", "+a^b%c"},
        {"+(ab)c", "+a+bc"},
        {"^+(xy)z", "+^x+^yz"},
        {"{LEFT 3}", "{LEFT}{LEFT}{LEFT}"},
        {"{F1}{f12}{TAB}{BS}{DEL}", "{F1}{F12}{TAB}{BS}{DEL}"},
        {"{a 2}", "aa"},
        {"c:\\temp\\bv8LT.scr", "c:\\temp\\bv8LT.scr"},
        {"Größe", "Größe"},
        {"", ""},
        {"{UNKNOWN}", nullptr},
        {"{ESC", nullptr},
        {"(ab)", nullptr},
        {"ab)", nullptr},
        {"+(ab", nullptr},
        {"x}", nullptr},
        {"a+", nullptr},
        {"{}", nullptr},
        {"{LEFT x}", nullptr},
    };
    for (const auto& c : cases) {
        auto strokes = parseSendKeys(c.keys);
        if (!c.described) {
            EXPECT_FALSE(strokes.has_value()) << c.keys;
            continue;
        }
        ASSERT_TRUE(strokes.has_value()) << c.keys;
        EXPECT_EQ(describeKeyStrokes(*strokes), c.described) << c.keys;
    }
}

TEST(SendKeys, AnyBytesNeverCrash) {
    std::string junk;
    for (int i = 0; i < 256; ++i) junk += static_cast<char>(i);
    // Every byte of the junk is decodable except the braces and parentheses.
    EXPECT_FALSE(parseSendKeys(junk).has_value());
    std::string stray = "\xC3\x28\xFF\xFE";
    stray.erase(1, 1);
    EXPECT_TRUE(parseSendKeys(stray).has_value());
}

TEST(CaseFold, ComparesAsWindowsDoesForTheProgramsNames) {
    EXPECT_TRUE(equalsIgnoreCase("Software\\Vendel", "SOFTWARE\\vendel"));
    EXPECT_TRUE(equalsIgnoreCase("Übersicht", "üBERSICHT"));
    EXPECT_FALSE(equalsIgnoreCase("abc", "abd"));
    EXPECT_FALSE(equalsIgnoreCase("×", "÷"));  // not a letter pair
    EXPECT_TRUE(startsWithIgnoreCase("AutoCAD LT 2015 - [a.dwg]", "autocad lt"));
    EXPECT_FALSE(startsWithIgnoreCase("AutoCAD", "AutoCAD LT"));
    EXPECT_TRUE(startsWithIgnoreCase("x", ""));
}

}  // namespace
}  // namespace platform
