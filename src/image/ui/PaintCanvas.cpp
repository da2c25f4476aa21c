#include "PaintCanvas.h"

#include "PaintDocument.h"

#include <QMouseEvent>
#include <QPainter>
#include <QRubberBand>

#include <cmath>

namespace {

constexpr int HandleSize = 7;

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
    syncToDocument();
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
    if (event->buttons() & Qt::LeftButton)
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

bool PaintCanvas::eventFilter(QObject *watched, QEvent *event)
{
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
