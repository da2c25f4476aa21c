#include "BackupList.h"
#include "TestMain.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

// The backup list file: its bytes, the three operations and what the list box shows.
class TestBackupList : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<BackupList> m_list;

    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return QByteArray("<missing>");
        return file.readAll();
    }
    static void write(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }
    static BackupRecord sample(const QString &name, qint16 times = 1)
    {
        BackupRecord record;
        record.Filename = name;
        record.LocationPath = QStringLiteral("/home/ann/Documents/");
        record.DateModified = QStringLiteral("2026-01-05 09:07:00");
        record.DateBackup = QStringLiteral("2026-01-06 10:00:00");
        record.CompressFile = true;
        record.NumberOfBackupTimes = times;
        record.UploadPath = QStringLiteral("example.org/Backup/") + name;
        record.LengthOfTheFile = 12345;
        return record;
    }
    static QByteArray recordBytes(const QString &name, qint16 times = 1)
    {
        return "filename = " + name.toUtf8() +
               "\r\nDirectoryType = False\r\nLocationPath = /home/ann/Documents/\r\n"
               "DateModified = 2026-01-05 09:07:00\r\nDateBackup = 2026-01-06 10:00:00\r\n"
               "CompressFile = True\r\nIncrementalBackup = False\r\nNumberOfBackupTimes = " +
               QByteArray::number(times) + "\r\nUploadPath = example.org/Backup/" + name.toUtf8() +
               "\r\nLengthOfTheFile = 12345\r\n";
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_list = std::make_unique<BackupList>(m_dir->path());
    }

    void appendWritesTheTenLinesAndOneEmptyLine()
    {
        QVERIFY(m_list->AppendBackupRecord(sample(QStringLiteral("report.doc"))));
        QCOMPARE(bytesOf(m_list->listPath()), recordBytes(QStringLiteral("report.doc")) + "\r\n");
        QVERIFY(m_list->AppendBackupRecord(sample(QStringLiteral("b.txt"), 7)));
        QCOMPARE(bytesOf(m_list->listPath()), recordBytes(QStringLiteral("report.doc")) + "\r\n" +
                                                  recordBytes(QStringLiteral("b.txt"), 7) + "\r\n");
    }

    void readLoadsEveryField()
    {
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt")));
        BackupRecord other = sample(QStringLiteral("b.txt"), 3);
        other.CompressFile = false;
        other.LengthOfTheFile = 0;
        m_list->AppendBackupRecord(other);
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("b.txt"), record), qint16(0));
        QCOMPARE(record.Filename, QStringLiteral("b.txt"));
        QCOMPARE(record.LocationPath, QStringLiteral("/home/ann/Documents/"));
        QCOMPARE(record.DateModified, QStringLiteral("2026-01-05 09:07:00"));
        QCOMPARE(record.DateBackup, QStringLiteral("2026-01-06 10:00:00"));
        QCOMPARE(record.CompressFile, false);
        QCOMPARE(record.DirectoryType, false);
        QCOMPARE(record.IncrementalBackup, false);
        QCOMPARE(record.NumberOfBackupTimes, qint16(3));
        QCOMPARE(record.UploadPath, QStringLiteral("example.org/Backup/b.txt"));
        QCOMPARE(record.LengthOfTheFile, 0.0);
    }

    void lengthIsWrittenInItsShortestForm()
    {
        BackupRecord record = sample(QStringLiteral("big.iso"));
        record.LengthOfTheFile = 4700000000.0;
        m_list->AppendBackupRecord(record);
        QVERIFY(bytesOf(m_list->listPath()).contains("\r\nLengthOfTheFile = 4700000000\r\n"));
        BackupRecord back;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("big.iso"), back), qint16(0));
        QCOMPARE(back.LengthOfTheFile, 4700000000.0);
    }

    void emptyListOrOneEmptyLineFillsNothingAndReadFails_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("one empty line") << QByteArray("\r\n");
    }
    void emptyListOrOneEmptyLineFillsNothingAndReadFails()
    {
        QFETCH(QByteArray, content);
        write(m_list->listPath(), content);
        BackupRecord record = sample(QStringLiteral("kept.txt"));
        QVERIFY(FillFileList(*m_list, record).isEmpty());
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("kept.txt"), record), qint16(-1));
        QCOMPARE(record.Filename, QStringLiteral("kept.txt"));
    }

    void readOfAMissingListMakesItAnew()
    {
        QVERIFY(!QFile::exists(m_list->listPath()));
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(-1));
        QCOMPARE(bytesOf(m_list->listPath()), QByteArray("\r\n"));
    }

    void letterCaseCountsForReadAndDeleteNotForTheListBox()
    {
        m_list->AppendBackupRecord(sample(QStringLiteral("Report.doc")));
        const QByteArray before = bytesOf(m_list->listPath());
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("report.doc"), record), qint16(-1));
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("report.doc")), qint16(-1));
        QCOMPARE(bytesOf(m_list->listPath()), before);
        QCOMPARE(FillFileList(*m_list, record), QStringList{QStringLiteral("Report.doc")});
    }

    void aCommaShiftsTheFieldsByOneItem()
    {
        BackupRecord record = sample(QStringLiteral("a.txt"), 4);
        record.LocationPath = QStringLiteral("/home/ann/a,b/");
        m_list->AppendBackupRecord(record);
        m_list->AppendBackupRecord(sample(QStringLiteral("next.txt")));
        BackupRecord back;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), back), qint16(0));
        QCOMPARE(back.LocationPath, QStringLiteral("/home/ann/a"));
        // Each later field takes the line before its own, whose key it doesn't find.
        QCOMPARE(back.DateModified, QString());
        QCOMPARE(back.DateBackup, QString());
        QCOMPARE(back.CompressFile, false);
        QCOMPARE(back.NumberOfBackupTimes, qint16(0));
        QCOMPARE(back.UploadPath, QString());
        QCOMPARE(back.LengthOfTheFile, 0.0);
        // The next record is untouched by the shift: it is found by its own first line.
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("next.txt"), back), qint16(0));
        QCOMPARE(back.LengthOfTheFile, 12345.0);
    }

    void twoRecordsOfOneNameLeaveTheLaterOneShownOnce()
    {
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt"), 1));
        m_list->AppendBackupRecord(sample(QStringLiteral("b.txt"), 2));
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt"), 9));
        BackupRecord record;
        QCOMPARE(FillFileList(*m_list, record),
                 (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt")}));
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        QCOMPARE(record.NumberOfBackupTimes, qint16(9));
        QCOMPARE(bytesOf(m_list->listPath()),
                 recordBytes(QStringLiteral("b.txt"), 2) + recordBytes(QStringLiteral("a.txt"), 9));
    }

    void theListBoxIsSortedWithLetterCaseIgnored()
    {
        for (const char *name : {"b.txt", "C.txt", "a.txt", "B.txt"})
            m_list->AppendBackupRecord(sample(QLatin1String(name)));
        BackupRecord record;
        QCOMPARE(FillFileList(*m_list, record),
                 (QStringList{QStringLiteral("a.txt"), QStringLiteral("B.txt"),
                              QStringLiteral("b.txt"), QStringLiteral("C.txt")}));
    }

    void deletingTheLastRecordLeavesNoLines()
    {
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt")));
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("a.txt")), qint16(0));
        QCOMPARE(bytesOf(m_list->listPath()), QByteArray());
        m_list->AppendBackupRecord(sample(QStringLiteral("b.txt")));
        QCOMPARE(bytesOf(m_list->listPath()), recordBytes(QStringLiteral("b.txt")) + "\r\n");
    }

    void deleteKeepsTheOldListByteForByteAndDropsEmptyLines()
    {
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt")));
        m_list->AppendBackupRecord(sample(QStringLiteral("b.txt")));
        m_list->AppendBackupRecord(sample(QStringLiteral("c.txt")));
        const QByteArray before = bytesOf(m_list->listPath());
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("b.txt")), qint16(0));
        QCOMPARE(bytesOf(m_list->oldPath()), before);
        const QByteArray after =
            recordBytes(QStringLiteral("a.txt")) + recordBytes(QStringLiteral("c.txt"));
        QCOMPARE(bytesOf(m_list->listPath()), after);
        QVERIFY(!bytesOf(m_list->listPath()).contains("\r\n\r\n"));
        QCOMPARE(bytesOf(m_list->tmpPath()), after);
    }

    void deleteOfAnUnknownNameLeavesTheListAlone()
    {
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt")));
        const QByteArray before = bytesOf(m_list->listPath());
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("zzz")), qint16(-1));
        QCOMPARE(bytesOf(m_list->listPath()), before);
        QVERIFY(!QFile::exists(m_list->oldPath()));
    }

    void deleteCountsNineLinesWhateverTheyHold()
    {
        // A record that lost a line takes the next record's first line with it.
        QByteArray lost = recordBytes(QStringLiteral("a.txt"));
        lost.replace("DateBackup = 2026-01-06 10:00:00\r\n", "");
        write(m_list->listPath(),
              lost + recordBytes(QStringLiteral("b.txt")) + recordBytes(QStringLiteral("c.txt")));
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("a.txt")), qint16(0));
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("b.txt"), record), qint16(-1));
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("c.txt"), record), qint16(0));
        QVERIFY(!m_list->FileNames().contains(QStringLiteral("b.txt")));
    }

    void aListCutInTheMiddleOfARecordIsReadAsFarAsItGoes()
    {
        QByteArray cut =
            recordBytes(QStringLiteral("a.txt")) + "\r\n" + recordBytes(QStringLiteral("b.txt"), 5);
        cut.truncate(cut.indexOf("IncrementalBackup", cut.indexOf("b.txt")) + 5);
        write(m_list->listPath(), cut);
        BackupRecord record = sample(QStringLiteral("before"), 77);
        // The cut record: the fields up to the cut are filled, the rest stay; the read fails.
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("b.txt"), record), qint16(-1));
        QCOMPARE(record.Filename, QStringLiteral("b.txt"));
        QCOMPARE(record.CompressFile, true);
        QCOMPARE(record.NumberOfBackupTimes, qint16(77));
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        QCOMPARE(FillFileList(*m_list, record),
                 (QStringList{QStringLiteral("a.txt"), QStringLiteral("b.txt")}));
        // Its deletion takes what is left of it and leaves the whole record before it.
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("b.txt")), qint16(0));
        QCOMPARE(bytesOf(m_list->listPath()), recordBytes(QStringLiteral("a.txt")));
        QCOMPARE(bytesOf(m_list->oldPath()), cut);
    }

    void handEditedValuesOfTheWrongTypeFailTheRead_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::newRow("count") << QByteArray("NumberOfBackupTimes = 1\r\n")
                               << QByteArray("NumberOfBackupTimes = lots\r\n");
        QTest::newRow("count too large") << QByteArray("NumberOfBackupTimes = 1\r\n")
                                         << QByteArray("NumberOfBackupTimes = 40000\r\n");
        QTest::newRow("boolean") << QByteArray("CompressFile = True\r\n")
                                 << QByteArray("CompressFile = yes\r\n");
        QTest::newRow("length") << QByteArray("LengthOfTheFile = 12345\r\n")
                                << QByteArray("LengthOfTheFile = 12 kB\r\n");
    }
    void handEditedValuesOfTheWrongTypeFailTheRead()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QByteArray edited = recordBytes(QStringLiteral("a.txt"));
        edited.replace(from, to);
        write(m_list->listPath(), edited + recordBytes(QStringLiteral("b.txt")));
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(-1));
        QCOMPARE(record.Filename, QStringLiteral("a.txt"));
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("b.txt"), record), qint16(0));
    }

    void handEditedBlanksAndLetterCaseOfKeysAreRead()
    {
        QByteArray edited = recordBytes(QStringLiteral("a.txt"), 6);
        edited.replace("LocationPath = ", "   locationpath=   ");
        edited.replace("CompressFile = True", "COMPRESSFILE = true");
        write(m_list->listPath(), edited);
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        QCOMPARE(record.LocationPath, QStringLiteral("/home/ann/Documents/"));
        QCOMPARE(record.CompressFile, true);
        QCOMPARE(record.NumberOfBackupTimes, qint16(6));
    }

    void binaryJunkNeverBreaksTheReaders()
    {
        QRandomGenerator random(20260105);
        QByteArray junk(64 * 1024, Qt::Uninitialized);
        for (char &c : junk)
            c = char(random.bounded(256));
        const QByteArray content = junk + "\r\n" + recordBytes(QStringLiteral("a.txt")) + junk;
        write(m_list->listPath(), content);
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        QCOMPARE(record.LengthOfTheFile, 12345.0);
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("nothing"), record), qint16(-1));
        const QStringList names = FillFileList(*m_list, record);
        QVERIFY(names.contains(QStringLiteral("a.txt")));
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("a.txt")), qint16(0));
        QCOMPARE(bytesOf(m_list->oldPath()), content);
        QVERIFY(!bytesOf(m_list->listPath()).contains("filename = a.txt"));
    }

    void namesBeyondAsciiAreKept()
    {
        const QString name = QStringLiteral("Reisekosten Müller – Łódź.xlsx");
        BackupRecord record = sample(name);
        record.LocationPath = QStringLiteral("/home/ann/Écrits/");
        m_list->AppendBackupRecord(record);
        BackupRecord back;
        QCOMPARE(m_list->ReadBackupRecord(name, back), qint16(0));
        QCOMPARE(back.Filename, name);
        QCOMPARE(back.LocationPath, QStringLiteral("/home/ann/Écrits/"));
        QCOMPARE(m_list->FileNames(), QStringList{name});
        QVERIFY(bytesOf(m_list->listPath()).contains(("filename = " + name).toUtf8()));
    }

    void aHandWrittenLatin1LineIsRead()
    {
        write(m_list->listPath(),
              QByteArray("filename = caf\xe9.txt\r\n") +
                  recordBytes(QStringLiteral("x")).mid(int(qstrlen("filename = x\r\n"))));
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("café.txt"), record), qint16(0));
        QCOMPARE(record.Filename, QStringLiteral("café.txt"));
    }

    void theFileIsReadOnceForAWalkOverTheWholeList()
    {
        for (int i = 0; i < 500; ++i)
            m_list->AppendBackupRecord(sample(QStringLiteral("file%1.txt").arg(i), qint16(i)));
        BackupList fresh(m_dir->path());
        BackupRecord record;
        for (int i = 0; i < 500; ++i) {
            QCOMPARE(fresh.ReadBackupRecord(QStringLiteral("file%1.txt").arg(i), record),
                     qint16(0));
            QCOMPARE(record.NumberOfBackupTimes, qint16(i));
        }
        QCOMPARE(fresh.fileReads(), 1);
        // The list's own delete and append need no new read.
        QCOMPARE(fresh.DeleteBackupRecord(QStringLiteral("file7.txt")), qint16(0));
        record.Filename = QStringLiteral("file7.txt");
        QVERIFY(fresh.AppendBackupRecord(record));
        QCOMPARE(fresh.ReadBackupRecord(QStringLiteral("file7.txt"), record), qint16(0));
        QCOMPARE(fresh.fileReads(), 1);
        // A change made by someone else is seen.
        QFile file(fresh.listPath());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Append));
        file.write(recordBytes(QStringLiteral("late.txt")));
        file.close();
        QCOMPARE(fresh.ReadBackupRecord(QStringLiteral("late.txt"), record), qint16(0));
        QCOMPARE(fresh.fileReads(), 2);
    }

    void aRecordInTheMiddleIsFoundAsAWalkFromTheStartWouldFindIt()
    {
        // The first record of a name counts, even when a later one follows.
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt"), 1));
        m_list->AppendBackupRecord(sample(QStringLiteral("a.txt"), 2));
        BackupRecord record;
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        QCOMPARE(record.NumberOfBackupTimes, qint16(1));
        QCOMPARE(m_list->DeleteBackupRecord(QStringLiteral("a.txt")), qint16(0));
        QCOMPARE(m_list->ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        QCOMPARE(record.NumberOfBackupTimes, qint16(2));
    }
};

TARNWICK_TEST_MAIN(TestBackupList)
#include "test_backuplist.moc"
