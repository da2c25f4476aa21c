// Shows the main window with the Send a Photo Page function open and a dozen pictures on the
// Ready to Send list, and saves the screen: shot_photoframe_window <output.png>. Run it on a
// virtual screen: xvfb-run -s "-screen 0 1280x800x24".
#include "FrameFixture.h"
#include "JobState.h"
#include "PhotoFrameInstall.h"
#include "ReadyToSendPage.h"
#include "Settings.h"
#include "TestMain.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>
#include <QListWidget>
#include <QScreen>
#include <QTest>

int main(int argc, char *argv[])
{
    UseTemporaryHome();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    if (argc < 2)
        return 2;

    const QString pictures = TestHomePath() + QStringLiteral("/Pictures/Holiday");
    QDir().mkpath(pictures);
    const QStringList names = {QStringLiteral("Arrival.jpg"), QStringLiteral("Beach.jpg"),
                               QStringLiteral("Boats.jpg"),   QStringLiteral("Cliffs.jpg"),
                               QStringLiteral("Dinner.jpg"),  QStringLiteral("Harbour.jpg"),
                               QStringLiteral("Market.jpg"),  QStringLiteral("Old town.jpg"),
                               QStringLiteral("Sunset.jpg"),  QStringLiteral("Village.jpg"),
                               QStringLiteral("Waves.jpg"),   QStringLiteral("Zoo.jpg")};
    for (int i = 0; i < names.size(); ++i)
        MakeJpeg(pictures + QLatin1Char('/') + names[i], QSize(400, 300),
                 QColor::fromHsv((i * 53) % 360, 120, 220));
    SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
    SaveSetting(QStringLiteral("CopyPath"), pictures);
    SaveSetting(QStringLiteral("PhotoIntructionView"), QStringLiteral("Hide"));

    JobState state;
    frmMain window(state);
    PhotoFrame *frame = InstallPhotoFrame(window);
    window.Load();
    window.setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
    window.show();
    QTest::qWait(800);
    window.FunctionSelectButton_Click(0);
    QTest::qWait(300);

    auto *file2 = frame->findChild<QListWidget *>(QStringLiteral("File2"));
    file2->selectAll();
    frame->readyToSend()->CopyPhotoPlain();
    QTest::qWait(600);
    const QPixmap screen = QGuiApplication::primaryScreen()->grabWindow(0);
    return screen.save(QString::fromLocal8Bit(argv[1])) ? 0 : 1;
}
