#include "ui/frm_blockverwaltung.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QGridLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <tuple>

#include "authoring/datei_layout.h"
#include "authoring/dateien_operationen.h"
#include "cad/host_ereignisse.h"
#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "library/datenbank.h"
#include "organisation/ordner_verwaltung.h"
#include "platform/environment.h"
#include "startup/fehler_log.h"
#include "startup/pfade.h"
#include "ui/beschriften.h"
#include "ui/block_bearbeitung.h"
#include "ui/frm_blockverwaltung_verwaltung.h"
#include "ui/frm_datenbank_suche.h"
#include "ui/frm_layerverwaltung.h"
#include "ui/frm_optionen.h"
#include "ui/frm_varianten_auswahl.h"
#include "ui/frm_version_info.h"
#include "ui/frm_vollbild.h"
#include "ui/schnellfilter_steuerung.h"
#include "ui/sld_blockverwaltung.h"
#include "ui/zuletzt_steuerung.h"
#include "ui_frm_blockverwaltung.h"

namespace tessara {

namespace {

constexpr const char* kForm = "frmBlockverwaltung";

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

// What the panels may ask of the window, and the window's news they follow.
class FrmBlockverwaltung::Aktionen final : public BlockAktionen {
  public:
    explicit Aktionen(FrmBlockverwaltung& f) : BlockAktionen(&f), f_(f) {}
    bool zumBlockSpringen(const std::string& strBlock) override {
        return f_.zumBlockSpringen(strBlock);
    }
    bool blockEinfuegen(const std::string& strBlock) override {
        if (!f_.zumBlockSpringen(strBlock)) return false;
        f_.cmbEinfuegen_Click();
        return true;
    }
    void ordnerUndSeitenNeuAnzeigen() override { f_.subOrdnerUndSeitenNeuAnzeigen(); }
    void neuZeichnen(unsigned was) override { f_.neuZeichnen(static_cast<typAenderung>(was)); }
    const std::vector<std::string>& zuletztEingefuegt() const override {
        return f_.zuletztEingefuegt_;
    }

