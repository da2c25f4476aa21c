#include "TransferEngine.h"

#include "FtpConnection.h"
#include "FtpErrors.h"
#include "FtpListing.h"
#include "JobState.h"
#include "TransferSession.h"
#include "TransferUi.h"
#include "cFTP.h"

#include <QFile>
#include <QSaveFile>

#include <memory>

namespace {

// Handles are numbered for the "Handle created: " status as the library would number them.
qint64 nextHandleNumber()
{
    static qint64 number = 13369348;
    return number++;
}

QString nameOf(const QString &path)
{
    const qsizetype cut =
        std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return path.mid(cut + 1);
}

// The text of a failure as frmErrUpload shows it: the server's reply for 12003.
QString errorText(int number, const QString &serverReply)
{
    if ((number == FtpErrors::ExtendedError || FtpErrors::IsSecurityNumber(number)) &&
        !serverReply.isEmpty())
        return serverReply;
    return FtpErrors::Description(number);
}

QString cutAtNull(const QString &text)
{
    const qsizetype nul = text.indexOf(QChar(0));
    return nul < 0 ? text : text.left(nul);
}

} // namespace

TransferEngine::TransferEngine(TransferUi &ui, JobState &state, TransferSession &session)
    : m_ui(ui), m_state(state), m_session(session)
{
}

TransferEngine::TransferEngine(TransferUi &ui, JobState &state)
    : m_ui(ui), m_state(state), m_ownSession(std::make_unique<TransferSession>()),
      m_session(*m_ownSession)
{
}

TransferEngine::~TransferEngine()
{
    if (m_ownSession)
        m_ownSession->Close();
    else
        m_session.Unhook();
}

QString TransferEngine::TemporaryName(const QString &fileName)
{
    return fileName + QStringLiteral(".tarnwick-part");
}

bool TransferEngine::SessionDelete(const QString &server, const QString &user,
                                   const QString &password, const QString &directory,
                                   const QString &name, int maxWaitMs)
{
    const FtpAddress address = FtpAddress::fromServerField(server);
    if (!address.valid || name.isEmpty() || name.contains(QLatin1Char('\n')) ||
        name.contains(QLatin1Char('\r')) || directory.contains(QLatin1Char('\n')) ||
        directory.contains(QLatin1Char('\r')))
        return false;
    FtpConnection session(address, user, password);
    FtpConnection::Request request;
    request.directory = directory;
    request.quote = {QStringLiteral("*DELE ") + name};
    request.maxWaitMs = maxWaitMs;
    const bool done = session.perform(request).ok() && session.lastReply().code < 400 &&
                      session.lastReply().codeInRange();
    session.close();
    return done;
}

std::function<bool()> TransferEngine::cancelWatch() const
{
    JobState *state = &m_state;
    const bool wasCancelled = state->UploadCancelled;
    const bool wasSkipped = state->skipped();
    return [state, wasCancelled, wasSkipped] {
        return (!wasCancelled && state->UploadCancelled) || (!wasSkipped && state->skipped());
    };
}

void TransferEngine::startFile()
{
    LastError = 0;
    LastErrorText.clear();
    LastWasCancelled = false;
    LastSentDirect = false;
}

FtpConnection *TransferEngine::openSession(const QString &server, const QString &user,
                                           const QString &password)
{
    const FtpAddress address = FtpAddress::fromServerField(server);
    if (!address.valid) {
        LastError = 12007;
        LastErrorText = errorText(LastError, QString());
        return nullptr;
    }
    FtpConnection &session = m_session.For(address, user, password);
    session.cancelRequested = cancelWatch();
    // The words of a connection being made: its start before the name is looked up, then
    // the control connection's socket and its "Connected to". The data connections of each
    // file come and go without them.
    m_toldStart = false;
    m_awaitingConnected = false;
    const auto tellStart = [this, host = address.host] {
        if (m_toldStart)
            return;
        m_toldStart = true;
        TransferStatusCallback(60, nextHandleNumber());
        TransferStatusCallback(10, host);
    };
    if (!session.isOpen())
        tellStart();
    session.onOpenSocket = [this, tellStart](const QString &socketAddress) {
        tellStart();
        m_awaitingConnected = true;
        TransferStatusCallback(11, socketAddress);
        TransferStatusCallback(20, socketAddress);
    };
    session.onLibraryText = [this](const QString &text) {
        static const QString prefix = QStringLiteral("Connected to ");
        if (!m_awaitingConnected || !text.startsWith(prefix))
            return;
        m_awaitingConnected = false;
        TransferStatusCallback(21, text.mid(prefix.size()).section(QLatin1Char(' '), 0, 0));
    };
    return &session;
}

