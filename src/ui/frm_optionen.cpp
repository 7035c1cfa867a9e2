#include "ui/frm_optionen.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <exception>
#include <variant>

#include "startup/fehler_log.h"
#include "ui_frm_optionen.h"

namespace tessara {

namespace {

using ZahlFeld = std::int32_t typSetupWerte::*;
using TextFeld = std::string typSetupWerte::*;

}  // namespace

FrmOptionen::FrmOptionen(ProgrammZustand& z, typSetupWerte& werte, QWidget* eltern)
    : QDialog(eltern), z_(z), werte_(werte), ui_(std::make_unique<Ui::FrmOptionen>()) {
    ui_->setupUi(this);
    // Scales go to the host's command line as typed: a signed decimal; a
    // comma is accepted because German keyboards offer it and is turned into
    // the host's point when the values are taken over.
    const QRegularExpression zahl(QStringLiteral("[+-]?[0-9]{0,9}([.,][0-9]{0,9})?"));
    for (QLineEdit* e : {ui_->strMassstabX, ui_->strMassstabY, ui_->strMassstabZ})
        e->setValidator(new QRegularExpressionValidator(zahl, e));
    connect(ui_->cmbOk, &QPushButton::clicked, this, &FrmOptionen::cmbOk_Click);
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);

    typSetupWerte gezeigt = werte_;
    fctSetupWerteKorrigieren(gezeigt);
    anzeigen(gezeigt);
}

FrmOptionen::~FrmOptionen() = default;

void FrmOptionen::anzeigen(const typSetupWerte& w) {
    for (const auto& e : fctSetupEintraege()) {
        const QString name = QString::fromLatin1(e.name);
        if (const auto* zahl = std::get_if<ZahlFeld>(&e.feld)) {
            if (auto* c = findChild<QCheckBox*>(name))
                c->setChecked(w.**zahl == 1);
            else if (auto* cb = findChild<QComboBox*>(name))
                cb->setCurrentIndex(w.**zahl);
        } else if (auto* t = findChild<QLineEdit*>(name)) {
            t->setText(QString::fromStdString(w.*std::get<TextFeld>(e.feld)));
        }
    }
}

void FrmOptionen::einsammeln(typSetupWerte& w) const {
    for (const auto& e : fctSetupEintraege()) {
        const QString name = QString::fromLatin1(e.name);
        if (const auto* zahl = std::get_if<ZahlFeld>(&e.feld)) {
            if (auto* c = findChild<QCheckBox*>(name))
                w.** zahl = c->isChecked() ? 1 : 0;
            else if (auto* cb = findChild<QComboBox*>(name))
                w.** zahl = cb->currentIndex();
        } else if (auto* t = findChild<QLineEdit*>(name)) {
            w.*std::get<TextFeld>(e.feld) = t->text().toStdString();
        }
    }
}

void FrmOptionen::cmbOk_Click() {
    Prozedur p(z_, "cmbOk_Click", true);
    p.geschuetzt([&] {
        p.step("Werte übernehmen");
        // Values this window does not show are mended too, so that what is
        // saved can be shown again; an unfinished scale ("-", "") becomes 1.
        typSetupWerte neu = werte_;
        einsammeln(neu);
        fctSetupWerteKorrigieren(neu);
        werte_ = neu;
        p.step("Werte speichern");
        SetupInRegistrierdatenbankSpeichern(z_, werte_);
    });
    accept();
}

}  // namespace tessara
