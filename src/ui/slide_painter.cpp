#include "ui/slide_painter.h"

#include <QPen>
#include <QPolygonF>
#include <algorithm>

#include "authoring/aci_farben.h"

namespace tessara::ui {

QColor fctHintergrundFarbe(DiaHintergrund h) {
    return h == DiaHintergrund::Dunkel ? QColor(0, 0, 0) : QColor(255, 255, 255);
}

QColor fctAciFarbe(int index, DiaHintergrund h) {
    auto c = slide::aciZeichenfarbe(index, h == DiaHintergrund::Dunkel);
    return QColor(c.r, c.g, c.b);
}

QTransform fctDiaAbbildung(const slide::Slide& dia, const QRectF& ziel) {
    const double hx = std::max(dia.highX, 1), hy = std::max(dia.highY, 1);
    // Physical proportions of the host's drawing area: width : height = aspect : 1.
    double aspekt = dia.aspectRatio > 0 ? dia.aspectRatio : hx / hy;
    double s = std::min(ziel.width() / aspekt, ziel.height() / 1.0);
    double breite = aspekt * s, hoehe = s;
    double links = ziel.left() + (ziel.width() - breite) / 2;
    double oben = ziel.top() + (ziel.height() - hoehe) / 2;
    double fx = breite / hx, fy = hoehe / hy;
    // x' = links + x * fx;  y' = oben + hoehe - y * fy
    return QTransform(fx, 0, 0, -fy, links, oben + hoehe);
}

void subDiaMalen(QPainter& painter, const slide::Slide& dia, const QRectF& ziel,
                 DiaHintergrund hintergrund) {
    const QTransform t = fctDiaAbbildung(dia, ziel);
    QColor farben[256];
    bool bekannt[256] = {};
    auto farbe = [&](std::uint8_t i) -> const QColor& {
        if (!bekannt[i]) {
            farben[i] = fctAciFarbe(i, hintergrund);
            bekannt[i] = true;
        }
        return farben[i];
    };
    QPen stift;
    stift.setWidth(0);  // cosmetic: one pixel at any scale
    int aktuelle = -1;
    painter.setBrush(Qt::NoBrush);
    for (const auto& e : dia.elements) {
        auto p = dia.pointsOf(e);
        if (e.colour != aktuelle) {
            stift.setColor(farbe(e.colour));
            painter.setPen(stift);
            aktuelle = e.colour;
        }
        if (e.kind == slide::Element::Kind::Vector) {
            painter.drawLine(t.map(QPointF(p[0].x, p[0].y)), t.map(QPointF(p[1].x, p[1].y)));
        } else {
            QPolygonF poly;
            poly.reserve(static_cast<int>(p.size()));
            for (const auto& q : p) poly << t.map(QPointF(q.x, q.y));
            painter.setBrush(farbe(e.colour));
            painter.drawPolygon(poly);
            painter.setBrush(Qt::NoBrush);
        }
    }
}

QImage fctDiaBild(const slide::Slide& dia, QSize groesse, DiaMalOptionen optionen) {
    QImage bild(groesse.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    bild.fill(fctHintergrundFarbe(optionen.hintergrund));
    QPainter painter(&bild);
    painter.setRenderHint(QPainter::Antialiasing, optionen.glaetten);
    // Pixel centres: a coordinate on the area's edge still lands inside.
    QRectF ziel(0.5, 0.5, bild.width() - 1.0, bild.height() - 1.0);
    subDiaMalen(painter, dia, ziel, optionen.hintergrund);
    painter.end();
    return bild;
}

QImage fctFehlerBild(QSize groesse, DiaHintergrund hintergrund) {
    QImage bild(groesse.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    bild.fill(fctHintergrundFarbe(hintergrund));
    QPainter painter(&bild);
    painter.setPen(QPen(QColor(255, 0, 0), 0));
    painter.drawLine(QPointF(0.5, 0.5), QPointF(bild.width() - 0.5, bild.height() - 0.5));
    painter.drawLine(QPointF(0.5, bild.height() - 0.5), QPointF(bild.width() - 0.5, 0.5));
    painter.end();
    return bild;
}

}  // namespace tessara::ui
