// The layer manager and the version history as the main window opens them,
// from the Extras and the Help menu.
#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include "cad/fake_acad.h"
#include "ui/frm_layerverwaltung.h"
#include "ui/frm_version_info.h"
#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

class MenueFenster : public HauptfensterTest {
  protected:
    // Opens the window behind the menu entry and runs `bedienen` on it.
    template <class T, class Bedienen>
    void oeffnen(const char* menue, const char* eintrag, Bedienen bedienen) {
        auto* a = kind<QAction>(fenster.get(), QString::fromLatin1(eintrag));
        ASSERT_TRUE(kind<QMenu>(fenster.get(), QString::fromLatin1(menue))->actions().contains(a));
        sobaldOffen<T>([bedienen](T* f) {
            bedienen(f);
            f->accept();
        });
        a->trigger();
    }
};

TEST_F(MenueFenster, LayerverwaltungLiestSpeichertUndWendetAn) {
    auto log = std::make_shared<test::FakeAcadLog>();
    auto app = std::make_shared<test::FakeAnwendung>(log);
    app->dokument->layers = {{"0", 7, "Continuous", true, false, false},
                             {"Wände", 1, "DASHED", true, false, true},
                             {"Möbel", 30, "HIDDEN", false, true, false}};
    hauptfensterLaden();
    // After the load, whose own look for a host finds none here.
    cad.acadApp = app;
    cad.typAcadVersionInfo.strACadVersion = "AutoCAD 2005";
    benutzer.namen = {"Bestand EG"};
    oeffnen<FrmLayerverwaltung>("mnuExtras", "mnuLayerverwaltung", [&](FrmLayerverwaltung* f) {
        EXPECT_EQ(f->windowTitle(), QStringLiteral("Layerverwaltung"));
        EXPECT_FALSE(kind<QPushButton>(f, "cmbAnwenden")->isEnabled());
        klicken(f, "cmbLesen");
        auto* layer = kind<QTreeWidget>(f, "lisLayer");
        ASSERT_EQ(layer->topLevelItemCount(), 3);
        EXPECT_EQ(layer->headerItem()->text(2), QStringLiteral("Linientyp"));
        EXPECT_TRUE(kind<QLabel>(f, "labLayerZeichnung")->isVisibleTo(f));
        klicken(f, "cmbSpeichern");
        auto* liste = kind<QListWidget>(f, "lisKonfigurationen");
        ASSERT_NE(liste->currentItem(), nullptr);
        EXPECT_EQ(liste->currentItem()->text(), QStringLiteral("Bestand EG"));
        EXPECT_FALSE(kind<QLabel>(f, "labLayerZeichnung")->isVisibleTo(f));
        klicken(f, "cmbAnwenden");
        bildschirmfoto(f, "layerverwaltung");
    });
    ASSERT_FALSE(log->eintraege.empty());
    EXPECT_EQ(log->eintraege.back().rfind("SendCommand:._-layer\r_new\r0\r", 0), 0u);
    EXPECT_TRUE(benutzer.gezeigt.empty()) << benutzer.gezeigt[0].text;
    EXPECT_EQ(protokoll(), "");
}

TEST_F(MenueFenster, VersionsgeschichteMitLaufenderVersionUndOhneDatei) {
    hauptfensterLaden();
    z.strVersionInfoDatei = z.strAppPfad + "\\InfoVersion.lis";
    oeffnen<FrmVersionInfo>("mnuHilfe", "mnuVersionsHistorie", [&](FrmVersionInfo* f) {
        auto* liste = kind<QTreeWidget>(f, "lisVersionen");
        EXPECT_GE(liste->topLevelItemCount(), 2);
        ASSERT_NE(liste->currentItem(), nullptr);
        EXPECT_TRUE(liste->currentItem()->font(0).bold());
        EXPECT_TRUE(liste->currentItem()->text(0).startsWith("Version 9.0.0"));
        EXPECT_FALSE(liste->topLevelItem(1)->font(0).bold());
        EXPECT_TRUE(kind<QLabel>(f, "labLaufendeVersion")->text().contains("9.0.0"));
        bildschirmfoto(f, "versionsgeschichte");
    });
    EXPECT_TRUE(benutzer.gezeigt.empty());
    z.strVersionInfoDatei = z.strCTemp + "fehlt\\InfoVersion.lis";
    FrmVersionInfo f(z);
    ASSERT_EQ(benutzer.gezeigt.size(), 1u);
    EXPECT_EQ(benutzer.gezeigt[0].text.rfind("Die Versionsgeschichte fehlt:\r", 0), 0u);
    EXPECT_EQ(kind<QTreeWidget>(&f, "lisVersionen")->topLevelItemCount(), 0);
}

}  // namespace
}  // namespace tessara::uitest
