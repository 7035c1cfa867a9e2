#pragma once
// Folders: creating, renaming, deleting and reordering the rows of tblOrdner
// through the navigation model's Folder record set, and the sort order in
// which the Folders are listed.
//
// Every question and message goes through the message family (and so through
// the Benutzer); an operation answers false when it was refused, declined or
// failed, and then nothing of it is written. After a change the model's
// Folder array is read again; the main window redraws from the model.
//
// The checks that decide a write (a free code, a name not yet taken) and the
// write itself run in one unit of work on the file (SchreibEinheit), so that
// two workstations sharing the library never take the same code.
#include <optional>
#include <string>
#include <vector>

#include "captions/meldungs_nummern.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

// --- Messages of this area (Msgbox file, group "Allg") ----------------------
inline constexpr long kMsgLetzterOrdner = 54;
inline constexpr long kMsgOrdnerNameFehlt1 = 267, kMsgOrdnerNameFehlt2 = 268;
inline constexpr long kMsgOrdnerNameVergeben = 269, kMsgAndererName = 270;
inline constexpr long kMsgOrdnerMitNamen = 271;
inline constexpr long kMsgOrdnerMitBloecken = 272, kMsgOrdnerLoeschen = 273;
inline constexpr long kMsgSortiert1 = 274, kMsgSortiert2 = 275, kMsgSortiert3 = 276,
                      kMsgSortiert4 = 277;
inline constexpr long kMsgZeichenUngueltig = 420;
inline constexpr long kMsgNameZuLang = 421;
inline constexpr long kMsgKeinCodeFrei = 423;
inline constexpr long kMsgVerzeichnisUmbenennen = 424;
inline constexpr long kMsgOrdnerVerschwunden = 425;

// The one message of renaming that is not in the caption files.
inline constexpr const char* kOrdnerInternerFehler =
    "Durch einen internen Fehler kann der Ordner nicht umbenannt werden";

// The longest Folder or Page name (OrdnerName and SeitenName are Text(100)).
inline constexpr std::size_t kNameLaenge = 100;

// Names are compared with LIKE and composed into criteria as typed: a quote
// or "[" breaks the statement, "%", "*", "?" and "#" make the test for a
// taken name match other names. Such a name is refused (message 420), as is
// one longer than kNameLaenge (421). Blanks around a name are dropped first.
// Answers the name to use, or nothing after the message.
std::optional<std::string> fctNamePruefen(ProgrammZustand& z, const std::string& strName);

// --- The sort order ------------------------------------------------------------
// The Settings file value "nOrdnerSortieren": 1 lists the Folders by name,
// anything else by their sort number NrTblOrdnen.
bool fctOrdnerSortierenLesen(ProgrammZustand& z);
void subOrdnerSortierenSpeichern(ProgrammZustand& z, bool booNachName);

// Adds the sort number NrTblOrdnen ("SHORT") to tblOrdner of a database made
// by an older version, each Folder starting from its key, so the order stays
// as it was; requeries rsOrdner. True when the column is there afterwards.
bool fctNrTblOrdnenAnlegen(ProgrammZustand& z, NavigationsModell& m);

// Opens rsOrdner again in the order of the sort setting: by OrdnerName, else
// by NrTblOrdnen (unsorted while the column is missing).
bool fctOrdnerReihenfolgeLesen(ProgrammZustand& z, NavigationsModell& m, bool booNachName);

// The rows of rsOrdner in its order, as the Folder window lists them.
struct typOrdnerZeile {
    long Nr = 0;
    std::string OrdnerNr;
    std::string OrdnerName;
    std::string OrdnerRechte;
};
std::vector<typOrdnerZeile> fctOrdnerZeilen(ProgrammZustand& z, NavigationsModell& m);

// --- The Folder window's operations ----------------------------------------------
// a new Folder named strName with the first free code at or after the
// highest key (codes below it are never given again). strCode receives the
// code taken.
bool fctOrdnerNeu(ProgrammZustand& z, NavigationsModell& m, const std::string& strName,
                  std::string* strCode = nullptr);
// renames the Folder named strAlt; its code and directory stay.
bool fctOrdnerUmbenennen(ProgrammZustand& z, NavigationsModell& m, const std::string& strAlt,
                         const std::string& strNeu);
// deletes the row of the Folder with key lngNr after asking. Its Block
// records and Pages stay; a Folder holding Blocks has its directory renamed
// to code & "geloescht". The last Folder is never deleted.
bool fctOrdnerLoeschen(ProgrammZustand& z, NavigationsModell& m, long lngNr);
// moves the Folder at row lngZeile (0-based, rsOrdner's order) one up
// (intRichtung 0) or down (1) by swapping sort numbers; lngNeueZeile
// receives its row afterwards.
bool fctOrdnerVerschieben(ProgrammZustand& z, NavigationsModell& m, long lngZeile, int intRichtung,
                          long* lngNeueZeile = nullptr);
// Swaps the value of strFeld between the record at lngPosition (1-based) and
// the next (intRichtung 1) or previous (0) one; false when there is none.
bool fctWertVersetzen(ProgrammZustand& z, int intRichtung, db::Recordset& rs, long lngPosition,
                      const std::string& strFeld);

// --- Used without a dialog ---------------------------------------------------------
// Reads the Folders again (in the sort order unless booReihenfolgeBehalten)
// and makes the Folder strName current (the current one when empty), its
// Pages and Blocks following.
bool fctCboOrdnerNeuAnzeigen(ProgrammZustand& z, NavigationsModell& m, const std::string& strName,
                             bool booReihenfolgeBehalten = false);

}  // namespace tessara
