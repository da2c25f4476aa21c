#include "../TodaysPictures.h"
#include "../ui/PickerFixtures.h"
#include "FrameFixture.h"

#include "Folders.h"
#include "History.h"
#include "PhotoFrameSettings.h"
#include "ReadyToSendNames.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "TestMain.h"

#include <QCheckBox>
#include <QAbstractItemModel>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTabBar>
#include <QTabWidget>

namespace {

QSize pictureSize(const QString &path)
{
    QImageReader reader(path);
    return reader.size();
}

// The colour at a point of a picture, to tell a turn to the left from one to the right.
bool isRed(const QString &path, QPoint at)
{
    const QImage image(path);
    const QColor c = image.pixelColor(at);
    return c.red() > 180 && c.green() < 90 && c.blue() < 90;
}

const QString MaxMessage = QStringLiteral("Maximum number of photos have been reached");

// The files of a folder, hidden ones too: a copy half made would show here.
QStringList allFiles(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

QStringList selectedNames(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->isSelected())
            names.append(list->item(i)->text());
    }
    return names;
}

} // namespace

class TestReadyToSend : public QObject
{
    Q_OBJECT
private slots:
    void frameHasTheTabsAndControls()
    {
        FrameFixture f;
        auto *tabs = f.find<QTabWidget>(QStringLiteral("TabStrip2"));
        QVERIFY(tabs);
        QCOMPARE(tabs->count(), 3);
        QCOMPARE(tabs->tabText(0), QStringLiteral("Select Images"));
        QCOMPARE(tabs->tabText(1), QStringLiteral("Update Photo Page"));
        QCOMPARE(tabs->tabText(2), QStringLiteral("Settings"));
        QCOMPARE(f.find<QPushButton>(QStringLiteral("CopyButton_1"))->text(),
                 QStringLiteral("Rotate Left && Copy"));
        QCOMPARE(f.find<QPushButton>(QStringLiteral("ChangeCopyPathButton"))->text(),
                 QStringLiteral("Select Photo Directory"));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("PreFix"))->text(), QStringLiteral("50"));
        QCOMPARE(f.find<QPushButton>(QStringLiteral("EditButtons_7"))->text(),
                 QStringLiteral("Print List"));
        QCOMPARE(f.find<QRadioButton>(QStringLiteral("LeftRight_0"))->text(),
                 QStringLiteral("Left  -Image-"));
        QVERIFY(!f.find<QGroupBox>(QStringLiteral("EditFrame"))->isVisible());
        QCOMPARE(f.workingFolder(), QDir::cleanPath(Folders::HomeFolder()));
    }

    void choosingTheSelectImagesTabRaisesTheFirstStep()
    {
        FrameFixture f;
        auto *tabs = f.find<QTabWidget>(QStringLiteral("TabStrip2"));
        tabs->setCurrentIndex(2);
        f.steps.clear();
        QTabBar *bar = tabs->tabBar();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(1).center());
        QVERIFY(f.steps.isEmpty());
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->tabRect(0).center());
        QCOMPARE(f.steps, QList<int>{0});
        QCOMPARE(tabs->currentIndex(), 0);
    }

    void addSuffixPutsTheSuffixBeforeTheLastDot_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("result");
        QTest::newRow("jpg") << "Tree.jpg"
                             << "Tree_Left.jpg";
        QTest::newRow("two dots") << "a.b.gif"
                                  << "a.b_Left.gif";
        QTest::newRow("no dot") << "Tree"
                                << "Tree";
    }
    void addSuffixPutsTheSuffixBeforeTheLastDot()
    {
        QFETCH(QString, name);
        QFETCH(QString, result);
        QCOMPARE(AddSuffix(name, QStringLiteral("_Left")), result);
    }

    void groupNumberOfTheCopy_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("prefixAfter");
        QTest::newRow("default") << "50"
                                 << "00050_Tree.jpg"
                                 << "50";
        QTest::newRow("seven") << "7"
                               << "00007_Tree.jpg"
                               << "7";
        QTest::newRow("six digits") << "123456"
                                    << "23456_Tree.jpg"
                                    << "123456";
        QTest::newRow("letters") << "abc"
                                 << "00000_Tree.jpg"
                                 << "0";
        QTest::newRow("empty") << ""
                               << "00000_Tree.jpg"
                               << "0";
    }
    void groupNumberOfTheCopy()
    {
        QFETCH(QString, prefix);
        QFETCH(QString, file);
        QFETCH(QString, prefixAfter);
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")});
        f.find<QLineEdit>(QStringLiteral("PreFix"))->setText(prefix);
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.names(f.file3()), QStringList{file});
        QVERIFY(QFile::exists(f.readyFile(file)));
        QVERIFY(QFile::exists(f.sourceFile(QStringLiteral("Tree.jpg"))));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("PreFix"))->text(), prefixAfter);
        QCOMPARE(f.page().PhotoNumber, qint16(1));
        QCOMPARE(f.page().PhotoName[0], QStringLiteral("Tree.jpg"));
        QCOMPARE(f.page().PhotoPath[0], f.sourceFolder());
        QCOMPARE(f.page().PhotoRotate[0], QString());
        QCOMPARE(f.page().PhotoOrder[0], file.left(5));
        QVERIFY(f.steps.contains(3));
    }

    void preFixOnLeavingBecomesItsNumber_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("number") << "12"
                                << "12";
        QTest::newRow("trailing letters") << "12abc"
                                          << "12";
        QTest::newRow("letters") << "abc"
                                 << "0";
        QTest::newRow("blanks") << "  8 "
                                << "8";
    }
    void preFixOnLeavingBecomesItsNumber()
    {
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        FrameFixture f;
        auto *preFix = f.find<QLineEdit>(QStringLiteral("PreFix"));
        preFix->setText(typed);
        f.leave(preFix);
        QCOMPARE(preFix->text(), shown);
    }

    void copyingTwiceInOneGroupOffersTheNextGroup()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")});
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        f.inputAnswers.enqueue(QStringLiteral("51"));
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.inputQuestions.size(), 1);
        QVERIFY(f.inputQuestions[0].startsWith(
            QStringLiteral("This File name already exist in this Grouping.")));
        QCOMPARE(f.inputDefaults[0], QStringLiteral("51"));
        QCOMPARE(f.names(f.file3()),
                 (QStringList{QStringLiteral("00050_Tree.jpg"), QStringLiteral("00051_Tree.jpg")}));
        QCOMPARE(f.find<QLineEdit>(QStringLiteral("PreFix"))->text(), QStringLiteral("51"));
        QCOMPARE(f.page().PhotoNumber, qint16(2));
        QCOMPARE(f.page().PhotoOrder[1], QStringLiteral("00051"));
    }

    // "a.png" goes onto the list as "00050_a.jpg": with "a.jpg" there already in the group, the
    // copy asks for another group as for a name already on the list.
    void aPictureOfTodaysFormatsBecomesAJpegOfItsName()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("a.jpg")});
        QImage png(40, 30, QImage::Format_ARGB32);
        png.fill(QColor(0, 0, 255, 128));
        QVERIFY(png.save(f.sourceFile(QStringLiteral("a.png"))));
        f.frame().readyToSend()->refreshSource();
        QVERIFY(f.names(f.file2()).contains(QStringLiteral("a.png")));
        f.selectSource({QStringLiteral("a.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        f.inputAnswers.enqueue(QStringLiteral("51"));
        f.selectSource({QStringLiteral("a.png")});
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.inputQuestions.size(), 1);
        QVERIFY(f.inputQuestions[0].startsWith(
            QStringLiteral("This File name already exist in this Grouping.")));
        QCOMPARE(f.names(f.file3()),
                 (QStringList{QStringLiteral("00050_a.jpg"), QStringLiteral("00051_a.jpg")}));
        QCOMPARE(f.page().PhotoName[1], QStringLiteral("a.jpg"));
        QVERIFY(QFile(f.readyFile(QStringLiteral("00051_a.jpg"))).open(QIODevice::ReadOnly));
        QImageReader reader(f.readyFile(QStringLiteral("00051_a.jpg")));
        QCOMPARE(reader.format(), QByteArray("jpeg"));
        // Half-clear blue laid on white.
        const QImage copy = reader.read();
        QVERIFY(qBlue(copy.pixel(20, 15)) > 240 && qRed(copy.pixel(20, 15)) > 100);
    }

    // Pictures of today's formats are converted two at a time: the record keeps the list's
    // order whatever order the conversions end in, a junk file among them is named in its
    // message and the others go on, and nothing half made is left in the working folder.
    void convertedPicturesKeepTheListOrderAndAJunkOneIsNamed()
    {
        FrameFixture f;
        f.frame().services().copyThreads = 2;
        QString why;
        // The largest first: it is still being converted when the ones behind it are done.
        QVERIFY2(TodaysPictures::writeHeic(f.sourceFile(QStringLiteral("a.heic")), 1600, 1200,
                                           &why),
                 qPrintable(why));
        QVERIFY(TodaysPictures::scene(160, 120).save(f.sourceFile(QStringLiteral("b.png"))));
        QVERIFY(Fixtures::writeFile(f.sourceFile(QStringLiteral("c.heic")),
                                    QByteArray("no picture in here").repeated(30)));
        QVERIFY(TodaysPictures::scene(200, 150).save(f.sourceFile(QStringLiteral("d.webp")),
                                                     "WEBP"));
        QVERIFY(TodaysPictures::deepScene(100, 80).save(f.sourceFile(QStringLiteral("e.tif")),
                                                        "TIFF"));
        f.addPictures({QStringLiteral("f.jpg")});
        const QStringList sources = {QStringLiteral("a.heic"), QStringLiteral("b.png"),
                                     QStringLiteral("c.heic"), QStringLiteral("d.webp"),
                                     QStringLiteral("e.tif"),  QStringLiteral("f.jpg")};
        QCOMPARE(f.names(f.file2()), sources);
        f.selectSource(sources);
        f.click(QStringLiteral("CopyButton_0"));

        QCOMPARE(f.ui().messages.size(), 1);
        QVERIFY2(f.ui().messages[0].text.contains(QStringLiteral("\"c.heic\"")),
                 qPrintable(f.ui().messages[0].text));
        const QStringList listed = {QStringLiteral("00050_a.jpg"), QStringLiteral("00050_b.jpg"),
                                    QStringLiteral("00050_d.jpg"), QStringLiteral("00050_e.jpg"),
                                    QStringLiteral("00050_f.jpg")};
        QCOMPARE(f.names(f.file3()), listed);
        QCOMPARE(allFiles(f.workingFolder()), listed);
        QCOMPARE(f.page().PhotoNumber, qint16(5));
        const QStringList rows = {QStringLiteral("a.jpg"), QStringLiteral("b.jpg"),
                                  QStringLiteral("d.jpg"), QStringLiteral("e.jpg"),
                                  QStringLiteral("f.jpg")};
        for (int i = 0; i < rows.size(); ++i) {
            QCOMPARE(f.page().PhotoName[i], rows[i]);
            QCOMPARE(f.page().PhotoOrder[i], QStringLiteral("00050"));
        }
        QCOMPARE(pictureSize(f.readyFile(QStringLiteral("00050_a.jpg"))), QSize(1600, 1200));
        QCOMPARE(QImageReader(f.readyFile(QStringLiteral("00050_e.jpg"))).format(),
                 QByteArray("jpeg"));
        QVERIFY(!f.find<QPushButton>(QStringLiteral("CancelCopy"))->isVisible());
    }

    // Two sources that give the same entry ("p.png" and "p.webp" both give "p.jpg") are not
    // written over each other while both are being converted: the second asks for a group.
    void twoSourcesOfOneEntryInOneRunAskForAGroup()
    {
        FrameFixture f;
        f.frame().services().copyThreads = 2;
        QVERIFY(TodaysPictures::scene(320, 240).save(f.sourceFile(QStringLiteral("p.png"))));
        QVERIFY(TodaysPictures::scene(160, 120).save(f.sourceFile(QStringLiteral("p.webp")),
                                                     "WEBP"));
        f.frame().readyToSend()->refreshSource();
        f.inputAnswers.enqueue(QStringLiteral("51"));
        f.selectSource({QStringLiteral("p.png"), QStringLiteral("p.webp")});
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.inputQuestions.size(), 1);
        QCOMPARE(f.names(f.file3()),
                 (QStringList{QStringLiteral("00050_p.jpg"), QStringLiteral("00051_p.jpg")}));
        QCOMPARE(pictureSize(f.readyFile(QStringLiteral("00050_p.jpg"))), QSize(320, 240));
        QCOMPARE(pictureSize(f.readyFile(QStringLiteral("00051_p.jpg"))), QSize(160, 120));
    }

    // Cancel while pictures are being converted: the copy buttons are off meanwhile, the
    // pictures under way are finished whole, those not begun stay selected, and a second press
    // of Copy takes them up.
    void cancelInTheMiddleLeavesTheRestSelectedAndNoHalfMadeCopy()
    {
        FrameFixture f;
        f.frame().services().copyThreads = 2;
        QStringList sources;
        for (int i = 0; i < 8; ++i) {
            const QString name = QStringLiteral("P%1.png").arg(i);
            QVERIFY(TodaysPictures::scene(640, 480).save(f.sourceFile(name)));
            sources.append(name);
        }
        f.frame().readyToSend()->refreshSource();
        f.selectSource(sources);

        // The user presses Cancel as soon as the first picture shows on the list.
        bool pressed = false;
        bool buttonsOff = false;
        QObject watch;
        QListWidget *file3 = f.file3();
        connect(
            file3->model(), &QAbstractItemModel::rowsInserted, &watch,
            [&] {
                if (pressed || file3->count() == 0)
                    return;
                pressed = true;
                buttonsOff = !f.find<QPushButton>(QStringLiteral("CopyButton_0"))->isEnabled() &&
                             f.find<QPushButton>(QStringLiteral("CancelCopy"))->isVisible();
                f.click(QStringLiteral("CancelCopy"));
            },
            Qt::QueuedConnection);
        f.click(QStringLiteral("CopyButton_0"));
        QVERIFY(pressed);
        QVERIFY(buttonsOff);

        // The first picture and the one converted beside it (two at a time) are on the list,
        // whole; the other six were not begun.
        const QStringList listed = {QStringLiteral("00050_P0.jpg"), QStringLiteral("00050_P1.jpg")};
        QCOMPARE(f.names(f.file3()), listed);
        QCOMPARE(allFiles(f.workingFolder()), listed);
        for (const QString &name : listed) {
            QImageReader copy(f.readyFile(name));
            QCOMPARE(copy.read().size(), QSize(640, 480));
        }
        QCOMPARE(f.page().PhotoNumber, qint16(2));
        QCOMPARE(selectedNames(f.file2()), sources.mid(2));
        QVERIFY(!f.find<QPushButton>(QStringLiteral("CancelCopy"))->isVisible());
        QVERIFY(f.find<QPushButton>(QStringLiteral("CopyButton_0"))->isEnabled());
        QVERIFY(f.ui().messages.isEmpty());

        // Copy again: the rest follow in order.
        pressed = true; // no second Cancel
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.names(f.file3()).size(), 8);
        QCOMPARE(allFiles(f.workingFolder()).size(), 8);
        QCOMPARE(f.page().PhotoNumber, qint16(8));
        for (int i = 0; i < 8; ++i)
            QCOMPARE(f.page().PhotoName[i], QStringLiteral("P%1.jpg").arg(i));
    }

    void cancelInTheGroupQuestionOverwritesAndAddsASecondRow()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")});
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0")); // the question is answered with Cancel
        QCOMPARE(f.inputQuestions.size(), 1);
        QCOMPARE(f.names(f.file3()), QStringList{QStringLiteral("00050_Tree.jpg")});
        QCOMPARE(f.page().PhotoNumber, qint16(2));
        QCOMPARE(f.page().PhotoName[1], QStringLiteral("Tree.jpg"));
        QCOMPARE(FindPhoto(f.page(), QStringLiteral("Tree.jpg"), QStringLiteral("00050")), 0);
    }

    void rotatedCopiesTurnThePictureAndStayInTheSourceFolder_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("made");
        QTest::addColumn<QString>("rotate");
        QTest::addColumn<bool>("left");
        QTest::newRow("left") << "CopyButton_1"
                              << "Tree_Left.jpg"
                              << "_Left" << true;
        QTest::newRow("right") << "CopyButton_2"
                               << "Tree_Right.jpg"
                               << "_Right" << false;
    }
    void rotatedCopiesTurnThePictureAndStayInTheSourceFolder()
    {
        QFETCH(QString, button);
        QFETCH(QString, made);
        QFETCH(QString, rotate);
        QFETCH(bool, left);
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")}, QSize(640, 480));
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(button);

        QVERIFY(QFile::exists(f.sourceFile(QStringLiteral("Tree.jpg"))));
        QVERIFY(QFile::exists(f.sourceFile(made)));
        QVERIFY(f.names(f.file2()).contains(made));
        const QString ready = f.readyFile(QStringLiteral("00050_") + made);
        QVERIFY(QFile::exists(ready));
        QCOMPARE(pictureSize(ready), QSize(480, 640));
        // The red mark of the top left corner goes to the bottom left on a turn to the left
        // and to the top right on a turn to the right.
        QVERIFY(isRed(ready, left ? QPoint(10, 630) : QPoint(470, 10)));
        QVERIFY(!isRed(ready, left ? QPoint(470, 10) : QPoint(10, 630)));
        QCOMPARE(f.page().PhotoName[0], made);
        QCOMPARE(f.page().PhotoRotate[0], rotate);
        QCOMPARE(FindPhoto(f.page(), made, QStringLiteral("00050")), 0);
    }

    void rotatingLeftThenRightGivesBackTheSize()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")}, QSize(200, 100));
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_1"));
        f.selectSource({QStringLiteral("Tree_Left.jpg")});
        f.click(QStringLiteral("CopyButton_2"));
        const QString back = f.readyFile(QStringLiteral("00050_Tree_Left_Right.jpg"));
        QVERIFY(QFile::exists(back));
        QCOMPARE(pictureSize(back), QSize(200, 100));
    }

    void selectAllCopiesEveryPictureAndRepeatedClicksRunDownTheList()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("a.jpg"), QStringLiteral("B.JPG"), QStringLiteral("c.gif"),
                       QStringLiteral("notes.txt")});
        QCOMPARE(f.names(f.file2()), (QStringList{QStringLiteral("a.jpg"), QStringLiteral("B.JPG"),
                                                  QStringLiteral("c.gif")}));
        f.selectSource({QStringLiteral("a.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        QVERIFY(f.file2()->item(1)->isSelected());
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.names(f.file3()),
                 (QStringList{QStringLiteral("00050_a.jpg"), QStringLiteral("00050_B.JPG")}));
    }

    void aPictureGoneFromTheFolderStopsTheCopyWithAMessage()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("a.jpg"), QStringLiteral("b.jpg")});
        f.selectSource({QStringLiteral("a.jpg"), QStringLiteral("b.jpg")});
        QFile::remove(f.sourceFile(QStringLiteral("a.jpg")));
        f.click(QStringLiteral("CopyButton_0"));
        QCOMPARE(f.ui().messages.size(), 1);
        QVERIFY(f.ui().messages[0].text.contains(QStringLiteral("could not be copied")));
        QVERIFY(f.names(f.file3()).isEmpty()); // the click stops at the first failure
    }

    void aDamagedPictureNeitherShowsNorTurnsButStillCopies()
    {
        FrameFixture f;
        QFile bad(f.sourceFile(QStringLiteral("broken.jpg")));
        QVERIFY(bad.open(QIODevice::WriteOnly));
        bad.write("this is not a picture");
        bad.close();
        f.frame().readyToSend()->refreshSource();
        f.clickRow(f.file2(), QStringLiteral("broken.jpg"));
        QVERIFY(f.find<QLabel>(QStringLiteral("CurrentImage"))->pixmap().isNull());
        f.click(QStringLiteral("CopyButton_0"));
        QVERIFY(QFile::exists(f.readyFile(QStringLiteral("00050_broken.jpg"))));

        // A failed turn goes on: the row is there, the turned file is not.
        f.selectSource({QStringLiteral("broken.jpg")});
        f.click(QStringLiteral("CopyButton_1"));
        QCOMPARE(f.page().PhotoNumber, qint16(2));
        QCOMPARE(f.page().PhotoName[1], QStringLiteral("broken_Left.jpg"));
        QVERIFY(!QFile::exists(f.readyFile(QStringLiteral("00050_broken_Left.jpg"))));
    }

    // A photo stored sideways (EXIF orientation 6) shows upright, fitted by its upright size.
    void aSidewaysPhotoIsPreviewedUprightAndFitted()
    {
        FrameFixture f;
        // Stored 1600 x 400 with red on the left: upright it is 400 x 1600 with red on top.
        QVERIFY(WriteTestJpeg(f.sourceFile(QStringLiteral("Tower.jpg")), 1600, 400, 6));
        f.frame().readyToSend()->refreshSource();
        f.selectSource({QStringLiteral("Tower.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        f.clickRow(f.file3(), QStringLiteral("00050_Tower.jpg"));

        auto *preview = f.find<QLabel>(QStringLiteral("CurrentImage"));
        const QSize box = preview->contentsRect().size();
        QVERIFY(box.width() < 1600 && box.height() < 1600);
        const QImage shown = preview->pixmap().toImage();
        QVERIFY(!shown.isNull());
        QVERIFY2(shown.width() <= box.width() && shown.height() <= box.height(),
                 qPrintable(QStringLiteral("%1x%2 in %3x%4")
                                .arg(shown.width())
                                .arg(shown.height())
                                .arg(box.width())
                                .arg(box.height())));
        QVERIFY(shown.height() == box.height() || shown.width() == box.width());
        QVERIFY(shown.height() > 3 * shown.width());
        const QColor top = shown.pixelColor(shown.width() / 2, shown.height() / 8);
        const QColor bottom = shown.pixelColor(shown.width() / 2, shown.height() * 7 / 8);
        QVERIFY(top.red() > 200 && top.blue() < 60);
        QVERIFY(bottom.blue() > 200 && bottom.red() < 60);
    }

    void enterTogglesTheSelectionOfTheCurrentRow()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("a.jpg"), QStringLiteral("b.jpg")});
        QListWidget *list = f.file2();
        list->setFocus();
        list->setCurrentRow(1, QItemSelectionModel::NoUpdate);
        list->clearSelection();
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(list->item(1)->isSelected());
        QVERIFY(f.names(f.file3()).isEmpty()); // Enter never copies
        QTest::keyClick(list, Qt::Key_Return);
        QVERIFY(!list->item(1)->isSelected());
    }
};

TARNWICK_TEST_MAIN(TestReadyToSend)
#include "test_readytosend.moc"
