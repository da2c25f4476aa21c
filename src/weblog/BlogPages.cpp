#include "BlogPages.h"

#include "BlogFeed.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "PictureSizing.h"
#include "RecordFile.h"
#include "TemplateState.h"
#include "TemplateWalker.h"

#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QSaveFile>
#include <QTextStream>
#include <QThread>
#include <QThreadPool>
#include <QUrl>
#include <QtConcurrent/QtConcurrentRun>

#include <cmath>
#include <memory>

using namespace BuildBlog;

namespace {

const QString SectionPattern = QStringLiteral("*.blg");

bool cancelled(const JobState &state)
{
    return state.skipped() || state.UploadCancelled;
}

bool isWholeNumber(double value)
{
    return std::isfinite(value) && value == std::floor(value);
}

// The page being written and the templates walked into it. The first template that can't be
// read spoils the page: it is then not put in place.
class PageWriter
{
public:
    explicit PageWriter(const QString &path) : m_file(path)
    {
        if (!m_file.open(QIODevice::WriteOnly)) {
            m_error = QStringLiteral("The page %1 can't be written: %2")
                          .arg(QFileInfo(path).fileName(), m_file.errorString());
            return;
        }
        m_page.setDevice(&m_file);
        m_page.setEncoding(QStringConverter::Utf8);
    }

    bool ok() const { return m_error.isEmpty(); }
    QString error() const { return m_error; }

    void walk(const QString &name, TemplateState &state)
    {
        if (!ok())
            return;
        const QString path = FindTemplateFile(BlogRoot(), name);
        if (!QFileInfo(path).isFile()) {
            m_error =
                QStringLiteral("The Web Log template %1 is missing from %2.").arg(name, BlogRoot());
            return;
        }
        // A stray mark ends that template's walk; the page goes on with the next template.
        FillTemplateFile(path, m_page, state);
    }

    bool commit()
    {
        if (!ok()) {
            m_file.cancelWriting();
            return false;
        }
        m_page.flush();
        if (!m_file.commit()) {
            m_error = QStringLiteral("The page %1 can't be written: %2")
                          .arg(QFileInfo(m_file.fileName()).fileName(), m_file.errorString());
            return false;
        }
        return true;
    }

    void cancel() { m_file.cancelWriting(); }

private:
    QSaveFile m_file;
    QTextStream m_page;
    QString m_error;
};

QString sectionTextAsHtml(const QString &text)
{
    QString html = text;
    html.replace(QStringLiteral("\r\n"), QStringLiteral("<p>"));
    html.replace(QLatin1Char('\r'), QStringLiteral("<p>"));
    html.remove(QLatin1Char('\n'));
    return html;
}

} // namespace

QString SectionPictureName(const BlogSection &section)
{
    const QString path = section.PhotoPath.trimmed();
    if (path.isEmpty())
        return QString();
    return QStringLiteral("Sml_") + GetFileName(QStringLiteral("/") + path);
}

QString SectionTemplateName(const BlogSection &section)
{
    return section.Position.compare(QLatin1String("Left"), Qt::CaseInsensitive) == 0
               ? QStringLiteral("B_Left.txt")
               : QStringLiteral("B_Right.txt");
}

BlogPageBuilder::BlogPageBuilder(BlogRecords &records, const BlogPageOptions &options, JobUi &ui,
                                 JobState &state)
    : m_records(records), m_options(options), m_ui(ui), m_state(state)
{
}

QString BlogPageBuilder::BlogFolderName() const
{
    return ReplaceSpaces(m_records.main.FileName, QStringLiteral("_"));
}

QString BlogPageBuilder::localFolder() const
{
    return WebLogFolder(m_records.main.FileName);
}

QString BlogPageBuilder::webAddress(const QString &fileName) const
{
    QString path;
    if (!m_options.ClientRoot.trimmed().isEmpty())
        path +=
            ReplaceSpaces(m_options.ClientRoot.trimmed(), QStringLiteral("_")) + QLatin1Char('/');
    path +=
        m_options.BlogDirName + QLatin1Char('/') + BlogFolderName() + QLatin1Char('/') + fileName;
    return WebAddress(m_options.txtWebSite, path);
}

