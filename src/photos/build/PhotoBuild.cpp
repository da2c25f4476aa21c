#include "PhotoBuild.h"

#include "CopyPhotos.h"
#include "Folders.h"
#include "HTMLMake.h"
#include "Helpers.h"
#include "History.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoPage.h"
#include "RecordFile.h"
#include "TransferSteps.h"
#include "cFTP.h"

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");

} // namespace

PhotoBuildJob::PhotoBuildJob(PhotoPage &page, TransferContext &context, PhotoBuildWindow &window)
    : m_page(page), m_context(context), m_window(window), m_options(window.options())
{
}

void PhotoBuildJob::showStep(const QString &status, const QString &stepOf)
{
    m_context.ui.SetStatusText(status);
    m_context.ui.SetStepOf(stepOf);
}

void PhotoBuildJob::yield()
{
    m_context.ui.ProcessEvents();
}

PhotoBuildOutcome PhotoBuildJob::cmdBuildAll()
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    cFTP &ftp = m_context.ftp;
    TransferWindow &transfer = m_context.window;

    state.UserResponse.clear();
    state.UploadCancelled = false;

    if (File3().isEmpty()) {
        ui.Message(QStringLiteral("Images need to be selected before an upload can start."),
                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Information);
        return PhotoBuildOutcome::NoImages;
    }

    // The record as it stood before the prompts. A page without a name yet has no file to go to.
    if (!m_page.FileName.trimmed().isEmpty())
        SaveHistory(m_page);

    const auto finish = [&](PhotoBuildOutcome outcome) {
        if (state.UserResponse != JobState::Skip && outcome != PhotoBuildOutcome::BuiltLocally) {
            m_window.refreshReadyList();
            m_window.DoCleanup();
        }
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        return outcome;
    };

    if (!PrepareFile(true))
        return finish(PhotoBuildOutcome::Skipped);

    m_window.setBusy(true);
    m_window.showProgressFrame(true);
    showStep(QStringLiteral("Saving Information"));
    yield();
    if (!m_page.FileName.trimmed().isEmpty())
        SaveHistory(m_page);
    m_window.refreshHistoryList();

    showStep(QStringLiteral("Building Locally"));
    yield();
    BuildLocalPhoto();
    m_window.refreshHistoryList();

    JobConnectOptions connect;
    connect.runWithoutConnections = m_window.runWithoutConnections();
    connect.ftpRoot = m_options.FTPRoot;
    connect.clientRoot = ReplaceSpaces(m_options.ClientRoot, QStringLiteral("_"));
    QString failure;
    switch (ConnectForJob(m_context, connect, &failure)) {
    case JobConnection::StayLocal:
        m_window.shapeEvent(0);
        return finish(PhotoBuildOutcome::BuiltLocally);
    case JobConnection::Failed:
        m_window.refreshHistoryList();
        m_window.refreshReadyList();
        transfer.cmdDisconnect();
        ui.SetClipboard(new QMimeData);
        FailureText = failure;
        ui.Message(failure, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        return PhotoBuildOutcome::Failed;
    case JobConnection::NoClientRoot: {
        const cDirItem *item = ftp.Directory().Item(connect.clientRoot.trimmed());
        failureBranch(item && !item->isDirectory()
                          ? QLatin1Char('"') + connect.clientRoot.trimmed() +
                                QStringLiteral("\" on the web space is a file, not a directory")
                          : ftp.GetLastErrorMessage());
        return PhotoBuildOutcome::Failed;
    }
    case JobConnection::Connected:
        break;
    }
    afterConnect();

    showStep(QStringLiteral("Verifing Path"));
    yield();
    transfer.ReloadFTPList();
    const cDirItem *photos = ftp.Directory().Item(QStringLiteral("Photos"));
    m_photosIsFile = photos && !photos->isDirectory();
    const bool photosListed = photos != nullptr;
    if (!EnsureFTPDirectory(m_context, QStringLiteral("Photos"))) {
        failureBranch(m_photosIsFile
                          ? QStringLiteral("\"Photos\" on the web space is a file, not a directory")
                          : ftp.GetLastErrorMessage());
        return PhotoBuildOutcome::Failed;
    }
    if (!photosListed)
        ui.SetStatusText(QStringLiteral("Creating a directory"));
    enterPageFolder();

    if (!verifyUploadPath(ftp, QStringLiteral("Photos/") + PageName)) {
        ui.Message(QStringLiteral("The connection to the upload path has failed. Select the "
                                  "Rebuild option and the History file and resend."),
                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        transfer.cmdDisconnect();
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        return PhotoBuildOutcome::WrongPath;
    }

    showStep(QStringLiteral("Sending Files"));
    yield();
    UploadToFTP();
    if (state.UploadCancelled || state.UserResponse == JobState::Skip) {
        m_window.setBusy(false);
        m_window.showProgressFrame(false);
        transfer.cmdDisconnect();
        return PhotoBuildOutcome::Cancelled;
    }

    // The caption names the page's folder only while the session stands in it.
    const QString pageFolder = transfer.UploadPath();
    showStep(QStringLiteral("Disconnecting"));
    yield();
    transfer.cmdDisconnect();
    ui.SetClipboard(new QMimeData);
    if (state.UserResponse != JobState::Skip) {
        transfer.cmdDisconnect();
        Pointer = CopyPointer(ui, state, pageFolder + QStringLiteral("/Photos.htm"), QString(),
                              QStringLiteral("_"));
    }

    // The working copies go; the pictures in their source folders stay.
    m_window.refreshHistoryList();
    m_window.refreshReadyList();
    for (const QString &row : File3())
        DoKill(m_options.ChoosenUploadPath + QLatin1Char('/') + row);
    m_window.shapeEvent(0);
    return finish(PhotoBuildOutcome::Sent);
}

void PhotoBuildJob::afterConnect()
{
    const FtpAccount account = m_context.window.account();
    m_window.setCaption(QStringLiteral("Connected to ") + account.server + QStringLiteral(" as ") +
                        account.user + QStringLiteral(" at ") +
                        FileDateText(QDateTime::currentDateTime()));
}

void PhotoBuildJob::failureBranch(const QString &reason)
{
    m_window.refreshHistoryList();
    m_window.refreshReadyList();
    m_context.window.cmdDisconnect();
    m_context.ui.SetClipboard(new QMimeData);
    FailureText = QStringLiteral("failed to connect, retry. (") + reason + QLatin1Char(')');
    m_context.ui.Message(FailureText, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    m_window.setBusy(false);
    m_window.showProgressFrame(false);
}

// Steps 13 and 14 of a run: the page's own folder under "Photos". A folder that is there
// already answers 550, which is how a page sent again finds its old folder.
bool PhotoBuildJob::enterPageFolder()
{
    if (PageName.isEmpty())
        return false;
    cFTP &ftp = m_context.ftp;
    if (!ftp.CreateFTPDirectory(PageName)) {
        const QString error = ftp.GetLastErrorMessage();
        if (!error.startsWith(QLatin1String("550")))
            m_context.ui.Message(error, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    }
    m_context.window.ReloadFTPList();
    enterListed(PageName);
    return true;
}

void PhotoBuildJob::enterListed(const QString &name)
{
    const cDirItem *item = m_context.ftp.Directory().Item(name);
    if (!item || !item->isDirectory())
        return;
    if (!m_context.ftp.SetFTPDirectory(name))
        return;
    m_context.window.ReloadFTPList();
    m_context.window.showUploadPath(m_context.ftp.CurrentDirectory());
}

bool PhotoBuildJob::PhotoPreviewButton()
{
    JobState &state = m_context.state;
    state.UserResponse.clear();
    state.UploadCancelled = false;

    PageName = QStringLiteral("HTML");
    ImageRoot = Folders::PhotosFolder();
    if (!PrepareFile(false)) {
        m_window.showProgressFrame(false);
        return false;
    }
    BuildLocalPhoto();

    const QString keptName = PageName;
    const QString keptRoot = ImageRoot;
    const QString keptTitle = PageTitle;
    PageName = QStringLiteral("HTML");
    ImageRoot = Folders::PhotosFolder();

    // The preview lies with its pictures in one folder, emptied of the last preview first.
    const QString preview = Folders::PhotosHtmlFolder();
    QDir().mkpath(preview);
    for (const QString &name : QDir(preview).entryList(QDir::Files))
        DoKill(preview + QLatin1Char('/') + name);
    CopyPhotosInput input;
    input.ChoosenUploadPath = m_options.ChoosenUploadPath;
    input.My_resize_0 = m_options.My_resize_0;
    input.My_resize_1 = m_options.My_resize_1;
    input.threads = m_options.sizingThreads;
    input.jpeg = JpegOptionsFor(m_options.JpegQuality);
    const bool copied = CopyPhotos(preview, false, input, m_page, m_context.ui, state);
    m_window.showProgressFrame(false);
    if (!copied && state.skipped()) {
        PageName = keptName;
        ImageRoot = keptRoot;
        return false;
    }

    PageTitle = QStringLiteral("(Preview of) ") + m_page.Title;
    PageGroupInfo = m_page.GroupInfo;
    BuildLocalPhoto();

    const QString page = preview + QStringLiteral("/Photos.htm");
    m_context.state.CurrentPointer = page;
    // A page that can't be opened is told by the opener itself.
    m_context.ui.OpenUrl(QUrl::fromLocalFile(page));

    PageName = keptName;
    ImageRoot = keptRoot;
    PageTitle = keptTitle;
    return true;
}
