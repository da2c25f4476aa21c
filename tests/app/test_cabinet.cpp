#include "Cabinet.h"
#include "TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QtConcurrent/QtConcurrentRun>

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

} // namespace

class TestCabinet : public QObject
{
    Q_OBJECT
private slots:
    void roundTripKeepsContentFoldersAndOrder()
    {
        QTemporaryDir dir;
        QByteArray big(300000, '\0');
        QRandomGenerator random(7);
        for (char &c : big)
            c = char(random.bounded(16)); // compressible but not trivial
        writeFile(dir.filePath("src/b.txt"), "second\r\n");
        writeFile(dir.filePath("src/a.txt"), "first\r\n");
        writeFile(dir.filePath("src/big.bin"), big);
        writeFile(dir.filePath("src/empty.txt"), QByteArray());
        const QList<CabinetEntry> entries = {
            {dir.filePath("src/b.txt"), QStringLiteral("Startup/News/b.txt")},
            {dir.filePath("src/big.bin"), QStringLiteral("Startup\\big.bin")},
            {dir.filePath("src/empty.txt"), QStringLiteral("empty.txt")},
            {dir.filePath("src/a.txt"), QStringLiteral("Startup/Office Tools/Zipcode Search.ptr")},
        };
        const QString cab = dir.filePath("out/Test.cab");
        QDir().mkpath(dir.filePath("out"));
        const CabinetResult written = WriteCabinet(cab, entries);
        QVERIFY2(written.ok, qPrintable(written.message));
        QVERIFY(!QFile::exists(cab + QStringLiteral(".part")));
        QVERIFY(QFileInfo(cab).size() < big.size());
        QCOMPARE(readFile(cab).left(4), QByteArray("MSCF"));

        const QStringList order = {"Startup/News/b.txt", "Startup/big.bin", "empty.txt",
                                   "Startup/Office Tools/Zipcode Search.ptr"};
        const CabinetResult listed = ListCabinet(cab);
        QVERIFY(listed.ok);
        QCOMPARE(listed.names, order);

        const CabinetResult unpacked = ExtractCabinet(cab, dir.filePath("home"));
        QVERIFY2(unpacked.ok, qPrintable(unpacked.message));
        QStringList sortedUnpacked = unpacked.names, sortedOrder = order;
        sortedUnpacked.sort();
        sortedOrder.sort();
        QCOMPARE(sortedUnpacked, sortedOrder);
        QCOMPARE(readFile(dir.filePath("home/Startup/News/b.txt")), QByteArray("second\r\n"));
        QCOMPARE(readFile(dir.filePath("home/Startup/big.bin")), big);
        QVERIFY(QFileInfo(dir.filePath("home/empty.txt")).isFile());
        QCOMPARE(readFile(dir.filePath("home/Startup/Office Tools/Zipcode Search.ptr")),
                 QByteArray("first\r\n"));
    }

