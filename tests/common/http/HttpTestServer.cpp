#include "HttpTestServer.h"

#include <QDeadlineTimer>
#include <QFile>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

HttpTestServer::HttpTestServer() = default;

HttpTestServer::~HttpTestServer()
{
    stop();
}

bool HttpTestServer::start()
{
    stop();
    if (!m_work.isValid()) {
        m_error = QStringLiteral("no temporary folder");
        return false;
    }
    m_process = std::make_unique<QProcess>();
    m_process->setProcessChannelMode(QProcess::SeparateChannels);
    m_process->start(QStringLiteral("python3"),
                     {QStringLiteral(TARNWICK_HTTP_SERVER_SCRIPT), QStringLiteral("--port"),
                      QStringLiteral("0"), QStringLiteral("--log"),
                      m_work.filePath(QStringLiteral("requests.log"))});
    if (!m_process->waitForStarted(10000)) {
        m_error = QStringLiteral("the HTTP server did not start: ") + m_process->errorString();
        m_process.reset();
        return false;
    }
    const QDeadlineTimer deadline(10000);
    while (!m_output.contains('\n') && !deadline.hasExpired() &&
           m_process->state() == QProcess::Running) {
        m_process->waitForReadyRead(100);
        m_output += m_process->readAllStandardOutput();
    }
    const qsizetype end = m_output.indexOf('\n');
    const QByteArray line = m_output.left(end).trimmed();
    if (!line.startsWith("PORT ")) {
        m_error = QStringLiteral("the HTTP server did not come up: ") +
                  QString::fromLocal8Bit(m_output + m_process->readAllStandardError());
        stop();
        return false;
    }
    m_port = line.mid(5).toInt();
    m_output.remove(0, end + 1);
    return true;
}

void HttpTestServer::stop()
{
    if (m_deadSocket >= 0) {
        ::close(m_deadSocket);
        m_deadSocket = -1;
    }
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(5000)) {
            m_process->kill();
            m_process->waitForFinished(3000);
        }
    }
    m_process.reset();
}

QString HttpTestServer::url(const QString &path) const
{
    return QStringLiteral("http://127.0.0.1:") + QString::number(m_port) + path;
}

QString HttpTestServer::refusedUrl()
{
    if (m_deadSocket < 0) {
        m_deadSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (m_deadSocket < 0 ||
            ::bind(m_deadSocket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0 ||
            ::getsockname(m_deadSocket, reinterpret_cast<sockaddr *>(&address), &length) != 0)
            return QString();
        m_refusedPort = ntohs(address.sin_port);
    }
    return QStringLiteral("http://127.0.0.1:") + QString::number(m_refusedPort) +
           QStringLiteral("/refused");
}

QStringList HttpTestServer::requests() const
{
    QFile log(m_work.filePath(QStringLiteral("requests.log")));
    if (!log.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

int HttpTestServer::silentRequests()
{
    if (m_process)
        m_output += m_process->readAllStandardOutput();
    return int(m_output.count("SILENT "));
}
