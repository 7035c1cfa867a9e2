// The search windows under Xvfb on the demo library: a single hit inserted
// at once into a scripted host, the result window jumping the main window,
// the quick filter (and a keystroke during a long scan), the list of blocks
// inserted last.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <cstdlib>
#include <sstream>

#include "platform/environment.h"
#include "platform/memory/memory_desktop.h"
#include "search/zuletzt_eingefuegt.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "ui/frm_blockverwaltung.h"
#include "ui/frm_datenbank_suche.h"
#include "ui/frm_suchergebnis.h"
#include "ui/schnellfilter_steuerung.h"
#include "ui/zuletzt_steuerung.h"
#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

namespace fs = std::filesystem;

class Suche : public HauptfensterTest {
  protected:
    void SetUp() override {
        HauptfensterTest::SetUp();
        // A full AutoCAD host on the scripted desktop, taking the AutoLISP route.
        IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "NewInsertRoutine", "1");
        desktop.addWindow("AutoCAD 2018 - [Zeichnung1.dwg]");
        cad.typAcadVersionInfo.strACadVersion = "AutoCAD 2018";
        cad.typAcadVersionInfo.strAcadTitel = "AutoCAD 2018";
        hauptfensterLaden();
        fenster->modell().fctMarkierungenAlleLoeschen();  // the demo's marks would go in instead
        fenster->resize(1180, 900);
        fenster->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(fenster.get()));
    }
    FrmDatenbankSuche* sucheOeffnen() {
        kind<QAction>(fenster.get(), "mnuDatenbankSuche")->trigger();
        auto* s = fenster->findChild<FrmDatenbankSuche*>();
        EXPECT_TRUE(s && QTest::qWaitForWindowExposed(s));
        return s;
    }
    std::string gewaehlterBlock() {
        const auto& belegung = fenster->modell().seitenSlots();
        const int pos = fenster->modell().intPosition();
        return pos >= 0 && pos < static_cast<int>(belegung.size()) ? belegung[pos].strBlockNr : "";
    }
    // Waits until every icon of the column is painted (the previews come
    // from worker threads).
    bool alleGemalt(QTableWidget* grid) {
        for (int versuch = 0; versuch < 500; ++versuch) {
            bool alle = true;
            for (int r = 0; r < grid->rowCount(); ++r)
                alle = alle && bildGemalt(grid->item(r, 0)->icon());
            if (alle) return true;
            QTest::qWait(20);
        }
        return false;
    }
    bool bildGemalt(const QIcon& icon) {
        const QImage b = icon.pixmap(QSize(96, 72)).toImage();
        int anders = 0;
        for (int y = 0; y < b.height(); ++y)
            for (int x = 0; x < b.width(); ++x) anders += b.pixel(x, y) != b.pixel(0, 0);
        return anders > 50;
    }
};

