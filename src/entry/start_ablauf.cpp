#include "entry/start_ablauf.h"

#include "captions/beschriftung.h"
#include "entry/tessara_start.h"
#include "platform/environment.h"
#include "platform/instance_channel.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

constexpr const char* kAllg = "AllgemeineDaten";
// The class of the running instance that the go-between forwards to.
constexpr const char* kStartKlasse = kTessaraStartKlasse;
// The edition number in front of the running version in the window title.
constexpr const char* kEdition = "1";

platform::InstanceChannel* kanal(ProgrammZustand& z) {
    return z.plattform ? z.plattform->instance : nullptr;
}

// ChangeDb's path: every "/" replaced by "\\".
std::string fctMitBackslash(std::string pfad) {
    for (char& c : pfad)
        if (c == '/') c = '\\';
    return pfad;
}

}  // namespace

std::string fctInstanzName(const ProgrammZustand& z) { return z.strKurzName; }

std::string fctVersionsText(const ProgrammZustand& z) {
    return std::string(kEdition) + "." + z.aryVersion.back();
}

std::string fctFensterTitel(const ProgrammZustand& z, const std::string& strProgName) {
    std::string titel;
    const std::string version = fctVersionsText(z);
    for (char c : strProgName) {
        if (c == '$')
            titel += version;
        else
            titel.push_back(c);
    }
    return titel;
}

// ---------------------------------------------------------------------------
// The go-between.

clsTessaraZwischen::clsTessaraZwischen(ProgrammZustand& z) : z_(z) {}

bool clsTessaraZwischen::erzeugen(std::string& strFehler) {
    auto* k = kanal(z_);
    if (!k) {
        strFehler = "Kein Übergabekanal vorhanden.";
        return false;
    }
    if (!k->anotherInstanceRunning(fctInstanzName(z_))) {
        strFehler = "Tessara läuft nicht: die Anfrage kann nicht übergeben werden.";
        return false;
    }
    return true;
}

namespace {
bool senden(ProgrammZustand& z, const std::string& op, std::vector<std::string> args) {
    auto* k = kanal(z);
    return k && k->send(fctInstanzName(z), platform::InstanceMessage{op, std::move(args)});
}
}  // namespace

bool clsTessaraZwischen::LBlkEinfuegen() { return senden(z_, "LBlkEinfuegen", {}); }
bool clsTessaraZwischen::StartForm2(const std::string& s1, const std::string& s2) {
    return senden(z_, "StartForm2", {s1, s2});
}
bool clsTessaraZwischen::ClassNameUebergeben(const std::string& k) {
    return senden(z_, "ClassNameUebergeben", {k});
}
bool clsTessaraZwischen::ChangeDb(const std::string& p) { return senden(z_, "ChangeDb", {p}); }

// ---------------------------------------------------------------------------
// Main.

MainErgebnis clsStart::Main(ProgrammZustand& z, Hauptfenster& fenster) {
    // A Byte that overflows raises, and Main resumes past the failing
    // statement: the counter stays at its top instead of wrapping to the
    // first-entry path.
    if (bytAufruf_ < 255) ++bytAufruf_;
    if (bytAufruf_ == 1) return ersterAufruf(z, fenster);
    wiedereintritt(z, fenster);
    return MainErgebnis::Laeuft;
}

MainErgebnis clsStart::ersterAufruf(ProgrammZustand& z, Hauptfenster& fenster) {
    Prozedur p(z, "Main");
    std::string strCmd;
    if (z.plattform && z.plattform->environment) strCmd = z.plattform->environment->commandLine();
    const typKommandozeile k = fctKommandozeileAuswerten(strCmd);

    // Whether this start only hands its request on is decided first: a
    // forwarding launcher asks nothing (temporary directory, debug mode).
    auto* kan = kanal(z);
    const bool vorherige = kan && !kan->claim(fctInstanzName(z));
    if (!initialisieren(z, !vorherige)) return MainErgebnis::ProzessEnde;
    subDebugLog(z, "sCmdLineParameter: " + k.strKlein);
    p.step("Flags zurücksetzen");
    z.strUebergabeBlock.clear();
    z.strUebergabeVariante.clear();
    subDebugLog(z, "CmdLineParameter: " + k.strKlein);
    return zweiteKopieOderStart(z, fenster, k, vorherige);
}

