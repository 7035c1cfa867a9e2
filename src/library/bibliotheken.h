#pragma once
// The libraries the program knows besides the open one: the database list of
// the Settings file, the database a start opens, and what older versions
// left behind: libraries that lack tables or columns, slide paths stored
// absolute, and the older version's own database, imported into a new
// catalogue.
//
// Nothing here throws: each operation runs under the common error handler
// and answers false (or empty) when it failed.
#include <string>

#include "db/connection.h"
#include "startup/programm_zustand.h"

namespace tessara {

// --- The database list ("DbVerzeichnis0", "DbVerzeichnis1", ...) -----------------

// The index of the directory in the list (case and trailing backslash do not
// count), or -1.
int fctDbListenIndex(const ProgrammZustand& z, const std::string& strVerzeichnis);
// Appends the directory (a first start's placeholder "0" gives way to it) and
// writes the list; false when it was listed already.
bool fctDbListeErweitern(ProgrammZustand& z, const std::string& strVerzeichnis);
// Takes the directory out; the entries after it move up so that the keys stay
// without a gap, and the key that fell free is emptied. An emptied list keeps
// the placeholder "0". False when it was not listed.
bool fctDbListeEntfernen(ProgrammZustand& z, const std::string& strVerzeichnis);

// The database a start opens: the current one while its directory exists,
// else the first listed library whose directory exists (strFehlt then names
// the directory that went); empty when there is none.
struct typDbSuche {
    std::string strDb;
    std::string strFehlt;
};
typDbSuche fctVorhandeneDbSuchen(const ProgrammZustand& z);
// The directory of the library handed over (a database file or its
// directory; "TestDb" names none), taken: the handed-over path is cleared.
std::string fctUebergebeneBibliothek(ProgrammZustand& z);

// --- Older libraries ------------------------------------------------------------------

// The library's block table: "tblBlockInfoInventor" when that table holds
// the Blocks (tblBlockInfo is missing or empty), else "tblBlockInfo".
std::string fctBlockTabelle(db::Connection& con);

// Gives a library made by an older version what this one reads: a missing
// tblMarkierteBloecke (subMk_TblMarkierteBloecke) or tblVariationBloecke, and
// every column of the catalogue's tables that it lacks. Answers the number of
// tables and columns added, -1 when the upgrade failed.
long fctDatenbankAktualisieren(ProgrammZustand& z, const db::StorageOpener& oeffner,
                               const std::string& strDb);

// A SlideLib entry relative to the library base directory (strBasis, with
// its trailing backslash): from the Folder's own directory on when the path
// runs through it, else without the base; as it stands when it begins with
// the Folder code already, or when neither is found in it.
std::string fctSlideLibRelativ(const std::string& strEintrag, const std::string& strOrdnerNr,
                               const std::string& strBasis);
// Rewrites every SlideLib entry of tblBlockInfo that is not relative yet
// (see above), telling the user first when there is any. Answers the number
// of entries changed, -1 on an error.
long fctPfadEintragAendern(ProgrammZustand& z, db::Connection& con, const std::string& strBasis);

// An older version's catalogue in the directory: a database file other than
// dbTessara.mdb that holds tblOrdner and a block table; empty when none.
std::string fctAlteDatenbankSuchen(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                   const std::string& strVerzeichnis);
// A new catalogue at strNeu (Mk_Datenbank) that holds the older database's
// rows in place of the default ones, keys kept: every table, every column
// (columns the catalogue lacks are added to it, those the older one lacked
// stay empty), tables of its own copied as they are. The older file is only
// read. On failure the new file is removed again.
bool fctAlteDatenbankImportieren(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                 const std::string& strAlt, const std::string& strNeu);

// Offers the older version's database found in a directory without a
// catalogue (fctAlteDatenbankSuchen) for import into its dbTessara.mdb.
enum class ImportAngebot { KeineDa, Abgelehnt, Importiert, Fehlgeschlagen };
ImportAngebot fctAlteDatenbankAnbieten(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                       const std::string& strVerzeichnis, std::string& strAlt);

}  // namespace tessara
