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
// "mkd-553=NAME", "drop-after-files=N", "idle-421-after-files=N", "mute-user",
// "pasv-dead-port", "data-silent", "half-reply[=CMD]". Two faults need no server at all:
// "refuse-connection" gives a port where nothing listens (the connection is refused), and
// "unresolvable" a server name that does not resolve.
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
        // How long each password check takes, as on a real server (other sessions go on
        // meanwhile).
        int loginDelayMs = 0;
        // The hostile server of hostileserver.py instead of pyftpdlib: its faults are the
        // behaviours listed there (overlong lines, huge and endless listings, names holding
        // "../", "/", NUL and line breaks, reply codes out of range).
        bool hostile = false;
        // TLS (explicit FTPS, AUTH TLS) with a self-signed certificate that the server makes
        // for localhost and 127.0.0.1. On by default when the environment variable
        // TARNWICK_TEST_FTPS is "1": the suite runs the transfer tests once more that way.
        bool tls = qEnvironmentVariable("TARNWICK_TEST_FTPS") == QLatin1String("1");
        // With tls: server() asks for TLS ("ftps://...") and trusts the certificate in the
        // settings, as a user who accepted it once has. Off for tests of that question.
        bool trustCertificate = true;
        // An SFTP server (SSH, python3-asyncssh) instead, with an Ed25519 host key it makes;
        // of the faults it knows "refuse-login" and "drop-after=N". When the environment
        // variable TARNWICK_TEST_SFTP is "1", every server whose faults and permissions the
        // SFTP server has is one.
        bool sftp = false;
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
    // "127.0.0.1:<port>", what goes in the server field ("no-such-host.invalid:21" for the
    // "unresolvable" fault); "ftps://127.0.0.1:<port>" with tls and trustCertificate, which
    // also trusts the certificate in the settings (the current HOME's) on each call;
    // "sftp://127.0.0.1:<port>" with sftp, which with trustCertificate puts the host key in
    // ~/.ssh/known_hosts.
    QString server() const;
    // "127.0.0.1:<port>" as the program names the server in its texts and settings.
    QString address() const;
    // The SHA-256 fingerprint of the TLS certificate ("AB:CD:..."); "" without tls.
    QString certificateFingerprint() const;
    // The known_hosts line of the SFTP server's host key; "" without sftp.
    QString knownHostsLine() const;
    // Stops the server and starts it again on the same port with a new certificate (or, with
    // sftp, a new host key).
    bool renewCertificate();
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
    // Logins that succeeded so far.
    int logins() const;

    // The Python interpreter that has pyftpdlib ("" when none was found).
    static QString pythonProgram();
    // The server script, for tools that want to start it themselves.
    static QString scriptPath();
    static QString hostileScriptPath();
    static QString sftpScriptPath();

private:
    Options m_options;
    QTemporaryDir m_home;
    QTemporaryDir m_work;
    std::unique_ptr<QProcess> m_process;
    int m_port = 0;
    // What the running server speaks (see Options::tls and Options::sftp).
    bool m_tls = false;
    bool m_sftp = false;
    // The port a restart keeps (0: any free one).
    int m_fixedPort = 0;
    // The PEM file of the TLS certificate and its key.
    QString certificatePath() const;
    bool launch(const QString &python, const QStringList &arguments);
    // The bound, never listening socket of "refuse-connection" (-1 otherwise).
    int m_deadSocket = -1;
    QString m_error;
};
