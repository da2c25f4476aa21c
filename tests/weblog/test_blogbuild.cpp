#include "BlogBuild.h"
#include "BlogMaster.h"
#include "FtpTestServer.h"
#include "ScriptedUi.h"
#include "Settings.h"
#include "TestMain.h"
#include "TransferSteps.h"
#include "TransferUi.h"
#include "WebLogFixture.h"
#include "cFTP.h"

#include <QTemporaryDir>

using namespace BuildBlog;
using namespace WebLogFixture;

namespace {

// The window as the build sees it: a real cFTP on a test server, the site "www.example.com".
class UploadWindow final : public TransferWindow, public TestBuildWindow
{
public:
    UploadWindow(cFTP &ftp, const FtpTestServer &server)
        : m_ftp(ftp), m_account{server.server(), server.user(), server.password()}
    {
        values.pages.txtWebSite = QStringLiteral("www.example.com");
        values.pages.sizingThreads = 2;
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
    void showUploadFiles(const QStringList &files) override
    {
        uploadListShown = true;
        uploadList = files;
    }
    void showSections() override { uploadListShown = false; }
    void selectUploadFile(int row) override { uploadRows << row; }

    QString uploadPath;
    int disconnects = 0;
    bool uploadListShown = false;
    QStringList uploadList;
    QList<int> uploadRows;

private:
    cFTP &m_ftp;
    FtpAccount m_account;
};

} // namespace

// Build Web Log against a real FTP server: the pages, the pictures and the feed go to
// <BlogDirName>/<name> on the web space and the pointer to the page ends on the clipboard;
// cancels, a lost connection and Run Without Connections.
class TestBlogBuild : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir pictures;

    BlogRecords tripNotes()
    {
        BlogRecords records = newWebLog("Trip Notes", "Trip Notes");
        makePhoto(pictures.filePath("Harbour.jpg"), Qt::darkCyan, 800, 600);
        addSection(records, "Day one", "We <b>arrived</b>.", "0", pictures.filePath("Harbour.jpg"));
        addSection(records, "Day two", "Rain all day.", "1");
        addPointer(records, "Travel", "Ferries", "http://ferries.example.org/");
        addComment(records, "Anna", "Lovely pictures!");
        return records;
    }

private slots:
    void init()
    {
        ClearTemporaryHome();
        QVERIFY(installBlogTemplates());
    }

    void theWebLogGoesUpAndItsPointerIsOnTheClipboard()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        window.values.pages.BlogDirName = "My Logs";
        int takeActions = 0;
        state.ShowTakeAction = [&](JobUi &, JobState &) { ++takeActions; };
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();

