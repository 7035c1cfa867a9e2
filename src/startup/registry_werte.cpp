#include "startup/registry_werte.h"

#include "platform/environment.h"
#include "platform/platform.h"
#include "platform/registry.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

using platform::Hive;

platform::Registry* registry(ProgrammZustand& z) {
    return z.plattform ? z.plattform->registry : nullptr;
}

}  // namespace

std::string fctDbDatei(const std::string& strVerzeichnis) {
    return fctBackslashAmEndeAnfuegen(strVerzeichnis) + "dbTessara.mdb";
}

std::string fctSetupSchluessel(const ProgrammZustand& z) { return z.strRegRoot + "\\Setup"; }

// The CAD host version text is stored under the name "strACadVersion", the
// name the program gives that text everywhere (typAcadVersionInfo): a value
// named after the text itself ("AutoCAD LT") could not be found again by a
// reader that does not yet know which host it will meet.
const std::vector<typSetupEintrag>& fctSetupEintraege() {
    using W = typSetupWerte;
    static const std::vector<typSetupEintrag> eintraege = {
        {"Eintrag1", &W::Eintrag1},
        {"lonOrdnerSortieren", &W::lonOrdnerSortieren},
        {"longUnbesetzt", &W::longUnbesetzt},
        {"longEinfuegenLayer0", &W::longEinfuegenLayer0},
        {"longBlockAusBibliothek", &W::longBlockAusBibliothek},
        {"longUrsprungBeimEinfuegen", &W::longUrsprungBeimEinfuegen},
        {"longXRef", &W::longXRef},
        {"longAbfrageXFaktor", &W::longAbfrageXFaktor},
        {"longAbfrageYFaktor", &W::longAbfrageYFaktor},
        {"longAbfrageZFaktor", &W::longAbfrageZFaktor},
        {"longAbfrageEinfuegewinkel", &W::longAbfrageEinfuegewinkel},
        {"longAbfrageBlocknameBeimErzeugen", &W::longAbfrageBlocknameBeimErzeugen},
        {"longAbfrageAttributeBeimEinfuegen", &W::longAbfrageAttributeBeimEinfuegen},
        {"longReihe", &W::longReihe},
        {"longMehrfacheinfuegen", &W::longMehrfacheinfuegen},
        {"longMehrfachAktiv", &W::longMehrfachAktiv},
        {"longMehrereEinfuegepkte", &W::longMehrereEinfuegepkte},
        {"longVorschaudiaBeimErzeugen", &W::longVorschaudiaBeimErzeugen},
        {"longMassstabskontrolle", &W::longMassstabskontrolle},
        {"longRechteverwaltung", &W::longRechteverwaltung},
        {"longStuecklisteEinfuegen", &W::longStuecklisteEinfuegen},
        {"longBlockProgrammfrage", &W::longBlockProgrammfrage},
        {"longVariantenfrage", &W::longVariantenfrage},
        {"longFensterpositionSpeichern", &W::longFensterpositionSpeichern},
        {"longBruchFrage", &W::longBruchFrage},
        {"longSlideUeberpruefen", &W::longSlideUeberpruefen},
        {"lonPosSeitenWechsel", &W::lonPosSeitenWechsel},
        {"longBruchOption", &W::longBruchOption},
        {"longDoppelklick", &W::longDoppelklick},
        {"strMassstabX", &W::strMassstabX},
        {"strMassstabY", &W::strMassstabY},
        {"strMassstabZ", &W::strMassstabZ},
        {"longAnzahlDerBilder", &W::longAnzahlDerBilder},
        {"longUeberschreibenDefMenueGlobal", &W::longUeberschreibenDefMenueGlobal},
        {"strAktuellerOrdnerName", &W::strAktuellerOrdnerName},
        {"strACadVersion", &W::strACadVersion},
        {"strVerzeichnisVorgabe", &W::strVerzeichnisVorgabe},
        {"longCurrentX", &W::longCurrentX},
        {"longCurrentY", &W::longCurrentY},
        {"strAktuelleOrdnerNr", &W::strAktuelleOrdnerNr},
        {"longTessaraAnzeigenNachEinfuegen", &W::longTessaraAnzeigenNachEinfuegen},
        {"lonOldView", &W::lonOldView},
        {"lonLispVarUebergeben", &W::lonLispVarUebergeben},
        {"lonFrmHeight", &W::lonFrmHeight},
        {"lonFrmWidth", &W::lonFrmWidth},
    };
    return eintraege;
}

