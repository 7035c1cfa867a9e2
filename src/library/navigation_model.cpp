#include "library/navigation_model.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <fstream>
#include <utility>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/slide_library.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "db/server_catalogue.h"
#include "jet/format/error.h"
#include "jet/sql/text_rules.h"
#include "library/schema.h"
#include "library/zugriff.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

struct Raster {
    int slots;
    int spalten;
};
// Index 3/4 and 5/6 give the same count; they differ in the grid's shape.
constexpr Raster kRaster[8] = {{4, 2},  {9, 3},  {16, 4}, {20, 5},
                               {20, 4}, {36, 6}, {36, 9}, {72, 12}};

std::string dreiZeichen(std::string s) {
    s.resize(3, ' ');
    return s;
}

bool offenMitZeilen(const db::Recordset& rs) {
    return rs.state() == db::adStateOpen && rs.recordCount() > 0;
}

long fctServerMeldung(db::ServerFault f) {
    switch (f) {
        case db::ServerFault::Unreachable:
            return kMsgServerAntwortetNicht;
        case db::ServerFault::Starting:
            return kMsgServerStartet;
        case db::ServerFault::Login:
            return kMsgServerAnmeldung;
        case db::ServerFault::NoDatabase:
            return kMsgServerOhneDatenbank;
        case db::ServerFault::NoCatalogue:
            return kMsgServerOhneKatalog;
        case db::ServerFault::NoDriver:
            return kMsgServerOhneTreiber;
    }
    return 0;
}

}  // namespace

std::string fctSqlBlockInfo(const std::string& strTabelle) {
    if (strTabelle != "tblBlockInfo") return "SELECT * FROM [" + strTabelle + "]";
    // Of the Views only BlkName0, of the Insertion points only AX1..AX4: the
    // insert command reads the record from here, and libraries have always
    // had this selection.
    return std::string("SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, ") +
           "M0, M1, M2, M3, M4, M5, M6, M7, M8, M9, AX1, AX2, AX3, AX4, LAYER, LYCOLOR, LYLINE "
           "FROM tblBlockInfo";
}

std::string fctKriteriumBlockSuche(const std::string& strBlockNr) {
    return "Block = '" + strBlockNr + "'";
}

std::string fctOrdnerSql(bool booNachName, bool booMitSortSpalte) {
    std::string sql = "SELECT * FROM [tblOrdner]";
    if (booNachName)
        sql += " ORDER BY OrdnerName";
    else if (booMitSortSpalte)
        sql += " ORDER BY NrTblOrdnen, Nr";  // the key settles equal numbers of older data
    return sql;
}

bool fctBilderanzahlGueltig(long i) { return i >= 0 && i <= 7; }

int fctSlotsProSeite(long i) { return kRaster[fctBilderanzahlGueltig(i) ? i : 2].slots; }

int fctRasterSpalten(long i) { return kRaster[fctBilderanzahlGueltig(i) ? i : 2].spalten; }

NavigationsModell::NavigationsModell(ProgrammZustand& z, db::StorageOpener oeffner)
    : z_(z), db_(std::move(oeffner)) {}

bool NavigationsModell::fctCodeTabelleLesen(const std::string& strDatei) {
    Prozedur p(z_, "fctCodeTabelleLesen");
    // The table is read once and sized for the Page on every rebuild: the
    // file holds some 43 000 lines and a Page flip must not read it again.
    std::ifstream in(fctNativerPfad(strDatei), std::ios::binary);
    if (!in) {
        fehlerText_ = strDatei;
        p.fehler("Codetabelle fehlt: " + strDatei, 0, true);
        return false;
    }
    std::vector<std::string> codes;
    std::string zeile;
    while (std::getline(in, zeile)) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (zeile.empty()) continue;
        codes.push_back(dreiZeichen(zeile));
    }
    if (codes.size() < static_cast<std::size_t>(kRaster[7].slots)) {
        fehlerText_ = strDatei;
        p.fehler(
            "Codetabelle zu kurz: " + strDatei + " (" + std::to_string(codes.size()) + " Zeilen)",
            0, true);
        return false;
    }
    codeTabelle_ = std::move(codes);
    return true;
}

