#pragma once

#include <QList>
#include <QString>
#include <QStringList>

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
    QString message;   // why it failed
    QStringList names; // the names written or unpacked, in cabinet order, with "/"
};

// Writes the entries, in the given order, into one compressed cabinet at cabPath. The cabinet is
// made under a temporary name and renamed when complete, so a failure leaves no half cabinet.
CabinetResult WriteCabinet(const QString &cabPath, const QList<CabinetEntry> &entries);

// Unpacks every file of the cabinet under destFolder, making folders as needed. A name that
// would land outside destFolder (absolute, or with "..") is passed over. With overwrite false a
// file that already exists is kept and not listed.
CabinetResult ExtractCabinet(const QString &cabPath, const QString &destFolder,
                             bool overwrite = true);

// The names in the cabinet, in order, with "/".
CabinetResult ListCabinet(const QString &cabPath);
