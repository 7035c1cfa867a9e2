// Text and value forms: compressed Unicode, UCS-2, dates, display forms.
#include <gtest/gtest.h>

#include "jet/format/text.h"
#include "jet/format/value.h"

namespace {

using namespace jet;

TEST(JetText, DecodesCompressedUnicodeWithModeSwitches) {
    // "Ab" compressed, switch to two-byte mode for U+2013, back for "c".
    const std::uint8_t bytes[] = {0xFF, 0xFE, 'A', 'b', 0x00, 0x13, 0x20, 0x00, 'c'};
    EXPECT_EQ(decodeText(bytes, sizeof bytes),
              "Ab\xE2\x80\x93"
              "c");
    const std::uint8_t plain[] = {'H', 0, 0xE4, 0, '!', 0};
    EXPECT_EQ(decodeText(plain, sizeof plain), "H\xC3\xA4!");
    const std::uint8_t marker[] = {0xFF, 0xFE};
    EXPECT_EQ(decodeText(marker, 2), "");
}

TEST(JetText, EncodesAndDecodesTheSameText) {
    const std::string samples[] = {
        "",
        "abc",
        "Ventil DN50 \xE2\x80\x93 Edelstahl \xC3\x84\xC3\x96\xC3\x9C\xC3\x9F",
        "\xE2\x82\xAC only",
        "mixed \xC4\x80 low byte zero",  // U+0100 cannot be compressed
        "emoji \xF0\x9F\x98\x80"};
    for (const std::string& s : samples) {
        SCOPED_TRACE(s);
        for (bool compress : {false, true}) {
            auto enc = encodeText(s, compress);
            EXPECT_EQ(decodeText(enc.data(), enc.size()), s);
        }
    }
    auto c = encodeText("abc", true);
    EXPECT_EQ(c, (std::vector<std::uint8_t>{0xFF, 0xFE, 'a', 'b', 'c'}));
    auto u = encodeText("\xC4\x80", true);
    EXPECT_EQ(u, (std::vector<std::uint8_t>{0x00, 0x01}));
}

TEST(JetText, ComparesCaseInsensitively) {
    EXPECT_TRUE(equalsNoCase("Table1", "TABLE1"));
    EXPECT_TRUE(equalsNoCase("\xC3\xA4rger", "\xC3\x84RGER"));
    EXPECT_LT(compareTextNoCase("abc", "ABD"), 0);
    EXPECT_GT(compareTextNoCase("b", "A"), 0);
}

TEST(JetValue, DatesConvertBothWays) {
    struct Case {
        double days;
        const char* text;
    };
    const Case cases[] = {{0, "12/30/99 00:00:00"},     {1.5, "12/31/99 12:00:00"},
                          {27293, "09/21/74 00:00:00"}, {36526.75, "01/01/00 18:00:00"},
                          {-1.25, "12/29/99 06:00:00"}, {2958465.999988426, "12/31/99 23:59:59"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(formatDate(c.days), c.text);
        EXPECT_NEAR(fromCivil(toCivil(c.days)), c.days, 1.0 / 86400);
    }
}

// Forms the comparison of the test files' rows with mdb-export's may not
// meet (a negative Currency, a Decimal) or leaves out (a Guid).
TEST(JetValue, DisplayFormsMatchMdbExport) {
    EXPECT_EQ(toText(Value{Currency{-1}}), "-0.0001");
    Decimal d;
    d.negative = true;
    d.scale = 2;
    d.magnitude = 12345;
    EXPECT_EQ(toText(Value{d}), "-123.45");
    Guid g;
    for (int i = 0; i < 16; ++i) g.bytes[std::size_t(i)] = std::uint8_t(i);
    EXPECT_EQ(toText(Value{g}), "{03020100-0504-0706-0809-0A0B0C0D0E0F}");
}

}  // namespace
