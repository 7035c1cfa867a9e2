#pragma once
// The blocks inserted last from a library, newest first, kept in the
// library's own "dbTessara.ini" (section "Zuletzt", keys "Block0" ..
// "Block19"), so that every workplace using the library sees its own list
// only when the library lies on its own disk, and a shared library keeps a
// shared list.
#include <map>
#include <string>
#include <vector>

#include "db/connection.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr const char* kZuletztSektion = "Zuletzt";
inline constexpr std::size_t kZuletztAnzahl = 20;

// The list of the library directory (with or without trailing "\").
std::vector<std::string> fctZuletztLesen(ProgrammZustand& z, const std::string& strDbVerzeichnis);

// The list after inserting `neu` (in the order inserted): each one moves to
// the front, none twice, at most 20.
std::vector<std::string> fctZuletztErgaenzen(std::vector<std::string> liste,
                                             const std::vector<std::string>& neu);

// Writes the whole section at once; false when the file cannot be written.
bool fctZuletztSpeichern(ProgrammZustand& z, const std::string& strDbVerzeichnis,
                         const std::vector<std::string>& liste);

// Slide library and name (M0) of the listed blocks, read in one statement;
// a block the library no longer holds is missing from the answer. Throws
// the database's error (the caller runs it under its handler).
struct typZuletztBlock {
    std::string SlideLib;
    std::string M0;
};
std::map<std::string, typZuletztBlock> fctZuletztBloeckeLesen(
    db::Connection& con, const std::vector<std::string>& liste,
    const std::string& strTabelle = "tblBlockInfo");

}  // namespace tessara
