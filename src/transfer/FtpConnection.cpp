#include "FtpConnection.h"

#include "CertificateCheck.h"
#include "CertificateTrust.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <QUrl>

#include <cctype>
#include <condition_variable>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// How often a waiting request asks whether it is cancelled.
constexpr int CancelPollMs = 50;
// How long a request on a kept connection waits before the user is told of the wait.
constexpr int QuietWaitMs = 400;
// How long the library may sleep between two looks at the sockets; a cancel wakes it at once.
// Short, because libcurl 7.88 does not wait on a data connection that is still being opened
// (it names no socket to wait on then), so that step moves on only at the next look.
constexpr int PollMs = 10;
constexpr int QuitWaitMs = 2000;
constexpr long TransferBufferBytes = 512 * 1024;

void initLibraryOnce()
{
    static const bool done = [] {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        return true;
    }();
    (void)done;
}

struct SList
{
    curl_slist *list = nullptr;
    explicit SList(const QStringList &items)
    {
        for (const QString &item : items)
            list = curl_slist_append(list, item.toUtf8().constData());
    }
    ~SList() { curl_slist_free_all(list); }
    SList(const SList &) = delete;
    SList &operator=(const SList &) = delete;
};

int limitFromSettings(const QString &key, int defaultMs)
{
    bool ok = false;
    const double seconds = GetSetting(key).trimmed().toDouble(&ok);
    if (!ok || seconds <= 0 || seconds > 24 * 3600)
        return defaultMs;
    return int(seconds * 1000);
}

long wholeSeconds(int ms)
{
    return std::max(1L, long((ms + 999) / 1000));
}

// A command of the request's own that moves the session elsewhere.
bool changesDirectory(const QString &command)
{
    QString verb = command.section(QLatin1Char(' '), 0, 0).toUpper();
    if (verb.startsWith(QLatin1Char('*')))
        verb.remove(0, 1);
    return verb == QLatin1String("CWD") || verb == QLatin1String("CDUP") ||
           verb == QLatin1String("XCWD") || verb == QLatin1String("XCUP");
}

// The server refused what was asked, over a connection that still works.
bool refusedOverWorkingConnection(CURLcode code)
{
    return code == CURLE_QUOTE_ERROR || code == CURLE_REMOTE_FILE_NOT_FOUND ||
           code == CURLE_REMOTE_ACCESS_DENIED || code == CURLE_UPLOAD_FAILED ||
           code == CURLE_REMOTE_DISK_FULL || code == CURLE_REMOTE_FILE_EXISTS ||
           code == CURLE_LOGIN_DENIED || code == CURLE_PEER_FAILED_VERIFICATION;
}

} // namespace

const QString FtpLimits::ConnectKey = QStringLiteral("ConnectTimeout");
const QString FtpLimits::ReplyKey = QStringLiteral("ReplyTimeout");
const QString FtpLimits::StallKey = QStringLiteral("StallTimeout");

FtpLimits FtpLimits::FromSettings()
{
    FtpLimits limits;
    limits.connectMs = limitFromSettings(ConnectKey, limits.connectMs);
    limits.replyMs = limitFromSettings(ReplyKey, limits.replyMs);
    limits.stallMs = limitFromSettings(StallKey, limits.stallMs);
    return limits;
}

// The connection's own thread: runs one job at a time, in the order given.
class FtpConnection::Worker
{
public:
    Worker() : m_thread([this] { loop(); }) {}
    ~Worker()
    {
        {
            std::lock_guard<std::mutex> lock(m_lock);
            m_stop = true;
        }
        m_wake.notify_all();
        m_thread.join();
    }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    void run(std::function<void()> job)
    {
        {
            std::lock_guard<std::mutex> lock(m_lock);
            m_job = std::move(job);
        }
        m_wake.notify_all();
    }

private:
    void loop()
    {
        for (;;) {
            std::function<void()> job;
            {
                std::unique_lock<std::mutex> lock(m_lock);
                m_wake.wait(lock, [this] { return m_stop || m_job; });
                if (m_job)
                    job = std::exchange(m_job, nullptr);
                else
                    return;
            }
            job();
        }
    }

    std::mutex m_lock;
    std::condition_variable m_wake;
    std::function<void()> m_job;
    bool m_stop = false;
    std::thread m_thread;
};

