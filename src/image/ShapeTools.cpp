#include "PaintTools.h"
#include "ToolDrawing.h"

namespace {

FigurePen penFor(const PaintToolContext &context, FigureMode mode, bool fills)
{
    return mode == FigureMode::Band ? BandPen(context, fills) : FinalPen(context, fills);
}

} // namespace

void LineTool::drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode)
{
    FigurePainter(context, penFor(context, mode, false)).line(start, end);
}

void LineTool::drawClick(PaintToolContext &context, QPoint at)
{
    FigurePainter(context, FinalPen(context, false)).dot(at);
}

void RectangleTool::drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode)
{
    FigurePainter(context, penFor(context, mode, true)).box(start, end);
}

void EllipseTool::drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode)
{
    // The ellipse's aspect is height / width: a box without a width has none.
    if (end.x() == start.x())
        return;
    FigurePainter(context, penFor(context, mode, true)).ellipse(start, end);
}

void ArrowTool::drawFigure(PaintToolContext &context, QPoint start, QPoint end, FigureMode mode)
{
    FigurePainter painter(context, penFor(context, mode, false));
    // DrawArrow: the shaft, then a line from the tip to each barb's end.
    painter.line(start, end);
    const ArrowHead head = ArrowHeadFor(start.x(), start.y(), end.x(), end.y(), m_sign);
    painter.line(end, head.barb1);
    painter.line(end, head.barb2);
}

void ArrowTool::drawClick(PaintToolContext &context, QPoint at)
{
    FigurePainter(context, FinalPen(context, false)).dot(at);
}

void RoundedRectangleTool::drawFigure(PaintToolContext &context, QPoint start, QPoint end,
                                      FigureMode mode)
{
    FigurePainter(context, penFor(context, mode, true)).roundedBox(start, end, 10);
}
