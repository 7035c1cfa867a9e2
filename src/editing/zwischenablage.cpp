#include "editing/zwischenablage.h"

#include <algorithm>
#include <exception>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_akte.h"
#include "editing/datei_umzug.h"
#include "editing/varianten_datei.h"
#include "organisation/schreib_einheit.h"
#include "platform/case_fold.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

std::string in(const std::string& s) { return "'" + s + "'"; }

// A message line listing block numbers; a long list is cut short.
std::string liste(const std::vector<std::string>& nummern) {
    std::string s;
    for (std::size_t i = 0; i < nummern.size() && i < 12; ++i) s += (i ? ", " : "") + nummern[i];
    return nummern.size() > 12 ? s + ", …" : s;
}

// The name a Variant's files take on the pasted copy: names the program made
// begin with the block number and take the new one; any other name gets the
// new number in front, so that a copy into the same Folder does not meet the
// original's files.
std::string varianteNeu(const std::string& datei, const std::string& alt, const std::string& neu) {
    if (datei.compare(0, alt.size(), alt) == 0) return neu + datei.substr(alt.size());
    return neu + "_" + datei;
}

std::vector<std::string> variantenDateien(const typBlockAkte& a) {
    std::vector<std::string> v;
    for (const auto& x : a.varianten) v.push_back(x.BlockDateiName);
    return v;
}

// Where a paste writes and what it reads: the target is the open library.
struct Ort {
    ProgrammZustand& z;
    db::Connection& ziel;
    std::string zielBasis;
    db::Connection& quelle;
    std::string quelleBasis;
    long ordnerId;
    std::string ordnerNr;  // without blanks
    // One trash for the whole paste, emptied at its end: the Blocks that
    // went as a delete does ("z\\") and the cut sources ("q\\"), kept apart
    // since two libraries may hold the same file names.
    std::string korb;
};

// A Block that goes as a delete does: its files into the trash (the caller
// empties it once the rows are gone), then its rows.
void dateienInDenKorb(DateiUmzug& umzug, const std::string& basis, const typBlockAkte& a,
                      const std::string& korb) {
    for (const auto& d : fctBlockDateien(a.OrdnerNr, a.Block, variantenDateien(a)))
        if (fctPfadExistiert(basis + d) && !umzug.verschieben(basis + d, korb + d))
            throw std::runtime_error("Datei nicht entfernt: " + d);
}

void zeilenLoeschen(ProgrammZustand& z, db::Connection& con, const typBlockAkte& a) {
    const std::string nr = std::to_string(a.Nr);
    con.execute("DELETE FROM tblVariationBloecke WHERE BlockID = " + nr);
    con.execute("DELETE FROM tblMarkierteBloecke WHERE BlockNr = " + in(a.Block));
    con.execute("DELETE FROM " + z.strTblBlockInfo + " WHERE Nr = " + nr);
}

// The key of the target Folder's record with the block number; 0: none.
long nrImOrdner(Ort& o, const std::string& nr) {
    db::Recordset rs;
    rs.open("SELECT Nr FROM " + o.z.strTblBlockInfo +
                " WHERE OrdnerID = " + std::to_string(o.ordnerId) + " AND Block = " + in(nr),
            o.ziel);
    return rs.eof() ? 0 : static_cast<long>(rs.value("Nr").asInt());
}

// The record under its new number: every column the target table shares with
// the source's, then Block, OrdnerID and SlideLib for the target. Answers the
// new record's Nr.
long zeileKopieren(Ort& o, const typBlockAkte& a, const std::string& nr,
                   const std::string& slideLib) {
    const std::string tabelle = o.z.strTblBlockInfo;
    db::Recordset q;
    q.open("SELECT * FROM " + tabelle + " WHERE Nr = " + std::to_string(a.Nr), o.quelle);
    if (q.eof()) throw std::runtime_error("Block nicht mehr in der Quelle: " + a.Block);
    std::set<std::string> quellSpalten;
    for (const auto& c : q.fieldInfos()) quellSpalten.insert(platform::foldCase(c.name));
    db::Recordset r;
    r.open("SELECT * FROM " + tabelle + " WHERE Nr = 0", o.ziel, db::adOpenKeyset,
           db::adLockOptimistic);
    r.addNew();
    for (const auto& c : r.fieldInfos())
        if (!c.autoIncrement && quellSpalten.count(platform::foldCase(c.name)))
            r.setValue(c.name, q.value(c.name));
    r.setValue("Block", nr);
    r.setValue("OrdnerID", static_cast<long long>(o.ordnerId));
    r.setValue("SlideLib", slideLib.empty() ? sql::Value::null() : sql::Value::text(slideLib));
    r.update();
    const long neu = nrImOrdner(o, nr);
    if (!neu) throw std::runtime_error("Block nicht geschrieben: " + nr);
    return neu;
}

