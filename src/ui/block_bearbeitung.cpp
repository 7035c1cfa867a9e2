#include "ui/block_bearbeitung.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>

#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/ansichten.h"
#include "editing/bearbeiten_meldungen.h"
#include "editing/block_name.h"
#include "platform/environment.h"
#include "startup/benutzer.h"
#include "ui/beschriften.h"
#include "ui/frm_variantenverwaltung.h"
#include "ui/preview_cache.h"
#include "ui/sld_blockverwaltung.h"

namespace tessara {

namespace {

QString q(const std::string& s) { return QString::fromStdString(s); }

constexpr int kKachel = 50;

}  // namespace

BlockBearbeitung::BlockBearbeitung(FensterKontext k, CadVerbindung& v, QGroupBox* fraAnsichten,
                                   QObject* eltern)
    : QObject(eltern),
      k_(k),
      v_(v),
      befehle_(k.z, k.sitzung),
      fra_(fraAnsichten),
      fenster_(fraAnsichten->window()) {
    ansichten_.fill(-1);
    auto* reihe = new QHBoxLayout(fra_);
    reihe->setContentsMargins(4, 4, 4, 4);
    reihe->setSpacing(3);
    for (int i = 0; i < 5; ++i) {
        auto* d = new SldBlockverwaltung(i, fra_);
        d->setObjectName(QStringLiteral("sldAnsicht_%1").arg(i));
        d->setFixedSize(kKachel, kKachel);
        d->setContextMenuPolicy(Qt::CustomContextMenu);
        d->hide();
        connect(d, &SldBlockverwaltung::gedrueckt, this,
                [this](int j) { ansichtWaehlen(ansichten_[static_cast<std::size_t>(j)]); });
        connect(d, &QWidget::customContextMenuRequested, this, [this, d](const QPoint& p) {
            const int ansicht = ansichten_[static_cast<std::size_t>(d->index())];
            QMenu menue;
            menue.addAction(ui::fctText(k_.z, "frmBlockverwaltung", "mnuAnsichtUmbenennen"), this,
                            [this, ansicht] { ansichtUmbenennen(ansicht); });
            auto* loeschen =
                menue.addAction(ui::fctText(k_.z, "frmBlockverwaltung", "mnuAnsichtLoeschen"), this,
                                [this, ansicht] { ansichtLoeschen(ansicht); });
            loeschen->setEnabled(ansicht > 0 && !k_.sitzung.schreibgeschuetzt());
            menue.exec(d->mapToGlobal(p));
        });
        reihe->addWidget(d);
        dias_[static_cast<std::size_t>(i)] = d;
    }
    reihe->addStretch(1);
}

void BlockBearbeitung::ausfuehren(unsigned was) {
    if (was != kNichtsGeaendert) k_.aktionen.neuZeichnen(was);
}

void BlockBearbeitung::neu(NeuArt art) {
    // The flow waits on the host while window messages go on: a second
    // press meanwhile must not start a second flow.
    if (laeuft_) return;
    laeuft_ = true;
    ausfuehren(befehle_.fctNeu(art, v_));
    laeuft_ = false;
}

void BlockBearbeitung::combutNeu_Click() { neu(NeuArt::Block); }
void BlockBearbeitung::mnuAnsichtNeu_Click() { neu(NeuArt::Ansicht); }
void BlockBearbeitung::mnuVarianteNeu_Click() { neu(NeuArt::Variante); }

void BlockBearbeitung::mnuBlockUmbenennen_Click() { ansichtUmbenennen(0); }

void BlockBearbeitung::mnuBlockLoeschen_Click() { ausfuehren(befehle_.fctLoeschen()); }

void BlockBearbeitung::mnuMarkierteVerschieben_Click() {
    ausfuehren(befehle_.fctMarkierteVerschieben());
}

void BlockBearbeitung::mnuVariantenverwaltung_Click() {
    const auto& belegung = k_.sitzung.modell().seitenSlots();
    const int pos = k_.sitzung.modell().intPosition();
    if (pos < 0 || pos >= static_cast<int>(belegung.size()) || !belegung[pos].booBelegt) {
        fctMsgbox(k_.z, MsgboxArt::Info, {kMsgKeinBlock});
        return;
    }
    FrmVariantenverwaltung fenster(
        k_.z, k_.sitzung.modell(), belegung[pos].strBlockNr, k_.sitzung.schreibgeschuetzt(),
        [this] { ausfuehren(kAnsichtenGeaendert); }, fenster_);
    fenster.exec();
}

void BlockBearbeitung::platzAbgelegt(int von, int nach) {
    const unsigned gewaehlt = k_.sitzung.fctPositionSetzen(von);
    const unsigned verschoben = befehle_.fctVerschieben(nach);
    // After a move the Block stands in its new slot: the selection follows it.
    ausfuehren(gewaehlt | verschoben |
               (verschoben ? k_.sitzung.fctPositionSetzen(nach) : kNichtsGeaendert));
}

void BlockBearbeitung::ansichtWaehlen(int ansicht) {
    if (ansicht < 0) return;
    k_.sitzung.setEinzufuegendeAnsicht(ansicht);
    ansichtenZeigen();
}

void BlockBearbeitung::ansichtUmbenennen(int ansicht) {
    auto& z = k_.z;
    if (fctBlocknameGesperrt(z)) {
        fctMsgbox(z, MsgboxArt::Info, {kMsgNameNichtAenderbar});
        return;
    }
    const auto& belegung = k_.sitzung.modell().seitenSlots();
    const int pos = k_.sitzung.modell().intPosition();
    if (pos < 0 || pos >= static_cast<int>(belegung.size()) || !belegung[pos].booBelegt ||
        !z.benutzer)
        return;
    std::string alt;
    for (const auto& a : fctAnsichtenBilder(z, k_.sitzung.modell(), belegung[pos].strBlockNr))
        if (a.ansicht == ansicht) alt = a.name;
    auto& con = k_.sitzung.modell().datenbank().con;
    const auto neu = z.benutzer->nameEingeben(
        "frmBlocknameAendern", alt,
        [&](const std::string& n) { return fctBlocknamePruefen(z, con, n, false); });
    if (neu && *neu != alt) ausfuehren(befehle_.fctNameAendern(ansicht, *neu));
}

void BlockBearbeitung::ansichtLoeschen(int ansicht) {
    ausfuehren(befehle_.fctAnsichtLoeschen(ansicht));
}

void BlockBearbeitung::ansichtenZeigen() {
    auto& m = k_.sitzung.modell();
    const auto& belegung = m.seitenSlots();
    const int pos = m.intPosition();
    std::vector<typAnsichtBild> bilder;
    if (pos >= 0 && pos < static_cast<int>(belegung.size()) && belegung[pos].booBelegt)
        bilder = fctAnsichtenBilder(k_.z, m, belegung[pos].strBlockNr);
    const int markiert = k_.sitzung.intEinzufuegendeAnsicht();
    for (std::size_t i = 0; i < dias_.size(); ++i) {
        auto* d = dias_[i];
        if (i >= bilder.size()) {
            ansichten_[i] = -1;
            d->hide();
            continue;
        }
        ansichten_[i] = bilder[i].ansicht;
        d->setBild(k_.vorschau.bild(bilder[i].bild, d->size(), ui::DiaHintergrund::Dunkel,
                                    platform::nativePath(bilder[i].zeichnung)));
        d->setToolTip(q(bilder[i].name));
        d->setAusgewaehlt(bilder[i].ansicht == markiert);
        d->show();
    }
    fra_->setVisible(!bilder.empty());
}

void BlockBearbeitung::ablageNehmen(AblageUmfang umfang, bool booAusschneiden) {
    ablage_.fctNehmen(k_.z, k_.sitzung.modell(), umfang, booAusschneiden,
                      k_.sitzung.schreibgeschuetzt());
}

void BlockBearbeitung::mnuAblageEinfuegen_Click() {
    if (laeuft_) return;
    laeuft_ = true;
    ablage_.fctEinfuegen(k_.z, k_.sitzung.modell(), k_.sitzung.schreibgeschuetzt());
    laeuft_ = false;
    // Even a paste that stopped half way changed the Page.
    ausfuehren(kSeiteGeaendert | kAnsichtenGeaendert);
}

bool BlockBearbeitung::fctZwischenspeicherAbfragen() {
    return ablage_.fctZwischenspeicherAbfragen(k_.z);
}

}  // namespace tessara
