#pragma once
// Program-wide state: one object, owned by the entry point and passed by
// reference to every operation. Tests build their own. Paths are held in the
// program's backslash form; startup/pfade.h converts at the boundary.
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {
class Registry;
class Environment;
struct Platform;
}  // namespace platform

namespace tessara {

class Benutzer;

// What the common error handler needs to know about where the program is.
struct FehlerKontext {
    std::string strProzedurFenster;    // running procedure of a window
    std::string strProzedurModul;      // running module function
    std::string strSchritt;            // current step label
    std::vector<std::string> weitere;  // further context strings written per record

    std::string strLetzterFehler;  // description of the last error
    long lngLetzteFehlerNr = 0;
    std::int16_t intFehlerAnzahl = 0;  // errors so far in this run
    std::optional<std::chrono::system_clock::time_point> ersterFehler;
    bool booMeldungenUnterdrueckt = false;  // no more message boxes in this run
};

struct ProgrammZustand {
    // The program's fixed values, set here once; Main (entry/start_ablauf)
    // fills in what depends on the machine.
    std::vector<std::string> aryVersion{"8.5", "9.0"};
    std::string strExeName = "tessara9.0.exe";
    std::string strKurzName = "tessara9";
    std::string strAppPfad;               // application directory, no trailing backslash
    std::string strCTemp = "c:\\temp\\";  // temporary directory, always ends in "\"
    std::string strIniDatei;              // Settings file
    std::string strErrorDatei;            // error log
    std::string strBeschriftDatei = "\\txtBeschriftTessara9.0";
    std::string strRegRoot = "Software\\Vendel\\Tessara\\9.0";
    std::string strRegKurz = "Tsa9.0";
    std::string strVersionInfoDatei;
    std::string strIconDatei;
    std::string strSprache;
    std::string strTessaraRoot = "c:\\Tessara\\";
    std::string strTblBlockInfo = "tblBlockInfo";
    std::string strBlockVerzeichnis = "Block";
    std::uint8_t bytOhneWithEvent = 0;
    // The previews a new Block gets: ".slb" (a slide library per View) or,
    // for AutoCAD LT, ".sld" (single slides); fixed by the load sequence.
    std::string strSlideEndung = ".slb";

    // Handed over by the automation entry class or the command line.
    std::string strUebergabeBlock;
    std::string strUebergabeVariante;
    std::string strUebergabeDb;

    // Debug and error-message flags of the error log.
    bool booDebug = false;
    bool booFehlerMsgbox = false;
    FehlerKontext fehler;

    // Settings read from the Settings file.
    std::vector<std::string> aryDbVerzeichnis;  // database list
    std::string strVerzeichnisVorgabe;          // default library directory, ends in "\"
    std::string strAktuelleDb;                  // full path of the current database

    // The program's program version line for the error log ("Tessara 9.0.0").
    std::string versionZeile() const { return "Tessara " + aryVersion.back() + ".0"; }

    // Outside world. Not owned.
    platform::Platform* plattform = nullptr;
    Benutzer* benutzer = nullptr;
};

}  // namespace tessara
