#include "FtpControlTab.h"
#include "FtpErrors.h"
#include "InstructionForm.h"
#include "ServerFaults.h"
#include "WaitNotice.h"
#include "Settings.h"
#include "StepRing.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTreeWidget>

Q_DECLARE_METATYPE(ServerFault)

class TestFtpControlTab : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<WebSpaceFixture> m_fx;
    FtpControlTab *m_tab = nullptr;

    QString home(const QString &remote = QString()) const { return m_server->localPath(remote); }
    QPushButton *button(const char *name) const
    {
        return m_tab->findChild<QPushButton *>(QString::fromLatin1(name));
    }
    QStringList names() const
    {
        QStringList list;
        for (int i = 0; i < m_tab->lv()->topLevelItemCount(); ++i)
            list.append(m_tab->lv()->topLevelItem(i)->text(0));
        return list;
    }
    QTreeWidgetItem *row(const QString &name) const
    {
        for (int i = 0; i < m_tab->lv()->topLevelItemCount(); ++i) {
            if (m_tab->lv()->topLevelItem(i)->text(0) == name)
                return m_tab->lv()->topLevelItem(i);
        }
        return nullptr;
    }
    void select(const QString &name)
    {
        QTreeWidgetItem *item = row(name);
        QVERIFY2(item, qPrintable(name));
        m_tab->lv()->clearSelection();
        m_tab->lv()->setCurrentItem(item);
        item->setSelected(true);
    }
    QString lblDir() const { return m_tab->findChild<QLabel *>(QStringLiteral("lblDir"))->text(); }
    void connectTab()
    {
        m_fx->fillAccount(*m_server);
        button("cmdConnect")->click();
        QVERIFY(m_tab->isConnected());
    }

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }

    void init()
    {
        m_fx = WebSpaceFixture::fresh(*m_server);
        writeFile(home("/a.txt"), "0123456789");
        writeFile(home("/b c.htm"), "<html></html>");
        QDir().mkpath(home("/sub"));
        writeFile(home("/sub/inner.txt"), "inner");
        m_tab = m_fx->tab();
        m_fx->showFunction(5);
    }

    void cleanup()
    {
        m_tab = nullptr;
        m_fx.reset();
    }

    void connectListsTheLoginDirectory()
    {
        QVERIFY(!button("cmdUpload")->isEnabled());
        connectTab();
        QCOMPARE(names().first(), QStringLiteral(".."));
        QCOMPARE(row("..")->text(1), QString());
        QCOMPARE(names().size(), 4);
        QCOMPARE(row("sub")->text(1), QStringLiteral("< Directory >"));
        QVERIFY(row("sub")->text(2).contains(QStringLiteral(" D ")));
        QCOMPARE(row("a.txt")->text(1), QStringLiteral("10 bytes"));
        QVERIFY(!row("a.txt")->text(2).contains(QStringLiteral(" D ")));
        QVERIFY(!row("a.txt")->text(3).isEmpty());
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /"));
        QCOMPARE(m_fx->window->UploadPath()->text(), QStringLiteral("example.org/"));
        QVERIFY(m_fx->window->statusBar()->currentMessage().startsWith(
            QStringLiteral("Connected to ") + m_server->server() +
            QStringLiteral(" as tarnwick at ")));
        for (const char *name : {"cmdDownload", "cmdUpload", "cmdRename", "cmdRefresh",
                                 "cmdDeleteAll", "cmdDelete", "cmdCreateDir", "UpDirButton",
                                 "RefreshButton", "MakeFilePointerStdButton", "DelSelectionButton"})
            QVERIFY2(button(name)->isEnabled(), name);
        QVERIFY(m_fx->ui.messages.isEmpty());
    }

    void connectChangesToTheFtpRoot()
    {
        m_fx->window->FTPRoot()->setText(QStringLiteral("sub"));
        connectTab();
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /sub"));
        QCOMPARE(names(), (QStringList{QStringLiteral(".."), QStringLiteral("inner.txt")}));
        QCOMPARE(m_fx->window->UploadPath()->text(), QStringLiteral("example.org/sub"));
    }

    void connectMakesTheClientRoot()
    {
        m_fx->window->ClientRoot()->setText(QStringLiteral("Ann"));
        connectTab();
        QVERIFY(QFileInfo(home("/Ann")).isDir());
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /Ann"));
    }

    void connectFailures_data()
    {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("password");
        QTest::newRow("wrong password") << QString() << "wrong";
        QTest::newRow("unknown server") << "no-such-host.invalid" << QString();
        QTest::newRow("nothing listens") << "127.0.0.1:1" << QString();
    }
    void connectFailures()
    {
        QFETCH(QString, server);
        QFETCH(QString, password);
        m_fx->fillAccount(*m_server);
        if (!server.isEmpty())
            m_fx->window->txtServer()->setText(server);
        if (!password.isEmpty())
            m_fx->window->txtPassword()->setText(password);
        button("cmdConnect")->click();
        QVERIFY(!m_tab->isConnected());
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().title, QStringLiteral("error"));
        QVERIFY(!m_fx->ui.messages.first().text.isEmpty());
        QVERIFY(!button("cmdUpload")->isEnabled());
        // The program stays usable: the right account connects at once.
        m_fx->ui.messages.clear();
        connectTab();
        QVERIFY(m_fx->ui.messages.isEmpty());
    }

    void faultsAtConnect_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults())
            QTest::newRow(name) << fault;
    }

    void faultsAtConnect()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("1"));
        FtpTestServer::Options options;
        options.faults = {fault.fault};
        FtpTestServer bad(options);
        QVERIFY2(bad.start(), qPrintable(bad.errorString()));
        if (fault.fault == QLatin1String("unresolvable"))
            fault.number = UnresolvableNumber(1000);
        m_fx->fillAccount(bad);
        QStringList notices;
        QObject::connect(&m_tab->waitNotice(), &WaitNotice::shown,
                         [&notices](const QString &text) { notices << text; });
        LoopTurns loop;
        button("cmdConnect")->click();
        loop.stop();
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        const QString connecting = QStringLiteral("Connecting to ") +
                                   FtpAddress::fromServerField(bad.server()).shown() +
                                   QStringLiteral("...");
        QCOMPARE(notices.first(), connecting);
        if (fault.atLogin) {
            // One attempt, and the session's own words in a box titled "error".
            QCOMPARE(notices, QStringList{connecting});
            QVERIFY(!m_tab->isConnected());
            QCOMPARE(m_fx->ui.messages.size(), 1);
            QCOMPARE(m_fx->ui.messages.first().title, QStringLiteral("error"));
            QCOMPARE(m_fx->ui.messages.first().text,
                     FtpErrors::Compose(fault.number, QStringLiteral("InternetConnect"),
                                        QString()));
            QVERIFY(!button("cmdUpload")->isEnabled());
        } else {
            // The login works; the listings fail in silence and leave the list empty.
            QVERIFY(m_tab->isConnected());
            QVERIFY(m_fx->ui.messages.isEmpty());
            QCOMPARE(names(), QStringList{QStringLiteral("..")});
            // Refreshing meets the fault again, and says nothing either.
            button("cmdRefresh")->click();
            QCOMPARE(names(), QStringList{QStringLiteral("..")});
            QVERIFY(m_fx->ui.messages.isEmpty());
        }
        // Afterwards: no wait shown, the cursor back, Connect ready for the next try.
        QVERIFY(!m_fx->window->findChild<QPushButton *>(QStringLiteral("CancelWaitButton"))
                     ->isVisible());
        QVERIFY(m_tab->waitNotice().text().isEmpty());
        QVERIFY(button("cmdConnect")->isEnabled());
        m_fx->ui.messages.clear();
        connectTab();
    }

    void cancelAtConnect_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults()) {
            if (fault.waits)
                QTest::newRow(name) << fault;
        }
    }

    void cancelAtConnect()
    {
        QFETCH(ServerFault, fault);
        // Limits far off: only Cancel ends the wait.
        SetServerLimits(QStringLiteral("600"));
        FtpTestServer::Options options;
        options.faults = {fault.fault};
        FtpTestServer bad(options);
        QVERIFY2(bad.start(), qPrintable(bad.errorString()));
        m_fx->fillAccount(bad);
        // Cancel is pressed as the status bar tells of the wait that meets the fault.
        const QString waitFor = fault.atLogin ? QStringLiteral("Connecting to ")
                                              : QStringLiteral("Waiting for ");
        QObject scope;
        bool pressed = false;
        QObject::connect(&m_tab->waitNotice(), &WaitNotice::shown, &scope, [&](const QString &text) {
            if (pressed || !text.startsWith(waitFor))
                return;
            pressed = true;
            QTimer::singleShot(50, &scope, [this] {
                QPushButton *cancel =
                    m_fx->window->findChild<QPushButton *>(QStringLiteral("CancelWaitButton"));
                QVERIFY(cancel->isVisible());
                QCOMPARE(m_fx->window->statusBar()->currentMessage().left(8),
                         m_tab->waitNotice().text().left(8));
                cancel->click();
            });
        });
        LoopTurns loop;
        button("cmdConnect")->click();
        loop.stop();
        QVERIFY(pressed);
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        // Nothing said, and the tab as before the press: disconnected, ready to connect.
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(!m_tab->isConnected());
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!button("cmdUpload")->isEnabled());
        QVERIFY(button("cmdConnect")->isEnabled());
        QVERIFY(m_tab->waitNotice().text().isEmpty());
        connectTab();
    }

    void runWithoutConnectionsDoesNothing()
    {
        m_fx->window->RunWithoutMenu()->setChecked(true);
        m_fx->fillAccount(*m_server);
        button("cmdConnect")->click();
        QVERIFY(!m_tab->isConnected());
        QVERIFY(!m_fx->ftp->IsConnected());
    }

    void disconnectClearsAndDisables()
    {
        connectTab();
        button("cmdDisconnect")->click();
        QCOMPARE(m_tab->lv()->topLevelItemCount(), 0);
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(!button("cmdDelete")->isEnabled());
        QCOMPARE(m_fx->window->windowTitle(), QStringLiteral("Tarnwick - Ready to Connect"));
    }

    void uploadPathFollowsTheSessionWhileConnected()
    {
        QLabel *uploadPath = m_fx->window->UploadPath();
        QVERIFY(!m_fx->window->uploadPathTimerRunning());
        connectTab();
        QVERIFY(m_fx->window->uploadPathTimerRunning());
        const QString site = m_fx->window->txtWebSite()->text();
        QCOMPARE(uploadPath->text(), site + m_fx->ftp->CurrentDirectory());

        // A move of the session made elsewhere shows within Timer3's second.
        QVERIFY(m_fx->ftp->SetFTPDirectory(QStringLiteral("/sub")));
        QTRY_COMPARE_WITH_TIMEOUT(uploadPath->text(), site + QStringLiteral("/sub"), 3000);

        // Disconnected, it stops and the last path stays.
        button("cmdDisconnect")->click();
        QVERIFY(!m_fx->window->uploadPathTimerRunning());
        QTest::qWait(1300);
        QCOMPARE(uploadPath->text(), site + QStringLiteral("/sub"));
    }

    void parentRowAtTheTopLeavesTheList()
    {
        connectTab();
        const QStringList before = names();
        m_tab->lv_My_DblClick(row(".."));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /"));
        QCOMPARE(names(), before);
    }

    void doubleClickEntersAndUpLeaves()
    {
        connectTab();
        m_tab->lv_My_DblClick(row("sub"));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /sub"));
        QVERIFY(names().contains(QStringLiteral("inner.txt")));
        button("UpDirButton")->click();
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /"));
        m_tab->lv_My_DblClick(row("sub"));
        m_tab->lv_My_DblClick(row(".."));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /"));
    }

    void createDirectory_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("made");
        QTest::newRow("name") << "new dir" << true;
        QTest::newRow("blank") << "" << false;
        QTest::newRow("skip") << "!!Skip!!" << false;
    }
    void createDirectory()
    {
        QFETCH(QString, answer);
        QFETCH(bool, made);
        connectTab();
        m_fx->ui.answerPrompt(answer);
        button("cmdCreateDir")->click();
        QCOMPARE(m_fx->ui.prompts.size(), 1);
        QCOMPARE(m_fx->ui.prompts.first().text,
                 QStringLiteral("Please enter a name for this directory:"));
        QCOMPARE(m_fx->ui.prompts.first().mode, QStringLiteral("Hide"));
        QCOMPARE(QFileInfo(home("/new dir")).isDir(), made);
        if (made) {
            QCOMPARE(m_fx->ui.messages.size(), 1);
            QCOMPARE(m_fx->ui.messages.first().text,
                     QStringLiteral("Directory new dir was successfully created."));
            QCOMPARE(row("new dir")->text(1), QStringLiteral("< Directory >"));
        } else {
            QVERIFY(m_fx->ui.messages.isEmpty());
        }
    }

    void createExistingDirectoryShowsTheServersWord()
    {
        connectTab();
        m_fx->ui.answerPrompt(QStringLiteral("sub"));
        button("cmdCreateDir")->click();
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().text, m_fx->ftp->GetLastErrorMessage());
        QVERIFY(m_fx->ui.messages.first().text.contains(QStringLiteral("550")));
    }

    void rename()
    {
        connectTab();
        select(QStringLiteral("a.txt"));
        m_fx->ui.answerPrompt(QStringLiteral("z.txt"));
        button("cmdRename")->click();
        QCOMPARE(m_fx->ui.prompts.first().text,
                 QStringLiteral("Please enter a new name for this file:"));
        QCOMPARE(m_fx->ui.messages.first().text, QStringLiteral("File was successfully renamed"));
        QVERIFY(QFileInfo::exists(home("/z.txt")));
        QVERIFY(!QFileInfo::exists(home("/a.txt")));
        QVERIFY(row("z.txt"));
    }

    void renameToTheSameNameIsTheServersCall()
    {
        connectTab();
        select(QStringLiteral("a.txt"));
        m_fx->ui.answerPrompt(QStringLiteral("a.txt"));
        button("cmdRename")->click();
        QCOMPARE(m_fx->ui.messages.size(), 1);
        // pyftpdlib renames a file onto itself without complaint.
        QCOMPARE(m_fx->ui.messages.first().text, QStringLiteral("File was successfully renamed"));
        QCOMPARE(readFile(home("/a.txt")), QByteArray("0123456789"));
    }

    void renameCancelled()
    {
        connectTab();
        select(QStringLiteral("a.txt"));
        m_fx->ui.answerPrompt(JobState::Skip);
        button("cmdRename")->click();
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(QFileInfo::exists(home("/a.txt")));
    }

    void deleteAsksFirst()
    {
        connectTab();
        select(QStringLiteral("a.txt"));
        m_fx->ui.answerMessage(JobUi::Answer::No);
        button("cmdDelete")->click();
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral("Are you sure you want to delete a.txt?"));
        QCOMPARE(m_fx->ui.messages.first().title, QStringLiteral("Delete?"));
        QVERIFY(QFileInfo::exists(home("/a.txt")));
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        button("cmdDelete")->click();
        QVERIFY(!QFileInfo::exists(home("/a.txt")));
        QVERIFY(!row("a.txt"));
    }

    void deleteFullDirectoryFails()
    {
        connectTab();
        select(QStringLiteral("sub"));
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        button("cmdDelete")->click();
        QCOMPARE(m_fx->ui.messages.size(), 2);
        QCOMPARE(m_fx->ui.messages.at(1).text, m_fx->ftp->GetLastErrorMessage());
        QVERIFY(QFileInfo(home("/sub")).isDir());
        QVERIFY(row("sub"));
    }

    void deleteAllLeavesFullDirectories()
    {
        QDir().mkpath(home("/empty"));
        QDir().mkpath(home("/full2"));
        writeFile(home("/full2/x"), "x");
        connectTab();
        button("cmdDeleteAll")->click();
        QCOMPARE(
            m_fx->ui.messages.first().text,
            QStringLiteral("Are you sure you want to delete all of the items in this directory?"));
        // One message for each directory that isn't empty.
        QCOMPARE(m_fx->ui.messages.size(), 3);
        QCOMPARE(names(), (QStringList{QStringLiteral(".."), QStringLiteral("full2"),
                                       QStringLiteral("sub")}));
        QVERIFY(!QFileInfo::exists(home("/a.txt")));
        QVERIFY(!QFileInfo::exists(home("/empty")));
    }

    void deleteSelection()
    {
        connectTab();
        m_tab->lv()->clearSelection();
        row("a.txt")->setSelected(true);
        row("b c.htm")->setSelected(true);
        button("DelSelectionButton")->click();
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QVERIFY(!QFileInfo::exists(home("/a.txt")));
        QVERIFY(!QFileInfo::exists(home("/b c.htm")));
        QVERIFY(QFileInfo::exists(home("/sub")));
    }

    void pointerOfAFileWithBlanks()
    {
        connectTab();
        select(QStringLiteral("b c.htm"));
        button("MakeFilePointerStdButton")->click();
        QVERIFY(m_fx->ui.clipboard);
        QCOMPARE(m_fx->ui.clipboard->text(), QStringLiteral("http://example.org/b%20c.htm"));
    }

    void pointerLeavesTheFtpRootOut()
    {
        QDir().mkpath(home("/public_html/docs"));
        writeFile(home("/public_html/docs/my file.pdf"), "pdf");
        m_fx->window->FTPRoot()->setText(QStringLiteral("public_html"));
        connectTab();
        m_tab->lv_My_DblClick(row("docs"));
        select(QStringLiteral("my file.pdf"));
        button("MakeFilePointerStdButton")->click();
        QCOMPARE(m_fx->ui.clipboard->text(),
                 QStringLiteral("http://example.org/docs/my%20file.pdf"));
    }

    void pointerNeedsAFile()
    {
        connectTab();
        select(QStringLiteral(".."));
        button("MakeFilePointerStdButton")->click();
        QVERIFY(!m_fx->ui.clipboard);
    }

    void downloadAsksBeforeOverwriting()
    {
        QTemporaryDir local;
        const QString target = local.filePath(QStringLiteral("a.txt"));
        writeFile(target, "old");
        connectTab();
        m_tab->setDownloadPathChooser([&](const QString &name) {
            return name == QLatin1String("a.txt") ? target : QString();
        });
        select(QStringLiteral("a.txt"));
        m_fx->ui.answerMessage(JobUi::Answer::No);
        button("cmdDownload")->click();
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral("This file exist do you want to over write it?"));
        QCOMPARE(m_fx->ui.messages.first().title, QStringLiteral("Need to know.."));
        QCOMPARE(readFile(target), QByteArray("old"));
        m_fx->ui.answerMessage(JobUi::Answer::Yes);
        button("cmdDownload")->click();
        QCOMPARE(readFile(target), QByteArray("0123456789"));
    }

    void doubleClickOnAFileDownloadsIt()
    {
        QTemporaryDir local;
        const QString target = local.filePath(QStringLiteral("copy.txt"));
        connectTab();
        m_tab->setDownloadPathChooser([&](const QString &) { return target; });
        select(QStringLiteral("a.txt"));
        m_tab->lv_My_DblClick(row("a.txt"));
        QCOMPARE(readFile(target), QByteArray("0123456789"));
        QVERIFY(m_fx->ui.messages.isEmpty());
    }

    void uploadFolderMakesItsDirectories()
    {
        QTemporaryDir local;
        writeFile(local.filePath(QStringLiteral("Pics/one.jpg")), "one");
        writeFile(local.filePath(QStringLiteral("Pics/deep er/two.txt")), "two");
        connectTab();
        m_tab->uploadFiles(local.path(), {local.filePath(QStringLiteral("Pics/one.jpg")),
                                          local.filePath(QStringLiteral("Pics/deep er/two.txt"))});
        QCOMPARE(readFile(home("/Pics/one.jpg")), QByteArray("one"));
        QCOMPARE(readFile(home("/Pics/deep er/two.txt")), QByteArray("two"));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /"));
        QVERIFY(row("Pics"));
        QVERIFY(m_fx->ui.statusTexts.contains(QStringLiteral("Collecting Files and Information")));
        QVERIFY(m_fx->ui.statusTexts.contains(QStringLiteral("Creating Directories")));
        QVERIFY(m_fx->ui.statusTexts.contains(QStringLiteral("Sending files")));
    }

    void uploadFolderMakesEmptySubFoldersToo()
    {
        QTemporaryDir local;
        writeFile(local.filePath(QStringLiteral("Album/deep/inner/two.txt")), "two");
        QVERIFY(QDir().mkpath(local.filePath(QStringLiteral("Album/empty one"))));
        QVERIFY(QDir().mkpath(local.filePath(QStringLiteral("Album/deep/also empty"))));
        connectTab();
        m_tab->uploadFolder(local.filePath(QStringLiteral("Album")));
        QCOMPARE(readFile(home("/Album/deep/inner/two.txt")), QByteArray("two"));
        QVERIFY(QFileInfo(home("/Album/empty one")).isDir());
        QVERIFY(QFileInfo(home("/Album/deep/also empty")).isDir());
        QCOMPARE(QDir(home("/Album")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 (QStringList{QStringLiteral("deep"), QStringLiteral("empty one")}));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /"));
        QVERIFY(m_fx->ui.messages.isEmpty());
    }

    void uploadOfAnEmptyFolderMakesItsDirectory()
    {
        QTemporaryDir local;
        QVERIFY(QDir().mkpath(local.filePath(QStringLiteral("Nothing yet"))));
        connectTab();
        m_tab->uploadFolder(local.filePath(QStringLiteral("Nothing yet")));
        QVERIFY(QFileInfo(home("/Nothing yet")).isDir());
        QVERIFY(row("Nothing yet"));
    }

    void uploadStartsAfreshAfterAnEarlierCancel()
    {
        QTemporaryDir local;
        writeFile(local.filePath(QStringLiteral("one.txt")), "1");
        writeFile(local.filePath(QStringLiteral("two.txt")), "2");
        connectTab();
        m_fx->state.UserResponse = JobState::Skip;
        m_tab->uploadFiles(local.path(), {local.filePath(QStringLiteral("one.txt")),
                                          local.filePath(QStringLiteral("two.txt"))});
        QCOMPARE(readFile(home("/one.txt")), QByteArray("1"));
        QCOMPARE(readFile(home("/two.txt")), QByteArray("2"));
    }

    void uploadIntoTheCurrentDirectory()
    {
        QTemporaryDir local;
        writeFile(local.filePath(QStringLiteral("note.txt")), "note");
        connectTab();
        m_tab->lv_My_DblClick(row("sub"));
        m_tab->uploadFiles(local.path(), {local.filePath(QStringLiteral("note.txt"))});
        QCOMPARE(readFile(home("/sub/note.txt")), QByteArray("note"));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /sub"));
    }

    void fieldsWriteTheirKeysAsTyped()
    {
        const QList<QPair<QLineEdit *, QString>> fields = {
            {m_fx->window->txtServer(), QStringLiteral("Server")},
            {m_fx->window->txtWebSite(), QStringLiteral("WebPage")},
            {m_fx->window->txtUser(), QStringLiteral("User")},
            {m_fx->window->txtPassword(), QStringLiteral("Password")},
            {m_fx->window->txtEmailID(), QStringLiteral("EmailID")},
            {m_fx->window->txtDefaultAuthor(), QStringLiteral("Author")},
            {m_fx->window->WebRoot(), QStringLiteral("WebRoot")},
            {m_fx->window->FTPRoot(), QStringLiteral("FTPRoot")},
        };
        for (const auto &[field, key] : fields) {
            field->clear();
            QTest::keyClicks(field, QStringLiteral("ab"));
            QCOMPARE(GetSetting(key), QStringLiteral("ab"));
        }
    }

    void clientRootIsCleanedWhenLeft()
    {
        QLineEdit *field = m_fx->window->ClientRoot();
        SaveSetting(QStringLiteral("ClientRoot"), QString());
        QTest::keyClicks(field, QStringLiteral("my.dir/Ann"));
        QCOMPARE(GetSetting(QStringLiteral("ClientRoot")), QString());
        QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);
        QCoreApplication::sendEvent(field, &leave);
        QCOMPARE(field->text(), QStringLiteral("mydirAnn"));
        QCOMPARE(GetSetting(QStringLiteral("ClientRoot")), QStringLiteral("mydirAnn"));
    }

    void transferOptionsHoldForTheSession()
    {
        connectTab();
        m_tab->findChild<QRadioButton *>(QStringLiteral("optAscii"))->click();
        QCOMPARE(m_fx->ftp->TransferType(), cFTP::FTP_TRANSFER_TYPE_ASCII);
        m_tab->findChild<QRadioButton *>(QStringLiteral("optBin"))->click();
        QCOMPARE(m_fx->ftp->TransferType(), cFTP::FTP_TRANSFER_TYPE_BINARY);
        m_tab->findChild<QRadioButton *>(QStringLiteral("optActive_1"))->click();
        QCOMPARE(m_fx->ftp->PassiveFlag(), cFTP::INTERNET_FLAG_PASSIVE);
        m_tab->findChild<QRadioButton *>(QStringLiteral("optActive_0"))->click();
        QCOMPARE(m_fx->ftp->PassiveFlag(), quint32(0));
        QVERIFY(!HasSetting(QStringLiteral("optAscii")));
    }

    void advancedFrameShowsAndHides()
    {
        QVERIFY(!m_tab->AdvanceSettingFrame()->isVisible());
        button("AdvanceSettingFrameButton")->click();
        QVERIFY(m_tab->AdvanceSettingFrame()->isVisible());
        m_tab->findChild<QPushButton *>(QStringLiteral("AdvanceSettingFrameDoneButton"))->click();
        QVERIFY(!m_tab->AdvanceSettingFrame()->isVisible());
    }

    void stepRings()
    {
        m_fx->window->HighLightSteps()->setChecked(true);
        connectTab();
        QVERIFY(m_fx->window->ring(16)->isShown());
        QVERIFY(!m_fx->window->ring(14)->isShown());
        button("cmdDisconnect")->click();
        QVERIFY(m_fx->window->ring(14)->isShown());
        QVERIFY(m_fx->window->ring(16)->isShown());
    }

    void bothFunctionsJoinWithTheirPagesRingsAndHelp()
    {
        frmMain &window = *m_fx->window;
        window.HighLightSteps()->setChecked(true);
        SaveSetting(QStringLiteral("SendFileInstructionView"), QStringLiteral("Show"));
        SaveSetting(QStringLiteral("FTPControlInstructionView"), QStringLiteral("Show"));
        for (int i : {0, 1, 3, 4})
            QVERIFY(!window.hasFunction(i));

        window.FunctionSelectButton_Click(2);
        InstructionForm *send = window.instructionForm(2);
        QVERIFY(send && send->isVisible());
        QCOMPARE(send->objectName(), QStringLiteral("InstructionPageSendFile"));
        QCOMPARE(send->findChild<QLabel *>(QStringLiteral("Step_2"))->text(),
                 QStringLiteral("The pointer to this file is then ready to send via email either "
                                "using the 'Take an Action' button or using the Paste command "
                                "'Ctrl v'."));
        for (int i = 0; i < frmMain::RingCount; ++i)
            QCOMPARE(window.ring(i)->isShown(), i == 10 || i == 11);
        QCOMPARE(window.helpContext(), 9);

        window.FunctionSelectButton_Click(5);
        InstructionForm *control = window.instructionForm(5);
        QVERIFY(control && control->isVisible());
        QCOMPARE(control->objectName(), QStringLiteral("InstructionPageFTPControls"));
        QCOMPARE(control->findChildren<QLabel *>(QRegularExpression(QStringLiteral("^Step_\\d+$")))
                     .size(),
                 5);
        for (int i = 0; i < frmMain::RingCount; ++i)
            QCOMPARE(window.ring(i)->isShown(), i == 14 || i == 16);
        QCOMPARE(window.ring(16)->colour(), frmMain::RingYellow);
        QCOMPARE(window.helpContext(), 17);
        button("AdvanceSettingFrameButton")->click();
        QCOMPARE(window.helpContext(), 18);
        QCOMPARE(window.findChild<QAction *>(QStringLiteral("InstrMenu_5"))->text(),
                 QStringLiteral("FTP Controls Instructions"));
        QVERIFY(!window.findChild<QAction *>(QStringLiteral("InstrMenu_1"))->isVisible());
    }

    void dosListing()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("dos-listing")};
        FtpTestServer dos(options);
        QVERIFY2(dos.start(), qPrintable(dos.errorString()));
        writeFile(dos.localPath(QStringLiteral("/Index.htm")), "<html>");
        QDir().mkpath(dos.localPath(QStringLiteral("/My Pictures")));
        m_fx->fillAccount(dos);
        button("cmdConnect")->click();
        QVERIFY(m_tab->isConnected());
        QCOMPARE(names().size(), 3);
        QCOMPARE(row("My Pictures")->text(1), QStringLiteral("< Directory >"));
        QCOMPARE(row("Index.htm")->text(1), QStringLiteral("6 bytes"));
        m_tab->lv_My_DblClick(row("My Pictures"));
        QCOMPARE(lblDir(), QStringLiteral("Current Directory: /My Pictures"));
    }
};

TARNWICK_TEST_MAIN(TestFtpControlTab)
#include "test_ftpcontroltab.moc"
