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

TEST_F(CadEinstellungsDatei, NurAllgemeineDatenZaehlen) {
    auto text = [](const typCadEinstellungen& e) {
        return e.sReplaceBackslash + "|" + e.sOhneLayersteuerung + "|" + e.NewInsertRoutine + "|" +
               e.OrthoNichtDeaktivieren;
    };
    EXPECT_EQ(text(fctCadEinstellungenLesen(z)), "|||") << "no file";
    anlegen(z.strIniDatei,
            "[Position]\r\nsReplaceBackslash=falsch\r\n"
            "[AllgemeineDaten]\r\nDbVerzeichnis0=0\r\nsReplaceBackslash=/\r\n"
            "sOhneLayersteuerung=1\r\nNewInsertRoutine=1\r\nOrthoNichtDeaktivieren=2\r\n");
    EXPECT_EQ(text(fctCadEinstellungenLesen(z)), "/|1|1|2");
}

// Each stored switch, alone, sets exactly its option; the scales go as they are.
TEST(EinfuegeOptionenAusSetup, JederSchalterAufSeinFeld) {
    using S = typSetupWerte;
    std::int32_t S::*const schalter[] = {&S::longBlockAusBibliothek,
                                         &S::longAbfrageXFaktor,
                                         &S::longAbfrageYFaktor,
                                         &S::longAbfrageZFaktor,
                                         &S::longAbfrageEinfuegewinkel,
                                         &S::longAbfrageAttributeBeimEinfuegen,
                                         &S::longUrsprungBeimEinfuegen,
                                         &S::longReihe,
                                         &S::longMehrfacheinfuegen,
                                         &S::longBruchOption,
                                         &S::longEinfuegenLayer0,
                                         &S::longXRef,
                                         &S::lonLispVarUebergeben,
                                         &S::longVariantenfrage,
                                         &S::longBruchFrage,
                                         &S::longMassstabskontrolle,
                                         &S::longStuecklisteEinfuegen};
    auto ziffern = [](const typEinfuegeOptionen& o) {
        std::string s;
        for (long x :
             {long{o.checkBlock}, long{o.checkXFrage}, long{o.checkYFrage}, long{o.checkZFrage},
              long{o.checkWinkel}, long{o.checkAttribute}, long{o.checkUrsprung},
              long{o.checkReihe}, long{o.checkMehr}, long{o.checkBruch}, o.longEinfuegenLayer0,
              o.longXRef, o.lonLispVarUebergeben, o.longVariantenfrage, o.longBruchFrage,
              o.longMassstabskontrolle, o.longStuecklisteEinfuegen})
            s += std::to_string(x);
        return s + "|" + o.strMassstabX + "|" + o.strMassstabY + "|" + o.strMassstabZ;
    };
    for (std::size_t i = 0; i < std::size(schalter); ++i) {
        S w;
        for (auto feld : schalter) w.*feld = 0;
        w.*schalter[i] = 1;
        w.strMassstabX = "2.5";
        w.strMassstabY = "0.5";
        w.strMassstabZ = std::to_string(i);
        std::string erwartet(std::size(schalter), '0');
        erwartet[i] = '1';
        EXPECT_EQ(ziffern(fctEinfuegeOptionenAusSetup(w)),
                  erwartet + "|2.5|0.5|" + std::to_string(i));
    }
}

}  // namespace
}  // namespace tessara::test
