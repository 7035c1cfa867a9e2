#include "organisation/def_menue.h"

#include <exception>

#include "captions/meldungen.h"
#include "library/schema.h"
#include "library/zugriff.h"
#include "organisation/schreib_einheit.h"
#include "startup/fehler_log.h"

namespace tessara {

namespace {

// Empty stays Null: Jet's text columns refuse a zero-length text unless
// they were made to allow it.
sql::Value textOderNull(const std::string& s) {
    return s.empty() ? sql::Value::null() : sql::Value::text(s);
}

constexpr std::size_t kWertLaenge = 100;  // Benennung and Standardwert are Text(100)

std::string benennung(int i) { return "Benennung" + std::to_string(i + 1); }
std::string standardwert(int i) { return "Standardwert" + std::to_string(i + 1); }

std::size_t zeichen(const std::string& s) {
    std::size_t n = 0;
    for (const char c : s) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

typDefMenue ausZeile(const db::Recordset& rs) {
    typDefMenue d;
    d.Nr = fctLongWert(rs, "Nr");
    d.booGlobal = fctLongWert(rs, "global") == 1;
    for (int i = 0; i < kDefMenueZeilen; ++i) {
        d.Benennung[i] = rs.text(benennung(i));
        d.Standardwert[i] = rs.text(standardwert(i));
    }
    return d;
}

void inZeile(db::Recordset& rs, const typDefMenue& d) {
    for (int i = 0; i < kDefMenueZeilen; ++i) {
        rs.setValue(benennung(i), textOderNull(d.Benennung[i]));
        rs.setValue(standardwert(i), textOderNull(d.Standardwert[i]));
    }
}

// The names of the Folders that use menu lngNr (Folders without a menu use 1).
std::vector<std::string> benutzer(db::Connection& con, long lngNr) {
    db::Recordset rs;
    std::string sql =
        "SELECT Ordnername FROM tblOrdner WHERE NrTblDefMenue = " + std::to_string(lngNr);
    if (lngNr == 1) sql += " OR NrTblDefMenue IS NULL";
    rs.open(sql + " ORDER BY Ordnername", con);
    std::vector<std::string> namen;
    for (; !rs.eof(); rs.moveNext()) namen.push_back(rs.text("Ordnername"));
    return namen;
}

}  // namespace

std::vector<typDefMenue> fctDefMenuesLesen(ProgrammZustand& z, NavigationsModell& m) {
    Prozedur p(z, "fctDefMenuesLesen");
    std::vector<typDefMenue> menues;
    p.geschuetzt([&] {
        db::Connection& con = m.datenbank().con;
        db::Recordset rs;
        rs.open("SELECT * FROM tblDefMenue ORDER BY Nr", con);
        for (; !rs.eof(); rs.moveNext()) menues.push_back(ausZeile(rs));
        p.step("Ordner der Menüs");
        for (auto& d : menues) d.ordner = benutzer(con, d.Nr);
    });
    return menues;
}

std::optional<typDefMenue> fctDefMenueDesOrdners(ProgrammZustand& z, NavigationsModell& m,
                                                 long lngOrdnerNr) {
    Prozedur p(z, "fctDefMenueDesOrdners");
    return p.geschuetzt(std::nullopt, [&]() -> std::optional<typDefMenue> {
        db::Connection& con = m.datenbank().con;
        db::Recordset o;
        o.open("SELECT NrTblDefMenue FROM tblOrdner WHERE Nr = " + std::to_string(lngOrdnerNr),
               con);
        long nr = o.eof() ? 0 : fctLongWert(o, "NrTblDefMenue");
        for (const long versuch : {nr, 1L}) {
            if (versuch <= 0) continue;
            db::Recordset rs;
            rs.open("SELECT * FROM tblDefMenue WHERE Nr = " + std::to_string(versuch), con);
            if (!rs.eof()) return ausZeile(rs);
        }
        return std::nullopt;
    });
}

bool fctDefMenueSpeichern(ProgrammZustand& z, NavigationsModell& m, const typDefMenue& d,
                          bool booGlobalUeberschreiben) {
    Prozedur p(z, "fctDefMenueSpeichern");
    return p.geschuetzt(false, [&] {
        for (int i = 0; i < kDefMenueZeilen; ++i)
            for (const std::string* w : {&d.Benennung[i], &d.Standardwert[i]})
                if (zeichen(*w) > kWertLaenge) {
                    fctMsgbox(z, MsgboxArt::Info,
                              {kMsgWertZuLang, *w, kMsgHoechstens, std::to_string(kWertLaenge)});
                    return false;
                }
        db::Connection& con = m.datenbank().con;
        bool global = false;
        {
            SchreibEinheit e(con);
            db::Recordset rs;
            rs.open("SELECT * FROM tblDefMenue WHERE Nr = " + std::to_string(d.Nr), con,
                    db::adOpenKeyset, db::adLockOptimistic);
            if (rs.eof()) return false;
            global = fctLongWert(rs, "global") == 1;
            if (!global || booGlobalUeberschreiben) {
                p.step("Menü schreiben");
                inZeile(rs, d);
                rs.update();
                e.commit();
            }
        }
        if (global && !booGlobalUeberschreiben) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgDefMenueGlobal});
            return false;
        }
        return true;
    });
}

