// End to end: the CAD bridge against the simulated host (tools/simhost) on a
// real X server, typing through the real X11 desktop. A helper thread plays
// the user: it waits until the host asks for a pick and then clicks or
// presses Escape through XTest, as a hand on the mouse would, holding it
// until the bridge has seen it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "authoring/slide.h"
#include "cad/block_einfuegen.h"
#include "cad/cad_verbindung.h"
#include "cad/lt_skript.h"
#include "e2e_hilfen.h"
#include "platform/platform.h"
#include "platform/system_clock.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class SimHostE2E : public HostTest {
  protected:
    void hostStarten(const std::string& titel) {
        ASSERT_TRUE(simhostStarten(host, titel, log, desktop));
    }
    void verbinden() {
        bool lt = false;
        ASSERT_TRUE(ACAD_Connect(z, v, false, true, lt));
    }
    void ltHostVerbinden() {
        hostStarten("AutoCAD LT 2015 - [Zeichnung1.dwg]");
        verbinden();
    }
    // The user's hand: a pick (button 1 left, 3 right) or Escape, held until
    // the bridge has seen it.
    void klicken(unsigned int knopf, int x, int y) {
        Hand().klick(knopf, x, y,
                     desktop.haltenBisGesehen(knopf == 1 ? platform::Key::LeftButton
                                                         : platform::Key::RightButton));
    }
    void escapeDruecken() { Hand().escape(desktop.haltenBisGesehen(platform::Key::Escape)); }
    void zeichnungAnlegen(const std::string& rel, const std::string& inhalt) {
        fs::create_directories((verzeichnis / "c" / rel).parent_path());
        std::ofstream(verzeichnis / "c" / rel, std::ios::binary) << inhalt;
    }

    typCadEinstellungen e;
};

TEST_F(SimHostE2E, ZeichnungOeffnen) {
    hostStarten("ZWCAD 2012 - [Plan.dwg]");
    verbinden();
    ASSERT_TRUE(fctOpenFileMitLT(z, v, e, "c:\\Bib\\001\\Block\\0010A0.dwg"));
    ASSERT_TRUE(warteAufLog(log, "OPEN c:\\Bib\\001\\Block\\0010A0.dwg")) << lesen(log);
    EXPECT_EQ(lesen(log).find("UNDO MARKE"), std::string::npos) << "no UNDO mark when opening";
}

TEST_F(SimHostE2E, SlideErscheint) {
    ltHostVerbinden();
    e.sReplaceBackslash = "/";
    fs::create_directories(verzeichnis / "c" / "Bib" / "001");
    // The slide wait has no bound of its own (the user ends it with Escape):
    // should the host never write, the hand presses Escape so the test ends.
    std::thread wache([&] {
        if (!warteAufLog(log, "MSLIDE c:", 30s)) escapeDruecken();
    });
    const bool ok = fctSlideMitLTErstellen(z, v, e, "c:\\Bib\\001\\0010A0.sld");
    wache.join();
    ASSERT_TRUE(ok) << lesen(log);
    const auto sld = verzeichnis / "c" / "Bib" / "001" / "0010A0.sld";
    const auto slide = slide::readSlideFile(sld.string());
    EXPECT_EQ(slide.highX, 639);
    EXPECT_EQ(slide.elements.size(), 5u);
    const std::string l = lesen(log);
    for (const char* zeile : {"EINGABE [c:/temp/bv8LT.scr]", "UNDO MARKE", "SETVAR FILEDIA=0",
                              "SKRIPT [._mslide]", "SETVAR FILEDIA=1"})
        EXPECT_NE(l.find(zeile), std::string::npos) << zeile << "\n" << l;
}

LtEinfuegung ventil() {
    LtEinfuegung ein;
    ein.strBibliothek = "c:\\Bib\\";
    ein.strKopieVerzeichnis = "c:\\temp\\";
    ein.auftrag.block.Block = "0010A";
    ein.auftrag.block.OrdnerNr = "001";
    ein.auftrag.block.BlkName[0] = "Ventil";
    ein.auftrag.block.Layer = "Armaturen";
    ein.optionen.checkBlock = 1;
    return ein;
}

TEST_F(SimHostE2E, EinfuegungEscape) {
    zeichnungAnlegen("Bib/001/Block/0010A0.dwg", "Zeichnung");
    ltHostVerbinden();
    std::thread nutzer([&] {
        if (warteAufLog(log, "INSERT WARTET AUF PUNKT")) escapeDruecken();
    });
    const auto r = ACadLtBlockEinfuegen(z, v, e, ventil());
    nutzer.join();
    EXPECT_EQ(r, LtErgebnis::Abgebrochen);
    ASSERT_TRUE(warteAufLog(log, "ABBRUCH INSERT")) << lesen(log);
    EXPECT_EQ(lesen(log).find("INSERT block="), std::string::npos);
}

TEST_F(SimHostE2E, XrefOhneLayersteuerungAusDerEinstellungsdatei) {
    hostStarten("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    zeichnungAnlegen("Bib/001/Block/0010A0.dwg", "Zeichnung");
    zeichnungAnlegen("Programme/Tessara9.0.ini",
                     "[AllgemeineDaten]\r\nsOhneLayersteuerung=1\r\nsReplaceBackslash=/\r\n");
    z.strIniDatei = "c:\\Programme\\Tessara9.0.ini";
    verbinden();
    std::thread nutzer([&] {
        if (warteAufLog(log, "XREF WARTET AUF PUNKT")) klicken(1, 140, 160);
    });
    EinfuegeAnfrage a;
    a.strBibliothek = "c:\\Bib\\";
    a.auftraege = {ventil().auftrag};
    a.optionen.longXRef = 1;
    const auto r = fctBlockEinfuegen(z, v, a);
    nutzer.join();
    EXPECT_EQ(r.eingefuegt, 1);
    ASSERT_TRUE(warteAufLog(log, "XREF block=")) << lesen(log);
    const std::string l = lesen(log);
    // The typed script path went in with "/", the host still found the script.
    for (const char* da :
         {"EINGABE [c:/temp/bv8LT.scr]", "SKRIPT [._-xref]\nBEFEHL XREF", "SKRIPT [z]",
          "XREF block=0010A0 datei=c:\\Bib\\001\\Block\\0010A0.dwg punkt="})
        EXPECT_NE(l.find(da), std::string::npos) << da << "\n" << l;
    for (const char* nicht : {"LAYER AKTUELL", "INSERT block="})
        EXPECT_EQ(l.find(nicht), std::string::npos) << nicht << "\n" << l;
}

}  // namespace
}  // namespace tessara::test
