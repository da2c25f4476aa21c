// The backup list reader on a BackupList.lst that a user edited by hand or a crash cut short:
// the names it lists, a record loaded by each name, the list box's names, a delete, and a
// record that was read written alone into a new list and read again.
// fuzz-options: -max_len=16384
#include "BackupList.h"
#include "FuzzSupport.h"

#include <QDir>

#include <cmath>

namespace {

// Fields that a line of the list can't hold come back otherwise: a line ends at CR or LF.
bool fitsOnALine(const BackupRecord &record)
{
    for (const QString &value : {record.Filename, record.LocationPath, record.DateModified,
                                 record.DateBackup, record.UploadPath}) {
        if (value.contains(QLatin1Char('\r')) || value.contains(QLatin1Char('\n')))
            return false;
        // A value's blanks at either end are the line's, not the value's.
        if (value != value.trimmed())
            return false;
        // A line that holds "filename = " anywhere starts an entry, as the list has always been
        // read: a value holding that text can't be told from a record of its own.
        if (value.contains(QStringLiteral("filename = "), Qt::CaseInsensitive))
            return false;
    }
    return !record.Filename.isEmpty();
}

void sameRecord(const BackupRecord &a, const BackupRecord &b)
{
    FUZZ_CHECK_MSG(a.Filename == b.Filename, a.Filename + QStringLiteral(" | ") + b.Filename);
    FUZZ_CHECK(a.DirectoryType == b.DirectoryType);
    FUZZ_CHECK_MSG(a.LocationPath == b.LocationPath, a.LocationPath + QStringLiteral(" | ") +
                                                         b.LocationPath);
    FUZZ_CHECK(a.DateModified == b.DateModified);
    FUZZ_CHECK(a.DateBackup == b.DateBackup);
    FUZZ_CHECK(a.CompressFile == b.CompressFile);
    FUZZ_CHECK(a.IncrementalBackup == b.IncrementalBackup);
    FUZZ_CHECK(a.NumberOfBackupTimes == b.NumberOfBackupTimes);
    FUZZ_CHECK(a.UploadPath == b.UploadPath);
    // Fifteen digits are written: a length read with more comes back rounded to them.
    const bool close = a.LengthOfTheFile == b.LengthOfTheFile ||
                       (std::isnan(a.LengthOfTheFile) && std::isnan(b.LengthOfTheFile)) ||
                       std::fabs(a.LengthOfTheFile - b.LengthOfTheFile) <=
                           1e-14 * std::fabs(a.LengthOfTheFile);
    FUZZ_CHECK(close);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString folder = Fuzz::home() + QStringLiteral("/Backup");
    const QString again = Fuzz::home() + QStringLiteral("/BackupAgain");
    QDir().mkpath(again);
    QFile::remove(folder + QStringLiteral("/BackupList.old"));
    Fuzz::writeFile(folder + QStringLiteral("/BackupList.lst"), Fuzz::bytes(data, size));

    BackupList list(folder);
    const QStringList names = list.FileNames();
    for (const QString &name : names)
        FUZZ_CHECK(!name.contains(QLatin1Char('\r')) && !name.contains(QLatin1Char('\n')));

    int loaded = 0;
    for (const QString &name : names) {
        if (loaded == 4)
            break;
        BackupRecord record;
        if (list.ReadBackupRecord(name, record) != 0)
            continue;
        ++loaded;
        FUZZ_CHECK_MSG(record.Filename == name, record.Filename + QStringLiteral(" | ") + name);
        if (!fitsOnALine(record))
            continue;
        // Written alone into a new list and read back: the same record.
        BackupList fresh(again);
        fresh.CreateBackupList();
        FUZZ_CHECK_MSG(fresh.AppendBackupRecord(record), fresh.lastError());
        FUZZ_CHECK(fresh.FileNames() == QStringList{record.Filename});
        BackupRecord back;
        FUZZ_CHECK(fresh.ReadBackupRecord(record.Filename, back) == 0);
        sameRecord(record, back);
    }

    BackupRecord current;
    const QStringList shown = FillFileList(list, current);
    // The list box's names: a name the file held twice shows once (two names that differ in
    // letter case alone are two names). A name is listed from any line that holds
    // "filename = ", but only a line that starts with it starts a record: a name found in the
    // middle of a line has no record to remove, and may show twice.
    for (qsizetype i = 1; i < shown.size(); ++i) {
        if (shown[i] == shown[i - 1])
            FUZZ_CHECK(list.DeleteBackupRecord(shown[i]) == -1);
    }

    // A delete takes one record of that name away and keeps the former list beside it.
    const QStringList before = list.FileNames();
    if (!before.isEmpty()) {
        const QString name = before.first();
        const qsizetype count = before.count(name);
        if (list.DeleteBackupRecord(name) == 0) {
            FUZZ_CHECK(list.FileNames().count(name) == count - 1);
            FUZZ_CHECK(QFile::exists(folder + QStringLiteral("/BackupList.old")));
        }
    }
    return 0;
}
