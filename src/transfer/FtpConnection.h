#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include "FtpReplyReader.h"
#include "HostKey.h"

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>

// Where a server is reached and how: "host", "host:port", "ftp://host[:port]",
// "ftps://host[:port]" or "sftp://host[:port]" as the user typed it (a trailing path is
// tolerated). Port 21 when none is given, 22 for sftp://.
struct FtpAddress
{
    enum class Protocol
    {
        // FTP that asks the server for TLS (AUTH TLS) and goes on in plain FTP only when the
        // server offers none: a plain host, or ftp://.
        Ftp,
        // FTP over TLS and nothing else (ftps://): a server without TLS is refused before the
        // user name is sent. Port 990 is implicit TLS, any other explicit (AUTH TLS).
        Ftps,
        // SFTP over SSH (sftp://).
        Sftp,
    };

    QString host;
    int port = 21;
    Protocol protocol = Protocol::Ftp;
    bool valid = false;

    static FtpAddress fromServerField(const QString &server);
    // "ftp://host:port/" (or ftps://, sftp://) with an IPv6 address in brackets.
    QByteArray baseUrl() const;
    // "host:port", as the status line names the server.
    QString shown() const;
};

struct CertificateCheck;

// How long a connection waits for the server before it gives up with a time-out. Kept in the
// settings in whole seconds ("ConnectTimeout", "ReplyTimeout", "StallTimeout"); a missing or
// unusable value takes the default.
struct FtpLimits
{
    // Reaching the server, its greeting and the login.
    int connectMs = 20000;
    // Any one reply of the server.
    int replyMs = 30000;
    // A data transfer that moves no byte for this long has stalled.
    int stallMs = 30000;

    static const QString ConnectKey;
    static const QString ReplyKey;
    static const QString StallKey;
    static FtpLimits FromSettings();
};

// One libcurl connection to one FTP server and account, kept from request to request: the
// control connection stays logged in (and where it last changed directory) until it fails,
// the server closes it, or close() is called.
//
// The library runs on a thread of the connection's own; perform() hands a request to it and
// waits in a local event loop, so the calling thread never waits on the network and its
// windows stay served. (Driving libcurl's multi interface from the event loop would not do
// that: libcurl 7.88 still waits for an upload's closing reply, for the answers to commands
// sent after a transfer and for QUIT inside curl_multi_perform, blocking, up to its response
// limit.) While a request waits, cancelRequested() is asked every 50 ms and
// cancel() may be called from any event: either stops the request within a fraction of a
// second, its sockets shut down. Every wait is bounded by the connection's FtpLimits; a limit
// reached fails the request with CURLE_OPERATION_TIMEDOUT.
//
// perform(), close() and the destructor must be called on the thread that made the
// connection; the callbacks below run there too, except Request::read and Request::write.
class FtpConnection final
{
public:
    struct Request
    {
        // The absolute directory the request works in; the connection moves there first (a
        // CWD that must succeed) unless its control connection stands there already. Empty:
        // wherever the session stands (the login directory for a new one).
        QString directory;
        // Commands sent after that, in order. A leading "*" lets a command fail without
        // failing the request; replies() tells how each one went.
        QStringList quote;
        // Empty: a command-only request (no data connection). Otherwise the name of the file
        // to store or fetch, relative to the directory.
        QString fileName;
        enum class Kind
        {
            Commands,
            List,
            Store,
            Retrieve
        } kind = Kind::Commands;
        bool ascii = false;
        // Store: called on the connection's thread to fill buf (at most size bytes); returns
        // the count, 0 at the end, CURL_READFUNC_ABORT to fail. Touches nothing but its file.
        std::function<size_t(char *buf, size_t size)> read;
        // Retrieve and List: called on the connection's thread with each piece of data; false
        // fails the request. Touches nothing but its file or buffer.
        std::function<bool(const char *data, size_t size)> write;
        // Bytes moved so far (down, up), on the calling thread, as the library reports them.
        std::function<void(qint64 down, qint64 up)> progress;
        qint64 uploadSize = -1;
        // A limit on the whole wait (0: none); reaching it ends the request as a cancel does.
        int maxWaitMs = 0;
    };

    struct Result
    {
        CURLcode code = CURLE_OK;
        bool cancelled = false;
        bool ok() const { return code == CURLE_OK && !cancelled; }
    };