bool TransferEngine::enterDirectory(FtpConnection &session, const QString &directory,
                                    QString *current)
{
    // A kept connection that stands there already needs no word with the server.
    if (!directory.isEmpty() && session.isOpen() && session.serverDirectory() == directory) {
        *current = directory;
        return true;
    }
    FtpConnection::Request request;
    // The move into the directory may fail; the session then works where it stands.
    if (!directory.isEmpty())
        request.quote.append(QStringLiteral("*CWD ") + directory);
    request.quote.append(QStringLiteral("PWD"));
    const auto result = session.perform(request);
    if (!result.ok()) {
        LastError = result.cancelled ? FtpErrors::OperationCancelled
                                     : FtpErrors::NumberFor(result.code, session);
        LastErrorText = errorText(LastError, FtpErrors::Detail(session));
        LastWasCancelled = result.cancelled;
        tellClosed(session);
        return false;
    }
    *current = PathFrom257(session.lastReply().text());
    if (current->isEmpty())
        *current = directory.isEmpty() ? QStringLiteral("/") : directory;
    else
        session.setServerDirectory(*current);
    return true;
}

void TransferEngine::tellClosed(const FtpConnection &session)
{
    if (session.isOpen())
        return;
    TransferStatusCallback(70, 0);
    TransferStatusCallback(50, QVariant());
    TransferStatusCallback(51, QVariant());
}

bool TransferEngine::SessionUpload(const QString &server, const QString &user,
                                   const QString &password, const QString &remoteDirectory,
                                   const QString &localPath)
{
    startFile();
    FtpConnection *session = openSession(server, user, password);
    if (!session)
        return false;
    bool sent = false;
    QString directory;
    if (enterDirectory(*session, remoteDirectory, &directory)) {
        m_ui.SetBusyCursor(true);
        sent = EngineUploadFile(*session, directory, localPath);
        if (!sent)
            tellClosed(*session);
    }
    m_ui.SetBusyCursor(false);
    return sent;
}

bool TransferEngine::EngineUploadFile(FtpConnection &session, const QString &directory,
                                      const QString &localPath)
{
    const QString name = nameOf(localPath);
    QFile file(localPath);
    if (name.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        LastError = 12004;
        const QString text = QStringLiteral("The file could not be read: ") + localPath;
        LastErrorText = text;
        m_ui.ShowUploadError(text, FtpErrors::ConnectionReset);
        m_ui.FloodShowStatus(text);
        return false;
    }
    BytesSent = 0;
    FileTotal = double(file.size());
    QString shown = name;
    shown.replace(QLatin1Char('_'), QLatin1Char(' '));
    m_ui.FloodFillInit(FileTotal, QStringLiteral("Uploading ") + shown);
    TransferMode = Uploading;

    const QString temporary = TemporaryName(name);
    qint64 reported = 0;
    const auto store = [&](const QString &target, const QStringList &quote) {
        FtpConnection::Request request;
        request.kind = FtpConnection::Request::Kind::Store;
        request.directory = directory;
        request.quote = quote;
        request.fileName = target;
        request.uploadSize = file.size();
        request.read = [&file](char *buffer, size_t size) -> size_t {
            const qint64 got = file.read(buffer, qint64(size));
            return got < 0 ? CURL_READFUNC_ABORT : size_t(got);
        };
        request.progress = [&](qint64, qint64 up) {
            if (up > reported) {
                TransferStatusCallback(30, up - reported);
                reported = up;
            }
        };
        return session.perform(request);
    };
    auto result = store(temporary, {});
    if (result.ok()) {
        // A refused rename is no failure of the connection: it is asked so that it may fail.
        FtpConnection::Request rename;
        rename.directory = directory;
        rename.quote = {QStringLiteral("*RNFR ") + temporary, QStringLiteral("*RNTO ") + name};
        result = session.perform(rename);
        const bool renamed = result.ok() && session.lastReply().code < 400;
        if (result.ok() && !renamed && !m_state.skipped() && file.seek(0)) {
            // The server forbids renames: the whole temporary copy goes, and the file is sent
            // again straight under its own name. A cut there leaves a partial file under that
            // name, which the caller removes (LastSentDirect).
            LastSentDirect = true;
            BytesSent = 0;
            reported = 0;
            result = store(name, {QStringLiteral("*DELE ") + temporary});
        } else if (result.ok() && !renamed) {
            result.code = CURLE_QUOTE_ERROR;
        }
    }
    TransferMode = Idle;
    if (!result.ok()) {
        recordFailure(result.cancelled,
                      result.cancelled ? FtpErrors::OperationCancelled
                                       : FtpErrors::NumberFor(result.code, session),
                      session);
        return false;
    }
    m_ui.FloodFillUpdate(FileTotal);
    return true;
}

