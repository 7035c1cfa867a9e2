#include "search/datenbank_suche.h"

#include <exception>

#include "authoring/datei_layout.h"
#include "captions/meldungen.h"
#include "jet/sql/text_rules.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

constexpr const char* kTblBlockInfo = "tblBlockInfo";

bool endetMit(const std::string& s, const std::string& ende) {
    return s.size() >= ende.size() && s.compare(s.size() - ende.size(), ende.size(), ende) == 0;
}

// The last character of a term (the blank behind the quote) becomes ")".
void letztesZeichenSchliessen(std::string& s) {
    if (!s.empty()) s.back() = ')';
}

std::string term(const typSuchKriterien& k, int i, const std::string& T) {
    const std::string& text = k.txtBenennung[i];
    const std::string auf = k.checkGanzeWoerter ? "'" : "'%";
    const std::string zu = k.checkGanzeWoerter ? "' " : "%' ";
    const std::string q = auf + text + zu;
    if (i < kFeldBlockname) return "M" + std::to_string(i) + " " + "LIKE " + q;
    const bool blockInfo = T == kTblBlockInfo;
    const std::string C = blockInfo ? "BlkName0" : "BlkName";
    std::string t;
    if (!k.chkAnsichtenVarianten) {
        t = "(" + T + ".Nr IN(SELECT " + T + ".Nr " + "FROM " + T + "WHERE " + C + " " + "LIKE " +
            q;
        letztesZeichenSchliessen(t);
        return t + ")";
    }
    if (blockInfo) {
        t = std::string("(tblBlockInfo.Nr IN(SELECT tblBlockInfo.Nr ") + "FROM tblBlockInfo " +
            "WHERE BlkName0 " + "LIKE " + q + " OR BlkName1 " + "LIKE " + q + " OR BlkName2 " +
            "LIKE " + q + " OR BlkName3 " + "LIKE " + q + " OR BlkName4 " + "LIKE " + q + ") OR " +
            "(tblBlockInfo.Nr IN(SELECT BlockID FROM tblVariationBloecke WHERE " + "BlockName " +
            "LIKE " + q;
    } else {
        t = "(" + T + ".Nr IN(SELECT " + T + ".Nr " + "FROM " + T + " WHERE " + C + " " + "LIKE " +
            q + ") OR " + "(" + T + ".Nr IN(SELECT BlockID FROM " + "tblVariationBloecke WHERE " +
            "BlockName " + "LIKE " + q;
    }
    letztesZeichenSchliessen(t);
    return t + "))";
}

// The field's position in the record set, -1 when it has none.
int spaltenNr(const db::Recordset& rs, const std::string& spalte) {
    const auto& felder = rs.fieldInfos();
    for (std::size_t i = 0; i < felder.size(); ++i)
        if (sql::textEquals(felder[i].name, spalte)) return static_cast<int>(i);
    return -1;
}

std::string text(const db::Recordset& rs, int spalte) {
    return spalte >= 0 ? rs.value(spalte).toString() : std::string();
}

long zahl(const db::Recordset& rs, int spalte) {
    if (spalte < 0) return 0;
    const auto v = rs.value(spalte);
    return v.isNull() ? 0 : static_cast<long>(v.asInt());
}

std::string text(const db::Recordset& rs, const std::string& spalte) {
    return text(rs, spaltenNr(rs, spalte));
}

}  // namespace

const std::array<std::string, 7>& fctSuchOperatoren() {
    static const std::array<std::string, 7> operatoren{"$", "=", ">", ">=", "<=", "<", "<>"};
    return operatoren;
}

bool fctSuchKriterienLeer(const typSuchKriterien& k) {
    for (const auto& t : k.txtBenennung)
        if (!t.empty()) return false;
    return true;
}

std::string fctSuchAnweisung(const typSuchKriterien& k, const std::string& strTabelle,
                             long lngOrdnerNr) {
    const std::string& T = strTabelle;
    std::string s = T == kTblBlockInfo
                        ? std::string("SELECT Nr, Block, OrdnerID, ") +
                              "SlideLib, BlkName0, BlkName1, BlkName2, BlkName3, " +
                              "BlkName4, M0, AX1, AX2, AX3, AX4 From tblBlockInfo WHERE "
                        : "SELECT * From " + T + " WHERE ";
    if (k.checkAktuellerOrdner) s += "OrdnerID LIKE '" + std::to_string(lngOrdnerNr) + "' ";
    for (int i = 0; i < kSuchFelder; ++i) {
        if (k.txtBenennung[i].empty()) continue;
        const std::string t = term(k, i, T);
        s += endetMit(s, "WHERE ") ? t : "AND " + t;
    }
    return s;
}

