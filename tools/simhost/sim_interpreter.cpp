#include "sim_interpreter.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "authoring/slide.h"
#include "platform/environment.h"
#include "startup/zeichensatz.h"

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

bool ja(const std::string& text) {
    const std::string k = kanonisch(text);
    return k == "Y" || k == "YES" || k == "J" || k == "JA";
}

const char* const kKeinObjekt = "Sie haben kein Objekt gewählt! Wiederholen? [<J>/N]:";
const char* const kErsetzen = "Datei existiert bereits. Ersetzen? [Ja/Nein] <Nein>:";

}  // namespace

SimInterpreter::SimInterpreter(std::ostream& log) : log_(log) {
    variablen_ = {{"FILEDIA", "1"}, {"EXPERT", "0"},      {"CLAYER", "0"},
                  {"ATTREQ", "1"},  {"CMDECHO", "1"},     {"ORTHOMODE", "0"},
                  {"PDMODE", "0"},  {"INSBASE", "0,0,0"}, {"LOGFILEPATH", "c:\\temp"}};
    layer_["0"] = Layer{"0"};
    // Something to see on a slide: a frame with a diagonal, one object a line.
    const double rahmen[][5] = {{200, 100, 440, 100, 1},
                                {440, 100, 440, 300, 1},
                                {440, 300, 200, 300, 1},
                                {200, 300, 200, 100, 1},
                                {200, 100, 440, 300, 3}};
    for (const auto& l : rahmen) {
        objekte_.push_back(
            {naechsteId_++, "LINIE", static_cast<int>(l[4]), "0", {{{l[0], l[1]}, {l[2], l[3]}}}});
    }
}

bool SimInterpreter::istVariable(const std::string& name) const {
    return variablen_.count(name) || name == "EXTMIN" || name == "EXTMAX";
}

std::string SimInterpreter::variable(const std::string& name) const {
    const std::string n = gross(name);
    if (n == "EXTMIN" || n == "EXTMAX") {
        // AutoCAD's answer for an empty drawing: inverted, huge extents.
        const auto g = grenzen(objekte_);
        if (!g) return n == "EXTMIN" ? "1e+20,1e+20,1e+20" : "-1e+20,-1e+20,-1e+20";
        return punktText(n == "EXTMIN" ? g->a : g->b, true);
    }
    auto it = variablen_.find(n);
    return it == variablen_.end() ? std::string() : it->second;
}

void SimInterpreter::schreib(const std::string& zeile) {
    log_ << zeile << '\n';
    log_.flush();
}

std::string SimInterpreter::prompt() const {
    if (befehl_.empty()) return "Befehl:";
    if (!frage_.empty()) return frage_;
    if (warten_ == Warten::Punkt)
        return befehl_ + (punkte_.empty() && (befehl_ == "INSERT" || befehl_ == "XREF")
                              ? " Einfuegepunkt angeben:"
                              : " Punkt angeben:");
    if (warten_ == Warten::Auswahl) return befehl_ + " Objekte waehlen:";
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
    logDatei(text);
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
    static const std::set<std::string> bekannt = {
        "SCRIPT", "SETVAR", "GETVAR", "UNDO",      "MSLIDE",    "WBLOCK", "INSERT",
        "XREF",   "LAYER",  "OPEN",   "DONUT",     "CHANGE",    "ZOOM",   "PAN",
        "HIDE",   "BASE",   "MOVE",   "LOGFILEON", "LOGFILEOFF"};
    if (name == "EXTMIN" || name == "EXTMAX") {
        // Read-only: the host only tells the value.
        schreib("GETVAR " + name + "=" + variable(name));
        return;
    }
    if (!bekannt.count(name) && !istVariable(name)) {
        schreib("UNBEKANNT [" + roh + "]");
        return;
    }
    fertig();
    befehl_ = name;
    schreib("BEFEHL " + name);
    if ((name == "SCRIPT" || name == "MSLIDE" || name == "OPEN") && variable("FILEDIA") == "1") {
        // A real host opens its file dialog here; typed text then lands in it.
        schreib("DATEIDIALOG " + name);
        befehl_ = "DIALOG";
    } else if (name == "HIDE") {
        ansicht_.verdeckt = true;
        schreib("HIDE ansicht=" + ansicht_.text());
        fertig();
    } else if (name == "LOGFILEON") {
        // A real host names the file after the drawing.
        const std::string pfad =
            ohneAnfuehrung(variable("LOGFILEPATH")) + "\\Zeichnung1_1_1_0000.log";
        logDatei_.emplace(platform::nativePath(pfad), std::ios::binary | std::ios::app);
        schreib(*logDatei_ ? "LOGFILE AN " + pfad : "LOGFILE FEHLER " + pfad);
        if (!*logDatei_) logDatei_.reset();
        fertig();
    } else if (name == "LOGFILEOFF") {
        logDatei_.reset();
        schreib("LOGFILE AUS");
        fertig();
    } else if (name == "BASE" || name == "PAN") {
        warten_ = Warten::Punkt;
    } else if (name == "CHANGE" || name == "MOVE") {
        auswahlBeginnen();
    }
}

