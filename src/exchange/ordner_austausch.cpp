#include "exchange/ordner_austausch.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <filesystem>
#include <map>
#include <set>
#include <stdexcept>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "captions/meldungen.h"
#include "db/catalog.h"
#include "editing/datei_umzug.h"
#include "editing/varianten_datei.h"
#include "exchange/baum_kopie.h"
#include "library/datenbank.h"
#include "library/zugriff.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/schreib_einheit.h"
#include "platform/environment.h"
#include "platform/files.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace fs = std::filesystem;

namespace {

constexpr const char* kInventor = "tblBlockInfoInventor";
constexpr const char* kTmp = ".tmp";

// The directory of a path as the user chose it: the file dialog gives "/"
// on every system, a typed path may hold "\".
std::string verzeichnisDer(const std::string& strDatei) {
    const auto p = strDatei.find_last_of("\\/");
    return p == std::string::npos ? std::string(".") : strDatei.substr(0, p);
}

std::string unter(const std::string& verzeichnis, const std::string& name) {
    return fctBackslashAmEndeAnfuegen(verzeichnis) + name;
}

// The connection the statements run on: the export file, opened the way the
// program opens every other catalogue.
void verbinden(db::Connection& con, const std::string& strDatei) {
    con.cursorLocation = db::adUseClient;
    con.provider = "Microsoft.Jet.OLEDB.4.0";
    con.open(fctJetVerbindung(strDatei) + ";User ID=;Password=");
}

bool tabelleDa(db::Connection& con, const std::string& name) {
    const auto s = con.storage();
    return s && s->table(name) != nullptr;
}

// A directory that is in the way goes aside under "geloescht", as a deleted
// Folder's does; nothing in it is lost.
bool beiseite(ProgrammZustand& z, const std::string& von) {
    if (!fctPfadExistiert(von)) return true;
    std::string nach = von + "geloescht";
    for (int i = 1; fctPfadExistiert(nach); ++i) nach = von + "geloescht" + std::to_string(i);
    return MoveAFolder(z, von, nach);
}

// A copy of a file in the temporary directory, gone with this object.
struct Arbeitskopie {
    explicit Arbeitskopie(const std::string& datei) {
        static std::atomic<int> laufend{0};
        std::error_code ec;
        const fs::path ziel = fs::temp_directory_path(ec) /
                              ("tessara_import_" + std::to_string(platform::processId()) + "_" +
                               std::to_string(++laufend) + ".mdb");
        if (!fs::copy_file(fctNativerPfad(datei), ziel, fs::copy_options::overwrite_existing, ec))
            throw std::runtime_error("Arbeitskopie nicht angelegt: " + datei + " (" + ec.message() +
                                     ")");
        pfad = platform::programPath(ziel.string());
    }
    ~Arbeitskopie() {
        std::error_code ec;
        fs::remove(fctNativerPfad(pfad), ec);
    }
    Arbeitskopie(const Arbeitskopie&) = delete;
    Arbeitskopie& operator=(const Arbeitskopie&) = delete;
    std::string pfad;
};

struct Fortschritt {
    ProgrammZustand& z;
    std::string text;
    long gesamt = 1;
    long erledigt = 0;
    // false once the user pressed Cancel.
    bool weiter() {
        ++erledigt;
        return !z.benutzer ||
               z.benutzer->fortschrittMitAbbruch(erledigt, std::max(gesamt, erledigt + 1), text);
    }
    ~Fortschritt() {
        if (z.benutzer) z.benutzer->fortschritt(0, 0, {});
    }
};

}  // namespace

std::string fctImportSpalten(const std::string& strTabelle) {
    if (strTabelle == kInventor)
        return "Block, Index, OrdnerID, BlkName, EinzelTeilDateiName, M0, M1, M2, M3, M4, M5, "
               "M6, M7, M8, M9";
    std::string s = "Block, OrdnerID, SlideLib, BlkName0, BlkName1, BlkName2, BlkName3, BlkName4";
    for (int i = 0; i < 10; ++i) s += ", M" + std::to_string(i);
    for (int v = 0; v < 5; ++v)
        for (const char punkt : std::string("ABCDEF"))
            for (const char achse : std::string("XYZ"))
                s += std::string(", ") + punkt + achse + std::to_string(v);
    for (int v = 0; v < 5; ++v) s += ", FktRuf" + std::to_string(v);
    return s + ", Prg, Layer, LyLine, LyColor";
}

