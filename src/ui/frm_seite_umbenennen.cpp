#include "ui/frm_seite_umbenennen.h"

#include <QLineEdit>
#include <QPushButton>

#include "organisation/seiten_verwaltung.h"
#include "ui/beschriften.h"
#include "ui_frm_seite_umbenennen.h"

namespace tessara {

FrmSeiteUmbenennen::FrmSeiteUmbenennen(ProgrammZustand& z, NavigationsModell& m, long lngSeitenNr,
                                       const std::string& strAlt, QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      lngSeitenNr_(lngSeitenNr),
      ui_(std::make_unique<Ui::FrmSeiteUmbenennen>()) {
    ui_->setupUi(this);
    ui_->txtSeitenname->setText(QString::fromStdString(strAlt));
    ui_->txtSeitenname->selectAll();
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    frmSeiteUmbenennenBeschriften();
}

FrmSeiteUmbenennen::~FrmSeiteUmbenennen() = default;

void FrmSeiteUmbenennen::frmSeiteUmbenennenBeschriften() { ui::subFormularBeschriften(z_, this); }

// The operation asks and refuses; a refused entry leaves the window open to
// be corrected.
void FrmSeiteUmbenennen::cmbOk_Click() {
    if (fctSeiteUmbenennen(z_, m_, lngSeitenNr_, ui_->txtSeitenname->text().toStdString())) {
        accept();
        return;
    }
    ui_->txtSeitenname->setFocus();
    ui_->txtSeitenname->selectAll();
}

}  // namespace tessara
