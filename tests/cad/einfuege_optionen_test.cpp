// Where an insertion takes its settings from: the keys of "AllgemeineDaten"
// in a real Settings file on disk, read through the program's INI reader, and
// the user's stored options.
#include <gtest/gtest.h>

#include "cad/cad_einstellungen.h"
#include "cad/einfuege_texte.h"
#include "cad_umgebung.h"

namespace tessara::test {
namespace {

class CadEinstellungsDatei : public CadUmgebung {};

TEST_F(CadEinstellungsDatei, AusDerEinstellungsdatei) {
    // No file: every key empty.
    auto e = fctCadEinstellungenLesen(z);
    EXPECT_EQ(
        e.sReplaceBackslash + e.sOhneLayersteuerung + e.NewInsertRoutine + e.OrthoNichtDeaktivieren,
        "");
    // Only "AllgemeineDaten" counts.
    anlegen(z.strIniDatei,
            "[Position]\r\nsReplaceBackslash=falsch\r\n"
            "[AllgemeineDaten]\r\nDbVerzeichnis0=0\r\nsReplaceBackslash=/\r\n"
            "sOhneLayersteuerung=1\r\nNewInsertRoutine=1\r\nOrthoNichtDeaktivieren=2\r\n");
    e = fctCadEinstellungenLesen(z);
    EXPECT_EQ(e.sReplaceBackslash, "/");
    EXPECT_EQ(e.sOhneLayersteuerung, "1");
    EXPECT_EQ(e.NewInsertRoutine, "1");
    EXPECT_EQ(e.OrthoNichtDeaktivieren, "2");
}

TEST(EinfuegeOptionenAusSetup, JedeOptionAufIhrFeld) {
    // Each stored switch, alone, sets exactly its check box.
    struct Fall {
        std::int32_t typSetupWerte::*wert;
        std::uint8_t typEinfuegeOptionen::*feld;
    };
    const Fall faelle[] = {
        {&typSetupWerte::longBlockAusBibliothek, &typEinfuegeOptionen::checkBlock},
        {&typSetupWerte::longAbfrageXFaktor, &typEinfuegeOptionen::checkXFrage},
        {&typSetupWerte::longAbfrageYFaktor, &typEinfuegeOptionen::checkYFrage},
        {&typSetupWerte::longAbfrageZFaktor, &typEinfuegeOptionen::checkZFrage},
        {&typSetupWerte::longAbfrageEinfuegewinkel, &typEinfuegeOptionen::checkWinkel},
        {&typSetupWerte::longAbfrageAttributeBeimEinfuegen, &typEinfuegeOptionen::checkAttribute},
        {&typSetupWerte::longUrsprungBeimEinfuegen, &typEinfuegeOptionen::checkUrsprung},
        {&typSetupWerte::longReihe, &typEinfuegeOptionen::checkReihe},
        {&typSetupWerte::longMehrfacheinfuegen, &typEinfuegeOptionen::checkMehr},
        {&typSetupWerte::longBruchOption, &typEinfuegeOptionen::checkBruch},
    };
    for (const auto& f : faelle) {
        typSetupWerte aus;
        for (const auto& g : faelle) aus.*(g.wert) = 0;
        typSetupWerte an = aus;
        an.*(f.wert) = 1;
        const auto oAus = fctEinfuegeOptionenAusSetup(aus);
        const auto oAn = fctEinfuegeOptionenAusSetup(an);
        EXPECT_EQ(oAus.*(f.feld), 0);
        EXPECT_EQ(oAn.*(f.feld), 1);
        for (const auto& g : faelle) {
            if (g.feld != f.feld) {
                EXPECT_EQ(oAn.*(g.feld), 0);
            }
        }
    }
}

TEST(EinfuegeOptionenAusSetup, WerteUnveraendert) {
    typSetupWerte w;
    w.strMassstabX = "2.5";
    w.strMassstabY = "0.5";
    w.strMassstabZ = "3";
    w.longXRef = w.longEinfuegenLayer0 = w.lonLispVarUebergeben = 1;
    w.longVariantenfrage = 0;
    w.longBruchFrage = w.longStuecklisteEinfuegen = 1;
    const auto o = fctEinfuegeOptionenAusSetup(w);
    EXPECT_EQ(o.strMassstabX + "|" + o.strMassstabY + "|" + o.strMassstabZ, "2.5|0.5|3");
    EXPECT_EQ(std::to_string(o.longXRef) + std::to_string(o.longEinfuegenLayer0) +
                  std::to_string(o.lonLispVarUebergeben) + std::to_string(o.longVariantenfrage) +
                  std::to_string(o.longBruchFrage) + std::to_string(o.longMassstabskontrolle) +
                  std::to_string(o.longStuecklisteEinfuegen),
              "1110101");
}

}  // namespace
}  // namespace tessara::test
