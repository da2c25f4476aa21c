#include "TransferSteps.h"

#include "JobState.h"
#include "JobUi.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TransferEngine.h"
#include "TransferUi.h"
#include "cFTP.h"

#include <QLocale>
#include <QTime>

#include <functional>

namespace {

constexpr int Attempts = 3;
// How long the tidying after a cancel may take at most.
constexpr int CancelTidyMs = 1500;

QString nameOf(const QString &path)
{
    const qsizetype cut =
        std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return path.mid(cut + 1);
}

void showOrHideProgress(TransferContext &context)
{
    if (context.state.BackgroundRequested)
        context.progress.HideProgress();
    else
        context.progress.ShowProgress();
}

// A cancel reaches a job either way: dlgFTP's Cancel answers "!!Skip!!" and sets the flag, the
// progress frame's CancelButton only sets the flag.
bool jobCancelled(const JobState &state)
{
    return state.skipped() || state.UploadCancelled;
}

// A cancel that came after this point (a flag already set before does not count).
class CancelSince
{
public:
    explicit CancelSince(const JobState &state)
        : m_state(state), m_wasCancelled(state.UploadCancelled), m_wasSkipped(state.skipped())
    {
    }
    bool operator()() const
    {
        return (!m_wasCancelled && m_state.UploadCancelled) ||
               (!m_wasSkipped && m_state.skipped());
    }

private:
    const JobState &m_state;
    bool m_wasCancelled;
    bool m_wasSkipped;
};

const QString DirectoryFailure = QStringLiteral(
    "Failed to create/find a directory, retry. Note:On some servers the root (main directory) "
    "for the FTP site is not at the same level as the web directory. This can cause problems. "
    "Contact your ISP and have them set the FTP root to the same level as the Web directory. "
    "Another option is for you to change the root path of this program under the 'Standard FTP "
    "and settings' function, then select 'Advanced settings'.");

} // namespace

namespace {

// Up to three attempts of one file, each with dlgFTP shown (or hidden while BackgroundRequested)
// and with the account's fields read anew; between two attempts the dialog is unloaded and the
// event loop served twice. A cancelled attempt is not tried again. True when an attempt worked.
bool TryThrice(TransferContext &context, const TransferEngine &engine,
               const std::function<bool(const FtpAccount &account)> &attempt)
{
    bool done = false;
    for (int number = 1; number <= Attempts && !done; ++number) {
        if (number > 1) {
            context.progress.UnloadProgress();
            context.ui.ProcessEvents();
            context.ui.ProcessEvents();
        }
        showOrHideProgress(context);
        done = attempt(context.window.account());
        if (!done && (engine.LastWasCancelled || context.state.skipped()))
            break;
    }
    return done;
}

} // namespace

bool UploadFileToFTP(TransferContext &context, const QString &localPath)
{
    const QString directory = context.ftp.GetFTPDirectory().trimmed();
    const QString name = nameOf(localPath);
    // The old copy goes first: some servers refuse to overwrite, and a failed send then
    // leaves no stale copy behind.
    context.ftp.DeleteFTPFile(name);
    context.state.LastUploadPath = context.window.UploadPath();

    TransferEngine engine(context.progress, context.state, context.ftp.Transfers());
    // Whether any attempt sent straight under the file's own name.
    bool wentDirect = false;
    const bool sent = TryThrice(context, engine, [&](const FtpAccount &account) {
        const bool done = engine.SessionUpload(account.server, account.user, account.password,
                                               directory, localPath);
        wentDirect = wentDirect || engine.LastSentDirect;
        return done;
    });
    // The temporary copy of a failed send is removed where the server still answers; after a
    // cancel the user is not kept waiting long for that.
    // A send that went straight under the file's own name may have left a partial copy there.
    if (!sent) {
        QStringList leftovers = {TransferEngine::TemporaryName(name)};
        if (wentDirect)
            leftovers.append(name);
        const QString failure = context.ftp.GetLastErrorMessage();
        for (const QString &leftover : std::as_const(leftovers)) {
            if (engine.LastWasCancelled || context.state.skipped()) {
                const FtpAccount account = context.window.account();
                TransferEngine::SessionDelete(account.server, account.user, account.password,
                                              directory, leftover, CancelTidyMs);
            } else {
                context.ftp.DeleteFTPFile(leftover);
            }
        }
        // The tidying's own replies ("550 ... not found") are not what went wrong: the session
        // keeps the send's failure as its last message.
        context.ftp.SetLastErrorMessage(engine.LastErrorText.isEmpty() ? failure
                                                                       : engine.LastErrorText);
    }
    context.progress.UnloadProgress();
    return sent;
}

bool DownloadFileToFTP(TransferContext &context, const QString &localPath,
                       const QString &remoteName)
{
    QString directory = context.ftp.GetFTPDirectory().trimmed();
    if (!directory.endsWith(QLatin1Char('/')))
        directory += QLatin1Char('/');
    const QString remote = directory + (remoteName.isEmpty() ? nameOf(localPath) : remoteName);

    TransferEngine engine(context.progress, context.state, context.ftp.Transfers());
    const bool fetched = TryThrice(context, engine, [&](const FtpAccount &account) {
        return engine.SessionDownload(account.server, account.user, account.password, remote,
                                      localPath);
    });
    context.progress.UnloadProgress();
    return fetched;
}

