#include "Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace Folders {

namespace {

QString &programFolderOverride()
{
    static QString path;
    return path;
}

bool &programFolderOverridden()
{
    static bool set = false;
    return set;
}

QString root() { return QDir::homePath() + QStringLiteral("/Tarnwick"); }

} // namespace

QString HomeFolder() { return root() + QLatin1Char('/'); }
QString ImagesFolder() { return root() + QStringLiteral("/images"); }
QString HistoryFolder() { return root() + QStringLiteral("/History"); }
QString BackupFolder() { return root() + QStringLiteral("/Backup"); }
QString StartupFolder() { return root() + QStringLiteral("/Startup"); }
QString BlogFolder() { return root() + QStringLiteral("/Web_Log"); }
QString BlogPointerFolder() { return BlogFolder() + QStringLiteral("/MasterPointers"); }
QString BlogsFolder() { return root() + QStringLiteral("/Web_Logs"); }
QString MasterPointerFolder() { return BlogsFolder() + QStringLiteral("/MasterPointers"); }
QString PhotosFolder() { return root() + QStringLiteral("/Photos"); }
QString PhotosHtmlFolder() { return PhotosFolder() + QStringLiteral("/HTML"); }

QString ProgramFolder()
{
    if (programFolderOverridden())
        return programFolderOverride();
    const QString candidate = QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                              QStringLiteral("/../share/tarnwick"));
    if (QDir(candidate).exists())
        return candidate;
#ifdef TARNWICK_STAGED_DATA_DIR
    if (QDir(QStringLiteral(TARNWICK_STAGED_DATA_DIR)).exists())
        return QStringLiteral(TARNWICK_STAGED_DATA_DIR);
#endif
    return QString();
}

void SetProgramFolder(const QString &path)
{
    programFolderOverride() = path;
    programFolderOverridden() = true;
}

void MakeFolderTree()
{
    const QString tree[] = {HomeFolder(),          ImagesFolder(),  HistoryFolder(),
                            BackupFolder(),        StartupFolder(), BlogFolder(),
                            BlogPointerFolder(),   BlogsFolder(),   MasterPointerFolder(),
                            PhotosFolder(),        PhotosHtmlFolder()};
    QDir dir;
    for (const QString &path : tree)
        dir.mkdir(path); // parents come first by the order alone; failures are passed over
}

QString FindSystemFolder(SystemFolder which)
{
    QStandardPaths::StandardLocation location = QStandardPaths::DocumentsLocation;
    switch (which) {
    case SystemFolder::Desktop: location = QStandardPaths::DesktopLocation; break;
    case SystemFolder::Documents: location = QStandardPaths::DocumentsLocation; break;
    case SystemFolder::Pictures: location = QStandardPaths::PicturesLocation; break;
    case SystemFolder::Shared: location = QStandardPaths::PublicShareLocation; break;
    }
    return QStandardPaths::writableLocation(location).trimmed();
}

} // namespace Folders
