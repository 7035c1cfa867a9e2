// The AutoCAD LT script channel: scripts read back from disk byte for byte,
// keystrokes as the scripted desktop received them, waits on the fake clock.
#include "cad/lt_skript.h"

#include <gtest/gtest.h>

#include <sstream>

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

// Each case sets up the host's answers and runs one command of the channel;
// its outcome, the keys typed, the pauses, the clock and the script written
// are in golden/lt_kanal.txt ("== case").
TEST_F(LtKanal, Faelle) {
    auto einfuegen = [&](std::uint8_t winkel, std::uint8_t xFrage) {
        auto ein = einfuegung();
        ein.optionen.checkWinkel = winkel;
        ein.optionen.checkXFrage = xFrage;
        desktop.pressAfterQueries(platform::Key::LeftButton, 3);
        return std::to_string(static_cast<int>(ACadLtBlockEinfuegen(z, v, e, ein)));
    };
    auto neu = [&](bool variante = false) {
        const auto r =
            ACadLtBlockNeu(z, v, e, {"c:\\Bib\\", "001", variante ? "Var7" : "0010C", 0, variante});
        return r.strZeichnung + " besteht=" + std::to_string(r.booDateiBesteht) +
               " abgebrochen=" + std::to_string(r.booAbgebrochen) +
               " Zeit abgelaufen=" + std::to_string(r.booZeitAbgelaufen);
    };
    const std::vector<std::pair<std::string, std::function<std::string()>>> faelle{
        {"Slide, Escape bricht",
         [&] {
             desktop.pressAfterQueries(platform::Key::Escape, 5);
             const bool ok = fctSlideMitLTErstellen(z, v, e, "c:\\Bib\\001\\0010A0.sld");
             return std::to_string(ok) + " nach Escape-Abfragen " +
                    std::to_string(desktop.queries(platform::Key::Escape));
         }},
        // Only the insertion tells the user, and ends the program.
        {"ohne Hostfenster",
         [&] {
             desktop.refuseActivation(host);
             std::string r = std::to_string(fctOpenFileMitLT(z, v, e, "c:\\x.dwg"));
             desktop.removeWindow(host);
             r += std::to_string(fctSlideMitLTErstellen(z, v, e, "c:\\Bib\\001\\0010A0.sld"));
             r += " gezeigt " + std::to_string(benutzer.gezeigt.size()) + ", Ergebnis ";
             return r +
                    std::to_string(static_cast<int>(ACadLtBlockEinfuegen(z, v, e, einfuegung())));
         }},
        {"einfuegen", [&] { return einfuegen(0, 0); }},
        {"einfuegen, Winkel gefragt", [&] { return einfuegen(1, 0); }},
        {"einfuegen, Winkel und X gefragt: der Winkel gewinnt", [&] { return einfuegen(1, 1); }},
        {"einfuegen, X gefragt", [&] { return einfuegen(0, 1); }},
        // The library drawing is missing, so the copy fails: the library path.
        // Then it is there and the copy is inserted.
        {"expliziter Name kopiert die Zeichnung wenn es sie gibt",
         [&] {
             auto ein = einfuegung();
             ein.optionen.checkBlock = 1;
             ein.optionen.strExpliziterBlockName = "Flansch, DN50 ";
             desktop.setKeyDown(platform::Key::LeftButton, true);
             std::string r = std::to_string(static_cast<int>(ACadLtBlockEinfuegen(z, v, e, ein)));
             r += " " + lesen("c:\\temp\\bv8LT.scr");
             anlegen("c:\\Bib\\001\\Block\\0010A2.dwg", "AC1015 Zeichnung");
             std::filesystem::create_directories(datei("c:\\temp\\Kopie\\"));
             r += std::to_string(static_cast<int>(ACadLtBlockEinfuegen(z, v, e, ein)));
             return r + lesen("c:\\temp\\Kopie\\Flansch_ DN50.dwg");
         }},
        {"c:\\temp wird angelegt",
         [&] {
             z.strCTemp = "c:\\anders\\";
             const bool ok = fctOpenFileMitLT(z, v, e, "c:\\x.dwg");
             return std::to_string(ok) + " " +
                    std::to_string(std::filesystem::is_directory(datei("c:\\temp"))) + " " +
                    lesen("c:\\anders\\bv8LT.scr");
         }},
        // Right button, no drawing: a second of pause, two more seconds of
        // looking, then the host command is cancelled before the UNDO back.
        {"neue Variante unter Varia",
         [&] {
             desktop.setKeyDown(platform::Key::RightButton, true);
             const auto r = neu(true);
             return r + " Varia angelegt " +
                    std::to_string(
                        std::filesystem::is_directory(datei("c:\\Bib\\001\\Block\\Varia")));
         }},
        // The drawing shows up during the second pause after the right
        // click: no cancel.
        {"Zeichnung kommt in der Nachfrist",
         [&] {
             desktop.setKeyDown(platform::Key::RightButton, true);
             desktop.onPump = [&, n = 0]() mutable {
                 if (desktop.sleeps().size() == 2 && n++ == 0)
                     anlegen("c:\\Bib\\001\\Block\\0010C0.dwg", "AC1015");
             };
             return neu();
         }},
        // Nothing happens in the host; each pass of the loop takes 100 ms.
        {"vierzig Sekunden begrenzen",
         [&] {
             desktop.onPump = [&] { uhr.advanceMs(100); };
             return neu();
         }},
        {"Escape bricht das Anlegen",
         [&] {
             desktop.pressAfterQueries(platform::Key::Escape, 3);
             return neu();
         }},
    };
    std::vector<std::string> ist;
    for (const auto& [name, fall] : faelle) {
        TearDown();
        desktop = platform::MemoryDesktop{&uhr};
        uhr = {};
        benutzer = {};
        SetUp();
        ist.push_back("== " + name);
        std::istringstream ergebnis(fall());
        for (std::string zeile; std::getline(ergebnis, zeile);) ist.push_back("Ergebnis: " + zeile);
        for (const auto& t : getippt()) ist.push_back("getippt: " + t);
        std::string pausen = "Pausen:";
        for (int ms : desktop.sleeps()) pausen += " " + std::to_string(ms);
        ist.push_back(pausen + ", Uhr " + std::to_string(uhr.tickMs()) + ", Nachrichten " +
                      std::to_string(desktop.pumps()));
        for (const auto& g : benutzer.gezeigt) ist.push_back("gezeigt: " + g.text);
        std::istringstream skript(lesen("c:\\temp\\bv8LT.scr"));
        for (std::string zeile; std::getline(skript, zeile);) ist.push_back("Skript: " + zeile);
    }
    goldenVergleich("lt_kanal.txt", ist);
}

TEST_F(LtKanal, SkriptWirdNeuGeschriebenInWindows1252) {
    ASSERT_TRUE(fctSkriptSchreiben(z, "c:\\temp\\bv8LT.scr", {"eins", "zwei", "drei", "vier"}));
    ASSERT_TRUE(fctSkriptSchreiben(z, "c:\\temp\\bv8LT.scr", {"Ölleitung Maß"}));
    EXPECT_EQ(lesen("c:\\temp\\bv8LT.scr"), "\xD6lleitung Ma\xDF\r\n");
}

}  // namespace
}  // namespace tessara::test
