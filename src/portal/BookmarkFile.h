#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// The bookmarks file that browsers export ("Netscape bookmark file": Firefox, Chromium, Edge,
// Safari and Opera all write it): an HTML page that starts with
// <!DOCTYPE NETSCAPE-Bookmark-file-1>, whose folders are <DT><H3>name</H3> followed by a
// <DL><p> list, whose links are <DT><A HREF="..." ...>title</A>, and whose separators are <HR>.
//
// The reader works on the whole file in memory, in one pass, without recursion: any depth of
// folders, any length of attribute (an ICON data URI of many kilobytes) costs time in proportion
// to its bytes. It uses no Qt Widgets and may run on any thread.

struct Bookmark
{
    QString title; // as the browser shows it: entities decoded, blanks collapsed
    QString url;   // as the file holds it, entities decoded
};

// One folder that holds links of its own. path names it from the top: the names of the folders
// that hold it, outermost first (the file's root is left out; the browser's own top folders,
// "Bookmarks bar", "Other bookmarks", "Bookmarks Toolbar" and the like, are left out of the
// names of the folders inside them). The links directly in the root have the file's heading
// ("Bookmarks", "Bookmarks Menu") as their one name.
struct BookmarkFolder
{
    QStringList path;
    QList<Bookmark> links;
};

struct BookmarkFileResult
{
    bool ok = false;
    QString message;               // why nothing can be taken from the file
    QString heading;               // the file's <H1>
    QList<BookmarkFolder> folders; // in file order, each folder once, only those with links
    int links = 0;                 // links taken (web addresses)
    int notWeb = 0;                // links left out: javascript:, place:, file:, about: ...
    int separators = 0;
    int folderCount = 0; // every folder of the file, empty ones included
};

namespace BookmarkFile {

// Folders deeper than this share the name of their ancestor at this depth.
inline constexpr int MaxNameDepth = 12;
// A file larger than this is not read.
inline constexpr qint64 MaxFileBytes = 64 * 1024 * 1024;

// Reads the bytes of a bookmarks file. name is the file's name for the messages.
BookmarkFileResult ReadBookmarks(const QByteArray &bytes, const QString &name);
// Reads the file at path.
BookmarkFileResult ReadBookmarkFile(const QString &path);

// Text of the file with its character entities decoded (&amp; &lt; &#39; &#x2014; &nbsp; ...);
// an unknown or broken entity stays as it stands.
QString DecodeEntities(const QString &text);

// True for the addresses a Portal can link to: http, https and ftp.
bool IsWebAddress(const QString &url);

} // namespace BookmarkFile
