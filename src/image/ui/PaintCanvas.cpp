#include "PaintCanvas.h"

#include "PaintDocument.h"

#include <QFocusEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QRubberBand>

#include <cmath>

namespace {

constexpr int HandleSize = 7;
constexpr int BezierSize = 9;

// The floating selection, drawn over the picture with a dotted frame.
class SelectionView final : public QWidget
{
public:
    SelectionView(PaintDocument &document, QWidget *parent) : QWidget(parent), m_document(document)
    {
        setObjectName(QStringLiteral("picSelect"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.drawImage(rect(), m_document.selection().image);
        p.setPen(QPen(Qt::black, 1, Qt::DotLine));
        p.setBrush(Qt::NoBrush);
        p.drawRect(rect().adjusted(0, 0, -1, -1));
    }

private:
    PaintDocument &m_document;
};

// One of Curve's handles: a small square whose centre is the control point.
class BezierHandle final : public QWidget
{
public:
    BezierHandle(int index, QWidget *parent) : QWidget(parent)
    {
        setObjectName(QStringLiteral("imgBezier_%1").arg(index));
        setFixedSize(BezierSize, BezierSize);
        setCursor(Qt::SizeAllCursor);
        hide();
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.fillRect(rect(), Qt::white);
        p.setPen(Qt::black);
        p.drawRect(rect().adjusted(0, 0, -1, -1));
        p.fillRect(rect().adjusted(3, 3, -3, -3), Qt::black);
    }
};

} // namespace

PaintCanvas::PaintCanvas(PaintDocument &document, QWidget *container)
    : QWidget(container), m_document(document), m_container(container)
{
    setObjectName(QStringLiteral("picPaint"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    m_select = new SelectionView(document, this);
    const Qt::CursorShape shapes[3] = {Qt::SizeHorCursor, Qt::SizeFDiagCursor, Qt::SizeVerCursor};
    for (int i = 0; i < 3; ++i) {
        auto *handle = new QWidget(container);
        handle->setObjectName(QStringLiteral("picPaintResize_%1").arg(i));
        handle->setFixedSize(HandleSize, HandleSize);
        handle->setAutoFillBackground(true);
        QPalette palette = handle->palette();
        palette.setColor(QPalette::Window, palette.color(QPalette::Highlight));
        handle->setPalette(palette);
        handle->setCursor(shapes[i]);
        handle->installEventFilter(this);
        m_handles[size_t(i)] = handle;
    }
    m_frame = new QRubberBand(QRubberBand::Rectangle, container);
    for (int i = 0; i < 4; ++i) {
        m_bezier[size_t(i)] = new BezierHandle(i, this);
        m_bezier[size_t(i)]->installEventFilter(this);
    }
    m_textSize = new QLabel(this);
    m_textSize->setObjectName(QStringLiteral("lblTextSize"));
    m_textSize->hide();
    m_text = new QLineEdit(this);
    m_text->setObjectName(QStringLiteral("txtText"));
    m_text->setFrame(false);
    m_text->setTextMargins(0, 0, 0, 0);
    m_text->setContentsMargins(0, 0, 0, 0);
    m_text->hide();
    m_text->installEventFilter(this);
    connect(m_text, &QLineEdit::textChanged, this, [this](const QString &text) {
        if (!m_syncingText)
            m_document.textEdited(text);
    });
    syncToDocument();
}

QPoint PaintCanvas::toWidget(const QPoint &p) const
{
    const double zoom = m_document.ZoomFactor();
    return {int(std::lround(p.x() * zoom)), int(std::lround(p.y() * zoom))};
}

void PaintCanvas::showPicture(const QRect &area)
{
    if (area.isEmpty())
        return;
    const double zoom = m_document.ZoomFactor();
    if (zoom == 1.0) {
        update(area);
        return;
    }
    update(QRect(QPoint(int(std::floor(area.left() * zoom)), int(std::floor(area.top() * zoom))),
                 QPoint(int(std::ceil((area.right() + 1) * zoom)),
                        int(std::ceil((area.bottom() + 1) * zoom)))));
}

void PaintCanvas::syncOverlay()
{
    const ToolOverlay overlay = m_document.toolOverlay();
    const int half = BezierSize / 2;
    for (int i = 0; i < 4; ++i) {
        QWidget *handle = m_bezier[size_t(i)];
        if (i < overlay.handles.size()) {
            handle->move(toWidget(overlay.handles[i]) - QPoint(half, half));
            handle->show();
            handle->raise();
        } else {
            handle->hide();
        }
    }
    if (!overlay.textVisible) {
        if (m_text->isVisible()) {
            m_syncingText = true;
            m_text->clear();
            m_syncingText = false;
            m_text->hide();
            setFocus();
        }
        return;
    }
    QFont font = m_document.font();
    font.setStyleStrategy(QFont::NoAntialias);
    m_text->setFont(font);
    m_textSize->setFont(font);
    QPalette palette = m_text->palette();
    const auto colour = [](int c) { return QColor(c & 255, (c >> 8) & 255, (c >> 16) & 255); };
    palette.setColor(QPalette::Base, colour(overlay.textBackColor));
    palette.setColor(QPalette::Text, colour(overlay.textForeColor));
    m_text->setPalette(palette);
    if (m_text->text() != overlay.text) {
        m_syncingText = true;
        m_text->setText(overlay.text);
        m_syncingText = false;
    }
    // The box takes the size of the label that holds its text and a letter more.
    m_textSize->setText(overlay.textSizeCaption);
    m_textSize->adjustSize();
    const QSize size(m_textSize->width() + 2,
                     std::max(m_textSize->height(), m_text->minimumSizeHint().height()));
    m_text->setGeometry(QRect(toWidget(overlay.textPos), size));
    if (!m_text->isVisible()) {
        m_text->show();
        m_text->raise();
        m_text->setFocus();
    }
}

void PaintCanvas::syncToDocument()
{
    const double zoom = m_document.ZoomFactor();
    const QImage &picture = m_document.picture();
    const QSize shown(std::max(1, int(std::lround(picture.width() * zoom))),
                      std::max(1, int(std::lround(picture.height() * zoom))));
    if (size() != shown)
        setFixedSize(shown);
    m_container->setFixedSize(shown + QSize(HandleSize + 4, HandleSize + 4));
    const PaintDocument::Selection &selection = m_document.selection();
    if (selection.visible) {
        m_select->setGeometry(int(std::lround(selection.pos.x() * zoom)),
                              int(std::lround(selection.pos.y() * zoom)),
                              std::max(1, int(std::lround(selection.image.width() * zoom))),
                              std::max(1, int(std::lround(selection.image.height() * zoom))));
        m_select->show();
        m_select->update();
    } else {
        m_select->hide();
    }
    placeHandles();
    syncOverlay();
    update();
}

void PaintCanvas::placeHandles()
{
    const QRect r = geometry();
    m_handles[0]->move(r.right() + 1, r.top() + r.height() / 2 - HandleSize / 2);
    m_handles[1]->move(r.right() + 1, r.bottom() + 1);
    m_handles[2]->move(r.left() + r.width() / 2 - HandleSize / 2, r.bottom() + 1);
}

QPoint PaintCanvas::toPicture(const QPoint &p) const
{
    const double zoom = m_document.ZoomFactor();
    return {int(std::floor(p.x() / zoom)), int(std::floor(p.y() / zoom))};
}

void PaintCanvas::paintEvent(QPaintEvent *event)
{
    QPainter p(this);
    const QImage &picture = m_document.picture();
    const double zoom = m_document.ZoomFactor();
    if (zoom == 1.0) {
        p.drawImage(event->rect(), picture, event->rect());
        return;
    }
    // Only the exposed part is scaled, so a large zoomed picture repaints quickly.
    const QRectF target = event->rect();
    const QRectF source(target.left() / zoom, target.top() / zoom, target.width() / zoom,
                        target.height() / zoom);
    p.drawImage(target, picture, source);
}

static ToolEvent toolEvent(const QPoint &at, QMouseEvent *event)
{
    ToolEvent e;
    e.pos = at;
    e.button = event->button() == Qt::NoButton ? Qt::LeftButton : event->button();
    e.modifiers = event->modifiers();
    e.buttons = event->buttons();
    e.screenPos = event->globalPosition().toPoint();
    return e;
}

void PaintCanvas::mousePressEvent(QMouseEvent *event)
{
    setFocus();
    m_document.mousePress(toolEvent(toPicture(event->position().toPoint()), event));
}

void PaintCanvas::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint at = toPicture(event->position().toPoint());
    emit mouseAt(at);
    // Moves with no button held reach the tool too: the polygon's last leg follows the mouse.
    m_document.mouseMove(toolEvent(at, event));
}

void PaintCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    m_document.mouseRelease(toolEvent(toPicture(event->position().toPoint()), event));
}

void PaintCanvas::mouseDoubleClickEvent(QMouseEvent *)
{
    m_document.FinishTool();
}

void PaintCanvas::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        m_document.FinishTool();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool PaintCanvas::bezierEvent(int index, QEvent *event)
{
    const auto *mouse = static_cast<const QMouseEvent *>(event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() == Qt::LeftButton) {
            m_bezierDragging = index;
            m_bezierLast = mouse->globalPosition().toPoint();
        }
        return true;
    case QEvent::MouseMove: {
        if (m_bezierDragging != index)
            return true;
        // The handle moves by whole picture pixels; what is left over waits for the next move.
        const double zoom = m_document.ZoomFactor();
        const QPoint moved = mouse->globalPosition().toPoint() - m_bezierLast;
        const QPoint delta(int(moved.x() / zoom), int(moved.y() / zoom));
        if (!delta.isNull()) {
            m_bezierLast +=
                QPoint(int(std::lround(delta.x() * zoom)), int(std::lround(delta.y() * zoom)));
            m_document.dragHandle(index, delta);
        }
        return true;
    }
    case QEvent::MouseButtonRelease:
        m_bezierDragging = -1;
        return true;
    case QEvent::MouseButtonDblClick:
        m_document.FinishTool();
        return true;
    default:
        return false;
    }
}

bool PaintCanvas::textBoxEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        // ENTER and ESC are the tool's; every other key goes on into the box.
        return m_document.textKey(static_cast<QKeyEvent *>(event)->key());
    case QEvent::MouseButtonPress:
        m_document.textPressed();
        return false;
    case QEvent::FocusOut: {
        // Leaving for a menu, or for another window, is not leaving the box.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason)
            m_document.textFocusLost();
        return false;
    }
    default:
        return false;
    }
}

