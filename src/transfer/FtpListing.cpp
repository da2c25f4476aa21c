#include "FtpListing.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace FtpListing {

namespace {

QString decodeName(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8(bytes);
    if (utf8.hasError())
        return QString::fromLatin1(bytes);
    return text;
}

int monthNumber(const QString &name)
{
    static const QStringList months = {
        QStringLiteral("jan"), QStringLiteral("feb"), QStringLiteral("mar"), QStringLiteral("apr"),
        QStringLiteral("may"), QStringLiteral("jun"), QStringLiteral("jul"), QStringLiteral("aug"),
        QStringLiteral("sep"), QStringLiteral("oct"), QStringLiteral("nov"), QStringLiteral("dec")};
    return int(months.indexOf(name.toLower())) + 1;
}

void setTimes(cDirItem &item, const QDateTime &utc)
{
    const QDateTime local = utc.isValid() ? utc.toLocalTime() : QDateTime();
    item.CreationTime = local;
    item.LastAccessTime = local;
    item.LastWriteTime = local;
}

std::optional<cDirItem> parseUnix(const QString &line, const QByteArray &raw, const QDateTime &now)
{
    static const QRegularExpression unixLine(QStringLiteral(
        "^([\\-dlbcpsD])([rwxsStTl\\-]{9})[+@.]?\\s+\\d+\\s+(?:\\S+\\s+)?\\S+\\s+(\\d+)\\s+"
        "([A-Za-z]{3})\\s+(\\d{1,2})\\s+(\\d{1,2}:\\d{2}|\\d{4}) (.*)$"));
    const auto match = unixLine.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    cDirItem item;
    const QChar kind = match.captured(1).at(0);
    const QString perms = match.captured(2);
    // The line was read as Latin-1, one character a byte, so the name's bytes are found at
    // the same offset in the raw line.
    QString name = decodeName(raw.mid(match.capturedStart(7)));
    if (kind == QLatin1Char('l')) {
        const qsizetype arrow = name.indexOf(QLatin1String(" -> "));
        if (arrow > 0)
            name.truncate(arrow);
    }
    item.Name = name;
    item.Size = match.captured(3).toLongLong();
    const bool writable = perms.at(1) == QLatin1Char('w');
    if (kind == QLatin1Char('d')) {
        item.Attributes = cDirItem::Directory;
        if (!writable)
            item.Attributes |= cDirItem::ReadOnly;
    } else {
        item.Attributes = writable ? cDirItem::Normal : cDirItem::ReadOnly;
    }
    if (item.Name.startsWith(QLatin1Char('.')))
        item.Attributes = (item.Attributes & ~cDirItem::Normal) | cDirItem::Hidden;

    const int month = monthNumber(match.captured(4));
    const int day = match.captured(5).toInt();
    const QString timeOrYear = match.captured(6);
    QDateTime stamp;
    if (month > 0) {
        if (timeOrYear.contains(QLatin1Char(':'))) {
            const QTime time = QTime::fromString(timeOrYear, QStringLiteral("H:mm"));
            int year = now.date().year();
            stamp = QDateTime(QDate(year, month, day), time, Qt::UTC);
            if (stamp > now.addDays(1))
                stamp = QDateTime(QDate(year - 1, month, day), time, Qt::UTC);
        } else {
            stamp = QDateTime(QDate(timeOrYear.toInt(), month, day), QTime(0, 0), Qt::UTC);
        }
    }
    setTimes(item, stamp);
    return item;
}

std::optional<cDirItem> parseDos(const QString &line, const QByteArray &raw)
{
    static const QRegularExpression dosLine(QStringLiteral(
        "^(\\d{1,2})-(\\d{1,2})-(\\d{2}|\\d{4})\\s+(\\d{1,2}):(\\d{2})\\s*([AaPp][Mm])?\\s+"
        "(<DIR>|\\d+)\\s+(.*)$"));
    const auto match = dosLine.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    cDirItem item;
    item.Name = decodeName(raw.mid(match.capturedStart(8)));
    if (match.captured(7) == QLatin1String("<DIR>")) {
        item.Attributes = cDirItem::Directory;
    } else {
        item.Attributes = cDirItem::Normal;
        item.Size = match.captured(7).toLongLong();
    }
    int year = match.captured(3).toInt();
    if (match.captured(3).size() == 2)
        year += year < 70 ? 2000 : 1900;
    int hour = match.captured(4).toInt();
    const QString half = match.captured(6).toUpper();
    if (half == QLatin1String("PM") && hour < 12)
        hour += 12;
    else if (half == QLatin1String("AM") && hour == 12)
        hour = 0;
    setTimes(item, QDateTime(QDate(year, match.captured(1).toInt(), match.captured(2).toInt()),
                             QTime(hour, match.captured(5).toInt()), Qt::UTC));
    return item;
}

// "type=file;size=1234;modify=20261122050100;perm=rw; name": facts up to the first "; ", then
// the name. The current and parent directory (type=cdir, type=pdir) are no entries.
std::optional<cDirItem> parseMlsd(const QByteArray &raw)
{
    const qsizetype gap = raw.indexOf("; ");
    if (gap < 0 || !raw.left(gap).contains('='))
        return std::nullopt;
    QByteArray type;
    QByteArray perm;
    bool havePerm = false;
    qint64 size = 0;
    QDateTime modified;
    for (const QByteArray &fact : raw.left(gap).split(';')) {
        const qsizetype equals = fact.indexOf('=');
        if (equals <= 0)
            return std::nullopt;
        const QByteArray name = fact.left(equals).toLower();
        const QByteArray value = fact.mid(equals + 1);
        if (name == "type") {
            type = value.toLower();
        } else if (name == "size" || name == "sizd") {
            bool ok = false;
            const qint64 number = value.toLongLong(&ok);
            size = ok && number >= 0 ? number : 0;
        } else if (name == "modify") {
            // YYYYMMDDHHMMSS, perhaps with fractions of a second; always UTC.
            modified = QDateTime::fromString(QString::fromLatin1(value.left(14)),
                                             QStringLiteral("yyyyMMddHHmmss"));
            modified.setTimeSpec(Qt::UTC);
        } else if (name == "perm") {
            perm = value.toLower();
            havePerm = true;
        }
    }
    if (type.isEmpty() || type == "cdir" || type == "pdir")
        return std::nullopt;
    cDirItem item;
    item.Name = decodeName(raw.mid(gap + 2));
    const bool directory = type == "dir";
    if (directory) {
        item.Attributes = cDirItem::Directory;
        if (havePerm && !perm.contains('c') && !perm.contains('m') && !perm.contains('p'))
            item.Attributes |= cDirItem::ReadOnly;
    } else {
        item.Size = size;
        const bool writable = !havePerm || perm.contains('w') || perm.contains('a');
        item.Attributes = writable ? cDirItem::Normal : cDirItem::ReadOnly;
    }
    if (item.Name.startsWith(QLatin1Char('.')))
        item.Attributes = (item.Attributes & ~cDirItem::Normal) | cDirItem::Hidden;
    setTimes(item, modified.isValid() ? modified : QDateTime());
    return item;
}

std::optional<cDirItem> parseAnyForm(const QByteArray &rawLine, const QDateTime &now)
{
    QByteArray raw = rawLine;
    while (raw.endsWith('\n') || raw.endsWith('\r'))
        raw.chop(1);
    if (raw.trimmed().isEmpty())
        return std::nullopt;
    // The structure is ASCII; the name is decoded on its own.
    const QString line = QString::fromLatin1(raw);
    if (auto item = parseUnix(line, raw, now))
        return item;
    if (auto item = parseDos(line, raw))
        return item;
    return parseMlsd(raw);
}

bool isOwnDirectory(const QString &name)
{
    return name == QLatin1String(".") || name == QLatin1String("..");
}

} // namespace

