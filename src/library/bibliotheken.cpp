#include "library/bibliotheken.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>

#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "db/catalog.h"
#include "db/recordset.h"
#include "jet/sql/text_rules.h"
#include "jet/sql/value.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "library/zugriff.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "startup/registry_werte.h"

namespace tessara {

// --- The database list ---------------------------------------------------------------

int fctDbListenIndex(const ProgrammZustand& z, const std::string& strVerzeichnis) {
    const auto& l = z.aryDbVerzeichnis;
    for (std::size_t i = 0; i < l.size(); ++i)
        if (fctDbEintragGueltig(l[i]) && fctGleichesVerzeichnis(l[i], strVerzeichnis))
            return static_cast<int>(i);
    return -1;
}

bool fctDbListeErweitern(ProgrammZustand& z, const std::string& strVerzeichnis) {
    if (fctDbListenIndex(z, strVerzeichnis) >= 0) return false;
    auto& l = z.aryDbVerzeichnis;
    const std::string d = fctOhneBackslash(strVerzeichnis);
    if (l.size() == 1 && !fctDbEintragGueltig(l[0]))
        l[0] = d;
    else
        l.push_back(d);
    subSpeichernTessaraIniDatei(z);
    return true;
}

bool fctDbListeEntfernen(ProgrammZustand& z, const std::string& strVerzeichnis) {
    const int i = fctDbListenIndex(z, strVerzeichnis);
    if (i < 0) return false;
    auto& l = z.aryDbVerzeichnis;
    l.erase(l.begin() + i);
    // The list is read up to its first empty key: the one past the new end
    // must not go on naming the last entry twice.
    IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "DbVerzeichnis" + std::to_string(l.size()),
                "");
    if (l.empty()) l.push_back("0");
    subSpeichernTessaraIniDatei(z);
    return true;
}

typDbSuche fctVorhandeneDbSuchen(const ProgrammZustand& z) {
    typDbSuche s;
    if (!z.strAktuelleDb.empty()) {
        const std::string dir = fctVerzeichnisVon(z.strAktuelleDb);
        if (fctVerzeichnisExistiert(dir)) {
            s.strDb = z.strAktuelleDb;
            return s;
        }
        s.strFehlt = dir;
    }
    for (const auto& d : z.aryDbVerzeichnis)
        if (fctDbEintragGueltig(d) && fctVerzeichnisExistiert(d)) {
            s.strDb = fctDbDatei(d);
            break;
        }
    return s;
}

std::string fctUebergebeneBibliothek(ProgrammZustand& z) {
    std::string pfad;
    pfad.swap(z.strUebergabeDb);
    if (pfad.empty() || pfad == "TestDb") return {};
    const bool datei = pfad.size() > 4 && sql::textEquals(pfad.substr(pfad.size() - 4), ".mdb");
    return datei ? fctVerzeichnisVon(pfad) : fctOhneBackslash(pfad);
}

// --- Older libraries ---------------------------------------------------------------------

namespace {

bool hatTabelle(const std::vector<std::string>& tabellen, const std::string& name) {
    return std::any_of(tabellen.begin(), tabellen.end(),
                       [&](const std::string& t) { return sql::textEquals(t, name); });
}

std::vector<std::string> tabellenVon(db::Connection& con) {
    db::Catalog cat;
    cat.setActiveConnection(con);
    return cat.tables();
}

// The column's type as ALTER TABLE takes it.
std::string sqlTyp(db::DataType typ, int groesse) {
    const std::string t = sql::columnTypeName(db::columnTypeOf(typ));
    return t == "TEXT" ? t + "(" + std::to_string(groesse > 0 ? groesse : 255) + ")" : t;
}

// The fields of a table, without reading a row of it.
db::Recordset felderVon(db::Connection& con, const std::string& tabelle) {
    db::Recordset rs;
    rs.open("SELECT * FROM [" + tabelle + "] WHERE 1 = 0", con);
    return rs;
}

}  // namespace

std::string fctBlockTabelle(db::Connection& con) {
    const auto tabellen = tabellenVon(con);
    if (!hatTabelle(tabellen, "tblBlockInfoInventor")) return "tblBlockInfo";
    if (hatTabelle(tabellen, "tblBlockInfo")) {
        db::Recordset rs;
        rs.open("SELECT TOP 1 Nr FROM tblBlockInfo", con);
        if (rs.recordCount() > 0) return "tblBlockInfo";
    }
    return "tblBlockInfoInventor";
}

