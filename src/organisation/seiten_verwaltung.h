#pragma once
// Pages of the current Folder: creating, overwriting, renaming and deleting
// rows of tblSeiten through the navigation model's Page record set.
//
// As with Folders, every question goes through the message family, a refused
// or declined operation answers false and writes nothing, and what decides a
// write is read again in the unit that writes (SchreibEinheit); questions are
// asked between two units, never inside one.
#include <string>
#include <vector>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr long kMsgSeiteAngabenFehlen = 280;
inline constexpr long kMsgSeiteNurZiffern = 281;
inline constexpr long kMsgSeiteNrVergeben = 282, kMsgSeiteUeberschreiben = 283;
inline constexpr long kMsgSeiteNameVergeben = 284, kMsgSeiteTrotzdem = 285;
inline constexpr long kMsgSeiteLoeschen = 286;
inline constexpr long kMsgSeiteNrBereich = 422;
inline constexpr long kMsgSeiteVerschwunden = 426;

// Page numbers are two-byte integers from 1 on.
inline constexpr long kHoechsteSeitenNr = 32767;

// a new Page of the current Folder from the texts of frmSeiteNeu. The
// number must be digits only (and 1 .. 32767); a taken number is overwritten
// in place after asking (the Page keeps its key and its Blocks), a taken name
// is accepted after asking.
bool fctSeiteNeu(ProgrammZustand& z, NavigationsModell& m, const std::string& strSeitenNr,
                 const std::string& strSeitenname);
// renames the Page numbered lngSeitenNr; its number stays.
bool fctSeiteUmbenennen(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                        const std::string& strNeu);
// deletes the Page numbered lngSeitenNr after asking; the Folder's only
// Page goes by a DELETE over the Folder's key. Blocks stay.
bool fctSeiteLoeschen(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr);

// the list of frmSeitenverwaltung, in the Page record set's order (by
// name): "number<TAB>name" per row, and the row of the current Page.
struct typSeitenListe {
    std::vector<std::string> zeilen;
    std::vector<long> nummern;
    int intAuswahl = -1;
};
typSeitenListe fctSeitenAnzeigen(ProgrammZustand& z, NavigationsModell& m);

// Appends Page lngSeitenNr named strSeitenname to the current Folder with no
// checks (the caller knows the number is free), for work that makes Pages as
// it fills slots; the model's Page list is read again.
bool fctSeiteAnlegenOhneKontrolle(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                                  const std::string& strSeitenname);
// The name of the intIndex-th Page such work makes: the name itself for the
// first (index 0), name & "-" & index after it.
std::string fctSeitenNameMitIndex(const std::string& strName, int intIndex);

// Reads the current Folder's Pages again into the model (its Page box list).
bool fctSeiteInCboEinlesen(ProgrammZustand& z, NavigationsModell& m);

}  // namespace tessara
