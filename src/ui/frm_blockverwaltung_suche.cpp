#include "ui/frm_blockverwaltung_suche.h"

#include <QAction>
#include <QBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPointer>

#include "ui/frm_blockverwaltung.h"
#include "ui/frm_datenbank_suche.h"
#include "ui/schnellfilter_steuerung.h"
#include "ui/zuletzt_steuerung.h"

namespace tessara {

void subSucheEinrichten(FrmBlockverwaltung& f) {
    auto* suche = new QAction(&f);
    suche->setObjectName(QStringLiteral("mnuDatenbankSuche"));
    suche->setShortcut(QKeySequence::Find);
    if (auto* menue = f.findChild<QMenu*>(QStringLiteral("mnuBlock")))
        menue->addAction(suche);
    else
        f.addAction(suche);
    QObject::connect(suche, &QAction::triggered, &f, [&f] {
        // One search window; it keeps its fields between two searches.
        auto* fenster = f.findChild<FrmDatenbankSuche*>(QString(), Qt::FindDirectChildrenOnly);
        if (!fenster) {
            fenster = new FrmDatenbankSuche(f);
        }
        fenster->frmDatenbankSucheBeschriften();
        fenster->show();
        fenster->raise();
        fenster->activateWindow();
    });

    auto* leiste = f.findChild<QVBoxLayout*>(QStringLiteral("seitenleiste"));
    auto* vor = f.findChild<QLabel*>(QStringLiteral("labBlockBenennung"));
    if (!leiste || !vor) return;
    const int stelle = std::max(0, leiste->indexOf(vor));
    auto* filter = new QWidget(vor->parentWidget());
    filter->setObjectName(QStringLiteral("schnellfilterFlaeche"));
    new SchnellfilterSteuerung(f, filter);
    auto* zuletzt = new QWidget(vor->parentWidget());
    zuletzt->setObjectName(QStringLiteral("zuletztFlaeche"));
    new ZuletztSteuerung(f, zuletzt);
    leiste->insertWidget(stelle, filter, 2);
    leiste->insertWidget(stelle + 1, zuletzt);
}

}  // namespace tessara