bool NavigationsModell::offen() const { return db_.con.state() == db::adStateOpen; }

void NavigationsModell::subSchliessen() {
    for (db::Recordset* rs :
         {&db_.rsOrdner, &db_.rsSeiten, &db_.rsBlockInfo0, &db_.rsMarkierteBloecke})
        if (rs->state() == db::adStateOpen) rs->close();
    if (db_.con.state() == db::adStateOpen) db_.con.close();
    aryOrdner_.clear();
    arySeiten_.clear();
    seitenListe_.clear();
    aryBlocknummern_.clear();
    aryCodes_.clear();
    slots_.clear();
    intOrdnerIndex_ = -1;
    intSeite_ = 0;
    intPosition_ = 0;
}

bool NavigationsModell::fctDatenbankOeffnen(const std::string& strPfad) {
    Prozedur p(z_, "ConnectionUndRecordsetOeffnen");
    subSchliessen();
    fehlerText_.clear();
    lngFehlerNr_ = 0;
    lngServerMeldung_ = 0;
    try {
        p.step("Verbindung öffnen");
        db_.con.provider = "Microsoft.Jet.OLEDB.4.0";
        db_.con.setProperty("Jet OLEDB:Engine Type", "5");
        db_.con.setProperty("Data Source", strPfad);
        db_.con.cursorLocation = db::adUseClient;
        db_.con.open();
        db_.strPfad = strPfad;
        const auto schnitt = strPfad.find_last_of('\\');
        strBasis_ = schnitt == std::string::npos ? std::string() : strPfad.substr(0, schnitt + 1);

        p.step("rsOrdner öffnen");
        db_.rsOrdner.open(fctOrdnerSql(false, false), db_.con, db::adOpenKeyset,
                          db::adLockOptimistic);
        const std::string sql =
            fctOrdnerSql(booOrdnerSortieren_, fctSpalteVorhanden(db_.rsOrdner, "NrTblOrdnen"));
        if (sql != db_.rsOrdner.source()) {
            db_.rsOrdner.close();
            db_.rsOrdner.open(sql, db_.con, db::adOpenKeyset, db::adLockOptimistic);
        }
        p.step("rsMarkierteBloecke öffnen");
        try {
            db_.rsMarkierteBloecke.open("SELECT * FROM [tblMarkierteBloecke]", db_.con,
                                        db::adOpenKeyset, db::adLockOptimistic);
        } catch (const std::exception& e) {
            // Libraries of some older versions lack the table; marks are
            // not worth refusing the library for.
            p.fehler(e, true);
        }
        return true;
    } catch (const std::exception& e) {
        fehlerText_ = e.what();
        if (const auto* j = dynamic_cast<const jet::Error*>(&e)) lngFehlerNr_ = j->number();
        if (const auto* f = dynamic_cast<const db::ServerError*>(&e))
            lngServerMeldung_ = fctServerMeldung(f->fault());
        p.fehler(e, true);
        subSchliessen();
        return false;
    }
}

const typOrdnerEintrag* NavigationsModell::aktuellerOrdner() const {
    if (intOrdnerIndex_ < 0 || intOrdnerIndex_ >= static_cast<int>(aryOrdner_.size()))
        return nullptr;
    return &aryOrdner_[intOrdnerIndex_];
}

int NavigationsModell::fctOrdnerIndex(const std::string& strOrdnerName) const {
    for (std::size_t i = 0; i < aryOrdner_.size(); ++i)
        if (aryOrdner_[i].OrdnerName == strOrdnerName) return static_cast<int>(i);
    return -1;
}

long NavigationsModell::letzteSeite() const {
    const long n = static_cast<long>(codeTabelle_.size()) / slotsProSeite();
    return n > 0 ? n - 1 : 0;
}

