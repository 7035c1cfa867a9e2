#include "ui/frm_block_eigenschaften.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "organisation/def_menue.h"
#include "ui/beschriften.h"
#include "ui_frm_block_eigenschaften.h"

namespace tessara {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

bool gleich(const typEinfuegepunkte& a, const typEinfuegepunkte& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i].x != b[i].x || a[i].y != b[i].y || a[i].z != b[i].z) return false;
    return true;
}

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
    for (int i = 0; i < 6; ++i)
        for (int a = 0; a < 3; ++a) {
            auto* e = findChild<QLineEdit*>(
                QStringLiteral("txtEinfuegepkt%1_%2").arg(QChar(u"XYZ"[a])).arg(i));
            e->setReadOnly(booSchreibschutz_);
            punktFelder_[i][a] = e;
        }
    ansichten_ = fctAnsichtenBilder(z_, m_, block_.Block);
    for (const auto& v : ansichten_)
        ui_->cboAnsicht->addItem(q(v.name.empty() ? block_.Block : v.name), v.ansicht);
    connect(ui_->cboAnsicht, &QComboBox::currentIndexChanged, this,
            [this](int index) { cboAnsicht_Change(index); });
    cboAnsicht_Change(ui_->cboAnsicht->currentIndex());
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
    if (!punkteSchreiben() || !fctBlockEigenschaftenSpeichern(z_, m_, neu)) return;
    block_ = neu;
    if (nachAenderung_) nachAenderung_();
    accept();
}

// The fields keep what was typed for the View they showed; a View is read
// the first time it is chosen.
void FrmBlockEigenschaften::cboAnsicht_Change(int index) {
    punkteUebernehmen();
    ansicht_ = index < 0 ? -1 : ui_->cboAnsicht->itemData(index).toInt();
    if (ansicht_ < 0) return;
    if (!gelesen_.count(ansicht_)) {
        gelesen_[ansicht_] = fctEinfuegepunkteLesen(z_, m_, block_.Block, ansicht_);
        if (gelesen_[ansicht_]) bearbeitet_[ansicht_] = *gelesen_[ansicht_];
    }
    const bool lesbar = gelesen_[ansicht_].has_value();
    const typEinfuegepunkte punkte = lesbar ? bearbeitet_[ansicht_] : typEinfuegepunkte{};
    for (std::size_t i = 0; i < punkte.size(); ++i)
        for (int a = 0; a < 3; ++a) {
            const auto& p = punkte[i];
            punktFelder_[i][a]->setText(q(a == 0 ? p.x : a == 1 ? p.y : p.z));
            punktFelder_[i][a]->setReadOnly(booSchreibschutz_ || !lesbar);
        }
}

void FrmBlockEigenschaften::punkteUebernehmen() {
    if (ansicht_ < 0 || !bearbeitet_.count(ansicht_)) return;
    auto& punkte = bearbeitet_[ansicht_];
    for (std::size_t i = 0; i < punkte.size(); ++i)
        punkte[i] = {punktFelder_[i][0]->text().trimmed().toStdString(),
                     punktFelder_[i][1]->text().trimmed().toStdString(),
                     punktFelder_[i][2]->text().trimmed().toStdString()};
}

// A View whose points are refused is shown again to be corrected.
bool FrmBlockEigenschaften::punkteSchreiben() {
    punkteUebernehmen();
    for (auto& [ansicht, punkte] : bearbeitet_) {
        if (gleich(punkte, *gelesen_[ansicht])) continue;
        if (!subEinfuegepunkteSchreiben(z_, m_, block_.Block, ansicht, punkte)) {
            ui_->cboAnsicht->setCurrentIndex(ui_->cboAnsicht->findData(ansicht));
            return false;
        }
        gelesen_[ansicht] = punkte;
    }
    return true;
}

}  // namespace tessara
