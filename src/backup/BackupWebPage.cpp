#include "BackupJobs.h"
#include "BackupList.h"
#include "BackupNames.h"
#include "BackupRecord.h"
#include "BackupWindow.h"
#include "HTMLMake.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "cFTP.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace {

const QString CrLf = QStringLiteral("\r\n");
const QString Title = QStringLiteral("Tarnwick");

// The page holds ASCII alone, so no browser can misread it: a character beyond ASCII is written
// as a character reference in the text and as UTF-8 escapes in an address.
QString pageText(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        if (c < 0x80)
            out += QChar(char16_t(c));
        else
            out += QStringLiteral("&#%1;").arg(quint32(c));
    }
    return out;
}

QString pageAddress(const QString &text)
{
    QString out;
    for (const char byte : text.toUtf8()) {
        const auto value = static_cast<unsigned char>(byte);
        if (value < 0x80)
            out += QLatin1Char(char(value));
        else
            out += QLatin1Char('%') + QString::number(value, 16).toUpper();
    }
    return out;
}

} // namespace

QString BackupJobs::BackupPageHeader(const QString &now)
{
    QString page;
    page += QStringLiteral("<html><head><title>Backup Page</title></head>") + CrLf;
    page += QStringLiteral("<body><p><font color=\"#FF0000\" size=\"6\"><b>Backup Page</b></font>"
                           "</p>") +
            CrLf;
    page += QStringLiteral("<p>This page was last updated on ") + now + CrLf;
    page += QStringLiteral("<p>To retrieve a file, right click on the file and select 'Save Target "
                           "As'</p>") +
            CrLf;
    page += QStringLiteral("<p>Current Files to be backed up are:</p>") + CrLf;
    return page;
}

QString BackupJobs::BackupPageLine(const BackupRecord &record, const QString &ftpRoot)
{
    QString address = BackupPagePath(record.UploadPath, ftpRoot);
    // A web site typed with its scheme already says how to reach it.
    if (!address.startsWith(QLatin1String("http://")) &&
        !address.startsWith(QLatin1String("https://")))
        address = QStringLiteral("http://") + address;
    return QStringLiteral("<p><a href=\"") + pageAddress(address) +
           QStringLiteral("\"><font size=\"3\">") + pageText(record.Filename) +
           QStringLiteral("</a><font size=\"2\"> - ") + pageText(record.DateModified) +
           (record.CompressFile ? QStringLiteral(" - Compressed file")
                                : QStringLiteral(" - Not Compressed")) +
           QStringLiteral("</a></p>") + CrLf;
}

