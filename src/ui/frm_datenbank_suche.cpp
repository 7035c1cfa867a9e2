#include "ui/frm_datenbank_suche.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "library/bibliothek_sitzung.h"
#include "search/such_kriterien_datei.h"
#include "startup/einstellungen.h"
#include "startup/fehler_log.h"
#include "ui/beschriften.h"
#include "ui/frm_suchergebnis.h"
#include "ui_frm_datenbank_suche.h"

namespace tessara {

namespace {

constexpr const char* kDirektEinfuegen = "DirektEinfuegen";

}  // namespace

FrmDatenbankSuche::FrmDatenbankSuche(FensterKontext k, QWidget* eltern)
    : QDialog(eltern), k_(k), ui_(std::make_unique<Ui::frmDatenbankSuche>()) {
    ui_->setupUi(this);
    for (int i = 0; i < kSuchOperatoren; ++i) {
        for (const auto& o : fctSuchOperatoren()) op(i)->addItem(QString::fromStdString(o));
        op(i)->setCurrentIndex(-1);
    }
    for (int i = 0; i < kSuchFelder; ++i) lab(i)->setBuddy(txt(i));
    ProgrammZustand& z = k_.z;
    ui_->checkDirektEinfuegen->setChecked(
        fctBoolWert(IniGetValue(z, z.strIniDatei, kAllgemeineDaten, kDirektEinfuegen)));
    connect(ui_->cmbSuchen, &QPushButton::clicked, this, [this] { cmbSuchen_Click(); });
    connect(ui_->cmbLeeren, &QPushButton::clicked, this, [this] { cmbLeeren_Click(); });
    connect(ui_->cmbLaden, &QPushButton::clicked, this, [this] { cmbLaden_Click(); });
    connect(ui_->combutDatei, &QPushButton::clicked, this, [this] { combutDatei_Click(); });
    connect(ui_->cmbSchliessen, &QPushButton::clicked, this, [this] { close(); });
}

FrmDatenbankSuche::~FrmDatenbankSuche() = default;

QLineEdit* FrmDatenbankSuche::txt(int i) const {
    return findChild<QLineEdit*>(QStringLiteral("txtBenennung_%1").arg(i));
}
QComboBox* FrmDatenbankSuche::op(int i) const {
    return findChild<QComboBox*>(QStringLiteral("comboxSuchkriterienVerknuepfen_%1").arg(i));
}
QLabel* FrmDatenbankSuche::lab(int i) const {
    return findChild<QLabel*>(QStringLiteral("labBenennung_%1").arg(i));
}

void FrmDatenbankSuche::frmDatenbankSucheBeschriften() {
    ProgrammZustand& z = k_.z;
    ui::subFormularBeschriften(z, this);
    const auto* o = k_.sitzung.modell().aktuellerOrdner();
    if (!o || !k_.sitzung.modell().offen()) return;
    const auto b = fctSuchBeschriftungen(z, k_.sitzung.modell().datenbank().con, o->OrdnerNr);
    for (int i = 0; i < 10; ++i)
        if (!b[i].empty()) lab(i)->setText(QString::fromStdString(b[i]));
}

typSuchKriterien FrmDatenbankSuche::kriterien() const {
    typSuchKriterien k;
    for (int i = 0; i < kSuchFelder; ++i) k.txtBenennung[i] = txt(i)->text().toStdString();
    for (int i = 0; i < kSuchOperatoren; ++i)
        k.comboxSuchkriterienVerknuepfen[i] = op(i)->currentText().toStdString();
    k.checkAktuellerOrdner = ui_->checkAktuellerOrdner->isChecked();
    k.checkGanzeWoerter = ui_->checkGanzeWoerter->isChecked();
    k.chkAnsichtenVarianten = ui_->chkAnsichtenVarianten->isChecked();
    k.checkDirektEinfuegen = ui_->checkDirektEinfuegen->isChecked();
    return k;
}

void FrmDatenbankSuche::setKriterien(const typSuchKriterien& k) {
    for (int i = 0; i < kSuchFelder; ++i)
        txt(i)->setText(QString::fromStdString(k.txtBenennung[i]));
    for (int i = 0; i < kSuchOperatoren; ++i)
        op(i)->setCurrentIndex(
            op(i)->findText(QString::fromStdString(k.comboxSuchkriterienVerknuepfen[i])));
    ui_->checkAktuellerOrdner->setChecked(k.checkAktuellerOrdner);
    ui_->checkGanzeWoerter->setChecked(k.checkGanzeWoerter);
    ui_->chkAnsichtenVarianten->setChecked(k.chkAnsichtenVarianten);
    ui_->checkDirektEinfuegen->setChecked(k.checkDirektEinfuegen);
}

void FrmDatenbankSuche::cmbLeeren_Click() {
    for (int i = 0; i < kSuchOperatoren; ++i) {
        txt(i)->clear();
        op(i)->setCurrentIndex(-1);
    }
}

void FrmDatenbankSuche::cmbLaden_Click() {
    ProgrammZustand& z = k_.z;
    if (!z.benutzer) return;
    typSuchKriterien k = kriterien();
    if (fctKriterienLaden(z, *z.benutzer, k)) setKriterien(k);
}

void FrmDatenbankSuche::combutDatei_Click() {
    ProgrammZustand& z = k_.z;
    if (!z.benutzer) return;
    fctKriterienSpeichern(z, *z.benutzer, kriterien());
}

void FrmDatenbankSuche::cmbSuchen_Click() {
    ProgrammZustand& z = k_.z;
    auto& m = k_.sitzung.modell();
    if (!m.offen()) return;
    const auto* o = m.aktuellerOrdner();
    const typSuchAusgang a =
        fctDatenbankSuchen(z, m.datenbank().con, kriterien(), z.strTblBlockInfo, o ? o->Nr : 0);
    if (a.ergebnis == SuchErgebnis::Einfuegen) {
        k_.aktionen.blockEinfuegen(a.treffer.front().Block);
    } else if (a.ergebnis == SuchErgebnis::Anzeigen) {
        if (ergebnis_) ergebnis_->close();
        ergebnis_ = new FrmSuchergebnis(k_, a.treffer, parentWidget());
        ergebnis_->setAttribute(Qt::WA_DeleteOnClose);
        ergebnis_->show();
    }
    emit sucheBeendet(a.ergebnis);
}

}  // namespace tessara
