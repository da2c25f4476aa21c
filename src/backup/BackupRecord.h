#pragma once

#include <QString>

// One entry of the backup list: a file that the user keeps on the web space, with what decides
// whether it is sent again. The jobs share one current record (JobState::current<BackupRecord>):
// a job loads an entry into it, changes fields, deletes the entry's copy in the list and appends
// the record again.
struct BackupRecord
{
    // The file's name without folder; the entry's key. For a compressed file the name of the
    // file in LocationPath, not of its cabinet.
    QString Filename;
    bool DirectoryType = false; // always False; nothing tests it
    // The local folder; a "/" is added before it is joined to Filename when it has none.
    QString LocationPath;
    // The local file's date at the last backup (FileDateTime's text form), compared as text.
    QString DateModified;
    QString DateBackup; // when it was last sent, in the same form
    bool CompressFile = false;
    bool IncrementalBackup = false; // always False; nothing tests it
    qint16 NumberOfBackupTimes = 0;
    // Where the copy stands: the web address of the backup directory, "/" and the name sent.
    QString UploadPath;
    double LengthOfTheFile = 0; // the local file's length in bytes at the last backup
};

// The record as the list file holds it: the ten "key = value" lines in their fixed order, each
// ended by CR LF (the writer adds one more CR LF behind them).
QString BackupRecordText(const BackupRecord &record);

// LocationPath with a "/" at its end ("\" from an old record counts as one).
QString WithSlash(const QString &folder);

// The local file of a record: LocationPath joined to Filename.
QString RecordFilePath(const BackupRecord &record);