  private:
    FrmBlockverwaltung& f_;
};

FrmBlockverwaltung::FrmBlockverwaltung(ProgrammZustand& z, CadVerbindung& v, QWidget* eltern)
    : QMainWindow(eltern),
      z_(z),
      v_(v),
      ui_(std::make_unique<Ui::frmBlockverwaltung>()),
      sitzung_(z, fctKatalogOeffner(z)),
      maler_(std::make_unique<ui::DiaMaler>(cache_)),
      aktionen_(std::make_unique<Aktionen>(*this)),
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
    connect(this, &FrmBlockverwaltung::seiteGemalt, aktionen_.get(), &BlockAktionen::seiteGemalt);
    // A Folder is shown by its Page first; the rest of it is read once the
    // Page is on screen, before the user can flip.
    connect(this, &FrmBlockverwaltung::seiteGemalt, this, [this] {
        if (modell().booNurSeiteGelesen())
            QTimer::singleShot(0, this, [this] { modell().fctOrdnerVollstaendigEinlesen(); });
    });
    connect(this, &FrmBlockverwaltung::einfuegungBeendet, aktionen_.get(),
            &BlockAktionen::einfuegungBeendet);
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
        if (i >= 0) sldBlockverwaltung_LButtonDown(i);
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
    connect(ui_->mnuBibliothekAnhaengen, &QAction::triggered, this,
            [this] { mnuBibliothekAnhaengen_Click(); });
    connect(ui_->mnuBibliothekAbhaengen, &QAction::triggered, this,
            [this] { mnuBibliothekAbhaengen_Click(); });
    connect(ui_->mnuBeenden, &QAction::triggered, this, [this] { close(); });
    connect(ui_->mnuMarkierungenAufheben, &QAction::triggered, this,
            [this] { neuZeichnen(sitzung_.fctMarkierungenAufheben()); });
    connect(ui_->mnuInfo, &QAction::triggered, this, [this] {
        fctMsgbox(z_, MsgboxArt::Info,
                  {MsgboxZeile(fctFensterTitel(z_, fctBeschriftung(z_, "ProgName"))),
                   MsgboxZeile(modell().strDatenbank())});
    });
    connect(ui_->mnuLayerverwaltung, &QAction::triggered, this, [this] {
        FrmLayerverwaltung f(z_, v_, this);
        f.exec();
    });
    connect(ui_->mnuVersionsHistorie, &QAction::triggered, this, [this] {
        FrmVersionInfo f(z_, this);
        f.exec();
    });
    for (QCheckBox* c : fraEinfuegenBoxen())
        connect(c, &QCheckBox::toggled, this, [this] { einfuegeOptionenUebernehmen(); });
    ui_->rasterFlaeche->installEventFilter(this);
    panelsEinbauen();
}

// The search window behind its menu entry, the quick filter and the recent
// blocks in the side bar above the Page's block list, and the management
// windows behind theirs.
void FrmBlockverwaltung::panelsEinbauen() {
    const FensterKontext k{z_, sitzung_, cache_, *aktionen_};
    auto* suche = new QAction(this);
    suche->setObjectName(QStringLiteral("mnuDatenbankSuche"));
    suche->setShortcut(QKeySequence::Find);
    ui_->mnuBlock->addAction(suche);
    connect(suche, &QAction::triggered, this, [this, k] {
        // One search window; it keeps its fields between two searches.
        auto* fenster = findChild<FrmDatenbankSuche*>(QString(), Qt::FindDirectChildrenOnly);
        if (!fenster) fenster = new FrmDatenbankSuche(k, this);
        fenster->frmDatenbankSucheBeschriften();
        fenster->show();
        fenster->raise();
        fenster->activateWindow();
    });

    auto* leiste = ui_->seitenleiste;
    const int stelle = std::max(0, leiste->indexOf(ui_->labBlockBenennung));
    auto* filter = new QWidget(ui_->labBlockBenennung->parentWidget());
    filter->setObjectName(QStringLiteral("schnellfilterFlaeche"));
    new SchnellfilterSteuerung(k, filter);
    auto* zuletzt = new QWidget(ui_->labBlockBenennung->parentWidget());
    zuletzt->setObjectName(QStringLiteral("zuletztFlaeche"));
    new ZuletztSteuerung(k, zuletzt);
    leiste->insertWidget(stelle, filter, 2);
    leiste->insertWidget(stelle + 1, zuletzt);

    verwaltung_ = new Verwaltungsfenster(k, this);
    connect(ui_->mnuZeichnungenEinlesen, &QAction::triggered, verwaltung_,
            &Verwaltungsfenster::mnuZeichnungenEinlesen_Click);
    connect(ui_->mnuZeichnungenAusgeben, &QAction::triggered, verwaltung_,
            &Verwaltungsfenster::mnuZeichnungenAusgeben_Click);
    connect(ui_->mnuOrdnerverwaltung, &QAction::triggered, verwaltung_,
            &Verwaltungsfenster::mnuOrdnerverwaltung_Click);
    connect(ui_->mnuSeitenverwaltung, &QAction::triggered, verwaltung_,
            &Verwaltungsfenster::mnuSeitenverwaltung_Click);
    connect(ui_->mnuDefMenue, &QAction::triggered, verwaltung_,
            &Verwaltungsfenster::mnuDefMenue_Click);
    connect(ui_->mnuBlockEigenschaften, &QAction::triggered, verwaltung_,
            &Verwaltungsfenster::mnuBlockEigenschaften_Click);
    connect(ui_->chkOrdnerSortieren, &QAction::toggled, verwaltung_,
            &Verwaltungsfenster::chkOrdnerSortieren_Click);

    bearbeitung_ = new BlockBearbeitung(k, v_, ui_->fraAnsichten, this);
    variantenAuswahl = [this](const typEinfuegeAuftrag& a) {
        return FrmVariantenAuswahl::waehlen(z_, a, this);
    };
    ui_->mnuBlockNeu->setShortcut(QKeySequence::New);
    ui_->mnuBlockUmbenennen->setShortcut(QKeySequence(Qt::Key_F2));
    ui_->mnuBlockLoeschen->setShortcut(QKeySequence::Delete);
    connect(ui_->combutNeu, &QPushButton::clicked, bearbeitung_,
            &BlockBearbeitung::combutNeu_Click);
    for (auto [aktion, ziel] :
         std::initializer_list<std::pair<QAction*, void (BlockBearbeitung::*)()>>{
             {ui_->mnuBlockNeu, &BlockBearbeitung::combutNeu_Click},
             {ui_->mnuAnsichtNeu, &BlockBearbeitung::mnuAnsichtNeu_Click},
             {ui_->mnuVarianteNeu, &BlockBearbeitung::mnuVarianteNeu_Click},
             {ui_->mnuBlockUmbenennen, &BlockBearbeitung::mnuBlockUmbenennen_Click},
             {ui_->mnuBlockLoeschen, &BlockBearbeitung::mnuBlockLoeschen_Click},
             {ui_->mnuVariantenverwaltung, &BlockBearbeitung::mnuVariantenverwaltung_Click},
             {ui_->mnuMarkierteVerschieben, &BlockBearbeitung::mnuMarkierteVerschieben_Click}})
        connect(aktion, &QAction::triggered, bearbeitung_, ziel);

    ui_->mnuAusschneiden->setShortcut(QKeySequence::Cut);
    ui_->mnuKopieren->setShortcut(QKeySequence::Copy);
    ui_->mnuAblageEinfuegen->setShortcut(QKeySequence::Paste);
    for (auto [aktion, umfang, ausschneiden] :
         std::initializer_list<std::tuple<QAction*, AblageUmfang, bool>>{
             {ui_->mnuAusschneiden, AblageUmfang::Block, true},
             {ui_->mnuKopieren, AblageUmfang::Block, false},
             {ui_->mnuMarkierteAusschneiden, AblageUmfang::Markierte, true},
             {ui_->mnuMarkierteKopieren, AblageUmfang::Markierte, false},
             {ui_->mnuSeiteAusschneiden, AblageUmfang::Seite, true},
             {ui_->mnuSeiteKopieren, AblageUmfang::Seite, false}})
        connect(aktion, &QAction::triggered, bearbeitung_,
                [this, umfang, ausschneiden] { bearbeitung_->ablageNehmen(umfang, ausschneiden); });
    connect(ui_->mnuAblageEinfuegen, &QAction::triggered, bearbeitung_,
            &BlockBearbeitung::mnuAblageEinfuegen_Click);
}

FrmBlockverwaltung::~FrmBlockverwaltung() {
    ereignisse_.reset();  // the host must not call into a window going away
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
        connect(s->dia, &SldBlockverwaltung::abgelegt, bearbeitung_,
                &BlockBearbeitung::platzAbgelegt);
        // A right click selects the slot and offers the clipboard's entries.
        s->dia->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(s->dia, &QWidget::customContextMenuRequested, this, [this, i](const QPoint& p) {
            sldBlockverwaltung_LButtonDown(i);
            QMenu menue;
            menue.addActions({ui_->mnuAusschneiden, ui_->mnuKopieren, ui_->mnuAblageEinfuegen});
            menue.exec(slots_[i]->dia->mapToGlobal(p));
        });
        s->markieren->setEnabled(!schreibgeschuetzt());
        s->dia->setAblageErlaubt(!schreibgeschuetzt());
        s->hide();
    }
}

