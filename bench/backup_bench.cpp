// Times Backup Files on real data. Not a test: bench/backup.sh runs it.
//
//   tarnwick_backup_bench scan SERVER USER PASSWORD ENTRIES
//       A list of ENTRIES files, none changed since its last backup, scanned by the real
//       Scan & Backup on the real page and window against the FTP server; then the same walk's
//       look-ups of the list done both ways side by side: the list read once (as the program
//       does) and the list read from its start for every entry (the way the look-up was first
//       written). Prints times, reads of the list file, the longest pause of the event loop.
//   tarnwick_backup_bench cabinet FOLDER
//       Packs FOLDER into FOLDER/DirFile_<name>.cab with the program's own route (RunCab: a
//       worker thread, the event loop live); prints the time and the longest event-loop pause.
//   tarnwick_backup_bench cancel FOLDER AFTER_MS
//       The same, cancelled AFTER_MS into the work; prints how long the cancel took to end it.

#include "BackupCompression.h"
#include "BackupFrame.h"
#include "BackupInstall.h"
#include "BackupList.h"
#include "BackupNames.h"
#include "Folders.h"
#include "Helpers.h"
#include "JobState.h"
#include "JobUi.h"
#include "RecordFile.h"
#include "TransferUi.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

namespace {

// Answers every question No and every notice OK, and keeps the notices.
class AutoUi final : public JobUi
{
public:
    void ShowInputBox(JobState &state) override { state.UserResponse = JobState::Skip; }
    Answer Message(const QString &text, const QString &, Buttons buttons, Icon,
                   std::optional<Answer>) override
    {
        messages << text;
        return buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel ? Answer::No
                                                                            : Answer::Ok;
    }
    void ShowScrollMessage(const QString &) override {}
    void SetStatusText(const QString &) override {}
    void SetStepOf(const QString &) override {}
    bool OpenUrl(const QUrl &) override { return true; }
    void SetClipboard(QMimeData *data) override { delete data; }
    void ProcessEvents() override { QCoreApplication::processEvents(); }
    QStringList messages;
};

// The longest time between two turns of the event loop while it runs.
struct LoopWatch
{
    QTimer ticker;
    QElapsedTimer since;
    qint64 longest = 0;
    int ticks = 0;
    LoopWatch()
    {
        ticker.setInterval(5);
        QObject::connect(&ticker, &QTimer::timeout, [this] {
            ++ticks;
            longest = std::max(longest, since.restart());
        });
    }
    void start()
    {
        since.start();
        ticker.start();
    }
    void stop() { ticker.stop(); }
};

double ms(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// The list's look-up as first written: open the file and walk it from its start to the entry.
bool readFromTheStart(const QString &listPath, const QString &name, BackupRecord &record)
{
    RecordListReader reader(listPath);
    if (!reader.isOpen() || !reader.findRecord(QStringLiteral("filename = ") + name))
        return false;
    record.Filename = name;
    const auto asBool = [](const QString &text) {
        return text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0;
    };
    record.DirectoryType = asBool(reader.readValue(QStringLiteral("DirectoryType")));
    record.LocationPath = reader.readValue(QStringLiteral("LocationPath"));
    record.DateModified = reader.readValue(QStringLiteral("DateModified"));
    record.DateBackup = reader.readValue(QStringLiteral("DateBackup"));
    record.CompressFile = asBool(reader.readValue(QStringLiteral("CompressFile")));
    record.IncrementalBackup = asBool(reader.readValue(QStringLiteral("IncrementalBackup")));
    record.NumberOfBackupTimes =
        qint16(reader.readValue(QStringLiteral("NumberOfBackupTimes")).toInt());
    record.UploadPath = reader.readValue(QStringLiteral("UploadPath"));
    record.LengthOfTheFile = reader.readValue(QStringLiteral("LengthOfTheFile")).toDouble();
    return !reader.pastEnd();
}

int scan(const QStringList &args)
{
    if (args.size() < 6)
        return 2;
    const int entries = args.at(5).toInt();
    QTemporaryDir docs;
    Folders::MakeFolderTree();
    BackupList list(Folders::BackupFolder());
    QFile::remove(list.listPath());
    QStringList names;
    for (int i = 0; i < entries; ++i) {
        const QString name = QStringLiteral("document %1.txt").arg(i, 5, 10, QLatin1Char('0'));
        const QString path = docs.filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return 1;
        file.write(QByteArray::number(i));
        file.close();
        BackupRecord record;
        record.Filename = name;
        record.LocationPath = docs.path() + QLatin1Char('/');
        record.DateModified = FileDateTime(path);
        record.DateBackup = record.DateModified;
        record.NumberOfBackupTimes = 1;
        record.UploadPath = QStringLiteral("example.org/Backup/") + name;
        record.LengthOfTheFile = double(file.size());
        list.AppendBackupRecord(record);
        names << name;
    }
    std::printf("list: %d entries, %lld bytes\n", entries,
                static_cast<long long>(QFileInfo(list.listPath()).size()));

    // The look-ups side by side, on the same file, for the same names, checked equal.
    {
        QElapsedTimer timer;
        timer.start();
        BackupList once(Folders::BackupFolder());
        QList<BackupRecord> ours(entries);
        for (int i = 0; i < entries; ++i)
            once.ReadBackupRecord(names.at(i), ours[i]);
        const double oursMs = ms(timer);
        timer.restart();
        int differ = 0;
        for (int i = 0; i < entries; ++i) {
            BackupRecord record;
            readFromTheStart(list.listPath(), names.at(i), record);
            if (BackupRecordText(record) != BackupRecordText(ours.at(i)))
                ++differ;
        }
        const double walkMs = ms(timer);
        std::printf("look-ups of every entry: list read once %.1f ms (%d read of the file); "
                    "read from its start for each entry %.1f ms (%d reads); records that "
                    "differ: %d\n",
                    oursMs, once.fileReads(), walkMs, entries, differ);
    }

    JobState state;
    AutoUi ui;
    SilentTransferUi progress;
    frmMain window(state);
    cFTP ftp(state);
    window.setFtpDirectoryProvider([&ftp] { return ftp.CurrentDirectory(); });
    WebSpace &webSpace = InstallWebSpace(window, ftp, &ui, &progress);
    InstallBackup(window, webSpace);
    auto *frame = window.findChild<BackupFrame *>();
    window.resize(1200, 800);
    window.show();
    window.FunctionSelectButton_Click(1);
    window.txtServer()->setText(args.at(2));
    window.txtUser()->setText(args.at(3));
    window.txtPassword()->setText(args.at(4));
    window.txtWebSite()->setText(QStringLiteral("example.org"));
    frame->findChild<QLineEdit *>(QStringLiteral("BackupDirName"))->setText(QStringLiteral("Backup"));
    frame->refresh();
    QCoreApplication::processEvents();

    const int readsBefore = frame->list().fileReads();
    LoopWatch watch;
    QElapsedTimer timer;
    watch.start();
    timer.start();
    frame->findChild<QPushButton *>(QStringLiteral("ScanAndBackupButton"))->click();
    const double scanMs = ms(timer);
    watch.stop();
    std::printf("Scan & Backup of %d unchanged entries: %.1f ms, %d read(s) of the list file, "
                "longest event-loop pause %lld ms, summary \"%s\"\n",
                entries, scanMs, frame->list().fileReads() - readsBefore,
                static_cast<long long>(watch.longest),
                qPrintable(ui.messages.isEmpty() ? QString() : ui.messages.first()));
    return 0;
}

int cabinet(const QStringList &args, qint64 cancelAfterMs)
{
    const QString folder = QDir(args.at(2)).absolutePath();
    const QString name = CompressedDirName(GetRoot(folder));
    QFile::remove(QDir(folder).filePath(name));
    JobState state;
    AutoUi ui;
    LoopWatch watch;
    QElapsedTimer timer;
    QElapsedTimer sinceCancel;
    QTimer cancel;
    cancel.setSingleShot(true);
    QObject::connect(&cancel, &QTimer::timeout, [&] {
        sinceCancel.start();
        state.UploadCancelled = true;
    });
    watch.start();
    timer.start();
    if (cancelAfterMs >= 0)
        cancel.start(int(cancelAfterMs));
    QString why;
    const qint16 result = RunCab(GetPath(folder), name, GetRoot(folder), ui, state, &why);
    const double took = ms(timer);
    watch.stop();
    if (cancelAfterMs >= 0) {
        std::printf("cancelled after %lld ms: the work ended %.1f ms after the cancel (result "
                    "%d, cabinet left: %s)\n",
                    static_cast<long long>(cancelAfterMs),
                    sinceCancel.isValid() ? double(sinceCancel.nsecsElapsed()) / 1e6 : -1.0,
                    result, QFile::exists(QDir(folder).filePath(name)) ? "yes" : "no");
        return 0;
    }
    if (result != 0) {
        std::fprintf(stderr, "failed: %s\n", qPrintable(why));
        return 1;
    }
    std::printf("cabinet %s: %lld bytes in %.1f ms, longest event-loop pause %lld ms (%d "
                "turns)\n",
                qPrintable(name),
                static_cast<long long>(QFileInfo(QDir(folder).filePath(name)).size()), took,
                static_cast<long long>(watch.longest), watch.ticks);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    // The program's data tree goes to a folder of its own.
    QTemporaryDir home;
    qputenv("HOME", QFile::encodeName(home.path()));
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    const QStringList args = app.arguments();
    const QString mode = args.value(1);
    if (mode == QLatin1String("scan"))
        return scan(args);
    if (mode == QLatin1String("cabinet") && args.size() >= 3)
        return cabinet(args, -1);
    if (mode == QLatin1String("cancel") && args.size() >= 4)
        return cabinet(args, args.at(3).toLongLong());
    std::fprintf(stderr,
                 "usage: %s scan SERVER USER PASSWORD ENTRIES | cabinet FOLDER | cancel FOLDER "
                 "AFTER_MS\n",
                 argv[0]);
    return 2;
}
