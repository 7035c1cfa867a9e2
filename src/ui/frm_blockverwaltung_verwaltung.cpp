#include "ui/frm_blockverwaltung_verwaltung.h"

#include <memory>

#include "captions/meldungen.h"
#include "captions/meldungs_nummern.h"
#include "editing/bearbeiten_meldungen.h"
#include "exchange/verzeichnis_austausch.h"
#include "library/bibliothek_sitzung.h"
#include "organisation/block_eigenschaften.h"
#include "organisation/ordner_rechte.h"
#include "organisation/ordner_verwaltung.h"
#include "platform/environment.h"
#include "startup/einstellungen.h"
#include "startup/pfade.h"
#include "ui/beschriften.h"
#include "ui/frm_block_eigenschaften.h"
#include "ui/frm_def_menue.h"
#include "ui/frm_ordnerverwaltung.h"
#include "ui/frm_seitenverwaltung.h"

namespace tessara {

namespace {

// One window of a kind at a time: a second click brings the open one back.
template <typename Machen>
void einmalOeffnen(QPointer<QDialog>& offen, Machen machen) {
    if (offen) {
        offen->raise();
        offen->activateWindow();
        return;
    }
    QDialog* f = machen();
    f->setAttribute(Qt::WA_DeleteOnClose);
    offen = f;
    f->open();
}

// The login name the Folder rights name: USERNAME on Windows, USER or
// LOGNAME elsewhere.
std::string fctAnmeldeName() {
    for (const char* n : {"USERNAME", "USER", "LOGNAME"})
        if (const QString w = qEnvironmentVariable(n); !w.isEmpty()) return w.toStdString();
    return {};
}

}  // namespace

Verwaltungsfenster::Verwaltungsfenster(FensterKontext k, QWidget* eltern)
    : QObject(eltern), k_(k), eltern_(eltern) {}

void Verwaltungsfenster::mnuOrdnerverwaltung_Click() {
    auto& s = k_.sitzung;
    if (!s.modell().offen()) return;
    einmalOeffnen(ordner_, [&] {
        auto* f = new FrmOrdnerverwaltung(
            k_.z, s.modell(), s.schreibgeschuetzt(),
            [a = &k_.aktionen] { a->ordnerUndSeitenNeuAnzeigen(); }, eltern_);
        f->setRechte(s.setup().longRechteverwaltung == 1, fctAnmeldeName());
        return f;
    });
}

void Verwaltungsfenster::mnuZeichnungenEinlesen_Click() {
    auto& s = k_.sitzung;
    if (!s.modell().offen() || !k_.z.benutzer) return;
    if (s.schreibgeschuetzt()) {
        fctMsgbox(k_.z, MsgboxArt::Info, {kMsgSchreibgeschuetzt});
        return;
    }
    const std::string titel = ui::fctText(k_.z, "frmBlockverwaltung", "mnuZeichnungenEinlesen")
                                  .remove(QLatin1Char('&'))
                                  .toStdString();
    const std::string dir = k_.z.benutzer->ordnerWaehlen(titel, k_.z.strVerzeichnisVorgabe);
    if (dir.empty()) return;
    // The directory's own name first: a new Folder, unless one is named so.
    const std::string neu =
        fctNativerPfad(fctOhneBackslash(platform::programPath(dir))).filename().string();
    std::vector<std::string> namen{neu};
    for (const auto& o : s.modell().aryOrdner())
        if (o.OrdnerName != neu) namen.push_back(o.OrdnerName);
    const std::string ordner = k_.z.benutzer->listeWaehlen(
        titel, fctBeschriftMsgboxZuordnen(k_.z, kMsgWelcherOrdner, kGruppeAllg), namen);
    if (ordner.empty()) return;
    fctVerzeichnisEinlesen(k_.z, s.modell(), platform::programPath(dir), ordner);
    k_.aktionen.ordnerUndSeitenNeuAnzeigen();
}

void Verwaltungsfenster::mnuZeichnungenAusgeben_Click() {
    auto& s = k_.sitzung;
    const auto* o = s.modell().aktuellerOrdner();
    if (!o || !k_.z.benutzer) return;
    const std::string dir = k_.z.benutzer->ordnerWaehlen(
        ui::fctText(k_.z, "frmBlockverwaltung", "mnuZeichnungenAusgeben")
            .remove(QLatin1Char('&'))
            .toStdString(),
        k_.z.strVerzeichnisVorgabe);
    if (!dir.empty())
        fctZeichnungenAusgeben(k_.z, s.modell(), o->OrdnerNr, platform::programPath(dir));
}

void Verwaltungsfenster::mnuSeitenverwaltung_Click() {
    auto& s = k_.sitzung;
    if (!s.modell().aktuellerOrdner()) return;
    einmalOeffnen(seiten_, [&] {
        return new FrmSeitenverwaltung(
            k_.z, s.modell(), s.schreibgeschuetzt(),
            [a = &k_.aktionen] { a->ordnerUndSeitenNeuAnzeigen(); }, eltern_);
    });
}

void Verwaltungsfenster::mnuDefMenue_Click() {
    auto& s = k_.sitzung;
    if (!s.modell().offen()) return;
    einmalOeffnen(menue_, [&] {
        return new FrmDefMenue(
            k_.z, s.modell(), s.schreibgeschuetzt(),
            s.setup().longUeberschreibenDefMenueGlobal == 1,
            [a = &k_.aktionen] { a->ordnerUndSeitenNeuAnzeigen(); }, eltern_);
    });
}

void Verwaltungsfenster::mnuBlockEigenschaften_Click() {
    auto& s = k_.sitzung;
    NavigationsModell& m = s.modell();
    const auto& belegung = m.seitenSlots();
    const int pos = m.intPosition();
    if (pos < 0 || pos >= static_cast<int>(belegung.size()) || !belegung[pos].booBelegt) {
        fctMsgbox(k_.z, MsgboxArt::Info, {kMsgKeinBlock});
        return;
    }
    const auto block = fctBlockEigenschaftenLesen(k_.z, m, belegung[pos].lngNr);
    if (!block) return;
    if (block_) block_->close();  // it shows another Block
    einmalOeffnen(block_, [&] {
        return new FrmBlockEigenschaften(
            k_.z, m, *block, s.schreibgeschuetzt(),
            [a = &k_.aktionen] { a->ordnerUndSeitenNeuAnzeigen(); }, eltern_);
    });
}

void Verwaltungsfenster::chkOrdnerSortieren_Click(bool booNachName) {
    subOrdnerSortierenSpeichern(k_.z, booNachName);
    fctOrdnerAnsichtSetzen(k_.z, k_.sitzung);
    if (!k_.sitzung.modell().offen()) return;
    fctCboOrdnerNeuAnzeigen(k_.z, k_.sitzung.modell(), "", false);
    k_.aktionen.ordnerUndSeitenNeuAnzeigen();
}

bool fctOrdnerAnsichtSetzen(ProgrammZustand& z, BibliothekSitzung& s) {
    if (IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "nOrdnerSortieren").empty())
        subOrdnerSortierenSpeichern(z, s.setup().lonOrdnerSortieren == 1);
    const bool nachName = fctOrdnerSortierenLesen(z);
    s.modell().setOrdnerSortieren(nachName);
    if (s.setup().longRechteverwaltung == 1)
        s.modell().setOrdnerFilter([name = fctAnmeldeName()](const std::string& rechte) {
            return fctOrdnerErlaubt(rechte, name);
        });
    else
        s.modell().setOrdnerFilter({});
    return nachName;
}

}  // namespace tessara
