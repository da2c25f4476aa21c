#pragma once

#include "cDirList.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <optional>

// Reads the text of a LIST reply. The forms that servers send are understood:
//   Unix:  "-rw-r--r--   1 owner group   1234 Nov 22 05:01 name with blanks"
//   DOS:   "11-22-26  05:01AM       <DIR>          name"
//   MLSD:  "type=file;size=1234;modify=20261122050100;perm=rw; name with blanks"
// Lines of none of them ("total 12", blank lines) and the entries "." and ".." are passed
// over, and so is an entry whose name no file or directory can have (see IsUsableName). Names are
// UTF-8, or Latin-1 where they are not valid UTF-8. Times in a listing are taken as UTC and given
// in local time; a Unix date without a year is in the last twelve months before now.
namespace FtpListing {

// What the program reads of one directory's listing, however much a server sends: the text up
// to MaxBytes, and up to MaxEntries entries. A longer listing is refused whole.
inline constexpr qsizetype MaxBytes = 32 * 1024 * 1024;
inline constexpr int MaxEntries = 200000;

std::optional<cDirItem> ParseLine(const QByteArray &line, const QDateTime &now);
struct Counts
{
    int unusable = 0;     // entries passed over for their names
    bool tooMany = false; // more than MaxEntries entries: the list stops there
};
// Every entry of a listing, in its order (MaxEntries at most); counts, when given, tells what
// was passed over.
QList<cDirItem> Parse(const QByteArray &listing,
                      const QDateTime &now = QDateTime::currentDateTimeUtc(),
                      Counts *counts = nullptr);

// False for a name that can't stand for one entry of a directory: an empty one, "." and "..",
// and one holding "/", a NUL, a CR or a LF. Such a name would reach another directory, here or
// on the server, or break the command that names it.
bool IsUsableName(const QString &name);

// True when name matches a find pattern: "*" and "?" wildcards, letters in any case; "*.*"
// and "" match every name, with or without a dot.
bool MatchesFilter(const QString &name, const QString &filter);

} // namespace FtpListing
