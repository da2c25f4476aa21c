#include "PaintTools.h"
#include "ToolDrawing.h"

// --- Polygon

void PolygonTool::drawOpen(PaintToolContext &context)
{
    // The legs and the one that follows the mouse, as one line, so that a corner is drawn once.
    QList<QPoint> legs = m_points;
    if (m_band != m_points.last())
        legs.append(m_band);
    if (legs.size() < 2)
        return;
    FigurePainter(context, BandPen(context, false)).polyline(legs);
}

void PolygonTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    if (!m_open) {
        m_open = true;
        m_points = {event.pos};
        m_band = event.pos;
        return;
    }
    drawOpen(context);
    const QPoint corner =
        DragShapeTool::ConstrainPoint(m_points.last(), event.pos, event.modifiers, true);
    m_points.append(corner);
    m_band = corner;
    drawOpen(context);
}

void PolygonTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_open)
        return;
    drawOpen(context);
    m_band = DragShapeTool::ConstrainPoint(m_points.last(), event.pos, event.modifiers, true);
    drawOpen(context);
}

void PolygonTool::finish(PaintToolContext &context)
{
    if (!m_open)
        return;
    drawOpen(context);
    const QList<QPoint> corners = std::exchange(m_points, {});
    m_open = false;
    if (corners.size() < 2)
        return;
    FigurePainter(context, FinalPen(context, true)).polygon(corners);
    context.recordState();
}

// --- Curve

void CurveTool::drawOpen(PaintToolContext &context)
{
    FigurePainter(context, BandPen(context, false))
        .bezier(m_handles[0], m_handles[1], m_handles[2], m_handles[3]);
}

void CurveTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    m_last = event.pos;
    m_dragging = true;
    if (m_visible)
        return;
    const int x = event.pos.x();
    const int y = event.pos.y();
    m_handles = {QPoint(x - 50, y - 50), QPoint(x + 50, y - 50), QPoint(x - 50, y + 50),
                 QPoint(x + 50, y + 50)};
    m_visible = true;
    drawOpen(context);
    context.overlayChanged();
}

void CurveTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_visible || !m_dragging)
        return;
    const QPoint delta = event.pos - m_last;
    if (delta.isNull())
        return;
    drawOpen(context);
    for (QPoint &handle : m_handles)
        handle += delta;
    m_last = event.pos;
    drawOpen(context);
    context.overlayChanged();
}

void CurveTool::release(PaintToolContext &, const ToolEvent &)
{
    m_dragging = false;
}

void CurveTool::dragHandle(PaintToolContext &context, int index, QPoint delta)
{
    if (!m_visible || index < 0 || index > 3 || delta.isNull())
        return;
    drawOpen(context);
    m_handles[size_t(index)] += delta;
    drawOpen(context);
    context.overlayChanged();
}

void CurveTool::finish(PaintToolContext &context)
{
    if (!m_visible)
        return;
    drawOpen(context);
    m_visible = false;
    m_dragging = false;
    FigurePainter(context, FinalPen(context, false))
        .bezier(m_handles[0], m_handles[1], m_handles[2], m_handles[3]);
    context.overlayChanged();
    context.recordState();
}

ToolOverlay CurveTool::overlay() const
{
    ToolOverlay shown;
    if (m_visible)
        shown.handles = {m_handles.begin(), m_handles.end()};
    return shown;
}
