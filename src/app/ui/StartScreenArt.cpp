#include "StartScreenArt.h"

#include <QPainter>
#include <QPainterPath>

namespace StartScreenArt {

namespace {

const QColor Ink(0x2b, 0x4a, 0x7a);
const QColor Accent(0x3d, 0x8b, 0xd9);
const QColor Leaf(0x4c, 0xaf, 0x50);
const QColor Sun(0xf2, 0xb1, 0x34);

QPixmap canvas(int size, qreal dpr)
{
    QPixmap pixmap(QSize(size, size) * dpr);
    pixmap.setDevicePixelRatio(dpr);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

void drawPicture(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(Ink, r.width() / 18.0));
    p.setBrush(QColor(0xe8, 0xf1, 0xfb));
    p.drawRoundedRect(r, r.width() / 10, r.width() / 10);
    p.setPen(Qt::NoPen);
    p.setBrush(Sun);
    p.drawEllipse(QPointF(r.left() + r.width() * 0.7, r.top() + r.height() * 0.32), r.width() * 0.1,
                  r.width() * 0.1);
    QPainterPath hills;
    hills.moveTo(r.left() + r.width() * 0.08, r.bottom() - r.height() * 0.1);
    hills.lineTo(r.left() + r.width() * 0.38, r.top() + r.height() * 0.45);
    hills.lineTo(r.left() + r.width() * 0.6, r.bottom() - r.height() * 0.28);
    hills.lineTo(r.left() + r.width() * 0.72, r.top() + r.height() * 0.58);
    hills.lineTo(r.right() - r.width() * 0.08, r.bottom() - r.height() * 0.1);
    hills.closeSubpath();
    p.setBrush(Leaf);
    p.drawPath(hills);
}

void drawPage(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(Ink, r.width() / 16.0));
    p.setBrush(Qt::white);
    p.drawRoundedRect(r, r.width() / 12, r.width() / 12);
    p.setPen(QPen(Accent, r.width() / 14.0, Qt::SolidLine, Qt::RoundCap));
    for (int i = 0; i < 4; ++i) {
        const qreal y = r.top() + r.height() * (0.25 + 0.17 * i);
        p.drawLine(QPointF(r.left() + r.width() * 0.2, y),
                   QPointF(r.right() - r.width() * (i == 3 ? 0.45 : 0.2), y));
    }
}

void drawLink(QPainter &p, const QRectF &r)
{
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(Accent, r.width() / 9.0, Qt::SolidLine, Qt::RoundCap));
    const QSizeF ring(r.width() * 0.55, r.height() * 0.32);
    p.save();
    p.translate(r.center());
    p.rotate(-35);
    p.drawRoundedRect(QRectF(QPointF(-ring.width() * 0.85, -ring.height() / 2), ring),
                      ring.height() / 2, ring.height() / 2);
    p.setPen(QPen(Ink, r.width() / 9.0, Qt::SolidLine, Qt::RoundCap));
    p.drawRoundedRect(QRectF(QPointF(-ring.width() * 0.15, -ring.height() / 2), ring),
                      ring.height() / 2, ring.height() / 2);
    p.restore();
}

void drawGlobe(QPainter &p, const QRectF &r)
{
    p.setPen(QPen(Ink, r.width() / 18.0));
    p.setBrush(QColor(0xdd, 0xee, 0xff));
    p.drawEllipse(r);
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(r.adjusted(r.width() * 0.28, 0, -r.width() * 0.28, 0));
    p.drawLine(QPointF(r.center().x(), r.top()), QPointF(r.center().x(), r.bottom()));
    p.drawLine(QPointF(r.left(), r.center().y()), QPointF(r.right(), r.center().y()));
}

} // namespace

