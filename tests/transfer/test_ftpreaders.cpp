// The readers of what an FTP server sends: the reply reader, the error numbers and messages made
// of its replies, and the listing reader's names, MLSD lines and bounds.
#include "FtpErrors.h"
#include "FtpListing.h"
#include "FtpReplyReader.h"
#include "TestMain.h"

namespace {

QList<FtpReply> readAll(const QByteArray &bytes)
{
    FtpReplyReader reader;
    QList<FtpReply> replies = reader.addText(bytes);
    if (const auto cut = reader.pending())
        replies.append(*cut);
    return replies;
}

} // namespace

class TestFtpReaders : public QObject
{
    Q_OBJECT
private slots:
    void repliesOfOneAndManyLines()
    {
        const auto replies = readAll("220 (vsFTPd 3.0.3)\r\n"
                                     "211-Features:\r\n EPSV\r\n211-not the end\r\n211 End\r\n"
                                     "257 \"/a \"\"b\"\"\" is current\r\n");
        QCOMPARE(replies.size(), 3);
        QCOMPARE(replies[0].code, 220);
        QCOMPARE(replies[0].text(), QStringLiteral("220 (vsFTPd 3.0.3)"));
        QCOMPARE(replies[1].code, 211);
        QCOMPARE(replies[1].lines.size(), 4);
        QCOMPARE(replies[1].lines.last(), QStringLiteral("211 End"));
        QCOMPARE(replies[2].code, 257);
    }

    void linesBeforeAReplyArePassedOver()
    {
        const auto replies = readAll("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n230 Ok\r\n");
        QCOMPARE(replies.size(), 1);
        QCOMPARE(replies[0].code, 230);
    }

    void aLongLineIsCut()
    {
        const QByteArray line = "550 " + QByteArray(1024 * 1024, 'x');
        const auto replies = readAll(line); // no line end at all
        QCOMPARE(replies.size(), 1);
        QCOMPARE(replies[0].text().size(), FtpReplyReader::MaxLineBytes);
        QVERIFY(replies[0].text().startsWith(QStringLiteral("550 xxx")));
    }

    void aReplyOfManyLinesKeepsItsFirstLinesAndItsLast()
    {
        QByteArray text = "550-first\r\n";
        for (int i = 0; i < 100000; ++i)
            text += "more " + QByteArray::number(i) + "\r\n";
        text += "550 last\r\n";
        const auto replies = readAll(text);
        QCOMPARE(replies.size(), 1);
        QCOMPARE(replies[0].lines.size(), FtpReplyReader::MaxLinesPerReply);
        QCOMPARE(replies[0].lines.first(), QStringLiteral("550-first"));
        QCOMPARE(replies[0].lines.last(), QStringLiteral("550 last"));
    }

    void aReplyCutShortIsStillThere()
    {
        FtpReplyReader reader;
        QVERIFY(reader.addText("421-Going away\r\nbecause\r\n").isEmpty());
        const auto cut = reader.pending();
        QVERIFY(cut.has_value());
        QCOMPARE(cut->code, 421);
        reader.reset();
        QVERIFY(!reader.pending());
    }

    void controlCharactersAreShownAsBlanks()
    {
        static const char raw[] = "550 a\0b\x1b[31mc\x7f"
                                  "d\tend\r\n";
        const auto replies = readAll(QByteArray(raw, sizeof raw - 1));
        QCOMPARE(replies.size(), 1);
        QCOMPARE(replies[0].text(), QStringLiteral("550 a b [31mc d\tend"));
    }

    void textThatIsNotUtf8IsLatin1()
    {
        const auto replies = readAll("550 Caf\xe9\r\n550 Caf\xc3\xa9\r\n");
        QCOMPARE(replies[0].text(), QString::fromUtf8("550 Caf\xc3\xa9"));
        QCOMPARE(replies[1].text(), QString::fromUtf8("550 Caf\xc3\xa9"));
    }

