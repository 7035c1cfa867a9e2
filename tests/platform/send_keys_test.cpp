#include "platform/send_keys.h"

#include <gtest/gtest.h>

#include "platform/case_fold.h"
#include "tabelle.h"

namespace platform {
namespace {

TEST(SendKeys, DecodesTheBraceNotation) {
    for (const auto& c : tessara::test::tabelle("platform/golden/send_keys.txt")) {
        auto strokes = parseSendKeys(c.at(0));
        if (c.size() == 1) {
            EXPECT_FALSE(strokes.has_value()) << c[0];
            continue;
        }
        ASSERT_TRUE(strokes.has_value()) << c[0];
        EXPECT_EQ(describeKeyStrokes(*strokes), c[1]) << c[0];
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