bool NavigationsModell::OrdnerInArrayEinlesen() {
    Prozedur p(z_, "OrdnerInArrayEinlesen", true);
    return p.geschuetztNurLog(false, [&] {
        const std::string strAktuell =
            aktuellerOrdner() ? aktuellerOrdner()->OrdnerNr : std::string();
        aryOrdner_.clear();
        db::Recordset& rs = db_.rsOrdner;
        p.step("Requery");
        rs.requery();
        if (rs.recordCount() < 1) {
            intOrdnerIndex_ = -1;
            return true;
        }
        p.step("MoveLast");
        rs.moveLast();
        const long n = rs.recordCount();
        rs.moveFirst();
        aryOrdner_.reserve(n);
        p.step("Ordner in Array");
        const bool mitRechten = ordnerFilter_ && fctSpalteVorhanden(rs, "OrdnerRechte");
        while (!rs.eof()) {
            if (!mitRechten || ordnerFilter_(rs.text("OrdnerRechte")))
                aryOrdner_.push_back({rs.text("Ordnername"), dreiZeichen(rs.text("OrdnerNr")),
                                      static_cast<long>(rs.value("Nr").asInt())});
            rs.moveNext();
        }
        p.step("aktuellen Ordner suchen");
        intOrdnerIndex_ = -1;
        for (std::size_t i = 0; i < aryOrdner_.size(); ++i)
            if (aryOrdner_[i].OrdnerNr == strAktuell) intOrdnerIndex_ = static_cast<int>(i);
        rs.moveFirst();
        if (intOrdnerIndex_ >= 0) rs.find("OrdnerNr Like '" + fctOhneBlanks(strAktuell) + "'");
        return true;
    });
}

bool NavigationsModell::subRsSeitenNeuEinlesen() {
    Prozedur p(z_, "subRsSeitenNeuEinlesen", true);
    const auto* o = aktuellerOrdner();
    if (!o) return false;
    return p.geschuetztNurLog(false, [&] {
        if (db_.rsSeiten.state() == db::adStateOpen) db_.rsSeiten.close();
        db_.rsSeiten.open(
            "SELECT Nr, SeitenNr, SeitenName, NrTblOrdner From tblSeiten WHERE NrTblOrdner = " +
                std::to_string(o->Nr) + " ORDER BY SeitenName",
            db_.con, db::adOpenKeyset, db::adLockOptimistic);
        return true;
    });
}

bool NavigationsModell::SeitenInArrayEinlesen() {
    Prozedur p(z_, "SeitenInArrayEinlesen", true);
    return p.geschuetztNurLog(false, [&] {
        arySeiten_.clear();
        seitenListe_.clear();
        db::Recordset& rs = db_.rsSeiten;
        if (!offenMitZeilen(rs)) return true;
        long hoechste = 0;
        rs.moveFirst();
        while (!rs.eof()) {
            const long nr = static_cast<long>(rs.value("SeitenNr").asInt());
            seitenListe_.push_back({nr, rs.text("SeitenName")});
            hoechste = std::max(hoechste, nr);
            rs.moveNext();
        }
        p.step("Seiten in Array");
        arySeiten_.assign(static_cast<std::size_t>(std::max(hoechste, intSeite_ + 1)),
                          std::string());
        for (std::size_t i = 0; i < arySeiten_.size(); ++i) {
            rs.moveFirst();
            if (rs.find("seitenNr = " + std::to_string(i + 1)))
                arySeiten_[i] = rs.text("SeitenName");
        }
        return true;
    });
}

bool NavigationsModell::RecordsetRsBlockInfo0NeuEinlesen() {
    Prozedur p(z_, "RecordsetRsBlockInfo0NeuEinlesen", true);
    const auto* o = aktuellerOrdner();
    if (!o) return false;
    return p.geschuetztNurLog(false, [&] {
        if (db_.rsBlockInfo0.state() == db::adStateOpen) db_.rsBlockInfo0.close();
        nurSeite_.reset();
        if (std::exchange(booSeiteZuerst_, false)) {
            nurSeite_.emplace();  // read by seitenFuellen, once it knows the Page's numbers
            return true;
        }
        db_.rsBlockInfo0.open(
            fctSqlBlockInfo(z_.strTblBlockInfo) + " WHERE OrdnerID = " + std::to_string(o->Nr),
            db_.con, db::adOpenStatic, db::adLockReadOnly);
        return true;
    });
}