bool clsStart::initialisieren(ProgrammZustand& z, bool booFragen) {
    Prozedur p(z, "Main");
    auto* env = z.plattform ? z.plattform->environment : nullptr;

    // The versions, names, registry root and the other fixed values are the
    // defaults of ProgrammZustand; Main only finds what depends on the machine.
    p.step("Werte zuordnen");
    if (env) z.strAppPfad = env->applicationDirectory();

    p.step("Ini-Datei suchen");
    z.strIniDatei = z.strAppPfad + "\\Tessara9.0.ini";
    if (!fctDateiExistiert(z.strIniDatei) && env) {
        const std::string gemeinsam = env->commonAppData();
        z.strIniDatei = gemeinsam + "\\Tessara\\Tessara9.0.ini";
        fctVerzeichnisAnlegen(gemeinsam + "\\Tessara");
        z.strCTemp = gemeinsam + "\\Tessara\\";
    }

    p.step("Temp-Verzeichnis prüfen");
    const std::string sCTemp = IniGetValue(z, z.strIniDatei, kAllg, "sCTemp");
    if (!sCTemp.empty()) z.strCTemp = fctBackslashAmEndeAnfuegen(sCTemp);
    if (booFragen && z.strCTemp.find(' ') != std::string::npos && z.benutzer) {
        Antwort a = z.benutzer->meldung(
            "ist auf Ihrem Computer noch Windows XP installiert?\r(oder schon Vista oder Windows "
            "7)",
            "Frage", Symbol::Frage, Knoepfe::JaNein);
        if (a == Antwort::Ja) {
            z.strIniDatei = z.strAppPfad + "\\Tessara9.0.ini";
            z.strCTemp = "c:\\temp\\";
        } else {
            z.benutzer->meldung("Ihr temporärPfad für Tessara beinhaltet Leerzeichen: " +
                                    z.strCTemp + "\rBitte wählen Sie eine Pfad ohne Leerzeichen.",
                                "Info", Symbol::Information, Knoepfe::Ok);
            std::string neu = z.benutzer->ordnerWaehlen("Temp-Verzeichnis", z.strCTemp);
            if (!neu.empty()) z.strCTemp = fctBackslashAmEndeAnfuegen(neu);
        }
        fctWertAllgInIniSpeichern(z, "sCTemp", z.strCTemp);
    }
    fctVerzeichnisAnlegen(z.strCTemp);

    p.step("Dateinamen festlegen");
    z.strErrorDatei = z.strCTemp + "txtErrorTessara9.0.txt";
    z.strVersionInfoDatei = z.strAppPfad + "\\InfoVersion.lis";
    z.strIconDatei = z.strAppPfad + "\\tessara.ico";

    p.step("Sprache lesen");
    z.strSprache = IniGetValue(z, z.strIniDatei, kAllg, "Sprache");
    if (z.strSprache.empty()) z.strSprache = "deutsch";

    p.step("Debug-Modus");
    if (booFragen) fctGetCDebug(z, z.strIniDatei, "");  // which may ask whether to debug
    if (booFragen && z.booDebug && z.benutzer)
        z.benutzer->meldung("Prgramm startet im Debug-Modus", "Info", Symbol::Information,
                            Knoepfe::Ok);

    p.step("Vorgaben");  // root, table and directory names: ProgrammZustand's defaults too

    p.step("Beschriftungsdatei zuordnen");
    if (!fctBeschriftungsFileZuordnenIni(z)) {
        if (z.benutzer)
            z.benutzer->meldung(
                "Es konnte keine Beschriftungsdatei gefunden werden.\r\rTessara kann nicht "
                "gestartet werden.",
                "Info", Symbol::Information, Knoepfe::Ok);
        return false;
    }
    return true;
}

