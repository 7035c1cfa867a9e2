#pragma once
// The program's one start-up procedure. Main serves three roles: a
// forwarding launcher (a second process hands its request to the running
// instance and ends), the initialisation of the first instance, and the
// re-entry for each request handed over later.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "platform/instance_channel.h"
#include "startup/kommandozeile.h"
#include "startup/programm_zustand.h"

namespace tessara {

// What Main needs of the main window frmBlockverwaltung.
class Hauptfenster {
  public:
    virtual ~Hauptfenster() = default;
    virtual void laden() = 0;              // Load: runs the window's load sequence
    virtual bool startAbbrechen() = 0;     // whether start-up must be abandoned
    virtual bool nurNachVorneHolen() = 0;  // whether it only needs bringing forward
    virtual void zeigen() = 0;
    virtual platform::WindowHandle fensterHandle() = 0;
    virtual void blockAnfrageAusfuehren() = 0;  // the block-request handler
    // Puts the path into comboxVerzeichnis and runs its click handler.
    virtual void datenbankWechseln(const std::string& strPfad) = 0;
    virtual void timerIntervall(int millisekunden) = 0;
    // Creates the object that receives the CAD host's events; a window
    // that follows no host leaves it out.
    virtual void ereignisseAbonnieren() {}
    // Whether a command runs that waits on the host (an insertion): a
    // request arriving meanwhile waits for its end.
    virtual bool beschaeftigt() { return false; }
};

// The go-between "Tessaraz.clsTessaraZwischen": hands a request to the
// running instance over the platform's instance channel.
class clsTessaraZwischen {
  public:
    clsTessaraZwischen(ProgrammZustand& z);
    // Whether the running instance can be reached ("creation" of the object).
    bool erzeugen(std::string& strFehler);
    bool LBlkEinfuegen();
    bool StartForm2(const std::string& str1, const std::string& str2);
    bool ClassNameUebergeben(const std::string& strKlasse);
    // Not among the go-between's operations of old: forwards a database
    // path given with "/d" (what the entry class's ChangeDb does).
    bool ChangeDb(const std::string& strPfad);

  private:
    ProgrammZustand& z_;
};

enum class MainErgebnis {
    ProzessEnde,  // the process ends now
    Laeuft        // the main window runs; requests arrive through Main again
};

// Name under which the running instance claims the instance channel.
std::string fctInstanzName(const ProgrammZustand& z);
// The running main window's title: caption "ProgName" with every "$"
// replaced by the version text.
std::string fctFensterTitel(const ProgrammZustand& z, const std::string& strProgName);
// The version text put into "$": edition number, ".", running version.
std::string fctVersionsText(const ProgrammZustand& z);

class clsStart {
  public:
    // Entered at process start and for every request handed over.
    MainErgebnis Main(ProgrammZustand& z, Hauptfenster& fenster);

    // Carries out a message received through the instance channel through
    // the entry class clsTessaraStart, which stores the request in the
    // program-wide state and enters Main again.
    void anfrageAusfuehren(ProgrammZustand& z, Hauptfenster& fenster,
                           const std::string& strOperation,
                           const std::vector<std::string>& argumente);

    // Requests taken from the message pump: carried out in order, or kept
    // while the window is busy and carried out at a later call.
    void anfragenAbholen(ProgrammZustand& z, Hauptfenster& fenster,
                         std::vector<platform::InstanceMessage> neue);

    std::uint8_t aufrufe() const { return bytAufruf_; }
    const std::string& klasse() const { return strKlasse_; }
    void klasseSetzen(const std::string& strKlasse) { strKlasse_ = strKlasse; }
    // The block request handled last, which LBlkEinfuegen inserts again.
    const std::string& letzterBlock() const { return strLetzterBlock_; }
    const std::string& letzteVariante() const { return strLetzteVariante_; }

  private:
    MainErgebnis ersterAufruf(ProgrammZustand& z, Hauptfenster& fenster);
    // Steps 1 to 11; without booFragen none of them asks the user anything.
    bool initialisieren(ProgrammZustand& z, bool booFragen);
    MainErgebnis zweiteKopieOderStart(ProgrammZustand& z, Hauptfenster& fenster,
                                      const typKommandozeile& k, bool vorherige);
    void wiedereintritt(ProgrammZustand& z, Hauptfenster& fenster);
    void nachVorne(ProgrammZustand& z, Hauptfenster& fenster);

    std::vector<platform::InstanceMessage> wartend_;
    bool booAbholen_ = false;
    std::uint8_t bytAufruf_ = 0;  // lives for the whole process, only grows
    std::string strKlasse_;       // class named through ClassNameUebergeben
    // The block request handled last, which LBlkEinfuegen inserts again.
    std::string strLetzterBlock_, strLetzteVariante_;
};

}  // namespace tessara
