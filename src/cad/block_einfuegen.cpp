#include "cad/block_einfuegen.h"

#include <fstream>

#include "cad/cad_einstellungen.h"
#include "cad/einfuege_texte.h"
#include "cad/einfuege_zusaetze.h"
#include "cad/lt_skript.h"
#include "captions/meldungen.h"
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

// The host variables the command route changes ("attreq", "orthomode",
// "CMDECHO"), kept on entry and given back when the route ends, however it
// ends: by the last insertion, by Escape, or by an error of the host.
class HostVariablenWache {
  public:
    HostVariablenWache(Prozedur& p, AcadDokument& dok, bool booOrthoLassen) : p_(p), dok_(dok) {
        p.step("Variable Filedia und Attreq ermitteln");
        dok.GetVariable("filedia");
        attreq_ = dok.GetVariable("attreq");
        orthomode_ = dok.GetVariable("orthomode");
        cmdecho_ = dok.GetVariable("CMDECHO");
        p.step("VariableAttreq setzen");
        // Attributes are edited afterwards by ATTEDIT when asked for.
        dok.SetVariable("attreq", "0");
        if (!booOrthoLassen) dok.SetVariable("orthomode", "0");
        dok.SetVariable("CMDECHO", "0");
    }
    // Gives the variables back; an error of the host goes to the caller.
    void wiederherstellen() {
        offen_ = false;
        p_.step("Variable 'Attreq' setzen");
        dok_.SetVariable("attreq", attreq_);
        dok_.SetVariable("orthomode", orthomode_);
        dok_.SetVariable("CMDECHO", cmdecho_);
    }
    ~HostVariablenWache() {
        if (!offen_) return;
        try {
            wiederherstellen();
        } catch (...) {
            // The error that ended the route is the one reported.
        }
    }
    HostVariablenWache(const HostVariablenWache&) = delete;
    HostVariablenWache& operator=(const HostVariablenWache&) = delete;

  private:
    Prozedur& p_;
    AcadDokument& dok_;
    std::string attreq_, orthomode_, cmdecho_;
    bool offen_ = true;
};

// One run of the insert command over its pending insertions.
struct Einfuegelauf {
    ProgrammZustand& z;
    CadVerbindung& v;
    const typCadEinstellungen& e;
    const EinfuegeAnfrage& a;
    Prozedur& p;
    EinfuegeErgebnis& r;
    typEinfuegeOptionen o;  // the request's, once the scale check has spoken
};

// The block's name as it goes into the drawing (and the parts list).
std::string eingefuegterName(const typEinfuegeAuftrag& auftrag) {
    if (!auftrag.variante.BlockDateiName.empty()) return auftrag.variante.BlockName;
    return ansichtsName(auftrag.block, auftrag.ansicht);
}

// The parts list grows by one row per block that went in. A list that
// cannot be written is logged; the block is in the drawing all the same.
void stuecklisteErgaenzen(Einfuegelauf& l, AcadDokument* dok, const typEinfuegeAuftrag& auftrag,
                          int anzahl) {
    if (l.o.longStuecklisteEinfuegen != 1 || anzahl <= 0) return;
    l.p.step("Stückliste ergänzen");
    std::string prefix, name;
    if (dok) {
        prefix = dok->GetVariable("DWGPREFIX");
        name = dok->GetVariable("DWGNAME");
    }
    const std::string datei = fctStuecklistenDatei(prefix, name, l.z.strCTemp);
    for (int i = 0; i < anzahl; ++i)
        subStuecklisteErgaenzen(l.z, datei, auftrag.block, eingefuegterName(auftrag));
}

