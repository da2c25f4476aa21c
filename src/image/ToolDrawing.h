#pragma once

#include "PaintTool.h"

#include <QBrush>
#include <QPainter>
#include <QPen>

#include <array>
#include <cstdint>

// The pens and figures of the paint tools, drawn on the picture with antialiasing off, so that
// a figure's pixels are exactly the colours of its pen and fill.

// How a figure is drawn: its outline pen, its fill, and the mode (copy or XOR).
struct FigurePen
{
    bool xorMode = false; // each pixel XOR the colour; otherwise the colour is put
    int penColour = 0;    // a colour number
    int penWidth = 1;
    int penStyle = 0; // BorderStyle; a pen wider than 1 is always solid
    bool outline = true;
    int fillStyle = 1; // FillStyle; 1 is transparent
    int fillColour = 0;
};

// The pen of a figure drawn for good: the foreground colour, DotSize + 1 wide, BorderStyle. For
// a figure that fills, by FillMode: 0 no fill; 1 filled in the fill colour by FillStyle;
// 2 outline and fill both in the fill colour.
FigurePen FinalPen(const PaintToolContext &context, bool fills);
// The same figure as a rubber band: every colour XOR the background colour, so that the band
// shows in its colours over the background and drawing it twice takes it away. A band's fill
// is transparent unless the figure fills.
FigurePen BandPen(const PaintToolContext &context, bool fills);

QColor ColorOfNumber(int colour);
QPen MakePen(int colour, int width, int style);
QBrush MakeFillBrush(int fillStyle, int colour);

// The 8 x 8 tile of a fill style, row by row, bit x set where the brush paints column x (the
// tile repeats from the picture's top left corner). Solid sets every bit, transparent none.
std::array<std::uint8_t, 8> FillPatternRows(int fillStyle);

// A painter on the tool's surface, set up for a pen. Each figure adds the part of the picture
// it may touch; when the painter goes, that part is reported with surfaceChanged.
class FigurePainter
{
public:
    FigurePainter(PaintToolContext &context, const FigurePen &pen);
    ~FigurePainter();
    FigurePainter(const FigurePainter &) = delete;
    FigurePainter &operator=(const FigurePainter &) = delete;

    // A line from a to b, both ends drawn; a to a is a dot of the pen's width.
    void line(QPoint a, QPoint b);
    void dot(QPoint at);
    // A box with corners a and b, both inside the outline.
    void box(QPoint a, QPoint b);
    // The ellipse that fits the box of corners a and b.
    void ellipse(QPoint a, QPoint b);
    // A box with round corners of the given size (the width and height of the corners' ellipse).
    void roundedBox(QPoint a, QPoint b, int cornerSize);
    void polygon(const QList<QPoint> &points);
    void polyline(const QList<QPoint> &points);
    // The Bezier curve from p0 to p3 with the control points p1 and p2.
    void bezier(QPoint p0, QPoint p1, QPoint p2, QPoint p3);
    // One pixel in the pen's colour, whatever the pen's width.
    void pixel(QPoint at);

    QPainter &painter() { return m_painter; }
    void touch(const QRect &area);

private:
    PaintToolContext &m_context;
    FigurePen m_pen;
    QPainter m_painter;
    QRect m_touched;
};

// The arrow's head: the barbs' ends for an arrow from (x1, y1) to (x2, y2). sign is the
// direction kept from the arrow before when both points are the same (0 for the first), and
// is updated.
struct ArrowHead
{
    QPoint barb1;
    QPoint barb2;
};
ArrowHead ArrowHeadFor(int x1, int y1, int x2, int y2, int &sign);
