#pragma once
// The database search: finding Block records by their attribute texts
// (M0..M9) and by block name, in the whole library or in the current Folder.
//
// The statement is composed exactly as libraries and scripts have always
// seen it, quirks included: the block-name term of the plain search runs the
// table name into "WHERE" ("FROM tblBlockInfoWHERE"), the operator lists do
// not reach the statement, and search texts go in as typed, so a quote
// breaks the statement. Such a statement fails in the database and the
// search ends through the error handler with a message; nothing throws.
#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "db/connection.h"
#include "db/recordset.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr int kSuchFelder = 11;      // txtBenennung 0..9 (M0..M9) and 10 (block name)
inline constexpr int kSuchOperatoren = 10;  // comboxSuchkriterienVerknuepfen 0..9
inline constexpr int kFeldBlockname = 10;

// Message numbers of the search.
inline constexpr long kMeldungKeinSuchbegriff = 310;
inline constexpr long kMeldungKeinTreffer = 311;
inline constexpr long kMeldungSucheFehlgeschlagen = 312;
inline constexpr long kMeldungKeinHochkomma = 313;

// The seven operators of each operator list, in list order.
const std::array<std::string, 7>& fctSuchOperatoren();

struct typSuchKriterien {
    std::array<std::string, kSuchFelder> txtBenennung;
    // The operator chosen in each list; empty when none is chosen.
    std::array<std::string, kSuchOperatoren> comboxSuchkriterienVerknuepfen;
    bool checkAktuellerOrdner = false;
    bool checkGanzeWoerter = false;
    bool chkAnsichtenVarianten = false;
    bool checkDirektEinfuegen = false;
};

// Whether every one of txtBenennung 0..10 is empty.
bool fctSuchKriterienLeer(const typSuchKriterien& k);

// the statement for block table strTabelle ("tblBlockInfo", or
// "tblBlockInfoInventor"); lngOrdnerNr is the current Folder's Nr, used with
// checkAktuellerOrdner.
std::string fctSuchAnweisung(const typSuchKriterien& k, const std::string& strTabelle,
                             long lngOrdnerNr);

// One hit, as the result display shows it.
struct typSuchTreffer {
    long Nr = 0;
    std::string Block;
    std::string OrdnerNr;  // the first three characters of Block
    long OrdnerID = 0;
    std::string SlideLib;
    std::array<std::string, 5> BlkName;  // the View names (the Inventor table has one)
    std::string M0;
};

// The rows of an open result record set, from its first row on.
std::vector<typSuchTreffer> fctSuchTrefferLesen(db::Recordset& rs);

enum class SuchErgebnis {
    KeinSuchbegriff,  // message 310 shown
    KeinTreffer,      // message 311 shown
    Fehler,           // the statement failed: logged, message 312 shown
    Einfuegen,        // one hit and checkDirektEinfuegen: insert treffer[0]
    Anzeigen          // show the hits
};

struct typSuchAusgang {
    SuchErgebnis ergebnis = SuchErgebnis::KeinTreffer;
    std::string strAnweisung;
    std::vector<typSuchTreffer> treffer;
};

// S1 on the library connection; the messages go through z.benutzer.
typSuchAusgang fctDatenbankSuchen(ProgrammZustand& z, db::Connection& con,
                                  const typSuchKriterien& k, const std::string& strTabelle,
                                  long lngOrdnerNr);

// The captions of the ten attribute fields: Benennung1..Benennung10 of the
// definition menu of the Folder with this code (menu 1 when the Folder names
// none). Fields stay empty when the menu cannot be read.
std::array<std::string, 10> fctSuchBeschriftungen(ProgrammZustand& z, db::Connection& con,
                                                  const std::string& strOrdnerNr);

// The Page names of the library by Folder key (NrTblOrdner) and Page number,
// read once for all hits of a result. Throws the database's error.
std::map<std::pair<long, long>, std::string> fctSeitenNamenLesen(db::Connection& con);

}  // namespace tessara