bool SetupInRegistrierdatenbankSpeichern(ProgrammZustand& z, const typSetupWerte& w) {
    Prozedur p(z, "SetupInRegistrierdatenbankSpeichern");
    auto* reg = registry(z);
    if (!reg) return false;
    p.step("Setup-Werte schreiben");
    const std::string schluessel = fctSetupSchluessel(z);
    bool alle = true;
    for (const auto& e : fctSetupEintraege()) {
        const std::string name = e.name;
        if ((name == "longCurrentX" || name == "longCurrentY") && !w.longFensterpositionSpeichern)
            continue;
        bool ok;
        if (const auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&e.feld))
            ok = reg->writeDword(Hive::CurrentUser, schluessel, name,
                                 static_cast<std::uint32_t>(w.**zahl));
        else
            ok = reg->writeString(Hive::CurrentUser, schluessel, name,
                                  w.*std::get<std::string typSetupWerte::*>(e.feld));
        alle = alle && ok;
    }
    if (!alle)
        p.fehler("Die Einstellungen konnten nicht in die Registry geschrieben werden.", 0, true);
    return alle;
}

bool SetupEinstellungenZuweisen(ProgrammZustand& z, typSetupWerte& w) {
    auto* reg = registry(z);
    if (!reg) return false;
    const std::string schluessel = fctSetupSchluessel(z);
    if (!reg->keyExists(Hive::CurrentUser, schluessel)) return false;
    for (const auto& e : fctSetupEintraege()) {
        if (const auto* zahl = std::get_if<std::int32_t typSetupWerte::*>(&e.feld)) {
            if (auto v = reg->readDword(Hive::CurrentUser, schluessel, e.name))
                w.** zahl = static_cast<std::int32_t>(*v);
        } else {
            if (auto v = reg->readString(Hive::CurrentUser, schluessel, e.name))
                w.*std::get<std::string typSetupWerte::*>(e.feld) = *v;
        }
    }
    return true;
}

bool EintraegeInRegistrierdatenbank(ProgrammZustand& z) {
    Prozedur p(z, "EintraegeInRegistrierdatenbank");
    auto* reg = registry(z);
    if (!reg) return false;
    std::vector<std::string> dbs;
    for (const auto& d : z.aryDbVerzeichnis)
        if (!d.empty() && d != "0") dbs.push_back(d);
    if (dbs.empty()) return true;
    const std::string schluessel = "Software\\Tessara\\Version_8";
    bool ok = true;
    if (!reg->keyExists(Hive::LocalMachine, schluessel)) {
        p.step("Schlüssel anlegen");
        const std::string anwendungsdaten =
            z.plattform->environment ? z.plattform->environment->commonAppData() : std::string();
        ok = reg->createKey(Hive::LocalMachine, "SOFTWARE\\Tessara\\Version_8\\Setup") &&
             reg->writeString(Hive::LocalMachine, "SOFTWARE\\Tessara\\Version_8\\Setup",
                              "Anwendungsdaten", anwendungsdaten);
    }
    p.step("Datenbanken eintragen");
    for (std::size_t i = 0; ok && i < dbs.size(); ++i)
        ok = reg->writeString(Hive::LocalMachine, schluessel, "Eintrag" + std::to_string(i + 2),
                              fctDbDatei(dbs[i]));
    if (ok && !z.strAktuelleDb.empty())
        ok = reg->writeString(Hive::LocalMachine, schluessel, "Eintrag1", z.strAktuelleDb);
    if (!ok)
        p.fehler("Die Bibliotheken konnten nicht für alle Benutzer eingetragen werden.", 0, true);
    return ok;
}

void subSetupBeimStart(typSetupWerte& w) { w.longMehrfacheinfuegen = w.longMehrfachAktiv == 1; }

