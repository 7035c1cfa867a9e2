// Every message the Folder and Page operations show is in the shipped
// message files, in both languages.
#include "captions/meldungen.h"

#include <gtest/gtest.h>

#include "organisation/block_eigenschaften.h"
#include "organisation/ordner_rechte.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/seiten_verwaltung.h"
#include "platform/environment.h"

namespace tessara::orgtest {
namespace {

TEST(Meldungen, EveryMessageOfFoldersAndPagesIsShipped) {
    const long nummern[] = {kMsgLetzterOrdner,
                            kMsgOrdnerNameFehlt1,
                            kMsgOrdnerNameFehlt2,
                            kMsgOrdnerNameVergeben,
                            kMsgAndererName,
                            kMsgOrdnerMitNamen,
                            kMsgOrdnerMitBloecken,
                            kMsgOrdnerLoeschen,
                            kMsgSortiert1,
                            kMsgSortiert2,
                            kMsgSortiert3,
                            kMsgSortiert4,
                            kMsgCodetabelle,
                            kMsgZeichenUngueltig,
                            kMsgNameZuLang,
                            kMsgKeinCodeFrei,
                            kMsgVerzeichnisUmbenennen,
                            kMsgOrdnerVerschwunden,
                            kMsgSeiteAngabenFehlen,
                            kMsgSeiteNurZiffern,
                            kMsgSeiteNrVergeben,
                            kMsgSeiteUeberschreiben,
                            kMsgSeiteNameVergeben,
                            kMsgSeiteTrotzdem,
                            kMsgSeiteLoeschen,
                            kMsgSeiteNrBereich,
                            kMsgSeiteVerschwunden,
                            kMsgDefMenue1,
                            kMsgDefMenueBenutzt,
                            kMsgDefMenueLoeschen,
                            kMsgDefMenueGlobal,
                            kMsgDefMenueAenderungen,
                            kMsgWertZuLang,
                            kMsgHoechstens,
                            kMsgFarbe,
                            kMsgLayerZeichen,
                            kMsgBlockVerschwunden};
    for (const char* sprache : {"deutsch", "englisch"}) {
        ProgrammZustand z;
        z.strAppPfad = platform::programPath(std::string(TESSARA_SOURCE_DIR) + "/data");
        z.strSprache = sprache;
        z.strErrorDatei = platform::programPath(::testing::TempDir()) + "\\org_meldungen.txt";
        for (long n : nummern)
            EXPECT_EQ(fctBeschriftMsgboxZuordnen(z, n, kGruppeAllg).rfind("[Meldung", 0),
                      std::string::npos)
                << sprache << " " << n;
    }
}

}  // namespace
}  // namespace tessara::orgtest
