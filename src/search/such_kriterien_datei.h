#pragma once
// The criteria file (".str"): plain Windows-1252 text, one value a line, 21
// lines: the time of saving, then text and operator of each of the ten
// attribute fields in turn. The block-name field and the check boxes are not
// stored. A file that is short, empty, binary or overlong leaves the fields
// it does not fill empty; nothing here throws.
#include <string>
#include <string_view>

#include "search/datenbank_suche.h"
#include "startup/benutzer.h"
#include "startup/programm_zustand.h"

namespace tessara {

inline constexpr const char* kKriterienTitelSpeichern = "Datei speichern";
inline constexpr const char* kKriterienTitelLaden = "Datei laden";
inline constexpr const char* kKriterienFilter = "Str-Datei (*.str)|*.str";
inline constexpr const char* kKriterienDateiname = "DatenbankSuche1.str";
inline constexpr const char* kKriterienEndung = "str";

// The file's bytes (Windows-1252, CR LF) for the criteria, saved at strZeit.
std::string fctKriterienDateiText(const typSuchKriterien& k, const std::string& strZeit);

// Sets the ten texts and operators from a file's bytes; the block name and
// the check boxes stay as they are. Reads at most 21 lines. An operator
// that is not one of the seven leaves its list without a choice.
void subKriterienAusDateiText(std::string_view bytes, typSuchKriterien& k);

// Appends ".str" to a chosen name without an extension.
std::string fctMitStandardEndung(const std::string& strDatei);

// combutDatei_Click: asks for the file (title "Datei speichern") and writes
// it; false when cancelled or when the file cannot be written (then logged).
bool fctKriterienSpeichern(ProgrammZustand& z, Benutzer& b, const typSuchKriterien& k);
// cmbLaden: asks for the file (title "Datei laden") and reads it into k;
// false when cancelled or unreadable (k unchanged then).
bool fctKriterienLaden(ProgrammZustand& z, Benutzer& b, typSuchKriterien& k);

}  // namespace tessara
