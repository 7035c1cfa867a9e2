// The main window's load and closing sequences, switching libraries, and the
// insert command.
#include <QApplication>
#include <QCheckBox>
#include <QInputDialog>
#include <QPointer>
#include <QScreen>
#include <QSignalBlocker>
#include <iostream>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "cad/block_daten_lesen.h"
#include "cad/block_einfuegen.h"
#include "cad/cad_einstellungen.h"
#include "cad/markierte_auftraege.h"
#include "cad/menue_dateien.h"
#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/ansichten.h"
#include "editing/einfuegepunkte.h"
#include "library/bibliotheken.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/desktop.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "ui/beschriften.h"
#include "ui/dialog_farbe_setzen.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/frm_startfenster.h"
#include "ui/qt_sprache.h"
#include "ui/sld_blockverwaltung.h"
#include "ui_frm_blockverwaltung.h"

namespace tessara {

namespace {
// Not reaching the CAD host: three lines the user may switch off.
void fctAcadVerbindungMelden(ProgrammZustand& z) {
    fctMsgbox(z, MsgboxArt::Info,
              {MsgboxZeile(kMsgKeinHost1), MsgboxZeile(kMsgKeinHost2), MsgboxZeile(kMsgKeinHost3)},
              kGruppeAllg, "AcadVerbindung");
}
}  // namespace

void FrmBlockverwaltung::meldenMitPfad(long lngNummer, const std::string& strPfad) {
    fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(lngNummer), MsgboxZeile(strPfad)});
}

// --- Load --------------------------------------------------------------------

// One line on standard output for each request the window carries out, for
// the scripts and menu macros that start the program.
void FrmBlockverwaltung::ausgabe(const std::string& zeile) { std::cout << zeile << std::endl; }

void FrmBlockverwaltung::laden() {
    laden_.ausfuehren(z_);
    booGeladen_ = true;
    ausgabe("bereit: " + z_.strAktuelleDb);
}