// One Block onto the slot with block number `nr` (its occupant, when it has
// one, with key lngBelegt): all of it, or nothing. booVerschieben: a cut
// within one library, whose source goes in the same step.
bool blockEinfuegen(Ort& o, const typBlockAkte& a, const std::string& nr, long lngBelegt,
                    bool booVerschieben) {
    Prozedur p(o.z, "fctBlockAusAblageEinfuegen");
    DateiUmzug umzug(o.z);
    try {
        if (o.korb.empty()) throw std::runtime_error("kein Papierkorb im temporären Verzeichnis");
        p.step("belegten Platz räumen");
        const auto alt = lngBelegt ? fctBlockAkteFrisch(o.z, o.ziel, nr, lngBelegt) : std::nullopt;
        if (alt) dateienInDenKorb(umzug, o.zielBasis, *alt, o.korb + "z\\");

        p.step("Dateien kopieren");
        const auto alteNamen = variantenDateien(a);
        std::vector<std::string> neueNamen;
        for (const auto& d : alteNamen) neueNamen.push_back(varianteNeu(d, a.Block, nr));
        const auto von = fctBlockDateien(a.OrdnerNr, a.Block, alteNamen);
        const auto nach = fctBlockDateien(o.ordnerNr, nr, neueNamen);
        for (std::size_t i = 0; i < von.size(); ++i)
            if (fctDateiExistiert(o.quelleBasis + von[i]) &&
                !umzug.kopieren(o.quelleBasis + von[i], o.zielBasis + nach[i]))
                throw std::runtime_error("Datei nicht kopiert: " + von[i]);

        if (booVerschieben) dateienInDenKorb(umzug, o.quelleBasis, a, o.korb + "q\\");

        p.step("Variantendatei umschreiben");
        const std::string satzDatei = o.zielBasis + nach.back();
        if (fctDateiExistiert(satzDatei)) {
            std::string bytes;
            auto saetze =
                fctDateiLesen(satzDatei, bytes) ? fctVariantenSaetzeLesen(bytes) : std::nullopt;
            if (!saetze) throw std::runtime_error("Variantendatei beschädigt: " + satzDatei);
            for (auto& s : *saetze) s.datei = varianteNeu(s.datei, a.Block, nr);
            if (!umzug.schreiben(satzDatei, fctVariantenSaetzeBytes(*saetze)))
                throw std::runtime_error("Variantendatei nicht geschrieben: " + satzDatei);
        }

        p.step("Einträge schreiben");
        const std::string slideLib =
            a.SlideLib.empty()
                ? std::string()
                : fctSlideLibEintrag(o.ordnerNr, nr, !fctSlideLibIstEinzeldia(a.SlideLib));
        SchreibEinheit e(o.ziel);
        if (alt) zeilenLoeschen(o.z, o.ziel, *alt);
        // Another workstation may have filled the slot meanwhile. Asked
        // through the Folder's index: Block has none, and a paste of hundreds
        // of Blocks would read the whole table for each.
        if (nrImOrdner(o, nr)) throw std::runtime_error("Zielplatz inzwischen belegt: " + nr);
        const long neu = zeileKopieren(o, a, nr, slideLib);
        db::Recordset v;
        v.open("SELECT * FROM tblVariationBloecke WHERE Nr = 0", o.ziel, db::adOpenKeyset,
               db::adLockOptimistic);
        for (std::size_t i = 0; i < a.varianten.size(); ++i) {
            v.addNew();
            v.setValue("BlockName", a.varianten[i].BlockName);
            v.setValue("BlockID", static_cast<long long>(neu));
            v.setValue("BlockDateiName", neueNamen[i]);
            v.update();
        }
        if (booVerschieben) zeilenLoeschen(o.z, o.ziel, a);
        e.commit();
        umzug.behalten();
    } catch (const std::exception& e) {
        p.fehler(e, true);
        umzug.rueckgaengig();
        return false;
    }
    return true;
}

// A cut Block leaves its old place (in another library) once its copy stands.
bool quelleEntfernen(Ort& o, const typBlockAkte& a) {
    Prozedur p(o.z, "fctAusgeschnittenenEntfernen");
    DateiUmzug umzug(o.z);
    try {
        const auto frisch = fctBlockAkteLesen(o.z, o.quelle, a.Block, a.Nr);
        if (!frisch || frisch->Nr != a.Nr) return true;  // gone meanwhile
        dateienInDenKorb(umzug, o.quelleBasis, *frisch, o.korb + "q\\");
        SchreibEinheit e(o.quelle);
        zeilenLoeschen(o.z, o.quelle, *frisch);
        e.commit();
        umzug.behalten();
    } catch (const std::exception& e) {
        p.fehler(e, true);
        umzug.rueckgaengig();
        return false;
    }
    return true;
}

}  // namespace