    FtpConnection(const FtpAddress &address, const QString &user, const QString &password,
                  const FtpLimits &limits = FtpLimits::FromSettings());
    ~FtpConnection();
    FtpConnection(const FtpConnection &) = delete;
    FtpConnection &operator=(const FtpConnection &) = delete;

    // Runs the request to its end. A kept connection that the server closed meanwhile (a 421,
    // or no answer at all to the first command) is replaced by a new one, once, within the
    // request: that is no failure of the request.
    Result perform(const Request &request);

    // Replies of the last request, oldest first, including those of a login. Read them only
    // when no request is under way (busy() is false).
    const QList<FtpReply> &replies() const { return m_replies; }
    FtpReply lastReply() const
    {
        return m_busy || m_replies.isEmpty() ? FtpReply() : m_replies.last();
    }
    // True when the last request saw the server ask for a password (331).
    bool passwordAsked() const { return m_passwordAsked; }
    // The last request had to open the control connection (and log in) first.
    bool openedSession() const { return m_openedSession; }
    // A logged-in control connection is kept for the next request.
    bool isOpen() const { return m_alive; }
    // Logins made by this connection so far.
    int logins() const { return m_logins; }
    const FtpAddress &address() const { return m_address; }
    // Where the kept control connection stands, as far as known ("" when not known).
    QString serverDirectory() const { return m_alive ? m_serverDirectory : QString(); }
    // Tells the connection where its control connection stands now (a PWD confirmed it), so
    // that the next request in that directory needs no CWD.
    void setServerDirectory(const QString &directory);

    // Asked every 50 ms while a request waits; true stops it.
    std::function<bool()> cancelRequested;
    // Stops the request in flight, if any; for an event served while perform() waits.
    void cancel();
    // The security of the kept (or last) session: "" for plain FTP, else the TLS version the
    // control connection reached ("TLS 1.3"). Known once a request opened the session.
    QString tlsVersion() const { return m_sessionTls; }
    // Why the last request was refused for the connection's security (a certificate that is
    // not trusted, no TLS where ftps:// asks for it, a failed handshake); "" otherwise. A
    // complete sentence for the user, with the certificate's SHA-256 fingerprint where one was
    // seen.
    QString securityProblem() const { return m_securityProblem; }

    // A server certificate that does not verify, put to the user.
    struct CertificateQuestion
    {
        QString server;       // "host:port"
        QString why;          // OpenSSL's words, or that the name does not match
        QString fingerprint;  // SHA-256, "AB:CD:..."
        bool changed = false; // another certificate was trusted for this server before
    };
    // Asked (on the calling thread, during perform) when the server's certificate does not
    // verify; true trusts that certificate for this server from now on (kept in the settings)
    // and the request goes on. Unset: such a certificate is refused.
    std::function<bool(const CertificateQuestion &question)> askTrust;

    // The library's moments, for status texts: the control connection's socket is about to be
    // opened to address (text "ip:port"); a line of the library's own commentary
    // ("Connected to ...").
    std::function<void(const QString &address)> onOpenSocket;
    std::function<void(const QString &text)> onLibraryText;
    // A wait the user should hear of: a request that makes a new connection says so at once
    // ("Connecting to host:port..."), any other once it has waited a moment ("Waiting for
    // host:port..."); onWaitEnded follows when that request is over.
    std::function<void(const QString &text)> onWaitStarted;
    std::function<void()> onWaitEnded;

    bool busy() const { return m_busy; }

    // Closes the control connection: QUIT when the last request left it alive, waiting for the
    // answer two seconds at most (the event loop served meanwhile).
    void close();

    static QByteArray encodeName(const QString &name);

private:
    class Worker;
    enum class Outcome
    {
        Done,
        // A kept connection turned out to be gone before the request got an answer.
        StaleConnection,
    };

