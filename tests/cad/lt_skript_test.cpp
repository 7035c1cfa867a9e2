// The AutoCAD LT script channel: scripts read back from disk byte for byte,
// keystrokes as the scripted desktop received them, waits on the fake clock.
#include "cad/lt_skript.h"

#include <gtest/gtest.h>

#include "cad/einfuege_texte.h"
#include "cad_umgebung.h"
#include "tabelle.h"

namespace tessara::test {
namespace {

TEST(LtSkriptTexte, DateiZeile) {
    // Block from the library or not, with and without an explicit name.
    EXPECT_EQ(fctBlockDateiZeile(1, "Ventil", 2, "", "c:\\B\\0010A2.dwg"),
              "\"Ventil2=c:\\B\\0010A2.dwg\"");
    EXPECT_EQ(fctBlockDateiZeile(1, "Ventil", 2, "Flansch_ DN50", "c:\\B\\0010A2.dwg"),
              "\"Flansch_ DN50=c:\\B\\0010A2.dwg\"");
    for (const char* explizit : {"", "Flansch"})
        EXPECT_EQ(fctBlockDateiZeile(0, "Ventil", 2, explizit, "c:\\B\\0010A2.dwg"),
                  "\"c:\\B\\0010A2.dwg\"");
}

TEST(LtSkriptTexte, EinfuegeSkriptZeileFuerZeile) {
    for (const auto& f : tabelle("cad/golden/einfuege_skript.txt")) {
        EXPECT_EQ(fctSkriptEinfuegen(f.at(0), f.at(1), std::stol(f.at(2)), 1, "Ventil", 0, "",
                                     "c:\\B\\b0.dwg"),
                  std::vector<std::string>(f.begin() + 3, f.end()))
            << f[0] << "|" << f[1] << "|" << f[2];
    }
}

TEST(LtSkriptTexte, ReplaceBackslashNurImGetipptenPfad) {
    EXPECT_EQ(fctSkriptPfadGetippt("c:\\temp\\bv8LT.scr", "/"), "c:/temp/bv8LT.scr");
    EXPECT_EQ(fctSkriptPfadGetippt("c:\\temp\\bv8LT.scr", ""), "c:\\temp\\bv8LT.scr");
    EXPECT_EQ(fctSkriptPfadGetippt("c:\\temp\\bv8LT.scr", "\\\\"), "c:\\\\temp\\\\bv8LT.scr");
}

class LtKanal : public CadUmgebung {
  protected:
    void SetUp() override {
        CadUmgebung::SetUp();
        host = desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
        v.typAcadVersionInfo = {"AutoCAD LT", host, "AutoCAD LT"};
        v.meldungsText = [](int nr) { return "Meldung " + std::to_string(nr); };
    }
    LtEinfuegung einfuegung() const {
        LtEinfuegung ein;
        ein.strBibliothek = "c:\\Bib\\";
        ein.strKopieVerzeichnis = "c:\\temp\\Kopie\\";
        ein.auftrag.block.Block = "0010A";
        ein.auftrag.block.OrdnerNr = "001";
        ein.auftrag.block.BlkName[0] = "Ventil";
        ein.auftrag.ansicht = 2;
        return ein;
    }
    platform::WindowHandle host = 0;
    typCadEinstellungen e;
};

TEST_F(LtKanal, SlideEscapeBricht) {
    desktop.pressAfterQueries(platform::Key::Escape, 5);
    EXPECT_FALSE(fctSlideMitLTErstellen(z, v, e, "c:\\Bib\\001\\0010A0.sld"));
    EXPECT_EQ(desktop.queries(platform::Key::Escape), 5);
}

TEST_F(LtKanal, OhneHostfensterTipptNichts) {
    desktop.refuseActivation(host);
    EXPECT_FALSE(fctOpenFileMitLT(z, v, e, "c:\\x.dwg"));
    desktop.removeWindow(host);
    EXPECT_FALSE(fctSlideMitLTErstellen(z, v, e, "c:\\Bib\\001\\0010A0.sld"));
    EXPECT_TRUE(benutzer.gezeigt.empty());
    // Only the insertion tells the user, and ends the program.
    EXPECT_EQ(ACadLtBlockEinfuegen(z, v, e, einfuegung()), LtErgebnis::ProgrammEnde);
    ASSERT_EQ(benutzer.gezeigt.size(), 1u);
    EXPECT_EQ(benutzer.gezeigt[0].text, "Meldung 118 AutoCAD LT");
    EXPECT_TRUE(desktop.typed().empty());
}

struct AntwortFall {
    std::uint8_t winkel, xFrage;
    std::vector<std::string> nachKlick;
};

class LtEinfuegenAntworten : public LtKanal, public ::testing::WithParamInterface<AntwortFall> {};

TEST_P(LtEinfuegenAntworten, NachDemKlick) {
    auto ein = einfuegung();
    ein.optionen.checkWinkel = GetParam().winkel;
    ein.optionen.checkXFrage = GetParam().xFrage;
    desktop.pressAfterQueries(platform::Key::LeftButton, 3);
    ASSERT_EQ(ACadLtBlockEinfuegen(z, v, e, ein), LtErgebnis::Eingefuegt);
    std::vector<std::string> erwartet = {"{ESC}{ESC}", "filedia 0\rscript\rc:\\temp\\bv8LT.scr\r"};
    erwartet.insert(erwartet.end(), GetParam().nachKlick.begin(), GetParam().nachKlick.end());
    EXPECT_EQ(getippt(), erwartet);
    EXPECT_EQ(desktop.sleeps(), (std::vector<int>{200, 500, 500}));
    EXPECT_GE(desktop.pumps(), 3);
}

INSTANTIATE_TEST_SUITE_P(Flags, LtEinfuegenAntworten,
                         ::testing::Values(AntwortFall{0, 0, {"\r\r\r"}},
                                           AntwortFall{1, 0, {"\r\r"}},
                                           // The angle flag wins.
                                           AntwortFall{1, 1, {"\r\r"}}, AntwortFall{0, 1, {}}));

TEST_F(LtKanal, ExpliziterNameKopiertDieZeichnungWennEsSieGibt) {
    auto ein = einfuegung();
    ein.optionen.checkBlock = 1;
    ein.optionen.strExpliziterBlockName = "Flansch, DN50 ";
    desktop.setKeyDown(platform::Key::LeftButton, true);
    // The library drawing is missing, so the copy fails: the library path.
    ASSERT_EQ(ACadLtBlockEinfuegen(z, v, e, ein), LtErgebnis::Eingefuegt);
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"),
              "._-insert\r\n\"Flansch_ DN50=c:\\Bib\\001\\Block\\0010A2.dwg\"\r\n"
              "'setvar\r\nfiledia\r\n1\r\n");
    anlegen("c:\\Bib\\001\\Block\\0010A2.dwg", "AC1015 Zeichnung");
    std::filesystem::create_directories(datei("c:\\temp\\Kopie\\"));
    ASSERT_EQ(ACadLtBlockEinfuegen(z, v, e, ein), LtErgebnis::Eingefuegt);
    EXPECT_EQ(lesen("c:\\temp\\Kopie\\Flansch_ DN50.dwg"), "AC1015 Zeichnung");
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"),
              "._-insert\r\n\"Flansch_ DN50=c:\\temp\\Kopie\\Flansch_ DN50.dwg\"\r\n'setvar\r\n"
              "filedia\r\n1\r\n");
}

