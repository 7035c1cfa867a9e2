#include "sim_interpreter.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "authoring/slide.h"
#include "platform/environment.h"

namespace simhost {

namespace {

std::string gross(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return s;
}

std::string trimmen(const std::string& s) {
    const auto a = s.find_first_not_of(' ');
    if (a == std::string::npos) return {};
    const auto b = s.find_last_not_of(' ');
    return s.substr(a, b - a + 1);
}

// "._-insert" -> "INSERT": the language prefix "_", the "." that bypasses
// redefinitions and the "-" of the command-line form do not change the command.
std::string kanonisch(const std::string& roh) {
    std::string s = trimmen(roh);
    std::size_t i = 0;
    while (i < s.size() && (s[i] == '.' || s[i] == '_' || s[i] == '-' || s[i] == '\'')) ++i;
    return gross(s.substr(i));
}

std::string ohneAnfuehrung(std::string s) {
    s = trimmen(s);
    if (s.size() >= 2 && s.front() == '"' && s.back() == '"') return s.substr(1, s.size() - 2);
    return s;
}

bool istSystemvariable(const std::string& n) {
    return n == "FILEDIA" || n == "EXPERT" || n == "ATTREQ" || n == "CMDECHO" || n == "ORTHOMODE";
}

bool punktLesen(const std::string& text, int& x, int& y) {
    double a = 0, b = 0;
    if (std::sscanf(text.c_str(), "%lf,%lf", &a, &b) != 2) return false;
    x = static_cast<int>(a);
    y = static_cast<int>(b);
    return true;
}

}  // namespace

SimInterpreter::SimInterpreter(std::ostream& log) : log_(log) {
    variablen_ = {{"FILEDIA", "1"}, {"EXPERT", "0"},  {"CLAYER", "0"},
                  {"ATTREQ", "1"},  {"CMDECHO", "1"}, {"ORTHOMODE", "0"}};
    // Something to see on a slide: a frame with a diagonal.
    zeichnung_ = {{200, 100, 440, 100, 1},
                  {440, 100, 440, 300, 1},
                  {440, 300, 200, 300, 1},
                  {200, 300, 200, 100, 1},
                  {200, 100, 440, 300, 3}};
}

std::string SimInterpreter::variable(const std::string& name) const {
    auto it = variablen_.find(gross(name));
    return it == variablen_.end() ? std::string() : it->second;
}

void SimInterpreter::schreib(const std::string& zeile) {
    log_ << zeile << '\n';
    log_.flush();
}

std::string SimInterpreter::prompt() const {
    if (befehl_.empty()) return "Befehl:";
    if (warten_ == Warten::Punkt) return befehl_ + " Einfuegepunkt angeben:";
    if (warten_ == Warten::Rechtsklick) return befehl_ + " Objekte waehlen:";
    return befehl_ + ":";
}

void SimInterpreter::eingabe(const std::string& text) {
    schreib("EINGABE [" + text + "]");
    ausfuehren(text);
    skriptWeiter();
}

void SimInterpreter::skriptWeiter() {
    if (imSkript_) return;
    imSkript_ = true;
    while (!skript_.empty()) {
        const std::string zeile = skript_.front();
        skript_.pop_front();
        schreib("SKRIPT [" + zeile + "]");
        ausfuehren(zeile);
    }
    imSkript_ = false;
}

void SimInterpreter::ausfuehren(const std::string& text) {
    if (!transparent_.empty()) {
        transparentAntworten_.push_back(trimmen(text));
        if (transparentAntworten_.size() == 2) {
            const std::string name = gross(transparentAntworten_[0]);
            variablen_[name] = transparentAntworten_[1];
            schreib("SETVAR' " + name + "=" + transparentAntworten_[1]);
            transparent_.clear();
            transparentAntworten_.clear();
        }
        return;
    }
    if (!befehl_.empty() && befehl_ != "DIALOG" && !text.empty() && text[0] == '\'') {
        const std::string name = kanonisch(text);
        if (name == "SETVAR") {
            transparent_ = name;
        } else {
            schreib("UNBEKANNT TRANSPARENT [" + text + "]");
        }
        return;
    }
    if (befehl_.empty()) {
        const std::string t = trimmen(text);
        if (t.empty()) {
            schreib("LEER");
            return;
        }
        befehlBeginnen(kanonisch(t), text);
        return;
    }
    antwort(text);
}

void SimInterpreter::befehlBeginnen(const std::string& name, const std::string& roh) {
    static const std::set<std::string> bekannt = {"SCRIPT", "SETVAR", "UNDO",  "MSLIDE", "WBLOCK",
                                                  "INSERT", "XREF",   "LAYER", "OPEN"};
    if (!bekannt.count(name) && !istSystemvariable(name)) {
        schreib("UNBEKANNT [" + roh + "]");
        return;
    }
    befehl_ = name;
    antworten_.clear();
    warten_ = Warten::Eingabe;
    punkt_.reset();
    schreib("BEFEHL " + name);
    if ((name == "SCRIPT" || name == "MSLIDE" || name == "OPEN") && variable("FILEDIA") == "1") {
        // A real host opens its file dialog here; typed text then lands in it.
        schreib("DATEIDIALOG " + name);
        befehl_ = "DIALOG";
    }
}

void SimInterpreter::antwort(const std::string& text) {
    if (befehl_ == "DIALOG") {
        schreib("IM DIALOG [" + text + "]");
        return;
    }
    if (warten_ == Warten::Punkt) {
        int x = 0, y = 0;
        if (!punktLesen(text, x, y)) {
            schreib("PUNKT ERWARTET [" + text + "]");
            return;
        }
        punkt_ = {x, y};
        warten_ = Warten::Eingabe;
        schreib("PUNKT " + std::to_string(x) + "," + std::to_string(y));
        return;
    }
    if (warten_ == Warten::Rechtsklick) {
        schreib("AUSWAHL [" + text + "]");
        if (trimmen(text).empty()) rechtsklick();
        return;
    }
    antworten_.push_back(text);
    const std::size_t n = antworten_.size();

    if (istSystemvariable(befehl_)) {
        variablen_[befehl_] = trimmen(text);
        schreib("SETVAR " + befehl_ + "=" + trimmen(text));
        fertig();
    } else if (befehl_ == "SETVAR") {
        if (n == 2) {
            const std::string name = gross(trimmen(antworten_[0]));
            variablen_[name] = trimmen(text);
            schreib("SETVAR " + name + "=" + trimmen(text));
            fertig();
        }
    } else if (befehl_ == "SCRIPT") {
        fertig();
        skriptLaden(ohneAnfuehrung(text));
    } else if (befehl_ == "UNDO") {
        const std::string o = kanonisch(text);
        if (o == "M" || o == "MARK") {
            undoMarke_ = zeichnung_;
            schreib("UNDO MARKE");
        } else if (o == "B" || o == "BACK") {
            if (undoMarke_) {
                zeichnung_ = *undoMarke_;
                schreib("UNDO ZURUECK");
            } else {
                schreib("UNDO ZURUECK OHNE MARKE");
            }
        } else {
            schreib("UNDO [" + text + "]");
        }
        fertig();
    } else if (befehl_ == "MSLIDE") {
        sliedeSchreiben(ohneAnfuehrung(text));
        fertig();
    } else if (befehl_ == "OPEN") {
        schreib("OPEN " + ohneAnfuehrung(text));
        fertig();
    } else if (befehl_ == "WBLOCK") {
        if (n == 2) {
            if (trimmen(text).empty()) {
                warten_ = Warten::Rechtsklick;
                schreib("WBLOCK WAEHLT OBJEKTE");
            } else {
                zeichnungSchreiben(ohneAnfuehrung(antworten_[0]));
                fertig();
            }
        }
    } else if (befehl_ == "INSERT" || befehl_ == "XREF") {
        const std::string t = ohneAnfuehrung(text);
        const bool dateiAngabe = t.find('=') != std::string::npos ||
                                 t.find('\\') != std::string::npos ||
                                 t.find('/') != std::string::npos;
        if (!punkt_ && dateiAngabe) {
            const auto gleich = t.find('=');
            const std::string datei = gleich == std::string::npos ? t : t.substr(gleich + 1);
            std::error_code ec;
            if (!std::filesystem::exists(platform::nativePath(datei), ec)) {
                schreib("FEHLER DATEI NICHT GEFUNDEN " + datei);
                fertig();
                return;
            }
            warten_ = Warten::Punkt;
            schreib(befehl_ + " WARTET AUF PUNKT");
            return;
        }
        if (punkt_) {
            std::size_t nachPunkt = 0;
            for (std::size_t i = 0; i < antworten_.size(); ++i) {
                const std::string a = ohneAnfuehrung(antworten_[i]);
                if (a.find('=') != std::string::npos || a.find('\\') != std::string::npos ||
                    a.find('/') != std::string::npos)
                    nachPunkt = antworten_.size() - i - 1;
            }
            if (nachPunkt == 3) einfuegungAbschliessen();
        }
    } else if (befehl_ == "LAYER") {
        const std::string t = trimmen(text);
        if (n >= 2) {
            const std::string vorher = kanonisch(antworten_[n - 2]);
            if ((vorher == "SE" || vorher == "S" || vorher == "SET") && !t.empty()) {
                variablen_["CLAYER"] = t;
                schreib("LAYER AKTUELL " + t);
                return;
            }
        }
        if (t.empty()) {
            schreib("LAYER ENDE");
            fertig();
        }
    }
}

void SimInterpreter::einfuegungAbschliessen() {
    // Answers: [options...] the file, then X scale, Y scale, rotation.
    const std::size_t n = antworten_.size();
    std::string x = trimmen(antworten_[n - 3]);
    std::string y = trimmen(antworten_[n - 2]);
    std::string w = trimmen(antworten_[n - 1]);
    if (x.empty()) x = "1";
    if (y.empty()) y = x;
    if (w.empty()) w = "0";
    std::string optionen;
    std::string angabe;
    for (std::size_t i = 0; i + 3 < n; ++i) {
        const std::string a = ohneAnfuehrung(antworten_[i]);
        if (i + 4 == n) {
            angabe = a;
        } else {
            optionen += "[" + antworten_[i] + "]";
        }
    }
    const auto gleich = angabe.find('=');
    std::string block, datei;
    if (gleich == std::string::npos) {
        datei = angabe;
        std::string name = datei;
        const auto s = name.find_last_of("\\/");
        if (s != std::string::npos) name = name.substr(s + 1);
        const auto p = name.rfind('.');
        block = p == std::string::npos ? name : name.substr(0, p);
    } else {
        block = angabe.substr(0, gleich);
        datei = angabe.substr(gleich + 1);
    }
    const int px = punkt_->first, py = punkt_->second;
    std::string zeile = befehl_ + " block=" + block + " datei=" + datei +
                        " punkt=" + std::to_string(px) + "," + std::to_string(py) + " x=" + x +
                        " y=" + y + " winkel=" + w + " layer=" + variable("CLAYER");
    if (!optionen.empty()) zeile += " optionen=" + optionen;
    schreib(zeile);
    bloecke_.insert(block);
    // The inserted block shows as a small cross at its point.
    zeichnung_.push_back({px - 8, py, px + 8, py, 2});
    zeichnung_.push_back({px, py - 8, px, py + 8, 2});
    fertig();
}

void SimInterpreter::fertig() {
    befehl_.clear();
    antworten_.clear();
    warten_ = Warten::Eingabe;
    punkt_.reset();
}

void SimInterpreter::escape() {
    schreib("ESC");
    if (!befehl_.empty()) schreib("ABBRUCH " + befehl_);
    if (!skript_.empty()) schreib("SKRIPT ABGEBROCHEN");
    skript_.clear();
    transparent_.clear();
    transparentAntworten_.clear();
    fertig();
}

void SimInterpreter::linksklick(int x, int y) {
    schreib("KLICK LINKS " + std::to_string(x) + "," + std::to_string(y));
    if (warten_ == Warten::Punkt) {
        punkt_ = {x, y};
        warten_ = Warten::Eingabe;
        schreib("PUNKT " + std::to_string(x) + "," + std::to_string(y));
    }
}

void SimInterpreter::rechtsklick() {
    schreib("KLICK RECHTS");
    if (warten_ == Warten::Rechtsklick && befehl_ == "WBLOCK") {
        zeichnungSchreiben(ohneAnfuehrung(antworten_[0]));
        // WBLOCK takes the chosen objects out of the drawing.
        zeichnung_.clear();
        fertig();
    }
}

void SimInterpreter::aktiviert(bool aktiv) { schreib(aktiv ? "FENSTER AKTIV" : "FENSTER INAKTIV"); }

void SimInterpreter::skriptLaden(const std::string& pfad) {
    std::ifstream f(platform::nativePath(pfad), std::ios::binary);
    if (!f) {
        schreib("SKRIPT FEHLT " + pfad);
        return;
    }
    std::string zeile;
    int n = 0;
    while (std::getline(f, zeile)) {
        if (!zeile.empty() && zeile.back() == '\r') zeile.pop_back();
        skript_.push_back(zeile);
        ++n;
    }
    schreib("SCRIPT " + pfad + " (" + std::to_string(n) + " Zeilen)");
}

void SimInterpreter::sliedeSchreiben(const std::string& pfad) {
    try {
        tessara::slide::Slide s;
        s.highX = kBreite - 1;
        s.highY = kHoehe - 1;
        s.aspectRatio = static_cast<double>(kBreite) / kHoehe;
        auto klemmen = [](int v, int hoch) {
            return static_cast<std::int16_t>(std::clamp(v, 0, hoch));
        };
        for (const auto& l : zeichnung_) {
            s.addVector(static_cast<std::uint8_t>(l.farbe),
                        {klemmen(l.x1, s.highX), klemmen(l.y1, s.highY)},
                        {klemmen(l.x2, s.highX), klemmen(l.y2, s.highY)});
        }
        tessara::slide::writeSlideFile(s, platform::nativePath(pfad));
        schreib("MSLIDE " + pfad + " (" + std::to_string(zeichnung_.size()) + " Vektoren)");
    } catch (const std::exception& e) {
        schreib("FEHLER MSLIDE " + pfad + ": " + e.what());
    }
}

void SimInterpreter::zeichnungSchreiben(const std::string& pfad) {
    const std::string ziel = platform::nativePath(pfad);
    const std::string temp = ziel + ".schreibt";
    {
        std::ofstream f(temp, std::ios::binary | std::ios::trunc);
        if (!f) {
            schreib("FEHLER WBLOCK " + pfad);
            return;
        }
        f << "SIMHOST ZEICHNUNG\n";
        for (const auto& l : zeichnung_) {
            f << "LINIE " << l.x1 << ' ' << l.y1 << ' ' << l.x2 << ' ' << l.y2 << ' ' << l.farbe
              << '\n';
        }
    }
    std::error_code ec;
    std::filesystem::rename(temp, ziel, ec);
    schreib(ec ? "FEHLER WBLOCK " + pfad
               : "WBLOCK " + pfad + " (" + std::to_string(zeichnung_.size()) + " Objekte)");
}

}  // namespace simhost