// The drawing's scale against the set one, asked once per run: Yes inserts
// in the drawing's scale (X, Y and Z alike).
void massstabKontrollieren(Einfuegelauf& l) {
    if (l.o.longMassstabskontrolle != 1 || !l.v.acadApp) return;
    l.p.step("Maßstab der Zeichnung kontrollieren");
    const auto dimscale = fctAbweichenderMassstab(
        l.v.acadApp->ActiveDocument()->GetVariable("DIMSCALE"), l.o.strMassstabX);
    if (!dimscale) return;
    if (fctMsgbox(l.z, MsgboxArt::Frage,
                  {MsgboxZeile(kMsgMassstabAbweichend), MsgboxZeile("DIMSCALE " + *dimscale),
                   MsgboxZeile("X " + l.o.strMassstabX), MsgboxZeile(kMsgMassstabDerZeichnung, 2)}))
        l.o.strMassstabX = l.o.strMassstabY = l.o.strMassstabZ = *dimscale;
}

// The block's own program, when it has one, loaded after its insertion.
std::string blockProgramm(const Einfuegelauf& l, const typEinfuegeAuftrag& auftrag) {
    const std::string datei =
        fctBlockProgrammDatei(l.a.strBibliothek, auftrag.block.OrdnerNr, auftrag.block.Block);
    return fctDateiExistiert(datei) ? fctLispPfad(datei) : std::string();
}

// AutoCAD LT: the script channel. False ends the run.
bool ltRoute(Einfuegelauf& l, const typEinfuegeAuftrag& auftrag) {
    LtEinfuegung lt{l.a.strBibliothek, l.a.strKopieVerzeichnis, auftrag, l.o};
    int anzahl = 0;
    LtErgebnis ergebnis;
    // Multiple insertion: the same block again until the user answers a
    // pick with Escape.
    do {
        ergebnis = ACadLtBlockEinfuegen(l.z, l.v, l.e, lt);
        if (ergebnis == LtErgebnis::Eingefuegt) ++anzahl;
    } while (l.o.checkMehr == 1 && ergebnis == LtErgebnis::Eingefuegt);
    l.r.eingefuegt += anzahl;
    stuecklisteErgaenzen(l, nullptr, auftrag, anzahl);
    // The Escape that ends a series of insertions is no cancel: the next
    // marked block follows.
    if (anzahl > 0 && (ergebnis == LtErgebnis::Eingefuegt || ergebnis == LtErgebnis::Abgebrochen)) {
        l.r.erledigteBloecke.push_back(auftrag.block.Block);
        return true;
    }
    l.r.booAbgebrochen = ergebnis == LtErgebnis::Abgebrochen;
    l.r.booProgrammEnde = ergebnis == LtErgebnis::ProgrammEnde;
    l.r.booFehler = ergebnis == LtErgebnis::Fehler;
    return false;
}

// The AutoLISP routine "insert.lsp", loaded and called by keystrokes.
bool lispRoute(Einfuegelauf& l, platform::Desktop& d, const typEinfuegeAuftrag& auftrag,
               const std::string& angabe) {
    const std::string lsp = l.a.strLspVerzeichnis + "insert.lsp";
    if (!WriteInsertLsp(l.z, lsp)) {
        l.r.booFehler = true;
        return false;
    }
    l.p.step("Insert-Lsp-Load:");
    d.sendKeys(fctInsertLspLadenTasten(lsp) + "\r");
    l.p.step("tessara_einfuege");
    d.sendKeys(fctTessaraEinfuegeTasten(angabe, l.o) + "\r");
    if (const std::string programm = blockProgramm(l, auftrag); !programm.empty())
        d.sendKeys("{(}load \"" + programm + "\"{)}\r");
    ++l.r.eingefuegt;
    stuecklisteErgaenzen(l, l.v.acadApp ? l.v.acadApp->ActiveDocument().get() : nullptr, auftrag,
                         1);
    l.r.erledigteBloecke.push_back(auftrag.block.Block);
    return true;
}

