#include "BlogBuild.h"

#include "HTMLMake.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TransferSteps.h"
#include "cFTP.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

using namespace BuildBlog;

const QString BlogUploadPattern =
    QStringLiteral("(*.pic *.bmp *.gif *.jpg *.htm)|*.pic;*.bmp;*.gif;*.jpg;*.htm");
const QString UploadPathFailedMessage =
    QStringLiteral("The connection to the upload path has failed. Select to resend.");

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

} // namespace

BlogBuildJob::BlogBuildJob(BlogRecords &records, TransferContext &context, BlogBuildWindow &window)
    : m_records(records), m_context(context), m_window(window), m_options(window.options())
{
}

void BlogBuildJob::showStep(const QString &status)
{
    m_context.ui.SetStatusText(status);
    m_context.ui.SetStepOf(QString());
    m_context.ui.ProcessEvents();
}

bool BlogBuildJob::cancelled() const
{
    return m_context.state.skipped() || m_context.state.UploadCancelled;
}

QString BlogBuildJob::uploadPathExpected() const
{
    return QLatin1Char('/') + m_options.pages.BlogDirName + QLatin1Char('/') + BlogFolderName;
}

bool BlogBuildJob::buildPages()
{
    BlogPageBuilder builder(m_records, m_options.pages, m_context.ui, m_context.state);
    BlogFolderName = m_records.main.FileName;
    const BlogPagesResult page = builder.BuildBlogLocally();
    pictureFaults = page.pictureFaults;
    if (!page.uploadPathCaption.isEmpty())
        m_window.setUploadPathCaption(page.uploadPathCaption);
    BlogPagesResult comments;
    if (page.outcome == BlogPagesOutcome::Built) {
        showStep(QStringLiteral("Building Comment Page"));
        comments = builder.BuildBlogCommentsLocally();
    }
    m_window.recordsChanged();
    if (!pictureFaults.isEmpty())
        m_context.ui.Message(
            QStringLiteral("These pictures could not be put on the page; their sections are on "
                           "it without them:\n\n") +
                pictureFaults.join(QLatin1Char('\n')),
            Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    const QString fault =
        page.outcome == BlogPagesOutcome::NotWritten ? page.message : comments.message;
    if (!fault.isEmpty())
        m_context.ui.Message(fault + QStringLiteral(" The pages of the last build stay."), Tarnwick,
                             JobUi::Buttons::Ok, JobUi::Icon::Warning);
    return page.outcome == BlogPagesOutcome::Built && comments.outcome == BlogPagesOutcome::Built;
}

BlogBuildOutcome BlogBuildJob::BlogBuild()
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;

    m_window.showProgressFrame(true);
    showStep(QStringLiteral("Collecting Files and Information"));
    m_options.pages.BlogDirName = ReplaceSpaces(m_options.pages.BlogDirName, QStringLiteral("_"));
    m_window.setBlogDirName(m_options.pages.BlogDirName);
    if (m_records.main.FileName.isEmpty()) {
        ui.Message(QStringLiteral("Select a file to build before starting a build."), Tarnwick,
                   JobUi::Buttons::Ok, JobUi::Icon::Information);
        m_window.showProgressFrame(false);
        return BlogBuildOutcome::NoWebLog;
    }
    ui.SetStatusText(QStringLiteral("Starting Web Log"));
    state.UserResponse.clear();
    state.UploadCancelled = false;
    m_window.setBusy(true);

    const auto endHere = [&](BlogBuildOutcome outcome) {
        m_window.showProgressFrame(false);
        state.UserResponse.clear();
        m_window.setBusy(false);
        return outcome;
    };

    showStep(QStringLiteral("Collecting Files and Information"));
    if (!buildPages())
        return endHere(BlogBuildOutcome::NotBuilt);
    m_records.main.DirectorySavedTo = m_options.pages.BlogDirName;
    SaveBlogMain(m_records);

    ui.SetStatusText(QStringLiteral("Connecting to Website"));
    if (m_window.runWithoutConnections())
        return endHere(BlogBuildOutcome::BuiltLocally);

    const BlogBuildOutcome entered = enterWebLogFolder();
    if (entered != BlogBuildOutcome::Sent) {
        cleanUp();
        return entered;
    }
    const BlogBuildOutcome sent = UploadBlogToFTP();
    if (sent == BlogBuildOutcome::Cancelled) {
        m_window.showProgressFrame(false);
        m_window.setBusy(false);
        state.UserResponse.clear();
        return sent;
    }
    if (sent != BlogBuildOutcome::Sent) {
        cleanUp();
        return sent;
    }

    const QString folderAddress = m_context.window.UploadPath();
    showStep(QStringLiteral("Disconnecting"));
    m_context.window.cmdDisconnect();
    ui.SetClipboard(new QMimeData);
    FTP_page_pointer = folderAddress + QStringLiteral("/Web_Log.htm");
    m_window.showProgressFrame(false);
    m_window.setBusy(false);
    Pointer = CopyPointer(ui, state, FTP_page_pointer, QStringLiteral("View this page"),
                          QStringLiteral("_"));
    state.UserResponse.clear();
    return BlogBuildOutcome::Sent;
}

