#include "FrameFixture.h"

#include "Folders.h"
#include "History.h"
#include "PhotoFrameHistory.h"
#include "ReadyToSendPage.h"
#include "TestMain.h"

#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>

namespace {

// Writes a History file of a page with one picture.
QString writeHistory(const QString &name, const QString &title)
{
    PhotoPage page;
    page.FileName = name;
    page.Title = title;
    page.PhotoNumber = 1;
    page.PhotoName[0] = QStringLiteral("Tree.jpg");
    page.PhotoPath[0] = QStringLiteral("/home/ann/Pictures");
    page.PhotoOrder[0] = QStringLiteral("00050");
    SaveHistory(page);
    return Folders::HistoryFolder() + QLatin1Char('/') + QString(name).replace(' ', '_') +
           QStringLiteral(".hst");
}

QString readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

} // namespace

class TestPhotoFrameHistory : public QObject
{
    Q_OBJECT
private slots:
    void theTabListsTheHistoryFiles()
    {
        FrameFixture f;
        writeHistory(QStringLiteral("zoo"), QStringLiteral("Zoo"));
        writeHistory(QStringLiteral("Beach"), QStringLiteral("Beach"));
        QFile note(Folders::HistoryFolder() + QStringLiteral("/readme.txt"));
        QVERIFY(note.open(QIODevice::WriteOnly));
        note.close();
        auto *tabs = f.find<QTabWidget>(QStringLiteral("TabStrip2"));
        QCOMPARE(tabs->tabText(1), QStringLiteral("Update Photo Page"));
        tabs->setCurrentIndex(1);
        f.frame().historyPage()->refreshFiles();
        auto *file4 = f.find<QListWidget>(QStringLiteral("File4_0"));
        QCOMPARE(f.names(file4),
                 (QStringList{QStringLiteral("Beach.hst"), QStringLiteral("zoo.hst")}));
        QVERIFY(f.find<QPushButton>(QStringLiteral("ShowHst"))->isEnabled());
        QVERIFY(!f.find<QPushButton>(QStringLiteral("DeleteHstButton"))->isEnabled());
        f.clickRow(file4, QStringLiteral("zoo.hst"));
        QVERIFY(f.find<QPushButton>(QStringLiteral("ShowHst"))->isEnabled());
        QVERIFY(f.find<QPushButton>(QStringLiteral("DeleteHstButton"))->isEnabled());
        // Once a file was chosen, the buttons stay, also with nothing selected.
        f.clickRow(file4, QStringLiteral("zoo.hst"), Qt::ControlModifier);
        QVERIFY(f.frame().historyPage()->selectedFile().isEmpty());
        QVERIFY(f.find<QPushButton>(QStringLiteral("ShowHst"))->isEnabled());
        QVERIFY(f.find<QPushButton>(QStringLiteral("DeleteHstButton"))->isEnabled());
    }

    void theButtonsWithNothingSelectedSaySo()
    {
        FrameFixture f;
        writeHistory(QStringLiteral("Kept"), QStringLiteral("Kept"));
        f.frame().historyPage()->refreshFiles();
        f.find<QTabWidget>(QStringLiteral("TabStrip2"))->setCurrentIndex(1);
        auto *file4 = f.find<QListWidget>(QStringLiteral("File4_0"));
        f.page().FileName = QStringLiteral("Current");

        f.click(QStringLiteral("ShowHst"));
        QCOMPARE(f.ui().messages.size(), 1);
        QCOMPARE(f.ui().messages[0].text, QStringLiteral("No file has been selected."));
        QVERIFY(f.ui().scrollMessages.isEmpty());
        QCOMPARE(f.page().FileName, QStringLiteral("Current"));

        f.clickRow(file4, QStringLiteral("Kept.hst"));
        f.clickRow(file4, QStringLiteral("Kept.hst"), Qt::ControlModifier);
        f.ui().answerMessage(JobUi::Answer::Ok);
        f.click(QStringLiteral("DeleteHstButton"));
        QCOMPARE(f.ui().messages.size(), 3);
        QCOMPARE(f.ui().messages[1].text,
                 QStringLiteral("Are you sure you want to delete the selected items?"));
        QCOMPARE(f.ui().messages[2].text, QStringLiteral("No file has been selected."));
        QCOMPARE(f.names(file4), QStringList{QStringLiteral("Kept.hst")});
    }