bool NavigationsModell::fctOrdnerVollstaendigEinlesen() {
    return !nurSeite_ || RecordsetRsBlockInfo0NeuEinlesen();
}

bool NavigationsModell::seitenBereichEinlesen(long lngErsterSlot, long lngEnde) {
    if (!nurSeite_ || !nurSeite_->first.empty()) return true;
    const auto* o = aktuellerOrdner();
    if (!o || lngErsterSlot >= lngEnde) return fctOrdnerVollstaendigEinlesen();
    Prozedur p(z_, "RecordsetRsBlockInfo0SeiteEinlesen", true);
    return p.geschuetztNurLog(false, [&] {
        // The bounds by the engine's own text order, the one BETWEEN applies.
        std::string lo, hi;
        for (long k = lngErsterSlot; k < lngEnde; ++k) {
            std::string v = fctBlocknummer(o->OrdnerNr, k, aryCodes_[k]);
            if (lo.empty() || sql::compareGeneral(v, lo) < 0) lo = v;
            if (hi.empty() || sql::compareGeneral(v, hi) > 0) hi = std::move(v);
        }
        nurSeite_.emplace(lo, hi);
        db_.rsBlockInfo0.open(
            fctSqlBlockInfo(z_.strTblBlockInfo) + " WHERE OrdnerID = " + std::to_string(o->Nr) +
                " AND Block BETWEEN '" + nurSeite_->first + "' AND '" + nurSeite_->second + "'",
            db_.con, db::adOpenStatic, db::adLockReadOnly);
        return true;
    });
}

bool NavigationsModell::RecordsetRsBlockInfo0EinzelEinlesen(const std::string& strBlockNr) {
    Prozedur p(z_, "RecordsetRsBlockInfo0EinzelEinlesen", true);
    return p.geschuetztNurLog(false, [&] {
        if (db_.rsBlockInfo0.state() == db::adStateOpen) db_.rsBlockInfo0.close();
        nurSeite_.reset();
        db_.rsBlockInfo0.open(
            fctSqlBlockInfo(z_.strTblBlockInfo) + " WHERE Block LIKE '" + strBlockNr + "'", db_.con,
            db::adOpenStatic, db::adLockReadOnly);
        return true;
    });
}

bool NavigationsModell::blockFinden(const std::string& strBlockNr) {
    if (nurSeite_ && !nurSeite_->first.empty()) {
        if (sql::compareGeneral(strBlockNr, nurSeite_->first) < 0 ||
            sql::compareGeneral(strBlockNr, nurSeite_->second) > 0)
            fctOrdnerVollstaendigEinlesen();
    }
    db::Recordset& rs = db_.rsBlockInfo0;
    if (!offenMitZeilen(rs)) return false;
    ++lngFinds_;
    rs.moveFirst();
    return rs.find("Block Like '" + strBlockNr + "'");
}

