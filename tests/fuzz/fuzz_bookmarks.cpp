// The bookmarks file reader on what a browser exported, a copy cut short or any other file a
// user picks, and the import worked out from it into an empty link store.
// fuzz-options: -max_len=16384
#include "BookmarkFile.h"
#include "BookmarkImport.h"
#include "BuildStartup.h"
#include "FuzzSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace {

// The import writes into a store of its own, emptied for each input.
QString store()
{
    return Fuzz::home() + QStringLiteral("/Startup");
}

bool holdsKeyText(const QString &text)
{
    for (const char *key : {"linkname", "urlname", "bullet"}) {
        if (text.contains(QLatin1String(key), Qt::CaseInsensitive))
            return true;
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input = Fuzz::bytes(data, size);
    const BookmarkFileResult file = BookmarkFile::ReadBookmarks(input, QStringLiteral("b.html"));
    FUZZ_CHECK(file.ok == file.message.isEmpty());
    if (!file.ok) {
        // A file that can't be read gives nothing to add.
        FUZZ_CHECK(file.links == 0 && file.folders.isEmpty());
        return 0;
    }
    int links = 0;
    for (const BookmarkFolder &folder : file.folders) {
        FUZZ_CHECK(!folder.path.isEmpty());
        FUZZ_CHECK(folder.path.size() <= BookmarkFile::MaxNameDepth);
        FUZZ_CHECK(!folder.links.isEmpty());
        for (const Bookmark &link : folder.links) {
            FUZZ_CHECK(BookmarkFile::IsWebAddress(link.url));
            FUZZ_CHECK(!link.title.contains(QLatin1Char('\n')));
            ++links;
        }
    }
    FUZZ_CHECK(links == file.links && links > 0);

    QDir(store()).removeRecursively();
    QDir().mkpath(store());
    const ImportPlan plan = BookmarkImport::PlanBookmarkImport(file, store());
    FUZZ_CHECK(plan.links + plan.duplicates == file.links);
    QSet<QString> categories;
    for (const ImportCategory &category : plan.categories) {
        FUZZ_CHECK(BuildStartup::FileNameProblem(category.name).isEmpty());
        FUZZ_CHECK(!categories.contains(category.name.toLower()));
        categories.insert(category.name.toLower());
        QSet<QString> names;
        for (const ImportLink &link : category.links) {
            FUZZ_CHECK_MSG(BuildStartup::FileNameProblem(link.name).isEmpty(), link.name);
            FUZZ_CHECK(link.name.size() <= BookmarkImport::MaxNameLength);
            FUZZ_CHECK(!names.contains(link.name.toLower()));
            names.insert(link.name.toLower());
            FUZZ_CHECK(!link.url.contains(QLatin1Char(',')) &&
                       !link.url.contains(QLatin1Char('"')));
        }
    }
    if (plan.links > 40)
        return 0; // the writing is checked on the small ones
    const ImportResult result = BookmarkImport::ApplyBookmarkImport(plan);
    FUZZ_CHECK_MSG(result.failures.isEmpty(), result.failures.join(QLatin1Char('\n')));
    FUZZ_CHECK(result.linksWritten == plan.links);
    for (const ImportCategory &category : plan.categories) {
        const QString folder = store() + QLatin1Char('/') + category.name;
        // Every file stays inside the store.
        FUZZ_CHECK(QFileInfo(folder).absolutePath() == QFileInfo(store()).absoluteFilePath());
        for (const ImportLink &link : category.links) {
            PageLink read;
            const QString path = BuildStartup::PageLinkPath(folder, link.name);
            FUZZ_CHECK(QFileInfo(path).absolutePath() == QFileInfo(folder).absoluteFilePath());
            FUZZ_CHECK(BuildStartup::LoadPageLink(path, read).ok);
            FUZZ_CHECK(read.Bullet == BuildStartup::NewLinkBullet);
            // The address reads back whole (the record's look-up can't tell a key's text
            // inside a value from the key).
            if (!holdsKeyText(link.url) && !holdsKeyText(link.name))
                FUZZ_CHECK_MSG(read.URLName == link.url.trimmed(), link.url + " / " + read.URLName);
        }
    }
    return 0;
}