void SimInterpreter::antwort(const std::string& text) {
    if (befehl_ == "DIALOG") {
        schreib("IM DIALOG [" + text + "]");
        return;
    }
    if (warten_ == Warten::Punkt) {
        if (const auto p = punktLesen(text)) {
            punktNehmen(*p);
        } else if (trimmen(text).empty() && (befehl_ == "DONUT" || befehl_ == "PAN")) {
            // PAN: one point and Enter make the point the displacement.
            if (befehl_ == "PAN" && punkte_.size() == 1) {
                const Punkt d = punkte_[0];
                punkte_ = {Punkt{}};
                punktNehmen(d);
            }
            fertig();
        } else {
            schreib("PUNKT ERWARTET [" + text + "]");
        }
        return;
    }
    if (warten_ == Warten::Auswahl) {
        auswahlText(text);
        return;
    }
    antworten_.push_back(text);
    const std::size_t n = antworten_.size();
    const std::string t = trimmen(text);

    if (istVariable(befehl_)) {
        variablen_[befehl_] = t;
        schreib("SETVAR " + befehl_ + "=" + t);
        fertig();
    } else if (befehl_ == "SETVAR") {
        if (n == 2) {
            const std::string name = gross(trimmen(antworten_[0]));
            variablen_[name] = t;
            schreib("SETVAR " + name + "=" + t);
            fertig();
        }
    } else if (befehl_ == "GETVAR") {
        schreib("GETVAR " + gross(t) + "=" + variable(t));
        fertig();
    } else if (befehl_ == "SCRIPT") {
        fertig();
        skriptLaden(ohneAnfuehrung(text));
    } else if (befehl_ == "UNDO") {
        const std::string o = kanonisch(text);
        if (o == "M" || o == "MARK") {
            undoMarke_ = Stand{objekte_, ansicht_};
            schreib("UNDO MARKE");
        } else if (o == "B" || o == "BACK") {
            if (undoMarke_) {
                objekte_ = undoMarke_->objekte;
                ansicht_ = undoMarke_->ansicht;
                schreib("UNDO ZURUECK ansicht=" + ansicht_.text());
            } else {
                schreib("UNDO ZURUECK OHNE MARKE");
            }
        } else {
            schreib("UNDO [" + text + "]");
        }
        fertig();
    } else if (befehl_ == "MSLIDE") {
        const std::string pfad = ohneAnfuehrung(antworten_[0]);
        std::error_code ec;
        if (n == 1 && std::filesystem::exists(platform::nativePath(pfad), ec)) {
            frage_ = kErsetzen;
            schreib("FRAGE " + frage_);
            return;
        }
        if (n == 1 || ja(text)) {
            slideSchreiben(pfad);
        } else {
            schreib("MSLIDE NICHT ERSETZT " + pfad);
        }
        fertig();
    } else if (befehl_ == "OPEN") {
        schreib("OPEN " + ohneAnfuehrung(text));
        fertig();
    } else if (befehl_ == "WBLOCK") {
        if (!frage_.empty()) {
            frage_.clear();
            if (t == "j" || t == "J") {
                auswahlBeginnen();
            } else {
                schreib("WBLOCK OHNE OBJEKTE");
                fertig();
            }
        } else if (n == 2 && t.empty()) {
            warten_ = Warten::Punkt;
            schreib("WBLOCK WARTET AUF BASISPUNKT");
        } else if (n == 2) {
            zeichnungSchreiben(ohneAnfuehrung(antworten_[0]), objekte_, variable("INSBASE"));
            fertig();
        }
    } else if (befehl_ == "DONUT") {
        if (n == 2) warten_ = Warten::Punkt;
    } else if (befehl_ == "CHANGE") {
        aendern(text);
    } else if (befehl_ == "ZOOM") {
        zoomen(text);
    } else if (befehl_ == "INSERT" || befehl_ == "XREF") {
        const std::string a = ohneAnfuehrung(text);
        const bool dateiAngabe = a.find('=') != std::string::npos ||
                                 a.find('\\') != std::string::npos ||
                                 a.find('/') != std::string::npos;
        if (!punkt_ && dateiAngabe) {
            const auto gleich = a.find('=');
            const std::string datei = gleich == std::string::npos ? a : a.substr(gleich + 1);
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
                const std::string b = ohneAnfuehrung(antworten_[i]);
                if (b.find('=') != std::string::npos || b.find('\\') != std::string::npos ||
                    b.find('/') != std::string::npos)
                    nachPunkt = antworten_.size() - i - 1;
            }
            if (nachPunkt == 3) einfuegungAbschliessen();
        }
    } else if (befehl_ == "LAYER") {
        layerAntwort(text);
    }
}