void FrmBlockverwaltung::ladeSchritteSetzen() {
    auto& l = laden_;
    l.setzen("Werte zuordnen", [this] {
        setWindowTitle(
            QString::fromStdString(fctFensterTitel(z_, fctBeschriftung(z_, "ProgName"))));
        // The connection outlives this window: its callbacks hold the
        // program state, never the window.
        ProgrammZustand* z = &z_;
        if (!v_.meldungsText)
            v_.meldungsText = [z](int nr) {
                return fctBeschriftMsgboxZuordnen(*z, nr, kGruppeAllg);
            };
        if (!v_.fctMsgboxNichtMehrAnzeigen)
            v_.fctMsgboxNichtMehrAnzeigen = [z](const std::string& k) {
                return fctMsgboxNichtMehrAnzeigen(*z, k);
            };
    });
    l.setzen("ACAD_Connect", [this] {
        // Qt's own dialogs speak the user's language before the first of them.
        ui::subQtUebersetzungLaden(z_);
        bool lt = false;
        // Where no host is found the list of open windows is offered; the
        // no-host report is the one CAD-connection message, which the user
        // may switch off. A host that answers but is not known (acadApp set)
        // gets it after its own version message.
        v_.booFensterlisteAnbieten = true;
        ProgrammZustand* z = &z_;
        v_.keinHostMelden = [z] { fctAcadVerbindungMelden(*z); };
        if (!ACAD_Connect(z_, v_, false, false, lt) && v_.acadApp) fctAcadVerbindungMelden(z_);
        v_.keinHostMelden = nullptr;
    });
    // Shown at its stored size at once: sized after the show, the window was
    // drawn twice, the second time into a new buffer of the full size.
    l.setzen("me.show", [this] {
        // Captioned before it is first seen: a question of the load sequence
        // may stand over it for a while.
        ui::subFormularBeschriften(z_, this);
        groesseAngleichen();
        zeigen();
    });
    l.setzen("Daten aus Ini-DAtei lesen", [this] {
        fctIniDateiErsterStart(z_);
        subLesenTessaraIniDatei(z_);
        ui::subDialogFarbeSetzen(z_);
    });
    l.setzen("subAktuelleDatenbankAusRegistrierdatenbank",
             [this] { EintraegeAusRegistrierdatenbank(z_); });
    l.setzen("SetupEinstellungenZuweisen", [this] {
        SetupEinstellungenZuweisen(z_, sitzung_.setup());
        subSetupBeimStart(sitzung_.setup());
        if (fctSetupWerteKorrigieren(sitzung_.setup()))
            fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgEinstellungUngueltig)});
    });
    l.setzen("nach vorhandener Db suchen", [this] {
        const typDbSuche r = fctVorhandeneDbSuchen(z_);
        if (!r.strFehlt.empty()) meldenMitPfad(kMsgVerzeichnisFehlt, r.strFehlt);
        z_.strAktuelleDb = r.strDb;
    });
    l.setzen(
        "erste Datenbank wird eingebunden",
        [this] {
            // A library handed over ("/d") is the first one; only without it,
            // or when its directory is not there, is the user asked.
            std::string dir = fctUebergebeneBibliothek(z_);
            if (!dir.empty() && !fctVerzeichnisExistiert(dir)) {
                meldenMitPfad(kMsgVerzeichnisFehlt, dir);
                dir.clear();
            }
            if (dir.empty() && z_.benutzer)
                dir = z_.benutzer->ordnerWaehlen(
                    fctBeschriftMsgboxZuordnen(z_, kMsgErsteBibliothekWaehlen, kGruppeAllg),
                    z_.strTessaraRoot);
            if (dir.empty()) return;
            fctDbListeErweitern(z_, dir);
            z_.strAktuelleDb = fctDbDatei(fctOhneBackslash(dir));
        },
        [this] { return z_.strAktuelleDb.empty(); });
    l.setzen(
        "Datenbank von Tessara7 kann importiert werden",
        [this] {
            std::string alt;
            const std::string dir = fctVerzeichnisVon(z_.strAktuelleDb);
            if (fctAlteDatenbankAnbieten(z_, fctKatalogOeffner(z_), dir, alt) ==
                ImportAngebot::Fehlgeschlagen)
                meldenMitPfad(kMsgImportFehlgeschlagen, alt);
        },
        [this] { return neueDbMoeglich(); });
    l.setzen(
        "im Verzeichnis besteht schon eine Db", [] {},
        [this] { return fctDateiExistiert(z_.strAktuelleDb); });
    l.setzen(
        "Db wird neu angelegt",
        [this] {
            if (!Mk_Datenbank(z_, fctKatalogOeffner(z_), z_.strAktuelleDb))
                meldenMitPfad(kMsgBibliothekNichtOeffnen, z_.strAktuelleDb);
        },
        [this] { return neueDbMoeglich(); });
    l.setzen("setupeinstellungen zuweisen", [this] {
        ordnerAnsichtSetzen();
        modell().setAnzahlDerBilder(sitzung_.setup().longAnzahlDerBilder);
    });
    l.setzen("in Ini-Datei abspeichern", [this] { subSpeichernTessaraIniDatei(z_); });
    l.setzen("in Registry abspeichern", [this] {
        if (!z_.strAktuelleDb.empty()) fctEintrag1Speichern(z_, z_.strAktuelleDb);
        EintraegeInRegistrierdatenbank(z_);
    });
    l.setzen("SlideEndung festlegen", [this] {
        z_.strSlideEndung = fctIstAutoCadLt(v_) ? ".sld" : ".slb";
        fctFolderExistAnlegen(z_, z_.strCTemp + "TempTessara");
    });
    l.setzen("Menüdateien", [this] { fctMenueDateienLaden(z_, v_); });
    l.setzen("Startfenster anzeigen", [this] {
        start_ = new FrmStartfenster(this);
        ui::subFormularBeschriften(z_, start_);
        start_->show();
        start_->schritt(1, 4, {});
    });
    l.setzen("OptionsGruppeAnzeigen", [this] {
        einfuegeOptionenZeigen();
        // AutoCAD LT's script enters the scales itself when the angle is
        // asked, and a draughtsman asked for the X scale answers the Y scale
        // right after it: those boxes would change nothing there.
        const auto abhaengige = [this] {
            const bool lt = fctIstAutoCadLt(v_);
            ui_->checkXFrage->setEnabled(!(lt && ui_->checkWinkel->isChecked()));
            ui_->checkYFrage->setEnabled(!(lt && ui_->checkXFrage->isChecked()));
        };
        for (QCheckBox* c : {ui_->checkWinkel, ui_->checkXFrage})
            connect(c, &QCheckBox::toggled, this, abhaengige);
        abhaengige();
    });
    l.setzen("VerzeichnisOhneDb zuweisen", [this] {
        if (!z_.strAktuelleDb.empty())
            subVerzeichnisVorgabeAktualisieren(z_, fctVerzeichnisVon(z_.strAktuelleDb), 1);
    });
    l.setzen("Blockverwaltung beschriften", [this] {
        // The picture-size items come from the caption files too.
        ui::subFormularBeschriften(z_, this);
    });
    l.setzen("Ordnernummern einlesen", [this] {
        if (start_) start_->schritt(2, 4, {});
        if (!modell().fctCodeTabelleLesen(fctCodeTabelleDatei(z_.strAppPfad)))
            meldenMitPfad(kMsgCodetabelle, fctCodeTabelleDatei(z_.strAppPfad));
    });
    l.setzen("Bilderanzahl festlegen",
             [this] { modell().setAnzahlDerBilder(sitzung_.setup().longAnzahlDerBilder); });
    l.setzen("Formular auf Grösse Angleichen", [this] { groesseAngleichen(); });
    l.setzen("Verbindung zur Datenbank herstellen", [this] {
        if (start_) start_->schritt(3, 4, {});
        if (!z_.strAktuelleDb.empty() && fctDateiExistiert(z_.strAktuelleDb))
            bibliothekOeffnen(z_.strAktuelleDb);
        else
            neuZeichnen(kBibliothekGeaendert);
    });
    // Opening the library read its first Page and drew the window once; a
    // second drawing would only ask for the same pictures again.
    l.setzen("Blocknummern einlesen", [] {});
    l.setzen("Werte für die Seite anzeigen", [] {});
    l.setzen("Anzeigen aufrufen", [] {});
    l.setzen("Maske in Position bringen", [this] {
        if (start_) {
            start_->schritt(4, 4, {});
            start_->fertig();
        }
        ui_->rasterFlaeche->setFocus();
    });
}

