#include "startup/kommandozeile.h"

#include <gtest/gtest.h>

#include <map>

#include "tabelle.h"

namespace tessara {
namespace {

TEST(Kommandozeile, WirdWieGewohntZerlegt) {
    using Art = typKommandozeile::Art;
    const std::map<std::string, Art> arten = {{"Leer", Art::Leer},
                                              {"Datenbank", Art::Datenbank},
                                              {"LBlkEinfuegen", Art::LBlkEinfuegen},
                                              {"StartForm2", Art::StartForm2},
                                              {"Nichts", Art::Nichts}};
    for (const auto& f : test::tabelle("startup/golden/kommandozeile.txt")) {
        SCOPED_TRACE(f.at(0));
        auto k = fctKommandozeileAuswerten(f[0]);
        EXPECT_EQ(k.art, arten.at(f.at(1)));
        EXPECT_EQ(k.str1, f.at(2));
        EXPECT_EQ(k.str2, f.at(3));
    }
}

TEST(Kommandozeile, KleinschreibungMitUmlauten) {
    EXPECT_EQ(fctKlein("ÄÖÜ Abc ß"), "äöü abc ß");
    EXPECT_EQ(fctKommandozeileAuswerten("LBLOCK").strKlein, "lblock");
}

}  // namespace
}  // namespace tessara
