// The Folder and Page windows under Xvfb, opened from the main window on the
// demo library: one full round of changes, each visible at once in the main
// window's Folder and Page boxes, and the lock of a write-protected library.
#include "ui/frm_ordnerverwaltung.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <cstdlib>
#include <sstream>

#include "platform/environment.h"
#include "platform/memory/memory_desktop.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "startup/registry_werte.h"
#include "ui/frm_block_eigenschaften.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/frm_def_menue.h"
#include "ui/frm_ordner_austausch.h"
#include "ui/frm_ordner_neu.h"
#include "ui/frm_ordner_umbenennen.h"
#include "ui/frm_seite_neu.h"
#include "ui/frm_seite_umbenennen.h"
#include "ui/frm_seitenverwaltung.h"
#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

namespace fs = std::filesystem;

class Verwaltung : public HauptfensterTest {
  protected:
    void starten(const typSetupWerte& w = {}) {
        hauptfensterLaden(w);
        fenster->show();
    }

    // A window the menu entry or button opened; waits until it is shown.
    template <class T>
    T* geoeffnet(QObject* eltern) {
        T* f = nullptr;
        [&] { QTRY_VERIFY((f = eltern->findChild<T*>()) && f->isVisible()); }();
        return f;
    }
    QStringList box(const char* name) {
        QStringList l;
        auto* b = kind<QComboBox>(fenster.get(), name);
        for (int i = 0; i < b->count(); ++i) l << b->itemText(i);
        return l;
    }
};

