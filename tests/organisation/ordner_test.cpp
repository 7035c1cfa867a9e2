// Folders over a real library: new, rename, delete, move, the code table,
// and the operations used without a dialog.
#include <fstream>

#include "authoring/code_tabelle.h"
#include "bibliothek.h"
#include "organisation/ordner_codes.h"
#include "organisation/ordner_verwaltung.h"
#include "startup/einstellungen.h"
#include "tabelle.h"

namespace tessara::orgtest {
namespace {

using Ordner = Bibliothek;

std::vector<std::string> ordnerNamen(Bibliothek& b) {
    return b.zeilen("SELECT OrdnerNr, Ordnername FROM tblOrdner ORDER BY Nr");
}

TEST_F(Ordner, CodeTableWrapsAfterEntry42874) {
    const std::string datei = z.strAppPfad + "\\txtPrefix.txt";
    const auto alle = fctCodeTabelleErzeugen();
    std::vector<std::string> t;
    ASSERT_TRUE(fctOrdnerCodesEinlesen(z, datei, 85749, t));
    ASSERT_EQ(t.size(), 85750u);
    EXPECT_EQ(t[42874], alle[42874]);  // the file's last line
    EXPECT_EQ(t[42875], alle[0]);      // read again from the first line
    EXPECT_EQ(t[85748], alle[42873]);  // the second round ends a line early
    EXPECT_EQ(t[85749], alle[0]);
}

TEST_F(Ordner, NewFolderNamesAreCheckedBeforeAnythingIsWritten) {
    auto vorher = ordnerNamen(*this);
    for (const auto& f : test::tabelle("organisation/golden/ordnernamen.txt")) {
        SCOPED_TRACE(f.at(0));
        benutzer.gezeigt.clear();
        EXPECT_EQ(fctOrdnerNeu(z, *modell, f[0]), f.at(1).empty());
        auto nachher = ordnerNamen(*this);
        if (f[1].empty()) {
            EXPECT_TRUE(benutzer.gezeigt.empty());
            ASSERT_EQ(nachher.size(), vorher.size() + 1);
            EXPECT_EQ(nachher.back().substr(4), f.at(2));
        } else {
            EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + f[1]});
            EXPECT_EQ(nachher, vorher);
        }
        vorher = nachher;
    }
}

TEST_F(Ordner, CodesComeAtOrAfterTheHighestKeyAndSkipTakenOnes) {
    // A database of an older version: no sort number yet.
    for (const char* n : {"A", "B", "C"}) ASSERT_TRUE(fctOrdnerNeu(z, *modell, n));
    EXPECT_EQ(zeilen("SELECT Nr, OrdnerNr, NrTblOrdnen FROM tblOrdner ORDER BY Nr"),
              (std::vector<std::string>{"1|000|1", "2|001|2", "3|002|3", "4|003|4"}));

    ASSERT_TRUE(fctOrdnerLoeschen(z, *modell, 3));  // "002" is free now, below the highest key
    std::string code;
    ASSERT_TRUE(fctOrdnerNeu(z, *modell, "D", &code));
    EXPECT_EQ(code, "004");
    // Written by another program: the code at the highest key is taken.
    ausfuehren("INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('006', 'Fremd')");
    ASSERT_TRUE(fctOrdnerNeu(z, *modell, "E", &code));
    EXPECT_EQ(code, "007");
    EXPECT_EQ(zeilen("SELECT OrdnerNr FROM tblOrdner WHERE Ordnername = 'E'"),
              std::vector<std::string>{"007"});
}

// Read short of the codes it needs, the table refuses the Folder it cannot code.
TEST_F(Ordner, AShortCodeTableRefusesTheNewFolder) {
    std::ofstream(wurzel / "prog" / "txtPrefix.txt", std::ios::binary | std::ios::trunc)
        << "000\r\n001\r\n";
    EXPECT_FALSE(fctOrdnerNeu(z, *modell, "Zu weit"));
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + m(405) + " / " + z.strAppPfad +
                                                  "\\txtPrefix.txt"});
    EXPECT_EQ(ordnerNamen(*this), std::vector<std::string>{"000|Standard-Ordner"});
    fehlerErwartet = true;
    EXPECT_NE(fehler().size(), 0u);
}