void BlogPageBuilder::fillTemplateState(TemplateState &state, int pointerCount,
                                        int commentCount) const
{
    const BlogMain &main = m_records.main;
    state.blogPage = {main.FileName,     main.MainTitle, main.TitleColor, main.BackgroundColor,
                      main.SubTextColor, main.FontType,  main.MainDate,   main.DirectorySavedTo};
    const BlogSection &section = m_records.section;
    state.section = {section.DisplayedSubTitle, section.BlogText,  section.Author,
                     section.BlogDate,          section.PhotoPath, section.PhotoTitle,
                     section.ShowAuthor,        section.ShowDate,  section.ShowComment,
                     section.ShowLine};
    state.pointer = {m_records.pointer.Category, m_records.pointer.DisplayName,
                     m_records.pointer.URL};
    state.Comment = m_records.comment.Comment;
    state.ShowPointersCk = m_options.ShowPointersCk;
    state.ShowCommentCk = m_options.ShowCommentCk;
    state.File8Count = pointerCount;
    state.File9Count = commentCount;
    state.BlogDirName = m_options.BlogDirName;
    state.txtWebSite = m_options.txtWebSite;
    state.ClientRoot = m_options.ClientRoot;
}

QList<BlogSection> BlogPageBuilder::sectionsInPageOrder(const QStringList &entries)
{
    // Each section is read once; the page then takes those of Order 0 in list order, then 1, and
    // so on up to the count of sections, as a walk of the list once per number would.
    QList<BlogSection> loaded;
    loaded.reserve(entries.size());
    for (const QString &entry : entries) {
        ClearBlogSection(m_records);
        m_records.section.SubTitle = EntryName(entry);
        m_records.section.FileName = m_records.main.FileName;
        LoadBlogSection(m_records);
        loaded.append(m_records.section);
    }
    const int count = int(entries.size());
    QList<QList<BlogSection>> byOrder(count + 1);
    for (const BlogSection &section : std::as_const(loaded)) {
        const double order = NumberValue(section.Order);
        if (isWholeNumber(order) && order >= 0 && order <= count)
            byOrder[int(order)].append(section);
    }
    QList<BlogSection> ordered;
    for (const QList<BlogSection> &group : std::as_const(byOrder))
        ordered.append(group);
    return ordered;
}

struct BlogPageBuilder::Picture
{
    int index = 0;
    QString source;
    QString target;
    bool copyOnly = false;
    std::unique_ptr<QFutureWatcher<QString>> watcher;
};

