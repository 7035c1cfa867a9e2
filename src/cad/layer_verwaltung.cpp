#include "cad/layer_verwaltung.h"

#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "cad/einfuege_texte.h"
#include "cad/lt_skript.h"
#include "platform/case_fold.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/platform.h"
#include "startup/fehler_log.h"
#include "startup/ini_datei.h"
#include "startup/pfade.h"
#include "startup/zeichensatz.h"

// The layer configurations in the Settings file. Each configuration is a
// section of its own, named "LayerStates." followed by the configuration's
// name; its keys are "Layer" followed by 0, 1, 2 … and each value holds one
// layer as six fields joined by ";":
//
//   [LayerStates.Entwurf]
//   Anzahl=2
//   Layer0=0;7;Continuous;1;0;0
//   Layer1=Wände;1;DASHED;1;0;1
//
// name; colour (AutoCAD colour index 1 to 255); line type; on (1) or off (0);
// frozen (1) or thawed (0); locked (1) or not (0). ";" cannot be part of a
// layer name in AutoCAD, so it cannot be part of a field. "Anzahl" only keeps
// the section of an empty configuration; the layers are what the Layer keys
// hold, in file order. A line of the section that is no "Layer…" key with
// six good fields is broken: it is skipped and shown to the user, the other
// layers of the configuration still count. Section names compare without
// regard to case, as the private-profile functions do, so "Plot" and "PLOT"
// are one configuration; the first section of a name wins. The values are
// read whole, not through the 120-character buffer of the other keys,
// because a layer name alone may be longer.

