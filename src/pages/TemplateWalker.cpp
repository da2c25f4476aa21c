#include "TemplateWalker.h"

#include "Folders.h"
#include "RecordFile.h"
#include "Settings.h"
#include "TemplateState.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <cmath>
#include <optional>

namespace {

const QString Mark = QStringLiteral("!!");
const QString EscapedMark = QStringLiteral("<|>");
const QString Skip = QStringLiteral("!!Skip!!");
const QString Trying = QStringLiteral("trying");

// A line that keeps growing under replacements (a setting, or a text whose marks lie beyond the
// escape's bound, that holds its own placeholder) would never end; past these bounds it counts as
// the run-time failure it would be. The work bound keeps such a line from copying itself ten
// thousand times at a megabyte each before the other bounds are reached.
constexpr qsizetype MaxLineLength = 1024 * 1024;
constexpr int MaxTokensPerLine = 10000;

QString setting(const char *key, const char *fallback)
{
    return GetSetting(QString::fromLatin1(key), QString::fromLatin1(fallback));
}

QString skipUnless(bool shown, const QString &text)
{
    return shown ? text : Skip;
}

// Replaces "<|>" by "!" walking only as far as the line's length when the walk starts.
QString restoreMarks(QString line)
{
    const qsizetype bound = line.size();
    for (qsizetype i = 0; i < bound; ++i) {
        if (QStringView(line).mid(i, 3) == EscapedMark)
            line.replace(i, 3, QLatin1Char('!'));
    }
    return line;
}

// The Section text: each carriage return becomes "<p>", each line feed goes, each "!" is
// escaped, in one pass whose bound is the text's length before the pass.
QString sectionText(QString text)
{
    const qsizetype bound = text.size();
    for (qsizetype i = 0; i < bound && i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\r'))
            text.replace(i, 1, QStringLiteral("<p>"));
        else if (c == QLatin1Char('\n'))
            text.remove(i, 1);
        else if (c == QLatin1Char('!'))
            text.replace(i, 1, EscapedMark);
    }
    return text;
}

QString photoListEntry(const TemplateState &state)
{
    if (state.CurrentPhotoRow < 0 || state.CurrentPhotoRow >= state.File3.size())
        return QString();
    return state.File3.at(state.CurrentPhotoRow);
}

std::optional<QString> photoInformation(TemplateState &state)
{
    const QString entry = photoListEntry(state);
    if (!state.photoInfo) {
        state.lastError = QStringLiteral("No photo page record");
        return std::nullopt;
    }
    const std::optional<QString> info = state.photoInfo(entry);
    if (!info) {
        state.lastError = QStringLiteral("Subscript out of range");
        return std::nullopt;
    }
    return EscapeMarks(*info);
}

// A web address of the site: "http://" in front, unless the site's address as typed already
// names its scheme.
QString webAddress(const QString &address)
{
    if (address.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
        address.startsWith(QLatin1String("https://"), Qt::CaseInsensitive))
        return address;
    return QStringLiteral("http://") + address;
}

QString commentPointerUrl(TemplateState &state)
{
    state.CurrentPageName = ReplaceSpaces(state.blogPage.FileName, QStringLiteral("_"));
    QString caption = state.txtWebSite + QLatin1Char('/');
    if (!state.ClientRoot.isEmpty())
        caption += state.ClientRoot + QLatin1Char('/');
    caption += state.BlogDirName + QLatin1Char('/') + state.CurrentPageName +
               QStringLiteral("/Comments.htm");
    state.UploadPathCaption = caption;
    return webAddress(caption);
}

std::optional<QString> portalLogo(TemplateState &state)
{
    const QString source = GetSetting(QStringLiteral("LogoPointer"), QString());
    const QString name = GetFileName(source);
    const QString target = Folders::StartupFolder() + QLatin1Char('/') + name;
    const QString sourcePath = QString(source).replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (source.isEmpty() || name.isEmpty() || !QFileInfo(sourcePath).isFile()) {
        state.lastError = QStringLiteral("File not found");
        return std::nullopt;
    }
    if (QFileInfo(sourcePath).canonicalFilePath() != QFileInfo(target).canonicalFilePath()) {
        QFile::remove(target);
        if (!QFile::copy(sourcePath, target)) {
            state.lastError = QStringLiteral("Path/File access error");
            return std::nullopt;
        }
    }
    return ReplaceSpaces(name, QStringLiteral("%20"));
}

std::optional<QString> portalColumnWidth(TemplateState &state)
{
    if (state.PortalColumns == 0) {
        state.lastError = QStringLiteral("Division by zero");
        return std::nullopt;
    }
    const double width = std::floor(100.0 / state.PortalColumns);
    return QString::number(static_cast<qint64>(width)) + QLatin1Char('%');
}

bool smallTable(const TemplateState &state)
{
    return state.File8Count == 0 || !state.ShowPointersCk;
}

// The Web Log's pointer and comment rows and the Portal's rows; an unknown placeholder comes
// back as it stands.
std::optional<QString> lookUpPointersAndPortal(const QString &token, TemplateState &state)
{
    const auto is = [&token](const char *name) { return token == QLatin1String(name); };
    const auto &pointer = state.pointer;
    const bool pointers = state.ShowPointersCk;
    const bool comments = state.ShowCommentCk;

    if (is("!!PtrCategory!!"))
        return skipUnless(pointers, EscapeMarks(pointer.Category));
    if (is("!!HyperLinkURL!!"))
        return skipUnless(pointers, pointer.URL);
    if (is("!!HyperLinkPtrName!!"))
        return skipUnless(pointers, EscapeMarks(pointer.DisplayName));
    if (is("!!CommentPtrURL!!"))
        return comments ? commentPointerUrl(state) : Skip;
    if (is("!!CommentPtrName!!"))
        return skipUnless(comments, QStringLiteral("View Comments"));
    if (is("!!NumberOfComments!!"))
        return skipUnless(comments, QString::number(state.File9Count));
    if (is("!!Blog_Comment_text!!"))
        return EscapeMarks(state.Comment);
    if (is("!!SizeTable1!!"))
        return smallTable(state) ? QStringLiteral("98%") : QStringLiteral("75%");
    if (is("!!SizeTable2!!"))
        return smallTable(state) ? QStringLiteral("2%") : QStringLiteral("25%");

    if (is("!!SUUserName!!"))
        return setting("Author", "");
    if (is("!!SULogo!!"))
        return portalLogo(state);
    if (is("!!SULogoHeight!!"))
        return setting("LogoPointerHeight", "145");
    if (is("!!SULogoWidth!!"))
        return setting("LogoPointerWidth", "145");
    if (is("!!SUCategory!!")) {
        const QString name = EscapeMarks(state.File11Selected);
        return name.left(std::max<qsizetype>(0, name.size() - 4));
    }
    if (is("!!SUBullet!!"))
        return QStringLiteral("Arrow") + state.link.Bullet + QStringLiteral(".gif");
    if (is("!!SULink!!"))
        return state.link.LinkName;
    if (is("!!SUURL!!"))
        return state.link.URLName;
    if (is("!!SUBackgroundColor!!"))
        return setting("SUBackgroundColor", "#7FFF7F");
    if (is("!!SUTitleColor!!"))
        return setting("SUTitleColor", "#7F7FFF");
    if (is("!!SUTextColor!!"))
        return setting("SUTextColor", "#000000");
    if (is("!!SUTextFont!!"))
        return setting("SUPageFont", "Arial");
    if (is("!!SUTotalWidth!!"))
        return QString::number(state.PortalColumns * 280 * 1.5, 'g', 15);
    if (is("!!SUColWidth!!"))
        return portalColumnWidth(state);
    return token;
}

// The photo page's, the Web Log's and the master page's rows.
std::optional<QString> lookUp(const QString &token, TemplateState &state)
{
    const auto &page = state.blogPage;
    const auto &section = state.section;
    const auto is = [&token](const char *name) { return token == QLatin1String(name); };

    if (is("!!PHOTO_Background_color!!"))
        return setting("PhotoBGColor", "#7F7FFF");
    if (is("!!PHOTO_font!!"))
        return setting("PhotoFont", "Arial");
    if (is("!!PHOTO_title_color!!"))
        return setting("PhotoTitleColor", "#008000");
    if (is("!!PHOTO_text_color!!"))
        return setting("PhotoTextColor", "#000000");
    if (is("!!PHOTO_title!!"))
        return EscapeMarks(state.PageTitle);
    if (is("!!PHOTO_Photos_info!!"))
        return EscapeMarks(state.PageGroupInfo);
    if (is("!!PHOTO_Information!!"))
        return photoInformation(state);
    if (is("!!PHOTO_SmlFileName!!"))
        return ReplaceSpaces(QStringLiteral("Sml_") + photoListEntry(state), QStringLiteral("%20"));
    if (is("!!PHOTO_LrgFileName!!"))
        return ReplaceSpaces(QStringLiteral("Lrg_") + photoListEntry(state), QStringLiteral("%20"));

    // The master page's background falls back on a font name; pages made so far rely on it.
    if (is("!!BLOG_MAIN_Background_color!!"))
        return setting("MstrBGColor", "Arial");
    if (is("!!BLOG_MAIN_font!!"))
        return setting("MstrFont", "Arial");
    if (is("!!BLOG_MAIN_title!!"))
        return EscapeMarks(state.MasterTitle);
    if (is("!!BLOG_MAIN_pointer!!")) {
        if (state.blogPage.DirectorySavedTo.isEmpty())
            state.blogPage.DirectorySavedTo = state.BlogDirName;
        return webAddress(state.txtWebSite + QLatin1Char('/') + state.blogPage.DirectorySavedTo +
                          QLatin1Char('/') + state.CurrentPageName + QLatin1Char('/') +
                          state.MasterLinkFile);
    }
    if (is("!!BLOG_MAIN_date!!"))
        return page.MainDate;
    if (is("!!BLOG_Background_color!!"))
        return page.BackgroundColor.isEmpty() ? QStringLiteral("#7FFF7F") : page.BackgroundColor;
    if (is("!!BLOG_title_color!!"))
        return page.TitleColor.isEmpty() ? QStringLiteral("#7F7FFF") : page.TitleColor;
    if (is("!!BLOG_font!!"))
        return page.FontType;
    if (is("!!BLOG_title!!"))
        return EscapeMarks(page.MainTitle);
    if (is("!!BLOG_date!!"))
        return page.MainDate;
    if (is("!!BLOG_SUB_title!!"))
        return EscapeMarks(section.DisplayedSubTitle);
    if (is("!!BLOG_SUB_date!!"))
        return skipUnless(section.ShowDate != QLatin1String("False"), section.BlogDate);
    if (is("!!BLOG_author!!"))
        return skipUnless(section.ShowAuthor != QLatin1String("False"), section.Author);
    if (is("!!BLOG_SUB_picture_title!!"))
        return EscapeMarks(section.PhotoTitle);
    if (is("!!BLOG_LINE!!"))
        return skipUnless(section.ShowLine != QLatin1String("False"), QStringLiteral("5"));
    if (is("!!IMAGE_NAME_SUB!!"))
        return ReplaceSpaces(QStringLiteral("Sml_") + GetFileName(section.PhotoPath),
                             QStringLiteral("%20"));
    if (is("!!BLOG_SUB_text!!"))
        return sectionText(section.BlogText);
    if (is("!!EMAIL_NAME!!"))
        return skipUnless(section.ShowComment != QLatin1String("False"), setting("EmailID", ""));
    if (is("!!BLOG_SUB_Color!!"))
        return page.SubTextColor.isEmpty() ? QStringLiteral("#000000") : page.SubTextColor;
    return lookUpPointersAndPortal(token, state);
}

} // namespace