bool TransferEngine::SessionDownload(const QString &server, const QString &user,
                                     const QString &password, const QString &remotePath,
                                     const QString &localPath)
{
    startFile();
    const qsizetype slash = remotePath.lastIndexOf(QLatin1Char('/'));
    const QString wanted = remotePath.mid(slash + 1);
    const QString remoteDirectory =
        slash < 0 ? QString() : (slash == 0 ? QStringLiteral("/") : remotePath.left(slash));
    FtpConnection *session = openSession(server, user, password);
    if (!session)
        return false;

    bool fetched = false;
    QString directory;
    if (enterDirectory(*session, remoteDirectory, &directory) && !wanted.isEmpty()) {
        QByteArray listing;
        FtpConnection::Request lookup;
        lookup.kind = FtpConnection::Request::Kind::List;
        lookup.directory = directory;
        lookup.write = [&listing](const char *data, size_t size) {
            if (listing.size() + qint64(size) > FtpListing::MaxBytes)
                return false; // a listing beyond any directory's is not read
            listing.append(data, qsizetype(size));
            return true;
        };
        const auto found = session->perform(lookup);
        if (found.ok()) {
            for (const cDirItem &item : FtpListing::Parse(listing)) {
                if (item.Name == wanted && !item.isDirectory()) {
                    fetched = EngineDownloadFile(*session, directory, item, localPath);
                    break;
                }
            }
        } else {
            LastWasCancelled = found.cancelled;
        }
        if (!fetched)
            tellClosed(*session);
    }
    m_ui.SetBusyCursor(false);
    return fetched;
}

bool TransferEngine::EngineDownloadFile(FtpConnection &session, const QString &directory,
                                        const cDirItem &found, const QString &localPath)
{
    QSaveFile file(localPath);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    m_ui.SetBusyCursor(true);
    BytesReceived = 0;
    FileTotal = double(found.Size);
    QString shown = found.Name;
    shown.replace(QLatin1Char('_'), QLatin1Char(' '));
    m_ui.FloodFillInit(FileTotal, QStringLiteral("Downloading ") + shown);
    TransferMode = Downloading;
    qint64 reported = 0;
    bool localFailed = false;
    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::Retrieve;
    request.directory = directory;
    request.fileName = found.Name;
    request.write = [&](const char *data, size_t size) {
        localFailed = file.write(data, qint64(size)) != qint64(size);
        return !localFailed;
    };
    request.progress = [&](qint64 down, qint64) {
        if (down > reported) {
            TransferStatusCallback(41, down - reported);
            reported = down;
        }
    };
    const auto result = session.perform(request);
    TransferMode = Idle;
    if (result.ok() && file.commit()) {
        m_ui.FloodFillUpdate(FileTotal);
        return true;
    }
    file.cancelWriting();
    recordFailure(result.cancelled,
                  localFailed || result.ok()
                      ? 12004
                      : (result.cancelled ? FtpErrors::OperationCancelled
                                          : FtpErrors::NumberFor(result.code, session)),
                  session);
    return false;
}

void TransferEngine::recordFailure(bool cancelled, int number, const FtpConnection &session)
{
    LastWasCancelled = cancelled || m_state.skipped();
    LastError = number;
    LastErrorText = errorText(LastError, FtpErrors::Detail(session));
    if (!LastWasCancelled)
        m_ui.FloodShowStatus(WininetErrorText(LastError, FtpErrors::Detail(session)));
}

void TransferEngine::TransferStatusCallback(int status, const QVariant &data)
{
    const auto text = [&data] { return cutAtNull(data.toString()); };
    switch (status) {
    case 0:
        m_ui.FloodShowStatus(QStringLiteral("Looking up the IP address for ") + text());
        break;
    case 1:
        m_ui.FloodShowStatus(QStringLiteral("Name resolved ") + text());
        break;
    case 10:
        m_ui.FloodShowStatus(QStringLiteral("HTTP request redirected to ") + text());
        break;
    case 20:
        m_ui.FloodShowStatus(QStringLiteral("Connecting to server...") + text());
        break;
    case 21:
        m_ui.FloodShowStatus(QStringLiteral("Connected to ") + text());
        break;
    case 30:
        BytesSent += double(data.toLongLong());
        if (TransferMode == Uploading)
            m_ui.FloodFillUpdate(BytesSent);
        break;
    case 31:
        BytesSent += double(data.toLongLong());
        break;
    case 41:
        BytesReceived += double(data.toLongLong());
        if (TransferMode == Downloading)
            m_ui.FloodFillUpdate(BytesReceived);
        break;
    case 50:
        m_ui.FloodShowStatus(QStringLiteral("Closing connection"));
        break;
    case 51:
        m_ui.FloodShowStatus(QStringLiteral("Connection closed"));
        break;
    case 60:
        m_ui.FloodShowStatus(QStringLiteral("Handle created: ") +
                             QString::number(data.toLongLong()));
        break;
    case 70:
        if (TransferMode == Downloading || TransferMode == Uploading)
            TransferMode = Idle;
        break;
    case 80:
        m_ui.FloodShowStatus(QStringLiteral("Detecting proxy"));
        break;
    case 200:
        if (data.toInt() == 2)
            m_ui.FloodShowStatus(QStringLiteral("Disconnected from network."));
        else if (data.toInt() == 16)
            m_ui.FloodShowStatus(QStringLiteral("Disconnected by user request."));
        break;
    default:
        break;
    }
}

QString TransferEngine::WininetErrorText(int number, const QString &serverReply)
{
    const QString text = errorText(number, serverReply);
    // Every error goes to the form as a reset, so the form always closes by itself.
    m_ui.ShowUploadError(text, FtpErrors::ConnectionReset);
    return text;
}
