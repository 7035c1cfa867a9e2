#pragma once
// The common error handler and the procedure/step context.
//
// Procedures never throw to their callers. Each opens a Prozedur guard, marks
// its steps, and turns a caught exception into a log record:
//
//   bool fctEtwas(ProgrammZustand& z) {
//       Prozedur p(z, "fctEtwas");
//       try {
//           p.step("Werte zuordnen");
//           ...
//           return true;
//       } catch (const std::exception& e) {
//           p.fehler(e);            // or p.fehler(e, true) for log only
//           return false;
//       }
//   }
#include <exception>
#include <string>
#include <vector>

#include "startup/programm_zustand.h"

namespace tessara {

// Appends an error record to the log and, depending on the flags and the
// Settings file, shows the message box. Never throws.
void subErrorAllgemein(ProgrammZustand& z, bool booNurLog, const std::string& strBeschreibung,
                       long lngNummer, const std::vector<std::string>& kontext = {});

// Debug mode: reads "strDebug" and "sErrMsgbox" from the section (empty means
// "AllgemeineDaten") of the Settings file into z.booDebug and
// z.booFehlerMsgbox, and, unless "sOhneMsgboxDaDll" is "1", asks whether to
// start in debug mode (Cancel switches it off). Answers z.booDebug.
bool fctGetCDebug(ProgrammZustand& z, const std::string& strIniDatei,
                  const std::string& strSektion);

// The log file: z.strErrorDatei, else the temporary directory followed by
// "txtError", the short registry name and ".txt".
std::string fctErrorDatei(const ProgrammZustand& z);

// Writes one line to the error log when debug mode is on (step labels,
// "sCmdLineParameter: ...", ...). Never throws.
void subDebugLog(ProgrammZustand& z, const std::string& zeile);

// Records the running procedure on entry and clears it on exit.
class Prozedur {
public:
    // fenster = true for a window's procedure, false for a module function.
    Prozedur(ProgrammZustand& z, std::string name, bool fenster = false);
    ~Prozedur();
    Prozedur(const Prozedur&) = delete;
    Prozedur& operator=(const Prozedur&) = delete;

    // Records the German step label; in debug mode also writes it to the log.
    void step(const std::string& label);
    // Hands the exception to subErrorAllgemein with this procedure as context.
    void fehler(const std::exception& e, bool booNurLog = false);
    void fehler(const std::string& beschreibung, long nummer = 0, bool booNurLog = false);

private:
    ProgrammZustand& z_;
    std::string name_;
    std::string vorher_;
    std::string schrittVorher_;  // the caller's step label, back on exit
    bool fenster_;
};

}  // namespace tessara