void Zwischenablage::leeren() {
    eintraege_.clear();
    strQuelleDb_.clear();
    strQuelleBasis_.clear();
    booAusschneiden_ = false;
}

bool Zwischenablage::fctNehmen(ProgrammZustand& z, NavigationsModell& m, AblageUmfang umfang,
                               bool booAusschneiden, bool booSchreibgeschuetzt) {
    Prozedur p(z, "fctZwischenablageNehmen");
    if (!m.offen()) return false;
    if (booAusschneiden && booSchreibgeschuetzt) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgSchreibgeschuetzt});
        return false;
    }
    const auto& slots = m.seitenSlots();
    std::vector<typAblageEintrag> neu;
    long meldung = 0;
    if (umfang == AblageUmfang::Block) {
        const int pos = m.intPosition();
        if (pos >= 0 && pos < static_cast<int>(slots.size()) && slots[pos].booBelegt)
            neu.push_back({slots[pos].strBlockNr, slots[pos].lngNr, 0});
        meldung = kMsgKeinBlock;
    } else if (umfang == AblageUmfang::Seite) {
        for (std::size_t i = 0; i < slots.size(); ++i)
            if (slots[i].booBelegt)
                neu.push_back({slots[i].strBlockNr, slots[i].lngNr, static_cast<long>(i)});
        meldung = kMsgSeiteOhneBloecke;
    } else {
        meldung = kMsgKeineMarkierten;
        const bool gelesen = p.geschuetztNurLog(false, [&] {
            // Block has no index: the marked records are read in one query,
            // then put in the order they were marked.
            std::map<std::string, long> schluessel;
            db::Recordset rb;
            rb.open("SELECT Nr, Block FROM " + z.strTblBlockInfo +
                        " WHERE Block IN (SELECT BlockNr FROM tblMarkierteBloecke)",
                    m.datenbank().con);
            for (; !rb.eof(); rb.moveNext())
                schluessel.emplace(rb.text("Block"), static_cast<long>(rb.value("Nr").asInt()));
            db::Recordset rs;
            rs.open("SELECT BlockNr FROM tblMarkierteBloecke ORDER BY Nr", m.datenbank().con);
            for (; !rs.eof(); rs.moveNext()) {
                const auto it = schluessel.find(rs.text("BlockNr"));
                if (it == schluessel.end()) continue;
                neu.push_back({it->first, it->second, static_cast<long>(neu.size())});
                schluessel.erase(it);
            }
            return true;
        });
        if (!gelesen) return false;
    }
    if (neu.empty()) {
        fctMsgbox(z, MsgboxArt::Info, {MsgboxZeile(meldung)});
        return false;
    }
    eintraege_ = std::move(neu);
    strQuelleDb_ = m.strDatenbank();
    strQuelleBasis_ = m.strBasisVerzeichnis();
    booAusschneiden_ = booAusschneiden;
    return true;
}