BlogBuildOutcome BlogBuildJob::enterWebLogFolder()
{
    cFTP &ftp = m_context.ftp;
    TransferWindow &transfer = m_context.window;
    const FtpAccount account = transfer.account();
    if (!ftp.OpenConnection(account.server, account.user, account.password)) {
        m_context.ui.Message(QStringLiteral("failed to connect, retry. (") +
                                 ftp.GetLastErrorMessage() + QLatin1Char(')'),
                             Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return BlogBuildOutcome::NotConnected;
    }
    ftp.SetFTPDirectory(QStringLiteral("/"));
    transfer.ReloadFTPList();
    if (!m_options.FTPRoot.trimmed().isEmpty())
        ftp.SetFTPDirectory(m_options.FTPRoot.trimmed());
    m_window.setCaption(QStringLiteral("Connected to ") + account.server + QStringLiteral(" as ") +
                        account.user + QStringLiteral(" at ") +
                        FileDateText(QDateTime::currentDateTime()));

    const QString clientRoot =
        ReplaceSpaces(m_options.pages.ClientRoot.trimmed(), QStringLiteral("_"));
    if (!clientRoot.isEmpty()) {
        transfer.ReloadFTPList();
        if (!EnsureFTPDirectory(m_context, clientRoot))
            return BlogBuildOutcome::Failed;
    }

    showStep(QStringLiteral("Creating New Directory"));
    transfer.ReloadFTPList();
    SaveSetting(SettingKey::Server, account.server);
    SaveSetting(SettingKey::User, account.user);
    SaveSetting(SettingKey::Password, account.password);
    if (!EnsureFTPDirectory(m_context, m_options.pages.BlogDirName))
        return BlogBuildOutcome::Failed;

    BlogFolderName = ReplaceSpaces(m_records.main.FileName, QStringLiteral("_"));
    if (!BlogFolderName.isEmpty() && !EnsureFTPDirectory(m_context, BlogFolderName))
        return BlogBuildOutcome::Failed;

    showStep(QStringLiteral("Verifying Path"));
    for (int check = 0; check < 2; ++check) {
        if (!verifyUploadPath(ftp, uploadPathExpected())) {
            m_context.ui.Message(UploadPathFailedMessage, Tarnwick, JobUi::Buttons::Ok,
                                 JobUi::Icon::Warning);
            return BlogBuildOutcome::Failed;
        }
    }
    return BlogBuildOutcome::Sent;
}

QStringList BlogBuildJob::uploadFiles() const
{
    const QString folder = WebLogFolder(m_records.main.FileName);
    QStringList files = BlogFileList(folder, BlogUploadPattern);
    // The feed goes with the page, so that its address resolves as soon as the page does.
    if (QFileInfo(folder + QStringLiteral("/feed.xml")).isFile())
        files.append(QStringLiteral("feed.xml"));
    return files;
}

BlogBuildOutcome BlogBuildJob::UploadBlogToFTP()
{
    showStep(QStringLiteral("Uploading to Website"));
    m_window.showProgressFrame(true);
    m_context.ui.SetStatusText(QStringLiteral("Uploading files"));
    if (BlogFolderName.isEmpty() || BlogFolderName == m_records.main.FileName)
        BlogFolderName = ReplaceSpaces(m_records.main.FileName, QStringLiteral("_"));
    const QString folder = WebLogFolder(m_records.main.FileName);
    const QStringList files = uploadFiles();
    m_window.showUploadFiles(files);
    BlogBuildOutcome outcome = BlogBuildOutcome::Sent;
    for (int i = 0; i < files.size(); ++i) {
        m_window.selectUploadFile(i);
        m_context.ui.SetStepOf(QString::number(i + 1) + QStringLiteral(" of ") +
                               QString::number(files.size()));
        if (!verifyUploadPath(m_context.ftp, uploadPathExpected())) {
            m_context.ui.Message(UploadPathFailedMessage, Tarnwick, JobUi::Buttons::Ok,
                                 JobUi::Icon::Warning);
            outcome = BlogBuildOutcome::Failed;
            break;
        }
        // A cancel is looked at between files: before the next one and after each.
        if (!cancelled()) {
            // RemoveFTPFile: the old copy goes first, so a send that fails leaves none behind.
            m_context.ftp.DeleteFTPFile(files.at(i));
            UploadFileToFTP(m_context, folder + QLatin1Char('/') + files.at(i));
        }
        if (cancelled()) {
            m_window.showProgressFrame(false);
            m_context.window.cmdDisconnect();
            outcome = BlogBuildOutcome::Cancelled;
            break;
        }
        m_context.ui.ProcessEvents();
    }
    m_window.showSections();
    return outcome;
}

void BlogBuildJob::cleanUp()
{
    m_context.state.UserResponse.clear();
    m_window.setBusy(false);
    m_window.showProgressFrame(false);
    m_context.window.cmdDisconnect();
    m_context.ui.SetClipboard(new QMimeData);
}

bool BlogBuildJob::BlogPreviewButton()
{
    JobUi &ui = m_context.ui;
    m_window.showProgressFrame(true);
    showStep(QStringLiteral("Collecting Files and Information"));
    if (m_records.main.FileName.isEmpty()) {
        ui.Message(QStringLiteral("You need to select or create a page to view."), Tarnwick,
                   JobUi::Buttons::Ok, JobUi::Icon::Information);
        m_window.showProgressFrame(false);
        return false;
    }
    m_context.state.UserResponse.clear();
    m_context.state.UploadCancelled = false;
    const bool built = buildPages();
    m_window.showProgressFrame(false);
    if (!built)
        return false;
    const QString page = WebLogFolder(m_records.main.FileName) + QStringLiteral("/Web_Log.htm");
    // A page that can't be opened is told by the opener itself.
    ui.OpenUrl(QUrl::fromLocalFile(page));
    return true;
}
