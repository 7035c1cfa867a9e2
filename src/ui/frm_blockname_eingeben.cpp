#include "ui/frm_blockname_eingeben.h"

#include <QLineEdit>
#include <QPushButton>

#include "captions/meldungen.h"
#include "ui/beschriften.h"
#include "ui_frm_blockname_eingeben.h"

namespace tessara {

FrmBlocknameEingeben::FrmBlocknameEingeben(ProgrammZustand& z, const std::string& strFormular,
                                           const std::string& strVorgabe,
                                           std::function<long(const std::string&)> pruefen,
                                           QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      pruefen_(std::move(pruefen)),
      ui_(std::make_unique<Ui::FrmBlocknameEingeben>()) {
    ui_->setupUi(this);
    // The caption files know the two windows by their own names.
    setObjectName(QString::fromStdString(strFormular));
    ui::subFormularBeschriften(z_, this);
    ui_->txtBlocknameEingeben->setText(QString::fromStdString(strVorgabe));
    ui_->txtBlocknameEingeben->selectAll();
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
}

FrmBlocknameEingeben::~FrmBlocknameEingeben() = default;

std::string FrmBlocknameEingeben::strName() const {
    return ui_->txtBlocknameEingeben->text().trimmed().toStdString();
}

void FrmBlocknameEingeben::cmbOk_Click() {
    if (const long nr = pruefen_ ? pruefen_(strName()) : 0) {
        fctMsgbox(z_, MsgboxArt::Info, {nr});
        ui_->txtBlocknameEingeben->setFocus();
        ui_->txtBlocknameEingeben->selectAll();
        return;
    }
    accept();
}

}  // namespace tessara