void SimInterpreter::punktNehmen(Punkt p) {
    if (befehl_ == "PAN" && punkte_.size() == 1) {
        // The drawing moves by the displacement; the view the other way.
        const Punkt d{p.x - punkte_[0].x, p.y - punkte_[0].y};
        Ansicht neu = ansicht_;
        neu.mitte = {neu.mitte.x - d.x, neu.mitte.y - d.y};
        ansichtSetzen("PAN " + punktText(d), neu);
        fertig();
        return;
    }
    schreib("PUNKT " + punktText(p));
    punkte_.push_back(p);
    if (befehl_ == "INSERT" || befehl_ == "XREF") {
        punkt_ = p;
        warten_ = Warten::Eingabe;
    } else if (befehl_ == "WBLOCK") {
        auswahlBeginnen();
    } else if (befehl_ == "BASE") {
        variablen_["INSBASE"] = punktText(p, true);
        schreib("SETVAR INSBASE=" + variablen_["INSBASE"]);
        fertig();
    } else if (befehl_ == "DONUT") {
        const double innen = std::atof(antworten_[0].c_str());
        const double aussen = std::atof(antworten_[1].c_str());
        Objekt o = donut(naechsteId_++, innen, aussen, p);
        o.layer = variable("CLAYER");
        objekte_.push_back(o);
        schreib("DONUT " + std::to_string(o.id) + " innen=" + zahl(innen) +
                " aussen=" + zahl(aussen) + " punkt=" + punktText(p));
    } else if (befehl_ == "MOVE" && punkte_.size() == 1) {
        schreib("MOVE WARTET AUF ZIEL");
    } else if (befehl_ == "MOVE") {
        // The base point lands on the target: the chosen objects move by the
        // difference of the two.
        const double dx = p.x - punkte_[0].x, dy = p.y - punkte_[0].y;
        std::string ids;
        for (auto& o : objekte_) {
            if (std::find(auswahl_.begin(), auswahl_.end(), o.id) == auswahl_.end()) continue;
            for (auto& st : o.strecken) {
                st.a.x += dx, st.a.y += dy;
                st.b.x += dx, st.b.y += dy;
            }
            ids += (ids.empty() ? "" : ",") + std::to_string(o.id);
        }
        schreib("MOVE " + ids + " basis=" + punktText(punkte_[0]) + " ziel=" + punktText(p));
        fertig();
    } else if (befehl_ == "ZOOM" && punkte_.size() == 2) {
        ansichtSetzen("ZOOM FENSTER", Ansicht::umfassend(punkte_[0], punkte_[1]));
        fertig();
    }
}