long fctDatenbankAktualisieren(ProgrammZustand& z, const db::StorageOpener& oeffner,
                               const std::string& strDb) {
    Prozedur p(z, "fctDatenbankAktualisieren");
    return p.geschuetztNurLog(-1L, [&] {
        long neu = 0;
        db::Connection con(oeffner);
        p.step("Verbindung öffnen");
        con.open(fctJetVerbindung(strDb));
        auto tabellen = tabellenVon(con);
        if (!hatTabelle(tabellen, "tblMarkierteBloecke")) {
            p.step("tblMarkierteBloecke anlegen");
            con.close();  // subMk_TblMarkierteBloecke opens its own connection
            if (!subMk_TblMarkierteBloecke(z, oeffner, strDb)) return -1L;
            con.open(fctJetVerbindung(strDb));
            ++neu;
        }
        for (const auto& t : fctKatalogTabellen()) {
            if (!hatTabelle(tabellen, t.name)) {
                if (t.name != "tblVariationBloecke") continue;  // tblBlockInfo: an Inventor library
                p.step("tblVariationBloecke anlegen");
                db::Catalog cat;
                cat.setActiveConnection(con);
                db::CatalogTable ct;
                ct.name = t.name;
                ct.appendColumn("Nr", db::adInteger).autoIncrement = true;
                for (const auto& s : t.spalten)
                    ct.appendColumn(s.name, s.typ, s.groesse).nullable = true;
                ct.keys.push_back({"PrimaryKey", db::adKeyPrimary, {"Nr"}, {}, {}});
                cat.appendTable(ct);
                ++neu;
                continue;
            }
            const db::Recordset rs = felderVon(con, t.name);
            for (const auto& s : t.spalten) {
                if (fctSpalteVorhanden(rs, s.name)) continue;
                p.step("Spalte " + t.name + "." + s.name);
                if (!fctSpalteAnlegenFallsNichtVorhanden(z, con, rs, t.name, s.name,
                                                         sqlTyp(s.typ, s.groesse)))
                    return -1L;
                ++neu;
            }
        }
        if (neu > 0) subDebugLog(z, "Datenbank ergänzt: " + std::to_string(neu));
        return neu;
    });
}

std::string fctSlideLibRelativ(const std::string& strEintrag, const std::string& strOrdnerNr,
                               const std::string& strBasis) {
    const std::string code = fctOhneBlanks(strOrdnerNr);
    auto gross = [](std::string s) {
        for (auto& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return s;
    };
    const std::string e = gross(strEintrag);
    if (strEintrag.empty() || code.empty() || e.rfind(gross(code), 0) == 0) return strEintrag;
    // A library that was moved keeps its old base in the entries; the
    // Folder's directory is where the relative part begins.
    const auto pos = e.rfind("\\" + gross(code) + "\\");
    if (pos != std::string::npos) return strEintrag.substr(pos + 1);
    const std::string basis = gross(fctBackslashAmEndeAnfuegen(strBasis));
    if (!strBasis.empty() && e.rfind(basis, 0) == 0) return strEintrag.substr(basis.size());
    return strEintrag;
}

long fctPfadEintragAendern(ProgrammZustand& z, db::Connection& con, const std::string& strBasis) {
    Prozedur p(z, "fctPfadEintragAendern", true);
    return p.geschuetztNurLog(-1L, [&] {
        p.step("Ordner lesen");
        std::map<long, std::string> codes;
        db::Recordset o;
        o.open("SELECT Nr, OrdnerNr FROM tblOrdner", con);
        for (o.recordCount() > 0 ? o.moveFirst() : void(); o.recordCount() > 0 && !o.eof();
             o.moveNext())
            codes[static_cast<long>(o.value("Nr").asInt())] = o.text("OrdnerNr");
        p.step("Einträge lesen");
        db::Recordset rs;
        rs.open("SELECT Nr, Block, OrdnerID, SlideLib FROM tblBlockInfo", con, db::adOpenKeyset,
                db::adLockOptimistic);
        auto neuerWert = [&]() -> std::string {
            const auto v = rs.value("OrdnerID");
            const auto c = v.isNull() ? codes.end() : codes.find(static_cast<long>(v.asInt()));
            const std::string alt = rs.text("SlideLib");
            return c == codes.end() ? alt : fctSlideLibRelativ(alt, c->second, strBasis);
        };
        long n = 0;
        if (rs.recordCount() > 0)
            for (rs.moveFirst(); !rs.eof(); rs.moveNext()) n += neuerWert() != rs.text("SlideLib");
        if (n == 0) return 0L;
        if (z.benutzer)
            z.benutzer->fortschritt(
                0, n,
                fctMsgboxText(z, {MsgboxZeile(kMsgEintraegeAendern), MsgboxZeile(kMsgDauertEtwas)},
                              kGruppeAllg));
        p.step("Einträge ändern");
        long erledigt = 0;
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
            const std::string neu = neuerWert();
            if (neu == rs.text("SlideLib")) continue;
            rs.setValue("SlideLib", neu);
            rs.update();
            ++erledigt;
        }
        if (z.benutzer) z.benutzer->fortschritt(0, 0, {});
        return erledigt;
    });
}

