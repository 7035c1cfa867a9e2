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

}  // namespace
}  // namespace tessara::edittest
