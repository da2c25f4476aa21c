// Takes the screenshots of docs/ from the real main window on a virtual screen:
//   xvfb-run -s "-screen 0 1280x800x24" <build>/bin/tarnwick_screenshots <docs folder>
// The program runs with HOME in a temporary folder, set up as after the first start.
#include "GuiJobUi.h"
#include "HelpWindow.h"
#include "JobState.h"
#include "PhotoFrameInstall.h"
#include "Settings.h"
#include "TestMain.h"
#include "frmInputBox.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

namespace {

QString g_docs;

bool shoot(const QString &name)
{
    QTest::qWait(600);
    const QPixmap screen = QGuiApplication::primaryScreen()->grabWindow(0);
    const QString path = g_docs + QLatin1Char('/') + name;
    const bool ok = screen.save(path);
    qInfo("%s %s", ok ? "wrote" : "could not write", qPrintable(path));
    return ok;
}

} // namespace

int main(int argc, char *argv[])
{
    UseTemporaryHome();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    g_docs = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath();

    SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
    SaveSetting(QStringLiteral("WebPage"), QStringLiteral("http://www.example.org"));
    JobState state;
    frmMain window(state);
    InstallPhotoFrame(window);
    window.Load();
    window.setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
    window.show();
    QTest::qWait(1500);

    bool ok = shoot(QStringLiteral("start-screen.png"));

    window.FunctionSelectButton_Click(0);
    ok = shoot(QStringLiteral("send-a-photo-page.png")) && ok;
    window.unloadInstructionForms();

    window.showProgressFrame(true);
    window.jobUi().SetStatusText(QStringLiteral("Sending Files"));
    window.jobUi().SetStepOf(QStringLiteral("Currently loading section 3 of 9"));
    window.ProgressBar1()->setValue(40);
    ok = shoot(QStringLiteral("progress.png")) && ok;
    window.showProgressFrame(false);
    window.ReturnToStartButton_Click();

    window.HelpButton_Click();
    if (QWidget *help = window.helpWindow())
        help->move(window.geometry().center() - help->rect().center());
    ok = shoot(QStringLiteral("help.png")) && ok;
    window.helpWindow()->close();

    QTimer::singleShot(0, [&ok] {
        // Runs inside the prompt's wait.
        QTest::qWait(400);
        if (auto *box = qobject_cast<frmInputBox *>(QApplication::activeModalWidget())) {
            ok = shoot(QStringLiteral("prompt.png")) && ok;
            box->findChild<QPushButton *>(QStringLiteral("InputBoxOK"))->click();
        }
    });
    AskUser(window.jobUi(), state,
            QStringLiteral("Enter a title for this photo page. It is shown at the top of the "
                           "page."),
            QStringLiteral("Summer at the lake"), QStringLiteral("True"));
    return ok ? 0 : 1;
}
