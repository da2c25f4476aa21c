#include "DialogTransferUi.h"
#include "FtpErrors.h"
#include "JobState.h"
#include "TestMain.h"
#include "TransferEngine.h"
#include "TransferSession.h"
#include "TransferTestSupport.h"
#include "dlgFTP.h"
#include "frmErrUpload.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>

// The real dialogs, with a note of every status line they were asked to show.
class NotingTransferUi final : public TransferUi
{
public:
    explicit NotingTransferUi(DialogTransferUi &real) : m_real(real) {}
    void ShowProgress() override { m_real.ShowProgress(); }
    void HideProgress() override { m_real.HideProgress(); }
    void UnloadProgress() override { m_real.UnloadProgress(); }
    void FloodFillInit(double total, const QString &status) override
    {
        m_real.FloodFillInit(total, status);
    }
    void FloodFillUpdate(double value) override { m_real.FloodFillUpdate(value); }
    void FloodShowStatus(const QString &text) override
    {
        statuses << text;
        m_real.FloodShowStatus(text);
    }
    void SetBusyCursor(bool busy) override { m_real.SetBusyCursor(busy); }
    void ShowUploadError(const QString &text, int number) override
    {
        errors << text;
        m_real.ShowUploadError(text, number);
    }
    QStringList statuses;
    QStringList errors;

private:
    DialogTransferUi &m_real;
};

class TestTransferEngine : public QObject
{
    Q_OBJECT
    // The job-wide state of this test program, as the program makes one for its run.
    JobState m_state;

private:
    std::unique_ptr<FtpTestServer> m_server;
    QTemporaryDir m_local;

