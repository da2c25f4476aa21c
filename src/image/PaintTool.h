#pragma once

#include <QFont>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

// The seam between the paint document and its tools. A tool is a small class over one of the
// bases below, registered by number in the ToolTable. It sees a PaintToolContext: the surface,
// the colours and pen settings, the undo ring (recordState), the floating selection and the
// view's scroll position, never the window. Tools run on the window's thread, inside its mouse
// and key events.

// What a tool may reach.
class PaintToolContext
{
public:
    virtual ~PaintToolContext() = default;

    // picPaint's pixels (Format_RGB32), drawn on in place; call surfaceChanged with the part
    // drawn on, so that only that part is shown again.
    virtual QImage &surface() = 0;
    virtual void surfaceChanged(const QRect &area) = 0;

    // Colours as colour numbers (red + 256 green + 65536 blue). A change of the foreground
    // colour takes the tool's open figure away first and draws it again after.
    virtual int foreColor() const = 0;
    virtual int fillColor() const = 0;
    virtual int backColor() const = 0;
    virtual void setForeColor(int colour) = 0;
    virtual void setFillColor(int colour) = 0;

    // The pen is DotSize + 1 pixels wide; BorderStyle (0 solid, 1 dash, 2 dot, 3 dash dot,
    // 4 dash dot dot), FillMode (0 outline, 1 outline and fill, 2 fill), FillStyle (0 solid,
    // 1 transparent, 2 horizontal, 3 vertical, 4 downward diagonal, 5 upward diagonal, 6 cross,
    // 7 diagonal cross), BrushShape and the filter brush's FilterNumber as the window sets them.
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
    // Where the floating selection stands, in picture pixels (empty when none is shown).
    virtual QRect selectionArea() const = 0;

    // Zoom in (or out) by 1.25 about a point of the picture.
    virtual void zoomAt(const QPoint &point, bool zoomOut) = 0;
    // The view's scroll position (the values of hscPaint and vscPaint) and a new one, which the
    // window limits to the scroll bars' ranges; a scroll bar that is not enabled stays.
    virtual QPoint scrollPosition() const = 0;
    virtual void scrollTo(const QPoint &position) = 0;
    // The tool's cursor while it differs from the table's (the Hand's grab); "" for the table's.
    virtual void setCursorFile(const QString &file) = 0;
    // What the tool shows over the picture changed (its handles, its text box).
    virtual void overlayChanged() = 0;
    // A hint in a pane of the status bar.
    virtual void showHint(int pane, const QString &text) = 0;
};

// One mouse event on picPaint, in picture pixels.
struct ToolEvent
{
    QPoint pos;
    // The button that went down or up; for a move, the left button.
    Qt::MouseButton button = Qt::LeftButton;
    Qt::KeyboardModifiers modifiers;
    // The buttons held during a move.
    Qt::MouseButtons buttons;
    // The mouse on the screen, in screen pixels: it does not move with the picture (Hand).
    QPoint screenPos;
};

// What a tool shows over the picture besides its pixels: Curve's handles (imgBezier, their
// centres in picture pixels) and Text's box (txtText).
struct ToolOverlay
{
    QList<QPoint> handles;
    bool textVisible = false;
    QPoint textPos;
    QString text;
    // lblTextSize's caption, whose size the box takes: the text and "O" after a key, and "M"
    // after a change of the text.
    QString textSizeCaption;
    // txtText's tag: "moving" after a press on the box, so that the next press on the picture
    // moves the box there.
    QString textTag;
    int textForeColor = 0;
    int textBackColor = 0xFFFFFF;
};

class PaintTool
{
public:
    virtual ~PaintTool() = default;
    virtual void press(PaintToolContext &, const ToolEvent &) {}
    virtual void move(PaintToolContext &, const ToolEvent &) {}
    virtual void release(PaintToolContext &, const ToolEvent &) {}
    // FinishTool: ends what the tool has open (a selection, a polygon, a curve, a text box).
    virtual void finish(PaintToolContext &) {}
    // Whether a release records a state (all tools but Select Area, Text, Polygon, Curve, Zoom).
    virtual bool recordsOnRelease() const { return true; }

