#include "captions/beschriftung.h"

#include <cctype>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <system_error>
#include <unordered_map>

#include "platform/case_fold.h"
#include "startup/fehler_log.h"
#include "startup/ini_datei.h"
#include "startup/pfade.h"

namespace tessara {

namespace fs = std::filesystem;

namespace {

// One caption file, sections and keys folded to lower case (the INI engine
// compares them without regard to case); the first section and the first
// key of a name win, as they do for the engine.
struct BeschriftungsText {
    std::unordered_map<std::string, std::unordered_map<std::string, std::string>> sektionen;
};

struct Geladen {
    fs::file_time_type zeit{};
    std::uintmax_t groesse = 0;
    bool vorhanden = false;
    std::shared_ptr<const BeschriftungsText> text;
};

// The files are read once per change rather than once per control: a window
// of 72 slots asks a few hundred times while it is captioned. The keys
// already reported belong to the log file they were written to, so every
// run (and every test, with its own log) reports each key once.
struct Speicher {
    std::mutex m;
    std::map<std::string, Geladen> dateien;
    std::set<std::string> gemeldet;
};

Speicher& speicher() {
    static Speicher s;
    return s;
}

std::shared_ptr<const BeschriftungsText> auswerten(const IniText& ini) {
    auto t = std::make_shared<BeschriftungsText>();
    for (const std::string& s : ini.sektionen()) {
        const std::string sk = platform::foldCase(s);
        if (t->sektionen.count(sk)) continue;
        auto& werte = t->sektionen[sk];
        for (const std::string& k : ini.schluessel(s)) {
            if (auto w = ini.wert(s, k)) werte.emplace(platform::foldCase(k), std::move(*w));
        }
    }
    return t;
}

// The file's text, read again when its size or time changed. A missing or
// unreadable file reads as empty; the missing keys then report it.
std::shared_ptr<const BeschriftungsText> datei(ProgrammZustand& z, const std::string& strDatei) {
    std::error_code ec;
    const fs::path p = fctNativerPfad(strDatei);
    const bool vorhanden = fs::is_regular_file(p, ec);
    const auto zeit = vorhanden ? fs::last_write_time(p, ec) : fs::file_time_type{};
    const auto groesse = vorhanden ? fs::file_size(p, ec) : 0;

    Speicher& sp = speicher();
    {
        std::lock_guard<std::mutex> lock(sp.m);
        auto it = sp.dateien.find(strDatei);
        if (it != sp.dateien.end() && it->second.vorhanden == vorhanden &&
            it->second.zeit == zeit && it->second.groesse == groesse)
            return it->second.text;
    }
    IniText ini;
    std::string fehler;
    if (vorhanden && fctIniLaden(strDatei, ini, fehler) == IniStatus::Fehler) {
        subErrorAllgemein(z, true, fehler, 0, {"Beschriftungsdatei lesen"});
    }
    auto text = auswerten(ini);
    std::lock_guard<std::mutex> lock(speicher().m);
    sp.dateien[strDatei] = Geladen{zeit, groesse, vorhanden, text};
    return text;
}

std::optional<std::string> wertIn(const BeschriftungsText& t, const std::string& sektion,
                                  const std::string& schluessel) {
    auto s = t.sektionen.find(platform::foldCase(sektion));
    if (s == t.sektionen.end()) return std::nullopt;
    auto w = s->second.find(platform::foldCase(schluessel));
    if (w == s->second.end()) return std::nullopt;
    return w->second;
}

std::string anzeigeSchluessel(const std::string& f, const std::string& c) {
    if (c.empty()) return f;
    if (f.empty()) return c;
    return f + "." + c;
}

}  // namespace

std::string fctBeschriftungsDatei(const ProgrammZustand& z, BeschriftungsArt art) {
    const char* teil = art == BeschriftungsArt::Frm      ? "Frm_"
                       : art == BeschriftungsArt::Msgbox ? "Msgbox_"
                                                         : "Tooltip_";
    return z.strAppPfad + z.strBeschriftDatei + teil + z.strSprache + ".txt";
}

bool fctBeschriftungsFileZuordnenIni(ProgrammZustand& z) {
    return fctDateiExistiert(fctBeschriftungsDatei(z, BeschriftungsArt::Frm));
}

std::optional<std::string> fctBeschriftungWert(ProgrammZustand& z, BeschriftungsArt art,
                                               const std::string& strSektion,
                                               const std::string& strSchluessel) {
    return wertIn(*datei(z, fctBeschriftungsDatei(z, art)), strSektion, strSchluessel);
}

std::string fctBeschriftung(ProgrammZustand& z, const std::string& strSchluessel,
                            const std::string& strSektion) {
    return fctBeschriftungWert(z, BeschriftungsArt::Frm, strSektion, strSchluessel)
        .value_or(std::string());
}

std::string fctOhneIndex(const std::string& c) {
    const std::size_t unterstrich = c.rfind('_');
    if (unterstrich == std::string::npos || unterstrich == 0 || unterstrich + 1 == c.size())
        return c;
    for (std::size_t i = unterstrich + 1; i < c.size(); ++i)
        if (!std::isdigit(static_cast<unsigned char>(c[i]))) return c;
    return c.substr(0, unterstrich);
}

std::optional<std::string> fctBeschriftungSuchen(ProgrammZustand& z, BeschriftungsArt art,
                                                 const std::string& f, const std::string& c,
                                                 int intEintrag) {
    const auto text = datei(z, fctBeschriftungsDatei(z, art));
    if (c.empty()) return wertIn(*text, "Speziell", f);

    const std::string ohne = fctOhneIndex(c);
    const std::string eintrag = intEintrag >= 0 ? "_" + std::to_string(intEintrag) : std::string();
    // Speziell: the control as named, then the array; Gruppe: the array;
    // Allg: as named, then the array.
    const std::string kandidaten[][2] = {
        {"Speziell", anzeigeSchluessel(f, c + eintrag)},
        {"Speziell", anzeigeSchluessel(f, ohne + eintrag)},
        {"Gruppe", ohne + eintrag},
        {"Allg", c + eintrag},
        {"Allg", ohne + eintrag},
    };
    for (const auto& k : kandidaten) {
        if (auto w = wertIn(*text, k[0], k[1])) return w;
    }
    return std::nullopt;
}

bool fctFehlendeBeschriftungMelden(ProgrammZustand& z, BeschriftungsArt art,
                                   const std::string& strSchluessel) {
    const std::string strDatei = fctBeschriftungsDatei(z, art);
    const std::string merk = fctErrorDatei(z) + "|" + strDatei + "|" + strSchluessel;
    {
        Speicher& sp = speicher();
        std::lock_guard<std::mutex> lock(sp.m);
        if (!sp.gemeldet.insert(merk).second) return false;
    }
    const char* was = art == BeschriftungsArt::Msgbox ? "Meldung" : "Beschriftung";
    // One plain line, not an error record: a missing caption is no error of
    // the run, and counted as one it would soon silence the real error boxes.
    const std::string zeile =
        std::string(was) + " fehlt: " + strSchluessel + " (" + strDatei + ")\r\n";
    std::ofstream out(fctNativerPfad(fctErrorDatei(z)), std::ios::binary | std::ios::app);
    if (out) out.write(zeile.data(), static_cast<std::streamsize>(zeile.size()));
    return true;
}

std::string fctSteuerelementText(ProgrammZustand& z, const std::string& f, const std::string& c) {
    if (auto w = fctBeschriftungSuchen(z, BeschriftungsArt::Frm, f, c)) return *w;
    const std::string schluessel = anzeigeSchluessel(f, c);
    fctFehlendeBeschriftungMelden(z, BeschriftungsArt::Frm, schluessel);
    return schluessel;
}

}  // namespace tessara
