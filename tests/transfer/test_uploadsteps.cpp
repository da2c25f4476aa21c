#include "DialogTransferUi.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "Settings.h"
#include "TestMain.h"
#include "TransferEngine.h"
#include "TransferTestSupport.h"
#include "dlgFTP.h"
#include "frmErrUpload.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace {

int openFileDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd"))
                   .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                   .size());
}

qint64 residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

template <typename T> T *visibleTopLevel()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *found = qobject_cast<T *>(widget); found && found->isVisible())
            return found;
    }
    return nullptr;
}

// Presses dlgFTP's Cancel and answers Yes to its question.
void pressCancelAndConfirm()
{
    dlgFTP *dialog = visibleTopLevel<dlgFTP>();
    if (!dialog)
        return;
    QTimer::singleShot(20, [] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            QCOMPARE(box->windowTitle(), QStringLiteral("Need to know..."));
            QCOMPARE(box->text(), QStringLiteral("Are you sure you want to cancel the upload?"));
            box->button(QMessageBox::Yes)->click();
        }
    });
    dialog->findChild<QPushButton *>(QStringLiteral("Command1"))->click();
}

} // namespace

// Counts the turns of the event loop (a timer that asks for one every 10 ms) while measuring,
// and how long the measuring lasted: the loop was served throughout when it turned at least
// once for every 100 ms, however loaded the machine.
struct LoopWatch
{
    int ticks = 0;
    bool measuring = true;
    QElapsedTimer clock;
    qint64 measured = 0;
    QTimer ticker;
    LoopWatch()
    {
        clock.start();
        QObject::connect(&ticker, &QTimer::timeout, [this] {
            if (!measuring)
                return;
            ++ticks;
            measured = clock.elapsed();
        });
        ticker.start(10);
    }
    void stop()
    {
        if (measuring)
            measured = clock.elapsed();
        measuring = false;
    }
    bool servedThroughout() const { return ticks >= 5 && ticks * 100 >= measured; }
    QString report() const { return QStringLiteral("%1 turns in %2 ms").arg(ticks).arg(measured); }
};

class TestUploadSteps : public QObject
{
    Q_OBJECT
    // The job-wide state of this test program, as the program makes one for its run.
    JobState m_state;

private:
    QTemporaryDir m_local;

    struct Job
    {
        cFTP ftp;
        ScriptedUi ui;
        TestTransferWindow window;
        DialogTransferUi progress;
        TransferContext context;
        Job(JobState &state, const FtpTestServer &server, int errorCloseMs = 30)
            : ftp(state), window(ftp, server),
              progress(state), context{ftp, ui, state, window, progress}
        {
            progress.setErrorAutoCloseMs(errorCloseMs);
        }
        bool connect(const FtpTestServer &server)
        {
            return ftp.OpenConnection(server.server(), server.user(), server.password());
        }
    };

    QString localFile(const QString &name, const QByteArray &content)
    {
        const QString path = m_local.filePath(name);
        WriteTestFile(path, content);
        return path;
    }

    static int errorFormsSeen(QTimer &poll, int &count)
    {
        QObject::connect(&poll, &QTimer::timeout, [&count] {
            static QPointer<frmErrUpload> last;
            frmErrUpload *form = visibleTopLevel<frmErrUpload>();
            if (form && form != last) {
                last = form;
                ++count;
            }
        });
        poll.start(5);
        return count;
    }

private slots:
    void init()
    {
        m_state.reset();
        ClearTemporaryHome();
    }

