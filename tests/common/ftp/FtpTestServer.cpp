#include "FtpTestServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

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
    const QString python = pythonProgram();
    if (python.isEmpty()) {
        m_error = QStringLiteral("python3 with pyftpdlib is not installed (python3-pyftpdlib)");
        return false;
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
    for (const QString &fault : m_options.faults)
        arguments << QStringLiteral("--fault") << fault;

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

QString FtpTestServer::server() const
{
    return QStringLiteral("127.0.0.1:") + QString::number(m_port);
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
