#include "ui/frm_ordner_neu.h"

#include <QLineEdit>
#include <QPushButton>

#include "organisation/ordner_verwaltung.h"
#include "ui/beschriften.h"
#include "ui_frm_ordner_neu.h"

namespace tessara {

FrmOrdnerNeu::FrmOrdnerNeu(ProgrammZustand& z, NavigationsModell& m, QWidget* eltern)
    : QDialog(eltern), z_(z), m_(m), ui_(std::make_unique<Ui::FrmOrdnerNeu>()) {
    ui_->setupUi(this);
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    frmOrdnerNeuBeschriften();
}

FrmOrdnerNeu::~FrmOrdnerNeu() = default;

void FrmOrdnerNeu::frmOrdnerNeuBeschriften() { ui::subFormularBeschriften(z_, this); }

// The operation asks and refuses; a refused entry leaves the window open to
// be corrected.
void FrmOrdnerNeu::cmbOk_Click() {
    if (fctOrdnerNeu(z_, m_, ui_->txtOrdnerName->text().toStdString(), &strCode_)) {
        accept();
        return;
    }
    ui_->txtOrdnerName->setFocus();
    ui_->txtOrdnerName->selectAll();
}

}  // namespace tessara
