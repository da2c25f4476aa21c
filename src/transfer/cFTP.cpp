#include "cFTP.h"

#include "FtpErrors.h"
#include "FtpListing.h"
#include "JobState.h"

#include <QFile>
#include <QSaveFile>

namespace {

constexpr qint64 BlockSize = 255;

bool hasLineBreak(const QString &text)
{
    return text.contains(QLatin1Char('\r')) || text.contains(QLatin1Char('\n'));
}

QString joinPath(const QString &directory, const QString &relative)
{
    if (relative.isEmpty())
        return directory;
    if (relative.startsWith(QLatin1Char('/')))
        return relative;
    if (directory.endsWith(QLatin1Char('/')))
        return directory + relative;
    return directory + QLatin1Char('/') + relative;
}

} // namespace

QString PathFrom257(const QString &reply)
{
    const qsizetype open = reply.indexOf(QLatin1Char('"'));
    if (open < 0)
        return QString();
    QString path;
    for (qsizetype i = open + 1; i < reply.size(); ++i) {
        if (reply.at(i) == QLatin1Char('"')) {
            if (i + 1 < reply.size() && reply.at(i + 1) == QLatin1Char('"')) {
                path += QLatin1Char('"');
                ++i;
                continue;
            }
            return path;
        }
        path += reply.at(i);
    }
    return QString();
}

QString TooLongListingText(const QString &directory)
{
    return QStringLiteral("The server's listing of %1 is longer than %2 MB, more than the program "
                          "reads of one directory; the directory was not read.")
        .arg(directory)
        .arg(FtpListing::MaxBytes / (1024 * 1024));
}

QString TooManyEntriesText(const QString &directory)
{
    return QStringLiteral("The server lists more than %1 entries in %2, more than the program "
                          "reads of one directory; the directory was not read.")
        .arg(FtpListing::MaxEntries)
        .arg(directory);
}

QString UnusableNamesText(int count)
{
    return count == 1 ? QStringLiteral("The server listed 1 name that no file can have (it holds "
                                       "\"/\", a NUL or a line break); it is left out.")
                      : QStringLiteral("The server listed %1 names that no file can have (they "
                                       "hold \"/\", a NUL or a line break); they are left out.")
                            .arg(count);
}

cFTP::cFTP(JobState &state, QObject *parent) : QObject(parent), m_state(&state)
{
    m_transfers.onWaitStarted = [this](const QString &text) { emit WaitStarted(text); };
    m_transfers.onWaitEnded = [this] { emit WaitEnded(); };
    // The job's files go over this session's connection when it is for the same account, so a
    // job logs in once for its directory work and its files.
    m_transfers.lender = [this](const FtpAddress &address, const QString &user,
                                const QString &password) -> FtpConnection * {
        if (!m_connection || m_connection->busy() || user != m_user || password != m_password ||
            m_connection->address().baseUrl() != address.baseUrl())
            return nullptr;
        return m_connection.get();
    };
}

cFTP::~cFTP() = default;

void cFTP::hookWaits(FtpConnection &connection)
{
    connection.onWaitStarted = [this](const QString &text) { emit WaitStarted(text); };
    connection.onWaitEnded = [this] { emit WaitEnded(); };
}

void cFTP::CancelWait()
{
    m_cancelStands = true;
    if (m_connection)
        m_connection->cancel();
    m_transfers.Cancel();
}

void cFTP::CloseConnection()
{
    m_transfers.Close();
    if (m_connection && m_connection->busy())
        return;
    if (m_connection) {
        m_connection->close();
        m_earlierLogins += m_connection->logins();
    }
    m_transfers.Return();
    m_connection.reset();
    m_currentDirectory.clear();
}

