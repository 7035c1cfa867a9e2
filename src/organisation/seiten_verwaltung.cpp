#include "organisation/seiten_verwaltung.h"

#include <exception>

#include "captions/meldungen.h"
#include "jet/sql/error.h"
#include "library/zugriff.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/schreib_einheit.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

// What decides how a Page is written: the row holding the number, and
// another row holding the name. Read once before the questions and once
// more in the unit that writes; when the two differ, another workstation
// changed the Pages in between and the questions are asked again.
struct Lage {
    long nrZeile = 0;  // tblSeiten.Nr of the row with the number, 0: none
    std::string nrName;
    long nameZeile = 0;  // a different row with the name, 0: none
    bool operator==(const Lage&) const = default;
};

bool seitenOffen(NavigationsModell& m) {
    if (m.datenbank().rsSeiten.state() == db::adStateOpen) return true;
    return m.subRsSeitenNeuEinlesen();
}

Lage lesen(NavigationsModell& m, long lngSeitenNr, const std::string& strName) {
    Lage l;
    db::Recordset& rs = m.datenbank().rsSeiten;
    rs.requery();
    if (rs.recordCount() < 1) return l;
    rs.moveFirst();
    if (rs.find("SeitenNr Like '" + std::to_string(lngSeitenNr) + "'")) {
        l.nrZeile = fctLongWert(rs, "Nr");
        l.nrName = rs.text("SeitenName");
    }
    rs.moveFirst();
    while (!rs.eof() && rs.find("Seitenname Like '" + strName + "'")) {
        if (fctLongWert(rs, "Nr") != l.nrZeile) {
            l.nameZeile = fctLongWert(rs, "Nr");
            break;
        }
        rs.moveNext();
    }
    return l;
}

// Asks before a taken number or name is used, then writes the row; another
// workstation may change the Pages while the user answers, so the rows are
// read again under the lock and the questions repeated when they changed.
bool seiteSchreiben(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                    const std::string& strName) {
    const auto* o = m.aktuellerOrdner();
    if (!o || !seitenOffen(m)) return false;
    db::Connection& con = m.datenbank().con;
    db::Recordset& rs = m.datenbank().rsSeiten;
    const std::string nr = std::to_string(lngSeitenNr);
    for (int versuch = 0; versuch < kRennenVersuche; ++versuch) {
        Lage vorher;
        {
            SchreibEinheit e(con);
            vorher = lesen(m, lngSeitenNr, strName);
        }
        if (vorher.nrZeile != 0 &&
            !fctMsgbox(z, MsgboxArt::Frage,
                       {kMsgSeiteNrVergeben, nr + ": " + vorher.nrName, kMsgSeiteUeberschreiben}))
            return false;
        if (vorher.nameZeile != 0 &&
            !fctMsgbox(z, MsgboxArt::Frage, {kMsgSeiteNameVergeben, strName, kMsgSeiteTrotzdem}))
            return false;

        try {
            SchreibEinheit e(con);
            if (!(lesen(m, lngSeitenNr, strName) == vorher)) continue;
            if (vorher.nrZeile != 0) {
                // Overwritten in place: the Page keeps its key and so its Blocks.
                rs.moveFirst();
                rs.find("Nr = " + std::to_string(vorher.nrZeile));
            } else {
                rs.addNew();
            }
            rs.setValue("seitenNr", static_cast<long long>(lngSeitenNr));
            rs.setValue("SeitenName", strName);
            rs.setValue("NrTblOrdner", static_cast<long long>(o->Nr));
            rs.update();
            e.commit();
        } catch (const sql::Error& fehler) {
            // On a catalogue server another workstation may take the number
            // between the look and the write (the server's unique key then
            // refuses ours), or its unit and ours crossed: look again and
            // ask as if it had been there.
            if (!fctRennenVerloren(fehler.number())) throw;
            if (rs.editing()) rs.cancelUpdate();
            continue;
        }
        return fctSeiteInCboEinlesen(z, m);
    }
    return false;
}

}  // namespace

bool fctSeiteNeu(ProgrammZustand& z, NavigationsModell& m, const std::string& strSeitenNr,
                 const std::string& strSeitenname) {
    Prozedur p(z, "frmSeiteNeu.cmbOk_Click");
    return p.geschuetzt(false, [&] {
        const auto name = fctNamePruefen(z, strSeitenname);
        if (!name) return false;
        if (strSeitenNr.empty() || name->empty()) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgSeiteAngabenFehlen});
            return false;
        }
        if (strSeitenNr.find_first_not_of("0123456789") != std::string::npos) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgSeiteNurZiffern, strSeitenNr});
            return false;
        }
        // "007" is Page 7: the number is compared as the column holds it.
        const auto ziffern = strSeitenNr.find_first_not_of('0');
        const std::string ohneNullen =
            ziffern == std::string::npos ? std::string("0") : strSeitenNr.substr(ziffern);
        const long nr = ohneNullen.size() > 5 ? kHoechsteSeitenNr + 1 : std::stol(ohneNullen);
        if (nr < 1 || nr > kHoechsteSeitenNr) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgSeiteNrBereich, strSeitenNr});
            return false;
        }
        return seiteSchreiben(z, m, nr, *name);
    });
}

