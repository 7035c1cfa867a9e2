#pragma once
// Drawings in and out of a Folder: the drawings of a directory (or single
// drawings, with "bytEinzelEinlesen") read in as new Blocks, and a Folder's
// drawings written out to a directory with a CSV of their attributes.
//
// A drawing read in becomes a Block of its own in the next free slot of the
// Folder (free: no record and no drawing file under that number), new Pages
// made as the slots run past the last one. Each drawing is one step: the
// file is copied first, then its record is written, so a record never points
// at a missing drawing and Cancel stops between two drawings. Until slides
// are made, a slot shows the picture the drawing itself carries.
//
// Written out, a drawing takes its name from the attribute column that
// "sSpalteDateiNameExport" names ("M0", and the key written so, when it is
// missing). A name taken already, in the directory or by an earlier Block,
// gets " (2)", " (3)" …: nothing there is overwritten.
#include <string>
#include <vector>

#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr long kMsgKeineZeichnungen = 541;
inline constexpr long kMsgZeichnungenEingelesen = 542, kMsgZeichnungenGeschrieben = 543;
inline constexpr long kMsgKeinFreierPlatz = 544, kMsgWelcherOrdner = 545;

// The drawings (".dwg", any case) directly in the directory, in name order,
// as program paths.
std::vector<std::string> fctZeichnungenImVerzeichnis(const std::string& strVerzeichnis);

// Reads the drawings into the Folder named strOrdnerName (made when there
// is none) and makes it current. New Pages are named strSeitenname,
// strSeitenname-1 … Answers the number of Blocks made; -1 when nothing could
// start (a message said why).
long fctZeichnungenEinlesen(ProgrammZustand& z, NavigationsModell& m,
                            const std::vector<std::string>& dateien,
                            const std::string& strOrdnerName, const std::string& strSeitenname);

// The import of the window: every drawing of strVerzeichnis, or with
// "bytEinzelEinlesen" = 1 the single drawing the user picks.
long fctVerzeichnisEinlesen(ProgrammZustand& z, NavigationsModell& m,
                            const std::string& strVerzeichnis, const std::string& strOrdnerName);

// Writes the drawings (View 0) of the Folder with code strCode into
// strVerzeichnis, and "<Folder name>.csv" (";"-separated, UTF-8) with a row
// per drawing: file name, block number, Block name and M0 .. M9. Answers the
// number of drawings written; -1 on a failure.
long fctZeichnungenAusgeben(ProgrammZustand& z, NavigationsModell& m, const std::string& strCode,
                            const std::string& strVerzeichnis);

}  // namespace tessara