namespace {

// The switches the options window shows as check boxes.
using SchalterFeld = std::int32_t typSetupWerte::*;
constexpr SchalterFeld kSchalter[] = {
    &typSetupWerte::longBlockAusBibliothek,
    &typSetupWerte::longEinfuegenLayer0,
    &typSetupWerte::longUrsprungBeimEinfuegen,
    &typSetupWerte::longXRef,
    &typSetupWerte::longAbfrageXFaktor,
    &typSetupWerte::longAbfrageYFaktor,
    &typSetupWerte::longAbfrageZFaktor,
    &typSetupWerte::longAbfrageEinfuegewinkel,
    &typSetupWerte::longAbfrageAttributeBeimEinfuegen,
    &typSetupWerte::longReihe,
    &typSetupWerte::longMehrfacheinfuegen,
    &typSetupWerte::longMehrfachAktiv,
    &typSetupWerte::longMehrereEinfuegepkte,
    &typSetupWerte::longMassstabskontrolle,
    &typSetupWerte::longBruchFrage,
    &typSetupWerte::longBruchOption,
    &typSetupWerte::longVariantenfrage,
    &typSetupWerte::lonLispVarUebergeben,
    &typSetupWerte::longTessaraAnzeigenNachEinfuegen,
    &typSetupWerte::lonPosSeitenWechsel,
    &typSetupWerte::longSlideUeberpruefen,
    &typSetupWerte::longFensterpositionSpeichern,
    &typSetupWerte::lonOrdnerSortieren,
    &typSetupWerte::lonOldView,
    &typSetupWerte::longAbfrageBlocknameBeimErzeugen,
    &typSetupWerte::longVorschaudiaBeimErzeugen,
    &typSetupWerte::longStuecklisteEinfuegen,
    &typSetupWerte::longBlockProgrammfrage,
    &typSetupWerte::longRechteverwaltung,
};

// A scale as the host's command line takes it: optional sign, digits with at
// most one decimal point, not zero. Blanks around it and a decimal comma are
// mended; anything else is no scale (empty answer).
std::string fctMassstabBereinigt(const std::string& s) {
    const std::size_t a = s.find_first_not_of(" \t");
    if (a == std::string::npos) return {};
    std::string t = s.substr(a, s.find_last_not_of(" \t") - a + 1);
    for (char& c : t)
        if (c == ',') c = '.';
    std::size_t i = (t[0] == '+' || t[0] == '-') ? 1 : 0;
    bool ziffer = false, punkt = false, nichtNull = false;
    for (; i < t.size(); ++i) {
        const char c = t[i];
        if (c >= '0' && c <= '9') {
            ziffer = true;
            nichtNull = nichtNull || c != '0';
        } else if (c == '.' && !punkt) {
            punkt = true;
        } else {
            return {};
        }
    }
    return ziffer && nichtNull ? t : std::string();
}

}  // namespace

bool fctSetupWerteKorrigieren(typSetupWerte& w) {
    const typSetupWerte vorgabe;
    bool geaendert = false;
    auto setzen = [&geaendert](auto& feld, const auto& wert) {
        if (feld != wert) {
            feld = wert;
            geaendert = true;
        }
    };
    if (w.longAnzahlDerBilder < 0 || w.longAnzahlDerBilder > 7)
        setzen(w.longAnzahlDerBilder, vorgabe.longAnzahlDerBilder);
    if (w.longDoppelklick < 0 || w.longDoppelklick > 3)
        setzen(w.longDoppelklick, vorgabe.longDoppelklick);
    for (SchalterFeld f : kSchalter)
        if (w.*f != 0 && w.*f != 1) setzen(w.*f, vorgabe.*f);
    for (auto f : {&typSetupWerte::strMassstabX, &typSetupWerte::strMassstabY,
                   &typSetupWerte::strMassstabZ}) {
        const std::string bereinigt = fctMassstabBereinigt(w.*f);
        setzen(w.*f, bereinigt.empty() ? vorgabe.*f : bereinigt);
    }
    if (w.lonFrmHeight < 0) setzen(w.lonFrmHeight, 0);
    if (w.lonFrmWidth < 0) setzen(w.lonFrmWidth, 0);
    return geaendert;
}

