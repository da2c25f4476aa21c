#include "PortalBuild.h"

#include "Folders.h"
#include "HTMLMake.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TemplateState.h"
#include "TemplateWalker.h"
#include "TransferSteps.h"
#include "TransferUi.h"
#include "cFTP.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeData>
#include <QSaveFile>
#include <QTextStream>
#include <QUrl>

#include <array>
#include <cmath>

using namespace BuildStartup;

const QStringList PortalTemplates = {
    QStringLiteral("Top.txt"),          QStringLiteral("BodySub2Cat.txt"),
    QStringLiteral("BodySub3Link.txt"), QStringLiteral("BodySub1.txt"),
    QStringLiteral("BodySub4.txt"),     QStringLiteral("End.txt")};

const QString PortalUploadQuestion = QStringLiteral(
    "Do you want to upload this Portal page to the FTP site or keep it on your local PC?\n\n"
    "To upload to the FTP site, click Yes.\n\n"
    "To keep the page on the local PC, click No. (The Pointer is provided to the local page.)");

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");
const QString UploadPathFailed =
    QStringLiteral("The connection to the upload path has failed. Select to resend.");

enum TemplateIndex
{
    Top,
    Category,
    Link,
    ColumnBreak,
    Body4,
    End
};

// The six templates read once each; a walk reads from the copy in memory.
struct PortalTemplateTexts
{
    std::array<QString, 6> text;
    QString missing;

    explicit PortalTemplateTexts(const QString &folder)
    {
        for (int i = 0; i < 6; ++i) {
            QFile file(FindTemplateFile(folder, PortalTemplates.at(i)));
            if (!file.open(QIODevice::ReadOnly)) {
                missing = PortalTemplates.at(i);
                return;
            }
            text[i] = QString::fromUtf8(file.readAll());
        }
    }

    void walk(int which, QTextStream &page, TemplateState &state) const
    {
        QString copy = text[which];
        QTextStream in(&copy, QIODevice::ReadOnly);
        FillTemplate(in, page, state);
    }
};

} // namespace

PortalLayout PortalLayoutFor(int rows)
{
    PortalLayout layout;
    layout.rows = rows;
    layout.rowsPerColumn = 20;
    layout.PortalColumns = static_cast<int>(std::floor(1.0 + rows / 20.0));
    if (layout.PortalColumns > 2) {
        layout.PortalColumns = 2;
        layout.rowsPerColumn = static_cast<int>(std::floor(1.0 + rows / 2.0));
    }
    return layout;
}

PortalPageResult BuildPortalPage(const QString &folder, TemplateState &state, PageLink &current,
                                 const std::function<void(int, int)> &follow)
{
    PortalPageResult result;
    const QStringList categories = CategoryFiles();
    result.categories = int(categories.size());
    if (categories.isEmpty()) {
        result.message = QStringLiteral("There is no Category to build.");
        return result;
    }

    // First pass: the rows, one for each Category and one for each of its links.
    std::vector<QStringList> links;
    links.reserve(categories.size());
    int rows = 0;
    for (int c = 0; c < categories.size(); ++c) {
        if (follow)
            follow(c, -1);
        links.push_back(PageLinkFiles(CategoryFolder(categories.at(c))));
        rows += 1 + int(links.back().size());
    }
    result.layout = PortalLayoutFor(rows);

    const PortalTemplateTexts templates(folder);
    if (!templates.missing.isEmpty()) {
        result.message = QStringLiteral("The Portal page was not built: the template ") +
                         templates.missing + QStringLiteral(" is missing from ") + folder +
                         QLatin1Char('.');
        return result;
    }

    // The page replaces the old one only once it is whole.
    QSaveFile file(folder + QStringLiteral("/Portal.htm"));
    if (!file.open(QIODevice::WriteOnly)) {
        result.message =
            QStringLiteral("The Portal page could not be written: ") + file.errorString();
        return result;
    }
    QTextStream page(&file);
    state.PortalColumns = result.layout.PortalColumns;
    state.File11Selected.clear();
    templates.walk(Top, page, state);

    int rowCount = 0;
    for (int c = 0; c < categories.size(); ++c) {
        if (follow)
            follow(c, -1);
        state.File11Selected = categories.at(c);
        templates.walk(Category, page, state);
        ++rowCount;
        const QString categoryFolder = CategoryFolder(categories.at(c));
        const QStringList &names = links[c];
        for (int l = 0; l < names.size(); ++l) {
            const QString &name = names.at(l);
            const LoadResult loaded =
                LoadPageLink(PageLinkPath(categoryFolder, name.left(name.size() - 4)), current);
            if (follow)
                follow(c, l);
            if (!loaded.ok) {
                result.unreadLinks << CategoryName(categories.at(c)) + QLatin1Char('/') + name;
                continue;
            }
            // The page shows the name as it was typed: the escapes of the record undone.
            state.link.LinkName = current.LinkName.isEmpty() ? name.left(name.size() - 4)
                                                             : DecodeRecordText(current.LinkName);
            state.link.URLName = current.URLName;
            state.link.Bullet = QString::number(current.Bullet);
            templates.walk(Link, page, state);
            ++result.links;
        }
        rowCount += int(names.size());
        if (rowCount > result.layout.rowsPerColumn) {
            rowCount = 0;
            templates.walk(ColumnBreak, page, state);
        }
    }
    templates.walk(Body4, page, state);
    templates.walk(End, page, state);
    for (int i = 0; i < 3; ++i)
        page << "\n\n";
    page.flush();
    if (page.status() != QTextStream::Ok || !file.commit()) {
        result.message =
            QStringLiteral("The Portal page could not be written: ") + file.errorString();
        return result;
    }
    result.written = true;
    return result;
}

