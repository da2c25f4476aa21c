#include "SendAFile.h"

#include "DirectoryName.h"
#include "HTMLMake.h"
#include "JobState.h"
#include "JobUi.h"
#include "TransferSteps.h"
#include "cFTP.h"

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

namespace {

const QString Title = QStringLiteral("Send a File");

QString connectedText(const FtpAccount &account)
{
    return QStringLiteral("Connected to ") + account.server + QStringLiteral(" as ") +
           account.user + QStringLiteral(" at ") +
           QLocale::c().toString(QTime::currentTime(), QStringLiteral("HH:mm:ss"));
}

} // namespace

SendAFileResult SendThisFile(TransferContext &context, SendAFileInputs &inputs,
                             SendAFileWindow &window)
{
    cFTP &ftp = context.ftp;
    JobUi &ui = context.ui;
    JobState &state = context.state;
    using Outcome = SendAFileResult::Outcome;
    SendAFileResult result;
    state.UserResponse.clear();

    const auto finish = [&](Outcome outcome) {
        state.UserResponse.clear();
        window.shapeEvent(20);
        result.outcome = outcome;
        result.sName = inputs.sName;
        return result;
    };

    // A file that was moved or deleted since it was chosen is told before anything is asked.
    const QFileInfo file(inputs.FileToSend.trimmed());
    if (inputs.FileToSend.trimmed().isEmpty() || !file.isFile() || !file.isReadable()) {
        const QString shown = inputs.FileToSend.trimmed();
        ui.Message(shown.isEmpty() ? QStringLiteral("Select the file to send first.")
                                   : QStringLiteral("The file to send was not found: ") + shown +
                                         QStringLiteral(". Select the file again and resend."),
                   Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return finish(Outcome::NoFile);
    }

    if (inputs.sName.trimmed().isEmpty()) {
        QString answer =
            AskUser(ui, state,
                    QStringLiteral("Please enter a name for this directory. If you "
                                   "are sending this to someone you might want to "
                                   "use their initials."),
                    DefaultSendFileDirectory(QDateTime::currentDateTime()), QStringLiteral("Hide"));
        if (answer == JobState::Blank)
            answer = QStringLiteral("Transfer");
        // A cancel is not looked at here: the name becomes "!!Skip!!" cleaned, and the stop
        // comes after the transfer, as for every job.
        inputs.sName = CleanDirectoryName(answer.trimmed());
    }
    inputs.sName = SendFileDirectoryName(inputs.sName);

    if (inputs.sName.isEmpty() || inputs.runWithoutMenu)
        return finish(Outcome::NothingToSend);

    // A cancel pressed from here on: that of a wait, the progress frame's or dlgFTP's. (A
    // cancelled prompt for the name is no cancel of the job: see above.)
    const bool wasCancelled = state.UploadCancelled;
    const bool wasSkipped = state.skipped();
    const auto cancelled = [&] {
        return (!wasSkipped && state.skipped()) || (!wasCancelled && state.UploadCancelled);
    };
    // A wait cancelled on the way ends the job there, as a cancelled transfer does.
    const auto stopped = [&] {
        window.showProgressFrame(false);
        context.window.cmdDisconnect();
        result.outcome = Outcome::Cancelled;
        result.sName = inputs.sName;
        return result;
    };
    const FtpAccount account = context.window.account();
    if (!ftp.OpenConnection(account.server, account.user, account.password))
        return finish(Outcome::NoConnection);

    ftp.SetFTPDirectory(QStringLiteral("/"));
    context.window.ReloadFTPList();
    ftp.SetFTPDirectory(inputs.FTPRoot);
    ui.SetStatusText(connectedText(account));
    context.window.ReloadFTPList();
    context.window.showUploadPath(ftp.CurrentDirectory());
    if (cancelled())
        return stopped();

    // A directory that is a file, or that cannot be made, ends the job; the disconnect comes
    // last and leaves the rings of the FTP tab.
    const auto noDirectory = [&] {
        state.UserResponse.clear();
        window.shapeEvent(20);
        context.window.cmdDisconnect();
        result.outcome = Outcome::NoDirectory;
        result.sName = inputs.sName;
        return result;
    };
    const auto ensure = [&](const QString &name) { return EnsureFTPDirectory(context, name); };
    const QString clientRoot = inputs.ClientRoot.trimmed();
    if (!clientRoot.isEmpty()) {
        QString directory = clientRoot;
        directory.replace(QLatin1Char(' '), QLatin1Char('_'));
        if (!ensure(directory))
            return cancelled() ? stopped() : noDirectory();
    }
    if (!ensure(inputs.sName))
        return cancelled() ? stopped() : noDirectory();
    if (cancelled())
        return stopped();

    // The session is closed after a wrong path as after any other failed step, so that no
    // login is left behind in a place the user did not choose.
    if (!verifyUploadPath(ftp, inputs.sName)) {
        ui.Message(
            QStringLiteral("The connection to the upload path has failed. Select to resend."),
            Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        context.window.cmdDisconnect();
        result.outcome = Outcome::WrongPath;
        result.sName = inputs.sName;
        return result;
    }

    UploadFileToFTP(context, file.absoluteFilePath());
    if (state.UserResponse == JobState::Skip || cancelled()) {
        window.showProgressFrame(false);
        context.window.cmdDisconnect();
        result.outcome = Outcome::Cancelled;
        result.sName = inputs.sName;
        return result;
    }

    ui.ProcessEvents();
    // The caption is read before the disconnect, which takes the directory away from it.
    const QString uploadPath = context.window.UploadPath();
    context.window.cmdDisconnect();
    result.pointer = CopyPointer(ui, state, uploadPath + QLatin1Char('/') + file.fileName(),
                                 QString(), QStringLiteral("%20"));
    return finish(Outcome::Sent);
}
