#include "StepRing.h"

#include <QEvent>
#include <QPainter>

namespace {
constexpr int Margin = 4;
constexpr int Pen = 3;
} // namespace

StepRing::StepRing(QWidget *overlayParent)
    : QFrame(overlayParent), m_colour(QColor(0x00, 0xFF, 0x00))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void StepRing::setTarget(QWidget *target)
{
    watchTarget(false);
    m_target = target;
    watchTarget(true);
    follow();
}

void StepRing::watchTarget(bool on)
{
    for (const QPointer<QWidget> &widget : std::as_const(m_watched))
        if (widget)
            widget->removeEventFilter(this);
    m_watched.clear();
    if (!on || !m_target)
        return;
    // A control moves on screen also when a frame around it moves.
    for (QWidget *widget = m_target; widget && widget != parentWidget();
         widget = widget->parentWidget()) {
        widget->installEventFilter(this);
        m_watched << widget;
    }
}

void StepRing::setShown(bool shown)
{
    m_shown = shown;
    follow();
}

void StepRing::setColour(const QColor &colour)
{
    m_colour = colour;
    update();
}

void StepRing::follow()
{
    QWidget *overlay = parentWidget();
    const bool onScreen =
        m_shown && m_target && overlay && m_target->isVisible() && overlay->isAncestorOf(m_target);
    if (!onScreen) {
        hide();
        return;
    }
    const QPoint topLeft = m_target->mapTo(overlay, QPoint(0, 0));
    setGeometry(QRect(topLeft, m_target->size()).adjusted(-Margin, -Margin, Margin, Margin));
    show();
    raise();
}

void StepRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(m_colour, Pen);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const qreal inset = Pen / 2.0 + 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), 6, 6);
}

bool StepRing::eventFilter(QObject *watched, QEvent *event)
{
    if (watched->isWidgetType() && m_watched.contains(static_cast<QWidget *>(watched))) {
        switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::ParentChange:
            if (event->type() == QEvent::ParentChange)
                watchTarget(true);
            follow();
            break;
        default:
            break;
        }
    }
    return QFrame::eventFilter(watched, event);
}