        BlogBuildJob job(records, context, window);
        QCOMPARE(job.BlogBuild(), BlogBuildOutcome::Sent);
        QCOMPARE(window.blogDirName, QString("My_Logs"));
        const QString folder = server.localPath("/My_Logs/Trip_Notes");
        for (const char *name : {"Web_Log.htm", "Comments.htm", "feed.xml", "Sml_Harbour.jpg"}) {
            QCOMPARE(readText(folder + "/" + name),
                     readText(WebLogFolder("Trip Notes") + "/" + QString(name)));
        }
        // Only pages, pictures and the feed go up: no records.
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 4);
        const QString pointer = "http://www.example.com/My_Logs/Trip_Notes/Web_Log.htm";
        QCOMPARE(job.Pointer, pointer);
        QCOMPARE(ui.clipboardText(), pointer);
        QCOMPARE(state.CurrentPointer, pointer);
        QCOMPARE(takeActions, 1);
        QVERIFY(ui.statusTexts.contains("Uploading files"));
        QVERIFY(ui.stepTexts.contains("1 of 4"));
        QCOMPARE(window.uploadRows, QList<int>({0, 1, 2, 3}));
        QCOMPARE(window.uploadList,
                 QStringList({"Comments.htm", "Sml_Harbour.jpg", "Web_Log.htm", "feed.xml"}));
        QVERIFY(!window.uploadListShown);
        QVERIFY(window.caption.startsWith("Connected to " + server.server() + " as tarnwick at "));
        QVERIFY(!ftp.IsConnected());
        // The folder on the web space is kept in the main record.
        BlogRecords back;
        back.main.FileName = "Trip Notes";
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.DirectorySavedTo, QString("My_Logs"));
        QCOMPARE(GetSetting("Server"), server.server());

        // A second press sends the same again into the same folder.
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::Sent);
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 4);
    }

    void withoutAWebLogNothingIsBuilt()
    {
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        FtpTestServer server;
        UploadWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records;
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::NoWebLog);
        QCOMPARE(ui.messageTexts(), QStringList{"Select a file to build before starting a build."});
        QCOMPARE(window.progress.last(), QString("hide"));
    }

    void runWithoutConnectionsLeavesThePagesOnTheDiskAndTouchesNoServer()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        window.local = true;
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(),
                 BlogBuildOutcome::BuiltLocally);
        QVERIFY(QFileInfo(WebLogFolder("Trip Notes") + "/Web_Log.htm").isFile());
        QVERIFY(QFileInfo(WebLogFolder("Trip Notes") + "/Comments.htm").isFile());
        QCOMPARE(server.commands().size(), 0);
        QVERIFY(ui.clipboardText().isEmpty());
        QVERIFY(!window.busy);
    }

    void cancellingBetweenFilesKeepsWhatWentUpAndMakesNoPointer()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();
        ui.onProcessEvents = [&] {
            if (!ui.stepTexts.isEmpty() && ui.stepTexts.last() == "2 of 4")
                state.UploadCancelled = true;
        };
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::Cancelled);
        const QStringList sent =
            QDir(server.localPath("/Web_Log/Trip_Notes")).entryList(QDir::Files);
        QCOMPARE(sent.size(), 2);
        QVERIFY(state.CurrentPointer.isEmpty());
        QVERIFY(ui.clipboardText().isEmpty());
        QVERIFY(!ftp.IsConnected());
        QCOMPARE(window.progress.last(), QString("hide"));
    }

    void aConnectionLostDuringTheUploadIsToldAndASecondPressFinishes()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();
        bool stopped = false;
        ui.onProcessEvents = [&] {
            if (!stopped && !ui.stepTexts.isEmpty() && ui.stepTexts.last() == "2 of 4") {
                stopped = true;
                server.stop();
            }
        };
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::Failed);
        QVERIFY(ui.messageTexts().contains(UploadPathFailedMessage));
        QVERIFY(state.CurrentPointer.isEmpty());
        // The pages stay on this computer.
        QVERIFY(readText(WebLogFolder("Trip Notes") + "/Web_Log.htm").contains("Day one"));
        QVERIFY(QFileInfo(WebLogFolder("Trip Notes") + "/Sml_Harbour.jpg").isFile());

        // The server is back (on a new port); a second press finishes the job.
        ui.onProcessEvents = nullptr;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        window.useServer(server);
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::Sent);
        QCOMPARE(QDir(server.localPath("/Web_Log/Trip_Notes")).entryList(QDir::Files).size(), 4);
        QCOMPARE(state.CurrentPointer,
                 QString("http://www.example.com/Web_Log/Trip_Notes/Web_Log.htm"));
    }

    void aFileCutOffOnTheWayIsSentAgain()
    {
        FtpTestServer::Options options;
        options.faults = {"drop-after=100"};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::Sent);
        const QString folder = server.localPath("/Web_Log/Trip_Notes");
        QCOMPARE(readText(folder + "/Comments.htm"),
                 readText(WebLogFolder("Trip Notes") + "/Comments.htm"));
        QCOMPARE(QDir(folder).entryList(QDir::Files).size(), 4);
    }

    void aRefusedLoginIsToldAndNothingGoesUp()
    {
        FtpTestServer::Options options;
        options.faults = {"refuse-login"};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(),
                 BlogBuildOutcome::NotConnected);
        QCOMPARE(ui.messages.size(), 1);
        QVERIFY(ui.messages.first().text.startsWith("failed to connect, retry. ("));
        QVERIFY(QFileInfo(WebLogFolder("Trip Notes") + "/Web_Log.htm").isFile());
        QCOMPARE(window.progress.last(), QString("hide"));
    }

    void aWebLogDirectoryThatIsAFileStopsTheJob()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QVERIFY(writeText(server.localPath("/Web_Log"), "a file in the way"));
        JobState state;
        cFTP ftp(state);
        ScriptedUi ui;
        SilentTransferUi progress;
        UploadWindow window(ftp, server);
        TransferContext context{ftp, ui, state, window, progress};
        BlogRecords records = tripNotes();
        QCOMPARE(BlogBuildJob(records, context, window).BlogBuild(), BlogBuildOutcome::Failed);
        QVERIFY(state.CurrentPointer.isEmpty());
        QVERIFY(!ftp.IsConnected());
        QCOMPARE(readText(server.localPath("/Web_Log")), QString("a file in the way"));
    }
};

TARNWICK_TEST_MAIN(TestBlogBuild)
#include "test_blogbuild.moc"
