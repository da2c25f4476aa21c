#include "BookmarkFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>

#include <vector>

namespace BookmarkFile {

namespace {

QString shown(const QString &name)
{
    return QLatin1Char('\'') + QDir::toNativeSeparators(name) + QLatin1Char('\'');
}

QString cutShort(const QString &name)
{
    return QStringLiteral("The bookmarks file ") + shown(name) +
           QStringLiteral(" ends too early: it was cut short, perhaps while it was copied. "
                          "Nothing was added. Export the bookmarks from the browser again.");
}

QString notBookmarks(const QString &name)
{
    return shown(name) +
           QStringLiteral(" is not a bookmarks file. In the browser, export the bookmarks "
                          "\"to HTML\" and choose the file it writes.");
}

bool isTagNameChar(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') || (u >= u'0' && u <= u'9');
}

bool isBlank(QChar c)
{
    const char16_t u = c.unicode();
    return u == u' ' || u == u'\t' || u == u'\r' || u == u'\n' || u == u'\f';
}

// Blanks and line breaks as one space, none at either end.
QString collapsed(const QString &text)
{
    QString out;
    out.reserve(text.size());
    bool blank = false;
    for (const QChar c : text) {
        if (isBlank(c) || c == QChar(0xA0)) {
            blank = !out.isEmpty();
            continue;
        }
        if (blank)
            out += QLatin1Char(' ');
        blank = false;
        out += c;
    }
    return out;
}

struct Tag
{
    QString name; // upper case
    bool closing = false;
    QHash<QString, QString> attributes; // names in upper case, values as they stand
};

// Reads the tag that starts at text[at] == '<' up to its '>'; false when the text ends first.
// end is the index after the '>'.
bool readTag(const QString &text, qsizetype at, Tag &tag, qsizetype &end)
{
    qsizetype i = at + 1;
    const qsizetype size = text.size();
    tag = Tag();
    if (i < size && text.at(i) == QLatin1Char('/')) {
        tag.closing = true;
        ++i;
    }
    const qsizetype nameStart = i;
    while (i < size && isTagNameChar(text.at(i)))
        ++i;
    tag.name = text.mid(nameStart, i - nameStart).toUpper();
    for (;;) {
        while (i < size && (isBlank(text.at(i)) || text.at(i) == QLatin1Char('/')))
            ++i;
        if (i >= size)
            return false;
        if (text.at(i) == QLatin1Char('>')) {
            end = i + 1;
            return true;
        }
        const qsizetype keyStart = i;
        while (i < size && !isBlank(text.at(i)) && text.at(i) != QLatin1Char('=') &&
               text.at(i) != QLatin1Char('>'))
            ++i;
        const QString key = text.mid(keyStart, i - keyStart).toUpper();
        while (i < size && isBlank(text.at(i)))
            ++i;
        QString value;
        if (i < size && text.at(i) == QLatin1Char('=')) {
            ++i;
            while (i < size && isBlank(text.at(i)))
                ++i;
            if (i >= size)
                return false;
            const QChar quote = text.at(i);
            if (quote == QLatin1Char('"') || quote == QLatin1Char('\'')) {
                const qsizetype close = text.indexOf(quote, i + 1);
                if (close < 0)
                    return false;
                value = text.mid(i + 1, close - i - 1);
                i = close + 1;
            } else {
                const qsizetype valueStart = i;
                while (i < size && !isBlank(text.at(i)) && text.at(i) != QLatin1Char('>'))
                    ++i;
                value = text.mid(valueStart, i - valueStart);
            }
        }
        if (!key.isEmpty() && !tag.attributes.contains(key))
            tag.attributes.insert(key, value);
    }
}

bool isBrowserTopFolder(const Tag &h3)
{
    return h3.attributes.contains(QStringLiteral("PERSONAL_TOOLBAR_FOLDER")) ||
           h3.attributes.contains(QStringLiteral("UNFILED_BOOKMARKS_FOLDER"));
}

QString decodeFileText(const QByteArray &bytes)
{
    QByteArray body = bytes;
    if (body.startsWith("\xEF\xBB\xBF"))
        body.remove(0, 3);
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(body);
    if (!utf8.hasError())
        return text;
    // Older exports were written in the system's single-byte code page, Windows-1252 for the
    // western languages: Latin-1 with printable characters in 0x80-0x9F.
    static constexpr char16_t high[32] = {
        0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    text.resize(body.size());
    for (qsizetype i = 0; i < body.size(); ++i) {
        const auto byte = static_cast<unsigned char>(body.at(i));
        text[i] = (byte >= 0x80 && byte < 0xA0) ? QChar(high[byte - 0x80]) : QChar(char16_t(byte));
    }
    return text;
}

// One open <DL>: the folder whose links it holds.
struct Level
{
    int folder = -1; // index into the result's folders, -1 while it has no link yet
    QStringList path;
    bool browserTop = false; // one of the browser's own top folders
};

} // namespace

QString DecodeEntities(const QString &text)
{
    if (!text.contains(QLatin1Char('&')))
        return text;
    static const QHash<QString, QString> named = {
        {QStringLiteral("amp"), QStringLiteral("&")},
        {QStringLiteral("lt"), QStringLiteral("<")},
        {QStringLiteral("gt"), QStringLiteral(">")},
        {QStringLiteral("quot"), QStringLiteral("\"")},
        {QStringLiteral("apos"), QStringLiteral("'")},
        {QStringLiteral("nbsp"), QString(QChar(0xA0))},
        {QStringLiteral("copy"), QString(QChar(0xA9))},
        {QStringLiteral("reg"), QString(QChar(0xAE))},
        {QStringLiteral("ndash"), QString(QChar(0x2013))},
        {QStringLiteral("mdash"), QString(QChar(0x2014))},
        {QStringLiteral("hellip"), QString(QChar(0x2026))},
    };
    QString out;
    out.reserve(text.size());
    qsizetype i = 0;
    while (i < text.size()) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('&')) {
            out += c;
            ++i;
            continue;
        }
        const qsizetype semicolon = text.indexOf(QLatin1Char(';'), i + 1);
        if (semicolon < 0 || semicolon - i > 12) {
            out += c;
            ++i;
            continue;
        }
        const QString entity = text.mid(i + 1, semicolon - i - 1);
        QString replacement;
        if (entity.startsWith(QLatin1Char('#'))) {
            bool ok = false;
            uint code = 0;
            if (entity.size() > 2 &&
                (entity.at(1) == QLatin1Char('x') || entity.at(1) == QLatin1Char('X')))
                code = entity.mid(2).toUInt(&ok, 16);
            else if (entity.size() > 1)
                code = entity.mid(1).toUInt(&ok, 10);
            if (ok && code > 0 && code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF)) {
                const char32_t point = code;
                replacement = QString::fromUcs4(&point, 1);
            }
        } else {
            replacement = named.value(entity);
        }
        if (replacement.isEmpty()) {
            out += c;
            ++i;
            continue;
        }
        out += replacement;
        i = semicolon + 1;
    }
    return out;
}