std::vector<typSuchTreffer> fctSuchTrefferLesen(db::Recordset& rs) {
    std::vector<typSuchTreffer> treffer;
    if (rs.state() != db::adStateOpen || rs.recordCount() < 1) return treffer;
    treffer.reserve(static_cast<std::size_t>(rs.recordCount()));
    // Each field looked up once, not once a hit: a search may bring thousands.
    const int nr = spaltenNr(rs, "Nr"), block = spaltenNr(rs, "Block"),
              ordner = spaltenNr(rs, "OrdnerID"), slide = spaltenNr(rs, "SlideLib"),
              m0 = spaltenNr(rs, "M0"), einName = spaltenNr(rs, "BlkName");
    std::array<int, 5> namen{};
    for (int v = 0; v < 5; ++v) namen[v] = spaltenNr(rs, "BlkName" + std::to_string(v));
    const bool nurEinName = namen[0] < 0 && einName >= 0;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
        typSuchTreffer t;
        t.Nr = zahl(rs, nr);
        t.Block = text(rs, block);
        t.OrdnerNr = t.Block.substr(0, 3);
        t.OrdnerID = zahl(rs, ordner);
        // An Inventor library's table may have no slide column: the single
        // slide of the layout is its preview.
        t.SlideLib = slide >= 0 ? text(rs, slide) : fctSlideLibEintrag(t.OrdnerNr, t.Block, false);
        if (nurEinName)
            t.BlkName[0] = text(rs, einName);
        else
            for (int v = 0; v < 5; ++v) t.BlkName[v] = text(rs, namen[v]);
        t.M0 = text(rs, m0);
        treffer.push_back(std::move(t));
    }
    return treffer;
}

typSuchAusgang fctDatenbankSuchen(ProgrammZustand& z, db::Connection& con,
                                  const typSuchKriterien& k, const std::string& strTabelle,
                                  long lngOrdnerNr) {
    Prozedur p(z, "cmbSuchen_Click", true);
    typSuchAusgang a;
    p.step("Suchbegriffe prüfen");
    if (fctSuchKriterienLeer(k)) {
        subMsgboxInfoEinzeilig(z, kMeldungKeinSuchbegriff);
        a.ergebnis = SuchErgebnis::KeinSuchbegriff;
        return a;
    }
    p.step("Suchstring zusammensetzen");
    a.strAnweisung = fctSuchAnweisung(k, strTabelle, lngOrdnerNr);
    db::Recordset rs;
    try {
        p.step("Recordset öffnen");
        rs.open(a.strAnweisung, con);
        p.step("Treffer lesen");
        a.treffer = fctSuchTrefferLesen(rs);
        rs.close();
    } catch (const std::exception& e) {
        // Log only: the message below says in plain words what went wrong.
        p.fehler(e, true);
        a.ergebnis = SuchErgebnis::Fehler;
        a.treffer.clear();
        bool hochkomma = false;
        for (const auto& t : k.txtBenennung) hochkomma = hochkomma || t.find('\'') != t.npos;
        std::vector<MsgboxZeile> zeilen{MsgboxZeile(kMeldungSucheFehlgeschlagen),
                                        MsgboxZeile(std::string(e.what()))};
        if (hochkomma) zeilen.emplace_back(kMeldungKeinHochkomma);
        fctMsgbox(z, MsgboxArt::Info, zeilen);
        return a;
    }
    if (a.treffer.empty()) {
        subMsgboxInfoEinzeilig(z, kMeldungKeinTreffer);
        a.ergebnis = SuchErgebnis::KeinTreffer;
        return a;
    }
    a.ergebnis = a.treffer.size() == 1 && k.checkDirektEinfuegen ? SuchErgebnis::Einfuegen
                                                                 : SuchErgebnis::Anzeigen;
    return a;
}

std::array<std::string, 10> fctSuchBeschriftungen(ProgrammZustand& z, db::Connection& con,
                                                  const std::string& strOrdnerNr) {
    Prozedur p(z, "frmDatenbankSuche_Load", true);
    std::array<std::string, 10> b;
    try {
        p.step("aktuellen Ordner suchen");
        db::Recordset ordner;
        ordner.open("SELECT Nr, OrdnerNr, NrTblDefMenue FROM tblOrdner", con);
        std::string menue = "1";
        if (ordner.recordCount() > 0) {
            ordner.moveFirst();
            if (ordner.find("OrdnerNr Like '" + strOrdnerNr + "'")) {
                const auto v = ordner.value("NrTblDefMenue");
                if (!v.isNull()) menue = v.toString();
            }
        }
        p.step("Definitionsmenü lesen");
        db::Recordset def;
        def.open("SELECT * FROM tblDefMenue", con);
        if (def.recordCount() < 1) return b;
        def.moveFirst();
        if (!def.find("Nr Like '" + menue + "'")) return b;
        for (int i = 0; i < 10; ++i) b[i] = text(def, "Benennung" + std::to_string(i + 1));
    } catch (const std::exception& e) {
        p.fehler(e, true);
    }
    return b;
}

std::map<std::pair<long, long>, std::string> fctSeitenNamenLesen(db::Connection& con) {
    std::map<std::pair<long, long>, std::string> namen;
    db::Recordset rs;
    rs.open("SELECT NrTblOrdner, SeitenNr, SeitenName FROM tblSeiten", con);
    if (rs.recordCount() > 0)
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
            const auto o = rs.value("NrTblOrdner"), s = rs.value("SeitenNr");
            if (!o.isNull() && !s.isNull())
                namen[{static_cast<long>(o.asInt()), static_cast<long>(s.asInt())}] =
                    rs.text("SeitenName");
        }
    return namen;
}

}  // namespace tessara