std::string fctAlteDatenbankSuchen(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                   const std::string& strVerzeichnis) {
    Prozedur p(z, "fctAlteDatenbankSuchen");
    return p.geschuetztNurLog(std::string(), [&] {
        std::vector<std::string> namen;
        for (const auto& e : std::filesystem::directory_iterator(fctNativerPfad(strVerzeichnis))) {
            const auto u8 = e.path().filename().u8string();
            const std::string n(u8.begin(), u8.end());
            if (e.is_regular_file() && n.size() > 4 &&
                sql::textEquals(n.substr(n.size() - 4), ".mdb") &&
                !sql::textEquals(n, "dbTessara.mdb"))
                namen.push_back(n);
        }
        std::sort(namen.begin(), namen.end());
        for (const auto& n : namen) {
            const std::string pfad = fctBackslashAmEndeAnfuegen(strVerzeichnis) + n;
            try {
                db::Connection con(oeffner);
                con.open(fctJetVerbindung(pfad));
                const auto t = tabellenVon(con);
                if (hatTabelle(t, "tblOrdner") &&
                    (hatTabelle(t, "tblBlockInfo") || hatTabelle(t, "tblBlockInfoInventor")))
                    return pfad;
            } catch (const std::exception& e) {
                p.fehler(e, true);  // not a catalogue of ours: the next file
            }
        }
        return std::string();
    });
}

bool fctAlteDatenbankImportieren(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                 const std::string& strAlt, const std::string& strNeu) {
    Prozedur p(z, "fctAlteDatenbankImportieren");
    if (fctDateiExistiert(strNeu)) {
        p.fehler("Datenbank gibt es schon: " + strNeu, 0, true);
        return false;
    }
    const bool ok = p.geschuetzt(false, [&] {
        p.step("Mk_Datenbank ");
        if (!Mk_Datenbank(z, oeffner, strNeu)) return false;
        db::Connection alt(oeffner), neu(oeffner);
        alt.open(fctJetVerbindung(strAlt));
        neu.open(fctJetVerbindung(strNeu));
        db::Catalog altKat, neuKat;
        altKat.setActiveConnection(alt);
        neuKat.setActiveConnection(neu);
        const auto neueTabellen = neuKat.tables();
        for (const auto& t : altKat.tables()) {
            if (t.rfind("MSys", 0) == 0) continue;
            const std::string quelle = "FROM [" + t + "] IN '" + strAlt + "'";
            if (!hatTabelle(neueTabellen, t)) {
                p.step("Tabelle kopieren " + t);
                neu.execute("SELECT * INTO [" + t + "] " + quelle);
                continue;
            }
            p.step("Spalten ergänzen " + t);
            const db::Recordset felder = felderVon(neu, t);
            std::string spalten;
            for (const auto& c : altKat.table(t).columns) {
                if (!fctSpalteVorhanden(felder, c.name))
                    neu.execute("ALTER TABLE [" + t + "] ADD COLUMN [" + c.name + "] " +
                                sqlTyp(c.type, c.definedSize));
                spalten += (spalten.empty() ? "[" : ", [") + c.name + "]";
            }
            // The default rows give way: the older rows keep their keys, which
            // the other tables refer to.
            p.step("Zeilen kopieren " + t);
            neu.execute("DELETE FROM [" + t + "]");
            neu.execute("INSERT INTO [" + t + "] (" + spalten + ") SELECT " + spalten + " " +
                        quelle);
        }
        return true;
    });
    if (!ok) {
        std::error_code ec;
        std::filesystem::remove(fctNativerPfad(strNeu), ec);
    }
    return ok;
}

ImportAngebot fctAlteDatenbankAnbieten(ProgrammZustand& z, const db::StorageOpener& oeffner,
                                       const std::string& strVerzeichnis, std::string& strAlt) {
    strAlt = fctAlteDatenbankSuchen(z, oeffner, strVerzeichnis);
    if (strAlt.empty()) return ImportAngebot::KeineDa;
    if (!fctMsgbox(z, MsgboxArt::Frage,
                   {MsgboxZeile(kMsgAlteDatenbank), MsgboxZeile(strAlt),
                    MsgboxZeile(kMsgAlteDatenbankImportieren)}))
        return ImportAngebot::Abgelehnt;
    return fctAlteDatenbankImportieren(z, oeffner, strAlt,
                                       fctDbDatei(fctOhneBackslash(strVerzeichnis)))
               ? ImportAngebot::Importiert
               : ImportAngebot::Fehlgeschlagen;
}

}  // namespace tessara
