#include "BuildFixture.h"
#include "FtpErrors.h"
#include "History.h"
#include "JobState.h"
#include "ScriptedUi.h"
#include "ServerFaults.h"
#include "TestMain.h"
#include "TransferUi.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace BuildFixture;

Q_DECLARE_METATYPE(ServerFault)

namespace {

// The transfer's dialogs as a record: the text of every error form.
class RecordingTransferUi final : public TransferUi
{
public:
    void ShowProgress() override {}
    void HideProgress() override {}
    void UnloadProgress() override {}
    void FloodFillInit(double, const QString &) override {}
    void FloodFillUpdate(double) override {}
    void FloodShowStatus(const QString &) override {}
    void SetBusyCursor(bool) override {}
    void ShowUploadError(const QString &text, int) override { errors << text; }
    QStringList errors;
};

} // namespace

// Build All against servers that do not answer as they should: each fault ends the run with
// the message and the attempts a failure has, in bounded time with the event loop served; a
// cancel of the wait ends it there.
class TestPhotoBuildFaults : public QObject
{
    Q_OBJECT

private:
    struct World
    {
        explicit World(const FtpTestServer::Options &options) : server(options) {}
        FtpTestServer server;
        QTemporaryDir source;
        QTemporaryDir working;
        JobState state;
        cFTP ftp{state};
        ScriptedUi ui;
        RecordingTransferUi progress;
        std::unique_ptr<BuildTestWindow> window;
        std::unique_ptr<TransferContext> context;
        QStringList connects;

        PhotoBuildOutcome run()
        {
            PhotoBuildJob job(state.current<PhotoPage>(), *context, *window);
            return job.cmdBuildAll();
        }
    };

    std::unique_ptr<World> makeWorld(const QString &fault)
    {
        FtpTestServer::Options options;
        options.faults = {fault};
        auto world = std::make_unique<World>(options);
        if (!world->server.start())
            qWarning("%s", qPrintable(world->server.errorString()));
        world->window = std::make_unique<BuildTestWindow>(world->ftp, world->server,
                                                          world->working.path());
        world->context = std::make_unique<TransferContext>(
            TransferContext{world->ftp, world->ui, world->state, *world->window, world->progress});
        const QList<Photo> photos = {{QStringLiteral("Harbour.jpg"), QStringLiteral("00010")},
                                     {QStringLiteral("Bridge.jpg"), QStringLiteral("00020")}};
        makePhoto(world->source.filePath(photos[0].name), Qt::red);
        makePhoto(world->source.filePath(photos[1].name), Qt::blue);
        PhotoPage &page = world->state.current<PhotoPage>();
        ClearHistory(page);
        putOnList(page, world->source.path(), world->working.path(), photos);
        // The page's name when asked.
        world->ui.answerPrompt(QStringLiteral("Faults"));
        World *raw = world.get();
        QObject::connect(&world->ftp, &cFTP::WaitStarted, [raw](const QString &text) {
            if (text.startsWith(QStringLiteral("Connecting to ")))
                raw->connects << text;
        });
        return world;
    }

private slots:
    void initTestCase() { QVERIFY(installTemplates()); }

    void faultsOfTheServer_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults())
            QTest::newRow(name) << fault;
    }

    void faultsOfTheServer()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("1"));
        auto world = makeWorld(fault.fault);
        if (fault.fault == QLatin1String("unresolvable"))
            fault.number = UnresolvableNumber(1000);
        LoopTurns loop;
        const PhotoBuildOutcome outcome = world->run();
        loop.stop();
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        if (fault.atLogin) {
            // One attempt to log in, then the job's error end with the session's words.
            QCOMPARE(outcome, PhotoBuildOutcome::Failed);
            QCOMPARE(world->connects.size(), 1);
            QCOMPARE(world->ui.messages.size(), 1);
            QCOMPARE(world->ui.messages.first().text,
                     QStringLiteral("failed to connect, retry. (") +
                         FtpErrors::Compose(fault.number, QStringLiteral("InternetConnect"),
                                            QString()) +
                         QLatin1Char(')'));
            QVERIFY(world->progress.errors.isEmpty());
        } else {
            // The login works, but no listing comes: the page's folder is made and cannot be
            // entered by its listed name, so the run ends at the check of the upload path with
            // its message, before any file is sent.
            QCOMPARE(outcome, PhotoBuildOutcome::WrongPath);
            QCOMPARE(world->ui.messages.size(), 1);
            QCOMPARE(world->ui.messages.first().text,
                     QStringLiteral("The connection to the upload path has failed. Select the "
                                    "Rebuild option and the History file and resend."));
            QVERIFY(world->progress.errors.isEmpty());
            QCOMPARE(world->server.countCommands(QStringLiteral("STOR")), 0);
        }
        QVERIFY(!world->ftp.IsConnected());
        QVERIFY(!world->ftp.Transfers().IsOpen());
    }

    void cancelDuringAFault_data()
    {
        QTest::addColumn<ServerFault>("fault");
        for (const auto &[name, fault] : ServerFaults()) {
            if (fault.waits)
                QTest::newRow(name) << fault;
        }
    }

    void cancelDuringAFault()
    {
        QFETCH(ServerFault, fault);
        SetServerLimits(QStringLiteral("600"));
        auto world = makeWorld(fault.fault);
        // The progress frame's CancelButton, pressed while the status line tells of the wait.
        const QString waitFor = fault.atLogin ? QStringLiteral("Connecting to ")
                                              : QStringLiteral("Waiting for ");
        QObject scope;
        int presses = 0;
        JobState *state = &world->state;
        QObject::connect(&world->ftp, &cFTP::WaitStarted, &scope, [&, state](const QString &text) {
            if (!text.startsWith(waitFor))
                return;
            ++presses;
            QTimer::singleShot(50, &scope, [state] { state->UploadCancelled = true; });
        });
        LoopTurns loop;
        const PhotoBuildOutcome outcome = world->run();
        loop.stop();
        QVERIFY2(loop.servedThroughout(), qPrintable(loop.report()));
        // One press, and the run ended there: nothing sent, nothing said.
        QCOMPARE(presses, 1);
        QCOMPARE(outcome, PhotoBuildOutcome::Cancelled);
        QVERIFY(world->ui.messages.isEmpty());
        QVERIFY(world->progress.errors.isEmpty());
        QCOMPARE(world->server.countCommands(QStringLiteral("STOR")), 0);
        QVERIFY(!world->ftp.IsConnected());
        QVERIFY(!world->ftp.Transfers().IsOpen());
    }
};

TARNWICK_TEST_MAIN(TestPhotoBuildFaults)
#include "test_photobuild_faults.moc"