bool fctOrdnerExportieren(ProgrammZustand& z, NavigationsModell& m, const std::string& strCode,
                          const std::string& strDatei) {
    Prozedur p(z, "frmOrdnerExport.cmbOk_Click", true);
    const std::string code = fctOhneBlanks(strCode);
    const std::string ziel = unter(verzeichnisDer(strDatei), code);
    const std::string tmpDatei = strDatei + kTmp, tmpZiel = ziel + kTmp;
    auto aufraeumen = [&] {
        if (fctPfadExistiert(tmpZiel)) DeleteAFolder(z, tmpZiel);
        if (fctPfadExistiert(tmpDatei)) DeleteAFile(z, tmpDatei);
    };
    return p.geschuetzt(false, [&] {
        typDatenbank& d = m.datenbank();
        const std::string T = z.strTblBlockInfo;
        long nr = 0, menue = 1;
        {
            SchreibEinheit e(d.con);
            p.step("Ordner suchen");
            d.rsOrdner.requery();
            if (d.rsOrdner.recordCount() > 0) d.rsOrdner.moveFirst();
            if (d.rsOrdner.recordCount() < 1 || !d.rsOrdner.find("OrdnerNr Like '" + code + "'")) {
                fctMsgbox(z, MsgboxArt::Info, {kMsgOrdnerVerschwunden});
                return false;
            }
            nr = fctLongWert(d.rsOrdner, "Nr");
            if (const long k = fctLongWert(d.rsOrdner, "NrTblDefMenue"); k > 0) menue = k;
        }
        p.step("Datei prüfen");
        // What an unfinished export to this file left is its own to clear;
        // anything else already there is someone's work.
        if (fctDateiExistiert(tmpDatei)) {
            if (fctPfadExistiert(ziel) && !fctPfadExistiert(strDatei)) DeleteAFolder(z, ziel);
            aufraeumen();
        }
        for (const std::string& da : {strDatei, ziel})
            if (fctPfadExistiert(da)) {
                fctMsgbox(z, MsgboxArt::Info, {kMsgDateiGibtEsSchon, da, kMsgAndererDateiname});
                return false;
            }
        const std::string quelle = m.strBasisVerzeichnis() + code;
        const auto dateien = fctBaumDateien(quelle);
        Fortschritt f{z, fctBeschriftMsgboxZuordnen(z, kMsgOrdnerWirdKopiert, kGruppeAllg),
                      static_cast<long>(dateien.size()) + 4};
        try {
            p.step("Datei anlegen");
            if (!fctDateiVerzeichnisAnlegen(tmpDatei))
                throw std::runtime_error("Verzeichnis nicht angelegt: " + tmpDatei);
            {
                db::Catalog neu;
                neu.create(fctJetVerbindung(tmpDatei), d.oeffner);
            }
            db::Connection con(d.oeffner);
            verbinden(con, tmpDatei);
            const std::string lib = " IN '" + d.strPfad + "'";
            const std::string n = std::to_string(nr);
            p.step("Tabellen kopieren");
            con.execute("SELECT * INTO " + T + " " + "FROM " + T + lib + " WHERE OrdnerID = " + n);
            f.weiter();
            con.execute("SELECT * INTO tblDefMenue " + std::string("FROM tblDefMenue") + lib +
                        " WHERE Nr = " + std::to_string(menue));
            f.weiter();
            con.execute("SELECT * INTO tblSeiten " + std::string("FROM tblSeiten") + lib +
                        " WHERE NrTblOrdner = " + n);
            f.weiter();
            con.execute("SELECT * INTO tblVariationBloecke " +
                        std::string("FROM tblVariationBloecke") + lib + " WHERE BlockID IN " +
                        "(SELECT Nr FROM " + T + " WHERE OrdnerID = " + n + ")");
            con.close();
            if (!f.weiter()) {
                aufraeumen();
                return false;
            }
            p.step("Verzeichnis kopieren");
            if (!fctBaumKopieren(quelle, tmpZiel, dateien, {}, [&] { return f.weiter(); })) {
                aufraeumen();
                return false;
            }
            p.step("umbenennen");
            if ((fctPfadExistiert(tmpZiel) && !MoveAFolder(z, tmpZiel, ziel)) ||
                !MoveAFile(z, tmpDatei, strDatei))
                throw std::runtime_error("nicht umbenannt: " + tmpDatei);
        } catch (...) {
            aufraeumen();
            throw;
        }
        return true;
    });
}

