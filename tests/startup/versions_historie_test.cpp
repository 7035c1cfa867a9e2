// The version history: the file that ships, read as the window shows it,
// and the files it must refuse without harm.
#include "startup/versions_historie.h"

#include <gtest/gtest.h>

#include "einstellungen_umgebung.h"
#include "tabelle.h"

namespace tessara::einstellungentest {
namespace {

using VersionsHistorieTest = EinstellungenUmgebung;

TEST_F(VersionsHistorieTest, MitgelieferteDateiLaufendeVersionMarkiert) {
    z.strVersionInfoDatei = prog(fs::path(TESSARA_SOURCE_DIR) / "data/InfoVersion.lis");
    const auto h = fctVersionsHistorieLesen(z);
    EXPECT_EQ(h.lngMeldung, 0);
    ASSERT_GE(h.eintraege.size(), 2u);
    int laufend = 0;
    for (const auto& e : h.eintraege) {
        laufend += e.booLaufend;
        EXPECT_FALSE(e.zeilen.empty()) << e.strVersion;
    }
    EXPECT_EQ(laufend, 1);
    EXPECT_TRUE(h.eintraege[0].booLaufend) << "newest first, and it is the one running";
    EXPECT_EQ(h.eintraege[0].strVersion, "9.0.0");
    EXPECT_EQ(h.eintraege[0].zeilen[0].rfind("Layerverwaltung: benannte", 0), 0u);
}

TEST_F(VersionsHistorieTest, FehlendeOderFalscheCodepage) {
    z.strVersionInfoDatei = prog(wurzel / "app" / "InfoVersion.lis");
    EXPECT_EQ(fctVersionsHistorieLesen(z).lngMeldung, 609);
    for (const auto& f : test::tabelle("startup/golden/versions_historie.txt")) {
        SCOPED_TRACE(f.at(0));
        schreiben(wurzel / "app" / "InfoVersion.lis", f[0]);
        const auto h = fctVersionsHistorieLesen(z);
        EXPECT_EQ(h.lngMeldung, std::stol(f.at(1)));
        ASSERT_EQ(h.eintraege.size(), std::stoul(f.at(2)));
        if (!f.at(3).empty()) {
            EXPECT_EQ(h.eintraege[0].zeilen.at(0), f[3]);
        }
    }
}

}  // namespace
}  // namespace tessara::einstellungentest
