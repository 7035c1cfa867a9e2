#include "cad/block_einfuegen.h"

#include <fstream>

#include "cad/cad_einstellungen.h"
#include "cad/einfuege_texte.h"
#include "cad/lt_skript.h"
#include "platform/desktop.h"
#include "platform/platform.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

bool gesetzt(const std::string& wert) { return !wert.empty() && wert != "0"; }

std::string ansichtsName(const typBlockDaten& b, int ansicht) {
    if (ansicht >= 0 && ansicht < 5 && !b.BlkName[ansicht].empty()) return b.BlkName[ansicht];
    return b.BlkName[0];
}

// Host variables that the command route changes and gives back.
struct GehalteneVariablen {
    std::string filedia, attreq, orthomode, cmdecho;
};

}  // namespace

bool WriteInsertLsp(ProgrammZustand& z, const std::string& strDatei) {
    Prozedur p(z, "WriteInsertLsp");
    return p.geschuetzt(false, [&] {
        fctDateiVerzeichnisAnlegen(strDatei);
        std::ofstream f(fctNativerPfad(strDatei), std::ios::binary | std::ios::trunc);
        if (!f) throw std::runtime_error("Datei kann nicht geschrieben werden: " + strDatei);
        for (const auto& zeile : fctInsertLspZeilen()) f << zeile << "\r\n";
        f.close();
        if (!f) throw std::runtime_error("Datei kann nicht geschrieben werden: " + strDatei);
        return true;
    });
}

void fctLispVariablenZuordnen(AcadDokument& dok, const typBlockDaten& b) {
    for (const auto& befehl : fctLispVariablenBefehle(b)) dok.SendCommand(befehl);
}

namespace {

// Escape seen, before and after the pending window messages were processed.
bool escapeAbfragen(Prozedur& p, platform::Desktop& d) {
    p.step("Abfrage Escape:");
    bool abbruch = d.isKeyDown(platform::Key::Escape);
    d.pumpMessages();
    p.step("Abfrage Escape nach doEvents:");
    return abbruch || d.isKeyDown(platform::Key::Escape);
}

// Multiple insertion on the command route: the next insertion may only be
// sent once the host has finished the last one (and its follow-ups); an
// Escape meanwhile ends the series.
bool naechsteEinfuegungAbwarten(Prozedur& p, platform::Desktop& d, AcadDokument& dok) {
    p.step("Mehrfacheinfuegen: warten auf AutoCAD");
    while (true) {
        d.pumpMessages();
        if (d.isKeyDown(platform::Key::Escape)) return false;
        const std::string aktiv = dok.GetVariable("CMDACTIVE");
        if (aktiv.empty() || aktiv == "0") return !escapeAbfragen(p, d);
        d.sleepMs(50);
    }
}

}  // namespace

EinfuegeErgebnis fctBlockEinfuegen(ProgrammZustand& z, CadVerbindung& v, const EinfuegeAnfrage& a) {
    Prozedur p(z, "cmbEinfuegen_Click");
    p.step("AllgemeineDaten lesen");
    const typCadEinstellungen e = fctCadEinstellungenLesen(z);
    return fctBlockEinfuegen(z, v, e, a);
}

