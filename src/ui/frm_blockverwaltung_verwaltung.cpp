#include "ui/frm_blockverwaltung_verwaltung.h"

#include <QAction>
#include <QDialog>
#include <QPointer>
#include <memory>

#include "captions/meldungen.h"
#include "organisation/block_eigenschaften.h"
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

// What the Folder box's order was last made from.
struct Reihenfolge {
    std::string strDb;
    int intOptionen = -1;  // lonOrdnerSortieren of the options as last seen
};

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

    // The sort order lives in the Settings file ("nOrdnerSortieren"); the
    // options window's switch for it is taken over when it changes, and at
    // the first start, when the Settings file has no value yet.
    QAction* sortieren = aktion("chkOrdnerSortieren");
    if (sortieren)
        QObject::connect(sortieren, &QAction::toggled, &f, [&f](bool an) {
            subOrdnerSortierenSpeichern(f.zustand(), an);
            if (!f.modell().offen()) return;
            fctCboOrdnerNeuAnzeigen(f.zustand(), f.modell(), "", false);
            f.subOrdnerUndSeitenNeuAnzeigen();
        });
    // A library opened reads its Folders unsorted; once its first Page is
    // drawn the Folder box is put in order.
    auto stand = std::make_shared<Reihenfolge>();
    QObject::connect(&f, &FrmBlockverwaltung::seiteGemalt, &f, [&f, stand, sortieren] {
        NavigationsModell& m = f.modell();
        if (!m.offen()) return;
        ProgrammZustand& z = f.zustand();
        bool neu = false;
        const int optionen = f.setup().lonOrdnerSortieren == 1 ? 1 : 0;
        if (stand->intOptionen != optionen) {
            if (stand->intOptionen >= 0 ||
                IniGetValue(z, z.strIniDatei, kAllgemeineDaten, "nOrdnerSortieren").empty())
                subOrdnerSortierenSpeichern(z, optionen == 1);
            stand->intOptionen = optionen;
            neu = true;
        }
        if (stand->strDb != m.strDatenbank()) {
            stand->strDb = m.strDatenbank();
            neu = true;
        }
        if (!neu) return;
        const bool nachName = fctOrdnerSortierenLesen(z);
        if (sortieren) {
            const QSignalBlocker still(sortieren);
            sortieren->setChecked(nachName);
        }
        const std::string vorher = m.datenbank().rsOrdner.source();
        fctOrdnerReihenfolgeLesen(z, m, nachName);
        if (m.datenbank().rsOrdner.source() != vorher) f.subOrdnerUndSeitenNeuAnzeigen();
    });
}

}  // namespace tessara
