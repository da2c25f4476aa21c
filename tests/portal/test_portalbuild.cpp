#include "BuildStartup.h"
#include "FtpTestServer.h"
#include "PortalBuild.h"
#include "PortalFixture.h"
#include "ScriptedUi.h"
#include "Settings.h"
#include "SettingsKeys.h"
#include "TemplateState.h"
#include "TestMain.h"
#include "TransferSteps.h"
#include "TransferUi.h"
#include "cFTP.h"

#include <QImage>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

using namespace BuildStartup;
using namespace PortalFixture;

namespace {

// The window as the job sees it: a real cFTP on a test server, the site "www.example.com".
class TestWindow final : public TransferWindow, public PortalBuildWindow
{
public:
    TestWindow(cFTP &ftp, const FtpTestServer &server)
        : m_ftp(ftp), m_account{server.server(), server.user(), server.password()}
    {
    }
    void useServer(const FtpTestServer &server)
    {
        m_account = {server.server(), server.user(), server.password()};
    }
    FtpAccount account() const override { return m_account; }
    void ReloadFTPList() override { m_ftp.GetDirectoryListing(QStringLiteral("*.*")); }
    QString UploadPath() const override { return uploadPath; }
    void showUploadPath(const QString &directory) override
    {
        uploadPath = QStringLiteral("www.example.com") + directory;
    }
    void cmdDisconnect() override
    {
        ++disconnects;
        m_ftp.CloseConnection();
    }
    bool runWithoutConnections() const override { return local; }
    void showProgressFrame(bool show) override { progress << (show ? "show" : "hide"); }
    void selectCategory(int row) override { categoryRows << row; }
    void selectPageLink(int row) override { linkRows << row; }

    QString uploadPath;
    int disconnects = 0;
    bool local = false;
    QStringList progress;
    QList<int> categoryRows;
    QList<int> linkRows;

private:
    cFTP &m_ftp;
    FtpAccount m_account;
};

void addLinks(const QString &category, int count, int bullet = 9)
{
    QVERIFY(MakeCategory(category));
    for (int i = 0; i < count; ++i) {
        const QString name = category + QStringLiteral(" link ") + QString::number(100 + i);
        QVERIFY(SavePageLink(PageLinkPath(CategoryFolder(category + ".Cat"), name),
                             {name,
                              "http://" + category.toLower() + ".example.org/" + QString::number(i),
                              qint16(bullet)}));
    }
}

QString buildPage(PortalPageResult *result = nullptr)
{
    TemplateState state;
    PageLink current;
    const PortalPageResult built = BuildPortalPage(Folders::StartupFolder(), state, current);
    if (result)
        *result = built;
    return QString::fromUtf8(readBytes(startup("Portal.htm")));
}

const QString ColumnBreak = QStringLiteral("<div class=\"column\">");

} // namespace

