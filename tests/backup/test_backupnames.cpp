#include "BackupNames.h"
#include "TestMain.h"

#include <QFile>
#include <QTemporaryDir>

class TestBackupNames : public QObject
{
    Q_OBJECT
private slots:
    void cabinetNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("base");
        QTest::newRow("one dot") << "report.doc"
                                 << "report_doc";
        QTest::newRow("several dots split at the first") << "a.b.c"
                                                         << "a_b.c";
        QTest::newRow("no dot loses its last letter") << "README"
                                                      << "READM_";
        QTest::newRow("dot in front") << ".profile"
                                      << "_profile";
        QTest::newRow("blanks stay") << "my notes.txt"
                                     << "my notes_txt";
        QTest::newRow("beyond ASCII") << "Łódź.odt"
                                      << "Łódź_odt";
    }
    void cabinetNames()
    {
        QFETCH(QString, name);
        QFETCH(QString, base);
        QCOMPARE(CabinetBaseName(name), base);
        QCOMPARE(CabinetFileName(name), base + QStringLiteral(".CAB"));
    }

    void compressedDirectoryNames()
    {
        QCOMPARE(CompressedDirName(QStringLiteral("My Tax Papers")),
                 QStringLiteral("DirFile_My_Tax_Papers.cab"));
        QCOMPARE(CompressedDirName(QStringLiteral("Photos")), QStringLiteral("DirFile_Photos.cab"));
        QVERIFY(IsCompressedDirectory(QStringLiteral("DirFile_Photos.cab")));
        // The test is "contains": a name with it in the middle counts.
        QVERIFY(IsCompressedDirectory(QStringLiteral("old-DirFile_x.txt")));
        QVERIFY(!IsCompressedDirectory(QStringLiteral("dirfile_x.cab")));
    }

    void placeHolderIsOneLine()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("DirFile_a.cab"));
        QVERIFY(WritePlaceHolder(path));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("This is a place holder file. Do not delete. The file "
                                            "is located in the webspace backup.\r\n"));
    }

    void pagePaths_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("root");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no root") << "example.org/Backup/a.txt"
                                 << "  "
                                 << "example.org/Backup/a.txt";
        QTest::newRow("root cut") << "example.org/public_html/Backup/a.txt"
                                  << "public_html"
                                  << "example.org/Backup/a.txt";
        QTest::newRow("root not found leaves the whole path") << "example.org/www/Backup/a.txt"
                                                              << "public_html"
                                                              << "example.org/www/Backup/a.txt";
    }
    void pagePaths()
    {
        QFETCH(QString, path);
        QFETCH(QString, root);
        QFETCH(QString, expected);
        QCOMPARE(BackupPagePath(path, root), expected);
    }

    void remoteNames()
    {
        QCOMPARE(RemoteNameOf(QStringLiteral("example.org/Backup/a b.CAB")),
                 QStringLiteral("a b.CAB"));
        QCOMPARE(RemoteNameOf(QStringLiteral("plain")), QStringLiteral("plain"));
    }
};

TARNWICK_TEST_MAIN(TestBackupNames)
#include "test_backupnames.moc"
