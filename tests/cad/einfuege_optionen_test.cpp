// Where an insertion takes its settings from: the keys of "AllgemeineDaten"
// in a real Settings file on disk, read through the program's INI reader, and
// the user's stored options; and the AutoLISP variables of a Block record.
#include <gtest/gtest.h>

#include "cad/cad_einstellungen.h"
#include "cad/einfuege_texte.h"
#include "cad_umgebung.h"

namespace tessara::test {
namespace {

class CadEinstellungsDatei : public CadUmgebung {};

TEST_F(CadEinstellungsDatei, AusDerEinstellungsdatei) {
    anlegen(z.strIniDatei,
            "[Position]\r\nsReplaceBackslash=falsch\r\n"
            "[AllgemeineDaten]\r\nDbVerzeichnis0=0\r\nsReplaceBackslash=/\r\n"
            "sOhneLayersteuerung=1\r\nNewInsertRoutine=1\r\nOrthoNichtDeaktivieren=2\r\n");
    const auto e = fctCadEinstellungenLesen(z);
    EXPECT_EQ(e.sReplaceBackslash, "/");
    EXPECT_EQ(e.sOhneLayersteuerung, "1");
    EXPECT_EQ(e.NewInsertRoutine, "1");
    EXPECT_EQ(e.OrthoNichtDeaktivieren, "2");
}

TEST_F(CadEinstellungsDatei, FehlendeDateiUndSchluesselSindLeer) {
    auto e = fctCadEinstellungenLesen(z);
    EXPECT_EQ(e.sReplaceBackslash, "");
    EXPECT_EQ(e.NewInsertRoutine, "");
    anlegen(z.strIniDatei, "[AllgemeineDaten]\r\nsOhneLayersteuerung=0\r\n");
    e = fctCadEinstellungenLesen(z);
    EXPECT_EQ(e.sOhneLayersteuerung, "0");
    EXPECT_EQ(e.sReplaceBackslash, "");
    EXPECT_EQ(e.OrthoNichtDeaktivieren, "");
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
        {&typSetupWerte::longBruchFrage, &typEinfuegeOptionen::checkBruch},
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
    w.longXRef = 1;
    w.longEinfuegenLayer0 = 1;
    w.lonLispVarUebergeben = 1;
    w.longVariantenfrage = 0;
    const auto o = fctEinfuegeOptionenAusSetup(w);
    EXPECT_EQ(o.strMassstabX, "2.5");
    EXPECT_EQ(o.strMassstabY, "0.5");
    EXPECT_EQ(o.strMassstabZ, "3");
    EXPECT_EQ(o.longXRef, 1);
    EXPECT_EQ(o.longEinfuegenLayer0, 1);
    EXPECT_EQ(o.lonLispVarUebergeben, 1);
    EXPECT_EQ(o.longVariantenfrage, 0);
}

TEST(LispVariablen, JederWertAlsZeichenkette) {
    typBlockDaten b;
    b.Block = "0010A";
    b.M[0] = "DN50";
    b.M[3] = R"(Zoll 2")";
    b.M[9] = R"(c:\Normen)";
    b.Layer = "Armaturen";
    b.LyColor = "1";
    const std::vector<std::string> erwartet = {
        "(setq tessara_Block \"0010A\")\r",
        "(setq tessara_M0 \"DN50\")\r",
        "(setq tessara_M1 \"\")\r",
        "(setq tessara_M2 \"\")\r",
        "(setq tessara_M3 \"Zoll 2\\\"\")\r",
        "(setq tessara_M4 \"\")\r",
        "(setq tessara_M5 \"\")\r",
        "(setq tessara_M6 \"\")\r",
        "(setq tessara_M7 \"\")\r",
        "(setq tessara_M8 \"\")\r",
        "(setq tessara_M9 \"c:\\\\Normen\")\r",
        "(setq tessara_LAYER \"Armaturen\")\r",
        "(setq tessara_LYCOLOR \"1\")\r",
        "(setq tessara_LYLINE \"\")\r",
    };
    EXPECT_EQ(fctLispVariablenBefehle(b), erwartet);
}

}  // namespace
}  // namespace tessara::test
