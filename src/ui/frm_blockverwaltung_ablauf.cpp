// The main window's load and closing sequences, switching libraries, and the
// insert command.
#include <QApplication>
#include <QCheckBox>
#include <QInputDialog>
#include <QPointer>
#include <QScreen>
#include <iostream>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "cad/block_daten_lesen.h"
#include "cad/block_einfuegen.h"
#include "cad/cad_einstellungen.h"
#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "db/jet_opener.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "platform/desktop.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "ui/beschriften.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/frm_blockverwaltung_verwaltung.h"
#include "ui/frm_startfenster.h"
#include "ui/sld_blockverwaltung.h"
#include "ui_frm_blockverwaltung.h"

namespace tessara {

namespace {

// Message numbers of the main window.
constexpr long kBibliothekNichtOeffnen = 400;
constexpr long kDateiBeschaedigt = 401;
constexpr long kDatenbankGesperrt = 402;
constexpr long kVerzeichnisFehlt = 404;
constexpr long kCodeTabelleFehlt = 405;
constexpr long kEinstellungUngueltig = 406;
constexpr long kKeinBlock = 407;

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
        bool lt = false;
        // No window list at start-up: the user is asked for the host window
        // when inserting, not before the library is even on screen.
        if (!ACAD_Connect(z_, v_, false, true, lt))
            fctMsgbox(z_, MsgboxArt::Info,
                      {MsgboxZeile(410L), MsgboxZeile(411L), MsgboxZeile(412L)}, kGruppeAllg,
                      "AcadVerbindung");
    });
    l.setzen("me.show", [this] { zeigen(); });
    l.setzen("Daten aus Ini-DAtei lesen", [this] {
        fctIniDateiErsterStart(z_);
        subLesenTessaraIniDatei(z_);
    });
    l.setzen("subAktuelleDatenbankAusRegistrierdatenbank",
             [this] { EintraegeAusRegistrierdatenbank(z_); });
    l.setzen("SetupEinstellungenZuweisen", [this] {
        SetupEinstellungenZuweisen(z_, setup_);
        if (fctSetupWerteKorrigieren(setup_))
            fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kEinstellungUngueltig)});
    });
    l.setzen("nach vorhandener Db suchen", [this] {
        if (!z_.strAktuelleDb.empty() &&
            !fctVerzeichnisExistiert(fctVerzeichnisVon(z_.strAktuelleDb)))
            meldenMitPfad(kVerzeichnisFehlt, fctVerzeichnisVon(z_.strAktuelleDb));
    });
    l.setzen(
        "erste Datenbank wird eingebunden",
        [this] {
            const std::string dir =
                z_.benutzer ? z_.benutzer->ordnerWaehlen(
                                  ui::fctText(z_, "frmBlockverwaltung", "mnuBibliothekOeffnen")
                                      .toStdString(),
                                  z_.strTessaraRoot)
                            : std::string();
            if (dir.empty()) return;
            const std::string d = fctOhneBackslash(dir);
            if (z_.aryDbVerzeichnis.size() == 1 && !fctDbEintragGueltig(z_.aryDbVerzeichnis[0]))
                z_.aryDbVerzeichnis[0] = d;
            else
                z_.aryDbVerzeichnis.push_back(d);
            z_.strAktuelleDb = fctDbDatei(d);
        },
        [this] { return z_.strAktuelleDb.empty(); });
    l.setzen(
        "im Verzeichnis besteht schon eine Db", [] {},
        [this] { return fctDateiExistiert(z_.strAktuelleDb); });
    l.setzen(
        "Db wird neu angelegt",
        [this] {
            if (!Mk_Datenbank(z_, fctKatalogOeffner(z_), z_.strAktuelleDb))
                meldenMitPfad(kBibliothekNichtOeffnen, z_.strAktuelleDb);
        },
        [this] {
            return !z_.strAktuelleDb.empty() && !fctDateiExistiert(z_.strAktuelleDb) &&
                   fctVerzeichnisExistiert(fctVerzeichnisVon(z_.strAktuelleDb)) &&
                   !fctReadOnlyMitVerzeichnis(z_, fctVerzeichnisVon(z_.strAktuelleDb));
        });
    l.setzen("setupeinstellungen zuweisen", [this] {
        subOrdnerAnsichtSetzen(*this);
        modell_.setAnzahlDerBilder(setup_.longAnzahlDerBilder);
    });
    l.setzen("in Ini-Datei abspeichern", [this] { subSpeichernTessaraIniDatei(z_); });
    l.setzen("in Registry abspeichern", [this] {
        if (!z_.strAktuelleDb.empty()) fctEintrag1Speichern(z_, z_.strAktuelleDb);
    });
    l.setzen("SlideEndung festlegen",
             [this] { fctFolderExistAnlegen(z_, z_.strCTemp + "TempTessara"); });
    l.setzen("Startfenster anzeigen", [this] {
        start_ = new FrmStartfenster(this);
        ui::subFormularBeschriften(z_, start_);
        start_->show();
        start_->schritt(1, 4, {});
    });
    l.setzen("OptionsGruppeAnzeigen", [this] { einfuegeOptionenZeigen(); });
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
        if (!modell_.fctCodeTabelleLesen(fctCodeTabelleDatei(z_.strAppPfad)))
            meldenMitPfad(kCodeTabelleFehlt, fctCodeTabelleDatei(z_.strAppPfad));
    });
    l.setzen("Bilderanzahl festlegen",
             [this] { modell_.setAnzahlDerBilder(setup_.longAnzahlDerBilder); });
    l.setzen("Formular auf Grösse Angleichen", [this] {
        const auto g = fctFensterGeometrieLesen(z_);
        const QRect frei = screen() ? screen()->availableGeometry() : QRect();
        if (g.booGroesse && g.lonFrmWidth >= 400 && g.lonFrmHeight >= 300)
            resize(g.lonFrmWidth, g.lonFrmHeight);
        else if (!frei.isNull())  // first start: the designed size, but never past the screen
            resize(std::min(width(), frei.width() * 9 / 10),
                   std::min(height(), frei.height() * 9 / 10));
        if (g.booPosition && setup_.longFensterpositionSpeichern) {
            const QPoint p(g.longCurrentX, g.longCurrentY);
            if (frei.isNull() || frei.adjusted(-50, -50, -100, -100).contains(p)) move(p);
        }
    });
    l.setzen("Verbindung zur Datenbank herstellen", [this] {
        if (start_) start_->schritt(3, 4, {});
        if (!z_.strAktuelleDb.empty() && fctDateiExistiert(z_.strAktuelleDb))
            bibliothekOeffnen(z_.strAktuelleDb);
        verzeichnisBoxFuellen();
    });
    l.setzen("Blocknummern einlesen", [] {});  // the first Page was read with the library
    l.setzen("Werte für die Seite anzeigen", [this] { boxenFuellen(); });
    l.setzen("Anzeigen aufrufen", [this] { Anzeigen(); });
    l.setzen("Maske in Position bringen", [this] {
        if (start_) {
            start_->schritt(4, 4, {});
            start_->fertig();
        }
        ui_->rasterFlaeche->setFocus();
    });
}

