// The Portal's link store on records a user edited by hand or a crash cut short: a Page Link
// (.ptr) read, written back and read again, and the names of Categories (.Cat) and Page Links
// that never lead out of the Startup folder.
// fuzz-options: -max_len=4096
#include "BuildStartup.h"
#include "Folders.h"
#include "FuzzSupport.h"
#include "RecordFile.h"

#include <QDir>
#include <QFileInfo>

namespace {

bool holdsKeyText(const QString &text)
{
    for (const char *key : {"linkname", "urlname", "bullet"}) {
        if (text.contains(QLatin1String(key), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

bool inside(const QString &path, const QString &folder)
{
    return QFileInfo(path).absolutePath() == QFileInfo(folder).absoluteFilePath();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QList<QByteArray> parts = Fuzz::parts(Fuzz::bytes(data, size), 3);
    const QString startup = Folders::StartupFolder();
    QDir(startup).removeRecursively();
    QDir().mkpath(startup);

    // A record as it stands on the disk.
    const QString path = startup + QStringLiteral("/News/Link.ptr");
    Fuzz::writeFile(path, parts[0]);
    PageLink link;
    const BuildStartup::LoadResult loaded = BuildStartup::LoadPageLink(path, link);
    FUZZ_CHECK(loaded.ok);
    FUZZ_CHECK(link.Bullet >= 0 && link.Bullet <= BuildStartup::LastBullet);
    FUZZ_CHECK(!link.LinkName.contains(QLatin1Char('\r')) &&
               !link.URLName.contains(QLatin1Char('\r')));
    FUZZ_CHECK(!link.LinkName.contains(QLatin1Char('\n')) &&
               !link.URLName.contains(QLatin1Char('\n')));

    // Written back as the tab writes an unchanged name, it reads the same, and a second save
    // changes nothing more.
    PageLink saved = link;
    saved.LinkName = DecodeRecordText(link.LinkName);
    FUZZ_CHECK(BuildStartup::SavePageLink(path, saved));
    PageLink again;
    FUZZ_CHECK(BuildStartup::LoadPageLink(path, again).ok);
    if (!holdsKeyText(again.LinkName) && !holdsKeyText(again.URLName)) {
        FUZZ_CHECK(again.Bullet == link.Bullet);
        PageLink twice = again;
        twice.LinkName = DecodeRecordText(again.LinkName);
        FUZZ_CHECK(BuildStartup::SavePageLink(path, twice));
        PageLink third;
        FUZZ_CHECK(BuildStartup::LoadPageLink(path, third).ok);
        FUZZ_CHECK_MSG(third.LinkName == again.LinkName, again.LinkName + " / " + third.LinkName);
        FUZZ_CHECK_MSG(third.URLName == again.URLName, again.URLName + " / " + third.URLName);
    }

    // A Category and a Page Link named by what a user typed.
    const QString category = QString::fromUtf8(parts[1]);
    const QString name = QString::fromUtf8(parts[2]);
    const bool legalCategory = BuildStartup::FileNameProblem(category).isEmpty();
    // A name that can't be a file's name makes nothing.
    FUZZ_CHECK(!BuildStartup::MakeCategory(category) || legalCategory);
    if (legalCategory &&
        BuildStartup::CategoryFiles().contains(category + QStringLiteral(".Cat"))) {
        const QString folder = BuildStartup::CategoryFolder(category + QStringLiteral(".Cat"));
        FUZZ_CHECK(inside(folder, startup));
        PageLink typed;
        typed.LinkName = name;
        typed.URLName = QStringLiteral("https://example.org/");
        const QString linkPath = BuildStartup::PageLinkPath(folder, name);
        // The tab writes a typed name only when it can be a file's name.
        if (BuildStartup::FileNameProblem(name).isEmpty() &&
            BuildStartup::SavePageLink(linkPath, typed)) {
            FUZZ_CHECK(inside(linkPath, folder));
            FUZZ_CHECK(BuildStartup::PageLinkFiles(folder).contains(name + QStringLiteral(".ptr")));
        }
    }
    for (const QString &entry : QDir(startup).entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
        FUZZ_CHECK(!entry.contains(QLatin1Char('/')));
    return 0;
}