QPixmap FunctionIcon(int index, int size, qreal dpr)
{
    QPixmap pixmap = canvas(size, dpr);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF full(size * 0.08, size * 0.08, size * 0.84, size * 0.84);
    switch (index) {
    case 0:
        drawPicture(p, full.adjusted(0, size * 0.1, 0, -size * 0.1));
        break;
    case 1: {
        p.setPen(QPen(Ink, size / 16.0));
        p.setBrush(QColor(0xe8, 0xf1, 0xfb));
        const QRectF box = full.adjusted(size * 0.05, size * 0.3, -size * 0.05, 0);
        p.drawRoundedRect(box, size / 14.0, size / 14.0);
        p.setPen(QPen(Leaf, size / 10.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF c(box.center().x(), box.top() - size * 0.05);
        p.drawLine(c + QPointF(0, size * 0.32), c + QPointF(0, -size * 0.22));
        p.drawPolyline(
            QPolygonF({c + QPointF(-size * 0.15, -size * 0.07), c + QPointF(0, -size * 0.22),
                       c + QPointF(size * 0.15, -size * 0.07)}));
        break;
    }
    case 2: {
        drawPage(p, full.adjusted(size * 0.14, 0, -size * 0.14, 0));
        p.setPen(QPen(Leaf, size / 10.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF c = full.bottomRight() - QPointF(size * 0.12, size * 0.2);
        p.drawLine(c + QPointF(-size * 0.2, 0), c);
        p.drawPolyline(QPolygonF(
            {c + QPointF(-size * 0.1, -size * 0.1), c, c + QPointF(-size * 0.1, size * 0.1)}));
        break;
    }
    case 3: {
        drawPage(p, full.adjusted(size * 0.1, 0, -size * 0.18, 0));
        p.setPen(QPen(Sun.darker(130), size / 9.0, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(size * 0.55, size * 0.78), QPointF(size * 0.88, size * 0.3));
        break;
    }
    case 4:
        drawGlobe(p, full.adjusted(size * 0.04, size * 0.04, -size * 0.04, -size * 0.04));
        break;
    default: {
        p.setPen(QPen(Ink, size / 14.0, Qt::SolidLine, Qt::RoundCap));
        for (int i = 0; i < 3; ++i) {
            const qreal y = full.top() + full.height() * (0.2 + 0.3 * i);
            p.drawLine(QPointF(full.left(), y), QPointF(full.right(), y));
            const qreal x = full.left() + full.width() * (i == 1 ? 0.7 : 0.3);
            p.setBrush(i == 1 ? Accent : Leaf);
            p.drawEllipse(QPointF(x, y), size * 0.09, size * 0.09);
        }
        break;
    }
    }
    return pixmap;
}

QPixmap TravellingPage(int size, qreal dpr)
{
    QPixmap pixmap = canvas(size, dpr);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    drawPicture(p, QRectF(size * 0.1, size * 0.2, size * 0.8, size * 0.6));
    return pixmap;
}

QPixmap ReturningLink(int size, qreal dpr)
{
    QPixmap pixmap = canvas(size, dpr);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    drawLink(p, QRectF(size * 0.1, size * 0.1, size * 0.8, size * 0.8));
    return pixmap;
}

QPixmap Computer(int size, qreal dpr)
{
    QPixmap pixmap = canvas(size, dpr);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Ink, size / 16.0));
    p.setBrush(QColor(0xe8, 0xf1, 0xfb));
    p.drawRoundedRect(QRectF(size * 0.1, size * 0.15, size * 0.8, size * 0.52), size / 14.0,
                      size / 14.0);
    p.drawLine(QPointF(size * 0.5, size * 0.67), QPointF(size * 0.5, size * 0.8));
    p.drawLine(QPointF(size * 0.3, size * 0.82), QPointF(size * 0.7, size * 0.82));
    return pixmap;
}

QPixmap WebSpace(int size, qreal dpr)
{
    QPixmap pixmap = canvas(size, dpr);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    drawGlobe(p, QRectF(size * 0.12, size * 0.12, size * 0.76, size * 0.76));
    return pixmap;
}

} // namespace StartScreenArt
