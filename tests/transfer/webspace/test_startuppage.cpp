#include "Folders.h"
#include "FtpConnection.h"
#include "FtpControlTab.h"
#include "ServerFaults.h"
#include "WaitNotice.h"
#include "SendFileFrame.h"
#include "Settings.h"
#include "StartupPage.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"
#include "WebSpaceInstall.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

Q_DECLARE_METATYPE(ServerFault)

// The Configuration page: what OK writes, what a test of the connection writes and says, and
// what closing the page does.
class TestStartupPage : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<WebSpaceFixture> m_fx;
    FtpControlTab *m_tab = nullptr;
    StartupPage *m_page = nullptr;
    int m_programEnds = 0;

    QLineEdit *value(int i) const { return m_page->SettingValue(i); }
    void fill(const QStringList &values)
    {
        for (int i = 1; i <= 7; ++i)
            value(i)->setText(i <= values.size() ? values.at(i - 1) : QString());
    }
    QStringList accountValues() const
    {
        return {m_server->server(),   QStringLiteral("example.org"),     m_server->user(),
                m_server->password(), QStringLiteral("ann@example.org"), QStringLiteral("Ann")};
    }
    void click(const char *name)
    {
        m_page->findChild<QPushButton *>(QString::fromLatin1(name))->click();
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
        m_tab = m_fx->tab();
        m_page = m_fx->page();
        m_programEnds = 0;
        m_page->setProgramEnd([this] { ++m_programEnds; });
        m_page->Load();
        m_page->show();
    }

    void cleanup() { m_fx.reset(); }

    void faultsEndTheTest_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults())
            QTest::newRow(name) << fault;
    }

    void faultsEndTheTest()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("1"));
        FtpTestServer::Options options;
        options.faults = {fault.fault};
        FtpTestServer bad(options);
        QVERIFY2(bad.start(), qPrintable(bad.errorString()));
        QStringList values = accountValues();
        values[0] = bad.server();
        fill(values);
        QStringList waits;
        QObject::connect(&m_tab->waitNotice(), &WaitNotice::shown,
                         [this, &waits](const QString &text) {
                             // The page says what it waits for, beside Label4's own words.
                             QCOMPARE(m_page->WaitLabel()->text(), text);
                             QVERIFY(m_page->CancelTestButton()->isEnabled());
                             waits << text;
                         });
        LoopTurns loop;
        click("TestConnectButton");
        loop.stop();
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        const QString connecting = QStringLiteral("Connecting to ") +
                                   FtpAddress::fromServerField(bad.server()).shown() +
                                   QStringLiteral("...");
        QCOMPARE(waits.filter(QStringLiteral("Connecting to ")).first(), connecting);
        QCOMPARE(m_fx->ui.messages.size(), 1);
        if (fault.atLogin) {
            // One attempt, and the page's verdict; nothing written.
            QCOMPARE(waits.filter(QStringLiteral("Connecting to ")).size(), 1);
            QCOMPARE(m_fx->ui.messages.first().text,
                     QStringLiteral("Connection was unsuccessful! Verify the Server name, user "
                                    "ID and password"));
            QVERIFY(!HasSetting(QStringLiteral("Server")));
        } else {
            // The login works, the search finds no listing to look into.
            QVERIFY(m_fx->ui.messages.first().text.startsWith(
                QStringLiteral("Connection was successful! However, the configuration of your "
                               "root direct was unsuccessful.")));
        }
        // Ready for the next try.
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(m_page->findChild<QPushButton *>(QStringLiteral("TestConnectButton"))->isEnabled());
        QVERIFY(!m_page->CancelTestButton()->isEnabled());
        QVERIFY(m_page->Label4()->text().isEmpty());
        QVERIFY(m_page->WaitLabel()->text().isEmpty());
    }

    void cancelEndsTheTest_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults()) {
            if (fault.waits)
                QTest::newRow(name) << fault;
        }
    }

    void cancelEndsTheTest()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("600"));
        FtpTestServer::Options options;
        options.faults = {fault.fault};
        FtpTestServer bad(options);
        QVERIFY2(bad.start(), qPrintable(bad.errorString()));
        QStringList values = accountValues();
        values[0] = bad.server();
        fill(values);
        const QString waitFor = fault.atLogin ? QStringLiteral("Connecting to ")
                                              : QStringLiteral("Waiting for ");
        QObject scope;
        bool pressed = false;
        QObject::connect(&m_tab->waitNotice(), &WaitNotice::shown, &scope,
                         [&](const QString &text) {
                             if (pressed || !text.startsWith(waitFor))
                                 return;
                             pressed = true;
                             QTimer::singleShot(50, &scope,
                                                [this] { m_page->CancelTestButton()->click(); });
                         });
        LoopTurns loop;
        click("TestConnectButton");
        loop.stop();
        QVERIFY(pressed);
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        // No verdict; the page is ready for another try.
        QVERIFY(m_fx->ui.messages.isEmpty());
        QVERIFY(!m_fx->ftp->IsConnected());
        QVERIFY(m_page->findChild<QPushButton *>(QStringLiteral("TestConnectButton"))->isEnabled());
        QVERIFY(!m_page->CancelTestButton()->isEnabled());
        QVERIFY(m_page->WaitLabel()->text().isEmpty());
        // And the right account then passes the test.
        fill(accountValues());
        SetServerLimits(QStringLiteral("20"));
        click("TestConnectButton");
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QVERIFY(m_fx->ui.messages.first().text.startsWith(
            QStringLiteral("Connection was successful!")));
    }

    void loadCopiesTheWindowsFields()
    {
        m_fx->window->txtServer()->setText(QStringLiteral("ftp.example.org"));
        m_fx->window->txtEmailID()->setText(QStringLiteral("a@b.c"));
        m_fx->window->ClientRoot()->setText(QStringLiteral("Ann"));
        m_page->Load();
        QCOMPARE(value(1)->text(), QStringLiteral("ftp.example.org"));
        QCOMPARE(value(5)->text(), QStringLiteral("a@b.c"));
        QCOMPARE(value(7)->text(), QStringLiteral("Ann"));
        QCOMPARE(m_page->windowTitle(), QStringLiteral("Tarnwick"));
        QCOMPARE(m_page->findChild<QLabel *>(QStringLiteral("Label3"))->text(),
                 QStringLiteral("Configuration Settings"));
    }

    void okWritesEverything()
    {
        QStringList values = accountValues();
        values[0] = QStringLiteral("  ftp.example.org ");
        values.append(QStringLiteral("A.n#n"));
        fill(values);
        click("Command1");
        QVERIFY(!m_page->isVisible());
        QCOMPARE(GetSetting(QStringLiteral("Server")), QStringLiteral("ftp.example.org"));
        QCOMPARE(m_fx->window->txtServer()->text(), QStringLiteral("ftp.example.org"));
        QCOMPARE(GetSetting(QStringLiteral("WebPage")), QStringLiteral("example.org"));
        QCOMPARE(GetSetting(QStringLiteral("User")), m_server->user());
        QCOMPARE(GetSetting(QStringLiteral("Password")), m_server->password());
        QCOMPARE(GetSetting(QStringLiteral("EmailID")), QStringLiteral("ann@example.org"));
        QCOMPARE(GetSetting(QStringLiteral("Author")), QStringLiteral("Ann"));
        QCOMPARE(GetSetting(QStringLiteral("entry")), QStringLiteral("5"));
        QCOMPARE(GetSetting(QStringLiteral("Compression")), QStringLiteral("1"));
        QCOMPARE(GetSetting(QStringLiteral("TempPath")),
                 QDir::homePath() + QStringLiteral("/Tarnwick"));
        QCOMPARE(GetSetting(QStringLiteral("CopyPath")),
                 Folders::FindSystemFolder(Folders::SystemFolder::Documents));
        QCOMPARE(GetSetting(QStringLiteral("ClientRoot")), QStringLiteral("Ann"));
        QCOMPARE(m_fx->window->ClientRoot()->text(), QStringLiteral("Ann"));
    }

    void confirmingAgainResetsTheFolders()
    {
        fill(accountValues());
        click("Command1");
        SaveSetting(QStringLiteral("TempPath"), QStringLiteral("/somewhere"));
        SaveSetting(QStringLiteral("CopyPath"), QStringLiteral("/elsewhere"));
        m_page->Load();
        m_page->show();
        click("Command1");
        QCOMPARE(GetSetting(QStringLiteral("TempPath")),
                 QDir::homePath() + QStringLiteral("/Tarnwick"));
        QCOMPARE(GetSetting(QStringLiteral("CopyPath")),
                 Folders::FindSystemFolder(Folders::SystemFolder::Documents));
    }

    void blankRequiredFieldStopsOk_data()
    {
        QTest::addColumn<int>("blank");
        for (int i = 1; i <= 5; ++i)
            QTest::addRow("field %d", i) << i;
    }
    void blankRequiredFieldStopsOk()
    {
        QFETCH(int, blank);
        fill(accountValues());
        value(blank)->setText(QStringLiteral("   "));
        m_page->activateWindow();
        click("Command1");
        QVERIFY(m_page->isVisible());
        QVERIFY(!HasSetting(QStringLiteral("entry")));
        QVERIFY(!HasSetting(QStringLiteral("Server")));
        QCOMPARE(QApplication::focusWidget() ? QApplication::focusWidget() : m_page->focusWidget(),
                 value(blank));
    }

    void authorAndSpecialDirectoryMayBeBlank()
    {
        QStringList values = accountValues();
        values[5].clear();
        fill(values);
        click("Command1");
        QVERIFY(!m_page->isVisible());
        QCOMPARE(GetSetting(QStringLiteral("entry")), QStringLiteral("5"));
    }

    void successfulTestFindsTheRoot()
    {
        QDir().mkpath(m_server->localPath(QStringLiteral("/public_html")));
        writeFile(m_server->localPath(QStringLiteral("/public_html/index.html")), "<html>");
        fill(accountValues());
        click("TestConnectButton");
        // Only the page's own word: the search runs quietly.
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral("Connection was successful! You are ready to proceed."));
        QCOMPARE(m_fx->ui.messages.first().title, QStringLiteral("Tarnwick"));
        QCOMPARE(GetSetting(QStringLiteral("Server")), m_server->server());
        QCOMPARE(GetSetting(QStringLiteral("User")), m_server->user());
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("public_html"));
        QCOMPARE(m_fx->window->FTPRoot()->text(), QStringLiteral("public_html"));
        QCOMPARE(m_page->Label4()->text(), QString());
        QVERIFY(!m_fx->ftp->IsConnected());
        // Closing the page now keeps what the test wrote, and saves nothing more.
        m_page->close();
        QCOMPARE(m_programEnds, 0);
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("public_html"));
        QVERIFY(!HasSetting(QStringLiteral("entry")));
        QVERIFY(!HasSetting(QStringLiteral("EmailID")));
    }

    void successfulTestWithoutARoot()
    {
        fill(accountValues());
        click("TestConnectButton");
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(
            m_fx->ui.messages.first().text,
            QStringLiteral("Connection was successful! However, the configuration of your root "
                           "direct was unsuccessful. Go to the 'Standard FTP & Control' screen "
                           "and follow the instruction under Advance Settings."));
        QVERIFY(!HasSetting(QStringLiteral("FTPRoot")));
    }

    void failedTestWritesNothing_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("text");
        QTest::newRow("wrong password") << 4 << "wrong";
        QTest::newRow("unknown server") << 1 << "no-such-host.invalid";
        QTest::newRow("wrong user") << 3 << "nobody";
    }
    void failedTestWritesNothing()
    {
        QFETCH(int, field);
        QFETCH(QString, text);
        fill(accountValues());
        value(field)->setText(text);
        click("TestConnectButton");
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral(
                     "Connection was unsuccessful! Verify the Server name, user ID and password"));
        for (const char *key : {"Server", "User", "Password", "FTPRoot", "entry"})
            QVERIFY2(!HasSetting(QString::fromLatin1(key)), key);
        QVERIFY(m_page->isVisible());
        // The page stays usable: with the right field the test passes.
        value(field)->setText(accountValues().at(field - 1));
        click("TestConnectButton");
        QVERIFY(
            m_fx->ui.messages.last().text.startsWith(QStringLiteral("Connection was successful!")));
    }

    void closingWithABlankFieldEndsTheProgram()
    {
        QStringList values = accountValues();
        values[5].clear(); // the author is looked at too
        fill(values);
        m_page->close();
        QCOMPARE(m_programEnds, 1);
    }

    void closingWithAllFilledSavesNothing()
    {
        fill(accountValues());
        m_page->close();
        QCOMPARE(m_programEnds, 0);
        QVERIFY(!m_page->isVisible());
        QVERIFY(!HasSetting(QStringLiteral("Server")));
    }

    void menuEntryOpensThePage()
    {
        // The window's SetupPrompt entry shows the installed page and waits for its answer.
        JobState state;
        frmMain window(state);
        cFTP ftp(state);
        InstallWebSpace(window, ftp, &m_fx->ui, m_fx->progress.get());
        const WebSpaceParts parts(window);
        window.txtServer()->setText(m_server->server());
        bool shown = false;
        QTimer::singleShot(100, this, [&] {
            shown = parts.page->isVisible();
            const QStringList values = accountValues();
            for (int i = 1; i <= 6; ++i)
                parts.page->SettingValue(i)->setText(values.at(i - 1));
            parts.page->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
        });
        window.findChild<QAction *>(QStringLiteral("SetupPrompt"))->trigger();
        QVERIFY(shown);
        QVERIFY(!parts.page->isVisible());
        QCOMPARE(parts.page->SettingValue(1)->text(), m_server->server());
        QCOMPARE(GetSetting(QStringLiteral("entry")), QStringLiteral("5"));
    }

    void enterMovesToTheNextField()
    {
        m_page->activateWindow();
        value(1)->setFocus();
        QTest::keyClick(value(1), Qt::Key_Return);
        QCOMPARE(m_page->focusWidget(), value(2));
        QTest::keyClick(value(6), Qt::Key_Return);
        QCOMPARE(m_page->focusWidget(), value(7));
        QVERIFY(m_page->isVisible());
    }
};

TARNWICK_TEST_MAIN(TestStartupPage)
#include "test_startuppage.moc"
