#include "ToolDrawing.h"

#include <algorithm>

#include <QPainterPath>

#include <cmath>

namespace {

constexpr double Pi = 3.14159265358979;

// The box with corners a and b, both inside, whichever way it was dragged (QRect::normalized
// would leave out the corners of a box dragged up or left).
QRect boxOf(QPoint a, QPoint b)
{
    return QRect(QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
                 QPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y())));
}

} // namespace

QColor ColorOfNumber(int colour)
{
    return QColor(colour & 255, (colour >> 8) & 255, (colour >> 16) & 255);
}

FigurePen FinalPen(const PaintToolContext &context, bool fills)
{
    FigurePen pen;
    pen.penColour = context.foreColor();
    pen.penWidth = context.penWidth();
    pen.penStyle = context.borderStyle();
    pen.fillStyle = 1;
    if (!fills)
        return pen;
    switch (context.fillMode()) {
    case 1:
        pen.fillStyle = context.fillStyle();
        pen.fillColour = context.fillColor();
        break;
    case 2:
        pen.penColour = context.fillColor();
        pen.fillStyle = context.fillStyle();
        pen.fillColour = context.fillColor();
        break;
    default:
        break;
    }
    return pen;
}

FigurePen BandPen(const PaintToolContext &context, bool fills)
{
    FigurePen pen = FinalPen(context, fills);
    pen.xorMode = true;
    pen.penColour ^= context.backColor();
    pen.fillColour ^= context.backColor();
    return pen;
}

