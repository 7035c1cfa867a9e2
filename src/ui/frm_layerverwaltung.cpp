#include "ui/frm_layerverwaltung.h"

#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

#include "cad/cad_einstellungen.h"
#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "platform/case_fold.h"
#include "startup/benutzer.h"
#include "startup/fehler_log.h"
#include "ui/beschriften.h"
#include "ui_frm_layerverwaltung.h"

namespace tessara {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

FrmLayerverwaltung::FrmLayerverwaltung(ProgrammZustand& z, CadVerbindung& v, QWidget* eltern)
    : QDialog(eltern), z_(z), v_(v), ui_(std::make_unique<Ui::FrmLayerverwaltung>()) {
    ui_->setupUi(this);
    ui::subFormularBeschriften(z_, this);
    QStringList spalten;
    for (int i = 0; i < 6; ++i)
        spalten << ui::fctText(z_, objectName(), QStringLiteral("lisLayer_%1").arg(i));
    ui_->lisLayer->setHeaderLabels(spalten);
    ui_->lisLayer->header()->setStretchLastSection(false);
    resize(820, 380);
    connect(ui_->cmbLesen, &QPushButton::clicked, this, [this] { cmbLesen_Click(); });
    connect(ui_->cmbSpeichern, &QPushButton::clicked, this, [this] { cmbSpeichern_Click(); });
    connect(ui_->cmbAnwenden, &QPushButton::clicked, this, [this] { cmbAnwenden_Click(); });
    connect(ui_->cmbUmbenennen, &QPushButton::clicked, this, [this] { cmbUmbenennen_Click(); });
    connect(ui_->cmbLoeschen, &QPushButton::clicked, this, [this] { cmbLoeschen_Click(); });
    connect(ui_->cmbSchliessen, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->lisKonfigurationen, &QListWidget::currentRowChanged, this,
            [this] { konfigurationZeigen(); });
    lisKonfigurationenFuellen({});
}

FrmLayerverwaltung::~FrmLayerverwaltung() = default;

std::string FrmLayerverwaltung::gewaehlt() const {
    const auto* e = ui_->lisKonfigurationen->currentItem();
    return e ? e->text().toStdString() : std::string();
}

void FrmLayerverwaltung::lisKonfigurationenFuellen(const std::string& strWahl) {
    QSignalBlocker sperre(ui_->lisKonfigurationen);
    ui_->lisKonfigurationen->clear();
    int zeile = -1;
    for (const auto& n : fctLayerKonfigurationenListe(z_)) {
        if (platform::foldCase(n) == platform::foldCase(strWahl))
            zeile = ui_->lisKonfigurationen->count();
        ui_->lisKonfigurationen->addItem(q(n));
    }
    if (zeile < 0 && !zeichnung_ && ui_->lisKonfigurationen->count() > 0) zeile = 0;
    ui_->lisKonfigurationen->setCurrentRow(zeile);
    sperre.unblock();
    konfigurationZeigen();
}

void FrmLayerverwaltung::konfigurationZeigen() {
    const std::string name = gewaehlt();
    const bool gewaehlt = !name.empty();
    ui_->cmbAnwenden->setEnabled(gewaehlt);
    ui_->cmbUmbenennen->setEnabled(gewaehlt);
    ui_->cmbLoeschen->setEnabled(gewaehlt);
    if (!gewaehlt) {
        layerZeigen(zeichnung_.value_or(std::vector<typLayer>{}), zeichnung_.has_value());
        return;
    }
    const auto g = fctLayerKonfigurationLesen(z_, name);
    layerZeigen(g.konfiguration.layer, false);
    if (!g.fehlerhafteZeilen.empty()) {
        std::vector<MsgboxZeile> zeilen{MsgboxZeile(kMsgLayerZeilenFehlerhaft)};
        for (const auto& z : g.fehlerhafteZeilen) zeilen.emplace_back(z);
        fctMsgbox(z_, MsgboxArt::Info, zeilen);
    }
}

void FrmLayerverwaltung::layerZeigen(const std::vector<typLayer>& layer, bool booZeichnung) {
    ui_->labLayer->setVisible(!booZeichnung);
    ui_->labLayerZeichnung->setVisible(booZeichnung);
    ui_->lisLayer->clear();
    const auto x = [](bool b) { return b ? QStringLiteral("x") : QString(); };
    for (const auto& l : layer) {
        auto* e = new QTreeWidgetItem(ui_->lisLayer);
        e->setText(0, q(l.strName));
        e->setText(1, QString::number(l.intFarbe));
        e->setText(2, q(l.strLinientyp));
        e->setText(3, x(l.booEin));
        e->setText(4, x(l.booGefroren));
        e->setText(5, x(l.booGesperrt));
        for (int s = 1; s < 6; ++s)
            e->setTextAlignment(s, s == 2 ? Qt::AlignLeft : Qt::AlignCenter);
    }
    for (int s = 0; s < 6; ++s) ui_->lisLayer->resizeColumnToContents(s);
}

void FrmLayerverwaltung::cmbLesen_Click() {
    Prozedur p(z_, "cmbLesen_Click", true);
    const auto r = fctLayerVomHostLesen(z_, v_, fctCadEinstellungenLesen(z_));
    if (!r.booOk || r.layer.empty()) {
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgLayerNichtGelesen), r.strFehler});
        return;
    }
    zeichnung_ = r.layer;
    ui_->lisKonfigurationen->setCurrentRow(-1);
    konfigurationZeigen();
}

