// Encrypted connections: the server field's protocols, TLS asked for and required, the server's
// certificate checked, trusted once by the user and asked about again when it changes, against
// real pyftpdlib servers on loopback with and without TLS.
#include "CertificateTrust.h"
#include "FtpErrors.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "Settings.h"
#include "TestMain.h"
#include "cFTP.h"

#include <QSignalSpy>

namespace {

FtpTestServer::Options tlsOptions(bool trusted)
{
    FtpTestServer::Options options;
    options.tls = true;
    options.trustCertificate = trusted;
    return options;
}

FtpTestServer::Options plainOptions()
{
    FtpTestServer::Options options;
    options.tls = false;
    return options;
}

bool loggedInOrSentName(const FtpTestServer &server)
{
    return server.countCommands(QStringLiteral("USER")) > 0 ||
           server.countCommands(QStringLiteral("PASS")) > 0 || server.logins() > 0;
}

// Every question put, answered with the answers given in turn (then No).
struct TrustAnswers
{
    QList<bool> answers;
    QList<FtpConnection::CertificateQuestion> asked;
    void hook(cFTP &ftp)
    {
        ftp.TrustQuestion = [this](const FtpConnection::CertificateQuestion &question) {
            asked.append(question);
            return answers.isEmpty() ? false : answers.takeFirst();
        };
    }
};

} // namespace

class TestSecureConnection : public QObject
{
    Q_OBJECT
    JobState m_state;

private slots:
    void init()
    {
        ClearTemporaryHome();
        m_state.reset();
    }

