#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The Portal's link store in the Startup folder: each Category is a "<name>.Cat" file beside a
// folder "<name>" that holds its Page Links, one "<display name>.ptr" record each:
//   LinkName = <text through EncodeRecordText with dots dropped>
//   URLName = <the address as it stands>
//   Bullet = <number of the bullet picture>
// LinkName is read back as it stands (not decoded): a comma comes back as "|4", and a dot is
// gone after the first save. Only a ".Cat" file makes a Category; a folder without one keeps
// its links on the disk and shows them again when a Category of that name is made.

// The current Page Link.
struct PageLink
{
    QString LinkName;
    QString URLName;
    qint16 Bullet = 9;
};

namespace BuildStartup {

// A new Page Link's bullet.
inline constexpr qint16 NewLinkBullet = 9;
// The bullets the tab offers, 0 to 13.
inline constexpr int ShownBullets = 14;
// The last bullet picture there is: Arrow0.gif to Arrow14.gif.
inline constexpr int LastBullet = 14;

struct LoadResult
{
    bool ok = false;
    QString message; // why the file could not be read
    // The Bullet field held no number from 0 to LastBullet (a junk or cut-short record); the
    // link took NewLinkBullet instead and the file was left as it is.
    bool bulletReplaced = false;
};

// Reads the record at path into link. link is emptied first (Bullet NewLinkBullet), so a file
// that can't be read leaves an empty link; a cut-short or garbled file gives what it holds.
LoadResult LoadPageLink(const QString &path, PageLink &link);
// Writes link to path, unless the path ends in "/.ptr" (what an empty link name gives) or the
// file name can't be a file's name; false when nothing was written. Characters of the address
// beyond ASCII are written %-escaped (as a browser sends them), so the record keeps them.
bool SavePageLink(const QString &path, const PageLink &link);
// The record text SavePageLink writes (without the closing line end).
QString PageLinkRecord(const PageLink &link);
// Writes link to path as a new file, never over one that is there (false then), without the
// wait for the disk that SavePageLink's replacement of a file takes: for many new links at
// once. A file cut short by a crash reads as a link with what it holds.
bool WriteNewPageLink(const QString &path, const PageLink &link);
// Points the Page Link at path to url, keeping its name (as it was written) and its bullet;
// false when the record could not be read or written.
bool UpdatePageLinkURL(const QString &path, const QString &url);
// Creates the Category's folder and "<name>.Cat" holding "directory file <name>". An existing
// folder keeps its links. false when the ".Cat" file could not be written.
bool MakeCategory(const QString &name);
// The same in the folder startupFolder (MakeCategory's is Folders::StartupFolder()); may run on
// any thread.
bool MakeCategoryIn(const QString &startupFolder, const QString &name);

// "" when name can be the name of a Category or Page Link file; otherwise the message that
// tells the user why not.
QString FileNameProblem(const QString &name);

// The ".Cat" files of the Startup folder as the list shows them, names only, sorted ignoring
// case.
QStringList CategoryFiles();
// The ".ptr" files of a Category's folder, names only, sorted ignoring case. A missing folder
// gives none.
QStringList PageLinkFiles(const QString &folder);
// The folder of a Category for its ".Cat" file name ("News.Cat" gives <Startup>/News).
QString CategoryFolder(const QString &catFile);
// The name of a Category for its ".Cat" file name: the name less its last four characters.
QString CategoryName(const QString &catFile);
// folder/<name>.ptr
QString PageLinkPath(const QString &folder, const QString &name);

// The number value of a record's text as a 16-bit integer: leading blanks skipped, then the
// digits there are; nothing when there is no digit or the value does not fit.
std::optional<qint16> BulletValue(const QString &text);

} // namespace BuildStartup