// --- Closing -------------------------------------------------------------------

void FrmBlockverwaltung::entladeSchritteSetzen() {
    auto& e = entladen_;
    e.setzen("Markierte Bloecke aus Db löschen", [this] {
        if (modell_.offen() && !booSchreibschutz_) modell_.fctMarkierungenAlleLoeschen();
    });
    e.setzen("longCurrent abspeichern", [this] {
        typFensterGeometrie g;
        const QRect r = normalGeometry();
        g.longCurrentX = r.x();
        g.longCurrentY = r.y();
        g.lonFrmHeight = r.height();
        g.lonFrmWidth = r.width();
        setup_.longCurrentX = g.longCurrentX;
        setup_.longCurrentY = g.longCurrentY;
        setup_.lonFrmHeight = g.lonFrmHeight;
        setup_.lonFrmWidth = g.lonFrmWidth;
        subFensterGeometrieSpeichern(z_, g, setup_.longFensterpositionSpeichern != 0);
    });
    e.setzen("IniDatei speichern", [this] {
        subSpeichernTessaraIniDatei(z_);
        positionSpeichern();
    });
    e.setzen("Einträge in die Registry", [this] {
        setup_.Eintrag1 = z_.strAktuelleDb;
        setup_.strVerzeichnisVorgabe = z_.strVerzeichnisVorgabe;
        setup_.strACadVersion = v_.typAcadVersionInfo.strACadVersion;
        SetupInRegistrierdatenbankSpeichern(z_, setup_);
        subRegistryEintraegeSpeichern(z_);
    });
    e.setzen("Rs schließen", [this] {
        maler_->abbrechen();
        modell_.subSchliessen();
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

void FrmBlockverwaltung::positionSpeichern() {
    const auto* o = modell_.aktuellerOrdner();
    if (!modell_.offen() || !o || strDbVerzeichnis_.empty()) return;
    typDbPosition pos;
    pos.strAktuelleOrdnerNr = fctOhneBlanks(o->OrdnerNr);
    pos.s1 = static_cast<std::int16_t>(modell_.intSeite());
    pos.Pos = modell_.intPosition();
    subDbPositionSpeichern(z_, strDbVerzeichnis_, pos);
    setup_.strAktuelleOrdnerNr = pos.strAktuelleOrdnerNr;
    setup_.strAktuellerOrdnerName = o->OrdnerName;
    setup_.longAnzahlDerBilder = modell_.longAnzahlDerBilder();
}

bool FrmBlockverwaltung::bibliothekOeffnen(const std::string& strDb) {
    Prozedur p(z_, "ConnectionUndRecordsetOeffnen", true);
    positionSpeichern();
    maler_->abbrechen();
    modell_.subSchliessen();
    strDbVerzeichnis_.clear();
    booSchreibschutz_ = false;
    const std::string dir = fctVerzeichnisVon(strDb);
    p.step("Verzeichnis prüfen");
    if (!fctVerzeichnisExistiert(dir)) {
        meldenMitPfad(kVerzeichnisFehlt, dir);
        Anzeigen();
        return false;
    }
    if (!fctDateiExistiert(strDb)) {
        p.step("Db wird neu angelegt");
        if (fctReadOnlyMitVerzeichnis(z_, dir) || !Mk_Datenbank(z_, fctKatalogOeffner(z_), strDb)) {
            meldenMitPfad(kBibliothekNichtOeffnen, strDb);
            Anzeigen();
            return false;
        }
    }
    p.step("Datenbank öffnen");
    if (!modell_.fctDatenbankOeffnen(strDb)) {
        const std::string f = modell_.fehlerText();
        const long grund =
            f.find("lock") != std::string::npos ? kDatenbankGesperrt : kDateiBeschaedigt;
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(kBibliothekNichtOeffnen), MsgboxZeile(strDb), MsgboxZeile(grund)});
        Anzeigen();
        return false;
    }
    strDbVerzeichnis_ = dir;
    z_.strAktuelleDb = strDb;
    fctSperrenCmdBeiSchreibschutz();
    p.step("Ordner aktualisieren");
    modell_.setAnzahlDerBilder(setup_.longAnzahlDerBilder);
    modell_.OrdnerInArrayEinlesen();
    const typDbPosition pos = fctDbPositionLesen(z_, dir);
    if (pos.strAktuelleOrdnerNr.empty() ||
        !modell_.fctOrdnerWaehlen(pos.strAktuelleOrdnerNr, std::max<long>(0, pos.s1)))
        modell_.comboxOrdner_Click(0);
    modell_.subPositionSetzen(pos.Pos);
    boxenFuellen();
    verzeichnisBoxFuellen();
    Anzeigen();
    return true;
}

void FrmBlockverwaltung::verzeichnisBoxFuellen() {
    const bool alt = booBoxenFuellen_;
    booBoxenFuellen_ = true;
    auto* box = ui_->comboxVerzeichnis;
    box->clear();
    for (const auto& d : z_.aryDbVerzeichnis) {
        if (!fctDbEintragGueltig(d)) continue;
        box->addItem(QString::fromStdString(fctPfadAuf34ZeichenKuerzen(z_, d)),
                     QString::fromStdString(d));
        box->setItemData(box->count() - 1, QString::fromStdString(d), Qt::ToolTipRole);
        if (d == strDbVerzeichnis_) box->setCurrentIndex(box->count() - 1);
    }
    booBoxenFuellen_ = alt;
}

void FrmBlockverwaltung::comboxVerzeichnis_Click(int intIndex) {
    if (booBoxenFuellen_ || intIndex < 0) return;
    const std::string d = ui_->comboxVerzeichnis->itemData(intIndex).toString().toStdString();
    if (d.empty() || d == strDbVerzeichnis_) return;
    datenbankWechseln(fctDbDatei(d));
}

void FrmBlockverwaltung::datenbankWechseln(const std::string& strPfad) {
    Prozedur p(z_, "comboxVerzeichnis_Click", true);
    ausgabe("Datenbank: " + strPfad);
    // A handed-over path names the database file or its directory.
    std::string db = strPfad;
    std::string endung = db.size() >= 4 ? db.substr(db.size() - 4) : std::string();
    for (auto& c : endung) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (endung != ".mdb") {
        db = fctDbDatei(fctOhneBackslash(db));
    }
    const std::string dir = fctVerzeichnisVon(db);
    p.step("aryVerzeichnisseDatenbank erweitern");
    bool bekannt = false;
    for (const auto& d : z_.aryDbVerzeichnis) bekannt = bekannt || d == dir;
    if (!bekannt && fctVerzeichnisExistiert(dir)) {
        if (z_.aryDbVerzeichnis.size() == 1 && !fctDbEintragGueltig(z_.aryDbVerzeichnis[0]))
            z_.aryDbVerzeichnis[0] = dir;
        else
            z_.aryDbVerzeichnis.push_back(dir);
        subSpeichernTessaraIniDatei(z_);
    }
    p.step("Datenbank wechseln");
    if (bibliothekOeffnen(db)) fctEintrag1Speichern(z_, db);
    verzeichnisBoxFuellen();
}

// --- Re-entry --------------------------------------------------------------------

bool FrmBlockverwaltung::nurNachVorneHolen() {
    // Loaded, and nothing handed over that asks for more than the window.
    return booGeladen_ && z_.strUebergabeBlock.empty() &&
           (z_.strUebergabeDb.empty() || z_.strUebergabeDb == "TestDb");
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
    if (nr.size() < 4 || !modell_.fctAufOrdnerUndSeiteSpringen(nr.substr(0, 3), nr)) {
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kKeinBlock), MsgboxZeile(nr)}, kGruppeAllg,
                  "KeinBlock");
        return;
    }
    boxenFuellen();
    Anzeigen();
    cmbEinfuegen_Click();
}