    void serverField_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("protocol");
        const int ftp = int(FtpAddress::Protocol::Ftp);
        const int ftps = int(FtpAddress::Protocol::Ftps);
        const int sftp = int(FtpAddress::Protocol::Sftp);
        QTest::newRow("host") << "example.com" << true << "example.com" << 21 << ftp;
        QTest::newRow("host:port") << "example.com:2121" << true << "example.com" << 2121 << ftp;
        QTest::newRow("ftp://") << "ftp://example.com" << true << "example.com" << 21 << ftp;
        QTest::newRow("ftps://") << "ftps://example.com" << true << "example.com" << 21 << ftps;
        QTest::newRow("ftps:// port path")
            << "FTPS://Example.com:990/web/" << true << "Example.com" << 990 << ftps;
        QTest::newRow("sftp://") << "sftp://example.com" << true << "example.com" << 22 << sftp;
        QTest::newRow("sftp:// port")
            << "sftp://example.com:2222" << true << "example.com" << 2222 << sftp;
        QTest::newRow("sftp:// ipv6") << "sftp://[::1]:2200" << true << "::1" << 2200 << sftp;
        QTest::newRow("user in front")
            << "ftps://me@example.com" << true << "example.com" << 21 << ftps;
        QTest::newRow("other scheme") << "http://example.com" << false << "" << 21 << ftp;
        QTest::newRow("scheme alone") << "ftps://" << false << "" << 21 << ftps;
    }

    void serverField()
    {
        QFETCH(QString, field);
        QFETCH(bool, valid);
        QFETCH(QString, host);
        QFETCH(int, port);
        QFETCH(int, protocol);
        const FtpAddress address = FtpAddress::fromServerField(field);
        QCOMPARE(address.valid, valid);
        if (!valid)
            return;
        QCOMPARE(address.host, host);
        QCOMPARE(address.port, port);
        QCOMPARE(int(address.protocol), protocol);
    }

    void baseUrlNamesTheLibrarysScheme()
    {
        QCOMPARE(FtpAddress::fromServerField(QStringLiteral("ftps://h")).baseUrl(),
                 QByteArray("ftp://h:21/"));
        QCOMPARE(FtpAddress::fromServerField(QStringLiteral("ftps://h:990")).baseUrl(),
                 QByteArray("ftps://h:990/"));
        QCOMPARE(FtpAddress::fromServerField(QStringLiteral("sftp://h")).baseUrl(),
                 QByteArray("sftp://h:22/"));
    }

    void ftpsReachesTls()
    {
        FtpTestServer server(tlsOptions(true));
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        cFTP ftp(m_state);
        QSignalSpy notices(&ftp, &cFTP::SecurityNotice);
        QVERIFY2(ftp.OpenConnection(server.server(), server.user(), server.password()),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY2(ftp.ConnectionSecurity().startsWith(QStringLiteral("FTPS (TLS 1.")),
                 qPrintable(ftp.ConnectionSecurity()));
        QCOMPARE(notices.count(), 0);
        // The session was secured before the name went, and so were the data connections.
        const QStringList commands = server.commands();
        const qsizetype auth = commands.indexOf(QStringLiteral("AUTH TLS"));
        QVERIFY2(auth >= 0, qPrintable(commands.join(QLatin1Char('|'))));
        QVERIFY(auth < commands.indexOf(QStringLiteral("USER ") + server.user()));
        QVERIFY(commands.contains(QStringLiteral("PROT P")));
        QVERIFY(ftp.GetDirectoryListing(QStringLiteral("*.*")) == nullptr);
        QVERIFY2(ftp.GetLastErrorMessage().isEmpty(), qPrintable(ftp.GetLastErrorMessage()));
        ftp.CloseConnection();
    }

    void plainHostTakesTlsWhenOffered()
    {
        FtpTestServer server(tlsOptions(true));
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        server.server(); // trusts its certificate
        cFTP ftp(m_state);
        QSignalSpy notices(&ftp, &cFTP::SecurityNotice);
        QVERIFY2(ftp.OpenConnection(server.address(), server.user(), server.password()),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(ftp.ConnectionSecurity().startsWith(QStringLiteral("FTPS (TLS")));
        QCOMPARE(notices.count(), 0);
    }

    void plainHostFallsBackToPlainFtpAndSaysSoOnce()
    {
        FtpTestServer server(plainOptions());
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        cFTP ftp(m_state);
        QSignalSpy notices(&ftp, &cFTP::SecurityNotice);
        QVERIFY(ftp.OpenConnection(server.address(), server.user(), server.password()));
        QCOMPARE(ftp.ConnectionSecurity(), QStringLiteral("plain FTP, not encrypted"));
        QCOMPARE(ConnectedWithText(ftp.ConnectionSecurity()),
                 QStringLiteral("Connected with plain FTP, not encrypted"));
        QVERIFY(server.commands().contains(QStringLiteral("AUTH TLS")));
        QCOMPARE(notices.count(), 1);
        QVERIFY(notices.first().first().toString().contains(QStringLiteral("plain FTP")));
        QVERIFY(ftp.OpenConnection(QStringLiteral("ftp://") + server.address(), server.user(),
                                   server.password()));
        QCOMPARE(notices.count(), 1);
    }

    void ftpsToAServerWithoutTlsSendsNothingInClear()
    {
        FtpTestServer server(plainOptions());
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        cFTP ftp(m_state);
        QVERIFY(!ftp.OpenConnection(QStringLiteral("ftps://") + server.address(), server.user(),
                                    server.password()));
        QVERIFY(!ftp.IsConnected());
        const QString message = ftp.GetLastErrorMessage();
        QVERIFY2(message.contains(QStringLiteral("offers no encrypted connection")),
                 qPrintable(message));
        QVERIFY(message.endsWith(QStringLiteral("Message: 12157 error code: InternetConnect")));
        QVERIFY2(!loggedInOrSentName(server), qPrintable(server.commands().join(QLatin1Char('|'))));
    }

    void selfSignedCertificateIsRefusedWithItsFingerprint()
    {
        FtpTestServer server(tlsOptions(false));
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        const QString fingerprint = server.certificateFingerprint();
        QVERIFY(CertificateTrust::IsFingerprint(fingerprint));
        for (const QString &field :
             {server.address(), QStringLiteral("ftps://") + server.address()}) {
            cFTP ftp(m_state);
            QVERIFY(!ftp.OpenConnection(field, server.user(), server.password()));
            const QString message = ftp.GetLastErrorMessage();
            QVERIFY2(message.contains(QStringLiteral("self-signed certificate")),
                     qPrintable(message));
            QVERIFY2(message.contains(fingerprint), qPrintable(message));
            QVERIFY(message.endsWith(QStringLiteral("Message: 12045 error code: InternetConnect")));
        }
        QVERIFY2(!loggedInOrSentName(server), qPrintable(server.commands().join(QLatin1Char('|'))));
        QVERIFY(!HasSetting(CertificateTrust::Key));
    }

    void certificateTrustedOnceThenAskedAgainWhenItChanges()
    {
        FtpTestServer server(tlsOptions(false));
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        const QString field = QStringLiteral("ftps://") + server.address();
        const QString first = server.certificateFingerprint();

        // Refused by the user: nothing kept, no login.
        {
            cFTP ftp(m_state);
            TrustAnswers user{{false}, {}};
            user.hook(ftp);
            QVERIFY(!ftp.OpenConnection(field, server.user(), server.password()));
            QCOMPARE(user.asked.size(), 1);
            QCOMPARE(user.asked.first().fingerprint, first);
            QCOMPARE(user.asked.first().server, server.address());
            QVERIFY(!user.asked.first().changed);
            QVERIFY(TrustQuestionText(user.asked.first()).contains(first));
            QVERIFY(CertificateTrust::Trusted(server.address()).isEmpty());
            QCOMPARE(server.logins(), 0);
        }
        // Trusted: the connection goes on and the certificate is kept for this server.
        {
            cFTP ftp(m_state);
            TrustAnswers user{{true}, {}};
            user.hook(ftp);
            QVERIFY2(ftp.OpenConnection(field, server.user(), server.password()),
                     qPrintable(ftp.GetLastErrorMessage()));
            QCOMPARE(user.asked.size(), 1);
            QCOMPARE(CertificateTrust::Trusted(server.address()), first);
            QVERIFY(GetSetting(CertificateTrust::Key).contains(first));
            // Files go over the engine's connection without a question.
            QVERIFY(ftp.GetDirectoryListing(QStringLiteral("*.*")) == nullptr);
            QVERIFY(ftp.GetLastErrorMessage().isEmpty());
            QCOMPARE(user.asked.size(), 1);
        }
        // A later connection takes it without asking.
        {
            cFTP ftp(m_state);
            TrustAnswers user;
            user.hook(ftp);
            QVERIFY(ftp.OpenConnection(field, server.user(), server.password()));
            QCOMPARE(user.asked.size(), 0);
        }
        // A new certificate on the same server is asked about again, as a change.
        QVERIFY2(server.renewCertificate(), qPrintable(server.errorString()));
        const QString second = server.certificateFingerprint();
        QVERIFY(second != first);
        const int loginsBefore = server.logins();
        {
            cFTP ftp(m_state);
            TrustAnswers user{{false}, {}};
            user.hook(ftp);
            QVERIFY(!ftp.OpenConnection(field, server.user(), server.password()));
            QCOMPARE(user.asked.size(), 1);
            QVERIFY(user.asked.first().changed);
            QCOMPARE(user.asked.first().fingerprint, second);
            QVERIFY(TrustQuestionText(user.asked.first()).contains(QStringLiteral("has changed")));
            QVERIFY(ftp.GetLastErrorMessage().contains(second));
            QCOMPARE(server.logins(), loginsBefore);
            QCOMPARE(CertificateTrust::Trusted(server.address()), first);
        }
        // Without anyone to ask, the changed certificate is refused.
        {
            cFTP ftp(m_state);
            QVERIFY(!ftp.OpenConnection(field, server.user(), server.password()));
            QVERIFY(ftp.GetLastErrorMessage().contains(QStringLiteral("12045")));
        }
    }

    void wrongPasswordOverFtpsGivesTheRefusedLoginMessage()
    {
        FtpTestServer server(tlsOptions(true));
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        cFTP ftp(m_state);
        QVERIFY(!ftp.OpenConnection(server.server(), server.user(), QStringLiteral("wrong")));
        QCOMPARE(ftp.GetLastErrorMessage(),
                 QStringLiteral("Request to connect and login to an FTP server could not be "
                                "completed because the supplied password is incorrect.  Message: "
                                "12014 error code: InternetConnect"));
        // The password went encrypted: the session was secured first.
        const QStringList commands = server.commands();
        QVERIFY(commands.indexOf(QStringLiteral("AUTH TLS")) >= 0);
        QVERIFY(commands.indexOf(QStringLiteral("AUTH TLS")) <
                commands.indexOf(QStringLiteral("PASS ****")));
    }

    void trustStoreReadsOnlyWhatItWrites_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("entries");
        const QString fp = QStringLiteral("AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89:"
                                          "AB:CD:EF:01:23:45:67:89:AB:CD:EF:01:23:45:67:89");
        QTest::newRow("empty") << "" << 0;
        QTest::newRow("one") << "h:21=" + fp << 1;
        QTest::newRow("lower case") << "h:21=" + fp.toLower() << 1;
        QTest::newRow("two") << "h:21=" + fp + ";[::1]:990=" + fp << 2;
        QTest::newRow("twice the same server") << "h:21=" + fp + ";h:21=" + fp << 1;
        QTest::newRow("short fingerprint") << "h:21=AB:CD" << 0;
        QTest::newRow("no server") << "=" + fp << 0;
        QTest::newRow("no equals") << "h:21" << 0;
        QTest::newRow("blank in server") << "h x:21=" + fp << 0;
        QTest::newRow("stray separators") << ";;h:21=" + fp + ";;" << 1;
    }

    void trustStoreReadsOnlyWhatItWrites()
    {
        QFETCH(QString, stored);
        QFETCH(int, entries);
        const auto parsed = CertificateTrust::Parse(stored);
        QCOMPARE(parsed.size(), entries);
        QCOMPARE(CertificateTrust::Parse(CertificateTrust::Format(parsed)), parsed);
    }
};

TARNWICK_TEST_MAIN(TestSecureConnection)
#include "test_secureconnection.moc"
