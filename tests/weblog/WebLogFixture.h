#pragma once

#include "BlogBuild.h"
#include "BlogRecords.h"
#include "Folders.h"
#include "JobState.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

// Shared pieces of the Web Log tests: the default templates in place, Web Logs made through
// the record functions, real pictures, and the checks of built pages.
namespace WebLogFixture {

inline const QStringList TemplateNames = {
    "B_Top.txt",     "B_Left.txt",     "B_Right.txt",  "B_End1.txt", "B_End2.txt",
    "B_End2a.txt",   "B_End3.txt",     "BC_Top.txt",   "BC_Mid.txt", "BC_End.txt",
    "MasterTop.txt", "MasterBody.txt", "MasterEnd.txt"};

// The folder tree with the default Web Log templates of the data folder.
inline bool installBlogTemplates()
{
    Folders::MakeFolderTree();
    const QString staged = QStringLiteral(TARNWICK_STAGED_DATA_DIR);
    for (const QString &name : TemplateNames) {
        const QString target = Folders::BlogFolder() + QLatin1Char('/') + name;
        QFile::remove(target);
        if (!QFile::copy(staged + QLatin1Char('/') + name, target))
            return false;
        QFile(target).setPermissions(QFile(target).permissions() | QFileDevice::WriteOwner);
    }
    return true;
}

inline bool writeText(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                          : QStringLiteral("<missing>");
}

// A real JPEG of the size, one colour with a white band across its top.
inline bool makePhoto(const QString &path, const QColor &colour, int width = 640, int height = 480)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    QPainter painter(&image);
    painter.fillRect(0, 0, width, height / 8, Qt::white);
    painter.end();
    return image.save(path, "JPEG", 90);
}

// A new Web Log's main record as the editor makes it.
inline BlogRecords newWebLog(const QString &name, const QString &title)
{
    BlogRecords records;
    records.main.FileName = name;
    records.main.MainTitle = title;
    records.main.TitleColor = QStringLiteral("#008000");
    records.main.BackgroundColor = QStringLiteral("#7F7Fff");
    records.main.SubTextColor = QStringLiteral("#000000");
    records.main.FontType = QStringLiteral("Arial");
    records.main.MainDate = QStringLiteral("2024-05-01");
    records.main.ShowPointers = QStringLiteral("Yes");
    records.main.ShowCommentPage = QStringLiteral("Yes");
    records.main.DirectorySavedTo = QStringLiteral("Web_Log");
    BuildBlog::SaveBlogMain(records);
    return records;
}

// A section as the editor makes it, with its text, order and picture.
inline void addSection(BlogRecords &records, const QString &title, const QString &text,
                       const QString &order = QStringLiteral("0"),
                       const QString &picture = QString(),
                       const QString &position = QStringLiteral("Left"),
                       const QString &date = QStringLiteral("2024-05-01"))
{
    BuildBlog::ClearBlogSection(records);
    BlogSection &s = records.section;
    s.FileName = records.main.FileName;
    s.SubTitle = BuildBlog::CleanFileName(title);
    s.DisplayedSubTitle = title;
    s.BlogText = text;
    s.Author = QStringLiteral("Ann");
    s.BlogDate = date;
    s.PhotoPath = picture;
    s.PhotoTitle = picture.isEmpty() ? QString() : QStringLiteral("The view");
    s.Position = position;
    s.SubTileFont = QStringLiteral("Arial");
    s.Order = order;
    BuildBlog::SaveBlogSection(records);
}

inline void addPointer(BlogRecords &records, const QString &category, const QString &name,
                       const QString &url)
{
    records.pointer = BlogPointer();
    records.pointer.Category = category;
    records.pointer.DisplayName = name;
    records.pointer.URL = url;
    records.pointer.FileName = category + QStringLiteral(" - ") + name;
    BuildBlog::SaveBlogPointer(records);
}

inline void addComment(BlogRecords &records, const QString &name, const QString &text)
{
    records.comment = BlogComment();
    records.comment.FileName = name;
    records.comment.Comment = text;
    BuildBlog::SaveBlogComment(records);
}

// What "tidy -errors" says of a page: its error lines ("" when clean of errors; warnings are
// not errors). "tidy is not installed" when it can't be run.
inline QString tidyErrors(const QString &page)
{
    QProcess tidy;
    tidy.start(QStringLiteral("tidy"), {QStringLiteral("-errors"), QStringLiteral("-q"), page});
    if (!tidy.waitForStarted(10000))
        return QStringLiteral("tidy is not installed");
    tidy.waitForFinished(60000);
    const QString out = QString::fromUtf8(tidy.readAllStandardError());
    QStringList errors;
    for (const QString &line : out.split(QLatin1Char('\n'))) {
        if (line.contains(QLatin1String("Error:")))
            errors << line;
    }
    if (tidy.exitCode() >= 2 && errors.isEmpty())
        errors << out;
    return errors.join(QLatin1Char('\n'));
}

// Every href and src of a page, in order.
inline QStringList pageLinks(const QString &html)
{
    QStringList links;
    static const QRegularExpression link(QStringLiteral("(?:href|src)=\"([^\"]*)\""));
    for (auto it = link.globalMatch(html); it.hasNext();)
        links << it.next().captured(1);
    return links;
}

// A window with fixed choices for the jobs.
struct TestBuildWindow : BlogBuildWindow
{
    BlogBuildOptions values;
    bool local = false;
    QString caption;
    QString blogDirName;
    QString uploadPathCaption;
    int recordsChangedCalls = 0;
    QStringList progress; // "show"/"hide"
    bool busy = false;

    BlogBuildOptions options() const override { return values; }
    bool runWithoutConnections() const override { return local; }
    void showProgressFrame(bool show) override
    {
        progress << (show ? QStringLiteral("show") : QStringLiteral("hide"));
    }
    void setBusy(bool on) override { busy = on; }
    void setCaption(const QString &text) override { caption = text; }
    void setBlogDirName(const QString &text) override { blogDirName = text; }
    void setUploadPathCaption(const QString &text) override { uploadPathCaption = text; }
    void recordsChanged() override { ++recordsChangedCalls; }
};

} // namespace WebLogFixture
