#include "cad/cad_verbindung.h"

#include <algorithm>
#include <cctype>

#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

platform::Desktop* desktopVon(ProgrammZustand& z) {
    return z.plattform ? z.plattform->desktop : nullptr;
}

std::string klein(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

std::string meldung(const CadVerbindung& v, int nummer) {
    if (v.meldungsText) return v.meldungsText(nummer);
    return std::to_string(nummer);
}

void keinHostMelden(ProgrammZustand& z, const CadVerbindung& v) {
    if (v.keinHostMelden)
        v.keinHostMelden();
    else if (z.benutzer)
        z.benutzer->meldung(meldung(v, 118), meldung(v, 117), Symbol::Information, Knoepfe::Ok);
}

// Sets the record for a host found by its window title.
bool titelTreffer(CadVerbindung& v, const std::string& version, const std::string& titel,
                  platform::WindowHandle hwnd) {
    v.typAcadVersionInfo.strACadVersion = version;
    v.typAcadVersionInfo.strAcadTitel = titel;
    v.typAcadVersionInfo.lngAcadHwnd = hwnd;
    return true;
}

}  // namespace

const std::vector<AcadVersionsZeile>& fctAcadVersionsTabelle() {
    // The keys are kept as the hosts report them, including the "h" of the
    // first row and the letterless 2000i and 2002 rows.
    static const std::vector<AcadVersionsZeile> tabelle = {
        {"15.0h", "AutoCAD 2000"}, {"15.05", "AutoCAD 2000i"}, {"15.06", "AutoCAD 2002"},
        {"16.0s", "AutoCAD 2004"}, {"16.1s", "AutoCAD 2005"},  {"16.2s", "AutoCAD 2006"},
        {"17.0s", "AutoCAD 2007"}, {"17.1s", "AutoCAD 2008"},  {"17.2s", "AutoCAD 2009"},
        {"18.0s", "AutoCAD 2010"}, {"18.1s", "AutoCAD 2011"},  {"18.2s", "AutoCAD 2012"},
        {"19.0s", "AutoCAD 2013"}, {"19.1s", "AutoCAD 2014"},  {"20.0s", "AutoCAD 2015"},
    };
    return tabelle;
}

std::string fctAcadVersionZuordnen(const std::string& strVersion) {
    const std::string links = strVersion.substr(0, 5);
    for (const auto& zeile : fctAcadVersionsTabelle()) {
        if (links == zeile.praefix) return zeile.bezeichnung;
    }
    return {};
}

const std::vector<HostTitelZeile>& fctHostTitelListe() {
    static const std::vector<HostTitelZeile> liste = {
        {"AutoCAD LT", true},     {"Toolkit", true},     {"Easy Sketch", true},
        {"MBI-CAD+T OEM", false}, {"!SlingShot", false}, {"CADSTA Elements", false},
        {"Bricscad Pro", false},  {"ZWCAD", false},
    };
    return liste;
}

std::string fctTitelVorBindestrich(const std::string& strCaption) {
    const auto pos = strCaption.find('-');
    return pos == std::string::npos ? strCaption : strCaption.substr(0, pos);
}

std::string fctFensterSucheGenauerTitel(platform::Desktop& desktop, const std::string& strText) {
    if (strText.empty()) return {};
    for (const auto& w : desktop.topLevelWindows()) {
        if (w.title.find(strText) != std::string::npos) return w.title;
    }
    return {};
}

bool fctFensterAktivieren(platform::Desktop& desktop, const std::string& strTitel,
                          platform::WindowHandle& hwnd) {
    if (strTitel.empty() || !desktop.activateByTitle(strTitel)) return false;
    hwnd = desktop.foregroundWindow();
    if (hwnd) return true;
    // A backend that cannot tell the foreground window: the one activation
    // chose, the exact title first, else the first title beginning with the text.
    const auto fenster = desktop.topLevelWindows();
    const std::string gesucht = klein(strTitel);
    for (const auto& w : fenster) {
        if (klein(w.title) == gesucht) {
            hwnd = w.handle;
            return true;
        }
    }
    for (const auto& w : fenster) {
        if (klein(w.title).rfind(gesucht, 0) == 0) {
            hwnd = w.handle;
            return true;
        }
    }
    return true;
}

bool fctPfadPruefen(const std::string& strPfad) {
    if (strPfad.empty()) return false;
    return fctPfadExistiert(strPfad);
}