bool cFTP::OpenConnection(const QString &server, const QString &user, const QString &password)
{
    m_cancelStands = false;
    m_transferType = FTP_TRANSFER_TYPE_ASCII;
    m_passiveFlag = 0;
    const QString operation = QStringLiteral("InternetConnect");
    if (m_connection && m_connection->busy()) {
        failWith(12019, operation);
        return false;
    }
    CloseConnection();
    const FtpAddress address = FtpAddress::fromServerField(server);
    if (!address.valid) {
        failWith(12007, operation);
        return false;
    }
    m_connection = std::make_unique<FtpConnection>(address, user, password);
    hookWaits(*m_connection);
    FtpConnection::Request request;
    request.quote = {QStringLiteral("PWD")};
    const auto result = run(request);
    const QString entry = result.ok() ? PathFrom257(m_connection->lastReply().text()) : QString();
    if (!result.ok() || entry.isEmpty()) {
        if (result.ok())
            failWith(FtpErrors::ExtendedError, operation);
        else
            fail(result, operation);
        m_earlierLogins += m_connection->logins();
        m_transfers.Return();
        m_connection.reset();
        return false;
    }
    m_connection->setServerDirectory(entry);
    m_server = server;
    m_user = user;
    m_password = password;
    m_currentDirectory = entry;
    return true;
}

cFTP::Target cFTP::resolve(const QString &remotePath) const
{
    Target target;
    const qsizetype slash = remotePath.lastIndexOf(QLatin1Char('/'));
    if (slash < 0) {
        target.directory = m_currentDirectory;
        target.name = remotePath;
    } else {
        const QString part = slash == 0 ? QStringLiteral("/") : remotePath.left(slash);
        target.directory = joinPath(m_currentDirectory, part);
        target.name = remotePath.mid(slash + 1);
    }
    return target;
}

FtpConnection::Result cFTP::run(const FtpConnection::Request &request)
{
    if (m_cancelStands) {
        FtpConnection::Result refused;
        refused.code = CURLE_ABORTED_BY_CALLBACK;
        refused.cancelled = true;
        return refused;
    }
    JobState *state = m_state;
    const bool wasCancelled = state && state->UploadCancelled;
    const bool wasSkipped = state && state->skipped();
    m_connection->cancelRequested = [state, wasCancelled, wasSkipped] {
        return state &&
               ((!wasCancelled && state->UploadCancelled) || (!wasSkipped && state->skipped()));
    };
    const FtpConnection::Result result = m_connection->perform(request);
    if (result.cancelled)
        m_cancelStands = true;
    return result;
}

bool cFTP::requireConnection(const QString &operation)
{
    if (!m_connection) {
        failWith(12019, operation);
        return false;
    }
    if (m_connection->busy()) {
        failWith(12019, operation);
        return false;
    }
    return true;
}

void cFTP::fail(const FtpConnection::Result &result, const QString &operation)
{
    const int number = result.cancelled ? FtpErrors::OperationCancelled
                                        : FtpErrors::NumberFor(result.code, *m_connection);
    m_lastErrorMessage =
        FtpErrors::Compose(number, operation, FtpErrors::ServerText(m_connection->lastReply()));
}

void cFTP::failWith(int number, const QString &operation)
{
    const QString reply =
        m_connection ? FtpErrors::ServerText(m_connection->lastReply()) : QString();
    m_lastErrorMessage = FtpErrors::Compose(number, operation, reply);
}

void cFTP::failLocal(const QString &reason, const QString &operation)
{
    m_lastErrorMessage = reason + QStringLiteral(" Message: 2 error code: ") + operation;
}

bool cFTP::runCommands(const QStringList &commands, const QString &operation,
                       const QString &directory)
{
    if (!requireConnection(operation))
        return false;
    for (const QString &command : commands) {
        if (hasLineBreak(command)) {
            failWith(12016, operation);
            return false;
        }
    }
    FtpConnection::Request request;
    // The move to the kept directory must work, or the commands would act elsewhere; the
    // commands themselves may fail without losing the connection, and their replies tell.
    request.directory = directory.isEmpty() ? m_currentDirectory : directory;
    for (const QString &command : commands)
        request.quote.append(QLatin1Char('*') + command);
    const auto result = run(request);
    if (!result.ok()) {
        fail(result, operation);
        return false;
    }
    const QList<FtpReply> &replies = m_connection->replies();
    if (replies.size() < commands.size()) {
        failWith(12030, operation);
        return false;
    }
    for (qsizetype i = replies.size() - commands.size(); i < replies.size(); ++i) {
        if (replies[i].code >= 400 || !replies[i].codeInRange()) {
            m_lastErrorMessage = FtpErrors::Compose(FtpErrors::ExtendedError, operation,
                                                    FtpErrors::ServerText(replies[i]));
            return false;
        }
    }
    return true;
}

