#include "FtpTestServer.h"

#include "CertificateCheck.h"
#include "CertificateTrust.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool acceptsConnections(int port)
{
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool ok = ::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    ::close(fd);
    return ok;
}

} // namespace

FtpTestServer::FtpTestServer() : FtpTestServer(Options()) {}

FtpTestServer::FtpTestServer(const Options &options) : m_options(options) {}

FtpTestServer::~FtpTestServer()
{
    stop();
}

QString FtpTestServer::scriptPath()
{
    return QStringLiteral(TARNWICK_FTP_SERVER_SCRIPT);
}

QString FtpTestServer::hostileScriptPath()
{
    return QStringLiteral(TARNWICK_HOSTILE_FTP_SERVER_SCRIPT);
}

QString FtpTestServer::sftpScriptPath()
{
    return QStringLiteral(TARNWICK_SFTP_SERVER_SCRIPT);
}

QString FtpTestServer::pythonProgram()
{
    static const QString program = [] {
        // The system interpreter first: it is the one the python3-pyftpdlib package serves.
        for (const QString &candidate :
             {QStringLiteral("/usr/bin/python3"), QStringLiteral("python3")}) {
            QProcess probe;
            probe.start(candidate, {QStringLiteral("-c"), QStringLiteral("import pyftpdlib")});
            if (probe.waitForFinished(10000) && probe.exitStatus() == QProcess::NormalExit &&
                probe.exitCode() == 0)
                return candidate;
        }
        return QString();
    }();
    return program;
}

bool FtpTestServer::start()
{
    stop();
    if (!m_home.isValid() || !m_work.isValid()) {
        m_error = QStringLiteral("no temporary folder");
        return false;
    }
    if (m_options.faults.contains(QStringLiteral("unresolvable")))
        return true;
    if (m_options.faults.contains(QStringLiteral("refuse-connection"))) {
        // Bound, so no other program takes the port, but never listening: a connection is
        // answered with a reset at once.
        m_deadSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (m_deadSocket < 0 ||
            ::bind(m_deadSocket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
            ::getsockname(m_deadSocket, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
            m_error = QStringLiteral("no port to refuse connections on");
            stop();
            return false;
        }
        m_port = ntohs(address.sin_port);
        return true;
    }
    const QString python = pythonProgram();
    if (python.isEmpty()) {
        m_error = QStringLiteral("python3 with pyftpdlib is not installed (python3-pyftpdlib)");
        return false;
    }
    const bool sftpFaultsOnly =
        std::all_of(m_options.faults.cbegin(), m_options.faults.cend(), [](const QString &fault) {
            return fault == QLatin1String("refuse-login") ||
                   fault.startsWith(QLatin1String("drop-after="));
        });
    m_sftp = m_options.sftp ||
             (qEnvironmentVariable("TARNWICK_TEST_SFTP") == QLatin1String("1") && sftpFaultsOnly &&
              !m_options.hostile && m_options.permissions == Options().permissions);
    m_tls = m_options.tls && !m_options.hostile && !m_sftp;
    if (m_sftp) {
        QStringList arguments = {sftpScriptPath(),
                                 QStringLiteral("--home"),
                                 m_home.path(),
                                 QStringLiteral("--user"),
                                 m_options.user,
                                 QStringLiteral("--password"),
                                 m_options.password,
                                 QStringLiteral("--times"),
                                 QString::number(m_options.times),
                                 QStringLiteral("--host-key"),
                                 m_work.filePath(QStringLiteral("hostkey")),
                                 QStringLiteral("--command-log"),
                                 m_work.filePath(QStringLiteral("commands.log")),
                                 QStringLiteral("--login-log"),
                                 m_work.filePath(QStringLiteral("logins.log")),
                                 QStringLiteral("--login-delay"),
                                 QString::number(m_options.loginDelayMs / 1000.0)};
        for (const QString &fault : m_options.faults)
            arguments << QStringLiteral("--fault") << fault;
        if (m_fixedPort > 0)
            arguments << QStringLiteral("--port") << QString::number(m_fixedPort);
        return launch(python, arguments);
    }
    QStringList arguments = {m_options.hostile ? hostileScriptPath() : scriptPath(),
                             QStringLiteral("--home"),
                             m_home.path(),
                             QStringLiteral("--user"),
                             m_options.user,
                             QStringLiteral("--password"),
                             m_options.password,
                             QStringLiteral("--perm"),
                             m_options.permissions,
                             QStringLiteral("--times"),
                             QString::number(m_options.times),
                             QStringLiteral("--command-log"),
                             m_work.filePath(QStringLiteral("commands.log"))};
    // The login log and delay are the pyftpdlib server's; the hostile one has neither.
    if (!m_options.hostile)
        arguments << QStringLiteral("--login-log") << m_work.filePath(QStringLiteral("logins.log"))
                  << QStringLiteral("--login-delay")
                  << QString::number(m_options.loginDelayMs / 1000.0);
    for (const QString &fault : m_options.faults)
        arguments << QStringLiteral("--fault") << fault;
    if (m_tls)
        arguments << QStringLiteral("--certificate") << certificatePath();
    if (m_fixedPort > 0)
        arguments << QStringLiteral("--port") << QString::number(m_fixedPort);
    return launch(python, arguments);
}

bool FtpTestServer::launch(const QString &python, const QStringList &arguments)
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    m_process->start(python, arguments);
    if (!m_process->waitForStarted(10000)) {
        m_error = QStringLiteral("the FTP server did not start: ") + m_process->errorString();
        m_process.reset();
        return false;
    }
    QByteArray output;
    const QDeadlineTimer deadline(10000);
    while (!output.contains('\n') && !deadline.hasExpired()) {
        if (m_process->state() != QProcess::Running)
            break;
        m_process->waitForReadyRead(100);
        output += m_process->readAllStandardOutput();
    }
    const QByteArray line = output.left(output.indexOf('\n')).trimmed();
    if (!line.startsWith("PORT ")) {
        m_error = QStringLiteral("the FTP server did not come up: ") +
                  QString::fromLocal8Bit(output + m_process->readAllStandardError());
        stop();
        return false;
    }
    m_port = line.mid(5).toInt();
    while (!deadline.hasExpired()) {
        if (acceptsConnections(m_port))
            return true;
        QThread::msleep(50);
    }
    m_error = QStringLiteral("the FTP server does not accept connections");
    stop();
    return false;
}

void FtpTestServer::stop()
{
    if (m_deadSocket >= 0) {
        ::close(m_deadSocket);
        m_deadSocket = -1;
    }
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(3000)) {
            m_process->kill();
            m_process->waitForFinished(3000);
        }
    }
    m_process.reset();
}

