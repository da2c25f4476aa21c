#include "FtpErrors.h"
#include "FtpListing.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "TestMain.h"
#include "cFTP.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTimer>

namespace {

void writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

void WriteTestFile2(const QString &path, const QByteArray &content)
{
    writeFile(path, content);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray("<missing>");
    return file.readAll();
}

QByteArray pattern(qint64 size)
{
    QByteArray data(size, Qt::Uninitialized);
    for (qint64 i = 0; i < size; ++i)
        data[i] = char((i * 7 + i / 251) & 0xff);
    return data;
}

} // namespace

class TestCFtp : public QObject
{
    Q_OBJECT
    // The job-wide state of this test program, as the program makes one for its run.
    JobState m_state;

private:
    std::unique_ptr<FtpTestServer> m_server;
    QTemporaryDir m_local;

    bool connect(cFTP &ftp)
    {
        return ftp.OpenConnection(m_server->server(), m_server->user(), m_server->password());
    }

private slots:
    void initTestCase()
    {
        m_server = std::make_unique<FtpTestServer>();
        QVERIFY2(m_server->start(), qPrintable(m_server->errorString()));
    }

    void init() { m_state.reset(); }

    void serverField_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port");
        QTest::newRow("host") << "ftp.example.com" << true << "ftp.example.com" << 21;
        QTest::newRow("host:port") << "ftp.example.com:2121" << true << "ftp.example.com" << 2121;
        QTest::newRow("blanks around") << "  example.com  " << true << "example.com" << 21;
        QTest::newRow("scheme and path") << "ftp://example.com/web/" << true << "example.com" << 21;
        QTest::newRow("ipv6") << "[::1]:2100" << true << "::1" << 2100;
        QTest::newRow("empty") << "" << false << "" << 21;
        QTest::newRow("bad port") << "example.com:x" << false << "example.com" << 21;
        QTest::newRow("port too big") << "example.com:70000" << false << "example.com" << 21;
    }

    void serverField()
    {
        QFETCH(QString, field);
        QFETCH(bool, valid);
        QFETCH(QString, host);
        QFETCH(int, port);
        const FtpAddress address = FtpAddress::fromServerField(field);
        QCOMPARE(address.valid, valid);
        if (valid) {
            QCOMPARE(address.host, host);
            QCOMPARE(address.port, port);
        }
    }

    void reply257_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QString>("path");
        QTest::newRow("plain") << "257 \"/web\" is the current directory."
                               << "/web";
        QTest::newRow("doubled quote") << "257 \"/a \"\"b\"\"\" is current"
                                       << "/a \"b\"";
        QTest::newRow("blanks") << "257 \"/my photos\" created"
                                << "/my photos";
        QTest::newRow("none") << "257 no path here"
                              << "";
    }

    void reply257()
    {
        QFETCH(QString, reply);
        QFETCH(QString, path);
        QCOMPARE(PathFrom257(reply), path);
    }

    void openConnectionLogsInAndStandsInLoginDirectory()
    {
        cFTP ftp(m_state);
        ftp.SetTransferBinary();
        ftp.SetModePassive();
        QVERIFY2(connect(ftp), qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(ftp.IsConnected());
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
        // A new connection starts in ASCII with the active flag, whatever was set before.
        QCOMPARE(ftp.TransferType(), cFTP::FTP_TRANSFER_TYPE_ASCII);
        QCOMPARE(ftp.PassiveFlag(), 0u);
        ftp.SetModeActive();
        QCOMPARE(ftp.PassiveFlag(), 0u);
        ftp.SetModePassive();
        QCOMPARE(ftp.PassiveFlag(), cFTP::INTERNET_FLAG_PASSIVE);
        // The data connections stay passive whatever the flag says.
        const int passiveBefore = m_server->countCommands(QStringLiteral("EPSV")) +
                                  m_server->countCommands(QStringLiteral("PASV"));
        QVERIFY(ftp.GetDirectoryListing(QStringLiteral("*.*")) ||
                ftp.GetLastErrorMessage().isEmpty());
        // The listing's data connection was opened by the client: no PORT or EPRT went out.
        QVERIFY(m_server->countCommands(QStringLiteral("EPSV")) +
                    m_server->countCommands(QStringLiteral("PASV")) >
                passiveBefore);
        QCOMPARE(m_server->countCommands(QStringLiteral("PORT")), 0);
        QCOMPARE(m_server->countCommands(QStringLiteral("EPRT")), 0);
    }

    void wrongPasswordFailsAtConnect()
    {
        cFTP ftp(m_state);
        QVERIFY(!ftp.OpenConnection(m_server->server(), m_server->user(), QStringLiteral("wrong")));
        QVERIFY(!ftp.IsConnected());
        QCOMPARE(ftp.GetLastErrorMessage(),
                 QStringLiteral("Request to connect and login to an FTP server could not be "
                                "completed because the supplied password is incorrect.  Message: "
                                "12014 error code: InternetConnect"));
    }

    void refusedConnectionNamesTheOperation()
    {
        cFTP ftp(m_state);
        // A port nobody listens on: the connect fails at once.
        QVERIFY(!ftp.OpenConnection(QStringLiteral("127.0.0.1:1"), QStringLiteral("u"),
                                    QStringLiteral("p")));
        QCOMPARE(
            ftp.GetLastErrorMessage(),
            QStringLiteral("Attempt to connect to the server failed. Message: 12029 error code: "
                           "InternetConnect"));
        QVERIFY(!ftp.OpenConnection(QString(), QString(), QString()));
        QVERIFY(ftp.GetLastErrorMessage().endsWith(
            QStringLiteral("12007 error code: InternetConnect")));
    }

    void callsWithoutConnectionFail()
    {
        cFTP ftp(m_state);
        QVERIFY(!ftp.DeleteFTPFile(QStringLiteral("x")));
        QVERIFY(ftp.GetLastErrorMessage().endsWith(QStringLiteral("error code: DeleteFTPFile")));
        QCOMPARE(ftp.GetFTPDirectory(), QString());
        QVERIFY(ftp.GetLastErrorMessage().endsWith(
            QStringLiteral("error code: FtpGetCurrentDirectory")));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("x")), qint64(-2));
        QVERIFY(ftp.GetLastErrorMessage().endsWith(QStringLiteral("error code: FtpFindFirstFile")));
        QCOMPARE(ftp.CurrentDirectory(), QString());
    }

    void closeConnectionTwiceIsHarmless()
    {
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        ftp.CloseConnection();
        ftp.CloseConnection();
        QVERIFY(!ftp.IsConnected());
        QVERIFY(!ftp.CreateFTPDirectory(QStringLiteral("late")));
        QVERIFY(m_server->commands().contains(QStringLiteral("QUIT")));
    }

    void directoriesAreMadeEnteredAndRemoved()
    {
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        QVERIFY2(ftp.CreateFTPDirectory(QStringLiteral("Photos")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(QFileInfo(m_server->localPath(QStringLiteral("/Photos"))).isDir());
        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("Photos")));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/Photos"));
        QVERIFY(ftp.CreateFTPDirectory(QStringLiteral("My Page")));
        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("My Page")));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/Photos/My Page"));
        QCOMPARE(ftp.CurrentDirectory(), QStringLiteral("/Photos/My Page"));
        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("..")));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/Photos"));
        QVERIFY(ftp.RemoveFTPDirectory(QStringLiteral("My Page")));
        QVERIFY(!QFileInfo::exists(m_server->localPath(QStringLiteral("/Photos/My Page"))));
        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("/")));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));

        // A missing directory: the server's reply is the whole message.
        QVERIFY(!ftp.SetFTPDirectory(QStringLiteral("nowhere")));
        QVERIFY2(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
        // A directory that exists already.
        QVERIFY(!ftp.CreateFTPDirectory(QStringLiteral("Photos")));
        QVERIFY(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")));
        QVERIFY(ftp.RemoveFTPDirectory(QStringLiteral("Photos")));
    }

    void deleteAndRename()
    {
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        writeFile(m_server->localPath(QStringLiteral("old.txt")), "text");
        QVERIFY2(ftp.RenameFTPFile(QStringLiteral("old.txt"), QStringLiteral("new name.txt")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(readFile(m_server->localPath(QStringLiteral("new name.txt"))), QByteArray("text"));
        QVERIFY(!ftp.RenameFTPFile(QStringLiteral("old.txt"), QStringLiteral("other.txt")));
        QVERIFY2(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(ftp.DeleteFTPFile(QStringLiteral("new name.txt")));
        QVERIFY(!QFileInfo::exists(m_server->localPath(QStringLiteral("new name.txt"))));
        QVERIFY(!ftp.DeleteFTPFile(QStringLiteral("new name.txt")));
        QVERIFY(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")));
        // The connection is still good after a refusal.
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
        // A name that would smuggle a second command is refused here.
        QVERIFY(!ftp.DeleteFTPFile(QStringLiteral("a\r\nRMD x")));
        QVERIFY(ftp.GetLastErrorMessage().contains(QStringLiteral("12016")));
    }

    void listingHoldsEveryKindOfName()
    {
        QDir(m_server->localPath(QStringLiteral("/list"))).removeRecursively();
        writeFile(m_server->localPath(QStringLiteral("/list/README")), "no dot");
        writeFile(m_server->localPath(QStringLiteral("/list/with blanks.jpg")), "12345");
        writeFile(m_server->localPath(QStringLiteral("/list/Grüße.txt")), "äö");
        writeFile(m_server->localPath(QStringLiteral("/list/-dash.htm")), "");
        QDir().mkpath(m_server->localPath(QStringLiteral("/list/sub dir")));

        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("list")));
        const cDirList *list = ftp.GetDirectoryListing(QStringLiteral("*.*"));
        QVERIFY2(list, qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(list, &ftp.Directory());
        QCOMPARE(list->Count(), 5);
        QVERIFY(list->Item(QStringLiteral("README")));
        QCOMPARE(list->Item(QStringLiteral("with blanks.jpg"))->Size, 5);
        QCOMPARE(list->Item(QStringLiteral("Grüße.txt"))->Size, 4);
        QVERIFY(list->Item(QStringLiteral("-dash.htm")));
        QVERIFY(list->Item(QStringLiteral("sub dir"))->isDirectory());
        QVERIFY(!list->Item(QStringLiteral("README"))->isDirectory());
        QVERIFY(list->Item(QStringLiteral("readme")));
        QVERIFY(!list->Item(QStringLiteral("missing")));
        const QDateTime written = list->Item(QStringLiteral("README"))->LastWriteTime;
        QVERIFY(written.isValid());
        QVERIFY(qAbs(written.secsTo(QDateTime::currentDateTime())) < 3600);

        const cDirList *jpgs = ftp.GetDirectoryListing(QStringLiteral("*.JPG"));
        QVERIFY(jpgs);
        QCOMPARE(jpgs->Count(), 1);

        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("with blanks.jpg")), qint64(5));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("-dash.htm")), qint64(0));
        const QString before = ftp.GetLastErrorMessage();
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("missing.txt")), qint64(-1));
        QCOMPARE(ftp.GetLastErrorMessage(), before);
    }

    void emptyDirectoryGivesEmptyListAndNoError()
    {
        QDir().mkpath(m_server->localPath(QStringLiteral("/empty")));
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        // A listing of the root first, so that the empty one must replace it.
        QVERIFY(ftp.GetDirectoryListing(QStringLiteral("*.*")));
        QVERIFY(ftp.Directory().Item(QStringLiteral("empty")));
        QVERIFY(ftp.SetFTPDirectory(QStringLiteral("empty")));
        QVERIFY(!ftp.GetDirectoryListing(QStringLiteral("*.*")));
        QCOMPARE(ftp.Directory().Count(), 0);
        QCOMPARE(ftp.GetLastErrorMessage(), QString());
    }

    void blockUploadRaisesEventsPer255Bytes_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<QList<qint64>>("events");
        QTest::newRow("empty") << 0 << QList<qint64>{0};
        QTest::newRow("short") << 100 << QList<qint64>{100};
        QTest::newRow("one block and a rest") << 300 << QList<qint64>{255, 300};
        QTest::newRow("exact multiple") << 510 << QList<qint64>{255, 510, 510};
        QTest::newRow("many blocks") << 255 * 300 + 7 << [] {
            QList<qint64> list;
            for (int i = 1; i <= 300; ++i)
                list << 255 * i;
            list << 255 * 300 + 7;
            return list;
        }();
    }

    void blockUploadRaisesEventsPer255Bytes()
    {
        QFETCH(int, length);
        QFETCH(QList<qint64>, events);
        const QByteArray content = pattern(length);
        const QString local = m_local.filePath(QStringLiteral("up.bin"));
        writeFile(local, content);
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        ftp.SetTransferBinary();
        QSignalSpy spy(&ftp, &cFTP::FileTransferProgress);
        QVERIFY2(ftp.FTPUploadFile(QStringLiteral("  ") + local, QStringLiteral(" up.bin ")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(readFile(m_server->localPath(QStringLiteral("up.bin"))), content);
        QList<qint64> seen;
        for (const auto &arguments : spy) {
            seen << arguments.at(0).toLongLong();
            QCOMPARE(arguments.at(1).toLongLong(), qint64(length));
        }
        QCOMPARE(seen, events);
    }

    void blockTransfersRefuseEmptyPaths()
    {
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        const QString before = ftp.GetLastErrorMessage();
        QVERIFY(!ftp.FTPUploadFile(QStringLiteral("  "), QStringLiteral("x")));
        QVERIFY(!ftp.FTPDownloadFile(QStringLiteral("x"), QStringLiteral("")));
        QCOMPARE(ftp.GetLastErrorMessage(), before);
    }

    void blockDownload()
    {
        const QByteArray content = pattern(255 * 4 + 10);
        writeFile(m_server->localPath(QStringLiteral("down load.bin")), content);
        writeFile(m_server->localPath(QStringLiteral("zero.bin")), "");
        const QString local = m_local.filePath(QStringLiteral("down.bin"));
        writeFile(local, QByteArray(5000, 'x')); // a longer old copy is replaced whole

        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        ftp.SetTransferBinary();
        QSignalSpy progress(&ftp, &cFTP::FileTransferProgress);
        QSignalSpy shown(&ftp, &cFTP::DownloadBarShown);
        QSignalSpy hidden(&ftp, &cFTP::DownloadBarHidden);
        QVERIFY2(ftp.FTPDownloadFile(local, QStringLiteral("down load.bin")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(readFile(local), content);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.at(0).at(0).toLongLong(), qint64(content.size()));
        QCOMPARE(hidden.size(), 1);
        QCOMPARE(progress.size(), 5);
        QCOMPARE(progress.last().at(0).toLongLong(), qint64(content.size()));

        // An empty remote file fails at once, with no message of its own and no bar.
        const QString before = ftp.GetLastErrorMessage();
        QVERIFY(!ftp.FTPDownloadFile(m_local.filePath(QStringLiteral("zero.bin")),
                                     QStringLiteral("zero.bin")));
        QCOMPARE(ftp.GetLastErrorMessage(), before);
        QCOMPARE(shown.size(), 1);
        QVERIFY(!QFileInfo::exists(m_local.filePath(QStringLiteral("zero.bin"))));
    }

    void simpleTransfersKeepTheType()
    {
        const QByteArray text("line one\r\nline two\r\n");
        const QString local = m_local.filePath(QStringLiteral("simple.txt"));
        writeFile(local, text);
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        QVERIFY(ftp.CreateFTPDirectory(QStringLiteral("simple")));
        ftp.SetTransferBinary();
        QVERIFY2(ftp.SimpleFTPPutFile(local, QStringLiteral("simple/binary.txt")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(readFile(m_server->localPath(QStringLiteral("/simple/binary.txt"))), text);
        ftp.SetTransferASCII();
        const int asciiBefore = m_server->countCommands(QStringLiteral("TYPE"));
        QVERIFY(ftp.SimpleFTPPutFile(local, QStringLiteral("/simple/ascii.txt")));
        QVERIFY(QFileInfo::exists(m_server->localPath(QStringLiteral("/simple/ascii.txt"))));
        QCOMPARE(m_server->countCommands(QStringLiteral("TYPE")), asciiBefore + 1);
        QCOMPARE(m_server->commands().filter(QStringLiteral("TYPE")).last(),
                 QStringLiteral("TYPE A"));
        ftp.SetTransferBinary();
        const QString back = m_local.filePath(QStringLiteral("back.txt"));
        QVERIFY(ftp.SimpleFTPGetFile(back, QStringLiteral("simple/binary.txt")));
        QCOMPARE(readFile(back), text);
        QVERIFY(!ftp.SimpleFTPGetFile(back, QStringLiteral("simple/none.txt")));
        QVERIFY(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")));
        QCOMPARE(readFile(back), text); // a failed fetch leaves the local file alone
        QVERIFY(
            !ftp.SimpleFTPPutFile(m_local.filePath(QStringLiteral("none")), QStringLiteral("x")));
        QVERIFY(ftp.GetLastErrorMessage().endsWith(QStringLiteral("error code: SimpleFtpPutFile")));
        QVERIFY(m_server->commands().contains(QStringLiteral("TYPE A")));
        QVERIFY(m_server->commands().contains(QStringLiteral("TYPE I")));
    }

    void oneLoginServesManyCalls()
    {
        const int before = m_server->countCommands(QStringLiteral("USER"));
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        for (int i = 0; i < 10; ++i) {
            QVERIFY(!ftp.GetFTPDirectory().isEmpty());
            ftp.GetDirectoryListing(QStringLiteral("*.*"));
        }
        QCOMPARE(m_server->countCommands(QStringLiteral("USER")), before + 1);
    }

    void listingFormats_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("parsed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<qint64>("size");
        QTest::addColumn<bool>("directory");
        QTest::addColumn<QDateTime>("written");
        const QDateTime now(QDate(2026, 11, 22), QTime(12, 0), Qt::UTC);
        Q_UNUSED(now);
        QTest::newRow("unix file")
            << QByteArray("-rw-r--r--   1 owner group   1234 Nov 22 05:01 index.html") << true
            << "index.html" << qint64(1234) << false
            << QDateTime(QDate(2026, 11, 22), QTime(5, 1), Qt::UTC);
        QTest::newRow("unix dir last year")
            << QByteArray("drwxr-xr-x   2 o g 4096 Dec 24 10:00 Photos") << true << "Photos"
            << qint64(4096) << true << QDateTime(QDate(2025, 12, 24), QTime(10, 0), Qt::UTC);
        QTest::newRow("unix with year and blanks")
            << QByteArray("-rw-r--r--   1 o g 7 Jan  3  2019 my  file name.txt") << true
            << "my  file name.txt" << qint64(7) << false
            << QDateTime(QDate(2019, 1, 3), QTime(0, 0), Qt::UTC);
        QTest::newRow("unix no group")
            << QByteArray("-rw-r--r-- 1 owner 99 Feb 01 2020 a") << true << "a" << qint64(99)
            << false << QDateTime(QDate(2020, 2, 1), QTime(0, 0), Qt::UTC);
        QTest::newRow("unix link")
            << QByteArray("lrwxrwxrwx 1 o g 11 Mar 01 2020 www -> public_html") << true << "www"
            << qint64(11) << false << QDateTime(QDate(2020, 3, 1), QTime(0, 0), Qt::UTC);
        QTest::newRow("latin-1 name") << QByteArray("-rw-r--r-- 1 o g 1 Mar 01 2020 caf\xe9.txt")
                                      << true << QString::fromUtf8("café.txt") << qint64(1) << false
                                      << QDateTime(QDate(2020, 3, 1), QTime(0, 0), Qt::UTC);
        QTest::newRow("dos dir") << QByteArray("11-22-26  05:01AM       <DIR>          Photos")
                                 << true << "Photos" << qint64(0) << true
                                 << QDateTime(QDate(2026, 11, 22), QTime(5, 1), Qt::UTC);
        QTest::newRow("dos file pm")
            << QByteArray("01-02-03  01:15PM                 1234 a b.txt") << true << "a b.txt"
            << qint64(1234) << false << QDateTime(QDate(2003, 1, 2), QTime(13, 15), Qt::UTC);
        QTest::newRow("dos twelve am")
            << QByteArray("01-02-2003  12:15AM   5 LICENSE") << true << "LICENSE" << qint64(5)
            << false << QDateTime(QDate(2003, 1, 2), QTime(0, 15), Qt::UTC);
        QTest::newRow("total") << QByteArray("total 12") << false << "" << qint64(0) << false
                               << QDateTime();
        QTest::newRow("dot") << QByteArray("drwxr-xr-x 2 o g 4096 Jan 01 2020 .") << false << ""
                             << qint64(0) << false << QDateTime();
        QTest::newRow("dotdot dos") << QByteArray("01-02-03  01:15PM <DIR> ..") << false << ""
                                    << qint64(0) << false << QDateTime();
        QTest::newRow("garbage") << QByteArray("hello world") << false << "" << qint64(0) << false
                                 << QDateTime();
    }

    void listingFormats()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, parsed);
        QFETCH(QString, name);
        QFETCH(qint64, size);
        QFETCH(bool, directory);
        QFETCH(QDateTime, written);
        const QDateTime now(QDate(2026, 11, 22), QTime(12, 0), Qt::UTC);
        const auto item = FtpListing::ParseLine(line + "\r\n", now);
        QCOMPARE(item.has_value(), parsed);
        if (!parsed)
            return;
        QCOMPARE(item->Name, name);
        QCOMPARE(item->Size, size);
        QCOMPARE(item->isDirectory(), directory);
        QCOMPARE(item->LastWriteTime.toUTC(), written);
        QCOMPARE(item->CreationTime, item->LastWriteTime);
    }

    void filters_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<bool>("matches");
        QTest::newRow("all with dot") << "a.txt"
                                      << "*.*" << true;
        QTest::newRow("all without dot") << "README"
                                         << "*.*" << true;
        QTest::newRow("extension any case") << "A.JPG"
                                            << "*.jpg" << true;
        QTest::newRow("other extension") << "a.gif"
                                         << "*.jpg" << false;
        QTest::newRow("exact") << "Photos.htm"
                               << "photos.htm" << true;
        QTest::newRow("question mark") << "a1.txt"
                                       << "a?.txt" << true;
    }

    void filters()
    {
        QFETCH(QString, name);
        QFETCH(QString, filter);
        QFETCH(bool, matches);
        QCOMPARE(FtpListing::MatchesFilter(name, filter), matches);
    }

    void pathsInNamesAndFilters()
    {
        WriteTestFile2(m_server->localPath(QStringLiteral("/deep/er/one.htm")), "1");
        WriteTestFile2(m_server->localPath(QStringLiteral("/deep/er/two.jpg")), "22");
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        const cDirList *list = ftp.GetDirectoryListing(QStringLiteral("deep/er/*.htm"));
        QVERIFY2(list, qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(list->Count(), 1);
        QCOMPARE(list->Item(0)->Name, QStringLiteral("one.htm"));
        QVERIFY(!list->Item(1));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("/deep/er/two.jpg")), qint64(2));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("deep/er/*.jpg")), qint64(2));
        // The current directory is not changed by a path in a name.
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
        QCOMPARE(ftp.GetFTPFileSize(QStringLiteral("nowhere/x.txt")), qint64(-2));
        QVERIFY(ftp.GetLastErrorMessage().startsWith(QStringLiteral("550 ")));
    }

    void libraryFailuresHaveTheirNumbers_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("number");
        QTest::newRow("resolve") << int(CURLE_COULDNT_RESOLVE_HOST) << 12007;
        QTest::newRow("connect") << int(CURLE_COULDNT_CONNECT) << 12029;
        QTest::newRow("timeout") << int(CURLE_OPERATION_TIMEDOUT) << 12002;
        QTest::newRow("cancel") << int(CURLE_ABORTED_BY_CALLBACK) << 12017;
        QTest::newRow("send") << int(CURLE_SEND_ERROR) << 12031;
        QTest::newRow("receive") << int(CURLE_RECV_ERROR) << 12030;
        QTest::newRow("partial") << int(CURLE_PARTIAL_FILE) << 12030;
        QTest::newRow("refused command") << int(CURLE_QUOTE_ERROR) << 12003;
        QTest::newRow("refused store") << int(CURLE_UPLOAD_FAILED) << 12003;
        QTest::newRow("disk full") << int(CURLE_REMOTE_DISK_FULL) << 12003;
        QTest::newRow("user refused") << int(CURLE_LOGIN_DENIED) << 12013;
        QTest::newRow("nested") << int(CURLE_RECURSIVE_API_CALL) << 12019;
        QTest::newRow("bad address") << int(CURLE_URL_MALFORMAT) << 12005;
        QTest::newRow("other") << int(CURLE_TOO_MANY_REDIRECTS) << 12004;
        QTest::newRow("tls handshake") << int(CURLE_SSL_CONNECT_ERROR) << 12157;
        QTest::newRow("no tls where asked for") << int(CURLE_USE_SSL_FAILED) << 12157;
        QTest::newRow("certificate") << int(CURLE_PEER_FAILED_VERIFICATION) << 12045;
        QTest::newRow("ssh session") << int(CURLE_SSH) << 12030;
        QTest::newRow("no proxy") << int(CURLE_COULDNT_RESOLVE_PROXY) << 12020;
        QTest::newRow("proxy handshake") << int(CURLE_PROXY) << 12020;
        QTest::newRow("not set up") << int(CURLE_FAILED_INIT) << 12004;
        QTest::newRow("bad option value") << int(CURLE_BAD_FUNCTION_ARGUMENT) << 12009;
        QTest::newRow("unknown option") << int(CURLE_UNKNOWN_OPTION) << 12009;
        QTest::newRow("option syntax") << int(CURLE_SETOPT_OPTION_SYNTAX) << 12009;
        QTest::newRow("protocol not built in") << int(CURLE_NOT_BUILT_IN) << 12008;
        QTest::newRow("scheme") << int(CURLE_UNSUPPORTED_PROTOCOL) << 12006;
        QTest::newRow("interface") << int(CURLE_INTERFACE_FAILED) << 12023;
        QTest::newRow("try again") << int(CURLE_AGAIN) << 12026;
        QTest::newRow("no memory") << int(CURLE_OUT_OF_MEMORY) << 12001;
        QTest::newRow("cut reply") << int(CURLE_WEIRD_SERVER_REPLY) << 12030;
    }

    void libraryFailuresHaveTheirNumbers()
    {
        QFETCH(int, code);
        QFETCH(int, number);
        const FtpConnection unused(FtpAddress::fromServerField(QStringLiteral("127.0.0.1")),
                                   QString(), QString());
        QCOMPARE(FtpErrors::NumberFor(CURLcode(code), unused), number);
    }

    void greetingThatRefusesIsAFailedLogin()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("greet-421")};
        FtpTestServer busy(options);
        QVERIFY2(busy.start(), qPrintable(busy.errorString()));
        cFTP ftp(m_state);
        QVERIFY(!ftp.OpenConnection(busy.server(), busy.user(), busy.password()));
        QCOMPARE(ftp.GetLastErrorMessage(),
                 QStringLiteral("Request to connect to and login to an FTP server failed. "
                                "Message: 12015 error code: InternetConnect"));
    }

    void sessionClosedAfterLoginIsNoRefusedLogin()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("cwd-421=idle")};
        FtpTestServer server(options);
        QVERIFY2(server.start(), qPrintable(server.errorString()));
        QVERIFY(QDir().mkpath(server.localPath(QStringLiteral("/idle"))));
        cFTP ftp(m_state);
        QVERIFY(ftp.OpenConnection(server.server(), server.user(), server.password()));
        QVERIFY(!ftp.SetFTPDirectory(QStringLiteral("/idle")));
        // The server's own words, not "failed to login": the name and password were fine.
        QCOMPARE(ftp.GetLastErrorMessage(), QStringLiteral("421 Timeout."));
    }

    void composedTextPutsTheTextFirst()
    {
        QCOMPARE(
            FtpErrors::Compose(12029, QStringLiteral("DeleteFTPFile"), QStringLiteral("ignored")),
            QStringLiteral("Attempt to connect to the server failed. Message: 12029 error code: "
                           "DeleteFTPFile"));
        QCOMPARE(FtpErrors::Compose(12003, QStringLiteral("DeleteFTPFile"),
                                    QStringLiteral("550 No such file.")),
                 QStringLiteral("550 No such file."));
        QCOMPARE(FtpErrors::Compose(12003, QStringLiteral("DeleteFTPFile"), QString()),
                 QStringLiteral("Extended error returned from server."));
    }

    void dosListingServer()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("dos-listing")};
        FtpTestServer dos(options);
        QVERIFY2(dos.start(), qPrintable(dos.errorString()));
        writeFile(dos.localPath(QStringLiteral("index.htm")), "<html>");
        QDir().mkpath(dos.localPath(QStringLiteral("public html")));
        cFTP ftp(m_state);
        QVERIFY(ftp.OpenConnection(dos.server(), dos.user(), dos.password()));
        const cDirList *list = ftp.GetDirectoryListing(QStringLiteral("*.*"));
        QVERIFY2(list, qPrintable(ftp.GetLastErrorMessage()));
        QCOMPARE(list->Count(), 2);
        QCOMPARE(list->Item(QStringLiteral("index.htm"))->Size, 6);
        QVERIFY(list->Item(QStringLiteral("public html"))->isDirectory());
    }

    void refusedCommandsShowTheServersReply()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("dele-550"), QStringLiteral("stor-552")};
        FtpTestServer faulty(options);
        QVERIFY2(faulty.start(), qPrintable(faulty.errorString()));
        writeFile(faulty.localPath(QStringLiteral("keep.txt")), "x");
        cFTP ftp(m_state);
        QVERIFY(ftp.OpenConnection(faulty.server(), faulty.user(), faulty.password()));
        QVERIFY(!ftp.DeleteFTPFile(QStringLiteral("keep.txt")));
        QCOMPARE(ftp.GetLastErrorMessage(), QStringLiteral("550 Permission denied."));
        const QString local = m_local.filePath(QStringLiteral("full.txt"));
        writeFile(local, "some text");
        QVERIFY(!ftp.FTPUploadFile(local, QStringLiteral("full.txt")));
        QCOMPARE(ftp.GetLastErrorMessage(),
                 QStringLiteral("552 Requested file action aborted. Exceeded storage allocation."));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
    }

    void refusedLoginServer()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("refuse-login")};
        FtpTestServer refusing(options);
        QVERIFY2(refusing.start(), qPrintable(refusing.errorString()));
        cFTP ftp(m_state);
        QVERIFY(!ftp.OpenConnection(refusing.server(), refusing.user(), refusing.password()));
        QVERIFY(ftp.GetLastErrorMessage().contains(QStringLiteral("12014")));
    }

    void cancelEndsAWaitOnASilentServer()
    {
        FtpTestServer::Options options;
        options.faults = {QStringLiteral("silent")};
        FtpTestServer silent(options);
        QVERIFY2(silent.start(), qPrintable(silent.errorString()));
        cFTP ftp(m_state);
        QElapsedTimer clock;
        clock.start();
        int ticks = 0;
        QTimer ticker;
        QObject::connect(&ticker, &QTimer::timeout, [&] { ++ticks; });
        ticker.start(50);
        QTimer::singleShot(600, this, [this] { m_state.UploadCancelled = true; });
        QVERIFY(!ftp.OpenConnection(silent.server(), QStringLiteral("u"), QStringLiteral("p")));
        const qint64 waited = clock.elapsed();
        // The event loop was served throughout the wait: a turn for every 250 ms at least.
        QVERIFY2(ticks >= 8 && ticks * 250 >= waited,
                 qPrintable(QStringLiteral("%1 turns in %2 ms").arg(ticks).arg(waited)));
        QVERIFY(ftp.GetLastErrorMessage().contains(QStringLiteral("12017")));
    }

    void cancelledBeforeTheCallDoesNotStopIt()
    {
        m_state.UploadCancelled = true;
        m_state.UserResponse = JobState::Skip;
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
    }

    void nestedCallIsRefused()
    {
        cFTP ftp(m_state);
        QVERIFY(connect(ftp));
        const QString local = m_local.filePath(QStringLiteral("nested.bin"));
        writeFile(local, pattern(255 * 40));
        bool nestedResult = true;
        QString nestedDirectory;
        bool once = false;
        QObject::connect(&ftp, &cFTP::FileTransferProgress, [&] {
            if (once)
                return;
            once = true;
            nestedResult = ftp.CreateFTPDirectory(QStringLiteral("nested"));
            nestedDirectory = ftp.GetFTPDirectory();
        });
        QVERIFY(ftp.FTPUploadFile(local, QStringLiteral("nested.bin")));
        QVERIFY(!nestedResult);
        QVERIFY(ftp.GetLastErrorMessage().contains(QStringLiteral("12019")));
        QCOMPARE(nestedDirectory, QStringLiteral("/"));
    }
};

TARNWICK_TEST_MAIN(TestCFtp)
#include "test_cftp.moc"