bool PaintCanvas::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_text)
        return textBoxEvent(event);
    for (int i = 0; i < 4; ++i)
        if (watched == m_bezier[size_t(i)])
            return bezierEvent(i, event);
    int index = -1;
    for (int i = 0; i < 3; ++i)
        if (watched == m_handles[size_t(i)])
            index = i;
    if (index < 0)
        return QWidget::eventFilter(watched, event);
    auto *mouse = static_cast<QMouseEvent *>(event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() == Qt::LeftButton) {
            m_dragging = index;
            m_dragStart = mouse->globalPosition().toPoint();
            m_frame->setGeometry(geometry());
            m_frame->show();
        }
        return true;
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease: {
        if (m_dragging < 0)
            return true;
        const QPoint moved = mouse->globalPosition().toPoint() - m_dragStart;
        // Element 1 changes both sides, 0 the width alone, 2 the height alone.
        const int w = std::max(1, width() + (m_dragging != 2 ? moved.x() : 0));
        const int h = std::max(1, height() + (m_dragging != 0 ? moved.y() : 0));
        m_frame->setGeometry(QRect(pos(), QSize(w, h)));
        if (event->type() == QEvent::MouseButtonRelease) {
            m_dragging = -1;
            m_frame->hide();
            const double zoom = m_document.ZoomFactor();
            m_document.ResizePicture(std::max(1, int(std::lround(w / zoom))),
                                     std::max(1, int(std::lround(h / zoom))));
        }
        return true;
    }
    default:
        return false;
    }
}
