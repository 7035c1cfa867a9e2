#include "ui/frm_seite_neu.h"

#include <QLineEdit>
#include <QPushButton>
#include <algorithm>

#include "organisation/seiten_verwaltung.h"
#include "ui/beschriften.h"
#include "ui_frm_seite_neu.h"

namespace tessara {

FrmSeiteNeu::FrmSeiteNeu(ProgrammZustand& z, NavigationsModell& m, QWidget* eltern)
    : QDialog(eltern), z_(z), m_(m), ui_(std::make_unique<Ui::FrmSeiteNeu>()) {
    ui_->setupUi(this);
    long hoechste = 0;
    for (const auto& s : m_.seitenListe()) hoechste = std::max(hoechste, s.SeitenNr);
    ui_->txtSeitenNr->setText(QString::number(hoechste + 1));
    ui_->txtSeitenname->setFocus();
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    frmSeiteNeuBeschriften();
}

FrmSeiteNeu::~FrmSeiteNeu() = default;

void FrmSeiteNeu::frmSeiteNeuBeschriften() { ui::subFormularBeschriften(z_, this); }

// The operation asks and refuses; a refused entry leaves the window open to
// be corrected.
void FrmSeiteNeu::cmbOk_Click() {
    const std::string nr = ui_->txtSeitenNr->text().toStdString();
    if (fctSeiteNeu(z_, m_, nr, ui_->txtSeitenname->text().toStdString())) {
        lngSeitenNr_ = std::stol(nr);
        accept();
    }
}

}  // namespace tessara