    void showingAFileLoadsItsRecordSoThatSaveAllWritesIt()
    {
        FrameFixture f;
        const QString path = writeHistory(QStringLiteral("Trip to NY"), QStringLiteral("New York"));
        f.find<QTabWidget>(QStringLiteral("TabStrip2"))->setCurrentIndex(1);
        f.frame().historyPage()->refreshFiles();
        auto *file4 = f.find<QListWidget>(QStringLiteral("File4_0"));
        f.clickRow(file4, QStringLiteral("Trip_to_NY.hst"));
        f.click(QStringLiteral("ShowHst"));
        QCOMPARE(f.ui().scrollMessages.size(), 1);
        QVERIFY(f.ui().scrollMessages[0].startsWith(QStringLiteral("FileName = Trip_to_NY")));
        QVERIFY(f.ui().scrollMessages[0].contains(QStringLiteral("Title = New York")));
        QCOMPARE(f.page().FileName, QStringLiteral("Trip_to_NY"));
        QCOMPARE(f.page().PhotoNumber, qint16(1));

        f.page().Title = QStringLiteral("Changed");
        f.find<QTabWidget>(QStringLiteral("TabStrip2"))->setCurrentIndex(0);
        f.click(QStringLiteral("EditButtons_3"));
        QVERIFY(f.ui().prompts.isEmpty());
        QVERIFY(readAll(path).contains(QStringLiteral("Title = Changed\r\n")));
        QVERIFY(readAll(path).contains(QStringLiteral("PhotoName0 = Tree.jpg\r\n")));
    }

    void aVanishedFileAsksToSelectAgain()
    {
        FrameFixture f;
        const QString path = writeHistory(QStringLiteral("Gone"), QStringLiteral("Gone"));
        f.frame().historyPage()->refreshFiles();
        f.find<QTabWidget>(QStringLiteral("TabStrip2"))->setCurrentIndex(1);
        f.clickRow(f.find<QListWidget>(QStringLiteral("File4_0")), QStringLiteral("Gone.hst"));
        QFile::remove(path);
        f.click(QStringLiteral("ShowHst"));
        QCOMPARE(f.ui().messages.size(), 1);
        QCOMPARE(f.ui().messages[0].text, QStringLiteral("Select a History file and retry."));
        QVERIFY(f.ui().scrollMessages.isEmpty());
    }

    void deletingAHistoryFile_data()
    {
        QTest::addColumn<bool>("confirm");
        QTest::addColumn<bool>("vanished");
        QTest::addColumn<QString>("message");
        QTest::newRow("OK") << true << false << QString();
        QTest::newRow("Cancel") << false << false << QString();
        QTest::newRow("vanished") << true << true << QStringLiteral("File not found.");
    }
    void deletingAHistoryFile()
    {
        QFETCH(bool, confirm);
        QFETCH(bool, vanished);
        QFETCH(QString, message);
        FrameFixture f;
        const QString path = writeHistory(QStringLiteral("Old"), QStringLiteral("Old"));
        f.frame().historyPage()->refreshFiles();
        f.find<QTabWidget>(QStringLiteral("TabStrip2"))->setCurrentIndex(1);
        auto *file4 = f.find<QListWidget>(QStringLiteral("File4_0"));
        f.clickRow(file4, QStringLiteral("Old.hst"));
        if (vanished)
            QFile::remove(path);
        f.ui().answerMessage(confirm ? JobUi::Answer::Ok : JobUi::Answer::Cancel);
        f.click(QStringLiteral("DeleteHstButton"));
        QCOMPARE(f.ui().messages[0].text,
                 QStringLiteral("Are you sure you want to delete the selected items?"));
        QCOMPARE(f.ui().messages[0].title, QStringLiteral("Delete Files"));
        QCOMPARE(f.ui().messages[0].buttons, JobUi::Buttons::OkCancel);
        QCOMPARE(f.ui().messages[0].defaultButton, std::optional(JobUi::Answer::Cancel));
        if (!message.isEmpty()) {
            QCOMPARE(f.ui().messages.size(), 2);
            QCOMPARE(f.ui().messages[1].text, message);
        }
        QCOMPARE(QFile::exists(path), !confirm && !vanished);
        QCOMPARE(f.names(file4).size(), QFile::exists(path) ? 1 : 0);
    }

    void saveAllAddsTheFileToTheList()
    {
        FrameFixture f;
        f.addPictures({QStringLiteral("Tree.jpg")});
        f.selectSource({QStringLiteral("Tree.jpg")});
        f.click(QStringLiteral("CopyButton_0"));
        f.page().FileName = QStringLiteral("Garden");
        f.click(QStringLiteral("EditButtons_3"));
        QCOMPARE(f.names(f.find<QListWidget>(QStringLiteral("File4_0"))),
                 QStringList{QStringLiteral("Garden.hst")});
    }

    void thePagePointerShowsAndIsPrinted()
    {
        FrameFixture f;
        f.frame().setPagePointer(QStringLiteral("http://example.org/Photos/Garden/Photos.htm"));
        QCOMPARE(f.find<QLabel>(QStringLiteral("FTP_page_pointer"))->text(),
                 QStringLiteral("http://example.org/Photos/Garden/Photos.htm"));
        QCOMPARE(f.frame().readyToSend()->printLines().value(2),
                 QStringLiteral("Uploaded to: http://example.org/Photos/Garden/Photos.htm"));
    }
};

TARNWICK_TEST_MAIN(TestPhotoFrameHistory)
#include "test_photoframehistory.moc"
