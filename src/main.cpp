#include "BackupInstall.h"
#include "JobState.h"
#include "PaintInstall.h"
#include "PhotoBuildInstall.h"
#include "PortalInstall.h"
#include "WebLogInstall.h"
#include "WebSpaceInstall.h"
#include "cFTP.h"
#include "frmAction.h"
#include "frmMain.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Tarnwick"));
    QApplication::setOrganizationName(QStringLiteral("Tarnwick"));
    QApplication::setApplicationVersion(QStringLiteral(TARNWICK_VERSION));
    // The window's own close question decides; no window closing behind it ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    // What every job shares: the prompt protocol, the cancel flags, the current records.
    JobState jobs;
    // The window's one FTP session, shared by every job and the FTP tab.
    cFTP mFTP(jobs);
    frmMain window(jobs);
    QObject::connect(&window, &frmMain::programEnding, &app, [] { frmMain::EndProgram(); });
    window.followBlockTransfers(mFTP);
    frmAction::Install(jobs, &window, [&window] { window.HelpButton_Click(); });

    // FTP Control & Settings, Send a File and the Configuration page; the web space they give
    // is how every other function sends.
    WebSpace &webSpace = InstallWebSpace(window, mFTP);
    // The picture editor, before the functions whose pictures it opens.
    InstallPaint(window);
    InstallPhotoPage(window, webSpace);
    InstallWebLog(window, webSpace);
    InstallBackup(window, webSpace);
    InstallPortal(window, webSpace);

    window.Load();
    // The session transfers in binary; the mode flag says active, while the data connections
    // themselves stay passive.
    mFTP.SetModeActive();
    mFTP.SetTransferBinary();
    window.show();
    return QApplication::exec();
}
