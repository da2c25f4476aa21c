#include "Cabinet.h"
#include "DefaultData.h"
#include "Folders.h"
#include "RecordFile.h"
#include "ScriptedUi.h"
#include "TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString stagedCabinet()
{
    return QStringLiteral(TARNWICK_STAGED_DATA_DIR "/Tarnwicklib.cab");
}

int filesUnder(const QString &folder)
{
    int count = 0;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        ++count;
    }
    return count;
}

} // namespace

class TestDefaultData : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_program; // a data folder of the test's own
    QString programFile(const QString &name) const { return m_program.filePath(name); }

    void makeProgramFolder(const QByteArray &cabinet)
    {
        QDir(m_program.path()).removeRecursively();
        QDir().mkpath(m_program.path());
        writeFile(programFile("Top.txt"), "<html>top</html>\r\n");
        writeFile(programFile("End.txt"), "</html>\r\n");
        writeFile(programFile("B_End2.txt"), "blog end\r\n");
        writeFile(programFile("Tarnwicklib.cab"), cabinet);
        Folders::SetProgramFolder(m_program.path());
    }

private slots:
    void initTestCase() { QVERIFY2(QFile::exists(stagedCabinet()), qPrintable(stagedCabinet())); }

    void init()
    {
        ClearTemporaryHome();
        Folders::MakeFolderTree();
        makeProgramFolder(readFile(stagedCabinet()));
    }

    void firstStartRestoresAndUnpacks()
    {
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QCOMPARE(report.copied, QStringList({Folders::PhotosFolder() + "/Top.txt",
                                             Folders::PhotosFolder() + "/End.txt",
                                             Folders::BlogFolder() + "/B_End2.txt",
                                             Folders::HomeFolder() + "Tarnwicklib.cab"}));
        QCOMPARE(readFile(Folders::PhotosFolder() + "/Top.txt"),
                 QByteArray("<html>top</html>\r\n"));
        QVERIFY(report.unpackTried);
        QVERIFY2(report.unpacked, qPrintable(report.unpackMessage));
        QCOMPARE(report.unpackedFiles.last(),
                 QStringLiteral("Startup/Office Tools/Zipcode Search.ptr"));
        QVERIFY(report.signFileFound);
        QVERIFY(!report.messageShown);
        QVERIFY(ui.messages.isEmpty());
        QVERIFY(QFile::exists(DefaultDataMarkerFile()));
        QVERIFY(QFile::exists(Folders::StartupFolder() + "/Office Tools.Cat"));
        QVERIFY(QFile::exists(Folders::StartupFolder() + "/Arrow14.gif"));
        QVERIFY(QFile::exists(Folders::StartupFolder() + "/NewW2.gif"));
        QCOMPARE(report.unpackedFiles.size(), filesUnder(Folders::StartupFolder()));
    }

    void secondStartCopiesAndUnpacksNothing()
    {
        ScriptedUi ui;
        CopyFiles(ui);
        const QByteArray marker = readFile(DefaultDataMarkerFile());
        ScriptedUi again;
        const CopyFilesReport report = CopyFiles(again);
        QVERIFY(report.copied.isEmpty());
        QVERIFY(!report.unpackTried);
        QVERIFY(report.unpackedFiles.isEmpty());
        QVERIFY(report.signFileFound);
        QVERIFY(again.messages.isEmpty());
        QCOMPARE(readFile(DefaultDataMarkerFile()), marker);
    }

    void deletedTemplateMendsItself()
    {
        ScriptedUi ui;
        CopyFiles(ui);
        QFile::remove(Folders::PhotosFolder() + "/Top.txt");
        writeFile(Folders::PhotosFolder() + "/End.txt", "the user's own end");
        const CopyFilesReport report = CopyFiles(ui);
        QCOMPARE(report.copied, QStringList{Folders::PhotosFolder() + "/Top.txt"});
        QCOMPARE(readFile(Folders::PhotosFolder() + "/End.txt"), QByteArray("the user's own end"));
        QVERIFY(!report.unpackTried);
    }

    void markerPresentButSignFileAbsent()
    {
        writeFile(DefaultDataMarkerFile(), "done");
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QVERIFY(!report.unpackTried);
        QVERIFY(!QFile::exists(Folders::StartupFolder() + "/Office Tools.Cat"));
        QVERIFY(!report.signFileFound);
        QVERIFY(report.messageShown);
        QCOMPARE(ui.messages.size(), 1);
        QCOMPARE(ui.messages.first().text,
                 QStringLiteral("Tarnwick has encountered a file creation issue. Error #10003"));
        QCOMPARE(ui.messages.first().title, QStringLiteral("Tarnwick"));
        QCOMPARE(ui.messages.first().buttons, JobUi::Buttons::Ok);
    }

    void deletedSignFileBringsMessageAtEachStart()
    {
        ScriptedUi ui;
        CopyFiles(ui);
        QVERIFY(QFile::remove(DefaultDataSignFile()));
        for (int start = 0; start < 2; ++start) {
            ScriptedUi next;
            const CopyFilesReport report = CopyFiles(next);
            QVERIFY(!report.unpackTried);
            QCOMPARE(next.messages.size(), 1);
        }
    }

    void programFolderAbsent()
    {
        Folders::SetProgramFolder(m_program.filePath("no-such-folder"));
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QVERIFY(report.copied.isEmpty());
        QVERIFY(!QFile::exists(Folders::PhotosFolder() + "/Top.txt"));
        QVERIFY(report.unpackTried);
        QVERIFY(!report.unpacked);
        QVERIFY(!report.unpackMessage.isEmpty());
        QVERIFY(QFile::exists(DefaultDataMarkerFile())); // tried once only
        QCOMPARE(ui.messages.size(), 1);
        QCOMPARE(ui.messages.first().text, DefaultDataMissingMessage);

        Folders::SetProgramFolder(QString());
        ScriptedUi again;
        const CopyFilesReport second = CopyFiles(again);
        QVERIFY(!second.unpackTried);
        QCOMPARE(again.messages.size(), 1);
    }

    void corruptCabinetIsTriedOnce()
    {
        makeProgramFolder(QByteArray("MSCF this is a broken cabinet"));
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QVERIFY(report.unpackTried);
        QVERIFY(!report.unpacked);
        QVERIFY(report.unpackMessage.contains(QStringLiteral("Tarnwicklib.cab")));
        QVERIFY(readFile(DefaultDataMarkerFile()).contains("Tarnwicklib.cab"));
        QCOMPARE(ui.messages.size(), 1);
        ScriptedUi again;
        QVERIFY(!CopyFiles(again).unpackTried);
    }

    void unpackingKeepsTheUsersFiles()
    {
        writeFile(Folders::StartupFolder() + "/News/BBC News.ptr", "LinkName = Mine\r\n");
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QVERIFY(report.unpacked);
        QVERIFY(!report.unpackedFiles.contains(QStringLiteral("Startup/News/BBC News.ptr")));
        QCOMPARE(readFile(Folders::StartupFolder() + "/News/BBC News.ptr"),
                 QByteArray("LinkName = Mine\r\n"));
        QVERIFY(QFile::exists(Folders::StartupFolder() + "/News/Reuters.ptr"));
    }

    void signFileFoundWithOtherCase()
    {
        writeFile(DefaultDataMarkerFile(), "done");
        writeFile(Folders::StartupFolder() + "/office tools/ZIPCODE search.PTR",
                  "LinkName = Zip\r\n");
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QVERIFY(report.signFileFound);
        QVERIFY(ui.messages.isEmpty());
    }

    void windowStaysLiveWhileUnpacking()
    {
        QTemporaryDir work;
        QByteArray big(3 * 1024 * 1024, '\0');
        QRandomGenerator random(3);
        for (char &c : big)
            c = char(random.bounded(4));
        writeFile(work.filePath("big.bin"), big);
        writeFile(work.filePath("sign.ptr"), "LinkName = Zipcode Search\r\n");
        QVERIFY(
            WriteCabinet(work.filePath("big.cab"),
                         {{work.filePath("big.bin"), "Startup/big.bin"},
                          {work.filePath("sign.ptr"), "Startup/Office Tools/Zipcode Search.ptr"}})
                .ok);
        makeProgramFolder(readFile(work.filePath("big.cab")));

        bool timerRan = false;
        QTimer::singleShot(0, [&] { timerRan = true; });
        ScriptedUi ui;
        const CopyFilesReport report = CopyFiles(ui);
        QVERIFY(timerRan); // an event was served while the cabinet was unpacked
        QVERIFY(report.unpacked);
        QCOMPARE(readFile(Folders::StartupFolder() + "/big.bin"), big);
        QVERIFY(ui.messages.isEmpty());
    }
};

TARNWICK_TEST_MAIN(TestDefaultData)
#include "test_defaultdata.moc"
