#pragma once

#include "TransferSteps.h"

#include <QObject>
#include <QPointer>

#include <memory>

class DialogTransferUi;
class JobUi;
class TransferUi;
class cFTP;
class frmMain;
struct JobState;

// The web space as every function of the program reaches it: the window's FTP session and job
// state, the prompt seam, the progress dialogs of transfers, and the transfer window over the
// main window's account fields and UploadPath. Once the FTP tab has joined (setBrowser), the
// list is reloaded and the session closed through that tab, so that its list and buttons
// follow. A child of the window; window and ftp must outlive it.
class WebSpace final : public QObject, public TransferWindow
{
    Q_OBJECT
public:
    // ui and progress default to the window's own prompt seam and a progress dialog of its own;
    // given ones must outlive the window.
    WebSpace(frmMain &window, cFTP &ftp, JobUi *ui = nullptr, TransferUi *progress = nullptr);
    ~WebSpace() override;

    frmMain &window() const { return m_window; }
    cFTP &ftp() const { return m_ftp; }
    JobState &state() const;
    JobUi &ui() const { return *m_ui; }
    TransferUi &progress() const { return *m_progress; }
    // The shared upload steps of one job over this web space.
    TransferContext context();

    // The FTP tab (or nothing): ReloadFTPList and cmdDisconnect go through it.
    void setBrowser(TransferWindow *browser) { m_browser = browser; }

    // TransferWindow
    FtpAccount account() const override;
    void ReloadFTPList() override;
    QString UploadPath() const override;
    void showUploadPath(const QString &directory) override;
    void cmdDisconnect() override;

private:
    frmMain &m_window;
    cFTP &m_ftp;
    // Whether the session still stands when the web space goes (a window may outlive it).
    QPointer<cFTP> m_ftpAlive;
    JobUi *m_ui;
    std::unique_ptr<DialogTransferUi> m_ownProgress;
    TransferUi *m_progress;
    TransferWindow *m_browser = nullptr;
};
