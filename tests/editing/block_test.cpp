// Moving and deleting Blocks and Views over a real library: every file
// follows its record, and a step that fails leaves files and rows as before.
#include "bloecke.h"
#include "editing/ansichten.h"
#include "editing/block_loeschen.h"
#include "editing/block_verschieben.h"

namespace tessara::edittest {
namespace {

std::vector<std::string> alleZeilen(Bloecke& t) {
    auto z = t.zeilen("SELECT Block, OrdnerID, SlideLib FROM tblBlockInfo ORDER BY Nr");
    for (const char* s : {"SELECT BlockName, BlockID, BlockDateiName FROM tblVariationBloecke",
                          "SELECT BlockNr, SpeicherOrtDWG FROM tblMarkierteBloecke"})
        for (auto& zeile : t.zeilen(s)) z.push_back(zeile);
    return z;
}

using Verschieben = Bloecke;

TEST_F(Verschieben, EveryFileFollowsTheBlockIntoAnotherFolder) {
    const std::string b = vollerBlock();
    sql("INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte, NrTblDefMenue) VALUES "
        "('001', 'Zwei', 'Alle', 1)");
    const auto vorher = dateien();
    ASSERT_TRUE(DateienUmEinePositionVerschieben(z, *modell, b, "001", 2, "0010005"));

    std::map<std::string, std::string> erwartet;
    for (const auto& [alt, inhalt] : vorher) {
        std::string name = alt;
        name.replace(0, 3, "001");
        name.replace(name.find(b), b.size(), "0010005");
        erwartet[name] = name.ends_with(".dat") ? dateien()[name] : inhalt;
    }
    EXPECT_EQ(dateien(), erwartet);
    EXPECT_EQ(vorher.size(), 5u * 2 + 2 + 1);
    EXPECT_EQ(alleZeilen(*this),
              (std::vector<std::string>{"0010005|2|001\\00100050.slb", "Flansch|1|0010005_1",
                                        "0010005|001\\Block\\00100050.dwg"}));
    const auto saetze = fctVariantenSaetzeLaden(z, *modell, "0010005");
    ASSERT_TRUE(saetze && saetze->size() == 2);
    EXPECT_EQ(saetze->at(1).datei, "0010005_1");
    EXPECT_EQ(saetze->at(1).punkte[0].z, "3");
}

TEST_F(Verschieben, AFailureHalfWayLeavesEverythingAsItWas) {
    const std::string b = vollerBlock();
    block(3);
    EXPECT_FALSE(DateienUmEinePositionVerschieben(z, *modell, b, "000", 1, nr(3)));
    // The last Variant drawing cannot go where a file lies already.
    datei("000/Block/Varia/" + nr(2) + "_11.dwg");
    const auto vorher = dateien();
    const auto zeilenVorher = alleZeilen(*this);
    fehlerErwartet = true;
    EXPECT_FALSE(DateienUmEinePositionVerschieben(z, *modell, b, "000", 1, nr(2)));
    EXPECT_EQ(dateien(), vorher);
    EXPECT_EQ(alleZeilen(*this), zeilenVorher);
    EXPECT_EQ(gezeigt().front(), m(3) + ": " + m(470) + " / " + nr(3));
    EXPECT_EQ(gezeigt().back(), m(3) + ": " + m(471));
}

TEST_F(Verschieben, MarkedBlocksTakeTheFreeSlotsFromTheSelectedOn) {
    for (int slot : {0, 1, 2}) block(slot);
    modell->fctMarkierungSetzen(0, true);
    modell->fctMarkierungSetzen(1, true);
    modell->subPositionSetzen(2);
    EXPECT_FALSE(fctMarkierteVerschieben(z, *modell));  // only slot 3 is free
    ASSERT_TRUE(fctBlockLoeschen(z, *modell, nr(2)));
    ASSERT_TRUE(fctMarkierteVerschieben(z, *modell));
    EXPECT_EQ(zeilen("SELECT Block FROM tblBlockInfo ORDER BY Nr"),
              (std::vector<std::string>{nr(2), nr(3)}));
    EXPECT_EQ(zeilen("SELECT Nr FROM tblMarkierteBloecke"), std::vector<std::string>{});
    EXPECT_EQ(dateien().count("000/Block/" + nr(3) + "0.dwg"), 1u);
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{m(3) + ": " + m(478) + " / 2 / 1",
                                                   m(4) + ": " + m(472) + " / " + nr(2)}));
}

using Loeschen = Bloecke;

TEST_F(Loeschen, TheBlockGoesWithItsFilesVariantsAndMarks) {
    const std::string b = vollerBlock();
    const std::string anderer = block(1);
    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(fctBlockLoeschen(z, *modell, b));
    ASSERT_TRUE(fctBlockLoeschen(z, *modell, b));
    EXPECT_EQ(dateien(),
              (std::map<std::string, std::string>{
                  {"000/" + anderer + "0.slb", "000/" + anderer + "0.slb"},
                  {"000/Block/" + anderer + "0.dwg", "000/Block/" + anderer + "0.dwg"}}));
    EXPECT_EQ(alleZeilen(*this),
              std::vector<std::string>{anderer + "|1|000\\" + anderer + "0.slb"});
    EXPECT_FALSE(fs::exists(wurzel / "TessaraPapierkorb1"));
}

TEST_F(Loeschen, AFileThatCannotGoKeepsTheBlockWhole) {
    const std::string b = vollerBlock();
    fs::create_directories(wurzel / "lib/000/Block/Varia" / (b + "_13.dwg") / "x");
    const auto vorher = dateien();
    const auto zeilenVorher = alleZeilen(*this);
    fehlerErwartet = true;
    EXPECT_FALSE(fctBlockLoeschen(z, *modell, b));
    EXPECT_EQ(dateien(), vorher);
    EXPECT_EQ(alleZeilen(*this), zeilenVorher);
    EXPECT_EQ(gezeigt().back(), m(3) + ": " + m(473));
}

TEST_F(Loeschen, AViewLosesItsFilesNameAndPoints) {
    const std::string b = block(0, 3);
    typEinfuegepunkte p;
    p[5] = {"1", "2", "3"};
    ASSERT_TRUE(subEinfuegepunkteSchreiben(z, *modell, b, 2, p));
    ASSERT_TRUE(subEinfuegepunkteSchreiben(z, *modell, b, 1, p));
    EXPECT_EQ(fctAnsichtenBilder(z, *modell, b).size(), 3u);
    ASSERT_TRUE(fctAnsichtLoeschen(z, *modell, b, 2));
    EXPECT_EQ(dateien().size(), 4u);
    EXPECT_FALSE(fs::exists(wurzel / "lib/000/Block" / (b + "2.dwg")));
    EXPECT_EQ(zeilen("SELECT BlkName1, FZ1, BlkName2, AX2, FZ2 FROM tblBlockInfo"),
              std::vector<std::string>{"Name1|3|||"});
    const auto bilder = fctAnsichtenBilder(z, *modell, b);
    ASSERT_EQ(bilder.size(), 2u);
    EXPECT_EQ(bilder[1].name + " " + bilder[1].bild, "Name1 " + basis + "000\\" + b + "1.slb(1A)");
    EXPECT_FALSE(fctAnsichtLoeschen(z, *modell, b, 2));
    EXPECT_EQ(gezeigt().back(), m(3) + ": " + m(483));
}

}  // namespace
}  // namespace tessara::edittest
