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
    if (m_target)
        m_target->removeEventFilter(this);
    m_target = target;
    if (m_target)
        m_target->installEventFilter(this);
    follow();
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
    if (watched == m_target) {
        switch (event->type()) {
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::ParentChange:
            follow();
            break;
        default:
            break;
        }
    }
    return QFrame::eventFilter(watched, event);
}
