// A server that lies: overlong lines, replies without end, huge and endless listings, names that
// point elsewhere, codes that FTP does not have. The program refuses or cleans each with a clear
// message, writes nowhere but where it was asked to, keeps answering, and holds what the server
// sends within stated bounds.
#include "FtpControlTab.h"
#include "FtpListing.h"
#include "FtpReplyReader.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"
#include "cFTP.h"

#include <QDirIterator>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

#include <functional>

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool UnderSanitizer = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool UnderSanitizer = true;
#else
constexpr bool UnderSanitizer = false;
#endif
#else
constexpr bool UnderSanitizer = false;
#endif

// A figure of /proc/self/status in kB ("VmRSS", "VmHWM"); -1 when the system has none.
qint64 statusKb(const char *field)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field) + 1).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

// Sets the peak back to what the process holds now, so that VmHWM afterwards is the peak of
// what follows.
bool resetPeak()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly) && file.write("5") == 1;
}

QStringList filesUnder(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(QDir(folder).relativeFilePath(it.next()));
    files.sort();
    return files;
}

} // namespace

class TestHostileServer : public QObject
{
    Q_OBJECT
    JobState m_state;

    std::unique_ptr<FtpTestServer> start(const QStringList &faults)
    {
        FtpTestServer::Options options;
        options.hostile = true;
        options.faults = faults;
        auto server = std::make_unique<FtpTestServer>(options);
        if (!server->start())
            qWarning("%s", qPrintable(server->errorString()));
        return server;
    }

    bool connect(cFTP &ftp, const FtpTestServer &server)
    {
        return ftp.OpenConnection(server.server(), server.user(), server.password());
    }

    // Presses Cancel once the server has received command (as its log writes it), from a timer
    // of the event loop: the call can only end if the event loop is served while it waits.
    // ticks counts the timer's turns.
    void cancelWhenReceived(const FtpTestServer &server, const QString &command, int *ticks)
    {
        auto *timer = new QTimer(this);
        QObject::connect(timer, &QTimer::timeout, this, [this, &server, command, ticks, timer] {
            ++*ticks;
            if (server.commands().contains(command)) {
                m_state.UploadCancelled = true;
                timer->stop();
                timer->deleteLater();
            }
        });
        timer->start(20);
    }

private slots:
    void init()
    {
        m_state.UploadCancelled = false;
        m_state.UserResponse.clear();
    }
    // A cancel timer whose command never came must not outlive its test and its server.
    void cleanup() { qDeleteAll(findChildren<QTimer *>(Qt::FindDirectChildrenOnly)); }

    void overlongReplyLineIsRefusedWithAShortMessage()
    {
        const auto server = start({QStringLiteral("long-line-close")});
        QVERIFY(server->isRunning());
        cFTP ftp(m_state);
        QVERIFY(!connect(ftp, *server));
        const QString message = ftp.GetLastErrorMessage();
        QVERIFY2(!message.isEmpty(), "no message");
        // Not the megabyte the server sent: a message of the table, or the kept part of the line.
        QVERIFY2(message.size() <= FtpReplyReader::MaxLineBytes + 200,
                 qPrintable(QString::number(message.size())));
        QVERIFY(!ftp.IsConnected());
    }

    void overlongReplyLineThenSilenceEndsWithoutWaitingOnTheSilence()
    {
        const auto server = start({QStringLiteral("long-line-stall")});
        QVERIFY(server->isRunning());
        cFTP ftp(m_state);
        // The reader refuses the line as it comes, so the silence after it holds nobody: the
        // attempt ends without a Cancel.
        QVERIFY(!connect(ftp, *server));
        const QString message = ftp.GetLastErrorMessage();
        QVERIFY2(message.contains(QStringLiteral("12030")) ||
                     message.contains(QStringLiteral("12017")),
                 qPrintable(message));
        QVERIFY2(message.size() <= FtpReplyReader::MaxLineBytes + 200,
                 qPrintable(QString::number(message.size())));
        QVERIFY(!ftp.IsConnected());
    }

