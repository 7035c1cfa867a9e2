#include "library/zugriff.h"

#include <exception>

#include "startup/fehler_log.h"

namespace tessara {

namespace {

void schliessenFallsOffen(db::Recordset& rs) {
    if (rs.state() == db::adStateOpen) rs.close();
}

long zaehlen(db::Connection& con, const std::string& strSql) {
    db::Recordset rs;
    rs.open(strSql, con, db::adOpenStatic, db::adLockReadOnly);
    return rs.recordCount();
}

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

bool fctConnectionOeffnen(ProgrammZustand& z, db::Connection& con, const std::string& strPfad,
                          const std::string& strServer, const std::string& strUser,
                          const std::string& strPasswort, int intModus) {
    Prozedur p(z, "fctConnectionOeffnen");
    return p.geschuetzt(false, [&] {
        if (con.state() == db::adStateOpen) con.close();
        if (!strServer.empty()) {
            p.step("Server");
            const std::string s =
                "Provider=SQLOLEDB.1; Integrated Security=SSPI; Persist Security Info=False; "
                "Initial Catalog=" +
                strPfad + "; Data Source=" + strServer + ";User ID=" + strUser +
                ";Password=" + strPasswort;
            subDebugLog(z, "Vor conDbOpen : " + s);
            con.open(s);
            return con.state() == db::adStateOpen;
        }
        if (intModus != 1) return false;
        p.step("Jet");
        con.provider = "Microsoft.Jet.OLEDB.4.0";
        con.setProperty("Jet OLEDB:Engine Type", "5");  // Jet 4.x
        con.setProperty("Data Source", strPfad);
        con.cursorLocation = db::adUseClient;
        con.open();
        return con.state() == db::adStateOpen;
    });
}

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

bool fctRsFindStringEnthalten(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
                              const std::string& strWert) {
    Prozedur p(z, "fctRsFindStringEnthalten");
    return p.geschuetzt(false,
                        [&] { return finden(z, p, rs, strSpalte + " LIKE '%" + strWert + "%'"); });
}

bool fctRsFindMitZuruecksetzen(ProgrammZustand& z, db::Recordset& rs, const std::string& strSpalte,
                               const std::string& strWert) {
    Prozedur p(z, "fctRsFindMitZuruecksetzen");
    return p.geschuetzt(false, [&] {
        const long vorher = rs.state() == db::adStateOpen ? rs.absolutePosition() : -1;
        if (finden(z, p, rs, strSpalte + " LIKE '" + strWert + "'")) return true;
        if (vorher > 0) rs.setAbsolutePosition(vorher);
        return false;
    });
}

long fctRsEinlesenAllgemein(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                            const std::string& strTabelle, const std::string& strSortSpalte) {
    Prozedur p(z, "fctRsEinlesenAllgemein");
    return p.geschuetzt(0, [&] {
        std::string s = "SELECT * FROM [" + strTabelle + "]";
        if (!strSortSpalte.empty()) s += " ORDER BY " + strSortSpalte;
        schliessenFallsOffen(rs);
        rs.open(s, con, db::adOpenKeyset, db::adLockOptimistic);
        return rs.recordCount();
    });
}

bool fctRsEinlesenMitEinemKriterium(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                                    const std::string& strTabelle, const std::string& strSpalte,
                                    const std::string& strWert, bool booNumerisch) {
    Prozedur p(z, "fctRsEinlesenMitEinemKriterium");
    return p.geschuetzt(false, [&] {
        const std::string s = booNumerisch ? "SELECT * FROM [" + strTabelle + "] WHERE [" +
                                                 strSpalte + "] = " + strWert
                                           : "SELECT * FROM [" + strTabelle + "] WHERE [" +
                                                 strSpalte + "] LIKE '" + strWert + "'";
        subDebugLog(z, "Einlesestring:" + s);
        schliessenFallsOffen(rs);
        rs.open(s, con, db::adOpenKeyset, db::adLockOptimistic);
        const std::string filter = booNumerisch ? "[" + strSpalte + "] = " + strWert
                                                : "[" + strSpalte + "] = '" + strWert + "'";
        subDebugLog(z, "strFilter : " + filter);
        rs.setFilter(filter);
        rs.clearFilter();
        const long n = rs.recordCount();
        subDebugLog(z, s + "; Rcordcount: " + std::to_string(n));
        return n > 0;
    });
}

bool fctRsEinlesenMitKriterium(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                               const std::string& strSql) {
    Prozedur p(z, "fctRsEinlesenMitKriterium");
    return p.geschuetzt(false, [&] {
        schliessenFallsOffen(rs);
        rs.open(strSql, con, db::adOpenKeyset, db::adLockOptimistic);
        return rs.recordCount() > 0;
    });
}

bool fctSpalteVorhanden(const db::Recordset& rs, const std::string& strSpalte) {
    if (rs.state() != db::adStateOpen) return false;
    for (const auto& f : rs.fieldInfos())
        if (f.name == strSpalte) return true;
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

bool fctSpalteNichtVorhandenOhneEintrag0(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                         const std::string& strPfad, const std::string& strTabelle,
                                         const std::string& strSpalte) {
    Prozedur p(z, "fctSpalteNichtVorhandenOhneEintrag0");
    return p.geschuetzt(false, [&] {
        p.step("conSpaltenTest öffnen");
        db::Connection con(oeffner);
        if (!fctConnectionOeffnen(z, con, strPfad)) return false;
        const std::string s =
            "SELECT * FROM " + strTabelle + " WHERE " + strSpalte + " IS NOT NULL";
        p.step("rsSpaltenTest öffnen:" + s);
        db::Recordset rs;
        rs.open(s, con, db::adOpenStatic, db::adLockReadOnly);
        return rs.recordCount() == 0;
    });
}

bool fctWerteVonSpalteUebertragen(ProgrammZustand& z, db::Connection& con,
                                  const std::string& strTabelle, const std::string& strZiel,
                                  const std::string& strQuelle) {
    Prozedur p(z, "fctWerteVonSpalteUebertragen");
    return p.geschuetzt(false, [&] {
        con.execute("UPDATE " + strTabelle + " SET " + strZiel + " = " + strQuelle);
        return true;
    });
}

std::string fctWertInSpalteAuslesen(ProgrammZustand& z, db::Recordset& rs,
                                    const std::string& strSpalte) {
    Prozedur p(z, "fctWertInSpalteAuslesen");
    return p.geschuetzt({}, [&]() -> std::string {
        if (rs.state() != db::adStateOpen || rs.recordCount() < 1) return {};
        rs.moveFirst();
        return rs.text(strSpalte);
    });
}

bool fctWertInSpalteSpeichern(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                              const std::string& strTabelle, const std::string& strSchluessel,
                              const std::string& strSchluesselWert, const std::string& strSpalte,
                              const std::string& strWert) {
    Prozedur p(z, "fctWertInSpalteSpeichern");
    return p.geschuetzt(false, [&] {
        for (int versuch = 0; versuch < 2; ++versuch) {
            p.step("Zeile lesen");
            const bool vorhanden = fctRsEinlesenMitEinemKriterium(
                z, con, rs, strTabelle, strSchluessel, strSchluesselWert, false);
            if (rs.state() != db::adStateOpen) return false;
            if (!fctSpalteVorhanden(rs, strSpalte)) {
                p.step("Spalte anlegen");
                if (!fctSpalteAnlegenFallsNichtVorhanden(z, con, rs, strTabelle, strSpalte,
                                                         "TEXT (100)"))
                    return false;
                continue;
            }
            p.step("Wert speichern");
            if (vorhanden) {
                rs.moveFirst();
            } else {
                rs.addNew();
                rs.setValue(strSchluessel, strSchluesselWert);
            }
            rs.setValue(strSpalte, strWert);
            rs.update();
            return true;
        }
        return false;
    });
}

bool fctPruefenWertVorhandenTrue(ProgrammZustand& z, db::Connection& con,
                                 const std::string& strTabelle, const std::string& strSpalte,
                                 const std::string& strWert) {
    Prozedur p(z, "fctPruefenWertVorhandenTrue");
    return p.geschuetzt(false, [&] {
        return zaehlen(con, "SELECT " + strSpalte + " FROM " + strTabelle + " WHERE " + strSpalte +
                                " LIKE '" + strWert + "'") >= 1;
    });
}

bool fctPruefenWertVorhandenGroesser1True(ProgrammZustand& z, db::Connection& con,
                                          const std::string& strTabelle,
                                          const std::string& strSpalte,
                                          const std::string& strWert) {
    Prozedur p(z, "fctPruefenWertVorhandenGroesser1True");
    return p.geschuetzt(false, [&] {
        return zaehlen(con, "SELECT " + strSpalte + " FROM " + strTabelle + " WHERE " + strSpalte +
                                " LIKE '" + strWert + "'") > 1;
    });
}

std::string fctPruefenWertVorhandenMitRueckgabeWert(ProgrammZustand& z, db::Connection& con,
                                                    const std::string& strTabelle,
                                                    const std::string& strSpalte,
                                                    const std::string& strWert) {
    Prozedur p(z, "fctPruefenWertVorhandenMitRueckgabeWert");
    return p.geschuetzt("Fehler", [&]() -> std::string {
        db::Recordset rs;
        rs.open("SELECT * FROM " + strTabelle + " WHERE " + strSpalte + " LIKE '" + strWert + "'",
                con, db::adOpenStatic, db::adLockReadOnly);
        if (rs.recordCount() < 1) return "0";
        rs.moveFirst();
        return rs.text(strSpalte);
    });
}

long fctRsSuchenMitMuster(ProgrammZustand& z, db::Connection& con, db::Recordset& rs,
                          const std::string& strSpalten, const std::string& strTabelle,
                          const std::string& strSpalte, const std::string& strWert,
                          const std::string& strSortSpalte) {
    Prozedur p(z, "fctRsSuchenMitMuster");
    return p.geschuetzt(0, [&]() -> long {
        if (con.state() != db::adStateOpen) {
            p.fehler("es gibt keine Verbindung zur Datenbank", 0, true);
            return 0;
        }
        std::string s = "SELECT " + strSpalten + " FROM " + strTabelle + " WHERE " + strSpalte +
                        " LIKE '" + strWert + "%'";
        if (!strSortSpalte.empty()) s += " ORDER BY " + strSortSpalte;
        schliessenFallsOffen(rs);
        rs.open(s, con, db::adOpenStatic, db::adLockReadOnly);
        return rs.recordCount();
    });
}

}  // namespace tessara
