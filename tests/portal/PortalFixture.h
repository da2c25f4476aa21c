#pragma once

#include "DefaultData.h"
#include "Folders.h"
#include "ScriptedUi.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

// Shared pieces of the Portal tests: the default Portal data in place as the first start leaves
// it, records written byte for byte, and the checks of a built page.
namespace PortalFixture {

// The folder tree and the default data of the first start: the templates, the bullets and the
// default Categories and Page Links in the Startup folder.
inline bool installDefaultPortal()
{
    Folders::SetProgramFolder(QStringLiteral(TARNWICK_STAGED_DATA_DIR));
    Folders::MakeFolderTree();
    ScriptedUi ui;
    const CopyFilesReport report = CopyFiles(ui);
    return QFileInfo(Folders::StartupFolder() + QStringLiteral("/Top.txt")).isFile() &&
           QFileInfo(Folders::StartupFolder() + QStringLiteral("/Arrow14.gif")).isFile() &&
           report.signFileFound;
}

// The Startup folder with the templates and bullets only: every default Category removed.
inline bool installEmptyPortal()
{
    if (!installDefaultPortal())
        return false;
    QDir startup(Folders::StartupFolder());
    for (const QFileInfo &info : startup.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (info.isDir())
            QDir(info.filePath()).removeRecursively();
        else if (info.suffix() == QLatin1String("Cat"))
            QFile::remove(info.filePath());
    }
    return true;
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

inline QString startup(const QString &relative)
{
    return Folders::StartupFolder() + QLatin1Char('/') + relative;
}

// What "tidy -errors" says of a page: its error lines ("" when clean of errors).
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

// The links of a page: text shown -> address, in page order.
inline QList<QPair<QString, QString>> pageLinks(const QString &html)
{
    QList<QPair<QString, QString>> links;
    static const QRegularExpression link(QStringLiteral(
        "<a class=\"link\" href=\"([^\"]*)\"><img src=\"([^\"]*)\"[^>]*><span>(.*)</span></a>"));
    for (auto it = link.globalMatch(html); it.hasNext();) {
        const auto match = it.next();
        links.append({match.captured(3), match.captured(1)});
    }
    return links;
}

// The bullets a page names, in page order.
inline QStringList pageBullets(const QString &html)
{
    QStringList bullets;
    static const QRegularExpression bullet(QStringLiteral("<img src=\"(Arrow[0-9]+\\.gif)\""));
    for (auto it = bullet.globalMatch(html); it.hasNext();)
        bullets << it.next().captured(1);
    return bullets;
}

} // namespace PortalFixture
