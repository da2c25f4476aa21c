#include "BackupStatus.h"

#include "BackupList.h"
#include "BackupNames.h"
#include "Helpers.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

#include <sys/stat.h>

bool BackupIsDue(const QString &dateModified, const QString &currentDate, bool overrideCheck)
{
    return dateModified != currentDate || overrideCheck;
}

LookUp LookUpLocalFile(const QString &folder, const QString &name, QString *path)
{
    if (folder.isEmpty() || name.isEmpty())
        return LookUp::Missing;
    const QString exact = WithSlash(folder) + name;
    struct stat info
    {
    };
    if (::stat(QFile::encodeName(exact).constData(), &info) == 0) {
        if (path)
            *path = exact;
        return S_ISDIR(info.st_mode) ? LookUp::Missing : LookUp::Found;
    }
    if (errno == EACCES)
        return LookUp::Failed;
    const QString folderPath = QDir::cleanPath(folder);
    const QFileInfo folderInfo(folderPath);
    if (folderInfo.isDir() && !QDir(folderPath).isReadable())
        return LookUp::Failed;
    const QString other = FindPathNoCase(folderPath, name);
    if (other.isEmpty() || QFileInfo(other).isDir())
        return LookUp::Missing;
    if (path)
        *path = other;
    return LookUp::Found;
}

void BackupFileListClick(BackupList &list, BackupRecord &record, const QString &entry,
                         BackupStatusView &view)
{
    view.recompressEnabled = IsCompressedDirectory(entry);
    list.ReadBackupRecord(entry, record);
    record.LocationPath = WithSlash(record.LocationPath);

    QString local;
    LookUpLocalFile(record.LocationPath, record.Filename, &local);
    const QString now = local.isEmpty() ? QString() : FileDateTime(local);
    // A file that isn't there leaves the date shown before.
    if (!now.isEmpty())
        view.CurrentDateOfTheFile = now;

    view.DateBackupOfItem = record.DateBackup;
    view.DateModifiedOfItem = record.DateModified;
    view.NumberOfBackupTimesOfItem = QString::number(record.NumberOfBackupTimes);
    view.LocationPathOfItem = record.LocationPath;
    view.UploadpathOfItem = record.UploadPath;

    // The entry's own name is looked for, in the record's folder.
    const LookUp found = LookUpLocalFile(record.LocationPath, entry);
    view.relocateVisible = false;
    view.fileNotFoundVisible = found == LookUp::Failed;
    if (found == LookUp::Missing) {
        view.ReportIfFound = QStringLiteral("The File is not in the expected location");
        view.reportColour = StatusColour::Red;
        view.locationColour = StatusColour::Red;
        view.relocateVisible = true;
    } else if (found == LookUp::Found) {
        view.ReportIfFound.clear();
        view.locationColour = StatusColour::Green;
    }

    const StatusColour dates = view.DateModifiedOfItem != view.CurrentDateOfTheFile
                                   ? StatusColour::Red
                                   : StatusColour::Green;
    view.currentDateColour = dates;
    view.dateModifiedColour = dates;
    view.dateBackupColour = dates;
}