// A current database that is not there yet, in a directory that is there and
// may be written.
bool FrmBlockverwaltung::neueDbMoeglich() {
    const std::string dir = fctVerzeichnisVon(z_.strAktuelleDb);
    return !z_.strAktuelleDb.empty() && !fctDateiExistiert(z_.strAktuelleDb) &&
           fctVerzeichnisExistiert(dir) && !fctReadOnlyMitVerzeichnis(z_, dir);
}

// --- Closing -------------------------------------------------------------------

void FrmBlockverwaltung::entladeSchritteSetzen() {
    auto& e = entladen_;
    e.setzen("Markierte Bloecke aus Db löschen", [this] {
        if (modell().offen() && !schreibgeschuetzt()) modell().fctMarkierungenAlleLoeschen();
    });
    e.setzen("longCurrent abspeichern", [this] {
        typFensterGeometrie g;
        const QRect r = normalGeometry();
        g.longCurrentX = r.x();
        g.longCurrentY = r.y();
        g.lonFrmHeight = r.height();
        g.lonFrmWidth = r.width();
        sitzung_.setup().longCurrentX = g.longCurrentX;
        sitzung_.setup().longCurrentY = g.longCurrentY;
        sitzung_.setup().lonFrmHeight = g.lonFrmHeight;
        sitzung_.setup().lonFrmWidth = g.lonFrmWidth;
        subFensterGeometrieSpeichern(z_, g, sitzung_.setup().longFensterpositionSpeichern != 0);
    });
    e.setzen("IniDatei speichern", [this] {
        subSpeichernTessaraIniDatei(z_);
        sitzung_.subPositionSpeichern();
    });
    e.setzen("Einträge in die Registry", [this] {
        sitzung_.setup().Eintrag1 = z_.strAktuelleDb;
        sitzung_.setup().strVerzeichnisVorgabe = z_.strVerzeichnisVorgabe;
        sitzung_.setup().strACadVersion = v_.typAcadVersionInfo.strACadVersion;
        SetupInRegistrierdatenbankSpeichern(z_, sitzung_.setup());
        subRegistryEintraegeSpeichern(z_);
    });
    e.setzen("Rs schließen", [this] {
        maler_->abbrechen();
        sitzung_.subSchliessen();
    });
    e.setzen("Temp-Verzeichnis löschen", [this] {
        if (fctFolderExist(z_, z_.strCTemp + "TempTessara"))
            DeleteAFolder(z_, z_.strCTemp + "TempTessara");
    });
}

void FrmBlockverwaltung::entladen() {
    if (booEntladen_) return;
    booEntladen_ = true;
    entladen_.ausfuehren(z_);
}

// --- Libraries -------------------------------------------------------------------

void FrmBlockverwaltung::oeffnenFehlerMelden(const typOeffnenErgebnis& r) {
    if (r.ok()) return;
    std::vector<MsgboxZeile> zeilen{MsgboxZeile(r.lngMeldung), MsgboxZeile(r.strPfad)};
    if (r.lngGrund) zeilen.emplace_back(r.lngGrund);
    fctMsgbox(z_, MsgboxArt::Info, zeilen);
}

