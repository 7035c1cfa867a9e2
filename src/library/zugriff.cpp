#include "library/zugriff.h"

#include <exception>

#include "jet/sql/text_rules.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

// The three find helpers share their checks: open, holding rows, first row,
// then forward from there.
bool finden(ProgrammZustand& z, Prozedur& p, db::Recordset& rs, const std::string& kriterium) {
    if (rs.state() != db::adStateOpen) {
        subDebugLog(z, "State <> adStateOpen");
        return false;
    }
    if (rs.recordCount() < 1) {
        subDebugLog(z, "RecordCount < 1");
        return false;
    }
    p.step("Find");
    rs.moveFirst();
    rs.find(kriterium);
    const bool gefunden = !rs.eof();
    subDebugLog(z, gefunden ? "fctrsfind = true" : "fctrsfind = false");
    return gefunden;
}

}  // namespace

bool fctAlleEintraegLoeschen(ProgrammZustand& z, db::Recordset& rs) {
    Prozedur p(z, "fctAlleEintraegLoeschen");
    return p.geschuetzt(false, [&] {
        if (rs.recordCount() > 0) {
            rs.moveFirst();
            while (!rs.eof()) {
                rs.deleteCurrent();
                rs.moveNext();
            }
        }
        return true;
    });
}

bool fctRsFind(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
               const std::string& strWert) {
    Prozedur p(z, "fctRsFind");
    return p.geschuetzt(false,
                        [&] { return finden(z, p, rs, strSpalte + " LIKE '" + strWert + "'"); });
}

bool fctSpalteVorhanden(const db::Recordset& rs, const std::string& strSpalte) {
    if (rs.state() != db::adStateOpen) return false;
    for (const auto& f : rs.fieldInfos())
        if (sql::textEquals(f.name, strSpalte)) return true;  // Jet's names know no case
    return false;
}

bool fctSpalteAnlegenFallsNichtVorhanden(ProgrammZustand& z, db::Connection& con,
                                         const db::Recordset& rs, const std::string& strTabelle,
                                         const std::string& strSpalte, const std::string& strTyp,
                                         const std::optional<std::string>& startWert) {
    Prozedur p(z, "fctSpalteAnlegenFallsNichtVorhanden");
    return p.geschuetzt(false, [&] {
        if (fctSpalteVorhanden(rs, strSpalte)) return true;
        p.step("Spalte anlegen");
        con.execute("ALTER TABLE " + strTabelle + " ADD COLUMN " + strSpalte + " " + strTyp);
        if (startWert) {
            p.step("Startwert");
            con.execute("UPDATE " + strTabelle + " SET " + strSpalte + " = " + *startWert);
        }
        return true;
    });
}

long fctLongWert(const db::Recordset& rs, const std::string& strSpalte) {
    const sql::Value v = rs.value(strSpalte);
    return v.isNull() ? 0 : static_cast<long>(v.asInt());
}

}  // namespace tessara
