#include "BackupFixture.h"
#include "TestMain.h"
#include "dlgFTP.h"

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

// Scan & Backup and Backup Selected Files on the real page, against a real FTP server.
class TestBackupScan : public QObject
{
    Q_OBJECT
public:
    TestBackupScan() { m_unprivileged = DropFileAccessOverrides(); }

private:
    bool m_unprivileged = false;
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<BackupFixture> m_fx;
    std::unique_ptr<QTemporaryDir> m_docs;
    const QString Site = QStringLiteral("example.org");
    const QDateTime Then = QDateTime(QDate(2026, 1, 5), QTime(9, 7, 0));

    QString doc(const QString &name) const { return m_docs->filePath(name); }
    QString remote(const QString &name) const
    {
        return m_server->localPath(QStringLiteral("/Backup/") + name);
    }
    void list(const BackupRecord &record) { m_fx->frame->list().AppendBackupRecord(record); }
    BackupRecord recordOf(const QString &name)
    {
        BackupRecord record;
        BackupList fresh(m_fx->backupFolder());
        fresh.ReadBackupRecord(name, record);
        return record;
    }
    void startServer(const FtpTestServer::Options &options = {})
    {
        m_server = std::make_unique<FtpTestServer>(options);
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
        m_fx->fillAccount(*m_server, Site);
    }
    // Scan & Backup, the summary read and the web page declined.
    void scan()
    {
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
    }
    QStringList messageTexts() const
    {
        QStringList texts;
        for (const auto &shown : m_fx->ui.messages)
            texts << shown.text;
        return texts;
    }
    int stores(const QString &name) const
    {
        return int(m_server->commands().filter(QStringLiteral("STOR ")).filter(name).size());
    }
    QStringList workFiles() const
    {
        QStringList names = QDir(m_fx->backupFolder()).entryList(QDir::Files);
        names.removeAll(QStringLiteral("BackupList.lst"));
        names.removeAll(QStringLiteral("BackupList.old"));
        names.removeAll(QStringLiteral("BackupList.tmp"));
        return names;
    }

private slots:
    void init()
    {
        ClearTemporaryHome();
        m_docs = std::make_unique<QTemporaryDir>();
        m_fx = std::make_unique<BackupFixture>();
        m_fx->open();
    }
    void cleanup()
    {
        m_fx.reset();
        m_server.reset();
    }