void NavigationsModell::BlocknummernEinlesen(long k) {
    Prozedur p(z_, std::to_string(k) + " BlocknummernEinlesen ", true);
    p.geschuetztNurLog([&] {
        const auto* o = aktuellerOrdner();
        if (!o || k < 0 || k >= static_cast<long>(aryCodes_.size())) return;
        p.step("Blocknummer bilden");
        const std::string nr = fctBlocknummer(o->OrdnerNr, k, aryCodes_[k]);
        aryBlocknummern_[k] = nr;
        const long slots = slotsProSeite();
        const long oben = static_cast<long>(aryCodes_.size()) - 1;
        if (k < oben - slots + 1) {
            p.step("nur Blocknummern einlesen, Rest überspringen");
            return;
        }
        typSlot& s = slots_[k - (oben - slots + 1)];
        s = typSlot{};
        s.strBlockNr = nr;
        p.step("Block suchen");
        if (blockFinden(nr)) {
            const db::Recordset& rs = db_.rsBlockInfo0;
            s.booBelegt = true;
            s.lngNr = static_cast<long>(rs.value("Nr").asInt());
            s.strBeschriftung = rs.text("M0");
            // An Inventor library's table has one name and may have no
            // slide column: its preview is the single slide of the layout.
            s.strBlkName0 = rs.text(fctSpalteVorhanden(rs, "BlkName0") ? "BlkName0" : "BlkName");
            s.strSlideLib = fctSpalteVorhanden(rs, "SlideLib")
                                ? rs.text("SlideLib")
                                : fctSlideLibEintrag(fctOhneBlanks(o->OrdnerNr), nr, false);
            s.strBildname = fctBildnameAnsicht0(strBasis_, s.strSlideLib);
            if (setup_ && setup_->longSlideUeberpruefen == 1)
                s.booDiaFehlt = !fctDateiExistiert(slide::fctBildnameZerlegen(s.strBildname).datei);
        } else {
            s.strBeschriftung = kFreiEintrag;
            s.strBildname = fctLeerfeldBild(z_.strAppPfad);
        }
        p.step("Markierung");
        db::Recordset& m = db_.rsMarkierteBloecke;
        if (offenMitZeilen(m)) {
            m.moveFirst();
            s.booMarkiert = m.find("BlockNr LIKE '" + nr + "'");
        }
    });
}

std::vector<std::string> NavigationsModell::lisBlockBenennungAktualisieren() const {
    std::vector<std::string> liste;
    liste.reserve(slots_.size());
    for (const auto& s : slots_) liste.push_back(s.booBelegt ? s.strBlockNr : kFreiEintrag);
    return liste;
}

long NavigationsModell::fctSlotNr(const std::string& strBlockNr) const {
    for (const auto& s : slots_)
        if (s.booBelegt && s.strBlockNr == strBlockNr) return s.lngNr;
    return 0;
}

bool NavigationsModell::seitenFuellen() {
    Prozedur p(z_, "subSeiteNeuAnzeigen", true);
    const long slots = slotsProSeite();
    const std::size_t n = static_cast<std::size_t>((intSeite_ + 1) * slots);
    if (!aktuellerOrdner() || n > codeTabelle_.size()) {
        p.fehler("Seite " + std::to_string(intSeite_ + 1) + " liegt außerhalb der Codetabelle", 0,
                 true);
        return false;
    }
    p.step("Codetabelle");
    aryCodes_.assign(codeTabelle_.begin(), codeTabelle_.begin() + static_cast<long>(n));
    aryBlocknummern_.resize(n);
    slots_.assign(static_cast<std::size_t>(slots), typSlot{});
    const long erste = static_cast<long>(n) - slots;  // the first slot of the Page
    if (z_.booDebug) {
        for (long k = 0; k < erste; ++k) BlocknummernEinlesen(k);
    } else {
        // The slots of the earlier Pages only get their block numbers. Written
        // here, without BlocknummernEinlesen's guard and step labels, which
        // only debug mode shows: on the last Pages of the code table those
        // were 40 000 guards a flip and nearly all of its time.
        const std::string& ordnerNr = aktuellerOrdner()->OrdnerNr;
        for (long k = 0; k < erste; ++k)
            subBlocknummerSchreiben(aryBlocknummern_[static_cast<std::size_t>(k)], ordnerNr, k,
                                    aryCodes_[static_cast<std::size_t>(k)]);
    }
    seitenBereichEinlesen(std::max(erste, 0L), static_cast<long>(n));
    for (long k = std::max(erste, 0L); k < static_cast<long>(n); ++k) BlocknummernEinlesen(k);
    if (intPosition_ >= slots) intPosition_ = static_cast<int>(slots) - 1;
    if (arySeiten_.size() < static_cast<std::size_t>(intSeite_ + 1))
        arySeiten_.resize(static_cast<std::size_t>(intSeite_ + 1));
    fehlendeDiasMelden();
    return true;
}