FtpAddress FtpAddress::fromServerField(const QString &server)
{
    FtpAddress address;
    QString text = server.trimmed();
    const qsizetype schemeEnd = text.indexOf(QLatin1String("://"));
    if (schemeEnd >= 0) {
        const QString scheme = text.left(schemeEnd).toLower();
        if (scheme == QLatin1String("ftp")) {
            address.protocol = Protocol::Ftp;
        } else if (scheme == QLatin1String("ftps")) {
            address.protocol = Protocol::Ftps;
        } else if (scheme == QLatin1String("sftp")) {
            address.protocol = Protocol::Sftp;
            address.port = 22;
        } else {
            return address;
        }
        text = text.mid(schemeEnd + 3);
    }
    const qsizetype slash = text.indexOf(QLatin1Char('/'));
    if (slash >= 0)
        text.truncate(slash);
    const qsizetype at = text.lastIndexOf(QLatin1Char('@'));
    if (at >= 0)
        text = text.mid(at + 1);

    QString portText;
    if (text.startsWith(QLatin1Char('['))) {
        const qsizetype close = text.indexOf(QLatin1Char(']'));
        if (close < 0)
            return address;
        address.host = text.mid(1, close - 1);
        const QString rest = text.mid(close + 1);
        if (rest.startsWith(QLatin1Char(':')))
            portText = rest.mid(1);
        else if (!rest.isEmpty())
            return address;
    } else if (text.count(QLatin1Char(':')) == 1) {
        address.host = text.section(QLatin1Char(':'), 0, 0);
        portText = text.section(QLatin1Char(':'), 1);
    } else {
        address.host = text;
    }
    if (!portText.isEmpty()) {
        bool ok = false;
        const int port = portText.toInt(&ok);
        if (!ok || port <= 0 || port > 65535)
            return address;
        address.port = port;
    }
    address.valid = !address.host.isEmpty() && !address.host.contains(QLatin1Char(' '));
    return address;
}

QByteArray FtpAddress::baseUrl() const
{
    QByteArray hostPart = QUrl::toAce(host);
    if (hostPart.isEmpty())
        hostPart = host.toUtf8();
    if (host.contains(QLatin1Char(':')))
        hostPart = '[' + host.toUtf8() + ']';
    QByteArray scheme = "ftp://";
    if (protocol == Protocol::Sftp)
        scheme = "sftp://";
    else if (protocol == Protocol::Ftps && port == 990)
        scheme = "ftps://";
    return scheme + hostPart + ':' + QByteArray::number(port) + '/';
}

QString FtpAddress::shown() const
{
    const QString hostPart =
        host.contains(QLatin1Char(':')) ? QLatin1Char('[') + host + QLatin1Char(']') : host;
    return hostPart + QLatin1Char(':') + QString::number(port);
}

FtpConnection::FtpConnection(const FtpAddress &address, const QString &user,
                             const QString &password, const FtpLimits &limits)
    : m_address(address), m_user(user.toUtf8()), m_password(password.toUtf8()), m_limits(limits)
{
    initLibraryOnce();
    m_check = std::make_unique<CertificateCheck>();
    m_check->host = QUrl::toAce(address.host);
    if (m_check->host.isEmpty())
        m_check->host = address.host.toUtf8();
    m_easy = curl_easy_init();
    m_multi = curl_multi_init();
}

FtpConnection::~FtpConnection()
{
    // No goodbye here: the sockets are shut, so the library's own farewell cannot wait.
    shutDownSockets();
    if (m_worker) {
        m_worker->run([this] {
            if (m_multi)
                curl_multi_cleanup(m_multi);
            if (m_easy)
                curl_easy_cleanup(m_easy);
        });
        m_worker.reset();
    } else {
        if (m_multi)
            curl_multi_cleanup(m_multi);
        if (m_easy)
            curl_easy_cleanup(m_easy);
    }
}

QByteArray FtpConnection::encodeName(const QString &name)
{
    return QUrl::toPercentEncoding(name);
}

void FtpConnection::setServerDirectory(const QString &directory)
{
    if (m_alive && !m_busy)
        m_serverDirectory = directory;
}