bool ACAD_Connect(ProgrammZustand& z, CadVerbindung& v, bool booNurAutomation, bool booOhneMeldung,
                  bool& booLtGewaehlt) {
    Prozedur p(z, "ACAD_Connect");
    return p.geschuetzt(false, [&] {
        v.acadApp.reset();
        auto& info = v.typAcadVersionInfo;

        if (!booLtGewaehlt) {
            subDebugLog(z, "ACAD_Connect ");
            subDebugLog(z, "booOnlyAutoCAD16 = false");
            std::shared_ptr<AcadAnwendung> app;
            std::string fehler;
            long nummer = 0;
            try {
                if (!v.automation)
                    throw AcadFehler("ActiveX-Komponente kann kein Objekt erstellen.", 429);
                app = v.automation->laufendesObjekt(kAcadProgId);
                if (!app) throw AcadFehler("ActiveX-Komponente kann kein Objekt erstellen.", 429);
            } catch (const AcadFehler& e) {
                fehler = e.what();
                nummer = e.nummer();
            } catch (const std::exception& e) {
                fehler = e.what();
            }
            if (!app) {
                subDebugLog(z, "Fehler: " + fehler + "; Nr.: " + std::to_string(nummer));
                if (booNurAutomation) return false;
            } else {
                v.acadApp = app;
                std::string version;
                try {
                    version = app->Version();
                } catch (const std::exception&) {
                    version.clear();
                }
                const std::string label = fctAcadVersionZuordnen(version);
                if (!label.empty()) {
                    info.strACadVersion = label;
                    try {
                        info.strAcadTitel = app->Caption();
                    } catch (const std::exception&) {
                        info.strAcadTitel.clear();
                    }
                    if (auto* d = desktopVon(z)) {
                        platform::WindowHandle hwnd = 0;
                        if (fctFensterAktivieren(*d, info.strAcadTitel, hwnd))
                            info.lngAcadHwnd = hwnd;
                    }
                    // Activation later goes by title prefix, which must also
                    // hold when another drawing is current.
                    info.strAcadTitel = fctTitelVorBindestrich(info.strAcadTitel);
                    try {
                        const std::string name = app->Name();
                        const std::string ver = app->Version();
                        const long anzahl = app->DocumentsCount();
                        auto dok = app->ActiveDocument();
                        const auto dokHwnd = dok ? dok->hwnd() : 0;
                        const std::string dokTitel = dok ? dok->WindowTitle() : std::string();
                        subDebugLog(z, name + " " + ver + " " + std::to_string(anzahl) + " " +
                                           std::to_string(dokHwnd) + " " + dokTitel);
                    } catch (const std::exception&) {
                        // Only for the log; the connection stands without them.
                    }
                    return true;
                }
                if (version != "2007" && version != "2008") {
                    if (z.benutzer) {
                        z.benutzer->meldung(
                            "Tessara findet nur ein AutoCAD mit der VersionsNr: " + version + "\r" +
                                "Bitte melden Sie sich bei der Firma Vendel",
                            "Info", Symbol::Information, Knoepfe::Ok);
                    }
                    return false;
                }
            }
        }

        p.step("Titelsuche");
        platform::Desktop* d = desktopVon(z);
        if (!d) {
            if (!booOhneMeldung) keinHostMelden(z, v);
            return false;
        }
        platform::WindowHandle hwnd = 0;
        if (booLtGewaehlt && fctFensterAktivieren(*d, "AutoCAD", hwnd)) {
            return titelTreffer(v, "AutoCAD", "AutoCAD", hwnd);
        }
        for (const auto& zeile : fctHostTitelListe()) {
            if (fctFensterAktivieren(*d, zeile.titel, hwnd)) {
                if (zeile.setztNurFenster) v.bytNurFenster = 1;
                return titelTreffer(v, kAutoCadLt, zeile.titel, hwnd);
            }
        }
        bool booLt = true;
        std::string titel = fctFensterSucheGenauerTitel(*d, kAutoCadLt);
        if (titel.empty()) {
            booLt = false;
            titel = fctFensterSucheGenauerTitel(*d, "!SlingShot");
        }
        if (!titel.empty() && fctFensterAktivieren(*d, titel, hwnd)) {
            if (booLt) v.bytNurFenster = 1;
            return titelTreffer(v, kAutoCadLt, titel, hwnd);
        }

        p.step("Fensterauswahl");
        const bool fragen =
            v.fctMsgboxNichtMehrAnzeigen ? v.fctMsgboxNichtMehrAnzeigen("AutoCadTitel") : true;
        std::vector<std::string> titelListe;
        if (fragen && v.booFensterlisteAnbieten && z.benutzer)
            for (const auto& w : d->topLevelWindows()) titelListe.push_back(w.title);
        // An empty list has nothing to choose from: not offered.
        if (!titelListe.empty()) {
            const std::string gewaehlt =
                z.benutzer->listeWaehlen("Übersicht der geöffneten Fenster",
                                         "Wählen Sie das AutoCAD-Fenster aus.", titelListe);
            if (!gewaehlt.empty() && fctFensterAktivieren(*d, gewaehlt, hwnd)) {
                return titelTreffer(v, kAutoCadLt, gewaehlt, hwnd);
            }
        }

        if (!booOhneMeldung) keinHostMelden(z, v);
        return false;
    });
}

