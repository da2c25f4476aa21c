#include "ToolArt.h"

#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>

#include <functional>

namespace {

const QColor Ink(20, 20, 20);
const QColor Paper(255, 255, 255);

QImage canvas(int size = 32)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return image;
}

void outlined(QPainter &p, const QPainterPath &path, const QBrush &fill, qreal width = 1.2)
{
    p.setPen(QPen(Ink, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(fill);
    p.drawPath(path);
}

QPainterPath rectPath(qreal x1, qreal y1, qreal x2, qreal y2, qreal radius = 0)
{
    QPainterPath path;
    if (radius > 0)
        path.addRoundedRect(QRectF(QPointF(x1, y1), QPointF(x2, y2)), radius, radius);
    else
        path.addRect(QRectF(QPointF(x1, y1), QPointF(x2, y2)));
    return path;
}

QPainterPath polygonPath(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

// Tools held like a pen lie along a line from the hot spot in the bottom left corner up to the
// top right; their drawings below are along +x from the tip at the origin.
void alongDiagonal(QPainter &p)
{
    p.translate(1.5, 30.5);
    p.rotate(-45);
}

void drawPencil(QPainter &p)
{
    alongDiagonal(p);
    outlined(p, rectPath(29, -3.6, 33.5, 3.6, 1.5), QColor(240, 130, 150));
    outlined(p, rectPath(26, -3.6, 29, 3.6), QColor(190, 190, 200));
    outlined(p, rectPath(8, -3.6, 26, 3.6), QColor(250, 200, 40));
    p.setPen(QPen(QColor(210, 150, 20), 1.0));
    p.drawLine(QPointF(9, 0), QPointF(25, 0));
    outlined(p, polygonPath({{0, 0}, {8, -3.6}, {8, 3.6}}), QColor(235, 195, 140));
    p.setPen(Qt::NoPen);
    p.setBrush(Ink);
    p.drawPolygon(QPolygonF({{0, 0}, {3.2, -1.5}, {3.2, 1.5}}));
}

void drawPicker(QPainter &p)
{
    alongDiagonal(p);
    outlined(p, rectPath(14, -4, 27, 4, 3.5), QColor(55, 55, 70));
    outlined(p, rectPath(11, -2.8, 14, 2.8), QColor(180, 180, 195));
    outlined(p, polygonPath({{0, 0}, {3, -1.6}, {11, -1.6}, {11, 1.6}, {3, 1.6}}),
             QColor(215, 235, 250));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(40, 90, 220));
    p.drawPolygon(QPolygonF({{0.6, 0}, {3, -1.0}, {6, -1.0}, {6, 1.0}, {3, 1.0}}));
}

void drawBrush(QPainter &p)
{
    alongDiagonal(p);
    outlined(p, rectPath(14, -2.3, 32, 2.3, 2), QColor(175, 70, 45));
    outlined(p, rectPath(9, -3.2, 14, 3.2), QColor(195, 195, 205));
    QPainterPath bristles(QPointF(0, 0));
    bristles.cubicTo(QPointF(2, -3.5), QPointF(6, -3.8), QPointF(9, -3.2));
    bristles.lineTo(9, 3.2);
    bristles.cubicTo(QPointF(6, 3.8), QPointF(2, 3.5), QPointF(0, 0));
    outlined(p, bristles, QColor(110, 75, 40));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(40, 90, 220));
    QPainterPath paint(QPointF(0, 0));
    paint.cubicTo(QPointF(1, -2), QPointF(3, -2.6), QPointF(4.5, -2.6));
    paint.lineTo(4.5, 2.6);
    paint.cubicTo(QPointF(3, 2.6), QPointF(1, 2), QPointF(0, 0));
    p.drawPath(paint);
}

void drawEraser(QPainter &p)
{
    // The block's bottom left corner is the hot spot: the eraser takes the pixels above and to
    // the right of it.
    p.translate(2, 29);
    p.rotate(-30);
    const QPainterPath top = polygonPath({{0, -9}, {5, -13}, {27, -13}, {22, -9}});
    outlined(p, top, QColor(205, 215, 235));
    outlined(p, polygonPath({{22, 0}, {22, -9}, {27, -13}, {27, -4}}), QColor(70, 100, 170));
    outlined(p, rectPath(9, -9, 22, 0), QColor(95, 130, 210));
    outlined(p, rectPath(0, -9, 9, 0), Paper);
}

void drawBucket(QPainter &p)
{
    p.save();
    // The paint runs from the bucket's lip to a drop at the hot spot.
    QPainterPath pour(QPointF(9.5, 9.5));
    pour.cubicTo(QPointF(5, 12), QPointF(3, 18), QPointF(3.2, 24));
    pour.lineTo(5.8, 24);
    pour.cubicTo(QPointF(6, 19), QPointF(8, 14), QPointF(11.5, 12));
    pour.closeSubpath();
    QPainterPath drop;
    drop.addEllipse(QPointF(4.5, 26.3), 2.6, 2.8);
    outlined(p, pour.united(drop), QColor(40, 90, 220), 1.0);
    p.translate(19, 13);
    p.rotate(-35);
    outlined(p, polygonPath({{-7.5, -8}, {7.5, -8}, {6, 9}, {-6, 9}}), QColor(220, 222, 232));
    QPainterPath handle(QPointF(-6.5, -8));
    handle.cubicTo(QPointF(-6.5, -16), QPointF(6.5, -16), QPointF(6.5, -8));
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(Ink, 1.4));
    p.drawPath(handle);
    QPainterPath rim;
    rim.addEllipse(QPointF(0, -8), 7.5, 2.6);
    outlined(p, rim, QColor(40, 90, 220));
    p.restore();
}

