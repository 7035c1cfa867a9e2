#include "ui/dwg_preview_image.h"

#include <QPainter>

namespace tessara::ui {

QImage fctZeichnungVorschauDecodieren(const dwg::Vorschau& vorschau) {
    QImage bild;
    const char* format = vorschau.art == dwg::Vorschau::Art::Png ? "PNG" : "BMP";
    if (!bild.loadFromData(vorschau.bild.data(), static_cast<int>(vorschau.bild.size()), format) ||
        bild.isNull())
        throw dwg::DwgError(std::string("the ") + format + " preview cannot be decoded");
    return bild;
}

QImage fctZeichnungVorschauBild(const dwg::Vorschau& vorschau, QSize groesse,
                                DiaHintergrund hintergrund) {
    const QImage quelle = fctZeichnungVorschauDecodieren(vorschau);
    QImage bild(groesse.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    bild.fill(fctHintergrundFarbe(hintergrund));
    const QSize passend = quelle.size().scaled(bild.size(), Qt::KeepAspectRatio);
    QPainter p(&bild);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(
        QRect(QPoint((bild.width() - passend.width()) / 2, (bild.height() - passend.height()) / 2),
              passend),
        quelle);
    return bild;
}

}  // namespace tessara::ui
