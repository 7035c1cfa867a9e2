#pragma once
// The names of Views and Variants: the rule the name dialogs apply
// (frmBlocknameEingeben, frmBlocknameAendern), and renaming a View.
#include <string>

#include "db/connection.h"
#include "library/navigation_model.h"
#include "startup/programm_zustand.h"

namespace tessara {

// The longest name a View or a Variant may have (BlkName<v> is Text(32)).
inline constexpr std::size_t kBlocknameLaenge = 32;

// The message that refuses the name, 0 when it is good: over 32 characters
// 304; for a Variant's name also empty 136, and a name that already stands
// as BlockName in tblVariationBloecke 57 (LIKE, so without regard to case).
long fctBlocknamePruefen(ProgrammZustand& z, db::Connection& con, const std::string& strName,
                         bool booVariante);

// Whether the Settings file forbids renaming (key "bytBlockNameNoEdit" of
// "AllgemeineDaten" not zero).
bool fctBlocknameGesperrt(ProgrammZustand& z);

// fctBlockNamAender: BlkName<ansicht> of the Block becomes strName. Refused
// with a message when renaming is forbidden, the name breaks the rule, or
// the View does not exist (Views 1 .. 4 exist by their name).
bool fctBlockNamAender(ProgrammZustand& z, NavigationsModell& m, const std::string& strBlockNr,
                       int ansicht, const std::string& strName);

}  // namespace tessara