TEST_F(Suche, OneHitWithDirectInsertionGoesToTheInsertCommandAndIntoTheRecentList) {
    IniSetValue(z, z.strIniDatei, "AllgemeineDaten", "DirektEinfuegen", "1");
    auto* s = sucheOeffnen();
    EXPECT_TRUE(kind<QCheckBox>(s, "checkDirektEinfuegen")->isChecked());  // from the Settings file
    EXPECT_EQ(kind<QLabel>(s, "labBenennung_0")->text(), "*****Frei*****");  // the demo's menu 1
    // Saved and loaded again through the file dialogs: texts and operators come back.
    kind<QLineEdit>(s, "txtBenennung_0")->setText("Kugelhahn DN 50");
    kind<QComboBox>(s, "comboxSuchkriterienVerknuepfen_0")->setCurrentIndex(1);
    const std::string str = z.strCTemp + "Suche";
    benutzer.dateien = {str, str + ".str"};
    QTest::mouseClick(kind<QPushButton>(s, "combutDatei"), Qt::LeftButton);
    QTest::mouseClick(kind<QPushButton>(s, "cmbLeeren"), Qt::LeftButton);
    EXPECT_TRUE(kind<QLineEdit>(s, "txtBenennung_0")->text().isEmpty());
    QTest::mouseClick(kind<QPushButton>(s, "cmbLaden"), Qt::LeftButton);
    EXPECT_EQ(kind<QComboBox>(s, "comboxSuchkriterienVerknuepfen_0")->currentText(), "=");
    EXPECT_EQ(kind<QLineEdit>(s, "txtBenennung_0")->text(), "Kugelhahn DN 50");
    bildschirmfoto(s, "frmDatenbankSuche");
    QSignalSpy eingefuegt(fenster.get(), &FrmBlockverwaltung::einfuegungBeendet);
    QTest::mouseClick(kind<QPushButton>(s, "cmbSuchen"), Qt::LeftButton);
    ASSERT_EQ(eingefuegt.count(), 1)
        << (benutzer.gezeigt.empty() ? protokoll() : benutzer.gezeigt[0].text);
    EXPECT_EQ(eingefuegt[0][0].toInt(), 1);
    EXPECT_EQ(gewaehlterBlock(), "0000029");
    EXPECT_NE(desktop.allTypedKeys().find("00000290.dwg"), std::string::npos)
        << desktop.allTypedKeys();
    EXPECT_EQ(s->ergebnisFenster(), nullptr);
    // The recent list shows it first, with its slide, and the library keeps it.
    auto* zuletzt = fenster->findChild<ZuletztSteuerung*>();
    QSignalSpy gezeigt(zuletzt, &ZuletztSteuerung::listeGezeigt);
    auto* lis = kind<QListWidget>(fenster.get(), "lisZuletzt");
    ASSERT_TRUE(lis->count() > 0 && (bildGemalt(lis->item(0)->icon()) || gezeigt.wait(5000)));
    EXPECT_TRUE(lis->item(0)->text().startsWith("0000029"));
    EXPECT_TRUE(bildGemalt(lis->item(0)->icon()));
    EXPECT_EQ(fctZuletztLesen(z, bib), std::vector<std::string>{"0000029"});
    // A click inserts it again.
    QTest::mouseClick(lis->viewport(), Qt::LeftButton, {},
                      lis->visualItemRect(lis->item(0)).center());
    EXPECT_EQ(eingefuegt.count(), 2);
    bildschirmfoto(fenster.get(), "frmBlockverwaltung_suche");
}

TEST_F(Suche, ManyHitsGoToTheResultWindowWhoseDoubleClickJumpsTheMainWindow) {
    auto* s = sucheOeffnen();
    kind<QLineEdit>(s, "txtBenennung_0")->setText("kugelhahn");
    QTest::mouseClick(kind<QPushButton>(s, "cmbSuchen"), Qt::LeftButton);
    FrmSuchergebnis* e = s->ergebnisFenster();
    ASSERT_NE(e, nullptr) << protokoll();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(e));
    auto* grid = e->DataGrid1();
    ASSERT_EQ(grid->rowCount(), 9);
    EXPECT_TRUE(alleGemalt(grid));
    EXPECT_EQ(grid->item(0, 2)->text(), "Armaturen und Flansche");
    EXPECT_EQ(grid->item(1, 3)->text(), "Ventile");
    // Sorted by block number, descending: the last hit comes first.
    grid->sortByColumn(1, Qt::DescendingOrder);
    EXPECT_EQ(e->trefferInZeile(0)->Block, "0000031");
    bildschirmfoto(e, "frmSuchergebnis");
    // A double-click shows the hit's Folder and Page with its slot selected.
    fenster->comboxOrdner_Click(2);
    // The second click of a double-click as a display server delivers it:
    // press, double-click, release.
    const QPoint stelle = grid->visualRect(grid->model()->index(2, 1)).center();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, stelle);
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, stelle);
    QMouseEvent doppel(QEvent::MouseButtonDblClick, stelle, grid->viewport()->mapToGlobal(stelle),
                       Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(grid->viewport(), &doppel);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, stelle);
    EXPECT_EQ(gewaehlterBlock(), e->trefferInZeile(2)->Block);
    EXPECT_EQ(fenster->modell().intOrdnerIndex(), 0);
    EXPECT_EQ(fenster->modell().intSeite(), 1);
    // Enter on another row does the same.
    grid->setCurrentCell(8, 1);
    QTest::keyClick(grid, Qt::Key_Return);
    EXPECT_EQ(gewaehlterBlock(), "0000001");
    EXPECT_EQ(fenster->modell().intSeite(), 0);
    // Every caption of the search's windows and controls is in the files.
    std::istringstream log(protokoll());
    for (std::string zeile; std::getline(log, zeile);)
        for (const char* name : {"DatenbankSuche", "Suchergebnis", "Schnellfilter", "Zuletzt"})
            EXPECT_FALSE(zeile.find("fehlt") != zeile.npos && zeile.find(name) != zeile.npos)
                << zeile;
}

