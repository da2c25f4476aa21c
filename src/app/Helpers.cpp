#include "Helpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>

namespace {

bool isSeparator(QChar c)
{
    return c == u'/' || c == u'\\';
}

QString withoutTrailingSeparators(const QString &path)
{
    qsizetype end = path.size();
    while (end > 1 && isSeparator(path.at(end - 1)))
        --end;
    return path.left(end);
}

qsizetype lastSeparator(const QString &path)
{
    return std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
}

// The hexadecimal digits at the start of pair (blanks don't count), as the old numeric parser
// read "&H" followed by the pair.
int leadingHex(const QString &pair)
{
    int value = 0;
    for (const QChar c : pair) {
        if (c == u' ' || c == u'\t')
            continue;
        const char16_t d = c.toLower().unicode();
        if (d >= u'0' && d <= u'9')
            value = value * 16 + (d - u'0');
        else if (d >= u'a' && d <= u'f')
            value = value * 16 + (d - u'a' + 10);
        else
            break;
    }
    return value;
}

} // namespace

QString GetRoot(const QString &path)
{
    const QString trimmed = withoutTrailingSeparators(path);
    return trimmed.mid(lastSeparator(trimmed) + 1);
}

QString GetPath(const QString &path)
{
    const QString trimmed = withoutTrailingSeparators(path);
    const qsizetype at = lastSeparator(trimmed);
    if (at < 0)
        return QString();
    if (at == 0)
        return trimmed.left(1);
    return trimmed.left(at);
}

void DoKill(const QString &path)
{
    const QFileInfo info(path);
    if (info.isSymLink() || (info.exists() && !info.isDir()))
        QFile::remove(path);
}

QString FileDateText(const QDateTime &time)
{
    return QLocale::c().toString(time.toLocalTime(), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString FileDateTime(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return QString();
    return FileDateText(info.lastModified());
}

int HexColorToRGB(const QString &text)
{
    const int red = leadingHex(text.mid(1, 2));
    const int green = leadingHex(text.mid(3, 2));
    const int blue = leadingHex(text.mid(5, 2));
    return red + 256 * green + 65536 * blue;
}

QString FindPathNoCase(const QString &folder, const QString &relativePath)
{
    QString path = folder;
    while (path.size() > 1 && isSeparator(path.back()))
        path.chop(1);
    const QStringList parts =
        QString(relativePath).replace(u'\\', u'/').split(u'/', Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const QString exact = path + u'/' + part;
        if (QFileInfo::exists(exact)) {
            path = exact;
            continue;
        }
        const QDir dir(path);
        if (!dir.exists())
            return QString();
        QString found;
        const QStringList entries =
            dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        for (const QString &entry : entries) {
            if (entry.compare(part, Qt::CaseInsensitive) == 0) {
                found = entry;
                break;
            }
        }
        if (found.isEmpty())
            return QString();
        path += u'/' + found;
    }
    return parts.isEmpty() ? QString() : path;
}

QString TrimBlanks(const QString &text)
{
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == QLatin1Char(' '))
        ++first;
    while (last > first && text.at(last - 1) == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}
