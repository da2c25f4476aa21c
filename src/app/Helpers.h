#pragma once

#include <QDateTime>
#include <QString>

// Small helpers that every part of the program shares.

// The last part of a path ("Pics" of "/home/ann/Pics" or of "C:\Pics\"). A name read from an old
// record may still hold "\", so both "/" and "\" separate. Separators at the end are ignored.
// The text without the blanks (spaces only) at its start and end; tabs and line breaks stay.
QString TrimBlanks(const QString &text);

QString GetRoot(const QString &path);
// The parent of a path, without a separator at its end ("/home/ann" of "/home/ann/Pics"); "/"
// for a child of the root; "" when the path has no separator.
QString GetPath(const QString &path);

// Deletes the file at path if there is one; a missing file or a failure is passed over.
void DoKill(const QString &path);

// The one fixed form of a file's date in records: "yyyy-MM-dd HH:mm:ss" in local time, whatever
// the locale. Records compare these texts, so the form never changes.
QString FileDateText(const QDateTime &time);
// The modification date of the file at path in that form; "" when there is no such file.
QString FileDateTime(const QString &path);

// "#RRGGBB" to the colour number red + 256 * green + 65536 * blue. The pairs are taken from
// positions 2, 4 and 6 without looking at the first character; a missing or bad pair counts 0,
// and a pair that starts with hex digits counts those ("#7" gives 7).
int HexColorToRGB(const QString &text);

// The real path of relativePath ("Startup/Office Tools/Zipcode Search.ptr") under folder, each
// part matched with case ignored when the exact spelling isn't there; "" when there is none.
QString FindPathNoCase(const QString &folder, const QString &relativePath);