EinfuegeErgebnis fctBlockEinfuegen(ProgrammZustand& z, CadVerbindung& v,
                                   const typCadEinstellungen& e, const EinfuegeAnfrage& a) {
    Prozedur p(z, "cmbEinfuegen_Click", true);
    EinfuegeErgebnis r;
    platform::Desktop* d = z.plattform ? z.plattform->desktop : nullptr;
    const auto& o = a.optionen;
    try {
        p.step("BlockSuche in rsBlockInfo0");
        if (a.booMarkiert) p.step("markieren von Blöcken");

        for (typEinfuegeAuftrag auftrag : a.auftraege) {
            if (!auftrag.varianten.empty() && o.longVariantenfrage == 1 && a.variantenAuswahl) {
                p.step("Variantenauswahl");
                const auto wahl = a.variantenAuswahl(auftrag);
                if (!wahl) {
                    r.booAbgebrochen = true;
                    break;
                }
                auftrag.variante = *wahl;
            }
            const auto& b = auftrag.block;
            const bool booVariante = !auftrag.variante.BlockDateiName.empty();

            if (fctIstAutoCadLt(v)) {
                LtEinfuegung lt{a.strBibliothek, a.strKopieVerzeichnis, auftrag, o};
                int anzahl = 0;
                LtErgebnis ergebnis;
                // Multiple insertion: the same block again until the user
                // answers a pick with Escape.
                do {
                    ergebnis = ACadLtBlockEinfuegen(z, v, e, lt);
                    if (ergebnis == LtErgebnis::Eingefuegt) ++anzahl;
                } while (o.checkMehr == 1 && ergebnis == LtErgebnis::Eingefuegt);
                r.eingefuegt += anzahl;
                // The Escape that ends a series of insertions is no cancel:
                // the next marked block follows.
                if (anzahl > 0 &&
                    (ergebnis == LtErgebnis::Eingefuegt || ergebnis == LtErgebnis::Abgebrochen)) {
                    r.erledigteBloecke.push_back(b.Block);
                    continue;
                }
                r.booAbgebrochen = ergebnis == LtErgebnis::Abgebrochen;
                r.booProgrammEnde = ergebnis == LtErgebnis::ProgrammEnde;
                r.booFehler = ergebnis == LtErgebnis::Fehler;
                break;
            }

            p.step("sub Aufruf: EinzufuegendeAnsichtBestimmenUndRsEinlesen");
            p.step(a.booDragDrop ? "NummerEinfuegepkt bei Drag&Drop"
                                 : "NummerEinfuegepkt bei normalem Einfuegen");
            const int nr = auftrag.nummerEinfuegepkt;
            const std::string pfad =
                booVariante
                    ? fctVariantenZeichnungsPfad(a.strBibliothek, b.OrdnerNr,
                                                 auftrag.variante.BlockDateiName, auftrag.ansicht)
                    : fctZeichnungsPfad(a.strBibliothek, b.OrdnerNr, b.Block, auftrag.ansicht);
            const std::string name = fctBlockNameBereinigen(
                booVariante ? auftrag.variante.BlockName : ansichtsName(b, auftrag.ansicht));
            const std::string angabe = fctBlockAngabe(name, pfad, o.checkBlock == 1);

            typPunkt versatz;
            if (nr > 1) {
                p.step("Wenn nötig, Distanz zum ZeichnungsEinfuegePkt ermitteln");
                const int index = nr - 2;  // 2 is point A
                if (auftrag.ansicht < 0 || auftrag.ansicht > 4 || index > 5) {
                    throw std::runtime_error("Einfügepunkt " + std::to_string(nr) +
                                             " gibt es nicht");
                }
                versatz = b.Einfuegepunkte[auftrag.ansicht][index];
            }

            p.step("ACAD_aktivieren");
            if (!d) throw std::runtime_error("kein Desktop");
            fctAcadAktivieren(z, v);

            if (gesetzt(e.NewInsertRoutine)) {
                const std::string lsp = a.strLspVerzeichnis + "insert.lsp";
                if (!WriteInsertLsp(z, lsp)) {
                    r.booFehler = true;
                    break;
                }
                p.step("Insert-Lsp-Load:");
                d->sendKeys(fctInsertLspLadenTasten(lsp) + "\r");
                p.step("tessara_einfuege");
                d->sendKeys(fctTessaraEinfuegeTasten(angabe, o) + "\r");
                ++r.eingefuegt;
                r.erledigteBloecke.push_back(b.Block);
                continue;
            }

            // Command route.
            if (!v.acadApp) throw std::runtime_error("keine Verbindung zu AutoCAD");
            d->sendKeys("{ESC}{ESC}");
            auto dok = v.acadApp->ActiveDocument();
            p.step("Variable Filedia und Attreq ermitteln");
            GehalteneVariablen alt{dok->GetVariable("filedia"), dok->GetVariable("attreq"),
                                   dok->GetVariable("orthomode"), dok->GetVariable("CMDECHO")};
            p.step("VariableAttreq setzen");
            // Attributes are edited afterwards by ATTEDIT when asked for.
            dok->SetVariable("attreq", "0");
            if (!gesetzt(e.OrthoNichtDeaktivieren)) dok->SetVariable("orthomode", "0");
            dok->SetVariable("CMDECHO", "0");

            // One insertion with its follow-up commands; true when Escape ended it.
            auto einfuegen = [&]() {
                if (nr <= 1) {
                    p.step(o.checkBlock == 1
                               ? "Einfügepkt = 1: Einfügebefehl aus Bibliothek abschicken"
                               : "Einfügepkt = 1:Einfügebefehl abschicken");
                    const std::string ausdruck = fctInsertAusdruck(angabe, o);
                    if (!ausdruck.empty()) dok->SendCommand(ausdruck + "\r");
                    if (escapeAbfragen(p, *d)) return true;
                } else {
                    p.step(o.checkBlock == 1
                               ? "Einfügepkt > 1:Einfügebefehl aus Bibliothek abschicken"
                               : "Einfügepkt > 1:Einfügebefehl abschicken");
                    dok->SendCommand(fctInsertNullpunktBefehl(angabe));
                    p.step("Einfügepkt > 1:Verschiebebefehl abschicken :");
                    dok->SendCommand(fctVerschiebeBefehl(versatz));
                    if (o.checkWinkel == 1) {
                        p.step(
                            "vor Rotationsbefehl abschicken byteAbfrageEinfuegewinkel "
                            "Unterbrechung :");
                        p.step("Rotationsbefehl abschicken :");
                        dok->SendCommand(fctRotationsBefehl());
                    }
                }
                if (o.checkBruch) {
                    p.step("Break-Befehl abschicken");
                    dok->SendCommand(fctBreakLadenBefehl(z.strAppPfad));
                }
                if (!b.Layer.empty()) {
                    p.step("Layer-Befehl abschicken");
                    dok->SendCommand(fctLayerBefehl(b.Layer));
                    d->sendKeys("{ESC}");
                }
                if (o.longEinfuegenLayer0 == 1) {
                    p.step("Layer0-Befehl abschicken");
                    dok->SendCommand(fctLayer0Befehl());
                    d->sendKeys("{ESC}");
                }
                if (o.checkAttribute) {
                    p.step("Attribut-Befehl abschicken");
                    dok->SendCommand(fctAtteditBefehl());
                }
                if (o.checkUrsprung) {
                    p.step("Explode-Befehl abschicken");
                    dok->SendCommand(fctExplodeBefehl());
                }
                if (o.checkReihe) {
                    p.step("Reihen-Befehl abschicken");
                    dok->SendCommand(fctArrayBefehl());
                }
                if (o.lonLispVarUebergeben == 1) {
                    p.step("fctLispVariablenZuordnen");
                    fctLispVariablenZuordnen(*dok, b);
                }
                return false;
            };

            int anzahl = 0;
            bool abbruch = false;
            try {
                abbruch = einfuegen();
                if (!abbruch) ++anzahl;
                while (!abbruch && o.checkMehr == 1) {
                    if (!naechsteEinfuegungAbwarten(p, *d, *dok)) break;
                    if (einfuegen()) break;
                    ++anzahl;
                }
            } catch (...) {
                p.step("Variable 'Attreq' setzen");
                dok->SetVariable("attreq", alt.attreq);
                dok->SetVariable("orthomode", alt.orthomode);
                dok->SetVariable("CMDECHO", alt.cmdecho);
                throw;
            }
            p.step("Variable 'Attreq' setzen");
            dok->SetVariable("attreq", alt.attreq);
            dok->SetVariable("orthomode", alt.orthomode);
            dok->SetVariable("CMDECHO", alt.cmdecho);
            r.eingefuegt += anzahl;
            if (abbruch) {
                r.booAbgebrochen = true;
                break;
            }
            r.erledigteBloecke.push_back(b.Block);
        }

        if (a.booMarkiert) {
            p.step("chkMarkieren auf Value 0 setzten");
            r.booMarkierenAus = true;
            p.step("markierte Blöcke aus Rs löschen");
        }
        return r;
    } catch (const std::exception& ex) {
        p.fehler(ex);
        r.booFehler = true;
        return r;
    }
}

}  // namespace tessara
