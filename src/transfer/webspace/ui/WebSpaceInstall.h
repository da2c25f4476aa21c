#pragma once

class JobUi;
class TransferUi;
class WebSpace;
class cFTP;
class frmMain;

// Joins the web space to the main window: the FTP Control & Settings tab (function 5, the
// browser over the window's session), Send a File (function 2), the Configuration page for the
// first run and the SetupPrompt menu entry, the session's directory for Timer3, and the close
// of the session when the window closes. Returns the web space that every other function's
// installer is given; it is owned by the window.
//
// ui and progress are how the parts reach the user; with nullptr, the window's own prompt seam
// and progress dialogs. ftp (and ui, progress when given) must outlive the window.
WebSpace &InstallWebSpace(frmMain &window, cFTP &ftp, JobUi *ui = nullptr,
                          TransferUi *progress = nullptr);