// Lays the slots out in the shape of the picture-size index; the slots past
// the Page's count stay hidden.
void FrmBlockverwaltung::rasterAnordnen() {
    auto* raster = static_cast<QGridLayout*>(ui_->rasterFlaeche->layout());
    const long index = modell().longAnzahlDerBilder();
    // No library open: no slots, rather than a grid of slots that lead nowhere.
    const int anzahl = modell().seitenSlots().empty() ? 0 : fctSlotsProSeite(index);
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
    const auto& belegung = modell().seitenSlots();
    if (belegung.empty()) {
        maler_->abbrechen();
        emit seiteGemalt();
        return;
    }
    // A Block whose slide is missing shows the preview its drawing carries.
    QStringList namen, zeichnungen;
    const auto* ordner = modell().aktuellerOrdner();
    for (const auto& s : belegung) {
        namen << q(s.strBildname);
        zeichnungen << (s.booBelegt && ordner
                            ? q(platform::nativePath(
                                  modell().strBasisVerzeichnis() +
                                  fctZeichnungDatei(ordner->OrdnerNr, s.strBlockNr, 0)))
                            : QString());
    }
    if (slots_.empty()) return;
    maler_->seiteAnfordern(namen, slots_[0]->dia->size(), ui::DiaHintergrund::Dunkel, zeichnungen);
}