void SimInterpreter::auswahlBeginnen() {
    warten_ = Warten::Auswahl;
    auswahl_.clear();
    schreib(befehl_ + " WAEHLT OBJEKTE");
}

void SimInterpreter::auswahlText(const std::string& text) {
    schreib("AUSWAHL [" + text + "]");
    const std::string t = trimmen(text);
    const std::string k = kanonisch(t);
    if (t.empty()) {
        auswahlEnde();
    } else if (k == "ALL" || k == "ALLE") {
        for (const auto& o : objekte_) waehlen(o);
    } else if (k == "P" || k == "PREVIOUS" || k == "VORHER") {
        for (const int id : vorherige_)
            for (const auto& o : objekte_)
                if (o.id == id) waehlen(o);
    } else if (gross(t) == "(ENTLAST)" || k == "L" || k == "LAST" || k == "LETZTES") {
        if (!objekte_.empty()) waehlen(objekte_.back());
    } else {
        schreib("AUSWAHL UNBEKANNT [" + text + "]");
    }
}

void SimInterpreter::waehlen(const Objekt& o) {
    if (std::find(auswahl_.begin(), auswahl_.end(), o.id) != auswahl_.end()) {
        schreib("DOPPELT " + std::to_string(o.id));
        return;
    }
    auswahl_.push_back(o.id);
    schreib("GEWAEHLT " + std::to_string(o.id) + " " + o.art);
}

void SimInterpreter::auswahlEnde() {
    schreib("AUSWAHL ENDE (" + std::to_string(auswahl_.size()) + " Objekte)");
    if (!auswahl_.empty()) vorherige_ = auswahl_;
    if (befehl_ == "WBLOCK") {
        warten_ = Warten::Eingabe;
        if (auswahl_.empty()) {
            frage_ = kKeinObjekt;
            schreib("FRAGE " + frage_);
            return;
        }
        std::vector<Objekt> gewaehlt, rest;
        for (const int id : auswahl_)
            for (const auto& o : objekte_)
                if (o.id == id) gewaehlt.push_back(o);
        for (const auto& o : objekte_)
            if (std::find(auswahl_.begin(), auswahl_.end(), o.id) == auswahl_.end())
                rest.push_back(o);
        // WBLOCK takes the chosen objects out of the drawing.
        if (zeichnungSchreiben(ohneAnfuehrung(antworten_[0]), gewaehlt,
                               punktText(punkte_[0], true)))
            objekte_ = rest;
        fertig();
    } else if (befehl_ == "MOVE") {
        if (auswahl_.empty()) {
            fertig();
            return;
        }
        warten_ = Warten::Punkt;
        schreib("MOVE WARTET AUF BASISPUNKT");
    } else if (befehl_ == "CHANGE" && !auswahl_.empty()) {
        warten_ = Warten::Eingabe;
    } else {
        fertig();
    }
}