bool subFensterGeometrieSpeichern(ProgrammZustand& z, const typFensterGeometrie& g,
                                  bool booPositionSpeichern) {
    auto* reg = registry(z);
    if (!reg) return false;
    const std::string s = fctSetupSchluessel(z);
    bool ok = true;
    if (booPositionSpeichern) {
        ok = reg->writeDword(Hive::CurrentUser, s, "longCurrentX",
                             static_cast<std::uint32_t>(g.longCurrentX)) &&
             ok;
        ok = reg->writeDword(Hive::CurrentUser, s, "longCurrentY",
                             static_cast<std::uint32_t>(g.longCurrentY)) &&
             ok;
    }
    ok = reg->writeDword(Hive::CurrentUser, s, "lonFrmHeight",
                         static_cast<std::uint32_t>(g.lonFrmHeight)) &&
         ok;
    ok = reg->writeDword(Hive::CurrentUser, s, "lonFrmWidth",
                         static_cast<std::uint32_t>(g.lonFrmWidth)) &&
         ok;
    return ok;
}

typFensterGeometrie fctFensterGeometrieLesen(ProgrammZustand& z) {
    typFensterGeometrie g;
    auto* reg = registry(z);
    if (!reg) return g;
    const std::string s = fctSetupSchluessel(z);
    const auto x = reg->readDword(Hive::CurrentUser, s, "longCurrentX");
    const auto y = reg->readDword(Hive::CurrentUser, s, "longCurrentY");
    if (x && y) {
        // Stored as DWORDs; a window left of or above the primary screen
        // has a negative position.
        g.longCurrentX = static_cast<std::int32_t>(*x);
        g.longCurrentY = static_cast<std::int32_t>(*y);
        g.booPosition = true;
    }
    const auto h = reg->readDword(Hive::CurrentUser, s, "lonFrmHeight");
    const auto b = reg->readDword(Hive::CurrentUser, s, "lonFrmWidth");
    if (h && b) {
        g.lonFrmHeight = static_cast<std::int32_t>(*h);
        g.lonFrmWidth = static_cast<std::int32_t>(*b);
        g.booGroesse = true;
    }
    return g;
}

bool subRegistryEintraegeSpeichern(ProgrammZustand& z) {
    auto* reg = registry(z);
    if (!reg) return false;
    bool ok = reg->writeString(Hive::CurrentUser, z.strRegRoot, "Eintrag1", z.strAktuelleDb);
    ok = reg->writeString(Hive::CurrentUser, z.strRegRoot, "strVerzeichnisVorgabe",
                          z.strVerzeichnisVorgabe) &&
         ok;
    return ok;
}

bool fctEintrag1Speichern(ProgrammZustand& z, const std::string& strDb) {
    auto* reg = registry(z);
    return reg && reg->writeString(Hive::CurrentUser, z.strRegRoot, "Eintrag1", strDb);
}

bool EintraegeAusRegistrierdatenbank(ProgrammZustand& z) {
    Prozedur p(z, "EintraegeAusRegistrierdatenbank");
    auto* reg = registry(z);
    p.step("Eintrag1 lesen");
    const std::string eintrag1 =
        reg ? reg->readString(Hive::CurrentUser, z.strRegRoot, "Eintrag1").value_or(std::string())
            : std::string();
    const std::string verzeichnis = fctVerzeichnisVon(eintrag1);
    bool inListe = false;
    if (!verzeichnis.empty()) {
        for (const auto& d : z.aryDbVerzeichnis)
            if (fctDbEintragGueltig(d) && fctGleichesVerzeichnis(d, verzeichnis)) inListe = true;
    }
    if (inListe) {
        z.strAktuelleDb = eintrag1;
    } else {
        p.step("erste Datenbank der Liste");
        z.strAktuelleDb = !z.aryDbVerzeichnis.empty() && fctDbEintragGueltig(z.aryDbVerzeichnis[0])
                              ? fctDbDatei(z.aryDbVerzeichnis[0])
                              : std::string();
    }
    return !z.strAktuelleDb.empty();
}

}  // namespace tessara
