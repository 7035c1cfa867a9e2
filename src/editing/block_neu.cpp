#include "editing/block_neu.h"

#include <filesystem>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "cad/einfuege_zusaetze.h"
#include "cad/lt_skript.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_akte.h"
#include "editing/block_name.h"
#include "editing/block_speichern.h"
#include "editing/dias_erstellen.h"
#include "editing/einfuegepunkte.h"
#include "editing/varianten.h"
#include "organisation/def_menue.h"
#include "platform/desktop.h"
#include "platform/platform.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"

namespace tessara {

namespace {

constexpr const char* kKeinObjekt = "Sie haben kein Objekt gewählt! Wiederholen? [<J>/N]:";

// What one run of the flow makes, in the working directory and in the library.
struct Vorhaben {
    NeuArt art = NeuArt::Block;
    std::string strOrdnerNr;  // without its padding blanks: it names the directory
    long lngOrdnerID = 0;
    std::string strBlockNr;
    int ansicht = 0;
    std::string strName;            // BlkName of the View, or the Variant's name
    std::string strVariantenDatei;  // NeuArt::Variante
    std::string D;                  // working directory
    std::string strZeichnungTemp, strDiaTemp, strBibliothekTemp;
    std::optional<typPunkt3> basis;  // the drawing's base point, when the host tells it
    // The preview kept as a single slide, not in a slide library: a new Block
    // as the start decided for the host, a new View as its Block keeps them.
    bool booEinzeldia = false;
    // Off, the Block keeps the drawing alone: its slot shows the drawing's
    // own preview until a slide is taken, and the host's view is not touched.
    bool booDiaErstellen = true;

