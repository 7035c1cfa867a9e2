// Cut, copy and paste of Blocks over real libraries: a pasted Block has all
// its files and columns under its new number, a cut leaves its old place
// only after the paste, and a failure falls between two whole Blocks.
#include "editing/zwischenablage.h"

#include "bloecke.h"
#include "db/recordset.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/environment.h"

namespace tessara::edittest {
namespace {

using Ablage = Bloecke;

// The files of `vorher` named after block number alt, under the Folder and number of neu.
std::map<std::string, std::string> umbenannt(const std::map<std::string, std::string>& vorher,
                                             const std::string& alt, const std::string& neu) {
    std::map<std::string, std::string> d;
    for (const auto& [name, inhalt] : vorher) {
        const std::size_t datei = name.rfind('/') + 1;
        if (name.compare(datei, alt.size(), alt) != 0) continue;
        std::string n = name;
        n.replace(datei, alt.size(), neu);
        n.replace(0, 3, neu.substr(0, 3));
        d[n] = inhalt;
    }
    return d;
}

TEST_F(Ablage, ACopyInAnotherFolderHasEveryFileAndColumnAndOverwritesOnlyAfterAsking) {
    const std::string b = vollerBlock();
    sql("UPDATE tblBlockInfo SET M3 = 'DN 50', LAYER = 'Rohr', AX0 = 1.5, FZ4 = 2 WHERE Nr = 1");
    sql("INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte, NrTblDefMenue) VALUES "
        "('001', 'Zwei', 'Alle', 1)");
    ASSERT_TRUE(modell->OrdnerInArrayEinlesen());
    Zwischenablage ablage;
    ASSERT_TRUE(ablage.fctNehmen(z, *modell, AblageUmfang::Block, false, false));
    ASSERT_TRUE(modell->fctOrdnerWaehlen("001"));
    modell->subPositionSetzen(1);
    const auto vorher = dateien();
    ASSERT_TRUE(ablage.fctEinfuegen(z, *modell, false));

    auto erwartet = umbenannt(vorher, b, "0010001");
    const std::string dat = "001/Block/Varia/0010001.dat";
    ASSERT_EQ(erwartet.count(dat), 1u);
    erwartet[dat] = dateien()[dat];  // its names rewritten, read back below
    erwartet.insert(vorher.begin(), vorher.end());
    EXPECT_EQ(dateien(), erwartet);
    // Every column but Nr, Block, OrdnerID and SlideLib as the original's.
    auto werte = zeilen("SELECT * FROM tblBlockInfo ORDER BY Nr");
    ASSERT_EQ(werte.size(), 2u);
    for (auto& w : werte)
        for (int i = 0; i < 4; ++i) w.erase(0, w.find('|') + 1);
    EXPECT_EQ(werte[0], werte[1]);
    EXPECT_EQ(zeilen("SELECT Block, OrdnerID, SlideLib, M3 FROM tblBlockInfo WHERE Nr = 2"),
              std::vector<std::string>{"0010001|2|001\\00100010.slb|DN 50"});
    EXPECT_EQ(zeilen("SELECT BlockName, BlockID, BlockDateiName FROM tblVariationBloecke"),
              (std::vector<std::string>{"Flansch|1|" + b + "_1", "Flansch|2|0010001_1"}));
    const auto saetze = fctVariantenSaetzeLaden(z, *modell, "0010001");
    ASSERT_TRUE(saetze && saetze->size() == 2);
    EXPECT_EQ(saetze->at(1).datei, "0010001_1");

    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(ablage.fctEinfuegen(z, *modell, false));
    ASSERT_TRUE(ablage.fctEinfuegen(z, *modell, false));
    EXPECT_EQ(dateien().size(), erwartet.size());
    EXPECT_EQ(zeilen("SELECT Nr, Block FROM tblBlockInfo ORDER BY Nr"),
              (std::vector<std::string>{"1|" + b, "3|0010001"}));
    EXPECT_EQ(zeilen("SELECT BlockID FROM tblVariationBloecke"),
              (std::vector<std::string>{"1", "3"}));
    EXPECT_EQ(gezeigt(), std::vector<std::string>(2, m(4) + ": " + m(524) + " / 0010001"));
    EXPECT_FALSE(ablage.leer());
}

TEST_F(Ablage, CutMarkedBlocksLeaveTheirLibraryOnlyOnceTheyStandInTheOther) {
    const std::string b = vollerBlock();
    const std::string zweiter = block(2);
    modell->fctMarkierungSetzen(2, true);
    const auto quelle = dateien();
    Zwischenablage ablage;
    ASSERT_TRUE(ablage.fctNehmen(z, *modell, AblageUmfang::Markierte, true, false));
    EXPECT_TRUE(ablage.fctZwischenspeicherAbfragen(z));  // answered Yes

    const std::string erste = db;
    fs::create_directories(wurzel / "lib2");
    basis = platform::programPath((wurzel / "lib2").string()) + "\\";
    db = basis + "dbTessara.mdb";
    ASSERT_TRUE(Mk_Datenbank(z, oeffner, db));
    oeffnen();
    modell->subPositionSetzen(1);
    ASSERT_TRUE(ablage.fctEinfuegen(z, *modell, false));

    auto erwartet = umbenannt(quelle, b, nr(1));
    erwartet.merge(umbenannt(quelle, zweiter, nr(2)));
    const std::string dat = "000/Block/Varia/" + nr(1) + ".dat";
    erwartet[dat] = dateien("lib2")[dat];
    EXPECT_EQ(dateien("lib2"), erwartet);
    EXPECT_EQ(zeilen("SELECT Block, SlideLib FROM tblBlockInfo ORDER BY Nr"),
              (std::vector<std::string>{nr(1) + "|000\\" + nr(1) + "0.slb",
                                        nr(2) + "|000\\" + nr(2) + "0.slb"}));
    EXPECT_EQ(zeilen("SELECT BlockID, BlockDateiName FROM tblVariationBloecke"),
              std::vector<std::string>{"1|" + nr(1) + "_1"});
    EXPECT_EQ(benutzer.fortschritte,
              (std::vector<std::string>{"0/2 " + m(530) + " " + b + " → " + nr(1),
                                        "1/2 " + m(530) + " " + zweiter + " → " + nr(2), "0/0 "}));
    EXPECT_EQ(dateien("lib"), (std::map<std::string, std::string>{}));
    db = erste;
    for (const char* t : {"tblBlockInfo", "tblVariationBloecke", "tblMarkierteBloecke"})
        EXPECT_EQ(zeilen(std::string("SELECT * FROM ") + t), std::vector<std::string>{}) << t;
    EXPECT_TRUE(ablage.leer());
    EXPECT_FALSE(fs::exists(wurzel / "TessaraPapierkorb1"));
    EXPECT_EQ(gezeigt().size(), 1u);  // the closing question only
}

TEST_F(Ablage, AFailureStopsThePasteBetweenTwoWholeBlocks) {
    for (int slot : {0, 1, 2}) block(slot);
    Zwischenablage ablage;
    EXPECT_FALSE(ablage.fctEinfuegen(z, *modell, false));
    ASSERT_TRUE(ablage.fctNehmen(z, *modell, AblageUmfang::Seite, true, false));
    modell->subPositionSetzen(1);
    EXPECT_FALSE(ablage.fctEinfuegen(z, *modell, false));  // onto its own Blocks
    EXPECT_FALSE(ablage.fctEinfuegen(z, *modell, true));   // write-protected
    sql("INSERT INTO tblOrdner (OrdnerNr, Ordnername, OrdnerRechte, NrTblDefMenue) VALUES "
        "('001', 'Zwei', 'Alle', 1)");
    ASSERT_TRUE(modell->OrdnerInArrayEinlesen() && modell->fctOrdnerWaehlen("001"));
    datei("001/Block/00100010.dwg");  // in the way of the second Block's drawing
    const auto vorher = dateien();
    fehlerErwartet = true;
    EXPECT_FALSE(ablage.fctEinfuegen(z, *modell, false));

    auto erwartet = umbenannt(vorher, "0000000", "0010000");
    for (const auto& [name, inhalt] : vorher)
        if (name.substr(name.rfind('/') + 1, 7) != "0000000") erwartet[name] = inhalt;
    EXPECT_EQ(dateien(), erwartet);
    EXPECT_EQ(zeilen("SELECT Block, OrdnerID FROM tblBlockInfo ORDER BY Block"),
              (std::vector<std::string>{"0000001|1", "0000002|1", "0010000|2"}));
    ASSERT_EQ(ablage.eintraege().size(), 2u);
    EXPECT_EQ(ablage.eintraege()[1].lngVersatz, 1);
    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(ablage.fctZwischenspeicherAbfragen(z));
    EXPECT_EQ(gezeigt(),
              (std::vector<std::string>{m(3) + ": " + m(520), m(3) + ": " + m(523),
                                        m(3) + ": " + m(403), m(3) + ": " + m(526) + " / 0000001",
                                        m(4) + ": " + m(529) + " / 2: 0000001, 0000002"}));
}

}  // namespace
}  // namespace tessara::edittest