TEST_F(Suche, TheQuickFilterFindsKugelhahnAndAKeystrokeNeverWaitsForAScan) {
    auto* filter = fenster->findChild<SchnellfilterSteuerung*>();
    ASSERT_NE(filter, nullptr);
    auto* txt = kind<QLineEdit>(fenster.get(), "txtSchnellfilter");
    auto* lis = kind<QListWidget>(fenster.get(), "lisSchnellfilter");
    QSignalSpy fertig(filter, &SchnellfilterSteuerung::scanFertig);
    QTest::keyClicks(txt, "KUGELHAHN");
    ASSERT_TRUE(fertig.wait(10000));
    while (fertig.wait(300)) {
    }  // the scans of the earlier keystrokes were dropped
    EXPECT_EQ(lis->count(), 9);
    EXPECT_EQ(filter->trefferGesamt(), 9);
    EXPECT_EQ(fertig.last()[0].toLongLong(), 9);
    bildschirmfoto(fenster.get(), "frmBlockverwaltung_schnellfilter");
    ASSERT_TRUE(filter->springen(7));
    EXPECT_EQ(gewaehlterBlock(), "0000030");
    // Enter in the box shows the first hit and inserts nothing.
    QSignalSpy eingefuegt(fenster.get(), &FrmBlockverwaltung::einfuegungBeendet);
    QTest::keyClick(txt, Qt::Key_Return);
    EXPECT_EQ(gewaehlterBlock(), "0000001");
    EXPECT_EQ(eingefuegt.count(), 0);
    auto* leeren = kind<QAction>(txt, "txtSchnellfilterLeeren");
    ASSERT_TRUE(leeren->isVisible());
    leeren->trigger();
    EXPECT_TRUE(txt->text().isEmpty());
    EXPECT_FALSE(leeren->isVisible());

    // A scan that takes long (rows whose text nearly matches at every place)
    // runs beside the keystrokes: it is still running after them, and only
    // the text typed last is scanned to its end.
    auto lang = std::make_shared<SchnellSchnappschuss>(5000);
    for (std::size_t i = 0; i < lang->size(); ++i) {
        (*lang)[i].Block = "000" + std::to_string(i);
        (*lang)[i].gefaltet = std::string(4000, 'a') + (i == 4999 ? "b" : "");
    }
    filter->setSchnappschuss(lang, fenster->modell().strDatenbank());
    txt->setText(QString::fromStdString(std::string(1000, 'a') + "b"));  // the long scan begins
    fertig.clear();
    QTest::keyClick(txt, Qt::Key_Backspace);
    QTest::keyClick(txt, 'b');
    QApplication::processEvents();  // a scan run in the keystroke would have ended here
    EXPECT_TRUE(filter->scanLaeuft());
    ASSERT_TRUE(fertig.wait(10000));
    while (fertig.wait(1000)) {
    }
    EXPECT_EQ(fertig.count(), 1);  // only the text typed last was scanned to its end
    EXPECT_EQ(lis->count(), 1);
    EXPECT_EQ(lis->item(0)->text(), "0004999");
}

}  // namespace
}  // namespace tessara::uitest
