// Date literals between #…# as Jet reads them; their use in statements is
// in errors/messages.test.
#include "jet/sql/date_literal.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(DateLiterals, AsJetReadsThem) {
    struct Case {
        const char* text;
        double days;  // since 30 December 1899; NAN when Jet refuses the literal
    };
    const Case cases[] = {
        {"2024-03-01", 45352},
        {"2024/03/01", 45352},
        {"3/1/2024", 45352},
        {"03-01-2024", 45352},
        {"13/1/2024", 45304},  // no 13th month: day first
        {"2024-03-01 12:30:00", 45352 + 12.5 / 24},
        {"3/1/2024 6:00 PM", 45352 + 0.75},
        {"12:00", 0.5},
        {"1/1/30", 10959},
        {"12/31/29", 47483},
        {"1899-12-29 06:00", -1.25},
        {"2024-02-30", NAN},
        {"2023-02-29", NAN},
        {"13/13/2024", NAN},
        {"2024-03-01 25:00", NAN},
        {"heute", NAN},
        {"", NAN},
    };
    for (const auto& c : cases) {
        auto d = sql::parseDateLiteral(c.text);
        if (std::isnan(c.days)) {
            EXPECT_FALSE(d) << c.text;
        } else {
            ASSERT_TRUE(d) << c.text;
            EXPECT_NEAR(*d, c.days, 1e-9) << c.text;
        }
    }
}

}  // namespace
