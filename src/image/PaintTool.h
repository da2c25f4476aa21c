#pragma once

#include <QFont>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>

#include <functional>
#include <memory>
#include <vector>

// The seam between the paint document and its tools. A tool is a small class over one of the
// bases below, registered by number in the ToolTable. It sees a PaintToolContext: the surface,
// the colours and pen settings, the undo ring (recordState) and the floating selection, never
// the window. Tools run on the window's thread, inside its mouse and key events.

// What a tool may reach.
class PaintToolContext
{
public:
    virtual ~PaintToolContext() = default;

    // picPaint's pixels (Format_RGB32), drawn on in place; call surfaceChanged after drawing.
    virtual QImage &surface() = 0;
    virtual void surfaceChanged(const QRect &area) = 0;

    // Colours as colour numbers (red + 256 green + 65536 blue).
    virtual int foreColor() const = 0;
    virtual int fillColor() const = 0;
    virtual int backColor() const = 0;
    virtual void setForeColor(int colour) = 0;
    virtual void setFillColor(int colour) = 0;

    // The pen is DotSize + 1 pixels wide; BorderStyle, FillMode (0 outline, 1 outline and fill,
    // 2 fill), FillStyle, BrushShape and the filter brush's FilterNumber as the menus set them.
    virtual int penWidth() const = 0;
    virtual int borderStyle() const = 0;
    virtual int fillMode() const = 0;
    virtual int fillStyle() const = 0;
    virtual int brushShape() const = 0;
    virtual int filterNumber() const = 0;
    virtual QFont font() const = 0;

    // Records the picture as a new undo state (SetImageBuffer).
    virtual void recordState() = 0;
    // Runs a filter on a region of the picture (inclusive bounds), without recording a state.
    virtual void applyFilter(int filter, const QRect &region) = 0;

    // The floating selection. selectArea shows a copy of the area over the picture, which keeps
    // its pixels; liftSelection takes it from its place (leaving the background there, or the
    // pixels when keepPixels, which makes it a copy); moveSelection places it; commitSelection
    // paints it into the picture; dropSelection hides it without placing it.
    virtual void selectArea(const QRect &area) = 0;
    virtual void liftSelection(bool keepPixels) = 0;
    virtual void moveSelection(const QPoint &topLeft) = 0;
    virtual void commitSelection() = 0;
    virtual void dropSelection() = 0;
    virtual bool selectionVisible() const = 0;

    // Zoom in (or out) by 1.25 about a point of the picture.
    virtual void zoomAt(const QPoint &point, bool zoomOut) = 0;
    // A hint in a pane of the status bar.
    virtual void showHint(int pane, const QString &text) = 0;
};

// One mouse event on picPaint, in picture pixels.
struct ToolEvent
{
    QPoint pos;
    Qt::MouseButton button = Qt::LeftButton;
    Qt::KeyboardModifiers modifiers;
};

class PaintTool
{
public:
    virtual ~PaintTool() = default;
    virtual void press(PaintToolContext &, const ToolEvent &) {}
    virtual void move(PaintToolContext &, const ToolEvent &) {}
    virtual void release(PaintToolContext &, const ToolEvent &) {}
    // FinishTool: ends what the tool has open (a polygon, a curve, a text box).
    virtual void finish(PaintToolContext &) {}
    // Whether a release records a state (all tools but Select Area, Text, Polygon, Curve, Zoom).
    virtual bool recordsOnRelease() const { return true; }
};

// A freehand tool: a press starts at a point, each move draws from the last point to the new
// one. Only the left button draws.
class StrokeTool : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;

protected:
    virtual void begin(PaintToolContext &context, QPoint at) = 0;
    virtual void segment(PaintToolContext &context, QPoint from, QPoint to) = 0;
    bool drawing() const { return m_drawing; }

private:
    bool m_drawing = false;
    QPoint m_last;
};

// A shape dragged from a start to an end point, shown while dragging as a rubber band (drawn
// twice with XOR it goes away) and drawn for good on release unless it has no size.
class DragShapeTool : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;

    // SHIFT: 45-degree lines and squares; CTRL (when allowed): horizontal or vertical.
    static QPoint ConstrainPoint(QPoint start, QPoint point, Qt::KeyboardModifiers modifiers,
                                 bool allowCtrl);

protected:
    // Draws the figure; rubberBand says it is the XOR outline of the drag.
    virtual void drawFigure(PaintToolContext &context, QPoint start, QPoint end,
                            bool rubberBand) = 0;
    virtual bool allowsCtrl() const { return true; }
    virtual bool drawsWithoutSize() const { return false; }

private:
    void rubberBand(PaintToolContext &context);
    bool m_drawing = false;
    QPoint m_start;
    QPoint m_end;
};

// A figure of many presses: each press adds a corner; finish closes it.
class PolygonTool : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void finish(PaintToolContext &context) override;
    bool recordsOnRelease() const override { return false; }
    const QList<QPoint> &points() const { return m_points; }

protected:
    virtual void drawLeg(PaintToolContext &context, QPoint from, QPoint to) = 0;
    virtual void close(PaintToolContext &context, const QList<QPoint> &points) = 0;

private:
    QList<QPoint> m_points;
};

// Select Area: a dragged box becomes the floating selection; a box narrower than 2 pixels
// either way drops it.
class SelectionTool : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;
    void finish(PaintToolContext &context) override { context.commitSelection(); }
    bool recordsOnRelease() const override { return false; }

private:
    bool m_drawing = false;
    QPoint m_start;
    QPoint m_end;
};

// The table of tools by number (the elements of optTools), with the caption, the option frames
// and the cursor file of each. A tool whose class is not there yet has no maker.
struct ToolEntry
{
    int number;
    const char *caption;
    const char *cursorFile; // in the data folder's Cursors; "" for the arrow
    std::function<std::unique_ptr<PaintTool>()> make;
};

class ToolTable
{
public:
    static const std::vector<ToolEntry> &tools();
    static const ToolEntry *find(int number);
    // Puts a maker into the table (at start-up, before any window opens).
    static void setMaker(int number, std::function<std::unique_ptr<PaintTool>()> make);
};
