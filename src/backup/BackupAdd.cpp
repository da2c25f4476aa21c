#include "BackupCompression.h"
#include "BackupJobs.h"
#include "BackupList.h"
#include "BackupNames.h"
#include "BackupRecord.h"
#include "BackupWindow.h"
#include "DirectoryName.h"
#include "Folders.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "cFTP.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace {

const QString Title = QStringLiteral("Tarnwick");

QString now()
{
    return FileDateText(QDateTime::currentDateTime());
}

QString alreadyListed(const QString &name, const QString &newFolder, const QString &oldFolder)
{
    return QStringLiteral("This file (") + name +
           QStringLiteral(") already exits in the backup list:\rNew location - ") + newFolder +
           QStringLiteral("\rOld location - ") + oldFolder +
           QStringLiteral("\rIf the directories are not the same remove the file and add the new "
                          "file to the backuplist.");
}

// Blanks at both ends go; other characters stay, control characters included.
QString trimBlanks(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == QLatin1Char(' '))
        ++first;
    while (last > first && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}

} // namespace

BackupOutcome BackupJobs::AddNewFileButton(const std::function<FileChoice()> &chooseFiles)
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    m_window.shapeEvent(31);
    state.UserResponse.clear();
    state.UploadCancelled = false;
    m_window.enableBackups(false);
    ui.SetStatusText(QStringLiteral("Starting Backups"));
    m_window.showProgressFrame(true);
    ui.SetStatusText(QStringLiteral("Backing up the selected file(s)"));
    ui.SetStepOf(QString());
    pump(true);
    const auto failure = [&] {
        m_window.enableBackups(true);
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        state.UploadCancelled = false;
        return BackupOutcome::Failed;
    };
    const auto finish = [&](BackupOutcome outcome) {
        askForWebPage();
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        m_window.enableBackups(true);
        return outcome;
    };

    const FileChoice choice = chooseFiles();
    m_window.setBusy(true);
    if (!choice.pending)
        return finish(BackupOutcome::Nothing);

    BackupRecord &current = record();
    QList<bool> listed;
    for (const FilePick &pick : choice.files) {
        const bool found = m_list.ReadBackupRecord(pick.name, current) == 0;
        listed << found;
        if (found)
            tell(alreadyListed(pick.name, pick.folder, current.LocationPath));
    }

    const bool local = m_window.RunWithoutMenu();
    if (!local) {
        const BackupConnection connection = BackupConnect(backupDirectory(), false);
        if (connection == BackupConnection::LoginFailed) {
            tell(QStringLiteral("Error connecting to your Website."));
            return failure();
        }
        if (connection != BackupConnection::Connected)
            return failure();
        if (!verifyUploadPath(m_context.ftp, backupDirectory())) {
            m_context.ui.Message(
                QStringLiteral("The connection to the upload path has failed. Select to resend."),
                Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return failure();
        }
    }

    int added = 0;
    for (qsizetype i = 0; i < choice.files.size(); ++i) {
        const FilePick &pick = choice.files.at(i);
        if (listed.at(i) || m_list.ReadBackupRecord(pick.name, current) == 0)
            continue;
        const QString path = WithSlash(pick.folder.trimmed()) + pick.name;
        current.Filename = pick.name;
        current.LocationPath = WithSlash(pick.folder.trimmed());
        current.DateModified = FileDateTime(path);
        current.DateBackup = now();
        current.DirectoryType = false;
        current.CompressFile = choice.compress;
        current.IncrementalBackup = false;
        current.NumberOfBackupTimes = 1;
        current.LengthOfTheFile = double(QFileInfo(path).size());

        QString toSend = path;
        QString sentName = pick.name;
        if (current.CompressFile) {
            const CompressResult cabinet = CompressForBackup(path, backupFolder(), ui, state);
            if (cabinet.cancelled) {
                m_context.window.cmdDisconnect();
                return failure();
            }
            if (!cabinet.ok) {
                if (cabinet.copyDenied)
                    tell(cabinet.message + QStringLiteral(" - ") + path +
                         QStringLiteral(" (This file may be opened by another program)"));
                else
                    tell(cabinet.message);
                DoKill(cabinet.copyPath);
                continue;
            }
            DoKill(cabinet.copyPath);
            toSend = cabinet.cabinetPath;
            sentName = CabinetFileName(pick.name);
        }

        const QString label = m_context.window.UploadPath();
        bool sent = false;
        if (!local) {
            sent = UploadFileToFTP(m_context, toSend);
            if (stopRequested()) {
                stopHere();
                m_window.enableBackups(true);
                return BackupOutcome::Stopped;
            }
            // Only a file that arrived is listed.
            if (!sent)
                continue;
        } else {
            // Nothing went out: the entry is listed as due, so the next scan sends it.
            current.DateModified.clear();
        }
        current.UploadPath = label + QLatin1Char('/') + sentName;
        if (!m_list.AppendBackupRecord(current)) {
            m_context.ui.Message(QStringLiteral("The backup list could not be written: ") +
                                     m_list.lastError(),
                                 Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            continue;
        }
        m_window.addToFileList(pick.name);
        ++added;
    }
    m_context.window.cmdDisconnect();
    // The disconnect leaves the rings of the FTP tab; the next step here is the scan.
    m_window.shapeEvent(31);
    return finish(added > 0 ? BackupOutcome::Done : BackupOutcome::Nothing);
}

BackupOutcome BackupJobs::CreateCompressedDirButton(
    const std::function<QString(const QString &start)> &chooseFolder)
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    m_window.shapeEvent(31);
    state.UserResponse.clear();
    state.UploadCancelled = false;
    m_window.enableBackups(false);
    ui.SetStatusText(QStringLiteral("Starting Backups"));
    m_window.showProgressFrame(true);
    ui.SetStatusText(QStringLiteral("Backing up the selected Directory"));
    ui.SetStepOf(QString());
    pump(true);
    const auto failure = [&] {
        m_window.enableBackups(true);
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        state.UploadCancelled = false;
        return BackupOutcome::Failed;
    };
    const auto finish = [&](BackupOutcome outcome) {
        m_context.window.cmdDisconnect();
        m_window.shapeEvent(31);
        askForWebPage();
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        m_window.enableBackups(true);
        return outcome;
    };

    if (ChoosenCopyPath.isEmpty() || !QFileInfo(ChoosenCopyPath).isDir())
        ChoosenCopyPath = Folders::FindSystemFolder(Folders::SystemFolder::Documents);
    QString folder = chooseFolder(ChoosenCopyPath);
    while (folder.size() > 1 && (folder.endsWith(QLatin1Char('/'))))
        folder.chop(1);
    ChoosenCopyPath = folder;
    if (folder.isEmpty())
        return finish(BackupOutcome::Nothing);

    m_window.setBusy(true);
    const QString lastPart = GetRoot(folder);
    const QString parent = GetPath(folder);
    const QString cabinet = CompressedDirName(lastPart);
    BackupRecord &current = record();
    if (m_list.ReadBackupRecord(cabinet, current) == 0) {
        tell(alreadyListed(cabinet, folder, current.LocationPath));
        return finish(BackupOutcome::Nothing);
    }
    const QString cabinetPath = QDir(folder).filePath(cabinet);
    DoKill(cabinetPath);
    DoKill(QDir(QDir(parent).filePath(lastPart)).filePath(cabinet));
    QString why;
    if (RunCab(parent, cabinet, lastPart, ui, state, &why) != 0) {
        if (!why.isEmpty() && !why.contains(QLatin1String("cancelled")))
            m_context.ui.Message(QStringLiteral("The folder ") + folder +
                                     QStringLiteral(" could not be compressed: ") + why,
                                 Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return finish(BackupOutcome::Failed);
    }

    const bool local = m_window.RunWithoutMenu();
    if (!local) {
        const BackupConnection connection = BackupConnect(backupDirectory(), false);
        const auto fail = [&] {
            DoKill(cabinetPath);
            return failure();
        };
        if (connection == BackupConnection::LoginFailed) {
            tell(QStringLiteral("Error connecting to your Website."));
            return fail();
        }
        if (connection != BackupConnection::Connected)
            return fail();
        if (!verifyUploadPath(m_context.ftp, backupDirectory())) {
            m_context.ui.Message(
                QStringLiteral("The connection to the upload path has failed. Select to resend."),
                Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return fail();
        }
    }

    current.Filename = cabinet;
    current.LocationPath = WithSlash(QDir(parent).filePath(lastPart));
    current.DateModified = FileDateTime(cabinetPath);
    current.DateBackup = now();
    current.DirectoryType = false;
    current.CompressFile = true;
    current.IncrementalBackup = false;
    current.NumberOfBackupTimes = 1;
    current.LengthOfTheFile = double(QFileInfo(cabinetPath).size());
    const QString label = m_context.window.UploadPath();
    if (local) {
        // Nothing went out: the cabinet stays, listed as due for the next scan.
        current.DateModified.clear();
    } else {
        const bool sent = UploadFileToFTP(m_context, cabinetPath);
        if (stopRequested() || !sent) {
            // The folder is left as it was: no place holder, no entry.
            DoKill(cabinetPath);
            if (stopRequested()) {
                stopHere();
                m_window.enableBackups(true);
                return BackupOutcome::Stopped;
            }
            return finish(BackupOutcome::Failed);
        }
        DoKill(cabinetPath);
        WritePlaceHolder(cabinetPath);
        current.DateModified = FileDateTime(cabinetPath);
        current.DateBackup = now();
    }
    current.UploadPath = label + QLatin1Char('/') + cabinet;
    if (!m_list.AppendBackupRecord(current)) {
        m_context.ui.Message(QStringLiteral("The backup list could not be written: ") +
                                 m_list.lastError(),
                             Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return finish(BackupOutcome::Failed);
    }
    m_window.addToFileList(cabinet);
    return finish(BackupOutcome::Done);
}

void BackupJobs::RecompressButton()
{
    JobState &state = m_context.state;
    state.UploadCancelled = false;
    m_window.enableBackups(false);
    m_window.setBusy(true);
    m_context.ui.SetStatusText(QStringLiteral("Backing up the selected Directory"));
    BackupRecord &current = record();
    const QStringList entries = m_window.BackupFileList();
    for (int row = 0; row < entries.size(); ++row) {
        if (!m_window.isSelected(row) || !IsCompressedDirectory(entries.at(row)))
            continue;
        if (m_list.ReadBackupRecord(entries.at(row), current) != 0)
            continue;
        // The folder packed is the entry's own: the place holder's folder.
        const QString folder = WithSlash(current.LocationPath);
        DoKill(folder + current.Filename);
        QString why;
        if (RunCab(folder, current.Filename, QString(), m_context.ui, state, &why) != 0) {
            if (!why.isEmpty() && !why.contains(QLatin1String("cancelled")))
                m_context.ui.Message(QStringLiteral("The folder ") + folder +
                                         QStringLiteral(" could not be compressed: ") + why,
                                     Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            break;
        }
        // The new cabinet must differ in date from the place holder it replaces, or the next
        // scan would not send it: dates are kept to the second.
        const QString cabinet = folder + current.Filename;
        if (FileDateTime(cabinet) == current.DateModified) {
            QFile file(cabinet);
            if (file.open(QIODevice::ReadWrite))
                file.setFileTime(QFileInfo(cabinet).lastModified().addSecs(1),
                                 QFileDevice::FileModificationTime);
        }
    }
    m_window.setBusy(false);
    m_window.enableBackups(true);
    m_window.showProgressFrame(false);
}

BackupOutcome BackupJobs::BackupTarnwickButton()
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    if (ui.Message(QStringLiteral("This backup function backups the necessary files created for "
                                  "Tarnwick and does not backup image files. Do you want to "
                                  "continue?"),
                   Title, JobUi::Buttons::YesNo, JobUi::Icon::Question,
                   JobUi::Answer::No) != JobUi::Answer::Yes)
        return BackupOutcome::Nothing;

    state.UploadCancelled = false;
    m_window.setBusy(true);
    const auto end = [&](BackupOutcome outcome) {
        state.UserResponse.clear();
        m_window.setBusy(false);
        return outcome;
    };
    const auto cancelled = [&] {
        state.UserResponse.clear();
        m_window.setBusy(false);
        m_context.window.cmdDisconnect();
        state.UploadCancelled = false;
        return BackupOutcome::Stopped;
    };

    QString home = Folders::HomeFolder();
    home.chop(1);
    const CompressResult cabinet = CabAll(home, ui, state);
    if (cabinet.cancelled)
        return cancelled();
    if (!cabinet.ok) {
        ui.Message(QStringLiteral("The program's data could not be compressed: ") + cabinet.message,
                   Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return end(BackupOutcome::Failed);
    }
    m_window.setFileToSend(cabinet.cabinetPath);

    QString name = m_window.sName();
    if (!m_window.BackupDirName().isEmpty())
        name = m_window.BackupDirName();
    state.UserResponse.clear();
    if (name.trimmed().isEmpty()) {
        const QString when =
            QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy MM dd HH mm"));
        QString answer =
            AskUser(ui, state,
                    QStringLiteral("Please enter a name for this directory. If you are sending "
                                   "this to someone you might want to use their initials."),
                    QStringLiteral("FileDirectory ") + when, QStringLiteral("Hide"));
        if (answer == JobState::Skip)
            return cancelled();
        if (answer == JobState::Blank)
            answer = QStringLiteral("Transfer");
        name = trimBlanks(answer);
    }
    name = SendFileDirectoryName(name);
    m_window.setSName(name);
    if (name.isEmpty() || m_window.RunWithoutMenu())
        return end(BackupOutcome::Nothing);

    const BackupConnection connection = BackupConnect(name, true);
    if (connection != BackupConnection::Connected) {
        m_context.window.cmdDisconnect();
        return end(connection == BackupConnection::WrongPath ? BackupOutcome::WrongPath
                                                             : BackupOutcome::Failed);
    }
    UploadFileToFTP(m_context, cabinet.cabinetPath);
    if (stopRequested()) {
        stopHere();
        return cancelled();
    }
    pump(true);
    m_context.window.cmdDisconnect();
    return end(BackupOutcome::Done);
}
