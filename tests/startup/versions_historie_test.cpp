// The version history: the file that ships, read as the window shows it,
// and the files it must refuse without harm.
#include "startup/versions_historie.h"

#include <gtest/gtest.h>

#include "einstellungen_umgebung.h"

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
    struct Fall {
        std::string bytes;
        long meldung;
        std::size_t eintraege;
        std::string ersteZeile;
    };
    const Fall faelle[] = {
        {"Kopf\r\nVersion 9.0.0 (1.1.2027)\r\n- Gr\xF6\xDF"
         "e\r\n\r\nVersion 1\r\nx",
         0, 2, "Größe"},
        {"Version 9.0.0\n- Gr\xC3\xB6\xC3\x9F"
         "e\n",
         610, 1, "Größe"},
        {"\xEF\xBB\xBFVersion 9.0.0\n- a\n", 610, 1, "a"},
        {"\xFF\xFEV\0e\0r\0", 610, 0, ""},
        {std::string("Version 9.0.0 (\0\n", 17), 610, 0, ""},
        {"Version (\n-\nVersion 9\x81", 0, 2, ""},
    };
    for (const auto& f : faelle) {
        schreiben(wurzel / "app" / "InfoVersion.lis", f.bytes);
        const auto h = fctVersionsHistorieLesen(z);
        EXPECT_EQ(h.lngMeldung, f.meldung) << f.bytes;
        ASSERT_EQ(h.eintraege.size(), f.eintraege) << f.bytes;
        if (!f.ersteZeile.empty()) EXPECT_EQ(h.eintraege[0].zeilen.at(0), f.ersteZeile);
    }
}

}  // namespace
}  // namespace tessara::einstellungentest
