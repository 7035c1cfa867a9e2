// Variants and their record file, names, and the Insertion points of a
// View, over a real library.
#include "editing/varianten.h"

#include <cstring>

#include "bloecke.h"
#include "editing/block_loeschen.h"
#include "editing/block_name.h"
#include "editing/einfuegepunkte.h"
#include "startup/einstellungen.h"
#include "startup/ini_datei.h"
#include "tabelle.h"

namespace tessara::edittest {
namespace {

using Varianten = Bloecke;

typEinfuegepunkte punkte(const std::string& x) {
    typEinfuegepunkte p;
    p[1] = {x, "-2.25", "0"};
    return p;
}

TEST(VariantenDatei, RecordsReadBackAndBadBytesAreRefused) {
    const std::vector<typVariantenSatz> saetze{{"Flansch ä", "0000000_1", 3, punkte("1.5")},
                                               {"Bogen", "0000000_2", 0, {}}};
    const std::string bytes = fctVariantenSaetzeBytes(saetze);
    ASSERT_EQ(bytes.size(), 2 * kVariantenSatzLaenge);
    double b1x = 0;
    std::memcpy(&b1x, bytes.data() + 100 + 3 * 8, 8);
    EXPECT_EQ(b1x, 1.5);
    EXPECT_EQ(bytes.substr(48, 10), std::string("0000000_1\0", 10));
    EXPECT_EQ(bytes.substr(96, 4), std::string("\3\0\2\0", 4));
    EXPECT_EQ(bytes[8], '\xE4');
    const auto zurueck = fctVariantenSaetzeLesen(bytes);
    ASSERT_TRUE(zurueck && zurueck->size() == 2);
    EXPECT_EQ(zurueck->at(0).name, "Flansch ä");
    EXPECT_EQ(zurueck->at(0).punkte[1].y, "-2.25");
    EXPECT_EQ(zurueck->at(0).punkte[0].x, "0");  // a gap below the last point reads as 0
    EXPECT_FALSE(zurueck->at(1).punkte[0].gesetzt());
    std::string falsch = bytes;
    falsch[98] = 7;
    for (const auto& b : {bytes.substr(0, 247), falsch}) EXPECT_FALSE(fctVariantenSaetzeLesen(b));
}

TEST_F(Varianten, NamesFollowTheRuleOfTheNameDialogs) {
    sql("INSERT INTO tblVariationBloecke (BlockName, BlockID) VALUES ('Flansch', 1)");
    for (const auto& f : test::tabelle("editing/golden/blocknamen.txt"))
        EXPECT_EQ(fctBlocknamePruefen(z, modell->datenbank().con, f.at(0), f.at(1) == "1"),
                  std::stol(f.at(2)))
            << f[0];
}

TEST_F(Varianten, RenamingAViewCanBeSwitchedOff) {
    const std::string b = block(0, 1);
    fctIniWertSchreiben(z.strIniDatei, kAllgemeineDaten, "bytBlockNameNoEdit", "1");
    EXPECT_FALSE(fctBlockNamAender(z, *modell, b, 0, "Neu"));
    fctIniWertSchreiben(z.strIniDatei, kAllgemeineDaten, "bytBlockNameNoEdit", "0");
    EXPECT_FALSE(fctBlockNamAender(z, *modell, b, 0, std::string(33, 'x')));
    EXPECT_FALSE(fctBlockNamAender(z, *modell, b, 1, "Neu"));
    EXPECT_TRUE(fctBlockNamAender(z, *modell, b, 0, "Neu"));
    EXPECT_EQ(zeilen("SELECT BlkName0 FROM tblBlockInfo"), std::vector<std::string>{"Neu"});
    EXPECT_EQ(gezeigt(), (std::vector<std::string>{m(3) + ": " + m(474), m(3) + ": " + m(304),
                                                   m(3) + ": " + m(483)}));
}

TEST_F(Varianten, RenameAndDeleteKeepRowsAndRecordsInStep) {
    const std::string b = block(0);
    for (const char* name : {"Eins", "Zwei"}) {
        const std::string neu = fctVarianteDateiNameNeu(z, *modell, b);
        ASSERT_TRUE(subBlockdatenInDatenbankAbspeichernVariante(z, *modell, b, name, neu,
                                                                {{0, punkte("1")}}));
        datei("000/Block/Varia/" + neu + "0.dwg");
    }
    EXPECT_FALSE(fctVarianteUmbenennen(z, *modell, b, b + "_1", "zwei"));
    ASSERT_TRUE(fctVarianteUmbenennen(z, *modell, b, b + "_1", "Erste"));
    ASSERT_TRUE(fctVarianteLoeschen(z, *modell, b, b + "_2"));
    EXPECT_EQ(zeilen("SELECT BlockName, BlockDateiName FROM tblVariationBloecke"),
              std::vector<std::string>{"Erste|" + b + "_1"});
    auto saetze = fctVariantenSaetzeLaden(z, *modell, b);
    ASSERT_TRUE(saetze && saetze->size() == 1);
    EXPECT_EQ(saetze->at(0).name + " " + saetze->at(0).datei, "Erste " + b + "_1");
    EXPECT_FALSE(fs::exists(wurzel / "lib/000/Block/Varia" / (b + "_20.dwg")));
    ASSERT_TRUE(fctVarianteLoeschen(z, *modell, b, b + "_1"));
    EXPECT_EQ(dateien().size(), 2u);  // the Block's own slide and drawing; the record file went
    EXPECT_EQ(gezeigt().front(), m(3) + ": " + m(57));
}

TEST_F(Varianten, ADamagedRecordFileIsRefused) {
    const std::string b = block(0);
    datei("000/Block/Varia/" + b + ".dat");
    EXPECT_FALSE(fctVariantenSaetzeLaden(z, *modell, b));
    EXPECT_FALSE(subBlockdatenInDatenbankAbspeichernVariante(z, *modell, b, "Neu", b + "_1",
                                                             {{0, punkte("1")}}));
    EXPECT_EQ(zeilen("SELECT Nr FROM tblVariationBloecke"), std::vector<std::string>{});
    EXPECT_EQ(gezeigt().back(),
              m(3) + ": " + m(480) + " / " + basis + "000\\Block\\Varia\\" + b + ".dat");
}

TEST_F(Varianten, TheUserPicksOneOfTheSetInsertionPoints) {
    const std::string b = block(0, 2);
    typEinfuegepunkte p;
    p[0] = {"1,5", "", ""};
    p[2] = {"", "", "3"};
    typEinfuegepunkte falsch = p;
    falsch[4].y = "abc";
    EXPECT_FALSE(subEinfuegepunkteSchreiben(z, *modell, b, 1, falsch));
    ASSERT_TRUE(subEinfuegepunkteSchreiben(z, *modell, b, 1, p));
    EXPECT_EQ(zeilen("SELECT AX1, AY1, CZ1, EY1 FROM tblBlockInfo"),
              std::vector<std::string>{"1.5||3|"});
    EXPECT_EQ(AnzahlDerEinfuegepkteErmitteln(z, *modell, b, 1), 2);
    EXPECT_EQ(AnzahlDerEinfuegepkteErmitteln(z, *modell, b, 0), 0);
    EXPECT_EQ(VariaEinfuegepktBestimmen(z, *modell, b, 0), 1);
    EXPECT_TRUE(benutzer.listen.empty());
    benutzer.wahlen = {"C", "", m(482)};
    EXPECT_EQ(VariaEinfuegepktBestimmen(z, *modell, b, 1), 4);
    EXPECT_EQ(VariaEinfuegepktBestimmen(z, *modell, b, 1), 0);
    EXPECT_EQ(VariaEinfuegepktBestimmen(z, *modell, b, 1), 1);
    EXPECT_EQ(benutzer.listen.at(0).eintraege, (std::vector<std::string>{m(482), "A", "C"}));
    EXPECT_EQ(gezeigt(), std::vector<std::string>{m(3) + ": " + m(476) + " / abc"});
}

}  // namespace
}  // namespace tessara::edittest
