// The full-size view: a real slide painted at the window's size, painted
// anew after a resize, on the caller's background; Escape closes it.
#include "ui/frm_vollbild.h"

#include <QLabel>
#include <QTest>

#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

// Pixels of the picture area that are not the background.
int gezeichnetePunkte(QWidget* flaeche, QColor hintergrund) {
    const QImage bild = flaeche->grab().toImage();
    int n = 0;
    for (int y = 0; y < bild.height(); ++y)
        for (int x = 0; x < bild.width(); ++x)
            if (bild.pixelColor(x, y) != hintergrund) ++n;
    return n;
}

class FrmVollbildTest : public FensterTest {};

TEST_F(FrmVollbildTest, PaintsTheSlideAtTheWindowsSizeAndEscapeCloses) {
    ui::DiaVorschauCache cache;
    FrmVollbild f(z, cache, testdatenProgrammPfad("slides/slide_kz.sld"), "0010017 Ventil",
                  "frmBockverwaltung");
    EXPECT_EQ(f.aufrufer(), "frmBockverwaltung");
    auto* flaeche = f.findChild<DiaFlaeche*>("sldVollbild");
    ASSERT_NE(flaeche, nullptr);
    EXPECT_EQ(f.findChild<QLabel*>("labBlock")->text(), "0010017 Ventil");
    f.resize(640, 480);
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&f));
    auto passend = [&] { return flaeche->bild().size() == flaeche->bildGroesse(); };
    ASSERT_TRUE(QTest::qWaitFor(passend));
    const int dunkel = gezeichnetePunkte(flaeche, Qt::black);
    EXPECT_GT(dunkel, 500);
    EXPECT_LT(dunkel, flaeche->width() * flaeche->height() / 2);
    bildschirmfoto(&f, "frmVollbild");

    f.resize(1000, 760);
    ASSERT_TRUE(QTest::qWaitFor([&] { return flaeche->width() > 900 && passend(); }));
    EXPECT_GT(gezeichnetePunkte(flaeche, Qt::black), dunkel);

    f.setHintergrund(ui::DiaHintergrund::Hell);
    ASSERT_TRUE(QTest::qWaitFor(passend));
    EXPECT_EQ(flaeche->grab().toImage().pixelColor(2, 2), QColor(Qt::white));
    EXPECT_GT(gezeichnetePunkte(flaeche, Qt::white), 500);
    bildschirmfoto(&f, "frmVollbild_hell");

    QTest::keyClick(&f, Qt::Key_Escape);
    EXPECT_FALSE(f.isVisible());
    EXPECT_EQ(f.result(), QDialog::Rejected);
    EXPECT_EQ(protokoll(), "");
}

}  // namespace
}  // namespace tessara::uitest
