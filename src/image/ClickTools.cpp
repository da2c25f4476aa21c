#include "FloodFill.h"
#include "PaintTools.h"
#include "ToolDrawing.h"
#include "mdlFilter.h"

#include <QFontMetrics>

// --- Pick Color

void PickColorTool::press(PaintToolContext &context, const ToolEvent &event)
{
    const QImage &picture = context.surface();
    if (!picture.rect().contains(event.pos))
        return;
    const int colour = ColorOfPixel(picture.pixel(event.pos));
    if (event.button == Qt::LeftButton)
        context.setForeColor(colour);
    else if (event.button == Qt::RightButton)
        context.setFillColor(colour);
}

// --- Fill

void FillTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    const QRect filled =
        FloodFillSurface(context.surface(), event.pos, ColorOfNumber(context.foreColor()).rgb(),
                         FillPatternRows(context.fillStyle()));
    if (!filled.isEmpty())
        context.surfaceChanged(filled);
}

// --- Zoom

void ZoomTool::release(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button == Qt::LeftButton)
        context.zoomAt(event.pos, event.modifiers.testFlag(Qt::ControlModifier));
}

// --- Hand

void HandTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    m_panning = true;
    m_startScreen = event.screenPos;
    m_kept = context.scrollPosition();
    context.setCursorFile(QStringLiteral("handgrab.cur"));
}

void HandTool::move(PaintToolContext &context, const ToolEvent &event)
{
    if (!m_panning)
        return;
    context.scrollTo(m_kept - (event.screenPos - m_startScreen));
}

void HandTool::release(PaintToolContext &context, const ToolEvent &)
{
    if (!m_panning)
        return;
    m_panning = false;
    context.setCursorFile(QString());
}

// --- Text

QRect PrintText(QImage &picture, QPoint topLeft, const QString &text, const QFont &font, int colour)
{
    QFont plain = font;
    plain.setStyleStrategy(QFont::NoAntialias);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::TextAntialiasing, false);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setFont(plain);
    painter.setPen(ColorOfNumber(colour));
    const QFontMetrics metrics(plain, &picture);
    painter.drawText(QPoint(topLeft.x(), topLeft.y() + metrics.ascent()), text);
    return QRect(topLeft,
                 QSize(metrics.horizontalAdvance(text) + metrics.maxWidth(), metrics.height()))
        .adjusted(-2, -2, 2, 2);
}

void TextTool::hide(PaintToolContext &context)
{
    m_box.textVisible = false;
    m_box.text.clear();
    m_box.textSizeCaption.clear();
    context.overlayChanged();
}

void TextTool::print(PaintToolContext &context)
{
    const QString text = m_box.text;
    const QPoint at = m_box.textPos;
    hide(context);
    if (text.isEmpty())
        return;
    const QRect touched =
        PrintText(context.surface(), at, text, context.font(), context.foreColor())
            .intersected(context.surface().rect());
    if (!touched.isEmpty())
        context.surfaceChanged(touched);
    context.recordState();
}

void TextTool::press(PaintToolContext &context, const ToolEvent &event)
{
    if (event.button != Qt::LeftButton)
        return;
    if (m_box.textVisible && m_box.textTag == QLatin1String("moving")) {
        m_box.textPos = event.pos;
        m_box.textTag.clear();
        context.overlayChanged();
        return;
    }
    // A box left with text in it is printed before the new one opens (as on leaving it).
    if (m_box.textVisible && !m_box.text.isEmpty())
        print(context);
    m_box.textVisible = true;
    m_box.textPos = event.pos;
    m_box.text.clear();
    m_box.textSizeCaption = QStringLiteral("M");
    m_box.textTag.clear();
    m_box.textForeColor = context.foreColor();
    m_box.textBackColor = context.backColor();
    context.overlayChanged();
}

void TextTool::finish(PaintToolContext &context)
{
    if (m_box.textVisible)
        print(context);
}

void TextTool::textEdited(PaintToolContext &context, const QString &text)
{
    if (!m_box.textVisible)
        return;
    m_box.text = text;
    m_box.textSizeCaption = text + QStringLiteral("M");
    context.overlayChanged();
}

bool TextTool::textKey(PaintToolContext &context, int key)
{
    if (!m_box.textVisible)
        return false;
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        print(context);
        return true;
    }
    if (key == Qt::Key_Escape) {
        hide(context); // the text is thrown away
        return true;
    }
    m_box.textSizeCaption = m_box.text + QStringLiteral("O");
    context.overlayChanged();
    return false;
}

void TextTool::textPressed(PaintToolContext &)
{
    if (m_box.textVisible)
        m_box.textTag = QStringLiteral("moving");
}

void TextTool::textFocusLost(PaintToolContext &context)
{
    if (!m_box.textVisible || m_box.textTag == QLatin1String("moving"))
        return;
    if (!m_box.text.isEmpty())
        print(context);
    m_box.textTag.clear();
}
