// The SQL layer's short cuts answer as the long way does: LIKE with a plain
// ASCII literal and text equality without full case folding. The subquery
// over a table's own key, asked in one scan, is in shortcuts/own_subquery.test.
#include <gtest/gtest.h>

#include "jet/sql/text_rules.h"

namespace {

const char* const kTexte[] = {
    "Ventil",
    "VENTIL DN 50",
    "Rückschlagventil",
    "Vorschweißflansch",
    "STRASSE",
    "Straße",
    "STRAẞE",
    "İnox",
    "inox",
    "Str\xdf"
    "e",
    "Ölventil",
    "Grauguss",
    "ßventil",
    "ventilß",
    "ä",
    "",
    "Größe 50°",
    "v\xc3",
};
const char* const kMuster[] = {
    "%ventil%", "%strasse%", "strasse", "stras%",   "%inox%", "inox", "%ss%", "%e",
    "ventil",   "%",         "%50%",    "ssventil", "%lss",   "%v%",  "s%",
};

TEST(Schnellpfade, AsciiLiteralsMatchAsTheFullFoldDoes) {
    for (const char* muster : kMuster) {
        const sql::LikePattern p(muster, sql::LikePattern::Dialect::Sql);
        for (const char* text : kTexte)
            EXPECT_EQ(p.matches(text), p.matchesFolded(sql::foldCase(text)))
                << "'" << text << "' LIKE '" << muster << "'";
    }
}

TEST(Schnellpfade, TextEqualityAsTheFullFoldDoes) {
    const char* const namen[] = {"BlkName0", "blkname0", "BLKNAME0", "BlkName1", "BlkName",
                                 "M0",       "m0",       "Fuß",      "FUSS",     "fuss",
                                 "İ",        "i",        "",         "a ",       "a"};
    for (const char* a : namen)
        for (const char* b : namen)
            EXPECT_EQ(sql::textEquals(a, b), sql::foldCase(a) == sql::foldCase(b))
                << "'" << a << "' = '" << b << "'";
}

}  // namespace
