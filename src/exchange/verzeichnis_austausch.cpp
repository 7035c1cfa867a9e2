#include "exchange/verzeichnis_austausch.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>
#include <system_error>

#include "authoring/code_tabelle.h"
#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "captions/meldungen.h"
#include "library/zugriff.h"
#include "organisation/ordner_verwaltung.h"
#include "organisation/seiten_verwaltung.h"
#include "platform/case_fold.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace fs = std::filesystem;

namespace {

constexpr const char* kInventor = "tblBlockInfoInventor";

std::string sqlText(const std::string& s) {
    std::string t = "'";
    for (const char c : s) t += c == '\'' ? std::string("''") : std::string(1, c);
    return t + "'";
}

std::string utf8(const fs::path& p) {
    const auto u = p.u8string();
    return {u.begin(), u.end()};
}

// The name without its extension, at most n characters (not bytes).
std::string gekuerzt(const std::string& s, std::size_t n) {
    std::size_t zeichen = 0, i = 0;
    for (; i < s.size(); ++i)
        if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80 && zeichen++ == n) break;
    return s.substr(0, i);
}

// What a file name may not hold on the user's system becomes "_".
std::string dateiName(std::string s) {
    for (auto& c : s)
        if (static_cast<unsigned char>(c) < 0x20 ||
            std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos)
            c = '_';
    while (!s.empty() && (s.back() == ' ' || s.back() == '.')) s.pop_back();
    return s;
}

std::string csvFeld(const std::string& s) {
    if (s.find_first_of(";\"\r\n") == std::string::npos) return s;
    std::string t = "\"";
    for (const char c : s) t += c == '"' ? std::string("\"\"") : std::string(1, c);
    return t + "\"";
}

bool weiter(ProgrammZustand& z, long erledigt, long gesamt, const std::string& text) {
    return !z.benutzer || z.benutzer->fortschrittMitAbbruch(erledigt, gesamt, text);
}

void fertig(ProgrammZustand& z) {
    if (z.benutzer) z.benutzer->fortschritt(0, 0, {});
}

}  // namespace

std::vector<std::string> fctZeichnungenImVerzeichnis(const std::string& strVerzeichnis) {
    std::vector<std::string> dateien;
    std::error_code ec;
    for (fs::directory_iterator it(fctNativerPfad(strVerzeichnis), ec), ende; !ec && it != ende;
         it.increment(ec)) {
        const std::string name = utf8(it->path().filename());
        if (it->is_regular_file(ec) && name.size() > 4 &&
            platform::equalsIgnoreCase(name.substr(name.size() - 4), ".dwg"))
            dateien.push_back(fctBackslashAmEndeAnfuegen(strVerzeichnis) + name);
    }
    // In the order Explorer shows them: "Ventil 2" before "Ventil 10".
    std::sort(dateien.begin(), dateien.end(), [](const std::string& a, const std::string& b) {
        std::size_t i = 0, j = 0;
        while (i < a.size() && j < b.size()) {
            if (std::isdigit(static_cast<unsigned char>(a[i])) &&
                std::isdigit(static_cast<unsigned char>(b[j]))) {
                const std::size_t i0 = i, j0 = j;
                while (i < a.size() && std::isdigit(static_cast<unsigned char>(a[i]))) ++i;
                while (j < b.size() && std::isdigit(static_cast<unsigned char>(b[j]))) ++j;
                const auto x = a.substr(i0, i - i0), y = b.substr(j0, j - j0);
                const auto xs = x.substr(std::min(x.find_first_not_of('0'), x.size()));
                const auto ys = y.substr(std::min(y.find_first_not_of('0'), y.size()));
                if (xs.size() != ys.size()) return xs.size() < ys.size();
                if (xs != ys) return xs < ys;
                continue;
            }
            const int ca = std::tolower(static_cast<unsigned char>(a[i++]));
            const int cb = std::tolower(static_cast<unsigned char>(b[j++]));
            if (ca != cb) return ca < cb;
        }
        return a.size() - i < b.size() - j;
    });
    return dateien;
}

