#pragma once

#include "TransferSteps.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class BackupList;
class BackupWindow;
struct BackupRecord;

// What the file search dialog handed back: the files picked (folder and name) and whether they
// are to be compressed; pending is false when the user left the dialog without picking.
struct FilePick
{
    QString folder;
    QString name;
};
struct FileChoice
{
    bool pending = false;
    QList<FilePick> files;
    bool compress = false;
};

enum class BackupConnection
{
    Connected,
    LoginFailed, // the server refused or could not be reached
    NoDirectory, // ClientRoot or the backup directory could not be had
    WrongPath,   // the session did not stand in the backup directory
};

// How a job ended.
enum class BackupOutcome
{
    Done,      // ran to its end (a file that failed on the way was told)
    Nothing,   // nothing to do: no file chosen, up to date, or the user said No
    Stopped,   // the user gave up an upload or cancelled: no summary
    Failed,    // the failure path: no connection, a cabinet that couldn't be made
    WrongPath, // the session did not stand in the backup directory
};

// The jobs of the Backup page, each in the order of its steps: the scan and the backup of the
// selected files, adding files and compressed directories, the program's own data, the backup
// web page and the list's upkeep, and the restore of files from the web space.
//
// A job reaches the user through the context's JobUi and TransferUi, sends through the shared
// upload steps on the window's session, works on the shared current record
// (JobState::current<BackupRecord>) and on list, and keeps the event loop live throughout;
// cabinets are made on a worker thread. A cancel (UploadCancelled, or "!!Skip!!" in
// UserResponse) is seen at the next check. The jobs clear UploadCancelled when they start.
class BackupJobs final
{
public:
    BackupJobs(BackupList &list, TransferContext context, BackupWindow &window);

    // "Scan && Backup Files that are in the List".
    BackupOutcome ScanAndBackupButton();
    // "Backup Selected Files".
    BackupOutcome BackupSelectedButton();
    // "Add New Files to Backup": chooseFiles shows the search dialog and returns the picks.
    BackupOutcome AddNewFileButton(const std::function<FileChoice()> &chooseFiles);
    // "Create Compressed Directory": chooseFolder shows the folder dialog, starting at the
    // folder given, and returns the folder chosen ("" when cancelled).
    BackupOutcome
    CreateCompressedDirButton(const std::function<QString(const QString &start)> &chooseFolder);
    // "Update Compressed Directory ": the selected compressed directories packed again.
    void RecompressButton();
    // "Backup Tarnwick": the program's own data to a directory of the web space.
    BackupOutcome BackupTarnwickButton();
    // "Build a Web Page of All Files".
    BackupOutcome BuildBackupWebPageButton();
    // "Remove Selected Items from this List".
    void RemoveThisItemButton();
    // "Find Where this File Has Gone": chooseFile shows an open dialog at the folder given.
    void RelocateFileButton(const std::function<QString(const QString &start)> &chooseFile);
    // "Copy to the Clipboard".
    void CopyToTheClipboardButton();
    // "Restore from the Web Space": the selected entries fetched back into their folders.
    BackupOutcome RestoreButton();

    // The click on an entry of BackupFileList: loads its record and shows it.
    void BackupFileList_Click(const QString &entry);
    // Fills BackupFileList from the list file, each name once.
    void FillFileList();
    // Opens the session and enters directory (the backup directory, blanks as "_") under
    // FTPRoot and ClientRoot. With checkPath, a session that doesn't stand there is told
    // "The connection to the upload path has failed. Select to resend.".
    BackupConnection BackupConnect(const QString &directory, bool checkPath = true);

    // The number of files that the last scan sent.
    int sentCount() const { return m_sent; }
    // What the last restore did, one line per entry.
    QStringList restoreReport() const { return m_restoreReport; }
    // The folder where the last compressed directory was chosen (ChoosenCopyPath element 0).
    QString ChoosenCopyPath;

    // The backup directory's name on the web space: BackupDirName with blanks as "_".
    QString backupDirectory() const;
    // The text of the backup web page from the list, as the build writes it.
    static QString BackupPageHeader(const QString &now);
    static QString BackupPageLine(const BackupRecord &record, const QString &ftpRoot);

private:
    enum class Step
    {
        Next,      // on with the walk
        LeaveWalk, // the walk ends; the summary follows
        Stop,      // the job ends at once (the user gave up an upload)
        Failure,   // the failure path
    };

    Step scanEntry(const QString &entry);
    Step sendFile(const QString &entry, BackupRecord &record, const QString &local, bool repair,
                  bool *sent);
    bool repairSession();
    bool updateRecord(const QString &entry, BackupRecord &record, const QString &local);
    BackupOutcome scanFailure();
    void stopHere();
    void askForWebPage();
    bool stopRequested() const;
    void pump(bool force = false);
    void tell(const QString &text, const QString &title = QStringLiteral("Tarnwick"));
    BackupRecord &record() const;
    QString backupFolder() const;
    void restoreEntry(const QString &entry, const QString &work);
    bool putInPlace(const QString &payload, const QString &target, const QString &backupDate,
                    QString *why);

    BackupList &m_list;
    TransferContext m_context;
    BackupWindow &m_window;
    int m_sent = 0;
    // What the scan captured of the file before it went out.
    QString m_sentDate;
    qint64 m_sentLength = 0;
    QStringList m_restoreReport;
    QElapsedTimer m_sincePump;
};
