// The session over SFTP against a real SSH server on loopback (python3-asyncssh): directory work,
// sends, fetches, renames and deletes read as over FTP, a wrong password gives the refused-login
// message, and the server's host key is checked against ~/.ssh/known_hosts: a new one asked
// about once and added, a changed one refused with a warning.
#include "FtpErrors.h"
#include "FtpTestServer.h"
#include "HostKey.h"
#include "JobState.h"
#include "TestMain.h"
#include "TransferEngine.h"
#include "TransferUi.h"
#include "cFTP.h"

#include <QDir>
#include <QFile>

namespace {

FtpTestServer::Options sftpOptions(bool known = true)
{
    FtpTestServer::Options options;
    options.sftp = true;
    options.tls = false;
    options.trustCertificate = known;
    return options;
}

QByteArray pattern(qint64 size)
{
    QByteArray data(size, Qt::Uninitialized);
    for (qint64 i = 0; i < size; ++i)
        data[i] = char((i * 13 + i / 257) & 0xff);
    return data;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

bool write(const QString &path, const QByteArray &data)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

QByteArray knownHosts()
{
    return readAll(KnownHostsPath());
}

} // namespace

class TestSftp : public QObject
{
    Q_OBJECT
    JobState m_state;
    QTemporaryDir m_local;

private slots:
    void init()
    {
        ClearTemporaryHome();
        m_state.reset();
    }

