#include "LocalWebSpace.h"

#include "Folders.h"
#include "Settings.h"

#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>

#include <csignal>
#include <sys/prctl.h>

LocalWebSpace::LocalWebSpace(QObject *parent) : QObject(parent) {}

LocalWebSpace::~LocalWebSpace()
{
    stop();
}

QString LocalWebSpace::defaultFolder()
{
    return QDir::homePath() + QStringLiteral("/Tarnwick-webspace");
}

QString LocalWebSpace::scriptPath()
{
    return Folders::ProgramFolder() + QStringLiteral("/local-webspace.py");
}

bool LocalWebSpace::isRunning() const
{
    return m_process && m_process->state() == QProcess::Running;
}

void LocalWebSpace::stop()
{
    if (!m_process)
        return;
    // The server ends when its input closes; a server that doesn't is ended.
    m_process->closeWriteChannel();
    if (!m_process->waitForFinished(2000)) {
        m_process->kill();
        m_process->waitForFinished(1000);
    }
    delete m_process;
    m_process = nullptr;
}

std::optional<LocalWebSpace::Account> LocalWebSpace::start(const QString &folder,
                                                           const QString &user,
                                                           const QString &password, int ftpPort,
                                                           int httpPort, int timeoutMs)
{
    stop();
    m_error.clear();
    // The system's own Python first: that is where the distribution's pyftpdlib is.
    QString python = QStringLiteral("/usr/bin/python3");
    if (!QFileInfo(python).isExecutable())
        python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty()) {
        m_error = QStringLiteral("Python 3 is not installed, so a web space on this computer "
                                 "can't be started. Install the package python3-pyftpdlib.");
        return std::nullopt;
    }
    const QString script = scriptPath();
    if (!QFileInfo::exists(script)) {
        m_error = QStringLiteral("The local web space program is missing from %1.")
                      .arg(QDir::toNativeSeparators(Folders::ProgramFolder()));
        return std::nullopt;
    }
    QDir().mkpath(folder);

    m_process = new QProcess(this);
    m_process->setProgram(python);
    m_process->setArguments(
        {script, folder, QStringLiteral("--announce"), QStringLiteral("--ftp-port"),
         QString::number(ftpPort), QStringLiteral("--http-port"), QString::number(httpPort),
         QStringLiteral("--user"), user, QStringLiteral("--password"), password});
    // The server goes with the program, even when the program ends without tidying up.
    m_process->setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });

    QEventLoop loop;
    QTimer timer;
    timer.setSingleShot(true);
    QString output;
    bool announced = false;
    static const QRegularExpression announcement(
        QStringLiteral("TARNWICK-WEBSPACE ftp=(\\d+) http=(\\d+)"));
    QRegularExpressionMatch match;
    connect(m_process, &QProcess::readyReadStandardOutput, &loop, [&] {
        output += QString::fromUtf8(m_process->readAllStandardOutput());
        match = announcement.match(output);
        if (match.hasMatch()) {
            announced = true;
            loop.quit();
        }
    });
    connect(m_process, &QProcess::finished, &loop, &QEventLoop::quit);
    connect(m_process, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    m_process->start();
    timer.start(timeoutMs);
    loop.exec();

    if (!announced) {
        const QString said = QString::fromUtf8(m_process->readAllStandardError()).trimmed();
        m_error = said.isEmpty()
                      ? QStringLiteral("The web space on this computer did not start.")
                      : QStringLiteral("The web space on this computer did not start: %1")
                            .arg(said.section(QLatin1Char('\n'), -1));
        stop();
        return std::nullopt;
    }
    m_account.ftpPort = match.captured(1).toInt();
    m_account.httpPort = match.captured(2).toInt();
    m_account.server = QStringLiteral("127.0.0.1:%1").arg(m_account.ftpPort);
    m_account.webSite = QStringLiteral("127.0.0.1:%1").arg(m_account.httpPort);
    m_account.user = user;
    m_account.password = password;
    m_account.folder = folder;
    return m_account;
}

namespace {

const QString FolderKey = QStringLiteral("LocalWebSpaceFolder");
const QString FtpPortKey = QStringLiteral("LocalWebSpaceFtpPort");
const QString HttpPortKey = QStringLiteral("LocalWebSpaceHttpPort");

QString newPassword()
{
    static const QString letters =
        QStringLiteral("abcdefghijkmnopqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789");
    QString password;
    for (int i = 0; i < 12; ++i)
        password += letters.at(QRandomGenerator::system()->bounded(int(letters.size())));
    return password;
}

// Starts on the remembered ports, or on any free ones when those are taken, and remembers.
std::optional<LocalWebSpace::Account> startRemembered(LocalWebSpace &local, const QString &folder,
                                                      const QString &user, const QString &password)
{
    const int ftpPort = GetSetting(FtpPortKey).toInt();
    const int httpPort = GetSetting(HttpPortKey).toInt();
    auto account = local.start(folder, user, password, ftpPort, httpPort);
    if (!account && (ftpPort || httpPort))
        account = local.start(folder, user, password);
    if (!account)
        return std::nullopt;
    SaveSetting(FolderKey, folder);
    SaveSetting(FtpPortKey, QString::number(account->ftpPort));
    SaveSetting(HttpPortKey, QString::number(account->httpPort));
    return account;
}

} // namespace

std::optional<LocalWebSpace::Account> StartLocalWebSpace(LocalWebSpace &local)
{
    return startRemembered(local, LocalWebSpace::defaultFolder(), QStringLiteral("tarnwick"),
                           newPassword());
}

std::optional<LocalWebSpace::Account> RestartLocalWebSpace(LocalWebSpace &local,
                                                           const QString &server,
                                                           const QString &user,
                                                           const QString &password)
{
    const QString folder = GetSetting(FolderKey);
    const QString ftpPort = GetSetting(FtpPortKey);
    if (folder.isEmpty() || ftpPort.isEmpty() ||
        server.trimmed() != QStringLiteral("127.0.0.1:") + ftpPort)
        return std::nullopt;
    return startRemembered(local, folder, user, password);
}