TEST_F(Verwaltung, AFullRoundOfFolderAndPageChangesShowsAtOnceInTheMainWindow) {
    starten();
    auto* extras = kind<QMenu>(fenster.get(), "mnuExtras");
    extras->popup(fenster->mapToGlobal(QPoint(40, 40)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(extras));
    bildschirmfoto(extras, "mnuExtras");
    extras->hide();
    EXPECT_EQ(kind<QAction>(fenster.get(), "mnuOrdnerverwaltung")->text(),
              QString::fromUtf8("Ordner &verwalten …"));
    const QStringList ordnerVorher = box("comboxOrdner");
    kind<QAction>(fenster.get(), "mnuOrdnerverwaltung")->trigger();
    auto* ordner = geoeffnet<FrmOrdnerverwaltung>(fenster.get());
    auto* liste = kind<QListWidget>(ordner, "dlisOrdner");
    EXPECT_EQ(liste->count(), ordnerVorher.size());
    EXPECT_TRUE(kind<QPushButton>(ordner, "cmdOrdnerExport")->isEnabled());
    EXPECT_EQ(ordner->windowTitle(), "Ordner verwalten");
    bildschirmfoto(ordner, "frmOrdnerverwaltung");

    klicken(ordner, "cmbNeu");
    auto* neu = geoeffnet<FrmOrdnerNeu>(ordner);
    bildschirmfoto(neu, "frmOrdnerNeu");
    eintippen(neu, "txtOrdnerName", QString::fromUtf8("Schrauben für Holz"));
    klicken(neu, "cmbOk");
    QTRY_VERIFY(box("comboxOrdner").contains(QString::fromUtf8("Schrauben für Holz")));
    EXPECT_EQ(liste->currentItem()->text(), QString::fromUtf8("Schrauben für Holz"));

    klicken(ordner, "cmbUmbenennen");
    auto* umbenennen = geoeffnet<FrmOrdnerUmbenennen>(ordner);
    bildschirmfoto(umbenennen, "frmOrdnerUmbenennen");
    eintippen(umbenennen, "txtOrdnerName", QString::fromUtf8("Schrauben und Dübel"));
    klicken(umbenennen, "cmbOk");
    QTRY_COMPARE(box("comboxOrdner").back(), QString::fromUtf8("Schrauben und Dübel"));

    klicken(ordner, "imgAufAb_0");
    QStringList erwartet = ordnerVorher;
    erwartet.insert(erwartet.size() - 1, QString::fromUtf8("Schrauben und Dübel"));
    EXPECT_EQ(box("comboxOrdner"), erwartet);
    EXPECT_EQ(liste->currentRow(), erwartet.size() - 2);

    klicken(ordner, "cmbOk");
    QTRY_VERIFY(!ordner->isVisible() || fenster->findChild<FrmOrdnerverwaltung*>() == nullptr);
    EXPECT_EQ(kind<QComboBox>(fenster.get(), "comboxOrdner")->currentText(),
              QString::fromUtf8("Schrauben und Dübel"));
    EXPECT_TRUE(box("comboxSeite").isEmpty());

    kind<QAction>(fenster.get(), "mnuSeitenverwaltung")->trigger();
    auto* seiten = geoeffnet<FrmSeitenverwaltung>(fenster.get());
    EXPECT_EQ(kind<QListWidget>(seiten, "lisSeiten")->count(), 0);
    EXPECT_FALSE(kind<QPushButton>(seiten, "cmbLoeschen")->isEnabled());
    klicken(seiten, "cmbNeu");
    auto* seiteNeu = geoeffnet<FrmSeiteNeu>(seiten);
    EXPECT_EQ(kind<QLineEdit>(seiteNeu, "txtSeitenNr")->text(), "1");
    eintippen(seiteNeu, "txtSeitenNr", "12a");
    eintippen(seiteNeu, "txtSeitenname", QString::fromUtf8("Sechskant"));
    bildschirmfoto(seiteNeu, "frmSeiteNeu");
    klicken(seiteNeu, "cmbOk");
    EXPECT_TRUE(seiteNeu->isVisible()) << "a refused number leaves the window open";
    ASSERT_EQ(benutzer.gezeigt.size(), 1u);
    EXPECT_NE(benutzer.gezeigt[0].text.find("nur aus Ziffern"), std::string::npos);
    eintippen(seiteNeu, "txtSeitenNr", "1");
    klicken(seiteNeu, "cmbOk");
    QTRY_COMPARE(box("comboxSeite"), QStringList{QString::fromUtf8("Sechskant")});
    auto* lis = kind<QListWidget>(seiten, "lisSeiten");
    ASSERT_EQ(lis->count(), 1);
    EXPECT_EQ(lis->item(0)->text(), QString::fromUtf8("1\tSechskant"));
    bildschirmfoto(seiten, "frmSeitenverwaltung");

    lis->setCurrentRow(0);
    klicken(seiten, "cmbUmbenennen");
    auto* seiteUm = geoeffnet<FrmSeiteUmbenennen>(seiten);
    bildschirmfoto(seiteUm, "frmSeiteUmbenennen");
    eintippen(seiteUm, "txtSeitenname", QString::fromUtf8("Sechskantmuttern"));
    klicken(seiteUm, "cmbOk");
    QTRY_COMPARE(box("comboxSeite"), QStringList{QString::fromUtf8("Sechskantmuttern")});

    klicken(seiten, "cmbLoeschen");
    QTRY_VERIFY(box("comboxSeite").isEmpty());
    EXPECT_EQ(lis->count(), 0);
    // Sorted by name, the Folder box follows at once and the setting is kept.
    kind<QAction>(fenster.get(), "chkOrdnerSortieren")->trigger();
    QStringList sortiert = box("comboxOrdner");
    sortiert.sort(Qt::CaseInsensitive);
    EXPECT_EQ(box("comboxOrdner"), sortiert);
    EXPECT_EQ(IniGetValue(z, z.strIniDatei, "AllgemeineDaten", "nOrdnerSortieren"), "1");

    // The selected Folder out to a file and back in under a new name.
    seiten->close();
    // The closed windows go as the event loop would delete them.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    kind<QAction>(fenster.get(), "mnuOrdnerverwaltung")->trigger();
    ordner = geoeffnet<FrmOrdnerverwaltung>(fenster.get());
    klicken(ordner, "cmdOrdnerExport");
    auto* aus = geoeffnet<FrmOrdnerExport>(ordner);
    const QString datei = QString::fromStdString(platform::nativePath(bib + "\\aus\\x.mdb"));
    eintippen(aus, "txtPfad", datei);
    bildschirmfoto(aus, "frmOrdnerExport");
    klicken(aus, "cmbOk");
    QTRY_VERIFY(QFileInfo::exists(datei));
    klicken(ordner, "cmdOrdnerImport");
    auto* ein = geoeffnet<FrmOrdnerImport>(ordner);
    eintippen(ein, "txtPfad", datei);
    eintippen(ein, "txtOrdnerName", QString::fromUtf8("Zukauf für Holz"));
    bildschirmfoto(ein, "frmOrdnerImport");
    klicken(ein, "cmbOk");
    QTRY_COMPARE(kind<QComboBox>(fenster.get(), "comboxOrdner")->currentText(),
                 QString::fromUtf8("Zukauf für Holz"));

    // Every caption of these windows and of the menu entries is in the files.
    std::istringstream log(protokoll());
    for (std::string zeile; std::getline(log, zeile);)
        if (zeile.find("fehlt") != std::string::npos &&
            zeile.find("comboxBilderanzahl_") == std::string::npos)
            ADD_FAILURE() << zeile;
}

TEST_F(Verwaltung, AWriteProtectedLibraryOpensTheWindowsForLookingOnly) {
    fs::create_directories(wurzel / "bib" / "Test.txt");
    starten();
    ASSERT_TRUE(fenster->schreibgeschuetzt());
    kind<QAction>(fenster.get(), "mnuOrdnerverwaltung")->trigger();
    auto* ordner = geoeffnet<FrmOrdnerverwaltung>(fenster.get());
    kind<QAction>(fenster.get(), "mnuSeitenverwaltung")->trigger();
    auto* seiten = geoeffnet<FrmSeitenverwaltung>(fenster.get());
    for (QWidget* f : {static_cast<QWidget*>(ordner), static_cast<QWidget*>(seiten)})
        for (const char* k : {"cmbNeu", "cmbUmbenennen", "cmbLoeschen"})
            EXPECT_FALSE(kind<QPushButton>(f, k)->isEnabled()) << k;
    EXPECT_FALSE(kind<QToolButton>(ordner, "imgAufAb_0")->isEnabled());
    EXPECT_TRUE(kind<QPushButton>(ordner, "cmbOk")->isEnabled());
}

TEST_F(Verwaltung, AMenuCopiedAndAssignedNamesTheAttributesOfTheBlockProperties) {
    starten();
    kind<QAction>(fenster.get(), "mnuDefMenue")->trigger();
    auto* menues = geoeffnet<FrmDefMenue>(fenster.get());
    auto* liste = kind<QListWidget>(menues, "lisDefMenue");
    const int vorher = liste->count();
    EXPECT_TRUE(kind<QCheckBox>(menues, "chkGlobal")->isChecked());
    EXPECT_TRUE(kind<QLineEdit>(menues, "txtBenennung_0")->isReadOnly()) << "a global menu";
    klicken(menues, "cmdKopieren");
    ASSERT_EQ(liste->count(), vorher + 1);
    EXPECT_EQ(liste->currentRow(), vorher);
    EXPECT_FALSE(kind<QLineEdit>(menues, "txtBenennung_0")->isReadOnly());
    eintippen(menues, "txtBenennung_0", QString::fromUtf8("Benennung für Stückliste"));
    eintippen(menues, "txtStandardwert_1", "DN 50");
    klicken(menues, "cmdSpeichern");
    klicken(menues, "cmdZuordnen");
    EXPECT_TRUE(kind<QLabel>(menues, "hinweisOrdner")
                    ->text()
                    .contains(QString::number(menues->lngAuswahl())));
    bildschirmfoto(menues, "frmDefMenue");
    klicken(menues, "cmbSchliessen");

    kind<QAction>(fenster.get(), "mnuBlockEigenschaften")->trigger();
    auto* block = geoeffnet<FrmBlockEigenschaften>(fenster.get());
    EXPECT_EQ(kind<QLabel>(block, "benennung_0")->text(),
              QString::fromUtf8("Benennung für Stückliste:"));
    EXPECT_EQ(kind<QLabel>(block, "benennung_2")->text(), "M2");
    EXPECT_EQ(kind<QLineEdit>(block, "txtM_1")->placeholderText(), "DN 50");
    eintippen(block, "txtM_0", QString::fromUtf8("Kugelhahn „neu“"));
    eintippen(block, "txtLyColor", "300");
    klicken(block, "cmbOk");
    EXPECT_TRUE(block->isVisible()) << "a colour above 256 is refused";
    eintippen(block, "txtLyColor", "1");
    bildschirmfoto(block, "frmBlockEigenschaften");
    klicken(block, "cmbOk");
    QTRY_COMPARE(kind<QLabel>(fenster.get(), "labBlock_0")->text(),
                 QString::fromUtf8("Kugelhahn „neu“"));
}

TEST_F(Verwaltung, WithRightsManagementTheFolderWindowListsOnlyTheUsersFolders) {
    qputenv("USERNAME", "meier");
    typSetupWerte w;
    w.longRechteverwaltung = 1;
    starten(w);
    kind<QAction>(fenster.get(), "mnuOrdnerverwaltung")->trigger();
    auto* ordner = geoeffnet<FrmOrdnerverwaltung>(fenster.get());
    auto* liste = kind<QListWidget>(ordner, "dlisOrdner");
    const int alle = liste->count();
    liste->setCurrentRow(1);
    const QString zweiter = liste->currentItem()->text();
    // The list as the rights tidy it (the rules are Rechte's) comes back.
    eintippen(ordner, "txtOrdnerRechte", "Schulz; MEIER");
    klicken(ordner, "cmdRechteSpeichern");
    EXPECT_EQ(kind<QLineEdit>(ordner, "txtOrdnerRechte")->text(), "Schulz;MEIER");
    bildschirmfoto(ordner, "frmOrdnerverwaltung_Rechte");
    // The demo library's other Folders are open to all.
    ordner->setRechte(true, "mueller");
    ASSERT_EQ(liste->count(), alle - 1);
    for (int i = 0; i < liste->count(); ++i) EXPECT_NE(liste->item(i)->text(), zweiter);
    qunsetenv("USERNAME");
}

}  // namespace
}  // namespace tessara::uitest
