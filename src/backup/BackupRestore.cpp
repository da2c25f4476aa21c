#include "BackupCompression.h"
#include "BackupJobs.h"
#include "BackupList.h"
#include "BackupNames.h"
#include "BackupRecord.h"
#include "BackupStatus.h"
#include "BackupWindow.h"
#include "Cabinet.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "cFTP.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>

#include <cstdio>

namespace {

const QString RestoreTitle = QStringLiteral("Restore from the Web Space");

// The one file that a cabinet of a single file holds: the one named name, or else its only file.
QString payloadIn(const QString &folder, const QStringList &names, const QString &name)
{
    if (names.contains(name))
        return QDir(folder).filePath(name);
    if (names.size() == 1)
        return QDir(folder).filePath(names.first());
    return QString();
}

} // namespace

bool BackupJobs::putInPlace(const QString &payload, const QString &target,
                            const QString &backupDate, QString *why)
{
    const QFileInfo targetInfo(target);
    if (!QDir().mkpath(targetInfo.absolutePath())) {
        *why = QStringLiteral("the folder %1 could not be made").arg(targetInfo.absolutePath());
        return false;
    }
    // The copy is written beside the file under a name of its own, and only a whole copy takes
    // the file's place.
    const QString part = targetInfo.absolutePath() + QStringLiteral("/.") + targetInfo.fileName() +
                         QStringLiteral(".restoring");
    bool copied = false;
    RunWithWindowLive(m_context.ui, m_context.state, [&](const std::atomic<bool> &cancel) {
        copied = CopyFileInBlocks(payload, part, cancel, why);
    });
    if (!copied) {
        QFile::remove(part);
        return false;
    }
    if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(target).constData()) !=
        0) {
        *why = QStringLiteral("it could not take the place of %1").arg(target);
        QFile::remove(part);
        return false;
    }
    // The file gets back the date it had when it was sent, so the next scan finds it unchanged.
    const QDateTime date =
        QLocale::c().toDateTime(backupDate, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (date.isValid()) {
        QFile file(target);
        if (file.open(QIODevice::ReadWrite))
            file.setFileTime(date, QFileDevice::FileModificationTime);
    }
    return true;
}

