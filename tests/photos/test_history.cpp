#include "Folders.h"
#include "History.h"
#include "PhotoPage.h"
#include "ScriptedUi.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>

namespace {

QString historyFile(const QString &name)
{
    return Folders::HistoryFolder() + "/" + name;
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void writeAll(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

void addRow(PhotoPage &page, const QString &name, const QString &path, const QString &rotate,
            const QString &info, const QString &left, const QString &order)
{
    const int i = page.PhotoNumber++;
    page.PhotoName[i] = name;
    page.PhotoPath[i] = path;
    page.PhotoRotate[i] = rotate;
    page.PhotoInfo[i] = info;
    page.PhotoLeft[i] = left;
    page.PhotoOrder[i] = order;
}

} // namespace

class TestHistory : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        Folders::MakeFolderTree();
    }

    void fileIsWrittenByteForByte()
    {
        PhotoPage page;
        page.FileName = "Trip to NY";
        page.Title = "New York, \"big\" city";
        page.GroupInfo = "Two\r\nlines | and 50%";
        addRow(page, "00050_x.jpg", "/home/ann/Pics", "", "Top of the Rock!", "False", "00050");
        addRow(page, "Tree_Left.jpg", "/home/ann/My Pics", "_Left", "a, b", "True", "00051");
        QVERIFY(SaveHistory(page).ok);

        const QByteArray expected = "FileName = Trip_to_NY\r\n"
                                    "Title = New York|4 |3big|3 city\r\n"
                                    "GroupInfo = Two|5lines  and 50%\r\n"
                                    "PhotoNumber = 2\r\n"
                                    "PhotoName0 = 00050_x.jpg\r\n"
                                    "PhotoPath0 = /home/ann/Pics\r\n"
                                    "PhotoRotate0 = \r\n"
                                    "PhotoInfo0 = Top of the Rock!\r\n"
                                    "PhotoLeft0 = False\r\n"
                                    "PhotoOrder0 = 00050\r\n"
                                    "PhotoName1 = Tree_Left.jpg\r\n"
                                    "PhotoPath1 = /home/ann/My Pics\r\n"
                                    "PhotoRotate1 = _Left\r\n"
                                    "PhotoInfo1 = a|4 b\r\n"
                                    "PhotoLeft1 = True\r\n"
                                    "PhotoOrder1 = 00051\r\n"
                                    "\r\n";
        QCOMPARE(readAll(historyFile("Trip_to_NY.hst")), expected);
        QCOMPARE(HistoryText(page), expected);
        QCOMPARE(page.FileName, QString("Trip_to_NY"));
    }

    void emptyPageIsFourLinesAndTheEnd()
    {
        PhotoPage page;
        page.FileName = "Empty";
        QVERIFY(SaveHistory(page).ok);
        QCOMPARE(
            readAll(historyFile("Empty.hst")),
            QByteArray("FileName = Empty\r\nTitle = \r\nGroupInfo = \r\nPhotoNumber = 0\r\n\r\n"));
    }

    void dotIsDroppedFromTheValueButNotFromTheFileName()
    {
        PhotoPage page;
        page.FileName = "v1.2 test";
        QVERIFY(SaveHistory(page).ok);
        QVERIFY(QFile::exists(historyFile("v1.2_test.hst")));
        QVERIFY(readAll(historyFile("v1.2_test.hst")).startsWith("FileName = v12_test\r\n"));
        PhotoPage loaded;
        loaded.FileName = "v1.2_test.hst";
        QVERIFY(ReadHistory(loaded).ok);
        QCOMPARE(loaded.FileName, QString("v12_test"));
    }

