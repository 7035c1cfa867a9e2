// The main window under Xvfb on the demo library: wiring of boxes, slots,
// keys and the lock, and the load and closing sequences around them.
#include "ui/frm_blockverwaltung.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <cstdlib>
#include <fstream>

#include "authoring/datei_layout.h"
#include "authoring/slide_library.h"
#include "cad/fake_acad.h"
#include "captions/beschriftung.h"
#include "captions/meldungen.h"
#include "db/jet_opener.h"
#include "db/recordset.h"
#include "library/datenbank.h"
#include "platform/environment.h"
#include "platform/memory/memory_desktop.h"
#include "startup/benutzer.h"
#include "startup/einstellungen.h"
#include "ui/frm_vollbild.h"
#include "ui/sld_blockverwaltung.h"
#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

namespace fs = std::filesystem;

class Hauptfenster : public HauptfensterTest {
  protected:
    FrmBlockverwaltung& laden(long doppelklick = 0) {
        typSetupWerte w;
        w.longDoppelklick = doppelklick;
        return hauptfensterLaden(w);
    }
    template <class T>
    T* kind(const QString& name) {
        return HauptfensterTest::kind<T>(fenster.get(), name);
    }
    int sichtbareSlots() {
        int n = 0;
        for (auto* s : fenster->findChildren<QWidget*>(QRegularExpression("^slot_\\d+$")))
            n += s->isVisible();
        return n;
    }
    long markierteZeilen() {
        db::Connection con(db::jetOpener(platform::nativePath));
        con.open(fctJetVerbindung(bib + "\\dbTessara.mdb"));
        db::Recordset rs;
        rs.open("SELECT * FROM tblMarkierteBloecke", con);
        return rs.recordCount();
    }
};

// Slot 1 loses its slide and gets a drawing with a sky-blue 5 x 3 PNG
// preview before the window paints: slot 0 paints its slide, slot 1 the
// drawing's preview.
TEST_F(Hauptfenster, ShowsTheLibraryWithSlidesOrTheDrawingsPreview) {
    auto& f = laden();
    const auto& s = f.modell().seitenSlots().at(1);
    fs::remove(platform::nativePath(slide::fctBildnameZerlegen(s.strBildname).datei));
    fs::copy_file(std::string(TESSARA_SOURCE_DIR) + "/fuzz/seeds/dwg_preview/png2013.dwg",
                  platform::nativePath(
                      f.modell().strBasisVerzeichnis() +
                      fctZeichnungDatei(f.modell().aktuellerOrdner()->OrdnerNr, s.strBlockNr, 0)),
                  fs::copy_options::overwrite_existing);
    f.resize(1180, 820);
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&f));
    EXPECT_TRUE(benutzer.gezeigt.empty()) << benutzer.gezeigt.front().text;
    EXPECT_GE(kind<QComboBox>("comboxOrdner")->count(), 4);
    EXPECT_EQ(sichtbareSlots(), 16);
    EXPECT_FALSE(kind<QLabel>("labBlock_0")->text().isEmpty());
    EXPECT_EQ(kind<QPushButton>("cmbEinfuegen")->text().remove('&'), QString::fromUtf8("Einfügen"));
    QSignalSpy gemalt(&f, &FrmBlockverwaltung::seiteGemalt);
    f.Anzeigen();  // at the shown size
    ASSERT_TRUE(gemalt.count() > 0 || gemalt.wait(10000));
    const QImage bild = kind<SldBlockverwaltung>("sldBlockverwaltung_0")->bild();
    ASSERT_FALSE(bild.isNull());
    const QRgb grund = bild.pixel(0, 0);
    int gezeichnet = 0;
    for (int y = 0; y < bild.height(); ++y)
        for (int x = 0; x < bild.width(); ++x) gezeichnet += bild.pixel(x, y) != grund;
    EXPECT_GT(gezeichnet, 100) << "slot 0 is blank";
    const QImage vorschau = kind<SldBlockverwaltung>("sldBlockverwaltung_1")->bild();
    EXPECT_EQ(vorschau.pixel(vorschau.width() / 2, vorschau.height() / 2), qRgb(0, 200, 255));
    bildschirmfoto(&f, "frmBlockverwaltung");
}

