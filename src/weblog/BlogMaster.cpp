#include "BlogMaster.h"

#include "Folders.h"
#include "HTMLMake.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TemplateState.h"
#include "TemplateWalker.h"
#include "TransferSteps.h"
#include "cFTP.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QSaveFile>
#include <QTextStream>

using namespace BuildBlog;

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

} // namespace

QString MasterPagePath()
{
    return BlogRoot() + QStringLiteral("/MainPage.htm");
}

int CopyMasterPointers(const QStringList &names, const QString &mainFileName)
{
    if (mainFileName.isEmpty())
        return 0;
    EnsureBlogFolders(mainFileName);
    int copied = 0;
    for (const QString &name : names) {
        const QString source = Folders::MasterPointerFolder() + QLatin1Char('/') + name;
        const QString target =
            WebLogFolder(mainFileName) + QStringLiteral("/Pointers/") + QFileInfo(name).fileName();
        if (!QFileInfo(source).isFile())
            continue;
        QFile::remove(target);
        if (QFile::copy(source, target))
            ++copied;
    }
    return copied;
}

QStringList MasterPointerList()
{
    return BlogFileList(Folders::MasterPointerFolder(), QStringLiteral("*.ptr"));
}

BlogMasterJob::BlogMasterJob(TransferContext &context, BlogBuildWindow &window)
    : m_context(context), m_window(window), m_options(window.options())
{
}

MasterOutcome BlogMasterJob::BuildMasterPage(const QString &title, const QStringList &chosen)
{
    MasterTitle = title;
    QSaveFile file(MasterPagePath());
    if (!file.open(QIODevice::WriteOnly)) {
        message = QStringLiteral("The page %1 can't be written: %2")
                      .arg(MasterPagePath(), file.errorString());
        return MasterOutcome::NotBuilt;
    }
    QTextStream page(&file);
    page.setEncoding(QStringConverter::Utf8);
    TemplateState state;
    state.MasterTitle = MasterTitle;
    state.MasterLinkFile = QStringLiteral("Web_Log.htm");
    state.BlogDirName = m_options.pages.BlogDirName;
    state.txtWebSite = m_options.pages.txtWebSite;
    state.ClientRoot = m_options.pages.ClientRoot;

    const auto walk = [&](const QString &name) {
        const QString path = FindTemplateFile(BlogRoot(), name);
        if (!QFileInfo(path).isFile()) {
            message =
                QStringLiteral("The Web Log template %1 is missing from %2.").arg(name, BlogRoot());
            return false;
        }
        FillTemplateFile(path, page, state);
        return true;
    };
    if (!walk(QStringLiteral("MasterTop.txt"))) {
        file.cancelWriting();
        return MasterOutcome::NotBuilt;
    }
    BlogRecords records;
    for (const QString &entry : chosen) {
        ClearBlogMain(records);
        records.main.FileName = EntryName(entry);
        LoadBlogMain(records);
        const QString name = records.main.FileName;
        state.CurrentPageName = ReplaceSpaces(name, QStringLiteral("_"));
        state.blogPage = {records.main.FileName,     records.main.MainTitle,
                          records.main.TitleColor,   records.main.BackgroundColor,
                          records.main.SubTextColor, records.main.FontType,
                          records.main.MainDate,     records.main.DirectorySavedTo};
        // A Web Log without a title shows its name between dashes.
        if (state.blogPage.MainTitle.isEmpty())
            state.blogPage.MainTitle = QLatin1Char('-') + name + QLatin1Char('-');
        if (!walk(QStringLiteral("MasterBody.txt"))) {
            file.cancelWriting();
            return MasterOutcome::NotBuilt;
        }
    }
    if (chosen.isEmpty()) {
        file.cancelWriting();
        return MasterOutcome::NothingChosen;
    }
    if (!walk(QStringLiteral("MasterEnd.txt"))) {
        file.cancelWriting();
        return MasterOutcome::NotBuilt;
    }
    page.flush();
    if (!file.commit()) {
        message = QStringLiteral("The page %1 can't be written: %2")
                      .arg(MasterPagePath(), file.errorString());
        return MasterOutcome::NotBuilt;
    }
    return MasterOutcome::BuiltLocally;
}

