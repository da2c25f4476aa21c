#include "BackupCompression.h"
#include "BackupJobs.h"
#include "BackupList.h"
#include "BackupNames.h"
#include "BackupRecord.h"
#include "BackupWindow.h"
#include "Folders.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "cFTP.h"

#include <QDateTime>
#include <QFileInfo>

namespace {

// How often a long walk turns the event pump; the window repaints at that pace while every
// entry is still looked at.
constexpr qint64 PumpEveryMs = 10;

QString now()
{
    return FileDateText(QDateTime::currentDateTime());
}

const QString Title = QStringLiteral("Tarnwick");
const QString WrongPathText =
    QStringLiteral("The connection to the upload path has failed. Select to resend.");
const QString WebPageQuestion = QStringLiteral(
    "The Backup Web Page Index you are about to build replaces the previous Backup Web Page "
    "Index. Are you sure you want to build the Backup Web Page Index?");

} // namespace

BackupJobs::BackupJobs(BackupList &list, TransferContext context, BackupWindow &window)
    : m_list(list), m_context(context), m_window(window)
{
    m_sincePump.start();
}

BackupRecord &BackupJobs::record() const
{
    return m_context.state.current<BackupRecord>();
}

QString BackupJobs::backupFolder() const
{
    return m_list.folder();
}

QString BackupJobs::backupDirectory() const
{
    return ReplaceSpaces(m_window.BackupDirName(), QStringLiteral("_"));
}

void BackupJobs::pump(bool force)
{
    if (!force && m_sincePump.elapsed() < PumpEveryMs)
        return;
    m_context.ui.ProcessEvents();
    m_sincePump.restart();
}

void BackupJobs::tell(const QString &text, const QString &title)
{
    m_context.ui.Message(text, title, JobUi::Buttons::Ok, JobUi::Icon::Information);
}

bool BackupJobs::stopRequested() const
{
    return m_context.state.skipped() || m_context.state.UploadCancelled;
}

void BackupJobs::askForWebPage()
{
    if (m_context.ui.Message(WebPageQuestion, Title, JobUi::Buttons::YesNo,
                             JobUi::Icon::Question) == JobUi::Answer::Yes)
        BuildBackupWebPageButton();
}

