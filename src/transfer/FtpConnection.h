#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include "FtpReplyReader.h"

#include <curl/curl.h>

#include <functional>

// Where an FTP server is reached: "host" or "host:port" as the user typed it (a leading
// "ftp://" and a trailing path are tolerated), port 21 when none is given.
struct FtpAddress
{
    QString host;
    int port = 21;
    bool valid = false;

    static FtpAddress fromServerField(const QString &server);
    // "ftp://host:port/" with an IPv6 address in brackets.
    QByteArray baseUrl() const;
};

// One libcurl connection to one FTP server and account. The easy handle is driven through a
// private multi handle whose connection cache keeps the control connection open between
// calls, so every request after the first reuses the same login.
//
// Every request runs to its end on the calling thread while the Qt event loop is served at
// least every 25 ms (QCoreApplication::processEvents), so windows repaint and buttons answer.
// While a request waits, cancelRequested() is asked; once it returns true the request is
// stopped through the progress callback and, should the library not come back to it, by
// taking the handle off the multi handle: a cancel ends the wait within a fraction of a
// second even when the server has stopped answering. No overall time-out is set.
//
// All file and directory names are relative to the directory that the request's own first
// command (a "CWD <absolute path>" in the quote list) moves to: the library is told never to
// change directory itself (CURLFTPMETHOD_NOCWD with relative names).
class FtpConnection final
{
public:
    struct Request
    {
        // Commands sent after login, in order. A leading "*" lets a command fail without
        // failing the request; replies() tells how each one went.
        QStringList quote;
        // Empty: a command-only request (no data connection). Otherwise the name of the file
        // to store or fetch, relative to the directory the quote list moved to.
        QString fileName;
        enum class Kind
        {
            Commands,
            List,
            Store,
            Retrieve
        } kind = Kind::Commands;
        bool ascii = false;
        // Store: called to fill buf (at most size bytes); returns the count, 0 at the end,
        // CURL_READFUNC_ABORT to fail.
        std::function<size_t(char *buf, size_t size)> read;
        // Retrieve and List: called with each piece of data; false fails the request.
        std::function<bool(const char *data, size_t size)> write;
        // Bytes moved so far (down, up) whenever the library reports progress.
        std::function<void(qint64 down, qint64 up)> progress;
        qint64 uploadSize = -1;
        // A limit on the wait (0: none); reaching it ends the request as a cancel does.
        int maxWaitMs = 0;
        // False: the event loop is not served during this request (used while tearing down).
        bool serveEvents = true;
    };

    struct Result
    {
        CURLcode code = CURLE_OK;
        bool cancelled = false;
        bool ok() const { return code == CURLE_OK && !cancelled; }
    };

    FtpConnection(const FtpAddress &address, const QString &user, const QString &password);
    ~FtpConnection();
    FtpConnection(const FtpConnection &) = delete;
    FtpConnection &operator=(const FtpConnection &) = delete;

    Result perform(const Request &request);

    // Replies of the last request, oldest first, including those of a login.
    const QList<FtpReply> &replies() const { return m_replies; }
    FtpReply lastReply() const { return m_replies.isEmpty() ? FtpReply() : m_replies.last(); }
    // True when the last request saw the server ask for a password (331).
    bool passwordAsked() const { return m_passwordAsked; }
    // The last request had to open the control connection (and log in) first.
    bool openedSession() const { return m_openedSession; }

    // Asked while a request waits; true stops it.
    std::function<bool()> cancelRequested;
    // The library's moments, for status texts: a socket is about to be opened to address
    // (text "ip:port"); a line of the library's own commentary ("Connected to ...").
    std::function<void(const QString &address)> onOpenSocket;
    std::function<void(const QString &text)> onLibraryText;

    bool busy() const { return m_busy; }

    // Closes the control connection: QUIT when the last request left it alive, waiting for the
    // answer two seconds at most.
    void close(bool serveEvents = true);

    static QByteArray encodeName(const QString &name);

private:
    static size_t headerCallback(char *data, size_t size, size_t count, void *self);
    static size_t readCallback(char *data, size_t size, size_t count, void *self);
    static size_t writeCallback(char *data, size_t size, size_t count, void *self);
    static int progressCallback(void *self, curl_off_t dltotal, curl_off_t dlnow,
                                curl_off_t ultotal, curl_off_t ulnow);
    static int debugCallback(CURL *, curl_infotype type, char *data, size_t size, void *self);
    static curl_socket_t openSocketCallback(void *self, curlsocktype purpose,
                                            struct curl_sockaddr *address);
    static int closeSocketCallback(void *self, curl_socket_t socket);
    // Shuts the open sockets down, so that nothing waits on them any more.
    void shutDownSockets();
    void addReplyLine(const QByteArray &line);
    void ensureHandles();

    FtpAddress m_address;
    QByteArray m_user;
    QByteArray m_password;
    CURL *m_easy = nullptr;
    CURLM *m_multi = nullptr;

    const Request *m_request = nullptr;
    QList<FtpReply> m_replies;
    FtpReplyReader m_reader;
    bool m_passwordAsked = false;
    bool m_openedSession = false;
    bool m_abort = false;
    bool m_busy = false;
    bool m_alive = false;
    // Serving the event loop and watching for a cancel, from the request loop and from the
    // progress callback (which the library also calls while it blocks for a reply).
    bool checkCancel();
    void serveEvents();
    QElapsedTimer m_sinceEvents;
    QElapsedTimer m_sinceStart;
    // The sockets the library opened through us and has not closed yet.
    QSet<curl_socket_t> m_sockets;
};
