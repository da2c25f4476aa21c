#include "DirectoryName.h"
#include "FtpListing.h"
#include "TestMain.h"

#include <QRandomGenerator>

class TestDirectoryName : public QObject
{
    Q_OBJECT
private slots:
    void clean_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("plain") << "Trip to NY"
                               << "Trip to NY";
        QTest::newRow("dots and slashes") << "../etc/passwd"
                                          << "etcpasswd";
        QTest::newRow("every bad character") << ".><{}][&+'%#@~;:^/\\?*|"
                                             << "";
        QTest::newRow("mixed") << "a.b<c>d{e}f[g]h&i+j'k%l#m@n~o;p:q^r/s\\t?u*v|w"
                               << "abcdefghijklmnopqrstuvw";
        QTest::newRow("keeps dash underscore digits") << "x_y-z 09()"
                                                      << "x_y-z 09()";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("control characters")
            << QStringLiteral("a\tb\r\nc") + QChar(0) + QChar(0x7f) + QStringLiteral("d\x1b")
            << "abcd";
        QTest::newRow("letters beyond ASCII stay")
            << QString::fromUtf8("Caf\xc3\xa9 M\xc3\xbcller")
            << QString::fromUtf8("Caf\xc3\xa9 M\xc3\xbcller");
    }
    void clean()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(CleanDirectoryName(text), expected);
    }

    // Whatever is typed or pasted, the cleaned name is one the server takes as the name of one
    // directory (or nothing, which sends nothing), and cleaning it again changes nothing.
    void cleanedNamesAreLegalAndStable()
    {
        QRandomGenerator random(17);
        const QString alphabet = QStringLiteral("aZ9 _-()!$=,\"./\\?*|<>{}[]&+'%#@~;:^\t\r\n") +
                                 QChar(0) + QChar(0x7f) + QChar(0x1b) + QChar(0xe9) + QChar(0x4e2d);
        for (int round = 0; round < 5000; ++round) {
            QString typed;
            const int length = int(random.bounded(12));
            for (int i = 0; i < length; ++i)
                typed += alphabet.at(int(random.bounded(int(alphabet.size()))));
            const QString cleaned = CleanDirectoryName(typed);
            QCOMPARE(CleanDirectoryName(cleaned), cleaned);
            if (!cleaned.isEmpty())
                QVERIFY2(FtpListing::IsUsableName(cleaned), qPrintable(cleaned));
            for (const QChar c : cleaned) {
                QVERIFY(c.unicode() >= 0x20 && c.unicode() != 0x7f);
                QVERIFY(!QStringLiteral(".><{}][&+'%#@~;:^/\\?*|").contains(c));
            }
            const QString sent = SendFileDirectoryName(cleaned.trimmed());
            QCOMPARE(SendFileDirectoryName(sent), sent);
            if (!sent.isEmpty())
                QVERIFY(FtpListing::IsUsableName(sent));
        }
    }

    void caret_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("expectedCaret");
        QTest::newRow("unchanged keeps caret") << "abc" << 1 << "abc" << 1;
        QTest::newRow("shorter goes to end") << "ab.c" << 3 << "abc" << 3;
        QTest::newRow("shorter from the middle") << "a#bcdef" << 2 << "abcdef" << 6;
    }
    void caret()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(QString, expected);
        QFETCH(int, expectedCaret);
        const CleanedEdit edit = CleanWhileTyping(text, caret);
        QCOMPARE(edit.text, expected);
        QCOMPARE(edit.caret, expectedCaret);
    }

    void sendName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("expected");
        QTest::newRow("blank") << "for Ann"
                               << "for_Ann";
        QTest::newRow("tab and tilde") << QString("a\tb~c") << "a_b_c";
        QTest::newRow("above brace") << QString::fromUtf8("caf\xc3\xa9") << "caf_";
        QTest::newRow("brace stays") << "a}"
                                     << "a}";
        QTest::newRow("empty") << ""
                               << "";
    }
    void sendName()
    {
        QFETCH(QString, name);
        QFETCH(QString, expected);
        QCOMPARE(SendFileDirectoryName(name), expected);
    }

    void defaultName()
    {
        const QDateTime when(QDate(2026, 1, 5), QTime(9, 7));
        QCOMPARE(DefaultSendFileDirectory(when), QStringLiteral("FileDirectory  2026 01 05 09 7"));
        const QDateTime late(QDate(2026, 11, 22), QTime(23, 45));
        QCOMPARE(DefaultSendFileDirectory(late), QStringLiteral("FileDirectory  2026 11 22 23 45"));
    }
};

TARNWICK_TEST_MAIN(TestDirectoryName)
#include "test_directoryname.moc"
