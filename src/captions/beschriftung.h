#pragma once
// The caption and message files: base name, "Frm_", "Msgbox_" or
// "Tooltip_", the language and ".txt", in the application directory; INI
// text read by the sections "Allg", "Gruppe" and "Speziell".
#include <string>

#include "startup/programm_zustand.h"

namespace tessara {

enum class BeschriftungsArt { Frm, Msgbox, Tooltip };

std::string fctBeschriftungsDatei(const ProgrammZustand& z, BeschriftungsArt art);

// Whether the caption file of the current language is there; start-up ends
// when it is not.
bool fctBeschriftungsFileZuordnenIni(ProgrammZustand& z);

// A caption of section "Allg" (or the given section) of the "Frm_" file;
// empty when missing.
std::string fctBeschriftung(ProgrammZustand& z, const std::string& strSchluessel,
                            const std::string& strSektion = "Allg");

}  // namespace tessara
