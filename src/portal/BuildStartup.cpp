#include "BuildStartup.h"

#include "Folders.h"
#include "RecordFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace BuildStartup {

namespace {

// Names starting with a dot are listed too: a link or Category a user named ".net news" is a
// hidden file here, and must not vanish from the lists.
QStringList filesEndingIn(const QString &folder, const QString &extension)
{
    QStringList names;
    const QStringList entries =
        QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString &name : entries) {
        if (name.size() > extension.size() && name.endsWith(extension, Qt::CaseInsensitive))
            names.append(name);
    }
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        const int order = a.compare(b, Qt::CaseInsensitive);
        return order != 0 ? order < 0 : a < b;
    });
    return names;
}

// The address with every character beyond ASCII %-escaped in UTF-8; the rest as it stands.
QString escapeBeyondAscii(const QString &url)
{
    QString out;
    out.reserve(url.size());
    for (const QChar c : url) {
        if (c.unicode() < 0x80) {
            out += c;
            continue;
        }
        if (c.isSurrogate()) {
            out += c; // joined with its partner below
            continue;
        }
        out += QString::fromLatin1(QUrl::toPercentEncoding(QString(c)));
    }
    // Surrogate pairs: escape them as one character.
    QString result;
    for (qsizetype i = 0; i < out.size(); ++i) {
        if (out.at(i).isHighSurrogate() && i + 1 < out.size() && out.at(i + 1).isLowSurrogate()) {
            result += QString::fromLatin1(QUrl::toPercentEncoding(out.mid(i, 2)));
            ++i;
        } else if (out.at(i).isSurrogate()) {
            continue; // a lone half is no character
        } else {
            result += out.at(i);
        }
    }
    return result;
}

} // namespace

std::optional<qint16> BulletValue(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && (text.at(i) == QLatin1Char(' ') || text.at(i) == QLatin1Char('\t')))
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+')))
        negative = text.at(i++) == QLatin1Char('-');
    qint64 value = 0;
    int digits = 0;
    for (; i < text.size() && text.at(i).isDigit() && text.at(i).unicode() < 0x80; ++i) {
        value = value * 10 + text.at(i).digitValue();
        if (++digits > 6)
            return std::nullopt;
    }
    if (digits == 0)
        return std::nullopt;
    if (negative)
        value = -value;
    if (value < -32768 || value > 32767)
        return std::nullopt;
    return static_cast<qint16>(value);
}

LoadResult LoadPageLink(const QString &path, PageLink &link)
{
    link = PageLink();
    LoadResult result;
    if (!QFileInfo(path).isFile()) {
        result.message = QStringLiteral("File not found");
        return result;
    }
    const RecordFileResult record = ReadRecordFile(path, RecordDecoding::Raw);
    if (!record.ok) {
        result.message = record.message;
        return result;
    }
    link.LinkName = GetRecordValue(record.text, QStringLiteral("LinkName"));
    link.URLName = GetRecordValue(record.text, QStringLiteral("URLName"));
    const std::optional<qint16> bullet =
        BulletValue(GetRecordValue(record.text, QStringLiteral("Bullet")));
    if (bullet && *bullet >= 0 && *bullet <= LastBullet) {
        link.Bullet = *bullet;
    } else {
        link.Bullet = NewLinkBullet;
        result.bulletReplaced = true;
    }
    result.ok = true;
    return result;
}

bool SavePageLink(const QString &path, const PageLink &link)
{
    if (path.contains(QLatin1String("/.ptr")) || path.contains(QLatin1String("\\.ptr")))
        return false;
    const QString fileName = QFileInfo(path).fileName();
    if (!FileNameProblem(fileName.left(fileName.size() - 4)).isEmpty())
        return false;
    QDir().mkpath(QFileInfo(path).absolutePath());
    return WriteRecordFile(path, PageLinkRecord(link)).ok;
}

QString PageLinkRecord(const PageLink &link)
{
    return RecordLine(QStringLiteral("LinkName"), EncodeRecordText(link.LinkName, true)) +
           RecordLine(QStringLiteral("URLName"), escapeBeyondAscii(link.URLName)) +
           RecordLine(QStringLiteral("Bullet"), QString::number(link.Bullet));
}

bool WriteNewPageLink(const QString &path, const PageLink &link)
{
    const QString fileName = QFileInfo(path).fileName();
    if (!fileName.endsWith(QLatin1String(".ptr")) ||
        !FileNameProblem(fileName.left(fileName.size() - 4)).isEmpty())
        return false;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    // The same bytes as WriteRecordFile writes: single-byte text and the closing line end.
    const QByteArray bytes = (PageLinkRecord(link) + QStringLiteral("\r\n")).toLatin1();
    if (file.write(bytes) != bytes.size()) {
        file.remove();
        return false;
    }
    return true;
}

bool UpdatePageLinkURL(const QString &path, const QString &url)
{
    PageLink link;
    if (!LoadPageLink(path, link).ok)
        return false;
    // The name is read as it stands in the file: undone once, it is written back the same.
    link.LinkName = DecodeRecordText(link.LinkName);
    link.URLName = url;
    return SavePageLink(path, link);
}

bool MakeCategory(const QString &name)
{
    return MakeCategoryIn(Folders::StartupFolder(), name);
}

bool MakeCategoryIn(const QString &startupFolder, const QString &name)
{
    if (!FileNameProblem(name).isEmpty())
        return false;
    const QString folder = startupFolder + QLatin1Char('/') + name;
    QDir().mkpath(folder);
    QFile file(folder + QStringLiteral(".Cat"));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray line = "directory file " + name.toUtf8() + "\r\n";
    return file.write(line) == line.size();
}

QString FileNameProblem(const QString &name)
{
    if (name.trimmed().isEmpty())
        return QStringLiteral("The name is empty.");
    static const QString forbidden = QStringLiteral("\\/:*?\"<>|");
    for (const QChar c : name) {
        if (c.unicode() < 0x20 || forbidden.contains(c))
            return QLatin1Char('\'') + name +
                   QStringLiteral("' can't be the name of a file. Leave out these characters: "
                                  "\\ / : * ? \" < > |");
    }
    if (name.count(QLatin1Char('.')) == name.size())
        return QLatin1Char('\'') + name + QStringLiteral("' can't be the name of a file.");
    if (name.toUtf8().size() > 200)
        return QStringLiteral("The name is too long for a file.");
    return QString();
}

QStringList CategoryFiles()
{
    return filesEndingIn(Folders::StartupFolder(), QStringLiteral(".Cat"));
}

QStringList PageLinkFiles(const QString &folder)
{
    return filesEndingIn(folder, QStringLiteral(".ptr"));
}

QString CategoryName(const QString &catFile)
{
    return catFile.left(std::max<qsizetype>(0, catFile.size() - 4));
}

QString CategoryFolder(const QString &catFile)
{
    return Folders::StartupFolder() + QLatin1Char('/') + CategoryName(catFile);
}

QString PageLinkPath(const QString &folder, const QString &name)
{
    return folder + QLatin1Char('/') + name + QStringLiteral(".ptr");
}

} // namespace BuildStartup
