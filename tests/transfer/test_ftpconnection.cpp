#include "FtpConnection.h"
#include "FtpErrors.h"
#include "FtpTestServer.h"
#include "ServerFaults.h"
#include "Settings.h"
#include "TestMain.h"
#include "TransferTestSupport.h"

#include <QElapsedTimer>
#include <QTimer>

namespace {

// The limits of a test: short, so a fault ends soon; or long, so only a cancel ends it.
FtpLimits limits(int ms)
{
    FtpLimits limits;
    limits.connectMs = ms;
    limits.replyMs = ms;
    limits.stallMs = ms;
    return limits;
}

FtpAddress addressOf(const FtpTestServer &server)
{
    return FtpAddress::fromServerField(server.server());
}

// Counts the turns of the event loop (a 10 ms timer) while a connection waits.
struct LoopCounter
{
    const FtpConnection *connection = nullptr;
    int ticksWhileBusy = 0;
    QTimer ticker;
    explicit LoopCounter(const FtpConnection &watched) : connection(&watched)
    {
        QObject::connect(&ticker, &QTimer::timeout, [this] {
            if (connection->busy())
                ++ticksWhileBusy;
        });
        ticker.start(10);
    }
};

FtpConnection::Request listRequest(QByteArray *listing)
{
    FtpConnection::Request request;
    request.kind = FtpConnection::Request::Kind::List;
    request.directory = QStringLiteral("/");
    request.write = [listing](const char *data, size_t size) {
        listing->append(data, qsizetype(size));
        return true;
    };
    return request;
}

FtpConnection::Request pwdRequest()
{
    FtpConnection::Request request;
    request.quote = {QStringLiteral("PWD")};
    return request;
}

} // namespace

// One libcurl connection kept from request to request, driven on a thread of its own, against
// a real server and against the tests' own faulty ones.
class TestFtpConnection : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_local;

    // What happens at each fault, and which request meets it.
    enum class Meets
    {
        Login,
        Listing,
        Store
    };

