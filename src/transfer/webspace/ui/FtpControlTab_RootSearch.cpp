#include "FtpControlTab.h"

#include "JobUi.h"
#include "Settings.h"
#include "WaitNotice.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>

namespace {

// The walk over the window's session: every listing also shows in lv.
class TabSearchHost final : public RootSearchHost
{
public:
    TabSearchHost(FtpControlTab &tab, cFTP &ftp, QLabel *label4)
        : m_tab(tab), m_ftp(ftp), m_label4(label4)
    {
    }

    static QString countText(int lookedAt, int found)
    {
        return QStringLiteral("Searching for the FTP root: %1 of %2 directories looked at")
            .arg(lookedAt)
            .arg(found);
    }

    bool SetFTPDirectory(const QString &path) override { return m_ftp.SetFTPDirectory(path); }
    QString GetFTPDirectory() override { return m_ftp.GetFTPDirectory(); }
    bool CreateFTPDirectory(const QString &name) override { return m_ftp.CreateFTPDirectory(name); }
    bool RemoveFTPDirectory(const QString &name) override { return m_ftp.RemoveFTPDirectory(name); }
    QList<RootSearchEntry> ReloadFTPList() override
    {
        m_tab.ReloadFTPList();
        QList<RootSearchEntry> entries;
        for (const cDirItem &item : m_ftp.Directory())
            entries.append({item.Name, item.isDirectory()});
        return entries;
    }
    void ShowSearchName(const QString &name) override
    {
        if (m_label4)
            m_label4->setText(name);
    }
    void ShowSearchCount(int lookedAt, int found) override
    {
        m_tab.waitNotice().setText(countText(lookedAt, found));
    }
    void ProcessEvents() override { QCoreApplication::processEvents(); }
    bool Cancelled() override { return m_tab.waitNotice().cancelled(); }

private:
    FtpControlTab &m_tab;
    cFTP &m_ftp;
    QLabel *m_label4;
};

} // namespace

RootSearchOptions FtpControlTab::rootSearchOptions() const
{
    RootSearchOptions options;
    const QStringList &texts = RootSearchOptions::BoxTexts();
    for (int i = 0; i < int(m_rootSearchCk.size()); ++i) {
        if (m_rootSearchCk[i]->isChecked())
            options.ticked.append(texts[i]);
    }
    options.alternate = m_alternateRootTxt->text().trimmed();
    return options;
}

void FtpControlTab::SearchForRootButton_Click()
{
    SearchForRoot(false);
}

bool FtpControlTab::SearchForRoot(bool quiet, QLabel *label4)
{
    JobUi &ui = m_ui;
    m_advanced->hide();
    RootSearchResult result;
    // The walk waits on the server many times: the status bar shows its count moving, with
    // the hourglass and Cancel, for as long as it runs.
    m_wait->hold(TabSearchHost::countText(0, 1));
    cmdDisconnect_Click();
    const bool connected = m_ftp.OpenConnection(
        m_window.txtServer()->text(), m_window.txtUser()->text(), m_window.txtPassword()->text());
    if (connected) {
        TabSearchHost host(*this, m_ftp, label4);
        RootSearch search(host, rootSearchOptions());
        result = search.run();
    }
    const bool cancelled = m_wait->cancelled();
    m_wait->release();
    if (cancelled) {
        // Stopped by the user: nothing found, nothing said.
        m_rootFound = false;
    } else if (!connected) {
        ui.Message(QStringLiteral("Failed to connect."), QStringLiteral("Tarnwick"),
                   JobUi::Buttons::Ok, JobUi::Icon::Warning);
        m_rootFound = false;
    } else if (result.found) {
        if (!quiet)
            ui.Message(QStringLiteral("The Root was Found! '") + result.fullPath +
                           QStringLiteral("'"),
                       QStringLiteral("Tarnwick"));
        m_rootFound = true;
        m_window.FTPRoot()->setText(result.FTPRoot);
        SaveSetting(QStringLiteral("FTPRoot"), result.FTPRoot);
    } else {
        m_rootFound = false;
        if (!quiet)
            ui.Message(QStringLiteral("Root not found. Enter text in the optional search for root "
                                      "file in the advance settings of the 'Standard FTP & "
                                      "Control' Window and re-run this search."),
                       QStringLiteral("Tarnwick"), JobUi::Buttons::Ok, JobUi::Icon::Warning);
    }
    if (label4)
        label4->clear();
    m_advanced->show();
    cmdDisconnect_Click();
    return m_rootFound;
}
