#include "BackupFixture.h"
#include "TestMain.h"

// Restore from the Web Space: what was backed up comes back, on the real page, from a real
// server.
class TestBackupRestore : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<BackupFixture> m_fx;
    std::unique_ptr<QTemporaryDir> m_docs;
    const QString Site = QStringLiteral("example.org");
    const QDateTime Then = QDateTime(QDate(2026, 1, 5), QTime(9, 7, 0));
    const QString Title = QStringLiteral("Restore from the Web Space");

    QString doc(const QString &name) const { return m_docs->filePath(name); }
    QString remote(const QString &name) const
    {
        return m_server->localPath(QStringLiteral("/Backup/") + name);
    }
    BackupRecord recordOf(const QString &name)
    {
        BackupRecord record;
        BackupList fresh(m_fx->backupFolder());
        fresh.ReadBackupRecord(name, record);
        return record;
    }
    // Lists the files and sends them with a scan.
    void backUp(const QList<QPair<QString, bool>> &files)
    {
        for (const auto &[path, compress] : files)
            m_fx->frame->list().AppendBackupRecord(listedRecord(path, Site, compress, false));
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        m_fx->ui.messages.clear();
    }
    QString restore(const QStringList &names)
    {
        m_fx->frame->refresh();
        m_fx->select(names);
        m_fx->button(QStringLiteral("RestoreButton"))->click();
        // The report is the last word of the restore.
        for (qsizetype i = m_fx->ui.messages.size() - 1; i >= 0; --i) {
            if (m_fx->ui.messages.at(i).title == Title)
                return m_fx->ui.messages.at(i).text;
        }
        return QString();
    }
    QStringList leftovers(const QString &folder) const
    {
        return QDir(folder).entryList(QStringList{QStringLiteral(".*.restoring")},
                                      QDir::Files | QDir::Hidden);
    }

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }
    void init()
    {
        ClearTemporaryHome();
        clearFolder(m_server->homePath());
        m_docs = std::make_unique<QTemporaryDir>();
        m_fx = std::make_unique<BackupFixture>();
        m_fx->open();
        m_fx->fillAccount(*m_server, Site);
    }
    void cleanup() { m_fx.reset(); }

    void plainAndCompressedFilesComeBackWhole()
    {
        const QByteArray notes = "plain notes";
        const QByteArray report = randomBytes(250000) + QByteArray(250000, 'r');
        const QString notesPath = makeLocalFile(doc(QStringLiteral("notes.txt")), notes, Then);
        const QString reportPath = makeLocalFile(doc(QStringLiteral("report.doc")), report, Then);
        const QString emptyPath = makeLocalFile(doc(QStringLiteral("empty.txt")), {}, Then);
        backUp({{notesPath, false}, {reportPath, true}, {emptyPath, false}});
        QVERIFY(QFile::exists(remote(QStringLiteral("report_doc.CAB"))));
        QFile::remove(notesPath);
        QFile::remove(reportPath);
        QFile::remove(emptyPath);

        const QString report2 = restore({QStringLiteral("notes.txt"), QStringLiteral("report.doc"),
                                         QStringLiteral("empty.txt")});
        QCOMPARE(readFile(notesPath), notes);
        QCOMPARE(readFile(reportPath), report);
        QVERIFY(QFileInfo(emptyPath).isFile());
        QCOMPARE(QFileInfo(emptyPath).size(), 0);
        QVERIFY2(report2.contains(QStringLiteral("report.doc: restored to ") + reportPath),
                 qPrintable(report2));
        QVERIFY(report2.contains(QStringLiteral("notes.txt: restored")));
        QVERIFY(report2.contains(QStringLiteral("empty.txt: restored")));
        // They have their dates back, so a scan finds them up to date.
        QCOMPARE(FileDateTime(reportPath), FileDateText(Then));
        QCOMPARE(leftovers(m_docs->path()), QStringList());
        m_fx->ui.messages.clear();
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QVERIFY(m_fx->ui.messages.first().text.startsWith(QStringLiteral("0 of 3")));
        // Nothing is left of the work in the backup folder.
        QCOMPARE(QDir(m_fx->backupFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
                 QStringList());
    }

    void aCompressedDirectoryComesBackIntoItsFolder()
    {
        const QString folder = doc(QStringLiteral("My Tax Papers"));
        const QByteArray pdf = randomBytes(40000, 2);
        makeLocalFile(folder + QStringLiteral("/2025/march.pdf"), pdf);
        makeLocalFile(folder + QStringLiteral("/2025/receipts/shop.txt"), "receipt");
        m_fx->frame->chooseFolder = [&](const QString &) { return folder; };
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("CreateCompressedDirButton"))->click();
        const QString name = QStringLiteral("DirFile_My_Tax_Papers.cab");
        QVERIFY(QFile::exists(remote(name)));
        QDir(folder + QStringLiteral("/2025")).removeRecursively();
        m_fx->ui.messages.clear();

        const QString report = restore({name});
        QCOMPARE(readFile(folder + QStringLiteral("/2025/march.pdf")), pdf);
        QCOMPARE(readFile(folder + QStringLiteral("/2025/receipts/shop.txt")),
                 QByteArray("receipt"));
        QVERIFY2(report.contains(name + QStringLiteral(": 2 files restored into ") + folder),
                 qPrintable(report));
        // The place holder stays as it was.
        QCOMPARE(readFile(folder + QLatin1Char('/') + name),
                 (PlaceHolderText() + QStringLiteral("\r\n")).toLatin1());

        // Packed again and sent by a scan, it goes as a cabinet in a cabinet, and still comes
        // back.
        makeLocalFile(folder + QStringLiteral("/later.txt"), "later");
        m_fx->frame->refresh();
        m_fx->click(name);
        m_fx->select({name});
        m_fx->button(QStringLiteral("RecompressButton"))->click();
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QCOMPARE(recordOf(name).UploadPath,
                 QStringLiteral("example.org/Backup/DirFile_My_Tax_Papers_cab.CAB"));
        QDir(folder + QStringLiteral("/2025")).removeRecursively();
        QFile::remove(folder + QStringLiteral("/later.txt"));
        m_fx->ui.messages.clear();
        const QString again = restore({name});
        QVERIFY2(again.contains(QStringLiteral("3 files restored")), qPrintable(again));
        QCOMPARE(readFile(folder + QStringLiteral("/2025/march.pdf")), pdf);
        QCOMPARE(readFile(folder + QStringLiteral("/later.txt")), QByteArray("later"));
    }

    void aNewerLocalFileIsReplacedOnlyWhenTheUserSaysSo()
    {
        const QString path = makeLocalFile(doc(QStringLiteral("notes.txt")), "backed up", Then);
        backUp({{path, false}});
        makeLocalFile(path, "edited since", Then.addDays(2));

        m_fx->ui.answerMessage(JobUi::Answer::No);
        QString report = restore({QStringLiteral("notes.txt")});
        const auto &asked = m_fx->ui.messages.first();
        QCOMPARE(asked.text, QStringLiteral("The file '") + path +
                                 QStringLiteral("' on this computer is newer than its backup of "
                                                "2026-01-05 09:07:00. Do you want to replace it "
                                                "with the copy from the web space?"));
        QCOMPARE(asked.defaultButton, std::optional<JobUi::Answer>(JobUi::Answer::No));
        QCOMPARE(readFile(path), QByteArray("edited since"));
        QVERIFY(report.contains(QStringLiteral("newer and was kept")));

        m_fx->ui.messages.clear();
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        report = restore({QStringLiteral("notes.txt")});
        QCOMPARE(readFile(path), QByteArray("backed up"));
    }

    void aCopyOfTheWrongLengthIsNotPutInPlace()
    {
        const QString path = makeLocalFile(doc(QStringLiteral("notes.txt")), "backed up", Then);
        backUp({{path, false}});
        QFile::remove(path);
        makeLocalFile(remote(QStringLiteral("notes.txt")), "something else entirely");
        const QString report = restore({QStringLiteral("notes.txt")});
        QVERIFY2(report.contains(QStringLiteral("the copy on the web space holds 23 bytes where "
                                                "the list says 9: it was not restored.")),
                 qPrintable(report));
        QVERIFY(!QFile::exists(path));
    }

    void aCopyMissingOnTheServerIsReported()
    {
        const QString path = makeLocalFile(doc(QStringLiteral("notes.txt")), "backed up", Then);
        backUp({{path, false}});
        QFile::remove(remote(QStringLiteral("notes.txt")));
        const QString report = restore({QStringLiteral("notes.txt")});
        QVERIFY2(report.startsWith(QStringLiteral("notes.txt: could not be fetched from the web "
                                                  "space")),
                 qPrintable(report));
        QCOMPARE(readFile(path), QByteArray("backed up"));
    }

    void nothingSelectedOrNoConnectionsSaySo()
    {
        const QString path = makeLocalFile(doc(QStringLiteral("notes.txt")), "x", Then);
        m_fx->frame->list().AppendBackupRecord(listedRecord(path, Site, false, true));
        m_fx->frame->refresh();
        m_fx->fileList()->clearSelection();
        m_fx->button(QStringLiteral("RestoreButton"))->click();
        QCOMPARE(m_fx->ui.messages.last().text,
                 QStringLiteral("Select the files to restore in the list first."));
        m_fx->window->RunWithoutMenu()->setChecked(true);
        m_fx->select({QStringLiteral("notes.txt")});
        m_fx->button(QStringLiteral("RestoreButton"))->click();
        QCOMPARE(m_fx->ui.messages.last().text,
                 QStringLiteral("Nothing can be fetched from the web space while Run Without "
                                "Connections is checked."));
    }
};

TARNWICK_TEST_MAIN(TestBackupRestore)
#include "test_backuprestore.moc"
