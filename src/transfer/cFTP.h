#pragma once

#include "FtpConnection.h"
#include "TransferSession.h"
#include "cDirList.h"

#include <QObject>
#include <QString>

#include <memory>

struct JobState;

// The main window's long-lived FTP session: directory work, deletes, renames, look-ups and
// the FTP tab's own transfers. Every member blocks until done while the event loop is served
// (see FtpConnection), and no member throws: failure is false, -1, -2, "" or nullptr, with the
// reason in GetLastErrorMessage(), which is not cleared by a later success.
//
// The current directory is kept here and confirmed by the server: each request works in the
// kept directory (moving there first when the connection stands elsewhere), and a change of
// directory takes the server's answer to PWD.
// A press of Cancel during a call (JobState's UploadCancelled or UserResponse turning to
// "!!Skip!!" while the call waits, or CancelWait()) stops the call; it then fails with 12017.
// Every wait is bounded by the limits in the settings (FtpLimits) and ends as 12002.
//
// Beside its own connection the session holds the transfer engine's (Transfers()), over which
// the files of a job go with one login; CloseConnection and OpenConnection end it too.
//
// Not re-entrant: a call made from an event served while another call waits fails with 12019,
// except GetFTPDirectory, which then answers from the kept directory.
class cFTP final : public QObject
{
    Q_OBJECT
public:
    static constexpr quint32 FTP_TRANSFER_TYPE_ASCII = 1;
    static constexpr quint32 FTP_TRANSFER_TYPE_BINARY = 2;
    static constexpr quint32 INTERNET_FLAG_PASSIVE = 0x8000000;

    // state carries a cancel to a waiting call through its flags; it must outlive the session.
    explicit cFTP(JobState &state, QObject *parent = nullptr);
    ~cFTP() override;

    // The result of the last GetDirectoryListing; empty before the first.
    const cDirList &Directory() const { return m_directoryList; }
    QString GetLastErrorMessage() const { return m_lastErrorMessage; }
    // Puts back the text of a failure that happened outside this session (a send of the
    // transfer engine), after tidying through this session has overwritten it.
    void SetLastErrorMessage(const QString &text) { m_lastErrorMessage = text; }
    // Ends the connection and the transfer engine's (QUIT when the server still answers). Safe
    // to call twice.
    void CloseConnection();
    // Stores a local file in one go under remotePath (a name, or a path relative to the current
    // directory or absolute), in the current transfer type.
    bool SimpleFTPPutFile(const QString &localPath, const QString &remotePath);
    bool RenameFTPFile(const QString &oldName, const QString &newName);
    bool CreateFTPDirectory(const QString &name);
    bool RemoveFTPDirectory(const QString &name);
    bool DeleteFTPFile(const QString &name);
    // server is "host" or "host:port" (port 21 by default). Logs in at once, so a wrong
    // password fails here; the current directory becomes the login directory. Resets the
    // transfer type to ASCII and the mode flag to active, as every new connection does; the
    // data connections are passive whatever the mode flag says.
    bool OpenConnection(const QString &server, const QString &user, const QString &password);
    // The block transfer: FileTransferProgress is raised for every 255 bytes and once more at
    // the end with the whole length (once with 0 for an empty file). Both paths are trimmed;
    // an empty one fails without a message.
    bool FTPUploadFile(const QString &localPath, const QString &remotePath);
    // Fails at once, without a message of its own, unless the remote size is above 0. Raises
    // DownloadBarShown/DownloadBarValue/DownloadBarHidden for ProgressBar1. A failed download
    // leaves the local file as it was.
    bool FTPDownloadFile(const QString &localPath, const QString &remotePath);
    // Fetches in one go, replacing a local file of that name.
    bool SimpleFTPGetFile(const QString &localPath, const QString &remotePath);
    // The current directory as the server states it; "" on failure.
    QString GetFTPDirectory();
    bool SetFTPDirectory(const QString &path);
    // The size of the entry of that name (or first match of a wildcard) in the current
    // directory; -1 when there is none (GetLastErrorMessage untouched); -2 on failure.
    qint64 GetFTPFileSize(const QString &remoteName);
    // Lists the current directory (or the directory part of filter) and keeps the entries that
    // match filter ("*.*" is every entry). nullptr when nothing matched (no error text) or on
    // failure (with error text); Directory() holds what was found.
    const cDirList *GetDirectoryListing(const QString &filter);
    // What the last listing left out, for the user: entries whose names can't be used here
    // (holding "/", NUL or a line break), or a listing refused for its size. "" when nothing.
    QString ListingNote() const { return m_listingNote; }
    void SetTransferASCII() { m_transferType = FTP_TRANSFER_TYPE_ASCII; }
    void SetTransferBinary() { m_transferType = FTP_TRANSFER_TYPE_BINARY; }
    void SetModeActive() { m_passiveFlag = 0; }
    void SetModePassive() { m_passiveFlag = INTERNET_FLAG_PASSIVE; }

