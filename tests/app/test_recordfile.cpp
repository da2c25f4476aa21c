#include "RecordFile.h"
#include "TestMain.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

namespace {

const QString CrLf = QStringLiteral("\r\n");

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestRecordFile : public QObject
{
    Q_OBJECT
private:
    QTemporaryDir m_dir;
    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void encode_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("dropDots");
        QTest::addColumn<QString>("expected");
        QTest::newRow("comma") << "a,b" << false << "a|4b";
        QTest::newRow("cr lf pair") << "\r\n" << false << "|5";
        QTest::newRow("percent") << "50%" << false << "50%";
        QTest::newRow("bar is dropped") << "a|b" << false << "ab";
        QTest::newRow("drop dots") << "photo.1.jpg" << true << "photo1jpg";
        QTest::newRow("keep dots") << "photo.1.jpg" << false << "photo.1.jpg";
        QTest::newRow("double quote") << "say \"hi\"" << false << "say |3hi|3";
        QTest::newRow("accent lost") << QString::fromUtf8("Café") << false << "Caf";
        QTest::newRow("tab and lf lost") << "a\tb\nc" << false << "abc";
        QTest::newRow("all punctuation")
            << "\\/-_=+[{]};':<>?!@#$%^&*()~`" << false << "\\/-_=+[{]};':<>?!@#$%^&*()~`";
        QTest::newRow("blanks and digits") << " 0 9 aZ " << false << " 0 9 aZ ";
        QTest::newRow("empty") << "" << true << "";
        QTest::newRow("multi line") << "one\r\ntwo" << false << "one|5two";
    }
    void encode()
    {
        QFETCH(QString, text);
        QFETCH(bool, dropDots);
        QFETCH(QString, expected);
        QCOMPARE(EncodeRecordText(text, dropDots), expected);
    }