QPen MakePen(int colour, int width, int style)
{
    QPen pen(ColorOfNumber(colour), std::max(1, width), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    // Styled lines are one pixel wide; a wider pen is solid whatever its style.
    if (width <= 1) {
        switch (style) {
        case 1:
            pen.setDashPattern({18, 6});
            break;
        case 2:
            pen.setDashPattern({3, 3});
            break;
        case 3:
            pen.setDashPattern({9, 6, 3, 6});
            break;
        case 4:
            pen.setDashPattern({9, 3, 3, 3, 3, 3});
            break;
        default:
            break;
        }
        if (style >= 1 && style <= 4)
            pen.setCapStyle(Qt::FlatCap);
    }
    return pen;
}

QBrush MakeFillBrush(int fillStyle, int colour)
{
    Qt::BrushStyle style = Qt::NoBrush;
    switch (fillStyle) {
    case 0:
        style = Qt::SolidPattern;
        break;
    case 2:
        style = Qt::HorPattern;
        break;
    case 3:
        style = Qt::VerPattern;
        break;
    case 4:
        style = Qt::FDiagPattern; // "\": down from left to right
        break;
    case 5:
        style = Qt::BDiagPattern; // "/"
        break;
    case 6:
        style = Qt::CrossPattern;
        break;
    case 7:
        style = Qt::DiagCrossPattern;
        break;
    default:
        break;
    }
    return QBrush(ColorOfNumber(colour), style);
}

std::array<std::uint8_t, 8> FillPatternRows(int fillStyle)
{
    std::array<std::uint8_t, 8> rows{};
    // The same pixels as the brush paints in a figure: the tile is drawn by the brush itself.
    QImage tile(8, 8, QImage::Format_ARGB32);
    tile.fill(Qt::transparent);
    {
        QPainter p(&tile);
        p.setRenderHint(QPainter::Antialiasing, false);
        p.fillRect(tile.rect(), MakeFillBrush(fillStyle, 0));
    }
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            if (qAlpha(tile.pixel(x, y)) > 0)
                rows[size_t(y)] = std::uint8_t(rows[size_t(y)] | (1u << x));
    return rows;
}

FigurePainter::FigurePainter(PaintToolContext &context, const FigurePen &pen)
    : m_context(context), m_pen(pen), m_painter(&context.surface())
{
    m_painter.setRenderHint(QPainter::Antialiasing, false);
    m_painter.setRenderHint(QPainter::TextAntialiasing, false);
    if (pen.xorMode)
        m_painter.setCompositionMode(QPainter::RasterOp_SourceXorDestination);
    if (pen.outline)
        m_painter.setPen(MakePen(pen.penColour, pen.penWidth, pen.penStyle));
    else
        m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(MakeFillBrush(pen.fillStyle, pen.fillColour));
}

FigurePainter::~FigurePainter()
{
    m_painter.end();
    const QRect area = m_touched.intersected(m_context.surface().rect());
    if (!area.isEmpty())
        m_context.surfaceChanged(area);
}

void FigurePainter::touch(const QRect &area)
{
    const int grow = m_pen.penWidth + 2;
    m_touched |= area.adjusted(-grow, -grow, grow, grow);
}

void FigurePainter::line(QPoint a, QPoint b)
{
    if (a == b) {
        dot(a);
        return;
    }
    m_painter.drawLine(a, b);
    touch(boxOf(a, b));
}

void FigurePainter::dot(QPoint at)
{
    if (m_pen.penWidth <= 1) {
        pixel(at);
        return;
    }
    // A round dot of the pen's width, in the pen's colour.
    m_painter.save();
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(m_painter.pen().color());
    m_painter.drawEllipse(QPointF(at) + QPointF(0.5, 0.5), m_pen.penWidth / 2.0,
                          m_pen.penWidth / 2.0);
    m_painter.restore();
    touch(QRect(at, at));
}

void FigurePainter::pixel(QPoint at)
{
    m_painter.save();
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(Qt::NoBrush);
    m_painter.fillRect(QRect(at, QSize(1, 1)), ColorOfNumber(m_pen.penColour));
    m_painter.restore();
    touch(QRect(at, at));
}

void FigurePainter::box(QPoint a, QPoint b)
{
    const QRect r = boxOf(a, b);
    // QPainter's outline of a w x h rectangle covers w + 1 x h + 1 pixels.
    m_painter.drawRect(QRect(r.left(), r.top(), r.width() - 1, r.height() - 1));
    touch(r);
}

void FigurePainter::ellipse(QPoint a, QPoint b)
{
    const QRect r = boxOf(a, b);
    m_painter.drawEllipse(QRect(r.left(), r.top(), r.width() - 1, r.height() - 1));
    touch(r);
}

void FigurePainter::roundedBox(QPoint a, QPoint b, int cornerSize)
{
    const QRect r = boxOf(a, b);
    m_painter.drawRoundedRect(QRect(r.left(), r.top(), r.width() - 1, r.height() - 1),
                              cornerSize / 2.0, cornerSize / 2.0);
    touch(r);
}

void FigurePainter::polygon(const QList<QPoint> &points)
{
    if (points.isEmpty())
        return;
    m_painter.drawPolygon(points.constData(), int(points.size()));
    QRect bounds(points.first(), points.first());
    for (const QPoint &p : points)
        bounds |= QRect(p, p);
    touch(bounds);
}

void FigurePainter::polyline(const QList<QPoint> &points)
{
    if (points.isEmpty())
        return;
    if (points.size() == 1) {
        dot(points.first());
        return;
    }
    m_painter.save();
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawPolyline(points.constData(), int(points.size()));
    m_painter.restore();
    QRect bounds(points.first(), points.first());
    for (const QPoint &p : points)
        bounds |= QRect(p, p);
    touch(bounds);
}

void FigurePainter::bezier(QPoint p0, QPoint p1, QPoint p2, QPoint p3)
{
    QPainterPath path(p0);
    path.cubicTo(p1, p2, p3);
    m_painter.save();
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawPath(path);
    m_painter.restore();
    touch(path.boundingRect().toAlignedRect());
}

ArrowHead ArrowHeadFor(int x1, int y1, int x2, int y2, int &sign)
{
    double a = 90.0;
    if (x2 != x1)
        a = std::atan(double(y2 - y1) / double(x2 - x1)) * 180.0 / Pi;
    if (x2 > x1)
        sign = 1;
    else if (x2 < x1)
        sign = -1;
    else if (y2 > y1)
        sign = 1;
    else if (y2 < y1)
        sign = -1;
    const auto rad = [](double degrees) { return degrees * Pi / 180.0; };
    const double s = sign;
    // Rounded to the nearest integer, halves to even.
    ArrowHead head;
    head.barb1 = QPoint(int(std::nearbyint(x2 - 10.0 * s * std::cos(rad(a + 45.0)))),
                        int(std::nearbyint(y2 - 10.0 * s * std::sin(rad(a + 45.0)))));
    head.barb2 = QPoint(int(std::nearbyint(x2 - 10.0 * s * std::cos(rad(45.0 - a)))),
                        int(std::nearbyint(y2 + 10.0 * s * std::sin(rad(45.0 - a)))));
    return head;
}