bool IsWebAddress(const QString &url)
{
    for (const char *scheme : {"http://", "https://", "ftp://"}) {
        if (url.startsWith(QLatin1String(scheme), Qt::CaseInsensitive) &&
            url.size() > qsizetype(qstrlen(scheme)))
            return true;
    }
    return false;
}

BookmarkFileResult ReadBookmarks(const QByteArray &bytes, const QString &name)
{
    BookmarkFileResult result;
    const qsizetype nul = bytes.indexOf('\0');
    QByteArray head = bytes.left(1024);
    if (head.startsWith("\xEF\xBB\xBF"))
        head.remove(0, 3);
    if (!head.trimmed().toUpper().startsWith("<!DOCTYPE NETSCAPE-BOOKMARK-FILE-1")) {
        result.message = notBookmarks(name);
        return result;
    }
    if (nul >= 0) {
        result.message = QStringLiteral("The bookmarks file ") + shown(name) +
                         QStringLiteral(" holds bytes that are not text (at byte ") +
                         QString::number(nul) +
                         QStringLiteral("): it is damaged. Nothing was added. Export the "
                                        "bookmarks from the browser again.");
        return result;
    }
    const QString text = decodeFileText(bytes);

    std::vector<Level> levels; // the open <DL> lists, the root first
    QStringList pendingPath;   // the <H3> just read: the folder whose <DL> comes next
    bool pendingFolder = false;
    bool pendingBrowserTop = false;
    bool rootOpened = false;
    bool rootClosed = false;

    enum class Reading
    {
        Nothing,
        Heading,
        FolderName,
        Link
    };
    Reading reading = Reading::Nothing;
    QString collected;
    QString href;
    Tag h3;

    // Nothing of a file that can't be read whole is given.
    const auto failed = [&result](const QString &message) {
        BookmarkFileResult none;
        none.message = message;
        none.heading = result.heading;
        return none;
    };
    int rootFolder = -1; // the folder of the links in the root list
    const auto currentLevel = [&]() -> Level * {
        return levels.empty() ? nullptr : &levels.back();
    };
    const auto addLink = [&](const QString &title, const QString &url) {
        if (!IsWebAddress(url)) {
            ++result.notWeb;
            return;
        }
        Level *level = currentLevel();
        const bool inRoot = !level || level->path.isEmpty();
        int &folder = inRoot ? rootFolder : level->folder;
        if (folder < 0) {
            BookmarkFolder made;
            made.path = inRoot ? QStringList{result.heading.isEmpty() ? QStringLiteral("Bookmarks")
                                                                      : result.heading}
                               : level->path;
            result.folders.append(made);
            folder = int(result.folders.size()) - 1;
        }
        result.folders[folder].links.append(Bookmark{title, url});
        ++result.links;
    };
    const auto endReading = [&]() {
        const QString value = collapsed(DecodeEntities(collected));
        switch (reading) {
        case Reading::Heading:
            if (result.heading.isEmpty())
                result.heading = value;
            break;
        case Reading::FolderName: {
            ++result.folderCount;
            const Level *parent = currentLevel();
            const bool parentIsRoot = !parent || levels.size() == 1;
            pendingBrowserTop = parentIsRoot && isBrowserTopFolder(h3);
            QStringList path;
            if (parent && !parentIsRoot && !parent->browserTop)
                path = parent->path;
            if (path.size() < MaxNameDepth)
                path.append(value);
            pendingPath = path;
            pendingFolder = true;
            break;
        }
        case Reading::Link:
            addLink(value, collapsed(DecodeEntities(href)));
            break;
        case Reading::Nothing:
            break;
        }
        reading = Reading::Nothing;
        collected.clear();
    };

    const qsizetype size = text.size();
    qsizetype i = 0;
    while (i < size) {
        const qsizetype lt = text.indexOf(QLatin1Char('<'), i);
        const qsizetype textEnd = lt < 0 ? size : lt;
        if (reading != Reading::Nothing)
            collected += QStringView(text).mid(i, textEnd - i);
        if (lt < 0)
            break;
        i = lt;
        if (text.mid(i, 4) == QLatin1String("<!--")) {
            const qsizetype close = text.indexOf(QLatin1String("-->"), i + 4);
            if (close < 0)
                return failed(cutShort(name));
            i = close + 3;
            continue;
        }
        if (i + 1 < size &&
            (text.at(i + 1) == QLatin1Char('!') || text.at(i + 1) == QLatin1Char('?'))) {
            const qsizetype close = text.indexOf(QLatin1Char('>'), i + 2);
            if (close < 0)
                return failed(cutShort(name));
            i = close + 1;
            continue;
        }
        if (i + 1 >= size ||
            !(isTagNameChar(text.at(i + 1)) || text.at(i + 1) == QLatin1Char('/'))) {
            // A lone "<" in a title.
            if (reading != Reading::Nothing)
                collected += QLatin1Char('<');
            ++i;
            continue;
        }
        Tag tag;
        qsizetype end = 0;
        if (!readTag(text, i, tag, end))
            return failed(cutShort(name));
        i = end;
        const QString &n = tag.name;
        if (!tag.closing && n == QLatin1String("A")) {
            if (reading != Reading::Nothing)
                endReading();
            reading = Reading::Link;
            href = tag.attributes.value(QStringLiteral("HREF"));
        } else if (!tag.closing && n == QLatin1String("H3")) {
            if (reading != Reading::Nothing)
                endReading();
            reading = Reading::FolderName;
            h3 = tag;
        } else if (!tag.closing && n == QLatin1String("H1")) {
            if (reading != Reading::Nothing)
                endReading();
            reading = Reading::Heading;
        } else if (tag.closing && (n == QLatin1String("A") || n == QLatin1String("H3") ||
                                   n == QLatin1String("H1"))) {
            if (reading != Reading::Nothing)
                endReading();
        } else if (n == QLatin1String("DL")) {
            if (reading != Reading::Nothing)
                endReading();
            if (!tag.closing) {
                Level level;
                if (levels.empty()) {
                    rootOpened = true;
                } else if (pendingFolder) {
                    level.path = pendingPath;
                    level.browserTop = pendingBrowserTop;
                } else {
                    // A list without a folder name: its links stay with the folder around it.
                    level = levels.back();
                }
                pendingFolder = false;
                pendingBrowserTop = false;
                levels.push_back(level);
            } else if (!levels.empty()) {
                const int folder = levels.back().folder;
                levels.pop_back();
                // An unnamed inner list shares its folder with the list around it.
                if (!levels.empty() && levels.back().folder < 0 && folder >= 0 &&
                    result.folders[folder].path == levels.back().path &&
                    !levels.back().path.isEmpty())
                    levels.back().folder = folder;
                if (levels.empty())
                    rootClosed = true;
            }
        } else if (!tag.closing && n == QLatin1String("HR")) {
            ++result.separators;
        } else if (!tag.closing && (n == QLatin1String("DT") || n == QLatin1String("DD"))) {
            if (reading != Reading::Nothing)
                endReading();
        }
    }
    if (reading != Reading::Nothing || (rootOpened && !rootClosed) || !levels.empty())
        return failed(cutShort(name));
    if (!rootOpened)
        return failed(QStringLiteral("The bookmarks file ") + shown(name) +
                      QStringLiteral(" holds no list of bookmarks. Nothing was added."));
    if (result.links == 0) {
        result.message = QStringLiteral("The bookmarks file ") + shown(name) +
                         QStringLiteral(" holds no links to web pages. Nothing was added.");
        return result;
    }
    result.ok = true;
    return result;
}

BookmarkFileResult ReadBookmarkFile(const QString &path)
{
    BookmarkFileResult result;
    const QFileInfo info(path);
    const QString name = info.fileName();
    if (!info.isFile()) {
        result.message =
            QStringLiteral("The bookmarks file ") + shown(path) + QStringLiteral(" was not found.");
        return result;
    }
    if (info.size() > MaxFileBytes) {
        result.message = shown(name) + QStringLiteral(" is too large to be a bookmarks file.");
        return result;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.message = QStringLiteral("The bookmarks file ") + shown(path) +
                         QStringLiteral(" could not be read: ") + file.errorString();
        return result;
    }
    return ReadBookmarks(file.readAll(), name);
}

} // namespace BookmarkFile
