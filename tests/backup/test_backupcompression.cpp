#include "BackupCompression.h"
#include "BackupFixture.h"
#include "ScriptedUi.h"
#include "TestMain.h"

#include <QThread>
#include <QTimer>

#include <atomic>
#include <csignal>

#include <sys/resource.h>

// The backup function's cabinets: one file, a folder, the program's own data.
class TestBackupCompression : public QObject
{
    Q_OBJECT
private:
    JobState m_state;
    ScriptedUi m_ui;
    std::unique_ptr<QTemporaryDir> m_dir;

    QString path(const QString &relative) const { return m_dir->filePath(relative); }

    // Lets the files of this process grow to limit bytes at most, as a full disk would: a
    // write beyond it fails (EFBIG) instead of ending the process.
    struct FileSizeLimit
    {
        rlimit before{};
        explicit FileSizeLimit(rlim_t limit)
        {
            std::signal(SIGXFSZ, SIG_IGN);
            getrlimit(RLIMIT_FSIZE, &before);
            rlimit now = before;
            now.rlim_cur = limit;
            setrlimit(RLIMIT_FSIZE, &now);
        }
        ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }
    };

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_state.reset();
        m_ui.onProcessEvents = nullptr;
        QDir().mkpath(path(QStringLiteral("Backup")));
    }

    void oneFileGoesIntoACabinetOfItsOwn()
    {
        const QByteArray content = randomBytes(300000) + QByteArray(300000, 'a');
        const QString source = makeLocalFile(path(QStringLiteral("docs/report.doc")), content);
        const CompressResult result =
            CompressForBackup(source, path(QStringLiteral("Backup")), m_ui, m_state);
        QVERIFY2(result.ok, qPrintable(result.message));
        QCOMPARE(result.cabinetPath, path(QStringLiteral("Backup/report_doc.CAB")));
        QCOMPARE(result.copyPath, path(QStringLiteral("Backup/report.doc")));
        QCOMPARE(readFile(result.copyPath), content);
        QString error;
        const auto files = unpackWithGcab(result.cabinetPath, &error);
        QCOMPARE(files.keys(), QStringList{QStringLiteral("report.doc")});
        QCOMPARE(files.value(QStringLiteral("report.doc")), content);
        QVERIFY(!QFile::exists(result.cabinetPath + QStringLiteral(".part")));
    }

    void aNameWithoutADotAndOneWithSeveral()
    {
        const QString readme = makeLocalFile(path(QStringLiteral("docs/README")), "read me");
        const QString dots = makeLocalFile(path(QStringLiteral("docs/a.b.c")), "dots");
        QCOMPARE(
            CompressForBackup(readme, path(QStringLiteral("Backup")), m_ui, m_state).cabinetPath,
            path(QStringLiteral("Backup/READM_.CAB")));
        QCOMPARE(CompressForBackup(dots, path(QStringLiteral("Backup")), m_ui, m_state).cabinetPath,
                 path(QStringLiteral("Backup/a_b.c.CAB")));
        QCOMPARE(unpackWithGcab(path(QStringLiteral("Backup/READM_.CAB")))
                     .value(QStringLiteral("README")),
                 QByteArray("read me"));
    }

    void aFolderIsPackedWithItsPathsInTheInnermostFolder()
    {
        makeLocalFile(path(QStringLiteral("home/Tax Papers/2025/march.pdf")), randomBytes(5000));
        makeLocalFile(path(QStringLiteral("home/Tax Papers/2025/deep/note.txt")), "deep");
        makeLocalFile(path(QStringLiteral("home/Tax Papers/summary.txt")), "summary");
        makeLocalFile(path(QStringLiteral("home/elsewhere.txt")), "not this");
        QString why;
        QCOMPARE(RunCab(path(QStringLiteral("home")), QStringLiteral("DirFile_Tax_Papers.cab"),
                        QStringLiteral("Tax Papers"), m_ui, m_state, &why),
                 qint16(0));
        const QString cabinet = path(QStringLiteral("home/Tax Papers/DirFile_Tax_Papers.cab"));
        QVERIFY2(QFile::exists(cabinet), qPrintable(why));
        const auto files = unpackWithGcab(cabinet);
        QCOMPARE(files.keys(),
                 (QStringList{QStringLiteral("2025/deep/note.txt"),
                              QStringLiteral("2025/march.pdf"), QStringLiteral("summary.txt")}));
        QCOMPARE(files.value(QStringLiteral("2025/march.pdf")), randomBytes(5000));
        // Made again with the cabinet in the folder, it doesn't pack itself.
        QCOMPARE(RunCab(path(QStringLiteral("home")), QStringLiteral("DirFile_Tax_Papers.cab"),
                        QStringLiteral("Tax Papers"), m_ui, m_state),
                 qint16(0));
        QCOMPARE(unpackWithGcab(cabinet).size(), 3);
    }

    void withoutASubFolderTheFolderItselfIsPacked()
    {
        makeLocalFile(path(QStringLiteral("home/a.txt")), "a");
        makeLocalFile(path(QStringLiteral("home/sub/b.txt")), "b");
        QCOMPARE(RunCab(path(QStringLiteral("home")), QStringLiteral("DirFile_home.cab"), QString(),
                        m_ui, m_state),
                 qint16(0));
        QCOMPARE(unpackWithGcab(path(QStringLiteral("home/DirFile_home.cab"))).keys(),
                 (QStringList{QStringLiteral("a.txt"), QStringLiteral("sub/b.txt")}));
    }

    void aMissingFolderFailsWithAReason()
    {
        QString why;
        m_state.UploadCancelled = true;
        QCOMPARE(RunCab(path(QStringLiteral("nowhere")), QStringLiteral("x.cab"), QString(), m_ui,
                        m_state, &why),
                 qint16(-1));
        QVERIFY(why.contains(QStringLiteral("does not exist")));
        QVERIFY(!m_state.UploadCancelled);
    }

    void aCancelWhileAFolderIsPackedLeavesNoCabinet()
    {
        makeLocalFile(path(QStringLiteral("home/big/one.bin")), randomBytes(24 * 1024 * 1024, 9));
        makeLocalFile(path(QStringLiteral("home/big/two.bin")), randomBytes(1024));
        const QString part = path(QStringLiteral("home/big/DirFile_big.cab.part"));
        bool cancelledWhileWriting = false;
        m_ui.onProcessEvents = [&] {
            if (!m_state.UploadCancelled && QFile::exists(part)) {
                cancelledWhileWriting = true;
                m_state.UploadCancelled = true;
            }
        };
        QString why;
        QCOMPARE(RunCab(path(QStringLiteral("home")), QStringLiteral("DirFile_big.cab"),
                        QStringLiteral("big"), m_ui, m_state, &why),
                 qint16(-1));
        QVERIFY(cancelledWhileWriting);
        QVERIFY(why.contains(QStringLiteral("cancelled")));
        QVERIFY(!QFile::exists(part));
        QVERIFY(!QFile::exists(path(QStringLiteral("home/big/DirFile_big.cab"))));
        QVERIFY(!m_state.UploadCancelled);
    }

    void theWindowIsServedWhileACabinetIsMade()
    {
        // The work waits until the job's thread has turned the event loop three times: it can
        // only end if the loop is served while the work runs on its own thread.
        std::atomic<int> pumps = 0;
        m_ui.onProcessEvents = [&pumps] { ++pumps; };
        bool ran = false;
        RunWithWindowLive(m_ui, m_state, [&](const std::atomic<bool> &) {
            while (pumps.load() < 3)
                QThread::msleep(1);
            ran = true;
        });
        QVERIFY(ran);

        // A real cabinet is made through it.
        makeLocalFile(path(QStringLiteral("home/big/one.bin")), randomBytes(8 * 1024 * 1024, 2));
        QCOMPARE(RunCab(path(QStringLiteral("home")), QStringLiteral("DirFile_big.cab"),
                        QStringLiteral("big"), m_ui, m_state),
                 qint16(0));
        m_ui.onProcessEvents = nullptr;
    }

    void aFullDiskWhileACabinetIsWrittenLeavesNoneAndSaysWhy()
    {
        makeLocalFile(path(QStringLiteral("home/docs/a.bin")), randomBytes(200000, 4));
        makeLocalFile(path(QStringLiteral("home/docs/b.bin")), randomBytes(200000, 5));
        QString why;
        qint16 result = 0;
        {
            const FileSizeLimit full(256 * 1024);
            result = RunCab(path(QStringLiteral("home")), QStringLiteral("DirFile_docs.cab"),
                            QStringLiteral("docs"), m_ui, m_state, &why);
        }
        QCOMPARE(result, qint16(-1));
        QVERIFY2(why.contains(QStringLiteral("File too large")) ||
                     why.contains(QStringLiteral("No space left")),
                 qPrintable(why));
        QCOMPARE(QDir(path(QStringLiteral("home/docs"))).entryList(QDir::Files),
                 (QStringList{QStringLiteral("a.bin"), QStringLiteral("b.bin")}));
    }

    void aFullDiskWhileTheCopyIsMadeLeavesNoPartOfIt()
    {
        const QString source =
            makeLocalFile(path(QStringLiteral("docs/big.bin")), randomBytes(400000, 6));
        CompressResult result;
        {
            const FileSizeLimit full(128 * 1024);
            result = CompressForBackup(source, path(QStringLiteral("Backup")), m_ui, m_state);
        }
        QVERIFY(!result.ok);
        QVERIFY(result.copyFailed);
        QVERIFY(!result.message.isEmpty());
        QCOMPARE(QDir(path(QStringLiteral("Backup"))).entryList(QDir::Files), QStringList());
    }

    void theProgramsOwnDataLeavesOutPicturesAndCabinets()
    {
        const QString home = path(QStringLiteral("Tarnwick"));
        makeLocalFile(home + QStringLiteral("/Backup/BackupList.lst"), "filename = a\r\n");
        makeLocalFile(home + QStringLiteral("/History/trip.hst"), "FileName = trip\r\n");
        makeLocalFile(home + QStringLiteral("/Startup/Office Tools/Zip.ptr"), "ptr");
        makeLocalFile(home + QStringLiteral("/Photos/Top.txt"), "<html>");
        makeLocalFile(home + QStringLiteral("/images/photo.JPG"), "jpeg");
        makeLocalFile(home + QStringLiteral("/Photos/pic.gif"), "gif");
        makeLocalFile(home + QStringLiteral("/Backup/old.CAB"), "cab");
        makeLocalFile(home + QStringLiteral("/Tarnwicklib.cab"), "lib");
        makeLocalFile(home + QStringLiteral("/Save.txt"), "marker");
        makeLocalFile(home + QStringLiteral("/AllFiles.cab"), "older");
        const CompressResult result = CabAll(home, m_ui, m_state);
        QVERIFY2(result.ok, qPrintable(result.message));
        QCOMPARE(result.cabinetPath, home + QStringLiteral("/AllFiles.cab"));
        const auto files = unpackWithGcab(result.cabinetPath);
        QCOMPARE(files.keys(),
                 (QStringList{QStringLiteral("Backup/BackupList.lst"),
                              QStringLiteral("History/trip.hst"), QStringLiteral("Photos/Top.txt"),
                              QStringLiteral("Startup/Office Tools/Zip.ptr")}));
        QCOMPARE(files.value(QStringLiteral("History/trip.hst")),
                 QByteArray("FileName = trip\r\n"));
    }

    void aCancelOfTheProgramsDataLeavesNoCabinet()
    {
        const QString home = path(QStringLiteral("Tarnwick"));
        makeLocalFile(home + QStringLiteral("/Web_Log/big.blg"), randomBytes(24 * 1024 * 1024, 8));
        makeLocalFile(home + QStringLiteral("/AllFiles.cab"), "older");
        bool cancelledWhileWriting = false;
        m_ui.onProcessEvents = [&] {
            if (!m_state.UploadCancelled &&
                QFile::exists(home + QStringLiteral("/AllFiles.cab.part"))) {
                cancelledWhileWriting = true;
                m_state.UploadCancelled = true;
            }
        };
        const CompressResult result = CabAll(home, m_ui, m_state);
        QVERIFY(cancelledWhileWriting);
        QVERIFY(result.cancelled);
        QVERIFY(!QFile::exists(home + QStringLiteral("/AllFiles.cab")));
        QVERIFY(!QFile::exists(home + QStringLiteral("/AllFiles.cab.part")));
    }
};

TARNWICK_TEST_MAIN(TestBackupCompression)
#include "test_backupcompression.moc"
