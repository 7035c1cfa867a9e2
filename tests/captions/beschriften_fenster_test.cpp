// A real window captioned from the files: every kind of control, the labels
// the program fills itself, a missing caption, and another window beside it.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

#include "captions/umgebung.h"
#include "ui/beschriften.h"

namespace tessara::captionstest {
namespace {

QApplication& app() {
    if (!std::getenv("DISPLAY")) ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static int argc = 1;
    static char name[] = "test_captions";
    static char* argv[] = {name, nullptr};
    static QApplication a(argc, argv);
    return a;
}

template <typename T>
T* kind(QWidget* eltern, const char* name) {
    auto* w = new T(eltern);
    w->setObjectName(QString::fromLatin1(name));
    return w;
}

using Fenster = Umgebung;
using ui::fctText;
using ui::subFormularBeschriften;

TEST_F(Fenster, SubFormularBeschriften) {
    app();
    datei("Frm",
          "[Allg]\r\nProgName=Tessara $\r\ncmbOk=OK\r\n"
          "[Gruppe]\r\nlabOrdner=Ordner:\r\nchkMarkieren=\r\nfraEinfuegen=Einf\xFCgen\r\n"
          "labSeitenNr=Seite %1 von %2\r\ncomboxBilderanzahl_0=4 Bilder\r\n"
          "comboxBilderanzahl_1=9 Bilder\r\nmnuDatei=&Datei\r\nmnuBeenden=&Beenden\r\n"
          "labVersion=Version $\r\n"
          "[Speziell]\r\nfrmTest=Test $\r\nfrmTest.cmbOk=Gut\r\n");
    datei("Tooltip",
          "[Gruppe]\r\ntxtVerzeichnisBlock=Pfad der Zeichnung\r\n"
          "mnuBeenden=Tessara beenden\r\nchkMarkieren=Block markieren\r\n");

    QMainWindow form;
    form.setObjectName("frmTest");
    auto* mitte = new QWidget(&form);
    form.setCentralWidget(mitte);
    auto* ok = kind<QPushButton>(mitte, "cmbOk");
    auto* fehlt = kind<QPushButton>(mitte, "cmbFehlt");
    auto* ordner = kind<QLabel>(mitte, "labOrdner");
    auto* version = kind<QLabel>(mitte, "labVersion");
    auto* slot = kind<QLabel>(mitte, "labBlock_3");
    slot->setText("00100170");
    auto* seitenNr = kind<QLabel>(mitte, "labSeitenNr");
    seitenNr->setText("Seite 2 von 5");
    auto* designer = kind<QLabel>(mitte, "label_2");
    designer->setText("fest");
    auto* mark = kind<QCheckBox>(mitte, "chkMarkieren_3");
    mark->setText("x");
    auto* rahmen = kind<QGroupBox>(mitte, "fraEinfuegen");
    auto* bilder = kind<QComboBox>(mitte, "comboxBilderanzahl");
    auto* pfad = kind<QLineEdit>(mitte, "txtVerzeichnisBlock");
    QMenu* datei = form.menuBar()->addMenu("x");
    datei->setObjectName("mnuDatei");
    QAction* beenden = datei->addAction("x");
    beenden->setObjectName("mnuBeenden");
    // Another window is captioned by its own Beschriften, not as part of this one.
    auto* dialog = new QDialog(&form);
    auto* fremd = kind<QPushButton>(dialog, "cmbOk");
    fremd->setText("fremd");

    subFormularBeschriften(z, &form);

    EXPECT_EQ(form.windowTitle(), "Test 1.9.0");
    EXPECT_EQ(ok->text(), "Gut");
    EXPECT_EQ(fehlt->text(), "frmTest.cmbFehlt");
    EXPECT_EQ(ordner->text(), "Ordner:");
    EXPECT_EQ(version->text(), "Version 1.9.0");
    EXPECT_EQ(slot->text(), "00100170");
    EXPECT_EQ(seitenNr->text(), "Seite 2 von 5");
    EXPECT_EQ(designer->text(), "fest");
    EXPECT_EQ(mark->text(), "");
    EXPECT_EQ(mark->toolTip(), "Block markieren");
    EXPECT_EQ(rahmen->title(), "Einfügen");
    ASSERT_EQ(bilder->count(), 2);
    EXPECT_EQ(bilder->itemText(1), "9 Bilder");
    EXPECT_EQ(pfad->toolTip(), "Pfad der Zeichnung");
    EXPECT_EQ(datei->title(), "&Datei");
    EXPECT_EQ(beenden->text(), "&Beenden");
    EXPECT_EQ(beenden->toolTip(), "Tessara beenden");
    EXPECT_EQ(fremd->text(), "fremd");
    EXPECT_EQ(fctText(z, "frmTest", "labSeitenNr"), "Seite %1 von %2");

    // The main window's title is "ProgName", by which a second start finds it.
    form.setObjectName("frmBlockverwaltung");
    subFormularBeschriften(z, &form);
    EXPECT_EQ(form.windowTitle(), "Tessara 1.9.0");
}

}  // namespace
}  // namespace tessara::captionstest
