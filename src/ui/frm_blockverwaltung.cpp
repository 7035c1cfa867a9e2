#include "ui/frm_blockverwaltung.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>
#include <filesystem>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "db/jet_opener.h"
#include "library/datenbank.h"
#include "library/schema.h"
#include "organisation/ordner_verwaltung.h"
#include "platform/desktop.h"
#include "platform/environment.h"
#include "platform/platform.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "ui/beschriften.h"
#include "ui/frm_blockverwaltung_suche.h"
#include "ui/frm_blockverwaltung_verwaltung.h"
#include "ui/frm_optionen.h"
#include "ui/frm_vollbild.h"
#include "ui/sld_blockverwaltung.h"
#include "ui_frm_blockverwaltung.h"

namespace tessara {

namespace {

constexpr const char* kForm = "frmBlockverwaltung";

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

FrmBlockverwaltung::FrmBlockverwaltung(ProgrammZustand& z, CadVerbindung& v, QWidget* eltern)
    : QMainWindow(eltern),
      z_(z),
      v_(v),
      ui_(std::make_unique<Ui::frmBlockverwaltung>()),
      modell_(z, fctKatalogOeffner(z)),
      maler_(std::make_unique<ui::DiaMaler>(cache_)),
      laden_(fctLadeAblauf()),
      entladen_(fctEntladeAblauf()) {
    ui_->setupUi(this);
    // The side bar scrolls when the window is lower than its content, as on
    // a laptop screen, instead of pushing the window past the screen's edge.
    auto* rollen = new QScrollArea(ui_->centralwidget);
    rollen->setObjectName(QStringLiteral("seitenleisteRollen"));
    rollen->setWidgetResizable(true);
    rollen->setFrameShape(QFrame::NoFrame);
    rollen->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui_->mitte->replaceWidget(ui_->seitenleisteFlaeche, rollen);
    rollen->setWidget(ui_->seitenleisteFlaeche);
    const int leiste = rollen->verticalScrollBar()->sizeHint().width();
    rollen->setMinimumWidth(ui_->seitenleisteFlaeche->minimumWidth() + leiste);
    rollen->setMaximumWidth(ui_->seitenleisteFlaeche->maximumWidth() + leiste);
    ui_->labSchreibschutz->hide();
    ui_->statusbar->addWidget(new QLabel(this), 1);
    ui_->statusbar->findChild<QLabel*>()->setObjectName(QStringLiteral("labStatus"));
    for (int i = 0; i < 8; ++i)
        ui_->comboxBilderanzahl->addItem(QString::number(fctSlotsProSeite(i)));
    // A picture that cannot be read is logged once, on this thread.
    cache_.protokollSetzen(
        [this](const std::string& zeile) { subErrorAllgemein(z_, true, zeile, 0); }, this);
    rasterAufbauen();
    ladeSchritteSetzen();
    entladeSchritteSetzen();

    connect(
        maler_.get(), &ui::DiaMaler::bildFertig, this,
        [this](int gen, int slot, const QImage& bild) {
            if (gen == maler_->generation() && slot >= 0 && slot < static_cast<int>(slots_.size()))
                slots_[slot]->dia->setBild(bild);
        });
    connect(maler_.get(), &ui::DiaMaler::seiteFertig, this, [this](int gen) {
        if (gen == maler_->generation()) emit seiteGemalt();
    });
    bildTimer_.setSingleShot(true);
    bildTimer_.setInterval(120);
    connect(&bildTimer_, &QTimer::timeout, this, [this] { bilderAnfordern(); });

    connect(ui_->cmbEinfuegen, &QPushButton::clicked, this, [this] { cmbEinfuegen_Click(); });
    connect(ui_->mnuBBlockEinfuegen, &QAction::triggered, this, [this] { cmbEinfuegen_Click(); });
    connect(ui_->combutVor, &QPushButton::clicked, this, [this] { combutVor_Click(); });
    connect(ui_->mnuSeiteVor, &QAction::triggered, this, [this] { combutVor_Click(); });
    connect(ui_->combutZurueck, &QPushButton::clicked, this, [this] { combutZurueck_Click(); });
    connect(ui_->mnuSeiteZurueck, &QAction::triggered, this, [this] { combutZurueck_Click(); });
    connect(ui_->combutZurueckAnfang, &QPushButton::clicked, this,
            [this] { combutZurueckAnfang_Click(); });
    connect(ui_->comboxOrdner, &QComboBox::activated, this,
            [this](int i) { comboxOrdner_Click(i); });
    connect(ui_->comboxSeite, &QComboBox::activated, this, [this](int i) { comboxSeite_Click(i); });
    connect(ui_->comboxVerzeichnis, &QComboBox::activated, this,
            [this](int i) { comboxVerzeichnis_Click(i); });
    connect(ui_->comboxBilderanzahl, &QComboBox::activated, this,
            [this](int i) { comboxBilderanzahl_Click(i); });
    connect(ui_->lisBlockBenennung, &QListWidget::currentRowChanged, this, [this](int i) {
        if (!booBoxenFuellen_ && i >= 0) sldBlockverwaltung_LButtonDown(i);
    });
    connect(ui_->lisBlockBenennung, &QListWidget::itemDoubleClicked, this,
            [this](QListWidgetItem* it) {
                lisBlockBenennung_DblClick(ui_->lisBlockBenennung->row(it));
            });
    connect(ui_->cmdOptionen, &QPushButton::clicked, this, [this] { mnuOptionen_Click(); });
    connect(ui_->mnuOptionen, &QAction::triggered, this, [this] { mnuOptionen_Click(); });
    connect(ui_->mnuVollbild, &QAction::triggered, this, [this] { mnuVollbild_Click(); });
    connect(ui_->mnuBibliothekOeffnen, &QAction::triggered, this,
            [this] { mnuBibliothekOeffnen_Click(); });
    connect(ui_->mnuBeenden, &QAction::triggered, this, [this] { close(); });
    connect(ui_->mnuMarkierungenAufheben, &QAction::triggered, this, [this] {
        modell_.fctMarkierungenAlleLoeschen();
        Anzeigen();
    });
    connect(ui_->mnuInfo, &QAction::triggered, this, [this] {
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(fctFensterTitel(z_, fctBeschriftung(z_, "ProgName"))),
                   MsgboxZeile(modell_.strDatenbank())});
    });
    for (QCheckBox* c : fraEinfuegenBoxen())
        connect(c, &QCheckBox::toggled, this, [this] { einfuegeOptionenUebernehmen(); });
    ui_->rasterFlaeche->installEventFilter(this);
    subSucheEinrichten(*this);
    subVerwaltungEinbinden(*this);
}

