#pragma once
// The keys of section "AllgemeineDaten" that steer the CAD bridge, read
// through the Settings file's string reader (IniGetValue).
#include <functional>
#include <string>

#include "cad/block_daten.h"

namespace tessara {

// Reads a value: section, key -> text, empty when missing.
using IniLeser =
    std::function<std::string(const std::string& sektion, const std::string& schluessel)>;

typCadEinstellungen fctCadEinstellungenLesen(const IniLeser& iniGetValue);

}  // namespace tessara