    void roundTripKeepsEveryRow()
    {
        PhotoPage page;
        page.FileName = "Round";
        page.Title = "Title";
        page.GroupInfo = "Intro";
        addRow(page, "a b.jpg", "/p/a b", "", "first", "True", "00001");
        addRow(page, "c_Right.jpg", "/p", "_Right", "second", "False", "00002");
        QVERIFY(SaveHistory(page).ok);
        PhotoPage loaded;
        loaded.FileName = "Round.hst";
        QVERIFY(ReadHistory(loaded).ok);
        QCOMPARE(loaded.Title, page.Title);
        QCOMPARE(loaded.GroupInfo, page.GroupInfo);
        QCOMPARE(loaded.PhotoNumber, qint16(2));
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(loaded.PhotoName[i], page.PhotoName[i]);
            QCOMPARE(loaded.PhotoPath[i], page.PhotoPath[i]);
            QCOMPARE(loaded.PhotoRotate[i], page.PhotoRotate[i]);
            QCOMPARE(loaded.PhotoInfo[i], page.PhotoInfo[i]);
            QCOMPARE(loaded.PhotoLeft[i], page.PhotoLeft[i]);
            QCOMPARE(loaded.PhotoOrder[i], page.PhotoOrder[i]);
        }
    }

    void multiLineTextComesBackAsItsFirstLine()
    {
        PhotoPage page;
        page.FileName = "Lines";
        addRow(page, "a.jpg", "/p", "", "line one\r\nline two", "True", "00050");
        QVERIFY(SaveHistory(page).ok);
        PhotoPage loaded;
        loaded.FileName = "Lines.hst";
        QVERIFY(ReadHistory(loaded).ok);
        QCOMPARE(loaded.PhotoInfo[0], QString("line one"));
        QCOMPARE(loaded.PhotoLeft[0], QString("True"));
    }

    void titleHoldingACountKeyMisleadsTheCount()
    {
        PhotoPage page;
        page.FileName = "Odd";
        page.Title = "My PhotoNumber list";
        page.GroupInfo = "3";
        addRow(page, "a.jpg", "/p", "", "", "", "00050");
        QVERIFY(SaveHistory(page).ok);
        PhotoPage loaded;
        loaded.FileName = "Odd.hst";
        QVERIFY(ReadHistory(loaded).ok);
        // "PhotoNumber" is first found in the title; the next "=" is GroupInfo's.
        QCOMPARE(loaded.PhotoNumber, qint16(3));
    }

    void valueHoldingACountKeyWithJunkReadsBackAsAClearError()
    {
        // A title such as a hand edit or a cut-short file can leave: the record's look-up finds
        // "PhotoNumber" in it before the key's own line, and "$4" is no count.
        PhotoPage page;
        page.FileName = "Trip";
        page.Title = "Trip`PhotoNumber =$4";
        addRow(page, "a.jpg", "/p", "", "", "", "00050");
        QVERIFY(SaveHistory(page).ok);
        PhotoPage loaded;
        loaded.FileName = "Trip.hst";
        const HistoryResult result = ReadHistory(loaded);
        QVERIFY(!result.ok);
        QCOMPARE(result.error,
                 QString("The number of photos in the History file is not a number: $4"));
        QCOMPARE(loaded.PhotoNumber, qint16(0));
        QCOMPARE(loaded.Title, QString("Trip`PhotoNumber =$4"));
        // The file itself is left as it was written.
        QVERIFY(readAll(historyFile("Trip.hst")).contains("PhotoName0 = a.jpg\r\n"));
    }

    void nonAsciiLettersAreLostBlanksAndCommasKept()
    {
        PhotoPage page;
        page.FileName = "Names";
        page.Title = QString::fromUtf8("Café, Zürich");
        addRow(page, QString::fromUtf8("Straße am See, 2.jpg"), "/p", "", "", "", "00050");
        QVERIFY(SaveHistory(page).ok);
        PhotoPage loaded;
        loaded.FileName = "Names.hst";
        QVERIFY(ReadHistory(loaded).ok);
        QCOMPARE(loaded.Title, QString("Caf, Zrich"));
        QCOMPARE(loaded.PhotoName[0], QString("Strae am See, 2.jpg"));
    }

    void missingFileChangesNothing()
    {
        PhotoPage page;
        page.FileName = "Nope.hst";
        page.Title = "kept";
        const HistoryResult result = ReadHistory(page);
        QVERIFY(!result.ok);
        QVERIFY(!result.error.isEmpty());
        QCOMPARE(page.Title, QString("kept"));
    }

    void cutShortFileGivesWhatIsThere()
    {
        writeAll(historyFile("Cut.hst"),
                 "FileName = Cut\r\nTitle = T\r\nGroupInfo = G\r\n"
                 "PhotoNumber = 2\r\nPhotoName0 = a.jpg\r\nPhotoPath0 = /p\r\n"
                 "PhotoRot");
        PhotoPage page;
        page.FileName = "Cut.hst";
        QVERIFY(ReadHistory(page).ok);
        QCOMPARE(page.PhotoNumber, qint16(2));
        QCOMPARE(page.PhotoName[0], QString("a.jpg"));
        QCOMPARE(page.PhotoPath[0], QString("/p"));
        QCOMPARE(page.PhotoRotate[0], QString());
        QCOMPARE(page.PhotoName[1], QString());
    }

    void handEditedFile_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("title");
        QTest::newRow("comma splits the field")
            << QByteArray("FileName = H\r\nTitle = a, b\r\nPhotoNumber = 0\r\n") << true << 0
            << "a";
        QTest::newRow("LF only") << QByteArray("FileName = H\nTitle = x\nPhotoNumber = 1\n"
                                               "PhotoName0 = a.jpg\n")
                                 << true << 1 << "x";
        QTest::newRow("count not a number")
            << QByteArray("FileName = H\r\nTitle = t\r\nPhotoNumber = lots\r\n") << false << 0
            << "t";
        QTest::newRow("count too large")
            << QByteArray("FileName = H\r\nTitle = t\r\nPhotoNumber = 500\r\n") << false << 401
            << "t";
        QTest::newRow("count beyond 16 bits")
            << QByteArray("FileName = H\r\nTitle = t\r\nPhotoNumber = 99999\r\n") << false << 0
            << "t";
        QTest::newRow("count negative")
            << QByteArray("FileName = H\r\nTitle = t\r\nPhotoNumber = -4\r\n") << true << 0 << "t";
        QTest::newRow("no count") << QByteArray("FileName = H\r\nTitle = t\r\n") << true << 0
                                  << "t";
        QTest::newRow("empty file") << QByteArray() << true << 0 << "";
        QTest::newRow("binary junk") << QByteArray("\x00\xff\xfe=\r\n\x01", 7) << true << 0 << "";
    }
    void handEditedFile()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, ok);
        QFETCH(int, count);
        QFETCH(QString, title);
        writeAll(historyFile("Hand.hst"), bytes);
        PhotoPage page;
        page.FileName = "Hand.hst";
        QCOMPARE(ReadHistory(page).ok, ok);
        QCOMPARE(int(page.PhotoNumber), count);
        QCOMPARE(page.Title, title);
    }

    void fourHundredAndOneRowsRoundTrip()
    {
        PhotoPage page;
        page.FileName = "Big";
        for (int i = 0; i < PhotoPage::Rows; ++i)
            addRow(page, QString("p%1.jpg").arg(i), "/p", "", QString("info %1").arg(i), "True",
                   FormatGroup(QString::number(i)));
        QVERIFY(SaveHistory(page).ok);
        PhotoPage loaded;
        loaded.FileName = "Big.hst";
        QVERIFY(ReadHistory(loaded).ok);
        QCOMPARE(loaded.PhotoNumber, qint16(401));
        QCOMPARE(loaded.PhotoName[400], QString("p400.jpg"));
        QCOMPARE(loaded.PhotoInfo[400], QString("info 400"));
        QCOMPARE(loaded.PhotoOrder[400], QString("00400"));
        // "PhotoName1" is met first inside "PhotoName10..."? No: keys are found in file order,
        // and "PhotoName1 = " stands before "PhotoName10 = ".
        QCOMPARE(loaded.PhotoName[1], QString("p1.jpg"));
        QCOMPARE(loaded.PhotoName[10], QString("p10.jpg"));
    }

    void unwritablePlaceLeavesNoFile()
    {
        PhotoPage page;
        page.FileName = "no/such/folder";
        QVERIFY(!SaveHistory(page).ok);
    }

    void getHistoryValue_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("plain") << "Title = x\r\n"
                               << "Title"
                               << "x";
        QTest::newRow("case") << "TITLE = x\r\n"
                              << "title"
                              << "x";
        QTest::newRow("inside a value") << "A = my title\r\nTitle = y\r\n"
                                        << "Title"
                                        << "\r\nTitle";
        QTest::newRow("no CR") << "Title =  last "
                               << "Title"
                               << "last";
        QTest::newRow("missing") << "Title = x\r\n"
                                 << "Other"
                                 << "";
        QTest::newRow("second equals") << "Title = a = b\r\n"
                                       << "Title"
                                       << "a = b";
    }
    void getHistoryValue()
    {
        QFETCH(QString, text);
        QFETCH(QString, key);
        QFETCH(QString, value);
        if (QTest::currentDataTag() == QLatin1String("inside a value")) {
            // "title" is found inside the first value; its "=" is the next line's.
            QCOMPARE(GetHistoryValue(text, key), QString("y"));
            return;
        }
        QCOMPARE(GetHistoryValue(text, key), value);
    }

    void findPhoto()
    {
        PhotoPage page;
        addRow(page, "Tree.jpg", "/p", "", "", "", "00050");
        addRow(page, "Tree.jpg", "/p", "", "", "", "00050");
        addRow(page, "Tree_Left.jpg", "/p", "_Left", "", "", "51");
        addRow(page, "Bush.jpg", "/p", "_Right", "", "", "00052");
        QCOMPARE(FindPhoto(page, "Tree.jpg", "00050"), 0);
        QCOMPARE(FindPhoto(page, "Tree.jpg", "50"), 0);
        QCOMPARE(FindPhoto(page, "Tree_Left.jpg", "00051"), 2);
        QCOMPARE(FindPhoto(page, "Tree.jpg", "00051"), int(PhotoPage::NotFound));
        QCOMPARE(FindPhoto(page, "tree.jpg", "00050"), int(PhotoPage::NotFound));
        // A "_Right" row whose name carries no suffix doesn't fit.
        QCOMPARE(FindPhoto(page, "Bush.jpg", "00052"), int(PhotoPage::NotFound));
        page.PhotoNumber = 1;
        QCOMPARE(FindPhoto(page, "Tree_Left.jpg", "00051"), int(PhotoPage::NotFound));
    }

    void removePhoto()
    {
        PhotoPage page;
        addRow(page, "a.jpg", "/p", "", "A", "True", "00001");
        addRow(page, "b.jpg", "/p", "", "B", "False", "00002");
        addRow(page, "c.jpg", "/p", "", "C", "True", "00003");
        QVERIFY(RemovePhoto(page, 0));
        QCOMPARE(page.PhotoNumber, qint16(2));
        QCOMPARE(page.PhotoName[0], QString("b.jpg"));
        QCOMPARE(page.PhotoInfo[1], QString("C"));
        QCOMPARE(page.PhotoName[2], QString("c.jpg")); // beyond the count, kept
        QVERIFY(!RemovePhoto(page, PhotoPage::NotFound));
        QCOMPARE(page.PhotoNumber, qint16(2));
    }

    void removingTheOnlyRowLeavesZero()
    {
        PhotoPage page;
        addRow(page, "a.jpg", "/p", "", "A", "True", "00001");
        QVERIFY(RemovePhoto(page, 0));
        QCOMPARE(page.PhotoNumber, qint16(0));
        QVERIFY(RemovePhoto(page, 0));
        QCOMPARE(page.PhotoNumber, qint16(0));
    }

    void clearHistory()
    {
        PhotoPage page;
        page.FileName = "F";
        page.Title = "T";
        page.GroupInfo = "G";
        addRow(page, "a.jpg", "/p", "_Left", "A", "True", "00001");
        ClearHistory(page);
        QCOMPARE(page.PhotoNumber, qint16(0));
        QVERIFY(page.FileName.isEmpty() && page.Title.isEmpty() && page.GroupInfo.isEmpty());
        QVERIFY(page.PhotoName[0].isEmpty() && page.PhotoLeft[0].isEmpty());
    }

    void showHistoryShowsThePlainRecord()
    {
        PhotoPage page;
        page.FileName = "v1.2 test";
        page.Title = "a, b";
        addRow(page, "x.jpg", "/p", "", "hi", "True", "00050");
        ScriptedUi ui;
        ShowHistory(page, ui);
        QCOMPARE(ui.scrollMessages.size(), 1);
        QCOMPARE(ui.scrollMessages.first(),
                 QString("FileName = v1.2 test\nTitle = a, b\nGroupInfo = \nPhotoNumber = 1\n"
                         "PhotoName0 = x.jpg\nPhotoPath0 = /p\nPhotoRotate0 = \nPhotoInfo0 = hi\n"
                         "PhotoLeft0 = True\nPhotoOrder0 = 00050\n"));
    }

    void groupNumbers_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("removed");
        QTest::addColumn<QString>("group");
        QTest::newRow("plain") << "00050_Tree.jpg"
                               << "Tree.jpg"
                               << "00050";
        QTest::newRow("rotated") << "00050_Tree_Left.jpg"
                                 << "Tree_Left.jpg"
                                 << "00050";
        QTest::newRow("no number") << "My_Tree.jpg"
                                   << "My_Tree.jpg"
                                   << "00000";
        QTest::newRow("no blank") << "Tree.jpg"
                                  << "Tree.jpg"
                                  << "00000";
        QTest::newRow("empty prefix") << "_Tree.jpg"
                                      << "_Tree.jpg"
                                      << "00000";
    }
    void groupNumbers()
    {
        QFETCH(QString, name);
        QFETCH(QString, removed);
        QFETCH(QString, group);
        QCOMPARE(RemoveGroupNumber(name), removed);
        QCOMPARE(GetGroupNumber(name), group);
    }

    void numericValue_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::addColumn<bool>("numeric");
        QTest::newRow("digits") << "00050" << 50.0 << true;
        QTest::newRow("blanks") << "  7 " << 7.0 << true;
        QTest::newRow("empty") << "" << 0.0 << false;
        QTest::newRow("trailing letters") << "12abc" << 12.0 << false;
        QTest::newRow("letters") << "abc" << 0.0 << false;
        QTest::newRow("negative") << "-3" << -3.0 << true;
        QTest::newRow("decimal") << "2.5" << 2.5 << true;
    }
    void numericValue()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QFETCH(bool, numeric);
        QCOMPARE(NumericValue(text), value);
        QCOMPARE(IsNumericText(text), numeric);
    }

    void formatGroup_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("group");
        QTest::newRow("7") << "7"
                           << "00007";
        QTest::newRow("123456") << "123456"
                                << "23456";
        QTest::newRow("empty") << ""
                               << "00000";
        QTest::newRow("50") << "50"
                            << "00050";
    }
    void formatGroup()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, group);
        QCOMPARE(FormatGroup(prefix), group);
    }
};

TARNWICK_TEST_MAIN(TestHistory)
#include "test_history.moc"
