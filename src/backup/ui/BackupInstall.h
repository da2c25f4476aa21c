#pragma once

class WebSpace;
class frmMain;

// Backup Files joins the main window: its page in TabFrame(1), its instruction page, its rings
// (steps 30 and 31) and its help pages; it sends through webSpace.
void InstallBackup(frmMain &window, WebSpace &webSpace);
