#include "PaintTool.h"

#include "PaintTools.h"
#include "ToolDrawing.h"

#include <algorithm>
#include <cstdlib>

void StrokeTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    m_drawing = true;
    m_last = event.pos;
    begin(context, event.pos);
}

void StrokeTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_drawing)
        return;
    segment(context, m_last, event.pos);
    m_last = event.pos;
}

void StrokeTool::release(PaintToolContext &, const ToolEvent &)
{
    m_drawing = false;
}

QPoint DragShapeTool::ConstrainPoint(QPoint start, QPoint point, Qt::KeyboardModifiers modifiers,
                                     bool allowCtrl)
{
    const int dx = std::abs(point.x() - start.x());
    const int dy = std::abs(point.y() - start.y());
    const Qt::KeyboardModifiers keys =
        modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    if (keys == Qt::ShiftModifier) {
        if (dy >= dx) {
            const int y = point.y() > start.y() ? start.y() + dx : start.y() - dx;
            return {point.x(), y};
        }
        const int x = point.x() > start.x() ? start.x() + dy : start.x() - dy;
        return {x, point.y()};
    }
    if (keys == Qt::ControlModifier && allowCtrl)
        return dy >= dx ? QPoint(start.x(), point.y()) : QPoint(point.x(), start.y());
    return point;
}

void DragShapeTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    m_drawing = true;
    m_start = m_end = event.pos;
    drawFigure(context, m_start, m_end, FigureMode::Band);
}

void DragShapeTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_drawing)
        return;
    drawFigure(context, m_start, m_end, FigureMode::Band); // drawn twice, the old band goes
    m_end = ConstrainPoint(m_start, event.pos, event.modifiers, allowsCtrl());
    drawFigure(context, m_start, m_end, FigureMode::Band);
}

void DragShapeTool::release(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_drawing)
        return;
    m_drawing = false;
    drawFigure(context, m_start, m_end, FigureMode::Band);
    m_end = ConstrainPoint(m_start, event.pos, event.modifiers, allowsCtrl());
    if (m_end != m_start)
        drawFigure(context, m_start, m_end, FigureMode::Final);
    else
        drawClick(context, m_start);
}

void OpenFigureTool::hideOpenFigure(PaintToolContext &context)
{
    if (isOpen())
        drawOpen(context);
}

void OpenFigureTool::showOpenFigure(PaintToolContext &context)
{
    if (isOpen())
        drawOpen(context);
}

void SelectionTool::band(PaintToolContext &context)
{
    // A dotted frame, one pixel wide, in the picture's background colour with the XOR pen: it
    // shows inverted over the picture and goes when drawn again.
    FigurePen pen;
    pen.xorMode = true;
    pen.penColour = context.backColor();
    pen.penWidth = 1;
    pen.penStyle = 2;
    FigurePainter(context, pen).box(m_start, m_end);
}

void SelectionTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    if (context.selectionVisible() && context.selectionArea().contains(event.pos)) {
        // With CTRL the picture keeps its pixels: the selection is a copy.
        context.liftSelection(event.modifiers.testFlag(Qt::ControlModifier));
        m_dragging = true;
        m_grab = event.pos - context.selectionArea().topLeft();
        return;
    }
    context.commitSelection();
    m_drawing = true;
    m_start = m_end = event.pos;
    band(context);
}

void SelectionTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (m_dragging) {
        context.moveSelection(event.pos - m_grab);
        return;
    }
    if (!m_drawing)
        return;
    band(context);
    m_end = DragShapeTool::ConstrainPoint(m_start, event.pos, event.modifiers, false);
    band(context);
}

void SelectionTool::release(PaintToolContext &context, const ToolEvent &event)
{
    if (m_dragging) {
        m_dragging = false;
        context.moveSelection(event.pos - m_grab);
        return;
    }
    if (!m_drawing)
        return;
    m_drawing = false;
    band(context);
    m_end = DragShapeTool::ConstrainPoint(m_start, event.pos, event.modifiers, false);
    if (std::abs(m_end.x() - m_start.x()) < 2 || std::abs(m_end.y() - m_start.y()) < 2) {
        context.dropSelection();
        return;
    }
    // Inside the frame: the box less one pixel each way.
    const QRect box(QPoint(std::min(m_start.x(), m_end.x()), std::min(m_start.y(), m_end.y())),
                    QPoint(std::max(m_start.x(), m_end.x()), std::max(m_start.y(), m_end.y())));
    context.selectArea(box.adjusted(1, 1, -1, -1));
}

