#include "ui/frm_variantenverwaltung.h"

#include <QListWidget>
#include <QPushButton>
#include <algorithm>

#include "editing/block_loeschen.h"
#include "editing/block_name.h"
#include "editing/varianten.h"
#include "startup/benutzer.h"
#include "ui/beschriften.h"
#include "ui/frm_varianten_auswahl.h"
#include "ui_frm_variantenverwaltung.h"

namespace tessara {

FrmVariantenverwaltung::FrmVariantenverwaltung(ProgrammZustand& z, NavigationsModell& m,
                                               const std::string& strBlockNr, bool booSchreibschutz,
                                               std::function<void()> nachAenderung, QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      strBlockNr_(strBlockNr),
      booSchreibschutz_(booSchreibschutz),
      nachAenderung_(std::move(nachAenderung)),
      ui_(std::make_unique<Ui::FrmVariantenverwaltung>()) {
    ui_->setupUi(this);
    ui::subFormularBeschriften(z_, this);
    resize(FrmVariantenAuswahl::fctBreite(z_), sizeHint().height());
    connect(ui_->cmbUmbenennen, &QPushButton::clicked, this, [this] { cmbUmbenennen_Click(); });
    connect(ui_->cmbLoeschen, &QPushButton::clicked, this, [this] { cmbLoeschen_Click(); });
    connect(ui_->cmbSchliessen, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->lisVarianten, &QListWidget::currentRowChanged, this, [this](int zeile) {
        ui_->cmbUmbenennen->setEnabled(!booSchreibschutz_ && zeile >= 0);
        ui_->cmbLoeschen->setEnabled(!booSchreibschutz_ && zeile >= 0);
    });
    lisVariantenFuellen();
}

FrmVariantenverwaltung::~FrmVariantenverwaltung() = default;

void FrmVariantenverwaltung::lisVariantenFuellen() {
    const int zeile = ui_->lisVarianten->currentRow();
    varianten_ = fctVariantenLesen(z_, m_, strBlockNr_);
    ui_->lisVarianten->clear();
    for (const auto& v : varianten_)
        ui_->lisVarianten->addItem(QString::fromStdString(v.BlockName));
    ui_->lisVarianten->setCurrentRow(std::min(std::max(zeile, 0), ui_->lisVarianten->count() - 1));
    ui_->cmbUmbenennen->setEnabled(!booSchreibschutz_ && !varianten_.empty());
    ui_->cmbLoeschen->setEnabled(!booSchreibschutz_ && !varianten_.empty());
}

const typVariante* FrmVariantenverwaltung::gewaehlt() const {
    const int zeile = ui_->lisVarianten->currentRow();
    return zeile >= 0 && zeile < static_cast<int>(varianten_.size())
               ? &varianten_[static_cast<std::size_t>(zeile)]
               : nullptr;
}

void FrmVariantenverwaltung::cmbUmbenennen_Click() {
    const typVariante* v = gewaehlt();
    if (!v || booSchreibschutz_ || !z_.benutzer) return;
    const std::string alt = v->BlockName;
    const auto neu = z_.benutzer->nameEingeben(
        "frmBlocknameAendern", alt, [this, &alt](const std::string& name) -> long {
            // Keeping the name as it is is no rename, and no clash with itself.
            return name == alt ? 0 : fctBlocknamePruefen(z_, m_.datenbank().con, name, true);
        });
    if (!neu || *neu == alt) return;
    if (fctVarianteUmbenennen(z_, m_, strBlockNr_, v->BlockDateiName, *neu)) geaendert();
}

void FrmVariantenverwaltung::cmbLoeschen_Click() {
    const typVariante* v = gewaehlt();
    if (!v || booSchreibschutz_) return;
    if (fctVarianteLoeschen(z_, m_, strBlockNr_, v->BlockDateiName)) geaendert();
}

void FrmVariantenverwaltung::geaendert() {
    lisVariantenFuellen();
    if (nachAenderung_) nachAenderung_();
}

}  // namespace tessara
