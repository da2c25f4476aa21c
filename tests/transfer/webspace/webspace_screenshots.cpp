// Screenshots of the web space functions for docs/, on the real window against a local FTP
// server, on a virtual screen:
//   xvfb-run -s "-screen 0 1280x800x24" <build>/bin/tarnwick_webspace_screenshots <docs folder>
#include "FtpControlTab.h"
#include "FtpTestServer.h"
#include "JobState.h"
#include "SendFileFrame.h"
#include "Settings.h"
#include "StartupPage.h"
#include "TestMain.h"
#include "WebSpaceFixture.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>

namespace {

QString g_docs;

bool shoot(QWidget *widget, const QString &name)
{
    QTest::qWait(500);
    const QString path = g_docs + QLatin1Char('/') + name;
    const bool ok = widget->grab().save(path);
    qInfo("%s %s", ok ? "wrote" : "could not write", qPrintable(path));
    return ok;
}

void writeFile(const QString &path, qint64 size)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray(size, 'x'));
}

} // namespace

int main(int argc, char *argv[])
{
    UseTemporaryHome();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    g_docs = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::currentPath();

    FtpTestServer server;
    if (!server.start()) {
        qWarning("%s", qPrintable(server.errorString()));
        return 1;
    }
    writeFile(server.localPath(QStringLiteral("/public_html/index.html")), 2310);
    writeFile(server.localPath(QStringLiteral("/public_html/Holiday letter.pdf")), 184320);
    writeFile(server.localPath(QStringLiteral("/public_html/logo.gif")), 5120);
    for (const char *dir : {"Photos", "Backup", "Web_Log", "Portal", "For_Ann"})
        QDir().mkpath(server.localPath(QStringLiteral("/public_html/") + QLatin1String(dir)));

    SaveSetting(QStringLiteral("entry"), QStringLiteral("5"));
    SaveSetting(QStringLiteral("Server"), server.server());
    SaveSetting(QStringLiteral("User"), server.user());
    SaveSetting(QStringLiteral("Password"), server.password());
    SaveSetting(QStringLiteral("WebPage"), QStringLiteral("www.example.org"));
    SaveSetting(QStringLiteral("EmailID"), QStringLiteral("ann@example.org"));
    SaveSetting(QStringLiteral("Author"), QStringLiteral("Ann Lee"));
    SaveSetting(QStringLiteral("FTPRoot"), QStringLiteral("public_html"));
    SaveSetting(QStringLiteral("FTPControlInstructionView"), QStringLiteral("Hide"));
    SaveSetting(QStringLiteral("SendFileInstructionView"), QStringLiteral("Hide"));

    JobState state;
    cFTP ftp(state);
    frmMain window(state);
    InstallWebSpace(window, ftp);
    const WebSpaceParts parts(window);
    window.Load();
    window.setGeometry(QGuiApplication::primaryScreen()->availableGeometry());
    window.show();
    QTest::qWait(1000);

    window.FunctionSelectButton_Click(5);
    parts.tab->cmdConnect_Click();
    bool ok = shoot(&window, QStringLiteral("ftp-control.png"));
    parts.tab->findChild<QPushButton *>(QStringLiteral("AdvanceSettingFrameButton"))->click();
    ok = shoot(&window, QStringLiteral("ftp-control-advanced.png")) && ok;
    parts.tab->findChild<QPushButton *>(QStringLiteral("AdvanceSettingFrameDoneButton"))->click();
    parts.tab->cmdDisconnect_Click();

    window.FunctionSelectButton_Click(2);
    parts.sendFile->FileToSend()->setText(QDir::homePath() +
                                          QStringLiteral("/Documents/Holiday letter.pdf"));
    parts.sendFile->sName()->setText(QStringLiteral("For_Ann"));
    ok = shoot(&window, QStringLiteral("send-a-file.png")) && ok;

    parts.page->Load();
    parts.page->show();
    parts.page->Label4()->setText(
        QStringLiteral("Connection was successful. Looking for configuration."));
    ok = shoot(parts.page, QStringLiteral("configuration-page.png")) && ok;
    parts.page->hide();
    return ok ? 0 : 1;
}