bool cFTP::RenameFTPFile(const QString &oldName, const QString &newName)
{
    return runCommands({QStringLiteral("RNFR ") + oldName, QStringLiteral("RNTO ") + newName},
                       QStringLiteral("RenameFTPFile"));
}

bool cFTP::CreateFTPDirectory(const QString &name)
{
    return runCommands({QStringLiteral("MKD ") + name}, QStringLiteral("CreateFTPDirectory"));
}

bool cFTP::RemoveFTPDirectory(const QString &name)
{
    return runCommands({QStringLiteral("RMD ") + name}, QStringLiteral("RemoveFTPDirectory"));
}

bool cFTP::DeleteFTPFile(const QString &name)
{
    return runCommands({QStringLiteral("DELE ") + name}, QStringLiteral("DeleteFTPFile"));
}

QString cFTP::GetFTPDirectory()
{
    const QString operation = QStringLiteral("FtpGetCurrentDirectory");
    if (m_connection && m_connection->busy())
        return m_currentDirectory;
    // The directory the session stands in may have gone from the server since (a kept
    // connection's server may still name it): entering it again is what shows it is there.
    // Its name is the one the server gave when the session went there, so once entered it
    // needs no PWD: a job asks this before every file, and each question is a round trip.
    if (!m_currentDirectory.isEmpty()) {
        if (!runCommands({QStringLiteral("CWD ") + m_currentDirectory}, operation))
            return QString();
        m_connection->setServerDirectory(m_currentDirectory);
        return m_currentDirectory;
    }
    if (!runCommands({QStringLiteral("PWD")}, operation))
        return QString();
    const QString path = PathFrom257(m_connection->lastReply().text());
    if (path.isEmpty()) {
        failWith(FtpErrors::ExtendedError, operation);
        return QString();
    }
    m_currentDirectory = path;
    m_connection->setServerDirectory(path);
    return path;
}

bool cFTP::SetFTPDirectory(const QString &path)
{
    const QString operation = QStringLiteral("FtpSetCurrentDirectory");
    if (!runCommands({QStringLiteral("CWD ") + path, QStringLiteral("PWD")}, operation))
        return false;
    const QString confirmed = PathFrom257(m_connection->lastReply().text());
    if (confirmed.isEmpty()) {
        failWith(FtpErrors::ExtendedError, operation);
        return false;
    }
    m_currentDirectory = confirmed;
    m_connection->setServerDirectory(confirmed);
    return true;
}

bool cFTP::fetchListing(const QString &directory, QByteArray &listing, const QString &operation)
{
    if (!requireConnection(operation))
        return false;
    if (hasLineBreak(directory)) {
        failWith(12016, operation);
        return false;
    }
    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::List;
    request.directory = directory;
    bool tooLong = false;
    request.write = [&listing, &tooLong](const char *data, size_t size) {
        if (listing.size() + qint64(size) > FtpListing::MaxBytes) {
            tooLong = true;
            return false;
        }
        listing.append(data, static_cast<qsizetype>(size));
        return true;
    };
    const auto result = run(request);
    if (tooLong) {
        listing.clear();
        m_lastErrorMessage = TooLongListingText(directory);
        m_listingNote = m_lastErrorMessage;
        return false;
    }
    if (!result.ok()) {
        fail(result, operation);
        return false;
    }
    return true;
}

qint64 cFTP::GetFTPFileSize(const QString &remoteName)
{
    const Target target = resolve(remoteName);
    QByteArray listing;
    if (!fetchListing(target.directory, listing, QStringLiteral("FtpFindFirstFile")))
        return -2;
    const QList<cDirItem> items = FtpListing::Parse(listing);
    for (const cDirItem &item : items) {
        if (item.Name == target.name)
            return item.Size;
    }
    for (const cDirItem &item : items) {
        if (FtpListing::MatchesFilter(item.Name, target.name))
            return item.Size;
    }
    return -1;
}