// Only for AutoCAD LT: the angle box greys the X-scale box, that one the
// Y-scale box.
TEST_F(Hauptfenster, ForAutoCadLtCheckWinkelAndCheckXFrageDisableTheirDependents) {
    desktop.addWindow("AutoCAD LT 2015 - [Zeichnung1.dwg]");
    laden();
    auto *winkel = kind<QCheckBox>("checkWinkel"), *x = kind<QCheckBox>("checkXFrage"),
         *y = kind<QCheckBox>("checkYFrage");
    EXPECT_EQ(z.strSlideEndung, ".sld");  // and the start fixed single slides
    winkel->setChecked(true);
    x->setChecked(true);
    EXPECT_FALSE(x->isEnabled() || y->isEnabled());
    bildschirmfoto(fenster.get(), "hauptfenster_lt_winkel");
    winkel->setChecked(false);
    EXPECT_TRUE(x->isEnabled());
    cad.typAcadVersionInfo.strACadVersion = "AutoCAD 2015";
    winkel->setChecked(true);
    EXPECT_TRUE(x->isEnabled() && y->isEnabled());
}

TEST_F(Hauptfenster, FoldersPagesAndKeysMoveThroughTheLibrary) {
    auto& f = laden();
    f.show();
    auto* ordner = kind<QComboBox>("comboxOrdner");
    const QString vorher = kind<QLabel>("labBlock_0")->text();
    ordner->activated(1);
    EXPECT_EQ(f.modell().intOrdnerIndex(), 1);
    EXPECT_NE(kind<QLabel>("labBlock_0")->text(), vorher);
    QTest::mouseClick(kind<QPushButton>("combutVor"), Qt::LeftButton);
    EXPECT_EQ(f.modell().intSeite(), 1);
    EXPECT_TRUE(kind<QLabel>("labSeitenNr")->text().contains("2"));
    auto* raster = kind<QWidget>("rasterFlaeche");
    QTest::keyClick(raster, Qt::Key_PageUp);
    EXPECT_EQ(f.modell().intSeite(), 0);
    QTest::keyClick(raster, Qt::Key_Right);
    QTest::keyClick(raster, Qt::Key_Down);
    EXPECT_EQ(f.modell().intPosition(), 5);
    EXPECT_TRUE(kind<SldBlockverwaltung>("sldBlockverwaltung_5")->ausgewaehlt());
    QTest::keyClick(raster, Qt::Key_PageDown);
    EXPECT_EQ(f.modell().intSeite(), 1);
}

TEST_F(Hauptfenster, PictureSizesLayTheGridOutInTheirShape) {
    auto& f = laden();
    f.resize(1180, 820);
    f.show();
    auto* groesse = kind<QComboBox>("comboxBilderanzahl");
    struct Fall {
        int index, anzahl;
        bool slot8InZeile0;
    };
    for (const Fall& fall :
         {Fall{7, 72, true}, Fall{5, 36, false}, Fall{6, 36, true}, Fall{0, 4, false}}) {
        groesse->activated(fall.index);
        QApplication::processEvents();
        EXPECT_EQ(sichtbareSlots(), fall.anzahl) << fall.index;
        if (fall.anzahl > 8) {
            EXPECT_EQ(kind<QWidget>("slot_8")->y() == kind<QWidget>("slot_0")->y(),
                      fall.slot8InZeile0)
                << fall.index;
        }
    }
    EXPECT_EQ(f.setup().longAnzahlDerBilder, 0);
}