    // An open figure drawn with XOR pens made from the foreground colour: taken away before
    // the colour changes and drawn again after.
    virtual void hideOpenFigure(PaintToolContext &) {}
    virtual void showOpenFigure(PaintToolContext &) {}

    virtual ToolOverlay overlay() const { return {}; }
    // One handle dragged by delta picture pixels.
    virtual void dragHandle(PaintToolContext &, int, QPoint) {}
    // The text box: its text changed; a key went down in it (true when the tool took the key);
    // a mouse press on it; it lost the focus.
    virtual void textEdited(PaintToolContext &, const QString &) {}
    virtual bool textKey(PaintToolContext &, int) { return false; }
    virtual void textPressed(PaintToolContext &) {}
    virtual void textFocusLost(PaintToolContext &) {}
};

// A freehand tool: a press starts at a point, each move goes on from the last point to the new
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

// How a figure is drawn: for good (copy) or as a rubber band, with XOR pens made from the
// background colour, so that drawing it twice takes it away.
enum class FigureMode
{
    Final,
    Band
};

// A shape dragged from a start to an end point, shown while dragging as a rubber band and
// drawn for good on release unless it has no size.
class DragShapeTool : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;

    // SHIFT: 45-degree lines and squares; CTRL (when allowed): horizontal or vertical. Any
    // other state of the keys: the point itself.
    static QPoint ConstrainPoint(QPoint start, QPoint point, Qt::KeyboardModifiers modifiers,
                                 bool allowCtrl);

protected:
    virtual void drawFigure(PaintToolContext &context, QPoint start, QPoint end,
                            FigureMode mode) = 0;
    virtual bool allowsCtrl() const { return false; }
    // A press and release at one point: nothing, unless the tool draws something for a click.
    virtual void drawClick(PaintToolContext &, QPoint) {}

private:
    bool m_drawing = false;
    QPoint m_start;
    QPoint m_end;
};

// A figure of many presses that stays open, drawn with XOR pens, until FinishTool (a double
// click or ENTER) draws it for good and records a state.
class OpenFigureTool : public PaintTool
{
public:
    void hideOpenFigure(PaintToolContext &context) override;
    void showOpenFigure(PaintToolContext &context) override;
    bool recordsOnRelease() const override { return false; }

protected:
    // Draws the open figure with XOR pens (twice takes it away).
    virtual void drawOpen(PaintToolContext &context) = 0;
    virtual bool isOpen() const = 0;
};

// Select Area: a dragged box (a dotted XOR band while dragging) becomes the floating selection;
// a box narrower than 2 pixels either way drops it. A press on the floating selection drags it
// instead, taking it from its place (with CTRL a copy, leaving the picture as it was).
class SelectionTool : public PaintTool
{
public:
    void press(PaintToolContext &context, const ToolEvent &event) override;
    void move(PaintToolContext &context, const ToolEvent &event) override;
    void release(PaintToolContext &context, const ToolEvent &event) override;
    void finish(PaintToolContext &context) override { context.commitSelection(); }
    bool recordsOnRelease() const override { return false; }

private:
    void band(PaintToolContext &context);
    bool m_drawing = false;
    bool m_dragging = false;
    QPoint m_start;
    QPoint m_end;
    QPoint m_grab; // the press point less the selection's corner, while dragging
};

// The option frames a tool shows.
enum ToolFrame : unsigned
{
    FrameDot = 1,   // fraOptDot
    FrameFill = 2,  // fraOptFill
    FrameBrush = 4, // fraBrush
};

// The table of tools by number (the elements of optTools), with the caption, the option frames,
// the cursor file and the status bar hint of each.
struct ToolEntry
{
    int number;
    const char *caption;
    unsigned frames;
    const char *cursorFile; // in the data folder's Cursors; "" for the arrow
    QStringList hint;       // the hint's lines
    std::function<std::unique_ptr<PaintTool>()> make;
};

class ToolTable
{
public:
    static const std::vector<ToolEntry> &tools();
    static const ToolEntry *find(int number);
    // Puts another maker into the table (at start-up, before any window opens).
    static void setMaker(int number, std::function<std::unique_ptr<PaintTool>()> make);
};
