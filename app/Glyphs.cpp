// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace app {
namespace {

constexpr int edge = 16;  // side of the square that the shapes are given in

QPainterPath polygon(std::initializer_list<QPointF> corners) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(corners)));
    path.closeSubpath();
    return path;
}

QPainterPath shape(Glyph glyph) {
    QPainterPath path;
    switch (glyph) {
        case Glyph::PreviousTrack:
            path.addRect(3, 3, 2, 10);
            path.addPath(polygon({{13, 3}, {6, 8}, {13, 13}}));
            break;
        case Glyph::NextTrack:
            path.addPath(polygon({{3, 3}, {10, 8}, {3, 13}}));
            path.addRect(11, 3, 2, 10);
            break;
        case Glyph::Play:
            path.addPath(polygon({{4, 2.5}, {13, 8}, {4, 13.5}}));
            break;
        case Glyph::Pause:
            path.addRect(4, 3, 3, 10);
            path.addRect(9, 3, 3, 10);
            break;
        case Glyph::Stop:
            path.addRect(4, 4, 8, 8);
            break;
        case Glyph::Up:
            path.addPath(
                polygon({{8, 3}, {13, 9}, {9.5, 9}, {9.5, 13}, {6.5, 13}, {6.5, 9}, {3, 9}}));
            break;
        case Glyph::Down:
            path.addPath(
                polygon({{8, 13}, {13, 7}, {9.5, 7}, {9.5, 3}, {6.5, 3}, {6.5, 7}, {3, 7}}));
            break;
    }
    return path;
}

QPixmap drawn(Glyph glyph, const QColor& colour, int scale) {
    QPixmap pixmap(edge * scale, edge * scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.fillPath(shape(glyph), colour);
    return pixmap;
}

}  // namespace

QIcon glyphIcon(Glyph glyph, const QColor& colour, const QColor& disabled) {
    QIcon icon;
    for (const int scale : {1, 2, 3}) {
        icon.addPixmap(drawn(glyph, colour, scale), QIcon::Normal);
        icon.addPixmap(drawn(glyph, disabled, scale), QIcon::Disabled);
    }
    return icon;
}

}  // namespace app
