// The options window: values shown by name, OK saves them to the registry,
// Cancel changes nothing, values no control can show appear as the default.
#include "ui/frm_optionen.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

// Setup values the window does not show: places, geometry, the host, and
// two that steer nothing: a reserved value and the earlier versions' layout,
// which this program never had.
bool nichtImFenster(const std::string& name) {
    for (const char* n :
         {"Eintrag1", "longUnbesetzt", "longUeberschreibenDefMenueGlobal", "strAktuellerOrdnerName",
          "strACadVersion", "strVerzeichnisVorgabe", "longCurrentX", "longCurrentY",
          "strAktuelleOrdnerNr", "lonFrmHeight", "lonFrmWidth", "lonOldView"})
        if (name == n) return true;
    return false;
}

class FrmOptionenTest : public FensterTest {
  protected:
    // A click on the box itself: without its caption (the caption files are
    // not loaded here) the middle of the control is empty space.
    static void ankreuzen(QCheckBox* c) {
        QTest::mouseClick(c, Qt::LeftButton, {}, QPoint(8, c->height() / 2));
    }
    typSetupWerte gespeichert() {
        typSetupWerte w;
        w.longAnzahlDerBilder = -1;  // not a default, so a missing value shows
        EXPECT_TRUE(SetupEinstellungenZuweisen(z, w));
        return w;
    }
};

TEST_F(FrmOptionenTest, EveryValueHasItsControlInItsFrame) {
    typSetupWerte werte;
    FrmOptionen f(z, werte);
    int gezeigt = 0;
    for (const auto& e : fctSetupEintraege()) {
        if (nichtImFenster(e.name)) continue;
        auto* w = f.findChild<QWidget*>(QString::fromLatin1(e.name));
        ASSERT_NE(w, nullptr) << e.name;
        EXPECT_TRUE(qobject_cast<QGroupBox*>(w->parentWidget())) << e.name;
        ++gezeigt;
    }
    EXPECT_EQ(gezeigt, 33);
    EXPECT_EQ(kind<QComboBox>(&f, "longAnzahlDerBilder")->count(), 8);
    EXPECT_EQ(kind<QComboBox>(&f, "longDoppelklick")->count(), 4);
    EXPECT_EQ(kind<QCheckBox>(&f, "longXRef")->parentWidget()->objectName(), "fraEinfuegen");
    EXPECT_EQ(f.findChild<QWidget*>("lonOldView"), nullptr);
    EXPECT_EQ(kind<QCheckBox>(&f, "longRechteverwaltung")->parentWidget()->objectName(),
              "fraErzeugen");

    // German captions of about 40 characters fit the room the window keeps
    // for them: the window does not grow when the caption files fill it.
    const QSize ohneText = f.sizeHint();
    for (auto* c : f.findChildren<QCheckBox*>())
        c->setText(QString::fromUtf8("Blockdefinition aus Bibliothek übernehmen"));
    for (auto* l : f.findChildren<QLabel*>()) l->setText(QString::fromUtf8("Maßstab X / Y / Z:"));
    for (auto* g : f.findChildren<QGroupBox*>()) g->setTitle(QString::fromUtf8("Einfügen"));
    for (auto* cb : f.findChildren<QComboBox*>())
        for (int i = 0; i < cb->count(); ++i)
            cb->setItemText(i, QString::fromUtf8("72 Bilder (12 × 6)"));
    kind<QPushButton>(&f, "cmbOk")->setText("OK");
    kind<QPushButton>(&f, "cmbAbbrechen")->setText("Abbrechen");
    EXPECT_LE(f.sizeHint().width(), ohneText.width());
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&f));
    bildschirmfoto(&f, "frmOptionen_beschriftet");
}

TEST_F(FrmOptionenTest, OkSavesWhatWasChosen) {
    typSetupWerte werte;
    werte.strVerzeichnisVorgabe = "c:\\Bibliothek\\";
    FrmOptionen f(z, werte);
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&f));
    bildschirmfoto(&f, "frmOptionen");

    EXPECT_TRUE(kind<QCheckBox>(&f, "longBlockAusBibliothek")->isChecked());
    EXPECT_FALSE(kind<QCheckBox>(&f, "longXRef")->isChecked());
    ankreuzen(kind<QCheckBox>(&f, "longXRef"));
    ankreuzen(kind<QCheckBox>(&f, "longStuecklisteEinfuegen"));
    kind<QComboBox>(&f, "longAnzahlDerBilder")->setCurrentIndex(7);
    auto* y = kind<QLineEdit>(&f, "strMassstabY");
    y->clear();
    QTest::keyClicks(y, "0,5x");  // the letter is refused, the comma becomes a point
    QTest::mouseClick(kind<QPushButton>(&f, "cmbOk"), Qt::LeftButton);

    EXPECT_EQ(f.result(), QDialog::Accepted);
    EXPECT_EQ(werte.longXRef, 1);
    typSetupWerte w = gespeichert();
    EXPECT_EQ(w.longXRef, 1);
    EXPECT_EQ(w.longStuecklisteEinfuegen, 1);
    EXPECT_EQ(w.longAnzahlDerBilder, 7);
    EXPECT_EQ(w.strMassstabY, "0.5");
    EXPECT_EQ(w.strMassstabX, "1");
    EXPECT_EQ(w.longBlockAusBibliothek, 1);
    EXPECT_EQ(w.longAbfrageZFaktor, 0);
    EXPECT_EQ(w.strVerzeichnisVorgabe, "c:\\Bibliothek\\");
    EXPECT_EQ(protokoll(), "");
}

TEST_F(FrmOptionenTest, NonsenseShowsAsDefaultAndIsMendedOnOkOnlyNotOnCancel) {
    typSetupWerte werte;
    werte.longAnzahlDerBilder = 12;
    werte.longDoppelklick = 9;
    werte.strMassstabX = "abc";
    werte.lonFrmHeight = -40;
    {
        FrmOptionen f(z, werte);
        f.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&f));
        EXPECT_EQ(kind<QComboBox>(&f, "longAnzahlDerBilder")->currentIndex(), 2);
        EXPECT_EQ(kind<QComboBox>(&f, "longDoppelklick")->currentIndex(), 0);
        EXPECT_EQ(kind<QLineEdit>(&f, "strMassstabX")->text(), "1");
        // Cancel after a change writes nothing and leaves the values as they were.
        ankreuzen(kind<QCheckBox>(&f, "longXRef"));
        ASSERT_TRUE(kind<QCheckBox>(&f, "longXRef")->isChecked());
        QTest::mouseClick(kind<QPushButton>(&f, "cmbAbbrechen"), Qt::LeftButton);
        EXPECT_EQ(f.result(), QDialog::Rejected);
        EXPECT_EQ(werte.longXRef, 0);
        EXPECT_EQ(werte.longAnzahlDerBilder, 12);
        EXPECT_EQ(werte.strMassstabX, "abc");
        EXPECT_TRUE(registry.data().keyPaths().empty());
    }
    FrmOptionen f(z, werte);
    QTest::mouseClick(kind<QPushButton>(&f, "cmbOk"), Qt::LeftButton);
    typSetupWerte w = gespeichert();
    EXPECT_EQ(w.longAnzahlDerBilder, 2);
    EXPECT_EQ(w.longDoppelklick, 0);
    EXPECT_EQ(w.strMassstabX, "1");
    EXPECT_EQ(w.lonFrmHeight, 0);
    EXPECT_EQ(werte.longAnzahlDerBilder, 2);
}

}  // namespace
}  // namespace tessara::uitest
