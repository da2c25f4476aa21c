#include "BackupCompression.h"

#include "BackupNames.h"
#include "Cabinet.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <unistd.h>

namespace {

// How often the waiting job turns the event pump and looks at the cancel flags.
constexpr int PumpIntervalMs = 20;
constexpr qint64 CopyBlock = 1 << 20;

bool cancelRequested(const JobState &state)
{
    return state.UploadCancelled || state.skipped();
}

} // namespace

void RunWithWindowLive(JobUi &ui, JobState &state,
                       const std::function<void(const std::atomic<bool> &cancel)> &work)
{
    std::atomic<bool> cancel = cancelRequested(state);
    QFutureWatcher<void> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcher<void>::finished, &loop, &QEventLoop::quit);
    QTimer pump;
    pump.setInterval(PumpIntervalMs);
    QObject::connect(&pump, &QTimer::timeout, &loop, [&] {
        ui.ProcessEvents();
        if (cancelRequested(state))
            cancel = true;
    });
    watcher.setFuture(QtConcurrent::run([&work, &cancel] { work(cancel); }));
    if (!watcher.isFinished()) {
        pump.start();
        loop.exec();
        pump.stop();
    }
    watcher.waitForFinished();
}

bool CopyFileInBlocks(const QString &source, const QString &target, const std::atomic<bool> &cancel,
                      QString *why, bool *denied)
{
    if (denied)
        *denied = false;
    // The system's own word for a file that can't be opened, and whether it was refused.
    const int probe = ::open(QFile::encodeName(source).constData(), O_RDONLY | O_CLOEXEC);
    if (probe < 0) {
        const int number = errno;
        if (denied)
            *denied = number == EACCES || number == EPERM;
        *why = QString::fromLocal8Bit(std::strerror(number));
        return false;
    }
    ::close(probe);
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        *why = in.errorString();
        return false;
    }
    if (QFileInfo(source).canonicalFilePath() == QFileInfo(target).canonicalFilePath())
        return true; // the file is its own copy already
    QFile out(target);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        *why = out.errorString();
        return false;
    }
    QByteArray block;
    for (;;) {
        if (cancel) {
            out.close();
            QFile::remove(target);
            *why = QStringLiteral("The copy was cancelled.");
            return false;
        }
        block = in.read(CopyBlock);
        if (block.isEmpty()) {
            if (in.error() != QFileDevice::NoError) {
                *why = in.errorString();
                out.close();
                QFile::remove(target);
                return false;
            }
            break;
        }
        if (out.write(block) != block.size()) {
            *why = out.errorString();
            out.close();
            QFile::remove(target);
            return false;
        }
    }
    if (!out.flush()) {
        *why = out.errorString();
        out.close();
        QFile::remove(target);
        return false;
    }
    out.close();
    QFile::setPermissions(target, QFile::permissions(target) | QFileDevice::WriteOwner);
    return true;
}

CompressResult CompressForBackup(const QString &source, const QString &backupFolder, JobUi &ui,
                                 JobState &state)
{
    CompressResult result;
    const QString name = QFileInfo(source).fileName();
    result.copyPath = backupFolder + QLatin1Char('/') + name;
    result.cabinetPath = backupFolder + QLatin1Char('/') + CabinetFileName(name);
    RunWithWindowLive(ui, state, [&](const std::atomic<bool> &cancel) {
        QString why;
        bool denied = false;
        if (!CopyFileInBlocks(source, result.copyPath, cancel, &why, &denied)) {
            result.cancelled = cancel;
            result.copyFailed = !result.cancelled;
            result.copyDenied = denied;
            result.message = why;
            return;
        }
        const CabinetResult cabinet =
            WriteCabinet(result.cabinetPath, {{result.copyPath, name}}, &cancel);
        result.ok = cabinet.ok;
        result.cancelled = cabinet.cancelled;
        result.message = cabinet.message;
    });
    return result;
}

qint16 RunCab(const QString &folder, const QString &cabName, const QString &subFolder, JobUi &ui,
              JobState &state, QString *why)
{
    QString target = folder;
    if (!subFolder.isEmpty())
        target = QDir(folder).filePath(subFolder);
    const QString cabinetPath = QDir(target).filePath(cabName);
    CabinetResult result;
    if (!QFileInfo(target).isDir()) {
        result.message = QStringLiteral("The folder %1 does not exist.").arg(target);
    } else {
        RunWithWindowLive(ui, state, [&](const std::atomic<bool> &cancel) {
            QList<CabinetEntry> entries = CabinetEntriesOf(target);
            entries.removeIf([&](const CabinetEntry &entry) {
                return entry.nameInCabinet == cabName ||
                       entry.nameInCabinet == cabName + QStringLiteral(".part");
            });
            result = WriteCabinet(cabinetPath, entries, &cancel);
        });
    }
    if (result.ok)
        return 0;
    if (why)
        *why = result.message;
    state.UploadCancelled = false;
    return -1;
}

bool IsImageFile(const QString &name)
{
    static const QStringList pictures = {
        QStringLiteral("bmp"), QStringLiteral("dib"),  QStringLiteral("gif"),
        QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("jpe"),
        QStringLiteral("png"), QStringLiteral("tif"),  QStringLiteral("tiff"),
        QStringLiteral("ico"), QStringLiteral("cur"),  QStringLiteral("webp")};
    return pictures.contains(QFileInfo(name).suffix(), Qt::CaseInsensitive);
}

CompressResult CabAll(const QString &homeFolder, JobUi &ui, JobState &state)
{
    CompressResult result;
    result.cabinetPath = QDir(homeFolder).filePath(QStringLiteral("AllFiles.cab"));
    DoKill(result.cabinetPath);
    RunWithWindowLive(ui, state, [&](const std::atomic<bool> &cancel) {
        QList<CabinetEntry> entries = CabinetEntriesOf(homeFolder);
        // Only what lies in the sub-folders: the records, lists and templates.
        entries.removeIf([](const CabinetEntry &entry) {
            const QString name = entry.nameInCabinet;
            const QString suffix = QFileInfo(name).suffix().toLower();
            return !name.contains(QLatin1Char('/')) || IsImageFile(name) ||
                   suffix == QLatin1String("cab") || suffix == QLatin1String("part");
        });
        const CabinetResult cabinet = WriteCabinet(result.cabinetPath, entries, &cancel);
        result.ok = cabinet.ok;
        result.cancelled = cabinet.cancelled;
        result.message = cabinet.message;
    });
    return result;
}