void FrmBlockverwaltung::neuZeichnen(typAenderung was) {
    Prozedur p(z_, "Anzeigen", true);
    if (was & kBibliothekGeaendert) {
        verzeichnisBoxFuellen();
        schreibschutzZeigen();
        was = was | kBoxenGeaendert | kSeiteGeaendert;
    }
    if (was & kBoxenGeaendert) boxenFuellen();
    if (was & kSeiteGeaendert) {
        rasterAnordnen();
        const auto& belegung = modell().seitenSlots();
        const std::string basis = modell().strBasisVerzeichnis();
        const auto* ordner = modell().aktuellerOrdner();
        for (int i = 0;
             i < static_cast<int>(belegung.size()) && i < static_cast<int>(slots_.size()); ++i) {
            const typSlot& s = belegung[i];
            SlotFeld* f = slots_[i];
            f->beschriftung->setText(q(s.strBeschriftung));
            f->beschriftung->setToolTip(
                q(s.strBlockNr + (s.booBelegt ? "  " + s.strBeschriftung : "")));
            f->markieren->setChecked(s.booMarkiert);
            f->markieren->setEnabled(s.booBelegt && !schreibgeschuetzt());
            if (s.booBelegt && ordner) {
                const std::string dwg = platform::nativePath(
                    basis + fctZeichnungDatei(ordner->OrdnerNr, s.strBlockNr, 0));
                f->dia->setZiehDaten(q(dwg), q(dwg));
            } else {
                f->dia->setZiehDaten({}, {});
            }
        }
        auto* lis = ui_->lisBlockBenennung;
        const QSignalBlocker still(lis);
        const auto eintraege = modell().lisBlockBenennungAktualisieren();
        if (lis->count() != static_cast<int>(eintraege.size())) {
            lis->clear();
            for (const auto& e : eintraege) lis->addItem(q(e));
        } else {
            for (int i = 0; i < lis->count(); ++i) lis->item(i)->setText(q(eintraege[i]));
        }
        bilderAnfordern();
    }
    if (was != kNichtsGeaendert) positionZeigen();
    if (was & (kPositionGeaendert | kSeiteGeaendert | kAnsichtenGeaendert))
        bearbeitung_->ansichtenZeigen();
}