// The portal page from the link store and the six templates, and its way to the Portal folder
// of a real FTP server: the layout, every placeholder, the upload with its faults, the pointer.
class TestPortalBuild : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installEmptyPortal());
    }

    void columnsFollowTheRows_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::addColumn<int>("perColumn");
        QTest::newRow("1") << 1 << 1 << 20;
        QTest::newRow("19") << 19 << 1 << 20;
        QTest::newRow("20") << 20 << 2 << 20;
        QTest::newRow("39") << 39 << 2 << 20;
        QTest::newRow("40") << 40 << 2 << 21;
        QTest::newRow("60") << 60 << 2 << 31;
        QTest::newRow("5100") << 5100 << 2 << 2551;
    }
    void columnsFollowTheRows()
    {
        QFETCH(int, rows);
        QFETCH(int, columns);
        QFETCH(int, perColumn);
        const PortalLayout layout = PortalLayoutFor(rows);
        QCOMPARE(layout.PortalColumns, columns);
        QCOMPARE(layout.rowsPerColumn, perColumn);
    }

    void nineteenRowsMakeOneFullWidthColumn()
    {
        addLinks("Alpha", 9);
        addLinks("Beta", 8);
        PortalPageResult result;
        const QString html = buildPage(&result);
        QVERIFY2(result.written, qPrintable(result.message));
        QCOMPARE(result.layout.rows, 19);
        QCOMPARE(result.layout.PortalColumns, 1);
        QVERIFY(html.contains("flex-basis: calc(100% - 1.5rem)"));
        QVERIFY(html.contains("max-width: calc(420px + 2rem)"));
        QCOMPARE(html.count(ColumnBreak), 1);
        QCOMPARE(result.links, 17);
    }

    void twentyRowsMakeTwoColumnsOfHalfTheWidth()
    {
        addLinks("Alpha", 9);
        addLinks("Beta", 9);
        PortalPageResult result;
        const QString html = buildPage(&result);
        QCOMPARE(result.layout.rows, 20);
        QCOMPARE(result.layout.PortalColumns, 2);
        QVERIFY(html.contains("flex-basis: calc(50% - 1.5rem)"));
        QVERIFY(html.contains("max-width: calc(840px + 2rem)"));
        // 20 rows never pass 20 a column: no break is walked.
        QCOMPARE(html.count(ColumnBreak), 1);
    }

    void aBigCategoryStandsWholeAndTheBreakComesAfterIt()
    {
        addLinks("Alpha", 2);
        addLinks("Beta", 25);
        QVERIFY(MakeCategory("Gamma"));
        PortalPageResult result;
        const QString html = buildPage(&result);
        QCOMPARE(result.layout.rows, 30);
        QCOMPARE(result.layout.PortalColumns, 2);
        QCOMPARE(html.count(ColumnBreak), 2);
        const qsizetype lastBeta = html.lastIndexOf("Beta link 124");
        const qsizetype secondColumn = html.lastIndexOf(ColumnBreak);
        const qsizetype gamma = html.indexOf("<h2>Gamma</h2>");
        QVERIFY(lastBeta > html.indexOf("<h2>Beta</h2>"));
        QVERIFY(lastBeta < secondColumn);
        QVERIFY(secondColumn < gamma);
        // The empty Category stands with its heading only.
        QCOMPARE(html.mid(gamma).count("class=\"link\""), 0);
    }

    void sixtyRowsBreakBetweenCategoriesAtThirtyOne()
    {
        for (const char *name : {"A", "B", "C", "D", "E", "F"})
            addLinks(name, 9);
        PortalPageResult result;
        const QString html = buildPage(&result);
        QCOMPARE(result.layout.rows, 60);
        QCOMPARE(result.layout.rowsPerColumn, 31);
        // Rows 10, 20, 30, 40: the break after D; then 10, 20.
        QCOMPARE(html.count(ColumnBreak), 2);
        const qsizetype secondColumn = html.lastIndexOf(ColumnBreak);
        QVERIFY(html.indexOf("<h2>D</h2>") < secondColumn);
        QVERIFY(html.indexOf("<h2>E</h2>") > secondColumn);
    }

    void everyPlaceholderIsFilled()
    {
        SaveSetting(SettingKey::SUBackgroundColor, "#102030");
        SaveSetting(SettingKey::SUTitleColor, "#405060");
        SaveSetting(SettingKey::SUTextColor, "#708090");
        SaveSetting(SettingKey::SUPageFont, "DejaVu Serif");
        SaveSetting(QStringLiteral("Author"), "Ann Example");
        QTemporaryDir pictures;
        QImage logo(200, 100, QImage::Format_RGB32);
        logo.fill(Qt::darkBlue);
        const QString logoPath = pictures.filePath("my logo.png");
        QVERIFY(logo.save(logoPath));
        SaveSetting(SettingKey::LogoPointer, logoPath);
        SaveSetting(SettingKey::LogoPointerHeight, "50");
        SaveSetting(SettingKey::LogoPointerWidth, "100");
        QVERIFY(MakeCategory("News"));
        QVERIFY(
            SavePageLink(startup("News/Paper.ptr"), {"Paper", "http://paper.example/?a=1&b=2", 4}));

        const QString html = buildPage();
        QVERIFY(!html.contains("!!"));
        QVERIFY(html.contains("background-color: #102030;"));
        QVERIFY(html.contains("h1, h2 { color: #405060; }"));
        QVERIFY(html.contains("color: #708090;"));
        QVERIFY(html.contains("font-family: \"DejaVu Serif\""));
        QVERIFY(html.contains("<p class=\"owner\">Ann Example</p>"));
        QVERIFY(html.contains("src=\"my%20logo.png\" height=\"50\" width=\"100\""));
        QVERIFY(QFileInfo(startup("my logo.png")).isFile());
        QVERIFY(html.contains("<h2>News</h2>"));
        QCOMPARE(pageLinks(html),
                 (QList<QPair<QString, QString>>{{"Paper", "http://paper.example/?a=1&b=2"}}));
        QCOMPARE(pageBullets(html), QStringList{"Arrow4.gif"});
        QVERIFY(html.endsWith("</html>\n\n\n\n\n\n\n"));
        QCOMPARE(tidyErrors(startup("Portal.htm")), QString());
    }

    void withoutALogoItsLineIsLeftOut()
    {
        QVERIFY(MakeCategory("News"));
        const QString html = buildPage();
        QVERIFY(!html.contains("class=\"logo\""));
        QCOMPARE(tidyErrors(startup("Portal.htm")), QString());
    }

    void linksThatCantBeReadFullyStillStandOnThePage()
    {
        QVERIFY(MakeCategory("Odd"));
        QVERIFY(writeBytes(startup("Odd/Cut.ptr"), "LinkName = Cut\r\nURLName = http://cut.exa"));
        QVERIFY(writeBytes(startup("Odd/Junk.ptr"), QByteArray(300, '\x01')));
        QVERIFY(writeBytes(startup("Odd/Far.ptr"),
                           "LinkName = Far\r\nURLName = http://far/\r\nBullet = 42\r\n\r\n"));
        const QString html = buildPage();
        // A link without an address has nothing to lead to: its line is left out.
        QCOMPARE(pageLinks(html), (QList<QPair<QString, QString>>{{"Cut", "http://cut.exa"},
                                                                  {"Far", "http://far/"}}));
        // Every bullet the page names is one that exists beside it.
        for (const QString &bullet : pageBullets(html))
            QVERIFY2(QFileInfo(startup(bullet)).isFile(), qPrintable(bullet));
        QCOMPARE(pageBullets(html), (QStringList{"Arrow9.gif", "Arrow9.gif"}));
        QCOMPARE(tidyErrors(startup("Portal.htm")), QString());
    }

    void aMissingTemplateLeavesTheLastPage()
    {
        QVERIFY(MakeCategory("News"));
        QVERIFY(writeBytes(startup("Portal.htm"), "the last page"));
        QVERIFY(QFile::remove(startup("BodySub3Link.txt")));
        PortalPageResult result;
        buildPage(&result);
        QVERIFY(!result.written);
        QVERIFY(result.message.contains("BodySub3Link.txt"));
        QCOMPARE(readBytes(startup("Portal.htm")), QByteArray("the last page"));
    }

    void theBuildFollowsEveryCategoryAndLink()
    {
        addLinks("Alpha", 2);
        addLinks("Beta", 1);
        FtpTestServer server;
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        PortalBuildJob job(context, window, current);
        QVERIFY(job.buildPage().written);
        QCOMPARE(window.categoryRows, (QList<int>{0, 1, 0, 1}));
        QCOMPARE(window.linkRows, (QList<int>{0, 1, 0}));
        // The fields hold the last link.
        QCOMPARE(current.LinkName, QString("Beta link 100"));
    }

    void sentToThePortalFolderWithThePointerOnTheClipboard()
    {
        addLinks("Alpha", 3, 2);
        QTemporaryDir pictures;
        QImage logo(64, 32, QImage::Format_RGB32);
        logo.fill(Qt::red);
        QVERIFY(logo.save(pictures.filePath("logo.jpg")));
        SaveSetting(SettingKey::LogoPointer, pictures.filePath("logo.jpg"));
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        ui.answerMessage(JobUi::Answer::Yes);
        PortalBuildJob job(context, window, current);
        QCOMPARE(job.BuildStartupButton(), PortalOutcome::Sent);
        QCOMPARE(ui.messages.first().text, PortalUploadQuestion);
        const QString remote = server.localPath("/Portal");
        QCOMPARE(readBytes(remote + "/Portal.htm"), readBytes(startup("Portal.htm")));
        QVERIFY(QFileInfo(remote + "/NewW2.gif").isFile());
        for (int i = 0; i <= 14; ++i)
            QCOMPARE(readBytes(remote + "/Arrow" + QString::number(i) + ".gif"),
                     readBytes(startup("Arrow" + QString::number(i) + ".gif")));
        QCOMPARE(readBytes(remote + "/logo.jpg"), readBytes(pictures.filePath("logo.jpg")));
        const QString pointer = "http://www.example.com/Portal/Portal.htm";
        QCOMPARE(job.Pointer, pointer);
        QCOMPARE(ui.clipboardText(), pointer);
        QCOMPARE(state.CurrentPointer, pointer);
        QCOMPARE(ui.messages.last().text,
                 "The pointer, '" + pointer +
                     "' has been copied to the clipboard. Use <ctrl> v to paste into your "
                     "browser home page");
        QVERIFY(!ftp.IsConnected());
        QVERIFY(ui.stepTexts.contains("18 of 18"));
        QCOMPARE(window.progress.last(), QString("hide"));
    }

    void answeringNoKeepsThePageAndPointsAtItOnThisComputer()
    {
        // A home with a blank in its path: the local pointer keeps it.
        QTemporaryDir base;
        const QByteArray oldHome = qgetenv("HOME");
        const QString home = base.filePath("my home");
        QVERIFY(QDir().mkpath(home));
        qputenv("HOME", home.toLocal8Bit());
        QVERIFY(installEmptyPortal());
        addLinks("Alpha", 1);
        FtpTestServer server;
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        ui.answerMessage(JobUi::Answer::No);
        PortalBuildJob job(context, window, current);
        const PortalOutcome outcome = job.BuildStartupButton();
        const QString local = startup("Portal.htm");
        qputenv("HOME", oldHome);
        QCOMPARE(outcome, PortalOutcome::KeptLocal);
        QVERIFY(local.contains("my home"));
        QCOMPARE(job.Pointer, local);
        QCOMPARE(ui.clipboardText(), local);
        QVERIFY(!server.isRunning());
    }

    void yesUnderRunWithoutConnectionsGivesAnEmptyPointer()
    {
        addLinks("Alpha", 1);
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        window.local = true;
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        PortalBuildJob job(context, window, current);
        QCOMPARE(job.BuildStartupButton(), PortalOutcome::KeptLocal);
        QCOMPARE(job.Pointer, QString("http://"));
        QVERIFY(server.commands().filter("USER").isEmpty());
        QVERIFY(QFileInfo(startup("Portal.htm")).isFile());
    }

    void withoutCategoriesNothingHappens()
    {
        FtpTestServer server;
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        QCOMPARE(PortalBuildJob(context, window, current).BuildStartupButton(),
                 PortalOutcome::NoCategories);
        QVERIFY(ui.messages.isEmpty());
        QVERIFY(!QFileInfo::exists(startup("Portal.htm")));
    }

    void cancellingDuringTheArrowsKeepsThePageUpSkipsTheLogoAndStillPoints()
    {
        addLinks("Alpha", 2);
        QTemporaryDir pictures;
        QImage logo(64, 32, QImage::Format_RGB32);
        logo.fill(Qt::red);
        QVERIFY(logo.save(pictures.filePath("logo.jpg")));
        SaveSetting(SettingKey::LogoPointer, pictures.filePath("logo.jpg"));
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        ui.onProcessEvents = [&] {
            if (!ui.stepTexts.isEmpty() && ui.stepTexts.last() == "5 of 18")
                state.UserResponse = JobState::Skip;
        };
        PortalBuildJob job(context, window, current);
        QCOMPARE(job.BuildStartupButton(), PortalOutcome::Cancelled);
        const QString remote = server.localPath("/Portal");
        QCOMPARE(readBytes(remote + "/Portal.htm"), readBytes(startup("Portal.htm")));
        QVERIFY(QFileInfo(remote + "/Arrow1.gif").isFile());
        QVERIFY(!QFileInfo::exists(remote + "/Arrow3.gif"));
        QVERIFY(!QFileInfo::exists(remote + "/logo.jpg"));
        QCOMPARE(job.Pointer, QString("http://www.example.com/Portal/Portal.htm"));
        QCOMPARE(ui.clipboardText(), job.Pointer);
        QVERIFY(!ftp.IsConnected());
    }

    void aConnectionLostDuringTheUploadIsToldAndASecondPressFinishes()
    {
        addLinks("Alpha", 2);
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        bool stopped = false;
        ui.onProcessEvents = [&] {
            if (!stopped && !ui.stepTexts.isEmpty() && ui.stepTexts.last() == "3 of 17") {
                stopped = true;
                server.stop();
            }
        };
        ui.answerMessage(JobUi::Answer::Yes);
        QCOMPARE(PortalBuildJob(context, window, current).BuildStartupButton(),
                 PortalOutcome::Failed);
        QVERIFY(ui.messageTexts().contains(
            "The connection to the upload path has failed. Select to resend."));
        QVERIFY(state.CurrentPointer.isEmpty());
        QVERIFY(readBytes(startup("Portal.htm")).contains("Alpha link 101"));

        ui.onProcessEvents = nullptr;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        window.useServer(server);
        ui.answerMessage(JobUi::Answer::Yes);
        QCOMPARE(PortalBuildJob(context, window, current).BuildStartupButton(),
                 PortalOutcome::Sent);
        QCOMPARE(QDir(server.localPath("/Portal")).entryList(QDir::Files).size(), 17);
        QCOMPARE(state.CurrentPointer, QString("http://www.example.com/Portal/Portal.htm"));
    }

    void aFileCutOffOnTheWayIsSentAgain()
    {
        addLinks("Alpha", 40);
        FtpTestServer::Options options;
        options.faults = {"drop-after=100"};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        ui.answerMessage(JobUi::Answer::Yes);
        QCOMPARE(PortalBuildJob(context, window, current).BuildStartupButton(),
                 PortalOutcome::Sent);
        QCOMPARE(readBytes(server.localPath("/Portal/Portal.htm")),
                 readBytes(startup("Portal.htm")));
    }

    void aRefusedLoginIsToldAndNothingGoesUp()
    {
        addLinks("Alpha", 1);
        FtpTestServer::Options options;
        options.faults = {"refuse-login"};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        ui.answerMessage(JobUi::Answer::Yes);
        QCOMPARE(PortalBuildJob(context, window, current).BuildStartupButton(),
                 PortalOutcome::NotConnected);
        QVERIFY(ui.messages.last().text.startsWith("failed to connect, retry. ("));
        QVERIFY(state.CurrentPointer.isEmpty());
        QVERIFY(!QFileInfo::exists(server.localPath("/Portal")));
    }

    void previewOpensTheBuiltPage()
    {
        addLinks("Alpha", 1);
        FtpTestServer server;
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        TestWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        PageLink current;
        QVERIFY(PortalBuildJob(context, window, current).PreviewStartupButton());
        QCOMPARE(ui.openedUrls, QList<QUrl>{QUrl::fromLocalFile(startup("Portal.htm"))});
        QVERIFY(ui.messages.isEmpty());
        QVERIFY(server.commands().isEmpty());
    }
};

TARNWICK_TEST_MAIN(TestPortalBuild)
#include "test_portalbuild.moc"
