// The common error handler, the debug log and the procedure context.
//
// The log is appended to in UTF-8 with CRLF line ends; each record:
//
//   22.11.2026
//   14:15:07
//   Tessara 9.0.0
//   <description>
//    <number>      <description>      (VB's print zones of 14 columns)
//   <window procedure>                 (each context line only when not empty)
//   <step label>
//   <module function>
//   <further context strings of the state and of the call>
//
//   ------------------------
//
#include "startup/fehler_log.h"

#include <chrono>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <limits>
#include <mutex>

#include "jet/format/error.h"
#include "jet/sql/error.h"
#include "platform/automation.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/ini_datei.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

// Pacing of the message boxes: when this many errors have come within the
// minute of the first one (counted as DateDiff "n" counts, by minute
// boundaries passed), the run is in an error storm, typically a loop failing
// on every pass. From then on no ordinary box is shown for the rest of the
// run, so the user can still reach the window; the log keeps every record,
// and "sShowAllErrorMsgbox" = 1 still shows every box.
constexpr std::int16_t kBoxenImSturm = 5;
constexpr long kSturmMinuten = 1;

// One writer at a time: long work may log from a worker thread.
std::mutex& logSperre() {
    static std::mutex m;
    return m;
}

// Nesting of the handler on this thread: an error raised while the handler
// shows its box (inside the user interface, say) is logged without a box.
thread_local int tlTiefe = 0;

struct Tiefe {
    Tiefe() { ++tlTiefe; }
    ~Tiefe() { --tlTiefe; }
};

std::chrono::system_clock::time_point jetzt(const ProgrammZustand& z) {
    if (z.plattform && z.plattform->clock) return z.plattform->clock->now();
    return std::chrono::system_clock::now();
}

std::tm ortszeit(std::chrono::system_clock::time_point t) {
    return platform::localTime(std::chrono::system_clock::to_time_t(t));
}

std::string zweistellig(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

std::string datum(const std::tm& tm) {
    return zweistellig(tm.tm_mday) + "." + zweistellig(tm.tm_mon + 1) + "." +
           std::to_string(tm.tm_year + 1900);
}

std::string uhrzeit(const std::tm& tm) {
    return zweistellig(tm.tm_hour) + ":" + zweistellig(tm.tm_min) + ":" + zweistellig(tm.tm_sec);
}

// `Print #f, Err.Number, Err.Description`: a number prints with a blank for
// its sign and one behind it, and the comma moves on to the next print zone
// of 14 columns.
std::string nummerUndBeschreibung(long nummer, const std::string& beschreibung) {
    std::string zeile = (nummer >= 0 ? " " : "") + std::to_string(nummer) + " ";
    const std::size_t zone = 14;
    zeile.append(zone - zeile.size() % zone, ' ');
    return zeile + beschreibung;
}

// DateDiff("n", a, b): the minute boundaries passed between the two times.
long minutenSeit(std::chrono::system_clock::time_point a, std::chrono::system_clock::time_point b) {
    using std::chrono::floor;
    using std::chrono::minutes;
    return static_cast<long>((floor<minutes>(b) - floor<minutes>(a)).count());
}

void cTempAnlegen() { fctVerzeichnisAnlegen("c:\\temp"); }

// Appends; false (and nothing else) when the file cannot be written.
bool anhaengen(const std::string& programmPfad, const std::string& text) {
    std::lock_guard<std::mutex> lock(logSperre());
    std::ofstream out(fctNativerPfad(programmPfad), std::ios::binary | std::ios::app);
    if (!out) return false;
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    return static_cast<bool>(out);
}

// Read without the string reader: a Settings file that cannot be read
// would report to this very handler.
bool alleFehlerZeigen(const ProgrammZustand& z) {
    if (z.strIniDatei.empty()) return false;
    return fctByteWert(fctIniWertLesen(z.strIniDatei, kAllgemeineDaten, "sShowAllErrorMsgbox")) ==
           1;
}

long nummerVon(const std::exception& e) {
    // An ADO error reaches VB's Err.Number as its HRESULT; the engine's own
    // errors carry Jet's number.
    if (const auto* s = dynamic_cast<const sql::Error*>(&e)) return s->hresult();
    if (const auto* j = dynamic_cast<const jet::Error*>(&e)) return j->number();
    if (const auto* a = dynamic_cast<const platform::AutomationError*>(&e)) return a->number();
    if (const auto* y = dynamic_cast<const std::system_error*>(&e)) return y->code().value();
    return 0;
}

}  // namespace

std::string fctErrorDatei(const ProgrammZustand& z) {
    if (!z.strErrorDatei.empty()) return z.strErrorDatei;
    return z.strCTemp + "txtError" + z.strRegKurz + ".txt";
}

