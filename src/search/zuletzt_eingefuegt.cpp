#include "search/zuletzt_eingefuegt.h"

#include <algorithm>

#include "authoring/datei_layout.h"
#include "db/recordset.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/ini_datei.h"

namespace tessara {

namespace {

std::string schluessel(std::size_t i) { return "Block" + std::to_string(i); }

}  // namespace

std::vector<std::string> fctZuletztLesen(ProgrammZustand& z, const std::string& strDbVerzeichnis) {
    std::vector<std::string> liste;
    const std::string datei = fctDbIniDatei(strDbVerzeichnis);
    for (std::size_t i = 0; i < kZuletztAnzahl; ++i) {
        const std::string nr = IniGetValue(z, datei, kZuletztSektion, schluessel(i));
        if (nr.empty()) break;
        if (std::find(liste.begin(), liste.end(), nr) == liste.end()) liste.push_back(nr);
    }
    return liste;
}

std::vector<std::string> fctZuletztErgaenzen(std::vector<std::string> liste,
                                             const std::vector<std::string>& neu) {
    for (const auto& nr : neu) {
        if (nr.empty()) continue;
        liste.erase(std::remove(liste.begin(), liste.end(), nr), liste.end());
        liste.insert(liste.begin(), nr);
    }
    if (liste.size() > kZuletztAnzahl) liste.resize(kZuletztAnzahl);
    return liste;
}

bool fctZuletztSpeichern(ProgrammZustand& z, const std::string& strDbVerzeichnis,
                         const std::vector<std::string>& liste) {
    Prozedur p(z, "fctZuletztSpeichern");
    const std::string datei = fctDbIniDatei(strDbVerzeichnis);
    IniText text;
    std::string fehler;
    if (fctIniLaden(datei, text, fehler) == IniStatus::Fehler) {
        p.fehler(fehler, 0, true);
        return false;
    }
    // One write of the whole section: a crash leaves the old list or the new.
    text.sektionEntfernen(kZuletztSektion);
    for (std::size_t i = 0; i < liste.size() && i < kZuletztAnzahl; ++i)
        text.setzen(kZuletztSektion, schluessel(i), liste[i]);
    if (!fctIniSpeichern(datei, text)) {
        p.fehler("dbTessara.ini kann nicht geschrieben werden: " + datei, 0, true);
        return false;
    }
    return true;
}

std::map<std::string, typZuletztBlock> fctZuletztBloeckeLesen(db::Connection& con,
                                                              const std::vector<std::string>& liste,
                                                              const std::string& strTabelle) {
    std::map<std::string, typZuletztBlock> daten;
    std::string bedingung;
    // A number with a quote cannot be a block number of ours; it would end
    // the text literal early.
    for (const auto& nr : liste)
        if (nr.find('\'') == std::string::npos)
            bedingung += (bedingung.empty() ? "" : " OR ") + std::string("Block = '") + nr + "'";
    if (bedingung.empty()) return daten;
    db::Recordset rs;
    const bool inventor = strTabelle != "tblBlockInfo";  // one with no slide column
    rs.open(std::string(inventor ? "SELECT Block, M0" : "SELECT Block, SlideLib, M0") + " FROM [" +
                strTabelle + "] WHERE " + bedingung,
            con);
    if (rs.state() == db::adStateOpen && rs.recordCount() > 0)
        for (rs.moveFirst(); !rs.eof(); rs.moveNext()) {
            const std::string nr = rs.text("Block");
            daten[nr] = {
                inventor ? fctSlideLibEintrag(nr.substr(0, 3), nr, false) : rs.text("SlideLib"),
                rs.text("M0")};
        }
    return daten;
}

}  // namespace tessara
