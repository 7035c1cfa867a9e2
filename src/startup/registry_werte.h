#pragma once
// The program's registry values: under the registry root (z.strRegRoot,
// current user) the current database and the default library directory, in
// its subkey "\Setup" the user's options and the main window's geometry;
// under the local machine's "Software\Tessara\Version_8" the databases of the
// installation. Everything goes through z.plattform->registry; without one,
// reads give the defaults and writes report false.
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "startup/programm_zustand.h"

namespace tessara {

// The user's options as "SetupInRegistrierdatenbankSpeichern" writes them.
// Switches are 0 or 1. The defaults are what a first start shows.
struct typSetupWerte {
    std::string Eintrag1;  // current database (directory + "\dbTessara.mdb")
    std::int32_t lonOrdnerSortieren = 0;
    std::int32_t longUnbesetzt = 0;
    std::int32_t longEinfuegenLayer0 = 0;
    std::int32_t longBlockAusBibliothek = 1;
    std::int32_t longUrsprungBeimEinfuegen = 0;
    std::int32_t longXRef = 0;
    std::int32_t longAbfrageXFaktor = 0;
    std::int32_t longAbfrageYFaktor = 0;
    std::int32_t longAbfrageZFaktor = 0;
    std::int32_t longAbfrageEinfuegewinkel = 0;
    std::int32_t longAbfrageBlocknameBeimErzeugen = 1;
    std::int32_t longAbfrageAttributeBeimEinfuegen = 1;
    std::int32_t longReihe = 0;
    std::int32_t longMehrfacheinfuegen = 0;
    std::int32_t longMehrfachAktiv = 0;
    std::int32_t longMehrereEinfuegepkte = 0;
    std::int32_t longVorschaudiaBeimErzeugen = 1;
    std::int32_t longMassstabskontrolle = 0;
    std::int32_t longRechteverwaltung = 0;
    std::int32_t longStuecklisteEinfuegen = 0;
    std::int32_t longBlockProgrammfrage = 0;
    std::int32_t longVariantenfrage = 1;
    // The main window's position flag: whether its position is kept.
    std::int32_t longFensterpositionSpeichern = 1;
    std::int32_t longBruchFrage = 0;
    std::int32_t longSlideUeberpruefen = 0;
    std::int32_t lonPosSeitenWechsel = 0;
    std::int32_t longBruchOption = 0;
    std::int32_t longDoppelklick = 0;
    std::string strMassstabX = "1";
    std::string strMassstabY = "1";
    std::string strMassstabZ = "1";
    std::int32_t longAnzahlDerBilder = 2;  // picture-size index 0..7; 2 = 16 slots
    std::int32_t longUeberschreibenDefMenueGlobal = 0;
    std::string strAktuellerOrdnerName;
    std::string strACadVersion;  // the CAD host version text
    std::string strVerzeichnisVorgabe;
    std::int32_t longCurrentX = 0;
    std::int32_t longCurrentY = 0;
    std::string strAktuelleOrdnerNr;
    std::int32_t longTessaraAnzeigenNachEinfuegen = 0;
    std::int32_t lonOldView = 0;
    std::int32_t lonLispVarUebergeben = 0;
    std::int32_t lonFrmHeight = 0;  // 0: never stored, the window keeps its own size
    std::int32_t lonFrmWidth = 0;
};

// One setup value: its registry name and the field that holds it (a 32-bit
// integer is written as a DWORD, a string as a string).
struct typSetupEintrag {
    const char* name;
    std::variant<std::int32_t typSetupWerte::*, std::string typSetupWerte::*> feld;
};
// Every setup value in the order it is written.
const std::vector<typSetupEintrag>& fctSetupEintraege();

// The subkey "\Setup" of the registry root.
std::string fctSetupSchluessel(const ProgrammZustand& z);

// Writes the values in their order under "\Setup"; "longCurrentX" and
// "longCurrentY" only when longFensterpositionSpeichern is set. True when
// every value was written.
bool SetupInRegistrierdatenbankSpeichern(ProgrammZustand& z, const typSetupWerte& w);
// Reads the values back into w; a missing value (or one of the other type)
// keeps w's value. True when the "\Setup" key exists.
bool SetupEinstellungenZuweisen(ProgrammZustand& z, typSetupWerte& w);

// Puts values that no window of the program can show back to their
// defaults: a picture-size index outside 0..7, a double-click action outside
// 0..3, a switch of the options window that is neither 0 nor 1, a scale that
// is no non-zero number (a decimal comma becomes a point: the host reads
// points only), a negative window size (0). True when something was changed.
bool fctSetupWerteKorrigieren(typSetupWerte& w);

// Main window geometry under "\Setup".
struct typFensterGeometrie {
    std::int32_t longCurrentX = 0, longCurrentY = 0;
    std::int32_t lonFrmHeight = 0, lonFrmWidth = 0;
    bool booPosition = false;  // read: whether a position was stored
    bool booGroesse = false;   // read: whether a size was stored
};
// Size always; position only with booPositionSpeichern (the position flag,
// longFensterpositionSpeichern).
bool subFensterGeometrieSpeichern(ProgrammZustand& z, const typFensterGeometrie& g,
                                  bool booPositionSpeichern);
typFensterGeometrie fctFensterGeometrieLesen(ProgrammZustand& z);

// "Eintrag1" (z.strAktuelleDb) and "strVerzeichnisVorgabe" under the
// registry root, in this order, as the program writes them on closing.
bool subRegistryEintraegeSpeichern(ProgrammZustand& z);
// "Eintrag1" alone (a new database has become current).
bool fctEintrag1Speichern(ProgrammZustand& z, const std::string& strDb);

// The databases of the installation under the local machine's
// "Software\Tessara\Version_8", for every program and user of the machine:
// "Eintrag" & i + 2 for entry i of the database list (directory &
// "\dbTessara.mdb"), "Eintrag1" the current database. A missing key is
// begun as "...\Version_8\Setup" with "Anwendungsdaten", the common
// application-data folder. A list without a database writes nothing. Writing
// the machine's hive may be refused to a user without the rights: that is
// logged, never shown, and answers false.
bool EintraegeInRegistrierdatenbank(ProgrammZustand& z);

// What holds for a session from its start: the multiple-insertion box is on
// exactly when "switched on at start" (longMehrfachAktiv) is set, whatever
// the box showed when the last session ended.
void subSetupBeimStart(typSetupWerte& w);

// z.strAktuelleDb from "Eintrag1"; when its directory is not in the database
// list, entry 0 of the list becomes current (empty when the list names no
// database). True when a current database is set.
bool EintraegeAusRegistrierdatenbank(ProgrammZustand& z);

// The database file of a library directory: directory + "\dbTessara.mdb".
std::string fctDbDatei(const std::string& strVerzeichnis);

}  // namespace tessara