    void existingFilesAreKeptWithoutOverwrite()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath("a.txt"), "from cabinet");
        writeFile(dir.filePath("b.txt"), "also from cabinet");
        const QString cab = dir.filePath("x.cab");
        QVERIFY(WriteCabinet(cab, {{dir.filePath("a.txt"), "Startup/a.txt"},
                                   {dir.filePath("b.txt"), "Startup/b.txt"}})
                    .ok);
        writeFile(dir.filePath("home/Startup/a.txt"), "the user's own");
        const CabinetResult result = ExtractCabinet(cab, dir.filePath("home"), false);
        QVERIFY(result.ok);
        QCOMPARE(result.names, QStringList{"Startup/b.txt"});
        QCOMPARE(readFile(dir.filePath("home/Startup/a.txt")), QByteArray("the user's own"));
        QCOMPARE(readFile(dir.filePath("home/Startup/b.txt")), QByteArray("also from cabinet"));
        QVERIFY(ExtractCabinet(cab, dir.filePath("home"), true).ok);
        QCOMPARE(readFile(dir.filePath("home/Startup/a.txt")), QByteArray("from cabinet"));
    }

    void namesLeavingTheFolderAreSkipped()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath("evil.txt"), "evil");
        writeFile(dir.filePath("good.txt"), "good");
        const QString cab = dir.filePath("evil.cab");
        QVERIFY(WriteCabinet(cab, {{dir.filePath("evil.txt"), "..\\..\\escaped.txt"},
                                   {dir.filePath("evil.txt"), "/abs.txt"},
                                   {dir.filePath("good.txt"), "ok/./good.txt"}})
                    .ok);
        const CabinetResult result = ExtractCabinet(cab, dir.filePath("a/b/home"));
        QVERIFY(result.ok);
        QCOMPARE(result.names, QStringList{"ok/good.txt"});
        QVERIFY(!QFile::exists(dir.filePath("escaped.txt")));
        QVERIFY(!QFile::exists(dir.filePath("a/escaped.txt")));
        QVERIFY(!QFile::exists(QStringLiteral("/abs.txt")));
        QCOMPARE(readFile(dir.filePath("a/b/home/ok/good.txt")), QByteArray("good"));
    }

    void brokenCabinetsFailWithMessage_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("this is not a cabinet at all\r\n");
        QTest::newRow("header only") << QByteArray("MSCF\0\0\0\0\x20\0\0\0", 12);
    }
    void brokenCabinetsFailWithMessage()
    {
        QFETCH(QByteArray, bytes);
        QTemporaryDir dir;
        writeFile(dir.filePath("bad.cab"), bytes);
        const CabinetResult result = ExtractCabinet(dir.filePath("bad.cab"), dir.filePath("out"));
        QVERIFY(!result.ok);
        QVERIFY(result.message.contains(QStringLiteral("bad.cab")));
        QVERIFY(!ListCabinet(dir.filePath("bad.cab")).ok);
    }

    void cutCabinetNeverCrashes()
    {
        QTemporaryDir dir;
        QByteArray content;
        for (int i = 0; i < 5000; ++i)
            content += QByteArray::number(i * 7919) + ' ';
        writeFile(dir.filePath("c.txt"), content);
        QVERIFY(WriteCabinet(dir.filePath("whole.cab"),
                             {{dir.filePath("c.txt"), "c.txt"}, {dir.filePath("c.txt"), "d.txt"}})
                    .ok);
        const QByteArray whole = readFile(dir.filePath("whole.cab"));
        for (const int cut : {10, 40, 60, 100, int(whole.size() / 2), int(whole.size() - 3)}) {
            writeFile(dir.filePath("cut.cab"), whole.left(cut));
            const CabinetResult result = ExtractCabinet(
                dir.filePath("cut.cab"), dir.filePath(QStringLiteral("out%1").arg(cut)));
            QVERIFY2(!result.ok, qPrintable(QString::number(cut)));
        }
    }

    void missingCabinetOrSourceFails()
    {
        QTemporaryDir dir;
        const CabinetResult missing = ExtractCabinet(dir.filePath("none.cab"), dir.filePath("out"));
        QVERIFY(!missing.ok);
        QVERIFY(missing.message.contains(QStringLiteral("none.cab")));
        const CabinetResult noSource =
            WriteCabinet(dir.filePath("x.cab"), {{dir.filePath("nofile"), "nofile"}});
        QVERIFY(!noSource.ok);
        QVERIFY(!QFile::exists(dir.filePath("x.cab")));
    }

    void folderEntriesKeepPathsAndSkipLinks()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath("pack/b.txt"), "b");
        writeFile(dir.filePath("pack/A.txt"), "a");
        writeFile(dir.filePath("pack/Trip/c.jpg"), "c");
        writeFile(dir.filePath("pack/.hidden"), "h");
        writeFile(dir.filePath("outside.txt"), "o");
        QVERIFY(QFile::link(dir.filePath("outside.txt"), dir.filePath("pack/link.txt")));
        QVERIFY(QFile::link(dir.path(), dir.filePath("pack/loop")));
        const QList<CabinetEntry> entries = CabinetEntriesOf(dir.filePath("pack"));
        QStringList names;
        for (const CabinetEntry &entry : entries)
            names << entry.nameInCabinet;
        QCOMPARE(names, QStringList({"A.txt", "b.txt", "Trip/c.jpg"}));
        QCOMPARE(entries.last().sourcePath, dir.filePath("pack/Trip/c.jpg"));
        QVERIFY(CabinetEntriesOf(dir.filePath("none")).isEmpty());

        QVERIFY(WriteCabinet(dir.filePath("pack.cab"), entries).ok);
        QVERIFY(ExtractCabinet(dir.filePath("pack.cab"), dir.filePath("back")).ok);
        QCOMPARE(readFile(dir.filePath("back/Trip/c.jpg")), QByteArray("c"));
    }

    void raisedCancelStopsBeforeAnything()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath("a.txt"), "a");
        const std::atomic<bool> cancel{true};
        const CabinetResult written =
            WriteCabinet(dir.filePath("c.cab"), {{dir.filePath("a.txt"), "a.txt"}}, &cancel);
        QVERIFY(!written.ok);
        QVERIFY(written.cancelled);
        QVERIFY(!QFile::exists(dir.filePath("c.cab")));
        QVERIFY(!QFile::exists(dir.filePath("c.cab.part")));

        QVERIFY(WriteCabinet(dir.filePath("c.cab"), {{dir.filePath("a.txt"), "a.txt"}}).ok);
        const CabinetResult unpacked =
            ExtractCabinet(dir.filePath("c.cab"), dir.filePath("out"), true, &cancel);
        QVERIFY(!unpacked.ok);
        QVERIFY(unpacked.cancelled);
        QVERIFY(!QFile::exists(dir.filePath("out/a.txt")));
    }

    void cancelDuringWritingLeavesNoCabinet()
    {
        QTemporaryDir dir;
        QRandomGenerator random(11);
        QList<CabinetEntry> entries;
        for (int i = 0; i < 16; ++i) {
            QByteArray bytes(1024 * 1024, '\0');
            for (char &c : bytes)
                c = char(random.bounded(256));
            const QString name = QStringLiteral("f%1.bin").arg(i);
            writeFile(dir.filePath(name), bytes);
            entries.append({dir.filePath(name), name});
        }
        std::atomic<bool> cancel{false};
        const QString cab = dir.filePath("big.cab");
        QFuture<CabinetResult> work =
            QtConcurrent::run([&] { return WriteCabinet(cab, entries, &cancel); });
        QElapsedTimer waited;
        waited.start();
        while (QFileInfo(cab + ".part").size() == 0 && !work.isFinished() &&
               waited.elapsed() < 20000)
            QThread::msleep(1);
        cancel = true;
        const CabinetResult result = work.result();
        QVERIFY(result.cancelled);
        QVERIFY(!result.ok);
        QVERIFY(!QFile::exists(cab));
        QVERIFY(!QFile::exists(cab + ".part"));
    }

    void failedWriteKeepsOldCabinet()
    {
        QTemporaryDir dir;
        writeFile(dir.filePath("a.txt"), "a");
        writeFile(dir.filePath("old.cab"), "old cabinet");
        QVERIFY(!WriteCabinet(dir.filePath("old.cab"), {{dir.filePath("a.txt"), "a.txt"},
                                                        {dir.filePath("gone.txt"), "gone.txt"}})
                     .ok);
        QCOMPARE(readFile(dir.filePath("old.cab")), QByteArray("old cabinet"));
        QVERIFY(
            !WriteCabinet(dir.filePath("no/such/folder/x.cab"), {{dir.filePath("a.txt"), "a.txt"}})
                 .ok);
    }
};

TARNWICK_TEST_MAIN(TestCabinet)
#include "test_cabinet.moc"
