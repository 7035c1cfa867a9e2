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
        ein = {};
        ein.strBibliothek = "c:\\Bib\\";
        ein.strKopieVerzeichnis = "c:\\temp\\Kopie\\";
        ein.auftrag.block.Block = "0010A";
        ein.auftrag.block.OrdnerNr = "001";
        ein.auftrag.block.BlkName[0] = "Ventil";
        ein.auftrag.ansicht = 2;
    }
    // One step of a case: a setting ("name=value" or a name) or a command of
    // the channel, whose outcome goes to `ist`.
    void schritt(const std::string& s, std::vector<std::string>& ist) {
        const auto gleich = s.find('=');
        const std::string k = s.substr(0, gleich), w = gleich == s.npos ? "" : s.substr(gleich + 1);
        auto neu = [&](bool variante) {
            const auto r = ACadLtBlockNeu(
                z, v, e,
                {"c:\\Bib\\", "001", variante ? "Var7" : "0010C", 0, variante, {}, {}, false});
            ist.push_back(k + ": " + r.strZeichnung +
                          " besteht=" + std::to_string(r.booDateiBesteht) +
                          " abgebrochen=" + std::to_string(r.booAbgebrochen) +
                          " Zeit abgelaufen=" + std::to_string(r.booZeitAbgelaufen));
        };
        if (k == "Escape ab Abfrage" || k == "Klick ab Abfrage") {
            desktop.pressAfterQueries(
                k[0] == 'E' ? platform::Key::Escape : platform::Key::LeftButton, std::stoi(w));
        } else if (k == "Klick" || k == "Rechtsklick") {  // held down from the start
            desktop.setKeyDown(
                k == "Klick" ? platform::Key::LeftButton : platform::Key::RightButton, true);
        } else if (k == "Host weist ab") {
            desktop.refuseActivation(host);
        } else if (k == "Host weg") {
            desktop.removeWindow(host);
        } else if (k == "checkWinkel" || k == "checkXFrage" || k == "checkBlock") {
            (k == "checkWinkel"   ? ein.optionen.checkWinkel
             : k == "checkXFrage" ? ein.optionen.checkXFrage
                                  : ein.optionen.checkBlock) = 1;
        } else if (k == "Name") {
            ein.optionen.strExpliziterBlockName = w;
        } else if (k == "CTemp") {
            z.strCTemp = w;
        } else if (k == "Datei") {  // "path:content"
            anlegen(w.substr(0, w.find(':', 2)), w.substr(w.find(':', 2) + 1));
        } else if (k == "Ordner") {
            std::filesystem::create_directories(datei(w));
        } else if (k == "Zeichnung kommt") {  // during the second pause after the right click
            desktop.onPump = [this, n = 0]() mutable {
                if (desktop.sleeps().size() == 2 && n++ == 0)
                    anlegen("c:\\Bib\\001\\Block\\0010C0.dwg", "AC1015");
            };
        } else if (k == "Uhr laeuft") {  // each pass of a loop takes 100 ms
            desktop.onPump = [this] { uhr.advanceMs(100); };
        } else if (k == "Slide") {
            ist.push_back(
                k + ": " +
                std::to_string(fctSlideMitLTErstellen(z, v, e, "c:\\Bib\\001\\0010A0.sld")));
        } else if (k == "Oeffnen") {
            ist.push_back(k + ": " + std::to_string(fctOpenFileMitLT(z, v, e, "c:\\x.dwg")));
        } else if (k == "Einfuegen") {
            ist.push_back(k + ": " +
                          std::to_string(static_cast<int>(ACadLtBlockEinfuegen(z, v, e, ein))));
        } else if (k == "Neu" || k == "Neu Variante") {
            neu(k != "Neu");
        } else if (k == "Inhalt" || k == "Ordner da") {
            std::istringstream text(
                k == "Inhalt" ? lesen(w) : std::to_string(std::filesystem::is_directory(datei(w))));
            for (std::string zeile; std::getline(text, zeile);) ist.push_back(s + ": " + zeile);
        } else {
            ADD_FAILURE() << "unknown step " << s;
        }
    }
    platform::WindowHandle host = 0;
    typCadEinstellungen e;
    LtEinfuegung ein;
};

// The cases of golden/lt_kanal.txt: each "== name | step | ..." line sets up
// the host's answers and runs commands of the channel; the lines up to the
// next case are their outcomes, the keys typed, the pauses, the fake clock,
// the messages and the script last written.
TEST_F(LtKanal, Faelle) {
    std::vector<std::string> ist;
    for (const auto& zeile : goldenZeilen("lt_kanal.txt")) {
        if (zeile.rfind("== ", 0) != 0) continue;
        TearDown();
        desktop = platform::MemoryDesktop{&uhr};
        uhr = {};
        benutzer = {};
        SetUp();
        ist.push_back(zeile);
        std::istringstream teile(zeile.substr(3));
        std::string teil;
        std::getline(teile, teil, '|');
        SCOPED_TRACE(teil);
        while (std::getline(teile, teil, '|'))
            schritt(teil.substr(1, teil.size() - 1 - (teil.back() == ' ')), ist);
        for (const auto& t : getippt()) ist.push_back("getippt: " + t);
        std::string pausen = "Pausen:";
        for (int ms : desktop.sleeps()) pausen += " " + std::to_string(ms);
        ist.push_back(pausen + ", Uhr " + std::to_string(uhr.tickMs()) + ", Nachrichten " +
                      std::to_string(desktop.pumps()) + ", Escape-Abfragen " +
                      std::to_string(desktop.queries(platform::Key::Escape)));
        for (const auto& g : benutzer.gezeigt) ist.push_back("gezeigt: " + g.text);
        std::istringstream skript(lesen("c:\\temp\\bv8LT.scr"));
        for (std::string l; std::getline(skript, l);) ist.push_back("Skript: " + l);
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
