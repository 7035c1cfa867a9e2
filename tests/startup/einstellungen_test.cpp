// The Settings file's readers, named operations, database list, first
// start, conversion of the 8.x file and the per-database position.
#include "startup/einstellungen.h"

#include <gtest/gtest.h>

#include <tuple>

#include "einstellungen_umgebung.h"
#include "startup/ini_datei.h"
#include "tabelle.h"

namespace tessara::einstellungentest {
namespace {

using Einstellungen = EinstellungenUmgebung;

TEST_F(Einstellungen, ZahlenUndWahrheitswerte) {
    for (const auto& f : test::tabelle("startup/golden/leser.txt")) {
        SCOPED_TRACE(f.at(0) + " \"" + f.at(1) + "\"");
        fctIniWertSchreiben(z.strIniDatei, "Position", "s1", f[1]);
        const long erwartet = std::stol(f.at(2));
        if (f[0] == "byte") {
            EXPECT_EQ(fctIniByteLesen(z, z.strIniDatei, "Position", "s1"), erwartet);
        } else if (f[0] == "int") {
            EXPECT_EQ(fctIniIntLesen(z, z.strIniDatei, "Position", "s1"), erwartet);
        } else if (f[0] == "long") {
            EXPECT_EQ(fctIniLongLesen(z, z.strIniDatei, "Position", "s1"), erwartet);
        } else {
            EXPECT_EQ(fctBoolWert(f[1]), erwartet == 1);
        }
    }
    EXPECT_EQ(fctIniByteLesen(z, z.strIniDatei, kAllgemeineDaten, "fehlt"), 0);
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 0);
}

TEST_F(Einstellungen, IniGetValueMeldetUnlesbareDateiNurImLog) {
    // A missing file is empty and no error.
    EXPECT_EQ(IniGetValue(z, z.strIniDatei, "AllgemeineDaten", "Sprache"), "");
    EXPECT_FALSE(fs::exists(log()));
    fs::create_directories(ini());  // a directory where the file should be
    EXPECT_EQ(IniGetValue(z, z.strIniDatei, "AllgemeineDaten", "Sprache"), "");
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 1);
    EXPECT_TRUE(benutzer.gezeigt.empty());
    const std::string log = lesen(this->log());
    EXPECT_NE(log.find("\r\nIniGetValue: " + z.strIniDatei + "; AllgemeineDaten; Sprache\r\n"),
              std::string::npos)
        << log;
    // The byte reader goes through it and reports the same way; the integer
    // reader answers 0 without a word.
    EXPECT_EQ(fctIniByteLesen(z, z.strIniDatei, "AllgemeineDaten", "bytOhneWithEvent"), 0);
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 2);
    EXPECT_EQ(fctIniIntLesen(z, z.strIniDatei, "AllgemeineDaten", "x"), 0);
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 2);
}

TEST_F(Einstellungen, WertAllgemeinSpeichern) {
    EXPECT_TRUE(fctWertAllgInIniSpeichern(z, "sCTemp", "d:\\temp\\"));
    EXPECT_EQ(lesen(ini()), "[AllgemeineDaten]\r\nsCTemp=d:\\temp\\\r\n");
    // Even a write that cannot happen answers true; the failure is ignored.
    z.strIniDatei = prog(wurzel / "fehlt" / "x.ini");
    EXPECT_TRUE(fctWertAllgInIniSpeichern(z, "sCTemp", "x"));
}

TEST_F(Einstellungen, MeldungNichtMehrAnzeigen) {
    // Never written: mode 1 says show it, any other mode says it is off.
    EXPECT_TRUE(fctIniDateiNeuAnlegen(z, "AutoCadTitel", 1));
    EXPECT_FALSE(fctIniDateiNeuAnlegen(z, "AutoCadTitel", 0));
    EXPECT_FALSE(fctIniDateiNeuAnlegen(z, "AutoCadTitel", 2));
    EXPECT_TRUE(fctMsgboxNichtMehrAnzeigenSpeichern(z, "AutoCadTitel"));
    EXPECT_EQ(lesen(ini()), "[MsgboxAnzeigen]\r\nAutoCadTitel=1\r\n");
    EXPECT_FALSE(fctIniDateiNeuAnlegen(z, "AutoCadTitel", 1));
    EXPECT_TRUE(fctIniDateiNeuAnlegen(z, "autocadtitel", 0));
    // Any value other than "1" still shows the message.
    fctIniWertSchreiben(z.strIniDatei, kMsgboxAnzeigen, "AutoCadTitel", "0");
    EXPECT_TRUE(fctIniDateiNeuAnlegen(z, "AutoCadTitel", 1));
}