    // The transfer engine's connection of the running job.
    TransferSession &Transfers() { return m_transfers; }
    // Stops the wait in flight, on this session's connection or the transfer engine's; for a
    // Cancel pressed while a call waits.
    void CancelWait();
    // A cancel of a wait of this session (CancelWait, or a cancel seen while a call waited)
    // stands for the rest of the job: every later call fails at once with 12017, so a job
    // reaches its next check without another wait. The next OpenConnection, or ClearCancel at
    // the start of a command of the FTP tab, ends it.
    bool WaitCancelled() const { return m_cancelStands; }
    void ClearCancel() { m_cancelStands = false; }
    // Logins made through this session's own connection so far.
    int Logins() const { return m_earlierLogins + (m_connection ? m_connection->logins() : 0); }

    quint32 TransferType() const { return m_transferType; }
    quint32 PassiveFlag() const { return m_passiveFlag; }
    bool IsConnected() const { return m_connection != nullptr; }
    // The kept current directory, without asking the server ("" when not connected). For a
    // timer that shows the path.
    QString CurrentDirectory() const { return m_connection ? m_currentDirectory : QString(); }
    // The connection's server field, user and password as given to OpenConnection.
    QString Server() const { return m_server; }
    QString User() const { return m_user; }

signals:
    void FileTransferProgress(qint64 lCurrentBytes, qint64 lTotalBytes);
    // ProgressBar1 during FTPDownloadFile: shown with minimum 0, the maximum and value 0; its
    // value; hidden on every way out.
    void DownloadBarShown(qint64 maximum);
    void DownloadBarValue(qint64 value);
    void DownloadBarHidden();
    // A wait on the server the user should hear of: "Connecting to host:port..." at once when
    // a connection is made (by this session or the transfer engine), "Waiting for
    // host:port..." when any other call has waited a moment; WaitEnded when it is over.
    void WaitStarted(const QString &text);
    void WaitEnded();

private:
    struct Target
    {
        QString directory; // absolute
        QString name;
    };
    Target resolve(const QString &remotePath) const;
    FtpConnection::Result run(const FtpConnection::Request &request);
    bool runCommands(const QStringList &commands, const QString &operation,
                     const QString &directory = QString());
    void hookWaits(FtpConnection &connection);
    bool requireConnection(const QString &operation);
    void fail(const FtpConnection::Result &result, const QString &operation);
    void failWith(int number, const QString &operation);
    void failLocal(const QString &reason, const QString &operation);
    bool fetchListing(const QString &directory, QByteArray &listing, const QString &operation);

    std::unique_ptr<FtpConnection> m_connection;
    TransferSession m_transfers;
    int m_earlierLogins = 0;
    bool m_cancelStands = false;
    QString m_server;
    QString m_user;
    QString m_password;
    QString m_currentDirectory;
    QString m_lastErrorMessage;
    cDirList m_directoryList;
    QString m_listingNote;
    quint32 m_transferType = FTP_TRANSFER_TYPE_ASCII;
    quint32 m_passiveFlag = 0;
    JobState *m_state;
};

// The texts of a listing that was refused or cut: longer than FtpListing::MaxBytes, more than
// FtpListing::MaxEntries entries, or holding names that no file can have.
QString TooLongListingText(const QString &directory);
QString TooManyEntriesText(const QString &directory);
QString UnusableNamesText(int count);

// The path in a "257" reply ("257 "/a ""b""" is current" gives /a "b"); "" when there is none.
QString PathFrom257(const QString &reply);