namespace tessara {

namespace {

const std::string kSektionPraefix = "LayerStates.";
const std::string kLayerVerzeichnis = "TessaraLayer";

std::string sektion(const std::string& name) { return kSektionPraefix + name; }

bool beginntMit(const std::string& s, const std::string& praefix) {
    return platform::foldCase(s.substr(0, praefix.size())) == platform::foldCase(praefix);
}

std::string trimmen(const std::string& s) {
    const auto a = s.find_first_not_of(" \t");
    if (a == std::string::npos) return {};
    return s.substr(a, s.find_last_not_of(" \t") - a + 1);
}

std::vector<std::string> teilen(const std::string& s, char zeichen) {
    std::vector<std::string> r(1);
    for (char c : s) {
        if (c == zeichen) {
            r.emplace_back();
        } else {
            r.back() += c;
        }
    }
    return r;
}

std::optional<int> ganzeZahl(const std::string& s) {
    int n = 0;
    const std::string t = trimmen(s);
    auto [p, ec] = std::from_chars(t.data(), t.data() + t.size(), n);
    if (t.empty() || ec != std::errc() || p != t.data() + t.size()) return std::nullopt;
    return n;
}

IniText laden(ProgrammZustand& z) {
    IniText ini;
    std::string fehler;
    if (fctIniLaden(z.strIniDatei, ini, fehler) == IniStatus::Fehler)
        throw std::runtime_error(fehler);
    return ini;
}

// Header line "[name]" -> name; empty when the line is no header.
std::optional<std::string> kopfName(const std::string& zeile) {
    const std::string t = trimmen(zeile);
    if (t.size() < 2 || t.front() != '[') return std::nullopt;
    const auto zu = t.find(']');
    if (zu == std::string::npos) return std::nullopt;
    return trimmen(t.substr(1, zu - 1));
}

std::string quoten(const std::string& name) {
    return name.find(' ') == std::string::npos ? name : "\"" + name + "\"";
}

std::string skriptVerzeichnis(const ProgrammZustand& z) { return z.strCTemp + kLayerVerzeichnis; }

void alteLogsLoeschen(const std::string& verzeichnis) {
    std::error_code ec;
    for (const auto& e : std::filesystem::directory_iterator(fctNativerPfad(verzeichnis), ec))
        if (e.path().extension() == ".log") std::filesystem::remove(e.path(), ec);
}

// The log file of the listing once the host has closed it again (its own
// echo of LOGFILEOFF is the last thing in it); empty while there is none.
std::optional<std::string> fertigesLog(const std::string& verzeichnis) {
    std::error_code ec;
    for (const auto& e : std::filesystem::directory_iterator(fctNativerPfad(verzeichnis), ec)) {
        if (e.path().extension() != ".log") continue;
        std::ifstream in(e.path(), std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (platform::foldCase(text).find("logfileoff") != std::string::npos) return text;
    }
    return std::nullopt;
}

bool tippen(ProgrammZustand& z, platform::Desktop& d, const std::string& tasten) {
    subDebugLog(z, "SendKey Acad: " + tasten);
    return d.sendKeys(tasten);
}

// Runs a script in a host of the script channel, as the other uses of the
// channel do.
bool skriptStarten(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                   const std::vector<std::string>& zeilen) {
    auto* d = z.plattform ? z.plattform->desktop : nullptr;
    const std::string skript = z.strCTemp + kLtSkriptName;
    if (!fctSkriptSchreiben(z, skript, zeilen)) return false;
    if (!d || !fctAcadAktivieren(z, v)) return false;
    tippen(z, *d, "{ESC}{ESC}");
    const std::string pfad = fctTastenSchuetzen(fctSkriptPfadGetippt(skript, e.sReplaceBackslash));
    return tippen(z, *d, fctTastenfolge(fctSkriptStartBefehle(false, pfad)));
}

}  // namespace

std::string fctLayerZeile(const typLayer& l) {
    return l.strName + ";" + std::to_string(l.intFarbe) + ";" + l.strLinientyp + ";" +
           (l.booEin ? "1" : "0") + ";" + (l.booGefroren ? "1" : "0") + ";" +
           (l.booGesperrt ? "1" : "0");
}

std::optional<typLayer> fctLayerZeileLesen(const std::string& strWert) {
    const auto f = teilen(strWert, ';');
    if (f.size() != 6) return std::nullopt;
    typLayer l;
    l.strName = trimmen(f[0]);
    l.strLinientyp = trimmen(f[2]);
    const auto farbe = ganzeZahl(f[1]);
    if (l.strName.empty() || l.strLinientyp.empty() || !farbe || *farbe < 1 || *farbe > 255)
        return std::nullopt;
    l.intFarbe = *farbe;
    bool* schalter[] = {&l.booEin, &l.booGefroren, &l.booGesperrt};
    for (int i = 0; i < 3; ++i) {
        // -1 is how the program's older writers stored true.
        const auto n = ganzeZahl(f[3 + i]);
        if (!n || (*n != 0 && *n != 1 && *n != -1)) return std::nullopt;
        *schalter[i] = *n != 0;
    }
    return l;
}

std::vector<std::string> fctLayerKonfigurationenListe(ProgrammZustand& z) {
    Prozedur p(z, "fctLayerKonfigurationenListe");
    return p.geschuetztNurLog(std::vector<std::string>{}, [&] {
        std::vector<std::string> r;
        std::set<std::string> gesehen;
        for (const auto& s : laden(z).sektionen()) {
            if (!beginntMit(s, kSektionPraefix) || s.size() == kSektionPraefix.size()) continue;
            const std::string name = s.substr(kSektionPraefix.size());
            if (gesehen.insert(platform::foldCase(name)).second) r.push_back(name);
        }
        return r;
    });
}

LayerKonfigurationGelesen fctLayerKonfigurationLesen(ProgrammZustand& z,
                                                     const std::string& strName) {
    Prozedur p(z, "fctLayerKonfigurationLesen");
    LayerKonfigurationGelesen r;
    r.konfiguration.strName = strName;
    return p.geschuetztNurLog(r, [&] {
        const std::string gesucht = platform::foldCase(sektion(strName));
        bool drin = false;
        for (const auto& zeile : laden(z).zeilen()) {
            if (const auto kopf = kopfName(zeile)) {
                // Only the first section of the name counts.
                if (drin || r.booGefunden) break;
                drin = platform::foldCase(*kopf) == gesucht;
                r.booGefunden = drin;
                continue;
            }
            const std::string t = trimmen(zeile);
            if (!drin || t.empty() || t[0] == ';') continue;
            std::string key, wert;
            const bool paar = fctIniZeileZerlegen(zeile, key, wert);
            if (paar && platform::foldCase(key) == "anzahl") continue;
            std::optional<typLayer> l;
            if (paar && beginntMit(key, "Layer") && ganzeZahl(key.substr(5)))
                l = fctLayerZeileLesen(wert);
            if (l) {
                r.konfiguration.layer.push_back(*l);
            } else {
                r.fehlerhafteZeilen.push_back(zeile);
            }
        }
        return r;
    });
}

bool fctLayerKonfigurationSpeichern(ProgrammZustand& z, const typLayerKonfiguration& k) {
    Prozedur p(z, "fctLayerKonfigurationSpeichern");
    return p.geschuetztNurLog(false, [&] {
        IniText ini = laden(z);
        const std::string s = sektion(k.strName);
        ini.sektionEntfernen(s);
        ini.setzen(s, "Anzahl", std::to_string(k.layer.size()));
        for (std::size_t i = 0; i < k.layer.size(); ++i)
            ini.setzen(s, "Layer" + std::to_string(i), fctLayerZeile(k.layer[i]));
        fctDateiVerzeichnisAnlegen(z.strIniDatei);
        return fctIniSpeichern(z.strIniDatei, ini);
    });
}

bool fctLayerKonfigurationLoeschen(ProgrammZustand& z, const std::string& strName) {
    Prozedur p(z, "fctLayerKonfigurationLoeschen");
    return p.geschuetztNurLog(false, [&] {
        IniText ini = laden(z);
        if (!ini.sektionEntfernen(sektion(strName))) return false;
        return fctIniSpeichern(z.strIniDatei, ini);
    });
}

bool fctLayerKonfigurationUmbenennen(ProgrammZustand& z, const std::string& strAlt,
                                     const std::string& strNeu) {
    auto gelesen = fctLayerKonfigurationLesen(z, strAlt);
    if (!gelesen.booGefunden) return false;
    // A new spelling of the same name is a rename too.
    if (platform::foldCase(strAlt) != platform::foldCase(strNeu) &&
        fctLayerKonfigurationVorhanden(z, strNeu))
        return false;
    gelesen.konfiguration.strName = strNeu;
    return fctLayerKonfigurationLoeschen(z, strAlt) &&
           fctLayerKonfigurationSpeichern(z, gelesen.konfiguration);
}

// The numbers are kMsgLayerNameLeer and kMsgLayerNameZeichen of the message file.
long fctLayerKonfigurationNamePruefen(const std::string& strName) {
    if (trimmen(strName).empty()) return 600;
    // The characters that would end the section header or split a line.
    if (strName.find_first_of("[];=\r\n") != std::string::npos) return 601;
    return 0;
}

bool fctLayerKonfigurationVorhanden(ProgrammZustand& z, const std::string& strName) {
    for (const auto& n : fctLayerKonfigurationenListe(z))
        if (platform::foldCase(n) == platform::foldCase(strName)) return true;
    return false;
}

std::vector<std::string> fctLayerBefehle(const typLayerKonfiguration& k) {
    // The language-neutral option names. A line type must already be loaded
    // in the drawing; configurations come from drawings of the same template.
    std::vector<std::string> b;
    for (const auto& l : k.layer) {
        const std::string n = quoten(l.strName);
        b.insert(b.end(),
                 {"_new", n, "_color", std::to_string(l.intFarbe), n, "_ltype", l.strLinientyp, n,
                  l.booEin ? "_on" : "_off", n, l.booGefroren ? "_freeze" : "_thaw", n,
                  l.booGesperrt ? "_lock" : "_unlock", n});
    }
    b.push_back("");
    return b;
}

std::vector<std::string> fctSkriptLayerListe(const std::string& strVerzeichnis) {
    return {"._setvar",
            "logfilepath",
            quoten(strVerzeichnis),
            "._logfileon",
            "._-layer",
            "?",
            "*",
            "",
            "._logfileoff",
            "._filedia",
            "1"};
}

std::vector<typLayer> fctLayerListeLesen(const std::string& strText) {
    // Columns by their header; the listing is Windows-1252, one byte a
    // character, so the header's positions hold for every line.
    std::vector<typLayer> r;
    std::size_t status = std::string::npos, farbe = 0, linientyp = 0;
    for (std::string zeile : teilen(strText, '\n')) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        if (status == std::string::npos) {
            const auto finde = [&](const char* en, const char* de) {
                const auto a = zeile.find(en);
                return a != std::string::npos ? a : zeile.find(de);
            };
            if (zeile.find("Layer") != 0) continue;
            status = finde("State", "Status");
            farbe = finde("Color", "Farbe");
            linientyp = finde("Linetype", "Linientyp");
            if (status == std::string::npos || farbe == std::string::npos ||
                linientyp == std::string::npos || !(status < farbe && farbe < linientyp))
                status = std::string::npos;
            continue;
        }
        if (zeile.size() <= linientyp) continue;
        typLayer l;
        l.strName = fctAnsiNachUtf8(trimmen(zeile.substr(0, status)));
        std::istringstream zustand(zeile.substr(status, farbe - status));
        std::string ein;
        zustand >> ein;
        for (std::string flag; zustand >> flag;) {
            if (flag == "F") l.booGefroren = true;
            if (flag == "L") l.booGesperrt = true;
        }
        const auto f = ganzeZahl(teilen(trimmen(zeile.substr(farbe, linientyp - farbe)), ' ')[0]);
        std::istringstream rest(zeile.substr(linientyp));
        rest >> l.strLinientyp;
        if (l.strName.empty() || !f || *f < 1 || *f > 255 || l.strLinientyp.empty()) continue;
        const std::string e = platform::foldCase(ein);
        if (e != "on" && e != "off" && e != "ein" && e != "aus") continue;
        l.booEin = e == "on" || e == "ein";
        l.intFarbe = *f;
        l.strLinientyp = fctAnsiNachUtf8(l.strLinientyp);
        r.push_back(std::move(l));
    }
    return r;
}

namespace {

// No host found at start (the user started it later): look now, as the
// insertion does, offering the list of windows.
void hostSuchen(ProgrammZustand& z, CadVerbindung& v) {
    if (!v.typAcadVersionInfo.strACadVersion.empty()) return;
    bool lt = false;
    v.booFensterlisteAnbieten = true;
    ACAD_Connect(z, v, false, true, lt);
}

}  // namespace

LayerVomHost fctLayerVomHostLesen(ProgrammZustand& z, CadVerbindung& v,
                                  const typCadEinstellungen& e) {
    Prozedur p(z, "fctLayerVomHostLesen");
    LayerVomHost r;
    return p.geschuetztNurLog(r, [&] {
        hostSuchen(z, v);
        if (!fctIstAutoCadLt(v)) {
            if (!v.acadApp) {
                r.strFehler = "Keine Verbindung zu AutoCAD";
                return r;
            }
            p.step("Layers lesen");
            try {
                r.layer = v.acadApp->ActiveDocument()->Layers();
                r.booOk = true;
            } catch (const AcadFehler& f) {
                r.strFehler = std::string(f.what()) + " (" + std::to_string(f.nummer()) + ")";
            }
            return r;
        }
        p.step("Layerliste per Skript");
        const std::string verzeichnis = skriptVerzeichnis(z);
        fctVerzeichnisAnlegen(verzeichnis);
        alteLogsLoeschen(verzeichnis);
        if (!skriptStarten(z, v, e, fctSkriptLayerListe(verzeichnis))) {
            r.strFehler = v.typAcadVersionInfo.strAcadTitel;
            return r;
        }
        auto* d = z.plattform->desktop;
        platform::Clock* uhr = z.plattform->clock;
        const std::int64_t start = uhr ? uhr->tickMs() : 0;
        // The host writes on its own time; Escape or 20 seconds end the wait.
        while (true) {
            d->pumpMessages();
            if (const auto text = fertigesLog(verzeichnis)) {
                r.layer = fctLayerListeLesen(*text);
                r.booOk = true;
                if (r.layer.empty()) r.strFehler = "-LAYER ?";
                return r;
            }
            if (d->isKeyDown(platform::Key::Escape) || !uhr || uhr->tickMs() - start >= 20000) {
                r.strFehler = fctNativerPfad(verzeichnis).string();
                return r;
            }
            d->sleepMs(50);
        }
    });
}

bool fctLayerKonfigurationAnwenden(ProgrammZustand& z, CadVerbindung& v,
                                   const typCadEinstellungen& e, const typLayerKonfiguration& k) {
    Prozedur p(z, "fctLayerKonfigurationAnwenden");
    return p.geschuetztNurLog(false, [&] {
        hostSuchen(z, v);
        std::vector<std::string> befehle{"._-layer"};
        for (auto& b : fctLayerBefehle(k)) befehle.push_back(std::move(b));
        if (fctIstAutoCadLt(v)) {
            befehle.insert(befehle.end(), {"._filedia", "1"});
            return skriptStarten(z, v, e, befehle);
        }
        if (!v.acadApp) return false;
        std::string text;
        for (const auto& b : befehle) text += b + "\r";
        v.acadApp->ActiveDocument()->SendCommand(text);
        return true;
    });
}

}  // namespace tessara
