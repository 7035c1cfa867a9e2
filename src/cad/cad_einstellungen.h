#pragma once
// The keys of section "AllgemeineDaten" that steer the CAD bridge, read
// through the Settings file's string reader (IniGetValue), and the user's
// insertion options as the "\Setup" registry values hold them.
#include <functional>
#include <string>

#include "cad/block_daten.h"
#include "startup/programm_zustand.h"
#include "startup/registry_werte.h"

namespace tessara {

// Reads a value: section, key -> text, empty when missing.
using IniLeser =
    std::function<std::string(const std::string& sektion, const std::string& schluessel)>;

typCadEinstellungen fctCadEinstellungenLesen(const IniLeser& iniGetValue);
// The same from the program's Settings file (z.strIniDatei).
typCadEinstellungen fctCadEinstellungenLesen(ProgrammZustand& z);

// The insertion check boxes start from the user's stored options (the break
// box from "break the line at the block"); the scale values, XRef, layer-0,
// the Variant and break questions, the scale check, the parts list and the
// AutoLISP hand-over are taken as they stand.
typEinfuegeOptionen fctEinfuegeOptionenAusSetup(const typSetupWerte& w);

}  // namespace tessara