    void replyOfManyLinesIsKeptWithinBounds()
    {
        const auto server = start({QStringLiteral("long-reply")});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        QVERIFY(!ftp.SetFTPDirectory(QStringLiteral("deep")));
        const QString message = ftp.GetLastErrorMessage();
        // The library stops reading a reply past 300 kB; what the program kept of it is at most
        // MaxLinesPerReply lines of MaxLineBytes, and the message is one of the table or the
        // server's first lines.
        QVERIFY(!message.isEmpty());
        QVERIFY2(message.size() <=
                     FtpReplyReader::MaxLinesPerReply * (FtpReplyReader::MaxLineBytes + 1),
                 qPrintable(QString::number(message.size())));
        QVERIFY2(message.count(QLatin1Char('\n')) < FtpReplyReader::MaxLinesPerReply,
                 qPrintable(message.left(200)));
        // The session goes on.
        QCOMPARE(ftp.GetFTPDirectory(), QStringLiteral("/"));
    }

    void listingOfAHundredThousandEntriesIsReadWithinItsMemoryBound()
    {
        const auto server = start({QStringLiteral("listing=100000")});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        const qint64 before = statusKb("VmRSS");
        const bool peakKnown = resetPeak();
        int ticks = 0;
        QTimer ticker;
        QObject::connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
        ticker.start(10);
        const cDirList *list = ftp.GetDirectoryListing(QStringLiteral("*.*"));
        ticker.stop();
        QVERIFY(list);
        QCOMPARE(list->Count(), 100000);
        QCOMPARE(list->Item(0)->Name, QStringLiteral("file000000.txt"));
        QCOMPARE(list->Item(99999)->Name, QStringLiteral("file099999.txt"));
        QCOMPARE(list->Item(99999)->Size, 99999);
        QVERIFY(ftp.ListingNote().isEmpty());
        // The window was served while the listing came in.
        QVERIFY(ticks > 0);
        // The bound: a listing is read as text of at most FtpListing::MaxBytes (32 MB) and kept
        // as at most FtpListing::MaxEntries entries; these 100,000 entries (7 MB of text) raise
        // the peak by less than 128 MB. (Figures of a sanitized build count its own bookkeeping.)
        const qint64 peak = statusKb("VmHWM");
        qInfo("listing of 100000 entries: %lld kB before, peak %lld kB", before, peak);
        if (peakKnown && before > 0 && peak > 0 && !UnderSanitizer)
            QVERIFY2(peak - before < 128 * 1024, qPrintable(QString::number(peak - before)));
    }

    void endlessListingIsRefusedAtItsBound()
    {
        const auto server = start({QStringLiteral("endless-listing")});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        QVERIFY(!ftp.GetDirectoryListing(QStringLiteral("*.*")));
        QCOMPARE(ftp.GetLastErrorMessage(), TooLongListingText(QStringLiteral("/")));
        QCOMPARE(ftp.ListingNote(), ftp.GetLastErrorMessage());
        QCOMPARE(ftp.Directory().Count(), 0);
        QVERIFY(ftp.GetLastErrorMessage().contains(QStringLiteral("32 MB")));
    }

    void listingOfTooManyEntriesIsRefused()
    {
        const auto server = start({QStringLiteral("listing=%1").arg(FtpListing::MaxEntries + 1)});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        QVERIFY(!ftp.GetDirectoryListing(QStringLiteral("*.*")));
        QCOMPARE(ftp.GetLastErrorMessage(), TooManyEntriesText(QStringLiteral("/")));
        QCOMPARE(ftp.Directory().Count(), 0);
    }

    void namesThatPointElsewhereAreLeftOutAndSaid()
    {
        const auto server = start({QStringLiteral("hostile-names")});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        QVERIFY(ftp.GetDirectoryListing(QStringLiteral("*.*")));
        QStringList names;
        for (const cDirItem &item : ftp.Directory())
            names.append(item.Name);
        // "car\rriage.txt" and "new\nline.txt" are two lines each to the library, which reads
        // listings as text: the first halves name files "car" and "new".
        QCOMPARE(names, (QStringList{QStringLiteral("honest.txt"), QStringLiteral("car"),
                                     QStringLiteral("new"), QStringLiteral("also honest.txt")}));
        for (const QString &name : std::as_const(names))
            QVERIFY(FtpListing::IsUsableName(name));
        QVERIFY2(ftp.ListingNote().startsWith(QStringLiteral("The server listed ")),
                 qPrintable(ftp.ListingNote()));
        QVERIFY(ftp.ListingNote().contains(QStringLiteral("left out")));
    }