// Each Block whose slide is missing is told once a session, not at every
// redraw of its Page; the slot shows its drawing's own preview meanwhile.
void NavigationsModell::fehlendeDiasMelden() {
    std::vector<MsgboxZeile> zeilen{MsgboxZeile(kMsgDiaFehlt)};
    for (const auto& s : slots_) {
        if (!s.booDiaFehlt || std::find(gemeldeteDias_.begin(), gemeldeteDias_.end(),
                                        s.strBlockNr) != gemeldeteDias_.end())
            continue;
        gemeldeteDias_.push_back(s.strBlockNr);
        zeilen.emplace_back(s.strBlockNr + "  " + s.strBildname);
    }
    if (zeilen.size() > 1) fctMsgbox(z_, MsgboxArt::Info, zeilen);
}

void NavigationsModell::nachSeitenwechsel() {
    if (!setup_ || setup_->lonPosSeitenWechsel != 1) intPosition_ = 0;
}

bool NavigationsModell::subSeiteNeuAnzeigen() {
    Prozedur p(z_, "subSeiteNeuAnzeigen", true);
    p.geschuetztNurLog([&] {
        p.step("Requery");
        if (db_.rsBlockInfo0.state() == db::adStateOpen) db_.rsBlockInfo0.requery();
        if (db_.rsMarkierteBloecke.state() == db::adStateOpen) db_.rsMarkierteBloecke.requery();
    });
    return seitenFuellen();
}

bool NavigationsModell::ArrayTBloeckeNeuEinlesenBeiOrdnerwechsel() { return subSeiteNeuAnzeigen(); }

bool NavigationsModell::BilderAnzeigenBeiGeaenderterBilderanzahl(long i) {
    if (!fctBilderanzahlGueltig(i)) i = 2;
    longAnzahlDerBilder_ = i;
    intSeite_ = 0;
    intPosition_ = 0;
    return subSeiteNeuAnzeigen();
}

void NavigationsModell::setAnzahlDerBilder(long i) {
    longAnzahlDerBilder_ = fctBilderanzahlGueltig(i) ? i : 2;
    intSeite_ = 0;
    intPosition_ = 0;
}

bool NavigationsModell::ordnerAktivieren(int intIndex, long lngSeite) {
    intOrdnerIndex_ = intIndex;
    intSeite_ = std::clamp(lngSeite, 0L, letzteSeite());
    intPosition_ = 0;
    bool ok = subRsSeitenNeuEinlesen();
    ok = SeitenInArrayEinlesen() && ok;
    ok = RecordsetRsBlockInfo0NeuEinlesen() && ok;
    // ArrayTBloeckeNeuEinlesenBeiOrdnerwechsel, less its Requery of
    // rsBlockInfo0: the set has just been read, and reading a Folder of
    // 10 000 Blocks a second time was a third of the program's start.
    Prozedur p(z_, "ArrayTBloeckeNeuEinlesenBeiOrdnerwechsel", true);
    p.geschuetztNurLog([&] {
        p.step("Requery");
        if (db_.rsMarkierteBloecke.state() == db::adStateOpen) db_.rsMarkierteBloecke.requery();
    });
    return seitenFuellen() && ok;
}

bool NavigationsModell::comboxOrdner_Click(int intIndex) {
    Prozedur p(z_, "comboxOrdner_Click", true);
    return p.geschuetztNurLog(false, [&] {
        if (intIndex < 0 || intIndex >= static_cast<int>(aryOrdner_.size())) return false;
        p.step("Ordner prüfen");
        db::Recordset& rs = db_.rsOrdner;
        if (!offenMitZeilen(rs)) return false;
        rs.moveFirst();
        if (!rs.find("OrdnerName Like '" + aryOrdner_[intIndex].OrdnerName + "%'")) return false;
        return ordnerAktivieren(intIndex, 0);
    });
}