    void directoriesFilesAndListingsAsOverFtp()
    {
        FtpTestServer server(sftpOptions());
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        cFTP ftp(m_state);
        QVERIFY2(ftp.OpenConnection(server.server(), server.user(), server.password()),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(ftp.ConnectionSecurity(), QStringLiteral("SFTP"));
        QCOMPARE(ftp.CurrentDirectory(), QStringLiteral("/"));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
        QCOMPARE(server.logins(), 1);

        QVERIFY2(ftp.CreateFTPDirectory(QStringLiteral("Photos")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(QFileInfo(server.localPath(QStringLiteral("/Photos"))).isDir());
        // A folder that exists is refused with 550, as an FTP server refuses it.
        QVERIFY(!ftp.CreateFTPDirectory(QStringLiteral("Photos")));
        QVERIFY2(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")),
                 qPrintable(ftp.GetLastErrorMessage()));

        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("Photos")));
        QCOMPARE(ftp.CurrentDirectory(), QStringLiteral("/Photos"));
        QVERIFY(!ftp.SetFTPDirectory(QStringLiteral("/no-such")));
        QCOMPARE(ftp.CurrentDirectory(), QStringLiteral("/Photos"));

        const QByteArray content = pattern(300 * 1024 + 17);
        const QString local = m_local.filePath(QStringLiteral("a b.jpg"));
        QVERIFY(write(local, content));
        ftp.SetTransferBinary();
        QVERIFY2(ftp.FTPUploadFile(local, QStringLiteral("a b.jpg")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(readAll(server.localPath(QStringLiteral("/Photos/a b.jpg"))), content);

        const cDirList *list = ftp.GetDirectoryListing(QStringLiteral("*.*"));
        QVERIFY2(list, qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(list->Count(), 1);
        QCOMPARE(list->Item(0)->Name, QStringLiteral("a b.jpg"));
        QCOMPARE(list->Item(0)->Size, qint64(content.size()));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("a b.jpg")), qint64(content.size()));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("none.jpg")), qint64(-1));

        const QString back = m_local.filePath(QStringLiteral("back.jpg"));
        QVERIFY2(ftp.FTPDownloadFile(back, QStringLiteral("a b.jpg")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(readAll(back), content);

        QVERIFY(ftp.RenameFTPFile(QStringLiteral("a b.jpg"), QStringLiteral("c.jpg")));
        QCOMPARE(readAll(server.localPath(QStringLiteral("/Photos/c.jpg"))), content);
        // A rename onto a file that exists replaces it, as over FTP.
        QVERIFY(write(server.localPath(QStringLiteral("/Photos/d.jpg")), "old"));
        QVERIFY(ftp.RenameFTPFile(QStringLiteral("c.jpg"), QStringLiteral("d.jpg")));
        QCOMPARE(readAll(server.localPath(QStringLiteral("/Photos/d.jpg"))), content);

        QVERIFY(ftp.DeleteFTPFile(QStringLiteral("d.jpg")));
        QVERIFY(!QFile::exists(server.localPath(QStringLiteral("/Photos/d.jpg"))));
        QVERIFY(!ftp.DeleteFTPFile(QStringLiteral("d.jpg")));
        QVERIFY(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")));

        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("..")));
        QCOMPARE(ftp.CurrentDirectory(), QStringLiteral("/"));
        QVERIFY(ftp.RemoveFTPDirectory(QStringLiteral("Photos")));
        QVERIFY(!QFileInfo::exists(server.localPath(QStringLiteral("/Photos"))));
        // All of it over the one login.
        QCOMPARE(server.logins(), 1);
        ftp.CloseConnection();
    }

    void wrongPasswordGivesTheRefusedLoginMessage()
    {
        FtpTestServer server(sftpOptions());
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        cFTP ftp(m_state);
        QVERIFY(!ftp.OpenConnection(server.server(), server.user(), QStringLiteral("wrong")));
        QCOMPARE(ftp.GetLastErrorMessage(),
                 QStringLiteral("Request to connect and login to an FTP server could not be "
                                "completed because the supplied password is incorrect.  Message: "
                                "12014 error code: InternetConnect"));
    }

    void droppedUploadIsTriedAgainWhole()
    {
        FtpTestServer::Options options = sftpOptions();
        options.faults = {QStringLiteral("drop-after=200000")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        const QString field = server.server();
        const QByteArray content = pattern(2 * 1024 * 1024);
        const QString local = m_local.filePath(QStringLiteral("cut.bin"));
        QVERIFY(write(local, content));

        struct QuietUi final : TransferUi
        {
            void ShowProgress() override {}
            void HideProgress() override {}
            void UnloadProgress() override {}
            void FloodFillInit(double, const QString &) override {}
            void FloodFillUpdate(double) override {}
            void FloodShowStatus(const QString &) override {}
            void SetBusyCursor(bool) override {}
            void ShowUploadError(const QString &text, int) override { errors.append(text); }
            QStringList errors;
        } ui;
        TransferEngine engine(ui, m_state);
        QVERIFY(!engine.SessionUpload(field, server.user(), server.password(), QStringLiteral("/"),
                                      local));
        QCOMPARE(engine.LastError, 12030);
        QVERIFY(!QFile::exists(server.localPath(QStringLiteral("/cut.bin"))));
        QVERIFY2(engine.SessionUpload(field, server.user(), server.password(), QStringLiteral("/"),
                                      local),
                 qPrintable(engine.LastErrorText));
        QCOMPARE(readAll(server.localPath(QStringLiteral("/cut.bin"))), content);
        QCOMPARE(QDir(server.homePath()).entryList(QDir::Files),
                 QStringList{QStringLiteral("cut.bin")});
        QCOMPARE(server.logins(), 2);
    }

    void newHostKeyIsAskedOnceAndAdded()
    {
        FtpTestServer server(sftpOptions(false));
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        const QString field = QStringLiteral("sftp://") + server.address();
        QList<FtpConnection::CertificateQuestion> asked;
        {
            cFTP ftp(m_state);
            ftp.TrustQuestion = [&asked](const FtpConnection::CertificateQuestion &question) {
                asked.append(question);
                return false;
            };
            QVERIFY(!ftp.OpenConnection(field, server.user(), server.password()));
            QCOMPARE(asked.size(), 1);
            QVERIFY(asked.first().fingerprint.startsWith(QStringLiteral("SHA256:")));
            QVERIFY(ftp.GetLastErrorMessage().contains(asked.first().fingerprint));
            QCOMPARE(server.logins(), 0);
            QVERIFY(!knownHosts().contains(server.knownHostsLine().toLatin1()));
        }
        {
            cFTP ftp(m_state);
            ftp.TrustQuestion = [&asked](const FtpConnection::CertificateQuestion &question) {
                asked.append(question);
                return true;
            };
            QVERIFY2(ftp.OpenConnection(field, server.user(), server.password()),
                     qPrintable(ftp.GetLastErrorMessage()));
            QCOMPARE(asked.size(), 2);
            QVERIFY2(knownHosts().contains(server.knownHostsLine().toLatin1()),
                     knownHosts().constData());
        }
        {
            cFTP ftp(m_state);
            ftp.TrustQuestion = [&asked](const FtpConnection::CertificateQuestion &question) {
                asked.append(question);
                return true;
            };
            QVERIFY(ftp.OpenConnection(field, server.user(), server.password()));
            QCOMPARE(asked.size(), 2);
        }
    }

    void changedHostKeyIsRefusedWithAWarning()
    {
        FtpTestServer server(sftpOptions());
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        const QString field = server.server(); // the first key is known
        QVERIFY2(server.renewCertificate(), qPrintable(server.errorString()));
        int asked = 0;
        cFTP ftp(m_state);
        ftp.TrustQuestion = [&asked](const FtpConnection::CertificateQuestion &) {
            ++asked;
            return true;
        };
        const int logins = server.logins();
        QVERIFY(!ftp.OpenConnection(QStringLiteral("sftp://") + server.address(), server.user(),
                                    server.password()));
        QCOMPARE(asked, 0);
        const QString message = ftp.GetLastErrorMessage();
        QVERIFY2(message.startsWith(QStringLiteral("WARNING: the host key of ")),
                 qPrintable(message));
        QVERIFY(message.contains(QStringLiteral("Message: 12045")));
        QCOMPARE(server.logins(), logins);
        Q_UNUSED(field);
    }

    void hostKeyLines_data()
    {
        QTest::addColumn<QByteArray>("blob");
        QTest::addColumn<QString>("type");
        QTest::newRow("ed25519") << QByteArray("\0\0\0\x0bssh-ed25519\0\0\0\x20", 19) +
                                        QByteArray(32, 'k')
                                 << "ssh-ed25519";
        QTest::newRow("empty") << QByteArray() << "";
        QTest::newRow("length beyond") << QByteArray("\0\0\0\x40ssh", 7) << "";
        QTest::newRow("blank in name") << QByteArray("\0\0\0\x03s h", 7) << "";
    }

    void hostKeyLines()
    {
        QFETCH(QByteArray, blob);
        QFETCH(QString, type);
        HostKey key;
        key.blob = blob;
        QCOMPARE(key.typeName(), type);
        const QString line = key.knownHostsLine(QStringLiteral("127.0.0.1"), 2222);
        if (type.isEmpty()) {
            QVERIFY(line.isEmpty());
        } else {
            QCOMPARE(line, QStringLiteral("[127.0.0.1]:2222 ") + type + QLatin1Char(' ') +
                               QString::fromLatin1(blob.toBase64()));
            QCOMPARE(key.knownHostsLine(QStringLiteral("h"), 22).section(QLatin1Char(' '), 0, 0),
                     QStringLiteral("h"));
        }
    }
};

TARNWICK_TEST_MAIN(TestSftp)
#include "test_sftp.moc"