FrmBlockverwaltung::~FrmBlockverwaltung() {
    maler_->abbrechen();
    if (!booEntladen_ && booGeladen_) entladen();
}

std::vector<QCheckBox*> FrmBlockverwaltung::fraEinfuegenBoxen() const {
    return {ui_->checkBlock,  ui_->checkXFrage,    ui_->checkYFrage,   ui_->checkZFrage,
            ui_->checkWinkel, ui_->checkAttribute, ui_->checkUrsprung, ui_->checkReihe,
            ui_->checkMehr,   ui_->checkBruch};
}

void FrmBlockverwaltung::rasterAufbauen() {
    auto* raster = new QGridLayout(ui_->rasterFlaeche);
    raster->setContentsMargins(0, 0, 0, 0);
    raster->setSpacing(4);
}

// Slots are made when a picture size first needs them: a start on 16 slots
// does not build 72.
void FrmBlockverwaltung::slotsAnlegen(int anzahl) {
    while (static_cast<int>(slots_.size()) < anzahl) {
        const int i = static_cast<int>(slots_.size());
        auto* s = new SlotFeld(i, ui_->rasterFlaeche);
        slots_.push_back(s);
        connect(s->dia, &SldBlockverwaltung::gedrueckt, this,
                [this](int k) { sldBlockverwaltung_LButtonDown(k); });
        connect(s->dia, &SldBlockverwaltung::doppelklick, this,
                [this](int k) { sldBlockverwaltung_DblClick(k); });
        connect(s->dia, &SldBlockverwaltung::groesseGeaendert, this,
                [this] { bildTimer_.start(); });
        connect(s->markieren, &QCheckBox::clicked, this,
                [this, i](bool an) { chkMarkieren_Click(i, an); });
        s->markieren->setEnabled(!booSchreibschutz_);
        s->hide();
    }
}