bool NavigationsModell::fctOrdnerWaehlen(const std::string& strOrdnerNr, long lngSeite) {
    const std::string nr = dreiZeichen(strOrdnerNr);
    for (std::size_t i = 0; i < aryOrdner_.size(); ++i)
        if (aryOrdner_[i].OrdnerNr == nr) {
            ordnerAktivieren(static_cast<int>(i), lngSeite);
            db_.rsOrdner.moveFirst();
            db_.rsOrdner.find("OrdnerNr Like '" + fctOhneBlanks(nr) + "'");
            return true;
        }
    return false;
}

bool NavigationsModell::combutVor() {
    if (!aktuellerOrdner() || intSeite_ >= letzteSeite()) return false;
    ++intSeite_;
    nachSeitenwechsel();
    return seitenFuellen();
}

bool NavigationsModell::combutZurueck() {
    if (!aktuellerOrdner() || intSeite_ <= 0) return false;
    --intSeite_;
    nachSeitenwechsel();
    return seitenFuellen();
}

bool NavigationsModell::combutZurueckAnfang() {
    Prozedur p(z_, "combutZurueckAnfang", true);
    const auto* o = aktuellerOrdner();
    if (!o) return false;
    // Counting down from the end of the current Page: the Page of the last
    // Block found becomes current, Page 0 when there is none.
    const long slots = slotsProSeite();
    long ziel = 0;
    for (long k = (intSeite_ + 1) * slots - 1; k >= 0; --k) {
        if (blockFinden(fctBlocknummer(o->OrdnerNr, k, codeTabelle_[k]))) {
            ziel = k / slots;
            break;
        }
    }
    intSeite_ = ziel;
    nachSeitenwechsel();
    return seitenFuellen();
}

bool NavigationsModell::GeheZuSeite(long lngSeite) {
    if (!aktuellerOrdner() || lngSeite < 0 || lngSeite > letzteSeite()) return false;
    if (lngSeite != intSeite_) nachSeitenwechsel();
    intSeite_ = lngSeite;
    return seitenFuellen();
}

long NavigationsModell::absoluterSlot(const std::string& strBlockNr) const {
    const auto* o = aktuellerOrdner();
    if (strBlockNr.size() < 5) return -1;
    const std::size_t vorne = o ? fctOhneBlanks(o->OrdnerNr).size() : 3;
    if (strBlockNr.size() < vorne + 4) return -1;
    const std::string code = strBlockNr.substr(strBlockNr.size() - 3);
    const std::string mitte = strBlockNr.substr(vorne, strBlockNr.size() - 3 - vorne);
    if (mitte.empty() || mitte.find_first_not_of("0123456789") != std::string::npos) return -1;
    const auto it = std::find(codeTabelle_.begin(), codeTabelle_.end(), code);
    if (it == codeTabelle_.end()) return -1;
    return std::stol(mitte) * kBlocknummerTeiler + static_cast<long>(it - codeTabelle_.begin());
}

long NavigationsModell::fctSeiteNrErmitteln(const std::string& strBlockNr) const {
    const long k = absoluterSlot(strBlockNr);
    return k < 0 ? -1 : k / slotsProSeite();
}

bool NavigationsModell::fctAufOrdnerUndSeiteSpringen(const std::string& strOrdnerNr,
                                                     const std::string& strBlockNr) {
    Prozedur p(z_, "fctAufOrdnerUndSeiteSpringen");
    const std::string nr = dreiZeichen(strOrdnerNr);
    const auto* o = aktuellerOrdner();
    if (!o || o->OrdnerNr != nr) {
        p.step("Ordner wechseln");
        if (!fctOrdnerWaehlen(nr, 0)) return false;
    }
    const long k = absoluterSlot(strBlockNr);
    if (k < 0) return false;
    p.step("Seite wechseln");
    const long slots = slotsProSeite();
    if (!GeheZuSeite(k / slots)) return false;
    intPosition_ = static_cast<int>(k % slots);
    return true;
}

