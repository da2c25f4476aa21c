#pragma once

#include "RootSearch.h"
#include "TransferSteps.h"

#include <QStringList>
#include <QWidget>

#include <array>
#include <functional>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;
class TransferUi;
class WaitNotice;
class cFTP;
class JobUi;
class frmMain;
struct JobState;

// The FTP Control & Settings tab: the connection fields of the web space account, a small FTP
// browser over the window's session (the listing lv and its commands), the transfer options and
// the Advanced Settings frame with the FTP root search.
//
// The connection fields are the main window's own controls (it fills them at start-up); the tab
// gives them their place and writes each key as it is typed. Commands report failures with the
// session's last error text and leave the listing as it was; none closes the connection.
//
// Every wait on the server shows in the window's status bar with a Cancel beside it (the tab's
// WaitNotice). A command that the user cancelled says nothing more; a cancelled Connect leaves
// the tab disconnected, ready for the next try. While a command runs, another press of the
// tab's buttons is ignored.
class FtpControlTab final : public QWidget, public TransferWindow
{
    Q_OBJECT
public:
    // ui is how the tab asks and tells the user, progress what shows while files go across
    // (the window's own in the program).
    FtpControlTab(frmMain &window, cFTP &ftp, JobUi &ui, TransferUi &progress,
                  QWidget *parent = nullptr);

    // Lists the current directory of the session into lv (".." first) and lblDir, and shows
    // its web address in UploadPath.
    void ReloadFTPList() override;
    // The transfer window of every job: the account as the fields hold it, UploadPath.
    FtpAccount account() const override;
    QString UploadPath() const override;
    void showUploadPath(const QString &directory) override;
    void cmdDisconnect() override { cmdDisconnect_Click(); }
    // The shared upload steps over this tab and the window's session.
    TransferContext transferContext();
    void EnableFTPButtons(bool flag);

    void cmdConnect_Click();
    void cmdDisconnect_Click();
    void cmdDownload_Click();
    // Asks for files or a folder, then sends them.
    void cmdUpload_Click();
    // Sends files below baseFolder into the current directory, making the sub-directories
    // that lie between baseFolder and each file, and those of folders (below baseFolder too),
    // which may hold no file at all.
    void uploadFiles(const QString &baseFolder, const QStringList &files,
                     const QStringList &folders = QStringList());
    // Sends a folder with everything below it, its empty sub-folders included, as a directory
    // of that name under the current one.
    void uploadFolder(const QString &folder);
    void cmdCreateDir_Click();
    void cmdRename_Click();
    void cmdDelete_Click();
    void cmdDeleteAll_Click();
    void DelSelectionButton_Click();
    void UpDirButton_Click();
    void MakeFilePointerStdButton_Click();
    void lv_My_DblClick(QTreeWidgetItem *item);

    // The root search. quiet leaves out its two closing messages (the Configuration page's
    // test); Label4 of that page, when given, shows the directory being looked at.
    void SearchForRootButton_Click();
    bool SearchForRoot(bool quiet, QLabel *label4 = nullptr);
    bool RootFound() const { return m_rootFound; }
    RootSearchOptions rootSearchOptions() const;

    // Where a download goes; tests set it instead of the save dialog. An empty answer cancels.
    void setDownloadPathChooser(std::function<QString(const QString &name)> chooser);

    QTreeWidget *lv() const { return m_lv; }
    QFrame *AdvanceSettingFrame() const { return m_advanced; }
    cFTP &ftp() const { return m_ftp; }
    // What the program waits for on the server, with its Cancel (the status bar's).
    WaitNotice &waitNotice() const { return *m_wait; }
    JobUi &jobUi() const { return m_ui; }
    frmMain &window() const { return m_window; }
    bool isConnected() const { return m_connected; }

private:
    void buildLayout();
    QWidget *buildAccountBox();
    QWidget *buildBrowser();
    QWidget *buildOptions();
    QFrame *buildAdvancedFrame();
    void connectFields();
    void ClientRoot_LostFocus();
    QString selectedName() const;
    bool deleteEntry(const QString &name);
    void changeDirectory(const QString &path);
    void showConnectedStatus();
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Runs one command of the tab unless another is running (a press during a wait).
    bool startCommand();
    void endCommand();
    std::function<void()> guarded(void (FtpControlTab::*command)());
    bool waitCancelled() const;
    void showFailure(const QString &title);

    frmMain &m_window;
    cFTP &m_ftp;
    JobUi &m_ui;
    TransferUi &m_progress;
    JobState &m_state;
    bool m_connected = false;
    bool m_rootFound = false;
    bool m_running = false;
    WaitNotice *m_wait = nullptr;
    std::function<QString(const QString &)> m_downloadChooser;

    QPushButton *m_cmdConnect = nullptr, *m_cmdDisconnect = nullptr;
    QLabel *m_lblDir = nullptr;
    // How the connection reached the server ("Connected with FTPS (TLS 1.3)"); empty when
    // not connected.
    QLabel *m_lblSecurity = nullptr;
    QTreeWidget *m_lv = nullptr;
    QPushButton *m_cmdUpload = nullptr, *m_cmdDownload = nullptr, *m_cmdCreateDir = nullptr,
                *m_cmdRename = nullptr, *m_cmdDelete = nullptr, *m_cmdDeleteAll = nullptr,
                *m_cmdRefresh = nullptr, *m_refreshButton = nullptr, *m_upDirButton = nullptr,
                *m_pointerButton = nullptr, *m_delSelectionButton = nullptr;
    std::array<QRadioButton *, 2> m_optActive{};
    QRadioButton *m_optAscii = nullptr, *m_optBin = nullptr;
    QPushButton *m_advancedButton = nullptr, *m_advancedDoneButton = nullptr;
    QFrame *m_advanced = nullptr;
    QPushButton *m_searchButton = nullptr;
    std::array<QCheckBox *, 6> m_rootSearchCk{};
    QLineEdit *m_alternateRootTxt = nullptr;
};