namespace {

// The export file's Folder: its old code (from the block numbers) and the
// rows the import rewrites.
struct Quelle {
    std::string code;
    std::map<std::string, std::string> nummern;  // old block number -> new
};

std::string neueNummer(const std::string& alt, const std::string& altCode,
                       const std::string& neuCode) {
    return alt.compare(0, altCode.size(), altCode) == 0 ? neuCode + alt.substr(altCode.size())
                                                        : alt;
}

// The file name a copied file takes: a name that begins with an old block
// number begins with the new one.
std::string umbenannt(const Quelle& q, const std::string& name) {
    if (q.nummern.empty()) return name;
    const std::size_t n = q.nummern.begin()->first.size();
    if (name.size() < n) return name;
    const auto it = q.nummern.find(name.substr(0, n));
    return it == q.nummern.end() ? name : it->second + name.substr(n);
}

}  // namespace

bool fctOrdnerImportieren(ProgrammZustand& z, NavigationsModell& m, const std::string& strDatei,
                          const std::string& strName) {
    Prozedur p(z, "frmOrdnerImport.cmbOk_Click", true);
    return p.geschuetzt(false, [&] {
        typDatenbank& d = m.datenbank();
        const std::string T = z.strTblBlockInfo;
        const bool inventor = T == kInventor;
        auto name = fctNamePruefen(z, strName);
        if (!name) return false;
        if (name->empty()) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgNameFuerNeuenOrdner});
            return false;
        }
        if (!fctDateiExistiert(strDatei)) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgDateiNichtGefunden, strDatei});
            return false;
        }
        p.step("Ordnername suchen");
        long alt = 0;
        std::string altCode;
        {
            SchreibEinheit e(d.con);
            d.rsOrdner.requery();
            if (d.rsOrdner.recordCount() > 0) {
                d.rsOrdner.moveFirst();
                if (d.rsOrdner.find("OrdnerName Like '" + *name + "'")) {
                    alt = fctLongWert(d.rsOrdner, "Nr");
                    altCode = fctOhneBlanks(d.rsOrdner.text("OrdnerNr"));
                }
            }
        }
        if (alt != 0) {
            if (!fctMsgboxFrageVierzeilig(z, kMsgOrdnerNameGibtEs, kMsgBloeckeWerdenGeloescht,
                                          kMsgVerzeichnisWirdUmbenannt, kMsgTrotzdemImportieren))
                return false;
            p.step("alten Ordner leeren");
            const std::string n = std::to_string(alt);
            d.con.execute("DELETE FROM " + T + " WHERE " + "OrdnerID = " + n);
            d.con.execute("DELETE FROM tblSeiten WHERE " + std::string("NrTblOrdner = ") + n);
            d.con.execute("DELETE FROM tblVariationBloecke " + std::string("WHERE BlockID IN ") +
                          "(SELECT Nr FROM " + T + " WHERE OrdnerID = " + n + ")");
            if (!beiseite(z, m.strBasisVerzeichnis() + altCode))
                throw std::runtime_error("Verzeichnis nicht umbenannt: " + altCode);
            // The emptied row goes too, so that the name is free for the new Folder.
            d.con.execute("DELETE FROM tblOrdner WHERE Nr = " + n);
            m.OrdnerInArrayEinlesen();
        }
        if (inventor && !fctMsgboxFrageDreizeilig12(z, kMsgInventorBibliothek, kMsgTeiledateien,
                                                    kMsgImportFortsetzen))
            return false;

        // The statements point the file's rows at the new Folder and give its
        // Blocks the new code: they run on a copy, so that the file chosen
        // stays as it was for the next import, into this library or another.
        const Arbeitskopie kopie(strDatei);
        db::Connection con(d.oeffner);
        verbinden(con, kopie.pfad);
        for (const std::string& t : {T, std::string("tblSeiten"), std::string("tblDefMenue")})
            if (!tabelleDa(con, t)) {
                fctMsgbox(z, MsgboxArt::Info, {kMsgKeinExportierterOrdner, strDatei});
                return false;
            }
        const bool mitVarianten = tabelleDa(con, "tblVariationBloecke");
        Quelle q;
        {
            db::Recordset rs;
            rs.open("SELECT Block" + std::string(inventor ? "" : ", SlideLib") + " FROM " + T, con);
            for (; !rs.eof(); rs.moveNext()) {
                const std::string b = rs.text("Block");
                // Block numbers are the code, then the slot's own digits (four).
                if (q.code.empty() && b.size() > 4) q.code = b.substr(0, b.size() - 4);
                q.nummern[b];
            }
        }
        const std::string quelle = unter(verzeichnisDer(strDatei), q.code);
        const auto dateien = q.code.empty() ? std::vector<std::string>() : fctBaumDateien(quelle);
        Fortschritt f{z, fctBeschriftMsgboxZuordnen(z, kMsgOrdnerWirdKopiert, kGruppeAllg),
                      static_cast<long>(dateien.size()) + 5};
        const std::string lib = " IN '" + d.strPfad + "'";

        p.step("Definitionsmenü kopieren");
        long menue = 0;
        {
            db::Recordset rs;
            rs.open("SELECT Nr FROM tblDefMenue", d.con);
            for (; !rs.eof(); rs.moveNext()) menue = std::max(menue, fctLongWert(rs, "Nr"));
        }
        con.execute("INSERT INTO tblDefMenue IN '" + d.strPfad + "' SELECT global, Benennung1, " +
                    "Standardwert1, " + " Benennung2, Standardwert2, Benennung3, Standardwert3, " +
                    "Benennung4, Standardwert4, " + "Benennung5, Standardwert5, Benennung6, " +
                    "Standardwert6, Benennung7, Standardwert7, " + "Benennung8, Standardwert8, " +
                    "Benennung9, Standardwert9, Benennung10, Standardwert10 " + "FROM tblDefMenue");
        {
            // The new menu's key: the highest after the insert (keys only grow).
            db::Recordset rs;
            rs.open("SELECT Nr FROM tblDefMenue WHERE Nr > " + std::to_string(menue), d.con);
            for (; !rs.eof(); rs.moveNext()) menue = std::max(menue, fctLongWert(rs, "Nr"));
        }
        f.weiter();

        p.step("Ordner anlegen");
        std::string code;
        if (!fctOrdnerNeu(z, m, *name, &code)) return false;
        code = fctOhneBlanks(code);
        long neu = 0;
        {
            SchreibEinheit e(d.con);
            db::Recordset rs;
            rs.open("SELECT * FROM tblOrdner", d.con, db::adOpenKeyset, db::adLockOptimistic);
            long letzte = 0;
            for (; !rs.eof(); rs.moveNext())
                if (fctOhneBlanks(rs.text("OrdnerNr")) != code)
                    letzte = std::max(letzte, fctLongWert(rs, "NrTblOrdnen"));
            rs.moveFirst();
            if (!rs.find("OrdnerNr Like '" + code + "'"))
                throw std::runtime_error("neuer Ordner nicht gefunden: " + code);
            neu = fctLongWert(rs, "Nr");
            rs.setValue("NrTblDefMenue", static_cast<long long>(menue));
            rs.setValue("NrTblOrdnen", static_cast<long long>(std::max(letzte + 1, neu)));
            rs.update();
            e.commit();
        }
        f.weiter();
        for (auto& [altNr, neuNr] : q.nummern) neuNr = neueNummer(altNr, q.code, code);

        p.step("Dateien kopieren");
        const std::string zielOrdner = m.strBasisVerzeichnis() + code;
        auto zurueck = [&] {
            if (fctPfadExistiert(zielOrdner)) DeleteAFolder(z, zielOrdner);
            d.con.execute("DELETE FROM tblOrdner WHERE Nr = " + std::to_string(neu));
            m.OrdnerInArrayEinlesen();
        };
        if (!beiseite(z, zielOrdner))
            throw std::runtime_error("Verzeichnis nicht umbenannt: " + zielOrdner);
        const auto umschreiben = [&](const std::string& rel, std::string& bytes) {
            // A Block's Variant record file names the Variants' drawings.
            if (rel.size() < 4 || rel.compare(rel.size() - 4, 4, ".dat") != 0) return;
            auto saetze = fctVariantenSaetzeLesen(bytes);
            if (!saetze) return;
            for (auto& s : *saetze) s.datei = umbenannt(q, s.datei);
            bytes = fctVariantenSaetzeBytes(*saetze);
        };
        bool ok = true;
        try {
            ok = fctBaumKopieren(
                quelle, zielOrdner, dateien,
                {[&](const std::string& n) { return umbenannt(q, n); }, umschreiben},
                [&] { return f.weiter(); });
        } catch (...) {
            zurueck();
            throw;
        }
        if (!ok) {
            zurueck();
            return false;
        }
        if (inventor) {
            // The part files lie below "Block\" & code, beside the Folders.
            const std::string teile = unter(unter(verzeichnisDer(strDatei), "Block"), q.code);
            if (fctVerzeichnisExistiert(teile)) {
                const auto liste = fctBaumDateien(teile);
                fctBaumKopieren(teile, m.strBasisVerzeichnis() + "Block\\" + code, liste, {},
                                [] { return true; });
            }
        }

        p.step("Seiten kopieren");
        const std::string n = std::to_string(neu);
        con.execute("UPDATE tblSeiten SET NrTblOrdner = " + n);
        con.execute("INSERT INTO tblSeiten" + lib + " SELECT SeitenNr, SeitenName, NrTblOrdner " +
                    "FROM tblSeiten");
        f.weiter();

        p.step("Blöcke kopieren");
        con.execute("UPDATE " + T + " SET OrdnerID = " + n);
        std::map<long, std::string> altNrBlock;
        {
            SchreibEinheit e(con);
            db::Recordset rs;
            rs.open("SELECT * FROM " + T, con, db::adOpenKeyset, db::adLockOptimistic);
            for (; !rs.eof(); rs.moveNext()) {
                const std::string b = rs.text("Block");
                const std::string nb = neueNummer(b, q.code, code);
                altNrBlock[fctLongWert(rs, "Nr")] = nb;
                if (nb == b) continue;
                rs.setValue("Block", nb);
                if (!inventor && !rs.value("SlideLib").isNull()) {
                    const std::string s = rs.text("SlideLib");
                    rs.setValue("SlideLib",
                                fctSlideLibEintrag(code, nb, !fctSlideLibIstEinzeldia(s)));
                }
                rs.update();
            }
            e.commit();
        }
        con.execute("INSERT INTO " + T + lib + " SELECT " + fctImportSpalten(T) + " FROM " + T);
        f.weiter();

        if (mitVarianten) {
            p.step("Varianten kopieren");
            std::map<std::string, long> neueNr;
            {
                db::Recordset rs;
                rs.open("SELECT Nr, Block FROM " + T + " WHERE OrdnerID = " + n, d.con);
                for (; !rs.eof(); rs.moveNext()) neueNr[rs.text("Block")] = fctLongWert(rs, "Nr");
            }
            {
                SchreibEinheit e(con);
                db::Recordset rs;
                rs.open("SELECT * FROM tblVariationBloecke", con, db::adOpenKeyset,
                        db::adLockOptimistic);
                for (; !rs.eof(); rs.moveNext()) {
                    const auto b = altNrBlock.find(fctLongWert(rs, "BlockID"));
                    const auto k = b == altNrBlock.end() ? neueNr.end() : neueNr.find(b->second);
                    // A Variant whose Block did not come along points at nothing.
                    rs.setValue("BlockID", k == neueNr.end() ? sql::Value::null()
                                                             : sql::Value::integer(k->second));
                    rs.setValue("BlockDateiName", umbenannt(q, rs.text("BlockDateiName")));
                    rs.update();
                }
                e.commit();
            }
            con.execute("INSERT INTO tblVariationBloecke" + lib +
                        " SELECT BlockName, BlockID, BlockDateiName FROM tblVariationBloecke " +
                        "WHERE BlockID IS NOT NULL");
        }
        f.weiter();
        if (inventor) {
            p.step("RelativerDateiPfad");
            db::Recordset rs;
            rs.open("SELECT * FROM " + T + " WHERE OrdnerID = " + n, d.con, db::adOpenKeyset,
                    db::adLockOptimistic);
            if (fctSpalteVorhanden(rs, "RelativerDateiPfad")) {
                SchreibEinheit e(d.con);
                for (; !rs.eof(); rs.moveNext()) {
                    rs.setValue("RelativerDateiPfad",
                                "Block\\" + code + "\\" + rs.text("EinzelTeilDateiName"));
                    rs.update();
                }
                e.commit();
            }
        }
        con.close();
        p.step("Ordner anzeigen");
        return fctCboOrdnerNeuAnzeigen(z, m, *name);
    });
}

}  // namespace tessara