QString EscapeMarks(const QString &text)
{
    QString escaped = text;
    const qsizetype bound = escaped.size();
    for (qsizetype i = 0; i < bound; ++i) {
        if (escaped.at(i) == QLatin1Char('!'))
            escaped.replace(i, 1, EscapedMark);
    }
    return escaped;
}

QString GetFileName(const QString &path)
{
    const qsizetype cut =
        std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    if (cut < 0)
        return QString();
    return path.mid(cut + 1);
}

QString GetActionData(const QString &token, TemplateState &state)
{
    const std::optional<QString> text = lookUp(token, state);
    return text.value_or(QString());
}

TemplateWalkResult FillTemplate(QTextStream &templateText, QTextStream &page, TemplateState &state)
{
    TemplateWalkResult result;
    QString line;
    while (templateText.readLineInto(&line)) {
        ++result.linesRead;
        QString replacement = Trying;
        // Indices are 0-based. The first search starts at the second character: a
        // placeholder in the first column is never seen, neither its opening mark nor its
        // closing one, and stays as it is.
        qsizetype from = 1;
        if (line.startsWith(Mark)) {
            const qsizetype closing = line.indexOf(Mark, 2);
            if (closing > 2)
                from = closing + 2;
        }
        int tokens = 0;
        qsizetype work = 0;
        for (;;) {
            const qsizetype start = line.indexOf(Mark, from);
            if (start < 0)
                break;
            const qsizetype stop = line.indexOf(Mark, start + 2);
            // Without a closing mark the token's length is 2 - (start + 1): nothing at the
            // second column, negative (a failure that ends the walk) anywhere further on.
            const qsizetype length = stop < 0 ? 1 - start : stop - start + 2;
            const auto stopWalk = [&](const QString &error) {
                result.complete = false;
                result.error = error;
                page.flush();
                return result;
            };
            if (length < 0)
                return stopWalk(QStringLiteral("Invalid procedure call or argument"));
            if (++tokens > MaxTokensPerLine || line.size() > MaxLineLength)
                return stopWalk(QStringLiteral("Out of string space"));
            const QString token = line.mid(start, length);
            replacement = GetActionData(token, state);
            if (replacement.isEmpty())
                break;
            if (replacement == QLatin1String("Sml_") || replacement == Skip) {
                replacement.clear();
                break;
            }
            work += line.size() - length + replacement.size();
            if (work > TemplateWalkResult::MaxWorkPerLine)
                return stopWalk(QStringLiteral("Out of string space"));
            line = line.left(start) + replacement + line.mid(stop + 2);
            from = start + 1;
            result.charactersCopied += line.size();
        }
        line = restoreMarks(line);
        if (replacement == Trying || !replacement.isEmpty()) {
            page << line << '\n';
            ++result.linesWritten;
        }
    }
    page.flush();
    return result;
}

TemplateWalkResult FillTemplateFile(const QString &templatePath, QTextStream &page,
                                    TemplateState &state)
{
    QFile file(templatePath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        TemplateWalkResult result;
        result.complete = false;
        result.error = QStringLiteral("File not found: ") + templatePath;
        return result;
    }
    QTextStream text(&file);
    text.setEncoding(QStringConverter::Utf8);
    return FillTemplate(text, page, state);
}

QString FindTemplateFile(const QString &folder, const QString &name)
{
    const QString exact = folder + QLatin1Char('/') + name;
    if (QFileInfo::exists(exact))
        return exact;
    const QStringList entries = QDir(folder).entryList(QDir::Files);
    for (const QString &entry : entries) {
        if (entry.compare(name, Qt::CaseInsensitive) == 0)
            return folder + QLatin1Char('/') + entry;
    }
    return exact;
}
