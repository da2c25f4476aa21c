#pragma once

#include "PaintTool.h"

#include <QList>
#include <QPoint>

#include <array>
#include <cstdint>

class FigurePainter;

// The eighteen tools of the paint window, by the base that fits how each is used. Each draws
// on the picture through its PaintToolContext alone.

// --- Freehand (StrokeTool): press and move

// Pencil (4): a dot at the press, then a line from the last point to each new one, in the
// foreground colour, DotSize + 1 wide, in BorderStyle.
class PencilTool final : public StrokeTool
{
protected:
    void begin(PaintToolContext &context, QPoint at) override;
    void segment(PaintToolContext &context, QPoint from, QPoint to) override;
};

// Eraser (2): at the press and at each move, a box in the background colour from (x, y) to
// (x + w, y - w), w the pen width: the patch lies up and to the right of the point.
class EraserTool final : public StrokeTool
{
protected:
    void begin(PaintToolContext &context, QPoint at) override;
    void segment(PaintToolContext &context, QPoint from, QPoint to) override;
};

// Air Brush (10): at the press and at each move, one burst of dots in the foreground colour,
// spray size four times the pen width.
class AirBrushTool final : public StrokeTool
{
protected:
    void begin(PaintToolContext &context, QPoint at) override;
    void segment(PaintToolContext &context, QPoint from, QPoint to) override;
};

// Brush (16): at the press and at each move, one dab of BrushShape in the foreground colour.
class BrushTool final : public StrokeTool
{
protected:
    void begin(PaintToolContext &context, QPoint at) override;
    void segment(PaintToolContext &context, QPoint from, QPoint to) override;
};

// Filter Brush (14): at the press and at each move, FilterNumber on the square of DotSize
// pixels each way around the point; nothing while that square starts left of or above the
// picture.
class FilterBrushTool final : public StrokeTool
{
protected:
    void begin(PaintToolContext &context, QPoint at) override;
    void segment(PaintToolContext &context, QPoint from, QPoint to) override;
};

// One burst of the air brush: round(size * size * 0.25) dots at (x - size / 2 + size * r1,
// y - size / 2 + size * r2), r1 and r2 uniform in [0, 1), taken down to whole pixels. The burst
// is a square of size x size, not a circle. seed starts the random numbers (the tool takes the
// clock at each burst).
QList<QPoint> AirBrushSpray(int x, int y, int size, std::uint64_t seed);

// One dab of the brush: shape 0 filled square, 1 filled circle (both by FillStyle), 2 hollow
// square, 3 hollow circle, 4 plus, 5 X, 6 the diagonal from bottom left to top right, 7 the
// one from bottom right to top left, 8 vertical line, 9 horizontal line; r = 3 x the pen width.
void DrawBrushShape(FigurePainter &painter, int shape, QPoint at, int penWidth);

// --- Dragged shapes (DragShapeTool)

// Line (5): CTRL for horizontal or vertical, SHIFT for 45 degrees; a click draws a dot.
class LineTool final : public DragShapeTool
{
protected:
    void drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode) override;
    bool allowsCtrl() const override { return true; }
    void drawClick(PaintToolContext &context, QPoint at) override;
};

// Rectangle (6): outline and fill by FillMode; SHIFT for a square.
class RectangleTool final : public DragShapeTool
{
protected:
    void drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode) override;
};

// Ellipse (7): the ellipse in the box, drawn only when the box has a width; SHIFT for a circle,
// CTRL does nothing.
class EllipseTool final : public DragShapeTool
{
protected:
    void drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode) override;
};

// Arrow (9): DrawArrow from start to end, a head of 10 pixels whatever the width. The head's
// direction for an arrow of no length is the one of the arrow before.
class ArrowTool final : public DragShapeTool
{
protected:
    void drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode) override;
    bool allowsCtrl() const override { return true; }
    void drawClick(PaintToolContext &context, QPoint at) override;

private:
    int m_sign = 0;
};

// Rounded Rectangle (11): corners of 10 pixels; SHIFT for a rounded square.
class RoundedRectangleTool final : public DragShapeTool
{
protected:
    void drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode) override;
};

// --- Open figures (OpenFigureTool)

// Polygon (12): the first press starts it; each next press adds a corner; a move shows the
// last leg (SHIFT and CTRL apply from the last corner). FinishTool closes it with fill by
// FillMode; fewer than two corners draw nothing.
class PolygonTool final : public OpenFigureTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void finish(PaintToolContext &context) override;
    const QList<QPoint> &points() const { return m_points; }

protected:
    void drawOpen(PaintToolContext &context) override;
    bool isOpen() const override { return m_open; }

private:
    bool m_open = false;
    QList<QPoint> m_points;
    QPoint m_band; // the end of the leg that follows the mouse
};

// Curve (13): the first press places four handles 50 pixels each way around the point and
// shows the curve through them; a drag on the picture moves all four, a drag on a handle moves
// that one. FinishTool draws it for good and hides the handles.
class CurveTool final : public OpenFigureTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;
    void finish(PaintToolContext &context) override;
    ToolOverlay overlay() const override;
    void dragHandle(PaintToolContext &context, int index, QPoint delta) override;

protected:
    void drawOpen(PaintToolContext &context) override;
    bool isOpen() const override { return m_visible; }

private:
    bool m_visible = false;
    bool m_dragging = false;
    std::array<QPoint, 4> m_handles;
    QPoint m_last;
};

// --- One click

// Pick Color (1): the colour under the point becomes the foreground colour (left button) or
// the fill colour (right button), the only tool the right button reaches.
class PickColorTool final : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
};

// Fill (3): the area of the colour under the point, in the foreground colour by FillStyle.
class FillTool final : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
};

// Zoom (15): a release zooms in 1.25 times about the point, with CTRL out.
class ZoomTool final : public PaintTool
{
public:
    void release(PaintToolContext &context, const ToolEvent &event) override;
    bool recordsOnRelease() const override { return false; }
};

// Hand (17): a drag moves the view's scroll bars by the distance the mouse moved on the screen,
// with the grabbing hand as the cursor meanwhile.
class HandTool final : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;

private:
    bool m_panning = false;
    QPoint m_startScreen;
    QPoint m_kept;
};

// Text (8): a press shows the text box at the point, empty; ENTER prints its text there in the
// foreground colour and the window's font, ESC throws it away. Leaving the box with text in it
// prints it too, unless the box was pressed to be moved: then the next press on the picture
// moves it there.
class TextTool final : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void finish(PaintToolContext &context) override;
    bool recordsOnRelease() const override { return false; }
    ToolOverlay overlay() const override { return m_box; }
    void textEdited(PaintToolContext &context, const QString &text) override;
    bool textKey(PaintToolContext &context, int key) override;
    void textPressed(PaintToolContext &context) override;
    void textFocusLost(PaintToolContext &context) override;

private:
    void print(PaintToolContext &context);
    void hide(PaintToolContext &context);
    ToolOverlay m_box;
};

// The text as the Text tool prints it: in the colour, with the font's top left at the point,
// over the picture (no background), antialiasing off. Gives the part of the picture touched.
QRect PrintText(QImage &picture, QPoint topLeft, const QString &text, const QFont &font,
                int colour);