// One insertion on the command route with its follow-up commands; true when
// Escape ended it.
bool befehleSenden(Einfuegelauf& l, platform::Desktop& d, AcadDokument& dok,
                   const typEinfuegeAuftrag& auftrag, const std::string& angabe,
                   const typPunkt& versatz) {
    Prozedur& p = l.p;
    const auto& o = l.o;
    const auto& b = auftrag.block;
    if (auftrag.nummerEinfuegepkt <= 1) {
        p.step(o.checkBlock == 1 ? "Einfügepkt = 1: Einfügebefehl aus Bibliothek abschicken"
                                 : "Einfügepkt = 1:Einfügebefehl abschicken");
        const std::string ausdruck = fctInsertAusdruck(angabe, o);
        if (!ausdruck.empty()) dok.SendCommand(ausdruck + "\r");
        if (escapeAbfragen(p, d)) return true;
    } else {
        p.step(o.checkBlock == 1 ? "Einfügepkt > 1:Einfügebefehl aus Bibliothek abschicken"
                                 : "Einfügepkt > 1:Einfügebefehl abschicken");
        dok.SendCommand(fctInsertNullpunktBefehl(angabe));
        p.step("Einfügepkt > 1:Verschiebebefehl abschicken :");
        dok.SendCommand(fctVerschiebeBefehl(versatz));
        if (o.checkWinkel == 1) {
            p.step("vor Rotationsbefehl abschicken byteAbfrageEinfuegewinkel Unterbrechung :");
            p.step("Rotationsbefehl abschicken :");
            dok.SendCommand(fctRotationsBefehl());
        }
    }
    if (o.checkBruch &&
        (o.longBruchFrage != 1 || fctMsgbox(l.z, MsgboxArt::Frage, {kMsgLinieBrechenFrage}))) {
        p.step("Break-Befehl abschicken");
        dok.SendCommand(fctBreakLadenBefehl(l.z.strAppPfad));
    }
    // "sOhneLayersteuerung" = "1": the block stays on the layer current in
    // the drawing, as on the script route.
    if (!b.Layer.empty() && l.e.sOhneLayersteuerung != "1") {
        p.step("Layer-Befehl abschicken");
        dok.SendCommand(fctLayerBefehl(b.Layer));
        d.sendKeys("{ESC}");
    }
    if (o.longEinfuegenLayer0 == 1) {
        p.step("Layer0-Befehl abschicken");
        dok.SendCommand(fctLayer0Befehl());
        d.sendKeys("{ESC}");
    }
    if (o.checkAttribute) {
        p.step("Attribut-Befehl abschicken");
        dok.SendCommand(fctAtteditBefehl());
    }
    if (o.checkUrsprung) {
        p.step("Explode-Befehl abschicken");
        dok.SendCommand(fctExplodeBefehl());
    }
    if (o.checkReihe) {
        p.step("Reihen-Befehl abschicken");
        dok.SendCommand(fctArrayBefehl());
    }
    if (o.lonLispVarUebergeben == 1) {
        p.step("fctLispVariablenZuordnen");
        fctLispVariablenZuordnen(dok, b);
    }
    if (const std::string programm = blockProgramm(l, auftrag); !programm.empty()) {
        p.step("Blockprogramm laden");
        dok.SendCommand("(load \"" + programm + "\")\r");
    }
    return false;
}

// Full AutoCAD's command line, with the host variables set for the
// insertion and given back after it. False ends the run.
bool befehlsRoute(Einfuegelauf& l, platform::Desktop& d, const typEinfuegeAuftrag& auftrag,
                  const std::string& angabe, const typPunkt& versatz) {
    if (!l.v.acadApp) throw std::runtime_error("keine Verbindung zu AutoCAD");
    d.sendKeys("{ESC}{ESC}");
    auto dok = l.v.acadApp->ActiveDocument();
    HostVariablenWache wache(l.p, *dok, gesetzt(l.e.OrthoNichtDeaktivieren));
    int anzahl = 0;
    bool abbruch = befehleSenden(l, d, *dok, auftrag, angabe, versatz);
    if (!abbruch) ++anzahl;
    while (!abbruch && l.o.checkMehr == 1) {
        if (!naechsteEinfuegungAbwarten(l.p, d, *dok)) break;
        if (befehleSenden(l, d, *dok, auftrag, angabe, versatz)) break;
        ++anzahl;
    }
    wache.wiederherstellen();
    l.r.eingefuegt += anzahl;
    stuecklisteErgaenzen(l, dok.get(), auftrag, anzahl);
    if (abbruch) {
        l.r.booAbgebrochen = true;
        return false;
    }
    l.r.erledigteBloecke.push_back(auftrag.block.Block);
    return true;
}