TEST_F(Einstellungen, VerzeichnisVorgabe) {
    // Path, mode, the default directory then, whether the file is written
    // (the same directory again is no change, and is not written).
    const std::tuple<const char*, int, const char*, bool> faelle[] = {
        {"c:\\Bibliothek", 1, "c:\\Bibliothek\\", true},
        {"c:\\Bibliothek\\", 1, "c:\\Bibliothek\\", false},
        {"d:\\Bib\\Elektro\\dbTessara.mdb", 0, "d:\\Bib\\Elektro\\", true},
        {"d:\\Bib\\Elektro\\anders.mdb", 2, "d:\\Bib\\Elektro\\", false}};
    for (const auto& [pfad, modus, vorgabe, geschrieben] : faelle) {
        fs::remove(ini());
        subVerzeichnisVorgabeAktualisieren(z, pfad, modus);
        EXPECT_EQ(z.strVerzeichnisVorgabe, vorgabe) << pfad;
        EXPECT_EQ(IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "VerzeichnisVorgabe"),
                  geschrieben ? vorgabe : "")
            << pfad;
    }
}

TEST_F(Einstellungen, DatenbanklisteLesen) {
    for (const auto& f : test::tabelle("startup/golden/datenbankliste.txt")) {
        fs::remove(ini());
        if (!f.at(1).empty()) schreiben(ini(), f[1]);
        z.aryDbVerzeichnis = {"alt", "alt", "alt", "alt"};
        subLesenTessaraIniDatei(z);
        EXPECT_EQ(z.aryDbVerzeichnis, std::vector<std::string>(f.begin() + 2, f.end())) << f[0];
    }
}

TEST_F(Einstellungen, DatenbanklisteSchreibenLaesstSpaetereSchluessel) {
    schreiben(ini(),
              "[AllgemeineDaten]\r\nDbVerzeichnis0=c:\\A\r\nDbVerzeichnis1=c:\\B\r\n"
              "DbVerzeichnis2=c:\\C\r\nSprache=deutsch\r\n");
    z.aryDbVerzeichnis = {"d:\\Neu", "c:\\A"};
    subSpeichernTessaraIniDatei(z);
    EXPECT_EQ(lesen(ini()),
              "[AllgemeineDaten]\r\nDbVerzeichnis0=d:\\Neu\r\nDbVerzeichnis1=c:\\A\r\n"
              "DbVerzeichnis2=c:\\C\r\nSprache=deutsch\r\n");
    // The stale third key is read back too: the list is what the file says.
    subLesenTessaraIniDatei(z);
    EXPECT_EQ(z.aryDbVerzeichnis, (std::vector<std::string>{"d:\\Neu", "c:\\A", "c:\\C"}));
}

TEST_F(Einstellungen, ErsterStartUndDie8xDatei) {
    const fs::path v8 = wurzel / "app" / "TessaraV8.ini";
    for (const auto& f : test::tabelle("startup/golden/erster_start.txt")) {
        fs::remove(ini());
        fs::remove(v8);
        if (f.at(1) != "-") schreiben(ini(), f[1]);
        if (f.at(2) != "-") schreiben(v8, f[2]);
        EXPECT_EQ(fctIniDateiErsterStart(z), f.at(3) == "1") << f[0];
        EXPECT_EQ(lesen(ini()), f.at(4)) << f[0];
    }
}

TEST_F(Einstellungen, DbPositionSchreibenUndLesen) {
    const std::string bib = prog(wurzel / "bib");
    fs::create_directories(wurzel / "bib");
    typDbPosition pos;
    pos.strAktuelleOrdnerNr = "00A";
    pos.s1 = -3;
    pos.Pos = 123456789;
    EXPECT_TRUE(subDbPositionSpeichern(z, bib + "\\", pos));
    EXPECT_EQ(fctDbIniDatei(bib + "\\"), bib + "\\dbTessara.ini");
    EXPECT_EQ(lesen(wurzel / "bib" / "dbTessara.ini"),
              "[Position]\r\nstrAktuelleOrdnerNr=00A\r\ns1=-3\r\nPos=123456789\r\n");
    const typDbPosition gelesen = fctDbPositionLesen(z, bib);
    EXPECT_EQ(std::tie(gelesen.strAktuelleOrdnerNr, gelesen.s1, gelesen.Pos),
              std::make_tuple("00A", -3, 123456789));
    // A library without the file starts at the beginning.
    const typDbPosition leer = fctDbPositionLesen(z, prog(wurzel / "andere"));
    EXPECT_EQ(std::tie(leer.strAktuelleOrdnerNr, leer.s1, leer.Pos), std::make_tuple("", 0, 0));
}

}  // namespace
}  // namespace tessara::einstellungentest