bool BlogPageBuilder::preparePictures(const QList<BlogSection> &sections, BlogPagesResult &result,
                                      QList<bool> &usable)
{
    const double percent = NumberValue(m_options.Blog_resize);
    std::vector<std::unique_ptr<Picture>> pending;
    usable = QList<bool>(sections.size(), true);
    for (int i = 0; i < sections.size(); ++i) {
        const BlogSection &section = sections.at(i);
        const QString name = SectionPictureName(section);
        if (name.isEmpty())
            continue;
        const QString source =
            QString(section.PhotoPath.trimmed()).replace(QLatin1Char('\\'), QLatin1Char('/'));
        const QString original = name.mid(4);
        if (original.endsWith(QLatin1String(".htm"), Qt::CaseInsensitive))
            continue;
        auto picture = std::make_unique<Picture>();
        picture->index = i;
        picture->source = source;
        picture->target = localFolder() + QLatin1Char('/') + name;
        // A picture that is a reduced copy already goes on the page as it is.
        picture->copyOnly = original.startsWith(QLatin1String("Sml_"));
        const QFileInfo from(source), to(picture->target);
        if (!from.isFile()) {
            usable[i] = false;
            result.pictureFaults << QStringLiteral("%1: the picture %2 is not there.")
                                        .arg(section.DisplayedSubTitle, source);
            continue;
        }
        // A copy made from the same picture at the same size is still good.
        if (to.isFile() && to.lastModified() >= from.lastModified()) {
            const QSize made = PictureSize(picture->target);
            const QSize wanted =
                picture->copyOnly ? PictureSize(source) : ScaledSize(PictureSize(source), percent);
            if (made.isValid() && made == wanted)
                continue;
        }
        pending.push_back(std::move(picture));
    }
    if (pending.empty())
        return true;

    QThreadPool pool;
    pool.setMaxThreadCount(m_options.sizingThreads > 0 ? m_options.sizingThreads
                                                       : QThread::idealThreadCount());
    for (auto &picture : pending) {
        picture->watcher = std::make_unique<QFutureWatcher<QString>>();
        const QString source = picture->source, target = picture->target;
        const bool copyOnly = picture->copyOnly;
        picture->watcher->setFuture(QtConcurrent::run(&pool, [=]() -> QString {
            DoKill(target);
            if (copyOnly) {
                if (!PictureSize(source).isValid())
                    return QStringLiteral("The file is damaged or is not a picture");
                return QFile::copy(source, target) ? QString()
                                                   : QStringLiteral("It can't be copied");
            }
            const CopyResult made = SizeOneCopy(source, target, percent);
            return made.loadError.isEmpty() ? made.message : made.loadError;
        }));
    }
    const int total = int(pending.size());
    int done = 0;
    bool stopped = false;
    for (auto &picture : pending) {
        m_ui.SetStepOf(QStringLiteral("Sizing picture %1 of %2").arg(done + 1).arg(total));
        if (!picture->watcher->isFinished()) {
            QEventLoop wait;
            QObject::connect(picture->watcher.get(), &QFutureWatcher<QString>::finished, &wait,
                             &QEventLoop::quit);
            if (!picture->watcher->isFinished())
                wait.exec();
        }
        m_ui.ProcessEvents();
        ++done;
        const QString fault = picture->watcher->result();
        const BlogSection &section = sections.at(picture->index);
        if (fault.isEmpty()) {
            ++result.picturesSized;
        } else {
            usable[picture->index] = false;
            DoKill(picture->target);
            result.pictureFaults << QStringLiteral("%1: %2").arg(section.DisplayedSubTitle, fault);
        }
        if (cancelled(m_state)) {
            stopped = true;
            break;
        }
    }
    if (stopped) {
        pool.clear();
        pool.waitForDone();
    }
    m_ui.SetStepOf(QString());
    return !stopped;
}

BlogPagesResult BlogPageBuilder::BuildBlogLocally()
{
    BlogPagesResult result;
    m_ui.SetStatusText(QStringLiteral("Building Web Log"));
    m_ui.SetStepOf(QString());
    m_ui.ProcessEvents();
    if (m_records.main.FileName.isEmpty()) {
        result.outcome = BlogPagesOutcome::NoWebLog;
        return result;
    }
    EnsureBlogFolders(m_records.main.FileName);
    const QString folder = localFolder();
    const QStringList sectionEntries = BlogFileList(folder, SectionPattern);
    const QStringList pointerEntries =
        BlogFileList(folder + QStringLiteral("/Pointers"), QStringLiteral("*.ptr"));
    const QStringList commentEntries =
        BlogFileList(folder + QStringLiteral("/Comments"), QStringLiteral("*.cmt"));

    const QList<BlogSection> sections = sectionsInPageOrder(sectionEntries);
    QList<bool> usable;
    if (!preparePictures(sections, result, usable)) {
        result.outcome = BlogPagesOutcome::Cancelled;
        return result;
    }

    PageWriter page(folder + QStringLiteral("/Web_Log.htm"));
    TemplateState state;
    const auto fill = [&] {
        fillTemplateState(state, int(pointerEntries.size()), int(commentEntries.size()));
    };
    fill();
    page.walk(QStringLiteral("B_Top.txt"), state);
    for (int i = 0; i < sections.size(); ++i) {
        m_records.section = sections.at(i);
        fill();
        // A picture that could not be made leaves its section without one on the page; the
        // record keeps it.
        if (!usable.at(i))
            state.section.PhotoPath.clear();
        page.walk(SectionTemplateName(m_records.section), state);
        ++result.sectionsWritten;
    }
    fill();
    page.walk(QStringLiteral("B_End1.txt"), state);

    QString previousCategory;
    for (const QString &entry : pointerEntries) {
        m_records.pointer = BlogPointer();
        m_records.pointer.FileName = EntryName(entry);
        LoadBlogPointer(m_records);
        fill();
        if (m_records.pointer.Category != previousCategory) {
            page.walk(QStringLiteral("B_End2.txt"), state);
        } else {
            state.pointer.Category.clear();
            page.walk(QStringLiteral("B_End2a.txt"), state);
        }
        previousCategory = m_records.pointer.Category;
    }
    fill();
    page.walk(QStringLiteral("B_End3.txt"), state);
    result.uploadPathCaption = state.UploadPathCaption;
    // The current section is the last of the list, as after a walk through it.
    if (!sectionEntries.isEmpty()) {
        ClearBlogSection(m_records);
        m_records.section.SubTitle = EntryName(sectionEntries.last());
        m_records.section.FileName = m_records.main.FileName;
        LoadBlogSection(m_records);
    }
    if (!page.commit()) {
        result.outcome = BlogPagesOutcome::NotWritten;
        result.message = page.error();
        return result;
    }
    if (!writeFeed(sections, usable)) {
        result.outcome = BlogPagesOutcome::NotWritten;
        result.message = QStringLiteral("The feed %1 can't be written.")
                             .arg(folder + QStringLiteral("/feed.xml"));
    }
    return result;
}