// --- Insertion ---------------------------------------------------------------------

// The check boxes and the setup values they start from stay in step: a box
// the user ticks is the option of the next insertion and is saved on closing.
std::vector<std::int32_t*> FrmBlockverwaltung::einfuegeSchalter() {
    return {&setup_.longBlockAusBibliothek,    &setup_.longAbfrageXFaktor,
            &setup_.longAbfrageYFaktor,        &setup_.longAbfrageZFaktor,
            &setup_.longAbfrageEinfuegewinkel, &setup_.longAbfrageAttributeBeimEinfuegen,
            &setup_.longUrsprungBeimEinfuegen, &setup_.longReihe,
            &setup_.longMehrfacheinfuegen,     &setup_.longBruchFrage};
}

void FrmBlockverwaltung::einfuegeOptionenZeigen() {
    const bool alt = booBoxenFuellen_;
    booBoxenFuellen_ = true;
    const auto boxen = fraEinfuegenBoxen();
    const auto werte = einfuegeSchalter();
    for (std::size_t i = 0; i < boxen.size(); ++i) boxen[i]->setChecked(*werte[i] == 1);
    booBoxenFuellen_ = alt;
}

void FrmBlockverwaltung::einfuegeOptionenUebernehmen() {
    if (booBoxenFuellen_) return;
    const auto boxen = fraEinfuegenBoxen();
    const auto werte = einfuegeSchalter();
    for (std::size_t i = 0; i < boxen.size(); ++i) *werte[i] = boxen[i]->isChecked() ? 1 : 0;
}

