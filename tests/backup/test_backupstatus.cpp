#include "BackupList.h"
#include "BackupStatus.h"
#include "Helpers.h"
#include "TestMain.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// The status view of one entry: what a click on it shows.
class TestBackupStatus : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<BackupList> m_list;
    QString m_folder;

    QString makeFile(const QString &name, const QDateTime &time)
    {
        const QString path = m_folder + name;
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write("content");
            file.flush();
            file.setFileTime(time, QFileDevice::FileModificationTime);
        }
        return path;
    }
    BackupRecord listed(const QString &name, const QString &dateModified)
    {
        BackupRecord record;
        record.Filename = name;
        record.LocationPath = m_folder;
        record.DateModified = dateModified;
        record.DateBackup = QStringLiteral("2026-02-01 08:00:00");
        record.NumberOfBackupTimes = 4;
        record.UploadPath = QStringLiteral("example.org/Backup/") + name;
        m_list->AppendBackupRecord(record);
        return record;
    }

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_list = std::make_unique<BackupList>(m_dir->filePath(QStringLiteral("Backup")));
        QDir().mkpath(m_list->folder());
        m_folder = m_dir->filePath(QStringLiteral("docs")) + QLatin1Char('/');
        QDir().mkpath(m_folder);
    }

    void theChangeTestComparesTheTexts()
    {
        QVERIFY(!BackupIsDue(QStringLiteral("2026-01-01 10:00:00"),
                             QStringLiteral("2026-01-01 10:00:00"), false));
        QVERIFY(BackupIsDue(QStringLiteral("2026-01-01 10:00:00"),
                            QStringLiteral("2025-01-01 10:00:00"), false));
        QVERIFY(BackupIsDue(QStringLiteral("2026-01-01 10:00:00"),
                            QStringLiteral("2026-01-01 10:00:00"), true));
    }

    void anUnchangedFileShowsGreen()
    {
        const QDateTime time(QDate(2026, 1, 5), QTime(9, 7, 0));
        makeFile(QStringLiteral("a.txt"), time);
        listed(QStringLiteral("a.txt"), FileDateText(time));
        BackupRecord record;
        BackupStatusView view;
        BackupFileListClick(*m_list, record, QStringLiteral("a.txt"), view);
        QCOMPARE(view.CurrentDateOfTheFile, FileDateText(time));
        QCOMPARE(view.DateModifiedOfItem, FileDateText(time));
        QCOMPARE(view.DateBackupOfItem, QStringLiteral("2026-02-01 08:00:00"));
        QCOMPARE(view.NumberOfBackupTimesOfItem, QStringLiteral("4"));
        QCOMPARE(view.LocationPathOfItem, m_folder);
        QCOMPARE(view.UploadpathOfItem, QStringLiteral("example.org/Backup/a.txt"));
        QCOMPARE(view.dateModifiedColour, StatusColour::Green);
        QCOMPARE(view.currentDateColour, StatusColour::Green);
        QCOMPARE(view.dateBackupColour, StatusColour::Green);
        QCOMPARE(view.locationColour, StatusColour::Green);
        QVERIFY(view.ReportIfFound.isEmpty());
        QVERIFY(!view.relocateVisible);
        QVERIFY(!view.recompressEnabled);
    }

    void aChangedFileShowsRedWhetherOlderOrNewer_data()
    {
        QTest::addColumn<int>("days");
        QTest::newRow("newer") << 3;
        QTest::newRow("older") << -3;
    }
    void aChangedFileShowsRedWhetherOlderOrNewer()
    {
        QFETCH(int, days);
        const QDateTime time(QDate(2026, 1, 5), QTime(9, 7, 0));
        makeFile(QStringLiteral("a.txt"), time.addDays(days));
        listed(QStringLiteral("a.txt"), FileDateText(time));
        BackupRecord record;
        BackupStatusView view;
        BackupFileListClick(*m_list, record, QStringLiteral("a.txt"), view);
        QCOMPARE(view.dateModifiedColour, StatusColour::Red);
        QCOMPARE(view.currentDateColour, StatusColour::Red);
        QCOMPARE(view.dateBackupColour, StatusColour::Red);
        QCOMPARE(view.locationColour, StatusColour::Green);
    }

    void aMissingFileKeepsThePreviousDateAndOffersTheSearch()
    {
        const QDateTime time(QDate(2026, 1, 5), QTime(9, 7, 0));
        makeFile(QStringLiteral("here.txt"), time);
        listed(QStringLiteral("here.txt"), FileDateText(time));
        listed(QStringLiteral("gone.txt"), QStringLiteral("2020-01-01 00:00:00"));
        BackupRecord record;
        BackupStatusView view;
        BackupFileListClick(*m_list, record, QStringLiteral("here.txt"), view);
        BackupFileListClick(*m_list, record, QStringLiteral("gone.txt"), view);
        QCOMPARE(view.CurrentDateOfTheFile, FileDateText(time));
        QCOMPARE(view.DateModifiedOfItem, QStringLiteral("2020-01-01 00:00:00"));
        QCOMPARE(view.ReportIfFound, QStringLiteral("The File is not in the expected location"));
        QCOMPARE(view.reportColour, StatusColour::Red);
        QCOMPARE(view.locationColour, StatusColour::Red);
        QVERIFY(view.relocateVisible);
        QVERIFY(!view.fileNotFoundVisible);
    }

    void aNameTheListDoesNotHoldShowsThePreviousRecord()
    {
        const QDateTime time(QDate(2026, 1, 5), QTime(9, 7, 0));
        makeFile(QStringLiteral("a.txt"), time);
        listed(QStringLiteral("a.txt"), FileDateText(time));
        BackupRecord record;
        BackupStatusView view;
        BackupFileListClick(*m_list, record, QStringLiteral("a.txt"), view);
        BackupFileListClick(*m_list, record, QStringLiteral("A.TXT"), view);
        QCOMPARE(record.Filename, QStringLiteral("a.txt"));
        QCOMPARE(view.UploadpathOfItem, QStringLiteral("example.org/Backup/a.txt"));
    }

    void compressedDirectoriesCanBeUpdated()
    {
        const QDateTime time(QDate(2026, 1, 5), QTime(9, 7, 0));
        makeFile(QStringLiteral("DirFile_docs.cab"), time);
        listed(QStringLiteral("DirFile_docs.cab"), FileDateText(time));
        BackupRecord record;
        BackupStatusView view;
        BackupFileListClick(*m_list, record, QStringLiteral("DirFile_docs.cab"), view);
        QVERIFY(view.recompressEnabled);
    }

    void lookUpsIgnoreLetterCaseWhenTheExactNameIsMissing()
    {
        makeFile(QStringLiteral("Report.DOC"), QDateTime::currentDateTime());
        QString path;
        QCOMPARE(LookUpLocalFile(m_folder, QStringLiteral("report.doc"), &path), LookUp::Found);
        QCOMPARE(path, m_folder + QStringLiteral("Report.DOC"));
        QCOMPARE(LookUpLocalFile(m_folder, QStringLiteral("other.doc")), LookUp::Missing);
        QCOMPARE(LookUpLocalFile(QString(), QStringLiteral("x")), LookUp::Missing);
    }
};

TARNWICK_TEST_MAIN(TestBackupStatus)
#include "test_backupstatus.moc"