TEST_F(Ordner, RenameTakesTheExactOldNameAndKeepsCodeAndDirectory) {
    for (const char* n : {"Rohrleitung", "Rohr", "Armaturen"})
        ASSERT_TRUE(fctOrdnerNeu(z, *modell, n));
    fs::create_directories(wurzel / "lib" / "002");

    EXPECT_TRUE(fctOrdnerUmbenennen(z, *modell, "Rohr", "Rohre DN 50"));
    EXPECT_FALSE(fctOrdnerUmbenennen(z, *modell, "Armaturen", "rohrleitung"));
    EXPECT_FALSE(fctOrdnerUmbenennen(z, *modell, "Gibt es nicht", "Neu"));
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{
                             m(3) + ": " + m(271) + " / rohrleitung / " + m(270),
                             m(3) + ": Durch einen internen Fehler kann der Ordner nicht umbenannt "
                                    "werden"}));
    EXPECT_EQ(ordnerNamen(*this),
              (std::vector<std::string>{"000|Standard-Ordner", "001|Rohrleitung", "002|Rohre DN 50",
                                        "003|Armaturen"}));
    EXPECT_TRUE(fs::is_directory(wurzel / "lib" / "002"));
    ASSERT_EQ(modell->aryOrdner().size(), 4u);
    EXPECT_EQ(modell->aryOrdner()[2].OrdnerName, "Rohre DN 50");
}

TEST_F(Ordner, DeletingKeepsBlocksPagesAndDrawings) {
    ASSERT_TRUE(fctOrdnerNeu(z, *modell, "Armaturen"));  // Nr 2, "001"
    ASSERT_TRUE(fctOrdnerNeu(z, *modell, "Leer"));       // Nr 3, "002"
    ausfuehren("INSERT INTO tblBlockInfo (Block, OrdnerID, M0) VALUES ('0010000', 2, 'Hahn')");
    ausfuehren("INSERT INTO tblSeiten (SeitenNr, SeitenName, NrTblOrdner) VALUES (1, 'Eins', 2)");
    fs::create_directories(wurzel / "lib" / "001" / "Block");
    std::ofstream(wurzel / "lib" / "001" / "Block" / "00100000.dwg") << "dwg";
    fs::create_directories(wurzel / "lib" / "001geloescht");  // an earlier Folder "001"

    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(fctOrdnerLoeschen(z, *modell, 2));
    EXPECT_TRUE(fs::exists(wurzel / "lib" / "001" / "Block" / "00100000.dwg"));
    EXPECT_TRUE(fctOrdnerLoeschen(z, *modell, 2));
    EXPECT_TRUE(fctOrdnerLoeschen(z, *modell, 3));
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{m(4) + ": " + m(272) + " /  / " + m(273),
                                                   m(4) + ": " + m(272) + " /  / " + m(273),
                                                   m(4) + ": " + m(273)}));
    EXPECT_EQ(ordnerNamen(*this), std::vector<std::string>{"000|Standard-Ordner"});
    EXPECT_EQ(zeilen("SELECT Block FROM tblBlockInfo"), std::vector<std::string>{"0010000"});
    EXPECT_EQ(zeilen("SELECT SeitenName FROM tblSeiten WHERE NrTblOrdner = 2"),
              std::vector<std::string>{"Eins"});
    EXPECT_FALSE(fs::exists(wurzel / "lib" / "001"));
    EXPECT_TRUE(fs::exists(wurzel / "lib" / "001geloescht1" / "Block" / "00100000.dwg"));

    // The last Folder stays, under message 54 with the title of a question.
    benutzer.gezeigt.clear();
    EXPECT_FALSE(fctOrdnerLoeschen(z, *modell, 1));
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(4) + ": " + m(54)});
    EXPECT_EQ(ordnerNamen(*this), std::vector<std::string>{"000|Standard-Ordner"});
}

