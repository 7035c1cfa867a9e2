#pragma once
// The common error handler and the procedure/step context.
//
// Procedures never throw to their callers. Each opens a Prozedur guard, marks
// its steps, and runs its body guarded, so that an exception becomes a log
// record and the procedure answers its stated value instead:
//
//   bool fctEtwas(ProgrammZustand& z) {
//       Prozedur p(z, "fctEtwas");
//       return p.geschuetzt(false, [&] {
//           p.step("Werte zuordnen");
//           ...
//           return true;
//       });
//   }
//
// (p.geschuetztNurLog writes the record without the message box.) A
// procedure that must do more than answer a value on an error catches
// std::exception itself and hands it to p.fehler(e).
#include <exception>
#include <string>
#include <type_traits>
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

    // Runs the procedure's body. An exception it throws goes to fehler and
    // the procedure answers `sonst` instead; a body that answers nothing just
    // ends. ...NurLog writes the record without showing the message box.
    template <class Rumpf>
    using Ergebnis = std::invoke_result_t<Rumpf&>;

    template <class Rumpf>
    Ergebnis<Rumpf> geschuetzt(const std::type_identity_t<Ergebnis<Rumpf>>& sonst, Rumpf&& rumpf) {
        return ausfuehren(rumpf, false, sonst);
    }
    template <class Rumpf>
    requires std::is_void_v<Ergebnis<Rumpf>>
    void geschuetzt(Rumpf&& rumpf) { ausfuehren(rumpf, false); }
    template <class Rumpf>
    Ergebnis<Rumpf> geschuetztNurLog(const std::type_identity_t<Ergebnis<Rumpf>>& sonst,
                                     Rumpf&& rumpf) {
        return ausfuehren(rumpf, true, sonst);
    }
    template <class Rumpf>
    requires std::is_void_v<Ergebnis<Rumpf>>
    void geschuetztNurLog(Rumpf&& rumpf) { ausfuehren(rumpf, true); }

  private:
    template <class Rumpf, class... Sonst>
    Ergebnis<Rumpf> ausfuehren(Rumpf& rumpf, bool booNurLog, const Sonst&... sonst) {
        try {
            return rumpf();
        } catch (const std::exception& e) {
            fehler(e, booNurLog);
            if constexpr (sizeof...(Sonst) == 1) return (sonst, ...);
        }
    }

    ProgrammZustand& z_;
    std::string name_;
    std::string vorher_;
    std::string schrittVorher_;  // the caller's step label, back on exit
    bool fenster_;
};

}  // namespace tessara