namespace {

template <class Tool> std::function<std::unique_ptr<PaintTool>()> maker()
{
    return [] { return std::make_unique<Tool>(); };
}

std::vector<ToolEntry> &table()
{
    static std::vector<ToolEntry> entries = {
        {0,
         "Select Area",
         0,
         "",
         {QStringLiteral("Selects a rectangular part of the picture to move or delete"),
          QStringLiteral("Press and hold down SHIFT to select a square part"),
          QStringLiteral("Press and hold down CTRL before moving the selection to copy it")},
         maker<SelectionTool>()},
        {1,
         "Pick Color",
         0,
         "pick.cur",
         {QStringLiteral("Picks up a foreground color (click) or background color (right-click) "
                         "from the picture for drawing")},
         maker<PickColorTool>()},
        {2,
         "Eraser",
         FrameDot,
         "eraser.cur",
         {QStringLiteral("Erases a partion of the picture using the selected eraser width")},
         maker<EraserTool>()},
        {3, "Fill", 0, "fill.cur", {QStringLiteral("Fills an area")}, maker<FillTool>()},
        {4,
         "Pencil",
         FrameDot,
         "pencil.cur",
         {QStringLiteral("Draws using a pencil with the selected dot size")},
         maker<PencilTool>()},
        {5,
         "Line",
         FrameDot,
         "cross.cur",
         {QStringLiteral("Draws a straight line with the selected line width"),
          QStringLiteral("Press and hold down CTRL to draw a horizontal or vertical line; SHIFT "
                         "to draw a 45-degree line")},
         maker<LineTool>()},
        {6,
         "Rectangle",
         FrameDot | FrameFill,
         "cross.cur",
         {QStringLiteral("Draws a rectangle with the selected outline width and fill style"),
          QStringLiteral("Press and hold down SHIFT to draw a square")},
         maker<RectangleTool>()},
        {7,
         "Ellipse",
         FrameDot | FrameFill,
         "cross.cur",
         {QStringLiteral("Draws an ellips with the selected outline width and fill style"),
          QStringLiteral("Press and hold down SHIFT to draw a circle")},
         maker<EllipseTool>()},
        {8,
         "Text",
         0,
         "text.cur",
         {QStringLiteral("Insert text into the picture"),
          QStringLiteral("Press ENTER or double-click to finish inserting the text")},
         maker<TextTool>()},
        {9,
         "Arrow",
         FrameDot,
         "cross.cur",
         {QStringLiteral("Draws an arrow with the selected arrow width"),
          QStringLiteral("Press and hold down CTRL to draw a horizontal or vertical arrow; SHIFT "
                         "to draw a 45-degree arrow")},
         maker<ArrowTool>()},
        {10,
         "Air Brush",
         FrameDot,
         "airbrush.cur",
         {QStringLiteral("Draws using an airbrush with the selected airbrush size")},
         maker<AirBrushTool>()},
        {11,
         "Rounded Rectangle",
         FrameDot | FrameFill,
         "cross.cur",
         {QStringLiteral(
              "Draws a rounded rectangle with the selected outline width and fill style"),
          QStringLiteral("Press and hold down SHIFT to draw a rounded-square")},
         maker<RoundedRectangleTool>()},
        {12,
         "Polygon",
         FrameDot | FrameFill,
         "cross.cur",
         {QStringLiteral("Draws a polygon with the selected outline width and fill area"),
          QStringLiteral("Press ENTER or double-click to finish drawing the polygon")},
         maker<PolygonTool>()},
        {13,
         "Curve",
         FrameDot,
         "",
         {QStringLiteral("Draws a bezier curve with the selected curve width"),
          QStringLiteral("Press ENTER or double-click to finish drawing the curve")},
         maker<CurveTool>()},
        {14,
         "Filter Brush",
         FrameDot,
         "filter.cur",
         {QStringLiteral("Apply the selected filter to the image")},
         maker<FilterBrushTool>()},
        {15,
         "Zoom",
         0,
         "zoom.cur",
         {QStringLiteral("Zoom in or zoom out the image 1.25x (press and hold down CTRL to zoom "
                         "out)")},
         maker<ZoomTool>()},
        {16,
         "Brush",
         FrameBrush | FrameDot,
         "brush.cur",
         {QStringLiteral("Draws using a brush with the selected shape")},
         maker<BrushTool>()},
        {17,
         "Hand",
         0,
         "handflat.cur",
         {QStringLiteral("Pan to see other part of the picture")},
         maker<HandTool>()},
    };
    return entries;
}

} // namespace

const std::vector<ToolEntry> &ToolTable::tools()
{
    return table();
}

const ToolEntry *ToolTable::find(int number)
{
    for (const ToolEntry &entry : table())
        if (entry.number == number)
            return &entry;
    return nullptr;
}

void ToolTable::setMaker(int number, std::function<std::unique_ptr<PaintTool>()> make)
{
    for (ToolEntry &entry : table())
        if (entry.number == number)
            entry.make = std::move(make);
}
