#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

// The Atom feed (RFC 4287) that a Web Log's page is sent with, so that readers can follow it
// in a feed reader: feed.xml beside Web_Log.htm, one entry per section, newest first.

struct BlogFeedEntry
{
    QString id;        // a unique, lasting IRI of the section
    QString title;     // the heading as typed
    QString author;    // "" when the section hides its author
    QString html;      // the section's text as the page shows it (HTML)
    QString link;      // absolute address the entry leads to
    QDateTime updated; // when the section was written
};

struct BlogFeedInput
{
    QString title;                // the Web Log's title (its name when it has none)
    QString pageAddress;          // absolute address of Web_Log.htm
    QString feedAddress;          // absolute address of feed.xml
    QString author;               // who writes the Web Log; "" puts "Tarnwick" there
    QList<BlogFeedEntry> entries; // in any order: the feed sorts them newest first
};

// The feed as UTF-8 XML. The feed's own updated time is that of its newest entry (the Unix
// epoch for a Web Log without sections), so the same Web Log gives the same feed.
QByteArray MakeAtomFeed(const BlogFeedInput &input);

// The time a section was written: its BlogDate when that reads as a date ("yyyy-MM-dd", with
// or without a time, or the long forms the program writes), at noon UTC for a date alone;
// otherwise fallback (the record file's time).
QDateTime SectionTime(const QString &blogDate, const QDateTime &fallback);

// "http://" + site + "/" + path, without doubling a scheme the site already has, and with
// no "//" where the parts meet.
QString WebAddress(const QString &site, const QString &path);