    static frmErrUpload *openErrorForm()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *form = qobject_cast<frmErrUpload *>(widget); form && form->isVisible())
                return form;
        }
        return nullptr;
    }

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }

    void init() { m_state.reset(); }

    void statusTable_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QVariant>("data");
        QTest::addColumn<QString>("shown");
        QTest::newRow("0") << 0 << QVariant(QStringLiteral("ftp.example.com"))
                           << "Looking up the IP address for ftp.example.com";
        QTest::newRow("1") << 1 << QVariant(QStringLiteral("10.0.0.1")) << "Name resolved 10.0.0.1";
        QTest::newRow("11 shows nothing") << 11 << QVariant(QStringLiteral("10.0.0.1")) << "";
        QTest::newRow("10") << 10 << QVariant(QStringLiteral("ftp.example.com"))
                            << "HTTP request redirected to ftp.example.com";
        QTest::newRow("20") << 20 << QVariant(QStringLiteral("10.0.0.1:21"))
                            << "Connecting to server...10.0.0.1:21";
        QTest::newRow("21 cut at NUL")
            << 21 << QVariant(QStringLiteral("10.0.0.1") + QChar(0) + QStringLiteral("junk"))
            << "Connected to 10.0.0.1";
        QTest::newRow("50") << 50 << QVariant() << "Closing connection";
        QTest::newRow("51") << 51 << QVariant() << "Connection closed";
        QTest::newRow("60") << 60 << QVariant(4711) << "Handle created: 4711";
        QTest::newRow("80") << 80 << QVariant() << "Detecting proxy";
        QTest::newRow("200 network") << 200 << QVariant(2) << "Disconnected from network.";
        QTest::newRow("200 user") << 200 << QVariant(16) << "Disconnected by user request.";
        QTest::newRow("200 other") << 200 << QVariant(4) << "";
        QTest::newRow("31 shows nothing") << 31 << QVariant(100) << "";
        QTest::newRow("unknown") << 137 << QVariant(1) << "";
        QTest::newRow("beyond") << 100000 << QVariant() << "";
    }

    void statusTable()
    {
        QFETCH(int, status);
        QFETCH(QVariant, data);
        QFETCH(QString, shown);
        DialogTransferUi ui(m_state);
        ui.ShowProgress();
        ui.FloodFillInit(1000, QStringLiteral("Uploading a.jpg"));
        ui.FloodFillUpdate(250);
        TransferEngine engine(ui, m_state);
        engine.TransferStatusCallback(status, data);
        const QString expected =
            QStringLiteral("25% ") + (shown.isEmpty() ? QStringLiteral("Uploading a.jpg") : shown);
        QCOMPARE(ui.dialog()->flood()->text(), expected);
        // The next update brings the stored status back.
        ui.FloodFillUpdate(500);
        QCOMPARE(ui.dialog()->flood()->text(), QStringLiteral("50% Uploading a.jpg"));
        ui.UnloadProgress();
    }

    void byteCountsDrawOnlyInTheirMode()
    {
        DialogTransferUi ui(m_state);
        ui.ShowProgress();
        ui.FloodFillInit(1000, QStringLiteral("Uploading x"));
        TransferEngine engine(ui, m_state);
        engine.TransferMode = TransferEngine::Idle;
        engine.TransferStatusCallback(30, 300);
        engine.TransferStatusCallback(41, 200);
        QCOMPARE(engine.BytesSent, 300.0);
        QCOMPARE(engine.BytesReceived, 200.0);
        QCOMPARE(ui.dialog()->flood()->value(), 0.0);
        engine.TransferMode = TransferEngine::Uploading;
        engine.TransferStatusCallback(30, 300);
        QCOMPARE(ui.dialog()->flood()->value(), 600.0);
        engine.TransferStatusCallback(41, 100);
        QCOMPARE(ui.dialog()->flood()->value(), 600.0);
        engine.TransferStatusCallback(31, 50);
        QCOMPARE(engine.BytesSent, 650.0);
        QCOMPARE(ui.dialog()->flood()->value(), 600.0);
        engine.TransferMode = TransferEngine::Downloading;
        engine.TransferStatusCallback(41, 100);
        QCOMPARE(ui.dialog()->flood()->value(), 400.0);
        engine.TransferStatusCallback(70, 0);
        QCOMPARE(engine.TransferMode, TransferEngine::Idle);
        // The value is clamped to the total.
        engine.TransferMode = TransferEngine::Uploading;
        engine.TransferStatusCallback(30, 5000);
        QCOMPARE(ui.dialog()->flood()->value(), 1000.0);
        QCOMPARE(ui.dialog()->flood()->text(), QStringLiteral("100% Uploading x"));
    }

    void errorTexts_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("text");
        QTest::newRow("12001") << 12001 << "No more handles could be generated at this time";
        QTest::newRow("12011 trailing blank")
            << 12011 << "Request option can not be set, only queried. ";
        QTest::newRow("12014") << 12014
                               << "Request to connect and login to an FTP server could not be "
                                  "completed because the supplied password is incorrect. ";
        QTest::newRow("12017")
            << 12017
            << "Operation was canceled, usually because the handle on which the request was "
               "operating was closed before the operation completed.";
        QTest::newRow("12029") << 12029 << "Attempt to connect to the server failed.";
        QTest::newRow("12031") << 12031 << "Connection with the server has been reset.";
        QTest::newRow("12036") << 12036 << "Request failed because the handle already exists.";
        QTest::newRow("12003 without reply") << 12003 << "Extended error returned from server.";
        QTest::newRow("unknown") << 12032 << "Error details not available.";
        QTest::newRow("far off") << 7 << "Error details not available.";
    }

    void errorTexts()
    {
        QFETCH(int, number);
        QFETCH(QString, text);
        DialogTransferUi ui(m_state);
        ui.setErrorAutoCloseMs(150);
        TransferEngine engine(ui, m_state);
        QString shown;
        QString note;
        QTimer::singleShot(50, [&] {
            if (frmErrUpload *form = openErrorForm()) {
                shown = form->findChild<QLabel *>(QStringLiteral("Label1"))->text();
                note = form->findChild<QLabel *>(QStringLiteral("Label2"))->text();
            }
        });
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(engine.WininetErrorText(number), text);
        // The form was shown with the text, and closed by itself.
        QCOMPARE(shown, text);
        QCOMPARE(note, QStringLiteral("This will auto reset in 5 seconds"));
        QVERIFY(clock.elapsed() >= 140);
        QVERIFY(!openErrorForm());
    }

    void serverReplyIsTheTextOf12003()
    {
        DialogTransferUi ui(m_state);
        ui.setErrorAutoCloseMs(10);
        TransferEngine engine(ui, m_state);
        QCOMPARE(engine.WininetErrorText(12003, QStringLiteral("552 Disk full.")),
                 QStringLiteral("552 Disk full."));
    }

    void errorFormClosesByItselfAfterFiveSeconds()
    {
        frmErrUpload form;
        form.Load(QStringLiteral("Connection with the server has been reset."), 12031);
        bool okPressed = false;
        QObject::connect(form.findChild<QPushButton *>(QStringLiteral("OKButton")),
                         &QPushButton::clicked, [&okPressed] { okPressed = true; });
        // A timer of four and a half seconds started with the form fires before the form goes:
        // gone by itself, and not before its five seconds.
        bool earlier = false;
        QTimer::singleShot(4500, Qt::PreciseTimer, &form, [&earlier] { earlier = true; });
        form.ShowAndWait();
        QVERIFY(!okPressed);
        QVERIFY(earlier);
        QVERIFY(!form.isVisible());
    }

    void errorFormOkCloses()
    {
        frmErrUpload form;
        // Its own timer would take ten minutes: only OK can have closed it.
        form.Load(QStringLiteral("text"), 12031, 600000);
        QObject scope;
        QTimer::singleShot(50, &scope, [&] {
            QTest::mouseClick(form.findChild<QPushButton *>(QStringLiteral("OKButton")),
                              Qt::LeftButton);
        });
        form.ShowAndWait();
        QVERIFY(!form.isVisible());
    }

    void statusWordsFollowTheConnection()
    {
        const QString local = m_local.filePath(QStringLiteral("words.txt"));
        WriteTestFile(local, "words");
        DialogTransferUi real(m_state);
        real.ShowProgress();
        NotingTransferUi ui(real);
        TransferSession session;
        TransferEngine engine(ui, m_state, session);
        QVERIFY(engine.SessionUpload(m_server->server(), m_server->user(), m_server->password(),
                                     QStringLiteral("/"), local));
        const QString port = QString::number(m_server->port());
        const QStringList expected = {QStringLiteral("HTTP request redirected to 127.0.0.1"),
                                      QStringLiteral("Connecting to server...127.0.0.1:") + port,
                                      QStringLiteral("Connected to 127.0.0.1")};
        QCOMPARE(ui.statuses.size(), 4);
        QVERIFY(ui.statuses.first().startsWith(QStringLiteral("Handle created: ")));
        QCOMPARE(ui.statuses.mid(1), expected);
        // The next file goes over the same connection: no word of connecting or closing.
        QVERIFY(engine.SessionUpload(m_server->server(), m_server->user(), m_server->password(),
                                     QStringLiteral("/"), local));
        QCOMPARE(ui.statuses.size(), 4);
        QVERIFY(session.IsOpen());
        QCOMPARE(session.Logins(), 1);
        real.UnloadProgress();
    }

    void closingWordsComeWhenAConnectionEnds()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("drop-after=100000")};
        FtpTestServer cutting(options);
        QVERIFY2(cutting.start(), qPrintable(cutting.errorString()));
        const QString local = m_local.filePath(QStringLiteral("cut.bin"));
        WriteTestFile(local, TestPattern(1024 * 1024));
        DialogTransferUi real(m_state);
        real.setErrorAutoCloseMs(10);
        real.ShowProgress();
        NotingTransferUi ui(real);
        TransferSession session;
        TransferEngine engine(ui, m_state, session);
        QVERIFY(!engine.SessionUpload(cutting.server(), cutting.user(), cutting.password(),
                                      QStringLiteral("/"), local));
        QVERIFY(!session.IsOpen());
        QCOMPARE(ui.statuses.mid(ui.statuses.size() - 2),
                 (QStringList{QStringLiteral("Closing connection"),
                              QStringLiteral("Connection closed")}));
        // The next attempt connects anew, and says so.
        const int connects = int(ui.statuses.filter(QStringLiteral("Handle created: ")).size());
        QVERIFY(engine.SessionUpload(cutting.server(), cutting.user(), cutting.password(),
                                     QStringLiteral("/"), local));
        QCOMPARE(ui.statuses.filter(QStringLiteral("Handle created: ")).size(), connects + 1);
        QCOMPARE(cutting.logins(), 2);
        real.UnloadProgress();
    }

    void sessionUploadSendsTheWholeFileUnderItsName()
    {
        const QByteArray content = TestPattern(3 * 1024 * 1024 + 17);
        const QString local = m_local.filePath(QStringLiteral("Big_Picture.jpg"));
        WriteTestFile(local, content);
        QDir().mkpath(m_server->localPath(QStringLiteral("/Photos/Page")));
        DialogTransferUi ui(m_state);
        ui.ShowProgress();
        TransferEngine engine(ui, m_state);
        QVERIFY(engine.SessionUpload(m_server->server(), m_server->user(), m_server->password(),
                                     QStringLiteral("/Photos/Page"), local));
        QCOMPARE(ReadTestFile(m_server->localPath(QStringLiteral("/Photos/Page/Big_Picture.jpg"))),
                 content);
        QVERIFY(!QFileInfo::exists(
            m_server->localPath(QStringLiteral("/Photos/Page/") +
                                TransferEngine::TemporaryName(QStringLiteral("Big_Picture.jpg")))));
        QCOMPARE(engine.FileTotal, double(content.size()));
        QCOMPARE(engine.BytesSent, double(content.size()));
        QCOMPARE(engine.TransferMode, TransferEngine::Idle);
        QCOMPARE(engine.LastError, 0);
        // The status shows the name with blanks for "_"; the connection stays for the next file.
        QCOMPARE(ui.dialog()->flood()->status(), QStringLiteral("Uploading Big Picture.jpg"));
        QCOMPARE(ui.dialog()->flood()->text(), QStringLiteral("100% Uploading Big Picture.jpg"));
        ui.UnloadProgress();
    }

    void sessionDownload()
    {
        const QByteArray content = TestPattern(200 * 1024);
        WriteTestFile(m_server->localPath(QStringLiteral("/get/file name.bin")), content);
        const QString local = m_local.filePath(QStringLiteral("file name.bin"));
        DialogTransferUi ui(m_state);
        ui.ShowProgress();
        TransferEngine engine(ui, m_state);
        QVERIFY(engine.SessionDownload(m_server->server(), m_server->user(), m_server->password(),
                                       QStringLiteral("/get/file name.bin"), local));
        QCOMPARE(ReadTestFile(local), content);
        QCOMPARE(engine.BytesReceived, double(content.size()));
        QCOMPARE(ui.dialog()->flood()->status(), QStringLiteral("Downloading file name.bin"));
        // A missing file fails in silence and leaves the local file alone.
        QVERIFY(!engine.SessionDownload(m_server->server(), m_server->user(), m_server->password(),
                                        QStringLiteral("/get/none.bin"), local));
        QCOMPARE(ReadTestFile(local), content);
        ui.UnloadProgress();
    }

    void failedLoginIsSilent()
    {
        const QString local = m_local.filePath(QStringLiteral("a.txt"));
        WriteTestFile(local, "a");
        DialogTransferUi ui(m_state);
        ui.setErrorAutoCloseMs(10);
        TransferEngine engine(ui, m_state);
        bool formSeen = false;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] { formSeen = formSeen || openErrorForm(); });
        poll.start(5);
        QVERIFY(!engine.SessionUpload(m_server->server(), m_server->user(), QStringLiteral("bad"),
                                      QStringLiteral("/"), local));
        QVERIFY(!formSeen);
        QCOMPARE(engine.LastError, 12014);
        QVERIFY(!engine.SessionUpload(QStringLiteral("127.0.0.1:1"), QStringLiteral("u"),
                                      QStringLiteral("p"), QStringLiteral("/"), local));
        QCOMPARE(engine.LastError, 12029);
        QVERIFY(!formSeen);
    }

    void cancelledUploadShowsNoError()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stall-after=200000")};
        FtpTestServer stalling(options);
        QVERIFY2(stalling.start(), qPrintable(stalling.errorString()));
        const QString local = m_local.filePath(QStringLiteral("stopped.bin"));
        WriteTestFile(local, TestPattern(16 * 1024 * 1024));
        DialogTransferUi real(m_state);
        real.setErrorAutoCloseMs(50);
        real.ShowProgress();
        NotingTransferUi ui(real);
        TransferEngine engine(ui, m_state);
        // Every distinct frmErrUpload that came up while the upload ran.
        int forms = 0;
        QPointer<frmErrUpload> lastForm;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            frmErrUpload *form = openErrorForm();
            if (form && form != lastForm) {
                lastForm = form;
                ++forms;
            }
        });
        poll.start(5);
        bool cancelSent = false;
        QTimer::singleShot(800, &poll, [&] {
            cancelSent = true;
            // What dlgFTP's Cancel does once the user confirms.
            m_state.UserResponse = JobState::Skip;
            m_state.UploadCancelled = true;
        });
        QVERIFY(!engine.SessionUpload(stalling.server(), stalling.user(), stalling.password(),
                                      QStringLiteral("/"), local));
        poll.stop();
        QVERIFY(cancelSent);
        QVERIFY(engine.LastWasCancelled);
        QCOMPARE(forms, 0);
        QCOMPARE(ui.errors, QStringList());
        // The bar showed the upload's words and never an error's text.
        QVERIFY(ui.statuses.contains(QStringLiteral("Closing connection")));
        QStringList errorTexts = {FtpErrors::Description(0)};
        for (int number = 12001; number <= 12036; ++number)
            errorTexts << FtpErrors::Description(number);
        for (const QString &status : std::as_const(ui.statuses)) {
            QVERIFY2(!errorTexts.contains(status), qPrintable(status));
            QVERIFY2(!QRegularExpression(QStringLiteral("^[45]\\d\\d ")).match(status).hasMatch(),
                     qPrintable(status));
        }
        real.UnloadProgress();
    }

    void refusedStoreShowsTheServersReply()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("stor-552")};
        FtpTestServer full(options);
        QVERIFY2(full.start(), qPrintable(full.errorString()));
        const QString local = m_local.filePath(QStringLiteral("b.txt"));
        WriteTestFile(local, "b");
        DialogTransferUi ui(m_state);
        ui.setErrorAutoCloseMs(50);
        ui.ShowProgress();
        TransferEngine engine(ui, m_state);
        QString shown;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (frmErrUpload *form = openErrorForm())
                shown = form->findChild<QLabel *>(QStringLiteral("Label1"))->text();
        });
        poll.start(5);
        QVERIFY(!engine.SessionUpload(full.server(), full.user(), full.password(),
                                      QStringLiteral("/"), local));
        QCOMPARE(shown,
                 QStringLiteral("552 Requested file action aborted. Exceeded storage allocation."));
        QCOMPARE(engine.LastError, 12003);
        QVERIFY(!QFileInfo::exists(full.localPath(QStringLiteral("b.txt"))));
        ui.UnloadProgress();
    }
};

TARNWICK_TEST_MAIN(TestTransferEngine)
#include "test_transferengine.moc"
