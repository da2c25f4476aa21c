#pragma once

#include "BackupJobs.h"
#include "BackupList.h"
#include "BackupWindow.h"
#include "BusyCursor.h"

#include <QWidget>

#include <functional>
#include <memory>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidget;
class WebSpace;
class frmMain;

// The Backup Files page: the list of files kept on the web space (BackupFileList), the status
// view of the entry clicked, the buttons of the backup jobs, and the list view of all entries
// with their state. The jobs (BackupJobs) run on the window's session through webSpace; while
// one runs, the progress frame covers the list and the buttons and leaves the status view in
// sight, so the walk of a scan can be watched.
class BackupFrame final : public QWidget, public BackupWindow
{
    Q_OBJECT
public:
    BackupFrame(frmMain &window, WebSpace &webSpace, QWidget *parent = nullptr);
    ~BackupFrame() override;

    BackupList &list() { return m_list; }
    BackupJobs &jobs() { return *m_jobs; }
    bool jobRunning() const { return m_running; }

    // The dialogs that the jobs open; tests may put their own in place.
    std::function<FileChoice()> chooseFiles;
    std::function<QString(const QString &start)> chooseFolder;
    std::function<QString(const QString &start)> chooseFile;

    // The page's buttons.
    void ScanAndBackupButton_Click();
    void BackupSelectedButton_Click();
    void AddNewFileButton_Click();
    void CreateCompressedDirButton_Click();
    void RecompressButton_Click();
    void BackupTarnwickButton_Click();
    void BuildBackupWebPageButton_Click();
    void RemoveThisItemButton_Click();
    void RelocateFileButton_Click();
    void CopyToTheClipboardButton_Click();
    void RestoreButton_Click();
    void BackupFileList_Click();

    // The tab was opened: the list filled anew from the file, and the list view with it.
    void refresh();
    // The list view of all entries: shown or hidden; refreshed from the list file.
    void showListView(bool show);
    bool listViewShown() const;
    void refreshListView();
    // The window's start-up values have been read.
    void loaded();

    // BackupWindow
    QString BackupDirName() const override;
    QString FTPRoot() const override;
    QString ClientRoot() const override;
    bool RunWithoutMenu() const override;
    bool OverrideCheck() const override;
    QStringList BackupFileList() const override;
    bool isSelected(int row) const override;
    void setSelected(int row, bool selected) override;
    void showFileList(const QStringList &names) override;
    void addToFileList(const QString &name) override;
    BackupStatusView statusView() const override;
    void showStatus(const BackupStatusView &view) override;
    void enableBackups(bool enable) override;
    void showProgressFrame(bool show) override;
    void setBusy(bool busy) override;
    void setCaption(const QString &caption) override;
    void shapeEvent(int step) override;
    QString sName() const override;
    void setSName(const QString &name) override;
    void setFileToSend(const QString &path) override;
    void setPagePointer(const QString &pointer) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildListArea();
    QWidget *buildStatusArea();
    QPushButton *makeButton(const QString &name, const QString &caption, QWidget *parent,
                            void (BackupFrame::*handler)());
    void runJob(const std::function<void()> &job);
    void placeProgressFrame();
    void BackupDirName_Change();
    FileChoice showFileSearch();
    QString showFolderDialog(const QString &start);
    QString showOpenDialog(const QString &start);

    frmMain &m_window;
    WebSpace &m_webSpace;
    BackupList m_list;
    std::unique_ptr<BackupJobs> m_jobs;
    bool m_running = false;
    bool m_covering = false;
    BackupStatusView m_view;
    BusyCursor m_busy;

    QWidget *m_listArea = nullptr;
    QLineEdit *m_backupDirName = nullptr;
    QCheckBox *m_overrideCheck = nullptr;
    QListWidget *m_fileList = nullptr;
    QTreeWidget *m_listView = nullptr;
    QPushButton *m_listViewButton = nullptr;
    QLineEdit *m_currentDate = nullptr, *m_dateModified = nullptr, *m_dateBackup = nullptr,
              *m_times = nullptr, *m_location = nullptr, *m_uploadPath = nullptr;
    QLabel *m_report = nullptr;
    QLabel *m_fileNotFound = nullptr;
    QLabel *m_pagePointer = nullptr;
    QPushButton *m_relocate = nullptr;
    QPushButton *m_recompress = nullptr;
    QPushButton *m_addNew = nullptr;
    QPushButton *m_scan = nullptr;
};