const cDirList *cFTP::GetDirectoryListing(const QString &filter)
{
    m_directoryList.Clear();
    m_listingNote.clear();
    Target target;
    if (filter.contains(QLatin1Char('/')))
        target = resolve(filter);
    else
        target = {m_currentDirectory, filter};
    QByteArray listing;
    if (!fetchListing(target.directory, listing, QStringLiteral("FtpFindFirstFile")))
        return nullptr;
    FtpListing::Counts counts;
    const QList<cDirItem> items =
        FtpListing::Parse(listing, QDateTime::currentDateTimeUtc(), &counts);
    listing.clear();
    if (counts.tooMany) {
        m_lastErrorMessage = TooManyEntriesText(target.directory);
        m_listingNote = m_lastErrorMessage;
        return nullptr;
    }
    if (counts.unusable > 0)
        m_listingNote = UnusableNamesText(counts.unusable);
    for (const cDirItem &item : items) {
        if (FtpListing::MatchesFilter(item.Name, target.name))
            m_directoryList.Add(item);
    }
    return m_directoryList.Count() > 0 ? &m_directoryList : nullptr;
}

bool cFTP::SimpleFTPPutFile(const QString &localPath, const QString &remotePath)
{
    const QString operation = QStringLiteral("SimpleFtpPutFile");
    if (!requireConnection(operation))
        return false;
    QFile file(localPath);
    if (!file.open(QIODevice::ReadOnly)) {
        failLocal(file.errorString() + QStringLiteral(": ") + localPath, operation);
        return false;
    }
    const Target target = resolve(remotePath);
    if (hasLineBreak(target.directory) || target.name.isEmpty()) {
        failWith(12016, operation);
        return false;
    }
    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::Store;
    request.ascii = m_transferType == FTP_TRANSFER_TYPE_ASCII;
    request.directory = target.directory;
    request.fileName = target.name;
    request.uploadSize = file.size();
    request.read = [&file](char *buffer, size_t size) -> size_t {
        const qint64 got = file.read(buffer, static_cast<qint64>(size));
        return got < 0 ? CURL_READFUNC_ABORT : static_cast<size_t>(got);
    };
    const auto result = run(request);
    if (!result.ok()) {
        fail(result, operation);
        return false;
    }
    return true;
}

bool cFTP::SimpleFTPGetFile(const QString &localPath, const QString &remotePath)
{
    const QString operation = QStringLiteral("SimpleFtpGetFile");
    if (!requireConnection(operation))
        return false;
    const Target target = resolve(remotePath);
    if (hasLineBreak(target.directory) || target.name.isEmpty()) {
        failWith(12016, operation);
        return false;
    }
    QSaveFile file(localPath);
    if (!file.open(QIODevice::WriteOnly)) {
        failLocal(file.errorString() + QStringLiteral(": ") + localPath, operation);
        return false;
    }
    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::Retrieve;
    request.ascii = m_transferType == FTP_TRANSFER_TYPE_ASCII;
    request.directory = target.directory;
    request.fileName = target.name;
    request.write = [&file](const char *data, size_t size) {
        return file.write(data, static_cast<qint64>(size)) == static_cast<qint64>(size);
    };
    const auto result = run(request);
    if (!result.ok()) {
        file.cancelWriting();
        fail(result, operation);
        return false;
    }
    if (!file.commit()) {
        failLocal(file.errorString() + QStringLiteral(": ") + localPath, operation);
        return false;
    }
    return true;
}