bool Zwischenablage::fctEinfuegen(ProgrammZustand& z, NavigationsModell& m,
                                  bool booSchreibgeschuetzt) {
    Prozedur p(z, "fctZwischenablageEinfuegen");
    const auto* ordner = m.aktuellerOrdner();
    if (!m.offen() || !ordner) return false;
    if (booSchreibgeschuetzt) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgSchreibgeschuetzt});
        return false;
    }
    if (eintraege_.empty()) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgAblageLeer});
        return false;
    }

    p.step("Zielplätze bestimmen");
    const auto& codes = m.codeTabelle();
    const long start = m.intSeite() * m.slotsProSeite() + m.intPosition();
    std::vector<std::string> ziele;
    for (const auto& e : eintraege_) {
        const long k = start + e.lngVersatz;
        if (k < 0 || k >= static_cast<long>(codes.size())) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgOrdnerZuKlein});
            return false;
        }
        ziele.push_back(fctBlocknummer(ordner->OrdnerNr, k, codes[static_cast<std::size_t>(k)]));
    }
    const bool gleich = platform::foldCase(strQuelleDb_) == platform::foldCase(m.strDatenbank());
    if (gleich)
        for (const auto& e : eintraege_)
            if (std::find(ziele.begin(), ziele.end(), e.strBlockNr) != ziele.end()) {
                fctMsgbox(z, MsgboxArt::Info, {kMsgAblageUeberschneidung});
                return false;
            }

    p.step("Quelle öffnen");
    std::optional<db::Connection> eigene;
    if (!gleich) {
        eigene.emplace(m.datenbank().oeffner);
        if (!p.geschuetztNurLog(false, [&] {
                eigene->open(fctJetVerbindung(strQuelleDb_));
                return true;
            })) {
            fctMsgbox(z, MsgboxArt::Info, {MsgboxZeile(kMsgQuelleNichtOffen), strQuelleDb_});
            return false;
        }
    }
    Ort o{z,
          m.datenbank().con,
          m.strBasisVerzeichnis(),
          gleich ? m.datenbank().con : *eigene,
          strQuelleBasis_,
          ordner->Nr,
          fctOhneBlanks(ordner->OrdnerNr),
          {}};

    p.step("Quelle und Ziel lesen");
    std::vector<std::optional<typBlockAkte>> quellen;
    std::map<std::string, long> belegt;  // block number of an occupied target, its key
    if (!p.geschuetztNurLog(false, [&] {
            {
                SchreibEinheit e(o.quelle);
                for (const auto& x : eintraege_)
                    quellen.push_back(fctBlockAkteLesen(z, o.quelle, x.strBlockNr, x.lngNr));
                e.commit();
            }
            db::Recordset rs;
            rs.open("SELECT Nr, Block FROM " + z.strTblBlockInfo +
                        " WHERE OrdnerID = " + std::to_string(o.ordnerId),
                    o.ziel);
            for (; !rs.eof(); rs.moveNext())
                if (std::find(ziele.begin(), ziele.end(), rs.text("Block")) != ziele.end())
                    belegt.emplace(rs.text("Block"), static_cast<long>(rs.value("Nr").asInt()));
            return true;
        })) {
        fctMsgbox(z, MsgboxArt::Info, {MsgboxZeile(kMsgQuelleNichtOffen), strQuelleDb_});
        return false;
    }
    std::vector<std::string> fehlen, ueberschreiben;
    for (std::size_t i = 0; i < quellen.size(); ++i) {
        if (!quellen[i])
            fehlen.push_back(eintraege_[i].strBlockNr);
        else if (belegt.count(ziele[i]))
            ueberschreiben.push_back(ziele[i]);
    }
    if (!ueberschreiben.empty() &&
        !fctMsgbox(z, MsgboxArt::Frage,
                   {MsgboxZeile(kMsgUeberschreibenFrage), liste(ueberschreiben)}))
        return false;

    o.korb = fctPapierkorbAnlegen(z);
    const long gesamt = static_cast<long>(eintraege_.size());
    const std::string text = fctBeschriftMsgboxZuordnen(z, kMsgFortschrittEinfuegen, kGruppeAllg);
    std::vector<typAblageEintrag> rest;
    bool ok = true;
    for (std::size_t i = 0; i < quellen.size(); ++i) {
        if (!quellen[i]) continue;
        if (gesamt > 1 && z.benutzer)
            z.benutzer->fortschritt(static_cast<long>(i), gesamt,
                                    text + " " + quellen[i]->Block + " → " + ziele[i]);
        const auto b = belegt.find(ziele[i]);
        if (!blockEinfuegen(o, *quellen[i], ziele[i], b == belegt.end() ? 0 : b->second,
                            booAusschneiden_ && gleich)) {
            ok = false;
            rest.assign(eintraege_.begin() + static_cast<long>(i), eintraege_.end());
            const long versatz = rest.front().lngVersatz;
            for (auto& r : rest) r.lngVersatz -= versatz;
            fctMsgbox(z, MsgboxArt::Info,
                      {MsgboxZeile(kMsgEinfuegenAbgebrochen), quellen[i]->Block});
            break;
        }
        if (booAusschneiden_ && !gleich && !quelleEntfernen(o, *quellen[i]))
            fctMsgbox(z, MsgboxArt::Info,
                      {MsgboxZeile(kMsgQuelleNichtEntfernt), quellen[i]->Block});
    }
    if (gesamt > 1 && z.benutzer) z.benutzer->fortschritt(0, 0, {});
    subPapierkorbLeeren(z, o.korb);
    if (!fehlen.empty())
        fctMsgbox(z, MsgboxArt::Info, {MsgboxZeile(kMsgQuelleFehlt), liste(fehlen)});
    if (booAusschneiden_) {
        // What was pasted has left its old place: only the rest is still to go.
        eintraege_ = std::move(rest);
        if (eintraege_.empty()) leeren();
    }
    m.subSeiteNeuAnzeigen();
    return ok;
}

bool Zwischenablage::fctZwischenspeicherAbfragen(ProgrammZustand& z) const {
    if (!booAusschneiden_ || eintraege_.empty()) return true;
    return fctMsgbox(z, MsgboxArt::Frage,
                     {MsgboxZeile(kMsgAusgeschnittenBeenden),
                      std::to_string(eintraege_.size()) + ": " + liste([this] {
                          std::vector<std::string> v;
                          for (const auto& e : eintraege_) v.push_back(e.strBlockNr);
                          return v;
                      }())});
}

}  // namespace tessara
