// The start window: frameless, centred, counts the steps of a load and
// closes when the load is over.
#include "ui/frm_startfenster.h"

#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QTest>

#include "ui_umgebung.h"

namespace tessara::uitest {
namespace {

class FrmStartfensterTest : public FensterTest {};

TEST_F(FrmStartfensterTest, CentredCountsStepsAndCloses) {
    FrmStartfenster f;
    EXPECT_TRUE(f.windowFlags() & Qt::FramelessWindowHint);
    f.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&f));
    const QPoint mitte = QGuiApplication::primaryScreen()->availableGeometry().center();
    EXPECT_LE((f.geometry().center() - mitte).manhattanLength(), 2);

    auto* balken = f.findChild<QProgressBar*>("fortschritt");
    ASSERT_NE(balken, nullptr);
    f.schritt(3, 10, "Ordner werden gelesen");
    EXPECT_EQ(balken->maximum(), 10);
    EXPECT_EQ(balken->value(), 3);
    EXPECT_EQ(f.findChild<QLabel*>("labLaden")->text(), "Ordner werden gelesen");
    f.schritt(12, 10, "");  // past the end: full, the line stays
    EXPECT_EQ(balken->value(), 10);
    EXPECT_EQ(f.findChild<QLabel*>("labLaden")->text(), "Ordner werden gelesen");
    f.schritt(4, 10, "");
    bildschirmfoto(&f, "frmStartfenster");

    f.fertig();
    EXPECT_FALSE(f.isVisible());
}

}  // namespace
}  // namespace tessara::uitest