TEST_F(LtKanal, SkriptWirdNeuGeschrieben) {
    ASSERT_TRUE(fctSkriptSchreiben(z, "c:\\temp\\bv8LT.scr", {"eins", "zwei", "drei", "vier"}));
    ASSERT_TRUE(fctSkriptSchreiben(z, "c:\\temp\\bv8LT.scr", {"a"}));
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"), "a\r\n");
    // The script is Windows-1252, as the host reads it.
    ASSERT_TRUE(fctSkriptSchreiben(z, "c:\\temp\\bv8LT.scr", {"Ölleitung Maß"}));
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"), "\xD6lleitung Ma\xDF\r\n");
}

TEST_F(LtKanal, CTempWirdAngelegt) {
    z.strCTemp = "c:\\anders\\";
    ASSERT_TRUE(fctOpenFileMitLT(z, v, e, "c:\\x.dwg"));
    EXPECT_TRUE(std::filesystem::is_directory(datei("c:\\temp")));
    EXPECT_EQ(lesen("c:\\anders\\bv8LT.scr"), "._open\r\n\"c:\\x.dwg\"\r\n._filedia\r\n1\r\n");
}

class LtBlockNeuTest : public LtKanal {
  protected:
    LtBlockNeu neu(bool variante = false) const {
        LtBlockNeu n;
        n.strBibliothek = "c:\\Bib\\";
        n.strOrdnerNr = "001";
        n.strBlockNr = variante ? "Var7" : "0010C";
        n.ansicht = 0;
        n.booVariante = variante;
        return n;
    }
};