bool cFTP::FTPUploadFile(const QString &localPath, const QString &remotePath)
{
    const QString local = localPath.trimmed();
    const QString remote = remotePath.trimmed();
    if (local.isEmpty() || remote.isEmpty())
        return false;
    QString operation = QStringLiteral("FtpOpenFile:PutFile");
    if (!requireConnection(operation))
        return false;
    QFile file(local);
    if (!file.open(QIODevice::ReadOnly)) {
        failLocal(file.errorString() + QStringLiteral(": ") + local, operation);
        return false;
    }
    const Target target = resolve(remote);
    if (hasLineBreak(target.directory) || target.name.isEmpty()) {
        failWith(12016, operation);
        return false;
    }
    const qint64 length = file.size();
    const qint64 fullBlocks = length / BlockSize;
    // Bytes handed to the library (on its thread, read here once the request is over).
    qint64 handed = 0;
    qint64 blocksRaised = 0;
    // One event for each whole block of 255 bytes as it goes out.
    const auto raiseBlocks = [&](qint64 bytes) {
        while (blocksRaised < fullBlocks && (blocksRaised + 1) * BlockSize <= bytes) {
            ++blocksRaised;
            emit FileTransferProgress(blocksRaised * BlockSize, length);
        }
    };

    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::Store;
    request.ascii = m_transferType == FTP_TRANSFER_TYPE_ASCII;
    request.directory = target.directory;
    request.fileName = target.name;
    request.uploadSize = length;
    request.read = [&file, &handed](char *buffer, size_t size) -> size_t {
        const qint64 got = file.read(buffer, static_cast<qint64>(size));
        if (got < 0)
            return CURL_READFUNC_ABORT;
        handed += got;
        return static_cast<size_t>(got);
    };
    request.progress = [&](qint64, qint64 up) { raiseBlocks(up); };
    const auto result = run(request);
    if (!result.ok()) {
        if (handed > 0)
            operation = handed > fullBlocks * BlockSize ? QStringLiteral("InternetWriteFile2")
                                                        : QStringLiteral("InternetWriteFile");
        fail(result, operation);
        return false;
    }
    raiseBlocks(length);
    emit FileTransferProgress(length, length);
    return true;
}

bool cFTP::FTPDownloadFile(const QString &localPath, const QString &remotePath)
{
    const QString local = localPath.trimmed();
    const QString remote = remotePath.trimmed();
    if (local.isEmpty() || remote.isEmpty())
        return false;
    const qint64 size = GetFTPFileSize(remote);
    if (size <= 0)
        return false;
    QString operation = QStringLiteral("FtpOpenFile:GetFile");
    emit DownloadBarShown(size);
    struct HideBar
    {
        cFTP *ftp;
        ~HideBar() { emit ftp->DownloadBarHidden(); }
    } hideBar{this};

    if (!requireConnection(operation))
        return false;
    const Target target = resolve(remote);
    QSaveFile file(local);
    if (!file.open(QIODevice::WriteOnly)) {
        failLocal(file.errorString() + QStringLiteral(": ") + local, operation);
        return false;
    }
    const qint64 fullBlocks = size / BlockSize;
    // Bytes written to the file (on the library's thread, read here once the request is over).
    qint64 received = 0;
    qint64 blocksDone = 0;
    bool localFailed = false;
    // One event (and a step of the bar) for each whole block of 255 bytes as it comes in.
    const auto raiseBlocks = [&](qint64 bytes) {
        while (blocksDone < fullBlocks && (blocksDone + 1) * BlockSize <= bytes) {
            ++blocksDone;
            emit FileTransferProgress(blocksDone * BlockSize, size);
            emit DownloadBarValue(blocksDone * BlockSize);
        }
    };

    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::Retrieve;
    request.ascii = m_transferType == FTP_TRANSFER_TYPE_ASCII;
    request.directory = target.directory;
    request.fileName = target.name;
    request.write = [&file, &received, &localFailed](const char *data, size_t count) {
        if (file.write(data, static_cast<qint64>(count)) != static_cast<qint64>(count)) {
            localFailed = true;
            return false;
        }
        received += static_cast<qint64>(count);
        return true;
    };
    request.progress = [&](qint64 down, qint64) { raiseBlocks(down); };
    const auto result = run(request);
    if (!result.ok() || localFailed) {
        file.cancelWriting();
        if (localFailed) {
            failLocal(file.errorString() + QStringLiteral(": ") + local,
                      QStringLiteral("InternetReadFile"));
            return false;
        }
        if (received > 0)
            operation = received > fullBlocks * BlockSize ? QStringLiteral("InternetReadFile2")
                                                          : QStringLiteral("InternetReadFile");
        fail(result, operation);
        return false;
    }
    if (!file.commit()) {
        failLocal(file.errorString() + QStringLiteral(": ") + local, operation);
        return false;
    }
    raiseBlocks(received);
    emit FileTransferProgress(received, size);
    return true;
}
