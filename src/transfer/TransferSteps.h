#pragma once

#include <QString>
#include <QStringList>

class cFTP;
class JobUi;
class TransferUi;
struct JobState;

// The account as the connection fields hold it now.
struct FtpAccount
{
    QString server;
    QString user;
    QString password;
};

// What the upload steps need from the window besides cFTP. Every call may run the event loop.
class TransferWindow
{
public:
    virtual ~TransferWindow() = default;
    // txtServer, txtUser and txtPassword as they stand (read anew for every attempt).
    virtual FtpAccount account() const = 0;
    // The list of the current remote directory; must refresh cFTP::Directory() through
    // GetDirectoryListing("*.*"), which the directory look-ups read.
    virtual void ReloadFTPList() = 0;
    // UploadPath's caption (the web address of the current directory).
    virtual QString UploadPath() const = 0;
    // Shows the new current directory in UploadPath (txtWebSite followed by directory).
    virtual void showUploadPath(const QString &directory) = 0;
    // cmdDisconnect's procedure.
    virtual void cmdDisconnect() = 0;
};

// One job's view of the transfer layer: the main window's session, the prompt seam, the
// job state, the window and the progress dialogs.
struct TransferContext
{
    cFTP &ftp;
    JobUi &ui;
    JobState &state;
    TransferWindow &window;
    TransferUi &progress;
};

// Sends one local file into the current remote directory under its own name: the old copy is
// deleted first (a failed send thus leaves none), then up to three attempts, each in a session
// of its own with dlgFTP showing the bar (hidden while BackgroundRequested). A cancel during an
// attempt ends the attempts. Returns whether the file arrived; the job's next check of
// UserResponse finds a cancel.
bool UploadFileToFTP(TransferContext &context, const QString &localPath);
// Fetches remoteName (the local file's own name when empty) from the current remote directory
// into localPath, with the same three attempts and no deletion.
bool DownloadFileToFTP(TransferContext &context, const QString &localPath,
                       const QString &remoteName = QString());
// True when the session stands in the right place: the current directory is not "/" nor ""
// and contains expected (case-sensitive).
bool verifyUploadPath(cFTP &ftp, const QString &expected);
// Blanks become "_". True when the entry is a directory in the last listing, or was made now
// (the list is then reloaded); false, without a message, when the name is a file or the user
// cancelled the wait; false with the "Failed to create/find a directory" message when it could
// not be made.
bool CheckFTPDir(TransferContext &context, const QString &name);
// Makes sure a directory of that name (blanks as "_") exists under the current one and enters
// it, reloading the list and showing the new UploadPath. false when the job must stop.
bool EnsureFTPDirectory(TransferContext &context, const QString &name);

// The common sequence of a job that sends files, as reusable steps.
struct JobConnectOptions
{
    bool runWithoutConnections = false; // RunWithoutMenu is checked: the job stays local
    QString ftpRoot;                    // FTPRoot
    QString clientRoot;                 // ClientRoot; "" to leave that step out
};
enum class JobConnection
{
    Connected,
    StayLocal,
    Failed,
    NoClientRoot,
    Cancelled
};
// "Connecting"; log in with the account; "/" then FTPRoot; "Connected to <server> as <user>
// at <time>"; the account is written to the settings; ClientRoot ensured. On Failed,
// *failureText holds "failed to connect, retry. (<reason>)" for the job to show. Cancelled:
// the user stopped a wait on the way (nothing to show; the job ends there).
JobConnection ConnectForJob(TransferContext &context, const JobConnectOptions &options,
                            QString *failureText = nullptr);
enum class JobDirectory
{
    Entered,
    NoDirectory,
    WrongPath
};
// "Verifing Path": reload, ensure each directory in turn, then verifyUploadPath(expected).
// The job shows its own message for WrongPath; NoDirectory also stands for a cancel on the way
// (UserResponse "!!Skip!!").
JobDirectory EnterJobDirectories(TransferContext &context, const QStringList &directories,
                                 const QString &expected);
// "Sending Files": each file with "Currently loading section n of m" and UploadFileToFTP;
// false as soon as UserResponse is "!!Skip!!" or UploadCancelled is set (no further file is
// sent).
bool SendJobFiles(TransferContext &context, const QStringList &localPaths);
// "Disconnecting" and cmdDisconnect's procedure.
void DisconnectForJob(TransferContext &context);