FtpConnection::Result FtpConnection::perform(const Request &request)
{
    Result result;
    if (m_busy) {
        result.code = CURLE_RECURSIVE_API_CALL;
        return result;
    }
    if (!m_address.valid) {
        result.code = CURLE_URL_MALFORMAT;
        return result;
    }
    if (!m_easy || !m_multi) {
        result.code = CURLE_OUT_OF_MEMORY;
        return result;
    }
    m_busy = true;
    if (m_address.protocol == FtpAddress::Protocol::Sftp) {
        m_knownHostsPath = QFile::encodeName(KnownHostsPath());
        m_approvedKey.clear();
        const bool kept = m_alive;
        result = performSftp(request);
        // A kept session that the server ended meanwhile, found before anything of the request
        // moved: a new one, once.
        if (kept && !result.ok() && !result.cancelled && !m_alive &&
            !refusedOverWorkingConnection(result.code) && result.code != CURLE_OPERATION_TIMEDOUT &&
            !m_readStarted && m_down == 0 && m_up == 0)
            result = performSftp(request);
        if (hostKeyRefused(result) && m_hostKey.match == HostKey::Match::New && askTrust) {
            CertificateQuestion question;
            question.server = m_address.shown();
            question.why = QStringLiteral("its host key is not yet in ") + KnownHostsPath();
            question.fingerprint = m_hostKey.fingerprint();
            const HostKey offered = m_hostKey;
            if (askTrust(question)) {
                m_approvedKey = offered.blob;
                result = performSftp(request);
                if (m_hostKey.seen && m_hostKey.blob == offered.blob)
                    AddKnownHost(
                        offered.knownHostsLine(QString::fromLatin1(m_check->host), m_address.port));
                m_approvedKey.clear();
            }
        }
        noteSecurityProblem(result);
        m_busy = false;
        return result;
    }
    Outcome outcome = Outcome::Done;
    result = performOnce(request, &outcome);
    if (outcome == Outcome::StaleConnection)
        result = performOnce(request, &outcome);
    if (certificateRefused(result) && askTrust) {
        CertificateQuestion question;
        question.server = m_address.shown();
        question.why = m_check->problem;
        question.fingerprint = m_check->fingerprint;
        question.changed = !m_check->trusted.isEmpty();
        if (askTrust(question)) {
            CertificateTrust::Trust(question.server, question.fingerprint);
            result = performOnce(request, &outcome);
        }
    }
    noteSecurityProblem(result);
    m_busy = false;
    return result;
}

bool FtpConnection::certificateRefused(const Result &result) const
{
    return !result.ok() && !result.cancelled && !m_check->problem.isEmpty() &&
           !m_check->fingerprint.isEmpty();
}

void FtpConnection::noteSecurityProblem(const Result &result)
{
    m_securityProblem.clear();
    if (result.ok() || result.cancelled)
        return;
    const QString stopped =
        QStringLiteral(" The connection was stopped before the user name and password were sent.");
    if (hostKeyRefused(result)) {
        if (m_hostKey.match == HostKey::Match::Changed)
            m_securityProblem =
                QStringLiteral("WARNING: the host key of %1 is not the one kept for it in %2. "
                               "Someone may be listening in between, or the server was set up "
                               "anew; ask your host before you remove the old key from that "
                               "file. The server's key now: %3.")
                    .arg(m_address.shown(), KnownHostsPath(), m_hostKey.fingerprint()) +
                stopped;
        else
            m_securityProblem =
                QStringLiteral("The host key of %1 is not known (%2), and was not accepted.")
                    .arg(m_address.shown(), m_hostKey.fingerprint()) +
                stopped;
        return;
    }
    if (certificateRefused(result)) {
        m_securityProblem =
            QStringLiteral("The certificate of %1 is not trusted: %2. Its SHA-256 fingerprint is "
                           "%3.")
                .arg(m_address.shown(), m_check->problem, m_check->fingerprint) +
            stopped;
    } else if (result.code == CURLE_USE_SSL_FAILED) {
        m_securityProblem = QStringLiteral("%1 offers no encrypted connection (TLS), which "
                                           "ftps:// asks for.")
                                .arg(m_address.shown()) +
                            stopped;
    } else if (result.code == CURLE_SSL_CONNECT_ERROR ||
               result.code == CURLE_PEER_FAILED_VERIFICATION) {
        const QString detail = QString::fromUtf8(m_errorBuffer).trimmed();
        m_securityProblem =
            QStringLiteral("No encrypted connection (TLS) could be made with %1")
                .arg(m_address.shown()) +
            (detail.isEmpty() ? QStringLiteral(".")
                              : QStringLiteral(": ") + detail + QStringLiteral("."));
    }
}