// Lays the slots out in the shape of the picture-size index; the slots past
// the Page's count stay hidden.
void FrmBlockverwaltung::rasterAnordnen() {
    auto* raster = static_cast<QGridLayout*>(ui_->rasterFlaeche->layout());
    const long index = modell_.longAnzahlDerBilder();
    // No library open: no slots, rather than a grid of slots that lead nowhere.
    const int anzahl = modell_.seitenSlots().empty() ? 0 : fctSlotsProSeite(index);
    const int spalten = fctRasterSpalten(index);
    if (anzahl == angeordnet_ && spalten == angeordnetSpalten_) return;
    slotsAnlegen(anzahl);
    for (auto* s : slots_) raster->removeWidget(s);
    for (int c = 0; c < raster->columnCount(); ++c) raster->setColumnStretch(c, 0);
    for (int r = 0; r < raster->rowCount(); ++r) raster->setRowStretch(r, 0);
    for (int i = 0; i < static_cast<int>(slots_.size()); ++i) {
        if (i < anzahl) {
            raster->addWidget(slots_[i], i / spalten, i % spalten);
            slots_[i]->show();
        } else {
            slots_[i]->hide();
        }
    }
    for (int c = 0; c < spalten; ++c) raster->setColumnStretch(c, 1);
    for (int r = 0; r < (anzahl + spalten - 1) / spalten; ++r) raster->setRowStretch(r, 1);
    angeordnetSpalten_ = spalten;
    angeordnet_ = anzahl;
}

void FrmBlockverwaltung::bilderAnfordern() {
    const auto& belegung = modell_.seitenSlots();
    if (belegung.empty()) {
        maler_->abbrechen();
        emit seiteGemalt();
        return;
    }
    QStringList namen;
    for (const auto& s : belegung) namen << q(s.strBildname);
    if (slots_.empty()) return;
    maler_->seiteAnfordern(namen, slots_[0]->dia->size(), ui::DiaHintergrund::Dunkel);
}

void FrmBlockverwaltung::Anzeigen() {
    Prozedur p(z_, "Anzeigen", true);
    rasterAnordnen();
    const auto& belegung = modell_.seitenSlots();
    const int pos = modell_.intPosition();
    const std::string basis = modell_.strBasisVerzeichnis();
    const auto* ordner = modell_.aktuellerOrdner();
    for (int i = 0; i < static_cast<int>(belegung.size()) && i < static_cast<int>(slots_.size());
         ++i) {
        const typSlot& s = belegung[i];
        SlotFeld* f = slots_[i];
        f->beschriftung->setText(q(s.strBeschriftung));
        f->beschriftung->setToolTip(
            q(s.strBlockNr + (s.booBelegt ? "  " + s.strBeschriftung : "")));
        f->markieren->setChecked(s.booMarkiert);
        f->markieren->setEnabled(s.booBelegt && !booSchreibschutz_);
        f->dia->setAusgewaehlt(i == pos);
        if (s.booBelegt && ordner) {
            const std::string dwg =
                platform::nativePath(basis + fctZeichnungDatei(ordner->OrdnerNr, s.strBlockNr, 0));
            f->dia->setZiehDaten(q(dwg), q(dwg));
        } else {
            f->dia->setZiehDaten({}, {});
        }
    }
    booBoxenFuellen_ = true;
    auto* lis = ui_->lisBlockBenennung;
    const auto eintraege = modell_.lisBlockBenennungAktualisieren();
    if (lis->count() != static_cast<int>(eintraege.size())) {
        lis->clear();
        for (const auto& e : eintraege) lis->addItem(q(e));
    } else {
        for (int i = 0; i < lis->count(); ++i) lis->item(i)->setText(q(eintraege[i]));
    }
    lis->setCurrentRow(pos);
    positionZeigen();
    booBoxenFuellen_ = false;
    bilderAnfordern();
}