    void codesOutOfRangeAreSaidSo_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("inRange");
        QTest::addColumn<QString>("shown");
        QTest::newRow("999") << QByteArray("999 Odd") << false
                             << "The server answered with a code that FTP does not have: 999 Odd";
        QTest::newRow("000") << QByteArray("000 Fine") << false
                             << "The server answered with a code that FTP does not have: 000 Fine";
        QTest::newRow("099") << QByteArray("099 x") << false
                             << "The server answered with a code that FTP does not have: 099 x";
        QTest::newRow("600") << QByteArray("600 x") << false
                             << "The server answered with a code that FTP does not have: 600 x";
        QTest::newRow("599") << QByteArray("599 x") << true << "599 x";
        QTest::newRow("100") << QByteArray("100 x") << true << "100 x";
    }
    void codesOutOfRangeAreSaidSo()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, inRange);
        QFETCH(QString, shown);
        const auto replies = readAll(line + "\r\n");
        QCOMPARE(replies.size(), 1);
        QCOMPARE(replies[0].codeInRange(), inRange);
        QCOMPARE(FtpErrors::ServerText(replies[0]), shown);
    }

    void numbersFromReplies_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("conversation");
        QTest::addColumn<bool>("opened");
        QTest::addColumn<int>("number");
        QTest::newRow("wrong password")
            << int(CURLE_LOGIN_DENIED) << QByteArray("220 Hi\r\n331 Pass\r\n530 No\r\n") << true
            << 12014;
        QTest::newRow("wrong user")
            << int(CURLE_LOGIN_DENIED) << QByteArray("220 Hi\r\n530 No\r\n") << true << 12013;
        QTest::newRow("too many users")
            << int(CURLE_LOGIN_DENIED) << QByteArray("220 Hi\r\n421 Busy\r\n") << true << 12015;
        QTest::newRow("refused command")
            << int(CURLE_QUOTE_ERROR) << QByteArray("250 Ok\r\n550 No\r\n") << false << 12003;
        QTest::newRow("greeting refused")
            << int(CURLE_WEIRD_SERVER_REPLY) << QByteArray("421 Closing\r\n") << true << 12015;
        QTest::newRow("cut mid request")
            << int(CURLE_WEIRD_SERVER_REPLY) << QByteArray("250 Ok\r\n") << false << 12030;
        QTest::newRow("odd code") << int(CURLE_WEIRD_SERVER_REPLY)
                                  << QByteArray("250 Ok\r\n999 Odd\r\n") << false << 12003;
        QTest::newRow("no answer of FTP, then the library's time-out")
            << int(CURLE_OPERATION_TIMEDOUT) << QByteArray("250 Ok\r\n000 Fine\r\n") << false
            << 12003;
        QTest::newRow("time-out") << int(CURLE_OPERATION_TIMEDOUT) << QByteArray("250 Ok\r\n")
                                  << false << 12002;
        QTest::newRow("odd code and a cut")
            << int(CURLE_RECV_ERROR) << QByteArray("250 Ok\r\n000 Fine\r\n") << false << 12030;
        QTest::newRow("nothing said") << int(CURLE_RECV_ERROR) << QByteArray() << true << 12030;
        QTest::newRow("done") << int(CURLE_OK) << QByteArray("226 Done\r\n") << false << 0;
    }
    void numbersFromReplies()
    {
        QFETCH(int, code);
        QFETCH(QByteArray, conversation);
        QFETCH(bool, opened);
        QFETCH(int, number);
        QCOMPARE(FtpErrors::NumberFor(CURLcode(code), readAll(conversation), opened), number);
    }

    void mlsdLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("parsed");
        QTest::addColumn<QString>("name");
        QTest::addColumn<qint64>("size");
        QTest::addColumn<bool>("directory");
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<QDateTime>("written");
        const QDateTime stamp(QDate(2026, 11, 22), QTime(5, 1), Qt::UTC);
        QTest::newRow("proftpd file")
            << QByteArray("modify=20261122050100;perm=adfr;size=1234;type=file;unique=FD00U4E1;"
                          "UNIX.group=1000;UNIX.mode=0644;UNIX.owner=1000; index.htm")
            << true << "index.htm" << qint64(1234) << false << false << stamp;
        QTest::newRow("pyftpdlib file with blanks")
            << QByteArray("type=file;size=12;perm=r;modify=20261122050100.123; a b.txt") << true
            << "a b.txt" << qint64(12) << false << true << stamp;
        QTest::newRow("directory")
            << QByteArray("type=dir;modify=20261122050100;perm=flcdmpe; Photos") << true << "Photos"
            << qint64(0) << true << false << stamp;
        QTest::newRow("current directory")
            << QByteArray("type=cdir;modify=20261122050100;perm=flcdmpe; .") << false << ""
            << qint64(0) << false << false << QDateTime();
        QTest::newRow("parent directory") << QByteArray("type=pdir;perm=el; ..") << false << ""
                                          << qint64(0) << false << false << QDateTime();
        QTest::newRow("no facts") << QByteArray("; name") << false << "" << qint64(0) << false
                                  << false << QDateTime();
        QTest::newRow("bad size") << QByteArray("type=file;size=-5; minus") << true << "minus"
                                  << qint64(0) << false << false << QDateTime();
    }
    void mlsdLines()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, parsed);
        QFETCH(QString, name);
        QFETCH(qint64, size);
        QFETCH(bool, directory);
        QFETCH(bool, readOnly);
        QFETCH(QDateTime, written);
        const auto item =
            FtpListing::ParseLine(line + "\r\n", QDateTime(QDate(2026, 11, 25), QTime(), Qt::UTC));
        QCOMPARE(item.has_value(), parsed);
        if (!parsed)
            return;
        QCOMPARE(item->Name, name);
        QCOMPARE(item->Size, size);
        QCOMPARE(item->isDirectory(), directory);
        QCOMPARE(bool(item->Attributes & cDirItem::ReadOnly), readOnly);
        QCOMPARE(item->LastWriteTime.toUTC(), written);
    }

    void namesThatPointElsewhereAreLeftOutAndCounted()
    {
        static const char nulName[] = "-rw-r--r-- 1 u g 5 Jan 01  2020 nul\0byte\r\n";
        const QByteArray listing = "-rw-r--r-- 1 u g 5 Jan 01  2020 ok.txt\r\n"
                                   "-rw-r--r-- 1 u g 5 Jan 01  2020 ../escape.txt\r\n"
                                   "-rw-r--r-- 1 u g 5 Jan 01  2020 sub/dir.txt\r\n"
                                   "01-02-03  01:15PM                 5 /abs.txt\r\n"
                                   "type=file;size=5; a/b\r\n" +
                                   QByteArray(nulName, sizeof nulName - 1) +
                                   "drwxr-xr-x 2 u g 5 Jan 01  2020 ..\r\n"
                                   "-rw-r--r-- 1 u g 5 Jan 01  2020 ...\r\n";
        FtpListing::Counts counts;
        const QList<cDirItem> items =
            FtpListing::Parse(listing, QDateTime::currentDateTimeUtc(), &counts);
        QStringList names;
        for (const cDirItem &item : items)
            names.append(item.Name);
        QCOMPARE(names, (QStringList{QStringLiteral("ok.txt"), QStringLiteral("...")}));
        QCOMPARE(counts.unusable, 5);
        QVERIFY(!counts.tooMany);
    }

    void usableNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("usable");
        QTest::newRow("plain") << "a.txt" << true;
        QTest::newRow("blanks and accents") << QString::fromUtf8("Caf\xc3\xa9 menu.htm") << true;
        QTest::newRow("backslash") << "a\\b" << true;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("dot") << "." << false;
        QTest::newRow("dot dot") << ".." << false;
        QTest::newRow("slash") << "a/b" << false;
        QTest::newRow("parent path") << "../a" << false;
        QTest::newRow("nul") << QString(QStringLiteral("a") + QChar(0) + QStringLiteral("b"))
                             << false;
        QTest::newRow("cr") << "a\rb" << false;
        QTest::newRow("lf") << "a\nb" << false;
    }
    void usableNames()
    {
        QFETCH(QString, name);
        QFETCH(bool, usable);
        QCOMPARE(FtpListing::IsUsableName(name), usable);
    }

    void aListingStopsAtItsEntryBound()
    {
        QByteArray listing;
        listing.reserve((FtpListing::MaxEntries + 2) * 14);
        for (int i = 0; i < FtpListing::MaxEntries + 2; ++i)
            listing += "type=file; f" + QByteArray::number(i) + "\n";
        FtpListing::Counts counts;
        const auto items = FtpListing::Parse(listing, QDateTime::currentDateTimeUtc(), &counts);
        QCOMPARE(items.size(), FtpListing::MaxEntries);
        QVERIFY(counts.tooMany);
    }
};

TARNWICK_TEST_MAIN(TestFtpReaders)
#include "test_ftpreaders.moc"