void FtpConnection::beginRequest(const Request &request)
{
    m_request = &request;
    m_replies.clear();
    m_reader.reset();
    m_passwordAsked = false;
    m_openedSession = !m_alive;
    m_unexpectedSession = false;
    m_readStarted = false;
    m_controlSocketSeen = false;
    m_abort = false;
    m_check->reset();
}

FtpConnection::Result FtpConnection::performOnce(const Request &request, Outcome *outcome)
{
    *outcome = Outcome::Done;
    beginRequest(request);
    m_check->trusted = CertificateTrust::Trusted(m_address.shown());
    const bool kept = m_alive;

    QStringList commands;
    const bool moves =
        !request.directory.isEmpty() && !(kept && m_serverDirectory == request.directory);
    if (moves)
        commands.append(QStringLiteral("CWD ") + request.directory);
    commands.append(request.quote);
    // Without a CWD of its own the request relies on the kept connection: should the library
    // have to log in anew, the session would work in the login directory.
    m_expectKept = kept && !request.directory.isEmpty() && !moves;
    m_connecting = m_openedSession;
    Result result = transfer(request, m_address.baseUrl() + encodeName(request.fileName), commands);
    m_request = nullptr;
    for (const FtpReply &reply : std::as_const(m_replies)) {
        if (reply.code == 230)
            ++m_logins;
    }
    const bool closedByServer =
        std::any_of(m_replies.cbegin(), m_replies.cend(),
                    [](const FtpReply &reply) { return reply.code == 421; });
    // Nothing of the request was carried out when a kept connection answered its first command
    // with 421 (which the library reports as a time-out), or failed before any answer at all
    // other than by a time-out (a server that stopped answering may simply be slow).
    const bool nothingDone =
        !m_readStarted && m_down == 0 && m_up == 0 &&
        (m_replies.isEmpty() ? !result.ok() && result.code != CURLE_OPERATION_TIMEDOUT
                             : m_replies.first().code == 421);
    if (kept && !result.cancelled && (m_unexpectedSession || nothingDone))
        *outcome = Outcome::StaleConnection;

    // A request that failed may have left its connection in any state (a server that stopped
    // answering, a reply still owed): it is shut down, so that neither a later request nor the
    // closing QUIT waits on it, and the next request makes a new one.
    if (m_openedSession && result.ok()) {
        std::lock_guard<std::mutex> lock(m_check->m_lock);
        m_sessionTls = m_check->version;
    }
    m_alive = result.ok() && !closedByServer;
    if (!m_alive) {
        shutDownSockets();
        m_serverDirectory.clear();
    } else if (std::any_of(request.quote.cbegin(), request.quote.cend(), changesDirectory)) {
        m_serverDirectory.clear();
    } else if (!request.directory.isEmpty()) {
        m_serverDirectory = request.directory;
    } else if (m_openedSession) {
        m_serverDirectory.clear();
    }
    return result;
}

FtpConnection::Result FtpConnection::transfer(const Request &request, const QByteArray &url,
                                              const QStringList &commands)
{
    Result result;
    if (m_abort) {
        result.code = CURLE_ABORTED_BY_CALLBACK;
        result.cancelled = true;
        return result;
    }
    const Request *outer = m_request;
    m_request = &request;
    m_errorBuffer[0] = '\0';
    m_down = 0;
    m_up = 0;
    const SList quote(commands);
    runOnWorker(
        [&] {
            setUp(request, url, quote.list);
            result.code = drive();
        },
        request.maxWaitMs);
    m_connecting = false;
    if (const auto cut = m_reader.pending())
        m_replies.append(*cut);
    deliverProgress();
    m_request = outer;

    // However the library ended a request that was stopped (a socket shut under it), it was
    // the cancel that ended it.
    result.cancelled = m_abort;
    if (m_abort)
        result.code = CURLE_ABORTED_BY_CALLBACK;
    return result;
}