TEST_F(Ordner, MovingSwapsSortNumbersOnly) {
    for (const char* n : {"B", "C"}) ASSERT_TRUE(fctOrdnerNeu(z, *modell, n));
    ausfuehren("UPDATE tblOrdner SET NrTblOrdnen = 7 WHERE Nr = 3");  // a gap of older data
    ASSERT_TRUE(fctOrdnerReihenfolgeLesen(z, *modell, false));
    auto reihe = [&] {
        return zeilen("SELECT Ordnername, NrTblOrdnen FROM tblOrdner ORDER BY NrTblOrdnen");
    };
    long neu = -1;
    EXPECT_FALSE(fctOrdnerVerschieben(z, *modell, 0, 0, &neu));  // first up
    EXPECT_FALSE(fctOrdnerVerschieben(z, *modell, 2, 1, &neu));  // last down
    EXPECT_EQ(reihe(), (std::vector<std::string>{"Standard-Ordner|1", "B|2", "C|7"}));

    EXPECT_TRUE(fctOrdnerVerschieben(z, *modell, 2, 0, &neu));
    EXPECT_EQ(neu, 1);
    EXPECT_TRUE(fctOrdnerVerschieben(z, *modell, 1, 0, &neu));
    EXPECT_EQ(neu, 0);
    EXPECT_EQ(reihe(), (std::vector<std::string>{"C|1", "Standard-Ordner|2", "B|7"}));
    ASSERT_EQ(modell->aryOrdner().size(), 3u);
    EXPECT_EQ(modell->aryOrdner()[0].OrdnerName, "C");
    EXPECT_TRUE(benutzer.gezeigt.empty());

    IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "nOrdnerSortieren", "1");
    EXPECT_FALSE(fctOrdnerVerschieben(z, *modell, 1, 1, &neu));
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + m(274) + " / " + m(275) + " /  / " +
                                                  m(276) + " / " + m(277)});
    EXPECT_EQ(reihe(), (std::vector<std::string>{"C|1", "Standard-Ordner|2", "B|7"}));
}

TEST_F(Ordner, AnOlderDatabaseGetsTheSortNumberOnFirstUse) {
    ausfuehren("INSERT INTO tblOrdner (OrdnerNr, Ordnername) VALUES ('001', 'Zweiter')");
    oeffnen();
    EXPECT_TRUE(fctOrdnerVerschieben(z, *modell, 1, 0));
    EXPECT_EQ(zeilen("SELECT Ordnername, NrTblOrdnen FROM tblOrdner ORDER BY Nr"),
              (std::vector<std::string>{"Standard-Ordner|2", "Zweiter|1"}));
}

TEST_F(Ordner, TheFolderBoxFollowsTheSortSetting) {
    for (const char* n : {"Zink", "Alu"}) ASSERT_TRUE(fctOrdnerNeu(z, *modell, n));
    auto namen = [&] {
        std::vector<std::string> v;
        for (const auto& o : modell->aryOrdner()) v.push_back(o.OrdnerName);
        return v;
    };
    ASSERT_TRUE(fctCboOrdnerNeuAnzeigen(z, *modell, "Alu"));
    EXPECT_EQ(namen(), (std::vector<std::string>{"Standard-Ordner", "Zink", "Alu"}));
    EXPECT_EQ(modell->aktuellerOrdner()->OrdnerName, "Alu");
    subOrdnerSortierenSpeichern(z, true);
    EXPECT_TRUE(fctOrdnerSortierenLesen(z));
    ASSERT_TRUE(fctCboOrdnerNeuAnzeigen(z, *modell, ""));
    EXPECT_EQ(namen(), (std::vector<std::string>{"Alu", "Standard-Ordner", "Zink"}));
    EXPECT_EQ(modell->aktuellerOrdner()->OrdnerName, "Alu");
}

}  // namespace
}  // namespace tessara::orgtest