bool fctAcadObjektHolen(ProgrammZustand& z, CadVerbindung& v, bool booNichtStarten) {
    Prozedur p(z, "fctAcadObjektHolen");
    return p.geschuetzt(false, [&] {
        std::shared_ptr<AcadAnwendung> app;
        if (v.automation) {
            try {
                app = v.automation->laufendesObjekt(kAcadProgId);
            } catch (const std::exception&) {
                app.reset();
            }
            if (!app && !booNichtStarten) {
                try {
                    app = v.automation->neuesObjekt(kAcadProgId);
                } catch (const std::exception&) {
                    app.reset();
                }
            }
        }
        if (app) v.acadApp = app;
        return app != nullptr;
    });
}

std::string ACAD_Start(ProgrammZustand& z, CadVerbindung& v, const std::string& strDatei) {
    Prozedur p(z, "ACAD_Start");
    return p.geschuetzt({}, [&]() -> std::string {
        subDebugLog(z, "ACAD_Start(1) ");
        if (!fctAcadObjektHolen(z, v, true)) return {};
        if (v.acadApp->DocumentsCount() == 0) {
            subDebugLog(z, "acadApp.Documents.Count = 0 ");
            return {};
        }
        std::vector<std::string> tempSuchpfad;
        {
            const std::string pfad = v.acadApp->SupportPath();
            std::size_t anfang = 0;
            while (true) {
                const auto pos = pfad.find(';', anfang);
                tempSuchpfad.push_back(pfad.substr(anfang, pos - anfang));
                if (pos == std::string::npos) break;
                anfang = pos + 1;
            }
        }
        subDebugLog(
            z, "TempSuchpfad Anzahl " + std::to_string(static_cast<long>(tempSuchpfad.size()) - 1));
        std::vector<std::string> suchListe;
        suchListe.push_back(v.acadApp->ActiveDocument()->GetVariable("DWGPREFIX"));
        suchListe.push_back(v.acadApp->Path());
        suchListe.insert(suchListe.end(), tempSuchpfad.begin(), tempSuchpfad.end());

        std::string datei = strDatei;
        while (!datei.empty() && datei.front() == '\\') datei.erase(0, 1);
        std::string strCurrPath;
        for (std::string eintrag : suchListe) {
            while (!eintrag.empty() && eintrag.back() == '\\') eintrag.pop_back();
            strCurrPath = eintrag + "\\" + datei;
            subDebugLog(z, "strCurrPath " + strCurrPath);
            if (fctPfadPruefen(strCurrPath)) break;
        }
        subDebugLog(z, "ACAD_Start(1) danach ");
        return strCurrPath;
    });
}

bool fctAcadDokumentSchliessen(ProgrammZustand& z, CadVerbindung& v) {
    Prozedur p(z, "fctAcadDokumentSchliessen");
    return p.geschuetztNurLog(false, [&] {
        if (!v.acadApp) return false;
        auto dok = v.acadApp->ActiveDocument();
        if (!dok) return false;
        dok->Close();
        dok.reset();
        return true;
    });
}

bool fctAcadAktivieren(ProgrammZustand& z, CadVerbindung& v) {
    auto* d = desktopVon(z);
    if (!d) return false;
    platform::WindowHandle hwnd = 0;
    if (!fctFensterAktivieren(*d, v.typAcadVersionInfo.strAcadTitel, hwnd)) return false;
    if (hwnd) v.typAcadVersionInfo.lngAcadHwnd = hwnd;
    return true;
}

}  // namespace tessara