// The parts of the window that follow the selection: frame, list row, path,
// Page number, the Page box.
void FrmBlockverwaltung::positionZeigen() {
    const auto& belegung = modell().seitenSlots();
    const int pos = modell().intPosition();
    for (int i = 0; i < static_cast<int>(belegung.size()) && i < static_cast<int>(slots_.size());
         ++i)
        slots_[i]->dia->setAusgewaehlt(i == pos);
    std::string pfad;
    const auto* ordner = modell().aktuellerOrdner();
    if (pos >= 0 && pos < static_cast<int>(belegung.size()) && belegung[pos].booBelegt && ordner)
        pfad =
            platform::nativePath(modell().strBasisVerzeichnis() +
                                 fctZeichnungDatei(ordner->OrdnerNr, belegung[pos].strBlockNr, 0));
    ui_->txtVerzeichnisBlock->setText(q(pfad));
    ui_->txtVerzeichnisBlock->setToolTip(q(pfad));
    {
        const QSignalBlocker still(ui_->lisBlockBenennung);
        ui_->lisBlockBenennung->setCurrentRow(pos);
    }
    QString format = ui::fctText(z_, QString::fromLatin1(kForm), QStringLiteral("labSeitenNr"));
    if (!format.contains(QLatin1String("%1"))) format = QStringLiteral("%1 / %2");
    // "of" counts the Pages the Folder has, not the code table's reach.
    const long seiten =
        std::max<long>(static_cast<long>(modell().arySeiten().size()), modell().intSeite() + 1);
    ui_->labSeitenNr->setText(format.arg(modell().intSeite() + 1).arg(seiten));
    int seitenIndex = -1;
    for (int i = 0; i < static_cast<int>(modell().seitenListe().size()); ++i)
        if (modell().seitenListe()[i].SeitenNr == modell().intSeite() + 1) seitenIndex = i;
    ui_->comboxSeite->setCurrentIndex(seitenIndex);
    ui_->comboxOrdner->setCurrentIndex(modell().intOrdnerIndex());
    ui_->combutZurueck->setEnabled(modell().intSeite() > 0);
    ui_->mnuSeiteZurueck->setEnabled(modell().intSeite() > 0);
    ui_->combutVor->setEnabled(modell().offen() && modell().intSeite() < modell().letzteSeite());
}

void FrmBlockverwaltung::subOrdnerUndSeitenNeuAnzeigen() {
    neuZeichnen(sitzung_.fctOrdnerUndSeitenNeuEinlesen());
}

// The boxes change only on the user's pick (activated), never while filled.
void FrmBlockverwaltung::boxenFuellen() {
    ui_->comboxOrdner->clear();
    for (const auto& o : modell().aryOrdner()) ui_->comboxOrdner->addItem(q(o.OrdnerName));
    ui_->comboxSeite->clear();
    for (const auto& s : modell().seitenListe()) ui_->comboxSeite->addItem(q(s.SeitenName));
    ui_->comboxBilderanzahl->setCurrentIndex(static_cast<int>(modell().longAnzahlDerBilder()));
}

void FrmBlockverwaltung::statusZeigen(const QString& text) {
    if (auto* l = findChild<QLabel*>(QStringLiteral("labStatus"))) l->setText(text);
}

// --- Handlers -------------------------------------------------------------

void FrmBlockverwaltung::combutVor_Click() { neuZeichnen(sitzung_.fctVor()); }

void FrmBlockverwaltung::combutZurueck_Click() { neuZeichnen(sitzung_.fctZurueck()); }

void FrmBlockverwaltung::combutZurueckAnfang_Click() { neuZeichnen(sitzung_.fctZurueckAnfang()); }

void FrmBlockverwaltung::comboxOrdner_Click(int intIndex) {
    modell().setSeiteZuerst(true);
    neuZeichnen(sitzung_.fctOrdnerWaehlen(intIndex));
}

void FrmBlockverwaltung::comboxSeite_Click(int intIndex) {
    neuZeichnen(sitzung_.fctSeiteWaehlen(intIndex));
}

void FrmBlockverwaltung::comboxBilderanzahl_Click(int intIndex) {
    neuZeichnen(sitzung_.fctBilderanzahl(intIndex));
}

void FrmBlockverwaltung::sldBlockverwaltung_LButtonDown(int intPosition) {
    neuZeichnen(sitzung_.fctPositionSetzen(intPosition));
    ui_->rasterFlaeche->setFocus();
}

void FrmBlockverwaltung::sldBlockverwaltung_DblClick(int intPosition) {
    doppelklickAusfuehren(sitzung_.fctDoppelklick(intPosition));
}

void FrmBlockverwaltung::lisBlockBenennung_DblClick(int intEintrag) {
    doppelklickAusfuehren(sitzung_.fctDoppelklick(intEintrag, true));
}

