// Pages of the current Folder over a real library: new, overwrite, rename,
// delete, the list of the Page window and the operations without a dialog.
#include "bibliothek.h"
#include "organisation/seiten_verwaltung.h"
#include "tabelle.h"

namespace tessara::orgtest {
namespace {

using Seiten = Bibliothek;

std::vector<std::string> seiten(Bibliothek& b, int ordner = 1) {
    return b.zeilen("SELECT Nr, SeitenNr, SeitenName FROM tblSeiten WHERE NrTblOrdner = " +
                    std::to_string(ordner) + " ORDER BY Nr");
}

TEST_F(Seiten, NumbersAndNamesOfANewPageAreChecked) {
    for (const auto& f : test::tabelle("organisation/golden/seiten_neu.txt")) {
        benutzer.gezeigt.clear();
        EXPECT_EQ(fctSeiteNeu(z, *modell, f.at(0), f.at(1)), f.at(2).empty()) << f[0];
        if (!f[2].empty()) {
            EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + f[2]});
        }
    }
    EXPECT_EQ(seiten(*this), (std::vector<std::string>{"1|1|1", "2|7|Sieben", "3|32767|Letzte"}));
}

TEST_F(Seiten, ATakenNumberIsOverwrittenInPlaceAfterAsking) {
    ASSERT_TRUE(fctSeiteNeu(z, *modell, "2", "Flansche"));
    ausfuehren("INSERT INTO tblBlockInfo (Block, OrdnerID) VALUES ('0000004', 1)");

    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(fctSeiteNeu(z, *modell, "2", "Bögen"));
    benutzer.antworten = {Antwort::Ja, Antwort::Nein};  // overwrite yes, but the name is Page 1's
    EXPECT_FALSE(fctSeiteNeu(z, *modell, "2", "1"));
    EXPECT_EQ(seiten(*this), (std::vector<std::string>{"1|1|1", "2|2|Flansche"}));

    benutzer.gezeigt.clear();
    EXPECT_TRUE(fctSeiteNeu(z, *modell, "2", "Bögen"));
    EXPECT_EQ(gezeigt(),
              std::vector<std::string>{m(4) + ": " + m(282) + " / 2: Flansche / " + m(283)});
    EXPECT_EQ(seiten(*this), (std::vector<std::string>{"1|1|1", "2|2|Bögen"}));
    EXPECT_EQ(zeilen("SELECT Block FROM tblBlockInfo"), std::vector<std::string>{"0000004"});

    // A free number with a taken name: two Pages may share a name if the user agrees.
    benutzer.gezeigt.clear();
    EXPECT_TRUE(fctSeiteNeu(z, *modell, "3", "bögen"));
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(4) + ": " + m(284) + " / bögen / " + m(285)});
    EXPECT_EQ(seiten(*this).back(), "3|3|bögen");
    // The Page box follows.
    ASSERT_EQ(modell->seitenListe().size(), 3u);
}

TEST_F(Seiten, RenameKeepsTheNumberAndRefusesATakenName) {
    ASSERT_TRUE(fctSeiteNeu(z, *modell, "2", "Zwei"));
    EXPECT_FALSE(fctSeiteUmbenennen(z, *modell, 2, "1"));
    EXPECT_FALSE(fctSeiteUmbenennen(z, *modell, 9, "Neun"));
    EXPECT_TRUE(fctSeiteUmbenennen(z, *modell, 2, "Ventile"));
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{m(3) + ": " + m(284) + " / 1 / " + m(270),
                                                   m(3) + ": " + m(426)}));
    EXPECT_EQ(seiten(*this), (std::vector<std::string>{"1|1|1", "2|2|Ventile"}));
}

TEST_F(Seiten, DeletingOnePageOrTheOnlyOne) {
    ausfuehren("INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('001', 'Andere')");
    ausfuehren("INSERT INTO tblSeiten (SeitenNr, SeitenName, NrTblOrdner) VALUES (1, 'Fremd', 2)");
    ASSERT_TRUE(fctSeiteNeu(z, *modell, "2", "Zwei"));
    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(fctSeiteLoeschen(z, *modell, 2));
    EXPECT_FALSE(fctSeiteLoeschen(z, *modell, 8));  // no such Page
    EXPECT_TRUE(fctSeiteLoeschen(z, *modell, 2));
    EXPECT_EQ(seiten(*this), std::vector<std::string>{"1|1|1"});
    EXPECT_TRUE(fctSeiteLoeschen(z, *modell, 1));  // the only one: by the Folder's key
    EXPECT_EQ(seiten(*this), std::vector<std::string>{});
    EXPECT_EQ(seiten(*this, 2), std::vector<std::string>{"2|1|Fremd"});
    EXPECT_EQ(gezeigt(), std::vector<std::string>(4, m(4) + ": " + m(286)));
    EXPECT_TRUE(fctSeitenAnzeigen(z, *modell).zeilen.empty());
}

TEST_F(Seiten, TheListShowsNumberTabNameByNameWithTheCurrentPageSelected) {
    ASSERT_TRUE(fctSeiteNeu(z, *modell, "3", "Armaturen"));
    ASSERT_TRUE(fctSeiteNeu(z, *modell, "2", "Zubehör"));
    ASSERT_TRUE(modell->GeheZuSeite(2));
    const auto l = fctSeitenAnzeigen(z, *modell);
    EXPECT_EQ(l.zeilen, (std::vector<std::string>{"1\t1", "3\tArmaturen", "2\tZubehör"}));
    EXPECT_EQ(l.nummern, (std::vector<long>{1, 3, 2}));
    EXPECT_EQ(l.intAuswahl, 1);
}

}  // namespace
}  // namespace tessara::orgtest