bool IsUsableName(const QString &name)
{
    if (name.isEmpty() || isOwnDirectory(name))
        return false;
    for (const QChar c : name) {
        if (c == QLatin1Char('/') || c == QChar(0) || c == QLatin1Char('\r') ||
            c == QLatin1Char('\n'))
            return false;
    }
    return true;
}

std::optional<cDirItem> ParseLine(const QByteArray &rawLine, const QDateTime &now)
{
    auto item = parseAnyForm(rawLine, now);
    if (!item || !IsUsableName(item->Name))
        return std::nullopt;
    return item;
}

QList<cDirItem> Parse(const QByteArray &listing, const QDateTime &now, Counts *counts)
{
    QList<cDirItem> items;
    Counts seen;
    qsizetype start = 0;
    while (start < listing.size()) {
        qsizetype end = listing.indexOf('\n', start);
        if (end < 0)
            end = listing.size();
        auto item = parseAnyForm(listing.mid(start, end - start), now);
        start = end + 1;
        if (!item)
            continue;
        if (IsUsableName(item->Name)) {
            if (items.size() >= MaxEntries) {
                seen.tooMany = true;
                break;
            }
            items.append(std::move(*item));
        } else if (!item->Name.isEmpty() && !isOwnDirectory(item->Name)) {
            ++seen.unusable;
        }
    }
    if (counts)
        *counts = seen;
    return items;
}

bool MatchesFilter(const QString &name, const QString &filter)
{
    const QString pattern = filter.trimmed();
    if (pattern.isEmpty() || pattern == QLatin1String("*.*") || pattern == QLatin1String("*"))
        return true;
    const QRegularExpression expression(QRegularExpression::wildcardToRegularExpression(pattern),
                                        QRegularExpression::CaseInsensitiveOption);
    return expression.match(name).hasMatch();
}

} // namespace FtpListing
