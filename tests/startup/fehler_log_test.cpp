// The common error handler, debug mode and the procedure context, with the
// log in a real temporary directory.
#include "startup/fehler_log.h"

#include <gtest/gtest.h>

#include <regex>
#include <system_error>
#include <tuple>

#include "einstellungen_umgebung.h"
#include "jet/sql/error.h"
#include "startup/ini_datei.h"
#include "tabelle.h"

namespace tessara::einstellungentest {
namespace {

using FehlerLog = EinstellungenUmgebung;

TEST_F(FehlerLog, SaetzeMitKontextUndSchritt) {
    {
        Prozedur fenster(z, "Form_Load", true);
        fenster.step("Werte zuordnen");
        Prozedur modul(z, "fctOrdnerLesen");
        z.fehler.weitere = {"", "rsOrdner"};
        subErrorAllgemein(z, true, "Kaputt", 5, {"Zusatz", ""});
    }
    uhr.advanceMs(61'000);
    z.fehler.weitere.clear();
    subErrorAllgemein(z, true, "Noch einmal", -2147217865L);
    EXPECT_EQ(z.fehler.strLetzterFehler, "Noch einmal");
    EXPECT_EQ(z.fehler.lngLetzteFehlerNr, -2147217865L);
    Prozedur p(z, "fctRsFind");
    p.step("Suchen");
    p.fehler("weg", 3021, true);
    std::string soll;
    for (const auto& f : test::tabelle("startup/golden/fehler_log.txt")) soll += f.at(0);
    EXPECT_EQ(lesen(log()), soll);
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 3);
    ASSERT_TRUE(z.fehler.ersterFehler);
    EXPECT_EQ(*z.fehler.ersterFehler,
              std::chrono::system_clock::time_point(std::chrono::seconds(1433152800)));
}

TEST_F(FehlerLog, MeldungOderNurLog) {
    // sShowAllErrorMsgbox=1 shows log-only errors too; any other value
    // leaves them in the log.
    for (const auto& [zeile, leiseGezeigt] : {std::pair{"", false},
                                              {"sShowAllErrorMsgbox=1", true},
                                              {"sShowAllErrorMsgbox=2", false}}) {
        schreiben(ini(), "[AllgemeineDaten]\r\n" + std::string(zeile) + "\r\n");
        benutzer.gezeigt.clear();
        subErrorAllgemein(z, true, "leise", 1);
        subErrorAllgemein(z, false, "Datei fehlt", 53);
        std::string gezeigt;
        for (const auto& g : benutzer.gezeigt) gezeigt += g.titel + ": " + g.text + "|";
        EXPECT_EQ(gezeigt, std::string(leiseGezeigt ? "subErrorAllgemein: Fehler: leise|" : "") +
                               "subErrorAllgemein: Fehler: Datei fehlt|")
            << zeile;
        EXPECT_EQ(benutzer.gezeigt.back().symbol, Symbol::Ausrufezeichen);
        uhr.advanceMs(120'000);
    }
}

TEST_F(FehlerLog, NurEinFehlersturmBremstDieMeldungen) {
    // In quick succession: five boxes, then the storm is recognised and the
    // rest only logged. Two minutes apart: every one is shown.
    for (const int abstandMs : {0, 120'000}) {
        SCOPED_TRACE(abstandMs);
        z.fehler = {};
        benutzer.gezeigt.clear();
        for (int i = 0; i < 8; ++i) {
            subErrorAllgemein(z, false, "Schleife", 1);
            uhr.advanceMs(abstandMs);
        }
        EXPECT_EQ(std::tuple(benutzer.gezeigt.size(), z.fehler.booMeldungenUnterdrueckt,
                             z.fehler.intFehlerAnzahl),
                  std::tuple(abstandMs ? 8u : 5u, abstandMs == 0, 8));
    }
    const std::string log = lesen(this->log());
    const std::regex trenner("-{24}");
    EXPECT_EQ(std::distance(std::sregex_iterator(log.begin(), log.end(), trenner), {}), 16);
}

TEST_F(FehlerLog, LogPfadAusTempUndRegistryKurzname) {
    z.strErrorDatei.clear();
    subErrorAllgemein(z, true, "x", 1);
    EXPECT_EQ(fctErrorDatei(z), z.strCTemp + "txtErrorTsa9.0.txt");
    EXPECT_TRUE(fs::exists(wurzel / "txtErrorTsa9.0.txt"));
    // "c:\temp" is made before each write.
    EXPECT_TRUE(fs::is_directory(wurzel / "drive_c" / "temp"));
}

TEST_F(FehlerLog, UnbeschreibbaresLogWirdUebergangen) {
    schreiben(wurzel / "datei", "keine Verzeichnis");
    z.strErrorDatei = prog(wurzel / "datei" / "log.txt");
    subErrorAllgemein(z, false, "trotzdem", 7);
    EXPECT_EQ(z.fehler.intFehlerAnzahl, 1);
    EXPECT_EQ(benutzer.gezeigt.size(), 1u);
    EXPECT_EQ(lesen(wurzel / "datei"), "keine Verzeichnis");
    z.booDebug = true;
    subDebugLog(z, "auch das nicht");
}

TEST_F(FehlerLog, DebugZeilenNurImDebugModus) {
    Prozedur p(z, "Form_Load", true);
    p.step("Werte zuordnen");
    subDebugLog(z, "sCmdLineParameter: ");
    EXPECT_FALSE(fs::exists(log()));
    z.booDebug = true;
    p.step("ACAD_Connect");
    subDebugLog(z, "sCmdLineParameter: /d \"x\"");
    EXPECT_EQ(lesen(log()), "ACAD_Connect\r\nsCmdLineParameter: /d \"x\"\r\n");
    EXPECT_EQ(z.fehler.strSchritt, "ACAD_Connect");
}

TEST_F(FehlerLog, ProzedurStelltDenVorgaengerWiederHer) {
    Prozedur aussen(z, "cmbEinfuegen_Click", true);
    aussen.step("Block lesen");
    {
        Prozedur innen(z, "fctRsFind");
        EXPECT_EQ(std::tie(z.fehler.strProzedurModul, z.fehler.strSchritt),
                  std::make_tuple("fctRsFind", ""));
        innen.step("Filter setzen");
        {
            Prozedur fenster(z, "Form_Activate", true);
            EXPECT_EQ(z.fehler.strProzedurFenster, "Form_Activate");
        }
        EXPECT_EQ(std::tie(z.fehler.strProzedurFenster, z.fehler.strSchritt),
                  std::make_tuple("cmbEinfuegen_Click", "Filter setzen"));
    }
    EXPECT_EQ(std::tie(z.fehler.strProzedurModul, z.fehler.strSchritt),
              std::make_tuple("", "Block lesen"));
}

TEST_F(FehlerLog, FehlernummerAusDerAusnahme) {
    Prozedur p(z, "x");
    p.fehler(sql::Error("Syntax error in FROM clause.", -2147217900L, 3131), true);
    EXPECT_EQ(z.fehler.lngLetzteFehlerNr, -2147217900L);
    EXPECT_EQ(z.fehler.strLetzterFehler, "Syntax error in FROM clause.");
    p.fehler(jet::Error("Unrecognized database format", 3343), true);
    EXPECT_EQ(z.fehler.lngLetzteFehlerNr, 3343);
    p.fehler(std::system_error(std::make_error_code(std::errc::no_such_file_or_directory)), true);
    EXPECT_EQ(z.fehler.lngLetzteFehlerNr, ENOENT);
    p.fehler(std::runtime_error("schlicht"), true);
    EXPECT_EQ(z.fehler.lngLetzteFehlerNr, 0);
}

TEST_F(FehlerLog, DebugModusBestimmen) {
    for (const auto& f : test::tabelle("startup/golden/debug_modus.txt")) {
        SCOPED_TRACE(f.at(0));
        const bool frage = !f.at(2).empty(), debug = f.at(3) == "1";
        schreiben(ini(), f[1]);
        benutzer.gezeigt.clear();
        benutzer.antworten = {};
        if (frage) benutzer.antworten = {f[2] == "Ok" ? Antwort::Ok : Antwort::Abbrechen};
        z.booDebug = !debug;
        EXPECT_EQ(fctGetCDebug(z, z.strIniDatei, ""), debug);
        EXPECT_EQ(z.booDebug, debug);
        ASSERT_EQ(benutzer.gezeigt.size(), frage ? 1u : 0u);
        if (frage) {
            EXPECT_EQ(benutzer.gezeigt[0].text,
                      "Soll im Debug-Modus gestartet werden?\rAbbrechen= Debug-Modus "
                      "deaktivieren\rVersion: 9.0.0");
            EXPECT_EQ(benutzer.gezeigt[0].titel, "Frage");
            EXPECT_EQ(benutzer.gezeigt[0].knoepfe, Knoepfe::OkAbbrechen);
        }
    }
}

TEST_F(FehlerLog, DebugSchalterWirdAngelegtAberNichtDieDatei) {
    EXPECT_FALSE(fctGetCDebug(z, z.strIniDatei, ""));
    EXPECT_FALSE(fs::exists(ini()));  // the first start must still find none
    schreiben(ini(), "[AllgemeineDaten]\r\nSprache=deutsch\r\n");
    EXPECT_FALSE(fctGetCDebug(z, z.strIniDatei, ""));
    EXPECT_EQ(lesen(ini()), "[AllgemeineDaten]\r\nSprache=deutsch\r\nstrDebug=0\r\n");
    // The error box flag, and a section of its own.
    schreiben(ini(), "[Test]\r\nstrDebug=-1\r\nsOhneMsgboxDaDll=1\r\nsErrMsgbox=1\r\n");
    EXPECT_TRUE(fctGetCDebug(z, z.strIniDatei, "Test"));
    EXPECT_TRUE(z.booFehlerMsgbox);
    EXPECT_FALSE(fctGetCDebug(z, z.strIniDatei, ""));
    EXPECT_FALSE(z.booFehlerMsgbox);
}

}  // namespace
}  // namespace tessara::einstellungentest
