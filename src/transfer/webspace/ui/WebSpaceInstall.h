#pragma once

class FtpControlTab;
class JobUi;
class SendFileFrame;
class StartupPage;
class TransferUi;
class cFTP;
class frmMain;

// The web space functions as they join the main window: the FTP Control & Settings tab in
// TabFrame(5), the Send a File frame in TabFrame(2), the Configuration page for the first run and
// the SetupPrompt menu entry, the session's directory for Timer3, and the close of the session
// when the window closes. All three are owned by the window.
struct WebSpaceParts
{
    FtpControlTab *tab = nullptr;
    SendFileFrame *sendFile = nullptr;
    StartupPage *page = nullptr;
};

// ui and progress are how the parts reach the user; with nullptr, the window's own prompt seam
// and progress dialogs. ftp (and ui, progress when given) must outlive the window.
WebSpaceParts InstallWebSpace(frmMain &window, cFTP &ftp, JobUi *ui = nullptr,
                              TransferUi *progress = nullptr);