PortalBuildJob::PortalBuildJob(TransferContext &context, PortalBuildWindow &window,
                               PageLink &current)
    : m_context(context), m_window(window), m_current(current)
{
}

bool PortalBuildJob::cancelled() const
{
    return m_context.state.skipped() || m_context.state.UploadCancelled;
}

PortalPageResult PortalBuildJob::buildPage()
{
    TemplateState state;
    const auto follow = [this](int category, int link) {
        if (link < 0)
            m_window.selectCategory(category);
        else
            m_window.selectPageLink(link);
        m_context.ui.ProcessEvents();
    };
    page = BuildPortalPage(Folders::StartupFolder(), state, m_current, follow);
    return page;
}

PortalOutcome PortalBuildJob::BuildStartupButton()
{
    JobUi &ui = m_context.ui;
    m_context.state.UploadCancelled = false;
    m_context.state.UserResponse.clear();
    if (CategoryFiles().isEmpty())
        return PortalOutcome::NoCategories;
    m_window.setBusy(true);
    m_window.showProgressFrame(true);
    ui.SetStatusText(QStringLiteral("Building Portal Page"));
    ui.SetStepOf(QString());
    buildPage();
    if (!page.written) {
        cleanUp();
        ui.Message(page.message, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return PortalOutcome::NotBuilt;
    }

    const QString local = Folders::StartupFolder() + QStringLiteral("/Portal.htm");
    m_window.setBusy(false);
    const JobUi::Answer answer =
        ui.Message(PortalUploadQuestion, Tarnwick, JobUi::Buttons::YesNo, JobUi::Icon::Question);
    if (answer != JobUi::Answer::Yes) {
        finishWithPointer(local);
        return PortalOutcome::KeptLocal;
    }
    if (m_window.runWithoutConnections()) {
        finishWithPointer(QString());
        return PortalOutcome::KeptLocal;
    }
    m_window.setBusy(true);

    JobConnectOptions options;
    options.ftpRoot = m_window.FTPRoot();
    options.clientRoot = ReplaceSpaces(m_window.ClientRoot().trimmed(), QStringLiteral("_"));
    QString failure;
    const JobConnection connection = ConnectForJob(m_context, options, &failure);
    if (connection == JobConnection::Failed) {
        cleanUp();
        ui.Message(failure, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return PortalOutcome::NotConnected;
    }
    if (connection != JobConnection::Connected) {
        cleanUp();
        return PortalOutcome::Failed;
    }
    const JobDirectory directory =
        EnterJobDirectories(m_context, {QStringLiteral("Portal")}, QStringLiteral("Portal"));
    if (directory != JobDirectory::Entered) {
        if (directory == JobDirectory::WrongPath)
            ui.Message(UploadPathFailed, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        cleanUp();
        return PortalOutcome::Failed;
    }

    const QString folderAddress = m_context.window.UploadPath();
    const PortalOutcome sent = UploadStartupPage();
    if (sent == PortalOutcome::Failed) {
        cleanUp();
        return sent;
    }
    ui.ProcessEvents();
    m_context.window.cmdDisconnect();
    ui.SetClipboard(new QMimeData);
    if (!failedFiles.isEmpty())
        ui.Message(QStringLiteral("These files did not reach the web space:\n\n") +
                       failedFiles.join(QLatin1Char('\n')),
                   Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
    if (failedFiles.contains(local)) {
        // No pointer to a page that is not there.
        cleanUp();
        return PortalOutcome::Failed;
    }
    FTP_page_pointer = folderAddress + QStringLiteral("/Portal.htm");
    finishWithPointer(FTP_page_pointer);
    return sent;
}

QStringList PortalBuildJob::uploadFiles() const
{
    const QString folder = Folders::StartupFolder();
    QStringList files{folder + QStringLiteral("/Portal.htm"),
                      folder + QStringLiteral("/NewW2.gif")};
    for (int number = 0; number <= LastBullet; ++number)
        files << folder + QStringLiteral("/Arrow") + QString::number(number) +
                     QStringLiteral(".gif");
    const QString logo = GetSetting(SettingKey::LogoPointer, QString());
    if (!logo.trimmed().isEmpty())
        files << QString(logo).replace(QLatin1Char('\\'), QLatin1Char('/'));
    return files;
}

PortalOutcome PortalBuildJob::UploadStartupPage()
{
    JobUi &ui = m_context.ui;
    ui.SetStatusText(QStringLiteral("Uploading to Website"));
    const QStringList files = uploadFiles();
    failedFiles.clear();
    for (int i = 0; i < files.size(); ++i) {
        ui.SetStepOf(QString::number(i + 1) + QStringLiteral(" of ") +
                     QString::number(files.size()));
        if (!verifyUploadPath(m_context.ftp, QStringLiteral("Portal"))) {
            ui.Message(UploadPathFailed, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
            return PortalOutcome::Failed;
        }
        const QString &file = files.at(i);
        if (!QFileInfo(file).isFile() || !UploadFileToFTP(m_context, file)) {
            if (!cancelled())
                failedFiles << file;
        }
        ui.ProcessEvents();
        if (cancelled()) {
            m_window.showProgressFrame(false);
            m_context.window.cmdDisconnect();
            if (i == 0)
                failedFiles << file;
            return PortalOutcome::Cancelled;
        }
    }
    return PortalOutcome::Sent;
}

PortalOutcome PortalBuildJob::finishWithPointer(const QString &path)
{
    JobUi &ui = m_context.ui;
    Pointer = MakePointer(path, QStringLiteral("_"));
    ui.SetClipboard(new QMimeData);
    auto *data = new QMimeData;
    data->setText(Pointer);
    ui.SetClipboard(data);
    m_context.state.CurrentPointer = Pointer;
    m_window.setBusy(false);
    ui.Message(QStringLiteral("The pointer, '") + Pointer +
                   QStringLiteral("' has been copied to the clipboard. Use <ctrl> v to paste into "
                                  "your browser home page"),
               Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Information);
    m_window.showProgressFrame(false);
    m_context.state.UserResponse.clear();
    m_window.jobEnded();
    return PortalOutcome::Sent;
}

void PortalBuildJob::cleanUp()
{
    m_context.state.UserResponse.clear();
    m_window.setBusy(false);
    m_window.showProgressFrame(false);
    if (m_context.ftp.IsConnected())
        m_context.window.cmdDisconnect();
    m_window.jobEnded();
}

bool PortalBuildJob::PreviewStartupButton()
{
    m_context.state.UserResponse.clear();
    m_context.state.UploadCancelled = false;
    if (CategoryFiles().isEmpty())
        return false;
    m_window.setBusy(true);
    m_window.showProgressFrame(true);
    m_context.ui.SetStatusText(QStringLiteral("Building Portal Page"));
    buildPage();
    m_window.setBusy(false);
    m_window.showProgressFrame(false);
    if (!page.written) {
        m_context.ui.Message(page.message, Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return false;
    }
    m_context.ui.ProcessEvents();
    return m_context.ui.OpenUrl(
        QUrl::fromLocalFile(Folders::StartupFolder() + QStringLiteral("/Portal.htm")));
}