BackupConnection BackupJobs::BackupConnect(const QString &directory, bool checkPath)
{
    JobConnectOptions options;
    options.ftpRoot = m_window.FTPRoot();
    options.clientRoot = m_window.ClientRoot();
    const JobConnection connection = ConnectForJob(m_context, options);
    if (connection == JobConnection::Failed)
        return BackupConnection::LoginFailed;
    const FtpAccount account = m_context.window.account();
    m_window.setCaption(QStringLiteral("Connected to ") + account.server + QStringLiteral(" as ") +
                        account.user + QStringLiteral(" at ") + now());
    if (connection == JobConnection::NoClientRoot)
        return BackupConnection::NoDirectory;
    m_context.window.ReloadFTPList();
    if (!EnsureFTPDirectory(m_context, directory))
        return BackupConnection::NoDirectory;
    if (!checkPath)
        return BackupConnection::Connected;
    if (!verifyUploadPath(m_context.ftp, ReplaceSpaces(directory, QStringLiteral("_")))) {
        m_context.ui.Message(WrongPathText, Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return BackupConnection::WrongPath;
    }
    return BackupConnection::Connected;
}

void BackupJobs::FillFileList()
{
    m_window.showFileList(::FillFileList(m_list, record()));
}

void BackupJobs::BackupFileList_Click(const QString &entry)
{
    BackupStatusView view = m_window.statusView();
    BackupFileListClick(m_list, record(), entry, view);
    m_window.showStatus(view);
}

BackupOutcome BackupJobs::scanFailure()
{
    m_context.window.cmdDisconnect();
    m_context.ui.Message(QStringLiteral("Connection failure. Try to resend."), Title,
                         JobUi::Buttons::Ok, JobUi::Icon::Warning);
    m_window.enableBackups(true);
    m_window.setBusy(false);
    m_window.showProgressFrame(false);
    m_context.state.UploadCancelled = false;
    return BackupOutcome::Failed;
}

void BackupJobs::stopHere()
{
    m_window.showProgressFrame(false);
    m_context.window.cmdDisconnect();
    m_window.setBusy(false);
}

BackupOutcome BackupJobs::ScanAndBackupButton()
{
    JobState &state = m_context.state;
    m_context.ui.SetStatusText(QStringLiteral("Starting Backup"));
    state.UserResponse.clear();
    state.UploadCancelled = false;
    m_window.setBusy(true);
    m_window.enableBackups(false);
    m_sent = 0;

    if (!m_window.RunWithoutMenu()) {
        if (BackupConnect(backupDirectory()) != BackupConnection::Connected)
            return scanFailure();
        // The walk runs over the list as it stood at the start: entries deleted on the way
        // stay in it until the end.
        const QStringList entries = m_window.BackupFileList();
        for (const QString &entry : entries) {
            if (stopRequested()) {
                stopHere();
                return BackupOutcome::Stopped;
            }
            const Step step = scanEntry(entry);
            if (step == Step::Stop)
                return BackupOutcome::Stopped;
            if (step == Step::Failure)
                return scanFailure();
            if (step == Step::LeaveWalk)
                break;
            pump();
        }
    }

    m_context.window.cmdDisconnect();
    FillFileList();
    tell(QString::number(m_sent) + QStringLiteral(" of ") +
         QString::number(m_window.BackupFileList().size()) +
         QStringLiteral(" were uploaded to the 'Backup' directory of your web space."));
    askForWebPage();
    m_window.enableBackups(true);
    m_window.setBusy(false);
    m_window.showProgressFrame(false);
    return BackupOutcome::Done;
}

BackupJobs::Step BackupJobs::scanEntry(const QString &entry)
{
    BackupRecord &current = record();
    m_list.ReadBackupRecord(entry, current);
    current.LocationPath = WithSlash(current.LocationPath);

    QString local;
    const LookUp found = LookUpLocalFile(current.LocationPath, current.Filename, &local);
    if (found == LookUp::Failed) {
        tell(QStringLiteral("The folder ") + current.LocationPath + QStringLiteral(" of '") +
             current.Filename +
             QStringLiteral("' can't be read: the file is left out of this backup."));
        return Step::Next;
    }
    if (found == LookUp::Missing) {
        const JobUi::Answer answer = m_context.ui.Message(
            QStringLiteral("File not found. The file '") + current.Filename +
                QStringLiteral("' should be located at ") + current.LocationPath +
                QStringLiteral("\rDo you want to delete from the list?"),
            Title, JobUi::Buttons::YesNo, JobUi::Icon::Question, JobUi::Answer::No);
        if (answer == JobUi::Answer::Yes) {
            m_list.ReadBackupRecord(entry, current);
            m_list.DeleteBackupRecord(entry);
        }
        return Step::Next;
    }

    // What goes out is the file as it is now: its date and length are taken before it is sent.
    m_sentDate = FileDateTime(local);
    m_sentLength = QFileInfo(local).size();
    const bool due = BackupIsDue(current.DateModified, m_sentDate, m_window.OverrideCheck());
    BackupStatusView view = m_window.statusView();
    view.CurrentDateOfTheFile = m_sentDate;
    view.DateBackupOfItem = current.DateBackup;
    view.DateModifiedOfItem = current.DateModified;
    view.NumberOfBackupTimesOfItem = QString::number(current.NumberOfBackupTimes);
    view.UploadpathOfItem = current.UploadPath;
    view.LocationPathOfItem = current.LocationPath;
    view.dateBackupColour = due ? StatusColour::Red : StatusColour::Green;
    view.dateModifiedColour = view.dateBackupColour;
    // Each entry shows; the window paints at the pace of the pump.
    m_window.showStatus(view);
    pump(due);
    if (!due)
        return Step::Next;
    bool sent = false;
    const Step step = sendFile(entry, current, local, true, &sent);
    if (sent && updateRecord(entry, current, local))
        ++m_sent;
    return step;
}

bool BackupJobs::repairSession()
{
    m_context.window.cmdDisconnect();
    pump(true);
    BackupConnect(backupDirectory(), false);
    pump(true);
    m_context.window.ReloadFTPList();
    pump(true);
    return verifyUploadPath(m_context.ftp, backupDirectory());
}

BackupJobs::Step BackupJobs::sendFile(const QString &entry, BackupRecord &current,
                                      const QString &local, bool repair, bool *sent)
{
    Q_UNUSED(entry);
    *sent = false;
    JobState &state = m_context.state;
    const QString label = m_context.window.UploadPath();
    QString sentName;
    if (current.CompressFile) {
        const CompressResult cabinet =
            CompressForBackup(local, backupFolder(), m_context.ui, state);
        if (cabinet.cancelled)
            return Step::Failure;
        if (!cabinet.ok) {
            m_context.ui.Message(QStringLiteral("The file ") + local +
                                     QStringLiteral(" could not be compressed: ") + cabinet.message,
                                 Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return Step::Failure;
        }
        if (repair && !verifyUploadPath(m_context.ftp, backupDirectory()) && !repairSession()) {
            tell(
                QStringLiteral("The connection to the upload path has failed. Select to rescan. ") +
                m_context.ftp.GetFTPDirectory().trimmed());
            DoKill(cabinet.copyPath);
            DoKill(cabinet.cabinetPath);
            return Step::LeaveWalk;
        }
        *sent = UploadFileToFTP(m_context, cabinet.cabinetPath);
        DoKill(cabinet.copyPath);
        DoKill(cabinet.cabinetPath);
        sentName = CabinetFileName(current.Filename);
    } else {
        *sent = UploadFileToFTP(m_context, local);
        sentName = current.Filename;
    }
    if (stopRequested()) {
        *sent = false;
        stopHere();
        return Step::Stop;
    }
    pump(true);
    // A file that did not arrive keeps its record as it was: the next scan sends it again.
    if (*sent)
        current.UploadPath = label + QLatin1Char('/') + sentName;
    return Step::Next;
}

bool BackupJobs::updateRecord(const QString &entry, BackupRecord &current, const QString &local)
{
    pump(true);
    m_list.DeleteBackupRecord(entry);
    if (current.NumberOfBackupTimes < 32767)
        ++current.NumberOfBackupTimes;
    current.DateBackup = now();
    current.DateModified = m_sentDate;
    current.LengthOfTheFile = double(m_sentLength);
    if (IsCompressedDirectory(current.Filename)) {
        // The cabinet is on the web space: a place holder keeps its place and its date.
        DoKill(local);
        pump(true);
        WritePlaceHolder(local);
        current.DateModified = FileDateTime(local);
        current.DateBackup = now();
    }
    if (!m_list.AppendBackupRecord(current)) {
        m_context.ui.Message(QStringLiteral("The backup list could not be written: ") +
                                 m_list.lastError(),
                             Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return false;
    }
    return true;
}

BackupOutcome BackupJobs::BackupSelectedButton()
{
    JobState &state = m_context.state;
    m_context.ui.SetStatusText(QStringLiteral("Starting Backup"));
    state.UserResponse.clear();
    state.UploadCancelled = false;
    m_window.setBusy(true);
    m_window.enableBackups(false);
    const auto end = [&](BackupOutcome outcome) {
        m_window.enableBackups(true);
        m_window.setBusy(false);
        state.UploadCancelled = false;
        return outcome;
    };

    // The boxes as they stand: the entry shown last, not each selected one.
    const BackupStatusView shown = m_window.statusView();
    if (!BackupIsDue(shown.DateModifiedOfItem, shown.CurrentDateOfTheFile,
                     m_window.OverrideCheck())) {
        tell(QStringLiteral("This file is up-to-date to date and does not need backing up."));
        return end(BackupOutcome::Nothing);
    }

    if (!m_window.RunWithoutMenu()) {
        const BackupConnection connection = BackupConnect(backupDirectory(), false);
        if (connection == BackupConnection::NoDirectory)
            return end(BackupOutcome::Failed);
        if (connection == BackupConnection::Connected) {
            if (!verifyUploadPath(m_context.ftp, backupDirectory())) {
                m_context.ui.Message(WrongPathText, Title, JobUi::Buttons::Ok,
                                     JobUi::Icon::Warning);
                m_window.enableBackups(true);
                m_window.setBusy(false);
                return BackupOutcome::WrongPath;
            }
            const QStringList entries = m_window.BackupFileList();
            QString lastEntry;
            QString lastLocal;
            bool lastSent = false;
            BackupRecord &current = record();
            for (int row = 0; row < entries.size(); ++row) {
                if (!m_window.isSelected(row))
                    continue;
                m_list.ReadBackupRecord(entries.at(row), current);
                current.LocationPath = WithSlash(current.LocationPath);
                QString local;
                if (LookUpLocalFile(current.LocationPath, current.Filename, &local) !=
                    LookUp::Found)
                    local = RecordFilePath(current);
                m_sentDate = FileDateTime(local);
                m_sentLength = QFileInfo(local).size();
                bool sent = false;
                const Step step = sendFile(entries.at(row), current, local, false, &sent);
                if (step == Step::Stop)
                    return BackupOutcome::Stopped;
                if (step == Step::Failure && stopRequested()) {
                    stopHere();
                    return end(BackupOutcome::Stopped);
                }
                lastEntry = entries.at(row);
                lastLocal = local;
                lastSent = sent;
            }
            pump(true);
            m_context.window.cmdDisconnect();
            // Only the record in hand is brought up to date, and only when its file went out.
            if (lastSent)
                updateRecord(lastEntry, current, lastLocal);
        }
    }
    askForWebPage();
    return end(BackupOutcome::Done);
}
