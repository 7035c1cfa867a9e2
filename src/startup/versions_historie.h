#pragma once
// The program's change history, "\InfoVersion.lis" in the application
// directory: Windows-1252 text, a line "Version <number> (<date>)" opening
// each version, newest first, the lines below it (a leading "-" dropped)
// saying what it brought. Lines before the first version are a heading.
#include <string>
#include <string_view>
#include <vector>

#include "startup/programm_zustand.h"

namespace tessara {

struct typVersionEintrag {
    std::string strVersion;  // "9.0.0"
    std::string strDatum;    // the text in brackets, may be empty
    std::vector<std::string> zeilen;
    bool booLaufend = false;  // the version now running
};

struct VersionsHistorie {
    std::vector<typVersionEintrag> eintraege;
    // 0, or the message to show: the file missing (609) or not in
    // Windows-1252 (610; a UTF-8 file is shown all the same).
    long lngMeldung = 0;
};

// The running version as the history names it: "9.0.0".
std::string fctLaufendeVersion(const ProgrammZustand& z);

VersionsHistorie fctVersionsHistorieAusText(std::string_view bytes, const std::string& strLaufend);
// Reads z.strVersionInfoDatei.
VersionsHistorie fctVersionsHistorieLesen(ProgrammZustand& z);

}  // namespace tessara