void drawSprayCan(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(Ink);
    const QPointF dots[] = {{6, 6},   {3, 4},   {8, 3},    {4, 8},   {9, 7},    {2, 7},
                            {6, 1.8}, {1.8, 2}, {10, 4.5}, {7, 9.8}, {3.5, 10}, {10.5, 9}};
    for (const QPointF &dot : dots)
        p.drawEllipse(dot, 0.9, 0.9);
    outlined(p, rectPath(15, 13, 28, 31, 3), QColor(210, 50, 50));
    outlined(p, rectPath(15, 18, 28, 25), Paper);
    outlined(p, rectPath(17, 8.5, 26, 13, 1.5), QColor(180, 180, 195));
    outlined(p, rectPath(12.5, 8.5, 17, 11), QColor(90, 90, 100));
}

void drawFunnel(QPainter &p)
{
    // The funnel's spout ends at the hot spot in the bottom left corner.
    p.translate(3, 28);
    p.rotate(45);
    outlined(p, rectPath(-1.6, -9, 1.6, 0), QColor(200, 130, 40));
    outlined(p, polygonPath({{-1.6, -9}, {1.6, -9}, {10.5, -21}, {-10.5, -21}}),
             QColor(245, 170, 60));
    QPainterPath rim;
    rim.addEllipse(QPointF(0, -21), 10.5, 3);
    outlined(p, rim, QColor(255, 230, 150));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(40, 90, 220));
    p.drawEllipse(QPointF(-3, -21), 1.3, 1.0);
    p.drawEllipse(QPointF(3, -20.6), 1.3, 1.0);
    p.drawEllipse(QPointF(0, -21.6), 1.2, 0.9);
}

QPainterPath stroke(QPointF from, QPointF to, qreal width)
{
    QPainterPathStroker stroker;
    stroker.setWidth(width);
    stroker.setCapStyle(Qt::RoundCap);
    QPainterPath line(from);
    line.lineTo(to);
    return stroker.createStroke(line);
}

void drawMagnifier(QPainter &p)
{
    outlined(p, stroke(QPointF(18.5, 18.5), QPointF(28, 28), 5), QColor(60, 45, 40));
    QPainterPath lens;
    lens.addEllipse(QPointF(12, 12), 8.5, 8.5);
    outlined(p, lens, QColor(215, 235, 255), 2.2);
    p.setPen(QPen(Ink, 1.6, Qt::SolidLine, Qt::FlatCap));
    p.drawLine(QPointF(8, 12), QPointF(16, 12));
    p.drawLine(QPointF(12, 8), QPointF(12, 16));
}

void drawHand(QPainter &p, bool grabbing)
{
    QPainterPath hand;
    if (!grabbing) {
        hand = rectPath(8, 14, 25, 29, 5);
        const qreal tops[] = {6, 3.5, 4.5, 8};
        for (int i = 0; i < 4; ++i)
            hand = hand.united(rectPath(9 + 4 * i, tops[i], 13 + 4 * i, 19, 2));
        hand = hand.united(stroke(QPointF(10, 23), QPointF(3.5, 15.5), 4.6));
    } else {
        hand = rectPath(8, 13, 25, 29, 5);
        for (int i = 0; i < 4; ++i)
            hand = hand.united(rectPath(9 + 4 * i, 9.5, 13 + 4 * i, 16, 2));
        hand = hand.united(stroke(QPointF(10, 21), QPointF(5.5, 17.5), 4.6));
    }
    outlined(p, hand.simplified(), Paper);
    p.setPen(QPen(Ink, 1.0, Qt::SolidLine, Qt::RoundCap));
    const qreal from = grabbing ? 10.5 : 9.5;
    const qreal to = grabbing ? 14.5 : 17;
    for (int i = 1; i < 4; ++i)
        p.drawLine(QPointF(9 + 4 * i, from), QPointF(9 + 4 * i, to));
}

// Thin figures a pixel wide, black with a white edge so that they show on any picture.
void crisp(QImage &image, const std::function<void(QPainter &)> &draw)
{
    QImage halo = canvas();
    {
        QPainter p(&halo);
        p.setRenderHint(QPainter::Antialiasing, false);
        p.setPen(QPen(Paper, 1));
        draw(p);
    }
    QPainter p(&image);
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            p.drawImage(QPoint(dx, dy), halo);
    p.end();
    QPainter ink(&image);
    ink.setRenderHint(QPainter::Antialiasing, false);
    ink.setPen(QPen(Ink, 1));
    draw(ink);
}

