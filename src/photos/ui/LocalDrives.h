#pragma once

#include <QList>
#include <QString>

// The places a folder picker offers in its drive list: the root folder, then each mounted
// local file system (removable media marked as such). Read from /proc/self/mounts without
// touching the file systems, so a dead network mount can't hang the window: network and
// pseudo file systems are left out.
struct LocalDrive
{
    QString rootPath; // the mount point: "/", "/media/ann/USB STICK"
    QString label;    // what the list shows: "/", "Removable (/media/ann/USB STICK)"
    bool removable = false;
};

QList<LocalDrive> LocalDrives();

// The list for a given mounts table (the text of /proc/self/mounts); for tests.
QList<LocalDrive> LocalDrivesFromMounts(const QByteArray &mounts);
