// The texts of the full-AutoCAD insertion, each compared byte for byte with
// its file in tests/cad/golden/. After an intended change,
// TESSARA_UPDATE_GOLDEN=1 writes the files anew; their diff is the review.
#include "cad/einfuege_texte.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cad/block_einfuegen.h"
#include "cad/cad_einstellungen.h"
#include "cad_umgebung.h"
#include "library/navigation_model.h"

namespace tessara::test {
namespace {

// One digit each: X, Y and angle asked, Layer 0, Attribute, Ursprung, Reihe.
typEinfuegeOptionen optionen(const std::string& f) {
    typEinfuegeOptionen o;
    o.checkXFrage = f[0] - '0';
    o.checkYFrage = f[1] - '0';
    o.checkWinkel = f[2] - '0';
    o.longEinfuegenLayer0 = f[3] - '0';
    o.checkAttribute = f[4] - '0';
    o.checkUrsprung = f[5] - '0';
    o.checkReihe = f[6] - '0';
    o.strMassstabX = "1.5";
    o.strMassstabY = "2.5";
    o.strWinkel = "90";
    return o;
}

std::string zeilen(std::initializer_list<std::string> texte) {
    std::string r;
    for (const auto& t : texte) r += t + "\n";
    return r;
}

class EinfuegeTexte : public CadUmgebung {};

TEST_F(EinfuegeTexte, GleichDenGoldenenDateien) {
    // insert.lsp as the insertion writes it, over an older, longer file.
    const std::string lsp = "c:\\Programme\\Tessara\\lsp\\insert.lsp";
    anlegen(lsp, std::string(4000, 'x'));
    ASSERT_TRUE(WriteInsertLsp(z, lsp));
    // Flag values other than 0 and 1 send no insert expression.
    std::string argumente, ausdruecke;
    for (const char* f :
         {"0000000", "1111111", "1000100", "0112010", "0001001", "0010000", "2000000", "0200000"}) {
        argumente += f;
        for (const auto& a : fctTessaraEinfuegeArgumente("c:\\b.dwg", optionen(f)))
            argumente += " " + a;
        argumente += "\n";
        ausdruecke += f + (" " + fctInsertAusdruck("Ventil=c:\\B\\0010A0.dwg", optionen(f))) + "\n";
    }
    // A Block record's values as AutoLISP strings, quotes and backslashes escaped.
    typBlockDaten b;
    b.Block = "0010A";
    b.M[0] = "DN50";
    b.M[3] = R"(Zoll 2")";
    b.M[9] = R"(c:\Normen)";
    b.Layer = "Armaturen";
    b.LyColor = "1";
    std::string lisp;
    for (const auto& befehl : fctLispVariablenBefehle(b)) lisp += befehl + "\n";
    const std::pair<std::string, std::string> faelle[] = {
        {"abfrage.txt", zeilen({fctSqlBlockInfo(), fctKriteriumBlockSuche("0010A")})},
        {"pfade.txt", zeilen({fctZeichnungsPfad("c:\\Bib\\", "001", "0010A", 0),
                              fctZeichnungsPfad("c:\\Bib\\", "001", "0010A", 3),
                              fctVariantenZeichnungsPfad("c:\\Bib\\", "001", "Var7", 1),
                              fctSlidePfad("c:\\Bib\\", "001", "0010A", 2),
                              fctLispPfad("c:\\Bib\\001\\Block\\0010A0.dwg")})},
        {"blocknamen.txt",
         zeilen({fctBlockNameBereinigen("Ventil: DN50, 1/2\""), fctBlockNameBereinigen("a:b")})},
        {"insert.lsp", lesen(lsp)},
        {"tasten.txt",
         zeilen({fctInsertLspLadenTasten("c:\\temp\\insert.lsp"),
                 fctTessaraEinfuegeTasten("Ventil=c:\\Bib (alt)\\0010A0.dwg", optionen("0001000")),
                 fctTastenSchuetzen("c:\\Programme (x86)\\a+b%c^d~e{f}[g]")})},
        {"argumente.txt", argumente},
        {"lisp_variablen.txt", lisp},
        {"insert_ausdruck.txt", ausdruecke},
        {"einfuegepunkt.txt",
         zeilen({fctInsertNullpunktBefehl("Ventil=c:\\B\\0010A0.dwg"),
                 fctVerschiebeBefehl({"12.5", "-3", "0"}), fctRotationsBefehl()})},
        {"folgebefehle.txt",
         zeilen({fctBreakLadenBefehl("c:\\Programme\\Tessara"), fctLayerBefehl("Armaturen"),
                 fctLayer0Befehl(), fctAtteditBefehl(), fctExplodeBefehl(), fctArrayBefehl()})},
    };
    const auto ordner = std::filesystem::path(TESSARA_SOURCE_DIR) / "tests/cad/golden";
    const bool schreiben = std::getenv("TESSARA_UPDATE_GOLDEN") != nullptr;
    for (const auto& [name, text] : faelle) {
        SCOPED_TRACE(name);
        if (schreiben) {
            ASSERT_TRUE(std::ofstream(ordner / name, std::ios::binary) << text);
            continue;
        }
        std::ifstream in(ordner / name, std::ios::binary);
        ASSERT_TRUE(in) << "missing " << (ordner / name);
        EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(in), {}));
    }
}

}  // namespace
}  // namespace tessara::test