bool BlogPageBuilder::writeFeed(const QList<BlogSection> &sections, const QList<bool> &usable)
{
    BlogFeedInput feed;
    const BlogMain &main = m_records.main;
    feed.title = main.MainTitle.trimmed().isEmpty() ? main.FileName : main.MainTitle;
    feed.pageAddress = webAddress(QStringLiteral("Web_Log.htm"));
    feed.feedAddress = webAddress(QStringLiteral("feed.xml"));
    for (int i = 0; i < sections.size(); ++i) {
        const BlogSection &section = sections.at(i);
        BlogFeedEntry entry;
        entry.id = feed.pageAddress + QLatin1Char('#') +
                   QString::fromLatin1(QUrl::toPercentEncoding(section.SubTitle));
        entry.title = section.DisplayedSubTitle;
        if (section.ShowAuthor != QLatin1String("False"))
            entry.author = section.Author;
        QString html;
        if (!section.PhotoPath.trimmed().isEmpty() && usable.at(i))
            html += QStringLiteral("<p><img src=\"%1\" alt=\"%2\"></p>")
                        .arg(webAddress(SectionPictureName(section)),
                             section.PhotoTitle.toHtmlEscaped());
        html += sectionTextAsHtml(section.BlogText);
        entry.html = html;
        entry.link = feed.pageAddress;
        const QString record = SectionRecordPath(main.FileName, section.SubTitle);
        entry.updated = SectionTime(section.BlogDate, QFileInfo(record).lastModified());
        feed.entries.append(entry);
        if (feed.author.isEmpty() && !entry.author.isEmpty())
            feed.author = entry.author;
    }
    QSaveFile file(localFolder() + QStringLiteral("/feed.xml"));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = MakeAtomFeed(feed);
    if (file.write(bytes) != bytes.size())
        return false;
    return file.commit();
}

BlogPagesResult BlogPageBuilder::BuildBlogCommentsLocally()
{
    BlogPagesResult result;
    if (m_records.main.FileName.isEmpty()) {
        result.outcome = BlogPagesOutcome::NoWebLog;
        return result;
    }
    EnsureBlogFolders(m_records.main.FileName);
    const QString folder = localFolder();
    const QStringList pointerEntries =
        BlogFileList(folder + QStringLiteral("/Pointers"), QStringLiteral("*.ptr"));
    const QStringList commentEntries =
        BlogFileList(folder + QStringLiteral("/Comments"), QStringLiteral("*.cmt"));
    PageWriter page(folder + QStringLiteral("/Comments.htm"));
    TemplateState state;
    fillTemplateState(state, int(pointerEntries.size()), int(commentEntries.size()));
    page.walk(QStringLiteral("BC_Top.txt"), state);
    for (const QString &entry : commentEntries) {
        m_records.comment = BlogComment();
        m_records.comment.FileName = EntryName(entry);
        LoadBlogComment(m_records);
        fillTemplateState(state, int(pointerEntries.size()), int(commentEntries.size()));
        page.walk(QStringLiteral("BC_Mid.txt"), state);
    }
    page.walk(QStringLiteral("BC_End.txt"), state);
    if (!page.commit()) {
        result.outcome = BlogPagesOutcome::NotWritten;
        result.message = page.error();
    }
    return result;
}
