#include "FtpControlTab.h"
#include "Settings.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"

#include <QCheckBox>
#include <QDirIterator>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTreeWidget>

// The root search against a real server: which directory it takes, what it writes, what it
// says, and what it leaves on the server.
class TestRootSearch : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<FtpTestServer> m_server;
    std::unique_ptr<WebSpaceFixture> m_fx;
    FtpControlTab *m_tab = nullptr;

    QString home(const QString &remote) const { return m_server->localPath(remote); }

    void makeTab(FtpTestServer &server)
    {
        m_fx = WebSpaceFixture::fresh(server, false);
        m_tab = m_fx->tab();
        m_fx->showFunction(5);
        m_fx->fillAccount(server);
    }
    void search()
    {
        m_tab->findChild<QPushButton *>(QStringLiteral("SearchForRootButton"))->click();
    }
    QStringList leftovers(const QString &root) const
    {
        QStringList found;
        QDirIterator it(root, {QStringLiteral("Test_Directory")}, QDir::Dirs,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            found.append(QDir(root).relativeFilePath(it.next()));
        found.sort();
        return found;
    }

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }

    void init()
    {
        clearFolder(m_server->homePath());
        makeTab(*m_server);
        SaveSetting(QStringLiteral("FTPRoot"), QStringLiteral("before"));
        m_fx->window->FTPRoot()->setText(QStringLiteral("before"));
    }

    void cleanup()
    {
        m_tab = nullptr;
        m_fx.reset();
    }

    void homePageAtTheLoginDirectory()
    {
        writeFile(home("/index.htm"), "<html>");
        QDir().mkpath(home("/public_html"));
        writeFile(home("/public_html/index.html"), "<html>");
        search();
        QVERIFY(m_tab->RootFound());
        QCOMPARE(m_fx->window->FTPRoot()->text(), QString());
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QString());
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().text, QStringLiteral("The Root was Found! '/'"));
        QVERIFY(m_tab->AdvanceSettingFrame()->isVisible());
        QVERIFY(!m_fx->ftp->IsConnected());
        // The login directory is never probed.
        QCOMPARE(m_server->countCommands(QStringLiteral("MKD")), 0);
    }

    void breadthFirstFindsTheShallowestWritableRoot()
    {
        QDir().mkpath(home("/a/deep"));
        writeFile(home("/a/deep/index.html"), "<html>");
        QDir().mkpath(home("/b"));
        writeFile(home("/b/Default.HTM"), "<html>");
        writeFile(home("/readme.txt"), "x");
        search();
        QVERIFY(m_tab->RootFound());
        QCOMPARE(m_fx->ui.messages.first().text, QStringLiteral("The Root was Found! '/b'"));
        QCOMPARE(m_fx->window->FTPRoot()->text(), QStringLiteral("b"));
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("b"));
        QCOMPARE(leftovers(m_server->homePath()), QStringList());
    }

    void nestedRootGivesThePathWithoutItsFirstSlash()
    {
        QDir().mkpath(home("/domains/example.org/public_html"));
        writeFile(home("/domains/example.org/public_html/index.php.default.htm"), "x");
        search();
        QVERIFY(m_tab->RootFound());
        QCOMPARE(m_fx->window->FTPRoot()->text(),
                 QStringLiteral("domains/example.org/public_html"));
    }

    void substringMatch_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("found");
        QTest::newRow("longer name") << "old_default.htm.bak" << true;
        QTest::newRow("upper case") << "INDEX.HTML" << true;
        QTest::newRow("aspx") << "Default.aspx" << true;
        QTest::newRow("other page") << "home.html" << false;
    }
    void substringMatch()
    {
        QFETCH(QString, name);
        QFETCH(bool, found);
        QDir().mkpath(home("/www"));
        writeFile(home("/www/") + name, "x");
        search();
        QCOMPARE(m_tab->RootFound(), found);
    }

    void nothingTickedFindsNothing()
    {
        writeFile(home("/index.html"), "<html>");
        for (int i = 0; i < 6; ++i)
            m_tab->findChild<QCheckBox *>(QStringLiteral("RootSearchCk_%1").arg(i))
                ->setChecked(false);
        search();
        QVERIFY(!m_tab->RootFound());
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(
            m_fx->ui.messages.first().text,
            QStringLiteral("Root not found. Enter text in the optional search for root file in "
                           "the advance settings of the 'Standard FTP & Control' Window and "
                           "re-run this search."));
        QCOMPARE(m_fx->window->FTPRoot()->text(), QStringLiteral("before"));
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("before"));
    }

    void alternativeNameIsMatchedInItsOwnCase()
    {
        QDir().mkpath(home("/x"));
        writeFile(home("/x/home.PHP"), "x");
        QDir().mkpath(home("/y"));
        writeFile(home("/y/Start.php"), "x");
        for (int i = 0; i < 6; ++i)
            m_tab->findChild<QCheckBox *>(QStringLiteral("RootSearchCk_%1").arg(i))
                ->setChecked(false);
        m_tab->findChild<QLineEdit *>(QStringLiteral("AlternateRootTxt"))
            ->setText(QStringLiteral(" Start.php "));
        search();
        QVERIFY(m_tab->RootFound());
        QCOMPARE(m_fx->window->FTPRoot()->text(), QStringLiteral("y"));
    }

    void quietFormShowsNoMessage()
    {
        QDir().mkpath(home("/site"));
        writeFile(home("/site/index.html"), "x");
        QLabel label4;
        QVERIFY(m_tab->SearchForRoot(true, &label4));
        QVERIFY(m_fx->ui.messages.isEmpty());
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("site"));
        clearFolder(m_server->homePath());
        QVERIFY(!m_tab->SearchForRoot(true, &label4));
        QVERIFY(m_fx->ui.messages.isEmpty());
    }

    void failedLoginSaysSo()
    {
        m_fx->window->txtPassword()->setText(QStringLiteral("wrong"));
        search();
        QVERIFY(!m_tab->RootFound());
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QCOMPARE(m_fx->ui.messages.first().text, QStringLiteral("Failed to connect."));
        QVERIFY(m_tab->AdvanceSettingFrame()->isVisible());
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("before"));
    }

    void probeDirectoryIsLeftOnlyWhenItCantBeRemoved()
    {
        // An account that may make directories but not remove them.
        FtpTestServer::Options options;
        options.permissions = QStringLiteral("elrmw");
        FtpTestServer noRemove(options);
        QVERIFY2(noRemove.start(), qPrintable(noRemove.errorString()));
        QDir().mkpath(noRemove.localPath(QStringLiteral("/one/two")));
        makeTab(noRemove);
        search();
        QVERIFY(!m_tab->RootFound());
        QCOMPARE(leftovers(noRemove.homePath()),
                 (QStringList{QStringLiteral("one/Test_Directory"),
                              QStringLiteral("one/two/Test_Directory")}));
    }

    void readOnlyAccountFindsOnlyTheLoginDirectory()
    {
        // No directory below the login can be written to: each is "Fixed" and passed over,
        // however its files are named.
        FtpTestServer::Options options;
        options.permissions = QStringLiteral("elr");
        FtpTestServer readOnly(options);
        QVERIFY2(readOnly.start(), qPrintable(readOnly.errorString()));
        QDir().mkpath(readOnly.localPath(QStringLiteral("/public_html/sub")));
        writeFile(readOnly.localPath(QStringLiteral("/public_html/index.html")), "x");
        writeFile(readOnly.localPath(QStringLiteral("/public_html/sub/index.html")), "x");
        makeTab(readOnly);
        search();
        QVERIFY(!m_tab->RootFound());
        // Both directories were walked into and probed.
        QCOMPARE(readOnly.countCommands(QStringLiteral("MKD")), 2);
    }

    void readOnlyDirectoryIsPassedOverForAWritableOneBelow()
    {
        // public_html holds a home page but can't be written to; its sub-directory www can.
        QTemporaryDir served;
        QDir().mkpath(served.filePath(QStringLiteral("public_html/www")));
        writeFile(served.filePath(QStringLiteral("public_html/index.html")), "x");
        writeFile(served.filePath(QStringLiteral("public_html/www/index.html")), "x");
        QProcess server;
        server.start(FtpTestServer::pythonProgram(),
                     {QStringLiteral(WEBSPACE_TEST_DIR "/permserver.py"), QStringLiteral("--home"),
                      served.path(), QStringLiteral("--perm"), QStringLiteral("public_html=elr"),
                      QStringLiteral("--perm"), QStringLiteral("public_html/www=elradfmwMT")});
        QByteArray output;
        static const QRegularExpression portLine(QStringLiteral("PORT (\\d+)"));
        QRegularExpressionMatch match;
        while (!match.hasMatch() && server.waitForReadyRead(10000)) {
            output += server.readAllStandardOutput();
            match = portLine.match(QString::fromUtf8(output));
        }
        QVERIFY2(match.hasMatch(), output.constData());
        m_fx->window->txtServer()->setText(QStringLiteral("127.0.0.1:") + match.captured(1));
        m_fx->window->txtUser()->setText(QStringLiteral("tarnwick"));
        m_fx->window->txtPassword()->setText(QStringLiteral("secret"));
        search();
        server.kill();
        server.waitForFinished(3000);
        QVERIFY(m_tab->RootFound());
        QCOMPARE(m_fx->ui.messages.first().text,
                 QStringLiteral("The Root was Found! '/public_html/www'"));
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("public_html/www"));
    }

    void treeWiderThanTheTableEndsNotFound()
    {
        // More directories than rows: the walk keeps its 1000 rows, finds no home page among
        // them and ends with the not-found message; the window stays usable.
        for (int i = 0; i < RootSearch::MaxRows + 5; ++i)
            QDir().mkpath(home(QStringLiteral("/d%1").arg(i, 4, 10, QLatin1Char('0'))));
        search();
        QVERIFY(!m_tab->RootFound());
        QCOMPARE(m_fx->ui.messages.size(), 1);
        QVERIFY(m_fx->ui.messages.first().text.startsWith(QStringLiteral("Root not found.")));
        QVERIFY(!m_fx->ftp->IsConnected());
        QCOMPARE(leftovers(m_server->homePath()), QStringList());
    }
};

TARNWICK_TEST_MAIN(TestRootSearch)
#include "test_rootsearch.moc"
