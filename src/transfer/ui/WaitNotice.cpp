#include "WaitNotice.h"

#include "JobState.h"
#include "cFTP.h"

#include <QPushButton>
#include <QStatusBar>

WaitNotice::WaitNotice(cFTP &ftp, JobState &state, QStatusBar *statusBar, QObject *parent)
    : QObject(parent), m_ftp(ftp), m_state(state), m_statusBar(statusBar)
{
    setObjectName(QStringLiteral("WaitNotice"));
    connect(&ftp, &cFTP::WaitStarted, this, &WaitNotice::waitStarted);
    connect(&ftp, &cFTP::WaitEnded, this, &WaitNotice::waitEnded);
    if (statusBar) {
        m_cancel = new QPushButton(tr("Cancel"), statusBar);
        m_cancel->setObjectName(QStringLiteral("CancelWaitButton"));
        m_cancel->setToolTip(tr("Stop waiting for the server"));
        // The hand, not the busy cursor, over the one control that ends the wait.
        m_cancel->setCursor(Qt::PointingHandCursor);
        statusBar->addPermanentWidget(m_cancel);
        m_cancel->hide();
        connect(m_cancel, &QPushButton::clicked, this, &WaitNotice::cancel);
    }
}

WaitNotice::~WaitNotice() = default;

void WaitNotice::hold(const QString &text)
{
    if (m_holds++ == 0)
        m_cancelled = false;
    m_heldText = text;
    if (m_waits == 0)
        show(text);
}

void WaitNotice::setText(const QString &text)
{
    if (m_holds == 0)
        return;
    m_heldText = text;
    if (m_waits == 0)
        show(text);
}

void WaitNotice::release()
{
    if (m_holds == 0 || --m_holds > 0)
        return;
    m_heldText.clear();
    if (m_waits == 0)
        hide();
}

void WaitNotice::cancel()
{
    m_cancelled = true;
    // What dlgFTP's Cancel does once the user has confirmed it, so every job stops at its next
    // check; the wait itself ends at once.
    m_state.UserResponse = JobState::Skip;
    m_state.UploadCancelled = true;
    m_ftp.CancelWait();
}

void WaitNotice::waitStarted(const QString &text)
{
    ++m_waits;
    if (m_waits > 1)
        return;
    // A new wait of its own is a new chance to cancel; within held work the cancel stands.
    if (m_holds == 0)
        m_cancelled = false;
    show(text);
}

void WaitNotice::waitEnded()
{
    if (m_waits == 0)
        return;
    if (--m_waits > 0)
        return;
    if (m_holds > 0)
        show(m_heldText);
    else
        hide();
}

void WaitNotice::show(const QString &text)
{
    if (m_text.isEmpty() && m_statusBar)
        m_before = m_statusBar->currentMessage();
    m_text = text;
    if (m_statusBar)
        m_statusBar->showMessage(text);
    if (m_cancel)
        m_cancel->show();
    m_busy.set(true);
    emit shown(text);
}

void WaitNotice::hide()
{
    if (m_text.isEmpty())
        return;
    m_text.clear();
    if (m_statusBar) {
        // What the status line said before the wait comes back.
        if (m_before.isEmpty())
            m_statusBar->clearMessage();
        else
            m_statusBar->showMessage(m_before);
    }
    if (m_cancel)
        m_cancel->hide();
    m_busy.set(false);
    emit hidden();
}