void FrmBlockverwaltung::doppelklickAusfuehren(DoppelklickAktion aktion) {
    switch (aktion) {
        case DoppelklickAktion::Einfuegen:
            cmbEinfuegen_Click();
            break;
        case DoppelklickAktion::Markieren:
            neuZeichnen(kSeiteGeaendert);
            break;
        case DoppelklickAktion::Vollbild:
            mnuVollbild_Click();
            break;
        case DoppelklickAktion::Nichts:
            break;
    }
}

void FrmBlockverwaltung::chkMarkieren_Click(int intPosition, bool booMarkiert) {
    neuZeichnen(sitzung_.fctMarkieren(intPosition, booMarkiert));
}

void FrmBlockverwaltung::mnuVollbild_Click() {
    const auto& belegung = modell().seitenSlots();
    const int pos = modell().intPosition();
    if (pos < 0 || pos >= static_cast<int>(belegung.size())) return;
    auto* f = new FrmVollbild(z_, cache_, belegung[pos].strBildname, belegung[pos].strBeschriftung,
                              "frmBockverwaltung", this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    ui::subFormularBeschriften(z_, f);
    f->show();
}

void FrmBlockverwaltung::mnuOptionen_Click() {
    typSetupWerte& setup = sitzung_.setup();
    const std::int32_t sortiertVorher = setup.lonOrdnerSortieren;
    const std::int32_t rechteVorher = setup.longRechteverwaltung;
    FrmOptionen f(z_, setup, this);
    ui::subFormularBeschriften(z_, &f);
    if (f.exec() != QDialog::Accepted) return;
    typAenderung was = kSeiteGeaendert;
    if (setup.lonOrdnerSortieren != sortiertVorher || setup.longRechteverwaltung != rechteVorher) {
        if (setup.lonOrdnerSortieren != sortiertVorher)
            subOrdnerSortierenSpeichern(z_, setup.lonOrdnerSortieren == 1);
        ordnerAnsichtSetzen();
        fctCboOrdnerNeuAnzeigen(z_, modell(), "", false);
        subOrdnerUndSeitenNeuAnzeigen();
    }
    einfuegeOptionenZeigen();
    if (setup.longAnzahlDerBilder != modell().longAnzahlDerBilder()) {
        modell().BilderAnzeigenBeiGeaenderterBilderanzahl(setup.longAnzahlDerBilder);
        was = was | kBoxenGeaendert;
    }
    neuZeichnen(was);
}

void FrmBlockverwaltung::mnuBibliothekOeffnen_Click() {
    const std::string datei =
        z_.benutzer ? z_.benutzer->dateiWaehlen(ui::fctText(z_, QString::fromLatin1(kForm),
                                                            QStringLiteral("mnuBibliothekOeffnen"))
                                                    .toStdString(),
                                                sitzung_.strDbVerzeichnis(),
                                                "Tessara-Bibliothek (dbTessara.mdb)", false)
                    : std::string();
    if (!datei.empty()) datenbankWechseln(datei);
}

void FrmBlockverwaltung::mnuBibliothekAnhaengen_Click() {
    if (!z_.benutzer) return;
    const std::string dir = z_.benutzer->ordnerWaehlen(
        ui::fctText(z_, QString::fromLatin1(kForm), QStringLiteral("mnuBibliothekAnhaengen"))
            .toStdString(),
        z_.strVerzeichnisVorgabe.empty() ? z_.strTessaraRoot : z_.strVerzeichnisVorgabe);
    if (dir.empty()) return;
    ausgabe("Bibliothek anhängen: " + dir);
    maler_->abbrechen();
    modell().setSeiteZuerst(true);
    oeffnenFehlerMelden(sitzung_.fctAnhaengen(dir, [this] { verzeichnisBoxFuellen(); }));
    neuZeichnen(kBibliothekGeaendert);
}

void FrmBlockverwaltung::mnuBibliothekAbhaengen_Click() {
    if (!z_.benutzer) return;
    const QString titel =
        ui::fctText(z_, QString::fromLatin1(kForm), QStringLiteral("mnuBibliothekAbhaengen"));
    const std::string dir = z_.benutzer->listeWaehlen(titel.toStdString(), titel.toStdString(),
                                                      sitzung_.datenbankListe());
    if (dir.empty()) return;
    ausgabe("Bibliothek abhängen: " + dir);
    maler_->abbrechen();
    modell().setSeiteZuerst(true);
    oeffnenFehlerMelden(sitzung_.fctAbhaengen(dir));
    neuZeichnen(kBibliothekGeaendert);
}

bool FrmBlockverwaltung::zumBlockSpringen(const std::string& strBlock) {
    Prozedur p(z_, "fctZumBlockSpringen", true);
    if (!modell().offen()) return false;
    p.step("fctAufOrdnerUndSeiteSpringen");
    if (strBlock.size() < 4 ||
        !modell().fctAufOrdnerUndSeiteSpringen(strBlock.substr(0, 3), strBlock)) {
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgKeinBlock), MsgboxZeile(strBlock)});
        return false;
    }
    p.step("subOrdnerUndSeitenNeuAnzeigen");
    subOrdnerUndSeitenNeuAnzeigen();
    return true;
}

