#include "ui/sld_blockverwaltung.h"

#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <QVBoxLayout>

namespace tessara {

const QString SldBlockverwaltung::kPlatzFormat = QStringLiteral("application/x-tessara-platz");

SldBlockverwaltung::SldBlockverwaltung(int index, QWidget* eltern)
    : QWidget(eltern), index_(index) {
    setObjectName(QStringLiteral("sldBlockverwaltung_%1").arg(index));
    setMinimumSize(48, 36);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void SldBlockverwaltung::setBild(const QImage& bild) {
    bild_ = bild;
    update();
}

void SldBlockverwaltung::setAusgewaehlt(bool a) {
    if (a == ausgewaehlt_) return;
    ausgewaehlt_ = a;
    update();
}

void SldBlockverwaltung::setZiehDaten(const QString& text, const QString& datei) {
    ziehText_ = text;
    ziehDatei_ = datei;
}

void SldBlockverwaltung::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), QColor(32, 32, 32));
    if (!bild_.isNull()) {
        QSize s = bild_.size().scaled(size(), Qt::KeepAspectRatio);
        QRect ziel(QPoint((width() - s.width()) / 2, (height() - s.height()) / 2), s);
        p.drawImage(ziel, bild_);
    }
    // The selection frame: wide and bright enough to find on a Page of 72.
    if (ausgewaehlt_) {
        p.setPen(QPen(QColor(255, 190, 0), 3));
        p.drawRect(rect().adjusted(1, 1, -2, -2));
    } else {
        p.setPen(QPen(QColor(90, 90, 90), 1));
        p.drawRect(rect().adjusted(0, 0, -1, -1));
    }
}

void SldBlockverwaltung::mousePressEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton) {
        druckPunkt_ = e->position().toPoint();
        emit gedrueckt(index_);
    }
    QWidget::mousePressEvent(e);
}

void SldBlockverwaltung::mouseMoveEvent(QMouseEvent* e) {
    if (!(e->buttons() & Qt::LeftButton) || ziehText_.isEmpty()) return;
    if ((e->position().toPoint() - druckPunkt_).manhattanLength() <
        QApplication::startDragDistance())
        return;
    auto* daten = new QMimeData;
    daten->setText(ziehText_);
    if (!ziehDatei_.isEmpty()) daten->setUrls({QUrl::fromLocalFile(ziehDatei_)});
    daten->setData(kPlatzFormat, QByteArray::number(index_));
    auto* ziehen = new QDrag(this);
    ziehen->setMimeData(daten);
    if (!bild_.isNull())
        ziehen->setPixmap(QPixmap::fromImage(
            bild_.scaled(96, 72, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    ziehen->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
}

// Only a slot of this window moves a Block; a file dragged in from outside
// is no slot. A drop on the slot it came from changes nothing.
void SldBlockverwaltung::dragEnterEvent(QDragEnterEvent* e) {
    if (e->mimeData()->hasFormat(kPlatzFormat) &&
        e->mimeData()->data(kPlatzFormat).toInt() != index_) {
        e->setDropAction(Qt::MoveAction);
        e->accept();
    }
}

void SldBlockverwaltung::dropEvent(QDropEvent* e) {
    bool ok = false;
    const int von = e->mimeData()->data(kPlatzFormat).toInt(&ok);
    if (!ok || von == index_) return;
    e->setDropAction(Qt::MoveAction);
    e->accept();
    emit abgelegt(von, index_);
}

void SldBlockverwaltung::mouseDoubleClickEvent(QMouseEvent* e) {
    if (e->button() == Qt::LeftButton) emit doppelklick(index_);
}

void SldBlockverwaltung::resizeEvent(QResizeEvent*) { emit groesseGeaendert(); }

SlotFeld::SlotFeld(int index, QWidget* eltern) : QWidget(eltern) {
    setObjectName(QStringLiteral("slot_%1").arg(index));
    dia = new SldBlockverwaltung(index, this);
    beschriftung = new QLabel(this);
    beschriftung->setObjectName(QStringLiteral("labBlock_%1").arg(index));
    beschriftung->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    beschriftung->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    markieren = new QCheckBox(this);
    markieren->setObjectName(QStringLiteral("chkMarkieren_%1").arg(index));
    auto* unten = new QHBoxLayout;
    unten->setContentsMargins(0, 0, 0, 0);
    unten->setSpacing(2);
    unten->addWidget(markieren);
    unten->addWidget(beschriftung, 1);
    auto* lay = new QVBoxLayout(this);
    lay->setContentsMargins(2, 2, 2, 2);
    lay->setSpacing(1);
    lay->addWidget(dia, 1);
    lay->addLayout(unten);
}

}  // namespace tessara