    void scanSendsTheChangedFilesAlone()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("same.txt")), "unchanged", Then);
        makeLocalFile(doc(QStringLiteral("notes.txt")), "new notes", Then);
        const QByteArray report = randomBytes(70000);
        makeLocalFile(doc(QStringLiteral("report.doc")), report, Then);
        list(listedRecord(doc(QStringLiteral("same.txt")), Site, false, true));
        list(listedRecord(doc(QStringLiteral("notes.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("report.doc")), Site, true, false));
        scan();

        QCOMPARE(readFile(remote(QStringLiteral("notes.txt"))), QByteArray("new notes"));
        QVERIFY(!QFile::exists(remote(QStringLiteral("same.txt"))));
        QString error;
        const auto cabinet = unpackWithGcab(remote(QStringLiteral("report_doc.CAB")), &error);
        QVERIFY2(!cabinet.isEmpty(), qPrintable(error));
        QCOMPARE(cabinet.keys(), QStringList{QStringLiteral("report.doc")});
        QCOMPARE(cabinet.value(QStringLiteral("report.doc")), report);

        const BackupRecord notes = recordOf(QStringLiteral("notes.txt"));
        QCOMPARE(notes.NumberOfBackupTimes, qint16(2));
        QCOMPARE(notes.DateModified, FileDateText(Then));
        QVERIFY(notes.DateBackup > QStringLiteral("2001-01-01 00:00:01"));
        QCOMPARE(notes.UploadPath, QStringLiteral("example.org/Backup/notes.txt"));
        QCOMPARE(notes.LengthOfTheFile, 9.0);
        QCOMPARE(recordOf(QStringLiteral("report.doc")).UploadPath,
                 QStringLiteral("example.org/Backup/report_doc.CAB"));
        QCOMPARE(recordOf(QStringLiteral("same.txt")).NumberOfBackupTimes, qint16(1));
        // The copy and the cabinet made on the way are gone.
        QCOMPARE(workFiles(), QStringList());
        QCOMPARE(m_fx->ui.messages.at(0).text,
                 QStringLiteral("2 of 3 were uploaded to the 'Backup' directory of your web "
                                "space."));
        QCOMPARE(m_fx->ui.messages.at(1).text,
                 QStringLiteral("The Backup Web Page Index you are about to build replaces the "
                                "previous Backup Web Page Index. Are you sure you want to build "
                                "the Backup Web Page Index?"));
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!m_fx->window->ProgressFrame()->isVisible());
        QCOMPARE(m_fx->fileList()->count(), 3);

        // A second scan finds nothing to do.
        m_fx->ui.messages.clear();
        scan();
        QCOMPARE(m_fx->ui.messages.at(0).text,
                 QStringLiteral("0 of 3 were uploaded to the 'Backup' directory of your web "
                                "space."));
    }

    void anEmptyListConnectsAndDisconnectsAndSaysNoughtOfNought()
    {
        startServer();
        scan();
        QCOMPARE(m_fx->ui.messages.at(0).text,
                 QStringLiteral("0 of 0 were uploaded to the 'Backup' directory of your web "
                                "space."));
        QCOMPARE(m_server->countCommands(QStringLiteral("PASS")), 1);
        QVERIFY(QFileInfo(m_server->localPath(QStringLiteral("/Backup"))).isDir());
        QVERIFY(!m_fx->ftp->IsConnected());
    }

    void runWithoutConnectionsTestsNoFileAndStillAsksAboutThePage()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("notes.txt")), "new", Then);
        list(listedRecord(doc(QStringLiteral("notes.txt")), Site, false, false));
        m_fx->window->RunWithoutMenu()->setChecked(true);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QCOMPARE(messageTexts().size(), 2);
        QVERIFY(messageTexts().at(0).startsWith(QStringLiteral("0 of 1 were uploaded")));
        QVERIFY(messageTexts().at(1).startsWith(QStringLiteral("The Backup Web Page Index")));
        QCOMPARE(m_server->countCommands(QStringLiteral("USER")), 0);
        QCOMPARE(recordOf(QStringLiteral("notes.txt")).NumberOfBackupTimes, qint16(1));
    }

    void overrideSendsEveryFileAndShowsRed()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        makeLocalFile(doc(QStringLiteral("b.txt")), "b", Then);
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, true));
        list(listedRecord(doc(QStringLiteral("b.txt")), Site, false, true));
        m_fx->overrideCheck()->setChecked(true);
        scan();
        QCOMPARE(readFile(remote(QStringLiteral("a.txt"))), QByteArray("a"));
        QCOMPARE(readFile(remote(QStringLiteral("b.txt"))), QByteArray("b"));
        QVERIFY(messageTexts().at(0).startsWith(QStringLiteral("2 of 2")));
        const BackupStatusView shown = m_fx->frame->statusView();
        QCOMPARE(shown.dateModifiedColour, StatusColour::Red);
        QCOMPARE(shown.dateBackupColour, StatusColour::Red);
        QCOMPARE(m_fx->field(QStringLiteral("DateModifiedOfItem"))->palette().color(QPalette::Text),
                 QColor(255, 0, 0));
    }

    void anUnchangedPlaceHolderIsNotSent()
    {
        startServer();
        const QString holder = doc(QStringLiteral("Tax/DirFile_Tax.cab"));
        QDir().mkpath(doc(QStringLiteral("Tax")));
        QVERIFY(WritePlaceHolder(holder));
        BackupRecord record = listedRecord(holder, Site, true, true);
        record.UploadPath = Site + QStringLiteral("/Backup/DirFile_Tax.cab");
        list(record);
        scan();
        QCOMPARE(stores(QStringLiteral("DirFile_Tax")), 0);
        QVERIFY(messageTexts().at(0).startsWith(QStringLiteral("0 of 1")));
    }

    void aNameWithDirFileInTheMiddleIsTakenForACompressedDirectory()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("old-DirFile_notes.txt")), "by hand", Then);
        list(listedRecord(doc(QStringLiteral("old-DirFile_notes.txt")), Site, false, false));
        scan();
        QCOMPARE(readFile(remote(QStringLiteral("old-DirFile_notes.txt"))), QByteArray("by hand"));
        // Its local file became the place holder, whose date the record now holds.
        QCOMPARE(readFile(doc(QStringLiteral("old-DirFile_notes.txt"))),
                 (PlaceHolderText() + QStringLiteral("\r\n")).toLatin1());
        QCOMPARE(recordOf(QStringLiteral("old-DirFile_notes.txt")).DateModified,
                 FileDateTime(doc(QStringLiteral("old-DirFile_notes.txt"))));
    }

    void aMissingFileIsAskedAboutAndKeptOnNo()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("gone.txt")), "x", Then);
        list(listedRecord(doc(QStringLiteral("gone.txt")), Site, false, false));
        QFile::remove(doc(QStringLiteral("gone.txt")));
        m_fx->ui.answerMessage(JobUi::Answer::No);
        scan();
        const auto &asked = m_fx->ui.messages.at(0);
        QCOMPARE(asked.text, QStringLiteral("File not found. The file 'gone.txt' should be located "
                                            "at ") +
                                 m_docs->path() +
                                 QStringLiteral("/\rDo you want to delete from "
                                                "the list?"));
        QCOMPARE(asked.title, QStringLiteral("Tarnwick"));
        QCOMPARE(asked.buttons, JobUi::Buttons::YesNo);
        QCOMPARE(asked.defaultButton, std::optional<JobUi::Answer>(JobUi::Answer::No));
        QCOMPARE(m_fx->fileList()->count(), 1);
        QCOMPARE(recordOf(QStringLiteral("gone.txt")).Filename, QStringLiteral("gone.txt"));
    }

    void deletingDuringTheWalkGoesOnToTheEnd()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a-gone.txt")), "x", Then);
        makeLocalFile(doc(QStringLiteral("b-here.txt")), "here", Then);
        list(listedRecord(doc(QStringLiteral("a-gone.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b-here.txt")), Site, false, false));
        QFile::remove(doc(QStringLiteral("a-gone.txt")));
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        scan();
        QCOMPARE(readFile(remote(QStringLiteral("b-here.txt"))), QByteArray("here"));
        QVERIFY(messageTexts().at(1).startsWith(QStringLiteral("1 of 1")));
        QCOMPARE(m_fx->fileList()->count(), 1);
        QCOMPARE(recordOf(QStringLiteral("a-gone.txt")).Filename, QString());
    }

    void anEntryWhoseRecordIsGoneActsOnTheRecordBefore()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        makeLocalFile(doc(QStringLiteral("b.txt")), "b", Then);
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b.txt")), Site, false, true));
        m_fx->frame->refresh();
        // The file loses b's record behind the list box's back.
        BackupList other(m_fx->backupFolder());
        QCOMPARE(other.DeleteBackupRecord(QStringLiteral("b.txt")), qint16(0));
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        // a went once; at b the walk looked at a's record again and found it up to date.
        QCOMPARE(stores(QStringLiteral("a.txt")), 1);
        QCOMPARE(stores(QStringLiteral("b.txt")), 0);
        QCOMPARE(m_fx->field(QStringLiteral("UploadpathOfItem"))->text(),
                 QStringLiteral("example.org/Backup/a.txt"));
    }

    void aConnectionDroppedInTheMiddleOfAFileLeavesItsRecordForTheNextScan()
    {
        // Every attempt at the first upload is cut after 64 kB.
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("drop-after=65536")};
        options.times = 3;
        startServer(options);
        const QByteArray big = randomBytes(600000, 11);
        makeLocalFile(doc(QStringLiteral("a-big.bin")), big, Then);
        makeLocalFile(doc(QStringLiteral("b-small.txt")), "small", Then);
        list(listedRecord(doc(QStringLiteral("a-big.bin")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b-small.txt")), Site, false, false));
        scan();
        QVERIFY(!QFile::exists(remote(QStringLiteral("a-big.bin"))));
        QCOMPARE(readFile(remote(QStringLiteral("b-small.txt"))), QByteArray("small"));
        const BackupRecord kept = recordOf(QStringLiteral("a-big.bin"));
        QCOMPARE(kept.NumberOfBackupTimes, qint16(1));
        QCOMPARE(kept.DateModified, QStringLiteral("2001-01-01 00:00:00"));
        QVERIFY(messageTexts().contains(
            QStringLiteral("1 of 2 were uploaded to the 'Backup' directory of your web space.")));

        // The server takes files again: the next scan sends what is still due.
        m_fx->ui.messages.clear();
        scan();
        QCOMPARE(readFile(remote(QStringLiteral("a-big.bin"))), big);
        QCOMPARE(recordOf(QStringLiteral("a-big.bin")).NumberOfBackupTimes, qint16(2));
        QCOMPARE(stores(QStringLiteral("b-small.txt")), 1);
        QVERIFY(messageTexts().at(0).startsWith(QStringLiteral("1 of 2")));
    }

    void aZeroByteFileIsSentAsItIsAndCompressed()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("empty.txt")), QByteArray(), Then);
        makeLocalFile(doc(QStringLiteral("empty.log")), QByteArray(), Then);
        list(listedRecord(doc(QStringLiteral("empty.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("empty.log")), Site, true, false));
        scan();
        QVERIFY(QFileInfo(remote(QStringLiteral("empty.txt"))).isFile());
        QCOMPARE(QFileInfo(remote(QStringLiteral("empty.txt"))).size(), 0);
        QString error;
        const auto cabinet = unpackWithGcab(remote(QStringLiteral("empty_log.CAB")), &error);
        QVERIFY2(cabinet.contains(QStringLiteral("empty.log")), qPrintable(error));
        QCOMPARE(cabinet.value(QStringLiteral("empty.log")), QByteArray());
        QCOMPARE(recordOf(QStringLiteral("empty.log")).LengthOfTheFile, 0.0);
        QVERIFY(messageTexts().at(0).startsWith(QStringLiteral("2 of 2")));
    }

    void anUnreadableFileIsToldAndNothingIsLost()
    {
        if (!m_unprivileged)
            QSKIP("file permissions can't be made to apply to this process");
        startServer();
        makeLocalFile(doc(QStringLiteral("a-locked.txt")), "secret", Then);
        makeLocalFile(doc(QStringLiteral("b-open.txt")), "open", Then);
        list(listedRecord(doc(QStringLiteral("a-locked.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b-open.txt")), Site, false, false));
        QFile::setPermissions(doc(QStringLiteral("a-locked.txt")), QFileDevice::Permissions());
        QFile probe(doc(QStringLiteral("a-locked.txt")));
        QVERIFY(!probe.open(QIODevice::ReadOnly));
        const QByteArray before = readFile(m_fx->frame->list().listPath());
        scan();
        // The file that can't be read stays due; the walk goes on.
        QCOMPARE(stores(QStringLiteral("a-locked.txt")), 0);
        QVERIFY(!QFile::exists(remote(QStringLiteral("a-locked.txt"))));
        QCOMPARE(readFile(remote(QStringLiteral("b-open.txt"))), QByteArray("open"));
        QCOMPARE(recordOf(QStringLiteral("a-locked.txt")).NumberOfBackupTimes, qint16(1));
        QVERIFY(messageTexts().contains(
            QStringLiteral("1 of 2 were uploaded to the 'Backup' directory of your web space.")));

        // Compressed, the copy fails: the reason is told, then the scan's failure path.
        m_fx->ui.messages.clear();
        BackupList other(m_fx->backupFolder());
        BackupRecord record = listedRecord(doc(QStringLiteral("a-locked.txt")), Site, true, false);
        other.DeleteBackupRecord(QStringLiteral("a-locked.txt"));
        other.AppendBackupRecord(record);
        const QByteArray listBefore = readFile(other.listPath());
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QCOMPARE(messageTexts().size(), 2);
        QVERIFY2(messageTexts().at(0).contains(QStringLiteral("Permission denied")),
                 qPrintable(messageTexts().at(0)));
        QCOMPARE(messageTexts().at(1), QStringLiteral("Connection failure. Try to resend."));
        QCOMPARE(readFile(other.listPath()), listBefore);
        QCOMPARE(workFiles(), QStringList());
        Q_UNUSED(before);
    }

    void cancelWhileCompressingKeepsTheCopyAndTheList()
    {
        startServer();
        const QByteArray big = randomBytes(48 * 1024 * 1024, 3);
        makeLocalFile(doc(QStringLiteral("big.dat")), big, Then);
        list(listedRecord(doc(QStringLiteral("big.dat")), Site, true, false));
        const QByteArray listBefore = readFile(m_fx->frame->list().listPath());
        const QString partial = m_fx->backupFolder() + QStringLiteral("/big_dat.CAB.part");
        bool cancelledWhileWriting = false;
        m_fx->ui.onProcessEvents = [&] {
            if (!m_fx->state.UploadCancelled && QFileInfo::exists(partial)) {
                cancelledWhileWriting = true;
                // What the progress frame's CancelButton does.
                m_fx->window->findChild<QPushButton *>(QStringLiteral("CancelButton"))->click();
            }
        };
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        m_fx->ui.onProcessEvents = nullptr;
        QVERIFY(cancelledWhileWriting);
        QCOMPARE(messageTexts(), QStringList{QStringLiteral("Connection failure. Try to resend.")});
        QCOMPARE(workFiles(), QStringList{QStringLiteral("big.dat")});
        QCOMPARE(QFileInfo(m_fx->backupFolder() + QStringLiteral("/big.dat")).size(), big.size());
        QCOMPARE(readFile(m_fx->frame->list().listPath()), listBefore);
        QCOMPARE(stores(QStringLiteral("big")), 0);
        QVERIFY(!m_fx->state.UploadCancelled);
        QVERIFY(!m_fx->window->ProgressFrame()->isVisible());
    }

    void cancelDuringTheUploadEndsTheScanWithoutASummary()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-after=200000")};
        startServer(options);
        makeLocalFile(doc(QStringLiteral("a-big.bin")), randomBytes(24 * 1024 * 1024, 5), Then);
        makeLocalFile(doc(QStringLiteral("b-next.txt")), "next", Then);
        list(listedRecord(doc(QStringLiteral("a-big.bin")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b-next.txt")), Site, false, false));
        const QByteArray listBefore = readFile(m_fx->frame->list().listPath());
        QTimer poll;
        bool pressed = false;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (pressed || stores(QStringLiteral("a-big.bin")) == 0)
                return;
            for (QWidget *widget : QApplication::topLevelWidgets()) {
                auto *dialog = qobject_cast<dlgFTP *>(widget);
                if (!dialog || !dialog->isVisible())
                    continue;
                pressed = true;
                QTimer::singleShot(20, [] {
                    if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
                        box->button(QMessageBox::Yes)->click();
                });
                dialog->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
                return;
            }
        });
        poll.start(50);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        poll.stop();
        QVERIFY(pressed);
        // No summary, no question; no further file; the list as it was.
        QCOMPARE(messageTexts(), QStringList());
        QCOMPARE(stores(QStringLiteral("b-next.txt")), 0);
        QCOMPARE(readFile(m_fx->frame->list().listPath()), listBefore);
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!m_fx->window->ProgressFrame()->isVisible());
        QVERIFY(m_fx->button(QStringLiteral("ScanAndBackupButton"))->isEnabled());
    }

    void aLostUploadPathEndsTheWalkWithTheSummary()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        makeLocalFile(doc(QStringLiteral("b.doc")), "b", Then);
        makeLocalFile(doc(QStringLiteral("c.txt")), "c", Then);
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b.doc")), Site, true, false));
        list(listedRecord(doc(QStringLiteral("c.txt")), Site, false, false));
        // Once a is sent, the backup directory goes from the server and a file takes its name,
        // so the session can't be put back there.
        bool moved = false;
        m_fx->ui.onProcessEvents = [&] {
            if (moved || !QFileInfo::exists(remote(QStringLiteral("a.txt"))))
                return;
            moved = true;
            const QString directory = m_server->localPath(QStringLiteral("/Backup"));
            QDir().rename(directory, directory + QStringLiteral(".gone"));
            makeLocalFile(directory, "not a directory");
        };
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        m_fx->ui.onProcessEvents = nullptr;
        QVERIFY(moved);
        const QStringList texts = messageTexts();
        QVERIFY2(texts.size() >= 2, qPrintable(texts.join(QLatin1Char('|'))));
        QVERIFY2(texts.at(texts.size() - 3)
                     .startsWith(QStringLiteral("The connection to the upload path has failed. "
                                                "Select to rescan. ")),
                 qPrintable(texts.join(QLatin1Char('|'))));
        QVERIFY(texts.at(texts.size() - 2).startsWith(QStringLiteral("1 of 3")));
        QCOMPARE(recordOf(QStringLiteral("a.txt")).NumberOfBackupTimes, qint16(2));
        QCOMPARE(recordOf(QStringLiteral("b.doc")).NumberOfBackupTimes, qint16(1));
        QCOMPARE(recordOf(QStringLiteral("c.txt")).NumberOfBackupTimes, qint16(1));
        QCOMPARE(stores(QStringLiteral("c.txt")), 0);
        QCOMPARE(workFiles(), QStringList());
    }

    void aListCutInTheMiddleOfARecordHealsAtTheNextSend()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        makeLocalFile(doc(QStringLiteral("b.txt")), "b", Then.addDays(1));
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, true));
        list(listedRecord(doc(QStringLiteral("b.txt")), Site, false, true));
        // The list loses its end in the middle of b's record, as a full disk would leave it.
        QByteArray bytes = readFile(m_fx->frame->list().listPath());
        bytes.truncate(bytes.lastIndexOf("DateModified"));
        makeLocalFile(m_fx->frame->list().listPath(), bytes);
        const QByteArray cut = bytes;
        scan();
        // b's date went with the cut, and the walk compared with the date of the record before
        // it: b counts as changed, is sent, and its record is written whole again.
        QCOMPARE(readFile(remote(QStringLiteral("b.txt"))), QByteArray("b"));
        QCOMPARE(stores(QStringLiteral("a.txt")), 0);
        const BackupRecord b = recordOf(QStringLiteral("b.txt"));
        QCOMPARE(b.DateModified, FileDateText(Then.addDays(1)));
        QCOMPARE(b.UploadPath, QStringLiteral("example.org/Backup/b.txt"));
        QCOMPARE(readFile(m_fx->frame->list().oldPath()), cut);
        QCOMPARE(m_fx->fileList()->count(), 2);
    }

    void binaryJunkInTheListIsPassedOver()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        const QString path = m_fx->frame->list().listPath();
        makeLocalFile(path, randomBytes(20000, 99) + "\r\n" +
                                BackupRecordText(
                                    listedRecord(doc(QStringLiteral("a.txt")), Site, false, false))
                                    .toUtf8() +
                                "\r\n" + randomBytes(5000, 98));
        scan();
        QCOMPARE(readFile(remote(QStringLiteral("a.txt"))), QByteArray("a"));
        QCOMPARE(recordOf(QStringLiteral("a.txt")).NumberOfBackupTimes, qint16(2));
        QVERIFY(QFile::exists(m_fx->frame->list().oldPath()));
    }

    void aRefusedLoginIsAConnectionFailure()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("refuse-login")};
        startServer(options);
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, false));
        const QByteArray before = readFile(m_fx->frame->list().listPath());
        m_fx->ui.answerMessage(JobUi::Answer::Ok);
        m_fx->frame->refresh();
        m_fx->button(QStringLiteral("ScanAndBackupButton"))->click();
        QCOMPARE(messageTexts(), QStringList{QStringLiteral("Connection failure. Try to resend.")});
        QCOMPARE(readFile(m_fx->frame->list().listPath()), before);
    }

    void backupSelectedSendsAllButUpdatesOnlyTheLast()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        makeLocalFile(doc(QStringLiteral("b.doc")), "b", Then);
        makeLocalFile(doc(QStringLiteral("c.txt")), "c", Then);
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, false));
        list(listedRecord(doc(QStringLiteral("b.doc")), Site, true, false));
        list(listedRecord(doc(QStringLiteral("c.txt")), Site, false, false));
        m_fx->frame->refresh();
        m_fx->click(QStringLiteral("a.txt"));
        m_fx->select({QStringLiteral("a.txt"), QStringLiteral("b.doc")});
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("BackupSelectedButton"))->click();
        QCOMPARE(readFile(remote(QStringLiteral("a.txt"))), QByteArray("a"));
        QVERIFY(
            unpackWithGcab(remote(QStringLiteral("b_doc.CAB"))).contains(QStringLiteral("b.doc")));
        QCOMPARE(stores(QStringLiteral("c.txt")), 0);
        // Only the last one selected has its record brought up to date.
        QCOMPARE(recordOf(QStringLiteral("a.txt")).NumberOfBackupTimes, qint16(1));
        QCOMPARE(recordOf(QStringLiteral("b.doc")).NumberOfBackupTimes, qint16(2));
        QCOMPARE(recordOf(QStringLiteral("b.doc")).DateModified, FileDateText(Then));
        QCOMPARE(messageTexts(), QStringList{QStringLiteral(
                                     "The Backup Web Page Index you are about to build replaces "
                                     "the previous Backup Web Page Index. Are you sure you want "
                                     "to build the Backup Web Page Index?")});
        QCOMPARE(workFiles(), QStringList());
    }

    void backupSelectedOfAnUpToDateFileSaysSo()
    {
        startServer();
        makeLocalFile(doc(QStringLiteral("a.txt")), "a", Then);
        list(listedRecord(doc(QStringLiteral("a.txt")), Site, false, true));
        m_fx->frame->refresh();
        m_fx->click(QStringLiteral("a.txt"));
        m_fx->select({QStringLiteral("a.txt")});
        m_fx->button(QStringLiteral("BackupSelectedButton"))->click();
        QCOMPARE(messageTexts(), QStringList{QStringLiteral(
                                     "This file is up-to-date to date and does not need backing "
                                     "up.")});
        QCOMPARE(m_server->countCommands(QStringLiteral("USER")), 0);
    }
};

TARNWICK_TEST_MAIN(TestBackupScan)
#include "test_backupscan.moc"