void SimInterpreter::aendern(const std::string& text) {
    const std::string t = trimmen(text);
    const std::string k = kanonisch(t);
    if (t.empty()) {
        fertig();
    } else if (!eigenschaft_.empty()) {
        for (auto& o : objekte_) {
            if (std::find(auswahl_.begin(), auswahl_.end(), o.id) == auswahl_.end()) continue;
            if (eigenschaft_ == "farbe") {
                o.farbe = std::atoi(t.c_str());
            } else {
                o.layer = t;
            }
            schreib("CHANGE " + std::to_string(o.id) + " " + eigenschaft_ + "=" + t);
        }
        eigenschaft_.clear();
    } else if (k == "COL" || k == "COLOR" || k == "FA" || k == "FARBE") {
        eigenschaft_ = "farbe";
    } else if (k == "LA" || k == "LAYER") {
        eigenschaft_ = "layer";
    } else if (k != "P" && k != "PROP" && k != "E" && k != "EIGENSCHAFTEN") {
        schreib("CHANGE UNBEKANNT [" + text + "]");
    }
}

void SimInterpreter::zoomen(const std::string& text) {
    const std::string t = trimmen(text);
    const std::string k = kanonisch(t);
    char* ende = nullptr;
    const double faktor = std::strtod(t.c_str(), &ende);
    if (const auto p = punktLesen(t)) {
        warten_ = Warten::Punkt;
        punktNehmen(*p);
        return;
    }
    if (k == "W" || k == "WINDOW" || k == "F" || k == "FENSTER") {
        warten_ = Warten::Punkt;
        return;
    }
    if (k == "E" || k == "EXTENTS" || k == "G" || k == "GRENZEN") {
        if (const auto g = grenzen(objekte_)) {
            ansichtSetzen("ZOOM GRENZEN", Ansicht::umfassend(g->a, g->b));
        } else {
            schreib("ZOOM GRENZEN LEER");
        }
    } else if (faktor > 0 && ende && (*ende == 'x' || *ende == 'X') && ende[1] == '\0') {
        Ansicht neu = ansicht_;
        neu.hoehe /= faktor;
        ansichtSetzen("ZOOM " + zahl(faktor) + "X", neu);
    } else if (!t.empty()) {
        schreib("ZOOM UNBEKANNT [" + text + "]");
    }
    fertig();
}

void SimInterpreter::ansichtSetzen(const std::string& was, const Ansicht& neu) {
    ansicht_ = neu;
    ansicht_.verdeckt = false;  // a new view is drawn again, hidden lines and all
    schreib(was + " ansicht=" + ansicht_.text());
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
    const Punkt p = *punkt_;
    std::string zeile = befehl_ + " block=" + block + " datei=" + datei + " punkt=" + punktText(p) +
                        " x=" + x + " y=" + y + " winkel=" + w + " layer=" + variable("CLAYER");
    if (!optionen.empty()) zeile += " optionen=" + optionen;
    schreib(zeile);
    bloecke_.insert(block);
    // The inserted block shows as a small cross at its point.
    objekte_.push_back({naechsteId_++,
                        "BLOCK",
                        2,
                        variable("CLAYER"),
                        {{{p.x - 8, p.y}, {p.x + 8, p.y}}, {{p.x, p.y - 8}, {p.x, p.y + 8}}}});
    fertig();
}

void SimInterpreter::logDatei(const std::string& zeile) {
    if (logDatei_) {
        *logDatei_ << tessara::fctUtf8NachAnsi(zeile) << "\r\n";
        logDatei_->flush();
    }
}