TEST_F(Hauptfenster, DoubleClickMarksOrShowsThePictureBySetting) {
    laden(2);
    const long vorher = markierteZeilen();
    QTest::mouseDClick(kind<QWidget>("sldBlockverwaltung_0"), Qt::LeftButton);
    EXPECT_TRUE(kind<QCheckBox>("chkMarkieren_0")->isChecked());
    EXPECT_EQ(markierteZeilen(), vorher + 1);

    fenster.reset();
    laden(3);
    QTest::mouseDClick(kind<QWidget>("sldBlockverwaltung_0"), Qt::LeftButton);
    auto* vollbild = fenster->findChild<FrmVollbild*>();
    ASSERT_NE(vollbild, nullptr);
    EXPECT_EQ(vollbild->aufrufer(), "frmBockverwaltung");
    EXPECT_EQ(vollbild->bildname(), fenster->modell().seitenSlots()[0].strBildname);
}

TEST_F(Hauptfenster, AWriteProtectedLibraryLocksTheCommandsThatChangeIt) {
    // A directory where the write test puts its file: the test fails for
    // every user, root included.
    fs::create_directories(wurzel / "bib" / "Test.txt");
    auto& f = laden(2);
    EXPECT_TRUE(f.schreibgeschuetzt());
    EXPECT_FALSE(kind<QLabel>("labSchreibschutz")->isHidden());
    EXPECT_FALSE(kind<QCheckBox>("chkMarkieren_0")->isEnabled());
    EXPECT_FALSE(kind<QPushButton>("combutNeu")->isEnabled());
    EXPECT_FALSE(kind<QWidget>("sldBlockverwaltung_1")->acceptDrops());
    const long vorher = markierteZeilen();
    QTest::mouseDClick(kind<QWidget>("sldBlockverwaltung_0"), Qt::LeftButton);
    EXPECT_EQ(markierteZeilen(), vorher);
}

