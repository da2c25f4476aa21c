#include "FtpControlTab.h"
#include "FtpTestServer.h"
#include "HelpWindow.h"
#include "JobState.h"
#include "SendFileFrame.h"
#include "Settings.h"
#include "StartupPage.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "frmAction.h"
#include "frmMain.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimer>

namespace {

// A web server for one folder: python3 -m http.server on a free loopback port.
class WebServer
{
public:
    bool start(const QString &folder)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        m_process.start(QStringLiteral("python3"),
                        {QStringLiteral("-u"), QStringLiteral("-m"), QStringLiteral("http.server"),
                         QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                         QStringLiteral("--directory"), folder, QStringLiteral("0")});
        static const QRegularExpression serving(QStringLiteral("port (\\d+)"));
        QByteArray output;
        while (m_process.waitForReadyRead(10000)) {
            output += m_process.readAll();
            const auto match = serving.match(QString::fromUtf8(output));
            if (match.hasMatch()) {
                m_port = match.captured(1).toInt();
                return true;
            }
        }
        return false;
    }
    ~WebServer()
    {
        m_process.kill();
        m_process.waitForFinished(3000);
    }
    int port() const { return m_port; }

private:
    QProcess m_process;
    int m_port = 0;
};

} // namespace

// A new user: an empty home, the Configuration page on the first start, a test that finds the
// web root below the login directory, then one file sent and opened over HTTP by its pointer.
// Everything on the real window with its real message boxes.
class TestNewUser : public QObject
{
    Q_OBJECT
private:
    QStringList m_boxes;
    int m_actionHelpTopic = 0;

    // Answers every message box that comes up: No to a question, OK otherwise; closes Take an
    // Action. Records what the boxes said.
    void answerBoxes()
    {
        // Take an Action's Help opens the main window's help at the page of the function on
        // screen; then the window is closed with the boxes.
        const auto widgets = QApplication::topLevelWidgets();
        for (QWidget *widget : widgets) {
            if (!widget->isVisible() || widget->objectName() != QLatin1String("frmAction"))
                continue;
            if (auto *help = widget->findChild<QPushButton *>(QStringLiteral("HelpButton")))
                help->click();
            if (auto *main = qobject_cast<frmMain *>(widget->parentWidget());
                main && main->helpWindow()->isVisible())
                m_actionHelpTopic = main->helpWindow()->currentTopic();
        }
        m_boxes += AnswerOpenBoxes();
    }

private slots:
    void firstStartToAPointer()
    {
        ClearTemporaryHome();
        FtpTestServer ftpServer;
        QVERIFY2(ftpServer.start(), qPrintable(ftpServer.errorString()));
        const QString site = ftpServer.localPath(QStringLiteral("/htdocs"));
        writeFile(site + QStringLiteral("/index.html"), "<html><body>Home</body></html>");
        writeFile(ftpServer.localPath(QStringLiteral("/logs/access.log")), "log");
        WebServer web;
        QVERIFY(web.start(site));
        const QString webSite = QStringLiteral("127.0.0.1:%1").arg(web.port());

        QTemporaryDir local;
        const QString file = local.filePath(QStringLiteral("hello world.txt"));
        QByteArray content;
        for (int i = 0; i < 5000; ++i)
            content += QByteArray::number(i) + ' ';
        writeFile(file, content);

        JobState state;
        cFTP ftp(state);
        frmMain window(state);
        InstallWebSpace(window, ftp);
        const WebSpaceParts parts(window);
        frmAction::Install(state, &window, [&window] { window.HelpButton_Click(); });
        parts.page->setProgramEnd([] { QFAIL("the Configuration page ended the program"); });

        QTimer answerer;
        connect(&answerer, &QTimer::timeout, this, &TestNewUser::answerBoxes);
        answerer.start(50);

        bool pageSeen = false;
        QTimer filler;
        filler.setInterval(50);
        connect(&filler, &QTimer::timeout, this, [&] {
            if (!parts.page->isVisible())
                return;
            filler.stop();
            pageSeen = true;
            const QStringList values = {ftpServer.server(),
                                        webSite,
                                        ftpServer.user(),
                                        ftpServer.password(),
                                        QStringLiteral("ann@example.org"),
                                        QStringLiteral("Ann Lee")};
            for (int i = 1; i <= 6; ++i) {
                parts.page->SettingValue(i)->setFocus();
                QTest::keyClicks(parts.page->SettingValue(i), values.at(i - 1));
            }
            parts.page->findChild<QPushButton *>(QStringLiteral("TestConnectButton"))->click();
            parts.page->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
        });
        filler.start();

        window.Load();
        window.show();
        QVERIFY(pageSeen);
        QVERIFY2(m_boxes.contains(
                     QStringLiteral("Connection was successful! You are ready to proceed.")),
                 qPrintable(m_boxes.join(QLatin1Char('|'))));
        QCOMPARE(GetSetting(QStringLiteral("FTPRoot")), QStringLiteral("htdocs"));
        QCOMPARE(GetSetting(QStringLiteral("entry")), QStringLiteral("5"));
        QCOMPARE(GetSetting(QStringLiteral("WebPage")), webSite);
        QCOMPARE(window.txtWebSite()->text(), webSite);
        QVERIFY(!QFileInfo::exists(ftpServer.localPath(QStringLiteral("/htdocs/Test_Directory"))));

        window.FunctionSelectButton_Click(2);
        parts.sendFile->FileToSend()->setText(file);
        QTest::keyClicks(parts.sendFile->sName(), QStringLiteral("For Ann."));
        QCOMPARE(parts.sendFile->sName()->text(), QStringLiteral("For Ann"));
        QApplication::clipboard()->clear();
        parts.sendFile->findChild<QPushButton *>(QStringLiteral("SendThisFileButton"))->click();
        answerer.stop();

        const QString pointer = QApplication::clipboard()->text();
        QCOMPARE(pointer, QStringLiteral("http://%1/For_Ann/hello%20world.txt").arg(webSite));
        QCOMPARE(FetchOverHttp(pointer), content);
        QVERIFY(!ftp.IsConnected());
        // Send a File's help page.
        QCOMPARE(m_actionHelpTopic, 9);
    }
};

TARNWICK_TEST_MAIN(TestNewUser)
#include "test_newuser.moc"
