#pragma once
// Definition menus (tblDefMenue): per Folder the names of the ten attribute
// fields M0 .. M9 of its Blocks (Benennung1 .. 10) and their default values
// (Standardwert1 .. 10). A Folder names its menu by NrTblDefMenue; menu 1
// comes with every library and is never deleted. A menu whose flag `global`
// is 1 serves many Folders at once and is changed only when the setting
// longUeberschreibenDefMenueGlobal allows it.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr int kDefMenueZeilen = 10;

inline constexpr long kMsgDefMenue1 = 430;
inline constexpr long kMsgDefMenueBenutzt = 431;
inline constexpr long kMsgDefMenueLoeschen = 432;
inline constexpr long kMsgDefMenueGlobal = 433;
inline constexpr long kMsgDefMenueAenderungen = 434;
inline constexpr long kMsgWertZuLang = 437, kMsgHoechstens = 439;

struct typDefMenue {
    long Nr = 0;
    bool booGlobal = false;
    std::array<std::string, kDefMenueZeilen> Benennung;
    std::array<std::string, kDefMenueZeilen> Standardwert;
    std::vector<std::string> ordner;  // names of the Folders that use it
};

// Every menu, by key, each with the Folders that use it (a Folder without a
// menu uses menu 1).
std::vector<typDefMenue> fctDefMenuesLesen(ProgrammZustand& z, NavigationsModell& m);
// The menu of the Folder with key lngOrdnerNr: its NrTblDefMenue, menu 1 when
// that is Null or names no menu.
std::optional<typDefMenue> fctDefMenueDesOrdners(ProgrammZustand& z, NavigationsModell& m,
                                                 long lngOrdnerNr);
// Writes names and defaults of menu d.Nr. A global menu only with
// booGlobalUeberschreiben (longUeberschreibenDefMenueGlobal = 1); a value
// longer than the column is refused with a message.
bool fctDefMenueSpeichern(ProgrammZustand& z, NavigationsModell& m, const typDefMenue& d,
                          bool booGlobalUeberschreiben);
// A new menu, not global: all lines free, or copied from vorlage. Its key,
// 0 on a failure.
long fctDefMenueNeu(ProgrammZustand& z, NavigationsModell& m, const typDefMenue* vorlage = nullptr);
// Deletes menu lngNr after asking; menu 1 and a menu a Folder still uses
// (named in the message) stay.
bool fctDefMenueLoeschen(ProgrammZustand& z, NavigationsModell& m, long lngNr);
// Gives the current Folder menu lngNr.
bool fctDefMenueZuordnen(ProgrammZustand& z, NavigationsModell& m, long lngNr);

// The caption of attribute field i (M<i>) under the menu: Benennung<i+1>,
// empty for a free line ("*****Frei*****").
std::string fctAttributName(const typDefMenue& d, int i);
// The values a new Block of a Folder starts with: the menu's defaults, free
// lines empty.
std::array<std::string, kDefMenueZeilen> fctNeueBlockAttribute(const typDefMenue& d);

}  // namespace tessara
