#pragma once

#include "BookmarkFile.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// What an import of a bookmarks file adds to the Portal's link store, worked out before anything
// is written, and the writing of it.
//
// Each folder of the file that holds links becomes a Category named by its path joined with
// " - " ("Travel - Trains"); folders of the same name go into one Category, and a Category that
// is already there (its name matched ignoring case) takes the links of the folder of its name.
// A link whose address its Category already has (compared as addresses, so "http://a.org" and
// "http://a.org/" are one) is skipped and counted; so is the second of two links to one address
// in one folder. Names become legal file names the way the Portal names its files: the
// characters a file name can't hold are left out ("/", "\" and "|" become "-"), blanks are
// collapsed, dots and blanks at the ends go, and a name is cut to MaxNameLength characters. A
// name that a Page Link of the Category already has gets " (2)", " (3)" ... so that no file is
// written over.

struct ImportLink
{
    QString name;         // the Page Link's name: its file is <name>.ptr
    QString title;        // the title in the bookmarks file
    QString url;          // the address as the record will hold it
    bool renamed = false; // name differs from the title
};

struct ImportCategory
{
    QString name;               // the Category's name: <name>.Cat and the folder <name>
    QStringList sources;        // the folder paths of the file that went into it, joined
    bool exists = false;        // the Category is in the store already
    QList<ImportLink> links;    // to be added
    QList<Bookmark> duplicates; // skipped: the address is there already
};

struct ImportPlan
{
    QString startupFolder;
    QList<ImportCategory> categories; // with at least one link to add or one duplicate
    int links = 0;                    // to be added
    int duplicates = 0;               // skipped
    int renamed = 0;                  // names changed to be file names or to stand apart
    int newCategories = 0;            // Categories to be made
    int notWeb = 0;                   // links of the file that are not web addresses
};

struct ImportResult
{
    int categoriesMade = 0;
    int linksWritten = 0;
    bool cancelled = false;
    QStringList failures; // "<file>: why", for what could not be written
};

namespace BookmarkImport {

inline constexpr int MaxNameLength = 60;

// text as a name the Portal's files can have; fallback when nothing of it is left.
QString LegalName(const QString &text, const QString &fallback);
// The address as a Page Link record keeps it: trimmed, control characters left out, and the
// characters the record would cut it at (",") or not read back ('"') %-escaped.
QString RecordAddress(const QString &url);
// A key that is the same for two spellings of one address (case of scheme and host, a trailing
// "/", %-escapes of letters beyond ASCII).
QString AddressKey(const QString &url);
// The Category name of a folder path.
QString CategoryNameFor(const QStringList &path);
// name, or name with " (2)", " (3)" ..., so that the Category's folder takes the place of no
// file of the Startup folder (the page, its templates and bullets, another Category's ".Cat");
// a final ".Cat" becomes " Cat".
QString CategoryFolderName(const QString &name, const QString &startupFolder);

// Works out the import of file into the store in startupFolder (normally
// Folders::StartupFolder()). Reads the store; writes nothing.
ImportPlan PlanBookmarkImport(const BookmarkFileResult &file, const QString &startupFolder);

// Writes the plan: each Category made (its folder and .Cat) and each Page Link written with
// bullet 9. progress(done, total) is called after each link and may be called on any thread;
// false from it stops the import (what is written stays). May run on any thread.
ImportResult ApplyBookmarkImport(const ImportPlan &plan,
                                 const std::function<bool(int done, int total)> &progress = {});

} // namespace BookmarkImport
