#pragma once

#include <QString>
#include <QVariant>

#include <memory>

class TransferUi;
class TransferSession;
struct JobState;
class FtpConnection;
struct cDirItem;

// The per-file transfers of a job, beside the main window's cFTP: each call sends or fetches
// one file over the job's TransferSession, which logs in once and keeps its connection from
// file to file, and drives dlgFTP's bar through TransferStatusCallback. The status words of
// connecting and closing show when a connection is really made or ends (after a failure; the
// job closes a working one at its end). A cancel (UserResponse turning to "!!Skip!!", or
// UploadCancelled set, while the file goes across) stops the file in flight and ends the
// connection.
//
// An upload goes to a temporary name in the target directory and is renamed to its own name
// only when the whole file has arrived, so a cut transfer never leaves a partial file under
// the final name. A server that refuses the rename gets the file again under its own name,
// after the temporary copy is deleted (LastSentDirect). A download is written beside the local file
// and replaces it only when whole.
class TransferEngine final
{
public:
    // TransferMode values.
    static constexpr int Idle = 0;
    static constexpr int Downloading = 3;
    static constexpr int Uploading = 5;

    // The files go over session, which the engine leaves open for the next file.
    TransferEngine(TransferUi &ui, JobState &state, TransferSession &session);
    // With a session of the engine's own, closed when the engine goes.
    TransferEngine(TransferUi &ui, JobState &state);
    ~TransferEngine();
    TransferEngine(const TransferEngine &) = delete;
    TransferEngine &operator=(const TransferEngine &) = delete;

    // Sends localPath into remoteDirectory (absolute) under its own name, logging in first
    // when the session has no connection for this account. false on any failure; only a
    // failure of the transfer itself (not of the connect or login) shows its text, through
    // frmErrUpload and the bar's status, and a cancelled one shows nothing.
    bool SessionUpload(const QString &server, const QString &user, const QString &password,
                       const QString &remoteDirectory, const QString &localPath);
    // Fetches remotePath (directory and file) into localPath.
    bool SessionDownload(const QString &server, const QString &user, const QString &password,
                         const QString &remotePath, const QString &localPath);

    // The status table: the library's moments, given the numbers they are known by (10 a name
    // look-up starts, 20 connecting, 21 connected, 30 bytes sent, 41 bytes received, 50/51 a
    // connection closes, 60 handle created, 70 handle closing, 200 state change ...). Any
    // number may come; those not in the table do nothing.
    void TransferStatusCallback(int status, const QVariant &data);

    // The text of an error number (the server's reply for 12003), shown in frmErrUpload,
    // which is waited for; returns the text.
    QString WininetErrorText(int number, const QString &serverReply = QString());

    // The temporary name an upload of fileName travels under.
    static QString TemporaryName(const QString &fileName);

    // Deletes directory/name in a session of its own, waiting maxWaitMs at most and not
    // stopped by a cancel: the tidying after a cancelled upload. Shows nothing.
    static bool SessionDelete(const QString &server, const QString &user, const QString &password,
                              const QString &directory, const QString &name, int maxWaitMs);

    double FileTotal = 0;
    double BytesSent = 0;
    double BytesReceived = 0;
    int TransferMode = Idle;
    // The number of the last failure (0 after a success), and whether it was a cancel.
    int LastError = 0;
    // The text of the last failure as frmErrUpload shows it ("" after a success).
    QString LastErrorText;
    bool LastWasCancelled = false;
    // The last upload went straight under the file's own name, the server having refused the
    // rename; a failed one may have left a partial file under that name.
    bool LastSentDirect = false;

private:
    // The file's own part of SessionUpload and SessionDownload, in a session that stands in
    // directory: the bar's total and status, the bytes across, and the failure recorded.
    bool EngineUploadFile(FtpConnection &session, const QString &directory,
                          const QString &localPath);
    bool EngineDownloadFile(FtpConnection &session, const QString &directory, const cDirItem &found,
                            const QString &localPath);
    // LastError (number), LastErrorText and LastWasCancelled for a failed file; the bar's
    // status shows the text unless it was a cancel.
    void recordFailure(bool cancelled, int number, const FtpConnection &session);
    // The job's connection for the account, with the status words hooked to it; nullptr (and
    // the failure recorded) for a server field that names no server.
    FtpConnection *openSession(const QString &server, const QString &user,
                               const QString &password);
    // Moves the session into directory (a failed move leaves it where it stands) and tells
    // where it stands; false when the session can't be had.
    bool enterDirectory(FtpConnection &session, const QString &directory, QString *current);
    std::function<bool()> cancelWatch() const;
    // The closing words, for a connection that ended with a failure.
    void tellClosed(const FtpConnection &session);
    void startFile();

    TransferUi &m_ui;
    JobState &m_state;
    std::unique_ptr<TransferSession> m_ownSession;
    TransferSession &m_session;
    // The status words of the connection in hand: whether its start was told, and whether the
    // "Connected to" of its control connection is still to come.
    bool m_toldStart = false;
    bool m_awaitingConnected = false;
};
