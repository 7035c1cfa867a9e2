#include "ui/frm_seitenverwaltung.h"

#include <QListWidget>
#include <QPushButton>

#include "organisation/seiten_verwaltung.h"
#include "ui/beschriften.h"
#include "ui/frm_seite_neu.h"
#include "ui/frm_seite_umbenennen.h"
#include "ui_frm_seitenverwaltung.h"

namespace tessara {

FrmSeitenverwaltung::FrmSeitenverwaltung(ProgrammZustand& z, NavigationsModell& m,
                                         bool booSchreibschutz, std::function<void()> nachAenderung,
                                         QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      booSchreibschutz_(booSchreibschutz),
      nachAenderung_(std::move(nachAenderung)),
      ui_(std::make_unique<Ui::FrmSeitenverwaltung>()) {
    ui_->setupUi(this);
    connect(ui_->cmbNeu, &QPushButton::clicked, this, [this] { cmbNeu_Click(); });
    connect(ui_->cmbUmbenennen, &QPushButton::clicked, this, [this] { cmbUmbenennen_Click(); });
    connect(ui_->cmbLoeschen, &QPushButton::clicked, this, [this] { cmbLoeschen_Click(); });
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->lisSeiten, &QListWidget::currentRowChanged, this, [this] { knoepfeSetzen(); });
    connect(ui_->lisSeiten, &QListWidget::itemDoubleClicked, this, [this] { cmbOk_Click(); });
    frmSeitenverwaltungBeschriften();
    Anzeigen();
}

FrmSeitenverwaltung::~FrmSeitenverwaltung() = default;

void FrmSeitenverwaltung::frmSeitenverwaltungBeschriften() { ui::subFormularBeschriften(z_, this); }

void FrmSeitenverwaltung::Anzeigen(long lngSeitenNr) {
    auto* lis = ui_->lisSeiten;
    const QSignalBlocker still(lis);
    lis->clear();
    const auto liste = fctSeitenAnzeigen(z_, m_);
    int auswahl = liste.intAuswahl;
    for (std::size_t i = 0; i < liste.zeilen.size(); ++i) {
        auto* e = new QListWidgetItem(QString::fromStdString(liste.zeilen[i]), lis);
        e->setData(Qt::UserRole, static_cast<qlonglong>(liste.nummern[i]));
        if (liste.nummern[i] == lngSeitenNr) auswahl = static_cast<int>(i);
    }
    if (auswahl >= 0) lis->setCurrentRow(auswahl);
    knoepfeSetzen();
}

long FrmSeitenverwaltung::lngAuswahl() const {
    const auto* e = ui_->lisSeiten->currentItem();
    return e ? static_cast<long>(e->data(Qt::UserRole).toLongLong()) : 0;
}

void FrmSeitenverwaltung::knoepfeSetzen() {
    const bool aendern = !booSchreibschutz_ && m_.aktuellerOrdner();
    const bool gewaehlt = ui_->lisSeiten->currentRow() >= 0;
    ui_->cmbNeu->setEnabled(aendern);
    ui_->cmbUmbenennen->setEnabled(aendern && gewaehlt);
    ui_->cmbLoeschen->setEnabled(aendern && gewaehlt);
}

void FrmSeitenverwaltung::geaendert(long lngSeitenNr) {
    Anzeigen(lngSeitenNr);
    if (nachAenderung_) nachAenderung_();
}

void FrmSeitenverwaltung::cmbNeu_Click() {
    auto* f = new FrmSeiteNeu(z_, m_, this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    connect(f, &QDialog::accepted, this, [this, f] { geaendert(f->lngSeitenNr()); });
    f->open();
}

void FrmSeitenverwaltung::cmbUmbenennen_Click() {
    const long nr = lngAuswahl();
    if (nr == 0) return;
    std::string name;
    for (const auto& s : m_.seitenListe())
        if (s.SeitenNr == nr) name = s.SeitenName;
    auto* f = new FrmSeiteUmbenennen(z_, m_, nr, name, this);
    f->setAttribute(Qt::WA_DeleteOnClose);
    connect(f, &QDialog::accepted, this, [this, nr] { geaendert(nr); });
    f->open();
}

void FrmSeitenverwaltung::cmbLoeschen_Click() {
    const long nr = lngAuswahl();
    if (nr == 0) return;
    // Declined or not: the list shows what the Folder holds now.
    fctSeiteLoeschen(z_, m_, nr);
    geaendert(0);
}

// OK makes the selected Page current when it is not.
void FrmSeitenverwaltung::cmbOk_Click() {
    const long nr = lngAuswahl();
    if (nr > 0 && nr != m_.intSeite() + 1 && m_.GeheZuSeite(nr - 1) && nachAenderung_)
        nachAenderung_();
    accept();
}

}  // namespace tessara
