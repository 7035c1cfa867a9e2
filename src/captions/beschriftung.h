#pragma once
// The caption and message files: base name, "Frm_", "Msgbox_" or
// "Tooltip_", the language and ".txt", in the application directory; INI
// text (Windows-1252, CR LF) read by the sections "Allg", "Gruppe" and
// "Speziell".
//
// Captions and tool tips of control C of window F are looked up in this
// order, the first key present wins (a key present with an empty value is an
// empty caption, not a missing one):
//   1. "Speziell", "F.C"      one window's own text; "F" alone is its title
//   2. "Gruppe",   "C" without its array index ("chkMarkieren_17" ->
//                             "chkMarkieren"), list items as "C_0", "C_1" ...
//   3. "Allg",     "C"        texts every window shares (cmbOk, ProgName ...)
// For a member of a control array, "F.C" is tried with and without the index
// in section 1, and "C" with and without it in section 3.
//
// Values are read whole: these files are read with their own reader, without
// the 120-character cut of the Settings file, so a message is one line of the
// file however long. Each file is read once and again only when it changes
// on disk.
#include <optional>
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

// One value of a caption file, or nothing when the section or key is missing
// (or the file is).
std::optional<std::string> fctBeschriftungWert(ProgrammZustand& z, BeschriftungsArt art,
                                               const std::string& strSektion,
                                               const std::string& strSchluessel);

// The control name without its array index: "chkMarkieren_17" ->
// "chkMarkieren"; a name without a trailing "_" and digits stays as it is.
std::string fctOhneIndex(const std::string& strSteuerelement);

// Caption (Frm) or tool tip (Tooltip) of a control in the order above;
// nothing when no section holds it. intEintrag >= 0 asks for list item
// "C_<intEintrag>" of the control instead. An empty control name asks for
// the window's title (key "F" of "Speziell").
std::optional<std::string> fctBeschriftungSuchen(ProgrammZustand& z, BeschriftungsArt art,
                                                 const std::string& strFormular,
                                                 const std::string& strSteuerelement,
                                                 int intEintrag = -1);

// The caption of a control for showing: a missing one shows its key
// visibly ("F.C", "F" for a title) and writes one record to the error log,
// once per key and log file.
std::string fctSteuerelementText(ProgrammZustand& z, const std::string& strFormular,
                                 const std::string& strSteuerelement);

// Writes "<was> fehlt: <schluessel> (<datei>)" to the error log, log only,
// the first time it is asked for this key, file and log file; true then.
bool fctFehlendeBeschriftungMelden(ProgrammZustand& z, BeschriftungsArt art,
                                   const std::string& strSchluessel);

}  // namespace tessara