long fctZeichnungenEinlesen(ProgrammZustand& z, NavigationsModell& m,
                            const std::vector<std::string>& dateien,
                            const std::string& strOrdnerName, const std::string& strSeitenname) {
    Prozedur p(z, "fctZeichnungenEinlesen");
    long angelegt = 0;
    const bool ok = p.geschuetzt(false, [&] {
        if (dateien.empty()) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgKeineZeichnungen});
            return false;
        }
        p.step("Ordner");
        const int index = m.fctOrdnerIndex(strOrdnerName);
        std::string code;
        if (index >= 0) {
            code = m.aryOrdner()[static_cast<std::size_t>(index)].OrdnerNr;
        } else if (!fctOrdnerNeu(z, m, strOrdnerName, &code)) {
            return false;
        }
        if (!m.fctOrdnerWaehlen(code)) return false;
        const auto* o = m.aktuellerOrdner();
        if (!o) return false;
        const long ordnerId = o->Nr;
        code = fctOhneBlanks(o->OrdnerNr);
        typDatenbank& d = m.datenbank();
        const std::string T = z.strTblBlockInfo;
        const std::string basis = m.strBasisVerzeichnis();

        p.step("belegte Plätze lesen");
        std::set<std::string> belegt;
        std::set<long> seiten;
        {
            db::Recordset rs;
            rs.open("SELECT Block FROM " + T + " WHERE OrdnerID = " + std::to_string(ordnerId),
                    d.con);
            for (; !rs.eof(); rs.moveNext()) belegt.insert(rs.text("Block"));
            db::Recordset s;
            s.open("SELECT SeitenNr FROM tblSeiten WHERE NrTblOrdner = " + std::to_string(ordnerId),
                   d.con);
            for (; !s.eof(); s.moveNext()) seiten.insert(static_cast<long>(s.value(0).asInt()));
        }
        const auto& codes = m.codeTabelle();
        const long proSeite = std::max(1, m.slotsProSeite());
        const long gesamt = static_cast<long>(dateien.size());
        const std::string text =
            fctBeschriftMsgboxZuordnen(z, kMsgZeichnungenEingelesen, kGruppeAllg);
        int neueSeiten = 0;
        long k = 0;
        for (const auto& datei : dateien) {
            if (!weiter(z, angelegt, gesamt, text)) break;
            std::string nr;
            for (; k < static_cast<long>(codes.size()); ++k) {
                nr = fctBlocknummer(code, k, codes[static_cast<std::size_t>(k)]);
                if (!belegt.count(nr) && !fctPfadExistiert(basis + fctZeichnungDatei(code, nr, 0)))
                    break;
            }
            if (k >= static_cast<long>(codes.size())) {
                fctMsgbox(z, MsgboxArt::Info, {kMsgKeinFreierPlatz});
                break;
            }
            const long seite = k / proSeite + 1;
            if (!seiten.count(seite)) {
                p.step("Seite anlegen");
                if (!fctSeiteAnlegenOhneKontrolle(z, m, seite,
                                                  fctSeitenNameMitIndex(strSeitenname, neueSeiten)))
                    throw std::runtime_error("Seite nicht angelegt: " + std::to_string(seite));
                seiten.insert(seite);
                ++neueSeiten;
            }
            p.step("Zeichnung kopieren");
            const std::string ziel = basis + fctZeichnungDatei(code, nr, 0);
            std::error_code ec;
            if (!fctDateiVerzeichnisAnlegen(ziel) ||
                !fs::copy_file(fctNativerPfad(datei), fctNativerPfad(ziel), ec))
                throw std::runtime_error("nicht kopiert: " + datei + " (" + ec.message() + ")");
            const std::string name = utf8(fctNativerPfad(datei).stem());
            try {
                d.con.execute("INSERT INTO " + T + " (Block, OrdnerID, " +
                              (T == kInventor ? "BlkName" : "BlkName0") + ", M0) VALUES (" +
                              sqlText(nr) + ", " + std::to_string(ordnerId) + ", " +
                              sqlText(gekuerzt(name, 32)) + ", " + sqlText(gekuerzt(name, 100)) +
                              ")");
            } catch (...) {
                DeleteAFile(z, ziel);
                throw;
            }
            belegt.insert(nr);
            ++angelegt;
        }
        return true;
    });
    fertig(z);
    m.RecordsetRsBlockInfo0NeuEinlesen();
    m.subSeiteNeuAnzeigen();
    return ok || angelegt > 0 ? angelegt : -1;
}

long fctVerzeichnisEinlesen(ProgrammZustand& z, NavigationsModell& m,
                            const std::string& strVerzeichnis, const std::string& strOrdnerName) {
    const std::string name = utf8(fctNativerPfad(fctOhneBackslash(strVerzeichnis)).filename());
    if (fctIniByteLesen(z, z.strIniDatei, kAllgemeineDaten, "bytEinzelEinlesen") == 1) {
        const std::string datei =
            z.benutzer ? z.benutzer->dateiWaehlen(strOrdnerName, strVerzeichnis,
                                                  "AutoCAD-Zeichnung (*.dwg)|*.dwg", false)
                       : std::string();
        if (datei.empty()) return 0;
        return fctZeichnungenEinlesen(z, m, {datei}, strOrdnerName, name);
    }
    return fctZeichnungenEinlesen(z, m, fctZeichnungenImVerzeichnis(strVerzeichnis), strOrdnerName,
                                  name);
}