    Result performOnce(const Request &request, Outcome *outcome);
    // What every request starts from: no replies yet, no flags of the last request, a fresh
    // certificate check.
    void beginRequest(const Request &request);
    // SFTP: the same requests, carried out with the library's SFTP operations, with the
    // replies an FTP server would have given (see FtpConnection_Sftp.cpp).
    Result performSftp(const Request &request);
    Result openSftpSession(int maxWaitMs);
    Result sftpCommand(const QString &command, int maxWaitMs, FtpReply *answer);
    Result sftpQuote(const QStringList &commands, int maxWaitMs);
    // Whether path (absolute) is there, and a directory, as its folder's listing tells.
    Result sftpLookUp(const QString &path, int maxWaitMs, bool *found, bool *isDirectory);
    // Whether path is a directory one can enter.
    Result sftpEnter(const QString &path, int maxWaitMs, bool *exists);
    QByteArray sftpUrl(const QString &path, bool directory) const;
    void finishSftp(const Result &result);
    void closeSftp();
    // The request ended at the SFTP server's host key.
    bool hostKeyRefused(const Result &result) const;
    static int sshKeyCallback(CURL *, const struct curl_khkey *known,
                              const struct curl_khkey *found, enum curl_khmatch match, void *self);
    // The request ended at the server's certificate, and a fingerprint was seen.
    bool certificateRefused(const Result &result) const;
    void noteSecurityProblem(const Result &result);
    // One request of the library, to url, with commands sent first (the library's quote list):
    // the request's callbacks served, its progress delivered, a cancel seen. A request that
    // was cancelled before goes no further.
    Result transfer(const Request &request, const QByteArray &url, const QStringList &commands);
    // On the connection's thread: the easy handle set up for one request, and the request
    // driven to its end.
    void setUp(const Request &request, const QByteArray &url, curl_slist *quote);
    CURLcode drive();
    // Waits in a local event loop until the worker has finished job, asking for a cancel.
    void runOnWorker(const std::function<void()> &job, int maxWaitMs);
    void requestAbort();
    // Runs fn on the calling thread (queued from the connection's thread).
    void post(std::function<void()> fn);
    void deliverProgress();

    static CURLcode sslContextCallback(CURL *, void *sslContext, void *self);
    static size_t headerCallback(char *data, size_t size, size_t count, void *self);
    static size_t readCallback(char *data, size_t size, size_t count, void *self);
    static size_t writeCallback(char *data, size_t size, size_t count, void *self);
    static int progressCallback(void *self, curl_off_t dltotal, curl_off_t dlnow,
                                curl_off_t ultotal, curl_off_t ulnow);
    static int debugCallback(CURL *, curl_infotype type, char *data, size_t size, void *self);
    static curl_socket_t openSocketCallback(void *self, curlsocktype purpose,
                                            struct curl_sockaddr *address);
    static int closeSocketCallback(void *self, curl_socket_t socket);
    // Shuts the open sockets down, so that nothing waits on them any more. Any thread.
    void shutDownSockets();
    // On the connection's thread; false stops the request (a session that should not be new).
    bool addReplyLine(const QByteArray &line);

    FtpAddress m_address;
    QByteArray m_user;
    QByteArray m_password;
    FtpLimits m_limits;
    CURL *m_easy = nullptr;
    CURLM *m_multi = nullptr;
    std::unique_ptr<Worker> m_worker;
    QObject m_relay; // lives on the calling thread: what the worker posts to

    const Request *m_request = nullptr;
    QList<FtpReply> m_replies;
    FtpReplyReader m_reader;
    bool m_passwordAsked = false;
    bool m_openedSession = false;
    // The next wait makes a new connection ("Connecting to ...").
    bool m_connecting = false;
    // The request was sent over a kept connection without a CWD of its own.
    bool m_expectKept = false;
    bool m_unexpectedSession = false;
    bool m_readStarted = false;
    bool m_busy = false;
    bool m_alive = false;
    int m_logins = 0;
    // Where the kept control connection stands ("" when unknown).
    QString m_serverDirectory;
    std::atomic<bool> m_abort{false};
    std::atomic<qint64> m_down{0};
    std::atomic<qint64> m_up{0};
    std::atomic<bool> m_progressPending{false};
    // The sockets the library opened through us and has not closed yet.
    std::mutex m_socketsLock;
    std::set<curl_socket_t> m_sockets;
    // The first socket a request that opens a session makes is its control connection.
    bool m_controlSocketSeen = false;
    // What the TLS layer saw during the request (filled on the connection's thread).
    std::unique_ptr<CertificateCheck> m_check;
    QString m_sessionTls;
    // SFTP: where the session stands, its login directory, a rename's source, the host key met
    // (filled on the connection's thread) and the one the user accepted for this request.
    QString m_sftpDirectory;
    QString m_renameFrom;
    HostKey m_hostKey;
    QByteArray m_approvedKey;
    QByteArray m_knownHostsPath;
    QString m_securityProblem;
    char m_errorBuffer[CURL_ERROR_SIZE] = {};
};
