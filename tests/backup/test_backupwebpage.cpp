#include "BackupFixture.h"
#include "TestMain.h"

#include <QLabel>
#include <QMimeData>
#include <QRegularExpression>

namespace {

// Counts the times a widget is shown.
struct ShowCounter : QObject
{
    int shown = 0;
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Show)
            ++shown;
        return false;
    }
};

} // namespace

// The backup web page, the list's upkeep and the backup of the program's own data.
class TestBackupWebPage : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<BackupFixture> m_fx;
    std::unique_ptr<QTemporaryDir> m_docs;
    const QString Site = QStringLiteral("example.org");

    QString doc(const QString &name) const { return m_docs->filePath(name); }
    QString remote(const QString &path) const { return m_server->localPath(path); }
    int m_loginsBefore = 0;
    int logins() const { return m_server->countCommands(QStringLiteral("USER")) - m_loginsBefore; }
    QString pagePath() const { return m_fx->backupFolder() + QStringLiteral("/BackupFiles.htm"); }
    QStringList messageTexts() const
    {
        QStringList texts;
        for (const auto &shown : m_fx->ui.messages)
            texts << shown.text;
        return texts;
    }
    QStringList listed() const
    {
        QStringList names;
        for (int row = 0; row < m_fx->fileList()->count(); ++row)
            names << m_fx->fileList()->item(row)->text();
        return names;
    }
    void listTwo()
    {
        makeLocalFile(doc(QStringLiteral("a.txt")), "alpha");
        makeLocalFile(doc(QStringLiteral("b.doc")), "beta");
        BackupRecord a = listedRecord(doc(QStringLiteral("a.txt")), Site, false, true);
        a.DateModified = QStringLiteral("2026-01-05 09:07:00");
        BackupRecord b = listedRecord(doc(QStringLiteral("b.doc")), Site, true, true);
        b.DateModified = QStringLiteral("2026-01-06 10:00:00");
        m_fx->frame->list().AppendBackupRecord(a);
        m_fx->frame->list().AppendBackupRecord(b);
        m_fx->frame->refresh();
    }
    static QString header()
    {
        return QStringLiteral("<html><head><title>Backup Page</title></head>\r\n"
                              "<body><p><font color=\"#FF0000\" size=\"6\"><b>Backup Page</b>"
                              "</font></p>\r\n"
                              "<p>This page was last updated on ");
    }
    static QString afterDate()
    {
        return QStringLiteral("\r\n<p>To retrieve a file, right click on the file and select "
                              "'Save Target As'</p>\r\n<p>Current Files to be backed up are:</p>"
                              "\r\n");
    }
    // The page as written, with the date of line 3 taken out.
    QString pageWithoutDate() const
    {
        QString page = QString::fromUtf8(readFile(pagePath()));
        const qsizetype from = header().size();
        const qsizetype to = page.indexOf(QLatin1Char('\r'), from);
        return page.left(from) + QStringLiteral("<date>") + page.mid(to);
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
        m_loginsBefore = m_server->countCommands(QStringLiteral("USER"));
    }
    void cleanup() { m_fx.reset(); }

    void thePageListsEveryEntryAndIsSent()
    {
        listTwo();
        m_fx->button(QStringLiteral("BuildBackupWebPageButton"))->click();
        const QString expected =
            header() + QStringLiteral("<date>") + afterDate() +
            QStringLiteral("<p><a href=\"http://example.org/Backup/a.txt\"><font size=\"3\">a.txt"
                           "</a><font size=\"2\"> - 2026-01-05 09:07:00 - Not Compressed</a></p>"
                           "\r\n"
                           "<p><a href=\"http://example.org/Backup/b_doc.CAB\"><font size=\"3\">"
                           "b.doc</a><font size=\"2\"> - 2026-01-06 10:00:00 - Compressed file"
                           "</a></p>\r\n"
                           "</body></html>\r\n\r\n");
        QCOMPARE(pageWithoutDate(), expected);
        QCOMPARE(readFile(remote(QStringLiteral("/Backup/BackupFiles.htm"))), readFile(pagePath()));
        QCOMPARE(m_fx->ui.clipboard->text(),
                 QStringLiteral("http://example.org/Backup/BackupFiles.htm"));
        QCOMPARE(m_fx->state.CurrentPointer,
                 QStringLiteral("http://example.org/Backup/BackupFiles.htm"));
        // Every entry was selected in turn and stays so; the last one is on show.
        QCOMPARE(m_fx->fileList()->selectedItems().size(), 2);
        QCOMPARE(m_fx->field(QStringLiteral("UploadpathOfItem"))->text(),
                 QStringLiteral("example.org/Backup/b_doc.CAB"));
        QCOMPARE(m_fx->ui.statusTexts.first(),
                 QStringLiteral("Starting Backup Main Page Construction"));
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(m_fx->frame->findChild<QLabel *>(QStringLiteral("BackupPagePointer"))
                    ->text()
                    .contains(QStringLiteral("example.org/Backup/BackupFiles.htm")));
    }

    void anEmptyListGivesTheHeadAndTheEnd()
    {
        m_fx->window->RunWithoutMenu()->setChecked(true);
        m_fx->button(QStringLiteral("BuildBackupWebPageButton"))->click();
        QCOMPARE(pageWithoutDate(), header() + QStringLiteral("<date>") + afterDate() +
                                        QStringLiteral("</body></html>\r\n\r\n"));
        // Run Without Connections: built here, not sent.
        QCOMPARE(logins(), 0);
        QVERIFY(!QFile::exists(remote(QStringLiteral("/Backup/BackupFiles.htm"))));
    }

    void theFtpRootIsCutWhereItStandsAndKeptWhereItDoesNot()
    {
        BackupRecord a =
            listedRecord(makeLocalFile(doc(QStringLiteral("a.txt")), "a"), Site, false, true);
        a.UploadPath = QStringLiteral("example.org/public_html/Backup/a.txt");
        BackupRecord b =
            listedRecord(makeLocalFile(doc(QStringLiteral("b.txt")), "b"), Site, false, true);
        b.UploadPath = QStringLiteral("example.org/www/Backup/b.txt");
        m_fx->frame->list().AppendBackupRecord(a);
        m_fx->frame->list().AppendBackupRecord(b);
        m_fx->frame->refresh();
        m_fx->window->FTPRoot()->setText(QStringLiteral("public_html"));
        m_fx->window->RunWithoutMenu()->setChecked(true);
        m_fx->button(QStringLiteral("BuildBackupWebPageButton"))->click();
        const QString page = QString::fromUtf8(readFile(pagePath()));
        QVERIFY(page.contains(QStringLiteral("href=\"http://example.org/Backup/a.txt\"")));
        QVERIFY(page.contains(QStringLiteral("href=\"http://example.org/www/Backup/b.txt\"")));
    }

    void namesBeyondAsciiAreWrittenSoThatAnyBrowserReadsThem()
    {
        const QString name = QStringLiteral("Müller Łódź.txt");
        BackupRecord record = listedRecord(makeLocalFile(doc(name), "x"), Site, false, true);
        m_fx->frame->list().AppendBackupRecord(record);
        m_fx->frame->refresh();
        m_fx->window->RunWithoutMenu()->setChecked(true);
        m_fx->button(QStringLiteral("BuildBackupWebPageButton"))->click();
        const QByteArray page = readFile(pagePath());
        QVERIFY(page.contains(
            "href=\"http://example.org/Backup/M%C3%BCller %C5%81%C3%B3d%C5%BA.txt\""));
        QVERIFY(page.contains("<font size=\"3\">M&#252;ller &#321;&#243;d&#378;.txt</a>"));
        for (const char c : page)
            QVERIFY(static_cast<unsigned char>(c) < 0x80);
    }

    void removalWithNoChangesNothingButShowsTheProgressFrame()
    {
        listTwo();
        m_fx->select({QStringLiteral("a.txt")});
        ShowCounter counter;
        m_fx->window->ProgressFrame()->installEventFilter(&counter);
        const QByteArray before = readFile(m_fx->frame->list().listPath());
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("RemoveThisItemButton"))->click();
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().title, QStringLiteral("Delete Files"));
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral("Are you sure you want to delete the selected item(s) from the "
                                "list?"));
        QCOMPARE(m_fx->ui.messages.first().defaultButton,
                 std::optional<JobUi::Answer>(JobUi::Answer::No));
        QCOMPARE(readFile(m_fx->frame->list().listPath()), before);
        QCOMPARE(counter.shown, 1);
        QVERIFY(!m_fx->window->ProgressFrame()->isVisible());
        QCOMPARE(logins(), 0);
    }

    void removalFromTheListAloneLeavesTheServersCopy()
    {
        listTwo();
        makeLocalFile(remote(QStringLiteral("/Backup/a.txt")), "on the server");
        m_fx->select({QStringLiteral("a.txt")});
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("RemoveThisItemButton"))->click();
        QCOMPARE(listed(), QStringList{QStringLiteral("b.doc")});
        QVERIFY(QFile::exists(remote(QStringLiteral("/Backup/a.txt"))));
        QCOMPARE(logins(), 0);
    }

    void removalFromTheSiteDeletesTheCopyThere()
    {
        listTwo();
        makeLocalFile(remote(QStringLiteral("/Backup/a.txt")), "on the server");
        makeLocalFile(remote(QStringLiteral("/Backup/b_doc.CAB")), "cab");
        m_fx->select({QStringLiteral("a.txt"), QStringLiteral("b.doc")});
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->button(QStringLiteral("RemoveThisItemButton"))->click();
        QVERIFY(listed().isEmpty());
        QVERIFY(!QFile::exists(remote(QStringLiteral("/Backup/a.txt"))));
        QVERIFY(!QFile::exists(remote(QStringLiteral("/Backup/b_doc.CAB"))));
        QCOMPARE(messageTexts().mid(2),
                 (QStringList{QStringLiteral("The files a.txt was successfully deleted."),
                              QStringLiteral("The files b.doc was successfully deleted.")}));
        QCOMPARE(m_fx->ui.messages.at(1).text,
                 QStringLiteral("Are you sure you want to delete the selected items from the "
                                "uploaded site?"));
        QVERIFY(!m_fx->ftp->IsConnected());
    }

    void aDeleteTheServerRefusesIsToldAndTheEntryStaysRemoved()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("dele-550")};
        FtpTestServer refusing(options);
        QVERIFY2(refusing.start(), qPrintable(refusing.errorString()));
        m_fx->fillAccount(refusing, Site);
        listTwo();
        makeLocalFile(refusing.localPath(QStringLiteral("/Backup/a.txt")), "stays");
        m_fx->select({QStringLiteral("a.txt")});
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->button(QStringLiteral("RemoveThisItemButton"))->click();
        QCOMPARE(listed(), QStringList{QStringLiteral("b.doc")});
        QCOMPARE(messageTexts().size(), 3);
        QVERIFY2(messageTexts().at(2).contains(QStringLiteral("550")),
                 qPrintable(messageTexts().at(2)));
        QVERIFY(QFile::exists(refusing.localPath(QStringLiteral("/Backup/a.txt"))));
    }

    void relocatingToANewNameAddsARecordAndKeepsTheOld()
    {
        listTwo();
        m_fx->click(QStringLiteral("a.txt"));
        m_fx->select({QStringLiteral("a.txt")});
        const QString moved = makeLocalFile(doc(QStringLiteral("moved/a-renamed.txt")), "alpha");
        m_fx->frame->chooseFile = [&](const QString &start) {
            [&] { QCOMPARE(start, m_docs->path() + QLatin1Char('/')); }();
            return moved;
        };
        m_fx->button(QStringLiteral("RelocateFileButton"))->click();
        BackupRecord record;
        BackupList fresh(m_fx->backupFolder());
        QCOMPARE(fresh.ReadBackupRecord(QStringLiteral("a-renamed.txt"), record), qint16(0));
        QCOMPARE(record.LocationPath, doc(QStringLiteral("moved")) + QLatin1Char('/'));
        QCOMPARE(record.DateModified, FileDateTime(moved));
        QCOMPARE(record.UploadPath, QStringLiteral("example.org/Backup/a.txt"));
        QCOMPARE(fresh.ReadBackupRecord(QStringLiteral("a.txt"), record), qint16(0));
        m_fx->frame->refresh();
        QCOMPARE(listed(), (QStringList{QStringLiteral("a-renamed.txt"), QStringLiteral("a.txt"),
                                        QStringLiteral("b.doc")}));
    }

    void relocatingToANameAlreadyListedChangesOnlyTheBox()
    {
        listTwo();
        m_fx->click(QStringLiteral("a.txt"));
        const QByteArray before = readFile(m_fx->frame->list().listPath());
        const QString other = makeLocalFile(doc(QStringLiteral("other/b.doc")), "beta");
        m_fx->frame->chooseFile = [&](const QString &) { return other; };
        m_fx->button(QStringLiteral("RelocateFileButton"))->click();
        QCOMPARE(m_fx->field(QStringLiteral("LocationPathOfItem"))->text(),
                 doc(QStringLiteral("other")) + QLatin1Char('/'));
        QCOMPARE(readFile(m_fx->frame->list().listPath()), before);
        // A cancelled dialog changes nothing.
        m_fx->frame->chooseFile = [](const QString &) { return QString(); };
        m_fx->button(QStringLiteral("RelocateFileButton"))->click();
        QCOMPARE(readFile(m_fx->frame->list().listPath()), before);
    }

    void copyToTheClipboardGivesThePointerOfTheEntryOnShow()
    {
        BackupRecord record = listedRecord(makeLocalFile(doc(QStringLiteral("my notes.txt")), "n"),
                                           Site, false, true);
        m_fx->frame->list().AppendBackupRecord(record);
        m_fx->frame->refresh();
        m_fx->click(QStringLiteral("my notes.txt"));
        m_fx->button(QStringLiteral("CopyToTheClipboardButton"))->click();
        QCOMPARE(m_fx->ui.clipboard->text(),
                 QStringLiteral("http://example.org/Backup/my_notes.txt"));
    }

    void theProgramsOwnDataGoesToTheBackupDirectory()
    {
        makeLocalFile(Folders::HistoryFolder() + QStringLiteral("/trip.hst"),
                      "FileName = trip\r\n");
        makeLocalFile(Folders::ImagesFolder() + QStringLiteral("/x.jpg"), "jpeg");
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->button(QStringLiteral("BackupTarnwickButton"))->click();
        const QString sent = remote(QStringLiteral("/Backup/AllFiles.cab"));
        const auto files = unpackWithGcab(sent);
        QVERIFY(files.contains(QStringLiteral("History/trip.hst")));
        QVERIFY(!files.contains(QStringLiteral("images/x.jpg")));
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral("This backup function backups the necessary files created for "
                                "Tarnwick and does not backup image files. Do you want to "
                                "continue?"));
        QCOMPARE(m_fx->ui.messages.first().defaultButton,
                 std::optional<JobUi::Answer>(JobUi::Answer::No));
        QCOMPARE(m_fx->window->findChild<QLineEdit *>(QStringLiteral("FileToSend"))->text(),
                 Folders::HomeFolder() + QStringLiteral("AllFiles.cab"));
        QCOMPARE(m_fx->window->findChild<QLineEdit *>(QStringLiteral("sName"))->text(),
                 QStringLiteral("Backup"));
        QVERIFY(!m_fx->ftp->IsConnected());
    }

    void theProgramsOwnDataAsksForADirectoryWhenNoneIsSet_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("directory");
        QTest::newRow("control characters") << QStringLiteral("\x01\x02\x03") << "___";
        QTest::newRow("empty answer") << QString() << "Transfer";
        QTest::newRow("blanks") << QStringLiteral("  for Ann  ") << "for_Ann";
    }
    void theProgramsOwnDataAsksForADirectoryWhenNoneIsSet()
    {
        QFETCH(QString, answer);
        QFETCH(QString, directory);
        m_fx->field(QStringLiteral("BackupDirName"))->clear();
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        m_fx->ui.answerPrompt(answer);
        m_fx->button(QStringLiteral("BackupTarnwickButton"))->click();
        QCOMPARE(m_fx->ui.prompts.size(), 1);
        QCOMPARE(m_fx->ui.prompts.first().text,
                 QStringLiteral("Please enter a name for this directory. If you are sending this "
                                "to someone you might want to use their initials."));
        QVERIFY(
            QRegularExpression(QStringLiteral("^FileDirectory \\d{4} \\d\\d \\d\\d \\d\\d \\d\\d$"))
                .match(m_fx->ui.prompts.first().defaultText)
                .hasMatch());
        QVERIFY2(
            QFile::exists(remote(QLatin1Char('/') + directory + QStringLiteral("/AllFiles.cab"))),
            qPrintable(QDir(m_server->homePath()).entryList().join(QLatin1Char(','))));
    }

    void noToTheQuestionDoesNothing()
    {
        m_fx->ui.answerMessage(JobUi::Answer::No);
        m_fx->button(QStringLiteral("BackupTarnwickButton"))->click();
        QVERIFY(!QFile::exists(Folders::HomeFolder() + QStringLiteral("AllFiles.cab")));
        QCOMPARE(logins(), 0);
    }
};

TARNWICK_TEST_MAIN(TestBackupWebPage)
#include "test_backupwebpage.moc"
