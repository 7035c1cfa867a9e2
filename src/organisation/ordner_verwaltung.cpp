#include "organisation/ordner_verwaltung.h"

#include <algorithm>
#include <exception>
#include <map>
#include <set>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "captions/meldungen.h"
#include "jet/sql/error.h"
#include "library/zugriff.h"
#include "organisation/ordner_codes.h"
#include "organisation/schreib_einheit.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

constexpr const char* kSortSpalte = "NrTblOrdnen";
constexpr const char* kOhneOrdnung = "SELECT * FROM [tblOrdner]";

// Characters, not bytes: names arrive as UTF-8.
std::size_t zeichenAnzahl(const std::string& s) {
    return static_cast<std::size_t>(std::count_if(
        s.begin(), s.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

void info(ProgrammZustand& z, std::vector<MsgboxZeile> zeilen) {
    fctMsgbox(z, MsgboxArt::Info, zeilen);
}

long hoechsterSchluessel(db::Recordset& rs) {
    long k = 0;
    if (rs.recordCount() < 1) return 0;
    for (rs.moveFirst(); !rs.eof(); rs.moveNext()) k = std::max(k, fctLongWert(rs, "Nr"));
    return k;
}

// Entries 0 .. lngBis of the code table; the file is read again only when
// the probe for a free code goes past what was read.
bool codesBis(ProgrammZustand& z, long lngBis, std::vector<std::string>& codes) {
    if (static_cast<long>(codes.size()) > lngBis) return true;
    return fctOrdnerCodesEinlesen(z, fctCodeTabelleDatei(z.strAppPfad), lngBis, codes);
}

enum class Ergebnis {
    Ok,
    NameVergeben,
    Codetabelle,
    KeinCode,
    Verschwunden,
    LetzterOrdner,
    Verzeichnis,
    InternerFehler
};

}  // namespace

std::optional<std::string> fctNamePruefen(ProgrammZustand& z, const std::string& strName) {
    const auto a = strName.find_first_not_of(' ');
    const std::string name =
        a == std::string::npos ? std::string() : fctOhneBlanks(strName.substr(a));
    for (const unsigned char c : name) {
        if (c < 0x20 ||
            std::string_view("'[]%*?#").find(static_cast<char>(c)) != std::string_view::npos) {
            info(z, {kMsgZeichenUngueltig, name});
            return std::nullopt;
        }
    }
    if (zeichenAnzahl(name) > kNameLaenge) {
        info(z, {kMsgNameZuLang});
        return std::nullopt;
    }
    return name;
}

bool fctOrdnerSortierenLesen(ProgrammZustand& z) {
    return IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "nOrdnerSortieren") == "1";
}

void subOrdnerSortierenSpeichern(ProgrammZustand& z, bool booNachName) {
    fctWertAllgInIniSpeichern(z, "nOrdnerSortieren", booNachName ? "1" : "0");
}

bool fctNrTblOrdnenAnlegen(ProgrammZustand& z, NavigationsModell& m) {
    Prozedur p(z, "fctNrTblOrdnenAnlegen");
    return p.geschuetzt(false, [&] {
        typDatenbank& d = m.datenbank();
        if (fctSpalteVorhanden(d.rsOrdner, kSortSpalte)) return true;
        {
            SchreibEinheit e(d.con);
            // Another workstation may have added it since rsOrdner was read.
            d.rsOrdner.requery();
            if (!fctSpalteVorhanden(d.rsOrdner, kSortSpalte)) {
                p.step("Spalte anlegen");
                if (!fctSpalteAnlegenFallsNichtVorhanden(z, d.con, d.rsOrdner, "tblOrdner",
                                                         kSortSpalte, "SHORT", std::string("Nr")))
                    return false;
            }
            e.commit();
        }
        d.rsOrdner.requery();
        return fctSpalteVorhanden(d.rsOrdner, kSortSpalte);
    });
}

bool fctOrdnerReihenfolgeLesen(ProgrammZustand& z, NavigationsModell& m, bool booNachName) {
    Prozedur p(z, "fctOrdnerReihenfolgeLesen");
    return p.geschuetzt(false, [&] {
        typDatenbank& d = m.datenbank();
        db::Recordset& rs = d.rsOrdner;
        if (rs.state() != db::adStateOpen)
            rs.open(kOhneOrdnung, d.con, db::adOpenKeyset, db::adLockOptimistic);
        const std::string sql = fctOrdnerSql(booNachName, fctSpalteVorhanden(rs, kSortSpalte));
        m.setOrdnerSortieren(booNachName);
        if (rs.source() == sql) {
            rs.requery();
            return true;
        }
        rs.close();
        rs.open(sql, d.con, db::adOpenKeyset, db::adLockOptimistic);
        return true;
    });
}

std::vector<typOrdnerZeile> fctOrdnerZeilen(ProgrammZustand& z, NavigationsModell& m) {
    Prozedur p(z, "fctOrdnerZeilen");
    std::vector<typOrdnerZeile> zeilen;
    try {
        if (!m.OrdnerInArrayEinlesen()) return zeilen;
        std::map<long, std::string> rechte;
        db::Recordset rs;
        rs.open("SELECT Nr, OrdnerRechte FROM tblOrdner", m.datenbank().con);
        for (; !rs.eof(); rs.moveNext()) rechte[fctLongWert(rs, "Nr")] = rs.text("OrdnerRechte");
        for (const auto& o : m.aryOrdner())
            zeilen.push_back({o.Nr, o.OrdnerNr, o.OrdnerName, rechte[o.Nr]});
    } catch (const std::exception& e) {
        p.fehler(e);
    }
    return zeilen;
}

bool fctOrdnerNeu(ProgrammZustand& z, NavigationsModell& m, const std::string& strName,
                  std::string* strCode) {
    Prozedur p(z, "frmOrdnerNeu.cmbOk_Click");
    return p.geschuetzt(false, [&] {
        p.step("NrTblOrdnen prüfen");
        if (!fctNrTblOrdnenAnlegen(z, m)) return false;
        const auto name = fctNamePruefen(z, strName);
        if (!name) return false;
        if (name->empty()) {
            subMsgboxInfoZweizeilig(z, kMsgOrdnerNameFehlt1, kMsgOrdnerNameFehlt2);
            return false;
        }
        typDatenbank& d = m.datenbank();
        db::Recordset& rs = d.rsOrdner;
        Ergebnis r = Ergebnis::Ok;
        std::string code;
        // Codes the server's key refused: also those of Folders that the
        // server's Folder rights hide from this login, which no look here
        // can find.
        std::set<std::string> abgewiesen;
        // On a catalogue server the unit does not keep other workstations
        // out: one may take the same code in between, and the server's unique
        // key refuses the second (or gives up one of two crossing units). The
        // loser looks again and takes the next.
        for (int versuch = 1;; ++versuch) try {
                r = Ergebnis::Ok;
                code.clear();
                SchreibEinheit e(d.con);
                rs.requery();
                p.step("Name suchen");
                if (fctRsFind(z, rs, "Ordnername", *name)) {
                    r = Ergebnis::NameVergeben;
                } else {
                    p.step("freien Code suchen");
                    // The first code at or after the highest key that no Folder
                    // carries: codes of deleted Folders below it are never given
                    // again, as their Blocks may still be in the database.
                    long k = hoechsterSchluessel(rs);
                    const long start = k;
                    std::vector<std::string> codes;
                    while (r == Ergebnis::Ok) {
                        if (!codesBis(z, k + 1, codes)) {
                            r = Ergebnis::Codetabelle;
                        } else if (!abgewiesen.count(codes[k]) &&
                                   !fctRsFind(z, rs, "OrdnerNr", codes[k])) {
                            code = codes[k];
                            break;
                        } else if (++k - start > kCodeTabelleLaenge) {
                            r = Ergebnis::KeinCode;
                        }
                    }
                }
                if (r == Ergebnis::Ok) {
                    p.step("Ordner anlegen");
                    rs.addNew();
                    rs.setValue("OrdnerNr", code);
                    rs.setValue("Ordnername", *name);
                    rs.setValue("NrTblDefMenue", 1);
                    rs.update();
                    // The key is known only now; a new Folder sorts last.
                    rs.setValue(kSortSpalte, static_cast<long long>(fctLongWert(rs, "Nr")));
                    rs.update();
                    e.commit();
                }
                break;
            } catch (const sql::Error& fehler) {
                if (!fctRennenVerloren(fehler.number()) || versuch >= kRennenVersuche) throw;
                if (fehler.number() == kDoppelterSchluessel) abgewiesen.insert(code);
                if (rs.editing()) rs.cancelUpdate();
            }
        switch (r) {
            case Ergebnis::NameVergeben:
                subMsgboxInfoZweizeilig(z, kMsgOrdnerNameVergeben, kMsgAndererName);
                return false;
            case Ergebnis::Codetabelle:
                info(z, {kMsgCodetabelle, fctCodeTabelleDatei(z.strAppPfad)});
                return false;
            case Ergebnis::KeinCode:
                info(z, {kMsgKeinCodeFrei});
                return false;
            default:
                break;
        }
        if (strCode) *strCode = code;
        p.step("Requery");
        m.OrdnerInArrayEinlesen();
        return true;
    });
}

bool fctOrdnerUmbenennen(ProgrammZustand& z, NavigationsModell& m, const std::string& strAlt,
                         const std::string& strNeu) {
    Prozedur p(z, "frmOrdnerUmbenennen.cmbOk_Click");
    return p.geschuetzt(false, [&] {
        const auto neu = fctNamePruefen(z, strNeu);
        if (!neu) return false;
        if (neu->empty()) {
            subMsgboxInfoZweizeilig(z, kMsgOrdnerNameFehlt1, kMsgOrdnerNameFehlt2);
            return false;
        }
        typDatenbank& d = m.datenbank();
        db::Recordset& rs = d.rsOrdner;
        Ergebnis r = Ergebnis::InternerFehler;
        {
            SchreibEinheit e(d.con);
            rs.requery();
            p.step("neuen Namen suchen");
            if (fctRsFind(z, rs, "Ordnername", *neu)) {
                r = Ergebnis::NameVergeben;
            } else if (rs.recordCount() > 0) {
                p.step("alten Ordner suchen");
                // The criterion finds names that contain the old one; only
                // the exact name (blanks on the right aside) is the Folder.
                rs.moveFirst();
                while (!rs.eof() && rs.find("Ordnername Like '%" + strAlt + "%'")) {
                    if (fctOhneBlanks(rs.text("OrdnerName")) == strAlt) {
                        r = Ergebnis::Ok;
                        break;
                    }
                    rs.moveNext();
                }
            }
            if (r == Ergebnis::Ok) {
                p.step("umbenennen");
                rs.setValue("Ordnername", *neu);
                rs.update();
                e.commit();
            }
        }
        if (r == Ergebnis::NameVergeben) {
            info(z, {kMsgOrdnerMitNamen, *neu, kMsgAndererName});
            return false;
        }
        if (r != Ergebnis::Ok) {
            info(z, {std::string(kOrdnerInternerFehler)});
            return false;
        }
        m.OrdnerInArrayEinlesen();
        return true;
    });
}

bool fctOrdnerLoeschen(ProgrammZustand& z, NavigationsModell& m, long lngNr) {
    Prozedur p(z, "frmOrdnerverwaltung.cmbLoeschen_Click");
    return p.geschuetzt(false, [&] {
        typDatenbank& d = m.datenbank();
        db::Recordset& rs = d.rsOrdner;
        const std::string strNr = std::to_string(lngNr);
        // The state of the Folder, read in a unit of its own: the question
        // comes between the reading and the writing, outside any unit.
        struct Lage {
            Ergebnis r = Ergebnis::Ok;
            std::string code;
            long bloecke = 0;
        };
        auto lesen = [&]() {
            Lage l;
            rs.requery();
            if (rs.recordCount() < 2) {
                l.r = Ergebnis::LetzterOrdner;
                return l;
            }
            rs.moveFirst();
            if (!rs.find("Nr = " + strNr)) {
                l.r = Ergebnis::Verschwunden;
                return l;
            }
            l.code = fctOhneBlanks(rs.text("OrdnerNr"));
            db::Recordset bloecke;
            bloecke.open(
                "SELECT Block, OrdnerID FROM " + z.strTblBlockInfo + " WHERE OrdnerID = " + strNr,
                d.con, db::adOpenStatic, db::adLockReadOnly);
            l.bloecke = bloecke.recordCount();
            return l;
        };
        auto melden = [&](Ergebnis r) {
            if (r == Ergebnis::LetzterOrdner && z.benutzer) {
                // Message 54 under the title of a question (4).
                z.benutzer->meldung(fctBeschriftMsgboxZuordnen(z, kMsgLetzterOrdner, kGruppeAllg),
                                    fctBeschriftMsgboxZuordnen(z, kMeldungTitelFrage, kGruppeAllg),
                                    Symbol::Information, Knoepfe::Ok);
            } else if (r == Ergebnis::Verschwunden) {
                info(z, {kMsgOrdnerVerschwunden});
            }
            return false;
        };
        Lage vorher;
        {
            SchreibEinheit e(d.con);
            p.step("Ordner lesen");
            vorher = lesen();
        }
        if (vorher.r != Ergebnis::Ok) return melden(vorher.r);
        p.step("fragen");
        if (vorher.bloecke > 0
                ? !fctMsgboxFrageZweizeilig2(z, kMsgOrdnerMitBloecken, kMsgOrdnerLoeschen)
                : !fctMsgboxFrageEinzeilig(z, kMsgOrdnerLoeschen))
            return false;

        std::string von, nach;
        Ergebnis r = Ergebnis::Ok;
        {
            SchreibEinheit e(d.con);
            const Lage jetzt = lesen();
            r = jetzt.r;
            if (r == Ergebnis::Ok && jetzt.bloecke > 0 &&
                fctFolderExist(z, m.strBasisVerzeichnis() + jetzt.code)) {
                p.step("Verzeichnis umbenennen");
                // The drawings stay on disk under the renamed directory; a
                // directory deleted under this code before keeps its name.
                von = m.strBasisVerzeichnis() + jetzt.code;
                nach = von + "geloescht";
                for (int i = 1; fctFolderExist(z, nach); ++i)
                    nach = von + "geloescht" + std::to_string(i);
                if (!MoveAFolder(z, von, nach)) r = Ergebnis::Verzeichnis;
            }
            if (r == Ergebnis::Ok) {
                try {
                    p.step("Ordner löschen");
                    rs.deleteCurrent();
                    rs.update();
                    e.commit();
                } catch (...) {
                    if (!nach.empty()) MoveAFolder(z, nach, von);
                    throw;
                }
            }
        }
        if (r == Ergebnis::Verzeichnis) {
            info(z, {kMsgVerzeichnisUmbenennen, von});
            return false;
        }
        if (r != Ergebnis::Ok) return melden(r);
        p.step("Requery");
        rs.requery();
        if (rs.recordCount() > 0) rs.moveFirst();
        m.OrdnerInArrayEinlesen();
        return true;
    });
}

bool fctWertVersetzen(ProgrammZustand& z, int intRichtung, db::Recordset& rs, long lngPosition,
                      const std::string& strFeld) {
    Prozedur p(z, "fctWertVersetzen");
    return p.geschuetzt(false, [&] {
        rs.setAbsolutePosition(lngPosition);
        const sql::Value erster = rs.value(strFeld);
        if (intRichtung == 1)
            rs.moveNext();
        else
            rs.movePrevious();
        if (rs.eof() || rs.bof()) return false;
        const sql::Value nachbar = rs.value(strFeld);
        rs.setValue(strFeld, erster);
        rs.update();
        if (intRichtung == 1)
            rs.movePrevious();
        else
            rs.moveNext();
        rs.setValue(strFeld, nachbar);
        rs.update();
        rs.requery();
        return true;
    });
}

bool fctOrdnerVerschieben(ProgrammZustand& z, NavigationsModell& m, long lngZeile, int intRichtung,
                          long* lngNeueZeile) {
    Prozedur p(z, "imgAufAb_Click");
    return p.geschuetzt(false, [&] {
        if (fctOrdnerSortierenLesen(z)) {
            subMsgboxInfoVierZeilig121(z, kMsgSortiert1, kMsgSortiert2, kMsgSortiert3,
                                       kMsgSortiert4);
            return false;
        }
        if (!fctNrTblOrdnenAnlegen(z, m)) return false;
        db::Recordset& rs = m.datenbank().rsOrdner;
        std::string name;
        {
            SchreibEinheit e(m.datenbank().con);
            if (!fctOrdnerReihenfolgeLesen(z, m, false)) return false;
            const long n = rs.recordCount();
            if (lngZeile < 0 || lngZeile >= n) return false;
            if ((intRichtung == 1 && lngZeile == n - 1) || (intRichtung != 1 && lngZeile == 0))
                return false;
            rs.setAbsolutePosition(lngZeile + 1);
            name = rs.text("OrdnerName");
            p.step("Wert versetzen");
            if (!fctWertVersetzen(z, intRichtung == 1 ? 1 : 0, rs, lngZeile + 1, kSortSpalte))
                return false;
            e.commit();
        }
        p.step("Ordner wieder finden");
        rs.requery();
        const long neu = fctRsFind(z, rs, "OrdnerName", name) ? rs.absolutePosition() - 1 : -1;
        if (lngNeueZeile) *lngNeueZeile = neu;
        m.OrdnerInArrayEinlesen();
        return true;
    });
}

bool fctCboOrdnerNeuAnzeigen(ProgrammZustand& z, NavigationsModell& m, const std::string& strName,
                             bool booReihenfolgeBehalten) {
    Prozedur p(z, "fctCboOrdnerNeuAnzeigen", true);
    return p.geschuetzt(false, [&] {
        const std::string name = !strName.empty()      ? strName
                                 : m.aktuellerOrdner() ? m.aktuellerOrdner()->OrdnerName
                                                       : std::string();
        if (!booReihenfolgeBehalten && !fctOrdnerReihenfolgeLesen(z, m, fctOrdnerSortierenLesen(z)))
            return false;
        if (!m.OrdnerInArrayEinlesen()) return false;
        db::Recordset& rs = m.datenbank().rsOrdner;
        p.step("Ordner suchen");
        if (!fctRsFind(z, rs, "OrdnerName", name)) return false;
        // The Folder box holds the Folders the user may see, in rsOrdner's
        // order: its index is the Folder's place in the array, not in rsOrdner.
        const int i = m.fctOrdnerIndex(name);
        return i >= 0 && m.comboxOrdner_Click(i);
    });
}

}  // namespace tessara
