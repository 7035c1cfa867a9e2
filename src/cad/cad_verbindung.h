#pragma once
// Finding and identifying the CAD host: the automation route for full
// AutoCAD, the title route for AutoCAD LT and the hosts that only take
// scripts, and the one record every other operation reads.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cad/acad_automation.h"
#include "platform/desktop.h"
#include "startup/programm_zustand.h"

namespace tessara {

// The record type of typAcadVersionInfo (the variable keeps the name).
struct AcadVersionInfo {
    std::string strACadVersion;
    platform::WindowHandle lngAcadHwnd = 0;
    std::string strAcadTitel;
};

// Connection state of the process. Owned next to ProgrammZustand by the
// entry point; tests build their own.
struct CadVerbindung {
    AcadAutomation* automation = nullptr;  // none on a system without COM
    std::shared_ptr<AcadAnwendung> acadApp;
    AcadVersionInfo typAcadVersionInfo;
    std::uint8_t bytNurFenster = 0;

    // Whether the title route offers the list of open windows (through
    // Benutzer) when no host window is found; the insertion asks, start-up
    // does not.
    bool booFensterlisteAnbieten = false;
    // fctMsgboxNichtMehrAnzeigen: true lets the question through. Unset lets it through.
    std::function<bool(const std::string& schluessel)> fctMsgboxNichtMehrAnzeigen;
    // The final no-host report when it is not suppressed. Unset: entries 118
    // and 117 of the message file in a plain box.
    std::function<void()> keinHostMelden;
    // A numbered entry of the message file. Unset: the number itself in text.
    std::function<std::string(int nummer)> meldungsText;
};

inline constexpr const char* kAcadProgId = "AutoCAD.Application";
inline constexpr const char* kAutoCadLt = "AutoCAD LT";

// The one switch: every LT-or-not decision of the program is this test.
inline bool fctIstAutoCadLt(const CadVerbindung& v) {
    return v.typAcadVersionInfo.strACadVersion == kAutoCadLt;
}

struct AcadVersionsZeile {
    const char* praefix;
    const char* bezeichnung;
};
// The version table, top to bottom; first match of the first five characters wins.
const std::vector<AcadVersionsZeile>& fctAcadVersionsTabelle();
// The label for a host version string, empty when no row matches.
std::string fctAcadVersionZuordnen(const std::string& strVersion);

struct HostTitelZeile {
    const char* titel;
    bool setztNurFenster;
};
// The host titles of the script route, in the order they are tried.
const std::vector<HostTitelZeile>& fctHostTitelListe();

// The caption up to (not including) its first "-", trailing blank kept.
std::string fctTitelVorBindestrich(const std::string& strCaption);

// The full title of the first top-level window whose title contains the text
// anywhere (as InStr does, case-sensitive); empty when none does. It finds
// hosts whose title puts the drawing name first.
std::string fctFensterSucheGenauerTitel(platform::Desktop& desktop, const std::string& strText);

// Activation by title prefix; on success hwnd is the window now in front.
bool fctFensterAktivieren(platform::Desktop& desktop, const std::string& strTitel,
                          platform::WindowHandle& hwnd);

// True when the path names an existing file or directory (program form).
bool fctPfadPruefen(const std::string& strPfad);

bool ACAD_Connect(ProgrammZustand& z, CadVerbindung& v, bool booNurAutomation, bool booOhneMeldung,
                  bool& booLtGewaehlt);
bool fctAcadObjektHolen(ProgrammZustand& z, CadVerbindung& v, bool booNichtStarten);
std::string ACAD_Start(ProgrammZustand& z, CadVerbindung& v, const std::string& strDatei);
bool fctAcadDokumentSchliessen(ProgrammZustand& z, CadVerbindung& v);

// Brings the host window to the front by strAcadTitel ("ACAD_aktivieren").
bool fctAcadAktivieren(ProgrammZustand& z, CadVerbindung& v);

}  // namespace tessara
