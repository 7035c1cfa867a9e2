// Date literals between #…# as Jet reads them; their use in statements is
// in errors/messages.test.
#include "jet/sql/date_literal.h"

#include <gtest/gtest.h>

#include "tabelle.h"

namespace {

TEST(DateLiterals, AsJetReadsThem) {
    for (const auto& c : tessara::test::tabelle("sql/golden/datumsliterale.txt")) {
        const auto d = sql::parseDateLiteral(c.at(0));
        if (c.at(1) == "-") {
            EXPECT_FALSE(d) << c[0];
        } else {
            ASSERT_TRUE(d) << c[0];
            EXPECT_NEAR(*d, std::stod(c[1]), 1e-9) << c[0];
        }
    }
}

}  // namespace
