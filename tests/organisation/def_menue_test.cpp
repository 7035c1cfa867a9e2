// Definition menus and Block properties over a real library.
#include "organisation/def_menue.h"

#include "bibliothek.h"
#include "organisation/block_eigenschaften.h"

namespace tessara::orgtest {
namespace {

using DefMenues = Bibliothek;

TEST_F(DefMenues, CreateCopyAssignAndDeleteWithTheirGuards) {
    auto menues = fctDefMenuesLesen(z, *modell);
    ASSERT_EQ(menues.size(), 1u);
    EXPECT_TRUE(menues[0].booGlobal);
    EXPECT_EQ(menues[0].ordner, std::vector<std::string>{"Standard-Ordner"});
    EXPECT_EQ(fctAttributName(menues[0], 0), "");

    menues[0].Benennung[0] = "Nennweite";
    menues[0].Standardwert[0] = "DN 50";
    EXPECT_EQ(fctDefMenueNeu(z, *modell), 2);
    EXPECT_EQ(fctDefMenueNeu(z, *modell, &menues[0]), 3);
    ASSERT_TRUE(fctDefMenueZuordnen(z, *modell, 3));
    const auto eigenes = fctDefMenueDesOrdners(z, *modell, 1);
    ASSERT_TRUE(eigenes);
    EXPECT_EQ(eigenes->Nr, 3);
    EXPECT_FALSE(eigenes->booGlobal);
    EXPECT_EQ(fctAttributName(*eigenes, 0), "Nennweite");
    EXPECT_EQ(fctNeueBlockAttribute(*eigenes)[0], "DN 50");
    EXPECT_EQ(fctNeueBlockAttribute(*eigenes)[1], "");

    EXPECT_FALSE(fctDefMenueLoeschen(z, *modell, 1));
    EXPECT_FALSE(fctDefMenueLoeschen(z, *modell, 3));
    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(fctDefMenueLoeschen(z, *modell, 2));
    EXPECT_TRUE(fctDefMenueLoeschen(z, *modell, 2));
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{m(3) + ": " + m(430),
                                                   m(3) + ": " + m(431) + " / Standard-Ordner",
                                                   m(4) + ": " + m(432), m(4) + ": " + m(432)}));
    EXPECT_EQ(zeilen("SELECT Nr, global FROM tblDefMenue ORDER BY Nr"),
              (std::vector<std::string>{"1|1", "3|0"}));
}

TEST_F(DefMenues, AGlobalMenuChangesOnlyWhenTheSettingAllowsIt) {
    auto d = fctDefMenuesLesen(z, *modell).at(0);
    d.Benennung[9] = "Länge 'L'";
    d.Standardwert[9] = "";
    EXPECT_FALSE(fctDefMenueSpeichern(z, *modell, d, false));
    EXPECT_EQ(zeilen("SELECT Benennung10 FROM tblDefMenue"),
              std::vector<std::string>{"*****Frei*****"});
    EXPECT_TRUE(fctDefMenueSpeichern(z, *modell, d, true));
    EXPECT_EQ(zeilen("SELECT Benennung10, Standardwert10 FROM tblDefMenue WHERE "
                     "Standardwert10 IS NULL"),
              std::vector<std::string>{"Länge 'L'|"});
    d.Benennung[0] = std::string(101, 'x');
    EXPECT_FALSE(fctDefMenueSpeichern(z, *modell, d, true));
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{m(3) + ": " + m(433),
                                                   m(3) + ": " + m(437) + " / " + d.Benennung[0] +
                                                       " / " + m(439) + " / 100"}));
}

TEST_F(DefMenues, BlockPropertiesAreCheckedAndWritten) {
    ausfuehren(
        "INSERT INTO tblBlockInfo (Block, OrdnerID, M0, Layer) VALUES ('0000000', 1, "
        "'Kugelhahn', 'ARMATUREN')");
    auto b = fctBlockEigenschaftenLesen(z, *modell, 1);
    ASSERT_TRUE(b);
    EXPECT_EQ(b->M[0], "Kugelhahn");
    EXPECT_EQ(b->Layer, "ARMATUREN");
    b->M[0] = "Kugelhahn 1\" mit Überwurf";
    b->M[9] = "";
    b->LyColor = "256";
    b->LyLine = "DASHED";
    EXPECT_TRUE(fctBlockEigenschaftenSpeichern(z, *modell, *b));
    EXPECT_EQ(zeilen("SELECT M0, M9, Layer, LyColor, LyLine FROM tblBlockInfo"),
              std::vector<std::string>{"Kugelhahn 1\" mit Überwurf||ARMATUREN|256|DASHED"});

    struct Fall {
        std::string layer, farbe, meldung;
    };
    for (const Fall& f : {Fall{"A/B", "1", m(436) + " / A/B"}, Fall{"A", "300", m(435) + " / 300"},
                          Fall{"A", "rot", m(435) + " / rot"},
                          Fall{std::string(36, 'L'), "1",
                               m(437) + " / " + std::string(36, 'L') + " / " + m(439) + " / 35"}}) {
        benutzer.gezeigt.clear();
        auto falsch = *b;
        falsch.Layer = f.layer;
        falsch.LyColor = f.farbe;
        EXPECT_FALSE(fctBlockEigenschaftenSpeichern(z, *modell, falsch)) << f.meldung;
        EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + f.meldung});
    }
    ausfuehren("DELETE FROM tblBlockInfo");
    benutzer.gezeigt.clear();
    EXPECT_FALSE(fctBlockEigenschaftenSpeichern(z, *modell, *b));
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + m(438)});
    EXPECT_FALSE(fctBlockEigenschaftenLesen(z, *modell, 1));
}

}  // namespace
}  // namespace tessara::orgtest
