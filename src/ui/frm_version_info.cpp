#include "ui/frm_version_info.h"

#include <QPushButton>
#include <QTreeWidget>

#include "captions/meldungen.h"
#include "startup/versions_historie.h"
#include "ui/beschriften.h"
#include "ui_frm_version_info.h"

namespace tessara {

FrmVersionInfo::FrmVersionInfo(ProgrammZustand& z, QWidget* eltern)
    : QDialog(eltern), z_(z), ui_(std::make_unique<Ui::FrmVersionInfo>()) {
    ui_->setupUi(this);
    ui::subFormularBeschriften(z_, this);
    const std::string laufend = fctLaufendeVersion(z_);
    ui_->labLaufendeVersion->setText(
        ui_->labLaufendeVersion->text().arg(QString::fromStdString(laufend)));
    connect(ui_->cmbSchliessen, &QPushButton::clicked, this, &QDialog::accept);
    resize(720, 460);

    const VersionsHistorie h = fctVersionsHistorieLesen(z_);
    if (h.lngMeldung)
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(h.lngMeldung), z_.strVersionInfoDatei});
    for (const auto& e : h.eintraege) {
        auto* v = new QTreeWidgetItem(ui_->lisVersionen);
        v->setText(0, QString::fromStdString("Version " + e.strVersion +
                                             (e.strDatum.empty() ? "" : " (" + e.strDatum + ")")));
        for (const auto& zeile : e.zeilen) {
            auto* z = new QTreeWidgetItem(v);
            z->setText(0, QString::fromStdString(zeile));
            z->setToolTip(0, z->text(0));  // a line wider than the window
        }
        v->setExpanded(true);
        if (e.booLaufend) {
            QFont f = v->font(0);
            f.setBold(true);
            for (int i = 0; i < v->childCount(); ++i) v->child(i)->setFont(0, f);
            v->setFont(0, f);
            ui_->lisVersionen->setCurrentItem(v);
            ui_->lisVersionen->scrollToItem(v, QAbstractItemView::PositionAtTop);
        }
    }
}

FrmVersionInfo::~FrmVersionInfo() = default;

}  // namespace tessara
