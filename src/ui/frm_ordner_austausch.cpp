#include "ui/frm_ordner_austausch.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "exchange/ordner_austausch.h"
#include "organisation/ordner_verwaltung.h"
#include "startup/benutzer.h"
#include "ui/beschriften.h"
#include "ui_frm_ordner_export.h"
#include "ui_frm_ordner_import.h"

namespace tessara {

namespace {

constexpr const char* kFilter = "Access-Db (*.mdb)|*.mdb";

// The file dialog of both windows; a name typed without extension gets ".mdb".
void dateiWaehlen(ProgrammZustand& z, QDialog* fenster, QLineEdit* txtPfad, bool speichern) {
    if (!z.benutzer) return;
    std::string d = z.benutzer->dateiWaehlen(fenster->windowTitle().toStdString(),
                                             txtPfad->text().toStdString(), kFilter, speichern);
    if (d.empty()) return;
    QString pfad = QDir::toNativeSeparators(QString::fromStdString(d));
    if (QFileInfo(pfad).suffix().isEmpty()) pfad += QStringLiteral(".mdb");
    txtPfad->setText(pfad);
}

std::string pfadVon(const QLineEdit* txtPfad) {
    QString p = txtPfad->text().trimmed();
    if (!p.isEmpty() && QFileInfo(p).suffix().isEmpty()) p += QStringLiteral(".mdb");
    return QDir::toNativeSeparators(p).toStdString();
}

}  // namespace

FrmOrdnerExport::FrmOrdnerExport(ProgrammZustand& z, NavigationsModell& m, long lngNr,
                                 QWidget* eltern)
    : QDialog(eltern), z_(z), m_(m), ui_(std::make_unique<Ui::FrmOrdnerExport>()) {
    ui_->setupUi(this);
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->cmdPfad, &QPushButton::clicked, this,
            [this] { dateiWaehlen(z_, this, ui_->txtPfad, true); });
    ui::subFormularBeschriften(z_, this);
    for (const auto& o : fctOrdnerZeilen(z_, m_)) {
        auto* e = new QListWidgetItem(QString::fromStdString(o.OrdnerName), ui_->lisOrdner);
        e->setData(Qt::UserRole, QString::fromStdString(o.OrdnerNr));
        if (o.Nr == lngNr) ui_->lisOrdner->setCurrentItem(e);
    }
    if (!ui_->lisOrdner->currentItem() && ui_->lisOrdner->count() > 0)
        ui_->lisOrdner->setCurrentRow(0);
}

FrmOrdnerExport::~FrmOrdnerExport() = default;

void FrmOrdnerExport::cmbOk_Click() {
    const auto* e = ui_->lisOrdner->currentItem();
    const std::string datei = pfadVon(ui_->txtPfad);
    if (!e) return;
    if (datei.empty()) {
        dateiWaehlen(z_, this, ui_->txtPfad, true);
        return;
    }
    if (fctOrdnerExportieren(z_, m_, e->data(Qt::UserRole).toString().toStdString(), datei))
        accept();
}

FrmOrdnerImport::FrmOrdnerImport(ProgrammZustand& z, NavigationsModell& m, QWidget* eltern)
    : QDialog(eltern), z_(z), m_(m), ui_(std::make_unique<Ui::FrmOrdnerImport>()) {
    ui_->setupUi(this);
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    connect(ui_->cmdPfad, &QPushButton::clicked, this, [this] {
        dateiWaehlen(z_, this, ui_->txtPfad, false);
        // The file's name is the natural name of the new Folder.
        if (ui_->txtOrdnerName->text().isEmpty())
            ui_->txtOrdnerName->setText(QFileInfo(ui_->txtPfad->text()).completeBaseName());
    });
    ui::subFormularBeschriften(z_, this);
}

FrmOrdnerImport::~FrmOrdnerImport() = default;

std::string FrmOrdnerImport::strName() const {
    return ui_->txtOrdnerName->text().trimmed().toStdString();
}

void FrmOrdnerImport::cmbOk_Click() {
    if (fctOrdnerImportieren(z_, m_, pfadVon(ui_->txtPfad),
                             ui_->txtOrdnerName->text().toStdString()))
        accept();
}

}  // namespace tessara
