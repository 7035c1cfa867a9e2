#include "cad/cad_einstellungen.h"

#include "startup/einstellungen.h"

namespace tessara {

namespace {

std::uint8_t schalter(std::int32_t wert) { return wert == 1 ? 1 : 0; }

}  // namespace

typCadEinstellungen fctCadEinstellungenLesen(const IniLeser& iniGetValue) {
    typCadEinstellungen e;
    if (!iniGetValue) return e;
    const std::string s = kAllgemeineDaten;
    e.sReplaceBackslash = iniGetValue(s, "sReplaceBackslash");
    e.sOhneLayersteuerung = iniGetValue(s, "sOhneLayersteuerung");
    e.NewInsertRoutine = iniGetValue(s, "NewInsertRoutine");
    e.OrthoNichtDeaktivieren = iniGetValue(s, "OrthoNichtDeaktivieren");
    return e;
}

typCadEinstellungen fctCadEinstellungenLesen(ProgrammZustand& z) {
    return fctCadEinstellungenLesen(
        [&z](const std::string& sektion, const std::string& schluessel) {
            return IniGetValue(z, z.strIniDatei, sektion, schluessel);
        });
}

typEinfuegeOptionen fctEinfuegeOptionenAusSetup(const typSetupWerte& w) {
    typEinfuegeOptionen o;
    o.checkBlock = schalter(w.longBlockAusBibliothek);
    o.checkXFrage = schalter(w.longAbfrageXFaktor);
    o.checkYFrage = schalter(w.longAbfrageYFaktor);
    o.checkZFrage = schalter(w.longAbfrageZFaktor);
    o.checkWinkel = schalter(w.longAbfrageEinfuegewinkel);
    o.checkAttribute = schalter(w.longAbfrageAttributeBeimEinfuegen);
    o.checkUrsprung = schalter(w.longUrsprungBeimEinfuegen);
    o.checkReihe = schalter(w.longReihe);
    o.checkMehr = schalter(w.longMehrfacheinfuegen);
    o.checkBruch = schalter(w.longBruchOption);
    o.strMassstabX = w.strMassstabX;
    o.strMassstabY = w.strMassstabY;
    o.strMassstabZ = w.strMassstabZ;
    o.longEinfuegenLayer0 = w.longEinfuegenLayer0;
    o.longXRef = w.longXRef;
    o.lonLispVarUebergeben = w.lonLispVarUebergeben;
    o.longVariantenfrage = w.longVariantenfrage;
    o.longBruchFrage = w.longBruchFrage;
    o.longMassstabskontrolle = w.longMassstabskontrolle;
    o.longStuecklisteEinfuegen = w.longStuecklisteEinfuegen;
    return o;
}

}  // namespace tessara
