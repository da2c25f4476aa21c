#include "FrameFixture.h"

#include "Folders.h"
#include "History.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "TestMain.h"

#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {

// Two pictures on the list: "00050_Tree.jpg" (row 0) and "00050_Lake.jpg" (row 1).
void copyTwo(FrameFixture &f)
{
    f.addPictures({QStringLiteral("Tree.jpg"), QStringLiteral("Lake.jpg")});
    f.selectSource({QStringLiteral("Tree.jpg")});
    f.click(QStringLiteral("CopyButton_0"));
    f.selectSource({QStringLiteral("Lake.jpg")});
    f.click(QStringLiteral("CopyButton_0"));
}

QString readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(file.readAll());
}

} // namespace

class TestReadyToSendEdit : public QObject
{
    Q_OBJECT
private slots:
    void clickingARowFillsThePanel()
    {
        FrameFixture f;
        copyTwo(f);
        f.page().PhotoInfo[0] = QStringLiteral("An old oak\r\nin May");
        f.page().PhotoLeft[0] = QStringLiteral("True");
        f.clickRow(f.file3(), QStringLiteral("00050_Tree.jpg"));

        auto *panel = f.find<QGroupBox>(QStringLiteral("EditFrame"));
        QVERIFY(panel->isVisible());
        QCOMPARE(panel->title(), QStringLiteral("Edit Photo Description-00050_Tree.jpg"));
        auto *text1 = f.find<QPlainTextEdit>(QStringLiteral("Text1"));
        QCOMPARE(text1->toPlainText(), QStringLiteral("An old oak\nin May"));
        QCOMPARE(text1->textCursor().position(), text1->toPlainText().size());
        QVERIFY(f.find<QRadioButton>(QStringLiteral("LeftRight_0"))->isChecked());
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("OrderPhotos"))->text(), QStringLiteral("00050"));
        QCOMPARE(f.frame().readyToSend()->EditRow(), 0);
        QVERIFY(!f.find<QLabel>(QStringLiteral("CurrentImage"))->pixmap().isNull());

        f.page().PhotoLeft[1] = QStringLiteral("False");
        f.clickRow(f.file3(), QStringLiteral("00050_Lake.jpg"));
        QCOMPARE(f.frame().readyToSend()->EditRow(), 1);
        QVERIFY(f.find<QRadioButton>(QStringLiteral("LeftRight_1"))->isChecked());

        // A picture put into the working folder by hand has no row: nothing to edit.
        MakeJpeg(f.readyFile(QStringLiteral("00050_Hand.jpg")));
        f.frame().readyToSend()->refreshReady();
        f.clickRow(f.file3(), QStringLiteral("00050_Hand.jpg"));
        QCOMPARE(f.frame().readyToSend()->EditRow(), PhotoPage::NotFound);
        QVERIFY(!f.find<QPlainTextEdit>(QStringLiteral("Text1"))->isEnabled());
        QVERIFY(f.find<QPlainTextEdit>(QStringLiteral("Text1"))->toPlainText().isEmpty());
    }

    void typingStoresTheTextOfThePictureWithRecordLineEnds()
    {
        FrameFixture f;
        copyTwo(f);
        f.clickRow(f.file3(), QStringLiteral("00050_Lake.jpg"));
        auto *text1 = f.find<QPlainTextEdit>(QStringLiteral("Text1"));
        text1->setFocus();
        QTest::keyClicks(text1, QStringLiteral("Calm"));
        QTest::keyClick(text1, Qt::Key_Return);
        QTest::keyClicks(text1, QStringLiteral("water"));
        QCOMPARE(f.page().PhotoInfo[1], QStringLiteral("Calm\r\nwater"));
        QCOMPARE(f.page().PhotoInfo[0], QString());
    }

    void titleAndIntroductionTextLandsBesideThePictureLastClicked_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("caption");
        QTest::newRow("Title") << 0 << "Edit Page Title";
        QTest::newRow("Intro.") << 1 << "Edit Page Introduction";
    }
    void titleAndIntroductionTextLandsBesideThePictureLastClicked()
    {
        QFETCH(int, button);
        QFETCH(QString, caption);
        FrameFixture f;
        copyTwo(f);
        f.page().Title = QStringLiteral("Our trip");
        f.page().GroupInfo = QStringLiteral("Some photos");
        f.clickRow(f.file3(), QStringLiteral("00050_Tree.jpg"));
        f.click(QStringLiteral("EditButtons_%1").arg(button));

        auto *panel = f.find<QGroupBox>(QStringLiteral("EditFrame"));
        QCOMPARE(panel->title(), caption);
        auto *text1 = f.find<QPlainTextEdit>(QStringLiteral("Text1"));
        QCOMPARE(text1->toPlainText(),
                 button == 0 ? QStringLiteral("Our trip") : QStringLiteral("Some photos"));
        QVERIFY(!f.find<QRadioButton>(QStringLiteral("LeftRight_0"))->isVisible());
        QVERIFY(!f.find<QLineEdit>(QStringLiteral("OrderPhotos"))->isVisible());
        QVERIFY(!f.find<QLabel>(QStringLiteral("OrderLabel"))->isVisible());

        text1->setFocus();
        QTest::keyClicks(text1, QStringLiteral("!"));
        QCOMPARE(f.page().Title, QStringLiteral("Our trip"));
        QCOMPARE(f.page().GroupInfo, QStringLiteral("Some photos"));
        QCOMPARE(f.page().PhotoInfo[0], text1->toPlainText());

        f.click(QStringLiteral("EditButtons_6"));
        QVERIFY(!panel->isVisible());
    }

    void leftAndRightSetThePlacementOfTheRow()
    {
        FrameFixture f;
        copyTwo(f);
        f.clickRow(f.file3(), QStringLiteral("00050_Lake.jpg"));
        QTest::mouseClick(f.find<QRadioButton>(QStringLiteral("LeftRight_0")), Qt::LeftButton);
        QCOMPARE(f.page().PhotoLeft[1], QStringLiteral("True"));
        QTest::mouseClick(f.find<QRadioButton>(QStringLiteral("LeftRight_1")), Qt::LeftButton);
        QCOMPARE(f.page().PhotoLeft[1], QStringLiteral("False"));
    }

    void aNewOrderMovesThePictureIntoItsGroup()
    {
        FrameFixture f;
        copyTwo(f);
        f.clickRow(f.file3(), QStringLiteral("00050_Tree.jpg"));
        auto *order = f.find<QLineEdit>(QStringLiteral("OrderPhotos"));
        order->setText(QStringLiteral("7"));
        f.leave(order);
        QCOMPARE(f.names(f.file3()),
                 (QStringList{QStringLiteral("00007_Tree.jpg"), QStringLiteral("00050_Lake.jpg")}));
        QVERIFY(!QFile::exists(f.readyFile(QStringLiteral("00050_Tree.jpg"))));
        QCOMPARE(f.page().PhotoOrder[0], QStringLiteral("7"));
        QCOMPARE(FindPhoto(f.page(), QStringLiteral("Tree.jpg"), QStringLiteral("00007")), 0);

        // The same group again, typed with or without its zeros, leaves the file in place.
        order->setText(QStringLiteral("00007"));
        f.leave(order);
        order->setText(QStringLiteral("7"));
        f.leave(order);
        QVERIFY(QFile::exists(f.readyFile(QStringLiteral("00007_Tree.jpg"))));
    }

    void deleteFromTheListAsksAndRemovesFileAndRow_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::addColumn<bool>("confirm");
        QTest::newRow("button, OK") << false << true;
        QTest::newRow("button, Cancel") << false << false;
        QTest::newRow("Delete key, OK") << true << true;
    }
    void deleteFromTheListAsksAndRemovesFileAndRow()
    {
        QFETCH(bool, byKey);
        QFETCH(bool, confirm);
        FrameFixture f;
        copyTwo(f);
        f.ui().answerMessage(confirm ? JobUi::Answer::Ok : JobUi::Answer::Cancel);
        f.clickRow(f.file3(), QStringLiteral("00050_Tree.jpg"));
        if (byKey) {
            f.file3()->setFocus();
            QTest::keyClick(f.file3(), Qt::Key_Delete);
        } else {
            f.click(QStringLiteral("EditButtons_4"));
        }
        QCOMPARE(f.ui().messages.size(), 1);
        QCOMPARE(f.ui().messages[0].text,
                 QStringLiteral("Are you sure you want to delete the selected items?"));
        QCOMPARE(f.ui().messages[0].title, QStringLiteral("Delete Files"));
        QCOMPARE(f.ui().messages[0].buttons, JobUi::Buttons::OkCancel);
        QCOMPARE(f.ui().messages[0].defaultButton, std::optional(JobUi::Answer::Cancel));
        QCOMPARE(QFile::exists(f.readyFile(QStringLiteral("00050_Tree.jpg"))), !confirm);
        QCOMPARE(f.page().PhotoNumber, qint16(confirm ? 1 : 2));
        QCOMPARE(f.page().PhotoName[0],
                 confirm ? QStringLiteral("Lake.jpg") : QStringLiteral("Tree.jpg"));
        QVERIFY(QFile::exists(f.sourceFile(QStringLiteral("Tree.jpg"))));
    }

    void deleteFromTheSourceRemovesTheOriginalOnly()
    {
        FrameFixture f;
        copyTwo(f);
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("EditButtons_5"));
        QCOMPARE(f.ui().messages.size(), 1);
        QVERIFY(f.ui().messages[0].text.startsWith(
            QStringLiteral("These Files are from your source directory.")));
        QCOMPARE(f.ui().messages[0].title, QStringLiteral("Delete Files"));
        QCOMPARE(f.ui().messages[0].buttons, JobUi::Buttons::OkCancel);
        QCOMPARE(f.ui().messages[0].defaultButton, std::optional(JobUi::Answer::Cancel));
        QVERIFY(!QFile::exists(f.sourceFile(QStringLiteral("Tree.jpg"))));
        QCOMPARE(f.names(f.file2()), QStringList{QStringLiteral("Lake.jpg")});
        QVERIFY(QFile::exists(f.readyFile(QStringLiteral("00050_Tree.jpg"))));
        QCOMPARE(f.page().PhotoNumber, qint16(2));
    }

    void clearAllEmptiesListAndRecord()
    {
        FrameFixture f;
        copyTwo(f);
        f.page().FileName = QStringLiteral("Trip");
        f.page().Title = QStringLiteral("Trip title");
        f.page().PhotoLeft[1] = QStringLiteral("True");

        f.ui().answerMessage(JobUi::Answer::Cancel);
        f.click(QStringLiteral("EditButtons_2"));
        QCOMPARE(f.names(f.file3()).size(), 2);
        QCOMPARE(f.page().PhotoNumber, qint16(2));

        f.click(QStringLiteral("EditButtons_2"));
        QCOMPARE(f.ui().messages.last().text,
                 QStringLiteral("Are you sure you want to clear all on this page?"));
        QVERIFY(f.names(f.file3()).isEmpty());
        QVERIFY(QDir(f.workingFolder())
                    .entryList(QDir::Files)
                    .filter(QStringLiteral(".jpg"))
                    .isEmpty());
        QCOMPARE(f.page().PhotoNumber, qint16(0));
        QVERIFY(f.page().FileName.isEmpty());
        QVERIFY(f.page().Title.isEmpty());
        QVERIFY(f.page().PhotoName[0].isEmpty());
        QVERIFY(f.page().PhotoName[1].isEmpty());
        QVERIFY(f.page().PhotoLeft[1].isEmpty());
        QVERIFY(QFile::exists(f.sourceFile(QStringLiteral("Tree.jpg"))));
    }

    void saveAllAsksForANameAndWritesTheHistoryFile()
    {
        FrameFixture f;
        copyTwo(f);
        f.page().PhotoInfo[1] = QStringLiteral("Calm water");
        f.ui().answerPrompt(QStringLiteral("Trip to NY"));
        f.click(QStringLiteral("EditButtons_3"));
        QCOMPARE(f.ui().prompts.size(), 1);
        QVERIFY(f.ui().prompts[0].text.startsWith(QStringLiteral("Enter the name of the webpage")));
        const QString path = Folders::HistoryFolder() + QStringLiteral("/Trip_to_NY.hst");
        QVERIFY(QFile::exists(path));
        const QString text = readAll(path);
        QVERIFY(text.startsWith(QStringLiteral("FileName = Trip_to_NY\r\n")));
        QVERIFY(text.contains(QStringLiteral("PhotoNumber = 2\r\n")));
        QVERIFY(text.contains(QStringLiteral("PhotoName1 = Lake.jpg\r\n")));
        QVERIFY(text.contains(QStringLiteral("PhotoInfo1 = Calm water\r\n")));

        // A page with a name is saved again without a question.
        f.page().Title = QStringLiteral("Second");
        f.click(QStringLiteral("EditButtons_3"));
        QCOMPARE(f.ui().prompts.size(), 1);
        QVERIFY(readAll(path).contains(QStringLiteral("Title = Second\r\n")));
    }

    void leavingTheNamePromptSavesNothing()
    {
        FrameFixture f;
        copyTwo(f);
        f.click(QStringLiteral("EditButtons_3")); // the prompt is left ("!!Skip!!")
        QVERIFY(QDir(Folders::HistoryFolder()).entryList(QDir::Files).isEmpty());
    }

    void fourHundredAndOnePictures()
    {
        FrameFixture f;
        QStringList names;
        for (int i = 0; i < 401; ++i)
            names << QStringLiteral("p%1.jpg").arg(i, 3, 10, QLatin1Char('0'));
        f.addPictures(names, QSize(8, 8));
        f.click(QStringLiteral("FromSelectAllButton"));
        QCOMPARE(f.file2()->selectedItems().size(), 401);
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.page().PhotoNumber, qint16(400));
        QCOMPARE(f.names(f.file3()).size(), 400);
        QCOMPARE(f.ui().messages.size(), 1);
        QCOMPARE(f.ui().messages[0].text,
                 QStringLiteral("Maximum number of photos have been reached"));
        QVERIFY(!QFile::exists(f.readyFile(QStringLiteral("00050_p400.jpg"))));
        // The row was written before the message came.
        QCOMPARE(f.page().PhotoName[400], QStringLiteral("p400.jpg"));

        // The turned copy still goes in as row 401, and then stops too.
        f.selectSource({QStringLiteral("p400.jpg")});
        f.click(QStringLiteral("CopyButton_2"));
        QCOMPARE(f.page().PhotoNumber, qint16(401));
        QVERIFY(QFile::exists(f.readyFile(QStringLiteral("00050_p400_Right.jpg"))));
        f.selectSource({QStringLiteral("p399.jpg")});
        f.click(QStringLiteral("CopyButton_1"));
        QCOMPARE(f.page().PhotoNumber, qint16(401));
        QCOMPARE(f.ui().messages.size(), 2);
        QVERIFY(!QFile::exists(f.readyFile(QStringLiteral("00050_p399_Left.jpg"))));
    }

    void namesWithBlanksCommasAndAccents()
    {
        FrameFixture f;
        const QStringList names = {QStringLiteral("My Photo, 1.jpg"),
                                   QString::fromUtf8("Caf\xc3\xa9 \xc3\xbc.jpg"),
                                   QString::fromUtf8("\xe5\xb1\xb1.jpg")};
        f.addPictures(names);
        f.click(QStringLiteral("FromSelectAllButton"));
        f.click(QStringLiteral("CopyButton_0"));
        for (const QString &name : names)
            QVERIFY2(QFile::exists(f.readyFile(QStringLiteral("00050_") + name)), qPrintable(name));
        QCOMPARE(f.page().PhotoNumber, qint16(3));
        for (const QString &name : names) {
            f.clickRow(f.file3(), QStringLiteral("00050_") + name);
            QVERIFY(PhotoPage::isRow(f.frame().readyToSend()->EditRow()));
        }
        f.selectSource({names[0]});
        f.click(QStringLiteral("CopyButton_1"));
        QVERIFY(QFile::exists(f.readyFile(QStringLiteral("00050_My Photo, 1_Left.jpg"))));

        f.page().FileName = QStringLiteral("Odd names");
        f.click(QStringLiteral("EditButtons_3"));
        QVERIFY(QFile::exists(Folders::HistoryFolder() + QStringLiteral("/Odd_names.hst")));
    }

    void printListWritesAPdfWhenNoPrinterIsThere()
    {
        const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
        QVERIFY2(!pdftotext.isEmpty(), "pdftotext (poppler-utils) is needed to read the PDF");
        FrameFixture f;
        copyTwo(f);
        f.page().PhotoInfo[1] = QStringLiteral("Calm water");
        QTemporaryDir out;
        f.pdfPath = out.filePath(QStringLiteral("list.pdf"));
        f.click(QStringLiteral("EditButtons_7"));
        QVERIFY(QFile::exists(f.pdfPath));

        QProcess convert;
        convert.start(pdftotext, {QStringLiteral("-layout"), f.pdfPath, QStringLiteral("-")});
        QVERIFY(convert.waitForFinished(30000));
        const QString text = QString::fromUtf8(convert.readAllStandardOutput());
        QVERIFY2(text.contains(QStringLiteral("Date: ")), qPrintable(text));
        QVERIFY(text.contains(QStringLiteral("Photo page created from: ") + f.sourceFolder()));
        QVERIFY(text.contains(QStringLiteral("Uploaded to: Not uploaded Yet")));
        QVERIFY(text.contains(QStringLiteral("00050_Lake.jpg")));
        QVERIFY(text.contains(QStringLiteral("00050_Tree.jpg")));
        QVERIFY(text.contains(QStringLiteral("Calm water")));

        f.frame().readyToSend()->setPagePointer(
            QStringLiteral("http://example.org/Photos/Trip/Photos.htm"));
        const QStringList lines = f.frame().readyToSend()->printLines();
        QCOMPARE(lines[2],
                 QStringLiteral("Uploaded to: http://example.org/Photos/Trip/Photos.htm"));
        QCOMPARE(lines[3], QStringLiteral("00050_Lake.jpg     Calm water"));
        QCOMPARE(lines.size(), 5);
    }

    void printListCancelledWritesNothing()
    {
        FrameFixture f;
        copyTwo(f);
        f.pdfPath.clear();
        f.click(QStringLiteral("EditButtons_7"));
        QVERIFY(f.ui().messages.isEmpty());
    }

    void changingTheSourceFolder()
    {
        FrameFixture f;
        copyTwo(f);
        const QString other = TestHomePath() + QStringLiteral("/Pictures/Other");
        QDir().mkpath(other);
        MakeJpeg(other + QStringLiteral("/Sea.jpg"));
        f.folderAnswers.enqueue(other);
        f.inputAnswers.enqueue(QStringLiteral("60"));
        f.click(QStringLiteral("ChangeCopyPathButton"));
        QCOMPARE(f.inputQuestions.size(), 1);
        QVERIFY(f.inputQuestions[0].startsWith(QStringLiteral(
            "You are changing directories with files in your 'Ready to Send' list.")));
        QCOMPARE(f.inputDefaults[0], QStringLiteral("51"));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("PreFix"))->text(), QStringLiteral("60"));
        QCOMPARE(f.names(f.file2()), QStringList{QStringLiteral("Sea.jpg")});
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("ChoosenCopyPath_0"))->text(), other);
        QCOMPARE(GetSetting(QStringLiteral("CopyPath")), other);
        QCOMPARE(f.steps.last(), 1);

        // Cancel in the picker changes nothing.
        f.click(QStringLiteral("ChangeCopyPathButton"));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("ChoosenCopyPath_0"))->text(), other);
    }
};

TARNWICK_TEST_MAIN(TestReadyToSendEdit)
#include "test_readytosend_edit.moc"
