#pragma once
// Painting slides with QtGui: into any rectangle of a QPainter or into a
// QImage of any size, the slide's proportions kept (its aspect ratio is that
// of the host screen that took it, pixels need not be square), centred, on a
// dark or light background.
#include <QColor>
#include <QImage>
#include <QPainter>
#include <QRectF>
#include <QSize>
#include <QTransform>

#include "authoring/slide.h"

namespace tessara::ui {

enum class DiaHintergrund { Dunkel, Hell };

QColor fctHintergrundFarbe(DiaHintergrund h);
// AutoCAD colour index 1..255 as drawn on the background (7 is the foreground).
QColor fctAciFarbe(int index, DiaHintergrund h);

// Slide coordinates (origin lower left) to the target rectangle (origin upper
// left), uniformly scaled and centred.
QTransform fctDiaAbbildung(const slide::Slide& dia, const QRectF& ziel);

struct DiaMalOptionen {
    DiaHintergrund hintergrund = DiaHintergrund::Dunkel;
    bool glaetten = true;  // antialiased lines
};

// Paints the slide's vectors and fills into ziel; the background is not painted.
void subDiaMalen(QPainter& painter, const slide::Slide& dia, const QRectF& ziel,
                 DiaHintergrund hintergrund);
// A new image of the given size: background, then the slide.
QImage fctDiaBild(const slide::Slide& dia, QSize groesse, DiaMalOptionen optionen = {});
// What a slot shows when its picture cannot be read: the background with a
// red cross.
QImage fctFehlerBild(QSize groesse, DiaHintergrund hintergrund);

}  // namespace tessara::ui
