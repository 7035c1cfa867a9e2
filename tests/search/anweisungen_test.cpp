// The composed statements against the golden file, byte for byte.
#include <gtest/gtest.h>

#include "anweisungen_golden.h"

namespace tessara {
namespace {

TEST(Suchanweisung, EveryGoldenCaseIsComposedByteForByte) {
    const auto faelle = test::fctAnweisungsFaelle();
    ASSERT_GE(faelle.size(), 10u);
    for (const auto& f : faelle) {
        // The operators are chosen but never reach the statement.
        typSuchKriterien k = f.k;
        for (auto& op : k.comboxSuchkriterienVerknuepfen) op = ">=";
        EXPECT_EQ(fctSuchAnweisung(k, f.tabelle, f.ordnerNr), f.erwartet) << f.name;
    }
}

}  // namespace
}  // namespace tessara