bool FrmBlockverwaltung::bibliothekOeffnen(const std::string& strDb) {
    maler_->abbrechen();
    modell().setSeiteZuerst(true);
    const typOeffnenErgebnis r = sitzung_.fctOeffnen(strDb);
    oeffnenFehlerMelden(r);
    neuZeichnen(kBibliothekGeaendert);
    return r.ok();
}

// The list's own entries change only on the user's pick (activated), never
// while it is filled.
void FrmBlockverwaltung::verzeichnisBoxFuellen() {
    auto* box = ui_->comboxVerzeichnis;
    box->clear();
    for (const auto& d : sitzung_.datenbankListe()) {
        box->addItem(QString::fromStdString(fctPfadAuf34ZeichenKuerzen(z_, d)),
                     QString::fromStdString(d));
        box->setItemData(box->count() - 1, QString::fromStdString(d), Qt::ToolTipRole);
        if (d == sitzung_.strDbVerzeichnis()) box->setCurrentIndex(box->count() - 1);
    }
}

void FrmBlockverwaltung::comboxVerzeichnis_Click(int intIndex) {
    if (intIndex < 0) return;
    const std::string d = ui_->comboxVerzeichnis->itemData(intIndex).toString().toStdString();
    if (d.empty() || d == sitzung_.strDbVerzeichnis()) return;
    datenbankWechseln(fctDbDatei(d));
}

void FrmBlockverwaltung::datenbankWechseln(const std::string& strPfad) {
    ausgabe("Datenbank: " + strPfad);
    maler_->abbrechen();
    modell().setSeiteZuerst(true);
    const typOeffnenErgebnis r = sitzung_.fctWechseln(strPfad);
    oeffnenFehlerMelden(r);
    neuZeichnen(kBibliothekGeaendert);
}

// --- Re-entry --------------------------------------------------------------------

bool FrmBlockverwaltung::nurNachVorneHolen() {
    // Loaded, and nothing handed over that asks for more than the window.
    return booGeladen_ && z_.strUebergabeBlock.empty() &&
           (z_.strUebergabeDb.empty() || z_.strUebergabeDb == "TestDb");
}

void FrmBlockverwaltung::groesseAngleichen() {
    const auto g = fctFensterGeometrieLesen(z_);
    const QRect frei = screen() ? screen()->availableGeometry() : QRect();
    if (g.booGroesse && g.lonFrmWidth >= 400 && g.lonFrmHeight >= 300)
        resize(g.lonFrmWidth, g.lonFrmHeight);
    else if (!frei.isNull())  // first start: the designed size, but never past the screen
        resize(std::min(width(), frei.width() * 9 / 10),
               std::min(height(), frei.height() * 9 / 10));
    if (g.booPosition && sitzung_.setup().longFensterpositionSpeichern) {
        const QPoint p(g.longCurrentX, g.longCurrentY);
        if (frei.isNull() || frei.adjusted(-50, -50, -100, -100).contains(p)) move(p);
    }
}

void FrmBlockverwaltung::zeigen() {
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
    if (z_.plattform && z_.plattform->desktop) z_.plattform->desktop->bringToFront(fensterHandle());
}

platform::WindowHandle FrmBlockverwaltung::fensterHandle() {
    return static_cast<platform::WindowHandle>(winId());
}

void FrmBlockverwaltung::timerIntervall(int millisekunden) { timer_.setInterval(millisekunden); }

void FrmBlockverwaltung::blockAnfrageAusfuehren() {
    Prozedur p(z_, "blockAnfrageAusfuehren", true);
    ausgabe("Blockanfrage: " + z_.strUebergabeBlock + ";" + z_.strUebergabeVariante);
    const std::string nr = z_.strUebergabeBlock;
    if (nr.size() < 4 || !modell().fctAufOrdnerUndSeiteSpringen(nr.substr(0, 3), nr)) {
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgKeinBlock), MsgboxZeile(nr)}, kGruppeAllg,
                  "KeinBlock");
        return;
    }
    neuZeichnen(kBoxenGeaendert | kSeiteGeaendert);
    cmbEinfuegen_Click();
}

// --- Insertion ---------------------------------------------------------------------

// The check boxes and the setup values they start from stay in step: a box
// the user ticks is the option of the next insertion and is saved on closing.
std::vector<std::int32_t*> FrmBlockverwaltung::einfuegeSchalter() {
    return {&sitzung_.setup().longBlockAusBibliothek,
            &sitzung_.setup().longAbfrageXFaktor,
            &sitzung_.setup().longAbfrageYFaktor,
            &sitzung_.setup().longAbfrageZFaktor,
            &sitzung_.setup().longAbfrageEinfuegewinkel,
            &sitzung_.setup().longAbfrageAttributeBeimEinfuegen,
            &sitzung_.setup().longUrsprungBeimEinfuegen,
            &sitzung_.setup().longReihe,
            &sitzung_.setup().longMehrfacheinfuegen,
            &sitzung_.setup().longBruchOption};
}

