#include "ui/frm_ordnerverwaltung.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

#include "organisation/ordner_rechte.h"
#include "organisation/ordner_verwaltung.h"
#include "ui/beschriften.h"
#include "ui/frm_ordner_austausch.h"
#include "ui/frm_ordner_neu.h"
#include "ui/frm_ordner_umbenennen.h"
#include "ui_frm_ordnerverwaltung.h"

namespace tessara {

FrmOrdnerverwaltung::FrmOrdnerverwaltung(ProgrammZustand& z, NavigationsModell& m,
                                         bool booSchreibschutz, std::function<void()> nachAenderung,
                                         QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      booSchreibschutz_(booSchreibschutz),
      nachAenderung_(std::move(nachAenderung)),
      ui_(std::make_unique<Ui::FrmOrdnerverwaltung>()) {
    ui_->setupUi(this);
    connect(ui_->cmdOrdnerExport, &QPushButton::clicked, this, [this] { cmdOrdnerExport_Click(); });
    connect(ui_->cmdOrdnerImport, &QPushButton::clicked, this, [this] { cmdOrdnerImport_Click(); });
    connect(ui_->cmbNeu, &QPushButton::clicked, this, [this] { cmbNeu_Click(); });
    connect(ui_->cmbUmbenennen, &QPushButton::clicked, this, [this] { cmbUmbenennen_Click(); });
    connect(ui_->cmbLoeschen, &QPushButton::clicked, this, [this] { cmbLoeschen_Click(); });
    connect(ui_->imgAufAb_0, &QToolButton::clicked, this, [this] { imgAufAb_Click(0); });
    connect(ui_->imgAufAb_1, &QToolButton::clicked, this, [this] { imgAufAb_Click(1); });
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->dlisOrdner, &QListWidget::currentRowChanged, this, [this] { knoepfeSetzen(); });
    connect(ui_->cmdRechteSpeichern, &QPushButton::clicked, this,
            [this] { cmdRechteSpeichern_Click(); });
    connect(ui_->dlisOrdner, &QListWidget::itemDoubleClicked, this, [this] { cmbOk_Click(); });
    frmOrdnerverwaltungBeschriften();
    // The list shows the Folders in the order the sort setting gives.
    fctOrdnerReihenfolgeLesen(z_, m_, fctOrdnerSortierenLesen(z_));
    Anzeigen(m_.aktuellerOrdner() ? m_.aktuellerOrdner()->Nr : 0);
}

FrmOrdnerverwaltung::~FrmOrdnerverwaltung() = default;

void FrmOrdnerverwaltung::frmOrdnerverwaltungBeschriften() { ui::subFormularBeschriften(z_, this); }

void FrmOrdnerverwaltung::Anzeigen(long lngNr) {
    auto* lis = ui_->dlisOrdner;
    const QSignalBlocker still(lis);
    lis->clear();
    int auswahl = 0;
    rechte_.clear();
    for (const auto& o : fctOrdnerZeilen(z_, m_)) {
        if (booRechteverwaltung_ && !fctOrdnerErlaubt(o.OrdnerRechte, strAnmeldeName_)) continue;
        rechte_[o.Nr] = o.OrdnerRechte;
        auto* eintrag = new QListWidgetItem(QString::fromStdString(o.OrdnerName), lis);
        eintrag->setData(Qt::UserRole, static_cast<qlonglong>(o.Nr));
        eintrag->setToolTip(QString::fromStdString(o.OrdnerNr));
        if (o.Nr == lngNr) auswahl = lis->count() - 1;
    }
    if (lis->count() > 0) lis->setCurrentRow(auswahl);
    knoepfeSetzen();
}

long FrmOrdnerverwaltung::lngAuswahl() const {
    const auto* e = ui_->dlisOrdner->currentItem();
    return e ? static_cast<long>(e->data(Qt::UserRole).toLongLong()) : 0;
}

void FrmOrdnerverwaltung::knoepfeSetzen() {
    const bool aendern = !booSchreibschutz_;
    const bool gewaehlt = ui_->dlisOrdner->currentRow() >= 0;
    ui_->cmbNeu->setEnabled(aendern);
    ui_->cmbUmbenennen->setEnabled(aendern && gewaehlt);
    ui_->cmbLoeschen->setEnabled(aendern && gewaehlt);
    ui_->imgAufAb_0->setEnabled(aendern && gewaehlt);
    ui_->imgAufAb_1->setEnabled(aendern && gewaehlt);
    ui_->cmbOk->setEnabled(gewaehlt);
    ui_->cmdOrdnerExport->setEnabled(gewaehlt);
    ui_->cmdOrdnerImport->setEnabled(aendern);
    const auto r = rechte_.find(lngAuswahl());
    ui_->txtOrdnerRechte->setText(
        QString::fromStdString(r == rechte_.end() || r->second.empty() ? kRechteAlle : r->second));
    ui_->txtOrdnerRechte->setReadOnly(!(aendern && gewaehlt));
    ui_->cmdRechteSpeichern->setEnabled(aendern && gewaehlt);
}

void FrmOrdnerverwaltung::setRechte(bool booRechteverwaltung, std::string strAnmeldeName) {
    booRechteverwaltung_ = booRechteverwaltung;
    strAnmeldeName_ = std::move(strAnmeldeName);
    Anzeigen(lngAuswahl());
}

void FrmOrdnerverwaltung::cmdRechteSpeichern_Click() {
    const long nr = lngAuswahl();
    if (nr == 0) return;
    if (fctOrdnerRechteSpeichern(z_, m_, nr, ui_->txtOrdnerRechte->text().toStdString(),
                                 strAnmeldeName_))
        geaendert(nr);
}

void FrmOrdnerverwaltung::geaendert(long lngNr) {
    Anzeigen(lngNr);
    if (nachAenderung_) nachAenderung_();
}

// The entry windows stay open until their operation took the entry, so the
// list is redrawn when one of them is accepted.
void FrmOrdnerverwaltung::cmbNeu_Click() {
    auto* f = new FrmOrdnerNeu(z_, m_, this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    connect(f, &QDialog::accepted, this, [this, f] {
        long nr = 0;
        for (const auto& o : fctOrdnerZeilen(z_, m_))
            if (o.OrdnerNr == f->strCode()) nr = o.Nr;
        geaendert(nr);
    });
    f->open();
}

void FrmOrdnerverwaltung::cmdOrdnerExport_Click() {
    auto* f = new FrmOrdnerExport(z_, m_, lngAuswahl(), this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    f->open();
}

// The import makes the new Folder current; the list shows it selected.
void FrmOrdnerverwaltung::cmdOrdnerImport_Click() {
    auto* f = new FrmOrdnerImport(z_, m_, this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    connect(f, &QDialog::accepted, this,
            [this] { geaendert(m_.aktuellerOrdner() ? m_.aktuellerOrdner()->Nr : 0); });
    f->open();
}

void FrmOrdnerverwaltung::cmbUmbenennen_Click() {
    const auto* e = ui_->dlisOrdner->currentItem();
    if (!e) return;
    const long nr = lngAuswahl();
    auto* f = new FrmOrdnerUmbenennen(z_, m_, e->text().toStdString(), this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    connect(f, &QDialog::accepted, this, [this, nr] { geaendert(nr); });
    f->open();
}

void FrmOrdnerverwaltung::cmbLoeschen_Click() {
    const long nr = lngAuswahl();
    if (nr == 0) return;
    const int zeile = ui_->dlisOrdner->currentRow();
    if (!fctOrdnerLoeschen(z_, m_, nr)) return;
    // The row that took the deleted Folder's place stays selected.
    const auto zeilen = fctOrdnerZeilen(z_, m_);
    const long naechster =
        zeilen.empty() ? 0 : zeilen[std::min<std::size_t>(zeile, zeilen.size() - 1)].Nr;
    geaendert(naechster);
}

void FrmOrdnerverwaltung::imgAufAb_Click(int intIndex) {
    const long nr = lngAuswahl();
    const int zeile = ui_->dlisOrdner->currentRow();
    if (nr == 0 || !fctOrdnerVerschieben(z_, m_, zeile, intIndex)) return;
    geaendert(nr);
}

// OK makes the selected Folder the main window's current one.
void FrmOrdnerverwaltung::cmbOk_Click() {
    const auto* e = ui_->dlisOrdner->currentItem();
    if (!e) return;
    const auto* aktuell = m_.aktuellerOrdner();
    if (!aktuell || aktuell->Nr != lngAuswahl()) {
        fctCboOrdnerNeuAnzeigen(z_, m_, e->text().toStdString(), true);
        if (nachAenderung_) nachAenderung_();
    }
    accept();
}

}  // namespace tessara
