#pragma once
// What belongs to one Block record: its row, its Folder, its Variants, and
// the files named after its block number. The Block operations read it
// first, then decide what to move, rename or delete.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "db/connection.h"
#include "startup/programm_zustand.h"

namespace tessara {

// A row of tblVariationBloecke.
struct typVariantenZeile {
    long Nr = 0;
    std::string BlockName;
    std::string BlockDateiName;
};

struct typBlockAkte {
    long Nr = 0;  // tblBlockInfo.Nr
    std::string Block;
    long OrdnerID = 0;
    std::string OrdnerNr;  // the Folder's code, without blanks
    std::string SlideLib;
    std::array<std::string, 5> BlkName;
    std::vector<typVariantenZeile> varianten;  // by BlockID, in key order
};

// The record of the block number with its Folder's code and its Variants;
// nothing when there is no such record. Throws on a database error (the
// callers run it under their own guard). What decides a write is read with
// fctBlockAkteFrisch: in a unit of its own, so that it is the file as it is
// now, whatever another workstation wrote.
// lngNr, when known (the slot's record), lets the primary key find the row:
// Block has no index, and a search by it reads the whole table, on every
// click of a slot. A stale lngNr costs only the search by Block.
std::optional<typBlockAkte> fctBlockAkteLesen(ProgrammZustand& z, db::Connection& con,
                                              const std::string& strBlockNr, long lngNr = 0);
std::optional<typBlockAkte> fctBlockAkteFrisch(ProgrammZustand& z, db::Connection& con,
                                               const std::string& strBlockNr, long lngNr = 0);
// Whether a Block record with the number exists. Throws as above.
bool fctBlockVorhanden(ProgrammZustand& z, db::Connection& con, const std::string& strBlockNr);

// The names a Block's files may have, relative to the library base
// directory, in the order they move: per View 0 .. 4 its slide library and
// single slide, then the drawings of Views 0 .. 4, then the drawings of each
// Variant (Views 0 .. 4), last the Variant record file. Two Blocks with the
// same number of Variants give lists of the same shape, so that the lists of
// the old and the new place pair up file by file.
std::vector<std::string> fctBlockDateien(const std::string& ordnerNr, const std::string& blockNr,
                                         const std::vector<std::string>& variantenDateien);
// The files of one View: its slide library, its single slide, its drawing.
std::vector<std::string> fctAnsichtDateien(const std::string& ordnerNr, const std::string& blockNr,
                                           int ansicht);

// A fresh, empty directory in the temporary directory, where files wait
// between leaving the library and the deletion of their rows; a take-back
// moves them home from there. Empty when none could be made.
std::string fctPapierkorbAnlegen(ProgrammZustand& z);
// Deletes it with what it holds; a failure is only logged, the files are
// out of the library by then.
void subPapierkorbLeeren(ProgrammZustand& z, const std::string& strPapierkorb);

}  // namespace tessara