long fctZeichnungenAusgeben(ProgrammZustand& z, NavigationsModell& m, const std::string& strCode,
                            const std::string& strVerzeichnis) {
    Prozedur p(z, "fctZeichnungenAusgeben");
    long geschrieben = 0;
    const bool ok = p.geschuetzt(false, [&] {
        const std::string code = fctOhneBlanks(strCode);
        const typOrdnerEintrag* o = nullptr;
        for (const auto& e : m.aryOrdner())
            if (fctOhneBlanks(e.OrdnerNr) == code) o = &e;
        if (!o) {
            fctMsgbox(z, MsgboxArt::Info, {kMsgOrdnerVerschwunden});
            return false;
        }
        std::string spalte =
            IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "sSpalteDateiNameExport");
        if (spalte.empty()) {
            spalte = "M0";
            fctWertAllgInIniSpeichern(z, "sSpalteDateiNameExport", spalte);
        }
        const bool inventor = z.strTblBlockInfo == kInventor;
        db::Recordset rs;
        rs.open("SELECT * FROM " + z.strTblBlockInfo +
                    " WHERE OrdnerID = " + std::to_string(o->Nr) + " ORDER BY Block",
                m.datenbank().con);
        if (!fctSpalteVorhanden(rs, spalte)) {
            p.fehler("Spalte für Dateinamen fehlt: " + spalte, 0, true);
            spalte = "M0";
        }
        if (!fctVerzeichnisAnlegen(strVerzeichnis))
            throw std::runtime_error("Verzeichnis nicht angelegt: " + strVerzeichnis);
        const std::string ziel = fctBackslashAmEndeAnfuegen(strVerzeichnis);
        std::set<std::string> vergeben;
        auto frei = [&](const std::string& stamm, const std::string& endung) {
            for (int i = 1;; ++i) {
                const std::string n =
                    stamm + (i > 1 ? " (" + std::to_string(i) + ")" : "") + endung;
                std::string klein = n;
                for (auto& c : klein)
                    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
                if (!vergeben.count(klein) && !fctPfadExistiert(ziel + n)) {
                    vergeben.insert(klein);
                    return n;
                }
            }
        };
        std::string csv =
            "\xEF\xBB\xBF"
            "Datei;Block;Blockname";
        for (int i = 0; i < 10; ++i) csv += ";M" + std::to_string(i);
        csv += "\r\n";
        const long gesamt = rs.recordCount();
        const std::string text =
            fctBeschriftMsgboxZuordnen(z, kMsgZeichnungenGeschrieben, kGruppeAllg);
        long gesehen = 0;
        for (; !rs.eof(); rs.moveNext()) {
            if (!weiter(z, gesehen++, gesamt, text)) break;
            const std::string nr = rs.text("Block");
            const std::string quelle = m.strBasisVerzeichnis() + fctZeichnungDatei(code, nr, 0);
            if (!fctDateiExistiert(quelle)) continue;
            std::string stamm = dateiName(rs.text(spalte));
            if (stamm.empty()) stamm = nr;
            const std::string datei = frei(stamm, ".dwg");
            std::error_code ec;
            if (!fs::copy_file(fctNativerPfad(quelle), fctNativerPfad(ziel + datei), ec))
                throw std::runtime_error("nicht kopiert: " + quelle + " (" + ec.message() + ")");
            ++geschrieben;
            csv += csvFeld(datei) + ";" + csvFeld(nr) + ";" +
                   csvFeld(rs.text(inventor ? "BlkName" : "BlkName0"));
            for (int i = 0; i < 10; ++i) csv += ";" + csvFeld(rs.text("M" + std::to_string(i)));
            csv += "\r\n";
        }
        const std::string liste = ziel + frei(dateiName(o->OrdnerName), ".csv");
        std::ofstream aus(fctNativerPfad(liste), std::ios::binary);
        aus << csv;
        if (!aus.flush()) throw std::runtime_error("nicht geschrieben: " + liste);
        return true;
    });
    fertig(z);
    return ok ? geschrieben : -1;
}

}  // namespace tessara