bool FtpTestServer::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running;
}

QString FtpTestServer::address() const
{
    if (m_options.faults.contains(QStringLiteral("unresolvable")))
        return QStringLiteral("no-such-host.invalid:21");
    return QStringLiteral("127.0.0.1:") + QString::number(m_port);
}

QString FtpTestServer::knownHostsLine() const
{
    if (!m_sftp)
        return QString();
    QFile file(m_work.filePath(QStringLiteral("hostkey.pub")));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QList<QByteArray> fields = file.readAll().simplified().split(' ');
    if (fields.size() < 2)
        return QString();
    return QStringLiteral("[127.0.0.1]:%1 %2 %3")
        .arg(m_port)
        .arg(QString::fromLatin1(fields[0]), QString::fromLatin1(fields[1]));
}

QString FtpTestServer::server() const
{
    if (m_sftp) {
        if (m_options.trustCertificate) {
            const QString line = knownHostsLine();
            const QString path = QDir::homePath() + QStringLiteral("/.ssh/known_hosts");
            QFile file(path);
            const QByteArray known = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            file.close();
            if (!line.isEmpty() && !known.contains(line.toLatin1())) {
                QDir().mkpath(QDir::homePath() + QStringLiteral("/.ssh"));
                if (file.open(QIODevice::Append))
                    file.write(line.toLatin1() + '\n');
            }
        }
        return QStringLiteral("sftp://") + address();
    }
    if (!m_tls || !m_options.trustCertificate)
        return address();
    const QString fingerprint = certificateFingerprint();
    if (!fingerprint.isEmpty() && CertificateTrust::Trusted(address()) != fingerprint)
        CertificateTrust::Trust(address(), fingerprint);
    return QStringLiteral("ftps://") + address();
}

QString FtpTestServer::certificatePath() const
{
    return m_work.filePath(QStringLiteral("certificate.pem"));
}

QString FtpTestServer::certificateFingerprint() const
{
    if (!m_tls)
        return QString();
    QFile file(certificatePath());
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QByteArray pem = file.readAll();
    const QByteArray begin = "-----BEGIN CERTIFICATE-----";
    const qsizetype start = pem.indexOf(begin);
    const qsizetype end = pem.indexOf("-----END CERTIFICATE-----", start);
    if (start < 0 || end < 0)
        return QString();
    const QByteArray der =
        QByteArray::fromBase64(pem.mid(start + begin.size(), end - start - begin.size()));
    return FingerprintText(QCryptographicHash::hash(der, QCryptographicHash::Sha256));
}

bool FtpTestServer::renewCertificate()
{
    m_fixedPort = m_port;
    stop();
    QFile::remove(certificatePath());
    QFile::remove(m_work.filePath(QStringLiteral("hostkey")));
    QFile::remove(m_work.filePath(QStringLiteral("hostkey.pub")));
    return start();
}

QString FtpTestServer::localPath(const QString &remotePath) const
{
    QString relative = remotePath;
    while (relative.startsWith(QLatin1Char('/')))
        relative.remove(0, 1);
    return QDir(m_home.path()).filePath(relative);
}

QStringList FtpTestServer::commands(bool withSessions) const
{
    QFile file(m_work.filePath(QStringLiteral("commands.log")));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines;
    for (const QByteArray &raw : file.readAll().split('\n')) {
        if (raw.isEmpty())
            continue;
        const QString line = QString::fromUtf8(raw);
        lines.append(withSessions ? line : line.section(QLatin1Char(' '), 1));
    }
    return lines;
}

int FtpTestServer::countCommands(const QString &verb) const
{
    int count = 0;
    for (const QString &line : commands()) {
        if (line.section(QLatin1Char(' '), 0, 0).compare(verb, Qt::CaseInsensitive) == 0)
            ++count;
    }
    return count;
}

int FtpTestServer::logins() const
{
    QFile file(m_work.filePath(QStringLiteral("logins.log")));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return int(file.readAll().count('\n'));
}
