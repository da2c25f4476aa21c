#include "FrameFixture.h"
#include "InstructionForm.h"
#include "JobState.h"

#include "PhotoFrameInstall.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "StepRing.h"
#include "TestMain.h"
#include "frmMain.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

class TestPhotoFrameInstall : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        ClearTemporaryHome();
        SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
        SaveSetting(QStringLiteral("PhotoIntructionView"), QStringLiteral("Hide"));
    }

    void theFrameSitsInTheFirstWorkFrame()
    {
        JobState state;
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        window.Load();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(window.TabFrame(0)->findChild<PhotoFrame *>(QStringLiteral("SendPhotoPageFrame")),
                 frame);
        QVERIFY(frame->isAncestorOf(window.LoadSpeed()));

        frame->TabStrip2()->setCurrentIndex(PhotoFrame::SettingsTab);
        window.FunctionSelectButton_Click(0);
        QVERIFY(frame->isVisible());
        QCOMPARE(frame->TabStrip2()->currentIndex(), int(PhotoFrame::SelectImagesTab));
        QCOMPARE(window.helpContext(), 3);
        frame->TabStrip2()->setCurrentIndex(PhotoFrame::SettingsTab);
        QCOMPARE(window.helpContext(), 5);
    }

    void theFunctionJoinsWithItsPageRingsAndMenu()
    {
        SaveSetting(QStringLiteral("PhotoIntructionView"), QStringLiteral("Show"));
        JobState state;
        frmMain window(state);
        QVERIFY(!window.hasFunction(0));
        InstallPhotoFrame(window);
        QVERIFY(window.hasFunction(0));
        window.Load();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(
            window.findChild<QPushButton *>(QStringLiteral("FunctionSelectButton_0"))->isEnabled());
        auto *menu = window.findChild<QAction *>(QStringLiteral("InstrMenu_0"));
        QVERIFY(menu->isVisible());
        QCOMPARE(menu->text(), QStringLiteral("Send a Photo Page Instructions"));

        window.FunctionSelectButton_Click(0);
        InstructionForm *page = window.instructionForm(0);
        QVERIFY(page && page->isVisible());
        QCOMPARE(page->objectName(), QStringLiteral("InstructionPagePhoto"));
        QCOMPARE(
            page->findChildren<QLabel *>(QRegularExpression(QStringLiteral("^Step_\\d+$"))).size(),
            6);
        QVERIFY(page->findChild<QLabel *>(QStringLiteral("Step_4"))
                    ->text()
                    .contains(QStringLiteral("the page need editiing")));
        for (int i = 0; i < frmMain::RingCount; ++i)
            QCOMPARE(window.ring(i)->isShown(), i == 0 || i == 2 || i == 3);
        window.shapeEvent(3);
        QCOMPARE(window.ring(1)->colour(), frmMain::RingYellow);
        QVERIFY(window.ring(1)->isShown());
    }

    void openingThePhotoFunctionEmptiesTheList()
    {
        JobState state;
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        window.Load();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        const QString source = TestHomePath() + QStringLiteral("/Pictures");
        QDir().mkpath(source);
        MakeJpeg(source + QStringLiteral("/Tree.jpg"));
        frame->readyToSend()->setSourceFolder(source);
        auto *file2 = frame->findChild<QListWidget *>(QStringLiteral("File2"));
        file2->selectAll();
        frame->readyToSend()->CopyPhotoPlain();
        QCOMPARE(frame->page().PhotoNumber, qint16(1));
        QVERIFY(window.ring(2)->isShown()); // the step after pictures went on the list
        QVERIFY(window.ring(3)->isShown());

        window.FunctionSelectButton_Click(0);
        QCOMPARE(frame->page().PhotoNumber, qint16(0));
        QVERIFY(frame->findChild<QListWidget *>(QStringLiteral("File3"))->count() == 0);
        QVERIFY(!QFile::exists(frame->readyToSend()->workingFolder() +
                               QStringLiteral("/00050_Tree.jpg")));
        QVERIFY(window.ring(0)->isShown());
    }

    // Deleting pictures of the source folder can't be undone: on the real box Enter keeps them.
    void enterOnTheSourceDeleteQuestionKeepsThePictures()
    {
        JobState state;
        frmMain window(state);
        PhotoFrame *frame = InstallPhotoFrame(window);
        window.Load();
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        const QString source = TestHomePath() + QStringLiteral("/Pictures");
        QDir().mkpath(source);
        QVERIFY(MakeJpeg(source + QStringLiteral("/Tree.jpg")));
        frame->readyToSend()->setSourceFolder(source);
        frame->findChild<QListWidget *>(QStringLiteral("File2"))->selectAll();

        QString text;
        bool cancelIsDefault = false;
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, &window, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            answer.stop();
            text = box->text();
            cancelIsDefault = box->defaultButton() == box->button(QMessageBox::Cancel) &&
                              box->defaultButton() != nullptr;
            QTest::keyClick(box, Qt::Key_Return);
        });
        answer.start(10);
        frame->findChild<QPushButton *>(QStringLiteral("EditButtons_5"))->click();

        QVERIFY(text.startsWith(QStringLiteral("These Files are from your source directory.")));
        QVERIFY(cancelIsDefault);
        QVERIFY(QFile::exists(source + QStringLiteral("/Tree.jpg")));
    }
};

TARNWICK_TEST_MAIN(TestPhotoFrameInstall)
#include "test_photoframeinstall.moc"
