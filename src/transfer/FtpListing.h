#pragma once

#include "cDirList.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <optional>

// Reads the text of a LIST reply. Both forms that servers send are understood:
//   Unix:  "-rw-r--r--   1 owner group   1234 Nov 22 05:01 name with blanks"
//   DOS:   "11-22-26  05:01AM       <DIR>          name"
// Lines of neither form ("total 12", blank lines) and the entries "." and ".." are passed
// over. Names are UTF-8, or Latin-1 where they are not valid UTF-8. Times in a listing are
// taken as UTC and given in local time; a Unix date without a year is in the last twelve months
// before now.
namespace FtpListing {

std::optional<cDirItem> ParseLine(const QByteArray &line, const QDateTime &now);
QList<cDirItem> Parse(const QByteArray &listing,
                      const QDateTime &now = QDateTime::currentDateTimeUtc());

// True when name matches a find pattern: "*" and "?" wildcards, letters in any case; "*.*"
// and "" match every name, with or without a dot.
bool MatchesFilter(const QString &name, const QString &filter);

} // namespace FtpListing
