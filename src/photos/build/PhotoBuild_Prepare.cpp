#include "PhotoBuild.h"

#include "CopyPhotos.h"
#include "Folders.h"
#include "History.h"
#include "JobState.h"
#include "JobUi.h"
#include "PhotoPage.h"
#include "RecordFile.h"
#include "TemplateState.h"
#include "TemplateWalker.h"
#include "TransferSteps.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTextStream>

#include <algorithm>
#include <map>
#include <vector>

namespace {

const QString Tarnwick = QStringLiteral("Tarnwick");
const QString IntroductionPrompt = QStringLiteral("Enter an introduction to the photo group...");

} // namespace

QString CleanName(const QString &name)
{
    QString text = name;
    // Dots go up to the first one that has exactly three characters behind it.
    qsizetype from = 0;
    while (true) {
        const qsizetype dot = text.indexOf(QLatin1Char('.'), from);
        if (dot < 0 || text.size() - dot - 1 == 3)
            break;
        text.remove(dot, 1);
        from = dot;
    }
    static const QString others = QStringLiteral("><{}][&+'%#@~;:^/\\?*|\"");
    for (const QChar c : others)
        text.remove(c);
    return text;
}

QString DefaultPageName()
{
    return QStringLiteral("Photo") +
           QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyMMddHHmm"));
}

QStringList PhotoBuildJob::File3() const
{
    return ListPictureFiles(m_options.ChoosenUploadPath);
}

bool PhotoBuildJob::PrepareFile(bool ask)
{
    m_window.showProgressFrame(true);
    showStep(QStringLiteral("Collecting Files and Information"));
    yield();
    FTP_page_pointer.clear();
    m_window.setPagePointer(FTP_page_pointer);

    if (!BuildWebTop(ask))
        return false;

    FTP_pointer.clear();
    m_window.setThumbnailPointers(FTP_pointer);
    VerifyImagePath();

    m_context.ui.SetStatusText(QStringLiteral("Prompt for Photo Information is Requested"));
    if (!PromptAllPhotos(ask))
        return false;

    CopyPhotosInput input;
    input.ChoosenUploadPath = m_options.ChoosenUploadPath;
    input.My_resize_0 = m_options.My_resize_0;
    input.My_resize_1 = m_options.My_resize_1;
    input.threads = m_options.sizingThreads;
    input.jpeg = JpegOptionsFor(m_options.JpegQuality);
    return CopyPhotos(ImageRoot, ask, input, m_page, m_context.ui, m_context.state);
}

bool PhotoBuildJob::BuildWebTop(bool ask)
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;

    if (!ask) {
        // The preview asks for the name alone and keeps the page's title and introduction.
        const QString answer = AskUser(
            ui, state,
            QStringLiteral("Enter the name of the webpage(no extention, example: 'Trip to NY May "
                           "2007')..."),
            m_page.FileName, QStringLiteral("Hide"));
        const QString trimmed = answer.trimmed();
        if (trimmed == JobState::Skip) {
            state.UserResponse = JobState::Skip;
            return false;
        }
        if (!trimmed.isEmpty() && trimmed != JobState::Blank)
            PageName = ReplaceSpaces(CleanName(trimmed), QStringLiteral("_"));
        state.UserResponse.clear();
        PageTitle = m_page.Title;
        PageGroupInfo = m_page.GroupInfo;
        return true;
    }

    const QString defaultName = m_page.FileName.isEmpty() ? DefaultPageName() : m_page.FileName;
    QString answer = AskUser(ui, state,
                             QStringLiteral("Enter the name of the webpage") +
                                 QStringLiteral(" (no extention, example: 'Trip to NY May "
                                                "2007')..."),
                             defaultName, QStringLiteral("Hide"));
    if (answer == JobState::Blank)
        answer = defaultName;
    if (answer.trimmed() == JobState::Skip) {
        state.UserResponse = JobState::Skip;
        return false;
    }
    // A name of nothing but characters that CleanName takes leaves the page without a name:
    // the run then finds no page folder on the web space and stops before sending.
    PageName = ReplaceSpaces(CleanName(answer.trimmed()), QStringLiteral("_"));
    m_page.FileName = PageName;

    // The prompts of title and introduction share their rules.
    const auto askText = [&](const QString &question, const QString &current,
                             const QString &fallback, QString &result) {
        const QString shown = current.isEmpty() ? fallback : current;
        const QString reply = AskUser(ui, state, question, shown, QStringLiteral("Hide"));
        if (reply.trimmed() == JobState::Skip) {
            state.UserResponse = JobState::Skip;
            return false;
        }
        result = reply == JobState::Blank ? QString() : reply;
        return true;
    };

    if (m_window.titlePrompt()) {
        QString title;
        if (!askText(QStringLiteral("Enter a title..."), m_page.Title, QStringLiteral("Photos"),
                     title))
            return false;
        PageTitle = title;
    } else {
        PageTitle = m_page.Title.isEmpty() ? QStringLiteral("Photos") : m_page.Title;
    }
    m_page.Title = PageTitle;

    if (m_window.titlePrompt()) {
        QString introduction;
        if (!askText(IntroductionPrompt, m_page.GroupInfo,
                     QStringLiteral("Below are some photos from us......."), introduction))
            return false;
        PageGroupInfo = introduction;
    } else {
        // Without the prompt the introduction is the prompt's own wording.
        PageGroupInfo = IntroductionPrompt;
    }
    m_page.GroupInfo = PageGroupInfo;
    return true;
}

