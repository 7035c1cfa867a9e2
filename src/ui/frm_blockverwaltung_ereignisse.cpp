// The main window following the CAD host: its title names the drawing
// active in the host and says when that drawing's directory cannot be
// written; when the host closes, the window says so.
#include "cad/host_ereignisse.h"
#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "ui/frm_blockverwaltung.h"

namespace tessara {

namespace {
constexpr long kMsgVerzeichnisSchreibgeschuetztKurz = 585;
constexpr long kMsgHostBeendet = 586;
}  // namespace

void FrmBlockverwaltung::ereignisseAbonnieren() {
    if (!ereignisse_) {
        ereignisse_ = std::make_unique<clsHostEreignisse>(
            z_, v_, [this](const typAktiveZeichnung& a) { aktiveZeichnungZeigen(a); });
        // Each insertion connects again; a host started anew since is then
        // the one to follow.
        connect(this, &FrmBlockverwaltung::einfuegungBeendet, this,
                [this] { ereignisse_->abonnieren(); });
    }
    ereignisse_->abonnieren();
}

void FrmBlockverwaltung::aktiveZeichnungZeigen(const typAktiveZeichnung& a) {
    std::string titel = fctFensterTitel(z_, fctBeschriftung(z_, "ProgName"));
    if (!a.strTitel.empty()) titel += " - " + a.strTitel;
    if (a.booSchreibgeschuetzt)
        titel +=
            " " + fctBeschriftMsgboxZuordnen(z_, kMsgVerzeichnisSchreibgeschuetztKurz, kGruppeAllg);
    setWindowTitle(QString::fromStdString(titel));
    if (a.booHostBeendet)
        statusZeigen(
            QString::fromStdString(fctBeschriftMsgboxZuordnen(z_, kMsgHostBeendet, kGruppeAllg)));
}

}  // namespace tessara