MainErgebnis clsStart::zweiteKopieOderStart(ProgrammZustand& z, Hauptfenster& fenster,
                                            const typKommandozeile& k, bool vorherige) {
    Prozedur p(z, "Main");

    if (vorherige) {
        p.step("zweite Kopie");
        subDebugLog(z, "App.PrevInstance = true");
        const bool anfrage =
            k.strKlein == "lblock" || k.art == typKommandozeile::Art::LBlkEinfuegen ||
            k.art == typKommandozeile::Art::StartForm2 || k.art == typKommandozeile::Art::Datenbank;
        if (anfrage) {
            clsTessaraZwischen zw(z);
            std::string strFehler;
            if (!zw.erzeugen(strFehler)) {
                if (z.benutzer)
                    z.benutzer->meldung(strFehler, "Tessara", Symbol::Ausrufezeichen, Knoepfe::Ok);
            } else if (k.strKlein == "lblock") {
                zw.ClassNameUebergeben(kStartKlasse);
                zw.LBlkEinfuegen();
            } else if (k.art == typKommandozeile::Art::LBlkEinfuegen) {
                zw.LBlkEinfuegen();
            } else if (k.art == typKommandozeile::Art::StartForm2) {
                zw.StartForm2(k.str1, k.str2);
            } else {
                zw.ChangeDb(k.str1);
            }
        }
        const std::string titel = fctFensterTitel(z, fctBeschriftung(z, "ProgName"));
        subDebugLog(z, "AppActivate sAppTitel: " + titel);
        if (z.plattform && z.plattform->desktop) z.plattform->desktop->activateByTitle(titel);
        return MainErgebnis::ProzessEnde;
    }

    p.step("erste Kopie");
    subDebugLog(z, "App.PrevInstance = false");
    z.bytOhneWithEvent = fctIniByteLesen(z, z.strIniDatei, kAllg, "bytOhneWithEvent");
    // A library given with "/d" is there for the load sequence: on a first
    // start it becomes the first library instead of a question.
    if (k.art == typKommandozeile::Art::Datenbank) z.strUebergabeDb = fctMitBackslash(k.str1);
    fenster.laden();
    if (fenster.startAbbrechen()) return MainErgebnis::ProzessEnde;
    fenster.ereignisseAbonnieren();

    // A request given on this process's own command line is carried out as
    // if it had been handed over, now that the window is there.
    switch (k.art) {
        case typKommandozeile::Art::Datenbank:
            if (!z.strUebergabeDb.empty()) Main(z, fenster);  // besides the libraries known
            break;
        case typKommandozeile::Art::StartForm2:
            anfrageAusfuehren(z, fenster, "StartForm2", {k.str1, k.str2});
            break;
        case typKommandozeile::Art::LBlkEinfuegen:
            anfrageAusfuehren(z, fenster, "LBlkEinfuegen", {});
            break;
        default:
            break;
    }
    return MainErgebnis::Laeuft;
}

void clsStart::nachVorne(ProgrammZustand& z, Hauptfenster& fenster) {
    fenster.zeigen();
    if (z.plattform && z.plattform->desktop)
        z.plattform->desktop->bringToFront(fenster.fensterHandle());
}

void clsStart::wiedereintritt(ProgrammZustand& z, Hauptfenster& fenster) {
    Prozedur p(z, "Main");
    p.step("Wiedereintritt");
    if (fenster.nurNachVorneHolen()) {
        nachVorne(z, fenster);
        return;
    }
    if (!z.strUebergabeBlock.empty()) {
        nachVorne(z, fenster);
        p.step("Block einfügen");
        fenster.blockAnfrageAusfuehren();
        // Handled once: a later request of another kind must not insert it
        // again; LBlkEinfuegen asks for that explicitly.
        strLetzterBlock_ = z.strUebergabeBlock;
        strLetzteVariante_ = z.strUebergabeVariante;
        z.strUebergabeBlock.clear();
        z.strUebergabeVariante.clear();
    }
    if (!z.strUebergabeDb.empty() && z.strUebergabeDb != "TestDb") {
        p.step("Datenbank wechseln");
        fenster.datenbankWechseln(z.strUebergabeDb);
        z.strUebergabeDb.clear();
    }
    fenster.timerIntervall(1000);
}

void clsStart::anfragenAbholen(ProgrammZustand& z, Hauptfenster& fenster,
                               std::vector<platform::InstanceMessage> neue) {
    for (auto& m : neue) wartend_.push_back(std::move(m));
    // A request may arrive while one is carried out (the insertion pumps
    // messages while it waits on the host, a message box runs its own loop):
    // it keeps its place in the line.
    if (booAbholen_) return;
    booAbholen_ = true;
    while (!wartend_.empty() && !fenster.beschaeftigt()) {
        const platform::InstanceMessage m = std::move(wartend_.front());
        wartend_.erase(wartend_.begin());
        anfrageAusfuehren(z, fenster, m.operation, m.arguments);
    }
    booAbholen_ = false;
}

void clsStart::anfrageAusfuehren(ProgrammZustand& z, Hauptfenster& fenster, const std::string& op,
                                 const std::vector<std::string>& args) {
    clsTessaraStart(z, *this, fenster).anfrage(platform::InstanceMessage{op, args});
}

}  // namespace tessara
