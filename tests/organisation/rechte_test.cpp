// Folder rights: who may use a Folder, and what the Folder window writes.
#include "bibliothek.h"
#include "organisation/ordner_rechte.h"
#include "tabelle.h"

namespace tessara::orgtest {
namespace {

TEST(OrdnerRechte, NamesAreListedBySemicolonAndComparedWithoutCase) {
    for (const auto& f : test::tabelle("organisation/golden/ordner_rechte.txt"))
        EXPECT_EQ(fctOrdnerErlaubt(f.at(0), f.at(1)), f.at(2) == "1") << f[0] << " / " << f[1];
}

using Rechte = Bibliothek;

TEST_F(Rechte, TheListIsTidiedAndNobodyLocksHimselfOut) {
    auto rechte = [&] { return zeilen("SELECT OrdnerRechte FROM tblOrdner"); };
    EXPECT_TRUE(fctOrdnerRechteSpeichern(z, *modell, 1, "  Meier ; Müller ;", "meier"));
    EXPECT_EQ(rechte(), std::vector<std::string>{"Meier;Müller"});
    EXPECT_FALSE(fctOrdnerRechteSpeichern(z, *modell, 1, "Schulz", "meier"));
    EXPECT_FALSE(
        fctOrdnerRechteSpeichern(z, *modell, 1, "meier;" + std::string(100, 'x'), "meier"));
    EXPECT_EQ(rechte(), std::vector<std::string>{"Meier;Müller"});
    EXPECT_TRUE(fctOrdnerRechteSpeichern(z, *modell, 1, " ", "schulz"));
    EXPECT_EQ(rechte(), std::vector<std::string>{"Alle"});
    ASSERT_EQ(gezeigt().size(), 2u);
    EXPECT_EQ(gezeigt()[0], m(3) + ": " + m(440) + " / meier");
}

}  // namespace
}  // namespace tessara::orgtest
