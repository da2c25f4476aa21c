#include "Helpers.h"
#include "TestMain.h"

#include <QFile>
#include <QLocale>
#include <QTemporaryDir>

class TestHelpers : public QObject
{
    Q_OBJECT
private slots:
    void getRootAndPath_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("parent");
        QTest::newRow("unix") << "/home/ann/Pics"
                              << "Pics"
                              << "/home/ann";
        QTest::newRow("trailing slash") << "/home/ann/Pics/"
                                        << "Pics"
                                        << "/home/ann";
        QTest::newRow("windows") << "C:\\Data\\Pics"
                                 << "Pics"
                                 << "C:\\Data";
        QTest::newRow("mixed") << "/home/ann\\old\\Pics"
                               << "Pics"
                               << "/home/ann\\old";
        QTest::newRow("child of root") << "/Pics"
                                       << "Pics"
                                       << "/";
        QTest::newRow("bare name") << "Pics"
                                   << "Pics"
                                   << "";
        QTest::newRow("file") << "/a/b/c.txt"
                              << "c.txt"
                              << "/a/b";
        QTest::newRow("empty") << ""
                               << ""
                               << "";
    }
    void getRootAndPath()
    {
        QFETCH(QString, path);
        QFETCH(QString, root);
        QFETCH(QString, parent);
        QCOMPARE(GetRoot(path), root);
        QCOMPARE(GetPath(path), parent);
    }

    void doKillDeletesFilesOnly()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("x.jpg");
        QFile f(file);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        DoKill(file);
        QVERIFY(!QFile::exists(file));
        DoKill(file); // absent: silent
        QVERIFY(QDir(dir.path()).mkdir("folder"));
        DoKill(dir.filePath("folder"));
        QVERIFY(QDir(dir.filePath("folder")).exists());
    }

    void fileDateTextHasOneForm()
    {
        const QDateTime time(QDate(2023, 3, 7), QTime(9, 5, 2), Qt::LocalTime);
        QCOMPARE(FileDateText(time), QStringLiteral("2023-03-07 09:05:02"));
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        QCOMPARE(FileDateText(time), QStringLiteral("2023-03-07 09:05:02"));
        QLocale::setDefault(QLocale::c());
        const QDateTime utc(QDate(2023, 3, 7), QTime(9, 5, 2), Qt::UTC);
        QCOMPARE(FileDateText(utc), FileDateText(utc.toLocalTime()));
    }

    void fileDateTimeOfFile()
    {
        QTemporaryDir dir;
        QCOMPARE(FileDateTime(dir.filePath("none")), QString());
        QFile f(dir.filePath("y.txt"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.close();
        const QDateTime stamp(QDate(2020, 12, 31), QTime(23, 59, 58), Qt::LocalTime);
        QVERIFY(f.open(QIODevice::ReadWrite));
        QVERIFY(f.setFileTime(stamp, QFileDevice::FileModificationTime));
        f.close();
        QCOMPARE(FileDateTime(dir.filePath("y.txt")), QStringLiteral("2020-12-31 23:59:58"));
    }

    void hexColor_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value");
        QTest::newRow("mixed case") << "#7F7Fff" << (0x7F + 256 * 0x7F + 65536 * 0xFF);
        QTest::newRow("green") << "#008000" << 256 * 0x80;
        QTest::newRow("white") << "#FFFFFF" << 0xFFFFFF;
        QTest::newRow("first char ignored") << "X0000FF" << 65536 * 0xFF;
        QTest::newRow("short") << "#7F7" << (0x7F + 256 * 7);
        QTest::newRow("only hash") << "#" << 0;
        QTest::newRow("empty") << "" << 0;
        QTest::newRow("bad pair") << "#ZZ10GG" << 256 * 0x10;
        QTest::newRow("half bad pair") << "#7Z0000" << 7;
    }
    void hexColor()
    {
        QFETCH(QString, text);
        QFETCH(int, value);
        QCOMPARE(HexColorToRGB(text), value);
    }
};

TARNWICK_TEST_MAIN(TestHelpers)
#include "test_helpers.moc"
