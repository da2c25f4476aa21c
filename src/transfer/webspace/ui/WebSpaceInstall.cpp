#include "WebSpaceInstall.h"

#include "FtpControlTab.h"
#include "LocalWebSpace.h"
#include "SendFileFrame.h"
#include "Settings.h"
#include "StartupPage.h"
#include "WebSpace.h"
#include "cFTP.h"
#include "frmMain.h"

#include <QFrame>
#include <QLineEdit>
#include <QStatusBar>

namespace {

FunctionInstructions sendFileInstructions()
{
    return {QStringLiteral("InstructionPageSendFile"),
            QStringLiteral("SendFileInstructionView"),
            QStringLiteral("Send a File"),
            QStringLiteral("Send a File Instructions"),
            {QStringLiteral("Find the file you want to send by clicking on the button labeled "),
             QStringLiteral("The file will be uploaded to the directory listed in the text box "
                            "labeled "),
             QStringLiteral("The pointer to this file is then ready to send via email either "
                            "using the 'Take an Action' button or using the Paste command 'Ctrl "
                            "v'.")}};
}

FunctionInstructions ftpControlInstructions()
{
    return {
        QStringLiteral("InstructionPageFTPControls"),
        QStringLiteral("FTPControlInstructionView"),
        QStringLiteral("FTP Control & Settings"),
        QStringLiteral("FTP Controls Instructions"),
        {QStringLiteral("FTP Controls and Settings have two functions. One function is to browse "
                        "your web space and the other is to setup  Tarnwick."),
         QStringLiteral("To browse your web space , click on the "),
         QStringLiteral(
             "Once connected, you can navigate your web space through double clicking on a folder "
             "to enter the folder or double clicking on the folder with the '..' at the top of the "
             "list to move out of the folder. The text above the table confirms the path to your "
             "current location."),
         QStringLiteral("Several buttons indicating various options that can be performed in your "
                        "web space appear below the table."),
         QStringLiteral(
             "Refer to the manual for more information on utilizing the Advanced  Settings.")}};
}

// Starts the web space on this computer again when the account is the one that "Try it on this
// computer" made; new ports, when the old ones were taken, go into the fields and settings.
void restartLocalWebSpace(frmMain &window, LocalWebSpace &local)
{
    const auto account = RestartLocalWebSpace(
        local, window.txtServer()->text(), window.txtUser()->text(), window.txtPassword()->text());
    if (!account)
        return;
    if (window.txtServer()->text().trimmed() != account->server) {
        window.txtServer()->setText(account->server);
        SaveSetting(QStringLiteral("Server"), account->server);
    }
    if (window.txtWebSite()->text().trimmed() != account->webSite) {
        window.txtWebSite()->setText(account->webSite);
        SaveSetting(QStringLiteral("WebPage"), account->webSite);
    }
    window.statusBar()->showMessage(
        QObject::tr("The web space on this computer is open at http://%1").arg(account->webSite));
}

} // namespace

WebSpace &InstallWebSpace(frmMain &window, cFTP &ftp, JobUi *ui, TransferUi *progress)
{
    auto *webSpace = new WebSpace(window, ftp, ui, progress);

    auto *local = new LocalWebSpace(webSpace);
    local->setObjectName(QStringLiteral("LocalWebSpace"));
    auto *tab = new FtpControlTab(window, ftp, webSpace->ui(), webSpace->progress());
    webSpace->setBrowser(tab);
    ShellFunction control;
    control.index = 5;
    control.content = tab;
    control.instructions = ftpControlInstructions();
    control.openingStep = 40;
    control.steps = {{40, {14, 16}, {14}, {16}}, {41, {16}, {}, {16}}};
    control.helpContext = [tab] { return tab->AdvanceSettingFrame()->isVisible() ? 18 : 17; };
    control.defaultHelpContext = 17;
    control.loaded = [&window, local] { restartLocalWebSpace(window, *local); };
    window.addFunction(std::move(control));

    auto *sendFile = new SendFileFrame(window, *tab);
    ShellFunction send;
    send.index = 2;
    send.content = sendFile;
    send.instructions = sendFileInstructions();
    send.openingStep = 20;
    send.steps = {{20, {10, 11}, {10}, {}}, {21, {11}, {11}, {}}};
    send.defaultHelpContext = 9;
    window.addFunction(std::move(send));

    auto *page = new StartupPage(window, *tab, &window);
    page->setLocalWebSpace(local);
    window.setSetupPage([page] { page->PromptForSetup(); });
    window.setFtpDirectoryProvider([&ftp] { return ftp.CurrentDirectory(); });
    window.setCloseHook([&ftp] { ftp.CloseConnection(); });
    return *webSpace;
}
