#include "search/zuletzt_eingefuegt.h"

#include <algorithm>

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

}  // namespace tessara
