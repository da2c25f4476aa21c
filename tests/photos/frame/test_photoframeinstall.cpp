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
#include <QTabBar>
#include <QTabWidget>

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
};

TARNWICK_TEST_MAIN(TestPhotoFrameInstall)
#include "test_photoframeinstall.moc"
