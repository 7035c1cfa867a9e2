#include "ui/frm_ordner_umbenennen.h"

#include <QLineEdit>
#include <QPushButton>

#include "organisation/ordner_verwaltung.h"
#include "ui/beschriften.h"
#include "ui_frm_ordner_umbenennen.h"

namespace tessara {

FrmOrdnerUmbenennen::FrmOrdnerUmbenennen(ProgrammZustand& z, NavigationsModell& m,
                                         std::string strAlt, QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      strAlt_(std::move(strAlt)),
      ui_(std::make_unique<Ui::FrmOrdnerUmbenennen>()) {
    ui_->setupUi(this);
    ui_->txtOrdnerName->setText(QString::fromStdString(strAlt_));
    ui_->txtOrdnerName->selectAll();
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    frmOrdnerUmbenennenBeschriften();
}

FrmOrdnerUmbenennen::~FrmOrdnerUmbenennen() = default;

void FrmOrdnerUmbenennen::frmOrdnerUmbenennenBeschriften() { ui::subFormularBeschriften(z_, this); }

// The operation asks and refuses; a refused entry leaves the window open to
// be corrected.
void FrmOrdnerUmbenennen::cmbOk_Click() {
    if (fctOrdnerUmbenennen(z_, m_, strAlt_, ui_->txtOrdnerName->text().toStdString())) {
        accept();
        return;
    }
    ui_->txtOrdnerName->setFocus();
    ui_->txtOrdnerName->selectAll();
}

}  // namespace tessara