std::optional<std::string> FrmLayerverwaltung::nameFragen(const std::string& strVorgabe,
                                                          const std::string& strAlt) {
    if (!z_.benutzer) return std::nullopt;
    return z_.benutzer->nameEingeben(
        "frmLayerKonfigurationName", strVorgabe, [this, &strAlt](const std::string& n) -> long {
            if (const long nr = fctLayerKonfigurationNamePruefen(n)) return nr;
            // A rename may change the spelling of its own name.
            const bool selbst = platform::foldCase(n) == platform::foldCase(strAlt);
            return !strAlt.empty() && !selbst && fctLayerKonfigurationVorhanden(z_, n)
                       ? kMsgLayerNameVergeben
                       : 0;
        });
}

void FrmLayerverwaltung::cmbSpeichern_Click() {
    if (!zeichnung_) cmbLesen_Click();
    if (!zeichnung_) return;
    const auto name = nameFragen(gewaehlt(), {});
    if (!name) return;
    if (fctLayerKonfigurationVorhanden(z_, *name) &&
        !fctMsgbox(z_, MsgboxArt::Frage, {MsgboxZeile(kMsgLayerErsetzen), *name}))
        return;
    if (!fctLayerKonfigurationSpeichern(z_, {*name, *zeichnung_})) {
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgLayerNichtGespeichert), z_.strIniDatei});
        return;
    }
    lisKonfigurationenFuellen(*name);
}

void FrmLayerverwaltung::cmbAnwenden_Click() {
    const std::string name = gewaehlt();
    if (name.empty()) return;
    const auto g = fctLayerKonfigurationLesen(z_, name);
    if (g.konfiguration.layer.empty()) {
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgLayerOhneLayer), name});
        return;
    }
    if (!fctLayerKonfigurationAnwenden(z_, v_, fctCadEinstellungenLesen(z_), g.konfiguration))
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgLayerNichtAngewandt)});
}

void FrmLayerverwaltung::cmbUmbenennen_Click() {
    const std::string alt = gewaehlt();
    if (alt.empty()) return;
    const auto neu = nameFragen(alt, alt);
    if (!neu || *neu == alt) return;
    if (!fctLayerKonfigurationUmbenennen(z_, alt, *neu))
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgLayerNichtGespeichert), z_.strIniDatei});
    lisKonfigurationenFuellen(*neu);
}

void FrmLayerverwaltung::cmbLoeschen_Click() {
    const std::string name = gewaehlt();
    if (name.empty() || !fctMsgbox(z_, MsgboxArt::Frage, {MsgboxZeile(kMsgLayerLoeschen), name}))
        return;
    if (!fctLayerKonfigurationLoeschen(z_, name))
        fctMsgbox(z_, MsgboxArt::Info, {MsgboxZeile(kMsgLayerNichtGespeichert), z_.strIniDatei});
    lisKonfigurationenFuellen({});
}

}  // namespace tessara