MasterOutcome BlogMasterJob::BuildMasterBlogButton(const QStringList &entries,
                                                   const QStringList &chosen)
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    // A cancelled prompt leaves "!!Skip!!", which goes on as the title.
    QString title = AskUser(ui, state, QStringLiteral("Enter a title for this page"),
                            QStringLiteral("All Of My Pages"), QStringLiteral("Hide"));
    if (title == JobState::Blank)
        title.clear();
    MasterTitle = title;
    if (title.trimmed().isEmpty() || entries.isEmpty())
        return MasterOutcome::NoTitle;

    const MasterOutcome built = BuildMasterPage(title, chosen);
    if (built == MasterOutcome::NothingChosen) {
        ui.Message(QStringLiteral("Need to select the items to put on this page."), Tarnwick,
                   JobUi::Buttons::Ok, JobUi::Icon::Information);
        return built;
    }
    if (built == MasterOutcome::NotBuilt) {
        ui.Message(message + QStringLiteral(" The master page of the last build stays."), Tarnwick,
                   JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return built;
    }
    if (m_window.runWithoutConnections())
        return MasterOutcome::BuiltLocally;

    state.UserResponse.clear();
    state.UploadCancelled = false;
    cFTP &ftp = m_context.ftp;
    TransferWindow &transfer = m_context.window;
    const FtpAccount account = transfer.account();
    m_window.showProgressFrame(true);
    m_window.setBusy(true);
    const auto finish = [&](MasterOutcome outcome) {
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        return outcome;
    };
    ui.SetStatusText(QStringLiteral("Connecting to Website"));
    ui.SetStepOf(QString());
    if (!ftp.OpenConnection(account.server, account.user, account.password)) {
        ui.Message(QStringLiteral("failed to connect, retry. (") + ftp.GetLastErrorMessage() +
                       QLatin1Char(')'),
                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return finish(MasterOutcome::NotConnected);
    }
    ftp.SetFTPDirectory(QStringLiteral("/"));
    transfer.ReloadFTPList();
    if (!m_options.FTPRoot.trimmed().isEmpty())
        ftp.SetFTPDirectory(m_options.FTPRoot.trimmed());
    m_window.setCaption(QStringLiteral("Connected to ") + account.server + QStringLiteral(" as ") +
                        account.user + QStringLiteral(" at ") +
                        FileDateText(QDateTime::currentDateTime()));
    SaveSetting(SettingKey::Server, account.server);
    SaveSetting(SettingKey::User, account.user);
    SaveSetting(SettingKey::Password, account.password);

    const auto failed = [&] {
        transfer.cmdDisconnect();
        return finish(MasterOutcome::Failed);
    };
    const QString clientRoot =
        ReplaceSpaces(m_options.pages.ClientRoot.trimmed(), QStringLiteral("_"));
    transfer.ReloadFTPList();
    if (!clientRoot.isEmpty() && !EnsureFTPDirectory(m_context, clientRoot))
        return failed();
    const QString blogDirName = ReplaceSpaces(m_options.pages.BlogDirName, QStringLiteral("_"));
    if (!EnsureFTPDirectory(m_context, blogDirName))
        return failed();
    if (!verifyUploadPath(ftp, blogDirName)) {
        ui.Message(UploadPathFailedMessage, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return failed();
    }
    ui.SetStatusText(QStringLiteral("Uploading to Website"));
    ftp.DeleteFTPFile(QStringLiteral("MainPage.htm"));
    UploadFileToFTP(m_context, MasterPagePath());
    if (state.skipped() || state.UploadCancelled) {
        m_window.showProgressFrame(false);
        transfer.cmdDisconnect();
        finish(MasterOutcome::Cancelled);
        state.UserResponse.clear();
        return MasterOutcome::Cancelled;
    }
    ui.ProcessEvents();
    const QString folderAddress = transfer.UploadPath();
    transfer.cmdDisconnect();
    finish(MasterOutcome::Sent);
    Pointer = CopyPointer(ui, state, folderAddress + QStringLiteral("/MainPage.htm"),
                          QStringLiteral("View this page"), QStringLiteral("_"));
    return MasterOutcome::Sent;
}
