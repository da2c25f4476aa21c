#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A real FTP server (pyftpdlib) on a free loopback port, serving a fresh temporary folder to
// one user, for as long as the object lives. Faults for the tests are switched on by name
// (see ftpserver.py): "refuse-login", "stor-550", "stor-552", "dele-550", "rnto-553",
// "drop-after=N", "stall-after=N", "stall-retr", "silent", "greet-421", "dos-listing",
// "mkd-553=NAME".
//
//   FtpTestServer server;
//   QVERIFY2(server.start(), qPrintable(server.errorString()));
//   ftp.OpenConnection(server.server(), server.user(), server.password());
class FtpTestServer final
{
public:
    struct Options
    {
        QString user = QStringLiteral("tarnwick");
        QString password = QStringLiteral("secret");
        QStringList faults;
        // How many uploads a drop-after or stall-after fault hits.
        int times = 1;
        // pyftpdlib's permission letters; "elr" makes a read-only account.
        QString permissions = QStringLiteral("elradfmwMT");
        // The hostile server of hostileserver.py instead of pyftpdlib: its faults are the
        // behaviours listed there (overlong lines, huge and endless listings, names holding
        // "../", "/", NUL and line breaks, reply codes out of range).
        bool hostile = false;
    };

    FtpTestServer();
    explicit FtpTestServer(const Options &options);
    ~FtpTestServer();
    FtpTestServer(const FtpTestServer &) = delete;
    FtpTestServer &operator=(const FtpTestServer &) = delete;

    // Starts the server and waits until it accepts connections (ten seconds at most).
    bool start();
    void stop();
    bool isRunning() const;
    QString errorString() const { return m_error; }

    int port() const { return m_port; }
    // "127.0.0.1:<port>", what goes in the server field.
    QString server() const;
    QString user() const { return m_options.user; }
    QString password() const { return m_options.password; }
    // The served folder; "/" on the server.
    QString homePath() const { return m_home.path(); }
    // A path under the served folder for a remote path ("/Photos/a.jpg").
    QString localPath(const QString &remotePath) const;

    // Commands the server received so far, oldest first, as "COMMAND argument" (the password
    // is shown as "****"); with sessions, prefixed by the session number and a blank.
    QStringList commands(bool withSessions = false) const;
    int countCommands(const QString &verb) const;

    // The Python interpreter that has pyftpdlib ("" when none was found).
    static QString pythonProgram();
    // The server script, for tools that want to start it themselves.
    static QString scriptPath();
    static QString hostileScriptPath();

private:
    Options m_options;
    QTemporaryDir m_home;
    QTemporaryDir m_work;
    std::unique_ptr<QProcess> m_process;
    int m_port = 0;
    QString m_error;
};