std::vector<typEinfuegeAuftrag> FrmBlockverwaltung::markierteAuftraege() {
    std::vector<typEinfuegeAuftrag> auftraege;
    db::Recordset& m = modell_.datenbank().rsMarkierteBloecke;
    if (m.state() != db::adStateOpen || m.recordCount() < 1) return auftraege;
    m.moveFirst();
    while (!m.eof()) {
        const std::string nr = m.text("BlockNr");
        db::Recordset rs;
        rs.open(
            "SELECT Nr, Block, OrdnerID,  SlideLib, BlkName0, M0, M1, M2, M3, M4, M5, M6, M7, M8, "
            "M9, AX1, AX2, "
            "AX3, AX4, LAYER, LYCOLOR, LYLINE FROM tblBlockInfo WHERE Block LIKE '" +
                nr + "'",
            modell_.datenbank().con);
        if (rs.recordCount() > 0) {
            typEinfuegeAuftrag a;
            a.block = fctBlockDatenAusRs(rs);
            const auto ansicht = m.value("MarkierteAnsicht");
            const auto punkt = m.value("NummerEinfuegepkt");
            a.ansicht = ansicht.isNull() ? 0 : std::clamp(static_cast<int>(ansicht.asInt()), 0, 4);
            a.nummerEinfuegepkt =
                punkt.isNull() || punkt.asInt() < 1 ? 1 : static_cast<int>(punkt.asInt());
            auftraege.push_back(std::move(a));
        }
        m.moveNext();
    }
    return auftraege;
}

