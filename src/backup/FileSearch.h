#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>

// The file search of the backup dialogs: patterns typed by the user, matched against the names
// in a folder and, when asked, in all the folders below it.

struct SearchPattern
{
    QString text;         // upper-cased, without its "*" marks
    bool exact = true;    // no "*": the whole name
    bool atEnd = false;   // "*" in front: the name ends with text
    bool atStart = false; // "*" behind: the name starts with text
    // Both: the name contains text.
};

// The text the user typed, as patterns: "" means "*.*"; any other text but "*" is wrapped as
// "*text*" first; then it is cut at each ";" (nothing trimmed), and each part loses the "*" at
// its start and at its end, which say how it is matched.
QList<SearchPattern> SearchPatterns(const QString &typed);

// Whether a file name matches one pattern; letter case is ignored. "*.*" matches every name.
bool MatchesPattern(const QString &name, const SearchPattern &pattern);
// Whether it matches any of them (the first that does is enough, so no file is found twice).
bool MatchesAny(const QString &name, const QList<SearchPattern> &patterns);

struct FoundFile
{
    QString folder; // with "/" at its end
    QString name;
};

// Walks root (and, with subFolders, every folder below it, breadth first, without following
// symbolic links; hidden files and folders are left out) and reports each file that matches, folder
// by folder, through found. Stops early when cancel turns true; a folder that can't be read ends
// the walk there. Safe to run on a worker thread: found is called on that thread. Returns false
// when it stopped early.
bool SearchFiles(const QString &root, const QList<SearchPattern> &patterns, bool subFolders,
                 const std::atomic<bool> &cancel,
                 const std::function<void(const QList<FoundFile> &)> &found);