void FtpConnection::setUp(const Request &request, const QByteArray &url, curl_slist *quote)
{
    CURL *e = m_easy;
    curl_easy_reset(e);
    curl_easy_setopt(e, CURLOPT_URL, url.constData());
    if (!m_user.isEmpty()) {
        curl_easy_setopt(e, CURLOPT_USERNAME, m_user.constData());
        curl_easy_setopt(e, CURLOPT_PASSWORD, m_password.constData());
    }
    curl_easy_setopt(e, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(e, CURLOPT_ERRORBUFFER, m_errorBuffer);
    if (m_address.protocol == FtpAddress::Protocol::Sftp) {
        curl_easy_setopt(e, CURLOPT_SSH_AUTH_TYPES,
                         static_cast<long>(CURLSSH_AUTH_PASSWORD | CURLSSH_AUTH_KEYBOARD));
        curl_easy_setopt(e, CURLOPT_SSH_KNOWNHOSTS, m_knownHostsPath.constData());
        curl_easy_setopt(e, CURLOPT_SSH_KEYFUNCTION, &FtpConnection::sshKeyCallback);
        curl_easy_setopt(e, CURLOPT_SSH_KEYDATA, this);
        if (m_connecting)
            curl_easy_setopt(e, CURLOPT_FRESH_CONNECT, 1L);
    } else {
        curl_easy_setopt(e, CURLOPT_USE_SSL,
                         static_cast<long>(m_address.protocol == FtpAddress::Protocol::Ftps
                                               ? CURLUSESSL_ALL
                                               : CURLUSESSL_TRY));
        curl_easy_setopt(e, CURLOPT_FTPSSLAUTH, static_cast<long>(CURLFTPAUTH_TLS));
        curl_easy_setopt(e, CURLOPT_SSL_VERIFYPEER, 1L);
        // The program checks the chain, the name and the user's trusted certificate itself;
        // where it can't, the library checks the name.
        const bool ownCheck = curl_easy_setopt(e, CURLOPT_SSL_CTX_FUNCTION,
                                               &FtpConnection::sslContextCallback) == CURLE_OK &&
                              curl_easy_setopt(e, CURLOPT_SSL_CTX_DATA, this) == CURLE_OK;
        curl_easy_setopt(e, CURLOPT_SSL_VERIFYHOST, ownCheck ? 0L : 2L);
    }
    curl_easy_setopt(e, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
    curl_easy_setopt(e, CURLOPT_FTP_USE_EPSV, 1L);
    curl_easy_setopt(e, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(e, CURLOPT_TRANSFERTEXT, request.ascii ? 1L : 0L);
    curl_easy_setopt(e, CURLOPT_QUOTE, quote);
    curl_easy_setopt(e, CURLOPT_CONNECTTIMEOUT_MS, long(m_limits.connectMs));
    curl_easy_setopt(e, CURLOPT_SERVER_RESPONSE_TIMEOUT, wholeSeconds(m_limits.replyMs));
    curl_easy_setopt(e, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(e, CURLOPT_LOW_SPEED_TIME, wholeSeconds(m_limits.stallMs));
    curl_easy_setopt(e, CURLOPT_HEADERFUNCTION, &FtpConnection::headerCallback);
    curl_easy_setopt(e, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(e, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(e, CURLOPT_XFERINFOFUNCTION, &FtpConnection::progressCallback);
    curl_easy_setopt(e, CURLOPT_XFERINFODATA, this);
    curl_easy_setopt(e, CURLOPT_OPENSOCKETFUNCTION, &FtpConnection::openSocketCallback);
    curl_easy_setopt(e, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(e, CURLOPT_CLOSESOCKETFUNCTION, &FtpConnection::closeSocketCallback);
    curl_easy_setopt(e, CURLOPT_CLOSESOCKETDATA, this);
    curl_easy_setopt(e, CURLOPT_BUFFERSIZE, TransferBufferBytes);
    curl_easy_setopt(e, CURLOPT_UPLOAD_BUFFERSIZE, TransferBufferBytes);
    if (qEnvironmentVariableIsSet("TARNWICK_CURL_VERBOSE"))
        curl_easy_setopt(e, CURLOPT_VERBOSE, 1L);
    else if (onLibraryText) {
        curl_easy_setopt(e, CURLOPT_VERBOSE, 1L);
        curl_easy_setopt(e, CURLOPT_DEBUGFUNCTION, &FtpConnection::debugCallback);
        curl_easy_setopt(e, CURLOPT_DEBUGDATA, this);
    }
    switch (request.kind) {
    case Request::Kind::Commands:
        curl_easy_setopt(e, CURLOPT_NOBODY, 1L);
        break;
    case Request::Kind::List:
    case Request::Kind::Retrieve:
        curl_easy_setopt(e, CURLOPT_WRITEFUNCTION, &FtpConnection::writeCallback);
        curl_easy_setopt(e, CURLOPT_WRITEDATA, this);
        break;
    case Request::Kind::Store:
        curl_easy_setopt(e, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(e, CURLOPT_READFUNCTION, &FtpConnection::readCallback);
        curl_easy_setopt(e, CURLOPT_READDATA, this);
        if (request.uploadSize >= 0)
            curl_easy_setopt(e, CURLOPT_INFILESIZE_LARGE,
                             static_cast<curl_off_t>(request.uploadSize));
        break;
    }
}

CURLcode FtpConnection::drive()
{
    CURLcode code = CURLE_OK;
    curl_multi_add_handle(m_multi, m_easy);
    for (;;) {
        int running = 0;
        if (curl_multi_perform(m_multi, &running) != CURLM_OK) {
            code = CURLE_FAILED_INIT;
            break;
        }
        bool finished = false;
        int left = 0;
        while (CURLMsg *msg = curl_multi_info_read(m_multi, &left)) {
            if (msg->msg == CURLMSG_DONE && msg->easy_handle == m_easy) {
                code = msg->data.result;
                finished = true;
            }
        }
        if (finished || running == 0)
            break;
        if (m_abort) {
            code = CURLE_ABORTED_BY_CALLBACK;
            break;
        }
        curl_multi_poll(m_multi, nullptr, 0, PollMs, nullptr);
    }
    // The library's farewell to a failed request (the rest of a reply, an abort) must not wait
    // on a server that has stopped answering.
    if (m_abort || code != CURLE_OK)
        shutDownSockets();
    curl_multi_remove_handle(m_multi, m_easy);
    return code;
}

void FtpConnection::runOnWorker(const std::function<void()> &job, int maxWaitMs)
{
    if (!QCoreApplication::instance()) {
        // No event loop to serve: the request runs here.
        job();
        return;
    }
    if (!m_worker)
        m_worker = std::make_unique<Worker>();
    bool finished = false;
    QEventLoop loop;
    m_worker->run([this, &job, &finished, &loop] {
        job();
        post([&finished, &loop] {
            finished = true;
            loop.quit();
        });
    });

    // Connecting is told at once; any other wait once it has lasted a moment.
    bool told = false;
    const auto tell = [this, &told](const QString &text) {
        if (told || !onWaitStarted)
            return;
        told = true;
        onWaitStarted(text);
    };
    if (m_connecting)
        tell(QStringLiteral("Connecting to ") + m_address.shown() + QStringLiteral("..."));
    QElapsedTimer clock;
    clock.start();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &m_relay, [&] {
        if (!m_abort && ((cancelRequested && cancelRequested()) ||
                         (maxWaitMs > 0 && clock.elapsed() > maxWaitMs)))
            requestAbort();
        if (!told && clock.elapsed() >= QuietWaitMs)
            tell(QStringLiteral("Waiting for ") + m_address.shown() + QStringLiteral("..."));
    });
    watch.start(CancelPollMs);
    while (!finished) {
        // A loop told to quit by the program's end returns at once: wait for events instead.
        if (loop.exec() != 0 && !finished)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    watch.stop();
    if (told && onWaitEnded)
        onWaitEnded();
}

void FtpConnection::cancel()
{
    if (m_busy && m_request)
        requestAbort();
}

void FtpConnection::requestAbort()
{
    m_abort = true;
    curl_multi_wakeup(m_multi);
    shutDownSockets();
}

void FtpConnection::post(std::function<void()> fn)
{
    QMetaObject::invokeMethod(&m_relay, std::move(fn), Qt::QueuedConnection);
}

void FtpConnection::deliverProgress()
{
    m_progressPending = false;
    if (m_request && m_request->progress)
        m_request->progress(m_down, m_up);
}

void FtpConnection::close()
{
    if (m_busy)
        return;
    if (m_address.protocol == FtpAddress::Protocol::Sftp) {
        if (m_alive) {
            m_busy = true;
            closeSftp();
            m_busy = false;
        }
        m_alive = false;
        m_serverDirectory.clear();
        m_sftpDirectory.clear();
        shutDownSockets();
        return;
    }
    if (m_alive) {
        Request quit;
        quit.quote = {QStringLiteral("QUIT")};
        quit.maxWaitMs = QuitWaitMs;
        const auto keep = cancelRequested;
        cancelRequested = nullptr;
        m_busy = true;
        Outcome outcome;
        performOnce(quit, &outcome);
        m_busy = false;
        cancelRequested = keep;
    }
    m_alive = false;
    m_serverDirectory.clear();
    shutDownSockets();
}

bool FtpConnection::addReplyLine(const QByteArray &line)
{
    auto reply = m_reader.addLine(line);
    if (!reply)
        return true;
    if (reply->code == 331)
        m_passwordAsked = true;
    const bool greeting = m_replies.isEmpty() && reply->code == 220;
    m_replies.append(std::move(*reply));
    if (greeting && m_expectKept) {
        // The library had to log in anew, where this request would work in the wrong
        // directory: it stops here, before any command, and goes again with its CWD.
        m_unexpectedSession = true;
        return false;
    }
    return true;
}

CURLcode FtpConnection::sslContextCallback(CURL *, void *sslContext, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    return connection->m_check->install(sslContext) ? CURLE_OK : CURLE_SSL_CERTPROBLEM;
}

size_t FtpConnection::headerCallback(char *data, size_t size, size_t count, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (!connection->addReplyLine(QByteArray(data, static_cast<qsizetype>(size * count))))
        return 0;
    return size * count;
}

size_t FtpConnection::readCallback(char *data, size_t size, size_t count, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (!connection->m_request || !connection->m_request->read)
        return 0;
    if (connection->m_abort)
        return CURL_READFUNC_ABORT;
    connection->m_readStarted = true;
    return connection->m_request->read(data, size * count);
}

size_t FtpConnection::writeCallback(char *data, size_t size, size_t count, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (!connection->m_request || !connection->m_request->write)
        return size * count;
    return connection->m_request->write(data, size * count) ? size * count : 0;
}

int FtpConnection::progressCallback(void *self, curl_off_t, curl_off_t dlnow, curl_off_t,
                                    curl_off_t ulnow)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (connection->m_abort)
        return 1;
    if (dlnow != connection->m_down || ulnow != connection->m_up) {
        connection->m_down = dlnow;
        connection->m_up = ulnow;
        if (!connection->m_progressPending.exchange(true))
            connection->post([connection] { connection->deliverProgress(); });
    }
    return 0;
}

int FtpConnection::debugCallback(CURL *, curl_infotype type, char *data, size_t size, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (type != CURLINFO_TEXT)
        return 0;
    const QString text = QString::fromUtf8(data, static_cast<qsizetype>(size)).trimmed();
    if (text.startsWith(QLatin1String("Connected to ")))
        connection->post([connection, text] {
            if (connection->onLibraryText)
                connection->onLibraryText(text);
        });
    return 0;
}

curl_socket_t FtpConnection::openSocketCallback(void *self, curlsocktype purpose,
                                                struct curl_sockaddr *address)
{
    auto *connection = static_cast<FtpConnection *>(self);
    char text[INET6_ADDRSTRLEN] = {};
    int port = 0;
    if (address->family == AF_INET) {
        const auto *in = reinterpret_cast<const sockaddr_in *>(&address->addr);
        inet_ntop(AF_INET, &in->sin_addr, text, sizeof text);
        port = ntohs(in->sin_port);
    } else if (address->family == AF_INET6) {
        const auto *in6 = reinterpret_cast<const sockaddr_in6 *>(&address->addr);
        inet_ntop(AF_INET6, &in6->sin6_addr, text, sizeof text);
        port = ntohs(in6->sin6_port);
    }
    // The control connection goes to the server's own port; data connections never do.
    if (purpose == CURLSOCKTYPE_IPCXN && port == connection->m_address.port &&
        !connection->m_controlSocketSeen) {
        connection->m_controlSocketSeen = true;
        const QString shown = QString::fromLatin1(text) + QLatin1Char(':') + QString::number(port);
        connection->post([connection, shown] {
            if (connection->onOpenSocket)
                connection->onOpenSocket(shown);
        });
    }
    const curl_socket_t fd =
        socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (fd != CURL_SOCKET_BAD) {
        std::lock_guard<std::mutex> lock(connection->m_socketsLock);
        connection->m_sockets.insert(fd);
    }
    return fd;
}

int FtpConnection::closeSocketCallback(void *self, curl_socket_t socket)
{
    auto *connection = static_cast<FtpConnection *>(self);
    std::lock_guard<std::mutex> lock(connection->m_socketsLock);
    connection->m_sockets.erase(socket);
    return ::close(socket);
}

void FtpConnection::shutDownSockets()
{
    std::lock_guard<std::mutex> lock(m_socketsLock);
    for (const curl_socket_t fd : m_sockets)
        ::shutdown(fd, SHUT_RDWR);
}
