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
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return std::nullopt;
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
    const QString name = decodeName(raw.mid(match.capturedStart(8)));
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return std::nullopt;
    item.Name = name;
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

} // namespace

std::optional<cDirItem> ParseLine(const QByteArray &rawLine, const QDateTime &now)
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
    return parseDos(line, raw);
}

QList<cDirItem> Parse(const QByteArray &listing, const QDateTime &now)
{
    QList<cDirItem> items;
    for (const QByteArray &line : listing.split('\n')) {
        if (auto item = ParseLine(line, now))
            items.append(*item);
    }
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