BackupOutcome BackupJobs::RestoreButton()
{
    JobState &state = m_context.state;
    JobUi &ui = m_context.ui;
    state.UserResponse.clear();
    state.UploadCancelled = false;
    m_restoreReport.clear();

    const QStringList entries = m_window.BackupFileList();
    QStringList chosen;
    for (int row = 0; row < entries.size(); ++row) {
        if (m_window.isSelected(row))
            chosen << entries.at(row);
    }
    if (chosen.isEmpty()) {
        ui.Message(QStringLiteral("Select the files to restore in the list first."), RestoreTitle,
                   JobUi::Buttons::Ok, JobUi::Icon::Information);
        return BackupOutcome::Nothing;
    }
    if (m_window.RunWithoutMenu()) {
        ui.Message(QStringLiteral("Nothing can be fetched from the web space while Run Without "
                                  "Connections is checked."),
                   RestoreTitle, JobUi::Buttons::Ok, JobUi::Icon::Information);
        return BackupOutcome::Nothing;
    }

    ui.SetStatusText(QStringLiteral("Starting Restore"));
    m_window.enableBackups(false);
    m_window.setBusy(true);
    const auto end = [&](BackupOutcome outcome) {
        m_context.window.cmdDisconnect();
        m_window.enableBackups(true);
        m_window.showProgressFrame(false);
        m_window.setBusy(false);
        state.UploadCancelled = false;
        return outcome;
    };
    const BackupConnection connection = BackupConnect(backupDirectory(), true);
    if (connection != BackupConnection::Connected) {
        if (connection != BackupConnection::WrongPath)
            ui.Message(QStringLiteral("Connection failure. Try to resend."), RestoreTitle,
                       JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return end(BackupOutcome::Failed);
    }

    QTemporaryDir work(backupFolder() + QStringLiteral("/Restore-XXXXXX"));
    if (!work.isValid()) {
        ui.Message(QStringLiteral("No working folder could be made in ") + backupFolder() +
                       QStringLiteral(": ") + work.errorString(),
                   RestoreTitle, JobUi::Buttons::Ok, JobUi::Icon::Warning);
        return end(BackupOutcome::Failed);
    }
    bool stopped = false;
    for (qsizetype i = 0; i < chosen.size(); ++i) {
        ui.SetStatusText(QStringLiteral("Restoring Files"));
        ui.SetStepOf(QStringLiteral("Currently loading section ") + QString::number(i + 1) +
                     QStringLiteral(" of ") + QString::number(chosen.size()));
        restoreEntry(chosen.at(i), work.filePath(QString::number(i)));
        if (stopRequested()) {
            stopped = true;
            m_restoreReport << QStringLiteral("The restore was cancelled.");
            break;
        }
    }
    m_context.window.cmdDisconnect();
    state.UserResponse.clear();
    ui.Message(m_restoreReport.join(QLatin1Char('\r')), RestoreTitle, JobUi::Buttons::Ok,
               JobUi::Icon::Information);
    return end(stopped ? BackupOutcome::Stopped : BackupOutcome::Done);
}

void BackupJobs::restoreEntry(const QString &entry, const QString &work)
{
    JobUi &ui = m_context.ui;
    JobState &state = m_context.state;
    const auto report = [&](const QString &text) {
        m_restoreReport << entry + QStringLiteral(": ") + text;
    };

    BackupRecord entryRecord;
    if (m_list.ReadBackupRecord(entry, entryRecord) != 0) {
        report(QStringLiteral("not in the backup list."));
        return;
    }
    const QString remote = RemoteNameOf(entryRecord.UploadPath);
    if (remote.isEmpty()) {
        report(QStringLiteral("no copy on the web space is recorded."));
        return;
    }
    QDir().mkpath(work);
    const QString fetched = QDir(work).filePath(remote);
    if (!DownloadFileToFTP(m_context, fetched, remote) || !QFileInfo(fetched).isFile()) {
        if (!stopRequested())
            report(QStringLiteral("could not be fetched from the web space (") +
                   m_context.ftp.GetLastErrorMessage() + QStringLiteral(")."));
        return;
    }

    const auto unpack = [&](const QString &cabinet, const QString &into) {
        CabinetResult result;
        RunWithWindowLive(ui, state, [&](const std::atomic<bool> &cancel) {
            result = ExtractCabinet(cabinet, into, true, &cancel);
        });
        return result;
    };
    const auto lengthMatches = [&](const QString &path) {
        const qint64 length = QFileInfo(path).size();
        if (double(length) == entryRecord.LengthOfTheFile)
            return true;
        report(QStringLiteral("the copy on the web space holds %1 bytes where the list says %2: "
                              "it was not restored.")
                   .arg(length)
                   .arg(QLocale::c().toString(entryRecord.LengthOfTheFile, 'G', 15)));
        return false;
    };
    const auto newerHere = [&](const QString &target) {
        const QString localDate = FileDateTime(target);
        if (localDate.isEmpty() || localDate <= entryRecord.DateModified)
            return false;
        return ui.Message(QStringLiteral("The file '") + target +
                              QStringLiteral("' on this computer is newer than its backup of ") +
                              entryRecord.DateModified +
                              QStringLiteral(". Do you want to replace it with the copy from the "
                                             "web space?"),
                          RestoreTitle, JobUi::Buttons::YesNo, JobUi::Icon::Question,
                          JobUi::Answer::No) != JobUi::Answer::Yes;
    };
    const bool isCabinet = remote.endsWith(QLatin1String(".cab"), Qt::CaseInsensitive);

    if (IsCompressedDirectory(entryRecord.Filename)) {
        QString cabinet = fetched;
        if (remote != entryRecord.Filename && isCabinet) {
            // The directory's cabinet was sent packed once more by a scan.
            const QString outer = QDir(work).filePath(QStringLiteral("outer"));
            const CabinetResult opened = unpack(fetched, outer);
            cabinet = opened.ok ? payloadIn(outer, opened.names, entryRecord.Filename) : QString();
            if (cabinet.isEmpty()) {
                if (!opened.cancelled)
                    report(QStringLiteral("the copy on the web space could not be unpacked: ") +
                           opened.message);
                return;
            }
        }
        if (!lengthMatches(cabinet))
            return;
        const QString files = QDir(work).filePath(QStringLiteral("files"));
        const CabinetResult unpacked = unpack(cabinet, files);
        if (!unpacked.ok) {
            if (!unpacked.cancelled)
                report(QStringLiteral("the copy on the web space could not be unpacked: ") +
                       unpacked.message);
            return;
        }
        int restored = 0;
        int kept = 0;
        for (const QString &name : unpacked.names) {
            if (stopRequested())
                return;
            const QString target = WithSlash(entryRecord.LocationPath) + name;
            if (newerHere(target)) {
                ++kept;
                continue;
            }
            QString why;
            if (!putInPlace(QDir(files).filePath(name), target, QString(), &why)) {
                report(name + QStringLiteral(" could not be written: ") + why);
                return;
            }
            ++restored;
        }
        report(QStringLiteral("%1 files restored into %2%3")
                   .arg(restored)
                   .arg(entryRecord.LocationPath)
                   .arg(kept > 0 ? QStringLiteral(", %1 newer files kept.").arg(kept)
                                 : QStringLiteral(".")));
        return;
    }

    QString payload = fetched;
    if (entryRecord.CompressFile && isCabinet) {
        const QString into = QDir(work).filePath(QStringLiteral("file"));
        const CabinetResult unpacked = unpack(fetched, into);
        payload = unpacked.ok ? payloadIn(into, unpacked.names, entryRecord.Filename) : QString();
        if (payload.isEmpty()) {
            if (!unpacked.cancelled)
                report(QStringLiteral("the copy on the web space could not be unpacked: ") +
                       unpacked.message);
            return;
        }
    }
    if (!lengthMatches(payload))
        return;
    QString target;
    if (LookUpLocalFile(entryRecord.LocationPath, entryRecord.Filename, &target) != LookUp::Found)
        target = RecordFilePath(entryRecord);
    if (newerHere(target)) {
        report(QStringLiteral("the file on this computer is newer and was kept."));
        return;
    }
    QString why;
    if (!putInPlace(payload, target, entryRecord.DateModified, &why)) {
        if (!stopRequested())
            report(QStringLiteral("could not be written: ") + why);
        return;
    }
    report(QStringLiteral("restored to %1 (%2 bytes).").arg(target).arg(QFileInfo(target).size()));
}
