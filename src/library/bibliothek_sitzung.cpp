#include "library/bibliothek_sitzung.h"

#include <algorithm>
#include <filesystem>

#include "authoring/dateien_operationen.h"
#include "jet/format/error.h"
#include "library/schema.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

BibliothekSitzung::BibliothekSitzung(ProgrammZustand& z, db::StorageOpener oeffner)
    : z_(z), modell_(z, std::move(oeffner)) {}

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
    p.step("Datenbank öffnen");
    if (!modell_.fctDatenbankOeffnen(strDb))
        return {kMsgBibliothekNichtOeffnen, strDb,
                modell_.lngFehlerNr() == jet::errnum::kLocked ? kMsgDatenbankGesperrt
                                                              : kMsgDateiBeschaedigt};
    strDbVerzeichnis_ = dir;
    z_.strAktuelleDb = strDb;
    fctSchreibschutzPruefen();
    p.step("Ordner aktualisieren");
    modell_.setAnzahlDerBilder(setup_.longAnzahlDerBilder);
    modell_.OrdnerInArrayEinlesen();
    const typDbPosition pos = fctDbPositionLesen(z_, dir);
    if (pos.strAktuelleOrdnerNr.empty() ||
        !modell_.fctOrdnerWaehlen(pos.strAktuelleOrdnerNr, std::max<long>(0, pos.s1)))
        modell_.comboxOrdner_Click(0);
    modell_.subPositionSetzen(pos.Pos);
    return {};
}

typOeffnenErgebnis BibliothekSitzung::fctWechseln(const std::string& strPfad) {
    Prozedur p(z_, "comboxVerzeichnis_Click", true);
    std::string db = strPfad;
    std::string endung = db.size() >= 4 ? db.substr(db.size() - 4) : std::string();
    for (auto& c : endung) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (endung != ".mdb") db = fctDbDatei(fctOhneBackslash(db));
    const std::string dir = fctVerzeichnisVon(db);
    p.step("aryVerzeichnisseDatenbank erweitern");
    auto& liste = z_.aryDbVerzeichnis;
    if (std::find(liste.begin(), liste.end(), dir) == liste.end() && fctVerzeichnisExistiert(dir)) {
        // A list holding only the placeholder of a first start takes the
        // directory in its place.
        if (liste.size() == 1 && !fctDbEintragGueltig(liste[0]))
            liste[0] = dir;
        else
            liste.push_back(dir);
        subSpeichernTessaraIniDatei(z_);
    }
    p.step("Datenbank wechseln");
    typOeffnenErgebnis r = fctOeffnen(db);
    if (r.ok()) fctEintrag1Speichern(z_, db);
    return r;
}

std::vector<std::string> BibliothekSitzung::datenbankListe() const {
    std::vector<std::string> liste;
    for (const auto& d : z_.aryDbVerzeichnis)
        if (fctDbEintragGueltig(d)) liste.push_back(d);
    return liste;
}

bool BibliothekSitzung::fctSchreibschutzPruefen() {
    Prozedur p(z_, "fctSperrenCmdBeiSchreibschutz", true);
    std::error_code ec;
    const auto rechte =
        std::filesystem::status(fctNativerPfad(modell_.strDatenbank()), ec).permissions();
    const bool dateiNurLesen =
        !ec && (rechte & std::filesystem::perms::owner_write) == std::filesystem::perms::none;
    booSchreibschutz_ = !strDbVerzeichnis_.empty() &&
                        (dateiNurLesen || fctReadOnlyMitVerzeichnis(z_, strDbVerzeichnis_));
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