void subErrorAllgemein(ProgrammZustand& z, bool booNurLog, const std::string& strBeschreibung,
                       long lngNummer, const std::vector<std::string>& kontext) {
    try {
        Tiefe tiefe;
        FehlerKontext& f = z.fehler;
        f.strLetzterFehler = strBeschreibung;
        f.lngLetzteFehlerNr = lngNummer;
        if (f.intFehlerAnzahl < std::numeric_limits<std::int16_t>::max()) ++f.intFehlerAnzahl;
        const auto zeit = jetzt(z);
        if (!f.ersterFehler) f.ersterFehler = zeit;

        cTempAnlegen();
        const std::string pfad = fctErrorDatei(z);

        bool zeigen = !booNurLog && !f.booMeldungenUnterdrueckt;
        if (!zeigen) zeigen = alleFehlerZeigen(z);
        if (zeigen && z.benutzer && tlTiefe == 1) {
            z.benutzer->meldung("Fehler: " + strBeschreibung, "subErrorAllgemein",
                                Symbol::Ausrufezeichen, Knoepfe::Ok);
        }

        const std::tm tm = ortszeit(zeit);
        std::string satz;
        auto zeile = [&satz](const std::string& s) {
            satz += s;
            satz += "\r\n";
        };
        zeile(datum(tm));
        zeile(uhrzeit(tm));
        zeile(z.versionZeile());
        zeile(strBeschreibung);
        zeile(nummerUndBeschreibung(lngNummer, strBeschreibung));
        for (const std::string* s : {&f.strProzedurFenster, &f.strSchritt, &f.strProzedurModul})
            if (!s->empty()) zeile(*s);
        for (const auto& s : f.weitere)
            if (!s.empty()) zeile(s);
        for (const auto& s : kontext)
            if (!s.empty()) zeile(s);
        zeile("");
        zeile("------------------------");
        zeile("");
        anhaengen(pfad, satz);  // a log that cannot be written is skipped

        if (f.intFehlerAnzahl >= kBoxenImSturm &&
            minutenSeit(*f.ersterFehler, zeit) < kSturmMinuten)
            f.booMeldungenUnterdrueckt = true;
    } catch (...) {
        // The handler is the last resort; it must not become an error itself.
    }
}

void subDebugLog(ProgrammZustand& z, const std::string& zeile) {
    if (!z.booDebug) return;
    try {
        cTempAnlegen();
        anhaengen(fctErrorDatei(z), zeile + "\r\n");
    } catch (...) {
    }
}

bool fctGetCDebug(ProgrammZustand& z, const std::string& strIniDatei,
                  const std::string& strSektion) {
    Prozedur p(z, "fctGetCDebug");
    p.geschuetztNurLog([&] {
        const std::string sektion = strSektion.empty() ? kAllgemeineDaten : strSektion;
        p.step("Debug-Werte lesen");
        const std::string strDebug = IniGetValue(z, strIniDatei, sektion, "strDebug");
        const std::string sErrMsgbox = IniGetValue(z, strIniDatei, sektion, "sErrMsgbox");
        z.booDebug = !strDebug.empty() && fctBoolWert(strDebug);
        z.booFehlerMsgbox = !sErrMsgbox.empty() && fctBoolWert(sErrMsgbox);

        // The switch is written as "0" into a Settings file that lacks it,
        // so that whoever has to turn debug mode on finds the key. A file
        // that does not exist yet is left to the first start, which must
        // still see it missing.
        IniText text;
        std::string strFehler;
        if (fctIniLaden(strIniDatei, text, strFehler) == IniStatus::Ok &&
            !text.wert(sektion, "strDebug")) {
            p.step("strDebug anlegen");
            IniSetValue(z, strIniDatei, sektion, "strDebug", "0");
        }

        if (z.booDebug && IniGetValue(z, strIniDatei, sektion, "sOhneMsgboxDaDll") != "1" &&
            z.benutzer) {
            p.step("Frage Debug-Modus");
            const std::string version = z.aryVersion.empty() ? "0.0" : z.aryVersion.back();
            const Antwort a = z.benutzer->meldung(
                "Soll im Debug-Modus gestartet werden?\rAbbrechen= Debug-Modus deaktivieren\r"
                "Version: " +
                    version + ".0",
                "Frage", Symbol::Frage, Knoepfe::OkAbbrechen);
            if (a == Antwort::Abbrechen) z.booDebug = false;
        }
    });
    return z.booDebug;
}

// ---------------------------------------------------------------------------
// Procedure context.

Prozedur::Prozedur(ProgrammZustand& z, std::string name, bool fenster)
    : z_(z), name_(std::move(name)), fenster_(fenster) {
    std::string& platz = fenster_ ? z_.fehler.strProzedurFenster : z_.fehler.strProzedurModul;
    vorher_ = std::move(platz);
    platz = name_;
    schrittVorher_ = std::move(z_.fehler.strSchritt);
    z_.fehler.strSchritt.clear();
}

Prozedur::~Prozedur() {
    std::string& platz = fenster_ ? z_.fehler.strProzedurFenster : z_.fehler.strProzedurModul;
    platz = std::move(vorher_);
    z_.fehler.strSchritt = std::move(schrittVorher_);
}

void Prozedur::step(const std::string& label) {
    try {
        z_.fehler.strSchritt = label;
    } catch (...) {
    }
    if (z_.booDebug) subDebugLog(z_, label);
}

void Prozedur::fehler(const std::exception& e, bool booNurLog) {
    subErrorAllgemein(z_, booNurLog, e.what(), nummerVon(e));
}

void Prozedur::fehler(const std::string& beschreibung, long nummer, bool booNurLog) {
    subErrorAllgemein(z_, booNurLog, beschreibung, nummer);
}

}  // namespace tessara