long fctDefMenueNeu(ProgrammZustand& z, NavigationsModell& m, const typDefMenue* vorlage) {
    Prozedur p(z, "fctDefMenueNeu");
    return p.geschuetzt(0, [&] {
        typDefMenue d;
        if (vorlage) {
            d = *vorlage;
        } else {
            d.Benennung.fill(kFreiEintrag);
            d.Standardwert.fill(kFreiEintrag);
        }
        db::Connection& con = m.datenbank().con;
        SchreibEinheit e(con);
        db::Recordset rs;
        rs.open("SELECT * FROM tblDefMenue WHERE Nr = 0", con, db::adOpenKeyset,
                db::adLockOptimistic);
        rs.addNew();
        rs.setValue("global", 0);
        inZeile(rs, d);
        rs.update();
        const long nr = fctLongWert(rs, "Nr");
        e.commit();
        return nr;
    });
}

bool fctDefMenueLoeschen(ProgrammZustand& z, NavigationsModell& m, long lngNr) {
    Prozedur p(z, "fctDefMenueLoeschen");
    return p.geschuetzt(false, [&] {
        if (lngNr == 1) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgDefMenue1});
            return false;
        }
        db::Connection& con = m.datenbank().con;
        auto benutzt = [&](const std::vector<std::string>& namen) {
            std::string liste;
            for (const auto& n : namen) liste += (liste.empty() ? "" : ", ") + n;
            fctMsgbox(z, MsgboxArt::Info, {kMsgDefMenueBenutzt, liste});
            return false;
        };
        std::vector<std::string> namen;
        {
            SchreibEinheit e(con);
            namen = benutzer(con, lngNr);
        }
        if (!namen.empty()) return benutzt(namen);
        if (!fctMsgboxFrageEinzeilig(z, kMsgDefMenueLoeschen)) return false;
        {
            SchreibEinheit e(con);
            // A Folder may have taken the menu while the question was open.
            namen = benutzer(con, lngNr);
            if (namen.empty()) {
                con.execute("DELETE FROM tblDefMenue WHERE Nr = " + std::to_string(lngNr));
                e.commit();
            }
        }
        return namen.empty() || benutzt(namen);
    });
}

bool fctDefMenueZuordnen(ProgrammZustand& z, NavigationsModell& m, long lngNr) {
    Prozedur p(z, "fctDefMenueZuordnen");
    return p.geschuetzt(false, [&] {
        const auto* o = m.aktuellerOrdner();
        if (!o) return false;
        db::Connection& con = m.datenbank().con;
        SchreibEinheit e(con);
        db::Recordset rs;
        rs.open("SELECT Nr FROM tblDefMenue WHERE Nr = " + std::to_string(lngNr), con);
        if (rs.eof()) return false;
        con.execute("UPDATE tblOrdner SET NrTblDefMenue = " + std::to_string(lngNr) +
                    " WHERE Nr = " + std::to_string(o->Nr));
        e.commit();
        return true;
    });
}

std::string fctAttributName(const typDefMenue& d, int i) {
    if (i < 0 || i >= kDefMenueZeilen || d.Benennung[i] == kFreiEintrag) return {};
    return d.Benennung[i];
}

std::array<std::string, kDefMenueZeilen> fctNeueBlockAttribute(const typDefMenue& d) {
    std::array<std::string, kDefMenueZeilen> werte;
    for (int i = 0; i < kDefMenueZeilen; ++i)
        if (d.Standardwert[i] != kFreiEintrag) werte[i] = d.Standardwert[i];
    return werte;
}

}  // namespace tessara
