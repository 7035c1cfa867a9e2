#include "ui/frm_varianten_auswahl.h"

#include <QListWidget>
#include <QPushButton>
#include <algorithm>

#include "startup/einstellungen.h"
#include "ui/beschriften.h"
#include "ui_frm_varianten_auswahl.h"

namespace tessara {

namespace {
constexpr int kBreiteVorgabe = 360;
}

int FrmVariantenAuswahl::fctBreite(ProgrammZustand& z) {
    const long breite = fctIniLongLesen(z, z.strIniDatei, kAllgemeineDaten, "sWidthFrmVaria");
    // A width no screen shows whole is a typing error, not a wish.
    return breite >= 200 && breite <= 3000 ? static_cast<int>(breite) : kBreiteVorgabe;
}

FrmVariantenAuswahl::FrmVariantenAuswahl(ProgrammZustand& z, const typEinfuegeAuftrag& auftrag,
                                         QWidget* eltern)
    : QDialog(eltern), z_(z), ui_(std::make_unique<Ui::FrmVariantenAuswahl>()) {
    ui_->setupUi(this);
    ui::subFormularBeschriften(z_, this);
    const std::string& name =
        auftrag.block.BlkName[static_cast<std::size_t>(std::clamp(auftrag.ansicht, 0, 4))];
    ui_->lisVarianten->addItem(QString::fromStdString(name.empty() ? auftrag.block.Block : name));
    // The Block itself stands apart from its Variants.
    QFont fett = ui_->lisVarianten->font();
    fett.setBold(true);
    ui_->lisVarianten->item(0)->setFont(fett);
    for (const auto& v : auftrag.varianten)
        ui_->lisVarianten->addItem(QString::fromStdString(v.BlockName));
    ui_->lisVarianten->setCurrentRow(0);
    resize(fctBreite(z_), sizeHint().height());
    connect(ui_->lisVarianten, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(ui_->cmbOk, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
}

FrmVariantenAuswahl::~FrmVariantenAuswahl() = default;

std::optional<typVariante> FrmVariantenAuswahl::waehlen(ProgrammZustand& z,
                                                        const typEinfuegeAuftrag& auftrag,
                                                        QWidget* eltern) {
    FrmVariantenAuswahl f(z, auftrag, eltern);
    if (f.exec() != QDialog::Accepted) return std::nullopt;
    const int zeile = f.ui_->lisVarianten->currentRow();
    if (zeile < 1 || zeile > static_cast<int>(auftrag.varianten.size())) return typVariante{};
    return auftrag.varianten[static_cast<std::size_t>(zeile - 1)];
}

}  // namespace tessara
