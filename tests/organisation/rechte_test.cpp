// Folder rights: who may use a Folder, and what the Folder window writes.
#include "bibliothek.h"
#include "organisation/ordner_rechte.h"

namespace tessara::orgtest {
namespace {

TEST(OrdnerRechte, NamesAreListedBySemicolonAndComparedWithoutCase) {
    struct Fall {
        const char* rechte;
        const char* name;
        bool erlaubt;
    };
    for (const Fall& f :
         {Fall{"", "meier", true}, Fall{"Alle", "meier", true}, Fall{"alle", "", true},
          Fall{"Meier;Müller", "MEIER", true}, Fall{" müller ; x", "MÜLLER", true},
          Fall{"Meier;Müller", "schulz", false}, Fall{"Meier;", "", false},
          Fall{"Meier", "Meierhofer", false}})
        EXPECT_EQ(fctOrdnerErlaubt(f.rechte, f.name), f.erlaubt) << f.rechte << " / " << f.name;
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
