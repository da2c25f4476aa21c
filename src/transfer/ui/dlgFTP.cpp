#include "dlgFTP.h"

#include "JobState.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

#include <cmath>

namespace {
const QColor Background(Qt::white);
const QColor Foreground(0, 0, 255);
} // namespace

FloodBar::FloodBar(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("picFlood"));
    setMinimumHeight(fontMetrics().height() + 8);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize FloodBar::sizeHint() const
{
    return QSize(360, fontMetrics().height() + 10);
}

void FloodBar::setValue(double value)
{
    m_value = std::min(value, m_total);
    m_hasTransient = false;
    update();
}

void FloodBar::showTransient(const QString &line)
{
    m_transient = line;
    m_hasTransient = true;
    update();
}

void FloodBar::setStatus(const QString &status)
{
    m_status = status;
    update();
}

QString FloodBar::text() const
{
    if (m_total <= 0)
        return QString();
    const int percent = int(std::floor(m_value / m_total * 100.0));
    return QString::number(percent) + QStringLiteral("% ") +
           (m_hasTransient ? m_transient : m_status);
}

void FloodBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), Background);
    if (m_total <= 0)
        return;
    const QString shown = text();
    painter.setPen(Foreground);
    painter.drawText(rect(), Qt::AlignCenter, shown);
    const int filled = int(std::lround(double(width()) * std::max(0.0, m_value) / m_total));
    const QRect bar(0, 0, filled, height());
    painter.setClipRect(bar);
    painter.fillRect(bar, Foreground);
    painter.setPen(Background);
    painter.drawText(rect(), Qt::AlignCenter, shown);
}

dlgFTP::dlgFTP(JobState &state, QWidget *parent)
    : QDialog(parent), m_state(state), m_flood(new FloodBar(this)), m_image(new QLabel(this)),
      m_cancel(new QPushButton(QStringLiteral("Cancel"), this)),
      m_background(new QPushButton(QStringLiteral("Run in background"), this)),
      m_timer(new QTimer(this))
{
    setObjectName(QStringLiteral("dlgFTP"));
    setWindowTitle(QStringLiteral("Tarnwick"));
    setModal(false);
    m_image->setObjectName(QStringLiteral("Image1"));
    m_image->setPixmap(style()->standardIcon(QStyle::SP_ArrowUp).pixmap(32, 32));
    m_cancel->setObjectName(QStringLiteral("Command1"));
    m_background->setObjectName(QStringLiteral("Command2"));
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_cancel->setAutoDefault(false);
    m_background->setAutoDefault(false);

    auto *top = new QHBoxLayout;
    top->addWidget(m_image);
    top->addWidget(m_flood, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_background);
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(buttons);

    connect(m_cancel, &QPushButton::clicked, this, &dlgFTP::Command1_Click);
    connect(m_background, &QPushButton::clicked, this, &dlgFTP::Command2_Click);
    connect(m_timer, &QTimer::timeout, this, &dlgFTP::Timer1_Timer);
    m_timer->start(500);

    adjustSize();
    if (const QScreen *screen = QApplication::primaryScreen()) {
        QRect area = frameGeometry();
        area.moveCenter(screen->availableGeometry().center());
        move(area.topLeft());
    }
    if (m_state.BackgroundRequested)
        lower();
}

void dlgFTP::FloodFillInit(double total, const QString &status)
{
    m_flood->setTotal(total);
    m_flood->setStatus(status);
    m_flood->setValue(0);
}

void dlgFTP::FloodFillUpdate(double value)
{
    m_flood->setValue(value);
}

void dlgFTP::FloodShowStatus(const QString &text)
{
    m_flood->showTransient(text);
}

void dlgFTP::reject()
{
    Command1_Click();
}

void dlgFTP::Command1_Click()
{
    m_timer->stop();
    const auto answer =
        QMessageBox::question(this, QStringLiteral("Need to know..."),
                              QStringLiteral("Are you sure you want to cancel the upload?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
    if (answer == QMessageBox::Yes) {
        m_state.UserResponse = JobState::Skip;
        m_state.UploadCancelled = true;
        hide();
        emit cancelConfirmed();
        return;
    }
    m_timer->start();
}

void dlgFTP::Command2_Click()
{
    m_state.BackgroundRequested = !m_state.BackgroundRequested;
}

void dlgFTP::Timer1_Timer()
{
    if (m_state.BackgroundRequested)
        lower();
    else
        raise();
}
