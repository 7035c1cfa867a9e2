// Names and paths of a block's files and the picture names of its Views.
#include "authoring/datei_layout.h"

#include <gtest/gtest.h>

#include "tabelle.h"

using namespace tessara;

TEST(DateiLayout, PathsOfABlock) {
    const std::string o = "001", b = "0010017";
    const std::pair<std::string, std::string> faelle[] = {
        {fctOrdnerVerzeichnis(o), "001\\"},
        {fctDiaDatei(o, b, 0), "001\\00100170.sld"},
        {fctDiaDatei(o, b, 3), "001\\00100173.sld"},
        {fctDiaBibliothek(o, b, 0), "001\\00100170.slb"},
        {fctDiaBibliothek(o, b, 4), "001\\00100174.slb"},
        {fctDiaCode(0), "0A"},
        {fctDiaCode(4), "4A"},
        {fctBlockVerzeichnis(o), "001\\Block\\"},
        {fctZeichnungDatei(o, b, 0), "001\\Block\\00100170.dwg"},
        {fctZeichnungDatei(o, b, 2), "001\\Block\\00100172.dwg"},
        {fctVariantenVerzeichnis(o), "001\\Block\\Varia\\"},
        {fctVarianteZeichnung(o, "Flansch DN50", 1), "001\\Block\\Varia\\Flansch DN501.dwg"},
        {fctLeerfeldBild("c:\\Programme\\Tessara"), "c:\\Programme\\Tessara\\frei2.sld"},
        {fctCodeTabelleDatei("c:\\Programme\\Tessara"), "c:\\Programme\\Tessara\\txtPrefix.txt"},
        {fctSlideLibEintrag(o, b, true), "001\\00100170.slb"},
        {fctSlideLibEintrag(o, b, false), "001\\00100170.sld"},
    };
    for (const auto& [ist, soll] : faelle) EXPECT_EQ(ist, soll);
}

TEST(DateiLayout, PictureOfView0FollowsTheEndingOfSlideLib) {
    for (const auto& f : tessara::test::tabelle("authoring/golden/bild_ansicht0.txt"))
        EXPECT_EQ(fctBildnameAnsicht0("d:\\Bibliothek\\", f.at(0)), f.at(1)) << f[0];
}