// The strip shows the selected Block's Views and a click marks one; a slot
// dropped onto a free slot moves its Block there with its files.
TEST_F(Hauptfenster, ViewStripAndDropOntoAFreeSlot) {
    {
        db::Connection con(db::jetOpener(platform::nativePath));
        con.open(fctJetVerbindung(bib + "\\dbTessara.mdb"));
        con.execute("DELETE FROM tblBlockInfo WHERE Block = '0000003'");
    }
    fs::remove(platform::nativePath(bib + "\\000\\00000030.slb"));
    fs::remove(platform::nativePath(bib + "\\000\\Block\\00000030.dwg"));
    laden();
    QTest::mouseClick(kind<QWidget>("sldBlockverwaltung_10"), Qt::LeftButton);
    EXPECT_TRUE(kind<QWidget>("sldAnsicht_1")->isVisible());
    EXPECT_FALSE(kind<QWidget>("sldAnsicht_2")->isVisible());
    QTest::mouseClick(kind<QWidget>("sldAnsicht_1"), Qt::LeftButton);
    EXPECT_TRUE(kind<SldBlockverwaltung>("sldAnsicht_1")->ausgewaehlt());
    bildschirmfoto(fenster.get(), "frmBlockverwaltung_ansichten");

    QMimeData daten;
    daten.setData(SldBlockverwaltung::kPlatzFormat, "0");
    auto* ziel = kind<QWidget>("sldBlockverwaltung_3");
    QDragEnterEvent betreten(QPoint(5, 5), Qt::MoveAction, &daten, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(ziel, &betreten);
    EXPECT_TRUE(betreten.isAccepted());
    QDropEvent ablegen(QPointF(5, 5), Qt::MoveAction, &daten, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(ziel, &ablegen);
    db::Connection con(db::jetOpener(platform::nativePath));
    con.open(fctJetVerbindung(bib + "\\dbTessara.mdb"));
    db::Recordset rs;
    rs.open("SELECT Block FROM tblBlockInfo WHERE Block IN ('0000000', '0000003')", con);
    ASSERT_EQ(rs.recordCount(), 1);
    EXPECT_EQ(rs.text("Block"), "0000003");
    EXPECT_TRUE(fs::exists(platform::nativePath(bib + "\\000\\00000030.slb")));
    EXPECT_TRUE(kind<SldBlockverwaltung>("sldBlockverwaltung_3")->ausgewaehlt());
}

// Ctrl+X on a slot, Ctrl+V in another Folder: the Block moves there; until
// then, closing asks about the cut.
TEST_F(Hauptfenster, TheEditMenuAndItsKeysCutAndPasteABlockIntoAnotherFolder) {
    auto& f = laden();
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&f));
    auto* raster = kind<QWidget>("rasterFlaeche");
    const QString name = kind<QLabel>("labBlock_0")->text();
    QTest::keyClick(raster, Qt::Key_X, Qt::ControlModifier);
    benutzer.antworten = {Antwort::Nein};
    EXPECT_FALSE(f.close());
    kind<QComboBox>("comboxOrdner")->activated(1);
    f.sldBlockverwaltung_LButtonDown(2);
    QTest::keyClick(raster, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(kind<QLabel>("labBlock_2")->text(), name);
    kind<QComboBox>("comboxOrdner")->activated(0);
    EXPECT_FALSE(f.modell().seitenSlots().at(0).booBelegt);
    ASSERT_FALSE(benutzer.gezeigt.empty());
    EXPECT_EQ(benutzer.gezeigt.front().text, fctBeschriftMsgboxZuordnen(z, 529, kGruppeAllg) +
                                                 "\r1: " + f.modell().seitenSlots()[0].strBlockNr);
    auto* menue = kind<QMenu>("mnuBearbeiten");
    menue->popup(f.mapToGlobal(QPoint(40, 40)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menue));
    EXPECT_EQ(menue->actions().at(2)->text().remove('&'), QString::fromUtf8("Einfügen"));
    bildschirmfoto(menue, "frmBlockverwaltung_bearbeiten");
    menue->close();
    EXPECT_EQ(protokoll(), "");
}

TEST_F(Hauptfenster, ClosingKeepsThePositionForTheNextStart) {
    auto& f = laden();
    kind<QComboBox>("comboxOrdner")->activated(2);
    f.combutVor_Click();
    f.sldBlockverwaltung_LButtonDown(3);
    const std::string ordner = f.modell().aktuellerOrdner()->OrdnerNr;
    f.entladen();
    EXPECT_EQ(IniGetValue(z, bib + "\\dbTessara.ini", "Position", "s1"), "1");
    fenster.reset();
    auto& neu = laden();
    EXPECT_EQ(neu.modell().aktuellerOrdner()->OrdnerNr, ordner);
    EXPECT_EQ(neu.modell().intSeite(), 1);
    EXPECT_EQ(neu.modell().intPosition(), 3);
}

TEST_F(Hauptfenster, TheLibraryMenuAttachesAndDetachesLibraries) {
    auto& f = laden();
    f.show();
    fs::create_directories(wurzel / "neu");
    const std::string neu = platform::programPath((wurzel / "neu").string());
    benutzer.ordner = {neu};
    QSignalSpy gemalt(&f, &FrmBlockverwaltung::seiteGemalt);
    kind<QAction>("mnuBibliothekAnhaengen")->trigger();
    ASSERT_TRUE(gemalt.count() > 0 || gemalt.wait(10000));
    auto* box = kind<QComboBox>("comboxVerzeichnis");
    ASSERT_EQ(box->count(), 2);
    EXPECT_EQ(box->currentData().toString().toStdString(), neu);
    EXPECT_EQ(kind<QComboBox>("comboxOrdner")->currentText(), "Standard-Ordner");
    bildschirmfoto(&f, "frmBlockverwaltung_angehaengt");
    auto* menue = kind<QMenu>("mnuDatei");
    menue->popup(f.mapToGlobal(QPoint(0, 0)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(menue));
    bildschirmfoto(menue, "mnuDatei");
    menue->close();
    benutzer.wahlen = {neu};
    kind<QAction>("mnuBibliothekAbhaengen")->trigger();
    ASSERT_EQ(box->count(), 1);
    EXPECT_EQ(z.strAktuelleDb, bib + "\\dbTessara.mdb");
    EXPECT_TRUE(fs::exists(wurzel / "neu" / "dbTessara.mdb"));
}

// A program folder without its code table, a damaged library: the window
// says which file, shows no slots and stays usable.
TEST_F(Hauptfenster, ACodeTableOrLibraryThatCannotBeReadIsReportedAndTheWindowStaysUsable) {
    const std::string app = z.strAppPfad;
    for (const std::string datei : {"txtPrefix.txt", "dbTessara.mdb"}) {
        SCOPED_TRACE(datei);
        const bool bibliothek = datei == "dbTessara.mdb";
        fenster.reset();
        benutzer.gezeigt.clear();
        fs::create_directories(wurzel / "prog");
        z.strAppPfad = bibliothek ? app : platform::programPath((wurzel / "prog").string());
        if (bibliothek)
            std::ofstream(wurzel / "bib" / datei, std::ios::binary | std::ios::trunc)
                << std::string(8192, '\x5a');
        auto& f = laden();
        ASSERT_FALSE(benutzer.gezeigt.empty());
        EXPECT_NE(benutzer.gezeigt.front().text.find(datei), std::string::npos);
        EXPECT_EQ(sichtbareSlots(), 0);
        f.combutVor_Click();
        f.cmbEinfuegen_Click();
        QTest::keyClick(kind<QWidget>("rasterFlaeche"), Qt::Key_Return);
        if (bibliothek) {
            EXPECT_FALSE(f.modell().offen() || kind<QPushButton>("combutVor")->isEnabled());
        }
    }
}

// The fake AutoCAD's events move the title; the host closing in the middle
// of an insertion ends it and leaves the window to connect afresh. What the
// events mean (closed drawings, the connection dropped) is HostEreignisse's.
TEST_F(Hauptfenster, HostEreignisseBewegenDenTitelUndEinSchliessenderHostEndetSauber) {
    test::FakeAutomation automation;
    automation.laufend =
        std::make_shared<test::FakeAnwendung>(std::make_shared<test::FakeAcadLog>());
    test::FakeAnwendung* app = automation.laufend.get();
    cad.automation = &automation;
    auto& f = laden();
    f.ereignisseAbonnieren();
    const std::string basis = fctFensterTitel(z, fctBeschriftung(z, "ProgName"));
    auto titel = [&] { return f.windowTitle().toStdString(); };
    EXPECT_EQ(titel(), basis + " - Zeichnung1.dwg");
    app->dokument->titel = "Plan.dwg";
    app->dokument->variablen["DWGPREFIX"] = bib + "\\fehlt\\";
    app->ausloesen(AcadEreignis::DokumentGeoeffnet, "Plan.dwg");
    EXPECT_EQ(titel(), basis + " - Plan.dwg (Verzeichnis schreibgeschützt)");
    EXPECT_NE(kind<QLabel>("labStatus")->text(), "AutoCAD wurde beendet.");

    auto gehalten = automation.laufend;  // the insertion's document outlives the host
    app->dokument->beiBefehl = [&](const std::string&) {
        app->dokument->beiBefehl = nullptr;
        automation.laufend.reset();
        app->ausloesen(AcadEreignis::AnwendungEnde);
    };
    QSignalSpy eingefuegt(&f, &FrmBlockverwaltung::einfuegungBeendet);
    f.sldBlockverwaltung_LButtonDown(0);
    f.cmbEinfuegen_Click();
    EXPECT_EQ(eingefuegt.count(), 1);
    EXPECT_EQ(titel(), basis);
    EXPECT_EQ(kind<QLabel>("labStatus")->text(), "AutoCAD wurde beendet.");
    bildschirmfoto(&f, "frmBlockverwaltung_host_beendet");
    // The next insertion looks for a host again and finds none.
    f.cmbEinfuegen_Click();
    EXPECT_EQ(eingefuegt.count(), 1);
    EXPECT_FALSE(app->empfaenger);
}

}  // namespace
}  // namespace tessara::uitest
