#include "frmErrUpload.h"

#include <QEventLoop>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

frmErrUpload::frmErrUpload(QWidget *parent)
    : QDialog(parent), m_text(new QLabel(this)), m_note(new QLabel(this)),
      m_ok(new QPushButton(QStringLiteral("OK"), this)), m_autoClose(new QTimer(this)),
      m_front(new QTimer(this))
{
    setObjectName(QStringLiteral("frmErrUpload"));
    setWindowTitle(QStringLiteral("Tarnwick"));
    m_text->setObjectName(QStringLiteral("Label1"));
    m_text->setWordWrap(true);
    m_text->setMinimumWidth(360);
    m_note->setObjectName(QStringLiteral("Label2"));
    m_ok->setObjectName(QStringLiteral("OKButton"));
    m_autoClose->setObjectName(QStringLiteral("Timer1"));
    m_autoClose->setSingleShot(true);
    m_autoClose->setTimerType(Qt::PreciseTimer);
    m_front->setObjectName(QStringLiteral("Timer2"));
    m_front->setInterval(500);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_text);
    layout->addWidget(m_note);
    layout->addWidget(m_ok, 0, Qt::AlignRight);

    connect(m_ok, &QPushButton::clicked, this, &QWidget::hide);
    connect(m_autoClose, &QTimer::timeout, this, &QWidget::hide);
    connect(m_front, &QTimer::timeout, this, [this] {
        if (isVisible())
            raise();
    });
}

void frmErrUpload::Load(const QString &text, int number, int autoCloseMs)
{
    m_text->setText(text);
    m_note->clear();
    m_autoClose->stop();
    if (number == 12031) {
        m_autoClose->setInterval(autoCloseMs);
        m_note->setText(QStringLiteral("This will auto reset in 5 seconds"));
    }
}

void frmErrUpload::ShowAndWait()
{
    QEventLoop wait;
    connect(this, &frmErrUpload::closed, &wait, &QEventLoop::quit);
    show();
    raise();
    m_front->start();
    if (m_autoClose->interval() > 0 && !m_note->text().isEmpty())
        m_autoClose->start();
    if (isVisible())
        wait.exec();
    m_front->stop();
}

void frmErrUpload::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    m_autoClose->stop();
    emit closed();
}