BackupOutcome BackupJobs::BuildBackupWebPageButton()
{
    JobState &state = m_context.state;
    state.UserResponse.clear();
    m_context.ui.SetStatusText(QStringLiteral("Starting Backup Main Page Construction"));
    m_window.enableBackups(false);
    const auto end = [&](BackupOutcome outcome) {
        m_window.enableBackups(true);
        m_window.showProgressFrame(false);
        m_window.setBusy(false);
        state.UploadCancelled = false;
        return outcome;
    };

    QString page = BackupPageHeader(FileDateText(QDateTime::currentDateTime()));
    const QStringList entries = m_window.BackupFileList();
    for (int row = 0; row < entries.size(); ++row) {
        m_window.setSelected(row, false);
        pump();
    }
    const QString ftpRoot = m_window.FTPRoot();
    // Each entry is selected in turn, which loads its record and shows it.
    for (int row = 0; row < entries.size(); ++row) {
        m_window.setSelected(row, true);
        BackupFileList_Click(entries.at(row));
        pump();
        page += BackupPageLine(record(), ftpRoot);
    }
    page += QStringLiteral("</body></html>") + CrLf;

    const QString pagePath = backupFolder() + QStringLiteral("/BackupFiles.htm");
    QFile file(pagePath);
    const QByteArray bytes = (page + CrLf).toUtf8();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(bytes) != bytes.size() || !file.flush()) {
        m_context.ui.Message(QStringLiteral("The backup web page could not be written: ") +
                                 file.errorString(),
                             Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return end(BackupOutcome::Failed);
    }
    file.close();

    if (m_window.RunWithoutMenu())
        return end(BackupOutcome::Done);
    const BackupConnection connection = BackupConnect(backupDirectory(), false);
    if (connection != BackupConnection::Connected) {
        m_context.window.cmdDisconnect();
        return end(BackupOutcome::Failed);
    }
    if (!verifyUploadPath(m_context.ftp, backupDirectory())) {
        m_context.ui.Message(
            QStringLiteral("The connection to the upload path has failed. Select to resend."),
            Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        m_window.enableBackups(true);
        return BackupOutcome::WrongPath;
    }
    UploadFileToFTP(m_context, pagePath);
    if (state.skipped()) {
        m_window.showProgressFrame(false);
        m_context.window.cmdDisconnect();
        m_window.enableBackups(true);
        return BackupOutcome::Stopped;
    }
    // The caption is read before the disconnect, which takes the directory away from it.
    const QString label = m_context.window.UploadPath();
    m_context.window.cmdDisconnect();
    const QString pointer =
        ReplaceSpaces(label + QStringLiteral("/BackupFiles.htm"), QStringLiteral("_"));
    m_window.setPagePointer(pointer);
    CopyPointer(m_context.ui, state, pointer, QStringLiteral("Backup files"), QStringLiteral("_"));
    return end(BackupOutcome::Done);
}

void BackupJobs::RemoveThisItemButton()
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    state.UserResponse.clear();
    ui.SetStatusText(QStringLiteral("Starting Backup File Removal"));
    const QString title = QStringLiteral("Delete Files");
    const bool fromList =
        ui.Message(QStringLiteral("Are you sure you want to delete the selected item(s) from the "
                                  "list?"),
                   title, JobUi::Buttons::YesNo, JobUi::Icon::Question,
                   JobUi::Answer::No) == JobUi::Answer::Yes;
    const bool fromSite =
        fromList &&
        ui.Message(QStringLiteral("Are you sure you want to delete the selected items from the "
                                  "uploaded site?"),
                   title, JobUi::Buttons::YesNo, JobUi::Icon::Question,
                   JobUi::Answer::No) == JobUi::Answer::Yes;
    m_window.enableBackups(false);
    m_window.setBusy(true);

    bool go = true;
    if (fromSite && !m_window.RunWithoutMenu())
        go = BackupConnect(backupDirectory(), false) != BackupConnection::NoDirectory;
    if (go && fromList) {
        BackupRecord &current = record();
        const QStringList entries = m_window.BackupFileList();
        for (int row = 0; row < entries.size(); ++row) {
            if (!m_window.isSelected(row))
                continue;
            m_list.ReadBackupRecord(entries.at(row), current);
            const QString kept = current.UploadPath;
            m_list.DeleteBackupRecord(entries.at(row));
            if (!fromSite)
                continue;
            if (m_context.ftp.DeleteFTPFile(RemoteNameOf(kept)))
                ui.Message(QStringLiteral("The files ") + current.Filename +
                               QStringLiteral(" was successfully deleted."),
                           Title, JobUi::Buttons::Ok, JobUi::Icon::Information);
            else
                ui.Message(m_context.ftp.GetLastErrorMessage(), Title, JobUi::Buttons::Ok,
                           JobUi::Icon::Warning);
        }
    }
    FillFileList();
    m_context.window.cmdDisconnect();
    m_window.enableBackups(true);
    m_window.setBusy(false);
}

void BackupJobs::RelocateFileButton(const std::function<QString(const QString &start)> &chooseFile)
{
    BackupStatusView view = m_window.statusView();
    const QString chosen = chooseFile(view.LocationPathOfItem);
    if (chosen.isEmpty())
        return;
    const QString title = QFileInfo(chosen).fileName();
    const QString folder = chosen.left(chosen.size() - title.size());
    view.LocationPathOfItem = folder;
    m_window.showStatus(view);

    BackupRecord &current = record();
    // A name that the list holds already is left alone: the box shows the folder, the record
    // keeps its own.
    if (m_list.ReadBackupRecord(title, current) == 0)
        return;
    current.Filename = title;
    current.LocationPath = WithSlash(folder);
    current.DateModified = FileDateTime(chosen);
    m_list.DeleteBackupRecord(title);
    if (!m_list.AppendBackupRecord(current))
        m_context.ui.Message(QStringLiteral("The backup list could not be written: ") +
                                 m_list.lastError(),
                             Title, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    const QStringList entries = m_window.BackupFileList();
    for (int row = entries.size() - 1; row >= 0; --row) {
        if (m_window.isSelected(row)) {
            BackupFileList_Click(entries.at(row));
            break;
        }
    }
}

void BackupJobs::CopyToTheClipboardButton()
{
    CopyPointer(m_context.ui, m_context.state, m_window.statusView().UploadpathOfItem,
                record().Filename, QStringLiteral("_"));
}
