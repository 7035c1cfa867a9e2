#pragma once
// The program's menu in full AutoCAD: a menu file with a pull-down "Tessara"
// and its AutoLISP file, whose commands start this program through
// startapp, written at every start (the program directory may have moved)
// and loaded into the connected host. AutoCAD LT has no menu groups and no
// AutoLISP: nothing is written for it.
#include <string>

#include "cad/cad_verbindung.h"
#include "startup/programm_zustand.h"

namespace tessara {

// Message numbers of the menu's three captions: the pull-down, the item
// that starts the program and the one that inserts the last block again.
inline constexpr int kMsgMenueTessara = 561, kMsgMenueStarten = 562, kMsgMenueLetzterBlock = 563;

struct typMenueDateien {
    std::string strMnu, strMnl;
};
// Directory & "\tessara.mnu" and "\tessara.mnl"; an Inventor library's
// program ("tblBlockInfoInventor") writes "\itessara.mnu" and "\itessara.mnl"
// so that both menus can stand beside each other.
typMenueDateien fctMenueDateiNamen(const ProgrammZustand& z, const std::string& strVerzeichnis);

// The texts of the two files (lines joined with CR LF, UTF-8 here; written
// as Windows-1252). strExe is the program's full path; the captions come
// from the message files.
std::string fctMnuText(const ProgrammZustand& z, const CadVerbindung& v);
std::string fctMnlText(const ProgrammZustand& z, const std::string& strExe);

// The AutoLISP expression that loads a file, its path's "\" doubled.
std::string fctLispLaden(const std::string& strDatei);

// Writes both files into the program directory (else, when that cannot be
// written, into the temporary directory) and loads them into the host:
// MenuGroups.Load with the menu file, then "(load ...)" on the command line.
// False, having changed nothing in the host, for AutoCAD LT, without an
// automation connection, or when the files cannot be written; a host that
// refuses the menu (a group of that name already loaded) is logged only.
bool fctMenueDateienLaden(ProgrammZustand& z, CadVerbindung& v);

}  // namespace tessara
