#pragma once

#include <QList>
#include <QString>
#include <QStringList>

class JobUi;

// One file that the user's data tree must hold: copied from the read-only data folder into
// folder when it is missing there.
struct DefaultFile
{
    QString folder;
    QString name;
};

// The files restored at each start, in the order they are looked at: the photo page templates,
// the Web Log templates, and the cabinet of default data in the home folder.
QList<DefaultFile> DefaultFiles();

// The file whose presence shows that the default data is in place: Startup/Office Tools/
// Zipcode Search.ptr in the home folder, the last file of the cabinet.
QString DefaultDataSignFile();
// The marker of a finished first unpacking: Save.txt in the home folder.
QString DefaultDataMarkerFile();

inline const QString DefaultDataCabinetName = QStringLiteral("Tarnwicklib.cab");
inline const QString DefaultDataMissingMessage =
    QStringLiteral("Tarnwick has encountered a file creation issue. Error #10003");

// What CopyFiles did.
struct CopyFilesReport
{
    QStringList copied;        // files restored from the data folder (full target paths)
    bool unpackTried = false;  // the marker was missing, so the cabinet was to be unpacked
    bool unpacked = false;     // and it was unpacked
    QStringList unpackedFiles; // what the cabinet put in place, relative to the home folder
    QString unpackMessage;     // why unpacking failed
    bool signFileFound = false;
    bool messageShown = false; // the user was told that the default data is missing
};

// Restores the user's data tree at start-up, after the folder tree is made:
// 1. each file of DefaultFiles() that is missing is copied from the data folder (a missing
//    source, or no data folder at all, is passed over);
// 2. when Save.txt is missing, Tarnwicklib.cab in the home folder is unpacked into the home folder
//    (files already there are kept), on a worker thread while this call waits with the event loop
//    running, and Save.txt is written as the marker whether or not that worked, so that the
//    unpacking is tried once only;
// 3. when the sign file is missing then, the user is told so through ui with the message
//    "Tarnwick has encountered a file creation issue. Error #10003" (title "Tarnwick", Ok).
// Nothing here stops the start.
CopyFilesReport CopyFiles(JobUi &ui);
