#include "cad/lt_skript.h"

#include <filesystem>
#include <fstream>

#include "cad/einfuege_texte.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "startup/zeichensatz.h"

namespace tessara {

namespace {

const std::string Q = "\"";

platform::Desktop* desktopVon(ProgrammZustand& z) {
    return z.plattform ? z.plattform->desktop : nullptr;
}

std::string skriptDatei(const ProgrammZustand& z) { return z.strCTemp + kLtSkriptName; }

bool tippen(ProgrammZustand& z, platform::Desktop& d, const std::string& tasten) {
    subDebugLog(z, "SendKey Acad: " + tasten);
    return d.sendKeys(tasten);
}

void debugHinweis(ProgrammZustand& z, bool mitTemp) {
    if (!z.booDebug || !z.benutzer) return;
    std::string text = "Skripdatei: " + skriptDatei(z) + "\r" +
                       "Backslash änder mit: sReplaceBackslash in der Datei: " + z.strIniDatei;
    if (mitTemp) text += "\r" + std::string("Ort der Skriptdatei änder: sCTemp");
    z.benutzer->meldung(text, "Info", Symbol::Information, Knoepfe::Ok);
}

}  // namespace

std::vector<std::string> fctSkriptSlide(const std::string& strSlideDatei) {
    return {"._mslide", Q + strSlideDatei + Q, "._filedia", "1"};
}

std::vector<std::string> fctSkriptOeffnen(const std::string& strDwgDatei) {
    return {"._open", Q + strDwgDatei + Q, "._filedia", "1"};
}

std::string fctBlockDateiZeile(std::uint8_t checkBlock, const std::string& strBlockName,
                               int ansicht, const std::string& strExpliziterName,
                               const std::string& strZeichnung) {
    if (!checkBlock) return Q + strZeichnung + Q;
    if (strExpliziterName.empty()) {
        return Q + strBlockName + std::to_string(ansicht) + "=" + strZeichnung + Q;
    }
    return Q + strExpliziterName + "=" + strZeichnung + Q;
}

std::vector<std::string> fctSkriptEinfuegen(const std::string& strLayer,
                                            const std::string& sOhneLayersteuerung, long longXRef,
                                            std::uint8_t checkBlock,
                                            const std::string& strBlockName, int ansicht,
                                            const std::string& strExpliziterName,
                                            const std::string& strZeichnung) {
    std::vector<std::string> z;
    if (!strLayer.empty() && sOhneLayersteuerung != "1") {
        z.insert(z.end(), {"-layer", "se", strLayer, ""});
    }
    if (longXRef) {
        // The attach option is the single letter "z" behind the
        // language-neutral command name.
        z.insert(z.end(), {"._-xref", "z", ""});
    } else {
        z.push_back("._-insert");
    }
    z.push_back(
        fctBlockDateiZeile(checkBlock, strBlockName, ansicht, strExpliziterName, strZeichnung));
    // Transparent SETVAR: runs while INSERT still waits for its point.
    z.insert(z.end(), {"'setvar", "filedia", "1"});
    return z;
}

std::vector<std::string> fctSkriptWblockVariante(const std::string& strDwgDatei) {
    return {"._-wblock", Q + strDwgDatei + Q, ""};
}

std::vector<std::string> fctSkriptWblockNeu(const std::string& strSlideDatei,
                                            const std::string& strDwgDatei) {
    return {"._mslide", Q + strSlideDatei + Q, "._-wblock ", Q + strDwgDatei + Q, ""};
}

std::string fctSkriptPfadGetippt(const std::string& strSkript,
                                 const std::string& sReplaceBackslash) {
    if (sReplaceBackslash.empty()) return strSkript;
    std::string r;
    for (char c : strSkript) {
        if (c == '\\') {
            r += sReplaceBackslash;
        } else {
            r += c;
        }
    }
    return r;
}

std::string fctTastenfolge(const std::vector<std::string>& befehle) {
    std::string s;
    for (const auto& b : befehle) s += b + "\r";
    return s;
}

std::vector<std::string> fctSkriptStartBefehle(bool booUndoMarke,
                                               const std::string& strPfadGetippt) {
    std::vector<std::string> b;
    if (booUndoMarke) b.insert(b.end(), {"_undo", "_m"});
    b.insert(b.end(), {"filedia 0", "script", strPfadGetippt});
    return b;
}

bool fctSkriptSchreiben(ProgrammZustand& z, const std::string& strDatei,
                        const std::vector<std::string>& zeilen) {
    Prozedur p(z, "fctSkriptSchreiben");
    return p.geschuetztNurLog(false, [&] {
        fctVerzeichnisAnlegen("c:\\temp");
        fctDateiVerzeichnisAnlegen(strDatei);
        std::ofstream f(fctNativerPfad(strDatei), std::ios::binary | std::ios::trunc);
        if (!f) throw std::runtime_error("Datei kann nicht geschrieben werden: " + strDatei);
        for (const auto& zeile : zeilen) f << fctUtf8NachAnsi(zeile) << "\r\n";
        f.close();
        if (!f) throw std::runtime_error("Datei kann nicht geschrieben werden: " + strDatei);
        return true;
    });
}

std::string fctExplizitenNamenBereinigen(const std::string& strName) {
    std::string r = strName;
    while (!r.empty() && r.back() == ' ') r.pop_back();
    for (char& c : r) {
        if (c == ',') c = '_';
    }
    return r;
}

bool fctSlideMitLTErstellen(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                            const std::string& strSlideDatei) {
    Prozedur p(z, "fctSlideMitLTErstellen");
    return p.geschuetzt(false, [&] {
        auto* d = desktopVon(z);
        if (!fctSkriptSchreiben(z, skriptDatei(z), fctSkriptSlide(strSlideDatei))) return false;
        if (!d || !fctAcadAktivieren(z, v)) return false;
        tippen(z, *d, "{ESC}{ESC}");
        const std::string pfad =
            fctTastenSchuetzen(fctSkriptPfadGetippt(skriptDatei(z), e.sReplaceBackslash));
        tippen(z, *d, fctTastenfolge(fctSkriptStartBefehle(true, pfad)));
        // The host writes the slide on its own time; the user may give up.
        while (true) {
            if (fctPfadPruefen(strSlideDatei)) {
                d->sleepMs(1000);
                return true;
            }
            if (d->isKeyDown(platform::Key::Escape)) return false;
        }
    });
}

bool fctOpenFileMitLT(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                      const std::string& strDwgDatei) {
    Prozedur p(z, "fctOpenFileMitLT");
    return p.geschuetzt(false, [&] {
        auto* d = desktopVon(z);
        if (!fctSkriptSchreiben(z, skriptDatei(z), fctSkriptOeffnen(strDwgDatei))) return false;
        debugHinweis(z, false);
        if (!d || !fctAcadAktivieren(z, v)) return false;
        tippen(z, *d, "{ESC}{ESC}");
        const std::string pfad =
            fctTastenSchuetzen(fctSkriptPfadGetippt(skriptDatei(z), e.sReplaceBackslash));
        tippen(z, *d, fctTastenfolge(fctSkriptStartBefehle(false, pfad)));
        return true;
    });
}

bool subScriptSchreibenFuerLT(ProgrammZustand& z, const typCadEinstellungen& e,
                              const LtEinfuegung& ein, const std::string& strZeichnung) {
    const auto& b = ein.auftrag.block;
    const int v = ein.auftrag.ansicht;
    std::string name = (v >= 0 && v < 5 && !b.BlkName[v].empty()) ? b.BlkName[v] : b.BlkName[0];
    // A chosen Variant is inserted under its own name.
    if (!ein.auftrag.variante.BlockDateiName.empty()) name = ein.auftrag.variante.BlockName;
    const auto zeilen = fctSkriptEinfuegen(
        b.Layer, e.sOhneLayersteuerung, ein.optionen.longXRef, ein.optionen.checkBlock, name, v,
        fctExplizitenNamenBereinigen(ein.optionen.strExpliziterBlockName), strZeichnung);
    return fctSkriptSchreiben(z, skriptDatei(z), zeilen);
}

LtErgebnis ACadLtBlockEinfuegen(ProgrammZustand& z, CadVerbindung& v, const typCadEinstellungen& e,
                                const LtEinfuegung& ein) {
    Prozedur p(z, "ACadLtBlockEinfuegen");
    return p.geschuetzt(LtErgebnis::Fehler, [&] {
        const auto& a = ein.auftrag;
        p.step("Zeichnungspfad");
        std::string zeichnung =
            a.variante.BlockDateiName.empty()
                ? fctZeichnungsPfad(ein.strBibliothek, a.block.OrdnerNr, a.block.Block, a.ansicht)
                : fctVariantenZeichnungsPfad(ein.strBibliothek, a.block.OrdnerNr,
                                             a.variante.BlockDateiName, a.ansicht);
        const std::string expliziterName =
            fctExplizitenNamenBereinigen(ein.optionen.strExpliziterBlockName);
        if (!expliziterName.empty()) {
            p.step("Kopie unter Blockname");
            const std::string kopie = ein.strKopieVerzeichnis + expliziterName + ".dwg";
            if (fctDateiKopieren(zeichnung, kopie)) {
                zeichnung = kopie;
            } else {
                subDebugLog(z, "Copy False: SpeicherortDerBlockzeichnung: " + zeichnung);
            }
        }
        p.step("Skript schreiben");
        if (!subScriptSchreibenFuerLT(z, e, ein, zeichnung)) return LtErgebnis::Fehler;
        subDebugLog(z, " Befehle an ACAD LT schicken");
        debugHinweis(z, true);

        auto* d = desktopVon(z);
        if (!d || !fctAcadAktivieren(z, v)) {
            if (z.benutzer) {
                const std::string text =
                    (v.meldungsText ? v.meldungsText(118) : std::string("118")) + " " +
                    v.typAcadVersionInfo.strACadVersion;
                z.benutzer->meldung(text, v.meldungsText ? v.meldungsText(117) : "117",
                                    Symbol::Information, Knoepfe::Ok);
            }
            return LtErgebnis::ProgrammEnde;
        }
        tippen(z, *d, "{ESC}{ESC}");
        d->sleepMs(200);
        if (ein.optionen.checkBlock) {
            // Keeps the host from asking whether to redefine the block.
            tippen(z, *d, fctTastenfolge({"expert 2"}));
            d->sleepMs(200);
        }
        const std::string pfad =
            fctTastenSchuetzen(fctSkriptPfadGetippt(skriptDatei(z), e.sReplaceBackslash));
        tippen(z, *d, fctTastenfolge(fctSkriptStartBefehle(false, pfad)));

        p.step("Warten auf Einfuegepunkt");
        while (true) {
            d->pumpMessages();
            if (d->isKeyDown(platform::Key::LeftButton)) break;
            if (d->isKeyDown(platform::Key::Escape)) return LtErgebnis::Abgebrochen;
        }
        d->sleepMs(500);
        if (ein.optionen.checkWinkel) {
            tippen(z, *d, "\r\r");
        } else if (!ein.optionen.checkXFrage) {
            tippen(z, *d, "\r\r\r");
        }
        d->sleepMs(500);
        return LtErgebnis::Eingefuegt;
    });
}

LtBlockNeuErgebnis ACadLtBlockNeu(ProgrammZustand& z, CadVerbindung& v,
                                  const typCadEinstellungen& e, const LtBlockNeu& neu) {
    Prozedur p(z, "ACadLtBlockNeu");
    LtBlockNeuErgebnis r;
    return p.geschuetzt(r, [&] {
        p.step("Zieldateien");
        if (neu.booVariante) {
            r.strZeichnung = fctVariantenZeichnungsPfad(neu.strBibliothek, neu.strOrdnerNr,
                                                        neu.strBlockNr, neu.ansicht);
        } else {
            r.strZeichnung =
                fctZeichnungsPfad(neu.strBibliothek, neu.strOrdnerNr, neu.strBlockNr, neu.ansicht);
            r.strSlide = r.strZeichnung.substr(0, r.strZeichnung.size() - 4) + ".sld";
        }
        if (!neu.strZielZeichnung.empty()) r.strZeichnung = neu.strZielZeichnung;
        if (!neu.strZielSlide.empty() && !neu.booVariante) r.strSlide = neu.strZielSlide;
        fctDateiVerzeichnisAnlegen(r.strZeichnung);
        // An old file of the name would end the wait below at once, before the
        // host has written anything.
        p.step("alte Zeichnung löschen");
        for (const auto* alt : {&r.strZeichnung, &r.strSlide}) {
            std::error_code ec;
            if (!alt->empty()) std::filesystem::remove(fctNativerPfad(*alt), ec);
        }
        if (neu.booOhneDia) r.strSlide.clear();
        const auto zeilen = neu.booVariante || neu.booOhneDia
                                ? fctSkriptWblockVariante(r.strZeichnung)
                                : fctSkriptWblockNeu(r.strSlide, r.strZeichnung);
        if (!fctSkriptSchreiben(z, skriptDatei(z), zeilen)) return r;
        debugHinweis(z, true);

        auto* d = desktopVon(z);
        if (!d || !fctAcadAktivieren(z, v)) return r;
        tippen(z, *d, "{ESC}{ESC}");
        const std::string pfad =
            fctTastenSchuetzen(fctSkriptPfadGetippt(skriptDatei(z), e.sReplaceBackslash));
        tippen(z, *d, fctTastenfolge(fctSkriptStartBefehle(true, pfad)));

        p.step("Warten auf Zeichnung");
        platform::Clock* uhr = z.plattform ? z.plattform->clock : nullptr;
        const std::int64_t start = uhr ? uhr->tickMs() : 0;
        while (true) {
            d->pumpMessages();
            if (uhr && uhr->tickMs() - start >= 40000) {
                subDebugLog(z, "BytTimerBeenden3 = 1");
                r.booZeitAbgelaufen = true;
                break;
            }
            if (d->isKeyDown(platform::Key::RightButton)) {
                subDebugLog(z, "return");
                d->sleepMs(1000);
                subDebugLog(z, "nach Pause");
                break;
            }
            if (fctPfadPruefen(r.strZeichnung)) {
                subDebugLog(z, "Datei besteht");
                break;
            }
            if (d->isKeyDown(platform::Key::Escape)) {
                r.booAbgebrochen = true;
                subDebugLog(z, "Escape2");
                break;
            }
        }
        r.booDateiBesteht = fctPfadPruefen(r.strZeichnung);
        for (int i = 0; i < 2 && !r.booDateiBesteht; ++i) {
            d->sleepMs(1000);
            r.booDateiBesteht = fctPfadPruefen(r.strZeichnung);
        }
        if (!r.booDateiBesteht) tippen(z, *d, "{ESC}{ESC}");
        // WBLOCK took the selected objects out of the drawing; back to the mark.
        tippen(z, *d, fctTastenfolge({"_undo", "_b"}));
        subDebugLog(z, "Blockdaten in Datenbank abspeichern");
        return r;
    });
}

}  // namespace tessara
