#include "WebSpace.h"

#include "DialogTransferUi.h"
#include "GuiJobUi.h"
#include "JobState.h"
#include "cFTP.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QLabel>
#include <QLineEdit>

WebSpace::WebSpace(frmMain &window, cFTP &ftp, JobUi *ui, TransferUi *progress)
    : QObject(&window), m_window(window), m_ftp(ftp), m_ftpAlive(&ftp),
      m_ui(ui ? ui : &window.jobUi())
{
    setObjectName(QStringLiteral("WebSpace"));
    if (!progress) {
        m_ownProgress = std::make_unique<DialogTransferUi>(window.state(), &window);
        progress = m_ownProgress.get();
    }
    m_progress = progress;
    m_ftp.TrustQuestion = [this](const FtpConnection::CertificateQuestion &question) {
        return m_ui->Message(TrustQuestionText(question), QStringLiteral("Need to know..."),
                             JobUi::Buttons::YesNo, JobUi::Icon::Warning,
                             JobUi::Answer::No) == JobUi::Answer::Yes;
    };
    connect(&m_ftp, &cFTP::SecurityNotice, this,
            [this](const QString &text) { m_ui->SetStatusText(text); });
}

WebSpace::~WebSpace()
{
    // The question asks through this object: the session must not keep it. The session may
    // have gone first (it is not the window's child).
    if (m_ftpAlive)
        m_ftpAlive->TrustQuestion = nullptr;
}

JobState &WebSpace::state() const
{
    return m_window.state();
}

TransferContext WebSpace::context()
{
    return {m_ftp, *m_ui, m_window.state(), *this, *m_progress};
}

FtpAccount WebSpace::account() const
{
    return {m_window.txtServer()->text(), m_window.txtUser()->text(),
            m_window.txtPassword()->text()};
}

void WebSpace::ReloadFTPList()
{
    if (m_browser)
        m_browser->ReloadFTPList();
    else
        m_ftp.GetDirectoryListing(QStringLiteral("*.*"));
}

QString WebSpace::UploadPath() const
{
    return m_window.UploadPath()->text();
}

void WebSpace::showUploadPath(const QString &directory)
{
    m_window.UploadPath()->setText(m_window.txtWebSite()->text().trimmed() + directory.trimmed());
}

void WebSpace::cmdDisconnect()
{
    if (m_browser) {
        m_browser->cmdDisconnect();
        return;
    }
    m_ftp.CloseConnection();
    m_window.setWindowTitle(QStringLiteral("Tarnwick - Ready to Connect"));
}