// -LAYER: an option, then (for Color and Ltype) its value, then the layer
// names it applies to (a list split at ","; empty: the current layer); an
// empty answer to the option prompt ends the command.
void SimInterpreter::layerAntwort(const std::string& text) {
    const std::string t = trimmen(text);
    if (layerOption_.empty()) {
        if (t.empty()) {
            schreib("LAYER ENDE");
            fertig();
            return;
        }
        static const std::set<std::string> optionen = {
            "?",  "S",   "SE", "SET",    "M", "MAKE", "N",  "NEW",  "C", "COLOR", "L", "LTYPE",
            "ON", "OFF", "F",  "FREEZE", "T", "THAW", "LO", "LOCK", "U", "UNLOCK"};
        layerOption_ = kanonisch(t);
        layerWert_.reset();
        if (!optionen.count(layerOption_)) {
            schreib("LAYER OPTION UNBEKANNT [" + text + "]");
            layerOption_.clear();
        }
        return;
    }
    const std::string o = layerOption_;
    if ((o == "C" || o == "COLOR" || o == "L" || o == "LTYPE") && !layerWert_) {
        layerWert_ = ohneAnfuehrung(t);
        return;
    }
    layerOption_.clear();
    if (o == "?") {
        layerListe(t.empty() ? "*" : ohneAnfuehrung(t));
        return;
    }
    std::vector<std::string> namen;
    std::string rest = t.empty() ? variable("CLAYER") : ohneAnfuehrung(t);
    for (std::size_t k; (k = rest.find(',')) != std::string::npos; rest.erase(0, k + 1))
        namen.push_back(trimmen(rest.substr(0, k)));
    namen.push_back(trimmen(rest));
    for (const auto& name : namen) {
        const std::string g = gross(name);
        const bool da = layer_.count(g) > 0;
        if (o == "N" || o == "NEW" || o == "M" || o == "MAKE") {
            if (!da) {
                layer_[g] = Layer{name};
                schreib("LAYER NEU " + name);
            }
        } else if (o == "S" || o == "SE" || o == "SET") {
            // Kept as the insertion script has always been answered.
        } else if (!da) {
            schreib("LAYER FEHLT " + name);
            continue;
        }
        Layer& l = layer_[g];
        if (o == "M" || o == "MAKE" || o == "S" || o == "SE" || o == "SET") {
            if (!da && o != "M" && o != "MAKE") layer_.erase(g);
            variablen_["CLAYER"] = name;
            schreib("LAYER AKTUELL " + name);
        } else if (o == "C" || o == "COLOR") {
            l.farbe = std::atoi(layerWert_->c_str());
            schreib("LAYER " + l.name + " farbe=" + std::to_string(l.farbe));
        } else if (o == "L" || o == "LTYPE") {
            l.linientyp = *layerWert_;
            schreib("LAYER " + l.name + " linientyp=" + l.linientyp);
        } else if (o == "F" || o == "FREEZE") {
            if (gross(variable("CLAYER")) == g) {
                schreib("LAYER AKTUELL NICHT GEFROREN " + l.name);
                continue;
            }
            l.gefroren = true;
            schreib("LAYER " + l.name + " gefroren");
        } else if (o == "ON" || o == "OFF") {
            l.ein = o == "ON";
            schreib("LAYER " + l.name + (l.ein ? " ein" : " aus"));
        } else if (o == "T" || o == "THAW") {
            l.gefroren = false;
            schreib("LAYER " + l.name + " getaut");
        } else if (o == "LO" || o == "LOCK" || o == "U" || o == "UNLOCK") {
            l.gesperrt = o == "LO" || o == "LOCK";
            schreib("LAYER " + l.name + (l.gesperrt ? " gesperrt" : " entsperrt"));
        }
    }
}

// The listing a host prints for "-LAYER ?": a header, one line a layer in
// columns; only "*" and exact names are understood as patterns.
void SimInterpreter::layerListe(const std::string& muster) {
    // Columns are counted in the ANSI characters the log file holds.
    char zeile[512];
    const auto ausgabe = [&](const std::string& ansi) {
        schreib("LISTE " + tessara::fctAnsiNachUtf8(ansi));
        if (logDatei_) *logDatei_ << ansi << "\r\n";
    };
    std::snprintf(zeile, sizeof zeile, "%-32s %-8s %-12s %s", "Layer name", "State", "Color",
                  "Linetype");
    ausgabe(zeile);
    for (const auto& [g, l] : layer_) {
        if (muster != "*" && gross(muster) != g) continue;
        const std::string zustand = std::string(l.ein ? "On " : "Off") +
                                    (l.gefroren ? " F" : " -") + (l.gesperrt ? " L" : " -");
        std::snprintf(zeile, sizeof zeile, "%-32s %-8s %-12d %s",
                      tessara::fctUtf8NachAnsi(l.name).c_str(), zustand.c_str(), l.farbe,
                      tessara::fctUtf8NachAnsi(l.linientyp).c_str());
        ausgabe(zeile);
    }
    ausgabe("Current layer:  " + tessara::fctUtf8NachAnsi(variable("CLAYER")));
}

