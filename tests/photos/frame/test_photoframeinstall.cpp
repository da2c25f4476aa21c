#include "FrameFixture.h"

#include "PhotoFrameInstall.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "StepRing.h"
#include "TestMain.h"
#include "frmMain.h"

#include <QDir>
#include <QFile>
#include <QFrame>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
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
        frmMain window;
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

    void openingThePhotoFunctionEmptiesTheList()
    {
        frmMain window;
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
        frmMain window;
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
