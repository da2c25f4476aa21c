#include "PaintTool.h"

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
    if (modifiers == Qt::ShiftModifier) {
        if (dy >= dx) {
            const int y = point.y() > start.y() ? start.y() + dx : start.y() - dx;
            return {point.x(), y};
        }
        const int x = point.x() > start.x() ? start.x() + dy : start.x() - dy;
        return {x, point.y()};
    }
    if (modifiers == Qt::ControlModifier && allowCtrl)
        return dy >= dx ? QPoint(start.x(), point.y()) : QPoint(point.x(), start.y());
    return point;
}

void DragShapeTool::rubberBand(PaintToolContext &context)
{
    drawFigure(context, m_start, m_end, true);
}

void DragShapeTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    m_drawing = true;
    m_start = m_end = event.pos;
    rubberBand(context);
}

void DragShapeTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_drawing)
        return;
    rubberBand(context); // drawn twice with XOR, the old band goes away
    m_end = ConstrainPoint(m_start, event.pos, event.modifiers, allowsCtrl());
    rubberBand(context);
}

void DragShapeTool::release(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_drawing)
        return;
    m_drawing = false;
    rubberBand(context);
    m_end = ConstrainPoint(m_start, event.pos, event.modifiers, allowsCtrl());
    if (m_end != m_start || drawsWithoutSize())
        drawFigure(context, m_start, m_end, false);
}

void PolygonTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    if (!m_points.isEmpty())
        drawLeg(context, m_points.last(), event.pos);
    m_points.append(event.pos);
}

void PolygonTool::finish(PaintToolContext &context)
{
    const QList<QPoint> points = std::exchange(m_points, {});
    if (points.size() < 2)
        return;
    close(context, points);
    context.recordState();
}

void SelectionTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    context.commitSelection();
    m_drawing = true;
    m_start = m_end = event.pos;
}

void SelectionTool::move(PaintToolContext &, const ToolEvent &event)
{
    if (m_drawing)
        m_end = DragShapeTool::ConstrainPoint(m_start, event.pos, event.modifiers, false);
}

void SelectionTool::release(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_drawing)
        return;
    m_drawing = false;
    m_end = DragShapeTool::ConstrainPoint(m_start, event.pos, event.modifiers, false);
    if (std::abs(m_end.x() - m_start.x()) < 2 || std::abs(m_end.y() - m_start.y()) < 2) {
        context.dropSelection();
        return;
    }
    // Inside the frame: the box less one pixel each way.
    const QRect box = QRect(m_start, m_end).normalized();
    context.selectArea(box.adjusted(1, 1, -1, -1));
}

namespace {

// Zoom: a click zooms in by 1.25 about the point, with CTRL out.
class ZoomTool final : public PaintTool
{
public:
    void release(PaintToolContext &context, const ToolEvent &event) override
    {
        if (event.button == Qt::LeftButton)
            context.zoomAt(event.pos, event.modifiers.testFlag(Qt::ControlModifier));
    }
    bool recordsOnRelease() const override { return false; }
};

std::vector<ToolEntry> &table()
{
    static std::vector<ToolEntry> entries = {
        {0, "Select Area", "", [] { return std::make_unique<SelectionTool>(); }},
        {1, "Pick Color", "pick.cur", {}},
        {2, "Eraser", "eraser.cur", {}},
        {3, "Fill", "fill.cur", {}},
        {4, "Pencil", "pencil.cur", {}},
        {5, "Line", "cross.cur", {}},
        {6, "Rectangle", "cross.cur", {}},
        {7, "Ellipse", "cross.cur", {}},
        {8, "Text", "text.cur", {}},
        {9, "Arrow", "cross.cur", {}},
        {10, "Air Brush", "airbrush.cur", {}},
        {11, "Rounded Rectangle", "cross.cur", {}},
        {12, "Polygon", "cross.cur", {}},
        {13, "Curve", "", {}},
        {14, "Filter Brush", "filter.cur", {}},
        {15, "Zoom", "zoom.cur", [] { return std::make_unique<ZoomTool>(); }},
        {16, "Brush", "brush.cur", {}},
        {17, "Hand", "handflat.cur", {}},
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
