#include "PaintTools.h"
#include "ToolDrawing.h"

#include <QRandomGenerator>

#include <chrono>
#include <cmath>

// --- Pencil

void PencilTool::begin(PaintToolContext &context, QPoint at)
{
    FigurePainter(context, FinalPen(context, false)).dot(at);
}

void PencilTool::segment(PaintToolContext &context, QPoint from, QPoint to)
{
    FigurePainter(context, FinalPen(context, false)).line(from, to);
}

// --- Eraser

namespace {

void eraseAt(PaintToolContext &context, QPoint at)
{
    const int w = context.penWidth();
    const QRect patch = QRect(QPoint(at.x(), at.y() - w), QPoint(at.x() + w, at.y()))
                            .intersected(context.surface().rect());
    if (patch.isEmpty())
        return;
    const QRgb background = ColorOfNumber(context.backColor()).rgb();
    QImage &picture = context.surface();
    for (int y = patch.top(); y <= patch.bottom(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(picture.scanLine(y));
        std::fill(line + patch.left(), line + patch.right() + 1, background);
    }
    context.surfaceChanged(patch);
}

} // namespace

void EraserTool::begin(PaintToolContext &context, QPoint at)
{
    eraseAt(context, at);
}

void EraserTool::segment(PaintToolContext &context, QPoint, QPoint to)
{
    eraseAt(context, to);
}

// --- Air Brush

QList<QPoint> AirBrushSpray(int x, int y, int size, std::uint64_t seed)
{
    QRandomGenerator random(quint32(seed ^ (seed >> 32)));
    const auto count = int(std::nearbyint(double(size) * double(size) * 0.25));
    QList<QPoint> dots;
    dots.reserve(count);
    const double half = size / 2.0;
    for (int i = 0; i < count; ++i) {
        const double r1 = random.generateDouble();
        const double r2 = random.generateDouble();
        dots.append(
            QPoint(int(std::floor(x - half + size * r1)), int(std::floor(y - half + size * r2))));
    }
    return dots;
}

namespace {

void spray(PaintToolContext &context, QPoint at)
{
    // A new seed at each burst, from the clock.
    const auto seed = std::uint64_t(std::chrono::steady_clock::now().time_since_epoch().count());
    const QList<QPoint> dots = AirBrushSpray(at.x(), at.y(), context.penWidth() * 4, seed);
    QImage &picture = context.surface();
    const QRgb colour = ColorOfNumber(context.foreColor()).rgb();
    QRect touched;
    for (const QPoint &dot : dots) {
        if (!picture.rect().contains(dot))
            continue;
        reinterpret_cast<QRgb *>(picture.scanLine(dot.y()))[dot.x()] = colour;
        touched |= QRect(dot, QSize(1, 1));
    }
    if (!touched.isEmpty())
        context.surfaceChanged(touched);
}

} // namespace

void AirBrushTool::begin(PaintToolContext &context, QPoint at)
{
    spray(context, at);
}

void AirBrushTool::segment(PaintToolContext &context, QPoint, QPoint to)
{
    spray(context, to);
}

// --- Brush

void DrawBrushShape(FigurePainter &painter, int shape, QPoint at, int penWidth)
{
    const int r = 3 * penWidth;
    const int x = at.x();
    const int y = at.y();
    switch (shape) {
    case 0:
    case 2:
        painter.box(QPoint(x + r, y + r), QPoint(x - r, y - r));
        break;
    case 1:
    case 3:
        painter.ellipse(QPoint(x - r, y - r), QPoint(x + r, y + r));
        break;
    case 4:
        painter.line(QPoint(x, y - r), QPoint(x, y + r));
        painter.line(QPoint(x - r, y), QPoint(x + r, y));
        break;
    case 5:
        painter.line(QPoint(x - r, y + r), QPoint(x + r, y - r));
        painter.line(QPoint(x + r, y + r), QPoint(x - r, y - r));
        break;
    case 6:
        painter.line(QPoint(x - r, y + r), QPoint(x + r, y - r));
        break;
    case 7:
        painter.line(QPoint(x + r, y + r), QPoint(x - r, y - r));
        break;
    case 8:
        painter.line(QPoint(x, y - r), QPoint(x, y + r));
        break;
    case 9:
        painter.line(QPoint(x - r, y), QPoint(x + r, y));
        break;
    default:
        break;
    }
}

namespace {

void dab(PaintToolContext &context, QPoint at)
{
    // The dab's lines are one pixel wide; the pen width sets its size. Pen and fill are both
    // the foreground colour, the filled shapes by FillStyle.
    const int shape = context.brushShape();
    FigurePen pen;
    pen.penColour = context.foreColor();
    pen.penWidth = 1;
    pen.penStyle = context.borderStyle();
    pen.fillColour = context.foreColor();
    pen.fillStyle = (shape == 0 || shape == 1) ? context.fillStyle() : 1;
    FigurePainter painter(context, pen);
    DrawBrushShape(painter, shape, at, context.penWidth());
}

} // namespace

void BrushTool::begin(PaintToolContext &context, QPoint at)
{
    dab(context, at);
}

void BrushTool::segment(PaintToolContext &context, QPoint, QPoint to)
{
    dab(context, to);
}

// --- Filter Brush

namespace {

void filterAt(PaintToolContext &context, QPoint at)
{
    const int dotSize = context.penWidth() - 1;
    const QRect square(QPoint(at.x() - dotSize, at.y() - dotSize),
                       QPoint(at.x() + dotSize, at.y() + dotSize));
    if (square.left() < 0 || square.top() < 0)
        return;
    if (!square.intersects(context.surface().rect()))
        return;
    context.applyFilter(context.filterNumber(), square);
}

} // namespace

void FilterBrushTool::begin(PaintToolContext &context, QPoint at)
{
    filterAt(context, at);
}

void FilterBrushTool::segment(PaintToolContext &context, QPoint, QPoint to)
{
    filterAt(context, to);
}