// The parts of the window that follow the selection: frame, list row, path,
// Page number, the Page box.
void FrmBlockverwaltung::positionZeigen() {
    const auto& belegung = modell_.seitenSlots();
    const int pos = modell_.intPosition();
    for (int i = 0; i < static_cast<int>(belegung.size()) && i < static_cast<int>(slots_.size());
         ++i)
        slots_[i]->dia->setAusgewaehlt(i == pos);
    std::string pfad;
    const auto* ordner = modell_.aktuellerOrdner();
    if (pos >= 0 && pos < static_cast<int>(belegung.size()) && belegung[pos].booBelegt && ordner)
        pfad =
            platform::nativePath(modell_.strBasisVerzeichnis() +
                                 fctZeichnungDatei(ordner->OrdnerNr, belegung[pos].strBlockNr, 0));
    ui_->txtVerzeichnisBlock->setText(q(pfad));
    ui_->txtVerzeichnisBlock->setToolTip(q(pfad));
    const bool alt = booBoxenFuellen_;
    booBoxenFuellen_ = true;
    ui_->lisBlockBenennung->setCurrentRow(pos);
    QString format = ui::fctText(z_, QString::fromLatin1(kForm), QStringLiteral("labSeitenNr"));
    if (!format.contains(QLatin1String("%1"))) format = QStringLiteral("%1 / %2");
    // "of" counts the Pages the Folder has, not the code table's reach.
    const long seiten =
        std::max<long>(static_cast<long>(modell_.arySeiten().size()), modell_.intSeite() + 1);
    ui_->labSeitenNr->setText(format.arg(modell_.intSeite() + 1).arg(seiten));
    int seitenIndex = -1;
    for (int i = 0; i < static_cast<int>(modell_.seitenListe().size()); ++i)
        if (modell_.seitenListe()[i].SeitenNr == modell_.intSeite() + 1) seitenIndex = i;
    ui_->comboxSeite->setCurrentIndex(seitenIndex);
    ui_->comboxOrdner->setCurrentIndex(modell_.intOrdnerIndex());
    ui_->combutZurueck->setEnabled(modell_.intSeite() > 0);
    ui_->mnuSeiteZurueck->setEnabled(modell_.intSeite() > 0);
    ui_->combutVor->setEnabled(modell_.offen() && modell_.intSeite() < modell_.letzteSeite());
    booBoxenFuellen_ = alt;
}

void FrmBlockverwaltung::subOrdnerUndSeitenNeuAnzeigen() {
    Prozedur p(z_, "subOrdnerUndSeitenNeuAnzeigen", true);
    if (!modell_.offen()) return;
    const auto* o = modell_.aktuellerOrdner();
    const std::string nr = o ? o->OrdnerNr : std::string();
    const long seite = modell_.intSeite();
    const int pos = modell_.intPosition();
    modell_.OrdnerInArrayEinlesen();
    // The Folder shown may have gone: the first one takes its place.
    if (nr.empty() || !modell_.fctOrdnerWaehlen(nr, seite)) modell_.comboxOrdner_Click(0);
    modell_.subPositionSetzen(pos);
    boxenFuellen();
    Anzeigen();
}

void FrmBlockverwaltung::boxenFuellen() {
    booBoxenFuellen_ = true;
    ui_->comboxOrdner->clear();
    for (const auto& o : modell_.aryOrdner()) ui_->comboxOrdner->addItem(q(o.OrdnerName));
    ui_->comboxSeite->clear();
    for (const auto& s : modell_.seitenListe()) ui_->comboxSeite->addItem(q(s.SeitenName));
    ui_->comboxBilderanzahl->setCurrentIndex(static_cast<int>(modell_.longAnzahlDerBilder()));
    booBoxenFuellen_ = false;
}

void FrmBlockverwaltung::statusZeigen(const QString& text) {
    if (auto* l = findChild<QLabel*>(QStringLiteral("labStatus"))) l->setText(text);
}

// --- Handlers -------------------------------------------------------------

void FrmBlockverwaltung::combutVor_Click() {
    if (modell_.combutVor()) Anzeigen();
}