void SimInterpreter::fertig() {
    layerOption_.clear();
    layerWert_.reset();
    befehl_.clear();
    antworten_.clear();
    warten_ = Warten::Eingabe;
    frage_.clear();
    punkt_.reset();
    punkte_.clear();
    auswahl_.clear();
    eigenschaft_.clear();
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
    const Punkt p = ansicht_.inZeichnung(x, y);
    if (warten_ == Warten::Punkt) {
        punktNehmen(p);
    } else if (warten_ == Warten::Auswahl) {
        if (const Objekt* o = naechstesObjekt(objekte_, p)) {
            waehlen(*o);
        } else {
            schreib("KEIN OBJEKT");
        }
    }
}

void SimInterpreter::rechtsklick() {
    schreib("KLICK RECHTS");
    if (warten_ == Warten::Auswahl) auswahlEnde();
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
        // Scripts are ANSI text, as a host reads them.
        skript_.push_back(tessara::fctAnsiNachUtf8(zeile));
        ++n;
    }
    schreib("SCRIPT " + pfad + " (" + std::to_string(n) + " Zeilen)");
}

void SimInterpreter::slideSchreiben(const std::string& pfad) {
    try {
        tessara::slide::Slide s;
        s.highX = kBreite - 1;
        s.highY = kHoehe - 1;
        s.aspectRatio = static_cast<double>(kBreite) / kHoehe;
        const auto linien = bildschirm();
        for (const auto& l : linien) {
            s.addVector(static_cast<std::uint8_t>(l.farbe),
                        {static_cast<std::int16_t>(l.x1), static_cast<std::int16_t>(l.y1)},
                        {static_cast<std::int16_t>(l.x2), static_cast<std::int16_t>(l.y2)});
        }
        tessara::slide::writeSlideFile(s, platform::nativePath(pfad));
        schreib("MSLIDE " + pfad + " (" + std::to_string(linien.size()) + " Vektoren)");
    } catch (const std::exception& e) {
        schreib("FEHLER MSLIDE " + pfad + ": " + e.what());
    }
}

bool SimInterpreter::zeichnungSchreiben(const std::string& pfad, const std::vector<Objekt>& objekte,
                                        const std::string& basis) {
    const std::string ziel = platform::nativePath(pfad);
    const std::string temp = ziel + ".schreibt";
    {
        std::ofstream f(temp, std::ios::binary | std::ios::trunc);
        if (!f) {
            schreib("FEHLER WBLOCK " + pfad);
            return false;
        }
        f << "SIMHOST ZEICHNUNG\nBASIS " << basis << '\n';
        for (const auto& o : objekte) {
            f << "OBJEKT " << o.id << ' ' << o.art << " farbe=" << o.farbe << " layer=" << o.layer
              << '\n';
            for (const auto& s : o.strecken)
                f << "LINIE " << zahl(s.a.x) << ' ' << zahl(s.a.y) << ' ' << zahl(s.b.x) << ' '
                  << zahl(s.b.y) << ' ' << o.farbe << '\n';
        }
    }
    std::error_code ec;
    std::filesystem::rename(temp, ziel, ec);
    schreib(ec ? "FEHLER WBLOCK " + pfad
               : "WBLOCK " + pfad + " (" + std::to_string(objekte.size()) +
                     " Objekte) basis=" + basis);
    return !ec;
}

}  // namespace simhost
