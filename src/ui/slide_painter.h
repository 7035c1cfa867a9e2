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
// AutoCAD colour index as drawn on the background: 7 is the foreground, 0
// the background itself. The host writes colour 0 for the masks behind masked
// text and title blocks; painted in the background colour, in drawing order,
// a mask hides what lies under it and leaves what is drawn later visible.
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
// What a slot shows when its picture is missing or cannot be read: a neutral
// grey field with a crossed frame and the words "Keine Vorschau", drawn from
// a pixel font so that they stay legible down to 60 x 45 pixels and need no
// font database (the picture is made on worker threads and in batch runs).
QImage fctKeineVorschauBild(QSize groesse, DiaHintergrund hintergrund);

}  // namespace tessara::ui
