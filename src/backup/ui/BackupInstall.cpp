#include "BackupInstall.h"

#include "BackupFrame.h"
#include "WebSpace.h"
#include "frmMain.h"

namespace {

FunctionInstructions backupInstructions()
{
    return {QStringLiteral("InstructionPageBackup"),
            QStringLiteral("BackupInstructionView"),
            QStringLiteral("Backup Files"),
            QStringLiteral("Backup Files Instructions"),
            {QStringLiteral("Important files that should be uploaded to your website can be "
                            "selected by clicking on the 'Add New Files to Backup' button."),
             QStringLiteral("Click on a file name in the list to view its current status. "),
             QStringLiteral("If the file has changed since the last backup, the text in the "
                            "boxes will turn red."),
             QStringLiteral("If the file does not need updating, the text in the boxes will be "
                            "green. "),
             QStringLiteral("If a file cannot be found, the location path will turn red."),
             QStringLiteral("You can either remove the file or search for the new file "
                            "location."),
             QStringLiteral("Select scan to search through the list and backup the files as "
                            "needed.")}};
}

} // namespace

void InstallBackup(frmMain &window, WebSpace &webSpace)
{
    auto *frame = new BackupFrame(window, webSpace);
    ShellFunction backup;
    backup.index = 1;
    backup.content = frame;
    backup.instructions = backupInstructions();
    backup.openingStep = 30;
    backup.steps = {{30, {12, 13}, {12}, {}}, {31, {13}, {13}, {}}};
    backup.helpContext = [frame] { return frame->listViewShown() ? 7 : 8; };
    backup.defaultHelpContext = 8;
    backup.opened = [frame](bool) { frame->refresh(); };
    backup.loaded = [frame] { frame->loaded(); };
    window.addFunction(std::move(backup));
}
