// The private-profile engine on real files: what GetPrivateProfileString
// and WritePrivateProfileString do with the files the program meets.
#include "startup/ini_datei.h"

#include <gtest/gtest.h>

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
