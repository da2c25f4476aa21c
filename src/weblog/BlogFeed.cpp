#include "BlogFeed.h"

#include <QLocale>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

QString rfc3339(const QDateTime &time)
{
    return time.toUTC().toString(Qt::ISODate);
}

} // namespace

QDateTime SectionTime(const QString &blogDate, const QDateTime &fallback)
{
    const QString text = blogDate.trimmed();
    const QLocale c = QLocale::c();
    for (const char *form : {"yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd HH:mm", "yyyy-MM-ddTHH:mm:ss"}) {
        const QDateTime time = c.toDateTime(text, QString::fromLatin1(form));
        if (time.isValid())
            return time;
    }
    for (const char *form : {"yyyy-MM-dd", "d MMMM yyyy", "MMMM d, yyyy", "M/d/yyyy"}) {
        const QDate date = c.toDate(text, QString::fromLatin1(form));
        if (date.isValid())
            return QDateTime(date, QTime(12, 0), Qt::UTC);
    }
    return fallback.isValid() ? fallback : QDateTime::fromSecsSinceEpoch(0, Qt::UTC);
}

QString WebAddress(const QString &site, const QString &path)
{
    QString address = site.trimmed();
    if (!address.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) &&
        !address.startsWith(QLatin1String("https://"), Qt::CaseInsensitive))
        address.prepend(QStringLiteral("http://"));
    while (address.endsWith(QLatin1Char('/')))
        address.chop(1);
    QString rest = path;
    while (rest.startsWith(QLatin1Char('/')))
        rest.remove(0, 1);
    return rest.isEmpty() ? address + QLatin1Char('/') : address + QLatin1Char('/') + rest;
}

QByteArray MakeAtomFeed(const BlogFeedInput &input)
{
    QList<BlogFeedEntry> entries = input.entries;
    std::stable_sort(
        entries.begin(), entries.end(),
        [](const BlogFeedEntry &a, const BlogFeedEntry &b) { return a.updated > b.updated; });
    const QDateTime newest =
        entries.isEmpty() ? QDateTime::fromSecsSinceEpoch(0, Qt::UTC) : entries.first().updated;

    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2005/Atom"));
    xml.writeStartElement(QStringLiteral("feed"));
    xml.writeTextElement(QStringLiteral("id"), input.feedAddress);
    xml.writeTextElement(QStringLiteral("title"), input.title);
    xml.writeTextElement(QStringLiteral("updated"), rfc3339(newest));
    xml.writeEmptyElement(QStringLiteral("link"));
    xml.writeAttribute(QStringLiteral("rel"), QStringLiteral("self"));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("application/atom+xml"));
    xml.writeAttribute(QStringLiteral("href"), input.feedAddress);
    xml.writeEmptyElement(QStringLiteral("link"));
    xml.writeAttribute(QStringLiteral("rel"), QStringLiteral("alternate"));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("text/html"));
    xml.writeAttribute(QStringLiteral("href"), input.pageAddress);
    // A feed-wide author stands in for every entry that names none.
    xml.writeStartElement(QStringLiteral("author"));
    xml.writeTextElement(QStringLiteral("name"), input.author.trimmed().isEmpty()
                                                     ? QStringLiteral("Tarnwick")
                                                     : input.author.trimmed());
    xml.writeEndElement();
    xml.writeStartElement(QStringLiteral("generator"));
    xml.writeCharacters(QStringLiteral("Tarnwick"));
    xml.writeEndElement();

    for (const BlogFeedEntry &entry : std::as_const(entries)) {
        xml.writeStartElement(QStringLiteral("entry"));
        xml.writeTextElement(QStringLiteral("id"), entry.id);
        xml.writeTextElement(QStringLiteral("title"), entry.title);
        xml.writeTextElement(QStringLiteral("updated"), rfc3339(entry.updated));
        xml.writeEmptyElement(QStringLiteral("link"));
        xml.writeAttribute(QStringLiteral("rel"), QStringLiteral("alternate"));
        xml.writeAttribute(QStringLiteral("type"), QStringLiteral("text/html"));
        xml.writeAttribute(QStringLiteral("href"), entry.link);
        if (!entry.author.trimmed().isEmpty()) {
            xml.writeStartElement(QStringLiteral("author"));
            xml.writeTextElement(QStringLiteral("name"), entry.author.trimmed());
            xml.writeEndElement();
        }
        xml.writeStartElement(QStringLiteral("content"));
        xml.writeAttribute(QStringLiteral("type"), QStringLiteral("html"));
        xml.writeCharacters(entry.html);
        xml.writeEndElement();
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    return bytes;
}