    void uploadReplacesTheOldCopy()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        WriteTestFile(server.localPath(QStringLiteral("/Send/report.txt")),
                      "old and longer content");
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QVERIFY(job.ftp.SetFTPDirectory(QStringLiteral("Send")));
        job.window.showUploadPath(QStringLiteral("/Send"));
        QVERIFY(UploadFileToFTP(job.context, localFile(QStringLiteral("report.txt"), "new")));
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("/Send/report.txt"))),
                 QByteArray("new"));
        const QStringList commands = server.commands();
        QVERIFY(commands.indexOf(QStringLiteral("DELE report.txt")) >= 0);
        QVERIFY(commands.indexOf(QStringLiteral("DELE report.txt")) <
                commands.indexOf(QStringLiteral("STOR ") +
                                 TransferEngine::TemporaryName(QStringLiteral("report.txt"))));
        QCOMPARE(m_state.LastUploadPath, QStringLiteral("http://www.example.com/Send"));
        QVERIFY(!job.progress.dialog());
    }

    void awkwardNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("blanks") << "my holiday photo.jpg";
        QTest::newRow("non-ascii") << QString::fromUtf8("Grüße aus Köln – ñ.txt");
        QTest::newRow("leading dash") << "-rf.htm";
        QTest::newRow("no dot") << "README";
        QTest::newRow("percent and hash") << "100% #1;type=a.txt";
    }

    void awkwardNames()
    {
        QFETCH(QString, name);
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QDir().mkpath(server.localPath(QStringLiteral("/a dir")));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QVERIFY(job.ftp.SetFTPDirectory(QStringLiteral("a dir")));
        const QByteArray content = TestPattern(70000);
        QVERIFY(UploadFileToFTP(job.context, localFile(name, content)));
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("/a dir/") + name)), content);
        QCOMPARE(QDir(server.localPath(QStringLiteral("/a dir"))).entryList(QDir::Files),
                 QStringList{name});
        job.ftp.GetDirectoryListing(QStringLiteral("*.*"));
        QVERIFY(job.ftp.Directory().Item(name));
        QFile::remove(m_local.filePath(name));
        QVERIFY(DownloadFileToFTP(job.context, m_local.filePath(name)));
        QCOMPARE(ReadTestFile(m_local.filePath(name)), content);
    }

    void aJobLogsInOnceForItsFiles_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("logins");
        QTest::newRow("a quiet server") << QString() << 1;
        QTest::newRow("dropped after the 7th file") << "drop-after-files=7" << 2;
        QTest::newRow("closed for idling after the 7th file") << "idle-421-after-files=7" << 2;
    }

    void aJobLogsInOnceForItsFiles()
    {
        QFETCH(QString, fault);
        QFETCH(int, logins);
        FtpTestServer::Options options;
        if (!fault.isEmpty())
            options.faults = {fault};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QCOMPARE(ConnectForJob(job.context, {}), JobConnection::Connected);
        QCOMPARE(server.logins(), 1);
        int forms = 0;
        QTimer poll;
        errorFormsSeen(poll, forms);
        QStringList files;
        QList<QByteArray> contents;
        for (int i = 1; i <= 20; ++i) {
            contents << TestPattern(20000 + i * 997);
            files << localFile(QStringLiteral("file_%1.bin").arg(i, 2, 10, QLatin1Char('0')),
                               contents.last());
        }
        QVERIFY(SendJobFiles(job.context, files));
        // The directory work and the files went over the one login (and one more where the server
        // ended the connection after the 7th file).
        QCOMPARE(server.logins(), logins);
        QCOMPARE(job.ftp.Logins(), logins);
        QCOMPARE(job.ftp.Transfers().Logins(), 0);
        for (int i = 0; i < 20; ++i)
            QCOMPARE(ReadTestFile(server.localPath(QFileInfo(files[i]).fileName())), contents[i]);
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files).size(), 20);
        // One attempt per file, and nothing said.
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 20);
        QCOMPARE(forms, 0);
        QVERIFY(job.ftp.Transfers().IsOpen());
        // The job's end closes its connection.
        DisconnectForJob(job.context);
        QVERIFY(!job.ftp.Transfers().IsOpen());
        QVERIFY(!job.ftp.IsConnected());
        QCOMPARE(server.countCommands(QStringLiteral("QUIT")), 1);
    }

    void theNextJobLogsInAnew()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        const QString file = localFile(QStringLiteral("again.txt"), "again");
        for (int run = 1; run <= 2; ++run) {
            QCOMPARE(ConnectForJob(job.context, {}), JobConnection::Connected);
            QVERIFY(SendJobFiles(job.context, {file, file}));
            DisconnectForJob(job.context);
            QCOMPARE(server.logins(), run);
        }
    }

    void droppedConnectionIsRetriedWhole()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("drop-after=200000")};
        options.times = 1;
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        int forms = 0;
        QTimer poll;
        errorFormsSeen(poll, forms);
        const QByteArray content = TestPattern(2 * 1024 * 1024);
        QVERIFY(UploadFileToFTP(job.context, localFile(QStringLiteral("cut.bin"), content)));
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("cut.bin"))), content);
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 2);
        QCOMPARE(forms, 1);
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files),
                 QStringList{QStringLiteral("cut.bin")});
    }

    void droppedEveryTimeLeavesNoCutFile()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("drop-after=100000")};
        options.times = 3;
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        WriteTestFile(server.localPath(QStringLiteral("page.htm")), "old copy");
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QVERIFY(!UploadFileToFTP(job.context,
                                 localFile(QStringLiteral("page.htm"), TestPattern(1024 * 1024))));
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 3);
        // Neither a partial file under the name nor the old copy nor a temporary one is left.
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files), QStringList());
        QVERIFY(!m_state.skipped());
    }

    void refusedStoreIsTriedThriceAndTheJobGoesOn_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("reply");
        QTest::newRow("550") << "stor-550"
                             << "550 Permission denied.";
        QTest::newRow("552") << "stor-552"
                             << "552 Requested file action aborted. Exceeded storage allocation.";
    }

    void refusedStoreIsTriedThriceAndTheJobGoesOn()
    {
        QFETCH(QString, fault);
        QFETCH(QString, reply);
        FtpTestServer::Options options;
        options.faults = {fault};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QStringList texts;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (frmErrUpload *form = visibleTopLevel<frmErrUpload>()) {
                const QString text = form->findChild<QLabel *>(QStringLiteral("Label1"))->text();
                if (texts.isEmpty() || texts.size() < server.countCommands(QStringLiteral("STOR")))
                    texts << text;
            }
        });
        poll.start(5);
        const QStringList files = {localFile(QStringLiteral("one.txt"), "1"),
                                   localFile(QStringLiteral("two.txt"), "2")};
        QVERIFY(SendJobFiles(job.context, files));
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 6);
        QVERIFY(!texts.isEmpty());
        for (const QString &text : texts)
            QCOMPARE(text, reply);
        QCOMPARE(job.ui.stepTexts,
                 (QStringList{QStringLiteral("Currently loading section 1 of 2"),
                              QStringLiteral("Currently loading section 2 of 2")}));
        QCOMPARE(job.ui.statusTexts.first(), QStringLiteral("Sending Files"));
    }

    void wrongPasswordAfterConnectGivesThreeAttemptsPerFile()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        job.window.m_account.password = QStringLiteral("changed");
        int forms = 0;
        QTimer poll;
        errorFormsSeen(poll, forms);
        const int logins = server.countCommands(QStringLiteral("PASS"));
        QVERIFY(SendJobFiles(job.context, {localFile(QStringLiteral("a.txt"), "a"),
                                           localFile(QStringLiteral("b.txt"), "b")}));
        QCOMPARE(server.countCommands(QStringLiteral("PASS")) - logins, 6);
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 0);
        // A refused login is not reported by the form.
        QCOMPARE(forms, 0);
    }

    void wrongPasswordStopsTheJobAtConnect()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        job.window.m_account.password = QStringLiteral("wrong");
        QString failure;
        QCOMPARE(ConnectForJob(job.context, {}, &failure), JobConnection::Failed);
        QCOMPARE(failure,
                 QStringLiteral("failed to connect, retry. (Request to connect and login to an FTP "
                                "server could not be completed because the supplied password is "
                                "incorrect.  Message: 12014 error code: InternetConnect)"));
        QVERIFY(!HasSetting(QStringLiteral("Password")));
    }

    void cancelDuringTheFirstFileSendsNoFurtherFile()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-after=300000")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        // Larger than what the connection's buffers hold, so the sender still waits on the
        // stalled server when the cancel comes.
        const QStringList files = {
            localFile(QStringLiteral("first.bin"), TestPattern(32 * 1024 * 1024)),
            localFile(QStringLiteral("second.txt"), "2"),
            localFile(QStringLiteral("third.txt"), "3")};
        LoopWatch watch;
        QElapsedTimer sinceCancel;
        bool dialogShown = false;
        // Cancels in any case, so the call ends; the ticker is the context.
        QTimer::singleShot(1200, &watch.ticker, [&] {
            dialogShown = visibleTopLevel<dlgFTP>() != nullptr;
            watch.stop();
            sinceCancel.start();
            pressCancelAndConfirm();
        });
        QVERIFY(!SendJobFiles(job.context, files));
        QVERIFY(sinceCancel.isValid());
        QVERIFY(dialogShown);
        // The window was served all along.
        QVERIFY2(watch.servedThroughout(), qPrintable(watch.report()));
        QVERIFY(m_state.skipped());
        QVERIFY(m_state.UploadCancelled);
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 1);
        QVERIFY(!QFileInfo::exists(server.localPath(QStringLiteral("first.bin"))));
        QVERIFY(!QFileInfo::exists(server.localPath(QStringLiteral("second.txt"))));
        // Nor is the temporary copy of the cancelled file left behind.
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files), QStringList());
        QVERIFY(!visibleTopLevel<frmErrUpload>());
        // The window's end of the job: disconnecting from the silent server comes back, and
        // leaves no connection of the job behind.
        DisconnectForJob(job.context);
        QVERIFY(!job.ftp.IsConnected());
        QVERIFY(!job.ftp.Transfers().IsOpen());
    }

    void cancelButtonOfTheProgressFrameStopsAStalledFile()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-after=100000")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QElapsedTimer sinceCancel;
        QObject scope;
        QTimer::singleShot(600, &scope, [&] {
            sinceCancel.start();
            m_state.UploadCancelled = true;
        });
        QVERIFY(!UploadFileToFTP(
            job.context, localFile(QStringLiteral("stall.bin"), TestPattern(2 * 1024 * 1024))));
        QVERIFY(sinceCancel.isValid());
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 1);
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files), QStringList());
    }

    void cancelButtonDuringTheSecondFileSendsNoThird()
    {
        // The first upload takes the first stall without reaching it; the second stalls.
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-after=300000")};
        options.times = 2;
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        const QStringList files = {
            localFile(QStringLiteral("first.txt"), "1"),
            localFile(QStringLiteral("second.bin"), TestPattern(32 * 1024 * 1024)),
            localFile(QStringLiteral("third.txt"), "3")};
        QElapsedTimer sinceCancel;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (sinceCancel.isValid() || server.countCommands(QStringLiteral("STOR")) < 2)
                return;
            sinceCancel.start();
            // What the progress frame's CancelButton does.
            m_state.UploadCancelled = true;
        });
        poll.start(200);
        QVERIFY(!SendJobFiles(job.context, files));
        poll.stop();
        QVERIFY(sinceCancel.isValid());
        QVERIFY(!m_state.skipped());
        QCOMPARE(job.ui.stepTexts.last(), QStringLiteral("Currently loading section 2 of 3"));
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 2);
        QVERIFY(!server.commands().contains(
            QStringLiteral("STOR ") + TransferEngine::TemporaryName(QStringLiteral("third.txt"))));
        // The first file is whole; of the second neither a cut copy nor a temporary one is left.
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files),
                 QStringList{QStringLiteral("first.txt")});
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("first.txt"))), QByteArray("1"));
    }

    void serverThatRefusesRenamesGetsTheFileUnderItsName()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("rnto-553")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        WriteTestFile(server.localPath(QStringLiteral("/Send/page.htm")), "old copy");
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QVERIFY(job.ftp.SetFTPDirectory(QStringLiteral("Send")));
        int forms = 0;
        QTimer poll;
        errorFormsSeen(poll, forms);
        const QByteArray content = TestPattern(300000);
        QVERIFY(UploadFileToFTP(job.context, localFile(QStringLiteral("page.htm"), content)));
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("/Send/page.htm"))), content);
        QCOMPARE(QDir(server.localPath(QStringLiteral("/Send"))).entryList(QDir::Files),
                 QStringList{QStringLiteral("page.htm")});
        const QString temporary = TransferEngine::TemporaryName(QStringLiteral("page.htm"));
        const QStringList commands = server.commands();
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 2);
        QVERIFY(commands.indexOf(QStringLiteral("RNTO page.htm")) >= 0);
        QVERIFY(commands.indexOf(QStringLiteral("DELE ") + temporary) >
                commands.indexOf(QStringLiteral("RNTO page.htm")));
        QVERIFY(commands.indexOf(QStringLiteral("STOR page.htm")) >
                commands.indexOf(QStringLiteral("DELE ") + temporary));
        // Only one attempt was needed, and the user was not told of the refused rename.
        QCOMPARE(forms, 0);
    }

    void failedSendLeavesItsOwnErrorAsTheLastMessage()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stor-550")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        QVERIFY(!UploadFileToFTP(job.context, localFile(QStringLiteral("refused.txt"), "r")));
        // The tidying deleted the temporary copy through the session after the failure.
        QVERIFY(server.commands().contains(
            QStringLiteral("DELE ") +
            TransferEngine::TemporaryName(QStringLiteral("refused.txt"))));
        QCOMPARE(job.ftp.GetLastErrorMessage(), QStringLiteral("550 Permission denied."));
    }

    void cancelEndsADownloadFromASilentServer()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-retr")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        WriteTestFile(server.localPath(QStringLiteral("big.bin")), TestPattern(4 * 1024 * 1024));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        const QString local = m_local.filePath(QStringLiteral("fetched.bin"));
        QFile::remove(local);
        LoopWatch watch;
        QElapsedTimer sinceCancel;
        bool dialogShown = false;
        bool retrieving = false;
        // Waits for the download to stand at the silent server, then cancels it in any case,
        // so the call ends however the machine is loaded; the ticker is the context, so
        // nothing fires into this function's locals after it.
        QElapsedTimer waiting;
        waiting.start();
        QTimer canceller;
        QObject::connect(&canceller, &QTimer::timeout, &watch.ticker, [&] {
            retrieving = server.commands().contains(QStringLiteral("RETR big.bin"));
            if (!waiting.hasExpired(1000) || (!retrieving && !waiting.hasExpired(20000)))
                return;
            canceller.stop();
            dialogShown = visibleTopLevel<dlgFTP>() != nullptr;
            watch.stop();
            sinceCancel.start();
            pressCancelAndConfirm();
        });
        canceller.start(300);
        QVERIFY(!DownloadFileToFTP(job.context, local, QStringLiteral("big.bin")));
        QVERIFY(sinceCancel.isValid());
        QVERIFY(retrieving);
        QVERIFY(dialogShown);
        QVERIFY2(watch.servedThroughout(), qPrintable(watch.report()));
        QVERIFY(m_state.skipped());
        // One attempt only, and no partial local file.
        QCOMPARE(server.countCommands(QStringLiteral("RETR")), 1);
        QVERIFY(!QFileInfo::exists(local));
        QVERIFY(!visibleTopLevel<frmErrUpload>());
    }

    void runInBackgroundHidesTheDialog()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        m_state.BackgroundRequested = true;
        // Sees, at every status word of the transfer, whether the dialog is loaded and shown.
        class Watching final : public TransferUi
        {
        public:
            explicit Watching(DialogTransferUi &inner) : m_inner(inner) {}
            bool seenLoaded = false;
            bool seenVisible = false;
            void ShowProgress() override { m_inner.ShowProgress(); }
            void HideProgress() override { m_inner.HideProgress(); }
            void UnloadProgress() override { m_inner.UnloadProgress(); }
            void FloodFillInit(double total, const QString &status) override
            {
                look();
                m_inner.FloodFillInit(total, status);
            }
            void FloodFillUpdate(double value) override { m_inner.FloodFillUpdate(value); }
            void FloodShowStatus(const QString &text) override
            {
                look();
                m_inner.FloodShowStatus(text);
            }
            void SetBusyCursor(bool busy) override { m_inner.SetBusyCursor(busy); }
            void ShowUploadError(const QString &text, int number) override
            {
                m_inner.ShowUploadError(text, number);
            }

        private:
            void look()
            {
                seenLoaded = seenLoaded || m_inner.dialog() != nullptr;
                seenVisible = seenVisible || visibleTopLevel<dlgFTP>();
            }
            DialogTransferUi &m_inner;
        } watching(job.progress);
        TransferContext context{job.context.ftp, job.context.ui, job.context.state,
                                job.context.window, watching};
        QVERIFY(UploadFileToFTP(
            context, localFile(QStringLiteral("quiet.bin"), TestPattern(8 * 1024 * 1024))));
        QVERIFY(!watching.seenVisible);
        // The dialog was there, out of sight, while the file went, and is gone afterwards.
        QVERIFY(watching.seenLoaded);
        QVERIFY(!job.progress.dialog());
        // The toggle on the dialog itself.
        m_state.BackgroundRequested = false;
        dlgFTP dialog(m_state);
        dialog.findChild<QPushButton *>(QStringLiteral("Command2"))->click();
        QVERIFY(m_state.BackgroundRequested);
        dialog.findChild<QPushButton *>(QStringLiteral("Command2"))->click();
        QVERIFY(!m_state.BackgroundRequested);
    }

    void windowStaysLiveDuringALargeTransfer()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        const qint64 size = 192LL * 1024 * 1024;
        const QString local = m_local.filePath(QStringLiteral("large.bin"));
        {
            QFile file(local);
            QVERIFY(file.open(QIODevice::WriteOnly));
            const QByteArray block = TestPattern(1024 * 1024);
            for (qint64 i = 0; i < size / block.size(); ++i)
                file.write(block);
        }
        QList<double> values;
        LoopWatch watch;
        QObject::connect(&watch.ticker, &QTimer::timeout, [&] {
            if (dlgFTP *dialog = visibleTopLevel<dlgFTP>()) {
                dialog->flood()->repaint();
                values << dialog->flood()->value();
            }
        });
        QVERIFY(UploadFileToFTP(job.context, local));
        watch.stop();
        QCOMPARE(QFileInfo(server.localPath(QStringLiteral("large.bin"))).size(), size);
        QVERIFY2(watch.servedThroughout(), qPrintable(watch.report()));
        // The bar moved while the file went across.
        std::sort(values.begin(), values.end());
        values.erase(std::unique(values.begin(), values.end()), values.end());
        QVERIFY2(values.size() >= 3, qPrintable(QString::number(values.size())));
        QFile::remove(local);
    }

    void failingFileShowsTheFormThreeTimesForAboutFifteenSeconds()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stor-550")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server, 5000);
        QVERIFY(job.connect(server));
        int forms = 0;
        QTimer poll;
        errorFormsSeen(poll, forms);
        // Three forms, each gone by itself after its five seconds: a timer of fourteen seconds
        // started with the upload fires before the upload gives up.
        bool earlier = false;
        QTimer later;
        later.setSingleShot(true);
        later.setTimerType(Qt::PreciseTimer);
        QObject::connect(&later, &QTimer::timeout, [&earlier] { earlier = true; });
        later.start(14000);
        QVERIFY(!UploadFileToFTP(job.context, localFile(QStringLiteral("f.txt"), "f")));
        QCOMPARE(forms, 3);
        QVERIFY(earlier);
        QCOMPARE(server.countCommands(QStringLiteral("STOR")), 3);
    }

    void verifyUploadPathCases_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<bool>("result");
        QTest::newRow("root even when expected") << "/"
                                                 << "/" << false;
        QTest::newRow("inside") << "/Photos/My_Page"
                                << "My_Page" << true;
        QTest::newRow("case matters") << "/Photos/My_Page"
                                      << "my_page" << false;
        QTest::newRow("elsewhere") << "/Photos"
                                   << "Backup" << false;
    }

    void verifyUploadPathCases()
    {
        QFETCH(QString, directory);
        QFETCH(QString, expected);
        QFETCH(bool, result);
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QDir().mkpath(server.localPath(directory));
        cFTP ftp(m_state);
        QVERIFY(ftp.OpenConnection(server.server(), server.user(), server.password()));
        QVERIFY(ftp.SetFTPDirectory(directory));
        QCOMPARE(verifyUploadPath(ftp, expected), result);
        ftp.CloseConnection();
        QVERIFY(!verifyUploadPath(ftp, expected));
    }

    void checkAndEnsureDirectories()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QDir().mkpath(server.localPath(QStringLiteral("/Photos")));
        WriteTestFile(server.localPath(QStringLiteral("/Plain")), "a file");
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        job.window.ReloadFTPList();
        QVERIFY(CheckFTPDir(job.context, QStringLiteral("Photos")));
        QVERIFY(!CheckFTPDir(job.context, QStringLiteral("Plain")));
        QVERIFY(job.ui.messages.isEmpty());
        const int reloads = job.window.reloads;
        QVERIFY(CheckFTPDir(job.context, QStringLiteral("New Dir")));
        QVERIFY(QFileInfo(server.localPath(QStringLiteral("/New_Dir"))).isDir());
        QVERIFY(job.window.reloads > reloads);

        QVERIFY(EnsureFTPDirectory(job.context, QStringLiteral("My Page")));
        QCOMPARE(job.ftp.GetFTPDirectory(), QStringLiteral("/My_Page"));
        QCOMPARE(job.window.UploadPath(), QStringLiteral("http://www.example.com/My_Page"));
        QVERIFY(job.ftp.SetFTPDirectory(QStringLiteral("/")));
        job.window.ReloadFTPList();
        QVERIFY(EnsureFTPDirectory(job.context, QStringLiteral("Photos")));
        QCOMPARE(job.ftp.GetFTPDirectory(), QStringLiteral("/Photos"));
        QVERIFY(job.ftp.SetFTPDirectory(QStringLiteral("/")));
        job.window.ReloadFTPList();
        QVERIFY(!EnsureFTPDirectory(job.context, QStringLiteral("Plain")));
    }

    void directoryThatCannotBeMadeIsReported()
    {
        FtpTestServer::Options options;
        options.permissions = QStringLiteral("elr");
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        job.window.ReloadFTPList();
        QVERIFY(!CheckFTPDir(job.context, QStringLiteral("Photos")));
        QCOMPARE(job.ui.messages.size(), 1);
        QVERIFY(job.ui.messages.first().text.startsWith(QStringLiteral(
            "Failed to create/find a directory, retry. Note:On some servers the root (main "
            "directory) for the FTP site is not at the same level as the web directory.")));
        QVERIFY(job.ui.messages.first().text.endsWith(
            QStringLiteral("then select 'Advanced settings'.")));
    }

    void commonJobSequence()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QDir().mkpath(server.localPath(QStringLiteral("/public_html")));
        Job job(m_state, server);

        QCOMPARE(ConnectForJob(job.context, {true, QString(), QString()}),
                 JobConnection::StayLocal);
        QVERIFY(!job.ftp.IsConnected());

        JobConnectOptions options;
        options.ftpRoot = QStringLiteral("public_html");
        options.clientRoot = QStringLiteral("Client Files");
        QCOMPARE(ConnectForJob(job.context, options), JobConnection::Connected);
        QCOMPARE(job.ftp.GetFTPDirectory(), QStringLiteral("/public_html/Client_Files"));
        QVERIFY(job.ui.statusTexts.contains(QStringLiteral("Connecting")));
        QVERIFY(std::any_of(
            job.ui.statusTexts.begin(), job.ui.statusTexts.end(), [&](const QString &text) {
                return text.startsWith(QStringLiteral("Connected to ") + server.server() +
                                       QStringLiteral(" as tarnwick at "));
            }));
        QCOMPARE(GetSetting(QStringLiteral("Server")), server.server());
        QCOMPARE(GetSetting(QStringLiteral("User")), server.user());
        QCOMPARE(GetSetting(QStringLiteral("Password")), server.password());

        QCOMPARE(EnterJobDirectories(job.context,
                                     {QStringLiteral("Photos"), QStringLiteral("Summer Trip")},
                                     QStringLiteral("Summer_Trip")),
                 JobDirectory::Entered);
        QCOMPARE(job.ftp.GetFTPDirectory(),
                 QStringLiteral("/public_html/Client_Files/Photos/Summer_Trip"));
        QVERIFY(job.ui.statusTexts.contains(QStringLiteral("Verifing Path")));
        QVERIFY(SendJobFiles(job.context, {localFile(QStringLiteral("Sml_1.jpg"), "s"),
                                           localFile(QStringLiteral("Photos.htm"), "<html>")}));
        QCOMPARE(ReadTestFile(server.localPath(
                     QStringLiteral("/public_html/Client_Files/Photos/Summer_Trip/Photos.htm"))),
                 QByteArray("<html>"));
        DisconnectForJob(job.context);
        QCOMPARE(job.ui.statusTexts.last(), QStringLiteral("Disconnecting"));
        QCOMPARE(job.window.disconnects, 1);
        QVERIFY(!job.ftp.IsConnected());

        // An empty ClientRoot leaves its step out: the session stays in the root, no
        // directory is made and nothing is said.
        const int madeBefore = server.countCommands(QStringLiteral("MKD"));
        const int statusesBefore = int(job.ui.statusTexts.size());
        QCOMPARE(ConnectForJob(job.context, {}), JobConnection::Connected);
        QCOMPARE(job.ftp.GetFTPDirectory(), QStringLiteral("/"));
        QCOMPARE(server.countCommands(QStringLiteral("MKD")), madeBefore);
        QVERIFY(job.ui.messages.isEmpty());
        QVERIFY(!job.ui.statusTexts.mid(statusesBefore)
                     .contains(QStringLiteral("Creating a directory")));
        // In the FTP root the path check fails even for "/".
        QCOMPARE(EnterJobDirectories(job.context, {}, QStringLiteral("/")),
                 JobDirectory::WrongPath);
    }

    void thousandUploadsLeaveNoDescriptorsOrMemoryBehind()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        Job job(m_state, server);
        QVERIFY(job.connect(server));
        m_state.BackgroundRequested = true;
        const QString local = localFile(QStringLiteral("small.txt"), TestPattern(2000));
        // A first round settles lazily made things (fonts, the library's caches).
        for (int i = 0; i < 20; ++i)
            QVERIFY(UploadFileToFTP(job.context, local));
        const int descriptors = openFileDescriptors();
        const qint64 resident = residentKilobytes();
        for (int i = 0; i < 1000; ++i) {
            if (!UploadFileToFTP(job.context, local))
                QFAIL(qPrintable(QStringLiteral("upload %1 failed").arg(i)));
        }
        QCOMPARE(openFileDescriptors(), descriptors);
        const qint64 grown = residentKilobytes() - resident;
        QVERIFY2(grown < 4096,
                 qPrintable(QStringLiteral("resident memory grew by %1 KB").arg(grown)));
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("small.txt"))), TestPattern(2000));
    }
};

TARNWICK_TEST_MAIN(TestUploadSteps)
#include "test_uploadsteps.moc"