void FrmBlockverwaltung::cmbEinfuegen_Click() {
    Prozedur p(z_, "cmbEinfuegen_Click", true);
    if (booEinfuegenLaeuft_ || !modell_.offen()) return;
    p.geschuetzt([&] {
        // Marking is active when the selected slot is one of the marked
        // blocks: then the marked blocks go in one after another. An
        // unmarked slot inserts itself alone, however many others are marked.
        p.step("markieren von Blöcken");
        const auto& belegung = modell_.seitenSlots();
        const int pos = modell_.intPosition();
        const bool slotMarkiert =
            pos >= 0 && pos < static_cast<int>(belegung.size()) && belegung[pos].booMarkiert;
        auto auftraege = slotMarkiert ? markierteAuftraege() : std::vector<typEinfuegeAuftrag>{};
        const bool markiert = !auftraege.empty();
        if (!markiert) {
            p.step("BlockSuche in rsBlockInfo0");
            if (!modell_.fctBlockSuchen(modell_.intPosition())) {
                fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kKeinBlock)}, kGruppeAllg, "KeinBlock");
                return;
            }
            typEinfuegeAuftrag a;
            a.block = fctBlockDatenAusRs(modell_.datenbank().rsBlockInfo0);
            auftraege.push_back(std::move(a));
        }
        einfuegen(std::move(auftraege), markiert);
    });
}

bool FrmBlockverwaltung::einfuegen(std::vector<typEinfuegeAuftrag> auftraege, bool booMarkiert) {
    Prozedur p(z_, "Einfuegen", true);
    if (v_.typAcadVersionInfo.strACadVersion.empty()) {
        p.step("ACAD_Connect");
        if (!v_.listenAuswahl)
            v_.listenAuswahl = [z = &z_, eltern = QPointer<QWidget>(this)](
                                   const std::string& titel, const std::string& frage,
                                   const std::vector<std::string>& eintraege) {
                QStringList liste;
                for (const auto& e : eintraege) liste << QString::fromStdString(e);
                QInputDialog d(eltern.data());
                d.setWindowTitle(QString::fromStdString(titel));
                d.setLabelText(QString::fromStdString(frage));
                d.setComboBoxItems(liste);
                d.setComboBoxEditable(false);
                // The buttons in the user's language, as in the boxes.
                d.setOkButtonText(QString::fromStdString(fctBeschriftung(*z, "cmbOk")));
                d.setCancelButtonText(QString::fromStdString(fctBeschriftung(*z, "cmbAbbrechen")));
                return d.exec() == QDialog::Accepted ? d.textValue().toStdString() : std::string();
            };
        bool lt = false;
        if (!ACAD_Connect(z_, v_, false, true, lt)) {
            fctMsgbox(z_, MsgboxArt::Info,
                      {MsgboxZeile(410L), MsgboxZeile(411L), MsgboxZeile(412L)}, kGruppeAllg,
                      "AcadVerbindung");
            return false;
        }
    }
    EinfuegeAnfrage a;
    a.strBibliothek = modell_.strBasisVerzeichnis();
    a.strLspVerzeichnis = z_.strCTemp + "TempTessara\\";
    a.strKopieVerzeichnis = z_.strCTemp;
    a.auftraege = std::move(auftraege);
    a.booMarkiert = booMarkiert;
    a.variantenAuswahl = variantenAuswahl;
    a.optionen = fctEinfuegeOptionenAusSetup(setup_);

    booEinfuegenLaeuft_ = true;
    ui_->cmbEinfuegen->setEnabled(false);
    const EinfuegeErgebnis r = fctBlockEinfuegen(z_, v_, a);
    ui_->cmbEinfuegen->setEnabled(true);
    booEinfuegenLaeuft_ = false;

    if (r.booMarkierenAus && !booSchreibschutz_) {
        p.step("markierte Blöcke aus Rs löschen");
        db::Recordset& m = modell_.datenbank().rsMarkierteBloecke;
        for (const auto& nr : r.erledigteBloecke) {
            if (m.state() != db::adStateOpen || m.recordCount() < 1) break;
            m.moveFirst();
            if (m.find("BlockNr LIKE '" + nr + "'")) m.deleteCurrent();
        }
        modell_.subSeiteNeuAnzeigen();
        Anzeigen();
    }
    if (setup_.longTessaraAnzeigenNachEinfuegen == 1) zeigen();
    zuletztEingefuegt_ = r.erledigteBloecke;
    emit einfuegungBeendet(r.eingefuegt);
    if (r.booProgrammEnde) close();
    return r.eingefuegt > 0;
}

}  // namespace tessara