bool fctSeiteAnlegenOhneKontrolle(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                                  const std::string& strSeitenname) {
    Prozedur p(z, "fctSeiteAnlegenOhneKontrolle");
    return p.geschuetzt(false, [&] {
        const auto* o = m.aktuellerOrdner();
        if (!o) return false;
        std::string name;
        for (const char c : strSeitenname)
            name += c == '\'' ? std::string("''") : std::string(1, c);
        for (int versuch = 1;; ++versuch) {
            try {
                m.datenbank().con.execute(
                    "INSERT INTO tblSeiten (SeitenNr, SeitenName, NrTblOrdner) VALUES (" +
                    std::to_string(lngSeitenNr) + ", '" + name + "', " + std::to_string(o->Nr) +
                    ")");
                break;
            } catch (const sql::Error& fehler) {
                // Another workstation filling the same Folder made this Page
                // first (a catalogue server's unique key says so): it is the
                // Page wanted, so it is used.
                if (fehler.number() == kDoppelterSchluessel) break;
                if (!fctRennenVerloren(fehler.number()) || versuch >= kRennenVersuche) throw;
            }
        }
        return fctSeiteInCboEinlesen(z, m);
    });
}

std::string fctSeitenNameMitIndex(const std::string& strName, int intIndex) {
    return intIndex > 0 ? strName + "-" + std::to_string(intIndex) : strName;
}

bool fctSeiteUmbenennen(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                        const std::string& strNeu) {
    Prozedur p(z, "frmSeiteUmbenennen.cmbOk_Click");
    return p.geschuetzt(false, [&] {
        const auto neu = fctNamePruefen(z, strNeu);
        if (!neu) return false;
        if (neu->empty()) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgSeiteAngabenFehlen});
            return false;
        }
        if (!m.aktuellerOrdner() || !seitenOffen(m)) return false;
        db::Recordset& rs = m.datenbank().rsSeiten;
        enum { Ok, Vergeben, Verschwunden } r = Ok;
        {
            SchreibEinheit e(m.datenbank().con);
            rs.requery();
            if (fctRsFind(z, rs, "Seitenname", *neu)) {
                r = Vergeben;
            } else if (!fctRsFind(z, rs, "SeitenNr", std::to_string(lngSeitenNr))) {
                r = Verschwunden;
            } else {
                rs.setValue("SeitenName", *neu);
                rs.update();
                e.commit();
            }
        }
        if (r == Vergeben) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgSeiteNameVergeben, *neu, kMsgAndererName});
            return false;
        }
        if (r == Verschwunden) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgSeiteVerschwunden});
            return false;
        }
        return fctSeiteInCboEinlesen(z, m);
    });
}

bool fctSeiteLoeschen(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr) {
    Prozedur p(z, "frmSeitenverwaltung.cmbLoeschen_Click");
    try {
        const auto* o = m.aktuellerOrdner();
        if (!o || !seitenOffen(m)) return false;
        if (!fctMsgboxFrageEinzeilig(z, kMsgSeiteLoeschen)) {
            fctSeiteInCboEinlesen(z, m);
            return false;
        }
        typDatenbank& d = m.datenbank();
        {
            SchreibEinheit e(d.con);
            d.rsSeiten.requery();
            p.step("Seite suchen");
            if (!fctRsFind(z, d.rsSeiten, "SeitenNr", std::to_string(lngSeitenNr))) return false;
            if (d.rsSeiten.recordCount() > 1) {
                p.step("Seite löschen");
                d.rsSeiten.deleteCurrent();
                d.rsSeiten.update();
            } else {
                p.step("letzte Seite löschen");
                d.rsSeiten.close();
                d.con.execute("DELETE FROM tblSeiten WHERE NrTblOrdner = " + std::to_string(o->Nr));
            }
            e.commit();
        }
        return fctSeiteInCboEinlesen(z, m);
    } catch (const std::exception& e) {
        p.fehler(e);
        fctSeiteInCboEinlesen(z, m);
        return false;
    }
}

typSeitenListe fctSeitenAnzeigen(ProgrammZustand& z, NavigationsModell& m) {
    typSeitenListe l;
    if (!fctSeiteInCboEinlesen(z, m)) return l;
    for (const auto& s : m.seitenListe()) {
        if (s.SeitenNr == m.intSeite() + 1) l.intAuswahl = static_cast<int>(l.zeilen.size());
        l.zeilen.push_back(std::to_string(s.SeitenNr) + "\t" + s.SeitenName);
        l.nummern.push_back(s.SeitenNr);
    }
    return l;
}

bool fctSeiteInCboEinlesen(ProgrammZustand& z, NavigationsModell& m) {
    Prozedur p(z, "fctSeiteInCboEinlesen", true);
    const bool ok = m.subRsSeitenNeuEinlesen();
    return m.SeitenInArrayEinlesen() && ok;
}

}  // namespace tessara
