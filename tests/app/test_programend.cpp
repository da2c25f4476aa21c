#include "DialogTransferUi.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "ModalAnswer.h"
#include "Settings.h"
#include "TestMain.h"
#include "TransferEngine.h"
#include "dlgFTP.h"
#include "frmMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

// The end of the program when its close is answered Yes in the middle of a transfer.
class TestProgramEnd : public QObject
{
    Q_OBJECT

private slots:
    void closeAnsweredYesEndsDuringAnUpload()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-after=200000")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QTemporaryDir local;
        const QString file = local.filePath(QStringLiteral("big.bin"));
        {
            QFile out(file);
            QVERIFY(out.open(QIODevice::WriteOnly));
            QVERIFY(out.write(QByteArray(4 * 1024 * 1024, 'x')) == 4 * 1024 * 1024);
        }
        const QString arriving = server.localPath(
            QStringLiteral("/") + TransferEngine::TemporaryName(QStringLiteral("big.bin")));
        const QString arrived = server.localPath(QStringLiteral("/big.bin"));

        SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
        JobState state;
        frmMain window(state);
        window.Load();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        // What the program's end finds: the file still on its way.
        QSignalSpy ending(&window, &frmMain::programEnding);
        int endingActions = 0;
        qint64 bytesAtTheEnd = -1;
        bool completeAtTheEnd = true;
        bool windowShownAtTheEnd = true;
        connect(&window, &frmMain::programEnding, this, [&] {
            frmMain::EndProgram([&] {
                ++endingActions;
                bytesAtTheEnd = QFileInfo(arriving).size();
                completeAtTheEnd = QFile::exists(arrived);
                windowShownAtTheEnd = window.isVisible();
                // The process would be gone here; the stalled transfer is let go instead.
                state.UserResponse = JobState::Skip;
                state.UploadCancelled = true;
            });
        });

        // Once the upload has started sending, the window's close box is pressed.
        QTimer watch;
        bool closeAsked = false;
        std::shared_ptr<MessageSeen> seen;
        connect(&watch, &QTimer::timeout, this, [&] {
            if (closeAsked || QFileInfo(arriving).size() < 100000)
                return;
            closeAsked = true;
            seen = answerMessageBox(QMessageBox::Yes);
            QTimer::singleShot(0, &window, [&window] { window.close(); });
        });
        watch.start(20);

        // Should the program's end never come, the stalled upload is let go all the same.
        QTimer guard;
        guard.setSingleShot(true);
        connect(&guard, &QTimer::timeout, this, [&state] {
            state.UserResponse = JobState::Skip;
            state.UploadCancelled = true;
        });
        guard.start(30000);

        DialogTransferUi ui(state);
        ui.ShowProgress();
        TransferEngine engine(ui, state);
        const bool sent = engine.SessionUpload(server.server(), server.user(), server.password(),
                                               QStringLiteral("/"), file);
        watch.stop();
        ui.UnloadProgress();

        QVERIFY(closeAsked);
        QVERIFY(seen && seen->seen);
        QCOMPARE(seen->title, QStringLiteral("Exit"));
        QCOMPARE(ending.count(), 1);
        QCOMPARE(endingActions, 1);
        QVERIFY(!windowShownAtTheEnd);
        QVERIFY(!completeAtTheEnd);
        QVERIFY2(bytesAtTheEnd >= 100000 && bytesAtTheEnd < 4 * 1024 * 1024,
                 qPrintable(QString::number(bytesAtTheEnd)));
        QVERIFY(!sent);
        QVERIFY(!QFile::exists(arrived));
    }
};

TARNWICK_TEST_MAIN(TestProgramEnd)
#include "test_programend.moc"
