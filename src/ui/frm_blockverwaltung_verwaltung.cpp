#include "ui/frm_blockverwaltung_verwaltung.h"

#include <QAction>
#include <QDialog>
#include <QPointer>
#include <memory>

#include "captions/meldungen.h"
#include "organisation/block_eigenschaften.h"
#include "organisation/ordner_rechte.h"
#include "organisation/ordner_verwaltung.h"
#include "startup/einstellungen.h"
#include "ui/frm_block_eigenschaften.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/frm_def_menue.h"
#include "ui/frm_ordnerverwaltung.h"
#include "ui/frm_seitenverwaltung.h"

namespace tessara {

namespace {

// One window of a kind at a time: a second click brings the open one back.
template <typename Fenster, typename Machen>
void einmalOeffnen(QPointer<QDialog>& offen, Machen machen) {
    if (offen) {
        offen->raise();
        offen->activateWindow();
        return;
    }
    Fenster* f = machen();
    f->setAttribute(Qt::WA_DeleteOnClose);
    offen = f;
    f->open();
}

// The message of a slot that holds no Block.
constexpr long kMsgKeinBlock = 407;

// The login name the Folder rights name: USERNAME on Windows, USER or
// LOGNAME elsewhere.
std::string fctAnmeldeName() {
    for (const char* n : {"USERNAME", "USER", "LOGNAME"})
        if (const QString w = qEnvironmentVariable(n); !w.isEmpty()) return w.toStdString();
    return {};
}

}  // namespace

void subVerwaltungEinbinden(FrmBlockverwaltung& f) {
    auto aktion = [&f](const char* name) {
        return f.findChild<QAction*>(QString::fromLatin1(name));
    };
    auto nachAenderung = [&f] { f.subOrdnerUndSeitenNeuAnzeigen(); };
    auto ordnerFenster = std::make_shared<QPointer<QDialog>>();
    auto seitenFenster = std::make_shared<QPointer<QDialog>>();

    // The windows open on a read-only library too, for looking; their
    // commands that change it are disabled there.
    if (QAction* a = aktion("mnuOrdnerverwaltung"))
        QObject::connect(a, &QAction::triggered, &f, [&f, nachAenderung, ordnerFenster] {
            if (!f.modell().offen()) return;
            einmalOeffnen<FrmOrdnerverwaltung>(*ordnerFenster, [&] {
                auto* fenster = new FrmOrdnerverwaltung(f.zustand(), f.modell(),
                                                        f.schreibgeschuetzt(), nachAenderung, &f);
                fenster->setRechte(f.setup().longRechteverwaltung == 1, fctAnmeldeName());
                return fenster;
            });
        });
    if (QAction* a = aktion("mnuSeitenverwaltung"))
        QObject::connect(a, &QAction::triggered, &f, [&f, nachAenderung, seitenFenster] {
            if (!f.modell().aktuellerOrdner()) return;
            einmalOeffnen<FrmSeitenverwaltung>(*seitenFenster, [&] {
                return new FrmSeitenverwaltung(f.zustand(), f.modell(), f.schreibgeschuetzt(),
                                               nachAenderung, &f);
            });
        });

    auto menueFenster = std::make_shared<QPointer<QDialog>>();
    if (QAction* a = aktion("mnuDefMenue"))
        QObject::connect(a, &QAction::triggered, &f, [&f, nachAenderung, menueFenster] {
            if (!f.modell().offen()) return;
            einmalOeffnen<FrmDefMenue>(*menueFenster, [&] {
                return new FrmDefMenue(f.zustand(), f.modell(), f.schreibgeschuetzt(),
                                       f.setup().longUeberschreibenDefMenueGlobal == 1,
                                       nachAenderung, &f);
            });
        });
    auto blockFenster = std::make_shared<QPointer<QDialog>>();
    if (QAction* a = aktion("mnuBlockEigenschaften"))
        QObject::connect(a, &QAction::triggered, &f, [&f, nachAenderung, blockFenster] {
            NavigationsModell& m = f.modell();
            const auto& belegung = m.seitenSlots();
            const int pos = m.intPosition();
            if (pos < 0 || pos >= static_cast<int>(belegung.size()) || !belegung[pos].booBelegt) {
                fctMsgbox(f.zustand(), MsgboxArt::Info, {kMsgKeinBlock});
                return;
            }
            const auto block = fctBlockEigenschaftenLesen(f.zustand(), m, belegung[pos].lngNr);
            if (!block) return;
            if (*blockFenster) (*blockFenster)->close();  // it shows another Block
            einmalOeffnen<FrmBlockEigenschaften>(*blockFenster, [&] {
                return new FrmBlockEigenschaften(f.zustand(), m, *block, f.schreibgeschuetzt(),
                                                 nachAenderung, &f);
            });
        });

    // The sort order lives in the Settings file ("nOrdnerSortieren").
    QAction* sortieren = aktion("chkOrdnerSortieren");
    if (sortieren)
        QObject::connect(sortieren, &QAction::toggled, &f, [&f](bool an) {
            subOrdnerSortierenSpeichern(f.zustand(), an);
            subOrdnerAnsichtSetzen(f);
            if (!f.modell().offen()) return;
            fctCboOrdnerNeuAnzeigen(f.zustand(), f.modell(), "", false);
            f.subOrdnerUndSeitenNeuAnzeigen();
        });
}

void subOrdnerAnsichtSetzen(FrmBlockverwaltung& f) {
    ProgrammZustand& z = f.zustand();
    if (IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "nOrdnerSortieren").empty())
        subOrdnerSortierenSpeichern(z, f.setup().lonOrdnerSortieren == 1);
    const bool nachName = fctOrdnerSortierenLesen(z);
    f.modell().setOrdnerSortieren(nachName);
    if (auto* sortieren = f.findChild<QAction*>(QStringLiteral("chkOrdnerSortieren"))) {
        const QSignalBlocker still(sortieren);
        sortieren->setChecked(nachName);
    }
    if (f.setup().longRechteverwaltung == 1)
        f.modell().setOrdnerFilter([name = fctAnmeldeName()](const std::string& rechte) {
            return fctOrdnerErlaubt(rechte, name);
        });
    else
        f.modell().setOrdnerFilter({});
}

}  // namespace tessara