bool NavigationsModell::fctBlockAufSeiteVorhanden(long lngSeite) {
    const auto* o = aktuellerOrdner();
    if (!o || lngSeite < 0 || lngSeite > letzteSeite()) return false;
    const long slots = slotsProSeite();
    for (long k = lngSeite * slots; k < (lngSeite + 1) * slots; ++k)
        if (blockFinden(fctBlocknummer(o->OrdnerNr, k, codeTabelle_[k]))) return true;
    return false;
}

void NavigationsModell::subPositionSetzen(int intPosition) {
    if (intPosition >= 0 && intPosition < static_cast<int>(slots_.size()))
        intPosition_ = intPosition;
}

DoppelklickAktion NavigationsModell::fctDoppelklick(int intPosition, long longDoppelklick) {
    if (intPosition < 0 || intPosition >= static_cast<int>(slots_.size()))
        return DoppelklickAktion::Nichts;
    subPositionSetzen(intPosition);
    switch (longDoppelklick) {
        case 1:
            return DoppelklickAktion::Einfuegen;
        case 2:
            fctMarkierungSetzen(intPosition, !slots_[intPosition].booMarkiert);
            return DoppelklickAktion::Markieren;
        case 3:
            return DoppelklickAktion::Vollbild;
        default:
            return DoppelklickAktion::Nichts;
    }
}

DoppelklickAktion NavigationsModell::fctListeDoppelklick(int intEintrag, long longDoppelklick) {
    const auto liste = lisBlockBenennungAktualisieren();
    if (intEintrag < 0 || intEintrag >= static_cast<int>(liste.size()) ||
        liste[intEintrag] == kFreiEintrag)
        return DoppelklickAktion::Nichts;
    if (!blockFinden(liste[intEintrag])) return DoppelklickAktion::Nichts;
    return fctDoppelklick(intEintrag, longDoppelklick);
}

bool NavigationsModell::fctMarkierungSetzen(int intPosition, bool booMarkiert) {
    Prozedur p(z_, "fctMarkierungSetzen", true);
    return p.geschuetztNurLog(false, [&] {
        if (intPosition < 0 || intPosition >= static_cast<int>(slots_.size())) return false;
        typSlot& s = slots_[intPosition];
        db::Recordset& m = db_.rsMarkierteBloecke;
        if (!s.booBelegt || m.state() != db::adStateOpen) return false;
        if (offenMitZeilen(m)) {
            m.moveFirst();
            while (m.find("BlockNr LIKE '" + s.strBlockNr + "'")) {
                p.step("Markierung löschen");
                m.deleteCurrent();
                m.moveNext();
                if (m.eof()) break;
            }
        }
        if (booMarkiert) {
            p.step("Markierung anlegen");
            const auto* o = aktuellerOrdner();
            m.addNew();
            m.setValue("BlockName", s.strBlkName0.empty() ? s.strBlockNr : s.strBlkName0);
            m.setValue("BlockNr", s.strBlockNr);
            m.setValue("SpeicherOrtSlide", s.strSlideLib);
            m.setValue("SpeicherOrtDWG",
                       fctZeichnungDatei(o ? fctOhneBlanks(o->OrdnerNr) : "", s.strBlockNr, 0));
            m.setValue("MarkierteAnsicht", 0);
            m.setValue("NummerEinfuegepkt", 1);
            m.update();
        }
        s.booMarkiert = booMarkiert;
        return true;
    });
}

bool NavigationsModell::fctMarkierungenAlleLoeschen() {
    db::Recordset& m = db_.rsMarkierteBloecke;
    if (m.state() != db::adStateOpen) return false;
    const bool ok = fctAlleEintraegLoeschen(z_, m);
    for (auto& s : slots_) s.booMarkiert = false;
    return ok;
}

bool NavigationsModell::fctBlockSuchen(int intPosition) {
    if (intPosition < 0 || intPosition >= static_cast<int>(slots_.size())) return false;
    const typSlot& s = slots_[intPosition];
    db::Recordset& rs = db_.rsBlockInfo0;
    if (!s.booBelegt || !offenMitZeilen(rs)) return false;
    rs.moveFirst();
    return rs.find(fctKriteriumBlockSuche(s.strBlockNr));
}

}  // namespace tessara