bool verifyUploadPath(cFTP &ftp, const QString &expected)
{
    const QString directory = ftp.GetFTPDirectory().trimmed();
    if (directory == QLatin1String("/") || directory.isEmpty())
        return false;
    return directory.contains(expected);
}

bool CheckFTPDir(TransferContext &context, const QString &name)
{
    QString directory = name;
    directory.replace(QLatin1Char(' '), QLatin1Char('_'));
    if (context.ftp.WaitCancelled())
        return false;
    if (const cDirItem *item = context.ftp.Directory().Item(directory))
        return item->isDirectory();
    if (context.ftp.CreateFTPDirectory(directory)) {
        context.window.ReloadFTPList();
        return true;
    }
    if (context.ftp.WaitCancelled())
        return false;
    context.ui.Message(DirectoryFailure, QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                       JobUi::Icon::Warning);
    return false;
}

bool EnsureFTPDirectory(TransferContext &context, const QString &name)
{
    QString directory = name;
    directory.replace(QLatin1Char(' '), QLatin1Char('_'));
    if (!CheckFTPDir(context, directory))
        return false;
    const auto enter = [&] {
        if (!context.ftp.SetFTPDirectory(directory))
            return false;
        context.window.ReloadFTPList();
        context.window.showUploadPath(context.ftp.CurrentDirectory());
        return true;
    };
    const cDirItem *item = context.ftp.Directory().Item(directory);
    if (item && item->isDirectory())
        return enter();
    if (item)
        return false;
    context.ui.SetStatusText(QStringLiteral("Creating a directory"));
    if (!context.ftp.CreateFTPDirectory(directory)) {
        // Made by someone else meanwhile, or not at all: entering it tells which.
        return enter();
    }
    context.window.ReloadFTPList();
    return enter();
}

JobConnection ConnectForJob(TransferContext &context, const JobConnectOptions &options,
                            QString *failureText)
{
    context.ui.SetStatusText(QStringLiteral("Connecting"));
    context.ui.SetStepOf(QString());
    if (options.runWithoutConnections)
        return JobConnection::StayLocal;
    const FtpAccount account = context.window.account();
    const CancelSince cancelled(context.state);
    if (!context.ftp.OpenConnection(account.server, account.user, account.password)) {
        if (cancelled())
            return JobConnection::Cancelled;
        if (failureText)
            *failureText = QStringLiteral("failed to connect, retry. (") +
                           context.ftp.GetLastErrorMessage() + QLatin1Char(')');
        return JobConnection::Failed;
    }
    context.ftp.SetFTPDirectory(QStringLiteral("/"));
    context.window.ReloadFTPList();
    if (cancelled())
        return JobConnection::Cancelled;
    if (!options.ftpRoot.trimmed().isEmpty())
        context.ftp.SetFTPDirectory(options.ftpRoot.trimmed());
    if (cancelled())
        return JobConnection::Cancelled;
    context.ui.SetStatusText(
        QStringLiteral("Connected to ") + account.server + QStringLiteral(" as ") + account.user +
        QStringLiteral(" at ") +
        QLocale::c().toString(QTime::currentTime(), QStringLiteral("HH:mm:ss")));
    // A connection that worked is remembered, whatever the fields held before.
    SaveSetting(SettingKey::Server, account.server);
    SaveSetting(SettingKey::User, account.user);
    SaveSetting(SettingKey::Password, account.password);
    if (!options.clientRoot.trimmed().isEmpty()) {
        context.window.ReloadFTPList();
        if (!EnsureFTPDirectory(context, options.clientRoot.trimmed()))
            return cancelled() ? JobConnection::Cancelled : JobConnection::NoClientRoot;
    }
    return cancelled() ? JobConnection::Cancelled : JobConnection::Connected;
}

JobDirectory EnterJobDirectories(TransferContext &context, const QStringList &directories,
                                 const QString &expected)
{
    context.ui.SetStatusText(QStringLiteral("Verifing Path"));
    const CancelSince cancelled(context.state);
    context.window.ReloadFTPList();
    for (const QString &directory : directories) {
        if (cancelled() || !EnsureFTPDirectory(context, directory))
            return JobDirectory::NoDirectory;
    }
    return verifyUploadPath(context.ftp, expected) ? JobDirectory::Entered
                                                   : JobDirectory::WrongPath;
}

bool SendJobFiles(TransferContext &context, const QStringList &localPaths)
{
    context.ui.SetStatusText(QStringLiteral("Sending Files"));
    const int total = int(localPaths.size());
    for (int i = 0; i < total; ++i) {
        context.ui.SetStepOf(QStringLiteral("Currently loading section ") + QString::number(i + 1) +
                             QStringLiteral(" of ") + QString::number(total));
        if (jobCancelled(context.state))
            return false;
        UploadFileToFTP(context, localPaths.at(i));
        if (jobCancelled(context.state))
            return false;
    }
    return true;
}

void DisconnectForJob(TransferContext &context)
{
    context.ui.SetStatusText(QStringLiteral("Disconnecting"));
    context.window.cmdDisconnect();
}
