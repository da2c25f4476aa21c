#pragma once

#include "BackupFrame.h"
#include "BackupInstall.h"
#include "BackupList.h"
#include "BackupNames.h"
#include "Folders.h"
#include "Helpers.h"
#include "Settings.h"
#include "WebSpace.h"
#include "WebSpaceFixture.h"

#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMap>
#include <QProcess>
#include <QPushButton>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

// The window with the web space and Backup Files joined as the program joins them, over a
// scripted user and a real FTP server; the Backup page open.
struct BackupFixture : WebSpaceFixture
{
    WebSpace *webSpace = nullptr;
    BackupFrame *frame = nullptr;

    BackupFixture()
    {
        Folders::MakeFolderTree();
        // A failed file's error form goes by itself, at once.
        progress->setErrorAutoCloseMs(1);
        install();
        webSpace = window->findChild<WebSpace *>(QStringLiteral("WebSpace"));
        InstallBackup(*window, *webSpace);
        frame = window->findChild<BackupFrame *>();
        field(QStringLiteral("BackupDirName"))->setText(QStringLiteral("Backup"));
    }

    void open()
    {
        SaveSetting(QStringLiteral("BackupInstructionView"), QStringLiteral("Hide"));
        showFunction(1);
    }

    QPushButton *button(const QString &name) const { return frame->findChild<QPushButton *>(name); }
    QLineEdit *field(const QString &name) const { return frame->findChild<QLineEdit *>(name); }
    QListWidget *fileList() const
    {
        return frame->findChild<QListWidget *>(QStringLiteral("BackupFileList"));
    }
    QCheckBox *overrideCheck() const
    {
        return frame->findChild<QCheckBox *>(QStringLiteral("OverrideCheck"));
    }
    // Selects the entries of BackupFileList of these names, and only them.
    void select(const QStringList &names) const
    {
        fileList()->clearSelection();
        for (int row = 0; row < fileList()->count(); ++row) {
            if (names.contains(fileList()->item(row)->text()))
                fileList()->item(row)->setSelected(true);
        }
    }
    // Clicks an entry as the user does: it becomes the current one and its record shows.
    void click(const QString &name) const
    {
        const auto found = fileList()->findItems(name, Qt::MatchExactly);
        if (found.isEmpty())
            return;
        fileList()->setCurrentItem(found.first());
        frame->BackupFileList_Click();
    }
    QString backupFolder() const { return Folders::BackupFolder(); }
};

// A file with the given content and modification time.
inline QString makeLocalFile(const QString &path, const QByteArray &content,
                             const QDateTime &time = QDateTime())
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return QString();
    file.write(content);
    file.flush();
    if (time.isValid())
        file.setFileTime(time, QFileDevice::FileModificationTime);
    return path;
}

inline QByteArray randomBytes(qint64 size, quint32 seed = 7)
{
    QRandomGenerator random(seed);
    QByteArray data(size, Qt::Uninitialized);
    auto *words = reinterpret_cast<quint32 *>(data.data());
    random.fillRange(words, size / 4);
    for (qint64 i = size / 4 * 4; i < size; ++i)
        data[i] = char(random.bounded(256));
    return data;
}

// A record of the list as the adding of a file leaves it.
inline BackupRecord listedRecord(const QString &path, const QString &site, bool compress,
                                 bool upToDate)
{
    const QFileInfo info(path);
    BackupRecord record;
    record.Filename = info.fileName();
    record.LocationPath = info.absolutePath() + QLatin1Char('/');
    record.DateModified = upToDate ? FileDateTime(path) : QStringLiteral("2001-01-01 00:00:00");
    record.DateBackup = QStringLiteral("2001-01-01 00:00:01");
    record.CompressFile = compress;
    record.NumberOfBackupTimes = 1;
    record.UploadPath = site + QStringLiteral("/Backup/") +
                        (compress ? CabinetFileName(info.fileName()) : info.fileName());
    record.LengthOfTheFile = double(info.size());
    return record;
}

// The files of a cabinet as an independent reader (gcab) unpacks them: name -> bytes.
inline QMap<QString, QByteArray> unpackWithGcab(const QString &cabinet, QString *error = nullptr)
{
    QMap<QString, QByteArray> files;
    QTemporaryDir into;
    QProcess gcab;
    gcab.setWorkingDirectory(into.path());
    gcab.start(QStringLiteral("gcab"), {QStringLiteral("-x"), cabinet});
    if (!gcab.waitForFinished(120000) || gcab.exitCode() != 0) {
        if (error)
            *error = QString::fromLocal8Bit(gcab.readAllStandardError()) + gcab.errorString();
        return files;
    }
    QDir root(into.path());
    QDirIterator it(into.path(), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            files.insert(root.relativeFilePath(path), file.readAll());
    }
    return files;
}

// Takes away root's overrides of file permissions for this thread and the threads it starts
// from now on, so that a file of mode 000 can't be read, as for every other user. Call it
// before any worker thread is started. False when the system refused.
inline bool DropFileAccessOverrides()
{
    if (geteuid() != 0)
        return true;
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2]{};
    if (syscall(SYS_capget, &header, data) != 0)
        return false;
    for (const int capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH}) {
        data[capability / 32].effective &= ~(1u << (capability % 32));
    }
    return syscall(SYS_capset, &header, data) == 0;
}
