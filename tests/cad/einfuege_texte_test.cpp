// The texts of the full-AutoCAD insertion, each compared byte for byte.
#include "cad/einfuege_texte.h"

#include <gtest/gtest.h>

#include "cad/block_einfuegen.h"
#include "cad/cad_einstellungen.h"
#include "cad_umgebung.h"

namespace tessara::test {
namespace {

TEST(EinfuegeTexte, AbfrageMitZweiBlanksUndSchmalerAuswahl) {
    EXPECT_EQ(fctSqlBlockInfoEinfuegen(),
              "SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, M0, M1, M2, M3, M4, M5, M6, M7, "
              "M8, M9, AX1, AX2, AX3, AX4, LAYER, LYCOLOR, LYLINE FROM tblBlockInfo");
    EXPECT_EQ(fctKriteriumBlockSuche("0010A"), "Block = '0010A'");
}

TEST(EinfuegeTexte, Pfade) {
    EXPECT_EQ(fctZeichnungsPfad("c:\\Bib\\", "001", "0010A", 0), "c:\\Bib\\001\\Block\\0010A0.dwg");
    EXPECT_EQ(fctZeichnungsPfad("c:\\Bib\\", "001", "0010A", 3), "c:\\Bib\\001\\Block\\0010A3.dwg");
    EXPECT_EQ(fctVariantenZeichnungsPfad("c:\\Bib\\", "001", "Var7", 1),
              "c:\\Bib\\001\\Block\\Varia\\Var71.dwg");
    EXPECT_EQ(fctSlidePfad("c:\\Bib\\", "001", "0010A", 2), "c:\\Bib\\001\\0010A2.sld");
    EXPECT_EQ(fctLispPfad("c:\\Bib\\001\\Block\\0010A0.dwg"), "c:/Bib/001/Block/0010A0.dwg");
}

TEST(EinfuegeTexte, BlockNameOhneKommaSchraegstrichDoppelpunkt) {
    EXPECT_EQ(fctBlockNameBereinigen("Ventil: DN50, 1/2\""), "Ventil_ DN50_ 1_2\"");
    EXPECT_EQ(fctBlockNameBereinigen("a:b"), "a_b");
}

TEST(EinfuegeTexte, InsertLspZeileFuerZeile) {
    const std::vector<std::string> erwartet = {
        "(defun tessara_einfuege(pfad x y winkel lay0 atted expl ary)",
        "",
        "  (setvar\"cmdecho\" 1)",
        "",
        "  (command\"._insert\" pfad pause)",
        "",
        "  (if x",
        "    (command x)",
        "    (command pause)",
        "  );Ende if",
        "",
        "  (if y",
        "    (command y)",
        "    (command pause)",
        "  );Ende if",
        "",
        "  (if winkel",
        "    (command Winkel)",
        "    (command pause)",
        "  );Ende if",
        "           ",
        "  (if lay0",
        "    (command \"._change\" (entlast) \"_prop\" \"_la\" \"0\")",
        "  );Ende if",
        "",
        "  (if atted",
        "    (command \"._attedit\" (entlast))",
        "  );Ende if",
        "",
        "  (if expl",
        "    (command \"._explode\" (entlast))",
        "  );Ende if",
        "",
        "  (if ary",
        "    (command \"._array\" (entlast))",
        "  );Ende if",
        "",
        ");Ende defun",
    };
    EXPECT_EQ(fctInsertLspZeilen(), erwartet);
    EXPECT_EQ(erwartet[20].size(), 11u);
}

class InsertLspDatei : public CadUmgebung {};

TEST_F(InsertLspDatei, WirdMitCrLfGeschrieben) {
    ASSERT_TRUE(WriteInsertLsp(z, "c:\\Programme\\Tessara\\lsp\\insert.lsp"));
    std::string erwartet;
    for (const auto& zeile : fctInsertLspZeilen()) erwartet += zeile + "\r\n";
    EXPECT_EQ(lesen("c:\\Programme\\Tessara\\lsp\\insert.lsp"), erwartet);
    // Rewritten from scratch.
    ASSERT_TRUE(WriteInsertLsp(z, "c:\\Programme\\Tessara\\lsp\\insert.lsp"));
    EXPECT_EQ(lesen("c:\\Programme\\Tessara\\lsp\\insert.lsp"), erwartet);
}

TEST(EinfuegeTexte, LadenUndAufrufInKlammernotation) {
    EXPECT_EQ(fctInsertLspLadenTasten("c:\\temp\\insert.lsp"), "{(}load \"c:/temp/insert.lsp\"{)}");
    typEinfuegeOptionen o;
    o.strMassstabX = "2";
    o.strMassstabY = "3";
    o.strWinkel = "45";
    EXPECT_EQ(
        fctTessaraEinfuegeTasten("Ventil=c:\\Bib\\001\\Block\\0010A0.dwg", o),
        "{(}tessara_einfuege \"Ventil=c:/Bib/001/Block/0010A0.dwg\" 2 3 45 nil nil nil nil{)}");
}

struct AufrufFall {
    std::uint8_t x, y, w;
    long lay0;
    std::uint8_t att, expl, ary;
    std::vector<std::string> argumente;  // without the path
};

class TessaraEinfuegeArgumente : public ::testing::TestWithParam<AufrufFall> {};

TEST_P(TessaraEinfuegeArgumente, NilFuerJedeFrageEinsOderNilFuerFolgen) {
    const auto& f = GetParam();
    typEinfuegeOptionen o;
    o.checkXFrage = f.x;
    o.checkYFrage = f.y;
    o.checkWinkel = f.w;
    o.longEinfuegenLayer0 = f.lay0;
    o.checkAttribute = f.att;
    o.checkUrsprung = f.expl;
    o.checkReihe = f.ary;
    o.strMassstabX = "1.5";
    o.strMassstabY = "2.5";
    o.strWinkel = "90";
    auto a = fctTessaraEinfuegeArgumente("c:\\b.dwg", o);
    ASSERT_EQ(a.size(), 8u);
    EXPECT_EQ(a[0], "\"c:/b.dwg\"");
    EXPECT_EQ(std::vector<std::string>(a.begin() + 1, a.end()), f.argumente);
}

INSTANTIATE_TEST_SUITE_P(
    Faelle, TessaraEinfuegeArgumente,
    ::testing::Values(
        AufrufFall{0, 0, 0, 0, 0, 0, 0, {"1.5", "2.5", "90", "nil", "nil", "nil", "nil"}},
        AufrufFall{1, 1, 1, 1, 1, 1, 1, {"nil", "nil", "nil", "1", "1", "1", "1"}},
        AufrufFall{1, 0, 0, 0, 1, 0, 0, {"nil", "2.5", "90", "nil", "1", "nil", "nil"}},
        AufrufFall{0, 1, 1, 2, 0, 1, 0, {"1.5", "nil", "nil", "nil", "nil", "1", "nil"}},
        AufrufFall{0, 0, 0, 1, 0, 0, 1, {"1.5", "2.5", "90", "1", "nil", "nil", "1"}}));

struct InsertFall {
    std::uint8_t x, y;
    std::string erwartet;
};

class VierInsertFormen : public ::testing::TestWithParam<InsertFall> {};

TEST_P(VierInsertFormen, Ausdruck) {
    typEinfuegeOptionen o;
    o.checkXFrage = GetParam().x;
    o.checkYFrage = GetParam().y;
    o.strMassstabX = "2";
    o.strMassstabY = "3";
    o.strWinkel = "0";
    EXPECT_EQ(fctInsertAusdruck("Ventil=c:\\B\\0010A0.dwg", o), GetParam().erwartet);
}

INSTANTIATE_TEST_SUITE_P(
    Flags, VierInsertFormen,
    ::testing::Values(
        InsertFall{0, 0, "(command \"._-insert\" \"Ventil=c:/B/0010A0.dwg\" pause 2 3 0)"},
        InsertFall{1, 0, "(command \"._-insert\" \"Ventil=c:/B/0010A0.dwg\" pause pause 3 0)"},
        InsertFall{0, 1, "(command \"._-insert\" \"Ventil=c:/B/0010A0.dwg\" pause 2 pause 0)"},
        InsertFall{1, 1, "(command \"._-insert\" \"Ventil=c:/B/0010A0.dwg\" pause pause pause 0)"},
        // Any other flag value sends nothing.
        InsertFall{2, 0, ""}, InsertFall{0, 2, ""}));

TEST(EinfuegeTexte, WinkelFrageLaesstDenNutzerDrehen) {
    typEinfuegeOptionen o;
    o.checkWinkel = 1;
    EXPECT_EQ(fctInsertAusdruck("c:\\b.dwg", o),
              "(command \"._-insert\" \"c:/b.dwg\" pause 1 1 pause)");
}

TEST(EinfuegeTexte, EinfuegepunktUeberEins) {
    EXPECT_EQ(fctInsertNullpunktBefehl("Ventil=c:\\B\\0010A0.dwg"),
              "._-insert Ventil=c:\\B\\0010A0.dwg\rj\r0,0,0\r\r\r\r");
    EXPECT_EQ(fctVerschiebeBefehl({"12.5", "-3", "0"}), "._move (entlast)  12.5,-3,0\r");
    EXPECT_EQ(fctRotationsBefehl(), "._rotate (entlast)  (getvar \"lastpoint\")\r");
}

TEST(EinfuegeTexte, Folgebefehle) {
    EXPECT_EQ(fctBreakLadenBefehl("c:\\Programme\\Tessara"),
              "(load \"c:/Programme/Tessara/break\")\r");
    EXPECT_EQ(fctLayerBefehl("Armaturen"), "._change (entlast)  _prop _la Armaturen\r\r");
    EXPECT_EQ(fctLayer0Befehl(), "._change (entlast)  _prop _la 0\r\r");
    EXPECT_EQ(fctAtteditBefehl(), "._attedit (entlast)");
    EXPECT_EQ(fctExplodeBefehl(), "._explode (entlast)\r");
    EXPECT_EQ(fctArrayBefehl(), "._array (entlast)\r");
}

TEST(EinfuegeTexte, TastenSchuetzen) {
    EXPECT_EQ(fctTastenSchuetzen("c:\\Programme (x86)\\a+b%c^d~e{f}[g]"),
              "c:\\Programme {(}x86{)}\\a{+}b{%}c{^}d{~}e{{}f{}}{[}g{]}");
}

}  // namespace
}  // namespace tessara::test

namespace tessara::test {
namespace {

TEST(CadEinstellungen, SchluesselAusAllgemeineDaten) {
    std::vector<std::string> gefragt;
    const auto e = fctCadEinstellungenLesen([&](const std::string& s, const std::string& k) {
        gefragt.push_back(s + "/" + k);
        return k == "sReplaceBackslash" ? std::string("/") : k == "NewInsertRoutine" ? "1" : "";
    });
    EXPECT_EQ(gefragt,
              (std::vector<std::string>{
                  "AllgemeineDaten/sReplaceBackslash", "AllgemeineDaten/sOhneLayersteuerung",
                  "AllgemeineDaten/NewInsertRoutine", "AllgemeineDaten/OrthoNichtDeaktivieren"}));
    EXPECT_EQ(e.sReplaceBackslash, "/");
    EXPECT_EQ(e.NewInsertRoutine, "1");
    EXPECT_EQ(e.sOhneLayersteuerung, "");
}

}  // namespace
}  // namespace tessara::test
