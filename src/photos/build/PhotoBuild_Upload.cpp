#include "PhotoBuild.h"

#include "Helpers.h"
#include "History.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoPage.h"
#include "RecordFile.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TransferSteps.h"
#include "cFTP.h"

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

bool isMadeCopy(const QString &row)
{
    return row.startsWith(QLatin1String("Sml_")) || row.startsWith(QLatin1String("Lrg_")) ||
           row.endsWith(QLatin1String(".htm"));
}

} // namespace

bool PhotoBuildJob::UploadToFTP()
{
    JobState &state = m_context.state;
    TransferWindow &transfer = m_context.window;
    const QStringList rows = File3();
    const int total = 2 * int(rows.size()) + 2;
    int section = 1;
    const auto showSection = [&] {
        m_context.ui.SetStepOf(QStringLiteral("Currently loading section ") +
                               QString::number(section) + QStringLiteral(" of ") +
                               QString::number(total));
    };
    const auto cancelled = [&] {
        if (!state.UploadCancelled)
            return false;
        m_window.showProgressFrame(false);
        transfer.cmdDisconnect();
        return true;
    };

    showSection();
    m_context.ui.SetStatusText(QStringLiteral("Start Upload"));
    yield();

    for (const QString &row : rows) {
        const int record = FindPhoto(m_page, RemoveGroupNumber(row), GetGroupNumber(row));
        if (PhotoPage::isRow(record) && m_page.PhotoSkip[record])
            continue;
        if (isMadeCopy(row))
            continue;
        SmlName = QStringLiteral("Sml_") + row;
        LrgName = QStringLiteral("Lrg_") + row;
        SmlPath = ImageRoot + QLatin1Char('/') + SmlName;
        LrgPath = ImageRoot + QLatin1Char('/') + LrgName;
        if (!state.BackgroundRequested)
            yield();

        ++section;
        showSection();
        m_context.ui.SetStatusText(QStringLiteral("Uploading the large copy of file: ") + row);
        yield();
        if (cancelled())
            return false;
        ++section;
        showSection();
        m_context.ui.SetStatusText(QStringLiteral("Uploading the thumbnail copy of file: ") + row);
        yield();

        if (!verifyUploadPath(m_context.ftp, QStringLiteral("Photos/") + PageName))
            reconnect();

        // A file that fails has shown the transfer's error form; the run goes on with the next.
        UploadFileToFTP(m_context, LrgPath);
        if (cancelled())
            return false;
        yield();
        UploadFileToFTP(m_context, SmlPath);
        if (cancelled())
            return false;
        yield();

        FTP_pointer += transfer.UploadPath() + QLatin1Char('/') + SmlName + QStringLiteral("\r\n");
        m_window.setThumbnailPointers(FTP_pointer);
        m_window.showThumbnail(SmlPath);
        // Made copies go as soon as they are up, so the disk holds little more than the list.
        DoKill(LrgPath);
        DoKill(SmlPath);
    }

    ++section;
    showSection();
    m_context.ui.SetStatusText(QStringLiteral("Uploading the webpage file: ") + PageName);
    yield();
    if (!verifyUploadPath(m_context.ftp, QStringLiteral("Photos/") + PageName))
        reconnect();
    UploadFileToFTP(m_context,
                    ImageRoot + QLatin1Char('/') + PageName + QStringLiteral("/Photos.htm"));
    if (state.UploadCancelled) {
        m_window.showProgressFrame(false);
        transfer.cmdDisconnect();
        return false;
    }
    FTP_page_pointer =
        ReplaceSpaces(transfer.UploadPath() + QStringLiteral("/Photos.htm"), QStringLiteral("_"));
    m_window.setPagePointer(FTP_page_pointer);
    showSection();
    m_context.ui.SetStatusText(QStringLiteral("Upload complete!"));
    yield();
    return true;
}

// The session lost its place (a dropped connection): log in again and go back to the page's
// folder. Each failed login is told; the sends that follow then fail on their own.
bool PhotoBuildJob::reconnect()
{
    cFTP &ftp = m_context.ftp;
    TransferWindow &transfer = m_context.window;
    transfer.cmdDisconnect();
    const FtpAccount account = transfer.account();
    if (!ftp.OpenConnection(account.server, account.user, account.password)) {
        m_context.ui.Message(QStringLiteral("There was a error with reconnecting to the server."),
                             Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return false;
    }
    ftp.SetFTPDirectory(QStringLiteral("/"));
    transfer.ReloadFTPList();
    if (!m_options.FTPRoot.trimmed().isEmpty())
        ftp.SetFTPDirectory(m_options.FTPRoot.trimmed());
    afterConnect();
    SaveSetting(SettingKey::Server, account.server);
    SaveSetting(SettingKey::User, account.user);
    SaveSetting(SettingKey::Password, account.password);
    ReloadPath(QStringLiteral("Photos"));
    enterPageFolder();
    return true;
}

bool PhotoBuildJob::ReloadPath(const QString &folder)
{
    cFTP &ftp = m_context.ftp;
    TransferWindow &transfer = m_context.window;
    // Ensures one directory below the current one and goes in; false when the name is a file
    // or can't be made.
    const auto ensure = [&](const QString &name) {
        transfer.ReloadFTPList();
        const cDirItem *item = ftp.Directory().Item(name);
        if (item && !item->isDirectory()) {
            m_context.ui.Message(QStringLiteral("FTP Path is not a directory."), Tarnwick,
                                 JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return false;
        }
        if (!CheckFTPDir(m_context, name))
            return false;
        item = ftp.Directory().Item(name);
        if (!item) {
            if (!ftp.CreateFTPDirectory(name))
                return false;
            transfer.ReloadFTPList();
            m_context.ui.SetStatusText(QStringLiteral("Creating a directory"));
        }
        enterListed(name);
        return true;
    };

    const QString clientRoot = ReplaceSpaces(m_options.ClientRoot.trimmed(), QStringLiteral("_"));
    if (!clientRoot.isEmpty() && !ensure(clientRoot))
        return false;
    if (folder.isEmpty())
        return true;
    return ensure(ReplaceSpaces(folder, QStringLiteral("_")));
}
