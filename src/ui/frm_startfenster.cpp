#include "ui/frm_startfenster.h"

#include <QCoreApplication>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace tessara {

FrmStartfenster::FrmStartfenster(QWidget* eltern)
    : QWidget(eltern, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("frmStartfenster"));
    // Without a frame from the window manager the window draws its own edge.
    auto* rahmen = new QFrame(this);
    rahmen->setFrameShape(QFrame::Box);
    rahmen->setFrameShadow(QFrame::Plain);
    rahmen->setLineWidth(1);

    labProgName_ = new QLabel(rahmen);
    labProgName_->setObjectName(QStringLiteral("labProgName"));
    QFont gross = labProgName_->font();
    gross.setPointSizeF(gross.pointSizeF() * 2.2);
    gross.setBold(true);
    labProgName_->setFont(gross);
    labProgName_->setAlignment(Qt::AlignCenter);
    labProgName_->setMinimumSize(380, 48);

    labVersion_ = new QLabel(rahmen);
    labVersion_->setObjectName(QStringLiteral("labVersion"));
    labVersion_->setAlignment(Qt::AlignCenter);
    labVersion_->setMinimumSize(380, 22);

    labLaden_ = new QLabel(rahmen);
    labLaden_->setObjectName(QStringLiteral("labLaden"));
    labLaden_->setMinimumSize(380, 22);

    fortschritt_ = new QProgressBar(rahmen);
    fortschritt_->setObjectName(QStringLiteral("fortschritt"));
    fortschritt_->setRange(0, 1);
    fortschritt_->setValue(0);
    fortschritt_->setMinimumSize(380, 22);

    auto* innen = new QVBoxLayout(rahmen);
    innen->setContentsMargins(24, 20, 24, 20);
    innen->setSpacing(10);
    innen->addWidget(labProgName_);
    innen->addWidget(labVersion_);
    innen->addSpacing(16);
    innen->addWidget(labLaden_);
    innen->addWidget(fortschritt_);
    auto* aussen = new QVBoxLayout(this);
    aussen->setContentsMargins(0, 0, 0, 0);
    aussen->addWidget(rahmen);
}

void FrmStartfenster::schritt(int erledigt, int gesamt, const QString& text) {
    if (gesamt > 0) {
        fortschritt_->setRange(0, gesamt);
        fortschritt_->setValue(qBound(0, erledigt, gesamt));
    } else {
        fortschritt_->setRange(0, 0);
    }
    if (!text.isEmpty()) labLaden_->setText(text);
    if (!isVisible()) return;
    if (erschienen_) {
        // Only this window: the main window behind it is drawn once, when
        // its Page is there, not at every step of its load.
        labLaden_->repaint();
        fortschritt_->repaint();
        return;
    }
    // The first step lets the window appear on the screen.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    erschienen_ = windowHandle() && windowHandle()->isExposed();
}

void FrmStartfenster::fertig() { close(); }

void FrmStartfenster::showEvent(QShowEvent* e) {
    QWidget::showEvent(e);
    zentrieren();
}

void FrmStartfenster::zentrieren() {
    adjustSize();
    QScreen* schirm = parentWidget() ? parentWidget()->screen() : QGuiApplication::primaryScreen();
    if (!schirm) return;
    QRect r(QPoint(0, 0), size());
    r.moveCenter(schirm->availableGeometry().center());
    move(r.topLeft());
}

}  // namespace tessara
