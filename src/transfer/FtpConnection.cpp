#include "FtpConnection.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// The event loop is served at least this often while a request waits.
constexpr int EventPeriodMs = 20;
constexpr int PollMs = 20;
// After a cancel, how long the library gets to stop by itself before the handle is taken away.
constexpr int CancelGraceMs = 250;
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

} // namespace

FtpAddress FtpAddress::fromServerField(const QString &server)
{
    FtpAddress address;
    QString text = server.trimmed();
    if (text.startsWith(QLatin1String("ftp://"), Qt::CaseInsensitive))
        text = text.mid(6);
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
    return "ftp://" + hostPart + ':' + QByteArray::number(port) + '/';
}

FtpConnection::FtpConnection(const FtpAddress &address, const QString &user,
                             const QString &password)
    : m_address(address), m_user(user.toUtf8()), m_password(password.toUtf8())
{
    initLibraryOnce();
}

FtpConnection::~FtpConnection()
{
    close(false);
}

QByteArray FtpConnection::encodeName(const QString &name)
{
    return QUrl::toPercentEncoding(name);
}

void FtpConnection::ensureHandles()
{
    if (!m_easy)
        m_easy = curl_easy_init();
    if (!m_multi)
        m_multi = curl_multi_init();
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
    ensureHandles();
    if (!m_easy || !m_multi) {
        result.code = CURLE_OUT_OF_MEMORY;
        return result;
    }
    m_busy = true;
    m_request = &request;
    m_replies.clear();
    m_openedSession = !m_alive;
    m_reader.reset();
    m_passwordAsked = false;
    m_abort = false;

    const SList quote(request.quote);
    const QByteArray url = m_address.baseUrl() + encodeName(request.fileName);

    CURL *e = m_easy;
    curl_easy_reset(e);
    curl_easy_setopt(e, CURLOPT_URL, url.constData());
    if (!m_user.isEmpty()) {
        curl_easy_setopt(e, CURLOPT_USERNAME, m_user.constData());
        curl_easy_setopt(e, CURLOPT_PASSWORD, m_password.constData());
    }
    curl_easy_setopt(e, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(e, CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
    curl_easy_setopt(e, CURLOPT_FTP_USE_EPSV, 1L);
    curl_easy_setopt(e, CURLOPT_TCP_KEEPALIVE, 1L);
    curl_easy_setopt(e, CURLOPT_TRANSFERTEXT, request.ascii ? 1L : 0L);
    curl_easy_setopt(e, CURLOPT_QUOTE, quote.list);
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
    if (onLibraryText) {
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

    curl_multi_add_handle(m_multi, e);
    m_sinceEvents.start();
    m_sinceStart.start();
    QElapsedTimer sinceCancel;
    bool finished = false;
    while (!finished) {
        int running = 0;
        if (curl_multi_perform(m_multi, &running) != CURLM_OK) {
            result.code = CURLE_FAILED_INIT;
            break;
        }
        int left = 0;
        while (CURLMsg *msg = curl_multi_info_read(m_multi, &left)) {
            if (msg->msg == CURLMSG_DONE && msg->easy_handle == e) {
                result.code = msg->data.result;
                finished = true;
            }
        }
        if (finished || running == 0)
            break;
        curl_multi_poll(m_multi, nullptr, 0, PollMs, nullptr);
        serveEvents();
        if (checkCancel() && !sinceCancel.isValid())
            sinceCancel.start();
        if (m_abort && sinceCancel.elapsed() > CancelGraceMs) {
            // The library did not come back to the progress callback (a stalled connect or
            // a reply that never comes): taking the handle away closes its connection.
            result.code = CURLE_ABORTED_BY_CALLBACK;
            break;
        }
    }
    curl_multi_remove_handle(m_multi, e);
    if (const auto cut = m_reader.pending())
        m_replies.append(*cut);
    result.cancelled = m_abort;
    if (m_abort && result.code == CURLE_OK)
        result.code = CURLE_ABORTED_BY_CALLBACK;
    // A request that failed may have left its connection in any state (a server that stopped
    // answering, a reply still owed): it is shut down, so that neither a later request nor the
    // closing QUIT waits on it, and the next request makes a new one.
    m_alive = result.ok();
    if (!m_alive)
        shutDownSockets();
    m_request = nullptr;
    m_busy = false;
    return result;
}

void FtpConnection::close(bool serveEvents)
{
    if (m_busy)
        return;
    if (m_alive && m_multi && m_easy) {
        Request quit;
        quit.quote = {QStringLiteral("QUIT")};
        quit.maxWaitMs = 2000;
        quit.serveEvents = serveEvents;
        const auto keep = cancelRequested;
        cancelRequested = nullptr;
        perform(quit);
        cancelRequested = keep;
        m_alive = false;
    }
    if (!m_alive)
        shutDownSockets();
    if (m_multi)
        curl_multi_cleanup(m_multi);
    m_multi = nullptr;
    if (m_easy)
        curl_easy_cleanup(m_easy);
    m_easy = nullptr;
}

void FtpConnection::addReplyLine(const QByteArray &line)
{
    auto reply = m_reader.addLine(line);
    if (!reply)
        return;
    if (reply->code == 331)
        m_passwordAsked = true;
    m_replies.append(std::move(*reply));
}

size_t FtpConnection::headerCallback(char *data, size_t size, size_t count, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    connection->addReplyLine(QByteArray(data, static_cast<qsizetype>(size * count)));
    return size * count;
}

size_t FtpConnection::readCallback(char *data, size_t size, size_t count, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (!connection->m_request || !connection->m_request->read)
        return 0;
    if (connection->m_abort)
        return CURL_READFUNC_ABORT;
    return connection->m_request->read(data, size * count);
}

size_t FtpConnection::writeCallback(char *data, size_t size, size_t count, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (!connection->m_request || !connection->m_request->write)
        return size * count;
    return connection->m_request->write(data, size * count) ? size * count : 0;
}

bool FtpConnection::checkCancel()
{
    if (!m_abort && m_request &&
        ((cancelRequested && cancelRequested()) ||
         (m_request->maxWaitMs > 0 && m_sinceStart.elapsed() > m_request->maxWaitMs)))
        m_abort = true;
    return m_abort;
}

void FtpConnection::serveEvents()
{
    if (m_request && m_request->serveEvents && m_sinceEvents.elapsed() >= EventPeriodMs &&
        QCoreApplication::instance()) {
        QCoreApplication::processEvents();
        m_sinceEvents.restart();
    }
}

int FtpConnection::progressCallback(void *self, curl_off_t, curl_off_t dlnow, curl_off_t,
                                    curl_off_t ulnow)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (connection->checkCancel())
        return 1;
    if (connection->m_request && connection->m_request->progress)
        connection->m_request->progress(dlnow, ulnow);
    // The library also calls here while it blocks for a reply (about once a second), so the
    // window is served from here too.
    connection->serveEvents();
    return connection->checkCancel() ? 1 : 0;
}

int FtpConnection::debugCallback(CURL *, curl_infotype type, char *data, size_t size, void *self)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (type == CURLINFO_TEXT && connection->onLibraryText)
        connection->onLibraryText(QString::fromUtf8(data, static_cast<qsizetype>(size)).trimmed());
    return 0;
}

curl_socket_t FtpConnection::openSocketCallback(void *self, curlsocktype purpose,
                                                struct curl_sockaddr *address)
{
    auto *connection = static_cast<FtpConnection *>(self);
    if (purpose == CURLSOCKTYPE_IPCXN && connection->onOpenSocket) {
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
        connection->onOpenSocket(QString::fromLatin1(text) + QLatin1Char(':') +
                                 QString::number(port));
    }
    const curl_socket_t fd =
        socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    if (fd != CURL_SOCKET_BAD)
        connection->m_sockets.insert(fd);
    return fd;
}

int FtpConnection::closeSocketCallback(void *self, curl_socket_t socket)
{
    static_cast<FtpConnection *>(self)->m_sockets.remove(socket);
    return ::close(socket);
}

void FtpConnection::shutDownSockets()
{
    for (const curl_socket_t fd : std::as_const(m_sockets))
        ::shutdown(fd, SHUT_RDWR);
}
