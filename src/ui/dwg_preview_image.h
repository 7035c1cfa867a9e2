#pragma once
// A drawing's preview picture as an image: decoded from the bytes the
// drawing reader hands over, and fitted into a slot like a slide.
#include <QImage>
#include <QSize>

#include "authoring/dwg_preview.h"
#include "ui/slide_painter.h"

namespace tessara::ui {

// The picture at its own size; throws dwg::DwgError when it cannot be decoded.
QImage fctZeichnungVorschauDecodieren(const dwg::Vorschau& vorschau);
// The picture scaled to fit groesse without distortion, centred on the
// background colour.
QImage fctZeichnungVorschauBild(const dwg::Vorschau& vorschau, QSize groesse,
                                DiaHintergrund hintergrund);

}  // namespace tessara::ui