    void downloadsStayInTheFolderTheyWereAskedFor()
    {
        const auto server = start({QStringLiteral("hostile-names")});
        QTemporaryDir sandbox;
        const QString folder = sandbox.filePath(QStringLiteral("inner/downloads"));
        QVERIFY(QDir().mkpath(folder));
        WebSpaceFixture fixture;
        FtpControlTab *tab = fixture.install();
        QVERIFY(tab);
        fixture.showFunction(5);
        fixture.fillAccount(*server);
        // The program's own choice of place: the file's name in the folder asked for.
        tab->setDownloadPathChooser(
            [&folder](const QString &name) { return QDir(folder).filePath(name); });
        tab->findChild<QPushButton *>(QStringLiteral("cmdConnect"))->click();
        QVERIFY(fixture.ftp->IsConnected());
        auto *list = tab->findChild<QTreeWidget *>(QStringLiteral("lv"));
        QVERIFY(list);
        QStringList shown;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            shown.append(list->topLevelItem(i)->text(0));
        QCOMPARE(shown, (QStringList{QStringLiteral(".."), QStringLiteral("honest.txt"),
                                     QStringLiteral("car"), QStringLiteral("new"),
                                     QStringLiteral("also honest.txt")}));
        QVERIFY2(fixture.window->statusBar()->currentMessage() == fixture.ftp->ListingNote(),
                 qPrintable(fixture.window->statusBar()->currentMessage()));

        for (int i = 1; i < list->topLevelItemCount(); ++i) {
            list->setCurrentItem(list->topLevelItem(i));
            tab->findChild<QPushButton *>(QStringLiteral("cmdDownload"))->click();
        }
        QCOMPARE(filesUnder(sandbox.path()),
                 (QStringList{QStringLiteral("inner/downloads/also honest.txt"),
                              QStringLiteral("inner/downloads/car"),
                              QStringLiteral("inner/downloads/honest.txt"),
                              QStringLiteral("inner/downloads/new")}));
        QFile honest(QDir(folder).filePath(QStringLiteral("honest.txt")));
        QVERIFY(honest.open(QIODevice::ReadOnly));
        QCOMPARE(honest.readAll(), QByteArray("fetched honest.txt"));
        // No file of the server's was asked for by a name that is not in the list.
        for (const QString &command : server->commands()) {
            if (command.startsWith(QStringLiteral("RETR ")))
                QVERIFY2(FtpListing::IsUsableName(command.mid(5)), qPrintable(command));
        }
    }

    void replyCodeAboveTheRangeIsNoAnswer()
    {
        const auto server = start({QStringLiteral("code-999")});
        cFTP ftp(m_state);
        QVERIFY(!connect(ftp, *server));
        QCOMPARE(ftp.GetLastErrorMessage(),
                 QStringLiteral("The server answered with a code that FTP does not have: 999 "
                                "Something odd happened."));
    }

    void replyCodeBelowTheRangeLeavesAWaitThatCancelEnds()
    {
        // "000 ..." is no answer to the library, which waits on for one (two minutes, then
        // it gives up with the server's words); the user's Cancel ends the wait at once.
        const auto server = start({QStringLiteral("code-000")});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        int ticks = 0;
        cancelWhenReceived(*server, QStringLiteral("CWD odd"), &ticks);
        QVERIFY(!ftp.SetFTPDirectory(QStringLiteral("odd")));
        QVERIFY2(ftp.GetLastErrorMessage().contains(QStringLiteral("12017")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(ticks > 0);
        QCOMPARE(ftp.CurrentDirectory(), QStringLiteral("/"));
    }

    void replyCodeOfFourDigitsLeavesAWaitThatCancelEnds()
    {
        // "1234 ..." ends no reply of FTP, so the library waits for one; the user's Cancel ends
        // the wait.
        const auto server = start({QStringLiteral("code-1234")});
        cFTP ftp(m_state);
        QVERIFY(connect(ftp, *server));
        int ticks = 0;
        cancelWhenReceived(*server, QStringLiteral("MKD new"), &ticks);
        QVERIFY(!ftp.CreateFTPDirectory(QStringLiteral("new")));
        QVERIFY2(ftp.GetLastErrorMessage().contains(QStringLiteral("12017")),
                 qPrintable(ftp.GetLastErrorMessage()));
        QVERIFY(ticks > 0);
    }
};

TARNWICK_TEST_MAIN(TestHostileServer)
#include "test_hostileserver.moc"
