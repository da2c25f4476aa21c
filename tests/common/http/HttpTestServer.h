#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A real HTTP server (Python's http.server, httpserver.py here) on a free loopback port for as
// long as the object lives. What each path answers is listed in httpserver.py: /ok 200, /moved
// 301 to /ok/new, /gone 404, /nohead 405 to HEAD and 200 to GET, /silent a request read and
// never answered. refusedUrl() is an address where nothing listens.
//
//   HttpTestServer server;
//   QVERIFY2(server.start(), qPrintable(server.errorString()));
//   check(server.url("/moved"));
class HttpTestServer final
{
public:
    HttpTestServer();
    ~HttpTestServer();
    HttpTestServer(const HttpTestServer &) = delete;
    HttpTestServer &operator=(const HttpTestServer &) = delete;

    // Starts the server and waits until it listens (ten seconds at most).
    bool start();
    void stop();
    QString errorString() const { return m_error; }
    int port() const { return m_port; }

    // "http://127.0.0.1:<port><path>"
    QString url(const QString &path) const;
    // An address on a loopback port that is bound but never listens: a connection is refused.
    QString refusedUrl();

    // The requests the server received so far, oldest first, as "HEAD /moved".
    QStringList requests() const;
    // The /silent requests the server has read (and will never answer) so far.
    int silentRequests();

private:
    QTemporaryDir m_work;
    std::unique_ptr<QProcess> m_process;
    QByteArray m_output;
    int m_port = 0;
    int m_deadSocket = -1;
    int m_refusedPort = 0;
    QString m_error;
};
