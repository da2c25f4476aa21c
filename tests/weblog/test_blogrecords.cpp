#include "BlogRecords.h"
#include "Folders.h"
#include "Helpers.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace BuildBlog;

namespace {

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

BlogRecords webLog(const QString &name)
{
    BlogRecords records;
    records.main.FileName = name;
    records.main.MainTitle = QStringLiteral("My trip");
    records.main.ShowPointers = QStringLiteral("Yes");
    records.main.ShowCommentPage = QStringLiteral("Yes");
    return records;
}

} // namespace

// The Web Log's four kinds of record on disk: their files, their encoding, the names made from
// titles, the colour numbers, and records that were cut short or edited by hand.
class TestBlogRecords : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        Folders::MakeFolderTree();
    }

    void mainRecordIsWrittenFieldByFieldInItsOrder()
    {
        BlogRecords records = webLog(QStringLiteral("Trip Notes"));
        records.main.TitleColor = QStringLiteral("#008000");
        records.main.DirectorySavedTo = QStringLiteral("Web_Log");
        QVERIFY(SaveBlogMain(records));
        const QByteArray expected =
            "FileName = Trip Notes\r\nMainTitle = My trip\r\nTitleColor = #008000\r\n"
            "BackgroundColor = \r\nSubTextColor = \r\nLineType = \r\nFontType = \r\n"
            "FontSize = \r\nFontBold = \r\nFontItalic = \r\nMainDate = \r\nShowPointers = Yes\r\n"
            "ShowCommentPage = Yes\r\nDirectorySavedTo = Web_Log\r\n\r\n";
        QCOMPARE(readBytes(Folders::BlogFolder() + "/Trip Notes.blg"), expected);
        // The folder of the Web Log and its two sub-folders come with the first save.
        QVERIFY(QFileInfo(Folders::BlogFolder() + "/Trip Notes/Pointers").isDir());
        QVERIFY(QFileInfo(Folders::BlogFolder() + "/Trip Notes/Comments").isDir());
    }

    void anEmptyNameSavesNothing()
    {
        BlogRecords records;
        QVERIFY(!SaveBlogMain(records));
        QVERIFY(!SaveBlogComment(records));
        QCOMPARE(QDir(Folders::BlogFolder()).entryList({"*.blg"}, QDir::Files).size(), 0);
    }

    void accentsCommasAndQuotesInAValue()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.main.MainTitle = QString::fromUtf8("é, \"quoted\"");
        QVERIFY(SaveBlogMain(records));
        QVERIFY(readBytes(MainRecordPath("Log")).contains("MainTitle = |4 |3quoted|3\r\n"));
        BlogRecords back;
        back.main.FileName = QStringLiteral("Log");
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.MainTitle, QStringLiteral(", \"quoted\""));
    }

    void twoLinesHoldOneMarkAndReadBackWithCrLf()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.FileName = QStringLiteral("Log");
        records.section.SubTitle = QStringLiteral("Day 1");
        records.section.BlogText = QStringLiteral("First line\r\nSecond line");
        QVERIFY(SaveBlogSection(records));
        const QByteArray bytes = readBytes(SectionRecordPath("Log", "Day 1"));
        QVERIFY(bytes.contains("BlogText = First line|5Second line\r\n"));
        QCOMPARE(bytes.count("|5"), 1);
        records.section = BlogSection();
        records.section.SubTitle = QStringLiteral("Day 1");
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.BlogText, QStringLiteral("First line\r\nSecond line"));
    }

    void aBarTypedIsLostAtSave()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.FileName = QStringLiteral("Log");
        records.section.SubTitle = QStringLiteral("S");
        records.section.BlogText = QStringLiteral("a|b");
        QVERIFY(SaveBlogSection(records));
        QVERIFY(readBytes(SectionRecordPath("Log", "S")).contains("BlogText = ab\r\n"));
    }

    void anUnknownEscapeIsRemovedWhole()
    {
        writeBytes(SectionRecordPath("Log", "S"), "FileName = Log\r\nSubTitle = S\r\n"
                                                  "DisplayedSubTitle = a|xb\r\n");
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.SubTitle = QStringLiteral("S");
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.DisplayedSubTitle, QStringLiteral("ab"));
    }

    void fontAndDirectoryAreNotDecoded()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.main.FontType = QStringLiteral("Times, serif");
        records.main.DirectorySavedTo = QStringLiteral("Logs,old");
        QVERIFY(SaveBlogMain(records));
        BlogRecords back;
        back.main.FileName = QStringLiteral("Log");
        QVERIFY(LoadBlogMain(back));
        QCOMPARE(back.main.FontType, QStringLiteral("Times|4 serif"));
        QCOMPARE(back.main.DirectorySavedTo, QStringLiteral("Logs|4old"));
    }

    void theWordOrderInTheTextTakesTheValueFromTheNextLine_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("order");
        QTest::addColumn<QString>("position");
        QTest::newRow("plain") << "A walk"
                               << "2"
                               << "Right";
        QTest::newRow("order") << "In order to see"
                               << "Ann"
                               << "Right";
        QTest::newRow("position") << "My position"
                                  << "2"
                                  << "Ann";
    }
    void theWordOrderInTheTextTakesTheValueFromTheNextLine()
    {
        QFETCH(QString, text);
        QFETCH(QString, order);
        QFETCH(QString, position);
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.FileName = QStringLiteral("Log");
        records.section.SubTitle = QStringLiteral("S");
        records.section.BlogText = text;
        records.section.Author = QStringLiteral("Ann");
        records.section.Position = QStringLiteral("Right");
        records.section.Order = QStringLiteral("2");
        QVERIFY(SaveBlogSection(records));
        records.section = BlogSection();
        records.section.SubTitle = QStringLiteral("S");
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.Order, order);
        QCOMPARE(records.section.Position, position);
    }

    void pointerGoesToTheMasterPoolToo()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.pointer.FileName = QStringLiteral("News - Paper");
        records.pointer.Category = QStringLiteral("News");
        records.pointer.DisplayName = QStringLiteral("Paper");
        records.pointer.URL = QStringLiteral("http://example.org/a,b");
        QVERIFY(SaveBlogPointer(records));
        const QString local = PointerRecordPath("Log", "News - Paper");
        const QString master = Folders::MasterPointerFolder() + "/News - Paper.ptr";
        QCOMPARE(readBytes(master), readBytes(local));
        QVERIFY(readBytes(local).contains("URL = http://example.org/a|4b\r\nFontType = \r\n"));
        records.pointer = BlogPointer();
        records.pointer.FileName = QStringLiteral("News - Paper");
        QVERIFY(LoadBlogPointer(records));
        QCOMPARE(records.pointer.URL, QStringLiteral("http://example.org/a,b"));
        QCOMPARE(records.pointer.Category, QStringLiteral("News"));
    }

    void pointerWithoutNameWritesAndCopiesNothing()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.pointer.Category = QStringLiteral("News");
        QVERIFY(!SaveBlogPointer(records));
        QCOMPARE(QDir(Folders::MasterPointerFolder()).entryList(QDir::Files).size(), 0);
        QCOMPARE(QDir(WebLogFolder("Log") + "/Pointers").entryList(QDir::Files).size(), 0);
    }

    void commentFontsLandInThePointer()
    {
        writeBytes(CommentRecordPath("Log", "Hello"),
                   "FileName = Hello\r\nComment = Nice|5page\r\nFontType = Mono\r\n"
                   "FontSize = 9\r\nFontBold = \r\nFontItalic = \r\n\r\n");
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.comment.FileName = QStringLiteral("Hello");
        QVERIFY(LoadBlogComment(records));
        QCOMPARE(records.comment.Comment, QStringLiteral("Nice\r\npage"));
        QCOMPARE(records.comment.FontType, QString());
        QCOMPARE(records.pointer.FontType, QStringLiteral("Mono"));
        QCOMPARE(records.pointer.FontSize, QStringLiteral("9"));
    }

    void mainRecordWithoutTextColourReadsBlack()
    {
        writeBytes(MainRecordPath("Old"), "FileName = Old\r\nMainTitle = Old one\r\n");
        BlogRecords records;
        records.main.FileName = QStringLiteral("Old");
        QVERIFY(LoadBlogMain(records));
        QCOMPARE(records.main.SubTextColor, QStringLiteral("#000000"));
        QCOMPARE(records.main.TitleColor, QString());
        QCOMPARE(records.main.BackgroundColor, QString());
    }

    void colourNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("number");
        QTest::newRow("white") << "#FFFFFF" << 16777215;
        QTest::newRow("lower") << "#7F7Fff" << (0x7F + 0x7F * 256 + 0xFF * 65536);
        QTest::newRow("bad pair") << "#ZZ0000" << 0;
        QTest::newRow("blue only") << "#0000FF" << 16711680;
    }
    void colourNumbers()
    {
        QFETCH(QString, text);
        QFETCH(int, number);
        QCOMPARE(HexColorToRGB(text), number);
    }

    void fileNamesFromTitles_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("name");
        QTest::newRow("three letter extension stays") << "a.b.jpg"
                                                      << "ab.jpg";
        QTest::newRow("four letter extension loses its dot") << "a.jpeg"
                                                             << "ajpeg";
        QTest::newRow("ampersand") << "Tom & Jerry"
                                   << "Tom + Jerry";
        QTest::newRow("brackets") << "<b>{x}[y]</b>"
                                  << "bxyb";
        QTest::newRow("marks") << "a'%#@~;:\"^/\\?*|b"
                               << "ab";
        QTest::newRow("what stays") << "A, b! $(c)=+-_"
                                    << "A, b! $(c)=+-_";
        QTest::newRow("nothing left") << "???"
                                      << "";
        QTest::newRow("trip") << "Trip: Notes."
                              << "Trip Notes";
    }
    void fileNamesFromTitles()
    {
        QFETCH(QString, text);
        QFETCH(QString, name);
        QCOMPARE(CleanFileName(text), name);
    }

    void numberValues_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "12" << 12.0;
        QTest::newRow("blanks") << "  3 " << 3.0;
        QTest::newRow("fraction") << "1.5" << 1.5;
        QTest::newRow("word") << "Ann" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("sign") << "-2x" << -2.0;
    }
    void numberValues()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(NumberValue(text), value);
    }

    // Faults: nothing of what a file holds is lost, nothing crashes.
    void recordCutShortGivesWhatIsThere()
    {
        writeBytes(SectionRecordPath("Log", "Cut"),
                   "FileName = Log\r\nSubTitle = Cut\r\nDisplayedSubTitle = Day one\r\nBlogTe");
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.SubTitle = QStringLiteral("Cut");
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.DisplayedSubTitle, QStringLiteral("Day one"));
        QCOMPARE(records.section.BlogText, QString());
        QCOMPARE(records.section.Order, QString());
        // Saved again, it goes back to the same file whole.
        QVERIFY(SaveBlogSection(records));
        records.section = BlogSection();
        records.section.SubTitle = QStringLiteral("Cut");
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.DisplayedSubTitle, QStringLiteral("Day one"));
    }

    void handEditedRecordInAnotherOrder()
    {
        writeBytes(SectionRecordPath("Log", "Edited"),
                   "Order = 1\nAuthor = Bob\nSubTitle = Something else\nFileName = Other\n"
                   "BlogText = Hello\n");
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.SubTitle = QStringLiteral("Edited");
        QVERIFY(LoadBlogSection(records));
        QCOMPARE(records.section.Author, QStringLiteral("Bob"));
        QCOMPARE(records.section.BlogText, QStringLiteral("Hello"));
        // The names it was found by stay, so the save goes back to the same file.
        QCOMPARE(records.section.SubTitle, QStringLiteral("Edited"));
        QCOMPARE(records.section.FileName, QStringLiteral("Log"));
    }

    void junkGivesEmptyFieldsAndNoCrash()
    {
        QByteArray junk;
        for (int i = 0; i < 4096; ++i)
            junk.append(char((i * 7919) % 256));
        writeBytes(MainRecordPath("Junk"), junk);
        writeBytes(SectionRecordPath("Junk", "J"), junk);
        writeBytes(PointerRecordPath("Junk", "J"), "=\r\n==,\"\"\r\n|||\r\n");
        BlogRecords records;
        records.main.FileName = QStringLiteral("Junk");
        QVERIFY(LoadBlogMain(records));
        QCOMPARE(records.main.FileName, QStringLiteral("Junk"));
        records.section.SubTitle = QStringLiteral("J");
        QVERIFY(LoadBlogSection(records));
        records.pointer.FileName = QStringLiteral("J");
        QVERIFY(LoadBlogPointer(records));
        QCOMPARE(records.pointer.URL, QString());
    }

    void missingRecordLeavesTheFieldsAsTheyWere()
    {
        BlogRecords records = webLog(QStringLiteral("Log"));
        records.section.SubTitle = QStringLiteral("Gone");
        records.section.BlogText = QStringLiteral("kept");
        QVERIFY(!LoadBlogSection(records));
        QCOMPARE(records.section.BlogText, QStringLiteral("kept"));
        records.main.FileName = QStringLiteral("Nope");
        QVERIFY(!LoadBlogMain(records));
        QCOMPARE(records.main.MainTitle, QStringLiteral("My trip"));
    }

    void listsAreSortedIgnoringCaseAndMatchThePattern()
    {
        const QString folder = WebLogFolder("Log");
        for (const char *name : {"b.blg", "A.blg", "c.BLG", "d.txt", "Sml_x.jpg", "Web_Log.htm"})
            writeBytes(folder + "/" + name, "x");
        QCOMPARE(BlogFileList(folder, "*.blg"), QStringList({"A.blg", "b.blg", "c.BLG"}));
        QCOMPARE(BlogFileList(folder, "(*.pic *.bmp *.gif *.jpg *.htm)|*.pic;*.bmp;*.gif;*.jpg;"
                                      "*.htm"),
                 QStringList({"Sml_x.jpg", "Web_Log.htm"}));
        QCOMPARE(BlogFileList(folder + "/none", "*.blg"), QStringList());
    }

    void dateStampHasFivePartsOfNow()
    {
        const QString stamp = DateStamp();
        QCOMPARE(stamp.split(' ').size(), 5);
        QCOMPARE(stamp.size(), 16);
        QCOMPARE(PresentDate().size(), 10);
    }
};

TARNWICK_TEST_MAIN(TestBlogRecords)
#include "test_blogrecords.moc"