    void decode_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("two line ends") << "|5|5"
                                       << "\r\n\r\n";
        QTest::newRow("bar at end") << "a|"
                                    << "a";
        QTest::newRow("unknown code") << "|9"
                                      << "";
        QTest::newRow("quote and comma") << "|3x|4y|3"
                                         << "\"x,y\"";
        QTest::newRow("double bar") << "||3"
                                    << "3";
        QTest::newRow("plain") << "plain text"
                               << "plain text";
        QTest::newRow("empty") << ""
                               << "";
    }
    void decode()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(DecodeRecordText(text), expected);
    }

    void encodeDecodeRoundTrip()
    {
        const QString text = QStringLiteral("Title, \"quoted\"\r\nsecond line 100% ok");
        QCOMPARE(DecodeRecordText(EncodeRecordText(text, false)), text);
    }

    // What the writer writes, the reader gives back: every character that the record syntax
    // keeps, with commas, quotes and line breaks; what it drops (line feeds of their own, "|",
    // tabs, letters beyond ASCII) is dropped and nothing else changes.
    void writerRoundTrip_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("kept");
        QTest::newRow("commas") << "a, b,c"
                                << "a, b,c";
        QTest::newRow("quotes") << "say \"hi\""
                                << "say \"hi\"";
        QTest::newRow("line breaks") << "one\r\ntwo\r\n"
                                     << "one\r\ntwo\r\n";
        QTest::newRow("lone CR") << "one\rtwo"
                                 << "one\r\ntwo";
        QTest::newRow("lone LF") << "one\ntwo"
                                 << "onetwo";
        QTest::newRow("letters beyond ASCII")
            << QString::fromUtf8("Caf\xc3\xa9 M\xc3\xbcller") << "Caf Mller";
        QTest::newRow("pipe and tab") << "a|b\tc"
                                      << "abc";
        QTest::newRow("marks") << "|3|4|5"
                               << "345";
        QTest::newRow("everything")
            << QString::fromUtf8("\"A, b\"\r\n\xc3\xa9|\t50% = ok.") << "\"A, b\"\r\n50% = ok.";
    }
    void writerRoundTrip()
    {
        QFETCH(QString, text);
        QFETCH(QString, kept);
        const QString encoded = EncodeRecordText(text, false);
        QCOMPARE(DecodeRecordText(encoded), kept);
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("round.blg"));
        QVERIFY(WriteRecordFile(path, RecordLine(QStringLiteral("FileName"), QStringLiteral("x")) +
                                          RecordLine(QStringLiteral("MainTitle"), encoded))
                    .ok);
        const RecordFileResult raw = ReadRecordFile(path, RecordDecoding::Raw);
        QVERIFY(raw.ok);
        QCOMPARE(DecodeRecordText(GetRecordValue(raw.text, QStringLiteral("MainTitle"))), kept);
    }

    void roundTripHoldsForAnyText()
    {
        QRandomGenerator random(5);
        const QString alphabet =
            QStringLiteral("aZ9 .,\"|\r\n\t=%\\/!") + QChar(0xe9) + QChar(0x4e2d) + QChar(0);
        const QString passes = QStringLiteral("aZ9 .,\"=%\\/!");
        for (int round = 0; round < 5000; ++round) {
            QString text;
            QString kept;
            const int length = int(random.bounded(16));
            for (int i = 0; i < length; ++i) {
                const QChar c = alphabet.at(int(random.bounded(int(alphabet.size()))));
                text += c;
                if (passes.contains(c))
                    kept += c;
                else if (c == QLatin1Char('\r'))
                    kept += QStringLiteral("\r\n");
            }
            QCOMPARE(DecodeRecordText(EncodeRecordText(text, false)), kept);
            QCOMPARE(DecodeRecordText(EncodeRecordText(text, true)),
                     QString(kept).remove(QLatin1Char('.')));
        }
    }

    void getRecordValue_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        QTest::newRow("value holds =") << "Title = My = Page\r\n"
                                       << "Title"
                                       << "My = Page";
        QTest::newRow("case ignored") << "Title = My = Page\r\n"
                                      << "title"
                                      << "My = Page";
        QTest::newRow("first match wins") << "SubTitle = x\r\nTitle = y\r\n"
                                          << "Title"
                                          << "x";
        QTest::newRow("no final cr") << "A = 1\r\nB = last value"
                                     << "B"
                                     << "last value";
        QTest::newRow("missing key") << "A = 1\r\n"
                                     << "B"
                                     << "";
        QTest::newRow("line without =") << "A\r\nB = 2\r\n"
                                        << "A"
                                        << "2";
        QTest::newRow("blanks trimmed") << "A =    spaced   \r\n"
                                        << "A"
                                        << "spaced";
        QTest::newRow("empty value") << "A = \r\nB = 2\r\n"
                                     << "A"
                                     << "";
        QTest::newRow("no = at all") << "just a line"
                                     << "just"
                                     << "";
        QTest::newRow("empty text") << ""
                                    << "A"
                                    << "";
        QTest::newRow("empty key") << "A = 1"
                                   << ""
                                   << "";
        QTest::newRow("numbered key") << "PhotoName1 = a.jpg\r\nPhotoName10 = b.jpg\r\n"
                                      << "PhotoName10"
                                      << "b.jpg";
    }
    void getRecordValue()
    {
        QFETCH(QString, text);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        QCOMPARE(GetRecordValue(text, key), expected);
    }

    void lookUpsOnChangingTextsNeverMix()
    {
        const QString a = QStringLiteral("Title = one\r\n");
        const QString b = QStringLiteral("Title = two\r\n");
        for (int round = 0; round < 3; ++round) {
            QCOMPARE(GetRecordValue(a, QStringLiteral("TITLE")), QStringLiteral("one"));
            QCOMPARE(GetRecordValue(b, QStringLiteral("title")), QStringLiteral("two"));
        }
        QString changing = a;
        changing[8] = u'x';
        QCOMPARE(GetRecordValue(changing, QStringLiteral("Title")), QStringLiteral("xne"));
    }

    void largeRecordIsReadQuickly()
    {
        QString text;
        for (int i = 0; i <= 400; ++i) {
            text += RecordLine(QStringLiteral("PhotoName%1").arg(i),
                               QStringLiteral("00012 IMG_%1.jpg").arg(i));
            text += RecordLine(QStringLiteral("PhotoPath%1").arg(i),
                               QStringLiteral("/home/ann/Pictures/IMG_%1.jpg").arg(i));
            text += RecordLine(QStringLiteral("PhotoInfo%1").arg(i),
                               QStringLiteral("A photo of the coast at dusk"));
        }
        for (int i = 0; i <= 400; ++i) {
            QCOMPARE(GetRecordValue(text, QStringLiteral("PhotoName%1").arg(i)),
                     QStringLiteral("00012 IMG_%1.jpg").arg(i));
            QVERIFY(!GetRecordValue(text, QStringLiteral("PhotoPath%1").arg(i)).isEmpty());
            QVERIFY(!GetRecordValue(text, QStringLiteral("PhotoInfo%1").arg(i)).isEmpty());
        }
    }

    void replaceSpaces_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("replacement");
        QTest::addColumn<QString>("expected");
        QTest::newRow("underscore") << "My Summer  Trip"
                                    << "_"
                                    << "My_Summer__Trip";
        QTest::newRow("replacement holds blank") << "a b"
                                                 << " x "
                                                 << "a x b";
        QTest::newRow("none") << "abc"
                              << "_"
                              << "abc";
        QTest::newRow("empty replacement") << " a "
                                           << ""
                                           << "a";
    }
    void replaceSpaces()
    {
        QFETCH(QString, name);
        QFETCH(QString, replacement);
        QFETCH(QString, expected);
        QCOMPARE(ReplaceSpaces(name, replacement), expected);
    }

    void fieldReader_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("lines") << QByteArray("A = 1\r\nB = 2\r\n") << QStringList{"A = 1", "B = 2"};
        QTest::newRow("comma splits") << QByteArray("URLName = http://x/?a=1,b=2\r\n")
                                      << QStringList{"URLName = http://x/?a=1", "b=2"};
        QTest::newRow("blanks skipped")
            << QByteArray("   A = 1,   B\r\n") << QStringList{"A = 1", "B"};
        QTest::newRow("leading quote") << QByteArray("\"quoted, text\" rest,next\r\nX = 1\r\n")
                                       << QStringList{"quoted, text", "next", "X = 1"};
        QTest::newRow("unclosed quote ends at line end")
            << QByteArray("\"open\r\nX = 1\r\n") << QStringList{"open", "X = 1"};
        QTest::newRow("quote inside")
            << QByteArray("A = say \"hi\"\r\n") << QStringList{"A = say \"hi\""};
        QTest::newRow("empty line") << QByteArray("A = 1\r\n\r\n") << QStringList{"A = 1", ""};
        QTest::newRow("lf only") << QByteArray("A = 1\nB = 2") << QStringList{"A = 1", "B = 2"};
        QTest::newRow("cr only") << QByteArray("A = 1\rB = 2\r") << QStringList{"A = 1", "B = 2"};
        QTest::newRow("no final line end") << QByteArray("A = 1") << QStringList{"A = 1"};
        QTest::newRow("trailing comma") << QByteArray("A,\r\n") << QStringList{"A", ""};
        QTest::newRow("latin1") << QByteArray("N = Caf\xe9\r\n")
                                << QStringList{QString::fromUtf8("N = Café")};
        QTest::newRow("empty file") << QByteArray() << QStringList{};
    }
    void fieldReader()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, fields);
        RecordFieldReader reader(bytes);
        QStringList got;
        while (const auto field = reader.readField())
            got << *field;
        QCOMPARE(got, fields);
        QVERIFY(reader.atEnd());
        QVERIFY(!reader.readField().has_value());
    }

    void styleOneReadsDecodedText()
    {
        writeBytes(path("one.hst"), "FileName = Trip\r\nTitle = A|4 B|5second\r\n\r\n");
        const RecordFileResult result = ReadRecordFile(path("one.hst"));
        QVERIFY(result.ok);
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("FileName")), QStringLiteral("Trip"));
        // The decoded line end splits the value: only its first line comes back.
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("Title")), QStringLiteral("A, B"));
        QVERIFY(result.text.contains(QStringLiteral("second\r\n")));
    }

    void styleOneRawKeepsEscapes()
    {
        writeBytes(path("raw.ptr"),
                   "LinkName = a|4b\r\nURLName = http://x.org/a,b\r\nBullet = 9\r\n\r\n");
        const RecordFileResult result = ReadRecordFile(path("raw.ptr"), RecordDecoding::Raw);
        QVERIFY(result.ok);
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("LinkName")), QStringLiteral("a|4b"));
        // A comma in a value that wasn't escaped ends the field there.
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("URLName")),
                 QStringLiteral("http://x.org/a"));
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("Bullet")), QStringLiteral("9"));
    }

    void styleOneCutFileGivesEmptyValues()
    {
        writeBytes(path("cut.hst"), "FileName = Trip\r\nTitle = Hol");
        const RecordFileResult result = ReadRecordFile(path("cut.hst"));
        QVERIFY(result.ok);
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("Title")), QStringLiteral("Hol"));
        QCOMPARE(GetRecordValue(result.text, QStringLiteral("GroupInfo")), QString());
    }

    void styleOneMissingFileFails()
    {
        const RecordFileResult result = ReadRecordFile(path("absent.hst"));
        QVERIFY(!result.ok);
        QVERIFY(result.message.contains(QStringLiteral("absent.hst")));
        QVERIFY(!ReadRecordFile(m_dir.path()).ok);
    }

    void binaryJunkNeverCrashes()
    {
        QRandomGenerator random(12345);
        for (int round = 0; round < 50; ++round) {
            QByteArray junk(int(random.bounded(1, 4000)), '\0');
            for (char &c : junk)
                c = char(random.bounded(256));
            writeBytes(path("junk.lst"), junk);
            const RecordFileResult one = ReadRecordFile(path("junk.lst"));
            QVERIFY(one.ok);
            GetRecordValue(one.text, QStringLiteral("Title"));
            RecordListReader list(path("junk.lst"));
            QVERIFY(list.isOpen());
            QVERIFY(!list.findRecord(QStringLiteral("filename = never there")));
            QVERIFY(list.pastEnd());
            QCOMPARE(list.readValue(QStringLiteral("x")), QString());
        }
    }

    void styleTwoFindsRecordAndReadsOneLinePerKey()
    {
        QString list;
        list += RecordLine("filename", "a.txt") + RecordLine("LocationPath", "/home/a/") +
                RecordLine("DateModified", "2024-01-02 03:04:05") + CrLf;
        list += RecordLine("filename", "b.txt") + RecordLine("LocationPath", "/home/b/") +
                RecordLine("DateModified", "2024-05-06 07:08:09") + CrLf;
        writeBytes(path("list.lst"), list.toLatin1());

        RecordListReader reader(path("list.lst"));
        QVERIFY(reader.isOpen());
        QVERIFY(reader.findRecord(QStringLiteral("filename = b.txt")));
        QCOMPARE(reader.readValue(QStringLiteral("LocationPath")), QStringLiteral("/home/b/"));
        QCOMPARE(reader.readValue(QStringLiteral("DateModified")),
                 QStringLiteral("2024-05-06 07:08:09"));
        QVERIFY(!reader.pastEnd());

        RecordListReader caseCounts(path("list.lst"));
        QVERIFY(!caseCounts.findRecord(QStringLiteral("filename = B.txt")));
        QVERIFY(caseCounts.pastEnd());
    }

    void styleTwoMissingLineEatsNextRecordsLine()
    {
        QString list;
        list += RecordLine("filename", "a.txt") + RecordLine("DateModified", "d1") + CrLf;
        list += RecordLine("filename", "b.txt") + RecordLine("LocationPath", "/b/") +
                RecordLine("DateModified", "d2") + CrLf;
        writeBytes(path("shift.lst"), list.toLatin1());
        RecordListReader reader(path("shift.lst"));
        QVERIFY(reader.findRecord(QStringLiteral("filename = a.txt")));
        QCOMPARE(reader.readValue(QStringLiteral("LocationPath")),
                 QString()); // took "DateModified"
        QCOMPARE(reader.readValue(QStringLiteral("DateModified")),
                 QString()); // took the empty line
        QVERIFY(!reader.pastEnd());
    }

    void styleTwoCutRecordReportsEnd()
    {
        writeBytes(path("cutlist.lst"), "filename = a.txt\r\nLocationPath = /a/\r\n");
        RecordListReader reader(path("cutlist.lst"));
        QVERIFY(reader.findRecord(QStringLiteral("filename = a.txt")));
        QCOMPARE(reader.readValue(QStringLiteral("LocationPath")), QStringLiteral("/a/"));
        QVERIFY(!reader.pastEnd());
        QCOMPARE(reader.readValue(QStringLiteral("DateModified")), QString());
        QVERIFY(reader.pastEnd());
    }

    void styleTwoMissingFile()
    {
        RecordListReader reader(path("nolist.lst"));
        QVERIFY(!reader.isOpen());
        QVERIFY(!reader.message().isEmpty());
        QVERIFY(!reader.findRecord(QStringLiteral("filename = a")));
    }

    void writerAddsOneLineEndAndReplaces()
    {
        const QString record = RecordLine("LinkName", "News") +
                               RecordLine("URLName", "https://x.org/") + RecordLine("Bullet", "9");
        writeBytes(path("w.ptr"), QByteArray(5000, 'z'));
        QVERIFY(WriteRecordFile(path("w.ptr"), record).ok);
        QCOMPARE(readBytes(path("w.ptr")),
                 QByteArray("LinkName = News\r\nURLName = https://x.org/\r\nBullet = 9\r\n\r\n"));
    }

    void writerFailsWithMessage()
    {
        const RecordWriteResult result = WriteRecordFile(path("nofolder/w.ptr"), "A = 1\r\n");
        QVERIFY(!result.ok);
        QVERIFY(result.message.contains(QStringLiteral("w.ptr")));
        QVERIFY(!AppendRecord(path("nofolder/l.lst"), "A = 1\r\n").ok);
    }

    void appenderAddsRecords()
    {
        QVERIFY(AppendRecord(path("app.lst"), RecordLine("filename", "a")).ok);
        QVERIFY(AppendRecord(path("app.lst"), RecordLine("filename", "b")).ok);
        QCOMPARE(readBytes(path("app.lst")),
                 QByteArray("filename = a\r\n\r\nfilename = b\r\n\r\n"));
        RecordListReader reader(path("app.lst"));
        QVERIFY(reader.findRecord(QStringLiteral("filename = b")));
    }

    void writerStoresSingleBytes()
    {
        QVERIFY(WriteRecordFile(path("latin.ptr"),
                                RecordLine("URLName", QString::fromUtf8("http://x/é")))
                    .ok);
        QCOMPARE(readBytes(path("latin.ptr")), QByteArray("URLName = http://x/\xe9\r\n\r\n"));
        const RecordFileResult back = ReadRecordFile(path("latin.ptr"), RecordDecoding::Raw);
        QCOMPARE(GetRecordValue(back.text, QStringLiteral("URLName")),
                 QString::fromUtf8("http://x/é"));
    }
};

TARNWICK_TEST_MAIN(TestRecordFile)
#include "test_recordfile.moc"
