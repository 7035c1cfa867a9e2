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

TEST_F(IniDatei, NeueDateiUndSektionMitCrLf) {
    ASSERT_FALSE(fs::exists(ini()));
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "AllgemeineDaten", "DbVerzeichnis0", "0"));
    EXPECT_EQ(lesen(ini()), "[AllgemeineDaten]\r\nDbVerzeichnis0=0\r\n");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "MsgboxAnzeigen", "AutoCadTitel", "1"));
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "allgemeinedaten", "Sprache", "deutsch"));
    EXPECT_EQ(lesen(ini()),
              "[AllgemeineDaten]\r\nDbVerzeichnis0=0\r\nSprache=deutsch\r\n"
              "[MsgboxAnzeigen]\r\nAutoCadTitel=1\r\n");
}

TEST_F(IniDatei, AnsiRundreiseDerUmlaute) {
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "k", "ÄÖÜß"));
    EXPECT_EQ(lesen(ini()), "[A]\r\nk=\xC4\xD6\xDC\xDF\r\n");
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), "ÄÖÜß");
    // Outside Windows-1252: a question mark, as the ANSI API writes it.
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "k", "a中Łb€"));
    EXPECT_EQ(lesen(ini()), "[A]\r\nk=a??b\x80\r\n");
}

TEST_F(IniDatei, SchreibenLaesstAndereZeilenWieSieSind) {
    const std::string vorher =
        "; Tessara-Einstellungen\n"
        "[AllgemeineDaten]\n"
        "  Sprache = deutsch   \n"
        "; nicht anfassen\n"
        "Zeile ohne Gleichheitszeichen\n"
        "\n"
        "[LayerStates]\r\n"
        "x=\x01\x02\xFF\r\n";
    schreiben(ini(), vorher);
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "ALLGEMEINEDATEN", "SPRACHE", "english"));
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "AllgemeineDaten", "sCTemp", "d:\\t\\"));
    // The key keeps its spelling and place; the new key follows the
    // section's last line, in front of the blank line; the rest is untouched.
    EXPECT_EQ(lesen(ini()),
              "; Tessara-Einstellungen\n"
              "[AllgemeineDaten]\n"
              "Sprache=english\n"
              "; nicht anfassen\n"
              "Zeile ohne Gleichheitszeichen\n"
              "sCTemp=d:\\t\\\r\n"
              "\n"
              "[LayerStates]\r\n"
              "x=\x01\x02\xFF\r\n");
}

TEST_F(IniDatei, SchreibenAnDateiOhneLetztesZeilenende) {
    schreiben(ini(), "[A]\r\nk=1");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "j", "2"));
    EXPECT_EQ(lesen(ini()), "[A]\r\nk=1\r\nj=2\r\n");
    schreiben(ini(), "[A]\r\nk=1");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "B", "j", "2"));
    EXPECT_EQ(lesen(ini()), "[A]\r\nk=1\r\n[B]\r\nj=2\r\n");
}

TEST_F(IniDatei, ZeilenumbruchImWertBleibtEineZeile) {
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "k", "a\r\n[B]\nb=1"));
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), "a  [B] b=1");
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "B", "b"), "");
}

TEST_F(IniDatei, SchreibenHinterlaesstKeineTemporaereDatei) {
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "k", "1"));
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "k", "2"));
    int dateien = 0;
    for (const auto& e : fs::directory_iterator(wurzel))
        if (e.is_regular_file()) ++dateien;
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

TEST_F(IniDatei, Utf8DateiAusEinemEditorBleibtUtf8) {
    schreiben(ini(), "[AllgemeineDaten]\r\nDbVerzeichnis0=c:\\Blöcke\r\n");
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "AllgemeineDaten", "DbVerzeichnis0"), "c:\\Blöcke");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "AllgemeineDaten", "Sprache", "Türkçe"));
    EXPECT_EQ(lesen(ini()), "[AllgemeineDaten]\r\nDbVerzeichnis0=c:\\Blöcke\r\nSprache=Türkçe\r\n");
}

TEST_F(IniDatei, DateienMitBomWerdenGelesenUndSoGeschrieben) {
    schreiben(ini(), "\xEF\xBB\xBF[A]\r\nk=Öl\r\n");
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), "Öl");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "j", "ß"));
    EXPECT_EQ(lesen(ini()), "\xEF\xBB\xBF[A]\r\nk=Öl\r\nj=ß\r\n");

    const std::string utf16 = "\xFF\xFE" + fctUtf8NachUtf16Le("[A]\r\nk=Öl\r\n");
    schreiben(ini(), utf16);
    EXPECT_EQ(fctIniWertLesen(prog(ini()), "A", "k"), "Öl");
    ASSERT_TRUE(fctIniWertSchreiben(prog(ini()), "A", "j", "ß"));
    EXPECT_EQ(lesen(ini()), "\xFF\xFE" + fctUtf8NachUtf16Le("[A]\r\nk=Öl\r\nj=ß\r\n"));
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