QImage drawn(const std::function<void(QPainter &)> &draw)
{
    QImage image = canvas();
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    draw(p);
    return image;
}

QImage crossImage()
{
    QImage image = canvas();
    crisp(image, [](QPainter &p) {
        p.drawLine(0, 15, 12, 15);
        p.drawLine(18, 15, 30, 15);
        p.drawLine(15, 0, 15, 12);
        p.drawLine(15, 18, 15, 30);
    });
    return image;
}

QImage textImage()
{
    QImage image = canvas();
    crisp(image, [](QPainter &p) {
        p.drawLine(15, 7, 15, 24);
        p.drawLine(12, 6, 14, 6);
        p.drawLine(16, 6, 18, 6);
        p.drawLine(12, 25, 14, 25);
        p.drawLine(16, 25, 18, 25);
    });
    return image;
}

} // namespace

std::vector<CursorArt> DrawToolCursors()
{
    return {
        {QStringLiteral("pick.cur"), drawn(drawPicker), QPoint(1, 30)},
        {QStringLiteral("eraser.cur"), drawn(drawEraser), QPoint(2, 29)},
        {QStringLiteral("fill.cur"), drawn(drawBucket), QPoint(4, 28)},
        {QStringLiteral("pencil.cur"), drawn(drawPencil), QPoint(1, 30)},
        {QStringLiteral("cross.cur"), crossImage(), QPoint(15, 15)},
        {QStringLiteral("text.cur"), textImage(), QPoint(15, 15)},
        {QStringLiteral("airbrush.cur"), drawn(drawSprayCan), QPoint(6, 6)},
        {QStringLiteral("filter.cur"), drawn(drawFunnel), QPoint(3, 28)},
        {QStringLiteral("zoom.cur"), drawn(drawMagnifier), QPoint(12, 12)},
        {QStringLiteral("brush.cur"), drawn(drawBrush), QPoint(1, 30)},
        {QStringLiteral("handflat.cur"), drawn([](QPainter &p) { drawHand(p, false); }),
         QPoint(16, 16)},
        {QStringLiteral("handgrab.cur"), drawn([](QPainter &p) { drawHand(p, true); }),
         QPoint(16, 16)},
    };
}

namespace {

// A figure button's picture, drawn in a 24 x 24 box.
QImage figureIcon(int tool)
{
    QImage image = canvas(24);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, true);
    QPen pen(Ink, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    switch (tool) {
    case 0:
        p.setRenderHint(QPainter::Antialiasing, false);
        p.setPen(QPen(Ink, 1, Qt::DashLine));
        p.drawRect(3, 5, 17, 13);
        break;
    case 5:
        p.drawLine(QPointF(4, 20), QPointF(20, 4));
        break;
    case 6:
        p.setBrush(QColor(170, 200, 240));
        p.drawRect(QRectF(3.5, 6.5, 17, 11));
        break;
    case 7:
        p.setBrush(QColor(170, 200, 240));
        p.drawEllipse(QRectF(3, 5.5, 18, 13));
        break;
    case 8:
        pen.setWidthF(2.4);
        p.setPen(pen);
        p.drawPolyline(QPolygonF({{5, 20}, {12, 4}, {19, 20}}));
        p.drawLine(QPointF(8.2, 14), QPointF(15.8, 14));
        break;
    case 9:
        p.drawLine(QPointF(4, 20), QPointF(19, 5));
        p.drawPolyline(QPolygonF({{11, 5}, {19, 5}, {19, 13}}));
        break;
    case 11:
        p.setBrush(QColor(170, 200, 240));
        p.drawRoundedRect(QRectF(3.5, 6.5, 17, 11), 4, 4);
        break;
    case 12:
        p.setBrush(QColor(170, 200, 240));
        p.drawPolygon(QPolygonF({{4, 18}, {7, 5}, {14, 9}, {20, 4}, {19, 19}}));
        break;
    case 13: {
        QPainterPath curve(QPointF(3, 18));
        curve.cubicTo(QPointF(8, -2), QPointF(15, 26), QPointF(21, 6));
        p.drawPath(curve);
        break;
    }
    default:
        break;
    }
    return image;
}

} // namespace

QImage DrawToolIcon(int tool, int size)
{
    QImage icon;
    const auto cursor = [](const char *file) {
        for (const CursorArt &art : DrawToolCursors())
            if (art.file == QLatin1String(file))
                return art.image;
        return QImage();
    };
    switch (tool) {
    case 1:
        icon = cursor("pick.cur");
        break;
    case 2:
        icon = cursor("eraser.cur");
        break;
    case 3:
        icon = cursor("fill.cur");
        break;
    case 4:
        icon = cursor("pencil.cur");
        break;
    case 10:
        icon = cursor("airbrush.cur");
        break;
    case 14:
        icon = cursor("filter.cur");
        break;
    case 15:
        icon = cursor("zoom.cur");
        break;
    case 16:
        icon = cursor("brush.cur");
        break;
    case 17:
        icon = cursor("handflat.cur");
        break;
    default:
        icon = figureIcon(tool);
        break;
    }
    if (icon.isNull())
        return canvas(size);
    return icon.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