void FrmBlockverwaltung::combutZurueck_Click() {
    if (modell_.combutZurueck()) Anzeigen();
}

void FrmBlockverwaltung::combutZurueckAnfang_Click() {
    if (modell_.combutZurueckAnfang()) Anzeigen();
}

void FrmBlockverwaltung::comboxOrdner_Click(int intIndex) {
    if (booBoxenFuellen_) return;
    if (modell_.comboxOrdner_Click(intIndex)) {
        boxenFuellen();
        Anzeigen();
    }
}

void FrmBlockverwaltung::comboxSeite_Click(int intIndex) {
    if (booBoxenFuellen_) return;
    const auto& liste = modell_.seitenListe();
    if (intIndex < 0 || intIndex >= static_cast<int>(liste.size())) return;
    if (modell_.GeheZuSeite(liste[intIndex].SeitenNr - 1)) Anzeigen();
}

void FrmBlockverwaltung::comboxBilderanzahl_Click(int intIndex) {
    if (booBoxenFuellen_ || !fctBilderanzahlGueltig(intIndex)) return;
    setup_.longAnzahlDerBilder = intIndex;
    modell_.BilderAnzeigenBeiGeaenderterBilderanzahl(intIndex);
    Anzeigen();
}

void FrmBlockverwaltung::sldBlockverwaltung_LButtonDown(int intPosition) {
    modell_.subPositionSetzen(intPosition);
    positionZeigen();
    ui_->rasterFlaeche->setFocus();
}

void FrmBlockverwaltung::sldBlockverwaltung_DblClick(int intPosition) {
    if (booSchreibschutz_ && setup_.longDoppelklick == 2) return;  // marking writes the catalogue
    doppelklickAusfuehren(modell_.fctDoppelklick(intPosition, setup_.longDoppelklick));
}

void FrmBlockverwaltung::lisBlockBenennung_DblClick(int intEintrag) {
    if (booSchreibschutz_ && setup_.longDoppelklick == 2) return;
    doppelklickAusfuehren(modell_.fctListeDoppelklick(intEintrag, setup_.longDoppelklick));
}

void FrmBlockverwaltung::doppelklickAusfuehren(DoppelklickAktion aktion) {
    switch (aktion) {
        case DoppelklickAktion::Einfuegen:
            cmbEinfuegen_Click();
            break;
        case DoppelklickAktion::Markieren:
            Anzeigen();
            break;
        case DoppelklickAktion::Vollbild:
            mnuVollbild_Click();
            break;
        case DoppelklickAktion::Nichts:
            break;
    }
}

void FrmBlockverwaltung::chkMarkieren_Click(int intPosition, bool booMarkiert) {
    if (booSchreibschutz_) return;
    modell_.fctMarkierungSetzen(intPosition, booMarkiert);
    Anzeigen();
}

