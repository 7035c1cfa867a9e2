// The window's commands over the open library: the View marked for
// insertion, and a write-protected library that refuses every change.
#include "bloecke.h"
#include "editing/ansichten.h"
#include "editing/block_akte.h"
#include "editing/block_befehle.h"

namespace tessara::edittest {
namespace {

using Befehle = Bloecke;

TEST_F(Befehle, TheMarkedViewHoldsForItsBlockAndAProtectedLibraryRefusesChanges) {
    block(0, 3);
    BibliothekSitzung s{z, oeffner};
    ASSERT_TRUE(s.modell().fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
    ASSERT_TRUE(s.fctOeffnen(db).ok());
    s.fctPositionSetzen(0);
    for (const auto& [markiert, erwartet] : {std::pair{2, 2}, {4, 0}}) {
        s.setEinzufuegendeAnsicht(markiert);
        const auto a = EinzufuegendeAnsichtBestimmenUndRsEinlesen(z, s);
        ASSERT_TRUE(a);
        EXPECT_EQ(a->ansicht, erwartet);
        EXPECT_EQ(a->block.OrdnerNr + a->block.BlkName[2], "000Name2");
    }
    // The record by the slot's key, and by the number when that key is stale.
    const typSlot& slot = s.modell().seitenSlots()[0];
    for (long key : {slot.lngNr, slot.lngNr + 99})
        EXPECT_EQ(
            fctBlockAkteLesen(z, s.modell().datenbank().con, slot.strBlockNr, key)->BlkName[2],
            "Name2");
    s.setEinzufuegendeAnsicht(1);
    s.fctPositionSetzen(1);
    s.fctPositionSetzen(0);
    EXPECT_EQ(s.intEinzufuegendeAnsicht(), 0);

    BlockBefehle befehle(z, s);
    EXPECT_EQ(befehle.fctNameAendern(0, "Neu"), kSeiteGeaendert | kAnsichtenGeaendert);
    fs::permissions(wurzel / "lib" / "dbTessara.mdb", fs::perms::owner_write,
                    fs::perm_options::remove);
    ASSERT_TRUE(s.fctSchreibschutzPruefen());
    EXPECT_EQ(befehle.fctLoeschen(), kNichtsGeaendert);
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + m(403)});
    EXPECT_EQ(zeilen("SELECT BlkName0 FROM tblBlockInfo"), std::vector<std::string>{"Neu"});
}

// The commands act on the session's selected slot (how the files follow each
// step is block_test.cpp's): a move to a slot, a
// View deleted, the Block deleted after a no and then a yes, marked Blocks
// moved together from the selected slot on.
TEST_F(Befehle, MoveDeleteAndMarkedMoveActOnTheSelectedSlot) {
    block(0, 2);
    BibliothekSitzung s{z, oeffner};
    ASSERT_TRUE(s.modell().fctCodeTabelleLesen(z.strAppPfad + "\\txtPrefix.txt"));
    ASSERT_TRUE(s.fctOeffnen(db).ok());
    s.fctPositionSetzen(0);
    BlockBefehle befehle(z, s);
    const auto& slots = s.modell().seitenSlots();
    const std::string ziel = slots[5].strBlockNr;
    EXPECT_EQ(befehle.fctVerschieben(5), kSeiteGeaendert | kAnsichtenGeaendert);
    EXPECT_EQ(zeilen("SELECT Block, SlideLib FROM tblBlockInfo"),
              std::vector<std::string>{ziel + "|000\\" + ziel + "0.slb"});
    EXPECT_EQ(dateien().count("000/Block/" + ziel + "1.dwg"), 1u);

    s.fctPositionSetzen(5);
    s.setEinzufuegendeAnsicht(1);
    EXPECT_EQ(befehle.fctAnsichtLoeschen(1), kAnsichtenGeaendert);
    EXPECT_EQ(s.intEinzufuegendeAnsicht(), 0);
    EXPECT_EQ(zeilen("SELECT BlkName1 FROM tblBlockInfo"), std::vector<std::string>{""});
    benutzer.antworten = {Antwort::Nein};
    EXPECT_EQ(befehle.fctLoeschen(), kNichtsGeaendert);
    EXPECT_EQ(dateien().size(), 2u);
    benutzer.antworten = {Antwort::Ja};
    EXPECT_EQ(befehle.fctLoeschen(), kSeiteGeaendert | kAnsichtenGeaendert);
    EXPECT_TRUE(dateien().empty());
    EXPECT_EQ(zeilen("SELECT Nr FROM tblBlockInfo"), std::vector<std::string>{});

    block(1);
    block(2);
    ASSERT_TRUE(s.fctOeffnen(db).ok());
    for (int platz : {1, 2}) s.fctMarkieren(platz, true);
    s.fctPositionSetzen(6);
    EXPECT_NE(befehle.fctMarkierteVerschieben(), kNichtsGeaendert);
    const auto& nachher = s.modell().seitenSlots();
    const std::string ziel6 = nachher[6].strBlockNr, ziel7 = nachher[7].strBlockNr;
    EXPECT_EQ(zeilen("SELECT Block FROM tblBlockInfo ORDER BY Block"),
              (std::vector<std::string>{ziel6, ziel7}));
}

}  // namespace
}  // namespace tessara::edittest
