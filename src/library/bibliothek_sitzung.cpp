#include "library/bibliothek_sitzung.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "captions/meldungen.h"
#include "jet/format/error.h"
#include "library/bibliotheken.h"
#include "library/schema.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "startup/schritt_ablauf.h"

namespace tessara {

BibliothekSitzung::BibliothekSitzung(ProgrammZustand& z, db::StorageOpener oeffner)
    : z_(z), modell_(z, std::move(oeffner)) {
    modell_.setSetupWerte(&setup_);
}

void BibliothekSitzung::subPositionSpeichern() {
    const auto* o = modell_.aktuellerOrdner();
    if (!modell_.offen() || !o || strDbVerzeichnis_.empty()) return;
    typDbPosition pos;
    pos.strAktuelleOrdnerNr = fctOhneBlanks(o->OrdnerNr);
    pos.s1 = static_cast<std::int16_t>(modell_.intSeite());
    pos.Pos = modell_.intPosition();
    subDbPositionSpeichern(z_, strDbVerzeichnis_, pos);
    setup_.strAktuelleOrdnerNr = pos.strAktuelleOrdnerNr;
    setup_.strAktuellerOrdnerName = o->OrdnerName;
    setup_.longAnzahlDerBilder = modell_.longAnzahlDerBilder();
}

void BibliothekSitzung::subSchliessen() {
    subPositionSpeichern();
    modell_.subSchliessen();
    strDbVerzeichnis_.clear();
    booSchreibschutz_ = false;
}

namespace {
// A directory whose test file cannot be made, or a database file marked read-only.
bool dateiSchreibgeschuetzt(ProgrammZustand& z, const std::string& strDb) {
    std::error_code ec;
    const auto rechte = std::filesystem::status(fctNativerPfad(strDb), ec).permissions();
    const bool dateiNurLesen =
        !ec && (rechte & std::filesystem::perms::owner_write) == std::filesystem::perms::none;
    return dateiNurLesen || fctReadOnlyMitVerzeichnis(z, fctVerzeichnisVon(strDb));
}
}  // namespace

typOeffnenErgebnis BibliothekSitzung::fctOeffnen(const std::string& strDb) {
    Prozedur p(z_, "ConnectionUndRecordsetOeffnen", true);
    subSchliessen();
    const std::string dir = fctVerzeichnisVon(strDb);
    p.step("Verzeichnis prüfen");
    if (!fctVerzeichnisExistiert(dir)) return {kMsgVerzeichnisFehlt, dir, 0};
    if (!fctDateiExistiert(strDb)) {
        p.step("Db wird neu angelegt");
        if (fctReadOnlyMitVerzeichnis(z_, dir) ||
            !Mk_Datenbank(z_, modell_.datenbank().oeffner, strDb))
            return {kMsgBibliothekNichtOeffnen, strDb, 0};
    }
    typOeffnenErgebnis r = verbinden(strDb);
    if (r.ok()) ordnerAktualisieren();
    return r;
}

typOeffnenErgebnis BibliothekSitzung::verbinden(const std::string& strDb) {
    Prozedur p(z_, "ConnectionUndRecordsetOeffnen", true);
    const std::string dir = fctVerzeichnisVon(strDb);
    const bool geschuetzt = dateiSchreibgeschuetzt(z_, strDb);
    if (!geschuetzt) {
        p.step("Tabellen und Spalten ergänzen");
        fctDatenbankAktualisieren(z_, modell_.datenbank().oeffner, strDb);
    }
    p.step("Datenbank öffnen");
    if (!modell_.fctDatenbankOeffnen(strDb))
        return {kMsgBibliothekNichtOeffnen, strDb,
                modell_.lngServerMeldung()                      ? modell_.lngServerMeldung()
                : modell_.lngFehlerNr() == jet::errnum::kLocked ? kMsgDatenbankGesperrt
                                                                : kMsgDateiBeschaedigt};
    strDbVerzeichnis_ = dir;
    z_.strAktuelleDb = strDb;
    booSchreibschutz_ = geschuetzt;
    p.step("Blocktabelle");
    p.geschuetztNurLog([&] { z_.strTblBlockInfo = fctBlockTabelle(modell_.datenbank().con); });
    if (!geschuetzt && z_.strTblBlockInfo == "tblBlockInfo") {
        p.step("fctPfadEintragAendern");
        fctPfadEintragAendern(z_, modell_.datenbank().con, modell_.strBasisVerzeichnis());
    }
    return {};
}

void BibliothekSitzung::ordnerAktualisieren() {
    Prozedur p(z_, "Ordner aktualisieren", true);
    modell_.setAnzahlDerBilder(setup_.longAnzahlDerBilder);
    modell_.OrdnerInArrayEinlesen();
    const typDbPosition pos = fctDbPositionLesen(z_, strDbVerzeichnis_);
    if (pos.strAktuelleOrdnerNr.empty() ||
        !modell_.fctOrdnerWaehlen(pos.strAktuelleOrdnerNr, std::max<long>(0, pos.s1)))
        modell_.comboxOrdner_Click(0);
    modell_.subPositionSetzen(pos.Pos);
}

typOeffnenErgebnis BibliothekSitzung::fctWechseln(const std::string& strPfad) {
    Prozedur p(z_, "comboxVerzeichnis_Click", true);
    std::string db = strPfad;
    std::string endung = db.size() >= 4 ? db.substr(db.size() - 4) : std::string();
    for (auto& c : endung) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (endung != ".mdb") db = fctDbDatei(fctOhneBackslash(db));
    const std::string dir = fctVerzeichnisVon(db);
    p.step("aryVerzeichnisseDatenbank erweitern");
    if (fctVerzeichnisExistiert(dir)) fctDbListeErweitern(z_, dir);
    p.step("Datenbank wechseln");
    typOeffnenErgebnis r = fctOeffnen(db);
    if (r.ok()) fctEintrag1Speichern(z_, db);
    return r;
}

typOeffnenErgebnis BibliothekSitzung::fctAnhaengen(const std::string& strVerzeichnis,
                                                   const std::function<void()>& inCombo) {
    Prozedur p(z_, "BibliothekAnhaengen", true);
    const std::string dir = fctOhneBackslash(strVerzeichnis);
    if (!fctVerzeichnisExistiert(dir)) return {kMsgVerzeichnisFehlt, dir, 0};
    const std::string db = fctDbDatei(dir);
    if (!fctDateiExistiert(db)) {
        if (fctReadOnlyMitVerzeichnis(z_, dir)) return {kMsgVerzeichnisSchreibgeschuetzt, dir, 0};
        p.step("Datenbank von Tessara7 kann importiert werden");
        std::string alt;
        switch (fctAlteDatenbankAnbieten(z_, modell_.datenbank().oeffner, dir, alt)) {
            case ImportAngebot::KeineDa:
            case ImportAngebot::Abgelehnt:
                return NeueDatenbankErstellen(dir, inCombo);
            case ImportAngebot::Fehlgeschlagen:
                return {kMsgImportFehlgeschlagen, alt, 0};
            case ImportAngebot::Importiert:
                break;
        }
    }
    typOeffnenErgebnis r = fctWechseln(db);
    if (r.ok() && inCombo) inCombo();
    return r;
}

typOeffnenErgebnis BibliothekSitzung::NeueDatenbankErstellen(const std::string& strVerzeichnis,
                                                             const std::function<void()>& inCombo) {
    const std::string dir = fctOhneBackslash(strVerzeichnis);
    const std::string db = fctDbDatei(dir);
    const std::string vorher = z_.strAktuelleDb;
    bool neuInListe = false;
    typOeffnenErgebnis r{kMsgBibliothekNichtOeffnen, db, 0};
    SchrittAblauf a(
        "NeueDatenbankErstellen",
        {"aryVerzeichnisseDatenbank erweitern", "Datenbank in die Registrierdatenbank abspeichern",
         "Mk_Datenbank ", "alte connections und recordset schließen", "lisBlockBenennung löschen",
         "Imput_Prefix", "ConnectionUndRecordsetOeffnen", "Ordner aktualisieren",
         "Verzeichnis in Combo hinzufügen"});
    a.setzen("aryVerzeichnisseDatenbank erweitern",
             [&] { neuInListe = fctDbListeErweitern(z_, dir); });
    a.setzen("Datenbank in die Registrierdatenbank abspeichern",
             [&] { fctEintrag1Speichern(z_, db); });
    a.setzen("Mk_Datenbank ", [&] {
        if (!Mk_Datenbank(z_, modell_.datenbank().oeffner, db))
            throw std::runtime_error("Mk_Datenbank: " + db);
    });
    a.setzen("alte connections und recordset schließen", [&] { subSchliessen(); });
    a.setzen("lisBlockBenennung löschen", [&] { modell_.subSchliessen(); });
    a.setzen("Imput_Prefix", [&] {
        if (!modell_.fctCodeTabelleLesen(fctCodeTabelleDatei(z_.strAppPfad)))
            throw std::runtime_error("Codetabelle: " + fctCodeTabelleDatei(z_.strAppPfad));
    });
    a.setzen(
        "ConnectionUndRecordsetOeffnen", [&] { r = verbinden(db); },
        [&] { return fctDateiExistiert(db); });
    a.setzen(
        "Ordner aktualisieren", [&] { ordnerAktualisieren(); }, [&] { return r.ok(); });
    a.setzen(
        "Verzeichnis in Combo hinzufügen", [&] { inCombo(); },
        [&] { return r.ok() && static_cast<bool>(inCombo); });
    a.ausfuehren(z_);
    if (r.ok()) return r;
    // Nothing half made stays behind: the list and "Eintrag1" as they were.
    if (neuInListe) fctDbListeEntfernen(z_, dir);
    if (!vorher.empty() && vorher != db) {
        fctEintrag1Speichern(z_, vorher);
        if (!modell_.offen()) fctOeffnen(vorher);
    }
    return r;
}

typOeffnenErgebnis BibliothekSitzung::fctAbhaengen(const std::string& strVerzeichnis) {
    Prozedur p(z_, "BibliothekAbhaengen", true);
    const std::string dir = fctOhneBackslash(strVerzeichnis);
    const int i = fctDbListenIndex(z_, dir);
    if (i < 0) return {kMsgNichtInListe, dir, 0};
    if (datenbankListe().size() < 2) return {kMsgEinzigeBibliothek, dir, 0};
    if (!fctMsgbox(z_, MsgboxArt::Frage, {MsgboxZeile(kMsgBibliothekAbhaengen), MsgboxZeile(dir)}))
        return {};
    const bool offen = fctGleichesVerzeichnis(dir, strDbVerzeichnis_);
    if (offen) subSchliessen();
    fctDbListeEntfernen(z_, dir);
    if (!offen) return {};
    const auto& l = z_.aryDbVerzeichnis;
    const std::string nachfolger =
        l[std::min<std::size_t>(static_cast<std::size_t>(i), l.size() - 1)];
    return fctWechseln(fctDbDatei(nachfolger));
}

std::vector<std::string> BibliothekSitzung::datenbankListe() const {
    std::vector<std::string> liste;
    for (const auto& d : z_.aryDbVerzeichnis)
        if (fctDbEintragGueltig(d)) liste.push_back(d);
    return liste;
}

bool BibliothekSitzung::fctSchreibschutzPruefen() {
    Prozedur p(z_, "fctSperrenCmdBeiSchreibschutz", true);
    booSchreibschutz_ =
        !strDbVerzeichnis_.empty() && dateiSchreibgeschuetzt(z_, modell_.strDatenbank());
    return booSchreibschutz_;
}

namespace {
typAenderung wenn(bool geaendert, typAenderung was) { return geaendert ? was : kNichtsGeaendert; }
}  // namespace

typAenderung BibliothekSitzung::fctVor() { return wenn(modell_.combutVor(), kSeiteGeaendert); }

typAenderung BibliothekSitzung::fctZurueck() {
    return wenn(modell_.combutZurueck(), kSeiteGeaendert);
}

typAenderung BibliothekSitzung::fctZurueckAnfang() {
    return wenn(modell_.combutZurueckAnfang(), kSeiteGeaendert);
}

typAenderung BibliothekSitzung::fctOrdnerWaehlen(int intIndex) {
    return wenn(modell_.comboxOrdner_Click(intIndex), kBoxenGeaendert | kSeiteGeaendert);
}

typAenderung BibliothekSitzung::fctSeiteWaehlen(int intIndex) {
    const auto& liste = modell_.seitenListe();
    if (intIndex < 0 || intIndex >= static_cast<int>(liste.size())) return kNichtsGeaendert;
    return wenn(modell_.GeheZuSeite(liste[intIndex].SeitenNr - 1), kSeiteGeaendert);
}

typAenderung BibliothekSitzung::fctBilderanzahl(long longAnzahlDerBilder) {
    if (!fctBilderanzahlGueltig(longAnzahlDerBilder)) return kNichtsGeaendert;
    setup_.longAnzahlDerBilder = static_cast<std::int32_t>(longAnzahlDerBilder);
    modell_.BilderAnzeigenBeiGeaenderterBilderanzahl(longAnzahlDerBilder);
    return kBoxenGeaendert | kSeiteGeaendert;
}

typAenderung BibliothekSitzung::fctPositionSetzen(int intPosition) {
    if (intPosition != modell_.intPosition()) intAnsicht_ = 0;
    modell_.subPositionSetzen(intPosition);
    return kPositionGeaendert;
}

namespace {
const typSlot* ausgewaehlt(const NavigationsModell& m) {
    const auto& slots = m.seitenSlots();
    const int pos = m.intPosition();
    return pos >= 0 && pos < static_cast<int>(slots.size()) ? &slots[pos] : nullptr;
}
}  // namespace

void BibliothekSitzung::setEinzufuegendeAnsicht(int ansicht) {
    const typSlot* s = ausgewaehlt(modell_);
    intAnsicht_ = s && ansicht >= 0 && ansicht <= 4 ? ansicht : 0;
    strAnsichtBlock_ = s ? s->strBlockNr : std::string();
}

int BibliothekSitzung::intEinzufuegendeAnsicht() const {
    const typSlot* s = ausgewaehlt(modell_);
    return s && s->strBlockNr == strAnsichtBlock_ ? intAnsicht_ : 0;
}

typAenderung BibliothekSitzung::fctMarkieren(int intPosition, bool booMarkiert) {
    if (booSchreibschutz_) return kSeiteGeaendert;  // the box shows the mark as it is
    modell_.fctMarkierungSetzen(intPosition, booMarkiert);
    return kSeiteGeaendert;
}

typAenderung BibliothekSitzung::fctMarkierungenAufheben() {
    if (booSchreibschutz_) return kNichtsGeaendert;
    return wenn(modell_.fctMarkierungenAlleLoeschen(), kSeiteGeaendert);
}

typAenderung BibliothekSitzung::fctOrdnerUndSeitenNeuEinlesen() {
    Prozedur p(z_, "subOrdnerUndSeitenNeuAnzeigen", true);
    if (!modell_.offen()) return kNichtsGeaendert;
    const auto* o = modell_.aktuellerOrdner();
    const std::string nr = o ? o->OrdnerNr : std::string();
    const long seite = modell_.intSeite();
    const int pos = modell_.intPosition();
    modell_.OrdnerInArrayEinlesen();
    // The Folder shown may have gone: the first one takes its place.
    if (nr.empty() || !modell_.fctOrdnerWaehlen(nr, seite)) modell_.comboxOrdner_Click(0);
    modell_.subPositionSetzen(pos);
    return kBoxenGeaendert | kSeiteGeaendert;
}

DoppelklickAktion BibliothekSitzung::fctDoppelklick(int intPosition, bool booAusListe) {
    const long doppelklick = setup_.longDoppelklick;
    if (booSchreibschutz_ && doppelklick == 2) return DoppelklickAktion::Nichts;
    return booAusListe ? modell_.fctListeDoppelklick(intPosition, doppelklick)
                       : modell_.fctDoppelklick(intPosition, doppelklick);
}

int BibliothekSitzung::fctRasterZiel(RasterTaste taste) const {
    const int n = static_cast<int>(modell_.seitenSlots().size());
    const int pos = modell_.intPosition();
    if (n == 0) return pos;
    const int spalten = fctRasterSpalten(modell_.longAnzahlDerBilder());
    switch (taste) {
        case RasterTaste::Links:
            return std::max(0, pos - 1);
        case RasterTaste::Rechts:
            return std::min(n - 1, pos + 1);
        case RasterTaste::Hoch:
            return pos - spalten >= 0 ? pos - spalten : pos;
        case RasterTaste::Runter:
            return pos + spalten < n ? pos + spalten : pos;
        case RasterTaste::Anfang:
            return 0;
        case RasterTaste::Ende:
            return n - 1;
    }
    return pos;
}

}  // namespace tessara