TEST_F(LtBlockNeuTest, VarianteUnterVaria) {
    desktop.setKeyDown(platform::Key::RightButton, true);
    const auto r = ACadLtBlockNeu(z, v, e, neu(true));
    EXPECT_EQ(r.strZeichnung, "c:\\Bib\\001\\Block\\Varia\\Var70.dwg");
    EXPECT_TRUE(std::filesystem::is_directory(datei("c:\\Bib\\001\\Block\\Varia")));
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"),
              "._-wblock\r\n\"c:\\Bib\\001\\Block\\Varia\\Var70.dwg\"\r\n\r\n");
    // Right button, no drawing: a second of pause, two more seconds of
    // looking, then the host command is cancelled before the UNDO back.
    EXPECT_EQ(desktop.sleeps(), (std::vector<int>{1000, 1000, 1000}));
    EXPECT_EQ(getippt(), (std::vector<std::string>{
                             "{ESC}{ESC}", "_undo\r_m\rfiledia 0\rscript\rc:\\temp\\bv8LT.scr\r",
                             "{ESC}{ESC}", "_undo\r_b\r"}));
    EXPECT_FALSE(r.booDateiBesteht);
}

TEST_F(LtBlockNeuTest, DateiKommtInDerNachfrist) {
    desktop.setKeyDown(platform::Key::RightButton, true);
    int schlaefe = 0;
    desktop.onPump = [&] {
        // The desktop calls this on every sleep and pump; the drawing shows
        // up during the second pause after the right click.
        if (desktop.sleeps().size() == 2 && schlaefe++ == 0)
            anlegen("c:\\Bib\\001\\Block\\0010C0.dwg", "AC1015");
    };
    const auto r = ACadLtBlockNeu(z, v, e, neu());
    EXPECT_TRUE(r.booDateiBesteht);
    EXPECT_EQ(getippt().back(), "_undo\r_b\r");
    EXPECT_EQ(getippt().size(), 3u) << "no cancel when the drawing arrived";
}

TEST_F(LtBlockNeuTest, VierzigSekundenBegrenzen) {
    // Nothing happens in the host; each pass of the loop takes 100 ms.
    desktop.onPump = [&] { uhr.advanceMs(100); };
    const auto start = uhr.tickMs();
    const auto r = ACadLtBlockNeu(z, v, e, neu());
    EXPECT_TRUE(r.booZeitAbgelaufen);
    EXPECT_FALSE(r.booAbgebrochen);
    EXPECT_FALSE(r.booDateiBesteht);
    EXPECT_GE(uhr.tickMs() - start, 40000);
    EXPECT_LT(uhr.tickMs() - start, 40000 + 100 * 10 + 2000 + 1000);
    EXPECT_EQ(getippt().size(), 4u);
}

TEST_F(LtBlockNeuTest, EscapeBricht) {
    desktop.pressAfterQueries(platform::Key::Escape, 3);
    const auto r = ACadLtBlockNeu(z, v, e, neu());
    EXPECT_TRUE(r.booAbgebrochen);
    EXPECT_EQ(getippt().back(), "_undo\r_b\r");
}

}  // namespace
}  // namespace tessara::test
