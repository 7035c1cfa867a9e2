// The private-profile engine on real files: what GetPrivateProfileString
// and WritePrivateProfileString do with the files the program meets.
#include "startup/ini_datei.h"

#include <gtest/gtest.h>

#include <random>

#include "einstellungen_umgebung.h"
#include "startup/zeichensatz.h"
#include "tabelle.h"

namespace tessara::einstellungentest {
namespace {

using IniDatei = EinstellungenUmgebung;

TEST_F(IniDatei, LiestWieDasPrivateProfil) {
    for (const auto& f : test::tabelle("startup/golden/ini_lesen.txt")) {
        schreiben(ini(), f.at(1));
        EXPECT_EQ(fctIniWertLesen(prog(ini()), f.at(2), f.at(3)), f.at(4)) << f.at(0);
    }
    // A missing file reads as empty and is no error.
    IniStatus s = IniStatus::Fehler;
    EXPECT_EQ(fctIniWertLesen(prog(wurzel / "gibtsnicht.ini"), "A", "k", &s), "");
    EXPECT_EQ(s, IniStatus::DateiFehlt);
}

TEST_F(IniDatei, WertWirdNach120ZeichenAbgeschnitten) {
    schreiben(ini(), "[A]\r\nk=" + std::string(200, 'x') + "\r\nu=" + std::string(130, '\xE4') +
                         "\r\ngenau=" + std::string(120, 'y') + "\r\n");
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), std::string(120, 'x'));
    // Characters, not bytes: 120 umlauts are 240 bytes of UTF-8.
    std::string ae;
    for (int i = 0; i < 120; ++i) ae += "ä";
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "u"), ae);
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "genau"), std::string(120, 'y'));
}

TEST_F(IniDatei, SchreibtWieDasPrivateProfil) {
    for (const auto& f : test::tabelle("startup/golden/ini_schreiben.txt")) {
        fs::remove(ini());
        if (f.at(1) != "-") schreiben(ini(), f[1]);
        for (std::size_t i = 3; i + 2 < f.size(); i += 3)
            EXPECT_TRUE(fctIniWertSchreiben(prog(ini()), f[i], f[i + 1], f[i + 2])) << f[0];
        EXPECT_EQ(lesen(ini()), f.at(2)) << f[0];
    }
    // Written through a temporary file, none of which is left behind.
    int dateien = 0;
    for (const auto& e : fs::directory_iterator(wurzel)) dateien += e.is_regular_file();
    EXPECT_EQ(dateien, 1);
}

TEST_F(IniDatei, ZielIstVerzeichnisSchreibenScheitertOhneSchaden) {
    fs::create_directories(ini() / "inhalt");
    EXPECT_FALSE(fctIniWertSchreiben(prog(ini()), "A", "k", "1"));
    EXPECT_TRUE(fs::is_directory(ini() / "inhalt"));
    IniStatus s;
    std::string fehler;
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k", &s, &fehler), "");
    EXPECT_EQ(s, IniStatus::Fehler);
    EXPECT_NE(fehler.find("Verzeichnis"), std::string::npos);
    int dateien = 0;
    for (const auto& e : fs::directory_iterator(wurzel))
        if (e.is_regular_file()) ++dateien;
    EXPECT_EQ(dateien, 0);
    EXPECT_FALSE(fctIniWertSchreiben(prog(wurzel / "fehlt" / "x.ini"), "A", "k", "1"));
    EXPECT_FALSE(fs::exists(wurzel / "fehlt"));
    EXPECT_FALSE(fctIniWertSchreiben("", "A", "k", "1"));
    EXPECT_EQ(fctIniWertLesen("", "A", "k"), "");
}

TEST_F(IniDatei, MuellWirdGelesenUndBleibtErhalten) {
    std::mt19937 zufall(4711);
    for (int runde = 0; runde < 50; ++runde) {
        std::string muell(static_cast<std::size_t>(zufall() % 4000), '\0');
        for (char& c : muell) c = static_cast<char>(zufall() & 0xFF);
        // Sprinkle in structure so that some runs hit headers and keys.
        if (runde % 2) muell += "\r\n[AllgemeineDaten\r\n=\r\n[]\r\n[AllgemeineDaten]x\r\nk";
        muell += "\r\n";
        schreiben(ini(), muell);
        (void)fctIniWertLesen(prog(ini()), "AllgemeineDaten", "DbVerzeichnis0");
        ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "Tessara-Test", "Wert", "ÄÖÜß"));
        EXPECT_EQ(fctIniWertLesen(prog(ini()), "Tessara-Test", "Wert"), "ÄÖÜß");
        const std::string nachher = lesen(ini());
        // Whatever the file held stays in front, byte for byte.
        ASSERT_GE(nachher.size(), muell.size());
        EXPECT_EQ(nachher.substr(0, muell.size()), muell) << "Runde " << runde;
    }
}

TEST_F(IniDatei, UeberlangeZeileUndNulBytes) {
    std::string inhalt = "[A]\r\nlang=" + std::string(2'000'000, 'q') + "\r\n";
    inhalt += std::string("nul\0=1\r\n\0\0\0\r\nk=2\r\n", 18);
    schreiben(ini(), inhalt);
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "lang"), std::string(120, 'q'));
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), "2");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "k", "3"));
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), "3");
    EXPECT_EQ(lesen(ini()).size(), inhalt.size());
}

TEST(Zeichensatz, JedesAnsiByteUeberstehtDieRundreise) {
    std::string alle;
    for (int b = 0; b < 256; ++b) alle.push_back(static_cast<char>(b));
    EXPECT_EQ(fctUtf8NachAnsi(fctAnsiNachUtf8(alle)), alle);
    EXPECT_EQ(fctAnsiNachUtf8("\x8A\x9F\xFF"), "ŠŸÿ");
    EXPECT_EQ(fctUtf8NachAnsi("\xC3"), "?");  // broken sequence
    EXPECT_FALSE(fctIstUtf8MitUmlauten("\xC4pfel"));
    EXPECT_FALSE(fctIstUtf8MitUmlauten("ascii"));
    EXPECT_TRUE(fctIstUtf8MitUmlauten("Äpfel"));
}

TEST(IniText, SektionenUndSchluesselInDateiordnung) {
    const IniText t = IniText::ausBytes("[A]\r\nb=1\r\na=2\r\nohne\r\n[B]\r\n[a]\r\nc=3\r\n");
    EXPECT_EQ(t.sektionen(), (std::vector<std::string>{"A", "B", "a"}));
    EXPECT_EQ(t.schluessel("a"), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(t.zeilen().size(), 7u);
    EXPECT_EQ(t.wert("A", "a"), std::optional<std::string>("2"));
    EXPECT_EQ(t.wert("A", "c"), std::nullopt);
    // Removing a section removes every one of that name, whatever its case.
    IniText u = t;
    EXPECT_TRUE(u.sektionEntfernen("a"));
    EXPECT_EQ(u.bytes(), "[B]\r\n");
    EXPECT_FALSE(u.sektionEntfernen("A"));
}

}  // namespace
}  // namespace tessara::einstellungentest
