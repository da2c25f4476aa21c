#pragma once

#include "BusyCursor.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QLabel;
class QPushButton;
class QStatusBar;
class cFTP;
struct JobState;

// Says what the program waits for on the server and offers the way out: while a call of the
// session (or of the transfer engine's connection) waits, the status bar shows "Connecting to
// host:port..." or "Waiting for host:port...", the busy cursor shows, and a Cancel button
// (CancelWaitButton) stands in the status bar. Cancel stops the wait at once and is taken as
// the job's cancel: UserResponse becomes "!!Skip!!" and UploadCancelled is set, so a running
// job stops at its next check.
//
// A long piece of work that waits on the server many times (the root search) holds the notice
// for its whole length with its own text, and asks cancelled() between its steps.
class WaitNotice final : public QObject
{
    Q_OBJECT
public:
    WaitNotice(cFTP &ftp, JobState &state, QStatusBar *statusBar, QObject *parent = nullptr);
    ~WaitNotice() override;

    // Shows text with Cancel until release(); a wait in between shows its own text while it
    // lasts. Holds nest: the outermost hold starts a new chance to cancel, and the notice goes
    // with the last release.
    void hold(const QString &text);
    // Changes the held text (a count that moves).
    void setText(const QString &text);
    void release();
    // Cancel was pressed since the last hold() (or since the last wait began).
    bool cancelled() const { return m_cancelled; }
    // What Cancel does, for a Cancel of another form (the Configuration page's).
    void cancel();

    QPushButton *cancelButton() const { return m_cancel; }
    // The status text while a wait is shown ("" when none).
    QString text() const { return m_text; }

signals:
    void shown(const QString &text);
    void hidden();

private:
    void waitStarted(const QString &text);
    void waitEnded();
    void show(const QString &text);
    void hide();

    cFTP &m_ftp;
    JobState &m_state;
    QPointer<QStatusBar> m_statusBar;
    QPushButton *m_cancel = nullptr;
    BusyCursor m_busy;
    int m_waits = 0;
    int m_holds = 0;
    bool m_cancelled = false;
    QString m_text;
    QString m_heldText;
    QString m_before;
};