void FrmBlockverwaltung::mnuVollbild_Click() {
    const auto& belegung = modell_.seitenSlots();
    const int pos = modell_.intPosition();
    if (pos < 0 || pos >= static_cast<int>(belegung.size())) return;
    auto* f = new FrmVollbild(z_, cache_, belegung[pos].strBildname, belegung[pos].strBeschriftung,
                              "frmBockverwaltung", this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    ui::subFormularBeschriften(z_, f);
    f->show();
}

void FrmBlockverwaltung::mnuOptionen_Click() {
    const std::int32_t sortiertVorher = setup_.lonOrdnerSortieren;
    const std::int32_t rechteVorher = setup_.longRechteverwaltung;
    FrmOptionen f(z_, setup_, this);
    ui::subFormularBeschriften(z_, &f);
    if (f.exec() != QDialog::Accepted) return;
    if (setup_.lonOrdnerSortieren != sortiertVorher ||
        setup_.longRechteverwaltung != rechteVorher) {
        if (setup_.lonOrdnerSortieren != sortiertVorher)
            subOrdnerSortierenSpeichern(z_, setup_.lonOrdnerSortieren == 1);
        subOrdnerAnsichtSetzen(*this);
        fctCboOrdnerNeuAnzeigen(z_, modell_, "", false);
        subOrdnerUndSeitenNeuAnzeigen();
    }
    einfuegeOptionenZeigen();
    if (setup_.longAnzahlDerBilder != modell_.longAnzahlDerBilder()) {
        modell_.BilderAnzeigenBeiGeaenderterBilderanzahl(setup_.longAnzahlDerBilder);
        boxenFuellen();
    }
    Anzeigen();
}

void FrmBlockverwaltung::mnuBibliothekOeffnen_Click() {
    const std::string datei =
        z_.benutzer ? z_.benutzer->dateiWaehlen(ui::fctText(z_, QString::fromLatin1(kForm),
                                                            QStringLiteral("mnuBibliothekOeffnen"))
                                                    .toStdString(),
                                                strDbVerzeichnis_,
                                                "Tessara-Bibliothek (dbTessara.mdb)", false)
                    : std::string();
    if (!datei.empty()) datenbankWechseln(datei);
}

// --- Keys ------------------------------------------------------------------

bool FrmBlockverwaltung::eventFilter(QObject* o, QEvent* e) {
    if (o == ui_->rasterFlaeche && e->type() == QEvent::KeyPress) {
        auto* k = static_cast<QKeyEvent*>(e);
        if (tasteImRaster(k)) return true;
    }
    return QMainWindow::eventFilter(o, e);
}

void FrmBlockverwaltung::keyPressEvent(QKeyEvent* e) {
    if (!tasteImRaster(e)) QMainWindow::keyPressEvent(e);
}

bool FrmBlockverwaltung::tasteImRaster(QKeyEvent* e) {
    const int n = static_cast<int>(modell_.seitenSlots().size());
    if (n == 0) return false;
    const int spalten = fctRasterSpalten(modell_.longAnzahlDerBilder());
    int pos = modell_.intPosition();
    switch (e->key()) {
        case Qt::Key_Left:
            pos = std::max(0, pos - 1);
            break;
        case Qt::Key_Right:
            pos = std::min(n - 1, pos + 1);
            break;
        case Qt::Key_Up:
            pos = pos - spalten >= 0 ? pos - spalten : pos;
            break;
        case Qt::Key_Down:
            pos = pos + spalten < n ? pos + spalten : pos;
            break;
        case Qt::Key_Home:
            pos = 0;
            break;
        case Qt::Key_End:
            pos = n - 1;
            break;
        case Qt::Key_PageDown:
            combutVor_Click();
            return true;
        case Qt::Key_PageUp:
            combutZurueck_Click();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            cmbEinfuegen_Click();
            return true;
        default:
            return false;
    }
    sldBlockverwaltung_LButtonDown(pos);
    return true;
}

// --- Write protection ----------------------------------------------------------

bool FrmBlockverwaltung::fctSperrenCmdBeiSchreibschutz() {
    Prozedur p(z_, "fctSperrenCmdBeiSchreibschutz", true);
    // A write-protected directory, or a database file marked read-only.
    std::error_code ec;
    const auto rechte =
        std::filesystem::status(fctNativerPfad(modell_.strDatenbank()), ec).permissions();
    const bool dateiNurLesen =
        !ec && (rechte & std::filesystem::perms::owner_write) == std::filesystem::perms::none;
    booSchreibschutz_ = !strDbVerzeichnis_.empty() &&
                        (dateiNurLesen || fctReadOnlyMitVerzeichnis(z_, strDbVerzeichnis_));
    ui_->labSchreibschutz->setVisible(booSchreibschutz_);
    ui_->mnuMarkierungenAufheben->setEnabled(!booSchreibschutz_);
    for (auto* s : slots_) s->markieren->setEnabled(!booSchreibschutz_);
    return booSchreibschutz_;
}

// --- Closing -----------------------------------------------------------------

void FrmBlockverwaltung::closeEvent(QCloseEvent* e) {
    if (booEntladen_) {
        e->accept();
        return;
    }
    if (booGeladen_ &&
        !fctMsgbox(z_, MsgboxArt::Frage, {MsgboxZeile(408L)}, kGruppeAllg, "TessaraBeenden")) {
        e->ignore();
        return;
    }
    entladen();
    e->accept();
}

}  // namespace tessara
