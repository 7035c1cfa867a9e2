#include "cad/cad_einstellungen.h"

namespace tessara {

typCadEinstellungen fctCadEinstellungenLesen(const IniLeser& iniGetValue) {
    typCadEinstellungen e;
    if (!iniGetValue) return e;
    const std::string s = "AllgemeineDaten";
    e.sReplaceBackslash = iniGetValue(s, "sReplaceBackslash");
    e.sOhneLayersteuerung = iniGetValue(s, "sOhneLayersteuerung");
    e.NewInsertRoutine = iniGetValue(s, "NewInsertRoutine");
    e.OrthoNichtDeaktivieren = iniGetValue(s, "OrthoNichtDeaktivieren");
    return e;
}

}  // namespace tessara
