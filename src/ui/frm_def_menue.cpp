#include "ui/frm_def_menue.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include "captions/meldungen.h"
#include "library/schema.h"
#include "ui/beschriften.h"
#include "ui_frm_def_menue.h"

namespace tessara {

namespace {

constexpr const char* kForm = "frmDefMenue";

// A free line ("*****Frei*****") shows as an empty field and an empty field
// is saved as free, so nobody has to type the marker.
QString anzeigeText(const std::string& wert) {
    return wert == kFreiEintrag ? QString() : QString::fromStdString(wert);
}
std::string speicherText(const QLineEdit* e) {
    const std::string t = e->text().trimmed().toStdString();
    return t.empty() ? std::string(kFreiEintrag) : t;
}

}  // namespace

FrmDefMenue::FrmDefMenue(ProgrammZustand& z, NavigationsModell& m, bool booSchreibschutz,
                         bool booGlobalUeberschreiben, std::function<void()> nachAenderung,
                         QWidget* eltern)
    : QDialog(eltern),
      z_(z),
      m_(m),
      booSchreibschutz_(booSchreibschutz),
      booGlobalUeberschreiben_(booGlobalUeberschreiben),
      nachAenderung_(std::move(nachAenderung)),
      ui_(std::make_unique<Ui::FrmDefMenue>()) {
    ui_->setupUi(this);
    for (int i = 0; i < kDefMenueZeilen; ++i) {
        benennung_.push_back(findChild<QLineEdit*>(QStringLiteral("txtBenennung_%1").arg(i)));
        standardwert_.push_back(findChild<QLineEdit*>(QStringLiteral("txtStandardwert_%1").arg(i)));
    }
    connect(ui_->cmbNeu, &QPushButton::clicked, this, [this] { cmbNeu_Click(); });
    connect(ui_->cmdKopieren, &QPushButton::clicked, this, [this] { cmdKopieren_Click(); });
    connect(ui_->cmbLoeschen, &QPushButton::clicked, this, [this] { cmbLoeschen_Click(); });
    connect(ui_->cmdSpeichern, &QPushButton::clicked, this, [this] { cmdSpeichern_Click(); });
    connect(ui_->cmdZuordnen, &QPushButton::clicked, this, [this] { cmdZuordnen_Click(); });
    connect(ui_->cmbSchliessen, &QPushButton::clicked, this, [this] {
        if (aenderungenSichern()) accept();
    });
    connect(ui_->lisDefMenue, &QListWidget::currentRowChanged, this, [this](int zeile) {
        if (zeile == intGezeigt_) return;
        aenderungenSichern();
        menueZeigen(zeile);
    });
    frmDefMenueBeschriften();
    Anzeigen();
}

FrmDefMenue::~FrmDefMenue() = default;

void FrmDefMenue::frmDefMenueBeschriften() { ui::subFormularBeschriften(z_, this); }

void FrmDefMenue::Anzeigen(long lngNr) {
    const auto* ordner = m_.aktuellerOrdner();
    const auto eigenes = ordner ? fctDefMenueDesOrdners(z_, m_, ordner->Nr) : std::nullopt;
    if (lngNr == 0 && eigenes) lngNr = eigenes->Nr;
    menues_ = fctDefMenuesLesen(z_, m_);
    auto* lis = ui_->lisDefMenue;
    const QSignalBlocker still(lis);
    lis->clear();
    int auswahl = 0;
    for (std::size_t i = 0; i < menues_.size(); ++i) {
        const auto& d = menues_[i];
        QString text = QString::number(d.Nr);
        if (d.booGlobal) text += QStringLiteral(" (global)");
        QStringList namen;
        for (const auto& n : d.ordner) namen << QString::fromStdString(n);
        if (!namen.isEmpty()) text += QStringLiteral(": ") + namen.join(QStringLiteral(", "));
        auto* e = new QListWidgetItem(text, lis);
        e->setToolTip(namen.join(QStringLiteral("\n")));
        if (eigenes && d.Nr == eigenes->Nr) {
            QFont f = e->font();
            f.setBold(true);
            e->setFont(f);
        }
        if (d.Nr == lngNr) auswahl = static_cast<int>(i);
    }
    // "Der Ordner „%1“ benutzt das Menü %2."
    QString hinweis = ui::fctText(z_, kForm, QStringLiteral("hinweisOrdner"));
    if (ordner && eigenes && hinweis.contains(QLatin1String("%2")))
        ui_->hinweisOrdner->setText(
            hinweis.arg(QString::fromStdString(ordner->OrdnerName)).arg(eigenes->Nr));
    intGezeigt_ = -1;
    if (!menues_.empty()) lis->setCurrentRow(auswahl);
    menueZeigen(menues_.empty() ? -1 : auswahl);
}

void FrmDefMenue::menueZeigen(int intZeile) {
    intGezeigt_ = intZeile;
    const bool da = intZeile >= 0 && intZeile < static_cast<int>(menues_.size());
    const typDefMenue leer;
    const typDefMenue& d = da ? menues_[intZeile] : leer;
    const bool global = da && d.booGlobal;
    const bool aendern = da && !booSchreibschutz_ && (!global || booGlobalUeberschreiben_);
    for (int i = 0; i < kDefMenueZeilen; ++i) {
        benennung_[i]->setText(anzeigeText(d.Benennung[i]));
        standardwert_[i]->setText(anzeigeText(d.Standardwert[i]));
        benennung_[i]->setReadOnly(!aendern);
        standardwert_[i]->setReadOnly(!aendern);
    }
    ui_->chkGlobal->setChecked(global);
    ui_->labGlobalHinweis->setVisible(global && !booGlobalUeberschreiben_);
    ui_->cmdSpeichern->setEnabled(aendern);
    ui_->cmbNeu->setEnabled(!booSchreibschutz_);
    ui_->cmdKopieren->setEnabled(da && !booSchreibschutz_);
    ui_->cmbLoeschen->setEnabled(da && !booSchreibschutz_ && d.Nr != 1);
    ui_->cmdZuordnen->setEnabled(da && !booSchreibschutz_ && m_.aktuellerOrdner());
}

long FrmDefMenue::lngAuswahl() const {
    return intGezeigt_ >= 0 && intGezeigt_ < static_cast<int>(menues_.size())
               ? menues_[intGezeigt_].Nr
               : 0;
}

typDefMenue FrmDefMenue::ausFeldern() const {
    typDefMenue d = menues_.at(intGezeigt_);
    for (int i = 0; i < kDefMenueZeilen; ++i) {
        d.Benennung[i] = speicherText(benennung_[i]);
        d.Standardwert[i] = speicherText(standardwert_[i]);
    }
    return d;
}

bool FrmDefMenue::geaendert() const {
    if (!ui_->cmdSpeichern->isEnabled() || lngAuswahl() == 0) return false;
    const typDefMenue neu = ausFeldern();
    const typDefMenue& alt = menues_[intGezeigt_];
    return neu.Benennung != alt.Benennung || neu.Standardwert != alt.Standardwert;
}

bool FrmDefMenue::aenderungenSichern() {
    if (!geaendert() || !fctMsgboxFrageEinzeilig(z_, kMsgDefMenueAenderungen)) return true;
    const typDefMenue d = ausFeldern();
    if (!fctDefMenueSpeichern(z_, m_, d, booGlobalUeberschreiben_)) return false;
    menues_[intGezeigt_] = d;
    return true;
}

void FrmDefMenue::cmbNeu_Click() {
    if (!aenderungenSichern()) return;
    if (const long nr = fctDefMenueNeu(z_, m_)) Anzeigen(nr);
}

void FrmDefMenue::cmdKopieren_Click() {
    if (lngAuswahl() == 0 || !aenderungenSichern()) return;
    const typDefMenue vorlage = ausFeldern();
    if (const long nr = fctDefMenueNeu(z_, m_, &vorlage)) Anzeigen(nr);
}

void FrmDefMenue::cmbLoeschen_Click() {
    const long nr = lngAuswahl();
    if (nr == 0) return;
    if (fctDefMenueLoeschen(z_, m_, nr)) Anzeigen();
}

void FrmDefMenue::cmdSpeichern_Click() {
    const long nr = lngAuswahl();
    if (nr == 0) return;
    if (fctDefMenueSpeichern(z_, m_, ausFeldern(), booGlobalUeberschreiben_)) {
        Anzeigen(nr);
        if (nachAenderung_) nachAenderung_();
    }
}

void FrmDefMenue::cmdZuordnen_Click() {
    const long nr = lngAuswahl();
    if (nr == 0 || !aenderungenSichern()) return;
    if (fctDefMenueZuordnen(z_, m_, nr)) {
        Anzeigen(nr);
        if (nachAenderung_) nachAenderung_();
    }
}

}  // namespace tessara
