#include "FtpControlTab.h"
#include "PhotoBuildInstall.h"
#include "PhotoFrameInstall.h"
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

    // The window's one FTP session, shared by every job and the FTP tab.
    cFTP mFTP;
    frmMain window;
    QObject::connect(&window, &frmMain::programEnding, &app, [] { frmMain::EndProgram(); });
    window.followBlockTransfers(mFTP);
    PhotoFrame *photoFrame = InstallPhotoFrame(window);
    PhotoBuildController *photoBuild = InstallPhotoBuild(window, *photoFrame, mFTP);
    // The FTP tab, Send a File and the Configuration page; builders list through the tab.
    const WebSpaceParts webSpace = InstallWebSpace(window, mFTP);
    photoBuild->setListReloader([tab = webSpace.tab] { tab->ReloadFTPList(); });
    photoBuild->setDisconnector([tab = webSpace.tab] { tab->cmdDisconnect_Click(); });
    frmAction::Install(&window, [&window] { window.HelpButton_Click(); });
    window.Load();
    // The session transfers in binary; the mode flag says active, while the data connections
    // themselves stay passive.
    mFTP.SetModeActive();
    mFTP.SetTransferBinary();
    window.show();
    return QApplication::exec();
}
