#include "LocalDrives.h"
#include "TestMain.h"

class TestLocalDrives : public QObject
{
    Q_OBJECT
private slots:
    void fromMounts()
    {
        const QByteArray mounts = "overlay / overlay rw,relatime 0 0\n"
                                  "proc /proc proc rw 0 0\n"
                                  "tmpfs /run tmpfs rw 0 0\n"
                                  "/dev/nvme0n1p2 /home ext4 rw 0 0\n"
                                  "/dev/nvme0n1p1 /boot/efi vfat rw 0 0\n"
                                  "/dev/sdz1 /media/ann/USB\\040STICK vfat rw 0 0\n"
                                  "/dev/sdz2 /run/media/ann/CAMERA exfat rw 0 0\n"
                                  "server:/export /mnt/nfs nfs4 rw 0 0\n"
                                  "//nas/share /mnt/smb cifs rw 0 0\n"
                                  "sshfs#ann@host: /mnt/ssh fuse.sshfs rw 0 0\n"
                                  "/dev/nvme0n1p2 /home ext4 rw 0 0\n"
                                  "short line\n";
        const QList<LocalDrive> drives = LocalDrivesFromMounts(mounts);
        QStringList labels;
        for (const LocalDrive &drive : drives)
            labels.append(drive.label);
        QCOMPARE(labels, (QStringList{QStringLiteral("/"), QStringLiteral("/home"),
                                      QStringLiteral("Removable (/media/ann/USB STICK)"),
                                      QStringLiteral("Removable (/run/media/ann/CAMERA)")}));
        QCOMPARE(drives.at(2).rootPath, QStringLiteral("/media/ann/USB STICK"));
        QVERIFY(drives.at(2).removable);
        QVERIFY(!drives.at(1).removable);
    }

    void emptyTableStillHasTheRoot()
    {
        const QList<LocalDrive> drives = LocalDrivesFromMounts(QByteArray());
        QCOMPARE(drives.size(), 1);
        QCOMPARE(drives.first().rootPath, QStringLiteral("/"));
    }

    void thisMachine()
    {
        const QList<LocalDrive> drives = LocalDrives();
        QVERIFY(!drives.isEmpty());
        QCOMPARE(drives.first().rootPath, QStringLiteral("/"));
    }
};

TARNWICK_TEST_MAIN(TestLocalDrives)
#include "test_localdrives.moc"