private slots:
    void init() { ClearTemporaryHome(); }

    void limitsComeFromTheSettings()
    {
        const FtpLimits defaults = FtpLimits::FromSettings();
        QCOMPARE(defaults.connectMs, 20000);
        QCOMPARE(defaults.replyMs, 30000);
        QCOMPARE(defaults.stallMs, 30000);
        SaveSetting(FtpLimits::ConnectKey, QStringLiteral("5"));
        SaveSetting(FtpLimits::ReplyKey, QStringLiteral("0.5"));
        SaveSetting(FtpLimits::StallKey, QStringLiteral("nonsense"));
        const FtpLimits read = FtpLimits::FromSettings();
        QCOMPARE(read.connectMs, 5000);
        QCOMPARE(read.replyMs, 500);
        QCOMPARE(read.stallMs, 30000);
    }

    void keptConnectionLogsInOnce()
    {
        FtpTestServer server;
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QDir().mkpath(server.localPath(QStringLiteral("/a")));
        FtpConnection connection(addressOf(server), server.user(), server.password());
        QStringList waits;
        connection.onWaitStarted = [&waits](const QString &text) { waits << text; };
        QVERIFY(connection.perform(pwdRequest()).ok());
        QVERIFY(connection.isOpen());
        QCOMPARE(waits, QStringList{QStringLiteral("Connecting to 127.0.0.1:") +
                                    QString::number(server.port()) + QStringLiteral("...")});
        for (int i = 0; i < 10; ++i) {
            FtpConnection::Request request;
            request.directory = QStringLiteral("/a");
            request.quote = {QStringLiteral("NOOP")};
            QVERIFY(connection.perform(request).ok());
        }
        QCOMPARE(server.logins(), 1);
        QCOMPARE(connection.logins(), 1);
        // The connection stands in /a after the first request there: one CWD for all ten.
        QCOMPARE(server.countCommands(QStringLiteral("CWD")), 1);
        QCOMPARE(waits.size(), 1);
        connection.close();
        QVERIFY(!connection.isOpen());
        QCOMPARE(server.countCommands(QStringLiteral("QUIT")), 1);
    }

    void serverThatClosedTheKeptConnectionGetsANewOne_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("dropped") << "drop-after-files=1";
        QTest::newRow("421") << "idle-421-after-files=1";
    }

    void serverThatClosedTheKeptConnectionGetsANewOne()
    {
        QFETCH(QString, fault);
        FtpTestServer::Options options;
        options.faults = {fault};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        FtpConnection connection(addressOf(server), server.user(), server.password());
        const QByteArray content = TestPattern(5000);
        FtpConnection::Request store;
        store.kind = FtpConnection::Request::Kind::Store;
        store.directory = QStringLiteral("/");
        store.fileName = QStringLiteral("one.bin");
        store.uploadSize = content.size();
        qint64 offset = 0;
        store.read = [&](char *buffer, size_t size) {
            const qint64 count = std::min<qint64>(qint64(size), content.size() - offset);
            memcpy(buffer, content.constData() + offset, size_t(count));
            offset += count;
            return size_t(count);
        };
        QVERIFY(connection.perform(store).ok());
        QCOMPARE(ReadTestFile(server.localPath(QStringLiteral("one.bin"))), content);
        // The server has closed the session behind the upload; the next request is carried
        // out all the same, over one new login, and is no failure.
        FtpConnection::Request rename;
        rename.directory = QStringLiteral("/");
        rename.quote = {QStringLiteral("RNFR one.bin"), QStringLiteral("RNTO two.bin")};
        const auto result = connection.perform(rename);
        QVERIFY2(result.ok(), qPrintable(QString::number(result.code)));
        QVERIFY(QFileInfo::exists(server.localPath(QStringLiteral("two.bin"))));
        QCOMPARE(server.logins(), 2);
        QVERIFY(connection.isOpen());
    }

    void faults_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("meets");
        QTest::addColumn<int>("number");
        QTest::newRow("accepts and never greets") << "silent" << int(Meets::Login) << 12002;
        QTest::newRow("never answers USER") << "mute-user" << int(Meets::Login) << 12002;
        QTest::newRow("half a reply, then closed") << "half-reply" << int(Meets::Login) << 12030;
        QTest::newRow("connection refused") << "refuse-connection" << int(Meets::Login) << 12029;
        QTest::newRow("name that does not resolve")
            << "unresolvable" << int(Meets::Login) << 12007;
        QTest::newRow("passive port where nothing listens")
            << "pasv-dead-port" << int(Meets::Listing) << 12029;
        QTest::newRow("data connection that sends nothing")
            << "data-silent" << int(Meets::Listing) << 12002;
        QTest::newRow("data connection that takes nothing")
            << "data-silent" << int(Meets::Store) << 12002;
    }

    void faults()
    {
        QFETCH(QString, fault);
        QFETCH(int, meets);
        QFETCH(int, number);
        FtpTestServer::Options options;
        options.faults = {fault};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        if (fault == QLatin1String("unresolvable"))
            number = UnresolvableNumber(1000);
        FtpConnection connection(addressOf(server), server.user(), server.password(),
                                 limits(1000));
        LoopCounter loop(connection);
        QElapsedTimer clock;
        clock.start();

        FtpConnection::Result result = connection.perform(pwdRequest());
        QByteArray listing;
        if (meets != int(Meets::Login)) {
            QVERIFY2(result.ok(), "the login works; the fault comes later");
            if (meets == int(Meets::Listing)) {
                result = connection.perform(listRequest(&listing));
            } else {
                const QByteArray content = TestPattern(1000);
                FtpConnection::Request store;
                store.kind = FtpConnection::Request::Kind::Store;
                store.directory = QStringLiteral("/");
                store.fileName = QStringLiteral("f.bin");
                store.uploadSize = content.size();
                bool given = false;
                store.read = [&](char *buffer, size_t) {
                    if (given)
                        return size_t(0);
                    given = true;
                    memcpy(buffer, content.constData(), size_t(content.size()));
                    return size_t(content.size());
                };
                result = connection.perform(store);
            }
        }
        const qint64 waited = clock.elapsed();
        QVERIFY(!result.ok());
        QVERIFY(!result.cancelled);
        QCOMPARE(FtpErrors::NumberFor(result.code, connection), number);
        // The event loop went on turning while the connection waited: at least one turn for
        // every 250 ms of the wait (the timer asks for one every 10 ms).
        QVERIFY2(loop.ticksWhileBusy >= waited / 250,
                 qPrintable(QStringLiteral("%1 turns in %2 ms").arg(loop.ticksWhileBusy).arg(waited)));
        // Afterwards: nothing kept, nothing busy, and the connection can be asked again.
        QVERIFY(!connection.isOpen());
        QVERIFY(!connection.busy());
        QVERIFY(listing.isEmpty());
        if (meets != int(Meets::Login)) {
            QVERIFY(connection.perform(pwdRequest()).ok());
            QCOMPARE(server.logins(), 2);
        }
    }

    void cancelEndsEveryFault_data() { faults_data(); }

    void cancelEndsEveryFault()
    {
        QFETCH(QString, fault);
        QFETCH(int, meets);
        if (fault == QLatin1String("refuse-connection") || fault == QLatin1String("half-reply") ||
            fault == QLatin1String("pasv-dead-port") || fault == QLatin1String("unresolvable"))
            QSKIP("this fault ends at once: there is no wait to cancel");
        if (meets == int(Meets::Store))
            QSKIP("the same wait as the listing's");
        FtpTestServer::Options options;
        options.faults = {fault};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        // Limits far off: only the cancel can end the wait.
        FtpConnection connection(addressOf(server), server.user(), server.password(),
                                 limits(600000));
        if (meets != int(Meets::Login))
            QVERIFY(connection.perform(pwdRequest()).ok());
        // The cancel comes once the connection has waited for a while, counted in turns of
        // the event loop.
        LoopCounter loop(connection);
        bool cancel = false;
        connection.cancelRequested = [&] {
            cancel = cancel || loop.ticksWhileBusy >= 20;
            return cancel;
        };
        QByteArray listing;
        const auto result = meets == int(Meets::Login) ? connection.perform(pwdRequest())
                                                       : connection.perform(listRequest(&listing));
        QVERIFY(cancel);
        QVERIFY(result.cancelled);
        QCOMPARE(FtpErrors::NumberFor(result.code, connection), FtpErrors::OperationCancelled);
        QVERIFY(!connection.isOpen());
        QVERIFY(!connection.busy());
    }

    void cancelFromAnEventEndsTheWait()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("silent")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        FtpConnection connection(addressOf(server), server.user(), server.password(),
                                 limits(600000));
        QString told;
        QObject scope;
        connection.onWaitStarted = [&](const QString &text) {
            told = text;
            // As a Cancel button pressed while the status line says so.
            QTimer::singleShot(50, &scope, [&connection] { connection.cancel(); });
        };
        bool ended = false;
        connection.onWaitEnded = [&ended] { ended = true; };
        const auto result = connection.perform(pwdRequest());
        QVERIFY(result.cancelled);
        QCOMPARE(told, QStringLiteral("Connecting to 127.0.0.1:") +
                           QString::number(server.port()) + QStringLiteral("..."));
        QVERIFY(ended);
    }

    void longWaitOnAKeptConnectionIsTold()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("data-silent")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        FtpConnection connection(addressOf(server), server.user(), server.password(),
                                 limits(2000));
        QVERIFY(connection.perform(pwdRequest()).ok());
        QStringList waits;
        connection.onWaitStarted = [&waits](const QString &text) { waits << text; };
        QByteArray listing;
        QVERIFY(!connection.perform(listRequest(&listing)).ok());
        QCOMPARE(waits, QStringList{QStringLiteral("Waiting for 127.0.0.1:") +
                                    QString::number(server.port()) + QStringLiteral("...")});
    }
};

TARNWICK_TEST_MAIN(TestFtpConnection)
#include "test_ftpconnection.moc"