    bool mitDia() const { return art != NeuArt::Variante && booDiaErstellen; }
    std::string code() const { return fctDiaCode(ansicht); }
};

// The working directory goes whatever happens, so no half-taken files linger.
struct ArbeitsverzeichnisWache {
    std::string D;
    ~ArbeitsverzeichnisWache() {
        std::error_code ec;
        std::filesystem::remove_all(fctNativerPfad(D), ec);
    }
};

bool arbeitsverzeichnisAnlegen(const std::string& D) {
    std::error_code ec;
    std::filesystem::remove_all(fctNativerPfad(D), ec);
    return fctVerzeichnisAnlegen(D);
}

void melden(ProgrammZustand& z, long nr, const std::string& zusatz = {}) {
    if (!z.benutzer) return;
    std::string text = fctBeschriftMsgboxZuordnen(z, nr, 0);
    if (!zusatz.empty()) text += "\r" + zusatz;
    z.benutzer->meldung(text, fctBeschriftMsgboxZuordnen(z, 3, 1), Symbol::Information,
                        Knoepfe::Ok);
}

// The slot, the Folder and the name: everything decided before the host is touched.
bool vorhabenBestimmen(BlockNeuUmgebung& u, NeuArt art, Vorhaben& w, bool& abgebrochen) {
    auto& m = u.modell;
    const auto* ordner = m.aktuellerOrdner();
    const auto& slots = m.seitenSlots();
    const int pos = m.intPosition();
    if (!ordner || pos < 0 || pos >= static_cast<int>(slots.size())) return false;
    const typSlot& slot = slots[static_cast<std::size_t>(pos)];
    w.art = art;
    w.strOrdnerNr = fctOhneBlanks(ordner->OrdnerNr);
    w.lngOrdnerID = ordner->Nr;
    w.strBlockNr = slot.strBlockNr;
    w.D = fctArbeitsverzeichnis(u.z);

    std::string vorgabe = w.strBlockNr;
    w.booEinzeldia = u.z.strSlideEndung == ".sld";
    w.booDiaErstellen = u.werte.longVorschaudiaBeimErzeugen == 1;
    if (art == NeuArt::Block) {
        if (slot.booBelegt) {
            melden(u.z, kMsgPlatzBelegt);
            return false;
        }
    } else {
        if (!slot.booBelegt) {
            melden(u.z, kMsgKeinBlock);
            return false;
        }
        const auto akte = fctBlockAkteLesen(u.z, m.datenbank().con, w.strBlockNr);
        if (!akte) return false;
        const auto* namen = &akte->BlkName;
        w.booEinzeldia = fctSlideLibIstEinzeldia(akte->SlideLib);
        if (art == NeuArt::Ansicht) {
            w.ansicht = 0;
            for (int v = 1; v < 5 && w.ansicht == 0; ++v)
                if ((*namen)[static_cast<std::size_t>(v)].empty()) w.ansicht = v;
            if (w.ansicht == 0) {
                melden(u.z, kMsgKeineAnsichtFrei);
                return false;
            }
            vorgabe = (*namen)[0] + "_" + std::to_string(w.ansicht);
        } else {
            w.strVariantenDatei = fctVarianteDateiNameNeu(u.z, m, w.strBlockNr);
            if (w.strVariantenDatei.empty()) return false;
            vorgabe = w.strVariantenDatei;
        }
    }
    w.strName = vorgabe;
    const bool fragen = art == NeuArt::Variante ||
                        (u.werte.longAbfrageBlocknameBeimErzeugen == 1 && !u.booNameNichtAendern);
    if (fragen && u.z.benutzer) {
        const bool variante = art == NeuArt::Variante;
        const auto name = u.z.benutzer->nameEingeben(
            "frmBlocknameEingeben", variante ? std::string() : vorgabe, [&](const std::string& n) {
                return fctBlocknamePruefen(u.z, m.datenbank().con, n, variante);
            });
        if (!name) {
            abgebrochen = true;
            return false;
        }
        w.strName = *name;
    }

    w.strDiaTemp = w.D + "\\" + w.code() + ".sld";
    const std::string datei = art == NeuArt::Variante ? w.strVariantenDatei : w.strBlockNr;
    w.strZeichnungTemp = w.D + "\\" + datei + std::to_string(w.ansicht) + ".dwg";
    w.strBibliothekTemp = w.D + "\\" + w.strBlockNr + std::to_string(w.ansicht) + ".slb";
    return true;
}

// AutoCAD LT: the script writes slide and drawing; the user picks in the host.
bool ltRoute(BlockNeuUmgebung& u, Vorhaben& w, bool& abgebrochen) {
    LtBlockNeu neu{u.modell.strBasisVerzeichnis(),
                   w.strOrdnerNr,
                   w.strBlockNr,
                   w.ansicht,
                   w.art == NeuArt::Variante,
                   w.strZeichnungTemp,
                   w.mitDia() ? w.strDiaTemp : std::string(),
                   !w.mitDia()};
    const auto r = ACadLtBlockNeu(u.z, u.v, u.e, neu);
    abgebrochen = r.booAbgebrochen;
    return r.booDateiBesteht && !r.booAbgebrochen &&
           (!w.mitDia() || fctAufDateiWarten(u.z, w.strDiaTemp));
}

// Full AutoCAD through its automation interface.
bool vollRoute(BlockNeuUmgebung& u, Prozedur& p, Vorhaben& w, bool& abgebrochen) {
    auto& z = u.z;
    bool lt = false;
    // Again each time: the host may have been closed and started since.
    if (!ACAD_Connect(z, u.v, true, false, lt) || !u.v.acadApp) return false;
    auto dok = u.v.acadApp->ActiveDocument();
    p.step("Filedia ermitteln und setzten");
    const std::string filedia = dok->GetVariable("filedia");
    dok->SetVariable("filedia", "0");
    struct FiledaWache {
        AcadDokument& d;
        std::string wert;
        ~FiledaWache() {
            try {
                d.SetVariable("filedia", wert.empty() ? "1" : wert);
            } catch (const AcadFehler&) {
            }
        }
    } filediaWache{*dok, filedia};

    p.step("Undo-Befehl schicken");
    dok->SendCommand("._undo _b ");
    dok->SendCommand(fctBefehlUndoMarke());
    platform::Desktop* desktop = z.plattform ? z.plattform->desktop : nullptr;
    while (true) {
        p.step("Objekte in ACAD auswählen");
        long anzahl = 0;
        try {
            anzahl = dok->AuswahlAmBildschirm("SS6");
        } catch (const AcadFehler& e) {
            melden(z, kMsgAuswahlFehler, e.what());
            return false;
        }
        if (desktop && desktop->isKeyDown(platform::Key::Escape)) {
            abgebrochen = true;
            return false;
        }
        if (anzahl > 0) break;
        const std::string antwort = dok->GetString(kKeinObjekt);
        if (antwort != "j" && antwort != "J") {
            abgebrochen = true;
            return false;
        }
    }
    typPunkt3 basis;
    fctPunktLesen(dok->GetVariable("insbase"), basis);
    w.basis = basis;
    p.step("Block-Speichern-Befehl abschicken");
    dok->SendCommand(fctBefehlWblock(w.strZeichnungTemp, fctPunktText(basis)));
    if (!fctAufDateiWarten(z, w.strZeichnungTemp)) return false;
    // WBLOCK took the objects out of the drawing; the slide is to show them.
    dok->SendCommand("._oops ");
    if (!w.mitDia()) return true;

    p.step("Diaeckpkte ermitteln");
    if (!SlidesErstellen(z, *dok, w.D, w.code(), basis)) return false;
    if (z.benutzer) {
        p.step("Bildausschnitt anpassen");
        z.benutzer->bildausschnittAnpassen(w.strDiaTemp, [&](int knopf) {
            return fctBildausschnittAnpassen(z, *dok, static_cast<BildKnopf>(knopf), w.D, w.code(),
                                             basis);
        });
    }
    p.step("sendCommand undo back");
    dok->SendCommand(fctBefehlUndoZurueck());
    return fctDateiExistiert(w.strDiaTemp);
}

bool bibliothekBauen(BlockNeuUmgebung& u, Prozedur& p, const Vorhaben& w) {
    if (!w.mitDia() || w.booEinzeldia) return true;
    p.step("SlideLib erstellen");
    AcadDokument* dok = nullptr;
    std::shared_ptr<AcadDokument> halter;
    if (u.booSlidelibShell && !fctIstAutoCadLt(u.v) && u.v.acadApp) {
        halter = u.v.acadApp->ActiveDocument();
        dok = halter.get();
    }
    return DialisteSchreiben(u.z, w.D, {w.code()}) &&
           fctSlidelibErstellen(u.z, dok, w.D, w.strBibliothekTemp, dok != nullptr);
}

std::vector<typDateiZug> zuege(const std::string& basis, const Vorhaben& w) {
    if (w.art == NeuArt::Variante)
        return {{w.strZeichnungTemp,
                 basis + fctVarianteZeichnung(w.strOrdnerNr, w.strVariantenDatei, w.ansicht)}};
    std::vector<typDateiZug> zz{
        {w.strZeichnungTemp, basis + fctZeichnungDatei(w.strOrdnerNr, w.strBlockNr, w.ansicht)}};
    if (w.mitDia())
        zz.push_back(
            w.booEinzeldia
                ? typDateiZug{w.strDiaTemp,
                              basis + fctDiaDatei(w.strOrdnerNr, w.strBlockNr, w.ansicht)}
                : typDateiZug{w.strBibliothekTemp,
                              basis + fctDiaBibliothek(w.strOrdnerNr, w.strBlockNr, w.ansicht)});
    return zz;
}

bool speichern(BlockNeuUmgebung& u, Prozedur& p, const Vorhaben& w) {
    auto& z = u.z;
    auto& m = u.modell;
    if (w.art == NeuArt::Variante) {
        p.step("bytvarianteAnlegen = 1; DatenAbspeichern");
        typEinfuegepunkte punkte;
        if (w.basis)
            punkte[0] = {fctZahlText(w.basis->x), fctZahlText(w.basis->y), fctZahlText(w.basis->z)};
        return subBlockdatenInDatenbankAbspeichernVariante(
            z, m, w.strBlockNr, w.strName, w.strVariantenDatei, {{w.ansicht, punkte}});
    }
    typAnsichtDaten d;
    d.strBlockNr = w.strBlockNr;
    d.lngOrdnerID = w.lngOrdnerID;
    d.ansicht = w.ansicht;
    d.strBlkName = w.strName;
    d.punkte[0] = w.basis;
    if (w.art == NeuArt::Block) {
        p.step("Blockdaten Speicher Ansicht 0");
        d.strSlideLib = fctSlideLibEintrag(w.strOrdnerNr, w.strBlockNr, !w.booEinzeldia);
        if (const auto menue = fctDefMenueDesOrdners(z, m, w.lngOrdnerID)) {
            const auto werte = fctNeueBlockAttribute(*menue);
            std::copy(werte.begin(), werte.end(), d.M.begin());
        }
        // M0 is what the slot shows under the picture: without a default of
        // the Folder's menu, the Block's name stands there.
        if (d.M[0].empty()) d.M[0] = w.strName;
        return BlockdatenInDatenbankAbspeichern(z, m, d);
    }
    p.step("Blockdaten Speicher Ansicht >0");
    return BlockdatenInDatenbankAbspeichernAnsichten(z, m, d);
}

void zurueckrollen(ProgrammZustand& z, const std::vector<typDateiZug>& zz) {
    for (const auto& zug : zz) DeleteAFile(z, zug.nach);
}

// A new Block's own program, loaded whenever it is inserted. One left in
// the slot by a Block deleted earlier belongs to no record and goes first,
// so that the new Block does not run a stranger's program.
void blockProgrammFragen(BlockNeuUmgebung& u, Prozedur& p, const Vorhaben& w) {
    auto& z = u.z;
    const std::string ziel =
        fctBlockProgrammDatei(u.modell.strBasisVerzeichnis(), w.strOrdnerNr, w.strBlockNr);
    if (fctDateiExistiert(ziel)) DeleteAFile(z, ziel);
    if (u.werte.longBlockProgrammfrage != 1 || !z.benutzer) return;
    p.step("Blockprogramm abfragen");
    if (!fctMsgbox(z, MsgboxArt::Frage, {kMsgBlockProgrammFrage})) return;
    const std::string datei =
        z.benutzer->dateiWaehlen(fctBeschriftMsgboxZuordnen(z, kMsgBlockProgrammFrage, kGruppeAllg),
                                 z.strTessaraRoot, "AutoLISP (*.lsp)|*.lsp", false);
    if (datei.empty()) return;
    if (!fctDateiKopieren(datei, ziel)) melden(z, kMsgBlockProgrammNichtKopiert, datei);
}

}  // namespace

std::string fctArbeitsverzeichnis(const ProgrammZustand& z) { return z.strCTemp + "TessaraNeu"; }

std::string fctBefehlWblock(const std::string& strZeichnung, const std::string& strBasispunkt) {
    return "._-wblock " + strZeichnung + "\r" + "\r" + strBasispunkt + "\r" + "_p " + "\r";
}

bool DateienAusTempVerschieben(ProgrammZustand& z, const std::vector<typDateiZug>& zz) {
    Prozedur p(z, "DateienAusTempVerschieben");
    return p.geschuetzt(false, [&] {
        p.step("Dateien aus Temp an Speicherort verschieben");
        std::vector<const typDateiZug*> erledigt;
        for (const auto& zug : zz) {
            fctDateiVerzeichnisAnlegen(zug.nach);
            if (fctDateiExistiert(zug.nach)) DeleteAFile(z, zug.nach);
            if (!MoveAFile(z, zug.von, zug.nach)) {
                for (auto it = erledigt.rbegin(); it != erledigt.rend(); ++it)
                    MoveAFile(z, (*it)->nach, (*it)->von);
                return false;
            }
            erledigt.push_back(&zug);
        }
        return true;
    });
}

BlockNeuErgebnis fctNeuAusZeichnung(BlockNeuUmgebung& u, NeuArt art) {
    auto& z = u.z;
    Prozedur p(z, art == NeuArt::Block ? "combutNeu_Click" : "fctNeuAusZeichnung", true);
    BlockNeuErgebnis r;
    return p.geschuetzt(r, [&] {
        Vorhaben w;
        p.step("Block in rsBlockInfo0 suchen");
        if (!vorhabenBestimmen(u, art, w, r.booAbgebrochen)) return r;
        r.strBlockNr = w.strBlockNr;
        r.ansicht = w.ansicht;
        r.strVariantenDatei = w.strVariantenDatei;
        if (!arbeitsverzeichnisAnlegen(w.D)) {
            melden(z, kMsgBlockNichtAngelegt, w.D);
            return r;
        }
        ArbeitsverzeichnisWache wache{w.D};

        if (u.v.typAcadVersionInfo.strACadVersion.empty()) {
            // No host found at start (the user started it later): look now,
            // as the insertion does, offering the list of windows.
            p.step("ACAD_Connect");
            bool lt = false;
            u.v.booFensterlisteAnbieten = true;
            if (!ACAD_Connect(z, u.v, false, true, lt)) {
                melden(z, kMsgKeinHost1);
                return r;
            }
        }
        const bool genommen = fctIstAutoCadLt(u.v) ? ltRoute(u, w, r.booAbgebrochen)
                                                   : vollRoute(u, p, w, r.booAbgebrochen);
        if (!genommen) {
            if (!r.booAbgebrochen) melden(z, kMsgBlockNichtAngelegt, z.fehler.strLetzterFehler);
            return r;
        }
        if (!bibliothekBauen(u, p, w)) {
            melden(z, kMsgBlockNichtAngelegt, z.fehler.strLetzterFehler);
            return r;
        }
        const auto zz = zuege(u.modell.strBasisVerzeichnis(), w);
        if (!DateienAusTempVerschieben(z, zz)) {
            melden(z, kMsgBlockNichtAngelegt, z.fehler.strLetzterFehler);
            return r;
        }
        if (!speichern(u, p, w)) {
            // No files without a record.
            zurueckrollen(z, zz);
            melden(z, kMsgBlockNichtAngelegt, z.fehler.strLetzterFehler);
            return r;
        }
        if (art == NeuArt::Block) blockProgrammFragen(u, p, w);
        p.step("Anzeigen");
        u.modell.subSeiteNeuAnzeigen();
        r.booAngelegt = true;
        return r;
    });
}

BlockNeuErgebnis combutNeu_Click(BlockNeuUmgebung& u) {
    return fctNeuAusZeichnung(u, NeuArt::Block);
}
BlockNeuErgebnis fctAnsichtNeu(BlockNeuUmgebung& u) {
    return fctNeuAusZeichnung(u, NeuArt::Ansicht);
}
BlockNeuErgebnis fctVarianteNeu(BlockNeuUmgebung& u) {
    return fctNeuAusZeichnung(u, NeuArt::Variante);
}

}  // namespace tessara
