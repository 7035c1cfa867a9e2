#include "ui/frm_vollbild.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <exception>

#include "startup/fehler_log.h"

namespace tessara {

DiaFlaeche::DiaFlaeche(QWidget* eltern) : QWidget(eltern) {
    setMinimumSize(320, 240);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void DiaFlaeche::setBild(const QImage& bild) {
    bild_ = bild;
    update();
}

void DiaFlaeche::setHintergrund(ui::DiaHintergrund h) {
    hintergrund_ = h;
    update();
}

QSize DiaFlaeche::bildGroesse() const { return size() * devicePixelRatioF(); }

void DiaFlaeche::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), ui::fctHintergrundFarbe(hintergrund_));
    if (bild_.isNull()) return;
    const QSizeF logisch = QSizeF(bild_.size()) / bild_.devicePixelRatio();
    if (logisch.toSize() == size()) {
        p.drawImage(QPointF(0, 0), bild_);
        return;
    }
    // An older picture: scaled into the area, proportions kept, centred.
    QSizeF ziel = logisch.scaled(QSizeF(size()), Qt::KeepAspectRatio);
    QRectF r(QPointF(0, 0), ziel);
    r.moveCenter(QRectF(rect()).center());
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(r, bild_);
}

void DiaFlaeche::resizeEvent(QResizeEvent*) { emit groesseGeaendert(); }

FrmVollbild::FrmVollbild(ProgrammZustand& z, ui::DiaVorschauCache& cache,
                         const std::string& strBildname, const std::string& strBeschriftung,
                         const std::string& strAufrufer, QWidget* eltern)
    : QDialog(eltern), z_(z), cache_(cache), strBildname_(strBildname), strAufrufer_(strAufrufer) {
    setObjectName(QStringLiteral("frmVollbild"));
    setSizeGripEnabled(true);
    sldVollbild_ = new DiaFlaeche(this);
    sldVollbild_->setObjectName(QStringLiteral("sldVollbild"));
    labBlock_ = new QLabel(QString::fromStdString(strBeschriftung), this);
    labBlock_->setObjectName(QStringLiteral("labBlock"));
    labBlock_->setMinimumWidth(300);
    labBlock_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    cmbSchliessen_ = new QPushButton(this);
    cmbSchliessen_->setObjectName(QStringLiteral("cmbSchliessen"));
    cmbSchliessen_->setMinimumSize(110, 28);
    cmbSchliessen_->setDefault(true);

    auto* unten = new QHBoxLayout;
    unten->addWidget(labBlock_, 1);
    unten->addWidget(cmbSchliessen_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sldVollbild_, 1);
    layout->addLayout(unten);

    malTakt_.setSingleShot(true);
    malTakt_.setInterval(40);
    connect(&malTakt_, &QTimer::timeout, this, &FrmVollbild::bildMalen);
    connect(sldVollbild_, &DiaFlaeche::groesseGeaendert, &malTakt_, qOverload<>(&QTimer::start));
    // Escape closes as in every dialog (QDialog::reject).
    connect(cmbSchliessen_, &QPushButton::clicked, this, &QDialog::accept);

    // Most of the screen, the slide's landscape proportions.
    QScreen* schirm = eltern ? eltern->screen() : QGuiApplication::primaryScreen();
    const QRect frei = schirm ? schirm->availableGeometry() : QRect(0, 0, 1024, 768);
    resize(QSize(frei.width() * 7 / 10, frei.height() * 7 / 10));
}

void FrmVollbild::setHintergrund(ui::DiaHintergrund h) {
    hintergrund_ = h;
    sldVollbild_->setHintergrund(h);
    sldVollbild_->setBild({});
    if (isVisible()) bildMalen();
}

void FrmVollbild::showEvent(QShowEvent* e) {
    QDialog::showEvent(e);
    // The first picture at once, not after the resize pause.
    malTakt_.stop();
    bildMalen();
}

void FrmVollbild::bildMalen() {
    Prozedur p(z_, "FrmVollbild.bildMalen", true);
    p.geschuetztNurLog([&] {
        p.step("Vollbild malen");
        const QSize groesse = sldVollbild_->bildGroesse();
        if (groesse.isEmpty()) return;
        QImage bild = cache_.bild(strBildname_, groesse, hintergrund_);
        bild.setDevicePixelRatio(sldVollbild_->devicePixelRatioF());
        sldVollbild_->setBild(bild);
    });
}

}  // namespace tessara
