#include "DriveList.h"

#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

namespace {

bool isNetworkFileSystem(const QByteArray &type)
{
    static const QByteArray network[] = {"nfs",  "nfs4",  "cifs",       "smbfs",
                                         "smb3", "sshfs", "fuse.sshfs", "afs",
                                         "9p",   "ncpfs", "davfs",      "fuse.rclone"};
    for (const QByteArray &name : network)
        if (type == name)
            return true;
    return false;
}

// "/dev/sdb1" -> "sdb", "/dev/mmcblk0p1" -> "mmcblk0", "/dev/nvme0n1p2" -> "nvme0n1".
QString blockDeviceName(const QString &device)
{
    if (!device.startsWith(QStringLiteral("/dev/")))
        return {};
    const QString real = QFileInfo(device).canonicalFilePath();
    QString name = (real.isEmpty() ? device : real).mid(5);
    if (QFileInfo::exists(QStringLiteral("/sys/block/") + name))
        return name;
    // A partition: its parent disk is the folder that holds it in /sys/class/block.
    const QString link = QFileInfo(QStringLiteral("/sys/class/block/") + name).canonicalFilePath();
    if (!link.isEmpty()) {
        const QString parent = QFileInfo(QFileInfo(link).path()).fileName();
        if (QFileInfo::exists(QStringLiteral("/sys/block/") + parent))
            return parent;
    }
    return {};
}

} // namespace

bool IsRemovableVolume(const QString &mountPoint, const QString &device)
{
    if (mountPoint.startsWith(QStringLiteral("/media/")) ||
        mountPoint.startsWith(QStringLiteral("/run/media/")))
        return true;
    const QString disk = blockDeviceName(device);
    if (disk.isEmpty())
        return false;
    QFile flag(QStringLiteral("/sys/block/") + disk + QStringLiteral("/removable"));
    return flag.open(QIODevice::ReadOnly) && flag.readAll().trimmed() == "1";
}

QString LastRemovableDrive()
{
    QString last;
    const auto volumes = QStorageInfo::mountedVolumes();
    for (const QStorageInfo &volume : volumes) {
        if (isNetworkFileSystem(volume.fileSystemType()))
            continue;
        if (IsRemovableVolume(volume.rootPath(), QString::fromLocal8Bit(volume.device())))
            last = volume.rootPath();
    }
    return last;
}
