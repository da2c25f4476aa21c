#include "LocalDrives.h"

#include <QFile>
#include <QSet>

namespace {

// "\040" and the like stand for blanks and other bytes in a mounts table.
QString unescapeMountField(const QByteArray &field)
{
    QByteArray out;
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field.at(i) == '\\' && i + 3 < field.size()) {
            bool ok = false;
            const int code = field.mid(i + 1, 3).toInt(&ok, 8);
            if (ok) {
                out.append(char(code));
                i += 3;
                continue;
            }
        }
        out.append(field.at(i));
    }
    return QString::fromUtf8(out);
}

bool isLocalType(const QByteArray &type)
{
    static const QSet<QByteArray> local = {"ext2",    "ext3",     "ext4", "btrfs",  "xfs",
                                           "jfs",     "reiserfs", "f2fs", "zfs",    "vfat",
                                           "msdos",   "exfat",    "ntfs", "ntfs3",  "fuseblk",
                                           "iso9660", "udf",      "hfs",  "hfsplus"};
    return local.contains(type);
}

bool isRemovableDevice(const QString &device, const QString &mountPoint)
{
    if (mountPoint.startsWith(QStringLiteral("/media/")) ||
        mountPoint.startsWith(QStringLiteral("/run/media/")))
        return true;
    if (!device.startsWith(QStringLiteral("/dev/")))
        return false;
    // /dev/sdb1 -> /sys/block/sdb/removable
    QString name = device.mid(5);
    while (!name.isEmpty() && name.back().isDigit())
        name.chop(1);
    if (name.startsWith(QStringLiteral("nvme")) || name.startsWith(QStringLiteral("mmcblk")))
        name.chop(1); // the "p" before a partition number
    QFile flag(QStringLiteral("/sys/block/") + name + QStringLiteral("/removable"));
    return flag.open(QIODevice::ReadOnly) && flag.read(1) == "1";
}

} // namespace

QList<LocalDrive> LocalDrivesFromMounts(const QByteArray &mounts)
{
    QList<LocalDrive> drives{{QStringLiteral("/"), QStringLiteral("/"), false}};
    QSet<QString> seen{QStringLiteral("/")};
    for (const QByteArray &line : mounts.split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 3)
            continue;
        const QString device = unescapeMountField(fields.at(0));
        const QString mountPoint = unescapeMountField(fields.at(1));
        if (!isLocalType(fields.at(2)) || seen.contains(mountPoint) ||
            mountPoint.startsWith(QStringLiteral("/boot")) ||
            mountPoint.startsWith(QStringLiteral("/snap/")))
            continue;
        seen.insert(mountPoint);
        LocalDrive drive;
        drive.rootPath = mountPoint;
        drive.removable = isRemovableDevice(device, mountPoint);
        drive.label = drive.removable
                          ? QStringLiteral("Removable (") + mountPoint + QLatin1Char(')')
                          : mountPoint;
        drives.append(drive);
    }
    return drives;
}

QList<LocalDrive> LocalDrives()
{
    QFile mounts(QStringLiteral("/proc/self/mounts"));
    if (!mounts.open(QIODevice::ReadOnly))
        return LocalDrivesFromMounts(QByteArray());
    return LocalDrivesFromMounts(mounts.readAll());
}
