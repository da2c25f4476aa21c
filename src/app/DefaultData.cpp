#include "DefaultData.h"

#include "Cabinet.h"
#include "Folders.h"
#include "Helpers.h"
#include "JobUi.h"

#include <QDateTime>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>

namespace {

QString homeFile(const QString &name)
{
    return Folders::HomeFolder() + name;
}

// Copies source to target when target is missing; failures are passed over.
bool copyOneFile(const QString &source, const QString &target)
{
    if (QFileInfo::exists(target) || !QFileInfo(source).isFile())
        return false;
    if (!QFile::copy(source, target))
        return false;
    // The data folder is read-only; the user's copy must stay writable.
    QFile(target).setPermissions(QFile(target).permissions() | QFileDevice::WriteOwner);
    return true;
}

CabinetResult unpackWithWindowLive(const QString &cabinet, const QString &folder)
{
    QFutureWatcher<CabinetResult> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcher<CabinetResult>::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(
        QtConcurrent::run([cabinet, folder] { return ExtractCabinet(cabinet, folder, false); }));
    if (!watcher.isFinished())
        loop.exec();
    return watcher.result();
}

void writeMarker(const QString &path, const CabinetResult &result)
{
    QFile marker(path);
    if (!marker.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return;
    const QString when = FileDateText(QDateTime::currentDateTime());
    QString text =
        result.ok ? QStringLiteral("Tarnwick unpacked its default data here on %1.\r\n").arg(when)
                  : QStringLiteral("Tarnwick tried to unpack its default data on %1: %2\r\n")
                        .arg(when, result.message);
    text += QStringLiteral(
        "Delete this file to have missing default data unpacked again at the next start.\r\n");
    marker.write(text.toUtf8());
}

} // namespace

QList<DefaultFile> DefaultFiles()
{
    // The Windows cabinet tools and their batch files have no place here: libgcab does their work.
    QList<DefaultFile> files;
    for (const char *name : {"Top.txt", "Left.txt", "Right.txt", "End.txt"})
        files.append({Folders::PhotosFolder(), QString::fromLatin1(name)});
    for (const char *name : {"BC_Top.txt", "BC_Mid.txt", "BC_End.txt", "B_Top.txt", "B_Left.txt",
                             "B_Right.txt", "B_End1.txt", "B_End2.txt", "B_End2a.txt", "B_End3.txt",
                             "MasterTop.txt", "MasterBody.txt", "MasterEnd.txt"})
        files.append({Folders::BlogFolder(), QString::fromLatin1(name)});
    QString home = Folders::HomeFolder();
    home.chop(1);
    files.append({home, DefaultDataCabinetName});
    return files;
}

QString DefaultDataSignFile()
{
    return Folders::StartupFolder() + QStringLiteral("/Office Tools/Zipcode Search.ptr");
}

QString DefaultDataMarkerFile()
{
    return homeFile(QStringLiteral("Save.txt"));
}

CopyFilesReport CopyFiles(JobUi &ui)
{
    CopyFilesReport report;

    const QString programFolder = Folders::ProgramFolder();
    if (!programFolder.isEmpty()) {
        for (const DefaultFile &file : DefaultFiles()) {
            const QString target = file.folder + u'/' + file.name;
            if (copyOneFile(programFolder + u'/' + file.name, target))
                report.copied << target;
        }
    }

    if (!QFileInfo::exists(DefaultDataMarkerFile())) {
        report.unpackTried = true;
        const CabinetResult result =
            unpackWithWindowLive(homeFile(DefaultDataCabinetName), Folders::HomeFolder());
        report.unpacked = result.ok;
        report.unpackedFiles = result.names;
        report.unpackMessage = result.message;
        writeMarker(DefaultDataMarkerFile(), result);
    }

    report.signFileFound =
        !FindPathNoCase(Folders::HomeFolder(),
                        QStringLiteral("Startup/Office Tools/Zipcode Search.ptr"))
             .isEmpty();
    if (!report.signFileFound) {
        ui.Message(DefaultDataMissingMessage, QStringLiteral("Tarnwick"), JobUi::Buttons::Ok,
                   JobUi::Icon::None);
        report.messageShown = true;
    }
    return report;
}
