#include "ui/slide_painter.h"

#include <QPen>
#include <QPolygonF>
#include <QString>
#include <algorithm>

#include "authoring/aci_farben.h"

namespace tessara::ui {

QColor fctHintergrundFarbe(DiaHintergrund h) {
    return h == DiaHintergrund::Dunkel ? QColor(0, 0, 0) : QColor(255, 255, 255);
}

QColor fctAciFarbe(int index, DiaHintergrund h) {
    if (index == 0) return fctHintergrundFarbe(h);
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

namespace {

// 5 x 7 pixel glyphs of the letters of "Keine Vorschau", one row a string.
struct Glyphe {
    char zeichen;
    const char* zeilen[7];
};
constexpr Glyphe kGlyphen[] = {
    {'K', {"X...X", "X..X.", "X.X..", "XX...", "X.X..", "X..X.", "X...X"}},
    {'V', {"X...X", "X...X", "X...X", "X...X", "X...X", ".X.X.", "..X.."}},
    {'a', {".....", ".....", ".XXX.", "....X", ".XXXX", "X...X", ".XXXX"}},
    {'c', {".....", ".....", ".XXX.", "X....", "X....", "X...X", ".XXX."}},
    {'e', {".....", ".....", ".XXX.", "X...X", "XXXXX", "X....", ".XXX."}},
    {'h', {"X....", "X....", "X.XX.", "XX..X", "X...X", "X...X", "X...X"}},
    {'i', {"..X..", ".....", ".XX..", "..X..", "..X..", "..X..", ".XXX."}},
    {'n', {".....", ".....", "X.XX.", "XX..X", "X...X", "X...X", "X...X"}},
    {'o', {".....", ".....", ".XXX.", "X...X", "X...X", "X...X", ".XXX."}},
    {'r', {".....", ".....", "X.XX.", "XX..X", "X....", "X....", "X...."}},
    {'s', {".....", ".....", ".XXXX", "X....", ".XXX.", "....X", "XXXX."}},
    {'u', {".....", ".....", "X...X", "X...X", "X...X", "X..XX", ".XX.X"}},
};

constexpr int kZelle = 6;  // glyph width 5 plus one column of space
constexpr int kZeile = 7;

int pixelBreite(const QString& text) { return static_cast<int>(text.size()) * kZelle - 1; }

void pixelText(QPainter& painter, int x, int y, int s, const QString& text, const QColor& farbe) {
    for (int i = 0; i < text.size(); ++i) {
        for (const auto& g : kGlyphen) {
            if (g.zeichen != text[i].toLatin1()) continue;
            for (int r = 0; r < kZeile; ++r)
                for (int c = 0; c < 5; ++c)
                    if (g.zeilen[r][c] == 'X')
                        painter.fillRect(x + (i * kZelle + c) * s, y + r * s, s, s, farbe);
        }
    }
}

}  // namespace

QImage fctKeineVorschauBild(QSize groesse, DiaHintergrund hintergrund) {
    const bool dunkel = hintergrund == DiaHintergrund::Dunkel;
    const QColor feld = dunkel ? QColor(60, 60, 60) : QColor(222, 222, 222);
    const QColor linie = dunkel ? QColor(140, 140, 140) : QColor(150, 150, 150);
    const QColor schrift = dunkel ? QColor(235, 235, 235) : QColor(30, 30, 30);
    QImage bild(groesse.expandedTo(QSize(1, 1)), QImage::Format_RGB32);
    const int w = bild.width(), h = bild.height();
    bild.fill(feld);
    QPainter painter(&bild);
    painter.setPen(QPen(linie, 0));
    painter.drawRect(QRectF(0.5, 0.5, w - 1.0, h - 1.0));
    painter.drawLine(QPointF(0.5, 0.5), QPointF(w - 0.5, h - 0.5));
    painter.drawLine(QPointF(0.5, h - 0.5), QPointF(w - 0.5, 0.5));

    // Two lines at an integer scale that grows with the picture; the words
    // sit on a plate of the field colour so that the cross does not run
    // through the letters.
    const QString zeilen[2] = {QStringLiteral("Keine"), QStringLiteral("Vorschau")};
    const int breite = pixelBreite(zeilen[1]), hoehe = 2 * kZeile + 2;
    int s = std::max(1, std::min((w - 8) / 70, (h - 8) / 30));
    while (s > 1 && (breite * s > w - 4 || hoehe * s > h - 4)) --s;
    if (breite * s <= w - 4 && hoehe * s <= h - 4) {
        const int rand = s;
        const int x0 = (w - breite * s) / 2, y0 = (h - hoehe * s) / 2;
        painter.fillRect(x0 - rand, y0 - rand, breite * s + 2 * rand, hoehe * s + 2 * rand, feld);
        for (int z = 0; z < 2; ++z) {
            int x = (w - pixelBreite(zeilen[z]) * s) / 2;
            pixelText(painter, x, y0 + z * (kZeile + 2) * s, s, zeilen[z], schrift);
        }
    }
    painter.end();
    return bild;
}

}  // namespace tessara::ui
