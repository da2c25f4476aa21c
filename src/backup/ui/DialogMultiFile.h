#pragma once

#include "BackupJobs.h"
#include "FileSearch.h"

#include <QDialog>
#include <QFutureWatcher>
#include <QList>
#include <QMutex>

#include <atomic>

class DirListBox;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTimer;

// "Find files to backup": searches a folder (and, when asked, the folders below it) for files
// by the patterns typed in Text1, off the window's thread with the count of files found going up
// as it runs, and lets the user pick among them. The rows stand in three lists in step:
// List1_0 what the user sees (folder and name), List1_1 the folder, List1_2 the name;
// ShowNameCkbox swaps List1_0 for List1_2.
//
// The dialog's state goes "Waiting" while it is open, "Pending" after OK with files picked,
// "Cancelled" after Cancel, and "Ended" once the caller has read the picks.
class DialogMultiFile final : public QDialog
{
    Q_OBJECT
public:
    // start: the folder searched first ("" for the user's documents).
    explicit DialogMultiFile(QWidget *parent = nullptr, const QString &start = QString());
    ~DialogMultiFile() override;

    QString dialogState() const { return m_state; }
    void setDialogState(const QString &state) { m_state = state; }
    // The rows picked, with CompressFileCheck; pending when the state is "Pending".
    FileChoice choice() const;

    // Starts a search of root for the typed patterns; the rows arrive while it runs, and
    // searchFinished follows once the last of them is in the lists.
    void FindFiles(const QString &root, const QString &pattern);
    bool searching() const;
    // The folder that Dir1 shows.
    QString folder() const;
    bool setFolder(const QString &folder);

    void cmdAction_Click();
    void DisplayDirButton_Click();
    void SelectAllDialogButton_Click();
    void InverseSelectDialogButton_Click();
    void OKButton_Click();
    void CancelButton_Click();

signals:
    void searchFinished();

protected:
    void showEvent(QShowEvent *event) override;
    void reject() override;

private:
    QListWidget *visibleList() const;
    void ShowNameCkbox_Click();
    void takeFound();
    void searchDone();
    void stopSearch();
    void showCount();
    void syncSelection(QListWidget *from, QListWidget *to);

    QComboBox *m_drive = nullptr;
    DirListBox *m_dir = nullptr;
    QLineEdit *m_dirPath = nullptr;
    QLineEdit *m_text1 = nullptr;
    QCheckBox *m_check1 = nullptr;
    QCheckBox *m_compress = nullptr;
    QCheckBox *m_showNames = nullptr;
    QPushButton *m_action = nullptr;
    QLabel *m_count = nullptr;
    QListWidget *m_lists[3] = {nullptr, nullptr, nullptr};

    QString m_state = QStringLiteral("Waiting");
    bool m_started = false;
    bool m_searching = false;
    bool m_cursorSet = false;
    std::atomic<bool> m_cancel{false};
    QFutureWatcher<void> m_search;
    QTimer *m_takeTimer = nullptr;
    QMutex m_foundLock;
    QList<FoundFile> m_found; // rows found and not yet shown
};