void PhotoBuildJob::VerifyImagePath()
{
    ImageRoot = m_options.ChoosenUploadPath + QStringLiteral("/images");
    if (!QFileInfo(ImageRoot).isDir())
        QDir().mkpath(ImageRoot);
}

bool PhotoBuildJob::PromptAllPhotos(bool ask)
{
    if (!m_window.filePrompt())
        return true;
    JobState &state = m_context.state;
    const QStringList rows = File3();
    const int count = int(rows.size());
    for (int i = 0; i < count; ++i) {
        m_window.selectReadyRow(i, true);
        const QString entry = rows.at(i);
        const int row = FindPhoto(m_page, RemoveGroupNumber(entry), GetGroupNumber(entry));
        const bool known = PhotoPage::isRow(row) && row < m_page.PhotoNumber;
        if (known)
            m_page.PhotoSkip[row] = false;
        if (ask) {
            QString text;
            QString side = known ? m_page.PhotoLeft[row] : QString();
            if (m_window.filePrompt()) {
                m_window.showProgressFrame(false);
                const QString answer = AskUser(
                    m_context.ui, state,
                    QStringLiteral("(") + QString::number(i + 1) + QStringLiteral(" of ") +
                        QString::number(count) +
                        QStringLiteral(") Enter text associated with the image, then select "
                                       "Display Left or Display Right"),
                    known ? m_page.PhotoInfo[row] : QString(), side);
                m_window.showProgressFrame(true);
                if (answer == JobState::Blank) {
                    text = QStringLiteral("   ");
                } else if (answer.trimmed() == JobState::Skip || answer.trimmed().isEmpty()) {
                    state.UserResponse = JobState::Skip;
                    m_window.selectReadyRow(i, false);
                    return false;
                } else {
                    text = answer;
                }
                side = state.PromptMode;
            } else {
                text =
                    m_window.skipImageInfo() ? QStringLiteral("   ") : QStringLiteral("Photo...");
            }
            if (known) {
                m_page.PhotoInfo[row] = text;
                m_page.PhotoLeft[row] = side;
            }
        }
        yield();
        m_window.selectReadyRow(i, false);
    }
    return true;
}

bool PhotoBuildJob::BuildLocalPhoto()
{
    PageName = ReplaceSpaces(PageName, QStringLiteral("_"));
    const QString folder = ImageRoot + QLatin1Char('/') + PageName;
    if (!QFileInfo(folder).isDir())
        QDir().mkpath(folder);

    QFile page(folder + QStringLiteral("/Photos.htm"));
    if (!page.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        m_context.ui.Message(QStringLiteral("The page could not be written: ") +
                                 QDir::toNativeSeparators(page.fileName()) + QStringLiteral(" (") +
                                 page.errorString() + QLatin1Char(')'),
                             Tarnwick, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return false;
    }
    QTextStream out(&page);
    out.setEncoding(QStringConverter::Utf8);

    const QString templates = Folders::PhotosFolder();
    TemplateState templateState;
    templateState.PageTitle = PageTitle;
    templateState.PageGroupInfo = PageGroupInfo;
    templateState.photoInfo = [this](const QString &entry) { return PhotoInfoOf(m_page, entry); };
    templateState.File3 = File3();
    FillTemplateFile(FindTemplateFile(templates, QStringLiteral("Top.txt")), out, templateState);

    const QStringList &rows = templateState.File3;
    const int count = int(rows.size());
    // The highest group looks at the record's first rows, as many as the list has.
    double highest = 0;
    for (int i = 0; i < count && i < m_page.PhotoNumber && PhotoPage::isRow(i); ++i)
        highest = std::max(highest, NumericValue(m_page.PhotoOrder[i]));

    // Each group from 1 up to the highest, and inside a group the list's order (by name).
    // Only whole numbers are groups; the rows of each are gathered once.
    std::map<long long, std::vector<int>> groups;
    for (int i = 0; i < count; ++i) {
        const QString &entry = rows.at(i);
        const int row = FindPhoto(m_page, RemoveGroupNumber(entry), GetGroupNumber(entry));
        if (!PhotoPage::isRow(row) || m_page.PhotoSkip[row])
            continue;
        const double order = NumericValue(m_page.PhotoOrder[row]);
        if (order >= 1 && order <= highest && order == double(qint64(order)))
            groups[qint64(order)].push_back(i);
    }
    int written = 0;
    for (const auto &[order, members] : groups) {
        for (const int i : members) {
            templateState.CurrentPhotoRow = i;
            const int row =
                FindPhoto(m_page, RemoveGroupNumber(rows.at(i)), GetGroupNumber(rows.at(i)));
            const QString name = m_page.PhotoLeft[row] == QLatin1String("True")
                                     ? QStringLiteral("Left.txt")
                                     : QStringLiteral("Right.txt");
            FillTemplateFile(FindTemplateFile(templates, name), out, templateState);
            ++written;
        }
        if (written == count)
            break;
    }

    FillTemplateFile(FindTemplateFile(templates, QStringLiteral("End.txt")), out, templateState);
    out.flush();
    page.close();
    return page.error() == QFileDevice::NoError;
}
