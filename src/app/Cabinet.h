#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <atomic>

// Microsoft cabinet files (MSZIP) through libgcab. Both calls block until done and may run on a
// worker thread; they touch no Qt object but their arguments.

struct CabinetEntry
{
    QString sourcePath;    // the file on disk
    QString nameInCabinet; // its name in the cabinet, folders separated by "/" or "\"
};

struct CabinetResult
{
    bool ok = false;
    bool cancelled = false; // stopped because the cancel flag was raised
    QString message;        // why it failed
    QStringList names;      // the names written or unpacked, in cabinet order, with "/"
};

// Every file under folder, sub-folders included, named by its path below folder ("a.txt",
// "Trip/b.jpg"), in name order with case ignored. Hidden files are left out and symbolic links
// are not followed.
QList<CabinetEntry> CabinetEntriesOf(const QString &folder);

// Writes the entries, in the given order, into one compressed cabinet at cabPath. The cabinet is
// made under a temporary name and renamed when complete, so a failure leaves no half cabinet.
// When cancel is given and becomes true (from any thread), the work stops at the next file and
// the result says cancelled; nothing is left at cabPath.
CabinetResult WriteCabinet(const QString &cabPath, const QList<CabinetEntry> &entries,
                           const std::atomic<bool> *cancel = nullptr);

// Unpacks every file of the cabinet under destFolder, making folders as needed. A name that
// would land outside destFolder (absolute, or with "..") is passed over. With overwrite false a
// file that already exists is kept and not listed. cancel works as for WriteCabinet; the files
// unpacked before it are left in place.
CabinetResult ExtractCabinet(const QString &cabPath, const QString &destFolder,
                             bool overwrite = true, const std::atomic<bool> *cancel = nullptr);

// The names in the cabinet, in order, with "/".
CabinetResult ListCabinet(const QString &cabPath);