void FrmBlockverwaltung::ordnerAnsichtSetzen() {
    const bool nachName = fctOrdnerAnsichtSetzen(z_, sitzung_);
    const QSignalBlocker still(ui_->chkOrdnerSortieren);
    ui_->chkOrdnerSortieren->setChecked(nachName);
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
    if (modell().seitenSlots().empty()) return false;
    RasterTaste t;
    switch (e->key()) {
        case Qt::Key_Left:
            t = RasterTaste::Links;
            break;
        case Qt::Key_Right:
            t = RasterTaste::Rechts;
            break;
        case Qt::Key_Up:
            t = RasterTaste::Hoch;
            break;
        case Qt::Key_Down:
            t = RasterTaste::Runter;
            break;
        case Qt::Key_Home:
            t = RasterTaste::Anfang;
            break;
        case Qt::Key_End:
            t = RasterTaste::Ende;
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
    sldBlockverwaltung_LButtonDown(sitzung_.fctRasterZiel(t));
    return true;
}

// --- Write protection ----------------------------------------------------------

// Every command that changes the catalogue is disabled when the library is
// write-protected.
void FrmBlockverwaltung::schreibschutzZeigen() {
    const bool gesperrt = schreibgeschuetzt();
    ui_->labSchreibschutz->setVisible(gesperrt);
    ui_->mnuMarkierungenAufheben->setEnabled(!gesperrt);
    for (auto* w : std::initializer_list<QObject*>{
             ui_->combutNeu, ui_->mnuBlockNeu, ui_->mnuAnsichtNeu, ui_->mnuVarianteNeu,
             ui_->mnuBlockUmbenennen, ui_->mnuBlockLoeschen, ui_->mnuMarkierteVerschieben,
             ui_->mnuAusschneiden, ui_->mnuMarkierteAusschneiden, ui_->mnuSeiteAusschneiden,
             ui_->mnuAblageEinfuegen})
        w->setProperty("enabled", !gesperrt);
    for (auto* s : slots_) {
        s->markieren->setEnabled(!gesperrt);
        s->dia->setAblageErlaubt(!gesperrt);
    }
}

// --- Closing -----------------------------------------------------------------

void FrmBlockverwaltung::closeEvent(QCloseEvent* e) {
    if (booEntladen_) {
        e->accept();
        return;
    }
    // Zwischenspeicher abfragen: a cut not yet pasted may keep Tessara open.
    if (booGeladen_ && !bearbeitung_->fctZwischenspeicherAbfragen()) {
        e->ignore();
        return;
    }
    if (booGeladen_ && !fctMsgbox(z_, MsgboxArt::Frage, {MsgboxZeile(kMsgTessaraBeenden)},
                                  kGruppeAllg, "TessaraBeenden")) {
        e->ignore();
        return;
    }
    entladen();
    e->accept();
}

}  // namespace tessara
