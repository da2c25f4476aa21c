#include "BlogMaster.h"
#include "FtpTestServer.h"
#include "ScriptedUi.h"
#include "Settings.h"
#include "TestMain.h"
#include "TransferSteps.h"
#include "TransferUi.h"
#include "WebLogFixture.h"
#include "cFTP.h"

using namespace BuildBlog;
using namespace WebLogFixture;

namespace {

class MasterWindow final : public TransferWindow, public TestBuildWindow
{
public:
    MasterWindow(cFTP &ftp, const FtpTestServer &server)
        : m_ftp(ftp), m_account{server.server(), server.user(), server.password()}
    {
        values.pages.txtWebSite = QStringLiteral("www.example.com");
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
    void cmdDisconnect() override { m_ftp.CloseConnection(); }

    QString uploadPath;

private:
    cFTP &m_ftp;
    FtpAccount m_account;
};

struct Master
{
    JobState state;
    cFTP ftp{state};
    ScriptedUi ui;
    SilentTransferUi progress;
    FtpTestServer server;
    MasterWindow window{ftp, server};
    TransferContext context{ftp, ui, state, window, progress};
};

} // namespace

// The master page of several Web Logs, and the pool of master pointers.
class TestBlogMaster : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installBlogTemplates());
        SaveSetting("MstrBGColor", "#7F7Fff");
        SaveSetting("MstrFont", "Arial");
    }

    void aWebLogWithoutTitleShowsItsNameBetweenDashes()
    {
        newWebLog("Trip Notes", "Trip Notes");
        BlogRecords untitled = newWebLog("Garden", "");
        Master m;
        m.window.local = true;
        m.ui.answerPrompt("My pages");
        BlogMasterJob job(m.context, m.window);
        QCOMPARE(job.BuildMasterBlogButton({"Garden.blg", "Trip Notes.blg"},
                                           {"Garden.blg", "Trip Notes.blg"}),
                 MasterOutcome::BuiltLocally);
        const QString page = readText(MasterPagePath());
        QVERIFY(page.contains("<h1>My pages</h1>"));
        QVERIFY(page.contains(">-Garden-</a>"));
        QVERIFY(page.contains(
            "<a href=\"http://www.example.com/Web_Log/Trip_Notes/Web_Log.htm\">Trip Notes</a>"));
        QVERIFY(page.indexOf("-Garden-") < page.indexOf(">Trip Notes<"));
        QCOMPARE(tidyErrors(MasterPagePath()), QString());
        // The record keeps its empty title.
        BlogRecords back;
        back.main.FileName = "Garden";
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.MainTitle, QString());
        QCOMPARE(m.ui.prompts.first().text, QString("Enter a title for this page"));
        QCOMPARE(m.ui.prompts.first().defaultText, QString("All Of My Pages"));
    }

    void nothingChosenIsToldAndTheNextBuildStartsAfresh()
    {
        newWebLog("One", "One");
        newWebLog("Two", "Two");
        Master m;
        m.window.local = true;
        m.ui.answerPrompt("Mine");
        QCOMPARE(
            BlogMasterJob(m.context, m.window).BuildMasterBlogButton({"One.blg", "Two.blg"}, {}),
            MasterOutcome::NothingChosen);
        QCOMPARE(m.ui.messages.size(), 1);
        QCOMPARE(m.ui.messages.first().text,
                 QString("Need to select the items to put on this page."));
        m.ui.answerPrompt("Mine again");
        QCOMPARE(BlogMasterJob(m.context, m.window)
                     .BuildMasterBlogButton({"One.blg", "Two.blg"}, {"Two.blg"}),
                 MasterOutcome::BuiltLocally);
        const QString page = readText(MasterPagePath());
        QCOMPARE(page.count("<!DOCTYPE html>"), 1);
        QVERIFY(page.contains("<h1>Mine again</h1>"));
        QVERIFY(!page.contains(">One<"));
        QVERIFY(page.contains(">Two<"));
    }

    void anEmptyTitleOrNoWebLogsDoesNothing()
    {
        newWebLog("One", "One");
        Master m;
        m.window.local = true;
        m.ui.answerPrompt("||Blank||");
        QCOMPARE(BlogMasterJob(m.context, m.window).BuildMasterBlogButton({"One.blg"}, {"One.blg"}),
                 MasterOutcome::NoTitle);
        m.ui.answerPrompt("Title");
        QCOMPARE(BlogMasterJob(m.context, m.window).BuildMasterBlogButton({}, {}),
                 MasterOutcome::NoTitle);
        QVERIFY(!QFileInfo(MasterPagePath()).exists());
        QVERIFY(m.ui.messages.isEmpty());
    }

    void aCancelledTitlePromptBuildsAPageTitledSkip()
    {
        newWebLog("One", "One");
        Master m;
        m.window.local = true;
        m.ui.answerPrompt("!!Skip!!");
        BlogMasterJob job(m.context, m.window);
        QCOMPARE(job.BuildMasterBlogButton({"One.blg"}, {"One.blg"}), MasterOutcome::BuiltLocally);
        QCOMPARE(job.MasterTitle, QString("!!Skip!!"));
        const QString page = readText(MasterPagePath());
        // The line that holds the title is dropped; the Web Log's link is there.
        QVERIFY(!page.contains("Skip"));
        QVERIFY(page.contains(">One</a>"));
    }

    void theMasterPageGoesUpBesideTheWebLogs()
    {
        Master m;
        QVERIFY2(m.server.start(), qPrintable(m.server.errorString()));
        m.window.useServer(m.server);
        newWebLog("One", "First");
        newWebLog("Two", "Second");
        int takeActions = 0;
        m.state.ShowTakeAction = [&](JobUi &, JobState &) { ++takeActions; };
        m.ui.answerPrompt("All Of My Pages");
        BlogMasterJob job(m.context, m.window);
        QCOMPARE(job.BuildMasterBlogButton({"One.blg", "Two.blg"}, {"One.blg", "Two.blg"}),
                 MasterOutcome::Sent);
        QCOMPARE(readText(m.server.localPath("/Web_Log/MainPage.htm")), readText(MasterPagePath()));
        QCOMPARE(job.Pointer, QString("http://www.example.com/Web_Log/MainPage.htm"));
        QCOMPARE(m.state.CurrentPointer, job.Pointer);
        QCOMPARE(takeActions, 1);
        QVERIFY(!m.ftp.IsConnected());
    }

    void thePoolKeepsAPointerAfterItsWebLogLostIt()
    {
        BlogRecords first = newWebLog("First", "First");
        addPointer(first, "News", "Daily", "http://example.org/daily");
        QVERIFY(QFile::remove(PointerRecordPath("First", "News - Daily")));
        QCOMPARE(MasterPointerList(), QStringList{"News - Daily.ptr"});

        // Copied into another Web Log, it replaces a pointer of the same name.
        BlogRecords second = newWebLog("Second", "Second");
        addPointer(second, "News", "Daily", "http://old.example.org/");
        QVERIFY(writeText(Folders::MasterPointerFolder() + "/News - Daily.ptr",
                          "FileName = News - Daily\r\nCategory = News\r\nDisplayName = Daily\r\n"
                          "URL = http://example.org/daily\r\n"));
        QCOMPARE(CopyMasterPointers({"News - Daily.ptr"}, "Second"), 1);
        second.pointer.FileName = "News - Daily";
        QVERIFY(LoadBlogPointer(second));
        QCOMPARE(second.pointer.URL, QString("http://example.org/daily"));
    }
};

TARNWICK_TEST_MAIN(TestBlogMaster)
#include "test_blogmaster.moc"