// The drawing of the View (or Variant) and the offset of the chosen
// Insertion point from its base point.
void zeichnungBestimmen(Einfuegelauf& l, const typEinfuegeAuftrag& auftrag, std::string& angabe,
                        typPunkt& versatz) {
    const auto& b = auftrag.block;
    const bool booVariante = !auftrag.variante.BlockDateiName.empty();
    l.p.step("sub Aufruf: EinzufuegendeAnsichtBestimmenUndRsEinlesen");
    l.p.step(l.a.booDragDrop ? "NummerEinfuegepkt bei Drag&Drop"
                             : "NummerEinfuegepkt bei normalem Einfuegen");
    const std::string pfad =
        booVariante ? fctVariantenZeichnungsPfad(l.a.strBibliothek, b.OrdnerNr,
                                                 auftrag.variante.BlockDateiName, auftrag.ansicht)
                    : fctZeichnungsPfad(l.a.strBibliothek, b.OrdnerNr, b.Block, auftrag.ansicht);
    const std::string name = fctBlockNameBereinigen(booVariante ? auftrag.variante.BlockName
                                                                : ansichtsName(b, auftrag.ansicht));
    angabe = fctBlockAngabe(name, pfad, l.o.checkBlock == 1);
    const int nr = auftrag.nummerEinfuegepkt;
    if (nr > 1) {
        l.p.step("Wenn nötig, Distanz zum ZeichnungsEinfuegePkt ermitteln");
        const int index = nr - 2;  // 2 is point A
        if (auftrag.ansicht < 0 || auftrag.ansicht > 4 || index > 5)
            throw std::runtime_error("Einfügepunkt " + std::to_string(nr) + " gibt es nicht");
        versatz = b.Einfuegepunkte[auftrag.ansicht][index];
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
    Einfuegelauf l{z, v, e, a, p, r, a.optionen};
    platform::Desktop* d = z.plattform ? z.plattform->desktop : nullptr;
    try {
        p.step("BlockSuche in rsBlockInfo0");
        if (a.booMarkiert) p.step("markieren von Blöcken");
        // AutoCAD LT offers no system variables to the program: no check there.
        if (!fctIstAutoCadLt(v)) massstabKontrollieren(l);
        for (typEinfuegeAuftrag auftrag : a.auftraege) {
            if (!auftrag.varianten.empty() && a.optionen.longVariantenfrage == 1 &&
                a.variantenAuswahl) {
                p.step("Variantenauswahl");
                const auto wahl = a.variantenAuswahl(auftrag);
                if (!wahl) {
                    r.booAbgebrochen = true;
                    break;
                }
                auftrag.variante = *wahl;
            }
            if (fctIstAutoCadLt(v)) {
                if (!ltRoute(l, auftrag)) break;
                continue;
            }
            std::string angabe;
            typPunkt versatz;
            zeichnungBestimmen(l, auftrag, angabe, versatz);
            p.step("ACAD_aktivieren");
            if (!d) throw std::runtime_error("kein Desktop");
            fctAcadAktivieren(z, v);
            const bool weiter = gesetzt(e.NewInsertRoutine)
                                    ? lispRoute(l, *d, auftrag, angabe)
                                    : befehlsRoute(l, *d, auftrag, angabe, versatz);
            if (!weiter) break;
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
