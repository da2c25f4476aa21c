#include "BlogRecords.h"

#include "Folders.h"
#include "RecordFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>

namespace BuildBlog {

namespace {

const QString CrLf = QStringLiteral("\r\n");

QString line(const char *key, const QString &value, bool dropDots = false)
{
    return RecordLine(QString::fromLatin1(key), EncodeRecordText(value, dropDots));
}

// The values of a record as the loader reads them: every field of the file as it stands,
// joined with CR LF; each key is then looked up in the whole text.
class RecordText
{
public:
    explicit RecordText(const QString &path) : m_file(ReadRecordFile(path, RecordDecoding::Raw)) {}
    bool ok() const { return m_file.ok; }
    QString raw(const char *key) const
    {
        return GetRecordValue(m_file.text, QString::fromLatin1(key));
    }
    QString decoded(const char *key) const { return DecodeRecordText(raw(key)); }

private:
    RecordFileResult m_file;
};

bool write(const QString &path, const QString &text)
{
    return WriteRecordFile(path, text).ok;
}

} // namespace

QString BlogRoot()
{
    return Folders::BlogFolder();
}

QString MainRecordPath(const QString &fileName)
{
    return BlogRoot() + QLatin1Char('/') + fileName + QStringLiteral(".blg");
}

QString WebLogFolder(const QString &fileName)
{
    return BlogRoot() + QLatin1Char('/') + fileName;
}

QString SectionRecordPath(const QString &mainFileName, const QString &subTitle)
{
    return WebLogFolder(mainFileName) + QLatin1Char('/') + subTitle + QStringLiteral(".blg");
}

QString PointerRecordPath(const QString &mainFileName, const QString &pointerFileName)
{
    return WebLogFolder(mainFileName) + QStringLiteral("/Pointers/") + pointerFileName +
           QStringLiteral(".ptr");
}

QString CommentRecordPath(const QString &mainFileName, const QString &commentFileName)
{
    return WebLogFolder(mainFileName) + QStringLiteral("/Comments/") + commentFileName +
           QStringLiteral(".cmt");
}

QString MainRecordText(const BlogMain &m)
{
    return line("FileName", m.FileName, true) + line("MainTitle", m.MainTitle) +
           line("TitleColor", m.TitleColor) + line("BackgroundColor", m.BackgroundColor) +
           line("SubTextColor", m.SubTextColor) + line("LineType", m.LineType) +
           line("FontType", m.FontType) + line("FontSize", m.FontSize) +
           line("FontBold", m.FontBold) + line("FontItalic", m.FontItalic) +
           line("MainDate", m.MainDate) + line("ShowPointers", m.ShowPointers) +
           line("ShowCommentPage", m.ShowCommentPage) +
           line("DirectorySavedTo", m.DirectorySavedTo);
}

QString SectionRecordText(const BlogSection &s)
{
    return line("FileName", s.FileName, true) + line("SubTitle", s.SubTitle, true) +
           line("DisplayedSubTitle", s.DisplayedSubTitle) + line("BlogText", s.BlogText) +
           line("Author", s.Author) + line("BlogDate", s.BlogDate) +
           line("PhotoPath", s.PhotoPath) + line("PhotoTitle", s.PhotoTitle) +
           line("Position", s.Position) + line("SubTitleColor", s.SubTitleColor) +
           line("SubTileFont", s.SubTileFont) + line("ShowAuthor", s.ShowAuthor) +
           line("ShowDate", s.ShowDate) + line("ShowComment", s.ShowComment) +
           line("ShowLine", s.ShowLine) + line("Order", s.Order);
}

QString PointerRecordText(const BlogPointer &p)
{
    return line("FileName", p.FileName, true) + line("Category", p.Category) +
           line("DisplayName", p.DisplayName) + line("URL", p.URL) + line("FontType", p.FontType) +
           line("FontSize", p.FontSize) + line("FontBold", p.FontBold) +
           line("FontItalic", p.FontItalic);
}

QString CommentRecordText(const BlogComment &c)
{
    return line("FileName", c.FileName, true) + line("Comment", c.Comment) +
           line("FontType", c.FontType) + line("FontSize", c.FontSize) +
           line("FontBold", c.FontBold) + line("FontItalic", c.FontItalic);
}

bool SaveBlogMain(const BlogRecords &records)
{
    const BlogMain &main = records.main;
    if (main.FileName.isEmpty())
        return false;
    const QString text = MainRecordText(main);
    EnsureBlogFolders(main.FileName);
    return write(MainRecordPath(main.FileName), text);
}

bool SaveBlogSection(const BlogRecords &records)
{
    const BlogSection &section = records.section;
    const QString text = SectionRecordText(section);
    EnsureBlogFolders(section.FileName);
    return write(SectionRecordPath(section.FileName, section.SubTitle), text);
}

bool SaveBlogPointer(const BlogRecords &records)
{
    const BlogPointer &pointer = records.pointer;
    if (pointer.FileName.isEmpty())
        return false;
    const QString text = PointerRecordText(pointer);
    EnsureBlogFolders(records.main.FileName);
    const QString path = PointerRecordPath(records.main.FileName, pointer.FileName);
    if (!write(path, text))
        return false;
    // Every pointer also joins the pool of master pointers, from which another Web Log can take
    // it; a copy of the same name there is replaced.
    QDir().mkpath(Folders::MasterPointerFolder());
    const QString master =
        Folders::MasterPointerFolder() + QLatin1Char('/') + QFileInfo(path).fileName();
    QFile::remove(master);
    return QFile::copy(path, master);
}

bool SaveBlogComment(const BlogRecords &records)
{
    const BlogComment &comment = records.comment;
    if (comment.FileName.isEmpty())
        return false;
    const QString text = CommentRecordText(comment);
    EnsureBlogFolders(records.main.FileName);
    return write(CommentRecordPath(records.main.FileName, comment.FileName), text);
}

bool LoadBlogMain(BlogRecords &records)
{
    const RecordText file(MainRecordPath(records.main.FileName));
    if (!file.ok())
        return false;
    BlogMain &m = records.main;
    // The name the record was found by stays: it names the file and the Web Log's folder,
    // whatever the file holds (a name with letters the record can't keep reads back without
    // them).
    m.MainTitle = file.decoded("MainTitle");
    m.TitleColor = file.decoded("TitleColor");
    m.BackgroundColor = file.decoded("BackgroundColor");
    m.SubTextColor = file.decoded("SubTextColor");
    m.LineType = file.raw("LineType");
    m.FontType = file.raw("FontType");
    m.FontSize = file.raw("FontSize");
    m.FontBold = file.raw("FontBold");
    m.FontItalic = file.raw("FontItalic");
    m.MainDate = file.raw("MainDate");
    m.ShowPointers = file.raw("ShowPointers");
    m.ShowCommentPage = file.raw("ShowCommentPage");
    m.DirectorySavedTo = file.raw("DirectorySavedTo");
    if (m.SubTextColor.isEmpty())
        m.SubTextColor = QStringLiteral("#000000");
    return true;
}

bool LoadBlogSection(BlogRecords &records)
{
    const RecordText file(SectionRecordPath(records.main.FileName, records.section.SubTitle));
    if (!file.ok())
        return false;
    BlogSection &s = records.section;
    // The section was found in the open Web Log's folder under its SubTitle: both names stay,
    // so that its save goes back to the same file.
    s.FileName = records.main.FileName;
    s.DisplayedSubTitle = file.decoded("DisplayedSubTitle");
    s.BlogText = file.decoded("BlogText");
    s.Author = file.decoded("Author");
    s.BlogDate = file.decoded("BlogDate");
    s.PhotoPath = file.decoded("PhotoPath");
    s.PhotoTitle = file.decoded("PhotoTitle");
    s.Position = file.decoded("Position");
    s.SubTitleColor = file.decoded("SubTitleColor");
    s.SubTileFont = file.decoded("SubTileFont");
    s.ShowAuthor = file.decoded("ShowAuthor");
    s.ShowDate = file.decoded("ShowDate");
    s.ShowComment = file.decoded("ShowComment");
    s.ShowLine = file.decoded("ShowLine");
    s.Order = file.decoded("Order");
    return true;
}

bool LoadBlogPointer(BlogRecords &records)
{
    const RecordText file(PointerRecordPath(records.main.FileName, records.pointer.FileName));
    if (!file.ok())
        return false;
    BlogPointer &p = records.pointer;
    p.Category = file.decoded("Category");
    p.DisplayName = file.decoded("DisplayName");
    p.URL = file.decoded("URL");
    p.FontType = file.raw("FontType");
    p.FontSize = file.raw("FontSize");
    p.FontBold = file.raw("FontBold");
    p.FontItalic = file.raw("FontItalic");
    return true;
}

bool LoadBlogComment(BlogRecords &records)
{
    const RecordText file(CommentRecordPath(records.main.FileName, records.comment.FileName));
    if (!file.ok())
        return false;
    records.comment.Comment = file.decoded("Comment");
    // The comment's font fields land in the pointer's: both sets are always empty.
    records.pointer.FontType = file.raw("FontType");
    records.pointer.FontSize = file.raw("FontSize");
    records.pointer.FontBold = file.raw("FontBold");
    records.pointer.FontItalic = file.raw("FontItalic");
    return true;
}

void ClearBlogSection(BlogRecords &records)
{
    records.section = BlogSection();
}

void ClearBlogMain(BlogRecords &records)
{
    records.main = BlogMain();
}

void EnsureBlogFolders(const QString &mainFileName)
{
    const QString folder = WebLogFolder(mainFileName);
    QDir dir;
    for (const QString &path :
         {folder, folder + QStringLiteral("/Pointers"), folder + QStringLiteral("/Comments")}) {
        if (!QFileInfo(path).isDir())
            dir.mkdir(path);
    }
}

QString CleanFileName(const QString &text)
{
    QString name = text;
    // An extension of three characters keeps its dot; every dot before it goes.
    for (qsizetype at = name.indexOf(QLatin1Char('.')); at >= 0;
         at = name.indexOf(QLatin1Char('.'), at)) {
        if (name.size() - at - 1 == 3)
            break;
        name.remove(at, 1);
    }
    for (const char *mark : {">", "<", "{", "}", "]", "["})
        name.remove(QLatin1String(mark));
    name.replace(QLatin1Char('&'), QLatin1Char('+'));
    for (const char *mark :
         {"'", "%", "#", "@", "~", ";", ":", "\"", "^", "/", "\\", "?", "*", "|", ":", "<", ">"})
        name.remove(QLatin1String(mark));
    return name;
}

bool MatchesPattern(const QString &name, const QString &pattern)
{
    if (pattern.isEmpty())
        return true;
    const auto matchesOne = [&name](const QString &wildcard) {
        // Iterative wildcard match with one backtracking point per "*".
        qsizetype n = 0, w = 0, starAt = -1, resume = 0;
        while (n < name.size()) {
            if (w < wildcard.size() && (wildcard.at(w) == QLatin1Char('?') ||
                                        (wildcard.at(w) != QLatin1Char('*') &&
                                         wildcard.at(w).toLower() == name.at(n).toLower()))) {
                ++n;
                ++w;
            } else if (w < wildcard.size() && wildcard.at(w) == QLatin1Char('*')) {
                starAt = w++;
                resume = n;
            } else if (starAt >= 0) {
                w = starAt + 1;
                n = ++resume;
            } else {
                return false;
            }
        }
        while (w < wildcard.size() && wildcard.at(w) == QLatin1Char('*'))
            ++w;
        return w == wildcard.size();
    };
    const QStringList wildcards = pattern.split(QLatin1Char(';'));
    for (const QString &wildcard : wildcards) {
        if (wildcard == QLatin1String("*.*") || matchesOne(wildcard))
            return true;
    }
    return false;
}

QStringList BlogFileList(const QString &folder, const QString &pattern)
{
    QStringList names;
    const QStringList entries =
        QDir(folder).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString &name : entries) {
        if (MatchesPattern(name, pattern))
            names.append(name);
    }
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

double NumberValue(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && (text.at(i) == QLatin1Char(' ') || text.at(i) == QLatin1Char('\t')))
        ++i;
    QString number;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        number += text.at(i++);
    bool point = false;
    for (; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isDigit() && c.unicode() < 128)
            number += c;
        else if (c == QLatin1Char('.') && !point) {
            point = true;
            number += c;
        } else
            break;
    }
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok ? value : 0.0;
}

QString DateStamp()
{
    return QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("yyyy MM dd HH mm"));
}

QString PresentDate()
{
    return QLocale::c().toString(QDate::currentDate(), QStringLiteral("yyyy-MM-dd"));
}

QString EntryName(const QString &entry)
{
    return entry.left(std::max<qsizetype>(0, entry.size() - 4));
}

} // namespace BuildBlog
