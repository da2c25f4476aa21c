#pragma once

#include <QString>

class BackupList;
struct BackupRecord;

// The lower half of the Backup page: one entry of the list in detail, and whether it is due.

enum class StatusColour
{
    Default,
    Red,   // the colour number FF
    Green, // the colour number C000
};

// What the boxes of the view show. The view keeps no data of its own: a click fills it anew
// from the current record and the file system, and a box that a step can't fill keeps its text.
struct BackupStatusView
{
    QString CurrentDateOfTheFile;      // the local file's date now
    QString DateModifiedOfItem;        // DateModified
    QString DateBackupOfItem;          // DateBackup
    QString NumberOfBackupTimesOfItem; // NumberOfBackupTimes
    QString LocationPathOfItem;        // LocationPath
    QString UploadpathOfItem;          // UploadPath
    QString ReportIfFound;             // "" or "The File is not in the expected location"
    StatusColour currentDateColour = StatusColour::Default;
    StatusColour dateModifiedColour = StatusColour::Default;
    StatusColour dateBackupColour = StatusColour::Default;
    StatusColour locationColour = StatusColour::Default;
    StatusColour reportColour = StatusColour::Default;
    bool relocateVisible = false;     // RelocateFileButton
    bool fileNotFoundVisible = false; // the "File Not Found!" label
    bool recompressEnabled = false;   // RecompressButton
};

// The change test of the backup: the texts of the dates differ (byte for byte, older or newer
// alike), or the user asks for a backup regardless.
bool BackupIsDue(const QString &dateModified, const QString &currentDate, bool overrideCheck);

// How a look-up of a local file went.
enum class LookUp
{
    Found,
    Missing,
    Failed, // the folder could not be searched
};
// Finds name in folder, letter case ignored where the exact spelling isn't there. *path gets
// the real path when found.
LookUp LookUpLocalFile(const QString &folder, const QString &name, QString *path = nullptr);

// A click on entry of BackupFileList: loads the entry's record into record (an entry the list
// doesn't hold leaves the previous record) and updates view as the page shows it.
void BackupFileListClick(BackupList &list, BackupRecord &record, const QString &entry,
                         BackupStatusView &view);
