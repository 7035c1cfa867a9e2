#include "ui/frm_block_eigenschaften.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "organisation/def_menue.h"
#include "ui/beschriften.h"
#include "ui_frm_block_eigenschaften.h"

namespace tessara {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

FrmBlockEigenschaften::FrmBlockEigenschaften(ProgrammZustand& z, NavigationsModell& m,
                                             const typBlockEigenschaften& block,
                                             bool booSchreibschutz,
                                             std::function<void()> nachAenderung, QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      block_(block),
      booSchreibschutz_(booSchreibschutz),
      nachAenderung_(std::move(nachAenderung)),
      ui_(std::make_unique<Ui::FrmBlockEigenschaften>()) {
    ui_->setupUi(this);
    frmBlockEigenschaftenBeschriften();
    const auto menue = fctDefMenueDesOrdners(z_, m_, block_.OrdnerID);
    // "Block %1"
    QString titel =
        ui::fctText(z_, QStringLiteral("frmBlockEigenschaften"), QStringLiteral("blockNummer"));
    ui_->blockNummer->setText(titel.contains(QLatin1String("%1")) ? titel.arg(q(block_.Block))
                                                                  : q(block_.Block));
    for (int i = 0; i < kDefMenueZeilen; ++i) {
        auto* e = findChild<QLineEdit*>(QStringLiteral("txtM_%1").arg(i));
        werte_.push_back(e);
        e->setText(q(block_.M[i]));
        e->setReadOnly(booSchreibschutz_);
        if (!menue) continue;
        // A line the menu leaves free keeps its column name as caption.
        if (const std::string name = fctAttributName(*menue, i); !name.empty())
            findChild<QLabel*>(QStringLiteral("benennung_%1").arg(i))->setText(q(name) + ':');
        e->setPlaceholderText(q(fctNeueBlockAttribute(*menue)[i]));
    }
    for (auto [feld, wert] : {std::pair{ui_->txtLayer, &block_.Layer},
                              {ui_->txtLyColor, &block_.LyColor},
                              {ui_->txtLyLine, &block_.LyLine}}) {
        feld->setText(q(*wert));
        feld->setReadOnly(booSchreibschutz_);
    }
    connect(ui_->cmbOk, &QPushButton::clicked, this, [this] { cmbOk_Click(); });
    connect(ui_->cmbAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
}

FrmBlockEigenschaften::~FrmBlockEigenschaften() = default;

void FrmBlockEigenschaften::frmBlockEigenschaftenBeschriften() {
    ui::subFormularBeschriften(z_, this);
}

void FrmBlockEigenschaften::cmbOk_Click() {
    if (booSchreibschutz_) {
        reject();
        return;
    }
    typBlockEigenschaften neu = block_;
    for (int i = 0; i < kDefMenueZeilen; ++i) neu.M[i] = werte_[i]->text().toStdString();
    neu.Layer = ui_->txtLayer->text().trimmed().toStdString();
    neu.LyColor = ui_->txtLyColor->text().trimmed().toStdString();
    neu.LyLine = ui_->txtLyLine->text().trimmed().toStdString();
    if (!fctBlockEigenschaftenSpeichern(z_, m_, neu)) return;
    block_ = neu;
    if (nachAenderung_) nachAenderung_();
    accept();
}

}  // namespace tessara