void FrmBlockverwaltung::einfuegeOptionenZeigen() {
    const auto boxen = fraEinfuegenBoxen();
    const auto werte = einfuegeSchalter();
    for (std::size_t i = 0; i < boxen.size(); ++i) {
        const QSignalBlocker still(boxen[i]);
        boxen[i]->setChecked(*werte[i] == 1);
    }
}

void FrmBlockverwaltung::einfuegeOptionenUebernehmen() {
    const auto boxen = fraEinfuegenBoxen();
    const auto werte = einfuegeSchalter();
    for (std::size_t i = 0; i < boxen.size(); ++i) *werte[i] = boxen[i]->isChecked() ? 1 : 0;
}

void FrmBlockverwaltung::cmbEinfuegen_Click() {
    Prozedur p(z_, "cmbEinfuegen_Click", true);
    if (booEinfuegenLaeuft_ || !modell().offen()) return;
    p.geschuetzt([&] {
        // Marking is active when the selected slot is one of the marked
        // blocks: then the marked blocks go in one after another. An
        // unmarked slot inserts itself alone, however many others are marked.
        p.step("markieren von Blöcken");
        const auto& belegung = modell().seitenSlots();
        const int pos = modell().intPosition();
        const bool slotMarkiert =
            pos >= 0 && pos < static_cast<int>(belegung.size()) && belegung[pos].booMarkiert;
        auto auftraege = slotMarkiert ? fctMarkierteAuftraege(modell().datenbank())
                                      : std::vector<typEinfuegeAuftrag>{};
        const bool markiert = !auftraege.empty();
        if (!markiert) {
            p.step("BlockSuche in rsBlockInfo0");
            auto a = EinzufuegendeAnsichtBestimmenUndRsEinlesen(z_, sitzung_);
            if (!a) {
                fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgKeinBlock)}, kGruppeAllg,
                          "KeinBlock");
                return;
            }
            if (sitzung_.setup().longMehrereEinfuegepkte == 1) {
                a->nummerEinfuegepkt =
                    VariaEinfuegepktBestimmen(z_, modell(), a->block.Block, a->ansicht);
                if (a->nummerEinfuegepkt == 0) return;
            }
            auftraege.push_back(std::move(*a));
        }
        einfuegen(std::move(auftraege), markiert);
    });
}

bool FrmBlockverwaltung::einfuegen(std::vector<typEinfuegeAuftrag> auftraege, bool booMarkiert) {
    Prozedur p(z_, "Einfuegen", true);
    if (v_.typAcadVersionInfo.strACadVersion.empty()) {
        p.step("ACAD_Connect");
        v_.booFensterlisteAnbieten = true;
        bool lt = false;
        if (!ACAD_Connect(z_, v_, false, true, lt)) {
            fctAcadVerbindungMelden(z_);
            return false;
        }
    }
    EinfuegeAnfrage a;
    a.strBibliothek = modell().strBasisVerzeichnis();
    a.strLspVerzeichnis = z_.strCTemp + "TempTessara\\";
    a.strKopieVerzeichnis = z_.strCTemp;
    a.auftraege = std::move(auftraege);
    a.booMarkiert = booMarkiert;
    a.variantenAuswahl = variantenAuswahl;
    a.optionen = fctEinfuegeOptionenAusSetup(sitzung_.setup());

    booEinfuegenLaeuft_ = true;
    ui_->cmbEinfuegen->setEnabled(false);
    const EinfuegeErgebnis r = fctBlockEinfuegen(z_, v_, a);
    ui_->cmbEinfuegen->setEnabled(true);
    booEinfuegenLaeuft_ = false;

    if (r.booMarkierenAus && !schreibgeschuetzt()) {
        p.step("markierte Blöcke aus Rs löschen");
        subMarkierteLoeschen(modell().datenbank(), r.erledigteBloecke);
        modell().subSeiteNeuAnzeigen();
        neuZeichnen(kSeiteGeaendert);
    }
    if (sitzung_.setup().longTessaraAnzeigenNachEinfuegen == 1) zeigen();
    zuletztEingefuegt_ = r.erledigteBloecke;
    emit einfuegungBeendet(r.eingefuegt);
    if (r.booProgrammEnde) close();
    return r.eingefuegt > 0;
}

}  // namespace tessara
